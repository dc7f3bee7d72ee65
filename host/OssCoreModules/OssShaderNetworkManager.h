#pragma once

#include "OssCoreModulesExport.h"
#include "OssShaderNetwork.h"
#include "OssSnBaseNode.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QStringList>

class QAction;
class OssShaderNetwork;
class OssShaderNetworkContextLoader;
class OssShadingGroup;
class OssSnGroupNode;

// Debug colours of nodes (object reference → colour) and of inputs (object reference → input
// name → colour).
using OssDebugNodeColours = QMap<QString, QColor>;
using OssDebugInputColours = QMap<QString, QMap<QString, QColor>>;

// The host's shader-network service: makes nodes from node types, keeps track of networks and
// of the network the node graph shows, and tells views about nodes coming and going.
class OSSCOREMODULES_EXPORT OssShaderNetworkManager : public QObject
{
    Q_OBJECT
public:
    static OssShaderNetworkManager *instance();

    // --- node types
    QStringList nodeGraphPathKeys() const;
    QStringList nodePathKeys() const;
    QString nodeMenuPath(const QString &pathKey) const;
    QString convertPathKeyToVersionUUID(const QString &pathKey) const;
    QString hashStringForVersionUUID(const QString &uuid) const;
    QString versionDatePresent(const QString &uuid) const;

    // Makes a node of a path key with its contexts attached, in no network yet. Group kinds
    // get their subnetwork with one input node per input and one output node per output
    // unless ForLoading (a file then brings the subnetwork). Null with a reason for an unknown
    // key or class.
    // The node is made a child of Network (when given) before its contexts are loaded, so that
    // they know where it will live; it joins the network's nodes only when inserted.
    OssSnBaseNode *instantiateNode(const QString &pathKey, QString *error = nullptr,
                                   bool forLoading = false, OssShaderNetwork *network = nullptr);
    // A bare node of a node class, without type; null when the name is no node class (a
    // document naming a project or a context where a node belongs is damaged).
    OssSnBaseNode *instantiateNodeOfClass(const QString &className,
                                          OssShaderNetwork *network = nullptr);

    // --- contexts
    void registerContextLoader(const QString &name, OssShaderNetworkContextLoader *loader);
    OssShaderNetworkContextLoader *contextLoader(const QString &name) const;
    QStringList contextLoaderNames() const { return m_loaders.keys(); }

    // --- networks
    OssShaderNetwork *currentShaderNetwork() const { return m_currentNetwork; }
    void setCurrentShaderNetwork(OssShaderNetwork *network);
    OssShaderNetwork *currentViewNetwork() const { return m_currentViewNetwork; }
    void setCurrentViewNetwork(OssShaderNetwork *network);
    OssShaderNetwork *getShaderNetwork(OssShadingGroup *shadingGroup) const;
    // Announces a network that joined the open project.
    void addShaderNetwork(OssShaderNetwork *network);
    // Recompiles a network: counts the compilations (the paint engine would rebuild shaders).
    void refreshGraph(OssShaderNetwork *network);
    int refreshCount(OssShaderNetwork *network) const { return m_refreshCounts.value(network); }

    OssSnBaseNode *currentViewerNode() const { return m_currentViewer; }
    void setCurrentViewerNode(OssSnBaseNode *node);

    // Global context-menu actions are QActions. The manager keeps them as QObjects, so that the
    // model needs no QtWidgets; the typed list is made where QAction is known (the menu that
    // shows them).
    void registerGlobalContextMenuAction(QObject *action);
    template <typename Action = QAction> QList<Action *> globalContextMenuActions() const
    {
        QList<Action *> actions;
        for (QObject *object : globalContextMenuObjects())
            if (auto *action = qobject_cast<Action *>(object))
                actions.append(action);
        return actions;
    }
    QList<QObject *> globalContextMenuObjects() const;

    bool attributeSmartLinkingEnabled() const { return m_smartLinking; }
    void setAttributeSmartLinkingEnabled(bool enabled) { m_smartLinking = enabled; }

