#include "OssShadingGroup.h"

#include "OssChannel.h"
#include "OssEntity.h"
#include "OssProject.h"
#include "OssShaderNetwork.h"

#include <OssDeserializer.h>
#include <OssSerializer.h>

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

void OssShadingGroup::insertChannelDirect(OssChannel *channel)
{
    if (!channel || m_channels.contains(channel))
        return;
    channel->setParent(this);
    m_channels.append(channel);
}

bool OssShadingGroup::takeChannelDirect(OssChannel *channel)
{
    if (!m_channels.removeOne(channel))
        return false;
    channel->setParent(nullptr);
    return true;
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
