#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnTeleportNode.h"

// Gives out what the broadcast of its channel receives.
class OSSCOREMODULES_EXPORT OssSnReceiverTeleportNode : public OssSnTeleportNode
{
    Q_OBJECT
public:
    using OssSnTeleportNode::OssSnTeleportNode;
};
