#include "OssSnNodeGraphViewContextManager.h"

#include "OssShaderNetworkView.h"
#include "OssSnAutoplace.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextFactories.h"
#include "OssSnNodeGraphViewContextLoader.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnNodePropertiesWidget.h"
#include "OssSnUINodeGraphViewContext.h"
#include "ZelGLTextureToken.h"

#include <OssDebug.h>
#include <OssNgEdge.h>
#include <OssNgUndo.h>
#include <OssNgView.h>
#include <OssObjectReferenceManager.h>
#include <OssPalette.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssResourceInfo.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>
#include <OssSnSpecialNodes.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsScene>
#include <QTimer>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

OssSnNodeGraphViewContextManager *OssSnNodeGraphViewContextManager::instance()
{
    static OssSnNodeGraphViewContextManager manager;
    return &manager;
}

OssSnNodeGraphViewContextManager::OssSnNodeGraphViewContextManager()
    : OssSerializableObject(nullptr)
{
    setObjectName(QStringLiteral("OssSnNodeGraphViewContextManager"));
    Preferences::applyDefaults(this);
    loadPreferences();
    Preferences::registerWith(this);
    m_loader = new OssSnNodeGraphViewContextLoader;
    OssShaderNetworkManager::instance()->registerContextLoader(QStringLiteral("NodeGraphView"),
                                                               m_loader);
    OssSnNodeGraphViewContextFactories::registerAll();
    connectToHost();
    // The manager's own actions (Autoplace, the port-list modes, the image drops and
    // shake-to-extract) are made with the node-graph action catalogue.
    initialiseNodeGraphPalette();
    initialiseNodePropertiesPalette();
}

OssSnNodeGraphViewContextManager::~OssSnNodeGraphViewContextManager()
{
    // Scenes go with their networks and projects; only the tables are released here.
    m_scenes.clear();
    m_groupNodes.clear();
    m_viewRects.clear();
}

