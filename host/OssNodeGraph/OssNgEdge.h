#pragma once

#include "OssNodeGraphExport.h"

#include <QColor>
#include <QGraphicsObject>
#include <QPainterPath>
#include <QPointer>
#include <QPolygonF>

class OssNgNode;

// A cubic curve from an output port of one node to an input port of another. It follows both
// nodes as they move. While the user drags it, one end is loose and follows the mouse.
class OSSNODEGRAPH_EXPORT OssNgEdge : public QGraphicsObject
{
    Q_OBJECT
public:
    enum
    {
        Type = UserType + 102
    };
    enum class Kind
    {
        Connection,
        Temporary,
        Virtual
    };

    OssNgEdge(OssNgNode *source, const QString &outputPoint, OssNgNode *target,
              const QString &inputName, Kind kind = Kind::Connection);
    ~OssNgEdge() override;
    int type() const override { return Type; }
    Kind kind() const { return m_kind; }

    OssNgNode *sourceNode() const;
    OssNgNode *targetNode() const;
    QString outputPoint() const { return m_outputPoint; }
    QString inputName() const { return m_inputName; }
    bool isFullConnected() const { return !m_source.isNull() && !m_target.isNull(); }

    // Attaches the source end to a node's output point, or detaches it (null).
    void setSource(OssNgNode *source, const QString &outputPoint);
    void setTarget(OssNgNode *target, const QString &inputName);
    // The loose end's scene position while one end is free.
    void setLooseEnd(const QPointF &scenePos);
    QPointF looseEnd() const { return m_looseEnd; }

    void setBypassed(bool bypassed);
    bool isBypassed() const { return m_bypassed; }
    void setShared(bool shared);
    bool isShared() const { return m_shared; }
    void setActivated(bool activated);
    bool isActivated() const { return m_activated; }
    void setDebug(bool debug);
    void setDebugColor(const QColor &color);
    QColor debugColor() const { return m_debugColor; }

    // Shows a marker at the middle of the edge where a dot can be inserted.
    void switchToDotableMode(bool on);
    bool isDotable() const { return m_dotable; }
    QPointF dotMarkerScenePos() const;
    bool hitsDotMarker(const QPointF &scenePos) const;
    // Drops a grabbed edge: ends a drag. With Discard the edge is deleted later.
    void releaseMouse(const QPointF &scenePos, bool discard);
    // Drawn highlighted while a node dragged over it would be spliced into it on drop.
    void setInsertionHighlighted(bool on);
    bool isInsertionHighlighted() const { return m_insertionHighlighted; }

    // Recomputes the curve from the ends.
    void adjust();
    QPointF startPoint() const;
    QPointF endPoint() const;
    QPainterPath curve() const { return m_path; }

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

signals:
    // The edge stopped being the scene's mouse grabber (dropped, or another item grabbed).
    void mouseGrabLost();

protected:
    bool sceneEvent(QEvent *event) override;

private:
    // The curve flattened to a polyline (hit tests, partial strokes).
    const QPolygonF &flattened() const;

    Kind m_kind;
    QPointer<OssNgNode> m_source;
    QPointer<OssNgNode> m_target;
    QString m_outputPoint;
    QString m_inputName;
    QPointF m_looseEnd;
    QPainterPath m_path;
    mutable QPainterPath m_shape;
    // Made on first use after the curve changes.
    mutable QPolygonF m_polyline;
    // A few points along the curve, drawn at middle distance.
    mutable QPolygonF m_coarse;
    QRectF m_bounds;
    QPointF m_start, m_end, m_middle;
    QColor m_debugColor;
    bool m_bypassed = false;
    bool m_shared = false;
    bool m_activated = false;
    bool m_debug = false;
    bool m_dotable = false;
    bool m_insertionHighlighted = false;
};
