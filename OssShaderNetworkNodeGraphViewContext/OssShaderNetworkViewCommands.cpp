// The node editing commands of OssShaderNetworkView: viewer connections, delete, disable,
// bypass, extract, duplicate, cut, copy, paste, rename and swap inputs. Each works on the view's
// network and its selection; each change a user command makes is one undo step.

#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssApplication.h>
#include <OssDebug.h>
#include <OssLayerManager.h>
#include <OssLayerRefreshSuspensionManager.h>
#include <OssLayerShaderManager.h>
#include <OssLayerShaderModel.h>
#include <OssLayerStreamUtils.h>
#include <OssMessageBox.h>
#include <OssNgBackdropNode.h>
#include <OssNgExtendedNode.h>
#include <OssNgUndo.h>
#include <OssPopupDialog.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssSnMultiChannelMergeNode.h>
#include <OssSnViewerNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QCursor>
#include <QGraphicsScene>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>

namespace {

const QString ViewerTag = QStringLiteral("_viewer");

OssNgNode *guiOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContext::guiNodeOf(node);
}

void manuallyChanged()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

// Turns attribute smart linking on for as long as a paste lasts and off afterwards, whatever it
// was before: pasted nodes are linked as they are made, and nothing else is.
class SmartLinkingDuringPaste
{
public:
    SmartLinkingDuringPaste()
    {
        OssShaderNetworkManager::instance()->setAttributeSmartLinkingEnabled(true);
    }
    ~SmartLinkingDuringPaste()
    {
        OssShaderNetworkManager::instance()->setAttributeSmartLinkingEnabled(false);
    }
    SmartLinkingDuringPaste(const SmartLinkingDuringPaste &) = delete;
    SmartLinkingDuringPaste &operator=(const SmartLinkingDuringPaste &) = delete;
};

} // namespace

QList<OssSnBaseNode *> OssShaderNetworkView::selectionWithoutViewer() const
{
    QList<OssSnBaseNode *> nodes =
        m_network ? m_network->selectedNodes() : QList<OssSnBaseNode *>();
    for (int i = 0; i < nodes.size(); ++i)
        if (nodes.at(i)->hasTag(ViewerTag)) {
            nodes.removeAt(i);
            break;
        }
    return nodes;
}

QPointF OssShaderNetworkView::cursorScenePos() const
{
    return mapToScene(viewport()->mapFromGlobal(QCursor::pos()));
}

// --- viewer

void OssShaderNetworkView::connectSelectedNodeToViewer()
{
    connectSelectedNodeToViewer(nullptr, 1);
}

void OssShaderNetworkView::connectSelectedNodeToViewer(OssSnBaseNode *Node)
{
    connectSelectedNodeToViewer(Node, 1);
}

void OssShaderNetworkView::connectSelectedNodeToViewer(OssSnBaseNode *Node, int Num)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    if (!Node) {
        const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
        if (selected.size() > 1)
            return;
        Node = selected.value(0);
    }
    const bool multiChannel = qobject_cast<OssSnMultiChannelGroupNode *>(Node) != nullptr;
    const bool layerShader = Node && OssLayerShaderManager::instance()->isLayerShader(Node);
    if (Node && !multiChannel && !layerShader && Num == 0) {
        OSS_DEBUG("[ !! ] Connecting a node to the viewer's input 0 is not allowed. Input 0 is "
                  "reserved.");
        return;
    }
    if (!Node) {
        // A viewer number with nothing selected only switches the viewer's current input.
        if (OssSnBaseNode *viewer = m_network->moveCurrentViewerNodeToNetwork())
            viewer->network()->rootNetwork()->setViewerNodeCurrentEdge(Num, true);
        return;
    }
    if (!m_network->containsNode(Node)) {
        OSS_DEBUG("Node '%s' doesn't belong to the network", qPrintable(Node->objectName()));
        return;
    }
    OssSnBaseNode *viewer = m_network->moveCurrentViewerNodeToNetwork();
    if (!viewer)
        return;
    OssShaderNetwork *root = viewer->network()->rootNetwork();
    if (Node == viewer) {
        root->setViewerNodeCurrentEdge(Num, true);
        return;
    }
    if (scene())
        scene()->clearSelection();
    viewer->setSelected(true);
    if (Num == 0) {
        if (multiChannel)
            showAsCurrentMaterial(Node);
        else if (layerShader)
            OssLayerShaderManager::instance()->setCurrentShader(Node);
    }
    if (Node->outputPointCount() == 1) {
        connectViewerInput(viewer, Node, Node->prefferedOutputPoint(), Num);
        return;
    }
    if (Node->outputPointCount() == 0)
        return;
    QMenu menu(this);
    if (auto *multi = qobject_cast<OssSnMultiChannelGroupNode *>(Node))
        if (OssLayerShaderModel *model = multi->shaderModel()) {
            QAction *action = menu.addAction(model->id());
            action->setProperty("shaderModelName", model->id());
            action->setProperty("node", QVariant::fromValue<QObject *>(Node));
            action->setProperty("viewer", QVariant::fromValue<QObject *>(viewer));
            action->setProperty("num", Num);
            menu.addSeparator();
        }
    OssNgNode *gui = guiOf(Node);
    const QStringList outputs = gui ? gui->outputPortNames() : Node->outputPointNames();
    for (const QString &output : outputs) {
        QAction *action = menu.addAction(gui ? gui->outputPointDescriptiveName(output) : output);
        action->setProperty("outputPointName", output);
        action->setProperty("node", QVariant::fromValue<QObject *>(Node));
        action->setProperty("viewer", QVariant::fromValue<QObject *>(viewer));
        action->setProperty("num", Num);
    }
    connect(&menu, &QMenu::triggered, this, &OssShaderNetworkView::onOutputPointSelected);
    if (!OssApplication::popupsAllowed()) {
        OSS_DEBUG("[ -- ] Node '%s' has %d output points; choose one in the viewer menu",
                  qPrintable(Node->name()), Node->outputPointCount());
        return;
    }
    menu.exec(QCursor::pos());
}

