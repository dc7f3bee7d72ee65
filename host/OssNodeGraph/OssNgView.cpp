#include "OssNgView.h"

#include "OssNgBackdropNode.h"
#include "OssNgEdge.h"
#include "OssNgNode.h"
#include "OssNgStyle.h"

#include <QCursor>
#include <QGraphicsLineItem>
#include <QMouseEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double MinimumScale = 0.02;
constexpr double MaximumScale = 8.0;
constexpr double ZoomStep = 1.2;
constexpr int PanStep = 120;

} // namespace

OssNgView::OssNgView(QWidget *parent) : QGraphicsView(parent)
{
    setRenderHint(QPainter::Antialiasing);
    setTransformationAnchor(AnchorUnderMouse);
    setResizeAnchor(AnchorViewCenter);
    setDragMode(RubberBandDrag);
    setRubberBandSelectionMode(Qt::IntersectsItemShape);
    setViewportUpdateMode(SmartViewportUpdate);
    setOptimizationFlags(DontSavePainterState | DontAdjustForAntialiasing);
    setMouseTracking(true);
    // An endless canvas: the scene rectangle reaches far beyond any graph, and the scroll bars
    // that would show it are hidden; panning and zooming move over it.
    setSceneRect(QRectF(-CanvasHalfSize, -CanvasHalfSize, 2 * CanvasHalfSize, 2 * CanvasHalfSize));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

OssNgView::~OssNgView()
{
    delete m_dragEdge.data();
}

void OssNgView::init()
{
    if (QGraphicsScene *graph = scene()) {
        useSpatialIndex(graph);
        graph->setBackgroundBrush(OssNgStyle::instance()->backgroundColor());
    }
}

void OssNgView::useSpatialIndex(QGraphicsScene *scene)
{
    // The spatial index keeps hit tests and partial repaints cheap on large graphs. Its depth is
    // fixed: the depth Qt derives from the item count (15 levels for 10,000 nodes and their
    // edges) files a long edge in thousands of cells, and a laid-out graph has many long edges;
    // building the index then took seconds and every removal searched those cells. Ten levels
    // (1,024 cells) keep cells small enough for graphs of tens of thousands of nodes.
    constexpr int Depth = 10;
    if (!scene)
        return;
    scene->setItemIndexMethod(QGraphicsScene::BspTreeIndex);
    scene->setBspTreeDepth(Depth);
}

QRectF OssNgView::viewportInSceneCoords() const
{
    const QSize size = viewport()->size();
    return QRectF(mapToSceneExact(QPointF(0, 0)),
                  mapToSceneExact(QPointF(size.width(), size.height())));
}

void OssNgView::showSceneRect(const QRectF &rect)
{
    const QSize size = viewport()->size();
    if (rect.isEmpty() || size.isEmpty())
        return;
    const double scale = qMin(size.width() / rect.width(), size.height() / rect.height());
    setTransform(QTransform::fromScale(scale, scale));
    // Where the rectangle's centre is in the viewport now, against where it belongs.
    const QPointF offset =
        mapFromSceneExact(rect.center()) - QPointF(size.width() / 2.0, size.height() / 2.0);
    scrollBy(QPoint(qRound(offset.x()), qRound(offset.y())));
}

// The scroll bars hold the viewport's offset in the transformed scene; the canvas is always
// larger than the viewport, so they hold all of it.
QPointF OssNgView::mapToSceneExact(const QPointF &viewportPos) const
{
    const QPointF scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    return transform().inverted().map(viewportPos + scrolled);
}

QPointF OssNgView::mapFromSceneExact(const QPointF &scenePos) const
{
    const QPointF scrolled(horizontalScrollBar()->value(), verticalScrollBar()->value());
    return transform().map(scenePos) - scrolled;
}

void OssNgView::scrollBy(const QPoint &pixels)
{
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + pixels.x());
    verticalScrollBar()->setValue(verticalScrollBar()->value() + pixels.y());
}

double OssNgView::zoom() const
{
    return transform().m11();
}

