#include "OssNgEdge.h"

#include "OssNgNode.h"
#include "OssNgStyle.h"

#include <QEvent>
#include <QGraphicsScene>
#include <QPainter>
#include <QPainterPathStroker>
#include <QStyleOptionGraphicsItem>

OssNgEdge::OssNgEdge(OssNgNode *source, const QString &outputPoint, OssNgNode *target,
                     const QString &inputName, Kind kind)
    : m_kind(kind), m_outputPoint(outputPoint), m_inputName(inputName)
{
    setZValue(-1);
    setAcceptHoverEvents(false);
    setFlag(ItemIsSelectable, false);
    // Paint is told which part of the edge is exposed, so that a long edge crossing the view
    // strokes only what shows.
    setFlag(ItemUsesExtendedStyleOption, true);
    setSource(source, outputPoint);
    setTarget(target, inputName);
}

OssNgEdge::~OssNgEdge()
{
    if (m_source)
        m_source->edgeDetached(this);
    if (m_target)
        m_target->edgeDetached(this);
}

OssNgNode *OssNgEdge::sourceNode() const
{
    return m_source.data();
}

OssNgNode *OssNgEdge::targetNode() const
{
    return m_target.data();
}

void OssNgEdge::setSource(OssNgNode *source, const QString &outputPoint)
{
    if (m_source == source && m_outputPoint == outputPoint)
        return;
    if (m_source)
        m_source->edgeDetached(this);
    m_source = source;
    m_outputPoint = outputPoint;
    if (source)
        source->edgeAttached(this, false);
    adjust();
}

void OssNgEdge::setTarget(OssNgNode *target, const QString &inputName)
{
    if (m_target == target && m_inputName == inputName)
        return;
    if (m_target)
        m_target->edgeDetached(this);
    m_target = target;
    m_inputName = inputName;
    if (target)
        target->edgeAttached(this, true);
    adjust();
}

void OssNgEdge::setLooseEnd(const QPointF &scenePos)
{
    m_looseEnd = scenePos;
    adjust();
}

QPointF OssNgEdge::startPoint() const
{
    return m_source ? m_source->outputPortScenePos(m_outputPoint) : m_looseEnd;
}

QPointF OssNgEdge::endPoint() const
{
    return m_target ? m_target->inputPortScenePos(m_inputName) : m_looseEnd;
}

void OssNgEdge::adjust()
{
    prepareGeometryChange();
    const QPointF start = startPoint();
    const QPointF end = endPoint();
    const QPointF outDirection = m_source ? m_source->outputPortDirection() : QPointF(0, 1);
    const QPointF inDirection = m_target ? m_target->inputPortDirection() : QPointF(0, -1);
    const qreal reach = qMax<qreal>(40.0, QLineF(start, end).length() * 0.4);
    QPainterPath path(start);
    path.cubicTo(start + outDirection * reach, end + inDirection * reach, end);
    m_path = path;
    // Bounds of a curve are costly; the scene asks for them often.
    m_bounds = path.controlPointRect();
    m_shape = QPainterPath();
    m_polyline.clear();
    m_coarse.clear();
    m_start = start;
    m_end = end;
    // The middle of a symmetric cubic: where the dot marker sits.
    m_middle = (start + end) * 0.5 + (outDirection + inDirection) * reach * 0.375;
    update();
}

void OssNgEdge::setBypassed(bool bypassed)
{
    m_bypassed = bypassed;
    update();
}

void OssNgEdge::setShared(bool shared)
{
    m_shared = shared;
    update();
}

void OssNgEdge::setActivated(bool activated)
{
    m_activated = activated;
    update();
}

void OssNgEdge::setDebug(bool debug)
{
    m_debug = debug;
    update();
}

void OssNgEdge::setDebugColor(const QColor &color)
{
    m_debugColor = color;
    update();
}

void OssNgEdge::switchToDotableMode(bool on)
{
    if (m_dotable == on)
        return;
    prepareGeometryChange();
    m_dotable = on;
    m_shape = QPainterPath();
    update();
}

QPointF OssNgEdge::dotMarkerScenePos() const
{
    return mapToScene(m_middle);
}

bool OssNgEdge::hitsDotMarker(const QPointF &scenePos) const
{
    return m_dotable && QLineF(scenePos, dotMarkerScenePos()).length() <= 8.0;
}

void OssNgEdge::releaseMouse(const QPointF &scenePos, bool discard)
{
    if (scene() && scene()->mouseGrabberItem() == this)
        ungrabMouse();
    if (!scenePos.isNull())
        setLooseEnd(scenePos);
    if (discard) {
        hide();
        deleteLater();
    }
}

void OssNgEdge::setInsertionHighlighted(bool on)
{
    if (m_insertionHighlighted == on)
        return;
    m_insertionHighlighted = on;
    update();
}

bool OssNgEdge::sceneEvent(QEvent *event)
{
    const bool handled = QGraphicsObject::sceneEvent(event);
    if (event->type() == QEvent::UngrabMouse)
        emit mouseGrabLost();
    return handled;
}

