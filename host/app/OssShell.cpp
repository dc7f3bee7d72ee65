#include "OssShell.h"

#include "OssMainWindow.h"
#include "OssNodeInfoActions.h"
#include "OssPluginHost.h"
#include "OssShellScripting.h"
#include "OssTestDrop.h"

#include <OssApplication.h>
#include <OssDebug.h>
#include <OssProjectManager.h>
#include <OssSettings.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QGraphicsView>
#include <QImage>
#include <QTemporaryDir>
#include <QTextStream>
#include <QTimer>

#include <cstdio>
#include <cstring>
#include <memory>

namespace {

// Without a display and without an explicit platform, the shell runs offscreen; script runs
// always do.
bool chooseOffscreenPlatform(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "-platform") == 0 || std::strcmp(argv[i], "--platform") == 0)
            return false;
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--script") == 0 || std::strcmp(argv[i], "--run") == 0) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
            return true;
        }
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        return qEnvironmentVariable("QT_QPA_PLATFORM") == QLatin1String("offscreen");
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return true;
    }
    return false;
}

// A picture with more than one colour: something was drawn.
bool isBlank(const QImage &image)
{
    if (image.isNull())
        return true;
    const QRgb first = image.pixel(0, 0);
    for (int y = 0; y < image.height(); y += 4)
        for (int x = 0; x < image.width(); x += 4)
            if (image.pixel(x, y) != first)
                return false;
    return true;
}

// The node graph: the largest graphics view shown in the window.
QGraphicsView *largestGraphicsView(QWidget &window)
{
    QGraphicsView *largest = nullptr;
    for (QGraphicsView *view : window.findChildren<QGraphicsView *>())
        if (view->isVisible() && view->scene() &&
            (!largest || view->width() * view->height() > largest->width() * largest->height()))
            largest = view;
    return largest;
}

} // namespace