void OssSnNodeGraphViewContextManager::connectToHost()
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const struct
    {
        QObject *sender;
        const char *signal;
        const char *slot;
    } table[] = {
        {networks, SIGNAL(currentShaderNetworkChanged(OssShaderNetwork *)),
         SLOT(onCurrentShaderNetworkChanged(OssShaderNetwork *))},
        {networks, SIGNAL(shaderNetworkAdded(OssShaderNetwork *)),
         SLOT(onShaderNetworkAdded(OssShaderNetwork *))},
        {networks, SIGNAL(focusOnNodeRequest(OssSnBaseNode *)), SLOT(focusOnNode(OssSnBaseNode *))},
        {networks, SIGNAL(matchNodePositionRequest(OssSnBaseNode *, OssSnBaseNode *)),
         SLOT(matchNodePosition(OssSnBaseNode *, OssSnBaseNode *))},
        {networks, SIGNAL(afterShaderNetworkEndCollection(OssShaderNetwork *)),
         SLOT(onAfterShaderNetworkEndCollection(OssShaderNetwork *))},
        {networks,
         SIGNAL(showNodePropertiesAtPositionEndRequest(OssSnBaseNode *, OssSnBaseNode *, bool)),
         SLOT(showNodePropertiesAtPositionEnd(OssSnBaseNode *, OssSnBaseNode *, bool))},
        {networks,
         SIGNAL(showNodePropertiesAtPositionBeginRequest(OssSnBaseNode *, OssSnBaseNode *, bool)),
         SLOT(showNodePropertiesAtPositionBegin(OssSnBaseNode *, OssSnBaseNode *, bool))},
        {networks, SIGNAL(showNodePropertiesRequest(OssSnBaseNode *)),
         SLOT(showNodeProperties(OssSnBaseNode *))},
        {networks, SIGNAL(beautifyNodesLayout(OssShaderNetwork *)),
         SLOT(beautifyNodesLayout(OssShaderNetwork *))},
        {networks, SIGNAL(beautifyNodesLayout(OssShaderNetwork *, OssSnBaseNode *)),
         SLOT(beautifyNodesLayout(OssShaderNetwork *, OssSnBaseNode *))},
        {networks, SIGNAL(beautifyNodesLayout(OssShaderNetwork *, QList<OssSnBaseNode *>)),
         SLOT(beautifyNodesLayout(OssShaderNetwork *, QList<OssSnBaseNode *>))},
        {networks, SIGNAL(nodeRegistered(OssShaderNetwork *, OssSnBaseNode *)),
         SLOT(onNodeRegistered(OssShaderNetwork *, OssSnBaseNode *))},
        {networks, SIGNAL(nodeDeregistered(OssShaderNetwork *, OssSnBaseNode *)),
         SLOT(onNodeDeregistered(OssShaderNetwork *, OssSnBaseNode *))},
        {networks, SIGNAL(reorderGroupInputsByPosRequested(OssSnGroupNode *)),
         SLOT(reorderGroupInputsByPos(OssSnGroupNode *))},
        {networks, SIGNAL(reorderGroupOutputsByPosRequested(OssSnGroupNode *)),
         SLOT(reorderGroupOutputsByPos(OssSnGroupNode *))},
        {networks, SIGNAL(arrangeGroupInputNodesByOrderRequested(OssShaderNetwork *, QStringList)),
         SLOT(arrangeGroupInputNodesByOrder(OssShaderNetwork *, QStringList))},
        {networks,
         SIGNAL(debugNodesChanged(OssDebugNodeColours, OssDebugInputColours, OssDebugNodeColours,
                                  OssDebugInputColours)),
         SLOT(onDebugNodesChanged(OssDebugNodeColours, OssDebugInputColours, OssDebugNodeColours,
                                  OssDebugInputColours))},
        {OssProjectManager::instance(), SIGNAL(currentChannelChanged(OssChannel *)),
         SLOT(highlightCurrentImageSetNode(OssChannel *))},
        {OssProjectManager::instance(), SIGNAL(projectClosing()), SLOT(onProjectClosing())},
        {OssProjectManager::instance(), SIGNAL(projectOpenCompleted(OssProject *, bool)),
         SLOT(onProjectOpenCompleted())},
        {OssProjectManager::instance(), SIGNAL(onMakeProjectCurrent(OssProject *)),
         SLOT(onProjectMadeCurrentUpgradeOldBadBackdrops(OssProject *))},
    };
    for (const auto &entry : table)
        if (!connect(entry.sender, entry.signal, this, entry.slot))
            OSS_DEBUG("[ !! ] Cannot connect %s to %s", entry.signal, entry.slot);
}

OssShaderNetworkView *OssSnNodeGraphViewContextManager::currentView() const
{
    return m_nodeGraphWidget ? m_nodeGraphWidget->currentView() : nullptr;
}

OssSnNodeGraphWidget *OssSnNodeGraphViewContextManager::nodeGraphWidget() const
{
    return m_nodeGraphWidget.data();
}

QWidget *OssSnNodeGraphViewContextManager::nodePropertiesWidget() const
{
    return m_nodePropertiesWidget.data();
}

void OssSnNodeGraphViewContextManager::registerGroupNetwork(OssShaderNetwork *network,
                                                            OssSnGroupNode *group)
{
    m_groupNodes.insert(network, group);
}

OssSnGroupNode *
OssSnNodeGraphViewContextManager::groupNodeOfNetwork(OssShaderNetwork *network) const
{
    return m_groupNodes.value(network).data();
}

