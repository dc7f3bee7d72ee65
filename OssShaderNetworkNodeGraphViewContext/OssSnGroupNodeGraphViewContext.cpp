#include "OssSnGroupNodeGraphViewContext.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnNodePropertiesWidget.h"
#include "ZelGLTextureToken.h"

#include <OssDebug.h>
#include <OssFileDialog.h>
#include <OssNgEdge.h>
#include <OssResourceInfo.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBakePointNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMaterialNode.h>
#include <OssSnMultiChannelBakePointNode.h>
#include <OssSnMultiChannelBottomTransparencyNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssSnMultiChannelMergeNode.h>

#include <QGraphicsScene>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

namespace {

// Gaps around the group's input and output nodes inside the subgraph.
constexpr qreal OutputGap = 150;
constexpr qreal InputGap = 70;
constexpr qreal InputSpacing = 30;

} // namespace

OssSnGroupNodeGraphViewContext::OssSnGroupNodeGraphViewContext(QObject *parent)
    : OssSnNodeGraphViewContext(parent, true)
{}

OssSnGroupNodeGraphViewContext::~OssSnGroupNodeGraphViewContext()
{
    // The subgraph view belongs to this context, wherever its tab is.
    delete m_view.data();
}

OssSnGroupNode *OssSnGroupNodeGraphViewContext::group() const
{
    return qobject_cast<OssSnGroupNode *>(parentNode());
}

bool OssSnGroupNodeGraphViewContext::ownsNode(const OssSnBaseNode *node) const
{
    return node && node == parentNode();
}

int OssSnGroupNodeGraphViewContext::shapeForGroup(const OssSnBaseNode *node)
{
    if (qobject_cast<const OssSnMaterialNode *>(node))
        return OssNgNode::MaterialShape;
    if (qobject_cast<const OssSnMultiChannelGroupNode *>(node))
        return OssNgNode::MultiChannelGroupShape;
    return OssNgNode::GroupShape;
}

void OssSnGroupNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContextManager *manager = OssSnNodeGraphViewContextManager::instance();
    if (!m_view) {
        m_view = new OssShaderNetworkView;
        if (auto *properties =
                qobject_cast<OssSnNodePropertiesWidget *>(manager->nodePropertiesWidget()))
            connect(m_view.data(), &OssShaderNetworkView::nodeDoubleClicked, properties,
                    &OssSnNodePropertiesWidget::showNodeProperties);
    }
    OssSnGroupNode *group = this->group();
    if (!group) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    OssShaderNetwork *inner = group->groupNetwork();
    manager->registerGroupNetwork(inner, group);
    m_view->setNetwork(inner);
    m_view->setScene(manager->sceneForNetwork(inner));
    m_view->init();
    if (OssSnNodeGraphWidget *widget = manager->nodeGraphWidget())
        m_view->setNavigationControlType(widget->navigationControlType());

    using Ctx = OssSnGroupNodeGraphViewContext;
    connect(group, &OssSnBaseNode::nameChanged, this, &Ctx::changeGroupNodeTabText);
    connect(group, &OssSnGroupNode::openNodeGraph, this, &Ctx::forceOpenGroupSubgraph);
    connect(group, &OssSnGroupNode::newGroupNodeInputOutputCreated, this,
            &Ctx::adjustInputOutputPos);
    connect(group, &OssSnGroupNode::clearPortClusters, this, &Ctx::clearPortClusters);
    connect(group, &OssSnGroupNode::updatePortClusters, this, &Ctx::updatePortClusters);
    if (auto *multi = qobject_cast<OssSnMultiChannelGroupNode *>(group))
        connect(multi, &OssSnMultiChannelGroupNode::validityChanged, this,
                &Ctx::updateMultiChannelNodeUI);
    if (auto *bake = qobject_cast<OssSnMultiChannelBakePointNode *>(group))
        connect(bake, &OssSnMultiChannelBakePointNode::bakedStateChanged, this,
                &Ctx::onBakedStateChanged);
    // The tab goes when the group is deregistered: the scene registry, which hears every
    // deregistration once, hands it to the removed group's own context only.

    m_shapeType = shapeForGroup(group);
    OssSnNodeGraphViewContext::initializeGui();
    updateMultiChannelNodeUI();
    onBakedStateChanged();
    // A group's tab starts hidden.
    addTabToWidget(group);
    hideGroupNodeTab(group->network(), group);

    // Inner nodes made before this view existed come into its scene with their edges.
    QGraphicsScene *scene = m_view->scene();
    for (OssSnBaseNode *node : inner->nodes()) {
        OssNgNode *gui = guiNodeOf(node);
        if (!gui || !scene || gui->scene() == scene)
            continue;
        if (gui->scene())
            gui->scene()->removeItem(gui);
        scene->addItem(gui);
        for (OssNgEdge *edge : gui->inputs())
            if (edge && edge->scene() != scene) {
                if (edge->scene())
                    edge->scene()->removeItem(edge);
                scene->addItem(edge);
            }
    }
}

