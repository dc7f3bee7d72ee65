#include "OssLayerManager.h"

#include "OssLayerShaderManager.h"
#include "OssSnBaseNode.h"

bool OssLayerManager::connectNodeToCurrentMaterialProxy(OssShaderNetwork *network,
                                                        OssSnBaseNode *node,
                                                        const QString &outputPoint, const QString &)
{
    OssSnBaseNode *proxy =
        OssLayerShaderManager::instance()->getCurrentMaterialProxyShader(network);
    if (!proxy || !node || proxy->inputNames().isEmpty())
        return false;
    return proxy->connectInput(proxy->inputNames().first(), node, outputPoint);
}
