#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QHash>
#include <QList>
#include <QPointer>
#include <QVector>

#include "OssSnBaseNode.h"

class OssEntity;
class OssSnGroupNode;
class OssShadingGroup;

// What taking a node out of its network changed besides the node list, so that putting it back
// restores the same graph: its place in the list, the group port it mirrored and whether it was
// the current viewer.
struct OssSnTakenNode
{
    int index = -1;
    OssSnTakenPort groupPort;
    bool wasCurrentViewer = false;
};

// A shader network: a root network of a shading group, or the subnetwork of a group node (then
// its parent object is the group node). Owns its nodes.
class OSSCOREMODULES_EXPORT OssShaderNetwork : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(int viewerNodeCurrentEdge READ viewerNodeCurrentEdge WRITE setViewerEdgeDirect)
public:
    explicit OssShaderNetwork(const QString &name = QString(), QObject *parent = nullptr);
    ~OssShaderNetwork() override;

    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    // "/<root name>" for a root network; a subnetwork's path is its group node's path.
    QString path() const;

    // Own nodes (not those inside groups), in insertion order.
    QList<OssSnBaseNode *> nodes() const { return m_nodes; }
    // Own nodes and, depth first, those inside groups.
    QList<OssSnBaseNode *> getAllNodes() const;
    OssSnBaseNode *node(const QString &name) const { return m_byName.value(name); }
    bool containsNode(const OssSnBaseNode *node) const;
    int nodeCount() const { return m_nodes.size(); }
    QList<OssSnBaseNode *> selectedNodes() const;
    void clearSelection();

    OssShaderNetwork *rootNetwork() const;
    OssSnGroupNode *parentGroupNode() const;
    bool isRoot() const { return parentGroupNode() == nullptr; }
    OssShadingGroup *shadingGroup() const;
    OssEntity *geoEntity() const;

    // Viewer current edge (kept by the root network).
    int viewerNodeCurrentEdge() const;
    void setViewerNodeCurrentEdge(int edge, bool undoable = true);
    void setViewerEdgeDirect(int edge);
    OssSnBaseNode *viewerNode() const;
    // Moves the root's current viewer into this network and returns it (null when none).
    OssSnBaseNode *moveCurrentViewerNodeToNetwork();

    // Limits saving to these nodes and the connections between them (empty: all nodes).
    void setSaveSubset(const QList<OssSnBaseNode *> &nodes) { m_saveSubset = nodes; }

    // A scratch network (import staging) does not tell the manager about its nodes.
    void setAnnounceNodes(bool announce) { m_announceNodes = announce; }

    bool allowViewUpdate() const { return m_allowViewUpdate; }
    void setAllowViewUpdate(bool allow);

    // A name not used by any node of this network: Base itself, or Base followed by the
    // smallest free number (trailing digits of Base are dropped first).
    QString generateUniqueNodeName(const QString &base) const;

    // Creates Count nodes of a path key (one undo step each, in the open macro if any). Empty
    // and a logged reason for an unknown key.
    QList<OssSnBaseNode *> createNodes(const QString &pathKey, int count = 1, bool undoable = true,
                                       const QString &name = QString());
    QList<OssSnBaseNode *> createNodesFromNodePathKey(const QString &pathKey, bool undoable = true);
    OssSnBaseNode *createNode(const QString &pathKey, const QString &name = QString(),
                              bool undoable = true);
    // A paint node for a channel ("Misc/Channel Input" unless another paintable key is given).
    OssSnBaseNode *createPaintableNode(const QString &channelName = QString(),
                                       const QString &pathKey = QString(), bool undoable = true);
    // A multi-channel merge whose base input is fed by Source's preferred output.
    OssSnBaseNode *createMultiChannelMergeNode(OssSnBaseNode *source, bool undoable = true);

    // Inserts an already made node (name made unique); used by creation, paste and import.
    bool insertNode(OssSnBaseNode *node, bool undoable = true);
    bool removeNode(OssSnBaseNode *node, bool undoable = true, bool notify = true);
    void removeNodes(const QList<OssSnBaseNode *> &nodes, bool undoable = true);
    // Takes nodes out of their streams: each node's preferred input source feeds whatever its
    // outputs fed, and the node keeps no connections.
    void extractNodes(const QList<OssSnBaseNode *> &nodes, bool undoable = true);

    // Used by undo steps: add or take a node without history. In a group's network, a group
    // input or output node adds and takes the group port it mirrors along with it.
    void addNodeDirect(OssSnBaseNode *node, int index = -1);
    OssSnTakenNode takeNodeDirect(OssSnBaseNode *node);
    // Puts a taken node back as it was (place, mirrored group port, current viewer).
    void restoreNodeDirect(OssSnBaseNode *node, const OssSnTakenNode &taken);
    // Called by a node whose name changed.
    void nodeRenamed(OssSnBaseNode *node, const QString &oldName);

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;
    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const OssStringMap &attributes) override;
    void onLoadCollectionObject(const QString &name, const QString &type,
                                const QString &elementType, int index,
                                const OssStringMap &attributes) override;
    void onLoadFinished() override;
    // A canonical text of the whole network (nodes by name with class, type, state, ports,
    // connections, user attributes and group contents), for comparing networks.
    QString dump() const;

    // Problems met while loading (unknown node types, bad connections), for the caller's log.
    QStringList loadWarnings() const { return m_loadWarnings; }

signals:
    void nodeAdded(OssSnBaseNode *node);
    void nodeRemoved(OssSnBaseNode *node);
    void nodeSelectionChanged();
    void allowViewUpdateChanged(bool allow);
    void viewerNodeCurrentEdgeChanged(int edge);

private:
    struct PendingConnection
    {
        QString target, input, source, output;
    };
    void onNodeSelectedChanged();
    void releaseName(const QString &name);
    void insertDirect(OssSnBaseNode *node, int index, const OssSnTakenPort *groupPort);

    QString m_name;
    QList<OssSnBaseNode *> m_nodes;
    QHash<QString, OssSnBaseNode *> m_byName;
    mutable QHash<QString, int> m_suffixHints;
    bool m_allowViewUpdate = true;
    bool m_announceNodes = true;
    QList<OssSnBaseNode *> m_saveSubset;
    int m_viewerEdge = 0;
    QVector<OssSnBaseNode *> m_loadingNodes;
    // Loaded nodes whose path key named no installed type, with the reason.
    QHash<OssSnBaseNode *, QString> m_untypedNodes;
    QVector<PendingConnection> m_loadingConnections;
    QStringList m_loadWarnings;
};
Q_DECLARE_METATYPE(OssShaderNetwork *)
