#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QList>

class OssGeoImageSet;

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
