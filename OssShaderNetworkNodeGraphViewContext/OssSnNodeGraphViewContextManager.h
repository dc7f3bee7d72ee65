#pragma once

#include "OssSerializableObject.h"
#include "OssSnAutoplace.h"
#include "OssSnGroupPortOrder.h"
#include "OssSnNodeGraphPreferences.h"
#include "OssSnNodeHighlights.h"
#include "OssSnSceneRegistry.h"

#include <OssShaderNetworkManager.h>

#include <QColor>
#include <QPointer>
#include <QRectF>
#include <QStringList>

class OssChannel;
class OssProject;
class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnBaseNode;
class OssSnGroupNode;
class OssSnNodeGraphViewContextLoader;
class OssSnNodeGraphWidget;
class OssSnNodePropertiesWidget;
class QGraphicsScene;

// The one process-wide object that ties the node graph to the host: it answers the host's
// network, node and project signals, hosts the two palettes and carries the node-graph
// preferences as properties. The work is done by the scene registry (OssSnSceneRegistry),
// Autoplace (OssSnAutoplace), the preference table (OssSnNodeGraphPreferences), the group port
// order (OssSnGroupPortOrder) and the node highlights (OssSnNodeHighlights).
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
    enum ZoomTo : int
    {
        Center = 0,
        Cursor = 1
    };
    Q_ENUM(ZoomTo)

    enum DefaultMCMCollapsedState : int
    {
        Expanded = 0,
        StreamCollapsed = 1,
        ConnectedOnly = 2,
        Collapsed = 3
    };
    Q_ENUM(DefaultMCMCollapsedState)

    // Index into the port display list.
    enum DefaultNodePortDisplayMode : int
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
    void registerGroupNetwork(OssShaderNetwork *network, OssSnGroupNode *group)
    {
        m_scenes->registerGroupNetwork(network, group);
    }
    OssSnGroupNode *groupNodeOfNetwork(OssShaderNetwork *network) const
    {
        return m_scenes->groupNodeOfNetwork(network);
    }
    // The scene of a network, made on first need; null for a null network.
    QGraphicsScene *sceneForNetwork(OssShaderNetwork *network)
    {
        return m_scenes->sceneForNetwork(network);
    }
    bool hasScene(OssShaderNetwork *network) const { return m_scenes->hasScene(network); }
    int sceneCount() const { return m_scenes->sceneCount(); }
    // The part of a network's scene the root view showed when it last left the network.
    QRectF viewRect(OssShaderNetwork *network) const { return m_scenes->viewRect(network); }
    // Binds a view to a network, restoring the part of the graph it showed last time.
    void showNetworkInView(OssShaderNetwork *network, OssShaderNetworkView *view)
    {
        m_scenes->showNetworkInView(network, view);
    }
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
    void beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes)
    {
        beautifyNodesLayout(Network, Nodes, false);
    }
    void beautifyNodesLayout(OssShaderNetwork *Network, QList<OssSnBaseNode *> Nodes,
                             bool ArrangeFromLeavesIfEmpty)
    {
        Nodes.removeAll(nullptr);
        autoLayoutNodes(Network, Nodes, ArrangeFromLeavesIfEmpty);
    }
    void onNodeRegistered(OssShaderNetwork *Network, OssSnBaseNode *Node)
    {
        m_scenes->onNodeRegistered(Network, Node);
    }
    void onNodeDeregistered(OssShaderNetwork *Network, OssSnBaseNode *Node)
    {
        m_scenes->onNodeDeregistered(Network, Node);
    }
    void reorderGroupInputsByPos(OssSnGroupNode *Group)
    {
        OssSnGroupPortOrder::reorderInputsByPosition(Group);
    }
    // Output order is fixed by the group's definition; nothing to reorder.
    void reorderGroupOutputsByPos(OssSnGroupNode *) {}
    void arrangeGroupInputNodesByOrder(OssShaderNetwork *Network, QStringList Order)
    {
        OssSnGroupPortOrder::arrangeInputNodes(Network, Order);
    }
    void onDebugNodesChanged(OssDebugNodeColours rNewNodes, OssDebugInputColours rNewInputs,
                             OssDebugNodeColours rOldNodes, OssDebugInputColours rOldInputs)
    {
        OssSnNodeHighlights::showDebugColours(rNewNodes, rNewInputs, rOldNodes, rOldInputs);
    }
    void highlightCurrentImageSetNode(OssChannel *pImageSet)
    {
        OssSnNodeHighlights::highlightChannel(pImageSet);
    }
    void onProjectClosing();
    void onProjectOpenCompleted();
    void onProjectMadeCurrentUpgradeOldBadBackdrops(OssProject *Project);
    void onShaderNetworkDestroyed(QObject *Obj) { m_scenes->onShaderNetworkDestroyed(Obj); }
    void onNetworkDestroyed(QObject *Obj) { m_scenes->onNetworkDestroyed(Obj); }
    void onNodePropertiesHoverChanged(OssSnBaseNode *MouseOver, OssSnBaseNode *OldMouseOver)
    {
        OssSnNodeHighlights::showHover(MouseOver, OldMouseOver);
    }
    void onNodeCollapsedModeChanged();
    // Makes a node of the sender action's path key for each image selected in the image
    // manager, in the current view.
    void addImageAs();
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
                         bool ArrangeFromLeavesIfEmpty)
    {
        OssSnAutoplace::run(StartNetwork, m_scenes->scene(StartNetwork), StartNodes,
                            ArrangeFromLeavesIfEmpty);
    }

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
    // The node graph widget's current page as a view; null, with a debug line, when any of them
    // is missing.
    OssShaderNetworkView *currentPageView() const;
    OssSnNodePropertiesWidget *propertiesPanel() const;
    // Every node of every shading group's network of a project, those inside groups included.
    static QList<OssSnBaseNode *> nodesOfProject(OssProject *project);

    OssSnSceneRegistry *m_scenes = nullptr;
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
