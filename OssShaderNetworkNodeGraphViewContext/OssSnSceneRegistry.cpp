#include "OssSnSceneRegistry.h"

#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssNgEdge.h>
#include <OssNgView.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGraphicsScene>
#include <QTimer>

OssSnSceneRegistry::OssSnSceneRegistry(QObject *parent) : QObject(parent) {}

OssSnSceneRegistry::~OssSnSceneRegistry()
{
    // Scenes go with their networks and projects; only the tables are released here.
    m_scenes.clear();
    m_groupNodes.clear();
    m_viewRects.clear();
}

QGraphicsScene *OssSnSceneRegistry::sceneForNetwork(OssShaderNetwork *network)
{
    if (!network)
        return nullptr;
    if (QGraphicsScene *scene = m_scenes.value(network))
        return scene;
    auto *scene = new QGraphicsScene;
    // Filled without a spatial index (a network being loaded puts thousands of nodes at one
    // spot first, which a tree index handles in quadratic time); the view that shows the scene
    // turns the index on.
    scene->setItemIndexMethod(QGraphicsScene::NoIndex);
    connect(network, &QObject::destroyed, this, &OssSnSceneRegistry::onShaderNetworkDestroyed);
    m_scenes.insert(network, scene);
    return scene;
}

void OssSnSceneRegistry::registerGroupNetwork(OssShaderNetwork *network, OssSnGroupNode *group)
{
    m_groupNodes.insert(network, group);
}

OssSnGroupNode *OssSnSceneRegistry::groupNodeOfNetwork(OssShaderNetwork *network) const
{
    return m_groupNodes.value(network).data();
}

void OssSnSceneRegistry::showNetworkInView(OssShaderNetwork *network, OssShaderNetworkView *view)
{
    if (!view)
        return;
    if (OssShaderNetwork *shown = view->network())
        m_viewRects.insert(shown, view->viewportInSceneCoords());
    view->setNetwork(network);
    view->setScene(sceneForNetwork(network));
    view->init();
    if (!network)
        return;
    if (m_viewRects.contains(network)) {
        view->showSceneRect(m_viewRects.value(network));
        return;
    }
    view->frameNodes(true);
    m_viewRects.insert(network, view->viewportInSceneCoords());
    connect(network, &QObject::destroyed, this, &OssSnSceneRegistry::onNetworkDestroyed,
            Qt::UniqueConnection);
}

void OssSnSceneRegistry::onNodeRegistered(OssShaderNetwork *Network, OssSnBaseNode *Node)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    if (!Node) {
        OSS_DEBUG("Node is NULL");
        return;
    }
    QGraphicsScene *scene = sceneForNetwork(Network);
    if (!scene) {
        OSS_DEBUG("Scene is NULL");
        return;
    }
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(Node);
    if (!gui)
        return;
    if (gui->scene() != scene)
        scene->addItem(gui);
    for (OssNgEdge *edge : gui->inputs() + gui->outputs())
        if (edge->scene() != scene)
            scene->addItem(edge);
    // The scene polishes its new items when the event loop turns; from then on there is nothing
    // to flush for it.
    if (m_scenesWithNewItems.isEmpty())
        QTimer::singleShot(0, this, [this] { m_scenesWithNewItems.clear(); });
    m_scenesWithNewItems.insert(scene);
}