void OssNgView::scaleView(double factor)
{
    const double target = zoom() * factor;
    if (factor <= 0 || target < MinimumScale || target > MaximumScale)
        return;
    scale(factor, factor);
}

void OssNgView::zoomAt(double factor, const QPoint &viewportPos)
{
    const QPoint scroll(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const bool sameAnchor = m_lastZoom.viewportPos == viewportPos && m_lastZoom.scroll == scroll &&
                            m_lastZoom.transform == transform();
    const QPointF anchored =
        sameAnchor ? m_lastZoom.scenePos : mapToSceneExact(QPointF(viewportPos));
    const ViewportAnchor previous = transformationAnchor();
    setTransformationAnchor(NoAnchor);
    scaleView(factor);
    setTransformationAnchor(previous);
    const QPointF offset = mapFromSceneExact(anchored) - QPointF(viewportPos);
    scrollBy(QPoint(qRound(offset.x()), qRound(offset.y())));
    m_lastZoom = {viewportPos, anchored,
                  QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value()),
                  transform()};
}

QPoint OssNgView::anchorPosition(QGraphicsView::ViewportAnchor anchor) const
{
    if (anchor == AnchorUnderMouse) {
        const QPoint cursor = viewport()->mapFromGlobal(QCursor::pos());
        if (viewport()->rect().contains(cursor))
            return cursor;
    }
    return viewport()->rect().center();
}

void OssNgView::zoomIn()
{
    zoomIn(ZoomStep);
}

void OssNgView::zoomOut()
{
    zoomOut(ZoomStep);
}

void OssNgView::zoomIn(double factor, QGraphicsView::ViewportAnchor anchor)
{
    if (anchor == NoAnchor) {
        const ViewportAnchor previous = transformationAnchor();
        setTransformationAnchor(NoAnchor);
        scaleView(factor);
        setTransformationAnchor(previous);
        return;
    }
    zoomAt(factor, anchorPosition(anchor));
}

void OssNgView::zoomOut(double factor, QGraphicsView::ViewportAnchor anchor)
{
    if (factor > 0)
        zoomIn(1.0 / factor, anchor);
}

void OssNgView::panLeft()
{
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - PanStep);
}

void OssNgView::panRight()
{
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() + PanStep);
}

void OssNgView::panUp()
{
    verticalScrollBar()->setValue(verticalScrollBar()->value() - PanStep);
}

void OssNgView::panDown()
{
    verticalScrollBar()->setValue(verticalScrollBar()->value() + PanStep);
}

QRectF OssNgView::visibleNodeBounds() const
{
    QRectF bounds;
    if (!scene())
        return bounds;
    for (QGraphicsItem *item : scene()->items())
        if (OssNgNode::fromItem(item) && item->isVisible())
            bounds = bounds.united(item->sceneBoundingRect());
    return bounds;
}

void OssNgView::centerViewOn(const QPointF &scenePos, bool)
{
    centerOn(scenePos);
}

QList<OssNgNode *> OssNgView::sortedSelection() const
{
    QList<OssNgNode *> nodes;
    if (!scene())
        return nodes;
    for (QGraphicsItem *item : scene()->selectedItems())
        if (OssNgNode *node = OssNgNode::fromItem(item))
            nodes.append(node);
    std::sort(nodes.begin(), nodes.end(), [](const OssNgNode *a, const OssNgNode *b) {
        if (a->pos().y() != b->pos().y())
            return a->pos().y() < b->pos().y();
        if (a->pos().x() != b->pos().x())
            return a->pos().x() < b->pos().x();
        return a->text() < b->text();
    });
    return nodes;
}

void OssNgView::setCursorTrackingMode(int mode)
{
    m_cursorTrackingMode = mode;
    viewport()->setCursor(mode == EdgeSeverTracking ? Qt::CrossCursor : Qt::ArrowCursor);
}