void OssSnGroupNodeGraphViewContext::updateMultiChannelNodeUI()
{
    OssSnBaseNode *node = parentNode();
    OssNgExtendedNode *gui = extendedNode();
    if (!node || !gui)
        return;
    const auto *multi = qobject_cast<const OssSnMultiChannelGroupNode *>(node);
    const bool valid = !multi || multi->isValid();
    QString category;
    int shape = OssNgNode::MultiChannelGroupShape;
    if (qobject_cast<OssSnMultiChannelMergeNode *>(node)) {
        category = QStringLiteral("MultiChannelMerge");
    } else if (qobject_cast<OssSnMultiChannelBakePointNode *>(node)) {
        category = QStringLiteral("MultiChannelBakePoint");
    } else if (qobject_cast<OssSnMultiChannelBottomTransparencyNode *>(node)) {
        category = QStringLiteral("MultiChannelBottomTransparency");
    } else if (qobject_cast<OssSnMaterialNode *>(node)) {
        category = QStringLiteral("MultiChannelMaterial");
        shape = OssNgNode::MaterialShape;
    } else {
        // Other groups keep the category and shape they were given.
        return;
    }
    if (!valid) {
        category = QStringLiteral("MultiChannelInvalid");
        shape = OssNgNode::GroupShape;
    }
    gui->setCategory(category);
    m_shapeType = shape;
    gui->setShapeType(shape);
    gui->updateShape();
}

void OssSnGroupNodeGraphViewContext::onBakedStateChanged()
{
    auto *bake = qobject_cast<OssSnMultiChannelBakePointNode *>(parentNode());
    OssNgExtendedNode *gui = extendedNode();
    if (!bake || !gui)
        return;
    bool any = false;
    bool stale = false;
    for (OssSnBaseNode *node : bake->activeBakePointNodes()) {
        auto *point = qobject_cast<OssSnBakePointNode *>(node);
        if (!point)
            continue;
        any = true;
        if (point->hasBakedResult() && !point->isBakedResultUpToDate(false))
            stale = true;
    }
    gui->setMark(OssNgExtendedNode::BakedMark, any);
    gui->setMark(OssNgExtendedNode::StaleMark, stale);
}

QString OssSnGroupNodeGraphViewContext::versionHashSource() const
{
    const OssSnBaseNode *node = parentNode();
    if (!node) {
        OSS_DEBUG("ParentNode is NULL");
        return QString();
    }
    if (qobject_cast<const OssSnMultiChannelGroupNode *>(node))
        return QString();
    return OssSnNodeGraphViewContext::versionHashSource();
}

// --- tabs

OssSnNodeGraphWidget *OssSnGroupNodeGraphViewContext::tabWidget() const
{
    if (!group() || !m_view)
        return nullptr;
    return OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
}

void OssSnGroupNodeGraphViewContext::addTabToWidget(OssSnBaseNode *Node)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!ownsNode(Node) || !widget || widget->indexOf(m_view) >= 0)
        return;
    // Adding the first tab beside the root one would make it current: keep the current one.
    QWidget *current = widget->currentWidget();
    widget->addTab(m_view, Node->name());
    if (current && widget->currentWidget() != current)
        widget->setCurrentWidget(current);
}

void OssSnGroupNodeGraphViewContext::currentAndFramed()
{
    OssSnNodeGraphWidget *widget = tabWidget();
    widget->setCurrentWidget(m_view);
    m_view->setFocus();
    m_view->frameNodes(true);
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(m_view->network());
}

void OssSnGroupNodeGraphViewContext::showGroupNodeTab()
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!widget)
        return;
    addTabToWidget(parentNode());
    currentAndFramed();
}

void OssSnGroupNodeGraphViewContext::makeGroupNodeTabCurrent(OssSnBaseNode *Node)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!ownsNode(Node) || !widget || widget->indexOf(m_view) < 0)
        return;
    currentAndFramed();
}

void OssSnGroupNodeGraphViewContext::forceOpenGroupSubgraph()
{
    if (OssSnNodeGraphWidget *widget = tabWidget())
        widget->refreshCurrentChanged();
    showGroupNodeTab();
}

