#pragma once

#include <QList>
#include <QSet>

class OssNgNode;
class OssShaderNetwork;
class OssSnBaseNode;
class QGraphicsScene;

// Autoplace: arranges the GUI nodes of a network, tree by tree, in columns that run from each
// tree's root on the right to its inputs on the left, keeps each tree clear of the trees placed
// before it, then refits the backdrops around the nodes they hold. One call is one undo step.
class OssSnAutoplace
{
public:
    // Places the trees of Roots in Network; with no roots and FromLeavesIfEmpty, the trees of
    // the network's leaves. Scene is the network's scene, or null when it has none.
    static void run(OssShaderNetwork *network, QGraphicsScene *scene, QList<OssSnBaseNode *> roots,
                    bool fromLeavesIfEmpty);

private:
    // Places Root's tree, adding its nodes to Placed; its columns stay clear of KeepClear.
    static void placeTree(OssSnBaseNode *root, QSet<OssSnBaseNode *> &placed,
                          const QList<OssNgNode *> &keepClear);
};
