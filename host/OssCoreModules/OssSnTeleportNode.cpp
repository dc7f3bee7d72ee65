#include "OssSnTeleportNode.h"

#include "OssShaderNetwork.h"
#include "OssTeleportNodeManager.h"

#include <QHash>

OssSnTeleportNode::OssSnTeleportNode(QObject *parent) : OssSnBaseNode(parent)
{
    connect(this, &OssSnBaseNode::nodeAttributeChanged, this,
            [this](const QString &name, const QVariant &value) {
                if (name != QLatin1String("ChannelName"))
                    return;
                emit channelNameChanged(value.toString());
                // Every teleport of the network may change state: a broadcast or receiver of a
                // channel came or went.
                if (OssShaderNetwork *owner = network())
                    for (OssSnBaseNode *node : owner->rootNetwork()->getAllNodes())
                        if (auto *teleport = qobject_cast<OssSnTeleportNode *>(node))
                            emit teleport->updateState();
            });
}

QString OssSnTeleportNode::channelName() const
{
    return nodeAttributeValue(QStringLiteral("ChannelName")).toString();
}

void OssSnTeleportNode::setChannelName(const QString &name, bool undoable)
{
    setNodeAttribute(QStringLiteral("ChannelName"), name, undoable);
}

OssTeleportNodeManager *OssSnTeleportNode::teleportNodeManager() const
{
    OssShaderNetwork *owner = network();
    if (!owner)
        return nullptr;
    static QHash<const OssShaderNetwork *, OssTeleportNodeManager *> managers;
    OssShaderNetwork *root = owner->rootNetwork();
    OssTeleportNodeManager *&manager = managers[root];
    if (!manager) {
        manager = new OssTeleportNodeManager(root);
        QObject::connect(root, &QObject::destroyed, [root] { delete managers.take(root); });
    }
    return manager;
}
