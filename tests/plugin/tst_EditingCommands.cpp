#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssApplication.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

// The view's node editing commands on the real host: each is one undo step with its title, and
// undo gives back the identical network.
//
// The graph: N1 and N2 feed inputs A and B of Mix, which feeds Out; Lone and Gamma (one input)
// stand alone; Viewer is the network's viewer.
class tst_EditingCommands : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }
    OssUndoManager *undo() { return OssUndoManager::instance(); }

    void select(const QStringList &names)
    {
        m_network->clearSelection();
        for (const QString &name : names)
            node(name)->setSelected(true);
    }
    QStringList selection() const
    {
        QStringList names;
        for (OssSnBaseNode *selected : m_network->selectedNodes())
            names << selected->name();
        names.sort();
        return names;
    }
    // A command on a selection: the undo step's title and that undo, then redo, give back the
    // network exactly.
    void checkOneStep(const QString &title)
    {
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), title);
        const QString after = m_network->dump();
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
        undo()->redo();
        QCOMPARE(m_network->dump(), after);
    }
    QString m_before;

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        // Warning boxes log their text instead of waiting for a click.
        OssApplication::setPopupsAllowed(false);
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QCOMPARE(view()->network(), m_network);
        QVERIFY2(m_host.createMixChain(m_network), qPrintable(m_host.errorString()));
        QVERIFY2(m_host.createNodes(m_network, {{"Filter/Blur", "Lone"},
                                                {"Misc/Viewer", "Viewer"},
                                                {"Adjust/Gamma", "Gamma"}}),
                 qPrintable(m_host.errorString()));
        OssShaderNetworkManager::instance()->setCurrentViewerNode(node("Viewer"));
        m_network->clearSelection();
        undo()->clear();
        m_host.clearLines();
        m_before = m_network->dump();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    // --- viewer

    void viewerNumberShowsTheSelectedNode()
    {
        select({"Mix"});
        view()->connectSelectedNodeToViewer(nullptr, 3);
        QCOMPARE(node("Viewer")->inputConnection("3"), node("Mix"));
        QCOMPARE(m_network->viewerNodeCurrentEdge(), 3);
        QCOMPARE(selection(), QStringList{"Viewer"});
        checkOneStep(QStringLiteral("Connect node 'Mix' to Viewer"));
    }

    void viewerNumberZeroIsReservedForOrdinaryNodes()
    {
        select({"Mix"});
        view()->connectSelectedNodeToViewer(nullptr, 0);
        QVERIFY(m_host.hasLine(QStringLiteral("[ !! ] Connecting a node to the viewer's input 0 is "
                                              "not allowed. Input 0 is reserved.")));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    void viewerNumberWithNothingSelectedOnlySwitchesTheInput()
    {
        view()->connectSelectedNodeToViewer(nullptr, 4);
        QCOMPARE(m_network->viewerNodeCurrentEdge(), 4);
        QVERIFY(!node("Viewer")->inputConnection("4"));
    }

    void viewerNumberWithTwoSelectedDoesNothing()
    {
        select({"N1", "N2"});
        view()->connectSelectedNodeToViewer(nullptr, 2);
        QCOMPARE(m_network->dump(), m_before);
    }

    void aNodeOfAnotherNetworkIsRefused()
    {
        auto *other = new OssShaderNetwork(QStringLiteral("Elsewhere"));
        OssSnBaseNode *stranger =
            other->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Stranger"), false);
        stranger->setObjectName(QStringLiteral("Stranger"));
        view()->connectSelectedNodeToViewer(stranger, 2);
        QVERIFY(m_host.hasLine(QStringLiteral("Node 'Stranger' doesn't belong to the network")));
        QCOMPARE(m_network->dump(), m_before);
        delete other;
    }

    void choosingAnOutputPointFromTheMenuConnectsIt()
    {
        QAction action;
        action.setProperty("node", QVariant::fromValue<QObject *>(node("N1")));
        action.setProperty("viewer", QVariant::fromValue<QObject *>(node("Viewer")));
        action.setProperty("num", 5);
        action.setProperty("outputPointName", QStringLiteral("Output"));
        view()->onOutputPointSelected(&action);
        QCOMPARE(node("Viewer")->inputConnection("5"), node("N1"));
        QCOMPARE(m_network->viewerNodeCurrentEdge(), 5);
        checkOneStep(QStringLiteral("Connect node 'N1' to Viewer"));
    }

    // --- delete

    void deleteRemovesTheSelectionInOneStep()
    {
        select({"Mix", "Lone"});
        QSignalSpy manual(OssShaderNetworkManager::instance(),
                          &OssShaderNetworkManager::nodeGraphIsManuallyChanged);
        view()->deleteSelectedNodes();
        QVERIFY(!node("Mix") && !node("Lone"));
        QVERIFY(!node("Out")->inputConnection("Input"));
        QCOMPARE(manual.count(), 1);
        checkOneStep(QStringLiteral("Remove Selected Nodes"));
    }

    void graphLayerInputsAreNeverDeleted()
    {
        OssSnBaseNode *layer = m_network->createNode(QStringLiteral("_System/Graph Layer Input"),
                                                     QStringLiteral("Layer"));
        QVERIFY(layer);
        undo()->clear();
        m_before = m_network->dump();
        select({"Layer", "Lone"});
        view()->deleteSelectedNodes();
        QVERIFY(m_host.hasLine(QStringLiteral("[ -- ] Node 'Layer' cannot be removed by the user, "
                                              "it's a protected graph layer node")));
        QVERIFY(node("Layer"));
        QVERIFY(!node("Lone"));
        checkOneStep(QStringLiteral("Remove Selected Nodes"));
    }

    void deleteWithNothingSelectedChangesNothing()
    {
        view()->deleteSelectedNodes();
        QCOMPARE(undo()->count(), 0);
        QCOMPARE(m_network->dump(), m_before);
    }

    void deleteAllNodes()
    {
        view()->deleteAllNodes();
        QCOMPARE(m_network->nodeCount(), 0);
        checkOneStep(QStringLiteral("Remove All Nodes"));
    }

    // --- disable, bypass, extract

    void disableTitles_data()
    {
        QTest::addColumn<QStringList>("nodes");
        QTest::addColumn<QString>("title");
        QTest::newRow("one enabled node") << QStringList{"Mix"} << "Disable Mix";
        QTest::newRow("two nodes") << QStringList{"Mix", "Out"} << "Toggle Selected Nodes";
        QTest::newRow("the viewer is left alone") << QStringList{"Mix", "Viewer"} << "Disable Mix";
    }

    void disableTitles()
    {
        QFETCH(QStringList, nodes);
        QFETCH(QString, title);
        select(nodes);
        view()->disableSelectedNodes();
        QVERIFY(!node("Mix")->enabledAsBool());
        QVERIFY(node("Viewer")->enabledAsBool());
        checkOneStep(title);
    }

    void enablingADisabledNodeSaysEnable()
    {
        node("Out")->toggleDisable();
        undo()->clear();
        m_before = m_network->dump();
        select({"Out"});
        view()->disableSelectedNodes();
        QVERIFY(node("Out")->enabledAsBool());
        checkOneStep(QStringLiteral("Enable Out"));
    }

    void aMixedSelectionSwapsEachNode()
    {
        node("Out")->toggleDisable();
        undo()->clear();
        m_before = m_network->dump();
        select({"Mix", "Out"});
        view()->disableSelectedNodes();
        QVERIFY(!node("Mix")->enabledAsBool());
        QVERIFY(node("Out")->enabledAsBool());
        checkOneStep(QStringLiteral("Toggle Selected Nodes"));
    }

    void bypassIsOneStep()
    {
        select({"Mix", "Out"});
        view()->bypassSelectedNode();
        QVERIFY(node("Mix")->bypassed() && node("Out")->bypassed());
        checkOneStep(QStringLiteral("Bypass Selected Nodes"));
    }

    void extractTakesTheNodeOutOfItsStream()
    {
        select({"Mix"});
        view()->extractSelectedNode();
        QCOMPARE(node("Out")->inputConnection("Input"), node("N1"));
        QVERIFY(!node("Mix")->inputConnection("A"));
        checkOneStep(QStringLiteral("Extract Nodes"));
    }

    // --- duplicate, cut, copy, paste

    void duplicateMakesSelectedCopies()
    {
        select({"Mix", "Viewer"});
        view()->duplicateSelectedNodes();
        QCOMPARE(m_network->nodeCount(), 8);
        QCOMPARE(selection(), QStringList{"Mix1"});
        checkOneStep(QStringLiteral("Duplicate Nodes"));
    }

    void cutOfTheViewerAloneDoesNothing()
    {
        QGuiApplication::clipboard()->setText(QStringLiteral("untouched"));
        select({"Viewer"});
        view()->cutNodesAction();
        QCOMPARE(undo()->count(), 0);
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("untouched"));
    }

    void cutThenPasteGivesTheNodesBack()
    {
        select({"N1", "Mix"});
        view()->cutNodesAction();
        QVERIFY(!node("N1") && !node("Mix"));
        QCOMPARE(undo()->undoText(), QStringLiteral("Cut Nodes"));
        QVERIFY(OssShaderNetworkIO::clipboardHasNodes());
        view()->pasteNodesAction();
        QCOMPARE(undo()->undoText(), QStringLiteral("Paste Nodes"));
        QVERIFY(node("N1") && node("Mix"));
        QCOMPARE(node("Mix")->inputConnection("A"), node("N1"));
        QCOMPARE(selection(), QStringList({"Mix", "N1"}));
        undo()->undo();
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
    }

    void copyThenPasteMakesUniqueNames()
    {
        select({"Lone"});
        view()->copyNodesAction();
        QCOMPARE(undo()->count(), 0);
        view()->pasteNodesAction();
        QVERIFY(node("Lone1"));
        QCOMPARE(selection(), QStringList{"Lone1"});
        checkOneStep(QStringLiteral("Paste Nodes"));
    }

    void pastingTextThatIsNoNetworkChangesNothing()
    {
        QGuiApplication::clipboard()->setText(QStringLiteral("just some words"));
        view()->pasteNodesAction();
        QCOMPARE(undo()->count(), 0);
        QCOMPARE(m_network->dump(), m_before);
        bool said = false;
        for (const QString &line : m_host.lines())
            said = said || line.startsWith(QStringLiteral("[ !! ] Nothing pasted: "));
        QVERIFY(said);
    }

    // --- rename

    void renameNeedsExactlyOneNode_data()
    {
        QTest::addColumn<QStringList>("nodes");
        QTest::addColumn<bool>("warned");
        QTest::newRow("two nodes") << QStringList{"N1", "N2"} << true;
        QTest::newRow("none") << QStringList{} << false;
    }

    void renameNeedsExactlyOneNode()
    {
        QFETCH(QStringList, nodes);
        QFETCH(bool, warned);
        select(nodes);
        view()->popupRenameWindow();
        QCOMPARE(m_host.hasLine(QStringLiteral("More than one node selected for renaming")),
                 warned);
        QCOMPARE(m_host.hasLine(QStringLiteral(
                     "[ !! ] Rename node: Only one node must be selected for renaming")),
                 warned);
        QCOMPARE(m_network->dump(), m_before);
    }

    void cancellingTheRenameKeepsTheName()
    {
        select({"Lone"});
        OssApplication::queueDialogAnswer(false);
        view()->popupRenameWindow();
        QCOMPARE(node("Lone")->name(), QStringLiteral("Lone"));
        QCOMPARE(undo()->count(), 0);
    }

    void renameWithoutANodeSaysSo()
    {
        view()->popupRenameWindow(nullptr);
        QVERIFY(m_host.hasLine(QStringLiteral("NodeToRename is NULL")));
    }

    // --- swap inputs

    void swapInputsExchangesTheFirstTwo()
    {
        select({"Mix"});
        view()->swapInputs();
        QCOMPARE(node("Mix")->inputConnection("A"), node("N2"));
        QCOMPARE(node("Mix")->inputConnection("B"), node("N1"));
        checkOneStep(QStringLiteral("Swap Inputs"));
    }

    void swapInputsRefusals_data()
    {
        QTest::addColumn<QStringList>("nodes");
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("box");
        QTest::newRow("nothing selected")
            << QStringList{} << "More than one node selected for swap inputs."
            << "[ !! ] Swap Inputs: Only one node must be selected for swapping inputs.";
        QTest::newRow("two selected")
            << QStringList{"Mix", "Out"} << "More than one node selected for swap inputs."
            << "[ !! ] Swap Inputs: Only one node must be selected for swapping inputs.";
        QTest::newRow("one input")
            << QStringList{"Gamma"} << "Need at least two inputs to swap inputs."
            << "[ !! ] Swap Inputs: The selected node has fewer than two "
               "inputs to swap.";
    }

    void swapInputsRefusals()
    {
        QFETCH(QStringList, nodes);
        QFETCH(QString, line);
        QFETCH(QString, box);
        select(nodes);
        view()->swapInputs();
        QVERIFY(m_host.hasLine(line));
        QVERIFY(m_host.hasLine(box));
        QCOMPARE(undo()->count(), 0);
        QCOMPARE(m_network->dump(), m_before);
    }

    // --- many commands undone and redone

    void randomCommandsUndoAndRedoExactly()
    {
        const quint32 seed = QRandomGenerator::global()->generate();
        QRandomGenerator random(seed);
        const QList<const char *> commands{
            "deleteSelectedNodes", "disableSelectedNodes",   "bypassSelectedNode",
            "extractSelectedNode", "duplicateSelectedNodes", "swapInputs",
            "copyNodesAction",     "pasteNodesAction",       "cutNodesAction",
            "selectAllUpstream",   "selectDownstream",       "selectAll"};
        const QString start = m_network->dump();
        for (int step = 0; step < 200; ++step) {
            const QList<OssSnBaseNode *> nodes = m_network->nodes();
            m_network->clearSelection();
            for (OssSnBaseNode *each : nodes)
                if (random.bounded(3) == 0)
                    each->setSelected(true);
            const char *command = commands.at(int(random.bounded(commands.size())));
            QVERIFY2(QMetaObject::invokeMethod(view(), command),
                     qPrintable(QStringLiteral("seed %1, step %2: %3")
                                    .arg(seed)
                                    .arg(step)
                                    .arg(QLatin1String(command))));
        }
        const QString end = m_network->dump();
        while (undo()->canUndo())
            undo()->undo();
        QVERIFY2(m_network->dump() == start, qPrintable(QStringLiteral("seed %1").arg(seed)));
        while (undo()->canRedo())
            undo()->redo();
        QVERIFY2(m_network->dump() == end, qPrintable(QStringLiteral("seed %1").arg(seed)));
    }
};

QTEST_MAIN(tst_EditingCommands)
#include "tst_EditingCommands.moc"
