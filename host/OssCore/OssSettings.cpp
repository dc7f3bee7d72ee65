#include "OssSettings.h"

#include <QDir>

namespace {
QString &overrideDirectory()
{
    static QString directory;
    return directory;
}
} // namespace

OssSettings::OssSettings(QObject *parent)
    : QSettings(storageFile().isEmpty()
                    ? QSettings(QStringLiteral("Ossa"), QStringLiteral("Ossa")).fileName()
                    : storageFile(),
                storageFile().isEmpty() ? QSettings::NativeFormat : QSettings::IniFormat, parent)
{}

void OssSettings::setStorageDirectory(const QString &directory)
{
    overrideDirectory() = directory;
}

QString OssSettings::storageFile()
{
    QString directory = overrideDirectory();
    if (directory.isEmpty())
        directory = qEnvironmentVariable("OSSA_SETTINGS_DIR");
    if (directory.isEmpty())
        return {};
    QDir().mkpath(directory);
    return QDir(directory).filePath(QStringLiteral("Ossa.ini"));
}