OssNgNode *OssNgView::nodeAt(const QPoint &viewportPos) const
{
    for (QGraphicsItem *item : items(viewportPos)) {
        OssNgNode *node = OssNgNode::fromItem(item);
        if (node && node->hitTest(node->mapFromScene(mapToScene(viewportPos))))
            return node;
    }
    return nullptr;
}

OssNgEdge *OssNgView::edgeAt(const QPoint &viewportPos) const
{
    const QRect around(viewportPos - QPoint(6, 6), QSize(12, 12));
    for (QGraphicsItem *item : items(around, Qt::IntersectsItemShape))
        if (item->type() == OssNgEdge::Type && item != m_dragEdge)
            return static_cast<OssNgEdge *>(static_cast<QGraphicsObject *>(item));
    return nullptr;
}

// --- edge dragging

void OssNgView::startEdgeDrag(OssNgNode *node, const QString &port, bool fromOutput,
                              const QPointF &scenePos)
{
    m_dragFixedNode = node;
    m_dragFixedPort = port;
    m_dragFromOutput = fromOutput;
    m_pickedTarget = nullptr;
    m_pickedInput.clear();
    if (fromOutput)
        m_dragEdge = new OssNgEdge(node, port, nullptr, QString(), OssNgEdge::Kind::Temporary);
    else
        m_dragEdge = new OssNgEdge(nullptr, QString(), node, port, OssNgEdge::Kind::Temporary);
    m_dragEdge->setLooseEnd(scenePos);
    scene()->addItem(m_dragEdge);
    m_interactionState = DraggingEdge;
    grabDragEdge();
}

void OssNgView::grabDragEdge()
{
    if (!m_dragEdge)
        return;
    m_dragEdge->grabMouse();
    connect(m_dragEdge.data(), &OssNgEdge::mouseGrabLost, this, &OssNgView::abandonEdgeDrag);
}

void OssNgView::abandonEdgeDrag()
{
    if (m_interactionState != DraggingEdge)
        return;
    // Called while the scene is ungrabbing the edge: it is only scheduled for deletion here,
    // hiding it would ungrab it again.
    if (m_dragEdge) {
        disconnect(m_dragEdge.data(), &OssNgEdge::mouseGrabLost, this, &OssNgView::abandonEdgeDrag);
        m_dragEdge->deleteLater();
    }
    m_dragEdge = nullptr;
    m_interactionState = Idle;
    if (m_pickedTarget)
        if (OssNgEdge *original = m_pickedTarget->input(m_pickedInput))
            original->show();
    m_pickedTarget = nullptr;
    m_pickedInput.clear();
}

bool OssNgView::pickUpEdge()
{
    const QPoint at = viewport()->mapFromGlobal(QCursor::pos());
    OssNgEdge *edge = edgeAt(at);
    if (!edge || !edge->isFullConnected() || edge->kind() != OssNgEdge::Kind::Connection)
        return false;
    m_pickedTarget = edge->targetNode();
    m_pickedInput = edge->inputName();
    m_dragFixedNode = edge->sourceNode();
    m_dragFixedPort = edge->outputPoint();
    m_dragFromOutput = true;
    // The picked-up edge is shown by a temporary one; the real edge stays until the host
    // disconnects it.
    edge->hide();
    m_dragEdge = new OssNgEdge(m_dragFixedNode, m_dragFixedPort, nullptr, QString(),
                               OssNgEdge::Kind::Temporary);
    m_dragEdge->setLooseEnd(mapToScene(at));
    scene()->addItem(m_dragEdge);
    m_interactionState = DraggingEdge;
    grabDragEdge();
    return true;
}

