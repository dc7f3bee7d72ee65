#pragma once

#include <OssNgView.h>
#include <OssShaderNetworkHolder.h>

#include <QHash>
#include <QMap>
#include <QPointF>
#include <QPointer>
#include <functional>

class OssGeoImageSet;
class OssImage;
class OssNgEdge;
class OssNgNode;
class OssMenu;
class OssShaderNetwork;
class OssSnBaseNode;
class OssSnMultiChannelMergeNode;
class QAction;
class QMenu;

// The node-graph editor of one shader network (root level or a group's subgraph): a view on
// the scene holding the GUI nodes of that network.
class OssShaderNetworkView : public OssNgView, public OssShaderNetworkHolder
{
    Q_OBJECT
public:
    explicit OssShaderNetworkView(QWidget *parent = nullptr);
    ~OssShaderNetworkView() override;

    OssShaderNetwork *network() const override { return m_network; }
    void setNetwork(OssShaderNetwork *network) override;
    bool autoInsertEnabled() const override;

    // --- placement (scene positions of GUI nodes' top-left corners)
    void placeNode(OssSnBaseNode *node);
    void relocateNodeBeside(OssNgNode *guiNode, OssNgNode *otherGuiNode);
    void positionNodeManual(OssSnBaseNode *node, OssSnBaseNode *reference, const QPointF &offset);
    void positionNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *reference, int factor);
    void positionNodeNextTo(OssSnBaseNode *node, OssSnBaseNode *reference);
    void positionNodeAtFreeSpot(OssSnBaseNode *node);
    void positionNodeOnGrid(OssSnBaseNode *node, OssSnBaseNode *reference, int column, int row,
                            bool freshCoordinates);
    void positionNodeBesideReference(OssSnBaseNode *node, OssSnBaseNode *reference);
    void syncNodeUnderneath(OssSnBaseNode *node, OssSnBaseNode *container, OssSnBaseNode *reference,
                            OssSnBaseNode *referenceContainer);
    void uniformariseContainers(const QList<OssSnBaseNode *> &containers);

    // --- containers (backdrops holding nodes). Moves made here are recorded as undo steps of
    // the command in progress.
    // Pushes the container's members that lie below Reference down until the first is one gap
    // clear of it, then stretches the container to hold every member.
    void respaceContainer(OssSnBaseNode *container, OssSnBaseNode *reference);
    // Moves the container, with what it holds, to one gap below Reference.
    void moveContainerDown(OssSnBaseNode *container, OssSnBaseNode *reference);
    // Grows the container to hold Node with a gap to spare.
    void stretchContainerBy(OssSnBaseNode *container, OssSnBaseNode *node);
    // Fits the container around its members, as an undo step when Undoable.
    void wrapContainerAround(OssSnBaseNode *container, const QList<OssSnBaseNode *> &members,
                             bool undoable);
    // Moves the container with what it holds to the free spot right of the graph, keeping its
    // height when PreserveY.
    void moveContainerToFreshLocation(OssSnBaseNode *container, bool preserveY);
    // After Container's rectangle changed from OldRect: the container holding it respaces its
    // members, or, at the top level, the containers it now reaches below it move down.
    void settleContainersAround(OssSnBaseNode *container, const QRectF &oldRect);

    // --- commands
    // Creates a node of a path key centred on a scene point, as one undo step: moved off the
    // nodes it overlaps, named uniquely, fed by the selected nodes (a backdrop wraps them
    // instead) and then selected alone. Null when the node cannot be made.
    OssSnBaseNode *createNodeAt(const QString &pathKey, const QPointF &scenePos);
    // Creates a node under the first selected node, fed by it, taking over what it fed.
    OssSnBaseNode *createNodeAfterSelection(const QString &pathKey);
    // Puts a new dot node into an edge (the caller holds the undo macro).
    OssSnBaseNode *insertDotIntoEdge(OssNgEdge *edge);
    // Connects a node's preferred output to the viewer's input Number and shows it there.
    bool connectToViewer(OssSnBaseNode *node, int number);

    // --- context menu
    // The right-click menu as it would show now (the caller deletes it), or null after a debug
    // line when there is no scene or no menu definition.
    OssMenu *makeContextMenu();
    // Whether the node's properties may become knobs of the group holding it.
    static bool canExposeProperties(const OssSnBaseNode *node);