void OssShaderNetworkView::onOutputPointSelected(QAction *action)
{
    if (!action)
        return;
    auto *node = qobject_cast<OssSnBaseNode *>(action->property("node").value<QObject *>());
    auto *viewer = qobject_cast<OssSnBaseNode *>(action->property("viewer").value<QObject *>());
    if (!node || !viewer)
        return;
    if (!action->property("shaderModelName").toString().isEmpty()) {
        OssUndoManager::AutoMacro macro(
            QStringLiteral("View '%1' as Current Material").arg(node->name()));
        showAsCurrentMaterial(node);
        return;
    }
    connectViewerInput(viewer, node, action->property("outputPointName").toString(),
                       action->property("num").toInt());
}

void OssShaderNetworkView::showAsCurrentMaterial(OssSnBaseNode *node)
{
    OssShaderNetwork *network = node->network();
    OssLayerManager::connectNodeToCurrentMaterialProxy(network, node, node->prefferedOutputPoint(),
                                                       QString());
    OssLayerShaderManager::instance()->setCurrentShader(
        OssLayerShaderManager::instance()->getCurrentMaterialProxyShader(network));
}

void OssShaderNetworkView::connectViewerInput(OssSnBaseNode *viewer, OssSnBaseNode *node,
                                              const QString &outputPoint, int number)
{
    auto *viewerNode = qobject_cast<OssSnViewerNode *>(viewer);
    if (!viewerNode)
        return;
    OssUndoManager::AutoMacro macro(
        QStringLiteral("Connect node '%1' to Viewer").arg(node->name()));
    if (!viewerNode->connectViewerInput(QString::number(number), node, outputPoint)) {
        macro.cancel();
        return;
    }
    viewer->network()->rootNetwork()->setViewerNodeCurrentEdge(number, true);
}

void OssShaderNetworkView::moveViewerToMouse()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssSnBaseNode *viewer = m_network->moveCurrentViewerNodeToNetwork();
    OssNgNode *gui = guiOf(viewer);
    if (!gui)
        return;
    const QPointF at = cursorScenePos();
    gui->setPos(gui->parentItem() ? gui->parentItem()->mapFromScene(at) : at);
}

// --- delete, disable, bypass, extract

void OssShaderNetworkView::deleteSelectedNodes()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    QList<OssSnBaseNode *> nodes;
    for (OssSnBaseNode *node : m_network->selectedNodes()) {
        if (node->hasTag(QStringLiteral("_GraphLayerInput"))) {
            OSS_DEBUG("[ -- ] Node '%s' cannot be removed by the user, it's a protected graph "
                      "layer node",
                      qPrintable(node->name()));
            continue;
        }
        nodes.append(node);
    }
    if (nodes.isEmpty())
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Remove Selected Nodes"));
    OssLayerRefreshSuspensionManager::RefreshStateSuspender suspender;
    m_network->removeNodes(nodes);
    manuallyChanged();
}

void OssShaderNetworkView::deleteAllNodes()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Remove All Nodes"));
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    for (OssSnBaseNode *node : nodes)
        node->network()->removeNode(node, true, true);
}