QGraphicsScene *OssSnNodeGraphViewContextManager::sceneForNetwork(OssShaderNetwork *network)
{
    if (!network)
        return nullptr;
    if (QGraphicsScene *scene = m_scenes.value(network))
        return scene;
    auto *scene = new QGraphicsScene;
    // Filled without a spatial index (a network being loaded puts thousands of nodes at one
    // spot first, which a tree index handles in quadratic time); the view that shows the scene
    // turns the index on.
    scene->setItemIndexMethod(QGraphicsScene::NoIndex);
    connect(network, SIGNAL(destroyed(QObject *)), this, SLOT(onShaderNetworkDestroyed(QObject *)));
    m_scenes.insert(network, scene);
    return scene;
}

void OssSnNodeGraphViewContextManager::showNetworkInView(OssShaderNetwork *network,
                                                         OssShaderNetworkView *view)
{
    if (!view)
        return;
    if (OssShaderNetwork *shown = view->network())
        m_viewRects.insert(shown, view->viewportInSceneCoords());
    view->setNetwork(network);
    view->setScene(sceneForNetwork(network));
    view->init();
    if (!network)
        return;
    if (m_viewRects.contains(network)) {
        view->fitInView(m_viewRects.value(network), Qt::AspectRatioMode(1));
        return;
    }
    view->frameNodes(true);
    m_viewRects.insert(network, view->viewportInSceneCoords());
    connect(network, SIGNAL(destroyed(QObject *)), this, SLOT(onNetworkDestroyed(QObject *)),
            Qt::UniqueConnection);
}

void OssSnNodeGraphViewContextManager::groupInputOutputMoved(OssSnGroupNode *group, OssSnBaseNode *,
                                                             bool input)
{
    if (input)
        reorderGroupInputsByPos(group);
    else
        reorderGroupOutputsByPos(group);
}

void OssSnNodeGraphViewContextManager::onCurrentShaderNetworkChanged(OssShaderNetwork *Network)
{
    if (!m_nodeGraphWidget)
        return;
    showNetworkInView(Network, m_nodeGraphWidget->view());
    m_nodeGraphWidget->updateRootLevelText(Network);
    if (m_nodeGraphWidget->currentView() == m_nodeGraphWidget->view())
        OssShaderNetworkManager::instance()->setCurrentViewNetwork(Network);
}

void OssSnNodeGraphViewContextManager::onShaderNetworkAdded(OssShaderNetwork *Network)
{
    if (!m_nodeGraphWidget)
        return;
    OSS_DEBUG("[ -- ] About to recompile shader network %p", static_cast<void *>(Network));
    OssShaderNetworkManager::instance()->refreshGraph(Network);
}

void OssSnNodeGraphViewContextManager::onNodeRegistered(OssShaderNetwork *Network,
                                                        OssSnBaseNode *Node)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    if (!Node) {
        OSS_DEBUG("Node is NULL");
        return;
    }
    QGraphicsScene *scene = sceneForNetwork(Network);
    if (!scene) {
        OSS_DEBUG("Scene is NULL");
        return;
    }
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(Node);
    if (!gui)
        return;
    if (gui->scene() != scene)
        scene->addItem(gui);
    for (OssNgEdge *edge : gui->inputs() + gui->outputs())
        if (edge->scene() != scene)
            scene->addItem(edge);
    m_scenesWithNewItems.insert(scene);
}

void OssSnNodeGraphViewContextManager::onNodeDeregistered(OssShaderNetwork *Network,
                                                          OssSnBaseNode *Node)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    if (!Node) {
        OSS_DEBUG("Node is NULL");
        return;
    }
    QGraphicsScene *scene = m_scenes.value(Network);
    if (m_scenes.isEmpty() || !scene)
        return;
    Node->emitRemovedFromNetwork();
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(Node);
    if (!gui)
        return;
    flushPendingPolish(scene);
    noteRemoval(scene);
    // Removed, not deleted: the view context owns them.
    if (gui->scene() == scene)
        scene->removeItem(gui);
    for (OssNgEdge *edge : gui->inputs() + gui->outputs())
        if (edge->scene() == scene)
            scene->removeItem(edge);
    gui->removeTemporaryOutputEdge();
    gui->removeVirtualInputEdge();
}

