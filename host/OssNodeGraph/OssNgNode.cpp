#include "OssNgNode.h"

#include "OssNgEdge.h"
#include "OssNgNodeState.h"
#include "OssNgStyle.h"
#include "OssNgView.h"

#include <OssSerializer.h>

#include <QFontMetricsF>
#include <QGraphicsScene>
#include <QLinearGradient>
#include <QPainter>
#include <QPointer>
#include <QSet>
#include <QStyleOptionGraphicsItem>

#include <algorithm>
#include <cmath>
#include <utility>

QString OssNgPort::label() const
{
    if (!text.isEmpty())
        return text;
    if (!descriptiveName.isEmpty())
        return descriptiveName;
    return prettyName.isEmpty() ? name : prettyName;
}

namespace {

struct DeferredEdgeUpdates
{
    int depth = 0;
    QList<QPointer<OssNgNode>> nodes;
};

DeferredEdgeUpdates &deferredEdgeUpdates()
{
    static DeferredEdgeUpdates state;
    return state;
}

} // namespace

// --- node

OssNgNode::OssNgNode(QGraphicsItem *parentItem)
    : QGraphicsObject(parentItem),
      m_size(OssNgStyle::instance()->nodeWidth(), OssNgStyle::instance()->nodeHeight())
{
    static const bool registered = [] {
        qRegisterMetaType<OssNgNode *>("OssNgNode*");
        qRegisterMetaType<OssNgEdge *>("OssNgEdge*");
        qRegisterMetaType<QList<OssNgNode *>>("QList<OssNgNode*>");
        return true;
    }();
    Q_UNUSED(registered);
    setFlags(ItemIsMovable | ItemIsSelectable | ItemSendsGeometryChanges);
    setAcceptHoverEvents(true);
    m_state = new OssNgNodeState(this);
    connect(m_state, &OssSerializableObject::destroyed, this, [this] { m_state = nullptr; });
}

OssNgNode::~OssNgNode()
{
    // Edges cannot outlive either end.
    const QList<OssNgEdge *> edges = m_inputEdges.values() + m_outputEdges;
    m_inputEdges.clear();
    m_outputEdges.clear();
    for (OssNgEdge *edge : edges)
        delete edge;
    delete m_virtualInputEdge.data();
}

OssNgNode *OssNgNode::fromItem(QGraphicsItem *item)
{
    return item && isNodeType(item->type())
               ? static_cast<OssNgNode *>(static_cast<QGraphicsObject *>(item))
               : nullptr;
}

void OssNgNode::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_textWidth = -1;
    relayout();
    update();
}

void OssNgNode::setShapeType(int shapeType)
{
    if (shapeType == m_shapeType)
        return;
    prepareGeometryChange();
    m_shapeType = shapeType;
    update();
}

OssNgNode::DeferEdgeUpdates::DeferEdgeUpdates()
{
    ++deferredEdgeUpdates().depth;
}

OssNgNode::DeferEdgeUpdates::~DeferEdgeUpdates()
{
    DeferredEdgeUpdates &deferred = deferredEdgeUpdates();
    if (--deferred.depth > 0)
        return;
    const QList<QPointer<OssNgNode>> nodes = std::exchange(deferred.nodes, {});
    // Each edge once, however many of its ends moved; nodes deleted meanwhile took their edges.
    QSet<OssNgEdge *> edges;
    for (const QPointer<OssNgNode> &node : nodes) {
        if (!node)
            continue;
        node->m_edgesPending = false;
        for (OssNgEdge *edge : qAsConst(node->m_inputEdges))
            edges.insert(edge);
        for (OssNgEdge *edge : qAsConst(node->m_outputEdges))
            edges.insert(edge);
        if (node->m_virtualInputEdge)
            node->updateEdges();
    }
    for (OssNgEdge *edge : qAsConst(edges))
        edge->adjust();
}

void OssNgNode::setNodeSize(const QSizeF &size)
{
    if (size == m_size)
        return;
    prepareGeometryChange();
    m_size = size;
    updateEdges();
    emit sizeChanged(size);
}

// --- ports

int OssNgNode::indexOfInput(const QString &name) const
{
    for (int i = 0; i < m_inputs.size(); ++i)
        if (m_inputs.at(i).name == name)
            return i;
    return -1;
}

int OssNgNode::indexOfOutput(const QString &name) const
{
    for (int i = 0; i < m_outputs.size(); ++i)
        if (m_outputs.at(i).name == name)
            return i;
    return -1;
}

