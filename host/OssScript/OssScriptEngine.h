#pragma once

#include "OssScriptExport.h"

#include <QObject>
#include <QStringList>

// The embedded Python interpreter of the host. Scripts import the module "ossa" (the bridge to
// the host's script objects) and share one namespace, the one of "__main__". Everything runs on
// the GUI thread; a Python exception never leaves the engine.
class OSSSCRIPT_EXPORT OssScriptEngine : public QObject
{
    Q_OBJECT
public:
    // How a run ended.
    struct Result
    {
        // 0 on success; 1 after an uncaught exception; a SystemExit's own code.
        int status = 0;
        // The traceback of an uncaught exception (empty on success).
        QString error;
        // Console input that needs more lines before it can run.
        bool incomplete = false;
    };

    // The engine, starting the interpreter on first use.
    static OssScriptEngine *instance();
    ~OssScriptEngine() override;

    // Runs Code as a module body in the shared namespace, with sys.argv set to Argv (the file
    // name alone when empty).
    Result run(const QString &code, const QString &fileName = QStringLiteral("<string>"),
               const QStringList &argv = QStringList());
    // Runs a script file; status 2 and a message when it cannot be read.
    Result runFile(const QString &path, const QStringList &argv = QStringList());
    // One entry of the console: expressions print their value; Incomplete when the entry needs
    // more lines (an open block or bracket).
    Result runInteractive(const QString &source);
    // True when a console entry needs more lines (an open block or bracket) before it can run.
    bool needsMoreInput(const QString &source);
    // Names that complete Text (a name or a dotted expression) in the shared namespace.
    QStringList completions(const QString &text);

    // Makes Object reachable from scripts as ossa.<Name>.
    void addObject(const QString &name, QObject *object);

    // Output a single run may write before it is stopped with OutputLimitExceeded.
    void setOutputLimit(qint64 characters);
    qint64 outputLimit() const { return m_outputLimit; }

    // Called by the bridge for everything scripts write to sys.stdout and sys.stderr. False once
    // the run has written more than the limit.
    bool write(const QString &text, bool isError);

signals:
    void output(const QString &text, bool isError);

private:
    OssScriptEngine();
    Result execute(const QString &source, const QString &fileName, const QStringList &argv,
                   bool interactive);

    qint64 m_outputLimit = 4 * 1024 * 1024;
    qint64 m_written = 0;
    bool m_running = false;
};