void OssNgView::finishEdgeDrag(const QPoint &viewportPos)
{
    const QPointF scenePos = mapToScene(viewportPos);
    OssNgNode *target = nodeAt(viewportPos);
    const QPointer<OssNgNode> fixed = m_dragFixedNode;
    const QString fixedPort = m_dragFixedPort;
    const QPointer<OssNgNode> pickedTarget = m_pickedTarget;
    const QString pickedInput = m_pickedInput;
    if (m_dragEdge) {
        disconnect(m_dragEdge.data(), &OssNgEdge::mouseGrabLost, this, &OssNgView::abandonEdgeDrag);
        m_dragEdge->releaseMouse(QPointF(), true);
    }
    m_dragEdge = nullptr;
    m_interactionState = Idle;
    if (pickedTarget)
        if (OssNgEdge *original = pickedTarget->input(pickedInput))
            original->show();
    if (!fixed)
        return;
    if (m_dragFromOutput) {
        QString input;
        if (target && target != fixed) {
            input = target->inputPortAt(target->mapFromScene(scenePos));
            if (input.isEmpty()) {
                // Dropped on the body: the preferred input when free, else the first free one.
                const QString preferred = target->preferredInputPort();
                if (!preferred.isEmpty() && !target->input(preferred))
                    input = preferred;
                for (const QString &name : target->inputPortNames())
                    if (input.isEmpty() && !target->input(name))
                        input = name;
            }
        }
        const bool sameSpot = target == pickedTarget && input == pickedInput;
        if (pickedTarget && !sameSpot)
            pickedTarget->requestInputSource(nullptr, pickedInput, QString());
        if (target && !input.isEmpty() && !sameSpot)
            target->requestInputSource(fixed, input, fixedPort);
    } else if (target && target != fixed) {
        QString output = target->outputPortAt(target->mapFromScene(scenePos));
        if (output.isEmpty())
            output = target->preferredOutputPort();
        if (!output.isEmpty())
            fixed->requestInputSource(target, fixedPort, output);
    }
}

// --- shake and sever

void OssNgView::trackShake(const QPoint &viewportPos)
{
    if (!m_shakeToExtractEnabled || m_shakeFired)
        return;
    const int dx = viewportPos.x() - m_lastMouse.x();
    if (std::abs(dx) < 3)
        return;
    const int direction = dx > 0 ? 1 : -1;
    const qint64 now = m_shakeClock.elapsed();
    if (m_lastDirection != 0 && direction != m_lastDirection)
        m_reversals.append(now);
    m_lastDirection = direction;
    while (!m_reversals.isEmpty() && now - m_reversals.first() > m_shakeToExtractTime)
        m_reversals.removeFirst();
    if (m_reversals.size() >= m_shakeToExtractShakes) {
        m_shakeFired = true;
        emit shakeToExtractTriggered();
    }
}

void OssNgView::severEdgesAlong(const QLineF &line)
{
    if (!scene() || line.length() < 1)
        return;
    QPainterPath path(line.p1());
    path.lineTo(line.p2());
    for (QGraphicsItem *item : scene()->items(path, Qt::IntersectsItemShape)) {
        if (item->type() != OssNgEdge::Type)
            continue;
        auto *edge = static_cast<OssNgEdge *>(static_cast<QGraphicsObject *>(item));
        if (edge->kind() == OssNgEdge::Kind::Connection && edge->isFullConnected()) {
            emit edgeSevered(edge);
            edge->targetNode()->requestInputSource(nullptr, edge->inputName(), QString());
        }
    }
}

// --- events

