#pragma once

#include <QList>
#include <QObject>

class QAction;

class OssShaderNetworkView;

// The plug-in object without its metadata: the start-up sequence, the actions the plug-in owns
// and the slots they fire, which work on the current node graph view. The plug-in entry derives
// from it and adds Qt's plug-in metadata; the tests start the plug-in through it, as the host does.
class OssSnNodeGraphPluginCore : public QObject
{
    Q_OBJECT
public:
    explicit OssSnNodeGraphPluginCore(QObject *parent = nullptr);
    ~OssSnNodeGraphPluginCore() override;

    // Writes the banner, makes the view-context manager and the node-creation actions, and makes
    // actions for node types registered later. Returns true.
    bool start();

    // The fixed node-graph actions, in the catalogue's order, for the commands the view has.
    QList<QAction *> fixedActions() const { return m_fixedActions; }

public slots:
    // What the fixed actions fire: each finds the current view and runs its command there.
    void connectSelectedNodeToViewer();
    void connectSelectedNodeToViewer2();
    void connectSelectedNodeToViewer3();
    void connectSelectedNodeToViewer4();
    void connectSelectedNodeToViewer5();
    void connectSelectedNodeToViewer6();
    void connectSelectedNodeToViewer7();
    void connectSelectedNodeToViewer8();
    void connectSelectedNodeToViewer9();
    void connectSelectedNodeToViewer0();
    void moveViewerToMouse();
    void deleteSelectedNodes();
    void extractSelectedNode();
    void deleteAllNodes();
    void frameNodes();
    void frameSelectedNodes();
    void disableSelectedNodes();
    void bypassSelectedNode();
    void duplicateSelectedNodes();
    void selectAll();
    void cutNodesAction();
    void copyNodesAction();
    void pasteNodesAction();
    void swapInputs();
    void popupRenameWindow();
    void pickUpEdge();
    void selectAllUpstream();
    void selectAllDownstream();
    void selectStreamUpstream();
    void selectStreamDownstream();
    void selectUpstream();
    void selectDownstream();
    void addSelectUpstream();
    void addSelectDownstream();
    void selectNextSibling();
    void selectPrevSibling();
    void addSelectNextSibling();
    void addSelectPrevSibling();
    void selectBetween();
    void zoomIn();
    void zoomOut();
    void panLeft();
    void panRight();
    void panUp();
    void panDown();
    void toggleSnapToGrid();
    void openGroupNodeSubgraph();
    void openNodeProperties();
    void togglePortVisibility();
    void cyclePortListMode();
    void toggleEdgeSeverAction();
    void ensureIsVisibleAction();
    void fitToViewAction();
    void importMaterial();
    void importCustomProcedural();
    void bakeToPaintableNode();
    void exportToGeoChannel();
    void bakeEmptyAndUpdateOutOfDateBakePoints();
    void bakeSelectedBakePoints();
    void updateSelectedBakePoints();
    void updateUpstreamBakePoints();
    void updateDownstreamBakePoints();

private slots:
    void createNodeCreationActions();
    void createNodeFromAction();

private:
    OssShaderNetworkView *currentShaderNetworkView();
    // The current view, or null after the line that says there is none.
    OssShaderNetworkView *viewForCommand();
    void createFixedActions();

    QList<QAction *> m_fixedActions;
};
