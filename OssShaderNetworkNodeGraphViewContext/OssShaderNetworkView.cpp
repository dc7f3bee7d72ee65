#include "OssShaderNetworkView.h"

#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssDebug.h>
#include <OssNgBackdropNode.h>
#include <OssNgExtendedNode.h>
#include <OssNgStyle.h>
#include <OssNgUndo.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnGroupNode.h>
#include <OssSnViewerNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QCursor>
#include <QFocusEvent>
#include <QGraphicsScene>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QTimer>

#include <cmath>

namespace {

constexpr qreal Gap = 30.0;

OssNgNode *guiOf(OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContext::guiNodeOf(node);
}

// A node without a port list runs top to bottom: it is laid out with the axes exchanged.
bool isFlipped(OssSnBaseNode *node)
{
    const OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node);
    return context && context->portListModeAsInt() == OssNgExtendedNode::PortListHidden;
}

} // namespace

OssShaderNetworkView::OssShaderNetworkView(QWidget *parent) : OssNgView(parent)
{
    setAcceptDrops(true);
    connect(this, &OssNgView::shakeToExtractTriggered, this,
            &OssShaderNetworkView::onShakeToExtractTriggered);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &OssShaderNetworkView::onProjectClosed);
    // The manager creating this view finishes its own set-up first; the timer dies with the
    // view, so a view gone within the delay never binds.
    QTimer::singleShot(500, this, &OssShaderNetworkView::deferredConnectToViewContextManager);
}

OssShaderNetworkView::~OssShaderNetworkView()
{
    m_nodeStartPositions.clear();
}

void OssShaderNetworkView::setNetwork(OssShaderNetwork *network)
{
    if (m_network)
        disconnect(m_network, &OssShaderNetwork::allowViewUpdateChanged, this,
                   &OssShaderNetworkView::allowViewUpdateChanged);
    m_network = network;
    if (network) {
        setUpdatesEnabled(network->allowViewUpdate());
        connect(network, &OssShaderNetwork::allowViewUpdateChanged, this,
                &OssShaderNetworkView::allowViewUpdateChanged);
    }
}

bool OssShaderNetworkView::autoInsertEnabled() const
{
    return OssSnNodeGraphViewContextManager::instance()->isAutoInsertOn();
}

void OssShaderNetworkView::deferredConnectToViewContextManager()
{
    OssSnNodeGraphViewContextManager *manager = OssSnNodeGraphViewContextManager::instance();
    connect(manager, &OssSnNodeGraphViewContextManager::zoomToChanged, this,
            &OssShaderNetworkView::onZoomToChanged);
    applyZoomAnchor();
    connect(manager, &OssSnNodeGraphViewContextManager::shakeToExtractEnabledChanged, this,
            &OssShaderNetworkView::onShakeToExtractEnabledChanged);
    connect(manager, &OssSnNodeGraphViewContextManager::shakeToExtractShakesChanged, this,
            &OssShaderNetworkView::onShakeToExtractShakesChanged);
    connect(manager, &OssSnNodeGraphViewContextManager::shakeToExtractTimeChanged, this,
            &OssShaderNetworkView::onShakeToExtractTimeChanged);
    // Applied as the slots do: a disabled shake also ends edge pick-up tracking.
    m_shakeToExtractEnabled = !manager->shakeToExtractEnabled();
    onShakeToExtractEnabledChanged(manager->shakeToExtractEnabled());
    onShakeToExtractShakesChanged(manager->shakeToExtractShakes());
    onShakeToExtractTimeChanged(manager->shakeToExtractTime());
}

void OssShaderNetworkView::applyZoomAnchor()
{
    switch (OssSnNodeGraphViewContextManager::instance()->zoomToAsInt()) {
    case OssSnNodeGraphViewContextManager::Center:
        setTransformationAnchor(AnchorViewCenter);
        break;
    case OssSnNodeGraphViewContextManager::Cursor:
        setTransformationAnchor(AnchorUnderMouse);
        break;
    default:
        break;
    }
}

