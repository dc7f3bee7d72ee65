#include "OssDebug.h"

#include <QFileInfo>
#include <QMap>
#include <QMutex>
#include <QMutexLocker>

#include <cstdarg>
#include <cstdio>
#include <vector>

namespace {

struct SinkRegistry
{
    QMutex mutex;
    QMap<int, OssDebugSinks::Sink> sinks;
    int nextId = 1;
    bool echo = true;
};

SinkRegistry &registry()
{
    static SinkRegistry instance;
    return instance;
}

QString formatMessage(const char *format, va_list args)
{
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (length < 0)
        return QString::fromUtf8(format);
    std::vector<char> buffer(static_cast<size_t>(length) + 1);
    std::vsnprintf(buffer.data(), buffer.size(), format, args);
    return QString::fromUtf8(buffer.data(), length);
}

} // namespace

void OssDebug(const char *sourceFile, int line, const char *format, ...)
{
    if (!format)
        return;
    va_list args;
    va_start(args, format);
    OssDebugLine entry;
    entry.message = formatMessage(format, args);
    va_end(args);
    entry.sourceFile = QString::fromUtf8(sourceFile ? sourceFile : "");
    entry.line = line;

    SinkRegistry &reg = registry();
    // Sinks are copied out so a sink may write debug lines or remove itself.
    QList<OssDebugSinks::Sink> sinks;
    bool echo = true;
    {
        QMutexLocker lock(&reg.mutex);
        sinks = reg.sinks.values();
        echo = reg.echo;
    }
    if (echo) {
        const QByteArray text = QStringLiteral("%1:%2: %3\n")
                                    .arg(QFileInfo(entry.sourceFile).fileName())
                                    .arg(line)
                                    .arg(entry.message)
                                    .toUtf8();
        std::fwrite(text.constData(), 1, static_cast<size_t>(text.size()), stderr);
    }
    for (const OssDebugSinks::Sink &sink : sinks)
        sink(entry);
}

int OssDebugSinks::addSink(Sink sink)
{
    SinkRegistry &reg = registry();
    QMutexLocker lock(&reg.mutex);
    const int id = reg.nextId++;
    reg.sinks.insert(id, std::move(sink));
    return id;
}

void OssDebugSinks::removeSink(int id)
{
    SinkRegistry &reg = registry();
    QMutexLocker lock(&reg.mutex);
    reg.sinks.remove(id);
}

void OssDebugSinks::setEchoToStandardError(bool on)
{
    SinkRegistry &reg = registry();
    QMutexLocker lock(&reg.mutex);
    reg.echo = on;
}

bool OssDebugSinks::echoToStandardError()
{
    SinkRegistry &reg = registry();
    QMutexLocker lock(&reg.mutex);
    return reg.echo;
}

OssDebugCapture::OssDebugCapture()
{
    m_sinkId = OssDebugSinks::addSink([this](const OssDebugLine &line) { m_lines.append(line); });
}

OssDebugCapture::~OssDebugCapture()
{
    OssDebugSinks::removeSink(m_sinkId);
}

QStringList OssDebugCapture::messages() const
{
    QStringList result;
    for (const OssDebugLine &line : m_lines)
        result.append(line.message);
    return result;
}

bool OssDebugCapture::contains(const QString &message) const
{
    return count(message) > 0;
}

int OssDebugCapture::count(const QString &message) const
{
    int n = 0;
    for (const OssDebugLine &line : m_lines) {
        if (line.message == message)
            ++n;
    }
    return n;
}
