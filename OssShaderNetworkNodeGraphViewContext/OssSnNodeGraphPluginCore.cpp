#include "OssSnNodeGraphPluginCore.h"

#include "OssDebug.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeCreationActions.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnScriptObjects.h"

#include <OssActionTreeManager.h>
#include <OssShaderNetworkManager.h>

#include <QAction>
#include <QApplication>

OssSnNodeGraphPluginCore::OssSnNodeGraphPluginCore(QObject *parent) : QObject(parent) {}

OssSnNodeGraphPluginCore::~OssSnNodeGraphPluginCore() = default;

bool OssSnNodeGraphPluginCore::start()
{
    // The banner alone carries neither the information nor the warning prefix.
    OssDebug(__FILE__, __LINE__, "[ Plugin ] Shader Network - Node Graph View Context");
    OssSnNodeGraphViewContextManager::instance();
    // The node-creation actions first, then the fixed node-graph actions, then the script
    // factories (the palette's first).
    createNodeCreationActions();
    createFixedActions();
    OssSnScriptObjects::registerFactories();
    connect(OssShaderNetworkManager::instance(), SIGNAL(registeredNodePopulationChanged()), this,
            SLOT(createNodeCreationActions()));
    return true;
}

void OssSnNodeGraphPluginCore::createNodeCreationActions()
{
    OssSnNodeCreationActions::create(this, SLOT(createNodeFromAction()));
}

void OssSnNodeGraphPluginCore::createNodeFromAction()
{
    auto *action = qobject_cast<QAction *>(sender());
    if (!action) {
        OSS_DEBUG("Action is NULL");
        return;
    }
    OssShaderNetworkView *view = currentShaderNetworkView();
    if (!view) {
        OSS_DEBUG("ShaderNetworkView is NULL");
        return;
    }
    view->createNodeFromAction(action);
}

OssShaderNetworkView *OssSnNodeGraphPluginCore::currentShaderNetworkView()
{
    if (auto *focused = qobject_cast<OssShaderNetworkView *>(QApplication::focusWidget()))
        return focused;
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    OSS_DEBUG("[ !! ] Could not get the current active widget, fallback onto current nodegraph "
              "view %p",
              static_cast<void *>(view));
    return view;
}

