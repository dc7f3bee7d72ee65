#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnTeleportNode.h"

// Sends its input to the receivers of its channel.
class OSSCOREMODULES_EXPORT OssSnBroadcastTeleportNode : public OssSnTeleportNode
{
    Q_OBJECT
public:
    using OssSnTeleportNode::OssSnTeleportNode;
};
