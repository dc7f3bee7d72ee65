#pragma once

#include "OssCoreExport.h"

#include <QSettings>

// The host's settings store. By default it is the user's settings of the application; the
// environment variable OSSA_SETTINGS_DIR or setStorageDirectory() redirect it to an INI file in
// a folder of the caller's choosing, so tests and headless runs never touch real settings.
class OSSCORE_EXPORT OssSettings : public QSettings
{
    Q_OBJECT
public:
    explicit OssSettings(QObject *parent = nullptr);

    // An empty path goes back to the environment variable or the user's settings.
    static void setStorageDirectory(const QString &directory);
    // The INI file used when redirected, or an empty string.
    static QString storageFile();
};
