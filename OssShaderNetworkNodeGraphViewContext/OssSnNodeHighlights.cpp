#include "OssSnNodeHighlights.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssNgEdge.h>
#include <OssObjectReferenceManager.h>
#include <OssShaderNetwork.h>
#include <OssSnChannelInputNode.h>

void OssSnNodeHighlights::showDebugColours(const OssDebugNodeColours &rNewNodes,
                                           const OssDebugInputColours &rNewInputs,
                                           const OssDebugNodeColours &rOldNodes,
                                           const OssDebugInputColours &rOldInputs)
{
    OssObjectReferenceManager *references = OssObjectReferenceManager::instance();
    const auto guiOf = [references](const QString &reference) {
        return OssSnNodeGraphViewContext::guiNodeOf(
            qobject_cast<OssSnBaseNode *>(references->getPointer(reference)));
    };
    for (auto it = rOldNodes.cbegin(); it != rOldNodes.cend(); ++it)
        if (OssNgNode *gui = guiOf(it.key()))
            gui->setDebug(false);
    for (auto it = rOldInputs.cbegin(); it != rOldInputs.cend(); ++it)
        if (OssNgNode *gui = guiOf(it.key()))
            for (auto input = it.value().cbegin(); input != it.value().cend(); ++input)
                if (OssNgEdge *edge = gui->input(input.key()))
                    edge->setDebug(false);
    for (auto it = rNewNodes.cbegin(); it != rNewNodes.cend(); ++it)
        if (OssNgNode *gui = guiOf(it.key())) {
            gui->setDebugColor(it.value());
            gui->setDebug(true);
        }
    for (auto it = rNewInputs.cbegin(); it != rNewInputs.cend(); ++it)
        if (OssNgNode *gui = guiOf(it.key()))
            for (auto input = it.value().cbegin(); input != it.value().cend(); ++input)
                if (OssNgEdge *edge = gui->input(input.key())) {
                    edge->setDebugColor(input.value());
                    edge->setDebug(true);
                }
}

void OssSnNodeHighlights::highlightChannel(OssChannel *pImageSet)
{
    if (!pImageSet)
        return;
    OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentShaderNetwork();
    if (!network) {
        OSS_DEBUG("pNetwork is NULL");
        return;
    }
    OssShaderNetwork *root = network->rootNetwork();
    if (!root) {
        OSS_DEBUG("pRootNetwork is NULL");
        return;
    }
    for (OssSnBaseNode *node : root->getAllNodes()) {
        auto *paint = qobject_cast<OssSnChannelInputNode *>(node);
        OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
        if (!paint || !gui)
            continue;
        gui->setHighlighted(paint->imageSet() == pImageSet);
        gui->update();
    }
}

void OssSnNodeHighlights::showHover(OssSnBaseNode *MouseOver, OssSnBaseNode *OldMouseOver)
{
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(MouseOver))
        gui->setHovered(true);
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(OldMouseOver))
        gui->setHovered(false);
}