void OssSnNodeGraphViewContextManager::onShaderNetworkDestroyed(QObject *Obj)
{
    QGraphicsScene *scene = nullptr;
    for (auto it = m_scenes.begin(); it != m_scenes.end(); ++it)
        if (static_cast<QObject *>(it.key()) == Obj) {
            scene = it.value();
            m_scenes.erase(it);
            break;
        }
    if (!scene) {
        if (!m_scenes.isEmpty())
            OSS_DEBUG("Failed to find scene for network");
        return;
    }
    releaseGuiNodes(scene);
    delete scene;
}

void OssSnNodeGraphViewContextManager::releaseGuiNodes(QGraphicsScene *scene)
{
    flushPendingPolish(scene);
    // Without an index, taking items out is cheap when it goes from the bottom of the stacking
    // order up: the scene finds each item at the front of its list instead of searching the
    // whole list for it.
    scene->setItemIndexMethod(QGraphicsScene::NoIndex);
    m_removalsThisTurn.remove(scene);
    m_unindexedForBulkRemoval.removeAll(scene);
    for (QGraphicsItem *item : scene->items(Qt::AscendingOrder))
        if (OssNgNode *node = OssNgNode::fromItem(item))
            if (qobject_cast<OssSnBaseNode *>(node->parent()))
                scene->removeItem(node);
}

void OssSnNodeGraphViewContextManager::noteRemoval(QGraphicsScene *scene)
{
    // A spatial index pays for each removal in every cell the item covered, and long edges cover
    // many: removing thousands of nodes (deleting a big selection, undoing a paste) took seconds.
    // From the BulkRemovals-th removal in one turn of the event loop on, the scene goes without
    // an index; the index is rebuilt once, when the loop turns again.
    constexpr int BulkRemovals = 64;
    if (m_removalsThisTurn.isEmpty())
        QTimer::singleShot(0, this, &OssSnNodeGraphViewContextManager::endBulkRemovals);
    int &count = m_removalsThisTurn[scene];
    if (++count == BulkRemovals && scene->itemIndexMethod() == QGraphicsScene::BspTreeIndex) {
        scene->setItemIndexMethod(QGraphicsScene::NoIndex);
        m_unindexedForBulkRemoval.append(scene);
    }
}

void OssSnNodeGraphViewContextManager::endBulkRemovals()
{
    m_removalsThisTurn.clear();
    for (const QPointer<QGraphicsScene> &scene : qAsConst(m_unindexedForBulkRemoval))
        if (scene)
            OssNgView::useSpatialIndex(scene);
    m_unindexedForBulkRemoval.clear();
}

void OssSnNodeGraphViewContextManager::flushPendingPolish(QGraphicsScene *scene)
{
    // A scene keeps the items added since its last turn of the event loop in a list it searches
    // on every removal. Removing many of them before the loop turns (undo of a removal, then
    // redo, in one go) would search that list once per item: the scene's queued call that
    // empties the list is delivered first.
    if (m_scenesWithNewItems.remove(scene))
        QCoreApplication::sendPostedEvents(scene, QEvent::MetaCall);
}

void OssSnNodeGraphViewContextManager::onNetworkDestroyed(QObject *Obj)
{
    for (auto it = m_viewRects.begin(); it != m_viewRects.end();) {
        if (static_cast<QObject *>(it.key()) == Obj)
            it = m_viewRects.erase(it);
        else
            ++it;
    }
}

