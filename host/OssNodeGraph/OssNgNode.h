#pragma once

#include "OssNodeGraphExport.h"

#include <OssStringMap.h>

#include <QBrush>
#include <QColor>
#include <QGraphicsObject>
#include <QHash>
#include <QPair>
#include <QPixmap>
#include <QPoint>
#include <QPointer>
#include <QSet>
#include <QStringList>
#include <QVector>

class OssNgEdge;
class OssNgNode;
class OssNgNodeState;
class OssSerializer;

// One port of a GUI node.
struct OSSNODEGRAPH_EXPORT OssNgPort
{
    QString name;
    bool input = true;
    bool preferred = false;
    bool setAtLoad = false;
    QSet<QString> tags;
    QString prettyName;
    QString descriptiveName;
    // Text shown beside the port instead of its name, when set ("0:Current Material").
    QString text;
    bool used = false;
    bool visible = true;
    QString cluster;
    // Where an unconnected edge stub points, relative to the node's centre.
    bool hasConnectionPosition = false;
    QPair<QPoint, QPoint> connectionPosition;
    // Position of the port's text along the node edge (0 to 1), negative for automatic.
    double textPosition = -1;

    QString label() const;
};

// A node of the graph view: a box with a title, input ports and output ports, and the edges
// that end at them. Its QObject parent is the business node it shows. User edits leave as
// signals; the business side changes the node through its operations.
class OSSNODEGRAPH_EXPORT OssNgNode : public QGraphicsObject
{
    Q_OBJECT
public:
    enum
    {
        Type = UserType + 101
    };
    // How ports are laid out: vertical flow (inputs on top, outputs below) or horizontal flow
    // (inputs left, outputs right).
    enum class Flow
    {
        Vertical,
        Horizontal
    };
    // The outline of a node's body. The numbers are saved in projects and written in node-type
    // descriptions; any other number draws the rounded outline.
    enum ShapeType : int
    {
        RoundedShape = 0,
        MaterialShape = 3,
        GroupShape = 4,
        MultiChannelGroupShape = 7
    };

    // While one of these lives, nodes that move adjust their edges once, when the last one goes
    // out of scope: laying out thousands of nodes moves both ends of most edges, each more than
    // once.
    class OSSNODEGRAPH_EXPORT DeferEdgeUpdates
    {
    public:
        DeferEdgeUpdates();
        ~DeferEdgeUpdates();
        DeferEdgeUpdates(const DeferEdgeUpdates &) = delete;
        DeferEdgeUpdates &operator=(const DeferEdgeUpdates &) = delete;
    };

    explicit OssNgNode(QGraphicsItem *parentItem = nullptr);
    ~OssNgNode() override;
    int type() const override { return Type; }
    // The GUI node an item is, or null (every GUI node class has a type in this range).
    static OssNgNode *fromItem(QGraphicsItem *item);
    static bool isNodeType(int type)
    {
        return type >= Type && type < Type + 20 && type != Type + 1;
    }

    QString text() const { return m_text; }
    virtual void setText(const QString &text);
    int shapeType() const { return m_shapeType; }
    void setShapeType(int shapeType);
    QSizeF nodeSize() const { return m_size; }
    virtual void setNodeSize(const QSizeF &size);

