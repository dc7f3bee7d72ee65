#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

class OssShadingGroup;

// A paint channel (an image set of a shading group): name, pixel type and size.
class OSSCOREMODULES_EXPORT OssChannel : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(int channelType READ channelType WRITE setChannelType)
    Q_PROPERTY(int width READ width WRITE setWidth)
    Q_PROPERTY(int height READ height WRITE setHeight)
    Q_PROPERTY(QString colorSpace READ colorSpace WRITE setColorSpace)
    Q_PROPERTY(QString content READ content WRITE setContent)
public:
    // GL type codes of channel pixels.
    enum : int
    {
        UnsignedByte = 5121,
        HalfFloat = 5131,
        Float = 5126
    };

    explicit OssChannel(const QString &name = QString(), QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    int channelType() const { return m_type; }
    void setChannelType(int type) { m_type = type; }
    int width() const { return m_width; }
    void setWidth(int width) { m_width = width; }
    int height() const { return m_height; }
    void setHeight(int height) { m_height = height; }
    QString colorSpace() const { return m_colorSpace; }
    void setColorSpace(const QString &colorSpace) { m_colorSpace = colorSpace; }
    OssShadingGroup *shadingGroup() const;
    // What was rendered into the image set. The host has no renderer: a bake writes a digest
    // of the graph that made the result, so equal graphs give equal content.
    QString content() const { return m_content; }
    void setContent(const QString &content) { m_content = content; }

private:
    QString m_name;
    int m_type = UnsignedByte;
    int m_width = 2048;
    int m_height = 2048;
    QString m_colorSpace = QStringLiteral("sRGB");
    QString m_content;
};