namespace {

// The catalogue of fixed actions in the order they are made: text and the plug-in slot its
// triggered() fires. A row whose command the view does not have yet makes no action.
struct FixedAction
{
    const char *text;
    const char *slot;
};

const FixedAction Catalogue[] = {
    {"Connect Selected Node to Viewer", "connectSelectedNodeToViewer"},
    {"Connect Selected Node to Viewer2", "connectSelectedNodeToViewer2"},
    {"Connect Selected Node to Viewer3", "connectSelectedNodeToViewer3"},
    {"Connect Selected Node to Viewer4", "connectSelectedNodeToViewer4"},
    {"Connect Selected Node to Viewer5", "connectSelectedNodeToViewer5"},
    {"Connect Selected Node to Viewer6", "connectSelectedNodeToViewer6"},
    {"Connect Selected Node to Viewer7", "connectSelectedNodeToViewer7"},
    {"Connect Selected Node to Viewer8", "connectSelectedNodeToViewer8"},
    {"Connect Selected Node to Viewer9", "connectSelectedNodeToViewer9"},
    {"Connect Selected Node to Viewer0", "connectSelectedNodeToViewer0"},
    {"Move Viewer to Cursor", "moveViewerToMouse"},
    {"Delete", "deleteSelectedNodes"},
    {"Extract", "extractSelectedNode"},
    {"Remove All Nodes", "deleteAllNodes"},
    {"Frame Nodes", "frameNodes"},
    {"Focus Selection", "frameSelectedNodes"},
    {"Disable", "disableSelectedNodes"},
    {"Bypass", "bypassSelectedNode"},
    {"Quick Create", "quickCreate"},
    {"Duplicate", "duplicateSelectedNodes"},
    {"Select All", "selectAll"},
    {"Cut", "cutNodesAction"},
    {"Copy", "copyNodesAction"},
    {"Paste", "pasteNodesAction"},
    {"Search Node", "searchNodesAction"},
    {"Create Paint Node", "createPaintableNode"},
    {"Bake to Paint Node", "bakeToPaintableNode"},
    {"Export to Geo-Channel", "exportToGeoChannel"},
    {"Info Viewer", "printNodeInfo"},
    {"Swap Inputs", "swapInputs"},
    {"Rename Node", "popupRenameWindow"},
    {"Import Nodes", "importNodes"},
    {"Export Nodes", "exportNodes"},
    {"Import Material", "importMaterial"},
    {"Import Custom Procedural", "importCustomProcedural"},
    {"Toggle Port List", "togglePortVisibility"},
    {"Cycle Port List Mode", "cyclePortListMode"},
    {"Smart Bake And Update", "bakeEmptyAndUpdateOutOfDateBakePoints"},
    {"Bake Selected", "bakeSelectedBakePoints"},
    {"Update Selected", "updateSelectedBakePoints"},
    {"Update Upstream", "updateUpstreamBakePoints"},
    {"Update Downstream", "updateDownstreamBakePoints"},
    {"Manage User Knobs", "manageUserKnobs"},
    {"Expose Node Properties", "exposeNodeProperties"},
    {"Open Group Node Subgraph", "openGroupNodeSubgraph"},
    {"Pick Up Edge Under Mouse", "pickUpEdge"},
    {"Pick Up Edge Under Mouse", "pickUpEdge"},
    {"Select All Upstream", "selectAllUpstream"},
    {"Select All Downstream", "selectAllDownstream"},
    {"Select Stream Upstream", "selectStreamUpstream"},
    {"Select Stream Downstream", "selectStreamDownstream"},
    {"Select Previous Upstream", "selectUpstream"},
    {"Select Next Downstream", "selectDownstream"},
    {"Add Select Previous Upstream", "addSelectUpstream"},
    {"Add Select Next Downstream", "addSelectDownstream"},
    {"Select Next Sibling", "selectNextSibling"},
    {"Select Previous Sibling", "selectPrevSibling"},
    {"Add Select Next Sibling", "addSelectNextSibling"},
    {"Add Select Previous Sibling", "addSelectPrevSibling"},
    {"Select Between", "selectBetween"},
    {"Zoom In", "zoomIn"},
    {"Zoom Out", "zoomOut"},
    {"Pan Left", "panLeft"},
    {"Pan Right", "panRight"},
    {"Pan Up", "panUp"},
    {"Pan Down", "panDown"},
    {"Open Node Properties", "openNodeProperties"},
    {"Toggle Snap to Grid", "toggleSnapToGrid"},
    {"Toggle Edge Sever Mode", "toggleEdgeSeverAction"},
};

} // namespace

void OssSnNodeGraphPluginCore::createFixedActions()
{
    const QString folder = QStringLiteral("/Ossa/NodeGraph/");
    for (const FixedAction &entry : Catalogue) {
        const QByteArray signature = QByteArray(entry.slot) + "()";
        const int index = metaObject()->indexOfSlot(signature.constData());
        if (index < 0)
            continue;
        auto *action = new QAction(tr(entry.text), this);
        OssActionTreeManager::instance()->registerAction(folder, action);
        connect(action, SIGNAL(triggered()), this, ("1" + signature).constData());
        m_fixedActions.append(action);
    }
}

OssShaderNetworkView *OssSnNodeGraphPluginCore::viewForCommand()
{
    OssShaderNetworkView *view = currentShaderNetworkView();
    if (!view)
        OSS_DEBUG("ShaderNetworkView is NULL");
    return view;
}

// Each slot runs one command of the current view.
#define OSS_VIEW_COMMAND(slot, call)                                                               \
    void OssSnNodeGraphPluginCore::slot()                                                          \
    {                                                                                              \
        if (OssShaderNetworkView *view = viewForCommand())                                         \
            view->call;                                                                            \
    }

