#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

#include <QString>

class OssTeleportNodeManager;

// Common part of teleport broadcast and receiver nodes: a channel name, kept in the node
// attribute "ChannelName".
class OSSCOREMODULES_EXPORT OssSnTeleportNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    explicit OssSnTeleportNode(QObject *parent = nullptr);
    QString channelName() const;
    // One undo step when Undoable.
    void setChannelName(const QString &name, bool undoable = true);
    OssTeleportNodeManager *teleportNodeManager() const;

signals:
    void channelNameChanged(QString name);
    void updateState();
};
