#include "OssFileWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>
#include <cstring>

namespace {

// The device's own message, or the system's for the last failed call when the device has none
// (a save file that fails while committing reports "Unknown error").
QString reason(const QSaveFile &file, int systemError)
{
    const QString text = file.errorString();
    if (!text.isEmpty() && text != QLatin1String("Unknown error"))
        return text;
    if (systemError != 0)
        return QString::fromLocal8Bit(std::strerror(systemError));
    return QStringLiteral("the system gave no reason");
}

bool fail(QString *error, const QString &path, const QString &why)
{
    if (error)
        *error = QStringLiteral("Cannot write \"%1\": %2").arg(path, why);
    return false;
}

} // namespace

bool OssFileWriter::writeAtomically(const QString &path, const QList<QByteArray> &parts,
                                    QString *error, const QString &backupSuffix)
{
    QSaveFile file(path);
    // Unbuffered: a write that does not fit fails at once, with its reason, instead of later
    // inside the commit.
    errno = 0;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return fail(error, path, reason(file, errno));
    for (const QByteArray &part : parts) {
        errno = 0;
        if (file.write(part) != part.size()) {
            const int systemError = errno;
            const QString why = reason(file, systemError);
            file.cancelWriting();
            return fail(error, path, why);
        }
    }
    if (!backupSuffix.isEmpty() && QFileInfo::exists(path)) {
        const QString backup = path + backupSuffix;
        QFile::remove(backup);
        if (!QFile::copy(path, backup)) {
            file.cancelWriting();
            return fail(
                error, path,
                QStringLiteral("the previous version cannot be kept as \"%1\"").arg(backup));
        }
    }
    errno = 0;
    if (!file.commit())
        return fail(error, path, reason(file, errno));
    return true;
}
