#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

#include <QString>

// The viewer: inputs "0" to "9" and "ToView"; its current edge is kept by the root network.
class OSSCOREMODULES_EXPORT OssSnViewerNode : public OssSnBaseNode
{
    Q_OBJECT
public:
    using OssSnBaseNode::OssSnBaseNode;
    // Connects viewer input Number (as text) to Source and makes it the current edge.
    bool connectViewerInput(const QString &number, OssSnBaseNode *source,
                            const QString &outputPoint, bool undoable = true);
};
