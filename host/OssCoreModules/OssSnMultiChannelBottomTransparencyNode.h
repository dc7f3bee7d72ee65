#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnMultiChannelGroupNode.h"

// A multi-channel group that sets the transparency at the bottom of the layer stack.
class OSSCOREMODULES_EXPORT OssSnMultiChannelBottomTransparencyNode
    : public OssSnMultiChannelGroupNode
{
    Q_OBJECT
public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
};