void OssSnNodeGraphViewContextManager::onProjectClosing()
{
    // Views let go of the scenes before they go.
    if (m_nodeGraphWidget)
        for (int i = 0; i < m_nodeGraphWidget->count(); ++i)
            if (auto *view = qobject_cast<OssShaderNetworkView *>(m_nodeGraphWidget->widget(i))) {
                view->setScene(nullptr);
                view->setNetwork(nullptr);
            }
    // GUI nodes belong to their view contexts, which go with the project: they leave the scenes
    // before the scenes are deleted.
    for (QGraphicsScene *scene : qAsConst(m_scenes))
        releaseGuiNodes(scene);
    qDeleteAll(m_scenes);
    m_scenes.clear();
    m_groupNodes.clear();
}

void OssSnNodeGraphViewContextManager::onProjectOpenCompleted()
{
    updatePortVisibility();
    if (!m_nodeGraphWidget)
        return;
    if (OssShaderNetworkView *root = m_nodeGraphWidget->view())
        root->frameNodes(true);
    m_nodeGraphWidget->refreshCurrentChanged();
}

void OssSnNodeGraphViewContextManager::onAfterShaderNetworkEndCollection(OssShaderNetwork *Network)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    for (OssSnBaseNode *node : Network->nodes())
        if (OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node))
            for (const QString &input : node->inputNames())
                context->refreshInputEdge(input);
}

void OssSnNodeGraphViewContextManager::onProjectMadeCurrentUpgradeOldBadBackdrops(
    OssProject *Project)
{
    if (!Project)
        return;
    for (OssShadingGroup *group : Project->shadingGroups())
        if (OssShaderNetwork *network =
                OssShaderNetworkManager::instance()->getShaderNetwork(group))
            for (OssSnBaseNode *node : network->getAllNodes())
                if (auto *context = qobject_cast<OssSnUINodeGraphViewContext *>(
                        node->context(QStringLiteral("NodeGraphView"))))
                    context->upgradeOldBadBackdrop();
}

void OssSnNodeGraphViewContextManager::focusOnNode(OssSnBaseNode *Node)
{
    if (!Node)
        return;
    if (OssPalette *palette = OssPaletteManager::instance()->find(QStringLiteral("Node Graph")))
        palette->showBySidebar();
    if (!m_nodeGraphWidget)
        return;
    m_nodeGraphWidget->selectTabForNetwork(Node->network());
    OssShaderNetworkView *view = currentView();
    if (view && view->network() == Node->network() && view->scene()) {
        view->scene()->clearSelection();
        Node->setSelected(true);
        view->frameSelectedNodes();
    }
}

void OssSnNodeGraphViewContextManager::matchNodePosition(OssSnBaseNode *From, OssSnBaseNode *To)
{
    OssNgNode *from = OssSnNodeGraphViewContext::guiNodeOf(From);
    OssNgNode *to = OssSnNodeGraphViewContext::guiNodeOf(To);
    if (!from || !to)
        return;
    to->savePosition();
    to->setPos(from->pos());
    OssUndoManager::instance()->addUndo(new OssNgNodePositionChangeUndo(to), false);
}

void OssSnNodeGraphViewContextManager::showNodePropertiesAtPositionEnd(OssSnBaseNode *Node,
                                                                       OssSnBaseNode *Target,
                                                                       bool Undo)
{
    if (auto *panel = qobject_cast<OssSnNodePropertiesWidget *>(m_nodePropertiesWidget.data()))
        if (Node && Target)
            panel->showNodePropertiesAtPositionEnd(Node, Target, Undo);
}

void OssSnNodeGraphViewContextManager::showNodePropertiesAtPositionBegin(OssSnBaseNode *Node,
                                                                         OssSnBaseNode *Target,
                                                                         bool Undo)
{
    if (auto *panel = qobject_cast<OssSnNodePropertiesWidget *>(m_nodePropertiesWidget.data()))
        if (Node && Target)
            panel->showNodePropertiesAtPositionBegin(Node, Target, Undo);
}

void OssSnNodeGraphViewContextManager::showNodeProperties(OssSnBaseNode *Node)
{
    if (auto *panel = qobject_cast<OssSnNodePropertiesWidget *>(m_nodePropertiesWidget.data()))
        panel->showNodeProperties(Node);
}