public slots:
    // --- pointer and keyboard interaction
    // Shows the dot markers of the fully connected edges in sight.
    void highlightDotableEdges();
    // Hides the dot markers of every edge of the scene.
    void deactivateDotableMode();
    // Drops the edge that grabs the mouse, if any.
    void dropGrabbedEdge();
    // Switches between edge-sever tracking and normal tracking.
    void toggleEdgeSeverAction();
    // Creates a dot at the cursor and splices it into CandidateEdge, as one undo step.
    void createUnconnectedDotNode(OssNgEdge *CandidateEdge);

    void frameNodes(bool EntireScene);
    void frameNodes() { frameNodes(true); }
    void frameSelectedNodes();
    void fitToViewAction();
    void ensureIsVisibleAction();

    // --- selection navigation: from the selected nodes along the graph. The adding forms keep
    // the selection and add what they find; the others move the selection there (and keep it
    // when they find nothing).
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
    // Adds every node of the view's network except system shader nodes to the selection.
    void selectAll();

    // --- node editing commands, each one undo step on the view's network and its selection
    // Shows a node (the selected one when null) in the viewer's input Num (1 when not given);
    // nothing selected only switches the viewer's current input.
    void connectSelectedNodeToViewer(OssSnBaseNode *Node, int Num);
    void connectSelectedNodeToViewer(OssSnBaseNode *Node);
    void connectSelectedNodeToViewer();
    void onOutputPointSelected(QAction *action);
    void moveViewerToMouse();
    void deleteSelectedNodes();
    void deleteAllNodes();
    void disableSelectedNodes();
    void bypassSelectedNode();
    void extractSelectedNode();
    void duplicateSelectedNodes();
    void cutNodesAction();
    void copyNodesAction();
    void pasteNodesAction();
    void popupRenameWindow();
    void popupRenameWindow(OssNgNode *NodeToRename);
    void swapInputs();

    // --- node creation at a view position (the cursor, or the middle of the view when the
    // cursor is elsewhere, when not given), each one undo step
    void createPaintableNode(QPoint NodeViewPos);
    void createPaintableNode();
    void createBakePointNode(QPoint NodeViewPos);
    void createBakePointNode();
    // A multi-channel merge fed by the first selected node when it has a shader model, else an
    // ordinary merge.
    void createMergeNode(QPoint NodeViewPos);
    void createMergeNode();
    // Creates the node of the path key in the action's data at the cursor; the node made.
    OssSnBaseNode *createNodeFromAction(QAction *Action);
    // Asks for a node type with the quick find dialog and creates it at the cursor.
    void quickCreate();

    // --- node files and node information
    void searchNodesAction();
    void exportNodes();
    void importNodes();
    void printNodeInfo();
    void dumpSelectedNodeInfo();
    void dumpNodeUIAction();
    void generateMaterialPreview();
    void setImageSetByNameAction();

    // --- the selected nodes' GUI: a group's subgraph, the properties, the port lists
    void openGroupNodeSubgraph();
    void openNodeProperties();
    void togglePortVisibility();
    void cyclePortListMode();

    // --- drops and imports (OssShaderNetworkViewDrop.cpp)
    // A texture node of NodeType showing Image, at NodeScenePos (the view's centre when null),
    // moved off overlapping nodes; one undo step.
    void createNodeFromDropImage(OssImage *Image, QString NodeType, QPointF NodeScenePos);
    void createNodeFromDropImage(OssImage *Image, QString NodeType);
    // One node per archive, at the view position (the cursor for the forms that ask for the
    // files); a failing archive shows why and changes nothing.
    void importMaterial();
    void importMaterial(QStringList PathList, QPoint NodeViewPos);
    void importCustomProcedural();
    void importCustomProcedural(QStringList PathList, QPoint NodeViewPos);

    // --- bakes (OssShaderNetworkViewBake.cpp)
    void bakeEmptyAndUpdateOutOfDateBakePoints();
    void bakeSelectedBakePoints();
    void updateSelectedBakePoints();
    void updateUpstreamBakePoints();
    void updateDownstreamBakePoints();
    // Bakes the selected node into a new paint node that takes its place downstream.
    void bakeToPaintableNode();
    // Exports the selected node's result into a geo-channel of the network's object (the one
    // given, or one the user picks), through a new image set.
    void exportToGeoChannel(OssGeoImageSet *pGeoImageSet, QString OutputPointName);
    void exportToGeoChannel(OssGeoImageSet *pGeoImageSet);
    void exportToGeoChannel();
    // Turns on "Use Blending Colorspace" of the merge nodes upstream of an 8-bit paint end
    // point, as the preference says (asking, changing or leaving them).
    static void autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(OssSnBaseNode *EndPointNode);

    // --- version control and group knobs
    // The version control window over the selected nodes of every level, over every node, or
    // over the given nodes.
    void upgradeSelectedNodeInfo();
    void upgradeAllNodeInfo();
    void upgradeNodeInfo(QList<OssSnBaseNode *> Nodes);
    // The knob manager of the one selected group node.
    void manageUserKnobs();
    // Makes each attribute of the one selected node a knob of the group whose subgraph holds it.
    void exposeNodeProperties();

    void onZoomToChanged();
    void allowViewUpdateChanged(bool AllowViewUpdate);
    void onProjectClosed();
    void setNavigationControlType(QString ControlType);
    void onShakeToExtractEnabledChanged(bool Enabled);
    void onShakeToExtractShakesChanged(int Shakes);
    void onShakeToExtractTimeChanged(int Time);
    void onShakeToExtractTriggered();

