#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

// A layer shader (and the stack shader kind).
class OSSCOREMODULES_EXPORT OssSnLayerShaderNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    using OssSnBaseNode::OssSnBaseNode;
    bool isStackShader() const { return hasTag(QStringLiteral("_stackShader")); }
};
