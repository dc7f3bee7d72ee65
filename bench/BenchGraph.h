#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

// A generated node graph, independent of any scene: node kinds, positions, groups and edges.
struct BenchGraph
{
    enum class Kind
    {
        Ordinary, // a two-input, one-output node
        ChannelInput,
        Merge,
        Backdrop,
    };

    struct Node
    {
        Kind kind = Kind::Ordinary;
        QPointF position;
        int group = -1; // index of the group the node belongs to, or -1
    };

    struct Edge
    {
        int from = 0; // the node whose output feeds
        int to = 0;   // the node whose input is fed
        int input = 0;
    };

    QVector<Node> nodes;
    QVector<Edge> edges;
    int groupCount = 0;

    // Node i feeds input (i - 1) mod 2 of node (i - 1) / 2; nodes sit on a 16:9 grid of 300 x 150
    // cells in depth-first order.
    static BenchGraph binaryTree(int count);
    // Shaped like an artist's network: stacks of channel inputs merged in chains, nodes gathered
    // in groups of 20, and one backdrop for every 20 nodes (5 %).
    static BenchGraph artistNetwork(int count);

    static constexpr double CellWidth = 300.0;
    static constexpr double CellHeight = 150.0;
};
