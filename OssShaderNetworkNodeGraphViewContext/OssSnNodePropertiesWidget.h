#pragma once

#include <QHash>
#include <QPointer>
#include <QWidget>

class OssShaderNetworkView;
class OssSnBaseNode;
class QLineEdit;
class QScrollArea;
class QVBoxLayout;

// The body of the "Node Properties" palette: a stack of property panels, one per node the user
// opened by double-clicking it in the root view, newest at the top and at most "MaxPanels" of
// them. Each panel is the host's property editor of its node, framed in the node's colour and
// rebuilt when the node's attributes come and go.
class OssSnNodePropertiesWidget : public QWidget
{
    Q_OBJECT
public:
    OssSnNodePropertiesWidget(OssShaderNetworkView *view, QWidget *parent = nullptr);

    // The nodes whose panels are shown, top first.
    QList<OssSnBaseNode *> shownNodes() const;
    // The node's live panel, or null.
    QWidget *panel(OssSnBaseNode *node) const;
    int panelCount() const;
    QLineEdit *maxPanelsField() const { return m_maxPanels; }
    OssSnBaseNode *nodeUnderMouse() const { return m_nodeUnderMouse; }

    // The style sheet of a panel: a border in the node's colour, on the sides too when the node
    // is selected or (fainter) hovered. Default is the colour of a node without a GUI node.
    static QString panelStyleSheet(OssSnBaseNode *node, const QString &objectName,
                                   const QColor &defaultColor);

signals:
    void nodeDoubledClicked();
    void propertiesUnderMouseChanged(OssSnBaseNode *NewUnderMouse, OssSnBaseNode *OldUnderMouse);
    // The "p" button of a group node's panel asks for the group's knob manager.
    void groupNodeKnobsRequested(OssSnBaseNode *GroupNode);

public slots:
    virtual void openProperty(OssSnBaseNode *Node);
    // Requests of the host: a node's panel at the top, or just after or before Target's.
    void showNodeProperties(OssSnBaseNode *Node);
    void showNodePropertiesAtPositionEnd(OssSnBaseNode *Node, OssSnBaseNode *Target, bool Undo);
    void showNodePropertiesAtPositionBegin(OssSnBaseNode *Node, OssSnBaseNode *Target, bool Undo);

protected slots:
    virtual QWidget *createPropertyWidget(OssSnBaseNode *Node, int InsertionPoint = 0);
    virtual void showGroupNodeKnobWidget();
    virtual void showGroupNodeSubgraph();
    virtual void onUserAttributePopulationChanged();
    virtual void refreshPropertiesForNode(OssSnBaseNode *Node);
    virtual void onUserAttributeChanged(QString AttributeName);
    virtual void onUserAttributeRenamed(QString OldAttributeName, QString NewAttributeName);

    void onMaxPanelsEditingFinished();
    void deleteAllProperties();
    void deletePanelsExceedingMax();
    void refreshPanel();
    void onEndProcessing();
    void onNodeRemoved();

protected:
    bool event(QEvent *Event) override;
    bool eventFilter(QObject *Watched, QEvent *Event) override;

private:
    QWidget *buildPanel(OssSnBaseNode *node);
    void addGroupButtons(OssSnBaseNode *node, QWidget *panel);
    void connectNode(OssSnBaseNode *node);
    void removePanel(QWidget *panel);
    int panelIndex(OssSnBaseNode *node) const;
    bool rebuildsFor(OssSnBaseNode *node, const QString &attributeName) const;
    void setNodeUnderMouse(OssSnBaseNode *node);

    QPointer<OssShaderNetworkView> m_view;
    QVBoxLayout *m_panelLayout = nullptr;
    QHash<OssSnBaseNode *, QPointer<QWidget>> m_panels;
    QLineEdit *m_maxPanels = nullptr;
    QScrollArea *m_scrollArea = nullptr;
    QPointer<OssSnBaseNode> m_nodeUnderMouse;
    bool m_refreshPending = false;
};
