#include "OssLayerShader.h"

#include "OssSnLayerShaderNode.h"

OssLayerShader::OssLayerShader(OssSnBaseNode *node) : QObject(node) {}

OssSnBaseNode *OssLayerShader::node() const
{
    return qobject_cast<OssSnBaseNode *>(parent());
}

bool OssLayerShader::isStackShader() const
{
    const auto *shader = qobject_cast<const OssSnLayerShaderNode *>(node());
    return shader &&
           (shader->isStackShader() || shader->pathKey() == QLatin1String("Shaders/Stack"));
}
