#include "OssTestHost.h"

#include <OssMainWindow.h>
#include <OssPluginHost.h>
#include <OssPreferencesDialog.h>

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssPalette.h>
#include <OssPreferenceManager.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssShadingGroup.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QSpinBox>
#include <QtTest>

namespace {

// Preferences of every editor kind, read and written through properties and named slots.
class Settings : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString style READ style WRITE setStyle)
    Q_PROPERTY(bool snap READ snap WRITE setSnap)
    Q_PROPERTY(int steps READ steps WRITE setSteps)
    Q_PROPERTY(double scale READ scale WRITE setScale)
    Q_PROPERTY(QString label READ label WRITE setLabel)
    Q_PROPERTY(Mode mode READ mode WRITE setMode)
public:
    enum Mode
    {
        Quiet,
        Loud,
        Silent
    };
    Q_ENUM(Mode)
    QString style() const { return m_style; }
    void setStyle(const QString &value) { m_style = value; }
    bool snap() const { return m_snap; }
    void setSnap(bool value) { m_snap = value; }
    int steps() const { return m_steps; }
    void setSteps(int value) { m_steps = value; }
    double scale() const { return m_scale; }
    void setScale(double value) { m_scale = value; }
    QString label() const { return m_label; }
    void setLabel(const QString &value) { m_label = value; }
    Mode mode() const { return m_mode; }
    void setMode(Mode value) { m_mode = value; }
    int saves = 0;

public slots:
    QStringList styleList() const { return {"Flat", "Round", "Sharp"}; }
    QString styleTooltip() const { return QStringLiteral("How nodes look"); }
    void resetSteps() { m_steps = 3; }
    void savePreferences() { ++saves; }

private:
    QString m_style = QStringLiteral("Round");
    bool m_snap = false;
    int m_steps = 7;
    double m_scale = 1.5;
    QString m_label = QStringLiteral("hello");
    Mode m_mode = Loud;
};

// A step that changes nothing: only its place in the history matters.
class Step : public OssUndoCommand
{
public:
    explicit Step(const QString &text) : OssUndoCommand(text) {}
    void redo() override {}
    void undo() override {}
};

QString builtPluginDirectory()
{
    return qEnvironmentVariable("OSSA_PLUGIN_DIR");
}

} // namespace

