#pragma once

#include "OssNgNode.h"

#include <QList>
#include <QPointer>

// A titled, resizable rectangle behind a group of nodes. Moving it moves the nodes inside: a
// position set on it (a user's drag, setPosition()) drags its unselected children along.
// Undo steps restore every moved node on its own, so they place the backdrop with placeAlone().
class OSSNODEGRAPH_EXPORT OssNgBackdropNode : public OssNgNode
{
    Q_OBJECT
public:
    enum
    {
        Type = UserType + 104
    };
    explicit OssNgBackdropNode(QGraphicsItem *parentItem = nullptr);
    int type() const override { return Type; }

    QString titleText() const { return m_title; }
    qreal titleBarHeight() const { return 24; }
    QRectF rect() const { return QRectF(QPointF(0, 0), nodeSize()); }
    void setRect(const QRectF &rect);
    void saveBoundingRect() { m_savedRect = QRectF(pos(), nodeSize()); }
    // The rectangle (scene position and size) remembered by saveBoundingRect().
    QRectF savedBoundingRect() const { return m_savedRect; }
    // Items lying wholly inside the backdrop (other backdrops included), in scene order.
    QList<QGraphicsItem *> nodesInside() const;
    // The GUI nodes that move with the backdrop, as found by the last refresh.
    QList<QPointer<OssNgNode>> childrenList() const { return m_children; }
    void refreshChildrenList();
    // Fits the backdrop around a scene rectangle with a margin and room for the title.
    void wrapAroundSelection(const QRectF &sceneRect);
    int zOrder() const { return m_zOrder; }
    void setZOrder(int zOrder);
    // Moves the backdrop and its children.
    void setPosition(const QPointF &position);
    // Moves the backdrop only; its children stay where they are.
    void placeAlone(const QPointF &position);
    QColor backgroundColour() const { return m_background; }
    // Between a press on the resize handle and its release.
    bool isResizing() const { return m_resizing; }

    bool hitTest(const QPointF &local) const override;
    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

public slots:
    void setTitleText(const QString &title);
    void setNodeBackgroundColour(const QColor &colour);

signals:
    void zOrderChanged(int zOrder);
    void rectChanged(QRectF rect);
    // The user finished resizing the backdrop with the mouse; OldRect is where it was.
    void resizedByUser(QRectF oldRect);

protected:
    void relayout() override {}
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;

private:
    bool onResizeHandle(const QPointF &local) const;

    QString m_title;
    QColor m_background = QColor(70, 78, 92);
    QList<QPointer<OssNgNode>> m_children;
    QRectF m_savedRect;
    int m_zOrder = 0;
    bool m_resizing = false;
    bool m_movingChildren = false;
};