void OssShaderNetworkView::onZoomToChanged()
{
    applyZoomAnchor();
}

void OssShaderNetworkView::allowViewUpdateChanged(bool AllowViewUpdate)
{
    setUpdatesEnabled(AllowViewUpdate);
}

void OssShaderNetworkView::onProjectClosed()
{
    setCursorTrackingMode(NormalTracking);
}

void OssShaderNetworkView::setNavigationControlType(QString ControlType)
{
    m_navigationControlType = ControlType;
}

void OssShaderNetworkView::onShakeToExtractEnabledChanged(bool Enabled)
{
    if (Enabled == m_shakeToExtractEnabled)
        return;
    m_shakeToExtractEnabled = Enabled;
    if (!Enabled && cursorTrackingMode() == EdgePickUpTracking)
        setCursorTrackingMode(NormalTracking);
}

void OssShaderNetworkView::onShakeToExtractShakesChanged(int Shakes)
{
    if (Shakes != m_shakeToExtractShakes)
        m_shakeToExtractShakes = Shakes;
}

void OssShaderNetworkView::onShakeToExtractTimeChanged(int Time)
{
    if (Time != m_shakeToExtractTime)
        m_shakeToExtractTime = Time;
}

void OssShaderNetworkView::onShakeToExtractTriggered()
{
    if (m_network)
        m_network->extractNodes(m_network->selectedNodes(), true);
}

void OssShaderNetworkView::resizeEvent(QResizeEvent *event)
{
    OssNgView::resizeEvent(event);
    if (m_framePending >= 0 && isVisible()) {
        const bool entire = m_framePending == 1;
        m_framePending = -1;
        frameNodes(entire);
    }
}

void OssShaderNetworkView::focusOutEvent(QFocusEvent *event)
{
    deactivateDotableMode();
    event->ignore();
}

void OssShaderNetworkView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (!scene())
        return;
    // The node whose own hit test takes the point, else the first selected GUI node.
    OssNgNode *gui = nullptr;
    for (QGraphicsItem *item : items(event->pos())) {
        OssNgNode *candidate = OssNgNode::fromItem(item);
        if (candidate && candidate->hitTest(candidate->mapFromScene(mapToScene(event->pos())))) {
            gui = candidate;
            break;
        }
    }
    if (!gui) {
        const QList<QGraphicsItem *> selected = scene()->selectedItems();
        gui = selected.isEmpty() ? nullptr : OssNgNode::fromItem(selected.first());
    }
    auto *node = gui ? qobject_cast<OssSnBaseNode *>(gui->parent()) : nullptr;
    if (node) {
        emit nodeDoubleClicked(node);
        if (qobject_cast<OssSnGroupNode *>(node) &&
            QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier))
            if (auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
                    OssSnNodeGraphViewContext::of(node)))
                context->showGroupNodeTab();
        if (node->hasTag(QStringLiteral("_viewer")))
            OssShaderNetworkManager::instance()->setCurrentViewerNode(node);
    }
    QGraphicsView::mouseDoubleClickEvent(event);
}

// --- framing

QRectF OssShaderNetworkView::selectionBounds(int *count) const
{
    QRectF bounds;
    if (count)
        *count = 0;
    if (!scene())
        return bounds;
    const QList<QGraphicsItem *> selected = scene()->selectedItems();
    if (count)
        *count = selected.size();
    for (QGraphicsItem *item : selected)
        if (OssNgNode::fromItem(item))
            bounds |= item->sceneBoundingRect();
    return bounds;
}

void OssShaderNetworkView::frameNodes(bool EntireScene)
{
    if (!scene())
        return;
    // A view not shown yet, or still at its first tiny size inside a dock being laid out, frames
    // again when it gets its real size.
    const bool sized = isVisible() && viewport()->width() >= 200 && viewport()->height() >= 150;
    m_framePending = sized ? -1 : int(EntireScene);
    int count = 0;
    const QRectF selection = selectionBounds(&count);
    const QRectF target = EntireScene || count < 1 ? visibleNodeBounds() : selection;
    fitInView(target, Qt::KeepAspectRatio);
    const float scale = float(transform().m11());
    if (scale > 1.0f) {
        scaleView(1.0 / scale);
        // The zoom anchor may be the cursor: the framed nodes stay in the middle.
        centerOn(target.center());
    }
}