void OssSnNodeGraphViewContextManager::beautifyNodesLayout()
{
    if (!m_nodeGraphWidget) {
        OSS_DEBUG("GraphWidget is NULL");
        return;
    }
    QWidget *page = m_nodeGraphWidget->currentWidget();
    if (!page) {
        OSS_DEBUG("PageWidget is NULL");
        return;
    }
    auto *view = qobject_cast<OssShaderNetworkView *>(page);
    if (!view) {
        OSS_DEBUG("GraphView is NULL");
        return;
    }
    if (!view->network()) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    autoLayoutNodes(view->network(), view->network()->selectedNodes(), true);
}

void OssSnNodeGraphViewContextManager::beautifyNodesLayout(OssShaderNetwork *Network)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    autoLayoutNodes(Network, Network->selectedNodes(), true);
}

void OssSnNodeGraphViewContextManager::beautifyNodesLayout(OssShaderNetwork *Network,
                                                           OssSnBaseNode *Node)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    if (!Node) {
        OSS_DEBUG("Node is NULL");
        return;
    }
    autoLayoutNodes(Network, {Node}, false);
}

void OssSnNodeGraphViewContextManager::beautifyNodesLayout(OssShaderNetwork *Network,
                                                           QList<OssSnBaseNode *> Nodes)
{
    beautifyNodesLayout(Network, Nodes, false);
}

void OssSnNodeGraphViewContextManager::beautifyNodesLayout(OssShaderNetwork *Network,
                                                           QList<OssSnBaseNode *> Nodes,
                                                           bool ArrangeFromLeavesIfEmpty)
{
    Nodes.removeAll(nullptr);
    autoLayoutNodes(Network, Nodes, ArrangeFromLeavesIfEmpty);
}

void OssSnNodeGraphViewContextManager::autoLayoutNodes(OssShaderNetwork *StartNetwork,
                                                       QList<OssSnBaseNode *> StartNodes,
                                                       bool ArrangeFromLeavesIfEmpty)
{
    OssSnAutoplace::run(StartNetwork, m_scenes.value(StartNetwork), StartNodes,
                        ArrangeFromLeavesIfEmpty);
}

void OssSnNodeGraphViewContextManager::reorderGroupInputsByPos(OssSnGroupNode *Group)
{
    if (!Group)
        return;
    // The group's inputs follow its input nodes from left to right.
    QList<OssSnBaseNode *> inputs = Group->groupInputNodes();
    std::stable_sort(inputs.begin(), inputs.end(), [](OssSnBaseNode *a, OssSnBaseNode *b) {
        const OssNgNode *ga = OssSnNodeGraphViewContext::guiNodeOf(a);
        const OssNgNode *gb = OssSnNodeGraphViewContext::guiNodeOf(b);
        return ga && gb && ga->pos().x() < gb->pos().x();
    });
    QStringList order;
    for (OssSnBaseNode *node : inputs)
        order.append(node->name());
    for (const QString &name : Group->inputNames())
        if (!order.contains(name))
            order.append(name);
    Group->reorderInputs(order);
}

void OssSnNodeGraphViewContextManager::reorderGroupOutputsByPos(OssSnGroupNode *)
{
    // Output order is fixed by the group's definition; nothing to reorder.
}

void OssSnNodeGraphViewContextManager::arrangeGroupInputNodesByOrder(OssShaderNetwork *Network,
                                                                     QStringList Order)
{
    // Input nodes are spaced evenly from left to right in the given order, on the row of the
    // highest of them.
    if (!Network)
        return;
    QList<OssNgNode *> nodes;
    for (const QString &name : Order)
        if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(Network->node(name)))
            nodes.append(gui);
    if (nodes.isEmpty())
        return;
    qreal top = nodes.first()->pos().y();
    qreal left = nodes.first()->pos().x();
    for (OssNgNode *gui : nodes) {
        top = qMin(top, gui->pos().y());
        left = qMin(left, gui->pos().x());
    }
    for (OssNgNode *gui : nodes) {
        gui->setPos(left, top);
        left += gui->boundingRect().width() + 30;
    }
}

