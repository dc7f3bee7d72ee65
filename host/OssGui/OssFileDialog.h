#pragma once

#include "OssGuiExport.h"

#include <QString>
#include <QStringList>

class QWidget;

// The host's file dialogs. The start folder comes from a resource path key and the chosen
// folder is remembered under that key. A queued answer (a path or a list of paths) is used
// instead of asking; without popups nothing is chosen.
class OSSGUI_EXPORT OssFileDialog
{
public:
    static QString getSaveFileName(QWidget *parent, const QString &title, const QString &filter,
                                   const QString &pathKey);
    static QStringList getOpenFileNames(QWidget *parent, const QString &title,
                                        const QString &filter, const QString &pathKey);
    // With false, Qt's own dialogs instead of the platform's (the default): a test can then
    // find the open dialog among the application's widgets and answer it.
    static void setUseNativeDialogs(bool useNative);
    static bool useNativeDialogs();
};
