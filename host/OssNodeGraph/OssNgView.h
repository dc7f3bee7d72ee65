#pragma once

#include "OssNgEdge.h"
#include "OssNodeGraphExport.h"

#include <QElapsedTimer>
#include <QGraphicsView>
#include <QPointer>
#include <QVector>

class OssNgEdge;
class OssNgNode;

// The base node-graph view: panning, zooming, rubber-band selection, node dragging, drawing and
// picking up edges, edge severing, snap to grid and the shake gesture. Edits that change
// connections leave as the GUI nodes' inputSourceChanged signals.
//
// Navigation schemes (the navigation control type):
//   "Kova": middle-button drag pans, Ctrl + middle-button drag zooms, the wheel zooms.
//   "Ossa": Alt + left drag pans, Alt + right drag zooms, middle-button drag pans, the wheel
//           zooms.
// In both, a left drag on empty space draws a rubber band, on a node moves the selection, from
// a port draws an edge; Ctrl + Shift + left drag on empty space (or any left drag in edge-sever
// mode) cuts the edges it crosses.
class OSSNODEGRAPH_EXPORT OssNgView : public QGraphicsView
{
    Q_OBJECT
public:
    // The base view's own mouse operations, from a press to its release. Idle (0) means none
    // is under way: the mouse is free, or the press went to the scene's items. A node drag is
    // the items' own (Qt's item moving) and keeps the state Idle, so a subclass that reads the
    // state before passing a release on sees 0 at the end of a node drag and can record the
    // move; isDraggingNodes() tells whether nodes are being dragged. Any other state ends at
    // the release with an operation the view has done itself: a pan (1), a rubber-band
    // selection (2), an edge drawn or picked up (3, until it is dropped), an edge-sever stroke
    // (4) or a zoom drag (5); such a release is not a move.
    enum InteractionState : int
    {
        Idle = 0,
        Panning = 1,
        RubberBanding = 2,
        DraggingEdge = 3,
        Severing = 4,
        Zooming = 5,
    };
    // Cursor tracking: 0 normal, 1 edge sever (dragging cuts edges), 2 edge pick-up (a click
    // near an edge picks up its input end).
    enum CursorTrackingMode : int
    {
        NormalTracking = 0,
        EdgeSeverTracking = 1,
        EdgePickUpTracking = 2
    };

    explicit OssNgView(QWidget *parent = nullptr);
    ~OssNgView() override;

    // Called once a scene is set: background, index and interaction settings.
    virtual void init();
    // Gives a scene the spatial index node graphs use (a tree of fixed depth).
    static void useSpatialIndex(QGraphicsScene *scene);

    int interactionState() const { return m_interactionState; }
    // Between the press on a node and the release that drops the dragged nodes.
    bool isDraggingNodes() const { return m_draggingNodes; }
    // The scene rectangle the viewport shows, exactly (edges at the viewport's outer edges).
    QRectF viewportInSceneCoords() const;
    // Shows a rectangle viewportInSceneCoords() gave: the scale at which it fits the viewport and
    // its centre at the viewport's centre, scrolled to the whole pixel. In a viewport of the same
    // size the view is the one the rectangle was taken from, however often it is restored.
    void showSceneRect(const QRectF &rect);
    // Half the side of the canvas: the view's scene rectangle is this much in every direction
    // from the origin, far beyond any graph, so the view pans and zooms freely and never
    // shifts when the graph grows or shrinks.
    static constexpr double CanvasHalfSize = 1.0e6;
    // A viewport position's scene point and a scene point's viewport position, without
    // rounding to the pixel.
    QPointF mapToSceneExact(const QPointF &viewportPos) const;
    QPointF mapFromSceneExact(const QPointF &scenePos) const;
    using QGraphicsView::fitInView;
    double zoom() const;
    // Multiplies the scale, kept between 1/50 and 8.
    void scaleView(double factor);
    // Multiplies the scale keeping the scene point at a viewport position where it is, to the
    // pixel.
    void zoomAt(double factor, const QPoint &viewportPos);
    QRectF visibleNodeBounds() const;
    void centerViewOn(const QPointF &scenePos, bool immediate = true);
    // The selected GUI nodes sorted top to bottom, then left to right.
    QList<OssNgNode *> sortedSelection() const;

