#include "OssShaderNetworkView.h"

#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgNode.h>
#include <OssNgUndo.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QCursor>
#include <QGraphicsScene>
#include <QKeyEvent>
#include <QLineF>
#include <QMouseEvent>

namespace {

// A drag shorter than this (in scene units) is a click or a jitter, not a move.
constexpr qreal MoveThreshold = 5.0;

OssNgEdge *asEdge(QGraphicsItem *item)
{
    if (!item || item->type() != OssNgEdge::Type)
        return nullptr;
    return static_cast<OssNgEdge *>(static_cast<QGraphicsObject *>(item));
}

QString nodeName(OssNgNode *node)
{
    if (auto *business = qobject_cast<OssSnBaseNode *>(node->parent()))
        return business->name();
    return node->text();
}

} // namespace

// --- node moves

void OssShaderNetworkView::mousePressEvent(QMouseEvent *event)
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    // The base view first: the press may change the selection.
    OssNgView::mousePressEvent(event);
    m_nodeStartPositions.clear();
    m_recordedNodes.clear();
    for (OssNgNode *node : sortedSelection()) {
        m_nodeStartPositions.insert(node, node->scenePos());
        m_recordedNodes.insert(node, node);
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(node);
        if (!backdrop)
            continue;
        // What a backdrop carries moves with it and is recorded with it.
        for (const QPointer<OssNgNode> &child : backdrop->childrenList()) {
            if (!child) {
                OSS_DEBUG("Backdrop has a null child: %s", qPrintable(backdrop->titleText()));
                continue;
            }
            m_nodeStartPositions.insert(child, child->scenePos());
            m_recordedNodes.insert(child, child);
        }
    }
}

void OssShaderNetworkView::mouseReleaseEvent(QMouseEvent *event)
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    // A release that ends one of the base view's own operations (pan, rubber band, edge drag,
    // sever, zoom) is not a move; a node drag leaves the base view idle.
    const int state = interactionState();
    OssNgView::mouseReleaseEvent(event);
    if (state != Idle || event->button() != Qt::LeftButton)
        return;
    if (scene()->selectedItems().isEmpty())
        return;
    recordNodeMoves();
}

void OssShaderNetworkView::recordNodeMoves()
{
    for (auto it = m_nodeStartPositions.begin(); it != m_nodeStartPositions.end();)
        it = m_recordedNodes.value(it.key()) ? std::next(it) : m_nodeStartPositions.erase(it);
    bool moved = false;
    for (auto it = m_nodeStartPositions.cbegin(); it != m_nodeStartPositions.cend() && !moved; ++it)
        moved = QLineF(it.value(), it.key()->scenePos()).length() >= MoveThreshold;
    if (!moved)
        return;
    const QString title =
        m_nodeStartPositions.size() == 1
            ? QStringLiteral("Move node %1").arg(nodeName(m_nodeStartPositions.firstKey()))
            : QStringLiteral("Move multiple (%1) nodes").arg(m_nodeStartPositions.size());
    OssUndoManager::AutoMacro macro(title);
    for (auto it = m_nodeStartPositions.cbegin(); it != m_nodeStartPositions.cend(); ++it) {
        OssNgNode *node = it.key();
        node->processAutoinsert();
        macro.addUndo(new OssNgNodePositionChangeUndo(node, it.value(), node->pos()), false);
    }
    // A moved backdrop pushes aside the containers it now reaches.
    for (auto it = m_nodeStartPositions.cbegin(); it != m_nodeStartPositions.cend(); ++it)
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(it.key()))
            if (backdrop->scenePos() != it.value())
                settleContainersAround(qobject_cast<OssSnBaseNode *>(backdrop->parent()),
                                       QRectF(it.value(), backdrop->nodeSize()));
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

// --- keys

void OssShaderNetworkView::keyPressEvent(QKeyEvent *event)
{
    QGraphicsScene *graph = scene();
    if (event->key() == Qt::Key_Control && graph && !graph->mouseGrabberItem())
        highlightDotableEdges();
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && event->modifiers().testFlag(Qt::ControlModifier) && graph) {
        const QList<QGraphicsItem *> selected = graph->selectedItems();
        OssNgNode *gui = selected.isEmpty() ? nullptr : OssNgNode::fromItem(selected.first());
        auto *group = gui ? qobject_cast<OssSnGroupNode *>(gui->parent()) : nullptr;
        if (group)
            if (auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
                    OssSnNodeGraphViewContext::of(group)))
                context->showGroupNodeTab();
    }
    // The base view sees every key, these included.
    event->ignore();
    OssNgView::keyPressEvent(event);
}

void OssShaderNetworkView::keyReleaseEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Control)
        deactivateDotableMode();
    if (event->key() == Qt::Key_Escape && scene() && asEdge(scene()->mouseGrabberItem()))
        dropGrabbedEdge();
    event->ignore();
    QGraphicsView::keyReleaseEvent(event);
}

// --- edges

void OssShaderNetworkView::highlightDotableEdges()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    const QRectF visible(mapToScene(QPoint(0, 0)),
                         mapToScene(QPoint(viewport()->width() - 1, viewport()->height() - 1)));
    const QList<QGraphicsItem *> inSight =
        scene()->items(visible, Qt::IntersectsItemShape, Qt::DescendingOrder);
    for (QGraphicsItem *item : inSight)
        if (OssNgEdge *edge = asEdge(item))
            if (edge->isFullConnected())
                edge->switchToDotableMode(true);
}

void OssShaderNetworkView::deactivateDotableMode()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    for (QGraphicsItem *item : scene()->items())
        if (OssNgEdge *edge = asEdge(item))
            if (edge->isFullConnected())
                edge->switchToDotableMode(false);
}

void OssShaderNetworkView::dropGrabbedEdge()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    if (OssNgEdge *edge = asEdge(scene()->mouseGrabberItem())) {
        edge->releaseMouse(QPointF(), true);
        // releaseMouse() has normally let go of the grab already.
        if (scene()->mouseGrabberItem() == edge)
            edge->ungrabMouse();
    }
}

void OssShaderNetworkView::toggleEdgeSeverAction()
{
    setCursorTrackingMode(cursorTrackingMode() == EdgeSeverTracking ? NormalTracking
                                                                    : EdgeSeverTracking);
}

void OssShaderNetworkView::createUnconnectedDotNode(OssNgEdge *CandidateEdge)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    const QString dotKey = QStringLiteral("Misc/Dot");
    // The creation and the splice are one step.
    OssUndoManager::AutoMacro macro(QStringLiteral("Create %1").arg(dotKey));
    m_network->clearSelection();
    OssSnBaseNode *dot =
        createNodeAt(dotKey, mapToScene(viewport()->mapFromGlobal(QCursor::pos())));
    if (!dot)
        return;
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(dot))
        gui->setupNodeForInsertionIntoEdge(CandidateEdge);
}