QRectF OssNgEdge::boundingRect() const
{
    const qreal margin = m_dotable ? 10.0 : 4.0;
    return m_bounds.adjusted(-margin, -margin, margin, margin);
}

QPainterPath OssNgEdge::shape() const
{
    // Stroking a curve is costly and hit tests ask often: the stroke is kept until the curve
    // changes.
    if (m_shape.isEmpty()) {
        QPainterPathStroker stroker;
        stroker.setWidth(8);
        m_shape = stroker.createStroke(m_path);
        if (m_dotable)
            m_shape.addEllipse(m_middle, 8, 8);
    }
    return m_shape;
}

bool OssNgEdge::contains(const QPointF &point) const
{
    // Hit tests (the mouse moving over the graph) ask this of every edge whose bounds hold the
    // point, and laid-out graphs have long edges with large bounds. The distance to the
    // flattened curve answers what the stroked shape would (a band 8 units wide, plus the dot
    // marker) without the cost of testing a point against a stroke.
    constexpr qreal HalfWidth = 4.0;
    if (m_dotable && QLineF(point, m_middle).length() <= 8.0)
        return true;
    if (!boundingRect().contains(point))
        return false;
    const QPolygonF &curve = flattened();
    const auto near = [&point](const QPointF &a, const QPointF &b) {
        const QPointF along = b - a;
        const qreal length2 = QPointF::dotProduct(along, along);
        qreal t = length2 > 0 ? QPointF::dotProduct(point - a, along) / length2 : 0.0;
        t = qBound<qreal>(0.0, t, 1.0);
        const QPointF off = point - (a + along * t);
        return QPointF::dotProduct(off, off) <= HalfWidth * HalfWidth;
    };
    for (int i = 1; i < curve.size(); ++i)
        if (near(curve.at(i - 1), curve.at(i)))
            return true;
    return curve.size() == 1 && near(curve.first(), curve.first());
}

const QPolygonF &OssNgEdge::flattened() const
{
    if (m_polyline.isEmpty())
        m_polyline = m_path.toSubpathPolygons().value(0);
    return m_polyline;
}

void OssNgEdge::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const qreal detail = option->levelOfDetailFromTransform(painter->worldTransform());
    QColor color = style->edgeColor();
    if (m_bypassed)
        color = style->bypassedEdgeColor();
    else if (m_activated)
        color = style->activeEdgeColor();
    else if (m_shared)
        color = style->sharedEdgeColor();
    if (m_debug && m_debugColor.isValid())
        color = m_debugColor;
    if (m_insertionHighlighted)
        color = style->selectedColor();
    if (detail < style->levelOfDetailThreshold()) {
        // Far away: a straight line is enough.
        painter->setPen(QPen(color, 0));
        painter->drawLine(m_start, m_end);
        return;
    }
    const bool middle = detail < style->textThreshold();
    QPen pen(color, m_activated || m_insertionHighlighted ? 2.5 : 1.6);
    if (middle || (detail < 1.0 && !m_activated && !m_insertionHighlighted)) {
        // Zoomed out, the line is at most a pixel and a half wide and looks the same one pixel
        // wide, which the rasteriser draws without building a stroke.
        pen.setWidthF(1.0);
        pen.setCosmetic(true);
    }
    if (m_bypassed || m_kind == Kind::Virtual)
        pen.setStyle(Qt::DashLine);
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    const QRectF bounds = boundingRect();
    const QRectF exposed = option->exposedRect.adjusted(-4, -4, 4, 4) & bounds;
    if (middle) {
        // Middle distance: the curve as a short polyline.
        if (m_coarse.isEmpty()) {
            constexpr int Segments = 16;
            for (int i = 0; i <= Segments; ++i)
                m_coarse.append(m_path.pointAtPercent(qreal(i) / Segments));
        }
        painter->drawPolyline(m_coarse);
    } else if (pen.style() == Qt::SolidLine && detail <= 2.0 &&
               exposed.width() * exposed.height() < 0.5 * bounds.width() * bounds.height()) {
        // Most of a long edge is out of sight: only the stretches of the flattened curve that
        // cross the exposed area are stroked (flattened finely enough for this zoom).
        const QPolygonF &curve = flattened();
        QPolygonF run;
        for (int i = 1; i < curve.size(); ++i) {
            const QPointF &a = curve.at(i - 1);
            const QPointF &b = curve.at(i);
            if (QRectF(a, b).normalized().adjusted(-1, -1, 1, 1).intersects(exposed)) {
                if (run.isEmpty())
                    run.append(a);
                run.append(b);
            } else if (!run.isEmpty()) {
                painter->drawPolyline(run);
                run.clear();
            }
        }
        if (!run.isEmpty())
            painter->drawPolyline(run);
    } else {
        painter->drawPath(m_path);
    }
    if (m_dotable) {
        painter->setBrush(color);
        painter->drawEllipse(m_middle, 5, 5);
    }
}