OSS_VIEW_COMMAND(connectSelectedNodeToViewer, connectSelectedNodeToViewer(nullptr, 1))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer2, connectSelectedNodeToViewer(nullptr, 2))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer3, connectSelectedNodeToViewer(nullptr, 3))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer4, connectSelectedNodeToViewer(nullptr, 4))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer5, connectSelectedNodeToViewer(nullptr, 5))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer6, connectSelectedNodeToViewer(nullptr, 6))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer7, connectSelectedNodeToViewer(nullptr, 7))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer8, connectSelectedNodeToViewer(nullptr, 8))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer9, connectSelectedNodeToViewer(nullptr, 9))
OSS_VIEW_COMMAND(connectSelectedNodeToViewer0, connectSelectedNodeToViewer(nullptr, 0))
OSS_VIEW_COMMAND(moveViewerToMouse, moveViewerToMouse())
OSS_VIEW_COMMAND(deleteSelectedNodes, deleteSelectedNodes())
OSS_VIEW_COMMAND(extractSelectedNode, extractSelectedNode())
OSS_VIEW_COMMAND(deleteAllNodes, deleteAllNodes())
OSS_VIEW_COMMAND(frameNodes, frameNodes(true))
OSS_VIEW_COMMAND(frameSelectedNodes, frameSelectedNodes())
OSS_VIEW_COMMAND(disableSelectedNodes, disableSelectedNodes())
OSS_VIEW_COMMAND(bypassSelectedNode, bypassSelectedNode())
OSS_VIEW_COMMAND(duplicateSelectedNodes, duplicateSelectedNodes())
OSS_VIEW_COMMAND(selectAll, selectAll())
OSS_VIEW_COMMAND(cutNodesAction, cutNodesAction())
OSS_VIEW_COMMAND(copyNodesAction, copyNodesAction())
OSS_VIEW_COMMAND(pasteNodesAction, pasteNodesAction())
OSS_VIEW_COMMAND(swapInputs, swapInputs())
OSS_VIEW_COMMAND(popupRenameWindow, popupRenameWindow())
OSS_VIEW_COMMAND(pickUpEdge, pickUpEdge())
OSS_VIEW_COMMAND(selectAllUpstream, selectAllUpstream())
OSS_VIEW_COMMAND(selectAllDownstream, selectAllDownstream())
OSS_VIEW_COMMAND(selectStreamUpstream, selectStreamUpstream())
OSS_VIEW_COMMAND(selectStreamDownstream, selectStreamDownstream())
OSS_VIEW_COMMAND(selectUpstream, selectUpstream())
OSS_VIEW_COMMAND(selectDownstream, selectDownstream())
OSS_VIEW_COMMAND(addSelectUpstream, addSelectUpstream())
OSS_VIEW_COMMAND(addSelectDownstream, addSelectDownstream())
OSS_VIEW_COMMAND(selectNextSibling, selectNextSibling())
OSS_VIEW_COMMAND(selectPrevSibling, selectPrevSibling())
OSS_VIEW_COMMAND(addSelectNextSibling, addSelectNextSibling())
OSS_VIEW_COMMAND(addSelectPrevSibling, addSelectPrevSibling())
OSS_VIEW_COMMAND(selectBetween, selectBetween())
OSS_VIEW_COMMAND(zoomIn, zoomIn())
OSS_VIEW_COMMAND(zoomOut, zoomOut())
OSS_VIEW_COMMAND(panLeft, panLeft())
OSS_VIEW_COMMAND(panRight, panRight())
OSS_VIEW_COMMAND(panUp, panUp())
OSS_VIEW_COMMAND(panDown, panDown())
OSS_VIEW_COMMAND(toggleSnapToGrid, toggleSnapToGrid())
OSS_VIEW_COMMAND(openGroupNodeSubgraph, openGroupNodeSubgraph())
OSS_VIEW_COMMAND(openNodeProperties, openNodeProperties())
OSS_VIEW_COMMAND(togglePortVisibility, togglePortVisibility())
OSS_VIEW_COMMAND(cyclePortListMode, cyclePortListMode())
OSS_VIEW_COMMAND(toggleEdgeSeverAction, toggleEdgeSeverAction())
OSS_VIEW_COMMAND(ensureIsVisibleAction, ensureIsVisibleAction())
OSS_VIEW_COMMAND(fitToViewAction, fitToViewAction())
OSS_VIEW_COMMAND(importMaterial, importMaterial())
OSS_VIEW_COMMAND(importCustomProcedural, importCustomProcedural())
OSS_VIEW_COMMAND(bakeToPaintableNode, bakeToPaintableNode())
OSS_VIEW_COMMAND(exportToGeoChannel, exportToGeoChannel())
OSS_VIEW_COMMAND(bakeEmptyAndUpdateOutOfDateBakePoints, bakeEmptyAndUpdateOutOfDateBakePoints())
OSS_VIEW_COMMAND(bakeSelectedBakePoints, bakeSelectedBakePoints())
OSS_VIEW_COMMAND(updateSelectedBakePoints, updateSelectedBakePoints())
OSS_VIEW_COMMAND(updateUpstreamBakePoints, updateUpstreamBakePoints())
OSS_VIEW_COMMAND(updateDownstreamBakePoints, updateDownstreamBakePoints())

#undef OSS_VIEW_COMMAND