void OssShaderNetworkView::frameSelectedNodes()
{
    frameNodes(false);
}

void OssShaderNetworkView::fitToViewAction()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    int count = 0;
    const QRectF selection = selectionBounds(&count);
    const QRectF rect = count <= 0 ? scene()->itemsBoundingRect() : selection;
    OSS_DEBUG("[ !! ] --FIT TO VIEW[lt(%f, %f), rb(%f, %f), c(%f, %f) h(%f), w(%f)], scale : %f",
              rect.left(), rect.top(), rect.right(), rect.bottom(), rect.center().x(),
              rect.center().y(), rect.height(), rect.width(), transform().m11());
    fitInView(rect, Qt::KeepAspectRatio);
    OSS_DEBUG("[ !! ] --POST FIT scale  %f", transform().m11());
    if (transform().m11() > 1.0) {
        scaleView(1.0 / transform().m11());
        centerOn(rect.center());
        OSS_DEBUG("[ !! ] --Rectangle has been downscaled to %f", transform().m11());
    }
}

void OssShaderNetworkView::ensureIsVisibleAction()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    int count = 0;
    const QRectF selection = selectionBounds(&count);
    const QRectF rect = count <= 0 ? scene()->itemsBoundingRect() : selection;
    OSS_DEBUG("[ !! ] --ENSURING IS VISIBLE [lt(%f, %f), rb(%f, %f), c(%f, %f) h(%f), w(%f)]",
              rect.left(), rect.top(), rect.right(), rect.bottom(), rect.center().x(),
              rect.center().y(), rect.height(), rect.width());
    ensureVisible(rect, 50, 50);
}

// --- placement

void OssShaderNetworkView::placeNode(OssSnBaseNode *node)
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    OssNgNode *gui = guiOf(node);
    if (!gui)
        return;
    int relocations = 0;
    while (relocations < 1000) {
        OssNgNode *other = nullptr;
        for (QGraphicsItem *item : gui->collidingItems(Qt::IntersectsItemShape)) {
            OssNgNode *candidate = OssNgNode::fromItem(item);
            // Backdrops never count as overlaps.
            if (candidate && !qobject_cast<OssNgBackdropNode *>(candidate)) {
                other = candidate;
                break;
            }
        }
        if (!other)
            break;
        OSS_DEBUG("[ -- ] Found overlapping node %p, '%s', will relocate THIS node (%p, '%s') ",
                  static_cast<void *>(other), qPrintable(other->text()), static_cast<void *>(gui),
                  qPrintable(gui->text()));
        relocateNodeBeside(gui, other);
        ++relocations;
    }
    if (relocations > 0)
        emit gui->posChanged(gui->pos());
}

void OssShaderNetworkView::relocateNodeBeside(OssNgNode *guiNode, OssNgNode *otherGuiNode)
{
    if (!guiNode || !otherGuiNode)
        return;
    const QRectF bounds = otherGuiNode->boundingRect();
    const double x = otherGuiNode->pos().x() + bounds.width() + Gap;
    const double y = otherGuiNode->pos().y() + bounds.height() + Gap;
    guiNode->setPos(qreal(float(x)), qreal(float(y)));
}

void OssShaderNetworkView::positionNodeManual(OssSnBaseNode *node, OssSnBaseNode *reference,
                                              const QPointF &offset)
{
    OssNgNode *gui = guiOf(node);
    OssNgNode *ref = guiOf(reference);
    if (gui && ref)
        gui->setPos(ref->pos() + offset);
}

void OssShaderNetworkView::positionNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *reference,
                                                  int factor)
{
    OssNgNode *gui = guiOf(node);
    OssNgNode *ref = guiOf(reference);
    if (!gui || !ref)
        return;
    const QPointF c = ref->pos() + ref->boundingRect().center();
    const QPointF target(qreal(float(c.x())), qreal(float(c.y() + 100.0 * factor)));
    gui->setPos(target - gui->boundingRect().center());
}

