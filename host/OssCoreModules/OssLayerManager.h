#pragma once

#include "OssCoreModulesExport.h"

#include <QString>

class OssShaderNetwork;
class OssSnBaseNode;

// Operations of the layer stack on shader networks.
class OSSCOREMODULES_EXPORT OssLayerManager
{
public:
    // Connects Node's output point to the network's current-material proxy (one undo step).
    static bool connectNodeToCurrentMaterialProxy(OssShaderNetwork *network, OssSnBaseNode *node,
                                                  const QString &outputPoint, const QString &text);
};