void OssNgNode::addInputPort(const QString &name, bool preferred, bool setAtLoad,
                             const QSet<QString> &tags)
{
    if (name.isEmpty() || indexOfInput(name) >= 0)
        return;
    OssNgPort port;
    port.name = name;
    port.input = true;
    port.preferred = preferred;
    port.setAtLoad = setAtLoad;
    port.tags = tags;
    m_inputs.append(port);
    relayout();
}

void OssNgNode::addOutputPort(const QString &name, bool visible)
{
    if (name.isEmpty() || indexOfOutput(name) >= 0)
        return;
    OssNgPort port;
    port.name = name;
    port.input = false;
    port.visible = visible;
    m_outputs.append(port);
    relayout();
}

bool OssNgNode::removeInputPort(const QString &name)
{
    const int index = indexOfInput(name);
    if (index < 0)
        return false;
    disconnectInput(name);
    m_inputs.remove(index);
    relayout();
    return true;
}

bool OssNgNode::removeOutputPort(const QString &name)
{
    const int index = indexOfOutput(name);
    if (index < 0)
        return false;
    for (OssNgEdge *edge : m_outputEdges)
        if (edge->outputPoint() == name && edge->targetNode())
            edge->targetNode()->disconnectInput(edge->inputName());
    m_outputs.remove(index);
    relayout();
    return true;
}

bool OssNgNode::renameInputPort(const QString &oldName, const QString &newName)
{
    const int index = indexOfInput(oldName);
    if (index < 0 || newName.isEmpty() || indexOfInput(newName) >= 0)
        return false;
    m_inputs[index].name = newName;
    if (OssNgEdge *edge = m_inputEdges.take(oldName)) {
        m_inputEdges.insert(newName, edge);
        // Re-targeting keeps the edge; it reattaches under the new name.
        edge->setTarget(this, newName);
    }
    relayout();
    return true;
}

bool OssNgNode::renameOutputPort(const QString &oldName, const QString &newName)
{
    const int index = indexOfOutput(oldName);
    if (index < 0 || newName.isEmpty() || indexOfOutput(newName) >= 0)
        return false;
    m_outputs[index].name = newName;
    for (OssNgEdge *edge : QList<OssNgEdge *>(m_outputEdges))
        if (edge->outputPoint() == oldName)
            edge->setSource(this, newName);
    relayout();
    return true;
}

namespace {

QVector<OssNgPort> reordered(const QVector<OssNgPort> &ports, const QStringList &order)
{
    QVector<OssNgPort> result;
    result.reserve(ports.size());
    for (const QString &name : order)
        for (const OssNgPort &port : ports)
            if (port.name == name) {
                result.append(port);
                break;
            }
    for (const OssNgPort &port : ports)
        if (!order.contains(port.name))
            result.append(port);
    return result;
}

} // namespace

void OssNgNode::setInputPortOrder(const QStringList &order)
{
    m_inputs = reordered(m_inputs, order);
    relayout();
}

void OssNgNode::setOutputPortOrder(const QStringList &order)
{
    m_outputs = reordered(m_outputs, order);
    relayout();
}

void OssNgNode::clearPorts()
{
    for (const QString &name : inputPortNames())
        disconnectInput(name);
    m_inputs.clear();
    m_outputs.clear();
    relayout();
}

void OssNgNode::setOutputPortUsed(const QString &name, bool used)
{
    const int index = indexOfOutput(name);
    if (index >= 0 && m_outputs.at(index).used != used) {
        m_outputs[index].used = used;
        relayout();
        update();
    }
}

void OssNgNode::setInputPortText(const QString &name, const QString &text)
{
    const int index = indexOfInput(name);
    if (index >= 0 && m_inputs.at(index).text != text) {
        m_inputs[index].text = text;
        update();
    }
}

void OssNgNode::setInputPortVisible(const QString &name, bool visible)
{
    const int index = indexOfInput(name);
    if (index >= 0 && m_inputs.at(index).visible != visible) {
        m_inputs[index].visible = visible;
        relayout();
    }
}

QStringList OssNgNode::inputPortNames() const
{
    QStringList names;
    for (const OssNgPort &port : m_inputs)
        names.append(port.name);
    return names;
}

QStringList OssNgNode::outputPortNames() const
{
    QStringList names;
    for (const OssNgPort &port : m_outputs)
        names.append(port.name);
    return names;
}

