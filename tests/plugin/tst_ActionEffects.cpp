#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssNgEdge.h>
#include <OssNgExtendedNode.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QLineEdit>
#include <QSignalSpy>
#include <QtTest>

#include <functional>

namespace {

const QString Folder = QStringLiteral("/Ossa/NodeGraph/");

// The fixed node-graph actions, in the order the plug-in files them.
const QStringList Catalogue{"Connect Selected Node to Viewer",
                            "Connect Selected Node to Viewer2",
                            "Connect Selected Node to Viewer3",
                            "Connect Selected Node to Viewer4",
                            "Connect Selected Node to Viewer5",
                            "Connect Selected Node to Viewer6",
                            "Connect Selected Node to Viewer7",
                            "Connect Selected Node to Viewer8",
                            "Connect Selected Node to Viewer9",
                            "Connect Selected Node to Viewer0",
                            "Move Viewer to Cursor",
                            "Delete",
                            "Extract",
                            "Remove All Nodes",
                            "Frame Nodes",
                            "Focus Selection",
                            "Disable",
                            "Bypass",
                            "Quick Create",
                            "Duplicate",
                            "Select All",
                            "Cut",
                            "Copy",
                            "Paste",
                            "Search Node",
                            "Create Paint Node",
                            "Bake to Paint Node",
                            "Export to Geo-Channel",
                            "Info Viewer",
                            "Swap Inputs",
                            "Rename Node",
                            "Import Nodes",
                            "Export Nodes",
                            "Import Material",
                            "Import Custom Procedural",
                            "Toggle Port List",
                            "Cycle Port List Mode",
                            "Smart Bake And Update",
                            "Bake Selected",
                            "Update Selected",
                            "Update Upstream",
                            "Update Downstream",
                            "Manage User Knobs",
                            "Expose Node Properties",
                            "Open Group Node Subgraph",
                            "Pick Up Edge Under Mouse",
                            "Pick Up Edge Under Mouse",
                            "Select All Upstream",
                            "Select All Downstream",
                            "Select Stream Upstream",
                            "Select Stream Downstream",
                            "Select Previous Upstream",
                            "Select Next Downstream",
                            "Add Select Previous Upstream",
                            "Add Select Next Downstream",
                            "Select Next Sibling",
                            "Select Previous Sibling",
                            "Add Select Next Sibling",
                            "Add Select Previous Sibling",
                            "Select Between",
                            "Zoom In",
                            "Zoom Out",
                            "Pan Left",
                            "Pan Right",
                            "Pan Up",
                            "Pan Down",
                            "Open Node Properties",
                            "Toggle Snap to Grid",
                            "Toggle Edge Sever Mode"};

// The view's command each catalogue row reaches, by row.
QByteArray commandOf(int row)
{
    static const char *const commands[] = {"connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "connectSelectedNodeToViewer",
                                           "moveViewerToMouse",
                                           "deleteSelectedNodes",
                                           "extractSelectedNode",
                                           "deleteAllNodes",
                                           "frameNodes",
                                           "frameSelectedNodes",
                                           "disableSelectedNodes",
                                           "bypassSelectedNode",
                                           "quickCreate",
                                           "duplicateSelectedNodes",
                                           "selectAll",
                                           "cutNodesAction",
                                           "copyNodesAction",
                                           "pasteNodesAction",
                                           "searchNodesAction",
                                           "createPaintableNode",
                                           "bakeToPaintableNode",
                                           "exportToGeoChannel",
                                           "printNodeInfo",
                                           "swapInputs",
                                           "popupRenameWindow",
                                           "importNodes",
                                           "exportNodes",
                                           "importMaterial",
                                           "importCustomProcedural",
                                           "togglePortVisibility",
                                           "cyclePortListMode",
                                           "bakeEmptyAndUpdateOutOfDateBakePoints",
                                           "bakeSelectedBakePoints",
                                           "updateSelectedBakePoints",
                                           "updateUpstreamBakePoints",
                                           "updateDownstreamBakePoints",
                                           "manageUserKnobs",
                                           "exposeNodeProperties",
                                           "openGroupNodeSubgraph",
                                           "pickUpEdge",
                                           "pickUpEdge",
                                           "selectAllUpstream",
                                           "selectAllDownstream",
                                           "selectStreamUpstream",
                                           "selectStreamDownstream",
                                           "selectUpstream",
                                           "selectDownstream",
                                           "addSelectUpstream",
                                           "addSelectDownstream",
                                           "selectNextSibling",
                                           "selectPrevSibling",
                                           "addSelectNextSibling",
                                           "addSelectPrevSibling",
                                           "selectBetween",
                                           "zoomIn",
                                           "zoomOut",
                                           "panLeft",
                                           "panRight",
                                           "panUp",
                                           "panDown",
                                           "openNodeProperties",
                                           "toggleSnapToGrid",
                                           "toggleEdgeSeverAction"};
    static_assert(sizeof(commands) / sizeof(commands[0]) == 69, "one command per row");
    return QByteArray(commands[row]);
}

} // namespace

