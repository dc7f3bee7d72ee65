#include "OssEntity.h"

#include "OssGeoImageSet.h"

#include <OssDeserializer.h>
#include <OssSerializer.h>

OssEntity::OssEntity(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name)
{}

OssGeoImageSet *OssEntity::geoChannel(const QString &name) const
{
    for (OssGeoImageSet *channel : m_geoChannels)
        if (channel->name() == name)
            return channel;
    return nullptr;
}

OssGeoImageSet *OssEntity::addGeoChannel(const QString &name)
{
    if (OssGeoImageSet *existing = geoChannel(name))
        return existing;
    auto *created = new OssGeoImageSet(name, this);
    m_geoChannels.append(created);
    return created;
}

bool OssEntity::saveObjects(OssSerializer &serializer)
{
    for (OssGeoImageSet *channel : qAsConst(m_geoChannels))
        if (!serializer.saveObject(channel, QStringLiteral("geoChannel")))
            return false;
    return true;
}

OssSerializableObject *OssEntity::onLoadSubObject(OssDeserializer &, const QString &name,
                                                  const QString &)
{
    if (name != QLatin1String("geoChannel"))
        return nullptr;
    auto *created = new OssGeoImageSet(QString(), this);
    m_geoChannels.append(created);
    return created;
}