const OssNgPort *OssNgNode::inputPort(const QString &name) const
{
    const int index = indexOfInput(name);
    return index < 0 ? nullptr : &m_inputs.at(index);
}

const OssNgPort *OssNgNode::outputPort(const QString &name) const
{
    const int index = indexOfOutput(name);
    return index < 0 ? nullptr : &m_outputs.at(index);
}

void OssNgNode::setConnectionDescriptiveNames(const QStringList &inputs, const QStringList &outputs)
{
    for (int i = 0; i < m_inputs.size(); ++i)
        m_inputs[i].descriptiveName = inputs.value(i);
    for (int i = 0; i < m_outputs.size(); ++i)
        m_outputs[i].descriptiveName = outputs.value(i);
    relayout();
}

void OssNgNode::setConnectionPrettyNames(const QStringList &inputs, const QStringList &outputs)
{
    for (int i = 0; i < m_inputs.size(); ++i)
        m_inputs[i].prettyName = inputs.value(i);
    for (int i = 0; i < m_outputs.size(); ++i)
        m_outputs[i].prettyName = outputs.value(i);
    relayout();
}

void OssNgNode::setConnectionTextPositions(const QHash<QString, float> &inputs,
                                           const QHash<QString, float> &outputs)
{
    for (OssNgPort &port : m_inputs)
        port.textPosition = inputs.value(port.name, -1);
    for (OssNgPort &port : m_outputs)
        port.textPosition = outputs.value(port.name, -1);
    update();
}

void OssNgNode::setConnectionPositions(const QHash<QString, QPair<QPoint, QPoint>> &inputs,
                                       const QHash<QString, QPair<QPoint, QPoint>> &outputs)
{
    for (OssNgPort &port : m_inputs) {
        port.hasConnectionPosition = inputs.contains(port.name);
        port.connectionPosition = inputs.value(port.name);
    }
    for (OssNgPort &port : m_outputs) {
        port.hasConnectionPosition = outputs.contains(port.name);
        port.connectionPosition = outputs.value(port.name);
    }
    update();
}

QString OssNgNode::outputPointDescriptiveName(const QString &outputPoint) const
{
    const OssNgPort *port = outputPort(outputPoint);
    return port ? port->label() : outputPoint;
}

void OssNgNode::setPortsVisible(bool visible)
{
    if (visible == m_portsVisible)
        return;
    m_portsVisible = visible;
    relayout();
    update();
}

void OssNgNode::setFlow(Flow flow)
{
    if (flow == m_flow)
        return;
    m_flow = flow;
    relayout();
}

QList<const OssNgPort *> OssNgNode::visiblePorts(bool inputs) const
{
    QList<const OssNgPort *> ports;
    for (const OssNgPort &port : inputs ? m_inputs : m_outputs)
        if (port.visible)
            ports.append(&port);
    return ports;
}

QRectF OssNgNode::bodyRect() const
{
    return QRectF(QPointF(0, 0), m_size);
}

namespace {

// Space between a port and its label, and between a label column and the title.
constexpr qreal LabelInset = 8;
constexpr qreal ColumnGap = 10;
// Space on either side of the title where no labels are.
constexpr qreal TitlePadding = 12;
constexpr qreal LabelHeight = 14;

// The width of a port label in the label font, rounded up (text is drawn on whole pixels).
// Labels are a few words used over and over ("Input", "Mask"), and a node lays itself out for
// every port it gets: each word is measured once.
qreal labelWidth(const QString &label)
{
    static QHash<QString, qreal> widths;
    const auto known = widths.constFind(label);
    if (known != widths.constEnd())
        return known.value();
    static const QFontMetricsF metrics(OssNgStyle::instance()->labelFont());
    const qreal width = std::ceil(metrics.horizontalAdvance(label));
    widths.insert(label, width);
    return width;
}

} // namespace

bool OssNgNode::labelsShown() const
{
    return m_portsVisible && showPortLabels();
}

QRectF OssNgNode::titleRect() const
{
    const bool beside = labelsShown() && m_flow == Flow::Horizontal;
    const qreal left =
        beside && m_inputLabelWidth > 0 ? LabelInset + m_inputLabelWidth + ColumnGap : TitlePadding;
    const qreal right = beside && m_outputLabelWidth > 0
                            ? LabelInset + m_outputLabelWidth + ColumnGap
                            : TitlePadding;
    return QRectF(left, 0, qMax<qreal>(0, m_size.width() - left - right), m_size.height());
}

