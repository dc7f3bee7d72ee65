#include "OssLayerShaderManager.h"

#include "OssLayerShader.h"
#include "OssShaderNetwork.h"
#include "OssSnLayerShaderNode.h"

OssLayerShaderManager *OssLayerShaderManager::instance()
{
    static OssLayerShaderManager *manager = new OssLayerShaderManager;
    return manager;
}

OssLayerShaderManager::OssLayerShaderManager(QObject *parent) : QObject(parent) {}

bool OssLayerShaderManager::isSystemShaderNode(const OssSnBaseNode *node, bool includeProxies)
{
    if (!node)
        return false;
    if (node->hasTag(QStringLiteral("_currentMaterialProxy")))
        return includeProxies;
    return node->hasTag(QStringLiteral("_shader")) &&
           node->pathKey().startsWith(QLatin1String("_System/")) &&
           node->pathKey() != QLatin1String("_System/Material");
}

bool OssLayerShaderManager::isLayerShader(const OssSnBaseNode *node) const
{
    return qobject_cast<const OssSnLayerShaderNode *>(node) != nullptr;
}

OssSnBaseNode *OssLayerShaderManager::currentShader() const
{
    return m_current;
}

void OssLayerShaderManager::setCurrentShader(OssSnBaseNode *node)
{
    if (m_current == node)
        return;
    m_current = node;
    emit currentShaderChanged(node);
}

OssSnBaseNode *
OssLayerShaderManager::getCurrentMaterialProxyShader(const OssShaderNetwork *network) const
{
    if (!network)
        return nullptr;
    for (OssSnBaseNode *node : network->rootNetwork()->getAllNodes())
        if (node->hasTag(QStringLiteral("_currentMaterialProxy")))
            return node;
    return nullptr;
}

OssLayerShader *OssLayerShaderManager::getLayerShader(OssSnBaseNode *node) const
{
    if (!isLayerShader(node))
        return nullptr;
    if (auto *existing = node->findChild<OssLayerShader *>(QString(), Qt::FindDirectChildrenOnly))
        return existing;
    return new OssLayerShader(node);
}
