#pragma once

#include "OssSnNodeGraphViewContext.h"

#include <QPointer>

#include "OssShaderNetworkView.h"

class OssSnGroupNode;

// Group nodes (and their multi-channel kinds, materials): a subgraph view in its own tab, a
// shape and category that follow the group's kind and validity, and export as a gizmo.
class OssSnGroupNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
public:
    explicit OssSnGroupNodeGraphViewContext(QObject *parent);
    ~OssSnGroupNodeGraphViewContext() override;
    void initializeGui() override;
    QString versionHashSource() const override;
    OssShaderNetworkView *subgraphView() const { return m_view; }
    // The shape of a group node by its kind: material, multi-channel group or plain group.
    static int shapeForGroup(const OssSnBaseNode *node);

public slots:
    // Adds the group's tab when it is not shown, makes it current and frames it, and makes the
    // group's network the host's current view network.
    void showGroupNodeTab();
    // Adds the tab when it is not shown and frames it without leaving the current tab.
    void showGroupNodeTabBehind();
    // Appends the tab of Node (when it is this context's group) without making it current.
    void addTabToWidget(OssSnBaseNode *Node);
    void hideGroupNodeTab(OssShaderNetwork *network, OssSnBaseNode *node);
    // What showGroupNodeTab does, for Node's tab when it is shown already.
    void makeGroupNodeTabCurrent(OssSnBaseNode *Node);

protected slots:
    void adjustInputOutputPos();
    void clearPortClusters();
    void updatePortClusters();
    void setupPortClusters();
    void changeGroupNodeTabText(QString text);
    void onExportAsGizmo(OssSnGroupNode *GroupNode);
    void updateMultiChannelNodeUI();
    void forceOpenGroupSubgraph();
    void onBakedStateChanged();

private:
    OssSnGroupNode *group() const;
    bool ownsNode(const OssSnBaseNode *node) const;
    // The tab widget when this context has a group and a view to show in it.
    class OssSnNodeGraphWidget *tabWidget() const;
    void currentAndFramed();

    QPointer<OssShaderNetworkView> m_view;
};
