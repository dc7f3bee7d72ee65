#include "OssTestHost.h"

#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgExtendedNode.h>
#include <OssNgStyle.h>
#include <OssNgView.h>

#include <QElapsedTimer>
#include <QGraphicsScene>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QtTest>

namespace {

// A view whose shake settings a test can set, as the plug-in's view does.
class View : public OssNgView
{
public:
    void setNavigation(const QString &scheme) { m_navigationControlType = scheme; }
    void setShake(bool enabled, int shakes, int time)
    {
        m_shakeToExtractEnabled = enabled;
        m_shakeToExtractShakes = shakes;
        m_shakeToExtractTime = time;
    }
};

struct Connection
{
    OssNgNode *node;
    OssNgNode *source;
    QString input;
    QString output;
};

} // namespace

// The base view driven by real mouse events on its viewport.
class tst_NodeGraphView : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    QGraphicsScene *m_scene = nullptr;
    View *m_view = nullptr;
    OssNgExtendedNode *m_a = nullptr; // source at the top
    OssNgExtendedNode *m_b = nullptr; // target below
    QList<Connection> m_requests;

    OssNgExtendedNode *makeNode(const QString &text, const QPointF &pos)
    {
        auto *node = new OssNgExtendedNode;
        node->setText(text);
        node->addInputPort("Input", true);
        node->addInputPort("Mask");
        node->addOutputPort("Output");
        node->setPos(pos);
        m_scene->addItem(node);
        connect(node, &OssNgNode::inputSourceChanged, this,
                [this, node](OssNgNode *source, const QString &input, const QString &output) {
                    m_requests.append(Connection{node, source, input, output});
                });
        return node;
    }

    QPoint at(const QPointF &scenePos) const { return m_view->mapFromScene(scenePos); }
    void drag(const QPoint &from, const QPoint &to, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, modifiers, from);
        for (int i = 1; i <= 5; ++i) {
            const QPoint step = from + (to - from) * i / 5;
            QMouseEvent move(QEvent::MouseMove, step, m_view->viewport()->mapToGlobal(step),
                             Qt::NoButton, Qt::LeftButton, modifiers);
            QApplication::sendEvent(m_view->viewport(), &move);
        }
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, modifiers, to);
    }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        // No scene rectangle: the scene's grows with its items, as the plug-in's scenes do.
        m_scene = new QGraphicsScene;
        m_view = new View;
        m_view->setScene(m_scene);
        m_view->init();
        m_view->resize(1000, 800);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view));
        m_requests.clear();
        m_a = makeNode("A", {0, 0});
        m_b = makeNode("B", {0, 250});
        m_view->centerOn(80, 150);
    }

    void cleanup()
    {
        delete m_view;
        delete m_scene;
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    void dragFromOutputToInputAsksForTheConnection()
    {
        drag(at(m_a->outputPortScenePos("Output")), at(m_b->inputPortScenePos("Mask")));
        QCOMPARE(m_requests.size(), 1);
        QCOMPARE(m_requests.first().node, m_b);
        QCOMPARE(m_requests.first().source, m_a);
        QCOMPARE(m_requests.first().input, QStringLiteral("Mask"));
        QCOMPARE(m_requests.first().output, QStringLiteral("Output"));
        // The view draws nothing itself: the connection is the business side's to make.
        QVERIFY(!m_b->input("Mask"));
        QTRY_VERIFY(!m_view->draggedEdge());
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
    }

    void dropOnTheBodyTakesTheFreePreferredInput()
    {
        drag(at(m_a->outputPortScenePos("Output")), at(m_b->sceneBoundingRect().center()));
        QCOMPARE(m_requests.size(), 1);
        QCOMPARE(m_requests.first().input, QStringLiteral("Input"));
        m_requests.clear();
        m_b->connectInput("Input", m_a, "Output");
        drag(at(m_a->outputPortScenePos("Output")), at(m_b->sceneBoundingRect().center()));
        QCOMPARE(m_requests.first().input, QStringLiteral("Mask"));
    }

    void dragFromAnInputToAnOutput()
    {
        drag(at(m_b->inputPortScenePos("Input")), at(m_a->sceneBoundingRect().center()));
        QCOMPARE(m_requests.size(), 1);
        QCOMPARE(m_requests.first().node, m_b);
        QCOMPARE(m_requests.first().source, m_a);
        QCOMPARE(m_requests.first().output, QStringLiteral("Output"));
    }

    void pickingUpAConnectedInputAndDroppingItNowhereDisconnects()
    {
        m_b->connectInput("Input", m_a, "Output");
        drag(at(m_b->inputPortScenePos("Input")), at(QPointF(600, 600)));
        QCOMPARE(m_requests.size(), 1);
        QCOMPARE(m_requests.first().node, m_b);
        QVERIFY(!m_requests.first().source);
        QCOMPARE(m_requests.first().input, QStringLiteral("Input"));
        // The edge stays until the business side disconnects.
        QVERIFY(m_b->input("Input") && m_b->input("Input")->isVisible());
    }

    void movingAPickedUpEdgeToAnotherInput()
    {
        m_b->connectInput("Input", m_a, "Output");
        drag(at(m_b->inputPortScenePos("Input")), at(m_b->inputPortScenePos("Mask")));
        QCOMPARE(m_requests.size(), 2);
        QVERIFY(!m_requests.at(0).source);
        QCOMPARE(m_requests.at(1).source, m_a);
        QCOMPARE(m_requests.at(1).input, QStringLiteral("Mask"));
    }

    void severModeCutsCrossedEdges()
    {
        m_b->connectInput("Input", m_a, "Output");
        m_b->connectInput("Mask", m_a, "Output");
        m_view->setCursorTrackingMode(OssNgView::EdgeSeverTracking);
        QSignalSpy severed(m_view, &OssNgView::edgeSevered);
        const QPointF middle = m_b->input("Input")->curve().pointAtPercent(0.5);
        drag(at(middle + QPointF(-250, 0)), at(middle + QPointF(250, 0)));
        QCOMPARE(severed.count(), 2);
        QCOMPARE(m_requests.size(), 2);
        QStringList inputs{m_requests.at(0).input, m_requests.at(1).input};
        inputs.sort();
        QCOMPARE(inputs, (QStringList{"Input", "Mask"}));
        QVERIFY(!m_requests.at(0).source && !m_requests.at(1).source);
    }

    void navigationSchemes_data()
    {
        QTest::addColumn<QString>("scheme");
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<bool>("pans");
        QTest::addColumn<bool>("zooms");
        QTest::newRow("Kova middle") << "Kova" << int(Qt::MiddleButton) << 0 << true << false;
        QTest::newRow("Kova ctrl middle")
            << "Kova" << int(Qt::MiddleButton) << int(Qt::ControlModifier) << false << true;
        QTest::newRow("Kova alt left")
            << "Kova" << int(Qt::LeftButton) << int(Qt::AltModifier) << false << false;
        QTest::newRow("Ossa alt left")
            << "Ossa" << int(Qt::LeftButton) << int(Qt::AltModifier) << true << false;
        QTest::newRow("Ossa alt right")
            << "Ossa" << int(Qt::RightButton) << int(Qt::AltModifier) << false << true;
        QTest::newRow("Ossa middle") << "Ossa" << int(Qt::MiddleButton) << 0 << true << false;
    }

    void navigationSchemes()
    {
        QFETCH(QString, scheme);
        QFETCH(int, button);
        QFETCH(int, modifiers);
        QFETCH(bool, pans);
        QFETCH(bool, zooms);
        m_view->setNavigation(scheme);
        const QPoint from(500, 400), to(560, 430);
        const QPointF centre = m_view->viewportInSceneCoords().center();
        const double zoom = m_view->zoom();
        const auto mouseButton = Qt::MouseButton(button);
        const auto keys = Qt::KeyboardModifiers(modifiers);
        QTest::mousePress(m_view->viewport(), mouseButton, keys, from);
        QMouseEvent move(QEvent::MouseMove, to, m_view->viewport()->mapToGlobal(to), Qt::NoButton,
                         mouseButton, keys);
        QApplication::sendEvent(m_view->viewport(), &move);
        QTest::mouseRelease(m_view->viewport(), mouseButton, keys, to);
        QCOMPARE(m_view->viewportInSceneCoords().center() != centre && !zooms, pans);
        QCOMPARE(m_view->zoom() != zoom, zooms);
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
    }

    void removingTheTargetFromTheSceneDuringADrag()
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {},
                          at(m_a->outputPortScenePos("Output")));
        QVERIFY(m_view->draggedEdge());
        const QPoint drop = at(m_b->inputPortScenePos("Input"));
        m_scene->removeItem(m_b);
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, drop);
        QVERIFY(m_requests.isEmpty());
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
        m_scene->addItem(m_b);
    }

    void deletingANodeWhileItsEdgeIsDragged()
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {},
                          at(m_a->outputPortScenePos("Output")));
        QVERIFY(m_view->draggedEdge());
        delete m_a;
        m_a = nullptr;
        QVERIFY(!m_view->draggedEdge());
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {},
                            at(m_b->inputPortScenePos("Input")));
        QVERIFY(m_requests.isEmpty());
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
    }

    void draggingNodesMovesThemAndReportsTheMove()
    {
        QSignalSpy moved(m_view, &OssNgView::nodesMoved);
        const QPointF before = m_a->pos();
        drag(at(m_a->sceneBoundingRect().center()),
             at(m_a->sceneBoundingRect().center()) + QPoint(120, 40));
        QVERIFY(m_a->pos() != before);
        QCOMPARE(m_a->savedPosition(), before);
        QCOMPARE(moved.count(), 1);
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
    }

    // A node drag is the items' own: the base view stays idle through it, so a subclass reading
    // the state before a release can tell a node drop from the end of its own operations.
    void aNodeDragLeavesTheStateIdle_data()
    {
        QTest::addColumn<QString>("gesture");
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("draggingNodes");
        QTest::newRow("node drag") << "node" << int(OssNgView::Idle) << true;
        QTest::newRow("rubber band") << "canvas" << int(OssNgView::RubberBanding) << false;
        QTest::newRow("edge drag") << "output" << int(OssNgView::DraggingEdge) << false;
    }

    void aNodeDragLeavesTheStateIdle()
    {
        QFETCH(QString, gesture);
        QFETCH(int, state);
        QFETCH(bool, draggingNodes);
        QPoint from = at(m_a->sceneBoundingRect().center());
        if (gesture == QLatin1String("canvas"))
            from = at({600, 600});
        else if (gesture == QLatin1String("output"))
            from = at(m_a->outputPortScenePos("Output"));
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, from);
        const QPoint to = from + QPoint(50, 30);
        QMouseEvent move(QEvent::MouseMove, to, m_view->viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(m_view->viewport(), &move);
        QCOMPARE(m_view->interactionState(), state);
        QCOMPARE(m_view->isDraggingNodes(), draggingNodes);
        // A dragged edge is the scene's mouse grabber.
        if (gesture == QLatin1String("output"))
            QCOMPARE(m_scene->mouseGrabberItem(), m_view->draggedEdge());
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, to);
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
        QVERIFY(!m_view->isDraggingNodes());
    }

    void anEdgeLetGoByTheSceneEndsItsDragWithoutAConnection()
    {
        const QPoint from = at(m_a->outputPortScenePos("Output"));
        const QPoint to = at(m_b->inputPortScenePos("Mask"));
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, from);
        QMouseEvent move(QEvent::MouseMove, to, m_view->viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(m_view->viewport(), &move);
        QVERIFY(m_view->draggedEdge());
        m_view->draggedEdge()->ungrabMouse();
        QVERIFY(!m_view->draggedEdge());
        QCOMPARE(m_view->interactionState(), int(OssNgView::Idle));
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, to);
        QVERIFY(m_requests.isEmpty());
    }

    void shakeIsDetectedWithinTheTime_data()
    {
        QTest::addColumn<int>("reversals");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("triggered");
        QTest::newRow("enough shakes") << 5 << true << true;
        QTest::newRow("too few") << 2 << true << false;
        QTest::newRow("turned off") << 6 << false << false;
        QTest::newRow("too slow") << 6 << true << false;
    }

    void shakeIsDetectedWithinTheTime()
    {
        QFETCH(int, reversals);
        QFETCH(bool, enabled);
        QFETCH(bool, triggered);
        const bool slow = QByteArray(QTest::currentDataTag()) == "too slow";
        // A slow shake has more time between its reversals than the gesture allows.
        const int gestureTime = slow ? 20 : 5000;
        m_view->setShake(enabled, 4, gestureTime);
        QSignalSpy shake(m_view, &OssNgView::shakeToExtractTriggered);
        const QPoint start = at(m_a->sceneBoundingRect().center());
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, start);
        QPoint pos = start;
        QElapsedTimer sinceLastMove;
        sinceLastMove.start();
        for (int i = 0; i <= reversals; ++i) {
            pos += QPoint(i % 2 ? -40 : 40, 0);
            if (slow)
                QTRY_VERIFY(sinceLastMove.elapsed() > gestureTime);
            sinceLastMove.restart();
            QMouseEvent move(QEvent::MouseMove, pos, m_view->viewport()->mapToGlobal(pos),
                             Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(m_view->viewport(), &move);
        }
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, pos);
        QCOMPARE(shake.count(), triggered ? 1 : 0);
    }

    void rubberBandSelects()
    {
        const QRectF both = m_a->sceneBoundingRect().united(m_b->sceneBoundingRect());
        drag(at(both.topLeft() - QPointF(40, 40)), at(both.bottomRight() + QPointF(40, 40)));
        QCOMPARE(m_view->sortedSelection(), (QList<OssNgNode *>{m_a, m_b}));
    }

    void zoomIsExact()
    {
        m_view->zoomIn(2.0);
        m_view->zoomOut(m_view->zoom());
        m_view->zoomIn(0.75);
        QCOMPARE(m_view->zoom(), 0.75);
        const double before = m_view->zoom();
        QWheelEvent wheel(QPointF(500, 400), m_view->viewport()->mapToGlobal(QPoint(500, 400)),
                          QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(m_view->viewport(), &wheel);
        QVERIFY(qAbs(m_view->zoom() - before * 1.15) < 1e-9);
        m_view->scaleView(1e6);
        QVERIFY(m_view->zoom() <= 8.0);
    }

    // The wheel zooms about the cursor: the scene point under it stays there to the pixel,
    // anywhere in the viewport and whatever the size of the graph; with the centre as anchor,
    // the centre stays.
    void wheelZoomKeepsTheAnchorInPlace_data()
    {
        QTest::addColumn<QPoint>("cursor");
        QTest::addColumn<bool>("underMouse");
        QTest::newRow("middle") << QPoint(500, 400) << true;
        QTest::newRow("top left corner") << QPoint(3, 4) << true;
        QTest::newRow("bottom right corner") << QPoint(990, 790) << true;
        QTest::newRow("right edge") << QPoint(995, 120) << true;
        QTest::newRow("centre anchor") << QPoint(100, 700) << false;
    }

    void wheelZoomKeepsTheAnchorInPlace()
    {
        QFETCH(QPoint, cursor);
        QFETCH(bool, underMouse);
        m_view->setTransformationAnchor(underMouse ? QGraphicsView::AnchorUnderMouse
                                                   : QGraphicsView::AnchorViewCenter);
        const QPoint anchor = underMouse ? cursor : m_view->viewport()->rect().center();
        const QPointF fixed = m_view->mapToSceneExact(QPointF(anchor));
        const auto wheel = [this, cursor](int delta) {
            QWheelEvent event(QPointF(cursor), m_view->viewport()->mapToGlobal(cursor), QPoint(),
                              QPoint(0, delta), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                              false);
            QApplication::sendEvent(m_view->viewport(), &event);
        };
        const double zoom = m_view->zoom();
        for (int delta : {120, 120, 120, 120, 120, 120, 120, -120, -120, -120, -120, -120, -120,
                          -120, -120, -120, -120, -120}) {
            wheel(delta);
            const QPointF now = m_view->mapFromScene(fixed);
            QVERIFY2(qAbs(now.x() - anchor.x()) <= 1 && qAbs(now.y() - anchor.y()) <= 1,
                     qPrintable(QStringLiteral("at %1, %2 after zooming to %3")
                                    .arg(now.x())
                                    .arg(now.y())
                                    .arg(m_view->zoom())));
        }
        QVERIFY(m_view->zoom() < zoom);
    }

    // An endless canvas: a small graph pans any distance, by exactly the distance dragged, and
    // no scroll bars show.
    void panningGoesAnywhere_data()
    {
        QTest::addColumn<QPoint>("drag");
        QTest::newRow("right") << QPoint(700, 0);
        QTest::newRow("up") << QPoint(0, -600);
        QTest::newRow("diagonal") << QPoint(-900, 700);
    }

    void panningGoesAnywhere()
    {
        QFETCH(QPoint, drag);
        QVERIFY(!m_view->horizontalScrollBar()->isVisible());
        QVERIFY(!m_view->verticalScrollBar()->isVisible());
        const QPoint before = at(m_a->pos());
        for (int round = 0; round < 3; ++round) {
            const QPoint from(500, 400);
            QTest::mousePress(m_view->viewport(), Qt::MiddleButton, {}, from);
            QMouseEvent move(QEvent::MouseMove, from + drag,
                             m_view->viewport()->mapToGlobal(from + drag), Qt::NoButton,
                             Qt::MiddleButton, {});
            QApplication::sendEvent(m_view->viewport(), &move);
            QTest::mouseRelease(m_view->viewport(), Qt::MiddleButton, {}, from + drag);
        }
        QCOMPARE(at(m_a->pos()), before + drag * 3);
    }

    // Nothing moves unless the user moves it: adding a node far away, or dragging an edge out
    // past the graph, leaves the nodes where they are on screen.
    void theGraphStaysPutWhenItGrows()
    {
        const QPoint a = at(m_a->pos());
        makeNode("Far", {6000, -4000});
        QCoreApplication::processEvents();
        QCOMPARE(at(m_a->pos()), a);
        const QPoint output = at(m_a->outputPortScenePos("Output"));
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, output);
        for (const QPoint &to : {QPoint(990, 790), QPoint(5, 5), QPoint(990, 10)}) {
            QMouseEvent move(QEvent::MouseMove, to, m_view->viewport()->mapToGlobal(to),
                             Qt::NoButton, Qt::LeftButton, {});
            QApplication::sendEvent(m_view->viewport(), &move);
            QCoreApplication::processEvents();
            QCOMPARE(at(m_a->pos()), a);
        }
        const QPoint input = at(m_b->inputPortScenePos("Mask"));
        QMouseEvent move(QEvent::MouseMove, input, m_view->viewport()->mapToGlobal(input),
                         Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(m_view->viewport(), &move);
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, input);
        QCOMPARE(m_requests.size(), 1);
        QCOMPARE(m_requests.first().input, QStringLiteral("Mask"));
        QCOMPARE(at(m_a->pos()), a);
    }

    // A rectangle the view showed is shown again exactly, however often it is restored.
    void aShownRectangleIsRestoredExactly()
    {
        m_view->zoomAt(0.731, QPoint(217, 333));
        m_view->centerOn(1234.5, -567.25);
        const QRectF shown = m_view->viewportInSceneCoords();
        const QTransform transform = m_view->transform();
        for (int round = 0; round < 25; ++round) {
            m_view->resetTransform();
            m_view->centerOn(0, 0);
            m_view->showSceneRect(shown);
        }
        QCOMPARE(m_view->viewportInSceneCoords(), shown);
        QCOMPARE(m_view->transform(), transform);
    }

    void visibleBoundsAndFraming()
    {
        const QRectF bounds = m_view->visibleNodeBounds();
        QVERIFY(bounds.contains(m_a->sceneBoundingRect()));
        QVERIFY(bounds.contains(m_b->sceneBoundingRect()));
        m_b->hide();
        QVERIFY(!m_view->visibleNodeBounds().contains(m_b->sceneBoundingRect()));
        m_view->fitInView(bounds, Qt::KeepAspectRatio);
        QVERIFY(m_view->viewportInSceneCoords().contains(m_a->sceneBoundingRect().center()));
    }

    void autoInsertSplicesANodeDroppedOnAnEdge()
    {
        m_b->connectInput("Input", m_a, "Output");
        OssNgExtendedNode *c = makeNode("C", {400, 0});
        c->setPos(m_b->input("Input")->curve().pointAtPercent(0.5) -
                  QPointF(c->nodeSize().width() / 2, c->nodeSize().height() / 2));
        m_view->setAutoInsertEnabled(false);
        QVERIFY(!c->processAutoinsert());
        m_view->setAutoInsertEnabled(true);
        QVERIFY(c->processAutoinsert());
        QCOMPARE(m_requests.size(), 2);
        QCOMPARE(m_requests.at(0).node, c);
        QCOMPARE(m_requests.at(0).source, m_a);
        QCOMPARE(m_requests.at(0).input, QStringLiteral("Input"));
        QCOMPARE(m_requests.at(1).node, m_b);
        QCOMPARE(m_requests.at(1).source, c);
        QCOMPARE(m_requests.at(1).output, QStringLiteral("Output"));
    }

    void dotMarkerClicksReachTheTargetNode()
    {
        OssNgEdge *edge = m_b->connectInput("Input", m_a, "Output");
        edge->switchToDotableMode(true);
        QSignalSpy clicked(m_b, &OssNgNode::clickedOnDotableMarkerOnEdge);
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, at(edge->dotMarkerScenePos()));
        QCOMPARE(clicked.count(), 1);
        QCOMPARE(clicked.first().first().value<OssNgEdge *>(), edge);
    }

    // The view does not restore the painter between items: one node's port labels or badges
    // must not change the font of the next node's title. Two nodes alike look alike.
    void nodesAlikeDrawAlike()
    {
        m_a->setText("Title");
        m_b->setText("Title");
        m_b->setPos(m_a->pos() + QPointF(0, 200));
        m_a->setMark(OssNgExtendedNode::CachedMark, true);
        m_b->setMark(OssNgExtendedNode::CachedMark, true);
        m_view->resetTransform();
        m_view->centerOn(m_a->sceneBoundingRect().united(m_b->sceneBoundingRect()).center());
        const QImage shot = m_view->viewport()->grab().toImage();
        const auto picture = [&](OssNgNode *node) {
            const QPoint corner = m_view->mapFromScene(node->scenePos());
            return shot.copy(QRect(corner, QSize(150, 50)));
        };
        const QImage a = picture(m_a);
        const QImage b = picture(m_b);
        // Edges of shapes may fall differently on the pixel grid; titles in another font
        // differ over a large part of the picture.
        int differing = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x)
                differing += qAbs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > 40 ? 1 : 0;
        QVERIFY2(differing < a.width() * a.height() / 100, qPrintable(QString::number(differing)));
    }

    // A long edge crossing the view is stroked only where it shows; what shows is the curve.
    void partlyShownEdgesDrawTheirCurve()
    {
        OssNgExtendedNode *far = makeNode("Far", {1800, 1600});
        OssNgEdge *edge = far->connectInput("Input", m_a, "Output");
        QVERIFY(edge);
        m_b->hide();
        m_a->hide();
        far->hide();
        m_view->resetTransform();
        m_view->centerOn(edge->curve().pointAtPercent(0.5));
        QVERIFY(edge->sceneBoundingRect().width() > m_view->viewportInSceneCoords().width());
        const QImage shown = m_view->viewport()->grab().toImage();
        // The same curve, stroked whole with the edge's pen, for comparison.
        QImage whole(shown.size(), QImage::Format_ARGB32_Premultiplied);
        whole.fill(OssNgStyle::instance()->backgroundColor());
        edge->hide();
        {
            QPainter painter(&whole);
            painter.setRenderHint(QPainter::Antialiasing);
            m_view->render(&painter);
            painter.setTransform(m_view->viewportTransform());
            painter.setPen(QPen(OssNgStyle::instance()->edgeColor(), 1.6));
            painter.drawPath(edge->curve());
        }
        edge->show();
        int curvePixels = 0;
        int differing = 0;
        const QColor background = OssNgStyle::instance()->backgroundColor();
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x) {
                const QColor a = shown.pixelColor(x, y);
                const QColor b = whole.pixelColor(x, y);
                if (qAbs(b.lightness() - background.lightness()) > 60)
                    ++curvePixels;
                if (qAbs(a.lightness() - b.lightness()) > 60)
                    ++differing;
            }
        QVERIFY2(curvePixels > 200, qPrintable(QString::number(curvePixels)));
        QVERIFY2(differing < curvePixels / 20,
                 qPrintable(QStringLiteral("%1 of %2").arg(differing).arg(curvePixels)));
    }
};

QTEST_MAIN(tst_NodeGraphView)
#include "tst_NodeGraphView.moc"