QRectF OssNgNode::portLabelRect(const QString &name, bool input) const
{
    const OssNgPort *port = input ? inputPort(name) : outputPort(name);
    if (!port || !port->visible || !labelsShown())
        return QRectF();
    return labelRect(*port);
}

QRectF OssNgNode::labelRect(const OssNgPort &port) const
{
    const QPointF at = portLocalPos(port);
    if (m_flow == Flow::Vertical) {
        const qreal width = m_size.width() / (visiblePorts(port.input).size() + 1) - 4;
        return QRectF(at.x() - width / 2, port.input ? at.y() + 3 : at.y() - 3 - LabelHeight, width,
                      LabelHeight);
    }
    const qreal width = port.input ? m_inputLabelWidth : m_outputLabelWidth;
    return port.input
               ? QRectF(at.x() + LabelInset, at.y() - LabelHeight / 2, width, LabelHeight)
               : QRectF(at.x() - LabelInset - width, at.y() - LabelHeight / 2, width, LabelHeight);
}

void OssNgNode::relayout()
{
    const OssNgStyle *style = OssNgStyle::instance();
    const int inputs = visiblePorts(true).size();
    const int outputs = visiblePorts(false).size();
    QSizeF size(style->nodeWidth(), style->nodeHeight());
    if (m_textWidth < 0) {
        const QFontMetricsF metrics(OssNgStyle::instance()->titleFont());
        m_textWidth = metrics.horizontalAdvance(m_text);
    }
    // The labels' columns beside the ports, as wide as their widest labels.
    m_inputLabelWidth = 0;
    m_outputLabelWidth = 0;
    if (labelsShown()) {
        for (const QVector<OssNgPort> *ports : {&m_inputs, &m_outputs}) {
            qreal &widest = ports == &m_inputs ? m_inputLabelWidth : m_outputLabelWidth;
            for (const OssNgPort &port : *ports)
                if (port.visible)
                    widest = qMax(widest, labelWidth(port.label()));
        }
    }
    const bool beside = labelsShown() && m_flow == Flow::Horizontal;
    const qreal left =
        beside && m_inputLabelWidth > 0 ? LabelInset + m_inputLabelWidth + ColumnGap : TitlePadding;
    const qreal right = beside && m_outputLabelWidth > 0
                            ? LabelInset + m_outputLabelWidth + ColumnGap
                            : TitlePadding;
    size.setWidth(qMax(size.width(), left + titleMargin() + std::ceil(m_textWidth) + right));
    if (m_portsVisible) {
        if (m_flow == Flow::Vertical) {
            // Labels above and below the ports, each in its share of the width, and the title
            // between the two rows.
            const qreal widest = qMax(m_inputLabelWidth, m_outputLabelWidth) + 8;
            size.setWidth(
                qMax<qreal>(size.width(), (qMax(inputs, outputs) + 1) * qMax<qreal>(40, widest)));
            if (labelsShown())
                size.setHeight(
                    qMax<qreal>(size.height(), 2 * (LabelHeight + 4) +
                                                   QFontMetricsF(style->titleFont()).height() + 4));
        } else {
            size.setHeight(
                qMax<qreal>(size.height(), qMax(inputs, outputs) * style->portRowHeight() + 16));
        }
    }
    // Edges move only when their ends do: when the size changes (setNodeSize adjusts them) or
    // when the visible ports or the flow change. A node lays itself out again for every port
    // that gets used or freed, which leaves both alone.
    uint layout = qHash(int(m_flow)) ^ (m_portsVisible ? 0x9e3779b9u : 0u);
    for (const QVector<OssNgPort> *ports : {&m_inputs, &m_outputs})
        for (const OssNgPort &port : *ports)
            layout = layout * 31u + (port.visible ? qHash(port.name) : 7u);
    const bool resized = size != m_size;
    setNodeSize(size);
    if (!resized && layout != m_portLayout)
        updateEdges();
    m_portLayout = layout;
    update();
}

