#include "OssLayerShaderUtils.h"

#include "OssLayerShaderManager.h"

bool OssLayerShaderUtils::isLayerShaderNode(const OssSnBaseNode *node)
{
    return OssLayerShaderManager::instance()->isLayerShader(node);
}
