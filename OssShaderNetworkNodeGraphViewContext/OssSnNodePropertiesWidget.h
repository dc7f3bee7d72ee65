#pragma once

#include <QPointer>
#include <QWidget>

class OssShaderNetworkView;
class OssSnBaseNode;
class QTreeWidget;

// The body of the "Node Properties" palette: the panels of the nodes the user opened, newest
// first, each listing the node's attributes. (Editing knobs in the panels is not built yet.)
class OssSnNodePropertiesWidget : public QWidget
{
    Q_OBJECT
public:
    OssSnNodePropertiesWidget(OssShaderNetworkView *view, QWidget *parent = nullptr);
    QList<OssSnBaseNode *> shownNodes() const;

public slots:
    void showNodeProperties(OssSnBaseNode *node);
    void showNodePropertiesAtPositionEnd(OssSnBaseNode *node, OssSnBaseNode *target, bool undo);
    void showNodePropertiesAtPositionBegin(OssSnBaseNode *node, OssSnBaseNode *target, bool undo);
    void refresh();

signals:
    void nodeDoubledClicked();
    void hoverChanged(OssSnBaseNode *mouseOver, OssSnBaseNode *oldMouseOver);

private:
    void insertAt(int index, OssSnBaseNode *node);

    QPointer<OssShaderNetworkView> m_view;
    QList<QPointer<OssSnBaseNode>> m_nodes;
    QTreeWidget *m_tree = nullptr;
};
