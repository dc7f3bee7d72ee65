#include "OssTeleportNodeManager.h"

#include "OssShaderNetwork.h"
#include "OssSnBroadcastTeleportNode.h"
#include "OssSnReceiverTeleportNode.h"

OssTeleportNodeManager::OssTeleportNodeManager(const OssShaderNetwork *rootNetwork)
    : m_network(rootNetwork)
{}

OssSnBroadcastTeleportNode *
OssTeleportNodeManager::broadcastNodeForChannel(const QString &channel) const
{
    for (OssSnBaseNode *node : m_network->getAllNodes())
        if (auto *broadcast = qobject_cast<OssSnBroadcastTeleportNode *>(node))
            if (!channel.isEmpty() && broadcast->channelName() == channel)
                return broadcast;
    return nullptr;
}

QList<OssSnReceiverTeleportNode *>
OssTeleportNodeManager::receiversOfChannel(const QString &channel) const
{
    QList<OssSnReceiverTeleportNode *> receivers;
    for (OssSnBaseNode *node : m_network->getAllNodes())
        if (auto *receiver = qobject_cast<OssSnReceiverTeleportNode *>(node))
            if (!channel.isEmpty() && receiver->channelName() == channel)
                receivers.append(receiver);
    return receivers;
}
