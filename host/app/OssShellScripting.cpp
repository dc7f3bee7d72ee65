#include "OssShellScripting.h"

#include "OssMainWindow.h"

#include <QDockWidget>
#include <QFileInfo>

#include <cstdio>

#ifdef OSS_WITH_SCRIPTING
#include <OssPalette.h>
#include <OssScriptConsole.h>
#include <OssScriptEngine.h>
#endif

namespace OssShellScripting {

namespace {

void writeTo(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()), stream);
    std::fflush(stream);
}

} // namespace

#ifdef OSS_WITH_SCRIPTING

bool available()
{
    return true;
}

void installConsole(OssMainWindow &window)
{
    OssPalette *palette = OssScriptConsole::createPalette();
    if (QDockWidget *dock = window.dockFor(palette)) {
        window.addDockWidget(Qt::BottomDockWidgetArea, dock);
        dock->hide();
    }
}

int runBatch(const QString &file, const QString &code, const QStringList &argv)
{
    OssScriptEngine *engine = OssScriptEngine::instance();
    const QMetaObject::Connection printing =
        QObject::connect(engine, &OssScriptEngine::output, [](const QString &text, bool isError) {
            writeTo(isError ? stderr : stdout, text);
        });
    const OssScriptEngine::Result result =
        file.isEmpty() ? engine->run(code, QStringLiteral("<string>"),
                                     QStringList{QStringLiteral("-c")} + argv)
                       : engine->runFile(file, QStringList{file} + argv);
    QObject::disconnect(printing);
    if (!result.error.isEmpty())
        writeTo(stderr, result.error.endsWith(QLatin1Char('\n'))
                            ? result.error
                            : result.error + QLatin1Char('\n'));
    return result.status;
}

#else

bool available()
{
    return false;
}

void installConsole(OssMainWindow &) {}

int runBatch(const QString &, const QString &, const QStringList &)
{
    writeTo(stderr, QStringLiteral("This build of ossa has no Python scripting.\n"));
    return 2;
}

#endif

} // namespace OssShellScripting
