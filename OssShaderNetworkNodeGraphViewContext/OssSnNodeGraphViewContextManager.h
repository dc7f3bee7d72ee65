#pragma once

#include "OssSerializableObject.h"

#include <OssShaderNetworkManager.h>

#include <QColor>
#include <QHash>
#include <QMap>
#include <QPointer>
#include <QRectF>
#include <QSet>
#include <QStringList>

class OssChannel;
class OssProject;
class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnBaseNode;
class OssSnGroupNode;
class OssSnNodeGraphViewContextLoader;
class OssSnNodeGraphWidget;
class QGraphicsScene;

// The one process-wide object that ties the node graph to the host: scenes per network, the two
// palettes, the host's network, node and project signals, and the node-graph preferences.
class OssSnNodeGraphViewContextManager : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString controlType READ controlType WRITE setControlType RESET resetControlType
                   NOTIFY controlTypeChanged)
    Q_PROPERTY(QString defaultNodePortDisplayMode READ defaultNodePortDisplayMode WRITE
                   setDefaultNodePortDisplayMode RESET resetDefaultNodePortDisplayMode NOTIFY
                       defaultNodePortDisplayModeChanged)
    Q_PROPERTY(bool isAutoInsertOn READ isAutoInsertOn WRITE setIsAutoInsertOn RESET
                   resetIsAutoInsertOn NOTIFY isAutoInsertOnChanged)
    Q_PROPERTY(ZoomTo zoomTo READ zoomTo WRITE setZoomTo RESET resetZoomTo NOTIFY zoomToChanged)
    Q_PROPERTY(QString autoUpdateUpstreamMergeNodeColorspaceEnabled READ
                   autoUpdateUpstreamMergeNodeColorspaceEnabled WRITE
                       setAutoUpdateUpstreamMergeNodeColorspaceEnabled RESET
                           resetAutoUpdateUpstreamMergeNodeColorspaceEnabled NOTIFY
                               autoUpdateUpstreamMergeNodeColorspaceEnabledChanged)
    Q_PROPERTY(DefaultMCMCollapsedState defaultMCMCollapsedState READ defaultMCMCollapsedState WRITE
                   setDefaultMCMCollapsedState RESET resetDefaultMCMCollapsedState NOTIFY
                       defaultMCMCollapsedStateChanged)
    Q_PROPERTY(bool shakeToExtractEnabled READ shakeToExtractEnabled WRITE setShakeToExtractEnabled
                   RESET resetShakeToExtractEnabled NOTIFY shakeToExtractEnabledChanged)
    Q_PROPERTY(int shakeToExtractShakes READ shakeToExtractShakes WRITE setShakeToExtractShakes
                   RESET resetShakeToExtractShakes NOTIFY shakeToExtractShakesChanged)
    Q_PROPERTY(int shakeToExtractTime READ shakeToExtractTime WRITE setShakeToExtractTime RESET
                   resetShakeToExtractTime NOTIFY shakeToExtractTimeChanged)
    Q_PROPERTY(int numberOfLastUsedNodePathsToStore READ numberOfLastUsedNodePathsToStore WRITE
                   setNumberOfLastUsedNodePathsToStore RESET resetNumberOfLastUsedNodePathsToStore
                       NOTIFY numberOfLastUsedNodePathsToStoreChanged)

public:
    enum ZoomTo
    {
        Center = 0,
        Cursor = 1
    };
    Q_ENUM(ZoomTo)

    enum DefaultMCMCollapsedState
    {
        Expanded = 0,
        StreamCollapsed = 1,
        ConnectedOnly = 2,
        Collapsed = 3
    };
    Q_ENUM(DefaultMCMCollapsedState)

    // Index into the port display list.
    enum DefaultNodePortDisplayMode
    {
        ShowPortList = 0,
        NoPortList = 1
    };

    static OssSnNodeGraphViewContextManager *instance();
    ~OssSnNodeGraphViewContextManager() override;

    // The current node graph view, or null when the tab widget is gone.
    OssShaderNetworkView *currentView() const;
    OssSnNodeGraphWidget *nodeGraphWidget() const;
    QWidget *nodePropertiesWidget() const;
    void registerGroupNetwork(OssShaderNetwork *network, OssSnGroupNode *group);
    OssSnGroupNode *groupNodeOfNetwork(OssShaderNetwork *network) const;
    // The scene of a network, made on first need; null for a null network.
    QGraphicsScene *sceneForNetwork(OssShaderNetwork *network);
    bool hasScene(OssShaderNetwork *network) const { return m_scenes.contains(network); }
    int sceneCount() const { return m_scenes.size(); }
    QRectF viewRect(OssShaderNetwork *network) const { return m_viewRects.value(network); }
    // Binds a view to a network, restoring the part of the graph it showed last time.
    void showNetworkInView(OssShaderNetwork *network, OssShaderNetworkView *view);
    // An input or output node inside a group moved: the group's ports follow its order.
    void groupInputOutputMoved(OssSnGroupNode *group, OssSnBaseNode *node, bool input);

    QString prettyPropertyName(const QString &Name) const override;

    // The entries of the port display list, in index order.
    static const QStringList &portDisplayList();

