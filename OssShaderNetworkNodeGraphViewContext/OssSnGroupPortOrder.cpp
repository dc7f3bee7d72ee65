#include "OssSnGroupPortOrder.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>

#include <algorithm>

namespace {
// Room between two input nodes lined up side by side.
constexpr qreal InputNodeGap = 30.0;
} // namespace

void OssSnGroupPortOrder::reorderInputsByPosition(OssSnGroupNode *Group)
{
    if (!Group)
        return;
    QList<OssSnBaseNode *> inputs = Group->groupInputNodes();
    std::stable_sort(inputs.begin(), inputs.end(), [](OssSnBaseNode *a, OssSnBaseNode *b) {
        const OssNgNode *ga = OssSnNodeGraphViewContext::guiNodeOf(a);
        const OssNgNode *gb = OssSnNodeGraphViewContext::guiNodeOf(b);
        return ga && gb && ga->pos().x() < gb->pos().x();
    });
    QStringList order;
    for (OssSnBaseNode *node : inputs)
        order.append(node->name());
    for (const QString &name : Group->inputNames())
        if (!order.contains(name))
            order.append(name);
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
