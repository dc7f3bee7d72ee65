#pragma once

#include "OssCoreExport.h"

#include <QString>
#include <QStringList>

#include <functional>

// Writes one debug line built from a printf-style format: to standard error (prefixed with the
// source file and line) and to every registered in-process sink (the message text alone).
OSSCORE_EXPORT void OssDebug(const char *sourceFile, int line, const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 3, 4)))
#endif
    ;

// Convenience form that fills in the current file and line.
#define OSS_DEBUG(...) OssDebug(__FILE__, __LINE__, __VA_ARGS__)

// One line as the sinks receive it.
struct OssDebugLine
{
    QString sourceFile;
    int line = 0;
    QString message;
};

// Process-wide registry of debug sinks. A sink is called on the thread that wrote the line.
class OSSCORE_EXPORT OssDebugSinks
{
public:
    using Sink = std::function<void(const OssDebugLine &)>;

    static int addSink(Sink sink);
    static void removeSink(int id);
    // Turns the copy to standard error off and on (the shell's quiet mode, noisy tests).
    static void setEchoToStandardError(bool on);
    static bool echoToStandardError();
};

// Captures the messages written while it lives; tests assert on the exact text.
class OSSCORE_EXPORT OssDebugCapture
{
public:
    OssDebugCapture();
    ~OssDebugCapture();
    OssDebugCapture(const OssDebugCapture &) = delete;
    OssDebugCapture &operator=(const OssDebugCapture &) = delete;

    QStringList messages() const;
    const QList<OssDebugLine> &lines() const { return m_lines; }
    bool contains(const QString &message) const;
    int count(const QString &message) const;
    void clear() { m_lines.clear(); }

private:
    int m_sinkId = -1;
    QList<OssDebugLine> m_lines;
};