void OssShaderNetworkView::disableSelectedNodes()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    QList<OssSnBaseNode *> nodes;
    for (OssSnBaseNode *node : m_network->nodes())
        if (node->selected() && !node->hasTag(ViewerTag))
            nodes.append(node);
    if (nodes.isEmpty())
        return;
    QString title = tr("Toggle Selected Nodes");
    if (nodes.size() == 1)
        title = (nodes.first()->enabledAsBool() ? tr("Disable ") : tr("Enable ")) +
                nodes.first()->name();
    OssUndoManager::AutoMacro macro(title);
    // Each node toggles by itself: a mixed selection swaps each node's state.
    for (OssSnBaseNode *node : qAsConst(nodes))
        node->toggleDisable();
    manuallyChanged();
}

void OssShaderNetworkView::bypassSelectedNode()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    QList<OssSnBaseNode *> nodes;
    for (OssSnBaseNode *node : m_network->nodes())
        if (node->selected())
            nodes.append(node);
    if (nodes.isEmpty())
        return;
    // One user command, one undo step, however many nodes it toggles.
    OssUndoManager::AutoMacro macro(nodes.size() == 1
                                        ? QStringLiteral("Bypass %1").arg(nodes.first()->name())
                                        : QStringLiteral("Bypass Selected Nodes"));
    for (OssSnBaseNode *node : qAsConst(nodes)) {
        node->toggleBypass();
        manuallyChanged();
    }
}

void OssShaderNetworkView::extractSelectedNode()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.isEmpty())
        return;
    nodes.first()->network()->extractNodes(nodes, true);
}

// --- duplicate, cut, copy, paste

void OssShaderNetworkView::duplicateSelectedNodes()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QPointF cursor = cursorScenePos();
    if (!scene()) {
        OSS_DEBUG("pScene is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty())
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Duplicate Nodes"));
    placeInsertedNodes(OssShaderNetworkIO::duplicateNodes(m_network, nodes, true, cursor), &cursor);
}

void OssShaderNetworkView::cutNodesAction()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty())
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Cut Nodes"));
    OssShaderNetworkIO::copyNodesToClipboard(nodes, QString());
    deleteSelectedNodes();
}

void OssShaderNetworkView::copyNodesAction()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (!nodes.isEmpty())
        OssShaderNetworkIO::copyNodesToClipboard(nodes, QString());
}

void OssShaderNetworkView::pasteNodesAction()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    if (!scene()) {
        OSS_DEBUG("pScene is NULL");
        return;
    }
    const QPointF cursor = cursorScenePos();
    SmartLinkingDuringPaste smartLinking;
    OssUndoManager::AutoMacro macro(QStringLiteral("Paste Nodes"));
    QString error;
    const QList<OssSnBaseNode *> nodes =
        OssShaderNetworkIO::pasteNodesFromClipboard(m_network, true, cursor, &error);
    if (nodes.isEmpty()) {
        // Clipboard text that is not a network changes nothing.
        OSS_DEBUG("[ !! ] Nothing pasted: %s", qPrintable(error));
        macro.cancel();
        return;
    }
    placeInsertedNodes(nodes, &cursor);
}

void OssShaderNetworkView::placeInsertedNodes(const QList<OssSnBaseNode *> &nodes,
                                              const QPointF *position)
{
    if (nodes.isEmpty())
        return;
    if (m_network)
        m_network->clearSelection();
    QRectF bounds;
    for (OssSnBaseNode *node : nodes) {
        node->setSelected(true);
        if (OssNgNode *gui = guiOf(node))
            bounds |= gui->sceneBoundingRect();
    }
    if (!position) {
        OSS_DEBUG("[ !! ] Position is NULL");
    } else if (!bounds.isNull()) {
        // The inserted nodes keep their arrangement; their bounds' top-left goes to the cursor.
        const QPointF shift = *position - bounds.topLeft();
        for (OssSnBaseNode *node : nodes)
            if (OssNgNode *gui = guiOf(node)) {
                gui->savePosition();
                gui->setPos(gui->pos() + shift);
                OssUndoManager::instance()->addUndo(new OssNgNodePositionChangeUndo(gui), false);
            }
    }
    for (OssSnBaseNode *node : nodes)
        if (OssShaderNetwork *network = node->network())
            if (network->node(node->name()) != node)
                node->setName(network->generateUniqueNodeName(node->name()));
    OssShaderNetworkManager::instance()->createDelayedKnobs(nodes);
    for (OssSnBaseNode *node : nodes)
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiOf(node)))
            backdrop->refreshChildrenList();
}

// --- rename

void OssShaderNetworkView::popupRenameWindow()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.isEmpty())
        return;
    if (nodes.size() > 1) {
        OSS_DEBUG("More than one node selected for renaming");
        OssMessageBox::warning(this, tr("Rename node"),
                               tr("Only one node must be selected for renaming"));
        return;
    }
    popupRenameWindow(guiOf(nodes.first()));
}

