#include "OssNgUINodes.h"

#include "OssNgStyle.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

OssNgUINode::OssNgUINode(QGraphicsItem *parentItem) : OssNgNode(parentItem)
{
    setNodeSize(QSizeF(200, 100));
}

void OssNgUINode::setLabel(const QString &label)
{
    m_label = label;
    relayout();
    update();
}

void OssNgUINode::setTitleText(const QString &title)
{
    m_title = title;
    update();
}

void OssNgUINode::setNodeBackgroundColour(const QColor &colour)
{
    if (colour.isValid())
        m_background = colour;
    update();
}

void OssNgUINode::relayout()
{
    // The note grows with its label, wrapped at 240 units.
    static const QFontMetricsF metrics{QFont()};
    const QRectF text =
        metrics.boundingRect(QRectF(0, 0, 240, 10000), Qt::TextWordWrap | Qt::AlignLeft, m_label);
    setNodeSize(QSizeF(qMax<qreal>(160, text.width() + 20), qMax<qreal>(60, text.height() + 40)));
}

void OssNgUINode::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF body = bodyRect();
    painter->setPen(QPen(isSelected() ? style->selectedColor() : m_background.darker(150), 1.5));
    painter->setBrush(m_background);
    painter->drawRect(body);
    // The note's title stays readable at every zoom: when zoomed out it is drawn larger in the
    // scene. The note is sized for its text at full size, so the text grows only as far as it
    // still fits.
    const qreal detail = option->levelOfDetailFromTransform(painter->worldTransform());
    const qreal grow =
        detail > 0
            ? qMax<qreal>(1.0, style->landmarkTextPixels() / (style->titleTextHeight() * detail))
            : 1.0;
    QFont font = style->titleFont();
    painter->save();
    painter->setClipRect(body);
    painter->setPen(Qt::black);
    font.setBold(true);
    painter->setFont(font);
    painter->save();
    painter->scale(grow, grow);
    painter->drawText(QRectF(body.topLeft() / grow, body.size() / grow).adjusted(8, 4, -8, 0),
                      Qt::AlignTop | Qt::AlignLeft, m_title.isEmpty() ? text() : m_title);
    painter->restore();
    font.setBold(false);
    painter->setFont(font);
    const qreal titleSpace = 4 + style->titleTextHeight() * grow + 4;
    const QRectF textArea = body.adjusted(8, titleSpace, -8, -6);
    const QFontMetricsF metrics(font);
    qreal scale = grow;
    const QRectF wrapped = metrics.boundingRect(QRectF(0, 0, textArea.width() / grow, 10000),
                                                Qt::TextWordWrap | Qt::AlignLeft, m_label);
    if (wrapped.height() * grow > textArea.height())
        scale = 1.0;
    painter->scale(scale, scale);
    painter->drawText(QRectF(textArea.topLeft() / scale, textArea.size() / scale),
                      Qt::TextWordWrap | Qt::AlignLeft, m_label);
    painter->restore();
}

OssNgDotNode::OssNgDotNode(QGraphicsItem *parentItem) : OssNgNode(parentItem)
{
    setNodeSize(QSizeF(16, 16));
}

void OssNgDotNode::relayout()
{
    // A dot keeps its size; its ports meet at the centre.
    setNodeSize(QSizeF(16, 16));
    updateEdges();
}

bool OssNgDotNode::hitTest(const QPointF &local) const
{
    return QLineF(local, QPointF(8, 8)).length() <= 10;
}

QPainterPath OssNgDotNode::shape() const
{
    QPainterPath path;
    path.addEllipse(QPointF(8, 8), 10, 10);
    return path;
}

void OssNgDotNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    const OssNgStyle *style = OssNgStyle::instance();
    painter->setPen(QPen(isSelected() ? style->selectedColor() : Qt::black, 1.5));
    painter->setBrush(style->edgeColor());
    painter->drawEllipse(QPointF(8, 8), 7, 7);
}