QPointF OssNgNode::portLocalPos(const OssNgPort &port) const
{
    // Counted in place: edges ask for their ends on every move and repaint.
    int index = -1;
    int visible = 0;
    for (const OssNgPort &other : port.input ? m_inputs : m_outputs) {
        if (!other.visible)
            continue;
        if (other.name == port.name)
            index = visible;
        ++visible;
    }
    const bool vertical = m_flow == Flow::Vertical;
    // Hidden ports and folded port lists meet at the middle of their side.
    double along = 0.5;
    if (index >= 0 && m_portsVisible)
        along = double(index + 1) / double(visible + 1);
    if (vertical)
        return QPointF(m_size.width() * along, port.input ? 0.0 : m_size.height());
    return QPointF(port.input ? 0.0 : m_size.width(), m_size.height() * along);
}

QPointF OssNgNode::inputPortScenePos(const QString &name) const
{
    const OssNgPort *port = inputPort(name);
    const QPointF local = port ? portLocalPos(*port)
                               : (m_flow == Flow::Vertical ? QPointF(m_size.width() / 2, 0)
                                                           : QPointF(0, m_size.height() / 2));
    return mapToScene(local);
}

QPointF OssNgNode::outputPortScenePos(const QString &name) const
{
    const OssNgPort *port = outputPort(name);
    const QPointF local =
        port ? portLocalPos(*port)
             : (m_flow == Flow::Vertical ? QPointF(m_size.width() / 2, m_size.height())
                                         : QPointF(m_size.width(), m_size.height() / 2));
    return mapToScene(local);
}

QPointF OssNgNode::inputPortDirection() const
{
    return m_flow == Flow::Vertical ? QPointF(0, -1) : QPointF(-1, 0);
}

QPointF OssNgNode::outputPortDirection() const
{
    return m_flow == Flow::Vertical ? QPointF(0, 1) : QPointF(1, 0);
}

QString OssNgNode::inputPortAt(const QPointF &local) const
{
    const qreal reach = OssNgStyle::instance()->portRadius() + 4;
    for (const OssNgPort &port : m_inputs)
        if (port.visible && QLineF(local, portLocalPos(port)).length() <= reach)
            return port.name;
    return QString();
}

QString OssNgNode::outputPortAt(const QPointF &local) const
{
    const qreal reach = OssNgStyle::instance()->portRadius() + 4;
    for (const OssNgPort &port : m_outputs)
        if (port.visible && QLineF(local, portLocalPos(port)).length() <= reach)
            return port.name;
    return QString();
}

bool OssNgNode::hitTest(const QPointF &local) const
{
    return boundingRect().contains(local);
}

// --- edges

QList<OssNgEdge *> OssNgNode::inputs() const
{
    QList<OssNgEdge *> edges;
    for (const OssNgPort &port : m_inputs)
        if (OssNgEdge *edge = m_inputEdges.value(port.name))
            edges.append(edge);
    return edges;
}

QList<OssNgEdge *> OssNgNode::outputs() const
{
    return m_outputEdges;
}

OssNgEdge *OssNgNode::input(const QString &name) const
{
    return m_inputEdges.value(name);
}

OssNgEdge *OssNgNode::connectInput(const QString &inputName, OssNgNode *source,
                                   const QString &outputPoint)
{
    OssNgEdge *edge = m_inputEdges.value(inputName);
    if (!source) {
        disconnectInput(inputName);
        return nullptr;
    }
    if (edge) {
        edge->setSource(source, outputPoint);
        return edge;
    }
    edge = new OssNgEdge(source, outputPoint, this, inputName);
    if (scene())
        scene()->addItem(edge);
    return edge;
}

void OssNgNode::disconnectInput(const QString &inputName)
{
    if (OssNgEdge *edge = m_inputEdges.value(inputName))
        delete edge;
}

void OssNgNode::requestInputSource(OssNgNode *source, const QString &inputName,
                                   const QString &outputPoint)
{
    emit inputSourceChanged(source, inputName, outputPoint);
}

void OssNgNode::removeTemporaryOutputEdge()
{
    for (OssNgEdge *edge : QList<OssNgEdge *>(m_outputEdges))
        if (edge->kind() == OssNgEdge::Kind::Temporary)
            delete edge;
}

void OssNgNode::removeVirtualInputEdge()
{
    delete m_virtualInputEdge.data();
}

OssNgEdge *OssNgNode::virtualInputEdge() const
{
    return m_virtualInputEdge.data();
}

