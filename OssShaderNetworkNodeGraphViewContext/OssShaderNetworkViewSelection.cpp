// Selection navigation of OssShaderNetworkView: walks from the selected nodes along the graph.
// Selection is set on the business nodes; the scene follows them. Nothing here pans, zooms or
// records an undo step.

#include "OssShaderNetworkView.h"

#include <OssDebug.h>
#include <OssLayerShaderManager.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkUtils.h>
#include <OssSnBaseNode.h>

#include <QGraphicsScene>

#include <functional>

namespace {

using Gather = std::function<QList<OssSnBaseNode *>(OssSnBaseNode *)>;

QList<OssSnBaseNode *> nonNull(QList<OssSnBaseNode *> nodes)
{
    nodes.removeAll(nullptr);
    return nodes;
}

QList<OssSnBaseNode *> one(OssSnBaseNode *node)
{
    return node ? QList<OssSnBaseNode *>{node} : QList<OssSnBaseNode *>{};
}

} // namespace

QList<OssSnBaseNode *> OssShaderNetworkView::selectedBusinessNodes() const
{
    QList<OssSnBaseNode *> nodes;
    if (!scene())
        return nodes;
    for (QGraphicsItem *item : scene()->selectedItems()) {
        OssNgNode *gui = OssNgNode::fromItem(item);
        auto *node = gui ? qobject_cast<OssSnBaseNode *>(gui->parent()) : nullptr;
        if (node && !OssLayerShaderManager::isSystemShaderNode(node, true))
            nodes.append(node);
    }
    return nodes;
}

void OssShaderNetworkView::addToSelection(const Gather &gather, bool sameNetworkOnly)
{
    for (OssSnBaseNode *start : selectedBusinessNodes())
        for (OssSnBaseNode *node : gather(start))
            if (!sameNetworkOnly || node->network() == start->network())
                node->setSelected(true);
}

void OssShaderNetworkView::replaceSelection(const Gather &gather)
{
    const QList<OssSnBaseNode *> starts = selectedBusinessNodes();
    QList<OssSnBaseNode *> gathered;
    for (OssSnBaseNode *start : starts)
        gathered += gather(start);
    // At the graph's end the selection stays where it is rather than falling to nothing.
    if (gathered.isEmpty())
        return;
    for (OssSnBaseNode *start : starts)
        start->setSelected(false);
    for (OssSnBaseNode *node : qAsConst(gathered))
        node->setSelected(true);
}

void OssShaderNetworkView::selectAllUpstream()
{
    addToSelection(
        [](OssSnBaseNode *node) {
            return OssShaderNetworkUtils::getUpstreamNodes(node, true, true, false);
        },
        true);
}

void OssShaderNetworkView::selectAllDownstream()
{
    addToSelection(
        [](OssSnBaseNode *node) {
            return OssShaderNetworkUtils::getDownstreamNodes(node, true, true);
        },
        true);
}

void OssShaderNetworkView::selectStreamUpstream()
{
    addToSelection(
        [](OssSnBaseNode *node) {
            return OssShaderNetworkUtils::getUpstreamNodes(node, true, false, false);
        },
        true);
}

void OssShaderNetworkView::selectStreamDownstream()
{
    addToSelection(
        [](OssSnBaseNode *node) {
            return OssShaderNetworkUtils::getDownstreamNodes(node, true, false);
        },
        true);
}

void OssShaderNetworkView::selectUpstream()
{
    replaceSelection([](OssSnBaseNode *node) { return nonNull(node->inputNodes()); });
}

void OssShaderNetworkView::selectDownstream()
{
    replaceSelection([](OssSnBaseNode *node) { return nonNull(node->outputNodes()); });
}

void OssShaderNetworkView::addSelectUpstream()
{
    addToSelection([](OssSnBaseNode *node) { return nonNull(node->inputNodes()); }, false);
}

void OssShaderNetworkView::addSelectDownstream()
{
    addToSelection([](OssSnBaseNode *node) { return nonNull(node->outputNodes()); }, false);
}

void OssShaderNetworkView::selectNextSibling()
{
    replaceSelection(
        [](OssSnBaseNode *node) { return one(OssShaderNetworkUtils::nextSibling(node)); });
}

void OssShaderNetworkView::selectPrevSibling()
{
    replaceSelection(
        [](OssSnBaseNode *node) { return one(OssShaderNetworkUtils::prevSibling(node)); });
}

void OssShaderNetworkView::addSelectNextSibling()
{
    addToSelection(
        [](OssSnBaseNode *node) { return one(OssShaderNetworkUtils::nextSibling(node)); }, false);
}

void OssShaderNetworkView::addSelectPrevSibling()
{
    addToSelection(
        [](OssSnBaseNode *node) { return one(OssShaderNetworkUtils::prevSibling(node)); }, false);
}

void OssShaderNetworkView::selectBetween()
{
    const QList<OssSnBaseNode *> starts = selectedBusinessNodes();
    if (starts.size() < 2)
        return;
    for (OssSnBaseNode *node : OssShaderNetworkUtils::nodesBetween(starts))
        if (node)
            node->setSelected(true);
}

void OssShaderNetworkView::selectAll()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    for (OssSnBaseNode *node : m_network->nodes())
        if (!OssLayerShaderManager::isSystemShaderNode(node, true))
            node->setSelected(true);
}
