#pragma once

#include <QTabWidget>

class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnGroupNode;

// The body of the "Node Graph" palette: the root view of the current network in the first tab,
// the subgraph views of opened group nodes in further tabs.
class OssSnNodeGraphWidget : public QTabWidget
{
    Q_OBJECT
public:
    OssSnNodeGraphWidget(const QString &controlType, QWidget *parent = nullptr);
    ~OssSnNodeGraphWidget() override;

    void addRootView();
    OssShaderNetworkView *view() const { return m_rootView; }
    OssShaderNetworkView *currentView() const;
    void refreshCurrentChanged();
    void selectTabForNetwork(OssShaderNetwork *network);
    QString navigationControlType() const { return m_controlType; }
    // The root tab's text for a network ("<entity> - Root", shortened past 40 characters).
    static QString rootTabText(OssShaderNetwork *network, QString *toolTip = nullptr);

public slots:
    void hideTab(int Index);
    void updateRootLevelText(OssShaderNetwork *Network);
    void setNavigationControlType(QString ControlType);
    void showGroupNodeSubgraph(const OssSnGroupNode *GroupNode);

protected slots:
    void onCurrentTabChanged(int Index);

protected:
    void mousePressEvent(QMouseEvent *event) override;

private:
    OssShaderNetworkView *m_rootView = nullptr;
    QString m_controlType;
};
