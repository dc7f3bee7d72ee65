// Commands of OssShaderNetworkView on the selected nodes' GUI: opening a group's subgraph or the
// nodes' properties, and the port lists. None changes the network.

#include "OssShaderNetworkView.h"

#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssLayerShaderManager.h>
#include <OssNgExtendedNode.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>

void OssShaderNetworkView::openGroupNodeSubgraph()
{
    for (OssNgNode *gui : sortedSelection()) {
        auto *group = qobject_cast<OssSnGroupNode *>(gui->parent());
        if (!group)
            continue;
        if (auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
                OssSnNodeGraphViewContext::of(group)))
            context->showGroupNodeTab();
        return;
    }
}

void OssShaderNetworkView::openNodeProperties()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    for (OssSnBaseNode *node : m_network->selectedNodes())
        if (!OssLayerShaderManager::isSystemShaderNode(node, true))
            emit nodeDoubleClicked(node);
}

void OssShaderNetworkView::togglePortVisibility()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    for (OssSnBaseNode *node : m_network->selectedNodes()) {
        OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node);
        if (!context || !context->guiNode()) {
            OSS_DEBUG("OssShaderNetworkView::togglePortVisibility NULL NodeGraphView context while "
                      "obtaining selected nodes");
            continue;
        }
        context->guiNode()->togglePortsVisible();
    }
}

void OssShaderNetworkView::cyclePortListMode()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    for (OssSnBaseNode *node : m_network->selectedNodes()) {
        OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node);
        if (!context) {
            OSS_DEBUG("OssShaderNetworkView::cyclePortListMode NULL NodeGraphView context while "
                      "obtaining selected nodes");
            continue;
        }
        if (OssNgExtendedNode *extended = context->extendedNode())
            extended->cyclePortListMode();
    }
}
