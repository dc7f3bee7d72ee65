#include "OssIcon.h"

#include "OssResourceInfo.h"

#include <QFileInfo>

QString OssIcon::getIconPath(const QString &fileName)
{
    return OssResourceInfo::instance()->iconPath() + QLatin1Char('/') + fileName;
}

QIcon OssIcon::createIconFromFilename(const QString &fileName)
{
    const QString path = getIconPath(fileName);
    return QFileInfo::exists(path) ? QIcon(path) : QIcon();
}

QPixmap OssIcon::createPixmapFromFilename(const QString &fileName)
{
    const QString path = getIconPath(fileName);
    return QFileInfo::exists(path) ? QPixmap(path) : QPixmap();
}
