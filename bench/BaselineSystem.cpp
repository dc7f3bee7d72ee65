#include "BenchSystem.h"

#include <QBrush>
#include <QGraphicsEllipseItem>
#include <QGraphicsPathItem>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QGraphicsSimpleTextItem>
#include <QGraphicsView>
#include <QPainterPath>
#include <QPen>
#include <QSet>

namespace {
constexpr double NodeWidth = 200.0;
constexpr double NodeHeight = 80.0;
} // namespace

BaselineSystem::BaselineSystem() = default;

BaselineSystem::~BaselineSystem()
{
    tearDown();
}

void BaselineSystem::build(const BenchGraph &graph)
{
    tearDown();
    m_scene = new QGraphicsScene;
    m_view = new QGraphicsView(m_scene);
    m_view->resize(1920, 1080);
    // Shown, as a view the user works in is: repaints then really paint.
    m_view->show();
    m_view->setRenderHint(QPainter::Antialiasing);
    QVector<QGraphicsRectItem *> items;
    items.reserve(graph.nodes.size());
    m_centers.clear();
    for (int i = 0; i < graph.nodes.size(); ++i) {
        auto *rect = new QGraphicsRectItem(0, 0, NodeWidth, NodeHeight);
        rect->setPos(graph.nodes[i].position);
        rect->setBrush(QColor(70, 90, 120));
        rect->setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable);
        auto *text = new QGraphicsSimpleTextItem(QStringLiteral("Node%1").arg(i), rect);
        text->setPos(8, 8);
        for (int p = 0; p < 3; ++p) {
            auto *port = new QGraphicsEllipseItem(-5, -5, 10, 10, rect);
            port->setPos(p < 2 ? QPointF(50 + 100 * p, 0) : QPointF(NodeWidth / 2, NodeHeight));
            port->setBrush(Qt::yellow);
        }
        m_scene->addItem(rect);
        items.append(rect);
        m_centers.append(graph.nodes[i].position + QPointF(NodeWidth / 2, NodeHeight / 2));
    }
    for (const BenchGraph::Edge &edge : graph.edges) {
        const QPointF start = items[edge.from]->pos() + QPointF(NodeWidth / 2, NodeHeight);
        const QPointF end = items[edge.to]->pos() + QPointF(50 + 100 * (edge.input % 2), 0);
        QPainterPath path(start);
        const double dy = qMax(40.0, qAbs(end.y() - start.y()) / 2);
        path.cubicTo(start + QPointF(0, dy), end - QPointF(0, dy), end);
        auto *item = new QGraphicsPathItem(path);
        item->setPen(QPen(Qt::lightGray, 2));
        m_scene->addItem(item);
        m_edgesOfNode[items[edge.from]].append(item);
        m_edgesOfNode[items[edge.to]].append(item);
    }
}

void BaselineSystem::tearDown()
{
    delete m_view;
    m_view = nullptr;
    delete m_scene;
    m_scene = nullptr;
    m_centers.clear();
    m_edgesOfNode.clear();
}

QPointF BaselineSystem::nodeCenter(int index) const
{
    return m_centers.value(index);
}

QList<QGraphicsItem *> BaselineSystem::selectedNodesWithEdges() const
{
    QList<QGraphicsItem *> items;
    QSet<QGraphicsItem *> edges;
    for (QGraphicsItem *node : m_scene->selectedItems()) {
        items.append(node);
        for (QGraphicsItem *edge : m_edgesOfNode.value(node))
            if (!edges.contains(edge)) {
                edges.insert(edge);
                items.append(edge);
            }
    }
    return items;
}

void BaselineSystem::selectNodes(int count)
{
    m_scene->clearSelection();
    int selected = 0;
    for (QGraphicsItem *item : m_scene->items(Qt::AscendingOrder)) {
        if (selected >= count)
            break;
        if (item->type() == QGraphicsRectItem::Type) {
            item->setSelected(true);
            ++selected;
        }
    }
}
