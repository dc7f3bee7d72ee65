#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssNgExtendedNode.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QSignalSpy>
#include <QtTest>

// The fixed node-graph actions: filed in the action tree in the catalogue's order, each firing
// its command on the current view.
class tst_ActionCatalogue : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    QAction *action(const QString &text)
    {
        return OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/NodeGraph/") +
                                                            text);
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(false);
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        for (const char *name : {"A", "B"})
            QVERIFY(
                m_network->createNode(QStringLiteral("Filter/Blur"), QString::fromLatin1(name)));
        OssSnNodeGraphViewContext::guiNodeOf(m_network->node("B"))->setPos(3000, 2000);
        m_network->clearSelection();
        OssUndoManager::instance()->clear();
        m_host.clearLines();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void actionsAreFiledInTheCatalogueOrder()
    {
        const QList<QAction *> filed =
            OssActionTreeManager::instance()->actions(QStringLiteral("/Ossa/NodeGraph/"));
        QStringList texts;
        for (QAction *each : filed)
            texts << each->text();
        // A few landmarks of the order, with every command the view has in between.
        const QStringList expected{"Connect Selected Node to Viewer",
                                   "Connect Selected Node to Viewer2",
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
                                   "Duplicate",
                                   "Select All",
                                   "Cut",
                                   "Copy",
                                   "Paste",
                                   "Bake to Paint Node",
                                   "Export to Geo-Channel",
                                   "Swap Inputs",
                                   "Rename Node",
                                   "Import Material",
                                   "Import Custom Procedural",
                                   "Smart Bake And Update",
                                   "Bake Selected",
                                   "Update Selected",
                                   "Update Upstream",
                                   "Update Downstream",
                                   "Pick Up Edge Under Mouse",
                                   "Select All Upstream",
                                   "Select Between",
                                   "Zoom In",
                                   "Pan Down",
                                   "Toggle Snap to Grid"};
        int at = -1;
        for (const QString &text : expected) {
            const int found = texts.indexOf(text, at + 1);
            QVERIFY2(found > at, qPrintable(text));
            at = found;
        }
        QCOMPARE(texts.count(QStringLiteral("Pick Up Edge Under Mouse")), 2);
        // Besides the manager's Autoplace, the folder holds the plug-in's fixed actions only.
        QList<QAction *> fixed;
        for (QAction *each : filed)
            if (each->text() != QLatin1String("Autoplace"))
                fixed << each;
        QCOMPARE(fixed, m_host.plugin()->fixedActions());
    }

    void deleteRunsOnTheCurrentView()
    {
        m_network->node("A")->setSelected(true);
        action(QStringLiteral("Delete"))->trigger();
        QVERIFY(!m_network->node("A"));
        QCOMPARE(OssUndoManager::instance()->undoText(), QStringLiteral("Remove Selected Nodes"));
    }

    void viewerZeroPassesZero()
    {
        m_network->node("A")->setSelected(true);
        action(QStringLiteral("Connect Selected Node to Viewer0"))->trigger();
        QVERIFY(m_host.hasLine(QStringLiteral("[ !! ] Connecting a node to the viewer's input 0 is "
                                              "not allowed. Input 0 is reserved.")));
    }

    void frameNodesShowsEverythingAndFocusTheSelection()
    {
        m_network->node("A")->setSelected(true);
        action(QStringLiteral("Frame Nodes"))->trigger();
        const QRectF all = view()->viewportInSceneCoords();
        QVERIFY(all.contains(OssSnNodeGraphViewContext::guiNodeOf(m_network->node("B"))->pos()));
        action(QStringLiteral("Focus Selection"))->trigger();
        const QRectF focused = view()->viewportInSceneCoords();
        QVERIFY(focused.contains(
            OssSnNodeGraphViewContext::guiNodeOf(m_network->node("A"))->sceneBoundingRect()));
        QVERIFY(
            !focused.contains(OssSnNodeGraphViewContext::guiNodeOf(m_network->node("B"))->pos()));
    }

    void theManagersOwnActions()
    {
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QAction *autoplace = tree->findAction(QStringLiteral("/Ossa/NodeGraph/Autoplace"));
        QVERIFY(autoplace);
        QCOMPARE(autoplace->parent(), m_host.manager());
        QVERIFY(
            OssShaderNetworkManager::instance()->globalContextMenuActions().contains(autoplace));
        const QList<QAction *> modes = tree->actions(QStringLiteral("/Ossa/NodeGraph"));
        QCOMPARE(modes.size(), 4);
        const QStringList names{"Expanded", "Stream Collapsed", "Connected Only", "Collapsed"};
        for (int mode = 0; mode < 4; ++mode) {
            QCOMPARE(modes.at(mode)->text(),
                     QStringLiteral("Switch to %1 mode").arg(names.at(mode)));
            QCOMPARE(modes.at(mode)->property("Mode").toInt(), mode);
            QCOMPARE(modes.at(mode)->toolTip(), modes.at(mode)->text());
        }
        QAction *shake = tree->findAction(QStringLiteral("Ossa/NodeGraph/Shake To Extract"));
        QVERIFY(shake);
        QCOMPARE(shake->objectName(), QStringLiteral("Shake To Extract"));
        const bool before = m_host.manager()->shakeToExtractEnabled();
        shake->trigger();
        QCOMPARE(m_host.manager()->shakeToExtractEnabled(), !before);
        shake->trigger();
    }

    void autoplaceLaysOutTheSelection()
    {
        QVERIFY(m_network->node("B")->connectInput("Input", m_network->node("A"), "Output"));
        m_network->node("B")->setSelected(true);
        OssActionTreeManager::instance()
            ->findAction(QStringLiteral("/Ossa/NodeGraph/Autoplace"))
            ->trigger();
        QCOMPARE(OssUndoManager::instance()->undoText(), QStringLiteral("Layout Nodes"));
    }

    void portListsToggleAndCycle()
    {
        OssSnBaseNode *a = m_network->node("A");
        a->setSelected(true);
        OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(a);
        const bool shown = gui->portsVisible();
        action(QStringLiteral("Toggle Port List"))->trigger();
        QCOMPARE(gui->portsVisible(), !shown);
        // Only the selected node.
        QCOMPARE(OssSnNodeGraphViewContext::guiNodeOf(m_network->node("B"))->portsVisible(), shown);
        auto *extended = qobject_cast<OssNgExtendedNode *>(gui);
        QVERIFY(extended);
        const int before = extended->portListModeAsInt();
        action(QStringLiteral("Cycle Port List Mode"))->trigger();
        QVERIFY(extended->portListModeAsInt() != before);
        // The context follows the GUI node's mode (it is what the project saves).
        QCOMPARE(OssSnNodeGraphViewContext::of(a)->portListModeAsInt(),
                 extended->portListModeAsInt());
    }

    void openNodePropertiesAsksForEachSelectedNode()
    {
        m_network->node("A")->setSelected(true);
        m_network->node("B")->setSelected(true);
        QSignalSpy asked(view(), &OssShaderNetworkView::nodeDoubleClicked);
        action(QStringLiteral("Open Node Properties"))->trigger();
        QCOMPARE(asked.count(), 2);
    }

    void openGroupNodeSubgraphOpensTheSelectedGroup()
    {
        OssSnBaseNode *group = m_network->createNode(QStringLiteral("Misc/Group"));
        m_network->clearSelection();
        group->setSelected(true);
        action(QStringLiteral("Open Group Node Subgraph"))->trigger();
        QCOMPARE(view()->network(), qobject_cast<OssSnGroupNode *>(group)->groupNetwork());
    }

    void selectionWalksAreReachable()
    {
        QVERIFY(m_network->node("B")->connectInput("Input", m_network->node("A"), "Output"));
        m_network->node("B")->setSelected(true);
        action(QStringLiteral("Select All Upstream"))->trigger();
        QVERIFY(m_network->node("A")->selected());
    }
};

QTEST_MAIN(tst_ActionCatalogue)
#include "tst_ActionCatalogue.moc"
