#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

#include <QString>

// Reads a geo-channel of the geometry entity.
class OSSCOREMODULES_EXPORT OssSnGeoChannelNode : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString geoChannelName READ geoChannelName WRITE setGeoChannelName)
public:
    using OssSnBaseNode::OssSnBaseNode;
    QString geoChannelName() const { return m_geoChannelName; }
    void setGeoChannelName(const QString &name);
    bool imageSetValid() const { return m_imageSetValid; }
    void setImageSetValid(bool valid);

signals:
    void geoChannelNameChanged(QString name);
    void imageSetValidChanged(bool valid);

private:
    QString m_geoChannelName;
    bool m_imageSetValid = false;
};