void OssShaderNetworkView::positionNodeNextTo(OssSnBaseNode *node, OssSnBaseNode *reference)
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    OssNgNode *gui = guiOf(node);
    if (!gui)
        return;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(gui);
    if (!backdrop) {
        OSS_DEBUG("[ !! ] Invalid container gui node found for node '%s'",
                  qPrintable(node->name()));
        return;
    }
    OssNgNode *ref = guiOf(reference);
    if (!ref)
        return;
    if (qobject_cast<OssNgBackdropNode *>(ref)) {
        backdrop->setPosition(
            QPointF(ref->pos().x() + ref->boundingRect().width() + Gap, ref->pos().y()));
        return;
    }
    const float m = float(OssNgStyle::instance()->horizontalSpacing());
    const float right =
        float(ref->sceneBoundingRect().center().x() + ref->boundingRect().width() / 2.0);
    const float x =
        right + float(Gap) + m + m + float(Gap) - float(ref->boundingRect().center().x());
    backdrop->setPosition(QPointF(x, backdrop->pos().y()));
}

void OssShaderNetworkView::positionNodeAtFreeSpot(OssSnBaseNode *node)
{
    OssNgNode *gui = guiOf(node);
    if (!gui || !scene())
        return;
    // The bounding rectangle of everything in the scene, the node itself included.
    const QRectF bounds = scene()->itemsBoundingRect();
    const OssNgStyle *style = OssNgStyle::instance();
    gui->setPos(bounds.right() + Gap,
                bounds.top() + Gap + style->verticalSpacing() + style->verticalSpacingFactor());
}

void OssShaderNetworkView::positionNodeOnGrid(OssSnBaseNode *node, OssSnBaseNode *reference,
                                              int column, int row, bool freshCoordinates)
{
    // One grid step is half the reference's extent plus half the gap; the node's own size is
    // added beyond the first step so that a wider or taller node keeps the gap. Without a
    // reference the node goes to the free spot. Fresh coordinates start from the reference's
    // present position; otherwise from where the reference was when it was last picked up, so
    // nodes placed in one command line up with the reference's starting place.
    OssNgNode *gui = guiOf(node);
    if (!gui)
        return;
    OssNgNode *ref = guiOf(reference);
    if (!ref) {
        positionNodeAtFreeSpot(node);
        return;
    }
    const QRectF refBounds = ref->boundingRect();
    const QRectF ownBounds = gui->boundingRect();
    const QPointF origin = freshCoordinates ? ref->pos() : ref->savedPosition();
    const QPointF refCentre = origin + refBounds.center();
    const double stepX = refBounds.width() / 2.0 + Gap / 2.0;
    const double rowStep =
        (refBounds.height() + ownBounds.height()) / 2.0 + OssNgStyle::instance()->verticalSpacing();
    double dx = column * stepX;
    if (column != 0)
        dx += (column > 0 ? 1 : -1) * (ownBounds.width() - refBounds.width()) / 2.0;
    const double dy = row * rowStep;
    gui->setPos(refCentre + QPointF(dx, dy) - ownBounds.center());
}

void OssShaderNetworkView::positionNodeBesideReference(OssSnBaseNode *node,
                                                       OssSnBaseNode *reference)
{
    // Beside means along the flow: to the right of the reference for nodes whose ports run
    // top to bottom, below it for nodes whose ports run left to right; centred on it across.
    OssNgNode *gui = guiOf(node);
    OssNgNode *ref = guiOf(reference);
    if (!gui || !ref)
        return;
    const QRectF refBounds = ref->boundingRect();
    const QPointF refCentre = ref->pos() + refBounds.center();
    const QPointF ownCentre = gui->boundingRect().center();
    if (isFlipped(node))
        gui->setPos(refCentre.x() - ownCentre.x(), ref->pos().y() + refBounds.height() + Gap);
    else
        gui->setPos(ref->pos().x() + refBounds.width() + Gap, refCentre.y() - ownCentre.y());
}