void OssNgView::mousePressEvent(QMouseEvent *event)
{
    m_lastMouse = event->pos();
    if (m_interactionState == DraggingEdge) {
        // A picked-up edge is dropped by the next click.
        finishEdgeDrag(event->pos());
        event->accept();
        return;
    }
    const bool alt = event->modifiers() & Qt::AltModifier;
    const bool control = event->modifiers() & Qt::ControlModifier;
    const bool ossaNavigation = m_navigationControlType == QLatin1String("Ossa");
    const bool zoomDrag = ossaNavigation ? alt && event->button() == Qt::RightButton
                                         : control && event->button() == Qt::MiddleButton;
    const bool panDrag =
        !zoomDrag && (event->button() == Qt::MiddleButton ||
                      (ossaNavigation && alt && event->button() == Qt::LeftButton));
    if (zoomDrag) {
        m_interactionState = Zooming;
        event->accept();
        return;
    }
    if (panDrag) {
        m_interactionState = Panning;
        viewport()->setCursor(Qt::ClosedHandCursor);
        event->accept();
        return;
    }
    if (event->button() != Qt::LeftButton || !scene()) {
        QGraphicsView::mousePressEvent(event);
        return;
    }
    const QPointF scenePos = mapToScene(event->pos());
    if (m_cursorTrackingMode == EdgeSeverTracking ||
        (event->modifiers() & Qt::ControlModifier && event->modifiers() & Qt::ShiftModifier &&
         !nodeAt(event->pos()))) {
        m_interactionState = Severing;
        m_severStart = scenePos;
        m_severLine = scene()->addLine(QLineF(scenePos, scenePos),
                                       QPen(QColor(230, 80, 80), 0, Qt::DashLine));
        event->accept();
        return;
    }
    if (OssNgNode *node = nodeAt(event->pos())) {
        const QPointF local = node->mapFromScene(scenePos);
        const QString output = node->outputPortAt(local);
        if (!output.isEmpty()) {
            startEdgeDrag(node, output, true, scenePos);
            event->accept();
            return;
        }
        const QString input = node->inputPortAt(local);
        if (!input.isEmpty()) {
            if (OssNgEdge *edge = node->input(input)) {
                // Dragging from a connected input picks its edge up.
                m_pickedTarget = node;
                m_pickedInput = input;
                m_dragFixedNode = edge->sourceNode();
                m_dragFixedPort = edge->outputPoint();
                m_dragFromOutput = true;
                edge->hide();
                m_dragEdge = new OssNgEdge(m_dragFixedNode, m_dragFixedPort, nullptr, QString(),
                                           OssNgEdge::Kind::Temporary);
                m_dragEdge->setLooseEnd(scenePos);
                scene()->addItem(m_dragEdge);
                m_interactionState = DraggingEdge;
                grabDragEdge();
            } else {
                startEdgeDrag(node, input, false, scenePos);
            }
            event->accept();
            return;
        }
    }
    if (OssNgEdge *edge = edgeAt(event->pos())) {
        if (edge->hitsDotMarker(scenePos) && edge->targetNode()) {
            emit edge->targetNode()->clickedOnDotableMarkerOnEdge(edge);
            event->accept();
            return;
        }
        if (m_cursorTrackingMode == EdgePickUpTracking && pickUpEdge()) {
            event->accept();
            return;
        }
    }
    QGraphicsView::mousePressEvent(event);
    if (OssNgNode *node = nodeAt(event->pos())) {
        Q_UNUSED(node);
        // The scene's items move the selection; the base view only watches (see
        // InteractionState).
        m_draggingNodes = true;
        m_draggedNodes.clear();
        for (OssNgNode *selected : sortedSelection()) {
            selected->savePosition();
            // A selected backdrop drags what lies on it now.
            if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(selected))
                backdrop->refreshChildrenList();
            m_draggedNodes.append(selected);
        }
        m_shakeClock.start();
        m_reversals.clear();
        m_lastDirection = 0;
        m_shakeFired = false;
    } else {
        m_interactionState = RubberBanding;
    }
}

void OssNgView::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint delta = event->pos() - m_lastMouse;
    switch (m_interactionState) {
    case Panning:
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - delta.y());
        break;
    case Zooming:
        zoomIn(1.0 + delta.x() * 0.005, AnchorViewCenter);
        break;
    case DraggingEdge:
        if (m_dragEdge)
            m_dragEdge->setLooseEnd(mapToScene(event->pos()));
        break;
    case Severing:
        if (m_severLine)
            m_severLine->setLine(QLineF(m_severStart, mapToScene(event->pos())));
        break;
    default:
        QGraphicsView::mouseMoveEvent(event);
        if (m_draggingNodes && event->buttons() & Qt::LeftButton && !resizingBackdrop()) {
            trackShake(event->pos());
            updateInsertionCandidate();
        }
        break;
    }
    m_lastMouse = event->pos();
}

