#pragma once

#include <QDialog>
#include <QList>
#include <QPointer>

class OssSnBaseNode;
class QTreeWidget;
class QTreeWidgetItem;

// The "Node Version Control" window: the given nodes grouped by version UUID, each compared with
// the installed definition of its UUID and sorted into a state (Same, Different, Older, Newer,
// Custom). Its context menu upgrades the nodes of a state, converts nodes to another node type
// and dumps a node's definition.
class OssShaderNetworkUpgradeView : public QDialog
{
    Q_OBJECT
public:
    // The tree's columns: version, hashes, dates, then one column per comparison state.
    enum Column
    {
        UuidColumn = 0,
        HashColumn = 1,
        DateColumn = 2,
        SameColumn = 3,
        DifferentColumn = 4,
        OlderColumn = 5,
        NewerColumn = 6,
        CustomColumn = 7,
        ColumnCount = 8
    };

    explicit OssShaderNetworkUpgradeView(QWidget *parent = nullptr);

    // Adds the nodes to the tree, grouped by version UUID.
    void populateNodes(const QList<OssSnBaseNode *> &Nodes);

    QTreeWidget *tree() const { return m_tree; }
    // The node a row holds (node rows only).
    static OssSnBaseNode *nodeOfRow(QTreeWidgetItem *item);

    // Upgrades the nodes shown in Column (Different to Custom) of Item's row and, for a version
    // row, of its node rows, as one undo step; with connections to lose, only after the user
    // confirms. The number of nodes upgraded.
    int upgradeNodesOfState(QTreeWidgetItem *item, int column);
    // Converts the nodes of the selected rows (and of the node rows under selected version rows)
    // to the node type PathKey, as one undo step; the tree then shows the new nodes.
    int convertSelectedNodes(const QString &pathKey);

private slots:
    void onTreeWidgetCustomContextMenuRequested(QPoint pos);
    void onTreeWidgetItemEntered(QTreeWidgetItem *item, int column);

private:
    bool confirmLostConnections(const QStringList &connections);
    void addNodeRow(QTreeWidgetItem *versionRow, OssSnBaseNode *node);
    static void addToCount(QTreeWidgetItem *versionRow, int column, int delta);

    QTreeWidget *m_tree = nullptr;
    QTreeWidgetItem *m_enteredItem = nullptr;
    int m_enteredColumn = -1;
    // The nodes shown, so that the tree can be filled again after a conversion.
    QList<QPointer<OssSnBaseNode>> m_nodes;
};