void OssShaderNetworkView::syncNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *container,
                                              OssSnBaseNode *reference,
                                              OssSnBaseNode *referenceContainer)
{
    // The node goes one step under its reference; a container (backdrop) of the node grows to
    // hold it. When the reference sits in another container, the node lines up with that
    // container's left edge instead of the reference's centre.
    OssNgNode *gui = guiOf(node);
    if (!gui)
        return;
    positionNodeUnderneath(node, reference, 1);
    if (auto *refBackdrop = qobject_cast<OssNgBackdropNode *>(guiOf(referenceContainer)))
        gui->setPos(refBackdrop->pos().x() + Gap, gui->pos().y());
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiOf(container));
    if (!backdrop)
        return;
    const QRectF area(backdrop->pos(), backdrop->nodeSize());
    const QRectF needed = area.united(gui->sceneBoundingRect().adjusted(-Gap, -Gap, Gap, Gap));
    if (needed != area) {
        OSS_DEBUG("* Stretch out container node '%s'", qPrintable(container->name()));
        backdrop->setNodeSize(needed.size());
        backdrop->setRect(QRectF(needed.topLeft() - backdrop->pos(), needed.size()));
    }
}

void OssShaderNetworkView::uniformariseContainers(const QList<OssSnBaseNode *> &containers)
{
    // Containers of one layer stack get the width of the widest and line up on the furthest
    // left edge.
    OssSnBaseNode *widest = nullptr;
    qreal width = 0;
    qreal furthestX = 0;
    bool first = true;
    for (OssSnBaseNode *container : containers) {
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiOf(container));
        if (!backdrop)
            continue;
        if (backdrop->nodeSize().width() > width) {
            width = backdrop->nodeSize().width();
            widest = container;
        }
        furthestX = first ? backdrop->pos().x() : qMin(furthestX, backdrop->pos().x());
        first = false;
    }
    if (!widest)
        return;
    OSS_DEBUG("[ -- ] WidestMaskStackNode : '%s', WidestAdjustmentStackNode : '%s', FurthestX : %f",
              qPrintable(widest->name()), qPrintable(widest->name()), furthestX);
    for (OssSnBaseNode *container : containers) {
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiOf(container));
        if (!backdrop)
            continue;
        backdrop->setPosition(QPointF(furthestX, backdrop->pos().y()));
        backdrop->setNodeSize(QSizeF(width, backdrop->nodeSize().height()));
    }
}

// --- commands

OssSnBaseNode *OssShaderNetworkView::insertDotIntoEdge(OssNgEdge *edge)
{
    if (!m_network || !edge || !edge->isFullConnected())
        return nullptr;
    auto *source = qobject_cast<OssSnBaseNode *>(edge->sourceNode()->parent());
    auto *target = qobject_cast<OssSnBaseNode *>(edge->targetNode()->parent());
    if (!source || !target)
        return nullptr;
    const QString output = edge->outputPoint();
    const QString input = edge->inputName();
    const QPointF middle = edge->dotMarkerScenePos();
    OssSnBaseNode *dot = m_network->createNode(QStringLiteral("Misc/Dot"));
    if (!dot)
        return nullptr;
    if (OssNgNode *gui = guiOf(dot))
        gui->setPos(middle - gui->boundingRect().center());
    const QString dotInput = dot->inputNames().value(0);
    dot->connectInput(dotInput, source, output);
    target->connectInput(input, dot, dot->prefferedOutputPoint());
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    return dot;
}

bool OssShaderNetworkView::connectToViewer(OssSnBaseNode *node, int number)
{
    if (!m_network || !node)
        return false;
    OssSnBaseNode *viewer = m_network->viewerNode();
    auto *viewerNode = qobject_cast<OssSnViewerNode *>(viewer);
    if (!viewerNode || viewer == node)
        return false;
    return viewerNode->connectViewerInput(QString::number(number), node,
                                          node->prefferedOutputPoint());
}