public slots:
    QString controlType() const { return m_controlType; }
    void setControlType(const QString &Value);
    void resetControlType();
    QString controlTypeDefault() const;
    QStringList controlTypeList() const;
    QString controlTypeTooltip() const;

    QString defaultNodePortDisplayMode() const;
    int defaultNodePortDisplayModeAsEnum() const { return m_portDisplayIndex; }
    void setDefaultNodePortDisplayMode(const QString &Mode);
    void resetDefaultNodePortDisplayMode();
    QStringList defaultNodePortDisplayModeList() const { return portDisplayList(); }
    QString defaultNodePortDisplayModeTooltip() const;

    bool isAutoInsertOn() const { return m_isAutoInsertOn; }
    void setIsAutoInsertOn(bool Value);
    void resetIsAutoInsertOn();
    QString isAutoInsertOnTooltip() const;

    ZoomTo zoomTo() const { return m_zoomTo; }
    int zoomToAsInt() const { return int(m_zoomTo); }
    void setZoomTo(ZoomTo Value);
    void setZoomTo(int Value);
    void resetZoomTo();
    QString zoomToTooltip() const;

    QString autoUpdateUpstreamMergeNodeColorspaceEnabled() const { return m_colorspaceBehaviour; }
    void setAutoUpdateUpstreamMergeNodeColorspaceEnabled(const QString &Value);
    void resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
    QString autoUpdateUpstreamMergeNodeColorspaceEnabledDefault() const;
    QStringList autoUpdateUpstreamMergeNodeColorspaceEnabledList() const;
    QString autoUpdateUpstreamMergeNodeColorspaceEnabledTooltip() const;

    DefaultMCMCollapsedState defaultMCMCollapsedState() const { return m_collapsedState; }
    int defaultMCMCollapsedStateAsInt() const { return int(m_collapsedState); }
    void setDefaultMCMCollapsedState(DefaultMCMCollapsedState Value);
    void setDefaultMCMCollapsedState(int Value);
    void resetDefaultMCMCollapsedState();
    QString defaultMCMCollapsedStateTooltip() const;

    bool shakeToExtractEnabled() const { return m_shakeToExtractEnabled; }
    void setShakeToExtractEnabled(bool Value);
    void resetShakeToExtractEnabled();
    void toggleShakeToExtractEnabled();
    bool shakeToExtractEnabledDefault() const { return true; }
    QString shakeToExtractEnabledTooltip() const;

    int shakeToExtractShakes() const { return m_shakeToExtractShakes; }
    void setShakeToExtractShakes(int Value);
    void resetShakeToExtractShakes();
    int shakeToExtractShakesDefault() const { return 4; }
    QString shakeToExtractShakesTooltip() const;

    int shakeToExtractTime() const { return m_shakeToExtractTime; }
    void setShakeToExtractTime(int Value);
    void resetShakeToExtractTime();
    int shakeToExtractTimeDefault() const { return 500; }
    QString shakeToExtractTimeTooltip() const;

    int numberOfLastUsedNodePathsToStore() const { return m_numberOfLastUsedNodePaths; }
    void setNumberOfLastUsedNodePathsToStore(int Value);
    void resetNumberOfLastUsedNodePathsToStore();
    int numberOfLastUsedNodePathsToStoreDefault() const { return 5; }
    QString numberOfLastUsedNodePathsToStoreTooltip() const;

    void savePreferences();
    void loadPreferences();

    // Every node's view context re-applies its port visibility.
    void updatePortVisibility();

    void onCurrentShaderNetworkChanged(OssShaderNetwork *Network);
    void onShaderNetworkAdded(OssShaderNetwork *Network);
    void focusOnNode(OssSnBaseNode *Node);
    void matchNodePosition(OssSnBaseNode *From, OssSnBaseNode *To);
    void onAfterShaderNetworkEndCollection(OssShaderNetwork *Network);
    void showNodePropertiesAtPositionEnd(OssSnBaseNode *Node, OssSnBaseNode *Target, bool Undo);
    void showNodePropertiesAtPositionBegin(OssSnBaseNode *Node, OssSnBaseNode *Target, bool Undo);
    void showNodeProperties(OssSnBaseNode *Node);
    void beautifyNodesLayout();
    void beautifyNodesLayout(OssShaderNetwork *Network);
    void beautifyNodesLayout(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes);
    void beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes,
                             bool ArrangeFromLeavesIfEmpty);
    void onNodeRegistered(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void onNodeDeregistered(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void reorderGroupInputsByPos(OssSnGroupNode *Group);
    void reorderGroupOutputsByPos(OssSnGroupNode *Group);
    void arrangeGroupInputNodesByOrder(OssShaderNetwork *Network, QStringList Order);
    void onDebugNodesChanged(OssDebugNodeColours rNewNodes, OssDebugInputColours rNewInputs,
                             OssDebugNodeColours rOldNodes, OssDebugInputColours rOldInputs);
    void highlightCurrentImageSetNode(OssChannel *pImageSet);
    void onProjectClosing();
    void onProjectOpenCompleted();
    void onProjectMadeCurrentUpgradeOldBadBackdrops(OssProject *Project);
    void onShaderNetworkDestroyed(QObject *Obj);
    void onNetworkDestroyed(QObject *Obj);
    void onNodePropertiesHoverChanged(OssSnBaseNode *MouseOver, OssSnBaseNode *OldMouseOver);
    void onNodeCollapsedModeChanged();
    void showPropertiesPalette();
    void showNodeGraphPalette();
    void initialiseNodeGraphPalette();
    void initialiseNodePropertiesPalette();

signals:
    void controlTypeChanged(QString Value);
    void defaultNodePortDisplayModeChanged(QString Mode);
    void isAutoInsertOnChanged(bool Value);
    void zoomToChanged(OssSnNodeGraphViewContextManager::ZoomTo Value);
    void zoomToChangedAsInt(int Value);
    void autoUpdateUpstreamMergeNodeColorspaceEnabledChanged(QString Value);
    void defaultMCMCollapsedStateChanged(
        OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState Value);
    void defaultMCMCollapsedStateChangedAsInt(int Value);
    void shakeToExtractEnabledChanged(bool Value);
    void shakeToExtractShakesChanged(int Value);
    void shakeToExtractTimeChanged(int Value);
    void numberOfLastUsedNodePathsToStoreChanged(int Value);

protected slots:
    void autoLayoutNodes(OssShaderNetwork *StartNetwork, QList<OssSnBaseNode *> StartNodes,
                         bool ArrangeFromLeavesIfEmpty);

private:
    OssSnNodeGraphViewContextManager();
    void layoutTree(OssSnBaseNode *root, QSet<OssSnBaseNode *> &laidOut,
                    const QList<class OssNgNode *> &keepClear);
    void registerPreferences();
    void connectToHost();
    // Takes the GUI nodes (owned by their view contexts) out of a scene that is about to go.
    void releaseGuiNodes(QGraphicsScene *scene);
    void flushPendingPolish(QGraphicsScene *scene);
    void noteRemoval(QGraphicsScene *scene);
    void endBulkRemovals();

    QHash<OssShaderNetwork *, QGraphicsScene *> m_scenes;
    // Scenes that got items since their queued polish call was last delivered.
    QSet<QGraphicsScene *> m_scenesWithNewItems;
    // GUI nodes taken out of each scene since the event loop last turned, and the scenes that
    // went without a spatial index for it.
    QHash<QGraphicsScene *, int> m_removalsThisTurn;
    QList<QPointer<QGraphicsScene>> m_unindexedForBulkRemoval;
    QHash<OssShaderNetwork *, QPointer<OssSnGroupNode>> m_groupNodes;
    QHash<OssShaderNetwork *, QRectF> m_viewRects;
    QPointer<OssSnNodeGraphWidget> m_nodeGraphWidget;
    QPointer<QWidget> m_nodePropertiesWidget;
    OssSnNodeGraphViewContextLoader *m_loader = nullptr;

    int m_portDisplayIndex = ShowPortList;
    bool m_isAutoInsertOn = true;
    ZoomTo m_zoomTo = Cursor;
    QString m_controlType = QStringLiteral("Kova");
    QString m_colorspaceBehaviour;
    DefaultMCMCollapsedState m_collapsedState = StreamCollapsed;
    bool m_shakeToExtractEnabled = true;
    int m_shakeToExtractShakes = 4;
    int m_shakeToExtractTime = 500;
    int m_numberOfLastUsedNodePaths = 5;
};
