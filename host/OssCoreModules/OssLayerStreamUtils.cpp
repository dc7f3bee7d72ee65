#include "OssLayerStreamUtils.h"

#include "OssSnBaseNode.h"
#include "OssSnMultiChannelMergeNode.h"

bool OssLayerStreamUtils::isMergeNode(const OssSnBaseNode *node)
{
    return node && node->hasTag(QStringLiteral("_blend"));
}

bool OssLayerStreamUtils::isBaseInput(const OssSnBaseNode *node, const QString &input)
{
    return isMergeNode(node) || qobject_cast<const OssSnMultiChannelMergeNode *>(node)
               ? input == baseInputName(QString())
               : false;
}

QString OssLayerStreamUtils::baseInputName(const QString &)
{
    return QStringLiteral("Base");
}

QString OssLayerStreamUtils::overInputName(const QString &)
{
    return QStringLiteral("Over");
}
