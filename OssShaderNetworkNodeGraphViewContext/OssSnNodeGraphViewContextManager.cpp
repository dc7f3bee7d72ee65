#include "OssSnNodeGraphViewContextManager.h"

#include "OssShaderNetworkView.h"
#include "OssSnManagerActions.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextFactories.h"
#include "OssSnNodeGraphViewContextLoader.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnNodePropertiesWidget.h"
#include "OssSnSceneRegistry.h"
#include "OssSnUINodeGraphViewContext.h"
#include "ZelGLTextureToken.h"

#include <OssDebug.h>
#include <OssNgUndo.h>
#include <OssPalette.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssResourceInfo.h>
#include <OssShaderNetwork.h>
#include <OssShadingGroup.h>
#include <OssSnGroupNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QGraphicsScene>

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
    m_scenes = new OssSnSceneRegistry(this);
    Preferences::applyDefaults(this);
    loadPreferences();
    Preferences::registerWith(this);
    m_loader = new OssSnNodeGraphViewContextLoader;
    OssShaderNetworkManager::instance()->registerContextLoader(QStringLiteral("NodeGraphView"),
                                                               m_loader);
    OssSnNodeGraphViewContextFactories::registerAll();
    connectToHost();
    OssSnManagerActions::create(this);
    initialiseNodeGraphPalette();
    initialiseNodePropertiesPalette();
}

OssSnNodeGraphViewContextManager::~OssSnNodeGraphViewContextManager() = default;

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

void OssSnNodeGraphViewContextManager::onProjectClosing()
{
    // Only the closing project's scenes go: a project being opened is loaded, and its nodes
    // registered, before the project it replaces closes.
    OssProject *closing = OssProjectManager::instance()->currentProject();
    const QList<OssShaderNetwork *> roots =
        closing ? closing->networks() : QList<OssShaderNetwork *>();
    // Views let go of the scenes before they go.
    if (m_nodeGraphWidget)
        for (int i = 0; i < m_nodeGraphWidget->count(); ++i)
            if (auto *view = qobject_cast<OssShaderNetworkView *>(m_nodeGraphWidget->widget(i)))
                if (!view->network() || OssSnSceneRegistry::belongsTo(view->network(), roots)) {
                    view->setScene(nullptr);
                    view->setNetwork(nullptr);
                }
    m_scenes->releaseProject(roots);
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
    for (OssSnBaseNode *node : nodesOfProject(Project))
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

OssSnNodePropertiesWidget *OssSnNodeGraphViewContextManager::propertiesPanel() const
{
    return qobject_cast<OssSnNodePropertiesWidget *>(m_nodePropertiesWidget.data());
}

void OssSnNodeGraphViewContextManager::showNodePropertiesAtPositionEnd(OssSnBaseNode *Node,
                                                                       OssSnBaseNode *Target,
                                                                       bool Undo)
{
    if (propertiesPanel() && Node && Target)
        propertiesPanel()->showNodePropertiesAtPositionEnd(Node, Target, Undo);
}

void OssSnNodeGraphViewContextManager::showNodePropertiesAtPositionBegin(OssSnBaseNode *Node,
                                                                         OssSnBaseNode *Target,
                                                                         bool Undo)
{
    if (propertiesPanel() && Node && Target)
        propertiesPanel()->showNodePropertiesAtPositionBegin(Node, Target, Undo);
}

void OssSnNodeGraphViewContextManager::showNodeProperties(OssSnBaseNode *Node)
{
    if (propertiesPanel())
        propertiesPanel()->showNodeProperties(Node);
}

OssShaderNetworkView *OssSnNodeGraphViewContextManager::currentPageView() const
{
    if (!m_nodeGraphWidget) {
        OSS_DEBUG("GraphWidget is NULL");
        return nullptr;
    }
    QWidget *page = m_nodeGraphWidget->currentWidget();
    if (!page) {
        OSS_DEBUG("PageWidget is NULL");
        return nullptr;
    }
    auto *view = qobject_cast<OssShaderNetworkView *>(page);
    if (!view)
        OSS_DEBUG("GraphView is NULL");
    return view;
}

void OssSnNodeGraphViewContextManager::beautifyNodesLayout()
{
    OssShaderNetworkView *view = currentPageView();
    if (!view)
        return;
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
    OssShaderNetworkView *view = currentPageView();
    if (!view)
        return;
    OssShaderNetwork *network = view->network();
    if (!network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    // The actions are named after the collapsed states; stream collapsed is for multi-channel
    // nodes and shaders only.
    const int mode = action->property("Mode").toInt();
    for (OssSnBaseNode *node : network->selectedNodes()) {
        if (mode == StreamCollapsed && !qobject_cast<OssSnMultiChannelGroupNode *>(node) &&
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
    connect(panel, &OssSnNodePropertiesWidget::propertiesUnderMouseChanged, this,
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
    for (OssSnBaseNode *node : nodesOfProject(OssProjectManager::instance()->currentProject()))
        if (OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node))
            context->applyPortVisibility();
}

QList<OssSnBaseNode *> OssSnNodeGraphViewContextManager::nodesOfProject(OssProject *project)
{
    QList<OssSnBaseNode *> nodes;
    if (!project)
        return nodes;
    for (OssShadingGroup *group : project->shadingGroups())
        if (OssShaderNetwork *network =
                OssShaderNetworkManager::instance()->getShaderNetwork(group))
            nodes += network->getAllNodes();
    return nodes;
}