class tst_ActionEffects;
// What a triggered action must have done.
using Check = std::function<void(tst_ActionEffects *)>;
Q_DECLARE_METATYPE(Check)

// Every node-graph action, triggered, changes the prepared network or view the way its command
// does: the mix chain N1, N2 -> Mix -> Out, a lone blur, a viewer and a group.
class tst_ActionEffects : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;

public:
    OssShaderNetwork *m_network = nullptr;
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }
    OssNgNode *gui(const QString &name) { return OssSnNodeGraphViewContext::guiNodeOf(node(name)); }
    QStringList selection() const
    {
        QStringList names;
        for (OssSnBaseNode *selected : m_network->selectedNodes())
            names << selected->name();
        names.sort();
        return names;
    }
    void select(const QStringList &names)
    {
        m_network->clearSelection();
        for (const QString &name : names)
            node(name)->setSelected(true);
    }
    // Puts the cursor over a scene point of the current view.
    void cursorAt(const QPointF &scenePos)
    {
        QCursor::setPos(view()->viewport()->mapToGlobal(view()->mapFromScene(scenePos)));
    }
    QPointF viewCentre() { return view()->viewportInSceneCoords().center(); }
    bool hasLine(const QString &line) const { return m_host.hasLine(line); }
    QList<QAction *> actions(const QString &text) const
    {
        return OssActionTreeManager::instance()->findActions(Folder + text);
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(false);
        // The view takes its size in a shown window: framing and zoom work as for a user.
        m_host.nodeGraphWidget()->window()->resize(1000, 700);
        m_host.nodeGraphWidget()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_host.nodeGraphWidget()->window()));
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY2(m_host.createMixChain(m_network), qPrintable(m_host.errorString()));
        QVERIFY2(m_host.createNodes(
                     m_network,
                     {{"Filter/Blur", "Lone"}, {"Misc/Viewer", "Viewer"}, {"Misc/Group", "Group"}}),
                 qPrintable(m_host.errorString()));
        OssShaderNetworkManager::instance()->setCurrentViewerNode(node("Viewer"));
        gui("Lone")->setPos(3000, 2000);
        m_network->clearSelection();
        view()->frameNodes(true);
        OssUndoManager::instance()->clear();
        m_host.clearLines();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    // The catalogue's rows are filed in order. A row is left out only while the view has no
    // command of that name yet (the plug-in files no action that would do nothing).
    void theCatalogueIsFiledInOrder()
    {
        QStringList filed;
        for (QAction *action : OssActionTreeManager::instance()->actions(Folder))
            if (action->parent() == m_host.plugin())
                filed << action->text();
        QStringList expected;
        QStringList missing;
        for (int row = 0; row < Catalogue.size(); ++row) {
            const QString &text = Catalogue.at(row);
            const QByteArray command = commandOf(row);
            bool viewHasIt = false;
            const QMetaObject *meta = &OssShaderNetworkView::staticMetaObject;
            for (int i = 0; i < meta->methodCount() && !viewHasIt; ++i)
                viewHasIt = meta->method(i).name() == command;
            QVERIFY2(viewHasIt || !filed.contains(text), qPrintable(text));
            if (viewHasIt)
                expected << text;
            else
                missing << text;
        }
        if (!missing.isEmpty())
            qWarning("Not offered by the view yet: %s", qPrintable(missing.join(", ")));
        QCOMPARE(filed, expected);
        // The two "Pick Up Edge Under Mouse" are two actions, each connected.
        const QList<QAction *> pickUps = actions(QStringLiteral("Pick Up Edge Under Mouse"));
        QCOMPARE(pickUps.size(), 2);
        QVERIFY(pickUps.at(0) != pickUps.at(1));
    }

    void eachActionReachesItsCommand_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<Check>("check");
        const auto row = [](const char *text, const QStringList &selected, Check check) {
            QTest::newRow(text) << QString::fromLatin1(text) << selected << check;
        };
        for (int number = 1; number <= 9; ++number) {
            const QString text =
                number == 1 ? QStringLiteral("Connect Selected Node to Viewer")
                            : QStringLiteral("Connect Selected Node to Viewer%1").arg(number);
            QTest::newRow(qPrintable(text))
                << text << QStringList{"Mix"} << Check([number](tst_ActionEffects *t) {
                       QCOMPARE(t->node("Viewer")->inputConnection(QString::number(number)),
                                t->node("Mix"));
                   });
        }
        row("Connect Selected Node to Viewer0", {"Mix"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] Connecting a node to the viewer's input 0 "
                                              "is not allowed. Input 0 is reserved.")));
            QVERIFY(!t->node("Viewer")->inputConnection(QStringLiteral("10")));
        });
        row("Delete", {"Mix"}, [](tst_ActionEffects *t) {
            QVERIFY(!t->node("Mix"));
            QCOMPARE(OssUndoManager::instance()->undoText(),
                     QStringLiteral("Remove Selected Nodes"));
        });
        row("Extract", {"Mix"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->node("Out")->inputConnection(QStringLiteral("Input")), t->node("N1"));
            QVERIFY(!t->node("Mix")->inputConnection(QStringLiteral("A")));
        });
        row("Remove All Nodes", {},
            [](tst_ActionEffects *t) { QCOMPARE(t->m_network->nodeCount(), 0); });
        row("Disable", {"Mix"},
            [](tst_ActionEffects *t) { QVERIFY(!t->node("Mix")->enabledAsBool()); });
        row("Bypass", {"Mix"}, [](tst_ActionEffects *t) { QVERIFY(t->node("Mix")->bypassed()); });
        row("Duplicate", {"Mix"}, [](tst_ActionEffects *t) {
            QVERIFY(t->node("Mix1"));
            QCOMPARE(t->selection(), QStringList{"Mix1"});
        });
        row("Select All", {}, [](tst_ActionEffects *t) {
            for (const char *name : {"Group", "Lone", "Mix", "N1", "N2", "Out"})
                QVERIFY2(t->selection().contains(QLatin1String(name)), name);
        });
        row("Cut", {"Lone"}, [](tst_ActionEffects *t) {
            QVERIFY(!t->node("Lone"));
            QVERIFY(OssShaderNetworkIO::clipboardHasNodes());
        });
        row("Copy", {"Lone"}, [](tst_ActionEffects *t) {
            QVERIFY(t->node("Lone"));
            QVERIFY(OssShaderNetworkIO::clipboardHasNodes());
            // Paste gives a copy back under a new name.
            t->actions(QStringLiteral("Paste")).value(0)->trigger();
            QVERIFY(t->node("Lone1"));
        });
        row("Swap Inputs", {"Mix"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->node("Mix")->inputConnection(QStringLiteral("A")), t->node("N2"));
            QCOMPARE(t->node("Mix")->inputConnection(QStringLiteral("B")), t->node("N1"));
        });
        row("Rename Node", {"Mix", "Out"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("More than one node selected for renaming")));
        });
        row("Toggle Port List", {"Mix"}, [](tst_ActionEffects *t) {
            QVERIFY(t->gui("Mix")->portsVisible() != t->gui("Out")->portsVisible());
        });
        row("Cycle Port List Mode", {"Mix"}, [](tst_ActionEffects *t) {
            auto *mix = qobject_cast<OssNgExtendedNode *>(t->gui("Mix"));
            auto *out = qobject_cast<OssNgExtendedNode *>(t->gui("Out"));
            QVERIFY(mix && out);
            QVERIFY(mix->portListModeAsInt() != out->portListModeAsInt());
        });
        row("Open Group Node Subgraph", {"Group"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->view()->network(),
                     qobject_cast<OssSnGroupNode *>(t->node("Group"))->groupNetwork());
        });
        row("Select All Upstream", {"Out"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"Mix", "N1", "N2", "Out"}));
        });
        row("Select All Downstream", {"N2"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"Mix", "N2", "Out"}));
        });
        row("Select Stream Upstream", {"Out"}, [](tst_ActionEffects *t) {
            QVERIFY(t->selection().contains(QStringLiteral("Mix")));
            QVERIFY(t->selection().contains(QStringLiteral("N1")));
        });
        row("Select Stream Downstream", {"N1"},
            [](tst_ActionEffects *t) { QVERIFY(t->selection().contains(QStringLiteral("Out"))); });
        row("Select Previous Upstream", {"Mix"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"N1", "N2"}));
        });
        row("Select Next Downstream", {"Mix"},
            [](tst_ActionEffects *t) { QCOMPARE(t->selection(), QStringList{"Out"}); });
        row("Add Select Previous Upstream", {"Mix"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"Mix", "N1", "N2"}));
        });
        row("Add Select Next Downstream", {"N1"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"Mix", "N1"}));
        });
        row("Select Next Sibling", {"N1"},
            [](tst_ActionEffects *t) { QCOMPARE(t->selection(), QStringList{"N2"}); });
        row("Select Previous Sibling", {"N2"},
            [](tst_ActionEffects *t) { QCOMPARE(t->selection(), QStringList{"N1"}); });
        row("Add Select Next Sibling", {"N1"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"N1", "N2"}));
        });
        row("Add Select Previous Sibling", {"N2"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"N1", "N2"}));
        });
        row("Select Between", {"N1", "Out"}, [](tst_ActionEffects *t) {
            QCOMPARE(t->selection(), (QStringList{"Mix", "N1", "Out"}));
        });
        row("Open Node Properties", {"Mix", "Out"}, [](tst_ActionEffects *t) {
            // The properties palette got a panel for each (the view asked for each node).
            QStringList asked = t->m_lastAsked;
            asked.sort();
            QCOMPARE(asked, (QStringList{"Mix", "Out"}));
        });
        // The bake commands on a network without bake points: each says what it misses.
        row("Smart Bake And Update", {}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] No Bake Point nodes found")));
        });
        row("Bake Selected", {"Mix"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] No Bake Point nodes are selected")));
        });
        row("Update Selected", {"Mix"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] No Bake Point nodes are selected")));
        });
        row("Update Upstream", {"Out"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] No upstream Bake Point nodes found")));
        });
        row("Update Downstream", {"N1"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] No downstream Bake Point nodes found")));
        });
        row("Bake to Paint Node", {"Mix", "Out"}, [](tst_ActionEffects *t) {
            QVERIFY(
                t->hasLine(QStringLiteral("[ !! ] Bake to Paintable Node: Only one node must be "
                                          "selected for baking to a paintable node")));
        });
        row("Export to Geo-Channel", {"Mix", "Out"}, [](tst_ActionEffects *t) {
            QVERIFY(t->hasLine(QStringLiteral("[ !! ] Export to Geo-Channel: Only one node must be "
                                              "selected for exporting to a geo-channel.")));
        });
        row("Toggle Snap to Grid", {},
            [](tst_ActionEffects *t) { QVERIFY(t->view()->snapToGrid() != t->m_snapBefore); });
        row("Toggle Edge Sever Mode", {}, [](tst_ActionEffects *t) {
            QCOMPARE(t->view()->cursorTrackingMode(), int(OssNgView::EdgeSeverTracking));
        });
    }

    void eachActionReachesItsCommand()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, selected);
        QFETCH(Check, check);
        const QList<QAction *> found = actions(text);
        QVERIFY2(!found.isEmpty(), qPrintable(text));
        select(selected);
        m_snapBefore = view()->snapToGrid();
        m_lastAsked.clear();
        QMetaObject::Connection asked =
            connect(view(), &OssShaderNetworkView::nodeDoubleClicked, this,
                    [this](OssSnBaseNode *node) { m_lastAsked << node->name(); });
        found.first()->trigger();
        disconnect(asked);
        check(this);
        if (view()->cursorTrackingMode() != OssNgView::NormalTracking)
            view()->toggleEdgeSeverAction();
        if (view()->snapToGrid() != m_snapBefore)
            view()->toggleSnapToGrid();
    }

    // Framing: the whole graph, or the selection.
    void framingActions()
    {
        select({"Mix"});
        actions(QStringLiteral("Frame Nodes")).value(0)->trigger();
        QVERIFY(view()->viewportInSceneCoords().contains(gui("Lone")->sceneBoundingRect()));
        actions(QStringLiteral("Focus Selection")).value(0)->trigger();
        QVERIFY(view()->viewportInSceneCoords().contains(gui("Mix")->sceneBoundingRect()));
        QVERIFY(!view()->viewportInSceneCoords().contains(gui("Lone")->sceneBoundingRect()));
        // Nothing selected: the whole graph.
        m_network->clearSelection();
        actions(QStringLiteral("Focus Selection")).value(0)->trigger();
        QVERIFY(view()->viewportInSceneCoords().contains(gui("Lone")->sceneBoundingRect()));
    }

    void zoomAndPan()
    {
        const double scale = view()->transform().m11();
        actions(QStringLiteral("Zoom Out")).value(0)->trigger();
        QVERIFY(view()->transform().m11() < scale);
        const double out = view()->transform().m11();
        actions(QStringLiteral("Zoom In")).value(0)->trigger();
        QVERIFY(view()->transform().m11() > out);
        const struct
        {
            const char *text;
            int dx, dy;
        } pans[] = {
            {"Pan Left", -1, 0}, {"Pan Right", 1, 0}, {"Pan Up", 0, -1}, {"Pan Down", 0, 1}};
        for (const auto &pan : pans) {
            const QPointF before = viewCentre();
            actions(QString::fromLatin1(pan.text)).value(0)->trigger();
            const QPointF moved = viewCentre() - before;
            // The view looks further that way: its centre moves in the direction named.
            QVERIFY2(moved.x() * pan.dx + moved.y() * pan.dy > 0 &&
                         (pan.dx ? qFuzzyIsNull(moved.y()) : qFuzzyIsNull(moved.x())),
                     pan.text);
        }
    }

    void viewerMovesToTheCursor()
    {
        const QPointF target = viewCentre() + QPointF(120, 80);
        cursorAt(target);
        const QPointF before = gui("Viewer")->pos();
        actions(QStringLiteral("Move Viewer to Cursor")).value(0)->trigger();
        QVERIFY(gui("Viewer")->pos() != before);
        // Exact to the pixel the cursor is on.
        QVERIFY(QLineF(gui("Viewer")->scenePos(), target).length() < 2 / view()->transform().m11());
    }

    void bothPickUpActionsPickUpTheEdgeUnderTheCursor_data()
    {
        QTest::addColumn<int>("which");
        QTest::newRow("first") << 0;
        QTest::newRow("second") << 1;
    }

    void bothPickUpActionsPickUpTheEdgeUnderTheCursor()
    {
        QFETCH(int, which);
        OssNgEdge *edge = gui("Out")->input(QStringLiteral("Input"));
        QVERIFY(edge);
        cursorAt(edge->mapToScene(edge->curve().pointAtPercent(0.5)));
        QVERIFY(!view()->draggedEdge());
        actions(QStringLiteral("Pick Up Edge Under Mouse")).value(which)->trigger();
        QVERIFY(view()->draggedEdge());
        view()->dropGrabbedEdge();
    }

    // The manager's actions, each under the folder form it is filed with, and what they do.
    void theManagersActions()
    {
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        const QList<QAction *> modes = tree->actions(QStringLiteral("/Ossa/NodeGraph"));
        QCOMPARE(modes.size(), 4);
        const QStringList names{"Expanded", "Stream Collapsed", "Connected Only", "Collapsed"};
        for (int mode = 0; mode < 4; ++mode) {
            QAction *action = modes.at(mode);
            QCOMPARE(action->text(), QStringLiteral("Switch to %1 mode").arg(names.at(mode)));
            QCOMPARE(action->property("Mode"), QVariant(mode));
            QCOMPARE(action->toolTip(), action->text());
            QCOMPARE(action->whatsThis(), action->text());
            QCOMPARE(action->parent(), m_host.manager());
        }
        // Collapsed, then Expanded, on the selected node only.
        select({"Mix"});
        modes.at(3)->trigger();
        QCOMPARE(OssSnNodeGraphViewContext::of(node("Mix"))->portListModeAsInt(), 3);
        QVERIFY(OssSnNodeGraphViewContext::of(node("Out"))->portListModeAsInt() != 3);
        modes.at(0)->trigger();
        QCOMPARE(OssSnNodeGraphViewContext::of(node("Mix"))->portListModeAsInt(), 0);

        const QList<QAction *> shakes = tree->actions(QStringLiteral("Ossa/NodeGraph/"));
        QCOMPARE(shakes.size(), 1);
        QAction *shake = shakes.first();
        for (const QString &text : {shake->text(), shake->statusTip(), shake->toolTip(),
                                    shake->objectName(), shake->whatsThis()})
            QCOMPARE(text, QStringLiteral("Shake To Extract"));
        const bool enabled = m_host.manager()->shakeToExtractEnabled();
        shake->trigger();
        QCOMPARE(m_host.manager()->shakeToExtractEnabled(), !enabled);
        shake->trigger();
        QCOMPARE(m_host.manager()->shakeToExtractEnabled(), enabled);

        // Autoplace is filed with the fixed actions and offered in the network's menu.
        QAction *autoplace = tree->findAction(Folder + QStringLiteral("Autoplace"));
        QVERIFY(autoplace);
        QCOMPARE(autoplace->parent(), m_host.manager());
        QVERIFY(
            OssShaderNetworkManager::instance()->globalContextMenuActions().contains(autoplace));
    }

    // With the keyboard focus in a view, the command runs there, without the fall-back line.
    void theFocusedViewIsUsed()
    {
        view()->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(view()));
        select({"Mix"});
        actions(QStringLiteral("Delete")).value(0)->trigger();
        QVERIFY(!node("Mix"));
        for (const QString &line : m_host.lines())
            QVERIFY2(!line.contains(QLatin1String("fallback")), qPrintable(line));
    }

    // Outside the node graph, the command runs on the current view after the fall-back line.
    void elsewhereTheCurrentViewIsUsed()
    {
        QLineEdit field;
        field.show();
        QVERIFY(QTest::qWaitForWindowExposed(&field));
        QApplication::setActiveWindow(&field);
        field.setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(&field));
        select({"Mix"});
        actions(QStringLiteral("Delete")).value(0)->trigger();
        QVERIFY(!node("Mix"));
        QCOMPARE(m_host.lines().value(0),
                 QStringLiteral("[ !! ] Could not get the current active widget, fallback onto "
                                "current nodegraph view 0x%1")
                     .arg(quintptr(view()), 0, 16));
    }

    // Without any view every action says so and does nothing. (Last: the palette's tab widget
    // goes.)
    void withoutAViewNothingHappens()
    {
        select({"Mix"});
        QApplication::setActiveWindow(nullptr);
        delete m_host.nodeGraphWidget();
        QVERIFY(!m_host.manager()->currentView());
        m_host.clearLines();
        for (const char *text : {"Delete", "Frame Nodes", "Connect Selected Node to Viewer0"})
            actions(QString::fromLatin1(text)).value(0)->trigger();
        QCOMPARE(m_host.lineCount(QStringLiteral("ShaderNetworkView is NULL")), 3);
        QVERIFY(node("Mix"));
    }

public:
    bool m_snapBefore = false;
    QStringList m_lastAsked;
};

QTEST_MAIN(tst_ActionEffects)
#include "tst_ActionEffects.moc"