void OssSnNodeGraphViewContextManager::onDebugNodesChanged(OssDebugNodeColours rNewNodes,
                                                           OssDebugInputColours rNewInputs,
                                                           OssDebugNodeColours rOldNodes,
                                                           OssDebugInputColours rOldInputs)
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

void OssSnNodeGraphViewContextManager::highlightCurrentImageSetNode(OssChannel *pImageSet)
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

void OssSnNodeGraphViewContextManager::onNodePropertiesHoverChanged(OssSnBaseNode *MouseOver,
                                                                    OssSnBaseNode *OldMouseOver)
{
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(MouseOver))
        gui->setHovered(true);
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(OldMouseOver))
        gui->setHovered(false);
}

void OssSnNodeGraphViewContextManager::onNodeCollapsedModeChanged()
{
    if (!sender()) {
        OSS_DEBUG("sender() is NULL");
        return;
    }
    auto *action = qobject_cast<QAction *>(sender());
    if (!action) {
        OSS_DEBUG("Action is NULL");
        return;
    }
    if (!m_nodeGraphWidget) {
        OSS_DEBUG("GraphWidget is NULL");
        return;
    }
    QWidget *page = m_nodeGraphWidget->currentWidget();
    if (!page) {
        OSS_DEBUG("PageWidget is NULL");
        return;
    }
    auto *view = qobject_cast<OssShaderNetworkView *>(page);
    if (!view) {
        OSS_DEBUG("GraphView is NULL");
        return;
    }
    OssShaderNetwork *network = view->network();
    if (!network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    const int mode = action->property("Mode").toInt();
    for (OssSnBaseNode *node : network->selectedNodes()) {
        if (mode == 1 && !qobject_cast<OssSnMultiChannelGroupNode *>(node) &&
            !node->hasTag(QStringLiteral("_shader")))
            continue;
        if (OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node))
            context->setPortListMode(mode);
    }
}

void OssSnNodeGraphViewContextManager::showPropertiesPalette()
{
    if (OssPalette *palette =
            OssPaletteManager::instance()->find(QStringLiteral("Node Properties"))) {
        if (!palette->isVisible())
            palette->setVisible(true);
        palette->raise();
    }
}

void OssSnNodeGraphViewContextManager::showNodeGraphPalette()
{
    if (OssPalette *palette = OssPaletteManager::instance()->find(QStringLiteral("Node Graph")))
        palette->showBySidebar();
}

void OssSnNodeGraphViewContextManager::initialiseNodeGraphPalette()
{
    auto *palette = new OssPalette;
    m_nodeGraphWidget = new OssSnNodeGraphWidget(controlType(), palette);
    palette->setBodyWidget(m_nodeGraphWidget);
    palette->setObjectName(tr("Node Graph"));
    palette->setWindowTitle(tr("Node Graph"));
    palette->setContextHelpKey(QStringLiteral("node_graph_palette"));
    connect(this, &OssSnNodeGraphViewContextManager::controlTypeChanged, m_nodeGraphWidget.data(),
            &OssSnNodeGraphWidget::setNavigationControlType);
    OssPaletteManager::instance()->registerPalette(
        palette, 0, OssResourceInfo::instance()->iconPath() + QStringLiteral("/NodeGraph.png"));
}