    // Brings a node up to the installed definition of its version UUID: adds missing inputs,
    // outputs and attributes, keeps values and connections, and records the present hash.
    // An attribute the node holds only as a plain user attribute (an old backdrop's title and
    // colour) becomes one of its attributes with its value kept, not the type's default, so
    // that an upgraded backdrop looks as it was saved.
    bool upgradeNode(OssSnBaseNode *node);
    // Upgrades every node of every known network; the count of upgraded nodes.
    int upgradeNetworks(const QList<OssShaderNetwork *> &networks);
    // Replaces a node by a new node of another type, keeping name, matching connections and
    // matching attribute values (one undo step). The new node, or null.
    OssSnBaseNode *convertNodeToKeyPath(OssSnBaseNode *node, const QString &pathKey);
    // Knobs that pasted or imported nodes ask for are created at once; nothing is delayed.
    void createDelayedKnobs(const QList<OssSnBaseNode *> &nodes);

    void emitNodeGraphIsManuallyChanged();
    int manualChangeCount() const { return m_manualChanges; }

    // --- requests views serve
    void requestFocusOnNode(OssSnBaseNode *node) { emit focusOnNodeRequest(node); }
    void setDebugNodes(const OssDebugNodeColours &nodes, const OssDebugInputColours &inputs);

    // Used by networks.
    void registerNode(OssShaderNetwork *network, OssSnBaseNode *node);
    void deregisterNode(OssShaderNetwork *network, OssSnBaseNode *node);
    void networkLoaded(OssShaderNetwork *network);

signals:
    void currentShaderNetworkChanged(OssShaderNetwork *network);
    void shaderNetworkAdded(OssShaderNetwork *network);
    void focusOnNodeRequest(OssSnBaseNode *node);
    void matchNodePositionRequest(OssSnBaseNode *from, OssSnBaseNode *to);
    void afterShaderNetworkEndCollection(OssShaderNetwork *network);
    void showNodePropertiesAtPositionEndRequest(OssSnBaseNode *node, OssSnBaseNode *target,
                                                bool undo);
    void showNodePropertiesAtPositionBeginRequest(OssSnBaseNode *node, OssSnBaseNode *target,
                                                  bool undo);
    void showNodePropertiesRequest(OssSnBaseNode *node);
    void beautifyNodesLayout(OssShaderNetwork *network);
    void beautifyNodesLayout(OssShaderNetwork *network, OssSnBaseNode *node);
    void beautifyNodesLayout(OssShaderNetwork *network, QList<OssSnBaseNode *> nodes);
    void nodeRegistered(OssShaderNetwork *network, OssSnBaseNode *node);
    void nodeDeregistered(OssShaderNetwork *network, OssSnBaseNode *node);
    void reorderGroupInputsByPosRequested(OssSnGroupNode *group);
    void reorderGroupOutputsByPosRequested(OssSnGroupNode *group);
    void arrangeGroupInputNodesByOrderRequested(OssShaderNetwork *network, QStringList order);
    void debugNodesChanged(OssDebugNodeColours newNodes, OssDebugInputColours newInputs,
                           OssDebugNodeColours oldNodes, OssDebugInputColours oldInputs);
    void registeredNodePopulationChanged();

    void nodeGraphIsManuallyChanged();
    void currentViewNetworkChanged(OssShaderNetwork *network);
    void currentViewerNodeChanged(OssSnBaseNode *node);
    void graphRefreshed(OssShaderNetwork *network);

private:
    explicit OssShaderNetworkManager(QObject *parent = nullptr);
    void populateGroup(OssSnGroupNode *group);

    QMap<QString, QPointer<OssShaderNetworkContextLoader>> m_loaders;
    QPointer<OssShaderNetwork> m_currentNetwork;
    QPointer<OssShaderNetwork> m_currentViewNetwork;
    QPointer<OssSnBaseNode> m_currentViewer;
    QList<QPointer<QObject>> m_globalActions;
    QHash<OssShaderNetwork *, int> m_refreshCounts;
    OssDebugNodeColours m_debugNodes;
    OssDebugInputColours m_debugInputs;
    bool m_smartLinking = false;
    int m_manualChanges = 0;
};
