#pragma once

#include "OssCoreModulesExport.h"

class OssSnBaseNode;

// Questions about layer shader nodes asked without the manager at hand.
class OSSCOREMODULES_EXPORT OssLayerShaderUtils
{
public:
    static bool isLayerShaderNode(const OssSnBaseNode *node);
};