    // --- ports
    void addInputPort(const QString &name, bool preferred = false, bool setAtLoad = false,
                      const QSet<QString> &tags = {});
    void addOutputPort(const QString &name, bool visible = true);
    bool removeInputPort(const QString &name);
    bool removeOutputPort(const QString &name);
    bool renameInputPort(const QString &oldName, const QString &newName);
    bool renameOutputPort(const QString &oldName, const QString &newName);
    // Puts the named ports first, in the order given; the others follow in their own order.
    void setInputPortOrder(const QStringList &order);
    void setOutputPortOrder(const QStringList &order);
    void clearPorts();
    void setOutputPortUsed(const QString &name, bool used);
    void setInputPortText(const QString &name, const QString &text);
    void setInputPortVisible(const QString &name, bool visible);
    QStringList inputPortNames() const;
    QStringList outputPortNames() const;
    const OssNgPort *inputPort(const QString &name) const;
    const OssNgPort *outputPort(const QString &name) const;
    void setConnectionDescriptiveNames(const QStringList &inputs, const QStringList &outputs);
    void setConnectionPrettyNames(const QStringList &inputs, const QStringList &outputs);
    void setConnectionTextPositions(const QHash<QString, float> &inputs,
                                    const QHash<QString, float> &outputs);
    void setConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>> &inputs,
                                const QHash<QString, QPair<QPoint, QPoint>> &outputs);
    QString outputPointDescriptiveName(const QString &outputPoint) const;
    bool portsVisible() const { return m_portsVisible; }
    void setPortsVisible(bool visible);
    void togglePortsVisible() { setPortsVisible(!m_portsVisible); }

    // Where the title (with the room for an icon before it) and a visible port's label are
    // drawn, in node coordinates. The node is wide enough for both label columns and the title
    // between them, so none of them overlap.
    QRectF titleRect() const;
    QRectF portLabelRect(const QString &name, bool input) const;

    // Port anchors in scene coordinates and the direction an edge leaves them.
    QPointF inputPortScenePos(const QString &name) const;
    QPointF outputPortScenePos(const QString &name) const;
    QPointF inputPortDirection() const;
    QPointF outputPortDirection() const;
    // The port under a point in node coordinates, or "".
    QString inputPortAt(const QPointF &local) const;
    QString outputPortAt(const QPointF &local) const;
    // Whether a point in node coordinates hits the node.
    virtual bool hitTest(const QPointF &local) const;

    // --- edges
    QList<OssNgEdge *> inputs() const;
    QList<OssNgEdge *> outputs() const;
    OssNgEdge *input(const QString &name) const;
    // Draws (or re-targets) the edge of an input from Source's output point; a null source
    // removes it. Returns the edge.
    OssNgEdge *connectInput(const QString &inputName, OssNgNode *source,
                            const QString &outputPoint);
    void disconnectInput(const QString &inputName);
    // Announces a user edit of one of this node's inputs (the view and auto-insert use it).
    void requestInputSource(OssNgNode *source, const QString &inputName,
                            const QString &outputPoint);
    void removeTemporaryOutputEdge();
    void removeVirtualInputEdge();
    OssNgEdge *virtualInputEdge() const;
    // The viewer's virtual edge: drawn from Source into an input, not a connection.
    void setVirtualInputEdge(OssNgNode *source, const QString &inputName);

    // --- state and marks
    void savePosition() { m_savedPosition = pos(); }
    QPointF savedPosition() const { return m_savedPosition; }
    bool hovered() const { return m_hovered; }
    void setHovered(bool hovered);
    void setDebug(bool debug);
    bool debug() const { return m_debug; }
    void setDebugColor(const QColor &color);
    QColor debugColor() const { return m_debugColor; }
    void setHighlighted(bool highlighted);
    bool highlighted() const { return m_highlighted; }
    void setNodeColor(const QColor &top, const QColor &bottom);
    QColor topColor() const;
    QColor bottomColor() const;
    virtual QBrush fillBrush() const;
    // The single colour a far-away node is drawn with.
    virtual QColor farColor() const { return topColor(); }
    Flow flow() const { return m_flow; }

    // --- editing helpers
    // Splices this node into the edge it lies on, when the view allows auto-insertion and the
    // node has no connections yet. True when it asked for the splice.
    bool processAutoinsert();
    // The edge processAutoinsert() would splice this node into where it lies now, if any.
    OssNgEdge *autoinsertCandidate() const;
    // Asks to splice this node into Edge: the edge's source feeds this node's preferred input
    // and this node's preferred output feeds the edge's target input.
    void setupNodeForInsertionIntoEdge(OssNgEdge *edge);
    QString preferredInputPort() const;
    QString preferredOutputPort() const;
    // Copies position, size and display state from another GUI node.
    virtual void copyFrom(const OssNgNode *other);
    // Leaves the scene and drops every edge; the node object itself stays.
    void dispose();

    // --- persistence: the state object is what a project saves under the GUI node's name.
    OssNgNodeState *state() { return m_state; }
    bool save(OssSerializer &serializer, const QString &name,
              const OssStringMap &attributes = OssStringMap());
    // Called by the state object after it was read back.
    virtual void stateLoaded() {}

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    bool contains(const QPointF &point) const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    // Used by edges.
    void edgeAttached(OssNgEdge *edge, bool asInput);
    void edgeDetached(OssNgEdge *edge);

signals:
    void posChanged(QPointF position);
    // The item's selection changed, by the user or by the scene.
    void selectedChanged(bool selected);
    void inputSourceChanged(OssNgNode *source, QString inputName, QString outputPoint);
    void clickedOnDotableMarkerOnEdge(OssNgEdge *edge);
    void hoveredChanged(bool hovered);
    void sizeChanged(QSizeF size);

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;
    // Recomputes the size from the ports and text; subclasses with their own size keep it.
    virtual void relayout();
    void setFlow(Flow flow);
    void updateEdges();
    QVector<OssNgPort> &inputPortVector() { return m_inputs; }
    QVector<OssNgPort> &outputPortVector() { return m_outputs; }
    QList<const OssNgPort *> visiblePorts(bool inputs) const;
    virtual bool showPortLabels() const { return true; }
    // Room kept free on each side of the title (for an icon drawn beside it).
    virtual qreal titleMargin() const { return 0; }
    void paintPorts(QPainter *painter, bool withText);
    void paintTitle(QPainter *painter);
    QRectF bodyRect() const;

    QString m_text;
    // Width of the text in the node's font, measured on the first layout after a change: a node
    // lays itself out again for every port it gets, and measuring text is the costly part.
    qreal m_textWidth = -1;
    // Widths of the widest visible input and output labels at the last layout (0 without
    // labels).
    qreal m_inputLabelWidth = 0;
    qreal m_outputLabelWidth = 0;
    // The visible ports and flow of the last layout, to tell whether edge ends moved.
    uint m_portLayout = 0;
    // Moved while edge updates were deferred; its edges wait for the adjustment.
    bool m_edgesPending = false;
    QSizeF m_size;
    int m_shapeType = 0;

private:
    int indexOfInput(const QString &name) const;
    int indexOfOutput(const QString &name) const;
    QPointF portLocalPos(const OssNgPort &port) const;
    QRectF labelRect(const OssNgPort &port) const;
    // Whether port labels are drawn beside the ports (horizontal flow) at all.
    bool labelsShown() const;

    QVector<OssNgPort> m_inputs;
    QVector<OssNgPort> m_outputs;
    QHash<QString, OssNgEdge *> m_inputEdges;
    QList<OssNgEdge *> m_outputEdges;
    QPointer<OssNgEdge> m_virtualInputEdge;
    QPointF m_savedPosition;
    QColor m_top, m_bottom;
    QColor m_debugColor;
    Flow m_flow = Flow::Vertical;
    bool m_portsVisible = true;
    bool m_hovered = false;
    bool m_debug = false;
    bool m_highlighted = false;
    OssNgNodeState *m_state = nullptr;
};