void OssSnGroupNodeGraphViewContext::showGroupNodeTabBehind()
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!widget)
        return;
    addTabToWidget(parentNode());
    QWidget *previous = widget->currentWidget();
    if (previous == m_view)
        return;
    // Framing needs the view current for a moment; the user stays where they were.
    widget->setCurrentWidget(m_view);
    m_view->frameNodes(true);
    widget->setCurrentWidget(previous);
}

void OssSnGroupNodeGraphViewContext::hideGroupNodeTab(OssShaderNetwork *, OssSnBaseNode *node)
{
    OssSnNodeGraphWidget *widget = tabWidget();
    if (!ownsNode(node) || !widget)
        return;
    const int index = widget->indexOf(m_view);
    if (index > 0)
        widget->removeTab(index);
}

void OssSnGroupNodeGraphViewContext::changeGroupNodeTabText(QString text)
{
    OssSnNodeGraphWidget *widget = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    if (!widget) {
        OSS_DEBUG("Widget is NULL");
        return;
    }
    const int index = m_view ? widget->indexOf(m_view) : -1;
    if (index > 0)
        widget->setTabText(index, text);
}

// --- gizmo export

void OssSnGroupNodeGraphViewContext::onExportAsGizmo(OssSnGroupNode *GroupNode)
{
    if (!GroupNode) {
        OSS_DEBUG("OssSnGroupNodeGraphViewContext::onExportAsGizmo GroupNode is NULL");
        return;
    }
    if (GroupNode != parentNode())
        return;
    const QString fileName = OssFileDialog::getSaveFileName(
        nullptr, QStringLiteral("Export as Gizmo"), QStringLiteral("*.ong"),
        QString::fromLatin1(OssResourceInfo::defaultGizmoPathKey));
    if (fileName.isEmpty())
        return;
    QString error;
    if (!GroupNode->exportAsGizmo(fileName, &error))
        OSS_DEBUG("[ !! ] Could not export '%s' as a gizmo: %s", qPrintable(GroupNode->name()),
                  qPrintable(error));
}

// --- inner input and output nodes

void OssSnGroupNodeGraphViewContext::adjustInputOutputPos()
{
    OssSnGroupNode *g = group();
    if (!g) {
        OSS_DEBUG("g is NULL");
        return;
    }
    // The output nodes sit to the right of what feeds them, clear of it.
    for (OssSnBaseNode *output : g->groupOutputNodes()) {
        OssNgNode *gui = guiNodeOf(output);
        if (!gui)
            continue;
        output->setSelected(false);
        gui->setSelected(false);
        if (gui->inputPortNames().size() != 1) {
            OSS_DEBUG("Output node should have only one input into the node");
            continue;
        }
        OssNgEdge *edge = gui->input(gui->inputPortNames().first());
        OssNgNode *feeder = edge ? edge->sourceNode() : nullptr;
        if (!feeder)
            continue;
        gui->setPos(feeder->pos().x() + feeder->boundingRect().width() + OutputGap,
                    feeder->pos().y());
    }
    // The input nodes stand in a column to the left of the node each feeds, one under the
    // other when several feed the same node.
    QHash<OssNgNode *, int> column;
    for (OssSnBaseNode *input : g->groupInputNodes()) {
        OssNgNode *gui = guiNodeOf(input);
        if (!gui)
            continue;
        OssNgNode *fed = nullptr;
        for (const OssSnOutputLink &link : input->outputLinks())
            if ((fed = guiNodeOf(link.target)))
                break;
        if (!fed)
            continue;
        const int row = column.value(fed);
        column.insert(fed, row + 1);
        const QRectF own = gui->boundingRect();
        gui->setPos(fed->pos().x() - own.width() - InputGap,
                    fed->pos().y() + row * (own.height() + InputSpacing));
    }
}

// --- port clusters

void OssSnGroupNodeGraphViewContext::clearPortClusters()
{
    if (OssNgExtendedNode *gui = extendedNode())
        gui->clearPortClusters();
}

void OssSnGroupNodeGraphViewContext::setupPortClusters()
{
    OssSnBaseNode *node = parentNode();
    OssNgExtendedNode *gui = extendedNode();
    if (!node || !gui)
        return;
    // A shader group's ports fall into its base input, the layers over it, and its outputs.
    if (!node->hasTag(QStringLiteral("_shader")))
        return;
    const QStringList inputs = node->inputNames();
    for (int i = 0; i < inputs.size(); ++i)
        gui->setPortCluster(inputs.at(i), i == 0 ? QStringLiteral("Base") : QStringLiteral("Over"));
    for (const QString &output : node->outputPointNames())
        gui->setPortCluster(output, QStringLiteral("Output"));
}

void OssSnGroupNodeGraphViewContext::updatePortClusters()
{
    clearPortClusters();
    setupPortClusters();
}
