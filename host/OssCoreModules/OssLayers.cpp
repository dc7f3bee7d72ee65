#include "OssLayers.h"

#include "OssShaderNetwork.h"
#include "OssSnBaseNode.h"
#include "OssSnGroupNode.h"
#include "OssSnSpecialNodes.h"

#include <OssUndoManager.h>

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

bool OssLayerShaderUtils::isLayerShaderNode(const OssSnBaseNode *node)
{
    return OssLayerShaderManager::instance()->isLayerShader(node);
}

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

int OssLayerRefreshSuspensionManager::s_depth = 0;
int OssLayerRefreshSuspensionManager::s_heldBack = 0;
int OssLayerRefreshSuspensionManager::s_refreshes = 0;

void OssLayerRefreshSuspensionManager::requestRefresh()
{
    if (s_depth > 0)
        ++s_heldBack;
    else
        ++s_refreshes;
}

OssLayerRefreshSuspensionManager::RefreshStateSuspender::RefreshStateSuspender()
{
    ++s_depth;
}

OssLayerRefreshSuspensionManager::RefreshStateSuspender::~RefreshStateSuspender()
{
    if (--s_depth == 0 && s_heldBack > 0) {
        s_heldBack = 0;
        ++s_refreshes;
    }
}

bool OssLayerStreamUtils::isMergeNode(const OssSnBaseNode *node)
{
    return node && node->hasTag(QStringLiteral("_blend"));
}

bool OssLayerStreamUtils::isBaseInput(const OssSnBaseNode *node, const QString &input)
{
    return isMergeNode(node) || qobject_cast<const OssSnMultiChannelMergeNode *>(node)
               ? input == baseInputName(QString())
               : false;
}

QString OssLayerStreamUtils::baseInputName(const QString &)
{
    return QStringLiteral("Base");
}

QString OssLayerStreamUtils::overInputName(const QString &)
{
    return QStringLiteral("Over");
}