protected slots:
    void deferredConnectToViewContextManager();
    // Lets the canvas flush paint still in its buffer into an image set node's image set.
    void bakePaintBufferToNode(const OssSnBaseNode *Node);

signals:
    void nodeDoubleClicked(OssSnBaseNode *node);
    void nodeAdded(OssSnBaseNode *Node);
    void nodeRemoved(OssSnBaseNode *Node);

protected:
    void focusOutEvent(QFocusEvent *event) override;
    // A press records where the selected nodes (and what their backdrops carry) start; the
    // release after a node drag records the move as one undo step and splices dropped nodes
    // into edges.
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    // Control shows the dot markers, Ctrl+Return opens a selected group, Escape drops a grabbed
    // edge; every key then goes on to the base view.
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    // Opens the node's properties; with Control held a group opens its subgraph, and a viewer
    // node becomes the current viewer.
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    // Shows the menu of makeContextMenu() at the event's position.
    void contextMenuEvent(QContextMenuEvent *event) override;

    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

public:
    // Sets "BlendColorSpaceEnabled" of a new merge node from the paint it feeds: enabled when
    // an 8-bit paint source lies downstream of it.
    static void setBlendingColorspaceOnMergeNodeCreation(OssSnBaseNode *mergeNode);

private:
    // One submenu per menu-path folder, holding the node-creation actions.
    void fillNodesMenu(QMenu *nodesMenu);
    // Imports one archive per path into new nodes of PathKey, as one undo step titled Title;
    // the errors of all paths are shown together under ErrorTitle and undo everything.
    void importArchives(const QStringList &paths, const QPoint &viewPos, const QString &pathKey,
                        const QString &title, const QString &errorTitle);
    QRectF selectionBounds(int *count = nullptr) const;
    // The selected scene items that are GUI nodes, as business nodes, without system shader
    // nodes: where every selection walk starts.
    QList<OssSnBaseNode *> selectedBusinessNodes() const;
    void addToSelection(const std::function<QList<OssSnBaseNode *>(OssSnBaseNode *)> &gather,
                        bool sameNetworkOnly);
    void replaceSelection(const std::function<QList<OssSnBaseNode *>(OssSnBaseNode *)> &gather);
    // The network's selected nodes without the first viewer among them.
    QList<OssSnBaseNode *> selectionWithoutViewer() const;
    QPointF cursorScenePos() const;
    void showAsCurrentMaterial(OssSnBaseNode *node);
    void connectViewerInput(OssSnBaseNode *viewer, OssSnBaseNode *node, const QString &outputPoint,
                            int number);
    // Pasted, duplicated and imported nodes: selected alone, moved to Position as a group, named
    // uniquely, their delayed knobs made and their backdrops' child lists refreshed.
    void placeInsertedNodes(const QList<OssSnBaseNode *> &nodes, const QPointF *position);
    void batchSwapInputs(OssSnMultiChannelMergeNode *merge);
    void applyZoomAnchor();
    // Where a command without a position creates: the cursor over the view, else its middle.
    QPoint creationViewPos() const;
    // Centres a new node on a scene point (moved off overlaps when Relocate), as an undo step.
    void placeCreatedNode(OssSnBaseNode *node, const QPointF &scenePos, bool relocate);
    void selectAlone(OssSnBaseNode *node);
    void autoConnectToSelection(OssSnBaseNode *node, const QList<OssNgNode *> &sorted);
    void insertIntoStreamAfter(OssSnBaseNode *node, OssSnBaseNode *upstream);
    // The undo step of a node drag, from m_nodeStartPositions to where the nodes are now.
    void recordNodeMoves();
    // The backdrop of a container node; logs and answers null when its GUI node is another kind.
    class OssNgBackdropNode *containerBackdrop(OssSnBaseNode *container) const;
    void moveContainerBy(class OssNgBackdropNode *backdrop, const QPointF &delta);
    void resizeContainer(class OssNgBackdropNode *backdrop, const QRectF &sceneRect);

    OssShaderNetwork *m_network = nullptr;
    QMap<OssNgNode *, QPointF> m_nodeStartPositions;
    // Tells which recorded nodes still exist at the release (one may be deleted mid-drag).
    QHash<OssNgNode *, QPointer<OssNgNode>> m_recordedNodes;
    // Framing asked for before the view had its size is done again once it has one.
    int m_framePending = -1;
    // Whether the drag over the view was taken when it entered: moves answer the same.
    bool m_dragAccepted = false;
};
