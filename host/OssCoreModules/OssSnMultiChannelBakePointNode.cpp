#include "OssSnMultiChannelBakePointNode.h"

#include "OssShaderNetwork.h"
#include "OssSnBakePointNode.h"

QList<OssSnBaseNode *> OssSnMultiChannelBakePointNode::activeBakePointNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (OssSnBaseNode *node : groupNetwork()->nodes())
        if (qobject_cast<OssSnBakePointNode *>(node) && node->enabledAsBool())
            nodes.append(node);
    return nodes;
}

int OssSnMultiChannelBakePointNode::configureBakepoints()
{
    int made = 0;
    for (OssSnBaseNode *output : groupOutputNodes()) {
        const QString input = output->inputNames().value(0);
        if (input.isEmpty())
            continue;
        OssSnBaseNode *feeding = output->inputConnection(input);
        if (qobject_cast<OssSnBakePointNode *>(feeding))
            continue;
        OssSnBaseNode *bakePoint = groupNetwork()->createNode(
            QStringLiteral("Misc/Bake Point"), output->name() + QStringLiteral("_BakePoint"));
        if (!bakePoint)
            break;
        if (feeding)
            bakePoint->connectInput(bakePoint->preferredInput().isEmpty()
                                        ? bakePoint->inputNames().value(0)
                                        : bakePoint->preferredInput(),
                                    feeding, output->inputOutputPoint(input));
        output->connectInput(input, bakePoint, bakePoint->prefferedOutputPoint());
        connect(static_cast<OssSnBakePointNode *>(bakePoint),
                &OssSnBakePointNode::bakedStateChanged, this,
                &OssSnMultiChannelBakePointNode::bakedStateChanged);
        ++made;
    }
    return made;
}
