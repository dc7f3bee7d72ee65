#include "OssSnViewerNode.h"

#include "OssShaderNetwork.h"

#include <OssUndoManager.h>

bool OssSnViewerNode::connectViewerInput(const QString &number, OssSnBaseNode *source,
                                         const QString &outputPoint, bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("View Node"));
    if (!connectInput(number, source, outputPoint, undoable))
        return false;
    bool ok = false;
    const int edge = number.toInt(&ok);
    if (ok && network())
        network()->setViewerNodeCurrentEdge(edge, undoable);
    return true;
}
