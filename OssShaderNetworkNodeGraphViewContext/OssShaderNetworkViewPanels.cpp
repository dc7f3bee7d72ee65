#include "OssGroupNodeKnobWidget.h"
#include "OssShaderNetworkUpgradeView.h"
#include "OssShaderNetworkView.h"

#include <OssDebug.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

namespace {

// Whether a node inside a group may have its attributes exposed as knobs of the group: not a
// port, viewer or system node of the subgraph, typed (or a group itself), with attributes.
bool passesExposureTest(const OssSnBaseNode *node)
{
    static const QStringList excluded{
        QStringLiteral("_input"), QStringLiteral("_output"), QStringLiteral("_viewer"),
        QStringLiteral("_bottomTransparency"), QStringLiteral("_shaderInput")};
    for (const QString &tag : excluded)
        if (node->hasTag(tag))
            return false;
    const QString uuid = node->versionUUID();
    if (uuid == QLatin1String("OSS_Misc_Set_Unlit") || uuid == QLatin1String("OSS_Misc_Set_Vector"))
        return false;
    if (uuid.isEmpty() && !node->hasTag(QStringLiteral("_group")))
        return false;
    return node->userAttributesExist();
}

} // namespace

void OssShaderNetworkView::upgradeSelectedNodeInfo()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OSS_DEBUG("[ -- ] Upgrade Selected Shader Node Info");
    QList<OssSnBaseNode *> nodes;
    for (OssSnBaseNode *node : m_network->getAllNodes())
        if (node->selected())
            nodes.append(node);
    upgradeNodeInfo(nodes);
}

void OssShaderNetworkView::upgradeAllNodeInfo()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OSS_DEBUG("[ -- ] Upgrade All Shader Node Info");
    upgradeNodeInfo(m_network->getAllNodes());
}

void OssShaderNetworkView::upgradeNodeInfo(QList<OssSnBaseNode *> Nodes)
{
    OssShaderNetworkUpgradeView dialog(this);
    dialog.populateNodes(Nodes);
    dialog.exec();
}

void OssShaderNetworkView::manageUserKnobs()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    auto *group = selected.size() == 1 ? qobject_cast<OssSnGroupNode *>(selected.first()) : nullptr;
    if (!group) {
        OSS_DEBUG("[ !! ] Select one group node to manage its knobs");
        return;
    }
    OssGroupNodeKnobDialog dialog(group);
    dialog.resize(600, 400);
    dialog.exec();
}

void OssShaderNetworkView::exposeNodeProperties()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssSnGroupNode *group = m_network->parentGroupNode();
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    if (!group || selected.size() != 1 || !passesExposureTest(selected.first())) {
        OSS_DEBUG("[ !! ] Select one node with attributes inside a group to expose its "
                  "properties");
        return;
    }
    OssSnBaseNode *node = selected.first();
    int created = 0;
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Expose Node Properties"));
        for (const QString &attribute : node->nodeAttributeNames()) {
            const QString name = node->nodeAttributeNameAsUserAttributeName(attribute);
            if (name.startsWith(QLatin1Char('_')))
                continue;
            if (!group->createKnob(node, name).isEmpty())
                ++created;
        }
    }
    if (created > 0)
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}
