#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QFocusEvent>
#include <QtTest>

namespace {

// Reads how many receivers a signal has (a protected member of QObject).
struct ReceiverCount : QObject
{
    static int of(const QObject *object, const char *signal)
    {
        // A pointer to the inherited member is of type int (QObject::*)(const char *) const and
        // is called on the object as it is, without pretending it is of this class.
        const auto receivers = &ReceiverCount::receivers;
        return (object->*receivers)(signal);
    }
};

enum class Ending
{
    RightButton,
    MiddleButton,
    Pan,
};

} // namespace

Q_DECLARE_METATYPE(Ending)

// The view's pointer and keyboard handling on the real host and plug-in, driven by mouse and key
// events sent to the viewport at the scene points of the items.
//
// The graph: N1 feeds Mid, Mid feeds Out; Lone stands alone far to the right.
class tst_ViewInteraction : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssSnNodeGraphViewContextManager *manager() { return m_host.manager(); }
    OssShaderNetworkView *view() { return manager()->currentView(); }
    QWidget *viewport() { return view()->viewport(); }
    OssUndoManager *undo() { return OssUndoManager::instance(); }
    OssSnBaseNode *node(const char *name) { return m_network->node(QString::fromLatin1(name)); }
    OssNgNode *gui(const char *name) { return OssSnNodeGraphViewContext::guiNodeOf(node(name)); }
    OssSnBaseNode *make(const char *key, const char *name, const QPointF &pos)
    {
        OssSnBaseNode *made =
            m_network->createNode(QString::fromLatin1(key), QString::fromLatin1(name));
        if (made)
            OssSnNodeGraphViewContext::guiNodeOf(made)->setPos(pos);
        return made;
    }
    QPoint at(const QPointF &scenePos) { return view()->mapFromScene(scenePos); }
    QPoint centreOf(const char *name) { return at(gui(name)->sceneBoundingRect().center()); }
    // A point on a backdrop's title bar.
    QPoint titleOf(OssNgBackdropNode *backdrop)
    {
        return at(backdrop->scenePos() + QPointF(60, 8));
    }
    OssNgEdge *edgeInto(const char *name, const char *input) { return gui(name)->input(input); }
    QList<OssNgEdge *> connectionEdges()
    {
        QList<OssNgEdge *> edges;
        for (QGraphicsItem *item : view()->scene()->items())
            if (item->type() == OssNgEdge::Type) {
                auto *edge = static_cast<OssNgEdge *>(static_cast<QGraphicsObject *>(item));
                if (edge->kind() == OssNgEdge::Kind::Connection && edge->isFullConnected())
                    edges << edge;
            }
        return edges;
    }
    int dotableEdges()
    {
        int count = 0;
        for (OssNgEdge *edge : connectionEdges())
            count += edge->isDotable();
        return count;
    }

    void press(const QPoint &pos, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(viewport(), button, modifiers, pos);
    }
    void moveTo(const QPoint &pos, Qt::MouseButtons buttons = Qt::LeftButton,
                Qt::KeyboardModifiers modifiers = {})
    {
        QMouseEvent move(QEvent::MouseMove, pos, viewport()->mapToGlobal(pos), Qt::NoButton,
                         buttons, modifiers);
        QApplication::sendEvent(viewport(), &move);
    }
    void release(const QPoint &pos, Qt::MouseButton button = Qt::LeftButton,
                 Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseRelease(viewport(), button, modifiers, pos);
    }
    // A press, a few moves on the way and the release.
    void drag(const QPoint &from, const QPoint &to, Qt::MouseButton button = Qt::LeftButton,
              Qt::KeyboardModifiers modifiers = {})
    {
        press(from, button, modifiers);
        for (int step = 1; step <= 4; ++step)
            moveTo(from + (to - from) * step / 4, button, modifiers);
        release(to, button, modifiers);
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        manager()->nodeGraphWidget()->window()->resize(1000, 800);
        manager()->nodeGraphWidget()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(manager()->nodeGraphWidget()->window()));
        // The view follows the shake preferences once it has bound to the manager.
        QTRY_VERIFY(ReceiverCount::of(manager(), SIGNAL(shakeToExtractShakesChanged(int))) > 0);
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QCOMPARE(view()->network(), m_network);
        QVERIFY(make("Procedural/Noise/Perlin", "N1", {0, 0}));
        QVERIFY(make("Filter/Blur", "Mid", {0, 200}));
        QVERIFY(make("Filter/Blur", "Out", {0, 400}));
        QVERIFY(make("Filter/Blur", "Lone", {600, 200}));
        QVERIFY(node("Mid")->connectInput("Input", node("N1"), "Output"));
        QVERIFY(node("Out")->connectInput("Input", node("Mid"), "Output"));
        manager()->setIsAutoInsertOn(true);
        manager()->setShakeToExtractEnabled(true);
        manager()->setShakeToExtractShakes(4);
        manager()->setShakeToExtractTime(5000);
        view()->setCursorTrackingMode(OssNgView::NormalTracking);
        m_network->clearSelection();
        view()->resetTransform();
        view()->centerOn(QPointF(300, 250));
        view()->setFocus();
        undo()->clear();
        m_host.clearLines();
    }

    void cleanup()
    {
        // Keys held by a failed case would follow into the next.
        QTest::keyRelease(view(), Qt::Key_Control);
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- moving nodes

    void moveThreshold_data()
    {
        QTest::addColumn<int>("distance");
        QTest::addColumn<bool>("recorded");
        QTest::newRow("click") << 0 << false;
        QTest::newRow("4 units") << 4 << false;
        QTest::newRow("5 units exactly") << 5 << true;
        QTest::newRow("80 units") << 80 << true;
    }

    void moveThreshold()
    {
        QFETCH(int, distance);
        QFETCH(bool, recorded);
        const QPointF start = gui("Lone")->pos();
        const QPoint from = centreOf("Lone");
        drag(from, from + QPoint(distance, 0));
        QCOMPARE(gui("Lone")->pos(), start + QPointF(distance, 0));
        QCOMPARE(undo()->count(), recorded ? 1 : 0);
        if (!recorded)
            return;
        QCOMPARE(undo()->undoText(), QStringLiteral("Move node Lone"));
        undo()->undo();
        QCOMPARE(gui("Lone")->pos(), start);
        undo()->redo();
        QCOMPARE(gui("Lone")->pos(), start + QPointF(distance, 0));
    }

    void draggingSeveralSelectedNodesIsOneStep()
    {
        node("Mid")->setSelected(true);
        node("Lone")->setSelected(true);
        drag(centreOf("Lone"), centreOf("Lone") + QPoint(40, 30));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Move multiple (2) nodes"));
        QCOMPARE(gui("Mid")->pos(), QPointF(40, 230));
        undo()->undo();
        QCOMPARE(gui("Mid")->pos(), QPointF(0, 200));
        QCOMPARE(gui("Lone")->pos(), QPointF(600, 200));
    }

    void draggingABackdropMovesItsChildrenOnceAndUndoesOnce()
    {
        OssSnBaseNode *frame = make("Misc/Backdrop", "Frame", {-100, -100});
        QVERIFY(frame);
        auto *backdrop =
            qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(frame));
        QVERIFY(backdrop);
        backdrop->setNodeSize(QSizeF(450, 450));
        undo()->clear();
        // N1 and Mid lie on it; Out and Lone do not.
        drag(titleOf(backdrop), titleOf(backdrop) + QPoint(-50, 20));
        QCOMPARE(backdrop->pos(), QPointF(-150, -80));
        QCOMPARE(gui("N1")->pos(), QPointF(-50, 20));
        QCOMPARE(gui("Mid")->pos(), QPointF(-50, 220));
        QCOMPARE(gui("Out")->pos(), QPointF(0, 400));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Move multiple (3) nodes"));
        undo()->undo();
        QCOMPARE(backdrop->pos(), QPointF(-100, -100));
        QCOMPARE(gui("N1")->pos(), QPointF(0, 0));
        QCOMPARE(gui("Mid")->pos(), QPointF(0, 200));
        undo()->redo();
        QCOMPARE(backdrop->pos(), QPointF(-150, -80));
        QCOMPARE(gui("N1")->pos(), QPointF(-50, 20));
        QCOMPARE(gui("Mid")->pos(), QPointF(-50, 220));
    }

    void movingABackdropPushesTheContainersBelow()
    {
        OssSnBaseNode *upperNode = make("Misc/Backdrop", "Upper", {1000, 0});
        OssSnBaseNode *lowerNode = make("Misc/Backdrop", "Lower", {1000, 400});
        auto *upper =
            qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(upperNode));
        auto *lower =
            qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(lowerNode));
        upper->setNodeSize(QSizeF(600, 300));
        lower->setNodeSize(QSizeF(600, 300));
        view()->centerOn(QPointF(1300, 300));
        undo()->clear();
        drag(titleOf(upper), titleOf(upper) + QPoint(0, 200));
        QCOMPARE(upper->pos(), QPointF(1000, 200));
        QCOMPARE(QRectF(lower->pos(), lower->nodeSize()), QRectF(1000, 530, 600, 300));
        QCOMPARE(undo()->count(), 1);
        undo()->undo();
        QCOMPARE(upper->pos(), QPointF(1000, 0));
        QCOMPARE(QRectF(lower->pos(), lower->nodeSize()), QRectF(1000, 400, 600, 300));
    }

    void aBackdropChildGoneSinceTheLastLookIsReported()
    {
        OssSnBaseNode *frame = make("Misc/Backdrop", "Frame", {500, 100});
        auto *backdrop =
            qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(frame));
        backdrop->setNodeSize(QSizeF(400, 300));
        backdrop->setTitleText(QStringLiteral("Lone's frame"));
        backdrop->refreshChildrenList();
        QCOMPARE(backdrop->childrenList().size(), 1);
        frame->setSelected(true);
        delete gui("Lone");
        // A pan keeps the selection and starts no drag: the children are not looked up again.
        press(at({300, 600}), Qt::MiddleButton);
        release(at({300, 600}), Qt::MiddleButton);
        QVERIFY(m_host.hasLine(QStringLiteral("Backdrop has a null child: Lone's frame")));
    }

    void aNodeDeletedDuringItsDragIsLeftOut()
    {
        node("Mid")->setSelected(true);
        node("Lone")->setSelected(true);
        const QPoint from = centreOf("Lone");
        press(from);
        moveTo(from + QPoint(20, 10));
        moveTo(from + QPoint(40, 20));
        delete gui("Lone");
        release(from + QPoint(40, 20));
        QCOMPARE(gui("Mid")->pos(), QPointF(40, 220));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Move node Mid"));
        undo()->undo();
        QCOMPARE(gui("Mid")->pos(), QPointF(0, 200));
    }

    void releasesThatAreNotNodeDropsRecordNothing_data()
    {
        QTest::addColumn<Ending>("ending");
        QTest::newRow("right button") << Ending::RightButton;
        QTest::newRow("middle button") << Ending::MiddleButton;
        QTest::newRow("left-button pan (state not idle)") << Ending::Pan;
    }

    void releasesThatAreNotNodeDropsRecordNothing()
    {
        QFETCH(Ending, ending);
        node("Lone")->setSelected(true);
        const QPoint from = centreOf("Lone");
        const QPoint to = from + QPoint(60, 0);
        switch (ending) {
        case Ending::RightButton:
            drag(from, to, Qt::RightButton);
            break;
        case Ending::MiddleButton:
            drag(from, to, Qt::MiddleButton);
            break;
        case Ending::Pan:
            // Alt + left drag pans in the "Ossa" scheme; the node moves under it meanwhile.
            view()->setNavigationControlType(QStringLiteral("Ossa"));
            press(from, Qt::LeftButton, Qt::AltModifier);
            QCOMPARE(view()->interactionState(), int(OssNgView::Panning));
            gui("Lone")->setPos(gui("Lone")->pos() + QPointF(60, 0));
            release(from, Qt::LeftButton, Qt::AltModifier);
            view()->setNavigationControlType(QStringLiteral("Kova"));
            break;
        }
        QCOMPARE(undo()->count(), 0);
    }

    // --- automatic insertion into edges

    void aNodeDroppedOnAnEdgeIsInsertedInIt_data()
    {
        QTest::addColumn<bool>("autoInsert");
        QTest::newRow("auto insert on") << true;
        QTest::newRow("auto insert off") << false;
    }

    void aNodeDroppedOnAnEdgeIsInsertedInIt()
    {
        QFETCH(bool, autoInsert);
        manager()->setIsAutoInsertOn(autoInsert);
        OssNgEdge *edge = edgeInto("Out", "Input");
        QVERIFY(edge);
        const QString before = m_network->dump();
        const QPoint from = centreOf("Lone");
        const QPoint to = at(edge->dotMarkerScenePos());
        press(from);
        for (int step = 1; step <= 4; ++step)
            moveTo(from + (to - from) * step / 4);
        // The edge shows where the node would go.
        QCOMPARE(view()->insertionCandidate() == edge, autoInsert);
        QCOMPARE(edge->isInsertionHighlighted(), autoInsert);
        release(to);
        QVERIFY(!edge->isInsertionHighlighted());
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Move node Lone"));
        if (!autoInsert) {
            QCOMPARE(node("Out")->inputConnection("Input"), node("Mid"));
            QVERIFY(!node("Lone")->inputConnection("Input"));
            return;
        }
        QCOMPARE(node("Out")->inputConnection("Input"), node("Lone"));
        QCOMPARE(node("Lone")->inputConnection("Input"), node("Mid"));
        const QString after = m_network->dump();
        undo()->undo();
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(gui("Lone")->pos(), QPointF(600, 200));
        undo()->redo();
        QCOMPARE(m_network->dump(), after);
    }

    // --- Control and the dotable edges

    void controlShowsTheDotMarkersOfVisibleEdges()
    {
        // An edge out of sight keeps its marker hidden.
        QVERIFY(make("Filter/Blur", "Far", {5000, 5000}));
        QVERIFY(make("Filter/Blur", "Farther", {5000, 5300}));
        QVERIFY(node("Farther")->connectInput("Input", node("Far"), "Output"));
        QCOMPARE(connectionEdges().size(), 3);
        QTest::keyPress(view(), Qt::Key_Control);
        QCOMPARE(dotableEdges(), 2);
        QVERIFY(!edgeInto("Farther", "Input")->isDotable());
        QTest::keyRelease(view(), Qt::Key_Control);
        QCOMPARE(dotableEdges(), 0);
    }

    void losingFocusHidesTheDotMarkers()
    {
        QTest::keyPress(view(), Qt::Key_Control);
        QCOMPARE(dotableEdges(), 2);
        QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
        QApplication::sendEvent(view(), &out);
        QCOMPARE(dotableEdges(), 0);
    }

    void controlWhileAnEdgeIsDraggedShowsNoMarkers()
    {
        const QPoint output = at(gui("Lone")->outputPortScenePos("Output"));
        press(output);
        moveTo(output + QPoint(30, 40));
        QVERIFY(view()->draggedEdge());
        QTest::keyPress(view(), Qt::Key_Control);
        QCOMPARE(dotableEdges(), 0);
        QTest::keyRelease(view(), Qt::Key_Control);
        release(output + QPoint(30, 40));
    }

    void keysReachTheBaseView()
    {
        // The scene's focus item is where the base view sends keys: it sees Control and Return.
        QStringList seen;
        struct KeyWatcher : QGraphicsRectItem
        {
            QStringList *seen = nullptr;
            void keyPressEvent(QKeyEvent *event) override
            {
                *seen << QKeySequence(event->key()).toString();
            }
        };
        auto *watcher = new KeyWatcher;
        watcher->seen = &seen;
        watcher->setFlag(QGraphicsItem::ItemIsFocusable);
        view()->scene()->addItem(watcher);
        view()->scene()->setFocusItem(watcher);
        QTest::keyPress(view(), Qt::Key_Control);
        QTest::keyClick(view(), Qt::Key_Return, Qt::ControlModifier);
        QTest::keyRelease(view(), Qt::Key_Control);
        delete watcher;
        QVERIFY2(seen.contains(QStringLiteral("Return")), qPrintable(seen.join(',')));
        QVERIFY2(seen.size() >= 2, qPrintable(seen.join(',')));
    }

    // --- Ctrl+Return

    void controlReturnOpensASelectedGroup_data()
    {
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("tabs");
        QTest::newRow("group, Return") << "Group" << int(Qt::Key_Return) << 2;
        QTest::newRow("group, Enter") << "Group" << int(Qt::Key_Enter) << 2;
        QTest::newRow("not a group") << "Lone" << int(Qt::Key_Return) << 1;
        QTest::newRow("nothing selected") << QString() << int(Qt::Key_Return) << 1;
    }

    void controlReturnOpensASelectedGroup()
    {
        QFETCH(QString, selected);
        QFETCH(int, key);
        QFETCH(int, tabs);
        QVERIFY(make("Misc/Group", "Group", {300, 600}));
        if (!selected.isEmpty())
            m_network->node(selected)->setSelected(true);
        QCOMPARE(manager()->nodeGraphWidget()->count(), 1);
        undo()->clear();
        QTest::keyClick(view(), Qt::Key(key), Qt::ControlModifier);
        QCOMPARE(manager()->nodeGraphWidget()->count(), tabs);
        QCOMPARE(undo()->count(), 0);
    }

    // --- Escape and dropping grabbed edges

    void escapeDropsTheDraggedEdge()
    {
        const QString before = m_network->dump();
        const QPoint output = at(gui("Lone")->outputPortScenePos("Output"));
        const QPoint target = centreOf("Out");
        press(output);
        moveTo(target);
        QVERIFY(view()->draggedEdge());
        QTest::keyClick(view(), Qt::Key_Escape);
        QVERIFY(!view()->draggedEdge());
        QCOMPARE(view()->interactionState(), int(OssNgView::Idle));
        release(target);
        // The drop that would have connected Lone to Out never happens.
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(undo()->count(), 0);
        QTRY_COMPARE(connectionEdges().size(), 2);
    }

    void escapeWithoutAGrabbedEdgeChangesNothing()
    {
        node("Lone")->setSelected(true);
        const QString before = m_network->dump();
        QTest::keyClick(view(), Qt::Key_Escape);
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(undo()->count(), 0);
    }

    void dropGrabbedEdgeReleasesAPickedUpEdge()
    {
        // Dragging from a connected input picks its edge up; dropping it puts it back.
        const QPoint input = at(gui("Out")->inputPortScenePos("Input"));
        press(input);
        moveTo(input + QPoint(200, 0));
        QVERIFY(view()->draggedEdge());
        QVERIFY(!edgeInto("Out", "Input")->isVisible());
        view()->dropGrabbedEdge();
        QVERIFY(!view()->draggedEdge());
        QVERIFY(edgeInto("Out", "Input")->isVisible());
        release(input + QPoint(200, 0));
        QCOMPARE(node("Out")->inputConnection("Input"), node("Mid"));
        view()->dropGrabbedEdge();
        QCOMPARE(undo()->count(), 0);
    }

    // --- edge sever and dots

    void toggleEdgeSever_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::newRow("normal") << int(OssNgView::NormalTracking)
                                << int(OssNgView::EdgeSeverTracking);
        QTest::newRow("sever") << int(OssNgView::EdgeSeverTracking)
                               << int(OssNgView::NormalTracking);
        QTest::newRow("pick-up") << int(OssNgView::EdgePickUpTracking)
                                 << int(OssNgView::EdgeSeverTracking);
    }

    void toggleEdgeSever()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        view()->setCursorTrackingMode(from);
        view()->toggleEdgeSeverAction();
        QCOMPARE(view()->cursorTrackingMode(), to);
    }

    void theEdgeSeverActionTogglesTheCurrentView()
    {
        QAction *toggle = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Toggle Edge Sever Mode"));
        QVERIFY(toggle);
        toggle->trigger();
        QCOMPARE(view()->cursorTrackingMode(), int(OssNgView::EdgeSeverTracking));
        toggle->trigger();
        QCOMPARE(view()->cursorTrackingMode(), int(OssNgView::NormalTracking));
    }

    void anUnconnectedDotGoesIntoTheEdge()
    {
        const QString before = m_network->dump();
        OssNgEdge *edge = edgeInto("Out", "Input");
        QCursor::setPos(viewport()->mapToGlobal(at({200, 300})));
        view()->createUnconnectedDotNode(edge);
        QCOMPARE(undo()->count(), 1);
        OssSnBaseNode *dot = node("Out")->inputConnection("Input");
        QVERIFY(dot && dot != node("Mid"));
        QVERIFY(dot->hasTag(QStringLiteral("_dot")) || dot->pathKey() == QLatin1String("Misc/Dot"));
        QCOMPARE(dot->inputConnection(dot->inputNames().value(0)), node("Mid"));
        undo()->undo();
        QCOMPARE(m_network->dump(), before);
    }

    // --- double-click

    void doubleClickOnEmptyCanvasMakesTheSelectedViewerCurrent()
    {
        OssSnBaseNode *first = make("Misc/Viewer", "ViewerA", {900, 0});
        OssSnBaseNode *second = make("Misc/Viewer", "ViewerB", {900, 300});
        OssShaderNetworkManager::instance()->setCurrentViewerNode(first);
        second->setSelected(true);
        QVERIFY(OssShaderNetworkManager::instance()->currentViewerNode() == first);
        QSignalSpy opened(view(), &OssShaderNetworkView::nodeDoubleClicked);
        // Control keeps the selection through the presses on the empty canvas.
        QTest::mouseDClick(viewport(), Qt::LeftButton, Qt::ControlModifier, at({300, 800}));
        QCOMPARE(opened.count(), 1);
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewerNode(), second);
    }

    // --- shake to extract

    void shakingADraggedNodeExtractsIt_data()
    {
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("shakes");
        QTest::addColumn<int>("time");
        QTest::addColumn<bool>("extracted");
        QTest::newRow("enabled, 4 shakes") << true << 4 << 5000 << true;
        QTest::newRow("disabled") << false << 4 << 5000 << false;
        QTest::newRow("more shakes needed") << true << 8 << 5000 << false;
        // The strokes come further apart than the time allows for the whole gesture.
        QTest::newRow("too slow") << true << 4 << 20 << false;
    }

    void shakingADraggedNodeExtractsIt()
    {
        QFETCH(bool, enabled);
        QFETCH(int, shakes);
        QFETCH(int, time);
        QFETCH(bool, extracted);
        manager()->setShakeToExtractEnabled(enabled);
        manager()->setShakeToExtractShakes(shakes);
        manager()->setShakeToExtractTime(time);
        const QString before = m_network->dump();
        const QPoint from = centreOf("Mid");
        press(from);
        // Five strokes, four reversals.
        QElapsedTimer sinceLastStroke;
        sinceLastStroke.start();
        for (int stroke = 0; stroke < 5; ++stroke) {
            if (time < 1000)
                QTRY_VERIFY(sinceLastStroke.elapsed() > time);
            sinceLastStroke.restart();
            moveTo(from + QPoint(stroke % 2 == 0 ? 30 : -30, 0));
        }
        moveTo(from);
        release(from);
        if (!extracted) {
            QCOMPARE(m_network->dump(), before);
            QCOMPARE(undo()->count(), 0);
            return;
        }
        QVERIFY(!node("Mid")->inputConnection("Input"));
        QCOMPARE(node("Out")->inputConnection("Input"), node("N1"));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Extract Nodes"));
        undo()->undo();
        QCOMPARE(m_network->dump(), before);
    }

    // --- backdrop resize

    void resizingABackdropIsOneStep()
    {
        OssSnBaseNode *frame = make("Misc/Backdrop", "Frame", {300, -200});
        auto *backdrop =
            qobject_cast<OssNgBackdropNode *>(OssSnNodeGraphViewContext::guiNodeOf(frame));
        backdrop->setNodeSize(QSizeF(200, 150));
        undo()->clear();
        const QPoint handle = at(backdrop->scenePos() + QPointF(195, 145));
        // The corner follows the pointer.
        drag(handle, handle + QPoint(100, 50));
        QCOMPARE(backdrop->nodeSize(), QSizeF(295, 195));
        QCOMPARE(backdrop->pos(), QPointF(300, -200));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Resize Frame"));
        undo()->undo();
        QCOMPARE(backdrop->nodeSize(), QSizeF(200, 150));
        undo()->redo();
        QCOMPARE(backdrop->nodeSize(), QSizeF(295, 195));
    }
};

QTEST_MAIN(tst_ViewInteraction)
#include "tst_ViewInteraction.moc"
