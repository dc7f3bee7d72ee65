#include "OssNgBackdropNode.h"

#include "OssNgStyle.h"

#include <QFontMetricsF>
#include <QGraphicsScene>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace {

constexpr qreal ResizeHandle = 14;
constexpr qreal WrapMargin = 30;
// Backdrops sit behind nodes; their own order is kept among themselves.
constexpr qreal BackdropZBase = -1000;

} // namespace

OssNgBackdropNode::OssNgBackdropNode(QGraphicsItem *parentItem) : OssNgNode(parentItem)
{
    setNodeSize(QSizeF(400, 240));
    setZValue(BackdropZBase);
}

void OssNgBackdropNode::setRect(const QRectF &rect)
{
    if (!rect.isValid())
        return;
    // The rectangle's origin moves the item, its size resizes it.
    if (!rect.topLeft().isNull()) {
        m_movingChildren = true;
        setPos(pos() + rect.topLeft());
        m_movingChildren = false;
    }
    setNodeSize(rect.size());
    emit rectChanged(QRectF(pos(), nodeSize()));
}

QList<QGraphicsItem *> OssNgBackdropNode::nodesInside() const
{
    QList<QGraphicsItem *> inside;
    if (!scene())
        return inside;
    for (QGraphicsItem *item : scene()->items(sceneBoundingRect(), Qt::ContainsItemBoundingRect))
        if (item != this && OssNgNode::fromItem(item))
            inside.append(item);
    return inside;
}

void OssNgBackdropNode::refreshChildrenList()
{
    m_children.clear();
    if (!scene())
        return;
    const QRectF area(pos(), nodeSize());
    for (QGraphicsItem *item : scene()->items(area, Qt::IntersectsItemBoundingRect)) {
        OssNgNode *node = OssNgNode::fromItem(item);
        if (!node || node == this || !area.contains(node->sceneBoundingRect().center()))
            continue;
        // A backdrop inside moves along only if it lies above this one.
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(node))
            if (backdrop->zValue() <= zValue())
                continue;
        m_children.append(node);
    }
}

void OssNgBackdropNode::wrapAroundSelection(const QRectF &sceneRect)
{
    if (sceneRect.isNull())
        return;
    const QRectF wrapped =
        sceneRect.adjusted(-WrapMargin, -WrapMargin - titleBarHeight(), WrapMargin, WrapMargin);
    m_movingChildren = true;
    setPos(wrapped.topLeft());
    m_movingChildren = false;
    setNodeSize(wrapped.size());
    emit rectChanged(wrapped);
}

void OssNgBackdropNode::setZOrder(int zOrder)
{
    if (zOrder == m_zOrder)
        return;
    m_zOrder = zOrder;
    setZValue(BackdropZBase + zOrder);
    emit zOrderChanged(zOrder);
}

void OssNgBackdropNode::setPosition(const QPointF &position)
{
    refreshChildrenList();
    setPos(position);
}

void OssNgBackdropNode::placeAlone(const QPointF &position)
{
    m_movingChildren = true;
    setPos(position);
    m_movingChildren = false;
}

void OssNgBackdropNode::setTitleText(const QString &title)
{
    m_title = title;
    setText(title);
    update();
}

void OssNgBackdropNode::setNodeBackgroundColour(const QColor &colour)
{
    if (colour.isValid())
        m_background = colour;
    update();
}

bool OssNgBackdropNode::onResizeHandle(const QPointF &local) const
{
    return local.x() >= nodeSize().width() - ResizeHandle &&
           local.y() >= nodeSize().height() - ResizeHandle;
}

bool OssNgBackdropNode::hitTest(const QPointF &local) const
{
    // Only the title bar and the resize handle take clicks; the inside belongs to the nodes
    // and to rubber-band selection.
    return QRectF(0, 0, nodeSize().width(), titleBarHeight()).contains(local) ||
           (onResizeHandle(local) && rect().contains(local));
}

QRectF OssNgBackdropNode::boundingRect() const
{
    return rect().adjusted(-1, -1, 1, 1);
}

QPainterPath OssNgBackdropNode::shape() const
{
    // Clicks inside a backdrop reach the scene below (rubber band); the title bar and the
    // handle are the backdrop's.
    QPainterPath path;
    path.addRect(QRectF(0, 0, nodeSize().width(), titleBarHeight()));
    path.addRect(QRectF(nodeSize().width() - ResizeHandle, nodeSize().height() - ResizeHandle,
                        ResizeHandle, ResizeHandle));
    return path;
}

QVariant OssNgBackdropNode::itemChange(GraphicsItemChange change, const QVariant &value)
{
    if (change == ItemPositionChange && !m_movingChildren && scene()) {
        const QPointF delta = value.toPointF() - pos();
        for (const QPointer<OssNgNode> &child : qAsConst(m_children))
            if (child && !child->isSelected())
                child->moveBy(delta.x(), delta.y());
    }
    return OssNgNode::itemChange(change, value);
}

void OssNgBackdropNode::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    m_resizing = event->button() == Qt::LeftButton && onResizeHandle(event->pos());
    saveBoundingRect();
    savePosition();
    if (!m_resizing)
        refreshChildrenList();
    OssNgNode::mousePressEvent(event);
}

void OssNgBackdropNode::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (m_resizing) {
        setNodeSize(QSizeF(qMax<qreal>(80, event->pos().x()), qMax<qreal>(60, event->pos().y())));
        return;
    }
    OssNgNode::mouseMoveEvent(event);
}

void OssNgBackdropNode::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (m_resizing) {
        m_resizing = false;
        emit rectChanged(QRectF(pos(), nodeSize()));
        if (m_savedRect != QRectF(pos(), nodeSize()))
            emit resizedByUser(m_savedRect);
        return;
    }
    OssNgNode::mouseReleaseEvent(event);
}

void OssNgBackdropNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF body = rect();
    QColor fill = m_background;
    fill.setAlpha(150);
    painter->setPen(QPen(isSelected() ? style->selectedColor() : m_background.lighter(130), 1.5));
    painter->setBrush(fill);
    painter->drawRect(body);
    const qreal detail = option->levelOfDetailFromTransform(painter->worldTransform());
    // The title stays readable when zoomed out: below the zoom at which it is landmark-sized it
    // is drawn larger in the scene, in a title bar grown to fit it, within the backdrop.
    const qreal grow =
        detail > 0
            ? qMax<qreal>(1.0, style->landmarkTextPixels() / (style->titleTextHeight() * detail))
            : 1.0;
    const qreal bar = qMin(body.height(), titleBarHeight() * grow);
    painter->fillRect(QRectF(0, 0, body.width(), bar), m_background.darker(120));
    painter->save();
    painter->setClipRect(body);
    painter->scale(grow, grow);
    painter->setPen(style->textColor());
    painter->setFont(style->titleFont());
    const QRectF title(8, 0, qMax<qreal>(0, body.width() / grow - 16), bar / grow);
    painter->drawText(
        title, Qt::AlignVCenter | Qt::AlignLeft,
        QFontMetricsF(style->titleFont()).elidedText(m_title, Qt::ElideRight, title.width()));
    painter->restore();
    if (detail >= style->levelOfDetailThreshold()) {
        painter->setPen(style->textColor());
        painter->drawLine(body.bottomRight() - QPointF(ResizeHandle, 2),
                          body.bottomRight() - QPointF(2, ResizeHandle));
    }
}
