#include "BenchGraph.h"

#include <QtMath>

#include <functional>

namespace {

// Grid positions for Count cells filled row by row on a grid about 16:9 in cells.
QPointF gridCell(int index, int columns)
{
    return QPointF((index % columns) * BenchGraph::CellWidth,
                   (index / columns) * BenchGraph::CellHeight);
}

int columnsFor(int count)
{
    // columns / rows = 16 / 9 with rows = count / columns.
    return qMax(1, qCeil(qSqrt(count * 16.0 / 9.0)));
}

} // namespace

BenchGraph BenchGraph::binaryTree(int count)
{
    BenchGraph graph;
    graph.nodes.resize(count);
    for (int i = 1; i < count; ++i)
        graph.edges.append(Edge{i, (i - 1) / 2, (i - 1) % 2});

    // Depth-first order from the root, children in input order, without recursion.
    const int columns = columnsFor(count);
    QVector<int> stack{0};
    int visited = 0;
    while (!stack.isEmpty() && count > 0) {
        const int node = stack.takeLast();
        graph.nodes[node].position = gridCell(visited++, columns);
        const int second = 2 * node + 2, first = 2 * node + 1;
        if (second < count)
            stack.append(second);
        if (first < count)
            stack.append(first);
    }
    return graph;
}

BenchGraph BenchGraph::artistNetwork(int count)
{
    BenchGraph graph;
    graph.nodes.reserve(count);
    const int columns = columnsFor(count);
    // Stacks of four channel inputs feeding a chain of merges: 4 inputs + 3 merges per stack,
    // and each stack's last merge feeds the previous stack's last merge.
    int previousStackEnd = -1;
    while (graph.nodes.size() < count) {
        int chain = -1;
        for (int k = 0; k < 4 && graph.nodes.size() < count; ++k) {
            graph.nodes.append(Node{Kind::ChannelInput, {}, -1});
            const int input = graph.nodes.size() - 1;
            if (chain < 0) {
                chain = input;
                continue;
            }
            if (graph.nodes.size() >= count)
                break;
            graph.nodes.append(Node{Kind::Merge, {}, -1});
            const int merge = graph.nodes.size() - 1;
            graph.edges.append(Edge{chain, merge, 0});
            graph.edges.append(Edge{input, merge, 1});
            chain = merge;
        }
        if (previousStackEnd >= 0 && chain >= 0)
            graph.edges.append(Edge{chain, previousStackEnd, 2});
        previousStackEnd = chain;
    }
    // Every 20th node becomes a backdrop (5 %), placed behind its neighbours.
    for (int i = 19; i < graph.nodes.size(); i += 20)
        graph.nodes[i].kind = Kind::Backdrop;
    QVector<Edge> kept;
    for (const Edge &edge : qAsConst(graph.edges)) {
        if (graph.nodes[edge.from].kind != Kind::Backdrop &&
            graph.nodes[edge.to].kind != Kind::Backdrop)
            kept.append(edge);
    }
    graph.edges = kept;
    for (int i = 0; i < graph.nodes.size(); ++i) {
        graph.nodes[i].position = gridCell(i, columns);
        graph.nodes[i].group = i / 20;
    }
    graph.groupCount = (graph.nodes.size() + 19) / 20;
    return graph;
}
