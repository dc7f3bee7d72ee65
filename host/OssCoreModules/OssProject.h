#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QList>
#include <QPointer>

class OssShaderNetwork;
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

private:
    QString m_name;
    int m_type = UnsignedByte;
    int m_width = 2048;
    int m_height = 2048;
    QString m_colorSpace = QStringLiteral("sRGB");
};

class OssEntity;

// A geo-channel: an image set of an entity's geometry (ambient occlusion, curvature, ...) with
// the settings a new image set made from it copies.
class OSSCOREMODULES_EXPORT OssGeoImageSet : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(int bleed READ bleed WRITE setBleed)
    Q_PROPERTY(QString fileSpace READ fileSpace WRITE setFileSpace)
    Q_PROPERTY(QString fillColor READ fillColor WRITE setFillColor)
    Q_PROPERTY(QString colorSpaceConfiguration READ colorSpaceConfiguration WRITE
                   setColorSpaceConfiguration)
    Q_PROPERTY(int internalFormat READ internalFormat WRITE setInternalFormat)
    Q_PROPERTY(QString imageSetName READ imageSetName WRITE setImageSetName)
public:
    explicit OssGeoImageSet(const QString &name = QString(), QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    OssEntity *entity() const;
    int bleed() const { return m_bleed; }
    void setBleed(int bleed) { m_bleed = bleed; }
    QString fileSpace() const { return m_fileSpace; }
    void setFileSpace(const QString &space) { m_fileSpace = space; }
    QString fillColor() const { return m_fillColor; }
    void setFillColor(const QString &color) { m_fillColor = color; }
    QString colorSpaceConfiguration() const { return m_colorSpace; }
    void setColorSpaceConfiguration(const QString &configuration) { m_colorSpace = configuration; }
    int internalFormat() const { return m_internalFormat; }
    void setInternalFormat(int format) { m_internalFormat = format; }
    QString imageSetName() const { return m_imageSetName; }
    void setImageSetName(const QString &name) { m_imageSetName = name; }
    // The image set the geo-channel shows.
    void setImageSet(OssChannel *imageSet);
    OssChannel *imageSet() const { return m_imageSet; }

signals:
    void imageSetChanged(OssChannel *imageSet);

private:
    QString m_name;
    int m_bleed = 4;
    QString m_fileSpace = QStringLiteral("linear");
    QString m_fillColor = QStringLiteral("0 0 0 1");
    QString m_colorSpace = QStringLiteral("scalar");
    int m_internalFormat = 5121;
    QString m_imageSetName;
    QPointer<OssChannel> m_imageSet;
};

// A piece of geometry of the project, with its geo-channels; the node graph's root tab is
// named after it.
class OSSCOREMODULES_EXPORT OssEntity : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
public:
    explicit OssEntity(const QString &name = QString(), QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QList<OssGeoImageSet *> geoChannels() const { return m_geoChannels; }
    OssGeoImageSet *geoChannel(const QString &name) const;
    OssGeoImageSet *addGeoChannel(const QString &name);

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

private:
    QString m_name;
    QList<OssGeoImageSet *> m_geoChannels;
};

// A shading group: the geometry it shades (an entity of its project, by name), its shader
// network and its paint channels.
class OSSCOREMODULES_EXPORT OssShadingGroup : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(QString entityName READ entityName WRITE setEntityName)
public:
    explicit OssShadingGroup(const QString &name = QString(), QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString entityName() const { return m_entityName; }
    void setEntityName(const QString &name) { m_entityName = name; }
    OssEntity *entity() const;
    OssShaderNetwork *network() const { return m_network; }
    QList<OssChannel *> channels() const { return m_channels; }
    OssChannel *channel(const QString &name) const;
    OssChannel *addChannel(const QString &name);

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

private:
    QString m_name;
    QString m_entityName;
    OssShaderNetwork *m_network = nullptr;
    QList<OssChannel *> m_channels;
};

// An open project: its shading groups, each with a network.
class OSSCOREMODULES_EXPORT OssProject : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
public:
    explicit OssProject(QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString filePath() const { return m_filePath; }
    void setFilePath(const QString &path) { m_filePath = path; }

    QList<OssEntity *> entities() const { return m_entities; }
    OssEntity *entity(const QString &name) const;
    // The entity of that name, made when missing.
    OssEntity *addEntity(const QString &name);
    QList<OssShadingGroup *> shadingGroups() const { return m_shadingGroups; }
    OssShadingGroup *addShadingGroup(const QString &name, const QString &entityName);
    QList<OssShaderNetwork *> networks() const;
    QStringList loadWarnings() const;

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

private:
    QString m_name;
    QString m_filePath;
    QList<OssEntity *> m_entities;
    QList<OssShadingGroup *> m_shadingGroups;
};
