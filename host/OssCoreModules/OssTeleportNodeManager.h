#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QString>

class OssShaderNetwork;
class OssSnBroadcastTeleportNode;
class OssSnReceiverTeleportNode;

// Finds the broadcasts and receivers of teleport channels among a root network's nodes.
class OSSCOREMODULES_EXPORT OssTeleportNodeManager
{
public:
    explicit OssTeleportNodeManager(const OssShaderNetwork *rootNetwork);
    OssSnBroadcastTeleportNode *broadcastNodeForChannel(const QString &channel) const;
    QList<OssSnReceiverTeleportNode *> receiversOfChannel(const QString &channel) const;

private:
    const OssShaderNetwork *m_network;
};
