#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

#include <QPointer>
#include <QString>

class OssChannel;

// A node that shows an image set (a paintable channel).
class OSSCOREMODULES_EXPORT OssSnImageSetNodeBase : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString imageSetName READ imageSetName WRITE setImageSetName)
public:
    using OssSnBaseNode::OssSnBaseNode;
    // The attached channel, or the shading group's channel of the saved image-set name.
    OssChannel *imageSet() const;
    void setImageSet(OssChannel *imageSet, bool notify = true);
    QString imageSetName() const;
    void setImageSetName(const QString &name) { m_imageSetName = name; }
    // Properties that the channel manages are read-only in the panel.
    bool enablePropertiesBasedOnManagedByChannel();

signals:
    void imageSetChanged();

private:
    QPointer<OssChannel> m_imageSet;
    QString m_imageSetName;
};