int ossRunShell(int argc, char **argv)
{
    OssApplication::configureAllocator();
    const bool headless = chooseOffscreenPlatform(argc, argv);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Ossa"));
    QApplication::setOrganizationName(QStringLiteral("Ossa"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Ossa host shell: the node-graph editor of shader networks."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("project"),
                                 QStringLiteral("Project file (*.ossa) to open."),
                                 QStringLiteral("[project]"));
    const QCommandLineOption screenshot(
        QStringLiteral("screenshot"),
        QStringLiteral("Write a PNG picture of the main window and quit."), QStringLiteral("png"));
    const QCommandLineOption settingsDir(QStringLiteral("settings-dir"),
                                         QStringLiteral("Keep settings in this folder."),
                                         QStringLiteral("dir"));
    const QCommandLineOption pluginDir(QStringLiteral("plugin-dir"),
                                       QStringLiteral("Load plug-ins from this folder."),
                                       QStringLiteral("dir"));
    const QCommandLineOption quit(
        QStringLiteral("quit"), QStringLiteral("Start, load plug-ins and the project, then quit."));
    const QCommandLineOption script(
        QStringLiteral("script"),
        QStringLiteral("Run a Python script offscreen (sys.argv: the file and the arguments after "
                       "it) and quit with its status."),
        QStringLiteral("file.py"));
    const QCommandLineOption run(
        QStringLiteral("run"),
        QStringLiteral("Run Python code offscreen and quit with its status."),
        QStringLiteral("code"));
    parser.addOptions({screenshot, settingsDir, pluginDir, quit, script, run});
    parser.process(app);
    const bool scripted = parser.isSet(script) || parser.isSet(run);
    // A script's standard error is its own: tracebacks and what it writes, not the debug log.
    if (scripted)
        OssDebugSinks::setEchoToStandardError(false);
    if (parser.isSet(script) && !QFileInfo(parser.value(script)).isFile()) {
        QTextStream(stderr) << "Cannot run the script " << parser.value(script)
                            << ": no such file\n";
        return 2;
    }

    QTextStream out(stdout);
    QTextStream err(stderr);
    // Headless runs keep their settings away from the user's unless told where to keep them.
    std::unique_ptr<QTemporaryDir> scratchSettings;
    if (parser.isSet(settingsDir)) {
        OssSettings::setStorageDirectory(parser.value(settingsDir));
    } else if (headless && qEnvironmentVariableIsEmpty("OSSA_SETTINGS_DIR")) {
        scratchSettings = std::make_unique<QTemporaryDir>();
        OssSettings::setStorageDirectory(scratchSettings->path());
    }
    const bool batch = parser.isSet(screenshot) || parser.isSet(quit) || scripted;
    OssApplication::setPopupsAllowed(!headless && !batch);

    OssPluginHost plugins;
    plugins.loadAll(OssPluginHost::pluginDirectory(parser.value(pluginDir)));
    OssNodeInfoActions::file(plugins);

    OssMainWindow window(&plugins);
    OssShellScripting::installConsole(window);
    // Offscreen there is no screen to fit: the picture is taken at the size of a common desktop
    // monitor, where a framed network is large enough to show its node titles.
    if (headless && parser.isSet(screenshot)) {
        window.resize(2560, 1440);
        window.arrangeDocks();
    }
    const QStringList positional = parser.positionalArguments();
    bool projectOk = true;
    if (!positional.isEmpty()) {
        QString error;
        projectOk = OssProjectManager::instance()->openProject(positional.first(), &error);
        if (!projectOk) {
            err << "Cannot open the project: " << error << '\n';
            err.flush();
            OssProjectManager::instance()->newProject();
        }
    } else {
        OssProjectManager::instance()->newProject();
    }
    window.show();
    ossScheduleTestDrop(&window);

    int exitCode = 0;
    if (parser.isSet(screenshot)) {
        const QString path = QFileInfo(parser.value(screenshot)).absoluteFilePath();
        // Views bind to their networks with a delay; give them time before the picture.
        QTimer::singleShot(900, &window, [&] {
            QApplication::processEvents();
            // The picture shows the whole graph framed in the view at its final size.
            QGraphicsView *graph = largestGraphicsView(window);
            if (graph && graph->metaObject()->indexOfSlot("frameNodes()") >= 0) {
                QMetaObject::invokeMethod(graph, "frameNodes", Qt::DirectConnection);
                QApplication::processEvents();
            }
            const QImage image = window.grab().toImage();
            QDir().mkpath(QFileInfo(path).absolutePath());
            if (isBlank(image) || !image.save(path, "PNG")) {
                err << "Cannot write the screenshot to " << path << '\n';
                exitCode = 1;
            } else {
                out << "Screenshot written to " << path << '\n';
                // A second picture with the node graph at 100 %, about the same centre, where
                // every title and port label is drawn at its full size.
                if (graph) {
                    const QPointF centre = graph->mapToScene(graph->viewport()->rect().center());
                    graph->resetTransform();
                    graph->centerOn(centre);
                    QApplication::processEvents();
                    const QFileInfo framed(path);
                    const QString full = framed.absolutePath() + QLatin1Char('/') +
                                         framed.completeBaseName() + QStringLiteral("-100.png");
                    if (window.grab().toImage().save(full, "PNG"))
                        out << "Screenshot at 100 % zoom written to " << full << '\n';
                }
            }
            out.flush();
            err.flush();
            QApplication::exit(exitCode);
        });
    } else if (scripted) {
        QTimer::singleShot(0, &window, [&] {
            // A script is not run on another project than the one it was given.
            if (!projectOk) {
                QApplication::exit(2);
                return;
            }
            QApplication::processEvents();
            QApplication::exit(
                OssShellScripting::runBatch(parser.isSet(script) ? parser.value(script) : QString(),
                                            parser.value(run), positional));
        });
    } else if (parser.isSet(quit)) {
        QTimer::singleShot(0, &window, [] { QApplication::exit(0); });
    }
    const int result = app.exec();
    OssProjectManager::instance()->closeProject();
    plugins.unloadAll();
    if (!projectOk && batch && !scripted)
        return 1;
    return result;
}
