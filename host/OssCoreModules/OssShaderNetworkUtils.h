#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QString>

class OssSnBaseNode;
class OssSnBakePointNode;
class OssSnImageSetNodeBase;

// Walks and queries over the graph of a shader network.
class OSSCOREMODULES_EXPORT OssShaderNetworkUtils
{
public:
    // Visits each node upstream of the start once, depth first in input order. Subclasses
    // decide what to do at a node and which inputs to follow.
    class OSSCOREMODULES_EXPORT OssNodeWalkerUpstream
    {
    public:
        virtual ~OssNodeWalkerUpstream() = default;
        void walk(OssSnBaseNode *start);

    protected:
        // Return false to stop the whole walk.
        virtual bool visit(OssSnBaseNode *node) = 0;
        virtual bool followInput(OssSnBaseNode *node, const QString &input);
    };

    // Visits each node downstream of the start once, following the connections leaving the
    // output points a subclass allows (by default only the preferred output point).
    class OSSCOREMODULES_EXPORT OssNodeWalkerDownstream
    {
    public:
        virtual ~OssNodeWalkerDownstream() = default;
        void walk(OssSnBaseNode *start);

    protected:
        virtual bool visit(OssSnBaseNode *node) = 0;
        virtual bool followConnection(OssSnBaseNode *node, const QString &outputPoint,
                                      OssSnBaseNode *target, const QString &input);
    };

    static OssSnBakePointNode *asTrueBakePointNode(OssSnBaseNode *node);
    static OssSnImageSetNodeBase *asTrueImageSetNode(OssSnBaseNode *node);

    // Nodes upstream of Node. ExcludeStart leaves Node out; WholeGraph follows every input,
    // otherwise only the preferred input (one stream); EnterGroups also walks group networks.
    static QList<OssSnBaseNode *> getUpstreamNodes(OssSnBaseNode *node, bool excludeStart,
                                                   bool wholeGraph, bool enterGroups);
    // Nodes downstream of Node; without WholeGraph only connections into preferred inputs.
    static QList<OssSnBaseNode *> getDownstreamNodes(OssSnBaseNode *node, bool excludeStart,
                                                     bool wholeGraph);
    // Siblings are the nodes feeding the inputs of the same downstream node, in input order.
    static OssSnBaseNode *nextSibling(OssSnBaseNode *node);
    static OssSnBaseNode *prevSibling(OssSnBaseNode *node);
    // Nodes lying on a path from one of the given nodes to another (the given ones excluded).
    static QList<OssSnBaseNode *> nodesBetween(const QList<OssSnBaseNode *> &nodes);

    static QList<OssSnBaseNode *> getUpstreamBakePointNodes(const QList<OssSnBaseNode *> &nodes);
    static QList<OssSnBaseNode *> getDownstreamBakePointNodes(const QList<OssSnBaseNode *> &nodes);
    // Bakes (Bake) or only refreshes stale bakes of the given bake points; the count baked.
    // Each bake is an undo step and fills the shading group's image set "Node_Bake_<name>".
    static int bakeBakePoints(const QList<OssSnBaseNode *> &nodes, bool bake, bool includeUpToDate);

    // Connects an input (after an edge was drawn in a view); false with a logged reason.
    static bool setInputNodeBatchConnectable(OssSnBaseNode *node, const QString &inputName,
                                             OssSnBaseNode *source, const QString &outputPoint,
                                             bool undoable, bool notify, bool checkTypes,
                                             bool force);
    // Connects each source's preferred output to Target's inputs: an input of the same name
    // as the source's output point when there is one, else the next free input. The number of
    // connections made.
    static int batchConnect(const QList<OssSnBaseNode *> &sources, OssSnBaseNode *target,
                            bool undoable = true);
};
