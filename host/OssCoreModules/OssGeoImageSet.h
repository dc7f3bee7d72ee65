#pragma once

#include "OssChannel.h"
#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QPointer>

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