void OssSnSceneRegistry::onNodeDeregistered(OssShaderNetwork *Network, OssSnBaseNode *Node)
{
    if (!Network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    if (!Node) {
        OSS_DEBUG("Node is NULL");
        return;
    }
    // The host announced the removal to the node's own listeners already; of the plug-in's
    // other objects only the removed group's own context has something to do: its tab goes.
    if (auto *group =
            qobject_cast<OssSnGroupNodeGraphViewContext *>(OssSnNodeGraphViewContext::of(Node)))
        group->hideGroupNodeTab(Network, Node);
    QGraphicsScene *scene = m_scenes.value(Network);
    if (m_scenes.isEmpty() || !scene)
        return;
    OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(Node);
    if (!gui)
        return;
    flushPendingPolish(scene);
    noteRemoval(scene);
    // Removed, not deleted: the view context owns them.
    if (gui->scene() == scene)
        scene->removeItem(gui);
    for (OssNgEdge *edge : gui->inputs() + gui->outputs())
        if (edge->scene() == scene)
            scene->removeItem(edge);
    gui->removeTemporaryOutputEdge();
    gui->removeVirtualInputEdge();
}

bool OssSnSceneRegistry::belongsTo(const OssShaderNetwork *network,
                                   const QList<OssShaderNetwork *> &rootNetworks)
{
    return network && rootNetworks.contains(network->rootNetwork());
}

void OssSnSceneRegistry::releaseProject(const QList<OssShaderNetwork *> &rootNetworks)
{
    // GUI nodes belong to their view contexts, which go with the project: they leave the scenes
    // before the scenes are deleted.
    QList<QGraphicsScene *> released;
    for (auto it = m_scenes.begin(); it != m_scenes.end();) {
        if (belongsTo(it.key(), rootNetworks)) {
            released.append(it.value());
            it = m_scenes.erase(it);
        } else {
            ++it;
        }
    }
    for (QGraphicsScene *scene : qAsConst(released))
        releaseGuiNodes(scene);
    qDeleteAll(released);
    for (auto it = m_groupNodes.begin(); it != m_groupNodes.end();) {
        if (!it.value() || belongsTo(it.key(), rootNetworks))
            it = m_groupNodes.erase(it);
        else
            ++it;
    }
}

void OssSnSceneRegistry::onShaderNetworkDestroyed(QObject *Obj)
{
    QGraphicsScene *scene = nullptr;
    for (auto it = m_scenes.begin(); it != m_scenes.end(); ++it)
        if (static_cast<QObject *>(it.key()) == Obj) {
            scene = it.value();
            m_scenes.erase(it);
            break;
        }
    // A network without a scene never had a node, or its scene went with its project.
    if (!scene)
        return;
    releaseGuiNodes(scene);
    delete scene;
}

void OssSnSceneRegistry::onNetworkDestroyed(QObject *Obj)
{
    for (auto it = m_viewRects.begin(); it != m_viewRects.end();) {
        if (static_cast<QObject *>(it.key()) == Obj)
            it = m_viewRects.erase(it);
        else
            ++it;
    }
}

void OssSnSceneRegistry::releaseGuiNodes(QGraphicsScene *scene)
{
    flushPendingPolish(scene);
    // Without an index, taking items out is cheap when it goes from the bottom of the stacking
    // order up: the scene finds each item at the front of its list instead of searching the
    // whole list for it.
    scene->setItemIndexMethod(QGraphicsScene::NoIndex);
    m_removalsThisTurn.remove(scene);
    m_unindexedForBulkRemoval.removeAll(scene);
    for (QGraphicsItem *item : scene->items(Qt::AscendingOrder))
        if (OssNgNode *node = OssNgNode::fromItem(item))
            if (qobject_cast<OssSnBaseNode *>(node->parent()))
                scene->removeItem(node);
}

void OssSnSceneRegistry::noteRemoval(QGraphicsScene *scene)
{
    // A spatial index pays for each removal in every cell the item covered, and long edges cover
    // many: removing thousands of nodes (deleting a big selection, undoing a paste) took seconds.
    // From the BulkRemovals-th removal in one turn of the event loop on, the scene goes without
    // an index; the index is rebuilt once, when the loop turns again.
    constexpr int BulkRemovals = 64;
    if (m_removalsThisTurn.isEmpty())
        QTimer::singleShot(0, this, &OssSnSceneRegistry::endBulkRemovals);
    int &count = m_removalsThisTurn[scene];
    if (++count == BulkRemovals && scene->itemIndexMethod() == QGraphicsScene::BspTreeIndex) {
        scene->setItemIndexMethod(QGraphicsScene::NoIndex);
        m_unindexedForBulkRemoval.append(scene);
    }
}

void OssSnSceneRegistry::endBulkRemovals()
{
    m_removalsThisTurn.clear();
    for (const QPointer<QGraphicsScene> &scene : qAsConst(m_unindexedForBulkRemoval))
        if (scene)
            OssNgView::useSpatialIndex(scene);
    m_unindexedForBulkRemoval.clear();
}

void OssSnSceneRegistry::flushPendingPolish(QGraphicsScene *scene)
{
    // A scene keeps the items added since its last turn of the event loop in a list it searches
    // on every removal. Removing many of them before the loop turns (undo of a removal, then
    // redo, in one go) would search that list once per item: the scene's queued call that
    // empties the list is delivered first.
    // Only the polish is run: the scene's other queued calls (its change notifications) would
    // repaint the views in the middle of the removal.
    if (m_scenesWithNewItems.remove(scene))
        QMetaObject::invokeMethod(scene, "_q_polishItems");
}
