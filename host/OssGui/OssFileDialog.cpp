#include "OssFileDialog.h"

#include <OssApplication.h>
#include <OssResourceInfo.h>

#include <QFileDialog>
#include <QFileInfo>

namespace {

bool s_useNative = true;

QFileDialog::Options dialogOptions()
{
    return s_useNative ? QFileDialog::Options() : QFileDialog::DontUseNativeDialog;
}

QString startFolder(const QString &pathKey)
{
    return OssResourceInfo::instance()->path(pathKey);
}

void rememberFolder(const QString &pathKey, const QString &file)
{
    if (!file.isEmpty())
        OssResourceInfo::instance()->setPath(pathKey, QFileInfo(file).absolutePath());
}

} // namespace

QString OssFileDialog::getSaveFileName(QWidget *parent, const QString &title, const QString &filter,
                                       const QString &pathKey)
{
    QString file;
    if (OssApplication::hasDialogAnswer())
        file = OssApplication::takeDialogAnswer().toString();
    else if (OssApplication::popupsAllowed())
        file = QFileDialog::getSaveFileName(parent, title, startFolder(pathKey), filter, nullptr,
                                            dialogOptions());
    rememberFolder(pathKey, file);
    return file;
}

QStringList OssFileDialog::getOpenFileNames(QWidget *parent, const QString &title,
                                            const QString &filter, const QString &pathKey)
{
    QStringList files;
    if (OssApplication::hasDialogAnswer())
        files = OssApplication::takeDialogAnswer().toStringList();
    else if (OssApplication::popupsAllowed())
        files = QFileDialog::getOpenFileNames(parent, title, startFolder(pathKey), filter, nullptr,
                                              dialogOptions());
    if (!files.isEmpty())
        rememberFolder(pathKey, files.first());
    return files;
}

void OssFileDialog::setUseNativeDialogs(bool useNative)
{
    s_useNative = useNative;
}

bool OssFileDialog::useNativeDialogs()
{
    return s_useNative;
}
