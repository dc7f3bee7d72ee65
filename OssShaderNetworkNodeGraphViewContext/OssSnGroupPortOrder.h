#pragma once

#include <QStringList>

class OssShaderNetwork;
class OssSnGroupNode;

// The order of a group's input ports and the places of its input nodes inside it: the ports
// follow the nodes, and the nodes can be lined up in the order of the ports.
class OssSnGroupPortOrder
{
public:
    // The group's inputs follow its input nodes from top to bottom.
    static void reorderInputsByPosition(OssSnGroupNode *Group);
    // The named input nodes are spaced evenly from left to right in the given order, on the row
    // of the highest of them.
    static void arrangeInputNodes(OssShaderNetwork *Network, const QStringList &Order);
};
