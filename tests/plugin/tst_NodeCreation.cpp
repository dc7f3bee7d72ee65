#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssCustomAttribute.h>
#include <OssNgBackdropNode.h>
#include <OssNgNode.h>
#include <OssNodeQuickFindDialog.h>
#include <OssSettings.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <functional>

namespace {

// Runs Answer on the next modal dialog of class Dialog as soon as it is up (the command under
// test waits in the dialog's exec()); gives up after five seconds.
template <typename Dialog> void whenShown(std::function<void(Dialog *)> answer)
{
    auto *timer = new QTimer;
    auto *deadline = new QElapsedTimer;
    deadline->start();
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, deadline, answer] {
        auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        if (!dialog && deadline->elapsed() < 5000)
            return;
        timer->stop();
        timer->deleteLater();
        delete deadline;
        if (dialog)
            answer(dialog);
    });
    timer->start();
}

// Types Text in the quick find dialog, then presses Return with the given modifiers.
void typeAndChoose(const QString &text, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    whenShown<OssNodeQuickFindDialog>([text, modifiers](OssNodeQuickFindDialog *dialog) {
        auto *edit = dialog->findChild<QLineEdit *>();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return, modifiers);
    });
}

} // namespace

// Node creation on the real host and plug-in: paint, bake point and merge nodes, creation from
// an action and quick create, each one undo step; the generic creation's relocation, naming,
// backdrop wrapping and auto-connection with its exact debug lines; quick create's recent,
// favourite and usage lists in the settings.
//
// The graph: N1 and N2 feed inputs A and B of Mix, which feeds Out.
class tst_NodeCreation : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }
    OssNgNode *gui(OssSnBaseNode *node) { return OssSnNodeGraphViewContext::guiNodeOf(node); }
    OssUndoManager *undo() { return OssUndoManager::instance(); }
    QString m_before;

    void select(const QStringList &names)
    {
        m_network->clearSelection();
        for (const QString &name : names)
            node(name)->setSelected(true);
    }
    QList<OssSnBaseNode *> newNodes(const QList<OssSnBaseNode *> &before)
    {
        QList<OssSnBaseNode *> made;
        for (OssSnBaseNode *each : m_network->nodes())
            if (!before.contains(each))
                made << each;
        return made;
    }
    // The one step a command made: its title; undo gives back the network as it was, redo
    // the network the command made, positions included.
    void checkOneStep(const QString &title)
    {
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), title);
        const QString after = m_network->dump();
        QHash<QString, QPointF> positions;
        for (OssSnBaseNode *each : m_network->nodes())
            positions.insert(each->name(), gui(each)->pos());
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
        undo()->redo();
        QCOMPARE(m_network->dump(), after);
        for (OssSnBaseNode *each : m_network->nodes())
            QCOMPARE(gui(each)->pos(), positions.value(each->name()));
    }
    QPoint cursorAt(const QPoint &viewPos)
    {
        QCursor::setPos(view()->viewport()->mapToGlobal(viewPos));
        return viewPos;
    }
    QVariant setting(const QString &key)
    {
        OssSettings settings;
        return settings.value(QStringLiteral("Node Graph/") + key);
    }
    void setSetting(const QString &key, const QVariant &value)
    {
        OssSettings settings;
        settings.setValue(QStringLiteral("Node Graph/") + key, value);
    }
    bool collidesWithANode(OssNgNode *item)
    {
        for (QGraphicsItem *other : item->collidingItems(Qt::IntersectsItemShape))
            if (OssNgNode *otherNode = OssNgNode::fromItem(other))
                if (!qobject_cast<OssNgBackdropNode *>(otherNode))
                    return true;
        return false;
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        QWidget *window = m_host.manager()->nodeGraphWidget()->window();
        window->resize(1000, 800);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        OssApplication::setPopupsAllowed(false);
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QCOMPARE(view()->network(), m_network);
        QVERIFY2(m_host.createMixChain(m_network), qPrintable(m_host.errorString()));
        gui(node("N1"))->setPos(0, 0);
        gui(node("N2"))->setPos(300, 0);
        gui(node("Mix"))->setPos(150, 250);
        gui(node("Out"))->setPos(150, 500);
        view()->centerOn(150, 250);
        m_network->clearSelection();
        m_host.manager()->resetNumberOfLastUsedNodePathsToStore();
        OssSettings settings;
        settings.remove(QStringLiteral("Node Graph/LastUsedNodePaths"));
        settings.remove(QStringLiteral("Node Graph/FavouriteNodePaths"));
        settings.remove(QStringLiteral("Node Graph/NodePathUseCounts"));
        undo()->clear();
        m_host.clearLines();
        m_before = m_network->dump();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    // --- without a network every command says so and does nothing

    void commandsWithoutANetwork_data()
    {
        QTest::addColumn<QByteArray>("slot");
        for (const char *slot :
             {"createPaintableNode", "createBakePointNode", "createMergeNode", "quickCreate",
              "searchNodesAction", "exportNodes", "importNodes", "dumpSelectedNodeInfo",
              "generateMaterialPreview", "setImageSetByNameAction"})
            QTest::newRow(slot) << QByteArray(slot);
    }

    void commandsWithoutANetwork()
    {
        QFETCH(QByteArray, slot);
        OssShaderNetworkView lone;
        const int nodes = m_network->nodeCount();
        QVERIFY(QMetaObject::invokeMethod(&lone, slot.constData()));
        QCOMPARE(m_host.lines(), QStringList{"m_network is NULL"});
        QCOMPARE(m_network->nodeCount(), nodes);
        QCOMPARE(undo()->count(), 0);
    }

    // --- paint, bake point and merge nodes

    void paintNodeAtTheViewPosition()
    {
        // Clear of the chain, so that nothing moves it.
        const QPoint at = view()->mapFromScene(QPointF(550, 420));
        view()->createPaintableNode(at);
        const QList<OssSnBaseNode *> made =
            newNodes({node("N1"), node("N2"), node("Mix"), node("Out")});
        QCOMPARE(made.size(), 1);
        QCOMPARE(made.first()->pathKey(), QStringLiteral("Misc/Channel Input"));
        QCOMPARE(gui(made.first())->sceneBoundingRect().center(), view()->mapToScene(at));
        QCOMPARE(m_network->selectedNodes(), made);
        checkOneStep(QStringLiteral("Add Paint Node"));
    }

    void paintNodeFromTheActionGoesToTheViewsCorner()
    {
        QAction *action =
            OssActionTreeManager::instance()->findAction("/Ossa/NodeGraph/Create Paint Node");
        QVERIFY(action);
        view()->setFocus();
        action->trigger();
        QCOMPARE(m_network->nodeCount(), 5);
        OssSnBaseNode *paint = m_network->nodes().last();
        QCOMPARE(gui(paint)->sceneBoundingRect().center(), view()->mapToScene(QPoint(0, 0)));
    }

    void bakePointLimitsItsBackground()
    {
        view()->createBakePointNode(QPoint(500, 300));
        OssSnBaseNode *bake = m_network->nodes().last();
        QCOMPARE(bake->pathKey(), QStringLiteral("Misc/Bake Point"));
        QCOMPARE(bake->nodeAttributeValue("limitBakeBackground"), QVariant(true));
        checkOneStep(QStringLiteral("Add Bake Point Node"));
    }

    void mergeWithoutMultiChannelSelectionIsAnOrdinaryMerge()
    {
        select({"Out"});
        view()->createMergeNode(QPoint(500, 300));
        OssSnBaseNode *merge = m_network->nodes().last();
        QCOMPARE(merge->pathKey(), QStringLiteral("Layer/Merge"));
        // The selected node goes on the merge's Over input.
        QCOMPARE(merge->inputConnection("Over"), node("Out"));
        checkOneStep(QStringLiteral("Create Multi-Channel Merge"));
    }

    void mergeOnAMultiChannelNodeFollowsItsShaderModel()
    {
        QVERIFY2(m_host.createNodes(m_network, {{"Misc/Multi Channel Group", "Material"}}),
                 qPrintable(m_host.errorString()));
        auto *group = qobject_cast<OssSnMultiChannelGroupNode *>(node("Material"));
        QVERIFY(group && group->shaderModel());
        undo()->clear();
        m_before = m_network->dump();
        select({"Material"});
        view()->createMergeNode(QPoint(500, 300));
        OssSnBaseNode *merge = m_network->nodes().last();
        QCOMPARE(merge->pathKey(), QStringLiteral("_System/MultiChannelMerge"));
        QCOMPARE(merge->inputConnection("Base"), node("Material"));
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{merge});
        checkOneStep(QStringLiteral("Create Multi-Channel Merge"));
    }

    // --- creation from an action

    void actionKeysGoToTheirCommands_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("title");
        QTest::newRow("ordinary") << "Filter/Sharpen"
                                  << "Create Node : Sharpen";
        QTest::newRow("paint node") << "Misc/Channel Input"
                                    << "Add Paint Node";
        QTest::newRow("bake point") << "Misc/Bake Point"
                                    << "Add Bake Point Node";
        QTest::newRow("merge") << "Layer/Merge"
                               << "Create Multi-Channel Merge";
        QTest::newRow("backdrop") << "Misc/Backdrop"
                                  << "Create Node : Backdrop";
    }

    void actionKeysGoToTheirCommands()
    {
        QFETCH(QString, key);
        QFETCH(QString, title);
        cursorAt(QPoint(600, 400));
        QAction action;
        action.setData(key);
        OssSnBaseNode *made = view()->createNodeFromAction(&action);
        QVERIFY(made);
        QCOMPARE(made->pathKey(), key);
        QCOMPARE(m_network->nodes().last(), made);
        checkOneStep(title);
    }

    void actionWithAnUnknownKeyMakesNothing()
    {
        QAction action;
        action.setData(QStringLiteral("Filter/No Such Filter"));
        QVERIFY(!view()->createNodeFromAction(&action));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
        QVERIFY(!view()->createNodeFromAction(nullptr));
        QVERIFY(m_host.hasLine("Action is NULL"));
    }

    void mergeActionOnAMultiChannelNodeMakesAMultiChannelMerge()
    {
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Multi Channel Group", "Material"}}));
        select({"Material"});
        QAction action;
        action.setData(QStringLiteral("Layer/Merge"));
        view()->createNodeFromAction(&action);
        QCOMPARE(m_network->nodes().last()->pathKey(), QStringLiteral("_System/MultiChannelMerge"));
    }

    // --- generic creation

    void newNodeMovesOffTheNodeItWouldCover()
    {
        const QPointF onMix = gui(node("Mix"))->sceneBoundingRect().center();
        OssSnBaseNode *made = view()->createNodeAt("Filter/Sharpen", onMix);
        QVERIFY(made);
        QVERIFY(!collidesWithANode(gui(made)));
        QVERIFY(m_host.lines().first().startsWith("[ -- ] Found overlapping node"));
        checkOneStep(QStringLiteral("Create Node : Sharpen"));
    }

    void newNodesGetUniqueNames()
    {
        OssSnBaseNode *first = view()->createNodeAt("Filter/Blur", QPointF(900, 900));
        OssSnBaseNode *second = view()->createNodeAt("Filter/Blur", QPointF(1200, 900));
        QVERIFY(first && second);
        QCOMPARE(first->name(), QStringLiteral("Blur"));
        QVERIFY(second->name() != first->name());
        QVERIFY(second->name() != QStringLiteral("Out"));
        QCOMPARE(m_network->node(second->name()), second);
    }

    void backdropWrapsTheSelection()
    {
        select({"N1", "N2"});
        const QRectF selection =
            gui(node("N1"))->sceneBoundingRect() | gui(node("N2"))->sceneBoundingRect();
        OssSnBaseNode *made = view()->createNodeAt("Misc/Backdrop", QPointF(2000, 2000));
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(gui(made));
        QVERIFY(backdrop);
        QVERIFY(backdrop->sceneBoundingRect().contains(selection));
        QCOMPARE(backdrop->titleText(), made->name());
        QCOMPARE(backdrop->childrenList().size(), 2);
        // A backdrop holds no stream: nothing was connected.
        QVERIFY(!m_host.hasLine("* No more inputs to connect to, stop autoconnect."));
        checkOneStep(QStringLiteral("Create Node : Backdrop"));
    }

    void backdropWithoutSelectionSitsAtTheCursor()
    {
        const QPointF at(2000, 2000);
        OssSnBaseNode *made = view()->createNodeAt("Misc/Backdrop", at);
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(gui(made));
        QVERIFY(backdrop);
        QCOMPARE(backdrop->sceneBoundingRect().center(), at);
        QVERIFY(backdrop->childrenList().isEmpty());
    }

    void autoConnectionFollowsTheSortedSelection()
    {
        // N2 is moved above N1: the sorted selection is N2, then N1.
        gui(node("N2"))->setPos(0, -300);
        m_before = m_network->dump();
        select({"N1", "N2"});
        OssSnBaseNode *mix = view()->createNodeAt("Math/Mix", QPointF(900, 900));
        QVERIFY(mix);
        QCOMPARE(mix->inputConnection("A"), node("N2"));
        QCOMPARE(mix->inputConnection("B"), node("N1"));
        QCOMPARE(m_host.lines().filter("Autoconnect"),
                 (QStringList{"[ -- ] Autoconnect selected node ['N2', outputCount:'1'] to new "
                              "node['Mix1', input(0):'A']",
                              "[ -- ] Autoconnect selected node ['N1', outputCount:'1'] to new "
                              "node['Mix1', input(1):'B']"}));
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{mix});
        checkOneStep(QStringLiteral("Create Node : Mix"));
    }

    void autoConnectionStopsWhenInputsRunOut()
    {
        // Blur has one open input (its mask is hidden): the second selected node finds none.
        select({"N1", "N2"});
        OssSnBaseNode *blur = view()->createNodeAt("Filter/Blur", QPointF(900, 900));
        QCOMPARE(blur->inputConnection("Input"), node("N1"));
        QVERIFY(!blur->inputConnection("Mask"));
        QCOMPARE(m_host.lineCount("* No more inputs to connect to, stop autoconnect."), 1);
    }

    void autoConnectionSkipsNodesWithoutOutput()
    {
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Sticky Note", "Note"}}));
        gui(node("Note"))->setPos(-400, -400);
        select({"Note", "N1"});
        OssSnBaseNode *blur = view()->createNodeAt("Filter/Blur", QPointF(900, 900));
        QCOMPARE(blur->inputConnection("Input"), node("N1"));
        QVERIFY(m_host.hasLine(
            "[ -- ] Selected node 'Note' has no output, skipping autoconnecting to it"));
    }

    void creationInsideAnOpenCommandJoinsIt()
    {
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Outer"));
            view()->createNodeAt("Filter/Blur", QPointF(900, 900));
            view()->createNodeAt("Filter/Sharpen", QPointF(1200, 900));
        }
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Outer"));
    }

    // --- quick create

    void quickCreateFromTheKeyboard()
    {
        const QPoint at = cursorAt(QPoint(700, 500));
        select({"Out"});
        typeAndChoose(QStringLiteral("shrp"));
        view()->quickCreate();
        OssSnBaseNode *made = m_network->nodes().last();
        QCOMPARE(made->pathKey(), QStringLiteral("Filter/Sharpen"));
        QCOMPARE(made->inputConnection("Input"), node("Out"));
        QVERIFY(gui(made)->sceneBoundingRect().contains(view()->mapToScene(at)));
        QCOMPARE(setting("LastUsedNodePaths").toStringList(), QStringList{"Filter/Sharpen"});
        QCOMPARE(setting("NodePathUseCounts").toMap().value("Filter/Sharpen").toInt(), 1);
        checkOneStep(QStringLiteral("Create Node : Sharpen"));
    }

    void quickCreatingTheSameTypeTwiceKeepsOneEntryInFront()
    {
        setSetting("LastUsedNodePaths", QStringList{"Math/Mix", "Filter/Blur"});
        typeAndChoose(QStringLiteral("blur"));
        view()->quickCreate();
        typeAndChoose(QStringLiteral("blur"));
        view()->quickCreate();
        QCOMPARE(setting("LastUsedNodePaths").toStringList(),
                 (QStringList{"Filter/Blur", "Math/Mix"}));
        QCOMPARE(setting("NodePathUseCounts").toMap().value("Filter/Blur").toInt(), 2);
    }

    void recentListHoldsAsManyAsThePreferenceSays_data()
    {
        QTest::addColumn<int>("keep");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("one") << 1 << QStringList{"Filter/Sharpen"};
        QTest::newRow("two") << 2 << QStringList{"Filter/Sharpen", "Math/Mix"};
        QTest::newRow("none") << 0 << QStringList{};
    }

    void recentListHoldsAsManyAsThePreferenceSays()
    {
        QFETCH(int, keep);
        QFETCH(QStringList, expected);
        m_host.manager()->setNumberOfLastUsedNodePathsToStore(keep);
        setSetting("LastUsedNodePaths", QStringList{"Math/Mix", "Filter/Blur", "Layer/Merge"});
        typeAndChoose(QStringLiteral("sharpen"));
        view()->quickCreate();
        QCOMPARE(setting("LastUsedNodePaths").toStringList(), expected);
    }

    void storedListOfAnotherTypeIsReadAsAList()
    {
        setSetting("LastUsedNodePaths", QStringLiteral("Math/Mix"));
        typeAndChoose(QStringLiteral("sharpen"));
        view()->quickCreate();
        QCOMPARE(setting("LastUsedNodePaths").toStringList(),
                 (QStringList{"Filter/Sharpen", "Math/Mix"}));
    }

    void quickCreatedMergeIsAlwaysOrdinary()
    {
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Multi Channel Group", "Material"}}));
        select({"Material"});
        typeAndChoose(QStringLiteral("merge"));
        view()->quickCreate();
        QCOMPARE(m_network->nodes().last()->pathKey(), QStringLiteral("Layer/Merge"));
        QCOMPARE(undo()->undoText(), QStringLiteral("Create Node : Merge"));
    }

    void quickCreatedPaintNodeAndBakePointUseTheirCommands()
    {
        typeAndChoose(QStringLiteral("channel input"));
        view()->quickCreate();
        QCOMPARE(m_network->nodes().last()->pathKey(), QStringLiteral("Misc/Channel Input"));
        QCOMPARE(undo()->undoText(), QStringLiteral("Add Paint Node"));
        typeAndChoose(QStringLiteral("bake point"));
        view()->quickCreate();
        QCOMPARE(m_network->nodes().last()->pathKey(), QStringLiteral("Misc/Bake Point"));
        QCOMPARE(undo()->undoText(), QStringLiteral("Add Bake Point Node"));
    }

    void escapeCreatesNothingButKeepsFavourites()
    {
        setSetting("FavouriteNodePaths", QStringList{"Math/Mix"});
        whenShown<OssNodeQuickFindDialog>([](OssNodeQuickFindDialog *dialog) {
            auto *edit = dialog->findChild<QLineEdit *>();
            QTest::keyClicks(edit, QStringLiteral("sharpen"));
            QTest::keyClick(edit, Qt::Key_F, Qt::ControlModifier);
            QTest::keyClick(edit, Qt::Key_Escape);
        });
        view()->quickCreate();
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
        QCOMPARE(setting("FavouriteNodePaths").toStringList(),
                 (QStringList{"Math/Mix", "Filter/Sharpen"}));
        QVERIFY(setting("LastUsedNodePaths").toStringList().isEmpty());
    }

    void recentTypesLeadTheDialog()
    {
        setSetting("LastUsedNodePaths", QStringList{"Filter/Directional Blur"});
        QStringList shown;
        whenShown<OssNodeQuickFindDialog>([&shown](OssNodeQuickFindDialog *dialog) {
            QTest::keyClicks(dialog->findChild<QLineEdit *>(), QStringLiteral("blr"));
            shown = dialog->shownPathKeys();
            dialog->reject();
        });
        view()->quickCreate();
        QCOMPARE(shown.value(0), QStringLiteral("Filter/Directional Blur"));
        QCOMPARE(shown.value(1), QStringLiteral("Filter/Blur"));
    }

    void shiftReturnCreatesInTheStreamOfTheSelectedNode()
    {
        select({"Mix"});
        typeAndChoose(QStringLiteral("gamma"), Qt::ShiftModifier);
        view()->quickCreate();
        OssSnBaseNode *gamma = m_network->nodes().last();
        QCOMPARE(gamma->pathKey(), QStringLiteral("Adjust/Gamma"));
        QCOMPARE(gamma->inputConnection(gamma->preferredInput()), node("Mix"));
        // What Mix fed now comes from the new node.
        QCOMPARE(node("Out")->inputConnection("Input"), gamma);
        // Below Mix, clear of it.
        QVERIFY(gui(gamma)->sceneBoundingRect().top() >
                gui(node("Mix"))->sceneBoundingRect().bottom());
        QVERIFY(!collidesWithANode(gui(gamma)));
        checkOneStep(QStringLiteral("Create Node : Gamma"));
    }

    // A merge put in a stream that ends in a bake point blends in the bake's colour space; one
    // made beside the stream does not.
    void mergeInAStreamTakesItsBlendingFromBelow()
    {
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Bake Point", "Bake"}}));
        gui(node("Bake"))->setPos(150, 800);
        QVERIFY(node("Bake")->connectInput("Input", node("Out"), "Output"));
        const auto blending = [](OssSnBaseNode *merge) {
            return OssUserEnum::fromString(
                       merge->nodeAttributeValue("BlendColorSpaceEnabled").toString())
                .currentValue();
        };
        select({"Out"});
        typeAndChoose(QStringLiteral("merge"), Qt::ShiftModifier);
        view()->quickCreate();
        OssSnBaseNode *inStream = m_network->nodes().last();
        QCOMPARE(node("Bake")->inputConnection("Input"), inStream);
        QCOMPARE(blending(inStream), 1);
        m_network->clearSelection();
        OssSnBaseNode *beside = view()->createNodeAt("Layer/Merge", QPointF(-900, -900));
        QCOMPARE(blending(beside), 0);
    }

    void shiftReturnWithoutSelectionCreatesAtTheCursor()
    {
        const QPoint at = cursorAt(view()->mapFromScene(QPointF(550, 420)));
        typeAndChoose(QStringLiteral("gamma"), Qt::ShiftModifier);
        view()->quickCreate();
        OssSnBaseNode *gamma = m_network->nodes().last();
        QCOMPARE(gamma->pathKey(), QStringLiteral("Adjust/Gamma"));
        QVERIFY(gui(gamma)->sceneBoundingRect().contains(view()->mapToScene(at)));
        QVERIFY(!gamma->inputConnection(gamma->preferredInput()));
    }

    void quickCreateActionReachesTheCurrentView()
    {
        QAction *action =
            OssActionTreeManager::instance()->findAction("/Ossa/NodeGraph/Quick Create");
        QVERIFY(action);
        typeAndChoose(QStringLiteral("tri"));
        action->trigger();
        QCOMPARE(m_network->nodes().last()->pathKey(),
                 QStringLiteral("Environment/Tri Planar Projection"));
    }

    void creationActionsKeepTheCatalogueOrder()
    {
        QStringList texts;
        for (QAction *each : m_host.plugin()->fixedActions())
            texts << each->text();
        const QStringList mine{"Quick Create", "Search Node",  "Create Paint Node",
                               "Info Viewer",  "Import Nodes", "Export Nodes"};
        int at = -1;
        for (const QString &text : mine) {
            const int found = texts.indexOf(text);
            QVERIFY2(found > at, qPrintable(text));
            at = found;
        }
        QCOMPARE(texts.indexOf("Quick Create"), texts.indexOf("Bypass") + 1);
        QCOMPARE(texts.indexOf("Search Node"), texts.indexOf("Paste") + 1);
        QCOMPARE(texts.indexOf("Export Nodes"), texts.indexOf("Import Nodes") + 1);
        // Commands reached by name only have no action.
        for (const char *slot : {"generateMaterialPreview()", "dumpSelectedNodeInfo()",
                                 "dumpNodeUIAction()", "setImageSetByNameAction()"})
            QVERIFY2(m_host.plugin()->metaObject()->indexOfSlot(slot) >= 0, slot);
    }
};

QTEST_MAIN(tst_NodeCreation)
#include "tst_NodeCreation.moc"
