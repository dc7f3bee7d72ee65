#pragma once

#include "OssSerializableObject.h"
#include "OssSnNodeGraphPreferences.h"

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
    void resetControlType() { setControlType(controlTypeDefault()); }
    QString controlTypeDefault() const { return defaultOf(Preferences::ControlType).toString(); }
    QStringList controlTypeList() const { return Preferences::choices(Preferences::ControlType); }
    QString controlTypeTooltip() const { return Preferences::toolTip(Preferences::ControlType); }

    QString defaultNodePortDisplayMode() const;
    int defaultNodePortDisplayModeAsEnum() const { return m_portDisplayIndex; }
    void setDefaultNodePortDisplayMode(const QString &Mode);
    void resetDefaultNodePortDisplayMode();
    QStringList defaultNodePortDisplayModeList() const { return portDisplayList(); }
    QString defaultNodePortDisplayModeTooltip() const
    {
        return Preferences::toolTip(Preferences::DefaultNodePortDisplayMode);
    }

    bool isAutoInsertOn() const { return m_isAutoInsertOn; }
    void setIsAutoInsertOn(bool Value)
    {
        if (assign(m_isAutoInsertOn, Value))
            emit isAutoInsertOnChanged(Value);
    }
    void resetIsAutoInsertOn()
    {
        setIsAutoInsertOn(defaultOf(Preferences::IsAutoInsertOn).toBool());
    }
    QString isAutoInsertOnTooltip() const
    {
        return Preferences::toolTip(Preferences::IsAutoInsertOn);
    }

    ZoomTo zoomTo() const { return m_zoomTo; }
    int zoomToAsInt() const { return int(m_zoomTo); }
    void setZoomTo(ZoomTo Value);
    // Any int is kept as it is; readers decide what values other than Center and Cursor mean.
    void setZoomTo(int Value) { setZoomTo(static_cast<ZoomTo>(Value)); }
    void resetZoomTo() { setZoomTo(defaultOf(Preferences::ZoomTo).toInt()); }
    QString zoomToTooltip() const { return Preferences::toolTip(Preferences::ZoomTo); }

    QString autoUpdateUpstreamMergeNodeColorspaceEnabled() const { return m_colorspaceBehaviour; }
    void setAutoUpdateUpstreamMergeNodeColorspaceEnabled(const QString &Value);
    void resetAutoUpdateUpstreamMergeNodeColorspaceEnabled()
    {
        setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
            autoUpdateUpstreamMergeNodeColorspaceEnabledDefault());
    }
    QString autoUpdateUpstreamMergeNodeColorspaceEnabledDefault() const
    {
        return defaultOf(Preferences::AutoUpdateUpstreamMergeNodeColorspaceEnabled).toString();
    }
    QStringList autoUpdateUpstreamMergeNodeColorspaceEnabledList() const
    {
        return Preferences::choices(Preferences::AutoUpdateUpstreamMergeNodeColorspaceEnabled);
    }
    QString autoUpdateUpstreamMergeNodeColorspaceEnabledTooltip() const
    {
        return Preferences::toolTip(Preferences::AutoUpdateUpstreamMergeNodeColorspaceEnabled);
    }

    DefaultMCMCollapsedState defaultMCMCollapsedState() const { return m_collapsedState; }
    int defaultMCMCollapsedStateAsInt() const { return int(m_collapsedState); }
    void setDefaultMCMCollapsedState(DefaultMCMCollapsedState Value);
    void setDefaultMCMCollapsedState(int Value)
    {
        setDefaultMCMCollapsedState(static_cast<DefaultMCMCollapsedState>(Value));
    }
    void resetDefaultMCMCollapsedState()
    {
        setDefaultMCMCollapsedState(defaultOf(Preferences::DefaultMCMCollapsedState).toInt());
    }
    QString defaultMCMCollapsedStateTooltip() const
    {
        return Preferences::toolTip(Preferences::DefaultMCMCollapsedState);
    }

    bool shakeToExtractEnabled() const { return m_shakeToExtractEnabled; }
    void setShakeToExtractEnabled(bool Value)
    {
        if (assign(m_shakeToExtractEnabled, Value))
            emit shakeToExtractEnabledChanged(Value);
    }
    void resetShakeToExtractEnabled() { setShakeToExtractEnabled(shakeToExtractEnabledDefault()); }
    void toggleShakeToExtractEnabled() { setShakeToExtractEnabled(!m_shakeToExtractEnabled); }
    bool shakeToExtractEnabledDefault() const
    {
        return defaultOf(Preferences::ShakeToExtractEnabled).toBool();
    }
    QString shakeToExtractEnabledTooltip() const
    {
        return Preferences::toolTip(Preferences::ShakeToExtractEnabled);
    }

    int shakeToExtractShakes() const { return m_shakeToExtractShakes; }
    void setShakeToExtractShakes(int Value)
    {
        if (assign(m_shakeToExtractShakes, Value))
            emit shakeToExtractShakesChanged(Value);
    }
    void resetShakeToExtractShakes() { setShakeToExtractShakes(shakeToExtractShakesDefault()); }
    int shakeToExtractShakesDefault() const
    {
        return defaultOf(Preferences::ShakeToExtractShakes).toInt();
    }
    QString shakeToExtractShakesTooltip() const
    {
        return Preferences::toolTip(Preferences::ShakeToExtractShakes);
    }

    int shakeToExtractTime() const { return m_shakeToExtractTime; }
    void setShakeToExtractTime(int Value)
    {
        if (assign(m_shakeToExtractTime, Value))
            emit shakeToExtractTimeChanged(Value);
    }
    void resetShakeToExtractTime() { setShakeToExtractTime(shakeToExtractTimeDefault()); }
    int shakeToExtractTimeDefault() const
    {
        return defaultOf(Preferences::ShakeToExtractTime).toInt();
    }
    QString shakeToExtractTimeTooltip() const
    {
        return Preferences::toolTip(Preferences::ShakeToExtractTime);
    }

    int numberOfLastUsedNodePathsToStore() const { return m_numberOfLastUsedNodePaths; }
    void setNumberOfLastUsedNodePathsToStore(int Value)
    {
        if (assign(m_numberOfLastUsedNodePaths, Value))
            emit numberOfLastUsedNodePathsToStoreChanged(Value);
    }
    void resetNumberOfLastUsedNodePathsToStore()
    {
        setNumberOfLastUsedNodePathsToStore(numberOfLastUsedNodePathsToStoreDefault());
    }
    int numberOfLastUsedNodePathsToStoreDefault() const
    {
        return defaultOf(Preferences::NumberOfLastUsedNodePathsToStore).toInt();
    }
    QString numberOfLastUsedNodePathsToStoreTooltip() const
    {
        return Preferences::toolTip(Preferences::NumberOfLastUsedNodePathsToStore);
    }

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
    using Preferences = OssSnNodeGraphPreferences;
    static QVariant defaultOf(Preferences::Preference preference)
    {
        return Preferences::defaultValue(preference);
    }
    // Stores Value in Member; true when it changed (the caller then announces it).
    template <typename T> static bool assign(T &member, const T &value)
    {
        if (member == value)
            return false;
        member = value;
        return true;
    }

    OssSnNodeGraphViewContextManager();
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

    // The preference values; the constructor gives them their defaults from the table.
    int m_portDisplayIndex{};
    bool m_isAutoInsertOn{};
    ZoomTo m_zoomTo{};
    QString m_controlType;
    QString m_colorspaceBehaviour;
    DefaultMCMCollapsedState m_collapsedState{};
    bool m_shakeToExtractEnabled{};
    int m_shakeToExtractShakes{};
    int m_shakeToExtractTime{};
    int m_numberOfLastUsedNodePaths{};
};
