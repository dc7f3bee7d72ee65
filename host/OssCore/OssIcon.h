#pragma once

#include "OssCoreExport.h"

#include <QIcon>
#include <QPixmap>
#include <QString>

// Host icons by file name, from the resource icon folder.
class OSSCORE_EXPORT OssIcon
{
public:
    // Full path of an icon file in the host's icon folder.
    static QString getIconPath(const QString &fileName);
    // An icon from a host icon file; an empty icon when the file is missing.
    static QIcon createIconFromFilename(const QString &fileName);
    static QPixmap createPixmapFromFilename(const QString &fileName);
};