void OssNgNode::setVirtualInputEdge(OssNgNode *source, const QString &inputName)
{
    removeVirtualInputEdge();
    if (!source)
        return;
    m_virtualInputEdge = new OssNgEdge(source, source->preferredOutputPort(), nullptr, QString(),
                                       OssNgEdge::Kind::Virtual);
    m_virtualInputEdge->setLooseEnd(inputPortScenePos(inputName));
    m_virtualInputEdge->setProperty("virtualInput", inputName);
    if (scene())
        scene()->addItem(m_virtualInputEdge);
}

void OssNgNode::edgeAttached(OssNgEdge *edge, bool asInput)
{
    if (asInput) {
        OssNgEdge *previous = m_inputEdges.value(edge->inputName());
        if (previous && previous != edge)
            delete previous;
        m_inputEdges.insert(edge->inputName(), edge);
    } else if (!m_outputEdges.contains(edge)) {
        m_outputEdges.append(edge);
    }
}

void OssNgNode::edgeDetached(OssNgEdge *edge)
{
    for (auto it = m_inputEdges.begin(); it != m_inputEdges.end();) {
        if (it.value() == edge)
            it = m_inputEdges.erase(it);
        else
            ++it;
    }
    m_outputEdges.removeAll(edge);
}

void OssNgNode::updateEdges()
{
    for (OssNgEdge *edge : qAsConst(m_inputEdges))
        edge->adjust();
    for (OssNgEdge *edge : qAsConst(m_outputEdges))
        edge->adjust();
    if (m_virtualInputEdge)
        m_virtualInputEdge->setLooseEnd(
            inputPortScenePos(m_virtualInputEdge->property("virtualInput").toString()));
}

// --- marks

void OssNgNode::setHovered(bool hovered)
{
    if (hovered == m_hovered)
        return;
    m_hovered = hovered;
    update();
    emit hoveredChanged(hovered);
}

void OssNgNode::setDebug(bool debug)
{
    m_debug = debug;
    update();
}

void OssNgNode::setDebugColor(const QColor &color)
{
    m_debugColor = color;
    update();
}

void OssNgNode::setHighlighted(bool highlighted)
{
    m_highlighted = highlighted;
    update();
}

void OssNgNode::setNodeColor(const QColor &top, const QColor &bottom)
{
    m_top = top;
    m_bottom = bottom;
    update();
}

QColor OssNgNode::topColor() const
{
    return m_top.isValid() ? m_top : OssNgStyle::instance()->defaultNodeTopColor();
}

QColor OssNgNode::bottomColor() const
{
    return m_bottom.isValid() ? m_bottom : OssNgStyle::instance()->defaultNodeBottomColor();
}

QBrush OssNgNode::fillBrush() const
{
    QLinearGradient gradient(0, 0, 0, m_size.height());
    gradient.setColorAt(0, topColor());
    gradient.setColorAt(1, bottomColor());
    return QBrush(gradient);
}

// --- editing helpers

QString OssNgNode::preferredInputPort() const
{
    for (const OssNgPort &port : m_inputs)
        if (port.preferred)
            return port.name;
    return m_inputs.isEmpty() ? QString() : m_inputs.first().name;
}

QString OssNgNode::preferredOutputPort() const
{
    return m_outputs.isEmpty() ? QString() : m_outputs.first().name;
}

bool OssNgNode::processAutoinsert()
{
    OssNgEdge *edge = autoinsertCandidate();
    if (!edge)
        return false;
    setupNodeForInsertionIntoEdge(edge);
    return true;
}

OssNgEdge *OssNgNode::autoinsertCandidate() const
{
    if (!scene() || !m_inputEdges.isEmpty() || !m_outputEdges.isEmpty())
        return nullptr;
    bool allowed = false;
    for (QGraphicsView *view : scene()->views())
        if (auto *graphView = qobject_cast<OssNgView *>(view))
            allowed = allowed || graphView->autoInsertEnabled();
    if (!allowed || preferredInputPort().isEmpty() || preferredOutputPort().isEmpty())
        return nullptr;
    const QList<QGraphicsItem *> under =
        scene()->items(sceneBoundingRect(), Qt::IntersectsItemShape);
    for (QGraphicsItem *item : under) {
        if (item->type() != OssNgEdge::Type)
            continue;
        auto *edge = static_cast<OssNgEdge *>(item);
        if (edge->kind() != OssNgEdge::Kind::Connection || !edge->isFullConnected() ||
            edge->sourceNode() == this || edge->targetNode() == this || !edge->isVisible())
            continue;
        return edge;
    }
    return nullptr;
}