void OssNgView::mouseReleaseEvent(QMouseEvent *event)
{
    switch (m_interactionState) {
    case Panning:
    case Zooming:
        viewport()->setCursor(m_cursorTrackingMode == EdgeSeverTracking ? Qt::CrossCursor
                                                                        : Qt::ArrowCursor);
        m_interactionState = Idle;
        event->accept();
        return;
    case DraggingEdge:
        // A picked-up edge (from pickUpEdge) waits for a click; a drag ends on release.
        if (event->button() == Qt::LeftButton)
            finishEdgeDrag(event->pos());
        event->accept();
        return;
    case Severing:
        if (m_severLine) {
            const QLineF line = m_severLine->line();
            delete m_severLine;
            m_severLine = nullptr;
            severEdgesAlong(line);
        }
        m_interactionState = Idle;
        event->accept();
        return;
    default: {
        QGraphicsView::mouseReleaseEvent(event);
        m_interactionState = Idle;
        if (!m_draggingNodes || event->button() != Qt::LeftButton)
            return;
        m_draggingNodes = false;
        setInsertionCandidate(nullptr);
        QList<OssNgNode *> moved;
        const int grid = OssNgStyle::instance()->gridSize();
        for (const QPointer<OssNgNode> &node : qAsConst(m_draggedNodes)) {
            if (!node)
                continue;
            if (m_snapToGrid)
                node->setPos(std::round(node->pos().x() / grid) * grid,
                             std::round(node->pos().y() / grid) * grid);
            if (node->pos() != node->savedPosition())
                moved.append(node);
        }
        m_draggedNodes.clear();
        if (!moved.isEmpty())
            emit nodesMoved(moved);
        return;
    }
    }
}

bool OssNgView::resizingBackdrop() const
{
    QGraphicsItem *grabber = scene() ? scene()->mouseGrabberItem() : nullptr;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(OssNgNode::fromItem(grabber));
    return backdrop && backdrop->isResizing();
}

void OssNgView::updateInsertionCandidate()
{
    OssNgEdge *candidate = nullptr;
    if (autoInsertEnabled())
        for (const QPointer<OssNgNode> &node : qAsConst(m_draggedNodes))
            if (node && !candidate)
                candidate = node->autoinsertCandidate();
    setInsertionCandidate(candidate);
}

void OssNgView::setInsertionCandidate(OssNgEdge *edge)
{
    if (m_insertionEdge == edge)
        return;
    if (m_insertionEdge)
        m_insertionEdge->setInsertionHighlighted(false);
    m_insertionEdge = edge;
    if (edge)
        edge->setInsertionHighlighted(true);
}

void OssNgView::wheelEvent(QWheelEvent *event)
{
    const double steps = event->angleDelta().y() / 120.0;
    if (steps == 0)
        return;
    // The zoom anchor: the point under the cursor stays there, or the centre stays.
    const QPoint at = transformationAnchor() == AnchorUnderMouse ? event->position().toPoint()
                                                                 : viewport()->rect().center();
    zoomAt(std::pow(1.15, steps), at);
    event->accept();
}

void OssNgView::keyPressEvent(QKeyEvent *event)
{
    QGraphicsView::keyPressEvent(event);
}

void OssNgView::drawBackground(QPainter *painter, const QRectF &rect)
{
    const OssNgStyle *style = OssNgStyle::instance();
    painter->fillRect(rect, style->backgroundColor());
    // The grid only where it can be seen: lines closer than 8 pixels are left out.
    const double grid = style->gridSize() * 5;
    if (zoom() * grid < 8)
        return;
    painter->setPen(QPen(style->gridColor(), 0));
    const double left = std::floor(rect.left() / grid) * grid;
    const double top = std::floor(rect.top() / grid) * grid;
    QVector<QLineF> lines;
    for (double x = left; x < rect.right(); x += grid)
        lines.append(QLineF(x, rect.top(), x, rect.bottom()));
    for (double y = top; y < rect.bottom(); y += grid)
        lines.append(QLineF(rect.left(), y, rect.right(), y));
    painter->drawLines(lines);
}
