#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnMultiChannelGroupNode.h"

#include <QList>

// A multi-channel group with one bake point per channel.
class OSSCOREMODULES_EXPORT OssSnMultiChannelBakePointNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT
public:
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;
    // The bake points inside that are active (one per channel).
    QList<OssSnBaseNode *> activeBakePointNodes() const;
    // Makes one bake point per output of the group's subnetwork that lacks one.
    int configureBakepoints();

signals:
    void bakedStateChanged();
};
