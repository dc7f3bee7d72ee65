#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QSet>

class OssShaderNetwork;
class OssShaderNetworkView;
class OssSnBaseNode;
class OssSnGroupNode;
class QGraphicsScene;

// The scene of each shader network, made on first need and deleted with its network or the
// project, with the GUI items of registered nodes put into it and taken out again; the part of
// each network the root view showed last; and the group node of each group network.
class OssSnSceneRegistry : public QObject
{
    Q_OBJECT
public:
    explicit OssSnSceneRegistry(QObject *parent = nullptr);
    ~OssSnSceneRegistry() override;

    // The scene of a network, made on first need; null for a null network.
    QGraphicsScene *sceneForNetwork(OssShaderNetwork *network);
    // The scene of a network if it has one.
    QGraphicsScene *scene(OssShaderNetwork *network) const { return m_scenes.value(network); }
    bool hasScene(OssShaderNetwork *network) const { return m_scenes.contains(network); }
    int sceneCount() const { return m_scenes.size(); }

    void registerGroupNetwork(OssShaderNetwork *network, OssSnGroupNode *group);
    OssSnGroupNode *groupNodeOfNetwork(OssShaderNetwork *network) const;

    QRectF viewRect(OssShaderNetwork *network) const { return m_viewRects.value(network); }
    // Binds a view to a network, restoring the part of the graph it showed last time.
    void showNetworkInView(OssShaderNetwork *network, OssShaderNetworkView *view);

    // A node's GUI items go into the scene of its network, and out of it again.
    void onNodeRegistered(OssShaderNetwork *Network, OssSnBaseNode *Node);
    void onNodeDeregistered(OssShaderNetwork *Network, OssSnBaseNode *Node);
    // A project closes: the scenes of its networks (root networks and the group networks inside
    // them) go, the GUI nodes (owned by their view contexts) taken out first, and its group
    // networks are forgotten. Scenes of other networks stay: a project being opened has its
    // nodes registered before the one it replaces is closed.
    void releaseProject(const QList<OssShaderNetwork *> &rootNetworks);
    // Whether a network is one of these root networks or inside one of them.
    static bool belongsTo(const OssShaderNetwork *network,
                          const QList<OssShaderNetwork *> &rootNetworks);
    // A network went: its scene goes with it.
    void onShaderNetworkDestroyed(QObject *Obj);
    // A network went: its remembered view rectangle goes with it.
    void onNetworkDestroyed(QObject *Obj);

private:
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
};
