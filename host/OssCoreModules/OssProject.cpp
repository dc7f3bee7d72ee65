#include "OssProject.h"

#include "OssShaderNetwork.h"

#include <OssDeserializer.h>
#include <OssSerializer.h>

OssChannel::OssChannel(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name)
{}

OssShadingGroup *OssChannel::shadingGroup() const
{
    return qobject_cast<OssShadingGroup *>(parent());
}

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

OssGeoImageSet::OssGeoImageSet(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name)
{}

OssEntity *OssGeoImageSet::entity() const
{
    return qobject_cast<OssEntity *>(parent());
}

void OssGeoImageSet::setImageSet(OssChannel *imageSet)
{
    if (m_imageSet == imageSet)
        return;
    m_imageSet = imageSet;
    m_imageSetName = imageSet ? imageSet->name() : QString();
    emit imageSetChanged(imageSet);
}

OssShadingGroup::OssShadingGroup(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name), m_network(new OssShaderNetwork(name, this))
{}

OssEntity *OssShadingGroup::entity() const
{
    const auto *project = qobject_cast<const OssProject *>(parent());
    return project ? project->entity(m_entityName) : nullptr;
}

OssChannel *OssShadingGroup::channel(const QString &name) const
{
    for (OssChannel *channel : m_channels)
        if (channel->name() == name)
            return channel;
    return nullptr;
}

OssChannel *OssShadingGroup::addChannel(const QString &name)
{
    if (OssChannel *existing = channel(name))
        return existing;
    auto *created = new OssChannel(name, this);
    m_channels.append(created);
    return created;
}

bool OssShadingGroup::saveObjects(OssSerializer &serializer)
{
    for (OssChannel *channel : qAsConst(m_channels))
        if (!serializer.saveObject(channel, QStringLiteral("channel")))
            return false;
    return serializer.saveObject(m_network, QStringLiteral("network"));
}

OssSerializableObject *OssShadingGroup::onLoadSubObject(OssDeserializer &, const QString &name,
                                                        const QString &)
{
    if (name == QLatin1String("network"))
        return m_network;
    if (name == QLatin1String("channel")) {
        auto *created = new OssChannel(QString(), this);
        m_channels.append(created);
        return created;
    }
    return nullptr;
}

OssProject::OssProject(QObject *parent) : OssSerializableObject(parent) {}

OssShadingGroup *OssProject::addShadingGroup(const QString &name, const QString &entityName)
{
    auto *group = new OssShadingGroup(name, this);
    group->setEntityName(entityName);
    addEntity(entityName);
    m_shadingGroups.append(group);
    return group;
}

OssEntity *OssProject::entity(const QString &name) const
{
    for (OssEntity *candidate : m_entities)
        if (candidate->name() == name)
            return candidate;
    return nullptr;
}

OssEntity *OssProject::addEntity(const QString &name)
{
    if (OssEntity *existing = entity(name))
        return existing;
    auto *created = new OssEntity(name, this);
    m_entities.append(created);
    return created;
}

QList<OssShaderNetwork *> OssProject::networks() const
{
    QList<OssShaderNetwork *> networks;
    for (OssShadingGroup *group : m_shadingGroups)
        networks.append(group->network());
    return networks;
}

QStringList OssProject::loadWarnings() const
{
    QStringList warnings;
    for (OssShaderNetwork *network : networks())
        warnings.append(network->loadWarnings());
    return warnings;
}

bool OssProject::saveObjects(OssSerializer &serializer)
{
    for (OssEntity *entity : qAsConst(m_entities))
        if (!serializer.saveObject(entity, QStringLiteral("entity")))
            return false;
    for (OssShadingGroup *group : qAsConst(m_shadingGroups))
        if (!serializer.saveObject(group, QStringLiteral("shadingGroup")))
            return false;
    return true;
}

OssSerializableObject *OssProject::onLoadSubObject(OssDeserializer &, const QString &name,
                                                   const QString &)
{
    if (name == QLatin1String("entity")) {
        auto *created = new OssEntity(QString(), this);
        m_entities.append(created);
        return created;
    }
    if (name != QLatin1String("shadingGroup"))
        return nullptr;
    auto *group = new OssShadingGroup(QString(), this);
    m_shadingGroups.append(group);
    return group;
}