void OssNgNode::setupNodeForInsertionIntoEdge(OssNgEdge *edge)
{
    if (!edge || !edge->isFullConnected())
        return;
    OssNgNode *source = edge->sourceNode();
    OssNgNode *target = edge->targetNode();
    const QString outputPoint = edge->outputPoint();
    const QString inputName = edge->inputName();
    const QString myInput = preferredInputPort();
    const QString myOutput = preferredOutputPort();
    if (myInput.isEmpty() || myOutput.isEmpty())
        return;
    emit inputSourceChanged(source, myInput, outputPoint);
    target->requestInputSource(this, inputName, myOutput);
}

void OssNgNode::copyFrom(const OssNgNode *other)
{
    if (!other)
        return;
    setPos(other->pos());
    setPortsVisible(other->portsVisible());
    setShapeType(other->shapeType());
    m_top = other->m_top;
    m_bottom = other->m_bottom;
    setZValue(other->zValue());
    update();
}

void OssNgNode::dispose()
{
    const QList<OssNgEdge *> edges = m_inputEdges.values() + m_outputEdges;
    for (OssNgEdge *edge : edges)
        delete edge;
    removeVirtualInputEdge();
    if (scene())
        scene()->removeItem(this);
}

bool OssNgNode::save(OssSerializer &serializer, const QString &name, const OssStringMap &attributes)
{
    return m_state && m_state->save(serializer, name, attributes);
}

// --- item behaviour

QVariant OssNgNode::itemChange(GraphicsItemChange change, const QVariant &value)
{
    switch (change) {
    case ItemPositionHasChanged:
        if (deferredEdgeUpdates().depth > 0) {
            if (!m_edgesPending) {
                m_edgesPending = true;
                deferredEdgeUpdates().nodes.append(this);
            }
        } else {
            updateEdges();
        }
        emit posChanged(value.toPointF());
        break;
    case ItemSelectedHasChanged:
        // Clicks, rubber bands and the scene's own clearing change an item's selection; the
        // owner of the business node turns this into the node's selection.
        emit selectedChanged(value.toBool());
        break;
    case ItemSceneHasChanged: {
        // Input edges live in the scene of the node they end at.
        QGraphicsScene *newScene = value.value<QGraphicsScene *>();
        for (OssNgEdge *edge : qAsConst(m_inputEdges)) {
            if (edge->scene() && edge->scene() != newScene)
                edge->scene()->removeItem(edge);
            if (newScene && !edge->scene())
                newScene->addItem(edge);
        }
        if (m_virtualInputEdge) {
            if (m_virtualInputEdge->scene() && m_virtualInputEdge->scene() != newScene)
                m_virtualInputEdge->scene()->removeItem(m_virtualInputEdge);
            if (newScene && !m_virtualInputEdge->scene())
                newScene->addItem(m_virtualInputEdge);
        }
        break;
    }
    default:
        break;
    }
    return QGraphicsObject::itemChange(change, value);
}

void OssNgNode::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    setHovered(true);
    QGraphicsObject::hoverEnterEvent(event);
}

void OssNgNode::hoverLeaveEvent(QGraphicsSceneHoverEvent *event)
{
    setHovered(false);
    QGraphicsObject::hoverLeaveEvent(event);
}

QRectF OssNgNode::boundingRect() const
{
    const qreal margin = OssNgStyle::instance()->portRadius() + 2;
    return bodyRect().adjusted(-margin, -margin, margin, margin);
}

bool OssNgNode::contains(const QPointF &point) const
{
    // Hit tests of boxes need no path.
    return boundingRect().contains(point);
}

QPainterPath OssNgNode::shape() const
{
    QPainterPath path;
    path.addRect(boundingRect());
    return path;
}

