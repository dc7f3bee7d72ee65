#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnMultiChannelGroupNode.h"

// A multi-channel merge: each channel blends its over stream onto its base stream.
class OSSCOREMODULES_EXPORT OssSnMultiChannelMergeNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT
public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
};
