#include "BenchSystem.h"

#include <OssNgBackdropNode.h>
#include <OssNgExtendedNode.h>
#include <OssNgView.h>

#include <QGraphicsScene>

// The node-graph GUI library alone: extended GUI nodes with two inputs and one output, edges
// between them, backdrops where the graph has them, shown by the base view.
NodeGraphSystem::NodeGraphSystem() = default;

NodeGraphSystem::~NodeGraphSystem()
{
    tearDown();
}

void NodeGraphSystem::build(const BenchGraph &graph)
{
    tearDown();
    m_scene = new QGraphicsScene;
    auto *view = new OssNgView;
    view->setScene(m_scene);
    view->init();
    view->resize(1920, 1080);
    view->show();
    m_view = view;
    QVector<OssNgNode *> nodes;
    nodes.reserve(graph.nodes.size());
    const QString names[] = {QStringLiteral("A"), QStringLiteral("B")};
    for (int i = 0; i < graph.nodes.size(); ++i) {
        const BenchGraph::Node &spec = graph.nodes[i];
        OssNgNode *node = nullptr;
        if (spec.kind == BenchGraph::Kind::Backdrop) {
            auto *backdrop = new OssNgBackdropNode;
            backdrop->setTitleText(QStringLiteral("Backdrop%1").arg(i));
            node = backdrop;
        } else {
            auto *extended = new OssNgExtendedNode;
            extended->setText(QStringLiteral("Node%1").arg(i));
            extended->addInputPort(names[0], true);
            extended->addInputPort(names[1]);
            extended->addOutputPort(QStringLiteral("Output"));
            node = extended;
        }
        node->setPos(spec.position);
        m_scene->addItem(node);
        nodes.append(node);
    }
    for (const BenchGraph::Edge &edge : graph.edges)
        nodes[edge.to]->connectInput(names[edge.input % 2], nodes[edge.from],
                                     QStringLiteral("Output"));
    m_nodes = nodes;
}

void NodeGraphSystem::tearDown()
{
    delete m_view;
    m_view = nullptr;
    delete m_scene;
    m_scene = nullptr;
    m_nodes.clear();
}

QPointF NodeGraphSystem::nodeCenter(int index) const
{
    return m_nodes.value(index) ? m_nodes[index]->sceneBoundingRect().center() : QPointF();
}

void NodeGraphSystem::selectNodes(int count)
{
    m_scene->clearSelection();
    for (int i = 0; i < qMin(count, m_nodes.size()); ++i)
        m_nodes[i]->setSelected(true);
}
