#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

class OssSnNodeType;

// Backdrops, sticky notes and dots: nodes that only organise the graph.
class OSSCOREMODULES_EXPORT OssSnUINode : public OssSnBaseNode
{
    Q_OBJECT
public:
    using OssSnBaseNode::OssSnBaseNode;
    bool outputPortsHidden() const override { return outputPointCount() == 0; }
    // Title, label, colour and z-order are user attributes that the views show; the type's
    // attributes of those names give their first values.
    void applyType(const OssSnNodeType &type) override;
};
