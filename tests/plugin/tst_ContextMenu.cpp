#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssCustomAttribute.h>
#include <OssMenuManager.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFile>
#include <QGraphicsScene>
#include <QMenu>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

const QString Folder = QStringLiteral("/Ossa/NodeGraph/");

// The entries of a menu as text, separators as "-", submenus as "Title>".
QStringList entries(const QMenu *menu)
{
    QStringList texts;
    for (QAction *action : menu->actions()) {
        if (action->isSeparator())
            texts << QStringLiteral("-");
        else if (action->menu())
            texts << action->text() + QLatin1Char('>');
        else
            texts << action->text();
    }
    return texts;
}

QMenu *submenu(const QMenu *menu, const QString &title)
{
    for (QAction *action : menu->actions())
        if (action->menu() && action->text() == title)
            return action->menu();
    return nullptr;
}

} // namespace

// The view's right-click menu: the host's "Context"/"NodeGraph" menu, the "Nodes" submenu, the
// global actions and the actions whose state follows the selection.
class tst_ContextMenu : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    // Stand-ins for the host's own node information actions, which the menu appends when present.
    QList<QAction *> m_hostActions;

    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    QAction *treeAction(const QString &text)
    {
        return OssActionTreeManager::instance()->findAction(Folder + text);
    }
    // The tree's action at that path; one is filed for the test when nobody made it.
    QAction *ensureAction(const QString &text)
    {
        if (QAction *found = treeAction(text))
            return found;
        auto *action = new QAction(text, this);
        OssActionTreeManager::instance()->registerAction(Folder, action);
        return action;
    }
    std::unique_ptr<OssMenu> menu() { return std::unique_ptr<OssMenu>(view()->makeContextMenu()); }
    OssSnBaseNode *node(const char *name) { return m_network->node(QString::fromLatin1(name)); }
    // A node without attributes has nothing to expose.
    static void clearAttributes(OssSnBaseNode *node)
    {
        for (const OssCustomAttribute &attribute : node->userAttributes())
            node->removeUserAttribute(attribute.name(), false);
        QVERIFY(!node->userAttributesExist());
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(false);
        for (const char *text :
             {"Dump Selected Node Info", "Upgrade Selected Node Info", "Upgrade All Node Info"})
            m_hostActions << ensureAction(QString::fromLatin1(text));
        ensureAction(QStringLiteral("Manage User Knobs"));
        ensureAction(QStringLiteral("Expose Node Properties"));
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY(m_host.createNodes(
            m_network, {{"Filter/Blur", "A"}, {"Filter/Blur", "B"}, {"Misc/Group", "G"}}));
        m_network->clearSelection();
        OssUndoManager::instance()->clear();
        m_host.clearLines();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    // The host's menu comes first, then "Nodes", the global actions between separators, and the
    // three node information actions at the end.
    void menuIsBuiltInOrder()
    {
        auto built = menu();
        QVERIFY(built);
        QCOMPARE(built->shortcutGroup(), QStringLiteral("Node Graph"));
        const QStringList texts = entries(built.get());
        // What an artist looks for in the host's part, in its order.
        const QStringList editing{"Cut",         "Copy",    "Paste",  "Duplicate", "Delete",
                                  "Rename Node", "Disable", "Bypass", "Extract"};
        int at = -1;
        for (const QString &text : editing) {
            const int found = texts.indexOf(text);
            QVERIFY2(found > at, qPrintable(text));
            at = found;
        }
        const int nodes = texts.indexOf(QStringLiteral("Nodes>"));
        QVERIFY(nodes > at);
        QVERIFY(texts.contains(QStringLiteral("Select>")));
        QVERIFY(texts.contains(QStringLiteral("Group>")));
        // The manager's Autoplace is a global action: offered once, after "Nodes".
        QCOMPARE(texts.count(QStringLiteral("Autoplace")), 1);
        const QList<QAction *> global =
            OssShaderNetworkManager::instance()->globalContextMenuActions();
        QVERIFY(!global.isEmpty());
        const QList<QAction *> actions = built->actions();
        const int first = actions.indexOf(global.first());
        QCOMPARE(first, nodes + 2);
        QVERIFY(actions.at(first - 1)->isSeparator());
        QVERIFY(actions.at(first + global.size())->isSeparator());
        QCOMPARE(actions.mid(actions.size() - 3), m_hostActions);
        // The menu's actions are the tree's: the same objects the keys and the menu bar use.
        QCOMPARE(actions.at(texts.indexOf(QStringLiteral("Delete"))),
                 treeAction(QStringLiteral("Delete")));
    }

    void nodesSubmenuFollowsTheMenuPaths()
    {
        auto built = menu();
        QVERIFY(built);
        QMenu *nodes = submenu(built.get(), QStringLiteral("Nodes"));
        QVERIFY(nodes);
        const QStringList top = entries(nodes);
        // Ascending menu paths; types reached elsewhere and hidden ones stay out.
        QCOMPARE(top, (QStringList{"Adjust>", "Environment>", "Filter>", "Layer>", "Mask>", "Math>",
                                   "Misc>", "Procedural>", "Teleport Broadcast>",
                                   "Teleport Receiver>"}));
        QMenu *procedural = submenu(nodes, QStringLiteral("Procedural"));
        QVERIFY(procedural);
        QCOMPARE(entries(procedural),
                 (QStringList{"Constant>", "Gradient>", "Noise>", "Pattern>"}));
        QMenu *noise = submenu(procedural, QStringLiteral("Noise"));
        QCOMPARE(entries(noise),
                 (QStringList{"Cellular", "Fractal", "Grunge", "Perlin", "Scratches"}));
        // Each entry is the creation action of its type, and creates it.
        QAction *perlin = noise->actions().at(3);
        QCOMPARE(perlin, OssActionTreeManager::instance()->findAction(
                             QStringLiteral("/Ossa/NodeGraph/Create/Procedural/Noise/Perlin")));
        const int before = m_network->nodes().size();
        perlin->trigger();
        QCOMPARE(m_network->nodes().size(), before + 1);
        QCOMPARE(m_network->nodes().last()->pathKey(), QStringLiteral("Procedural/Noise/Perlin"));
    }

    void selectionSetsTheGroupActions_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<bool>("knobs");
        QTest::addColumn<bool>("expose");
        QTest::newRow("nothing") << QStringList{} << false << false;
        QTest::newRow("one blur") << QStringList{"A"} << false << false;
        QTest::newRow("one group") << QStringList{"G"} << true << false;
        QTest::newRow("two nodes") << QStringList{"A", "G"} << false << false;
        QTest::newRow("inside, with knobs") << QStringList{"G/Inner"} << false << true;
        QTest::newRow("inside, two nodes") << QStringList{"G/Inner", "G/Other"} << false << false;
        QTest::newRow("inside, no knobs") << QStringList{"G/Other"} << false << false;
    }

    void selectionSetsTheGroupActions()
    {
        QFETCH(QStringList, selected);
        QFETCH(bool, knobs);
        QFETCH(bool, expose);
        auto *group = qobject_cast<OssSnGroupNode *>(node("G"));
        QVERIFY(group);
        OssShaderNetwork *inner = group->groupNetwork();
        QVERIFY(m_host.createNodes(inner, {{"Filter/Blur", "Inner"}, {"Filter/Blur", "Other"}}));
        inner->node(QStringLiteral("Inner"))
            ->setUserAttribute(OssCustomAttribute(QStringLiteral("Amount"), 0.5));
        clearAttributes(inner->node(QStringLiteral("Other")));
        const bool inside = !selected.isEmpty() && selected.first().startsWith(QLatin1String("G/"));
        if (inside) {
            // The group's tab becomes the current view.
            m_network->clearSelection();
            group->setSelected(true);
            view()->openGroupNodeSubgraph();
        }
        QCOMPARE(view()->network(), inside ? inner : m_network);
        view()->network()->clearSelection();
        for (const QString &name : selected)
            view()->network()->node(name.section(QLatin1Char('/'), -1))->setSelected(true);
        QCOMPARE(view()->scene()->selectedItems().size(), selected.size());
        auto built = menu();
        QVERIFY(built);
        QCOMPARE(treeAction(QStringLiteral("Manage User Knobs"))->isEnabled(), knobs);
        QCOMPARE(treeAction(QStringLiteral("Expose Node Properties"))->isEnabled(), expose);
    }

    void exposureTest_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("knobs");
        QTest::addColumn<bool>("offered");
        QTest::newRow("plain with knobs") << ""
                                          << "OSS_Filter_Blur" << true << true;
        QTest::newRow("plain without knobs") << ""
                                             << "OSS_Filter_Blur" << false << false;
        for (const char *tag :
             {"_input", "_output", "_viewer", "_bottomTransparency", "_shaderInput"})
            QTest::newRow(tag) << tag << "OSS_Filter_Blur" << true << false;
        QTest::newRow("set unlit") << ""
                                   << "OSS_Misc_Set_Unlit" << true << false;
        QTest::newRow("set vector") << ""
                                    << "OSS_Misc_Set_Vector" << true << false;
        QTest::newRow("no version, group") << "_group"
                                           << "" << true << true;
        QTest::newRow("no version, group without knobs") << "_group"
                                                         << "" << false << false;
        QTest::newRow("no version, no group") << ""
                                              << "" << true << false;
    }

    void exposureTest()
    {
        QFETCH(QString, tag);
        QFETCH(QString, version);
        QFETCH(bool, knobs);
        QFETCH(bool, offered);
        OssSnBaseNode *subject = node("A");
        if (!tag.isEmpty())
            subject->addTag(tag);
        subject->setVersionUUID(version);
        clearAttributes(subject);
        if (knobs)
            subject->setUserAttribute(OssCustomAttribute(QStringLiteral("Knob"), 1));
        QCOMPARE(OssShaderNetworkView::canExposeProperties(subject), offered);
        QVERIFY(!OssShaderNetworkView::canExposeProperties(nullptr));
    }

    // A right-click on the view opens the menu; picking "Delete" deletes the selected node as one
    // undo step.
    void rightClickAndPickDelete()
    {
        node("A")->setSelected(true);
        OssShaderNetworkView *graph = view();
        graph->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(graph->window()));
        QStringList shown;
        bool picked = false;
        bool knobsWhileOpen = true;
        QTimer::singleShot(0, this, [&] {
            auto *open = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!open)
                return;
            shown = entries(open);
            // Set for this menu: one blur selected.
            knobsWhileOpen = treeAction(QStringLiteral("Manage User Knobs"))->isEnabled();
            for (QAction *action : open->actions())
                if (action->text() == QLatin1String("Delete")) {
                    open->setActiveAction(action);
                    QTest::keyClick(open, Qt::Key_Return);
                    picked = true;
                    return;
                }
            open->close();
        });
        const QPoint at = graph->mapFromScene(
            OssSnNodeGraphViewContext::guiNodeOf(node("A"))->sceneBoundingRect().center());
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, graph->viewport()->mapToGlobal(at));
        QApplication::sendEvent(graph->viewport(), &event);
        QVERIFY2(picked, qPrintable(shown.join(QLatin1Char('|'))));
        QVERIFY(!node("A"));
        QVERIFY(node("B"));
        QCOMPARE(OssUndoManager::instance()->undoText(), QStringLiteral("Remove Selected Nodes"));
        // The menu is gone with its submenu once it closed.
        QTRY_VERIFY(!QApplication::activePopupWidget());
        QVERIFY(graph->findChildren<QMenu *>().isEmpty());
        // Closed, the menu leaves the group actions to the menu bar and the keys, enabled.
        QVERIFY(!knobsWhileOpen);
        QVERIFY(treeAction(QStringLiteral("Manage User Knobs"))->isEnabled());
        QVERIFY(treeAction(QStringLiteral("Expose Node Properties"))->isEnabled());
    }

    // The host's menus come from its definition file; a submenu none of whose actions exists is
    // left out.
    void theHostsDefinitions()
    {
        OssMenuManager *menus = OssMenuManager::instance();
        QVERIFY(QFile::exists(OssMenuManager::defaultDefinitionsPath()));
        const QStringList definition =
            menus->definition(QStringLiteral("Context"), QStringLiteral("NodeGraph"));
        QVERIFY(definition.contains(QStringLiteral("/Ossa/NodeGraph/Delete")));
        menus->setDefinition(QStringLiteral("Context"), QStringLiteral("Sparse"),
                             {QStringLiteral("Empty>"), QStringLiteral("/Ossa/NodeGraph/Nowhere"),
                              QStringLiteral("Inner>"), QStringLiteral("-"), QStringLiteral(">"),
                              QStringLiteral(">"), QStringLiteral("/Ossa/NodeGraph/Delete")});
        std::unique_ptr<OssMenu> sparse(
            menus->makeMenu(QStringLiteral("Context"), QStringLiteral("Sparse")));
        QVERIFY(sparse);
        QCOMPARE(entries(sparse.get()), QStringList{"Delete"});
        menus->removeDefinition(QStringLiteral("Context"), QStringLiteral("Sparse"));
    }

    void withoutDefinitionOrSceneNoMenu()
    {
        OssMenuManager *menus = OssMenuManager::instance();
        const QStringList kept =
            menus->definition(QStringLiteral("Context"), QStringLiteral("NodeGraph"));
        menus->removeDefinition(QStringLiteral("Context"), QStringLiteral("NodeGraph"));
        QVERIFY(!view()->makeContextMenu());
        QVERIFY(m_host.hasLine(QStringLiteral("Menu is NULL")));
        menus->setDefinition(QStringLiteral("Context"), QStringLiteral("NodeGraph"), kept);

        OssShaderNetworkView bare;
        bare.setScene(nullptr);
        QVERIFY(!bare.makeContextMenu());
        QVERIFY(m_host.hasLine(QStringLiteral("scene() is NULL")));
    }
};

QTEST_MAIN(tst_ContextMenu)
#include "tst_ContextMenu.moc"