    int cursorTrackingMode() const { return m_cursorTrackingMode; }
    void setCursorTrackingMode(int mode);
    bool snapToGrid() const { return m_snapToGrid; }
    void setSnapToGrid(bool snap) { m_snapToGrid = snap; }
    // Whether a node dropped on an edge may be spliced into it.
    virtual bool autoInsertEnabled() const { return m_autoInsert; }
    void setAutoInsertEnabled(bool enabled) { m_autoInsert = enabled; }

    // The GUI node and port at a viewport position ("" when not on a port).
    OssNgNode *nodeAt(const QPoint &viewportPos) const;
    OssNgEdge *edgeAt(const QPoint &viewportPos) const;
    // The edge being dragged, if any. While it is dragged it is the scene's mouse grabber;
    // releasing it (OssNgEdge::releaseMouse, ungrabMouse) abandons the drag.
    OssNgEdge *draggedEdge() const { return m_dragEdge; }
    // The edge a dragged node would be spliced into if dropped now (highlighted), if any.
    OssNgEdge *insertionCandidate() const { return m_insertionEdge; }

public slots:
    void zoomIn();
    void zoomOut();
    void zoomIn(double factor, QGraphicsView::ViewportAnchor anchor = AnchorViewCenter);
    void zoomOut(double factor, QGraphicsView::ViewportAnchor anchor = AnchorViewCenter);
    void panLeft();
    void panRight();
    void panUp();
    void panDown();
    // Picks up the input end of the edge nearest the cursor.
    bool pickUpEdge();
    void toggleSnapToGrid() { m_snapToGrid = !m_snapToGrid; }

signals:
    void shakeToExtractTriggered();
    // One per edge cut by a sever stroke (the target node also asks for the disconnection).
    void edgeSevered(OssNgEdge *edge);
    // Nodes were dragged by the user and dropped (after the move).
    void nodesMoved(QList<OssNgNode *> nodes);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void drawBackground(QPainter *painter, const QRectF &rect) override;

    // The base view's state; the subclass writes the settings directly.
    int m_interactionState = Idle;
    bool m_shakeToExtractEnabled = true;
    int m_shakeToExtractShakes = 4;
    int m_shakeToExtractTime = 500;
    QString m_navigationControlType = QStringLiteral("Kova");

private:
    // The viewport position a zoom keeps in place for an anchor: the cursor (when it is over
    // the viewport) or the centre.
    QPoint anchorPosition(QGraphicsView::ViewportAnchor anchor) const;
    // Scrolls by whole pixels.
    void scrollBy(const QPoint &pixels);
    void startEdgeDrag(OssNgNode *node, const QString &port, bool fromOutput,
                       const QPointF &scenePos);
    void finishEdgeDrag(const QPoint &viewportPos);
    void trackShake(const QPoint &viewportPos);
    void severEdgesAlong(const QLineF &line);
    // Makes the temporary edge of a drag the scene's mouse grabber.
    void grabDragEdge();
    // The grab of the dragged edge was lost without a drop: the drag ends and changes nothing.
    void abandonEdgeDrag();
    // Whether the press went to a backdrop's resize handle (a resize, not a drag).
    bool resizingBackdrop() const;
    // Highlights the edge a dragged node would be spliced into.
    void updateInsertionCandidate();
    void setInsertionCandidate(OssNgEdge *edge);

    int m_cursorTrackingMode = NormalTracking;
    bool m_snapToGrid = false;
    bool m_autoInsert = true;
    QPoint m_lastMouse;
    QPointF m_severStart;
    // Edge drag: the temporary or picked-up edge, and the fixed end.
    QPointer<OssNgEdge> m_dragEdge;
    QPointer<OssNgNode> m_dragFixedNode;
    QString m_dragFixedPort;
    bool m_dragFromOutput = true;
    // A picked-up edge: the input it came from, cut when the drop lands nowhere.
    QPointer<OssNgNode> m_pickedTarget;
    QString m_pickedInput;
    // Shake detection.
    QElapsedTimer m_shakeClock;
    QVector<qint64> m_reversals;
    int m_lastDirection = 0;
    bool m_shakeFired = false;
    bool m_draggingNodes = false;
    QList<QPointer<OssNgNode>> m_draggedNodes;
    QPointer<OssNgEdge> m_insertionEdge;
    // The last zoom's anchor: a zoom at the same viewport position, with nothing moved since,
    // keeps the same scene point, so whole-pixel scrolling never adds up to a drift.
    struct ZoomAnchor
    {
        QPoint viewportPos;
        QPointF scenePos;
        QPoint scroll;
        QTransform transform;
    };
    ZoomAnchor m_lastZoom;
    QGraphicsLineItem *m_severLine = nullptr;
};