void OssNgNode::paintPorts(QPainter *painter, bool withText)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const qreal radius = style->portRadius();
    painter->setFont(style->labelFont());
    painter->setPen(QPen(Qt::black, 1));
    for (const QVector<OssNgPort> *ports : {&m_inputs, &m_outputs}) {
        for (const OssNgPort &port : *ports) {
            if (!port.visible)
                continue;
            const QPointF at = portLocalPos(port);
            const bool connected = port.input ? m_inputEdges.contains(port.name) : port.used;
            if (!connected && port.hasConnectionPosition) {
                // An unconnected port shows a short stub towards where its edge would go.
                const QPointF towards(port.connectionPosition.second -
                                      port.connectionPosition.first);
                const qreal length = std::hypot(towards.x(), towards.y());
                if (length > 0) {
                    painter->save();
                    painter->setPen(QPen(style->edgeColor(), 1, Qt::DotLine));
                    painter->drawLine(at, at + towards * (14.0 / length));
                    painter->restore();
                }
            }
            painter->setBrush(connected ? style->usedPortColor() : style->portColor());
            painter->drawEllipse(at, radius, radius);
            if (!withText || !m_portsVisible || !showPortLabels())
                continue;
            painter->setPen(style->textColor());
            const QString label = port.label();
            const QRectF box = labelRect(port);
            const Qt::Alignment alignment = m_flow == Flow::Vertical
                                                ? Qt::AlignHCenter
                                                : (port.input ? Qt::AlignLeft : Qt::AlignRight);
            painter->drawText(box, alignment | Qt::AlignVCenter, label);
            painter->setPen(QPen(Qt::black, 1));
        }
    }
}

void OssNgNode::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const qreal detail = option->levelOfDetailFromTransform(painter->worldTransform());
    const QRectF body = bodyRect();
    QColor outline = Qt::black;
    if (m_debug && m_debugColor.isValid())
        outline = m_debugColor;
    if (m_highlighted)
        outline = style->hoveredColor();
    if (m_hovered)
        outline = style->hoveredColor().lighter(120);
    if (isSelected())
        outline = style->selectedColor();
    // Text is drawn while it is tall enough on screen to be read.
    const bool titleShown = detail * style->titleTextHeight() >= style->minimumTextPixels();
    const bool labelsReadable = detail * style->labelTextHeight() >= style->minimumTextPixels();
    if (detail < style->levelOfDetailThreshold() && !titleShown) {
        // Far away: a filled box, no text, no ports.
        painter->fillRect(body, farColor());
        if (isSelected() || m_highlighted) {
            painter->setPen(QPen(outline, 0));
            painter->drawRect(body);
        }
        return;
    }
    if (detail < style->textThreshold()) {
        // Middle distance: the shape's box in its colour, an outline one pixel wide and the
        // ports as dots; curves, gradients and text cost more than they show at this size.
        painter->fillRect(body, farColor());
        painter->setPen(QPen(outline, isSelected() || m_highlighted ? 2 : 0));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(body);
        const qreal radius = style->portRadius();
        for (const QVector<OssNgPort> *ports : {&m_inputs, &m_outputs})
            for (const OssNgPort &port : *ports)
                if (port.visible)
                    painter->fillRect(QRectF(portLocalPos(port) - QPointF(radius, radius),
                                             QSizeF(2 * radius, 2 * radius)),
                                      port.input || port.used ? style->usedPortColor()
                                                              : style->portColor());
        if (titleShown)
            paintTitle(painter);
        return;
    }
    painter->setBrush(fillBrush());
    painter->setPen(QPen(outline, isSelected() || m_highlighted ? 2.5 : 1.2));
    switch (m_shapeType) {
    case MaterialShape: // a capsule
        painter->drawRoundedRect(body, body.height() / 2, body.height() / 2);
        break;
    case GroupShape: // a double frame
        painter->drawRect(body);
        painter->drawRect(body.adjusted(3, 3, -3, -3));
        break;
    case MultiChannelGroupShape: { // clipped corners
        const qreal c = 8;
        QPolygonF polygon;
        polygon << QPointF(body.left() + c, body.top()) << QPointF(body.right() - c, body.top())
                << QPointF(body.right(), body.top() + c) << QPointF(body.right(), body.bottom() - c)
                << QPointF(body.right() - c, body.bottom())
                << QPointF(body.left() + c, body.bottom())
                << QPointF(body.left(), body.bottom() - c) << QPointF(body.left(), body.top() + c);
        painter->drawPolygon(polygon);
        break;
    }
    default:
        painter->drawRoundedRect(body, 5, 5);
        break;
    }
    if (titleShown)
        paintTitle(painter);
    paintPorts(painter, labelsReadable);
}

void OssNgNode::paintTitle(QPainter *painter)
{
    const OssNgStyle *style = OssNgStyle::instance();
    painter->setPen(style->textColor());
    painter->setFont(style->titleFont());
    painter->drawText(titleRect().adjusted(titleMargin(), 0, 0, 0), Qt::AlignCenter, m_text);
}