void OssSnNodeGraphViewContextManager::initialiseNodePropertiesPalette()
{
    auto *palette = new OssPalette;
    auto *panel = new OssSnNodePropertiesWidget(
        m_nodeGraphWidget ? m_nodeGraphWidget->view() : nullptr, palette);
    m_nodePropertiesWidget = panel;
    connect(panel, SIGNAL(nodeDoubledClicked()), this, SLOT(showPropertiesPalette()));
    connect(panel, &OssSnNodePropertiesWidget::hoverChanged, this,
            &OssSnNodeGraphViewContextManager::onNodePropertiesHoverChanged);
    palette->setBodyWidget(panel);
    palette->setObjectName(tr("Node Properties"));
    palette->setWindowTitle(tr("Node Properties"));
    palette->setContextHelpKey(QStringLiteral("node_properties_palette"));
    OssPaletteManager::instance()->registerPalette(palette, 0,
                                                   OssResourceInfo::instance()->iconPath() +
                                                       QStringLiteral("/NodeProperties.png"));
}

const QStringList &OssSnNodeGraphViewContextManager::portDisplayList()
{
    return Preferences::choices(Preferences::DefaultNodePortDisplayMode);
}

QString OssSnNodeGraphViewContextManager::prettyPropertyName(const QString &Name) const
{
    const QString label = Preferences::label(Name);
    return label.isNull() ? OssSerializableObject::prettyPropertyName(Name) : label;
}

void OssSnNodeGraphViewContextManager::loadPreferences()
{
    Preferences::load(this);
}

void OssSnNodeGraphViewContextManager::savePreferences()
{
    Preferences::save(this);
}

// Preference setters: each announces a change, and only a change.

void OssSnNodeGraphViewContextManager::setControlType(const QString &Value)
{
    if (Value == m_controlType || !controlTypeList().contains(Value))
        return;
    m_controlType = Value;
    emit controlTypeChanged(Value);
}

QString OssSnNodeGraphViewContextManager::defaultNodePortDisplayMode() const
{
    return portDisplayList().value(m_portDisplayIndex);
}

void OssSnNodeGraphViewContextManager::setDefaultNodePortDisplayMode(const QString &Mode)
{
    const int index = portDisplayList().indexOf(Mode);
    if (index < 0) {
        // Unknown text: fall back to the first entry, under the same rules.
        setDefaultNodePortDisplayMode(portDisplayList().first());
        return;
    }
    if (index == m_portDisplayIndex)
        return;
    m_portDisplayIndex = index;
    updatePortVisibility();
    emit defaultNodePortDisplayModeChanged(Mode);
}

void OssSnNodeGraphViewContextManager::resetDefaultNodePortDisplayMode()
{
    setDefaultNodePortDisplayMode(defaultOf(Preferences::DefaultNodePortDisplayMode).toString());
}

void OssSnNodeGraphViewContextManager::setZoomTo(ZoomTo Value)
{
    if (!assign(m_zoomTo, Value))
        return;
    emit zoomToChanged(Value);
    emit zoomToChangedAsInt(int(Value));
}

void OssSnNodeGraphViewContextManager::setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
    const QString &Value)
{
    if (Value == m_colorspaceBehaviour ||
        !autoUpdateUpstreamMergeNodeColorspaceEnabledList().contains(Value))
        return;
    m_colorspaceBehaviour = Value;
    emit autoUpdateUpstreamMergeNodeColorspaceEnabledChanged(Value);
}

void OssSnNodeGraphViewContextManager::setDefaultMCMCollapsedState(DefaultMCMCollapsedState Value)
{
    if (!assign(m_collapsedState, Value))
        return;
    emit defaultMCMCollapsedStateChanged(Value);
    emit defaultMCMCollapsedStateChangedAsInt(int(Value));
}

void OssSnNodeGraphViewContextManager::updatePortVisibility()
{
    OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project)
        return;
    for (OssShadingGroup *group : project->shadingGroups()) {
        OssShaderNetwork *network = OssShaderNetworkManager::instance()->getShaderNetwork(group);
        if (!network)
            continue;
        for (OssSnBaseNode *node : network->getAllNodes())
            if (OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node))
                context->applyPortVisibility();
    }
}