void OssShaderNetworkView::popupRenameWindow(OssNgNode *NodeToRename)
{
    if (!NodeToRename) {
        OSS_DEBUG("NodeToRename is NULL");
        return;
    }
    auto *node = qobject_cast<OssSnBaseNode *>(NodeToRename->parent());
    if (!node) {
        OSS_DEBUG("BusinessNode is NULL");
        return;
    }
    OssPopupDialog dialog;
    dialog.setMaximumWidth(151);
    auto *layout = new QHBoxLayout(&dialog);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *edit = new QLineEdit(node->name(), &dialog);
    edit->setFixedWidth(150);
    edit->selectAll();
    layout->addWidget(edit);
    edit->setFocus();
    connect(edit, &QLineEdit::returnPressed, &dialog, &QDialog::accept);
    dialog.move(viewport()->mapToGlobal(mapFromScene(NodeToRename->scenePos())));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString name = edit->text().trimmed();
    if (name.isEmpty() || name == node->name())
        return;
    // Names are unique in a network: a name in use gets the next free number.
    node->setName(node->network() ? node->network()->generateUniqueNodeName(name) : name);
}

// --- swap inputs

void OssShaderNetworkView::swapInputs()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.size() != 1) {
        OSS_DEBUG("More than one node selected for swap inputs.");
        OssMessageBox::warning(this, tr("Swap Inputs"),
                               tr("Only one node must be selected for swapping inputs."));
        return;
    }
    OssSnBaseNode *node = nodes.first();
    const QStringList inputs = node->inputNames();
    if (inputs.size() < 2) {
        OSS_DEBUG("Need at least two inputs to swap inputs.");
        OssMessageBox::warning(this, tr("Swap Inputs"),
                               tr("The selected node has fewer than two inputs to swap."));
        return;
    }
    if (auto *merge = qobject_cast<OssSnMultiChannelMergeNode *>(node)) {
        batchSwapInputs(merge);
        return;
    }
    OssSnBaseNode *first = node->inputConnection(inputs.at(0));
    OssSnBaseNode *second = node->inputConnection(inputs.at(1));
    OssUndoManager::AutoMacro macro(QStringLiteral("Swap Inputs"));
    // Both from the output point named "Output", whatever each used before.
    const QString output = QStringLiteral("Output");
    if (second)
        node->connectInput(inputs.at(0), second, output, true);
    else
        node->disconnectInput(inputs.at(0), true);
    if (first)
        node->connectInput(inputs.at(1), first, output, true);
    else
        node->disconnectInput(inputs.at(1), true);
    manuallyChanged();
}

void OssShaderNetworkView::batchSwapInputs(OssSnMultiChannelMergeNode *merge)
{
    OssLayerShaderModel *model = merge->shaderModel();
    if (!model) {
        OSS_DEBUG("ShaderModel is NULL");
        return;
    }
    if (model->inputList().isEmpty()) {
        OSS_DEBUG("ShaderModel has empty input list");
        return;
    }
    const auto sourcesOf = [merge](const QString &stream, OssSnBaseNode **base,
                                   OssSnBaseNode **over) {
        *base = merge->inputConnection(OssLayerStreamUtils::baseInputName(stream));
        *over = merge->inputConnection(OssLayerStreamUtils::overInputName(stream));
    };
    OssSnBaseNode *base = nullptr;
    OssSnBaseNode *over = nullptr;
    sourcesOf(model->inputList().first().streamName(), &base, &over);
    auto *baseGroup = qobject_cast<OssSnMultiChannelGroupNode *>(base);
    auto *overGroup = qobject_cast<OssSnMultiChannelGroupNode *>(over);
    if (!baseGroup) {
        OSS_DEBUG("Base input node is not a Multi-Channel-Group node");
        return;
    }
    if (!overGroup) {
        OSS_DEBUG("Over input node is not a Multi-Channel-Group node");
        return;
    }
    if (!OssLayerShaderModelManager::matchingShaderModelNodePair(merge, baseGroup)) {
        OSS_DEBUG("The Shader Models of target node and Base input node do not match.");
        return;
    }
    if (!OssLayerShaderModelManager::matchingShaderModelNodePair(merge, overGroup)) {
        OSS_DEBUG("The Shader Models of target node and Over input node do not match.");
        return;
    }
    for (const OssLayerShaderModelInput &input : model->inputList()) {
        OssSnBaseNode *channelBase = nullptr;
        OssSnBaseNode *channelOver = nullptr;
        sourcesOf(input.streamName(), &channelBase, &channelOver);
        if (channelBase != base || channelOver != over) {
            OSS_DEBUG("Not batch swapping the inputs for Multi-Channel Merge Node because not all "
                      "the input ports match up between two source Multi-Channel nodes.");
            return;
        }
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Batch Swap Inputs"));
    merge->batchConnectInputNode(overGroup, baseGroup, true);
    manuallyChanged();
}