class tst_Shell : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    Settings m_settings;

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        // Windows closed by the tests must not end the test program's event loops.
        QApplication::setQuitOnLastWindowClosed(false);
        OssPreferenceManager *preferences = OssPreferenceManager::instance();
        for (const char *key : {"style", "snap", "steps", "scale", "label", "mode"})
            QVERIFY(preferences->registerPreference(
                "Test Page",
                key == QByteArray("style") || key == QByteArray("snap") ? "Look" : "Numbers",
                &m_settings, key));
    }

    void cleanup()
    {
        OssApplication::clearDialogAnswers();
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // The title names the project's file (or the project while it has none) and carries the
    // modified mark while the history is away from the last save.
    void titleNamesTheFileAndMarksEdits()
    {
        OssMainWindow window;
        OssShaderNetwork *network = m_host.newProject();
        QVERIFY(network);
        QCOMPARE(window.windowTitle(), QStringLiteral("Ossa - Untitled[*]"));
        QVERIFY(!window.isWindowModified());
        network->createNode(QStringLiteral("Filter/Blur"));
        QVERIFY(window.isWindowModified());
        QVERIFY(window.saveProjectAs(m_host.scratchPath(QStringLiteral("titled.ossa"))));
        QCOMPARE(window.windowTitle(), QStringLiteral("Ossa - titled.ossa[*]"));
        QVERIFY(!window.isWindowModified());
        OssUndoManager::instance()->undo();
        QVERIFY(window.isWindowModified());
        OssUndoManager::instance()->redo();
        QVERIFY(!window.isWindowModified());
        QVERIFY(window.openProject(m_host.samplePath()));
        QCOMPARE(window.windowTitle(), QStringLiteral("Ossa - sample.ossa[*]"));
        QVERIFY(!window.isWindowModified());
    }

    // New, Open and closing the window ask about unsaved edits: Save writes them first,
    // Discard drops them, Cancel leaves the project, its edits and the window as they were.
    void unsavedEditsAreAskedAbout_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("answer");
        const struct
        {
            const char *name;
            QMessageBox::StandardButton button;
        } answers[] = {{"save", QMessageBox::Save},
                       {"discard", QMessageBox::Discard},
                       {"cancel", QMessageBox::Cancel}};
        for (const char *command : {"new", "open", "quit"})
            for (const auto &answer : answers)
                QTest::newRow(qPrintable(QStringLiteral("%1, %2").arg(QLatin1String(command),
                                                                      QLatin1String(answer.name))))
                    << QString::fromLatin1(command) << int(answer.button);
    }

    void unsavedEditsAreAskedAbout()
    {
        QFETCH(QString, command);
        QFETCH(int, answer);
        const QString path = m_host.scratchPath(QStringLiteral("edited.ossa"));
        QFile::remove(path);
        QVERIFY(m_host.newProject());
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        OssMainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        OssProject *project = OssProjectManager::instance()->currentProject();
        project->networks().first()->createNode(QStringLiteral("Filter/Blur"), "Edit");
        QVERIFY(window.isWindowModified());

        OssApplication::queueDialogAnswer(answer);
        bool closed = false;
        if (command == QLatin1String("new")) {
            window.newProject();
        } else if (command == QLatin1String("open")) {
            OssApplication::queueDialogAnswer(m_host.samplePath());
            window.openProjectDialog();
        } else {
            closed = window.close();
        }
        QVERIFY(!OssApplication::hasDialogAnswer() || answer == QMessageBox::Cancel);
        OssApplication::clearDialogAnswers();

        if (answer == QMessageBox::Cancel) {
            QCOMPARE(OssProjectManager::instance()->currentProject(), project);
            QVERIFY(project->networks().first()->node("Edit"));
            QVERIFY(window.isWindowModified());
            QVERIFY(!closed);
            QVERIFY(window.isVisible());
        } else {
            QCOMPARE(closed, command == QLatin1String("quit"));
            if (command != QLatin1String("quit"))
                QVERIFY(OssProjectManager::instance()->currentProject() != project);
        }
        // What the file holds: the edit only when saved.
        OssShaderNetwork *reopened = m_host.openProject(path);
        QVERIFY2(reopened, qPrintable(m_host.errorString()));
        QCOMPARE(reopened->node("Edit") != nullptr, answer == QMessageBox::Save);
    }

    // An untitled project asks for a file when Save is chosen; cancelling that dialog cancels
    // the command.
    void savingAnUntitledProjectAsksForAFile()
    {
        OssMainWindow window;
        OssShaderNetwork *network = m_host.newProject();
        network->createNode(QStringLiteral("Filter/Blur"), "Edit");
        OssProject *project = OssProjectManager::instance()->currentProject();
        OssApplication::queueDialogAnswer(int(QMessageBox::Save));
        OssApplication::queueDialogAnswer(QString());
        window.newProject();
        QCOMPARE(OssProjectManager::instance()->currentProject(), project);
        QVERIFY(window.isWindowModified());
        const QString path = m_host.scratchPath(QStringLiteral("chosen.ossa"));
        QFile::remove(path);
        OssApplication::queueDialogAnswer(int(QMessageBox::Save));
        OssApplication::queueDialogAnswer(path);
        window.newProject();
        QVERIFY(OssProjectManager::instance()->currentProject() != project);
        OssShaderNetwork *reopened = m_host.openProject(path);
        QVERIFY2(reopened, qPrintable(m_host.errorString()));
        QVERIFY(reopened->node("Edit"));
    }

    void menuPaths_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QStringList>("path");
        QTest::newRow("node graph") << "/Ossa/NodeGraph/" << QStringList{"Node Graph"};
        QTest::newRow("create folder")
            << "/Ossa/NodeGraph/Create/Filter" << QStringList{"Node Graph", "Create", "Filter"};
        QTest::newRow("no leading slash") << "Ossa/NodeGraph" << QStringList{"Node Graph"};
        QTest::newRow("empty parts") << "/Ossa//Tools//" << QStringList{"Tools"};
        QTest::newRow("only root") << "/Ossa/" << QStringList{};
    }

    void menuPaths()
    {
        QFETCH(QString, folder);
        QFETCH(QStringList, path);
        QCOMPARE(OssMainWindow::menuPathForFolder(folder), path);
    }

    void pluginsLoadFromTheBuildFolder()
    {
        m_host.clearLines();
        OssPluginHost host;
        QCOMPARE(host.loadAll(builtPluginDirectory()), 1);
        QCOMPARE(host.plugins().size(), 1);
        QCOMPARE(host.plugins().first().name, QStringLiteral("Node Graph View Context"));
        QVERIFY(m_host.hasLine("[ Plugin ] Shader Network - Node Graph View Context"));
        OssMainWindow window(&host);
        QVERIFY(window.aboutText().contains(QStringLiteral("Node Graph View Context (version 1)")));
    }

    void foreignFilesAreSkippedWithTheirReason()
    {
        const QString folder = m_host.scratchPath(QStringLiteral("plugins"));
        QVERIFY(QDir().mkpath(folder));
        QFile text(folder + QStringLiteral("/libnotes.so"));
        QVERIFY(text.open(QIODevice::WriteOnly));
        text.write("not a library");
        text.close();
        QFile readme(folder + QStringLiteral("/README"));
        QVERIFY(readme.open(QIODevice::WriteOnly));
        readme.close();
        // A real Qt plug-in of another interface: one of Qt's own image format plug-ins.
        const QString qtPlugin = QLibraryInfo::location(QLibraryInfo::PluginsPath) +
                                 QStringLiteral("/imageformats/libqico.so");
        const bool haveQtPlugin = QFile::copy(qtPlugin, folder + QStringLiteral("/libqico.so"));
        m_host.clearLines();
        OssPluginHost host;
        QCOMPARE(host.loadAll(folder), 0);
        QStringList problems = host.problems();
        QVERIFY2(problems.size() == (haveQtPlugin ? 2 : 1), qPrintable(problems.join('\n')));
        QVERIFY(problems.first().startsWith(QStringLiteral("libnotes.so: no plug-in metadata")));
        if (haveQtPlugin)
            QVERIFY2(problems.last().startsWith(
                         QStringLiteral("libqico.so: interface id 'org.qt-project.Qt."
                                        "QImageIOHandlerFactoryInterface' is not "
                                        "'com.halvern.ossa.pluginterface/1.0'")),
                     qPrintable(problems.last()));
        QVERIFY(m_host.hasLine(QStringLiteral("[ !! ] Plug-in '%1' skipped: %2")
                                   .arg("libnotes.so", problems.first().mid(13))));
        OssPluginHost missing;
        QCOMPARE(missing.loadAll(folder + QStringLiteral("/nowhere")), 0);
        QCOMPARE(missing.problems().size(), 1);
    }

    void initializationOrder()
    {
        QList<OssPluginHost::LoadedPlugin> plugins;
        const QList<QPair<QString, int>> files{
            {"c.so", 100}, {"a.so", 100}, {"b.so", 5}, {"d.so", 200}};
        for (const auto &file : files) {
            OssPluginHost::LoadedPlugin plugin;
            plugin.fileName = file.first;
            plugin.priority = file.second;
            plugins.append(plugin);
        }
        OssPluginHost::sortForInitialization(plugins);
        QStringList order;
        for (const auto &plugin : plugins)
            order << plugin.fileName;
        QCOMPARE(order, (QStringList{"b.so", "a.so", "c.so", "d.so"}));
    }

    void menusFollowTheActionTree()
    {
        OssMainWindow window;
        auto *action = new QAction(QStringLiteral("Frame All"), &window);
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/ShellTest/View/"),
                                                         action);
        QTRY_VERIFY(window.topMenu(QStringLiteral("Shell Test")));
        QMenu *top = window.topMenu(QStringLiteral("Shell Test"));
        QMenu *view = nullptr;
        for (QAction *entry : top->actions())
            if (entry->menu() && entry->text() == QLatin1String("View"))
                view = entry->menu();
        QVERIFY(view);
        QVERIFY(view->actions().contains(action));
    }

    void undoActionsFollowTheStack()
    {
        OssMainWindow window;
        QMenu *edit = nullptr;
        for (QAction *entry : window.menuBar()->actions())
            if (entry->text() == QLatin1String("&Edit"))
                edit = entry->menu();
        QVERIFY(edit);
        QAction *undo = edit->actions().at(0);
        QAction *redo = edit->actions().at(1);
        QVERIFY(!undo->isEnabled());
        QCOMPARE(undo->text(), QStringLiteral("&Undo"));
        OssUndoManager::instance()->addUndo(new Step(QStringLiteral("Move Node")));
        QVERIFY(undo->isEnabled());
        QCOMPARE(undo->text(), QStringLiteral("&Undo Move Node"));
        QVERIFY(!redo->isEnabled());
        undo->trigger();
        QVERIFY(!undo->isEnabled());
        QVERIFY(redo->isEnabled());
        QCOMPARE(redo->text(), QStringLiteral("&Redo Move Node"));
        redo->trigger();
        QCOMPARE(undo->text(), QStringLiteral("&Undo Move Node"));
        OssUndoManager::instance()->clear();
        QVERIFY(!undo->isEnabled());
        QCOMPARE(redo->text(), QStringLiteral("&Redo"));
    }

    // Redo answers Ctrl+Y as well as Ctrl+Shift+Z.
    void redoAnswersBothKeys()
    {
        OssMainWindow window;
        QMenu *edit = nullptr;
        for (QAction *entry : window.menuBar()->actions())
            if (entry->text() == QLatin1String("&Edit"))
                edit = entry->menu();
        QVERIFY(edit);
        const QList<QKeySequence> keys = edit->actions().at(1)->shortcuts();
        QVERIFY(keys.contains(QKeySequence(QStringLiteral("Ctrl+Y"))));
        QVERIFY(keys.contains(QKeySequence(QStringLiteral("Ctrl+Shift+Z"))));
    }

    // The Project menu lists the shading groups; choosing one makes its network current.
    void projectMenuChoosesTheShadingGroup()
    {
        OssMainWindow window;
        OssShaderNetwork *shell = m_host.openSample();
        QVERIFY2(shell, qPrintable(m_host.errorString()));
        OssProject *project = OssProjectManager::instance()->currentProject();
        QCOMPARE(project->shadingGroups().size(), 2);
        OssShaderNetwork *visor = project->shadingGroups().at(1)->network();
        const auto groups = [&window] {
            emit window.projectMenu()->aboutToShow();
            QList<QAction *> actions;
            for (QAction *action : window.projectMenu()->actions())
                if (action->isCheckable())
                    actions.append(action);
            return actions;
        };
        QList<QAction *> actions = groups();
        QCOMPARE(actions.size(), 2);
        QCOMPARE(actions.at(0)->text(), QStringLiteral("Helmet_Shell_SG (Helmet)"));
        QCOMPARE(actions.at(1)->text(), QStringLiteral("Helmet_Visor_SG (Helmet)"));
        QVERIFY(actions.at(0)->isChecked());
        actions.at(1)->trigger();
        QCOMPARE(OssShaderNetworkManager::instance()->currentShaderNetwork(), visor);
        actions = groups();
        QVERIFY(!actions.at(0)->isChecked());
        QVERIFY(actions.at(1)->isChecked());
        QVERIFY(window.showShadingGroup(QStringLiteral("Helmet_Shell_SG")));
        QCOMPARE(OssShaderNetworkManager::instance()->currentShaderNetwork(), shell);
        QVERIFY(!window.showShadingGroup(QStringLiteral("Nowhere_SG")));
        QCOMPARE(OssShaderNetworkManager::instance()->currentShaderNetwork(), shell);
    }

    // A wider window widens the node graph, the panel keeps its width; the node graph shown
    // again after being closed takes its large share back.
    void theNodeGraphTakesTheRoom()
    {
        // The first palette (the plug-in's node graph, when a test loaded it) is the large one.
        QList<OssPalette *> made;
        while (OssPaletteManager::instance()->palettes().size() < 2) {
            made.append(new OssPalette);
            made.last()->setObjectName(QStringLiteral("Palette %1").arg(made.size()));
            QVERIFY(OssPaletteManager::instance()->registerPalette(made.last()));
        }
        OssMainWindow window;
        QDockWidget *main = window.dockFor(OssPaletteManager::instance()->palettes().at(0));
        QDockWidget *side = window.dockFor(OssPaletteManager::instance()->palettes().at(1));
        QVERIFY(main && side);
        window.resize(1600, 1000);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        window.arrangeDocks();
        QTRY_VERIFY2(main->width() > side->width() * 2,
                     qPrintable(QStringLiteral("%1 %2 %3 %4")
                                    .arg(main->width())
                                    .arg(side->width())
                                    .arg(OssPaletteManager::instance()->palettes().size())
                                    .arg(window.width())));
        const int panelWidth = side->width();
        const int graphWidth = main->width();
        window.resize(2000, 1000);
        QTRY_COMPARE(window.width(), 2000);
        QTRY_VERIFY2(qAbs(side->width() - panelWidth) <= 8,
                     qPrintable(QStringLiteral("%1 %2 was %3 %4")
                                    .arg(main->width())
                                    .arg(side->width())
                                    .arg(graphWidth)
                                    .arg(panelWidth)));
        QVERIFY(main->width() >= graphWidth + 390);
        main->toggleViewAction()->trigger();
        QTRY_VERIFY(main->isHidden());
        main->toggleViewAction()->trigger();
        QTRY_VERIFY(main->width() >= window.width() * 7 / 10);
        qDeleteAll(made);
    }

    void palettesBecomeDocks()
    {
        OssMainWindow window;
        auto *palette = new OssPalette;
        palette->setObjectName(QStringLiteral("Shell Test Palette"));
        palette->setWindowTitle(QStringLiteral("Shell Test Palette"));
        QVERIFY(OssPaletteManager::instance()->registerPalette(palette));
        QDockWidget *dock = window.dockFor(palette);
        QVERIFY(dock);
        QCOMPARE(dock->windowTitle(), QStringLiteral("Shell Test Palette"));
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        dock->toggleViewAction()->trigger();
        QVERIFY(dock->isHidden());
        emit palette->showRequested();
        QVERIFY(dock->isVisible());
        QVERIFY(window.windowMenu()->actions().contains(dock->toggleViewAction()));
        delete palette;
        QTRY_VERIFY(!window.dockFor(palette));
    }

    void preferencesDialogEditors_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("editorClass");
        QTest::newRow("list") << "style"
                              << "QComboBox";
        QTest::newRow("bool") << "snap"
                              << "QCheckBox";
        QTest::newRow("int") << "steps"
                             << "QSpinBox";
        QTest::newRow("double") << "scale"
                                << "QDoubleSpinBox";
        QTest::newRow("string") << "label"
                                << "QLineEdit";
        QTest::newRow("enum") << "mode"
                              << "QComboBox";
    }

    void preferencesDialogEditors()
    {
        QFETCH(QString, key);
        QFETCH(QString, editorClass);
        OssPreferencesDialog dialog;
        QVERIFY(dialog.pageNames().contains(QStringLiteral("Test Page")));
        QWidget *editor = dialog.editorFor(QStringLiteral("Test Page"), key);
        QVERIFY(editor);
        QCOMPARE(QString::fromLatin1(editor->metaObject()->className()), editorClass);
        if (key == QLatin1String("style"))
            QCOMPARE(editor->toolTip(), QStringLiteral("How nodes look"));
        if (key == QLatin1String("mode")) {
            auto *combo = qobject_cast<QComboBox *>(editor);
            QCOMPARE(combo->count(), 3);
            QCOMPARE(combo->currentText(), QStringLiteral("Loud"));
        }
    }

    void applyWritesAndCancelLeaves()
    {
        const int saves = m_settings.saves;
        {
            OssPreferencesDialog dialog;
            qobject_cast<QComboBox *>(dialog.editorFor("Test Page", "style"))
                ->setCurrentText("Sharp");
            qobject_cast<QSpinBox *>(dialog.editorFor("Test Page", "steps"))->setValue(11);
            dialog.reject();
        }
        QCOMPARE(m_settings.style(), QStringLiteral("Round"));
        QCOMPARE(m_settings.steps(), 7);
        OssPreferencesDialog dialog;
        qobject_cast<QComboBox *>(dialog.editorFor("Test Page", "style"))->setCurrentText("Sharp");
        qobject_cast<QCheckBox *>(dialog.editorFor("Test Page", "snap"))->setChecked(true);
        qobject_cast<QSpinBox *>(dialog.editorFor("Test Page", "steps"))->setValue(11);
        qobject_cast<QComboBox *>(dialog.editorFor("Test Page", "mode"))->setCurrentText("Silent");
        qobject_cast<QLineEdit *>(dialog.editorFor("Test Page", "label"))->setText("bye");
        dialog.apply();
        QCOMPARE(m_settings.style(), QStringLiteral("Sharp"));
        QVERIFY(m_settings.snap());
        QCOMPARE(m_settings.steps(), 11);
        QCOMPARE(m_settings.mode(), Settings::Silent);
        QCOMPARE(m_settings.label(), QStringLiteral("bye"));
        QVERIFY(m_settings.saves > saves);
    }

    // Restore Defaults shows the defaults in the editors; Cancel leaves the preferences as they
    // were and saves nothing, Apply writes them.
    void restoreDefaultsWaitsForApply_data()
    {
        QTest::addColumn<bool>("applied");
        QTest::newRow("cancelled") << false;
        QTest::newRow("applied") << true;
    }

    void restoreDefaultsWaitsForApply()
    {
        QFETCH(bool, applied);
        m_settings.setSteps(9);
        const int saves = m_settings.saves;
        {
            OssPreferencesDialog dialog;
            auto *pages = dialog.findChild<QListWidget *>();
            QVERIFY(pages);
            const QList<QListWidgetItem *> page = pages->findItems("Test Page", Qt::MatchExactly);
            QCOMPARE(page.size(), 1);
            pages->setCurrentItem(page.first());
            dialog.restoreDefaults();
            QCOMPARE(qobject_cast<QSpinBox *>(dialog.editorFor("Test Page", "steps"))->value(), 3);
            QCOMPARE(m_settings.steps(), 9);
            QCOMPARE(m_settings.saves, saves);
            if (applied)
                dialog.apply();
            else
                dialog.reject();
        }
        QCOMPARE(m_settings.steps(), applied ? 3 : 9);
        QCOMPARE(m_settings.saves > saves, applied);
    }

    void shellProcess_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("output");
        // Whether the node graph is there for a second picture at 100 % zoom.
        QTest::addColumn<bool>("graph");
        QTest::newRow("sample project") << QStringList{QStringLiteral(OSS_SAMPLE_PROJECT)} << 0
                                        << "Screenshot written to " << true;
        QTest::newRow("no project") << QStringList{} << 0 << "Screenshot written to " << true;
        QTest::newRow("bad plug-in folder") << QStringList{"--plugin-dir", "/nonexistent"} << 0
                                            << "Screenshot written to " << false;
        QTest::newRow("missing project")
            << QStringList{"/nonexistent/project.ossa"} << 1 << "Screenshot written to " << true;
    }

    void shellProcess()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, exitCode);
        QFETCH(QString, output);
        QFETCH(bool, graph);
        const QString picture =
            m_host.scratchPath(QTest::currentDataTag() + QStringLiteral(".png"));
        QProcess shell;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
        shell.setProcessEnvironment(environment);
        shell.start(QStringLiteral(OSS_SHELL_EXECUTABLE),
                    arguments + QStringList{"--screenshot", picture, "--settings-dir",
                                            m_host.scratchDirectory()});
        QVERIFY(shell.waitForFinished(60000));
        const QString standardOutput = QString::fromUtf8(shell.readAllStandardOutput());
        QCOMPARE(shell.exitCode(), exitCode);
        const QStringList lines = standardOutput.split('\n', Qt::SkipEmptyParts);
        QVERIFY(!lines.isEmpty());
        QCOMPARE(lines.first(), output + QFileInfo(picture).absoluteFilePath());
        // Beside the framed picture, one at 100 % zoom.
        const QString full = QFileInfo(picture).absolutePath() + '/' +
                             QFileInfo(picture).completeBaseName() + "-100.png";
        QCOMPARE(lines.value(1), graph ? "Screenshot at 100 % zoom written to " + full : QString());
        QCOMPARE(!QImage(full).isNull(), graph);
        QImage image(picture);
        QVERIFY(!image.isNull());
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); y += 8)
            for (int x = 0; x < image.width(); x += 8)
                colours.insert(image.pixel(x, y));
        QVERIFY(colours.size() > 1);
        if (exitCode != 0)
            QVERIFY(shell.readAllStandardError().contains("Cannot open the project"));
    }
};

QTEST_MAIN(tst_Shell)
#include "tst_Shell.moc"
