#include "OssSnGroupPortOrder.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>

#include <algorithm>
#include <limits>

namespace {
// Room between two input nodes lined up side by side.
constexpr qreal InputNodeGap = 30.0;
} // namespace

void OssSnGroupPortOrder::reorderInputsByPosition(OssSnGroupNode *Group)
{
    if (!Group) {
        OSS_DEBUG("GroupNode is NULL");
        return;
    }
    QList<OssSnBaseNode *> inputs = Group->groupInputNodes();
    if (inputs.size() < 2)
        return;
    // Top first; nodes at one height (and nodes without a GUI node, last) keep the group's order.
    const auto height = [](OssSnBaseNode *node) {
        const OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
        return gui ? gui->scenePos().y() : std::numeric_limits<qreal>::max();
    };
    std::stable_sort(inputs.begin(), inputs.end(), [&height](OssSnBaseNode *a, OssSnBaseNode *b) {
        return height(a) < height(b);
    });
    QStringList order;
    for (OssSnBaseNode *node : inputs)
        order.append(node->name());
    for (const QString &name : Group->inputNames())
        if (!order.contains(name))
            order.append(name);
    if (order != Group->inputNames())
        Group->reorderInputs(order);
}

void OssSnGroupPortOrder::arrangeInputNodes(OssShaderNetwork *Network, const QStringList &Order)
{
    if (!Network)
        return;
    QList<OssNgNode *> nodes;
    for (const QString &name : Order)
        if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(Network->node(name)))
            nodes.append(gui);
    if (nodes.isEmpty())
        return;
    qreal top = nodes.first()->pos().y();
    qreal left = nodes.first()->pos().x();
    for (OssNgNode *gui : nodes) {
        top = qMin(top, gui->pos().y());
        left = qMin(left, gui->pos().x());
    }
    for (OssNgNode *gui : nodes) {
        gui->setPos(left, top);
        left += gui->boundingRect().width() + InputNodeGap;
    }
}
