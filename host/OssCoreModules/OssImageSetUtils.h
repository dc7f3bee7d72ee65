#pragma once

#include "OssCoreModulesExport.h"

#include <QSize>
#include <QString>

class OssChannel;
class OssGeoImageSet;
class OssShadingGroup;
class OssSnBaseNode;

// Image sets made and filled by bakes and exports, as undoable host operations.
class OSSCOREMODULES_EXPORT OssImageSetUtils
{
public:
    // A new image set of the group named Name (made unique) with Source's pixel type, size and
    // colour space; one undo step.
    static OssChannel *duplicateImageSet(OssShadingGroup *group, const OssChannel *source,
                                         const QString &name);
    // A new image set of the group made from a geo-channel's settings (pixel type from its
    // internal format, colour space from its configuration) at Size; one undo step.
    static OssChannel *createImageSetFromGeoChannel(OssShadingGroup *group,
                                                    const OssGeoImageSet *geoChannel,
                                                    const QString &name, const QSize &size);
    // Renders an output point of Node into the image set; one undo step. The host has no
    // renderer: the content becomes the digest of everything upstream that shapes the result.
    static void bake(OssSnBaseNode *node, const QString &outputPoint, OssChannel *imageSet);
    // Writes a rendered result into the image set; one undo step.
    static void writeContent(OssChannel *imageSet, const QString &content);
    // The group's image set of that name, made (one undo step) when there is none.
    static OssChannel *imageSetNamed(OssShadingGroup *group, const QString &name);
    static QString resultDigest(const OssSnBaseNode *node, const QString &outputPoint);
    // The largest size of the image sets painted upstream of Node, or the default 2048 square.
    static QSize queryMaximumRequiredTextureResolutions(const OssSnBaseNode *node);
    // The geo-channel shows the image set; one undo step.
    static void setGeoChannelImageSet(OssGeoImageSet *geoChannel, OssChannel *imageSet);
};
