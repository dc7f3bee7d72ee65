// The right-click menu of OssShaderNetworkView: the host's "Context"/"NodeGraph" menu, a "Nodes"
// submenu of node-creation actions, the shader network manager's global context actions and the
// node-graph actions whose state follows the selection.

#include "OssShaderNetworkView.h"

#include <OssActionTreeManager.h>
#include <OssDebug.h>
#include <OssMenuManager.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnGroupNode.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QGraphicsScene>
#include <QHash>

#include <algorithm>

namespace {

const char *const CreateFolder = "/Ossa/NodeGraph/Create/";

// Menu paths of node types reached from other places than the node graph's menu.
bool keptOutOfNodesMenu(const QString &menuPath)
{
    static const char *const excluded[] = {"Shader Network/", "Shaders/", "Lighting/"};
    for (const char *prefix : excluded)
        if (menuPath.startsWith(QLatin1String(prefix)))
            return true;
    // A part starting with "_" marks a hidden type.
    const QStringList parts = menuPath.split(QLatin1Char('/'));
    return std::any_of(parts.cbegin(), parts.cend(),
                       [](const QString &part) { return part.startsWith(QLatin1Char('_')); });
}

} // namespace

bool OssShaderNetworkView::canExposeProperties(const OssSnBaseNode *node)
{
    if (!node)
        return false;
    for (const char *tag : {"_input", "_output", "_viewer", "_bottomTransparency", "_shaderInput"})
        if (node->hasTag(QLatin1String(tag)))
            return false;
    const QString version = node->versionUUID();
    if (version == QLatin1String("OSS_Misc_Set_Unlit") ||
        version == QLatin1String("OSS_Misc_Set_Vector"))
        return false;
    // A node without a version identifier is no described node type; of those only groups have
    // properties of their own to offer.
    if (version.isEmpty() && !node->hasTag(QStringLiteral("_group")))
        return false;
    // Exposing makes a knob of the enclosing group for each user attribute: without any there is
    // nothing to expose.
    return node->userAttributesExist();
}

void OssShaderNetworkView::fillNodesMenu(QMenu *nodesMenu)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    QList<QPair<QString, QString>> entries; // menu path, path key
    for (const QString &key : networks->nodeGraphPathKeys())
        entries.append({networks->nodeMenuPath(key), key});
    std::stable_sort(entries.begin(), entries.end(),
                     [](const QPair<QString, QString> &a, const QPair<QString, QString> &b) {
                         return a.first < b.first;
                     });

    QHash<QString, QMenu *> submenus; // by the joined parts leading to them
    for (const auto &entry : qAsConst(entries)) {
        const QString &menuPath = entry.first;
        if (keptOutOfNodesMenu(menuPath))
            continue;
        const QStringList parts = menuPath.split(QLatin1Char('/'));
        QMenu *menu = nodesMenu;
        QString chain;
        for (int i = 0; i < parts.size() - 1; ++i) {
            chain += parts.at(i) + QLatin1Char('/');
            QMenu *&submenu = submenus[chain];
            if (!submenu)
                submenu = menu->addMenu(parts.at(i));
            menu = submenu;
        }
        if (QAction *action = tree->findAction(QLatin1String(CreateFolder) + entry.second))
            menu->addAction(action);
    }
}

OssMenu *OssShaderNetworkView::makeContextMenu()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return nullptr;
    }
    OssMenu *menu = OssMenuManager::instance()->makeMenu(QStringLiteral("Context"),
                                                         QStringLiteral("NodeGraph"), this);
    if (!menu) {
        OSS_DEBUG("Menu is NULL");
        return nullptr;
    }
    menu->setShortcutGroup(QStringLiteral("Node Graph"));

    auto *nodes = new OssMenu(tr("Nodes"), menu);
    fillNodesMenu(nodes);
    menu->addMenu(nodes);

    const QList<QAction *> global = OssShaderNetworkManager::instance()->globalContextMenuActions();
    if (!global.isEmpty()) {
        menu->addSeparator();
        for (QAction *action : global)
            menu->addAction(action);
        menu->addSeparator();
    }

    const QList<QGraphicsItem *> selected = scene()->selectedItems();
    const int count = selected.size();
    OssSnBaseNode *first = nullptr;
    if (!selected.isEmpty())
        if (OssNgNode *gui = OssNgNode::fromItem(selected.first()))
            first = qobject_cast<OssSnBaseNode *>(gui->parent());

    OssActionTreeManager *tree = OssActionTreeManager::instance();
    // The menu manager's definition places these two; only their state is set here.
    if (QAction *knobs = tree->findAction(QStringLiteral("/Ossa/NodeGraph/Manage User Knobs")))
        knobs->setEnabled(count == 1 && qobject_cast<OssSnGroupNode *>(first));
    if (QAction *expose =
            tree->findAction(QStringLiteral("/Ossa/NodeGraph/Expose Node Properties"))) {
        const bool insideGroup =
            first && first->network() && qobject_cast<OssSnGroupNode *>(first->network()->parent());
        expose->setEnabled(count == 1 && insideGroup && canExposeProperties(first));
    }
    for (const char *path :
         {"/Ossa/NodeGraph/Dump Selected Node Info", "/Ossa/NodeGraph/Upgrade Selected Node Info",
          "/Ossa/NodeGraph/Upgrade All Node Info"})
        if (QAction *action = tree->findAction(QLatin1String(path)))
            menu->addAction(action);
    return menu;
}

void OssShaderNetworkView::contextMenuEvent(QContextMenuEvent *event)
{
    OssMenu *menu = makeContextMenu();
    if (!menu)
        return;
    menu->exec(event->globalPos());
    // The "Nodes" submenu is the menu's child and goes with it.
    delete menu;
    // The group actions' state was for this menu: their commands refuse what they cannot do,
    // and the menu bar and the keys offer them whatever the selection.
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    for (const char *path :
         {"/Ossa/NodeGraph/Manage User Knobs", "/Ossa/NodeGraph/Expose Node Properties"})
        if (QAction *action = tree->findAction(QLatin1String(path)))
            action->setEnabled(true);
}
