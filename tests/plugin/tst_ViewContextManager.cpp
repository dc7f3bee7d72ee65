#include "OssTestHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeCreationActions.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssDebug.h>
#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgExtendedNode.h>
#include <OssNgStyle.h>
#include <OssPalette.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShadingGroup.h>
#include <OssSnGroupNode.h>
#include <OssSnNodeTypeCatalogue.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QGraphicsScene>
#include <QSignalSpy>
#include <QTabBar>
#include <QtTest>

// The view-context manager, its tab widget and views, with the host's projects and networks.
class tst_ViewContextManager : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    OssSnNodeGraphViewContextManager *manager()
    {
        return OssSnNodeGraphViewContextManager::instance();
    }
    OssSnNodeGraphWidget *widget() { return manager()->nodeGraphWidget(); }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        manager();
        // The palette is the window of the tab widget, as the shell shows it.
        widget()->window()->resize(800, 600);
        widget()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(widget()->window()));
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void palettesAreRegistered()
    {
        OssPalette *graph = OssPaletteManager::instance()->find(QStringLiteral("Node Graph"));
        OssPalette *properties =
            OssPaletteManager::instance()->find(QStringLiteral("Node Properties"));
        QVERIFY(graph && properties);
        QCOMPARE(graph->windowTitle(), QStringLiteral("Node Graph"));
        QCOMPARE(graph->contextHelpKey(), QStringLiteral("node_graph_palette"));
        QCOMPARE(properties->contextHelpKey(), QStringLiteral("node_properties_palette"));
        QCOMPARE(graph->originalWidget(), widget());
        QCOMPARE(OssPaletteManager::instance()->iconPath(graph).section('/', -1),
                 QStringLiteral("NodeGraph.png"));
    }

    void scenesAreMadeOnNeedAndGoWithTheirNetwork()
    {
        auto *network = new OssShaderNetwork(QStringLiteral("Loose"));
        QVERIFY(!manager()->hasScene(network));
        network->createNode(QStringLiteral("Filter/Blur"), QString(), false);
        QVERIFY(manager()->hasScene(network));
        QPointer<QGraphicsScene> scene = manager()->sceneForNetwork(network);
        delete network;
        QVERIFY(!scene);
        QVERIFY(!manager()->hasScene(network));
    }

    void unknownNetworksAndLateDeregistrationsAreQuiet()
    {
        OssProjectManager::instance()->newProject();
        OssProjectManager::instance()->closeProject();
        QCOMPARE(manager()->sceneCount(), 0);
        OssDebugCapture capture;
        QObject stranger;
        manager()->onShaderNetworkDestroyed(&stranger);
        OssShaderNetwork loose;
        OssSnBaseNode node;
        manager()->onNodeDeregistered(&loose, &node);
        QVERIFY2(capture.messages().isEmpty(), qPrintable(capture.messages().join('\n')));
    }

    void switchingNetworksRestoresTheViewRect()
    {
        OssProject *project = OssProjectManager::instance()->newProject(QStringLiteral("Head"));
        OssShadingGroup *second = project->addShadingGroup(QStringLiteral("Eyes_SG"), "Head");
        OssShaderNetwork *a = project->networks().first();
        OssShaderNetwork *b = second->network();
        for (int i = 0; i < 4; ++i)
            a->createNode(QStringLiteral("Filter/Blur"))->setSelected(false);
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(a);
        OssShaderNetworkView *view = widget()->view();
        view->scaleView(0.5);
        view->centerOn(1234, 567);
        const QRectF shown = view->viewportInSceneCoords();
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(b);
        QCOMPARE(view->network(), b);
        QCOMPARE(manager()->viewRect(a), shown);
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(a);
        QCOMPARE(view->network(), a);
        QVERIFY(qAbs(view->viewportInSceneCoords().center().x() - shown.center().x()) < 2);
        QVERIFY(qAbs(view->viewportInSceneCoords().center().y() - shown.center().y()) < 2);
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewNetwork(), a);
    }

    // Any number of round trips to another network brings back the very rectangle left.
    void roundTripsKeepTheViewExactly()
    {
        OssProject *project = OssProjectManager::instance()->newProject(QStringLiteral("Head"));
        OssShadingGroup *second = project->addShadingGroup(QStringLiteral("Eyes_SG"), "Head");
        OssShaderNetwork *a = project->networks().first();
        OssShaderNetwork *b = second->network();
        for (int i = 0; i < 3; ++i)
            a->createNode(QStringLiteral("Filter/Blur"))->setSelected(false);
        b->createNode(QStringLiteral("Filter/Blur"))->setSelected(false);
        OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
        networks->setCurrentShaderNetwork(a);
        OssShaderNetworkView *view = widget()->view();
        view->scaleView(0.37);
        view->centerOn(-811.5, 402.25);
        const QRectF shown = view->viewportInSceneCoords();
        const double zoom = view->zoom();
        for (int round = 0; round < 20; ++round) {
            networks->setCurrentShaderNetwork(b);
            networks->setCurrentShaderNetwork(a);
        }
        QCOMPARE(view->zoom(), zoom);
        QCOMPARE(view->viewportInSceneCoords(), shown);
    }

    void collapsedModeActionOnlyTouchesStreamNodes()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        OssSnBaseNode *plain = network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *group = network->createNode(QStringLiteral("Misc/Multi Channel Group"));
        plain->setSelected(true);
        group->setSelected(true);
        QAction action;
        action.setProperty("Mode", 1);
        connect(&action, SIGNAL(triggered()), manager(), SLOT(onNodeCollapsedModeChanged()));
        const int plainMode = OssSnNodeGraphViewContext::of(plain)->portListModeAsInt();
        action.trigger();
        QCOMPARE(OssSnNodeGraphViewContext::of(group)->portListModeAsInt(), 1);
        QCOMPARE(OssSnNodeGraphViewContext::of(plain)->portListModeAsInt(), plainMode);
        OssDebugCapture capture;
        manager()->onNodeCollapsedModeChanged();
        QVERIFY(capture.contains("sender() is NULL"));
    }

    void rootTabText_data()
    {
        QTest::addColumn<QString>("entity");
        QTest::addColumn<QString>("text");
        const QString forty(40, QLatin1Char('e'));
        const QString fortyOne = QStringLiteral("abcdefghijklmnopqrst") + QLatin1Char('X') +
                                 QStringLiteral("ABCDEFGHIJKLMNOPQRST");
        QTest::newRow("no entity") << QString() << "Root";
        QTest::newRow("short") << "Helmet"
                               << "Helmet - Root";
        QTest::newRow("forty") << forty << forty + " - Root";
        QTest::newRow("forty-one")
            << fortyOne << "abcdefghijklmnopqrst...ABCDEFGHIJKLMNOPQRST - Root";
    }

    void rootTabText()
    {
        QFETCH(QString, entity);
        QFETCH(QString, text);
        OssProject *project = OssProjectManager::instance()->newProject(
            entity.isEmpty() ? QStringLiteral("x") : entity);
        OssShaderNetwork *network = project->networks().first();
        if (entity.isEmpty())
            project->shadingGroups().first()->setEntityName(QStringLiteral("missing"));
        widget()->updateRootLevelText(network);
        QCOMPARE(widget()->tabText(0), text);
        QCOMPARE(widget()->tabToolTip(0), entity);
    }

    void rootTabCannotBeClosed()
    {
        QCOMPARE(widget()->currentView(), widget()->view());
        for (QTabBar::ButtonPosition side : {QTabBar::LeftSide, QTabBar::RightSide}) {
            QWidget *button = widget()->tabBar()->tabButton(0, side);
            QVERIFY(!button || button->isHidden());
        }
    }

    void groupTabsCloseAndTabChangesFollow()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        auto *group = qobject_cast<OssSnGroupNode *>(network->createNode("Misc/Group"));
        emit group->openNodeGraph();
        QCOMPARE(widget()->count(), 2);
        QPointer<OssShaderNetworkView> groupView = widget()->currentView();
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewNetwork(), group->groupNetwork());
        OssDebugCapture capture;
        emit widget()->tabCloseRequested(1);
        QCOMPARE(widget()->count(), 1);
        QVERIFY(groupView);
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewNetwork(), network);
        QCOMPARE(capture.count(QStringLiteral("[ -- ] Nodegraph navigation set to 'Kova'")), 1);
        // Opening again adds the tab anew at the end; the lower of two tabs of one network wins.
        emit group->openNodeGraph();
        QCOMPARE(widget()->count(), 2);
        widget()->setCurrentIndex(0);
        widget()->selectTabForNetwork(group->groupNetwork());
        QCOMPARE(widget()->currentIndex(), 1);
        widget()->selectTabForNetwork(nullptr);
        QCOMPARE(widget()->currentIndex(), 1);
    }

    void framingNeverMagnifies_data()
    {
        QTest::addColumn<int>("nodes");
        QTest::newRow("empty scene") << 0;
        QTest::newRow("one small node") << 1;
    }

    void framingNeverMagnifies()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        QFETCH(int, nodes);
        for (int i = 0; i < nodes; ++i)
            network->createNode(QStringLiteral("Misc/Dot"));
        OssShaderNetworkView *view = widget()->view();
        view->frameNodes();
        QVERIFY2(float(view->transform().m11()) <= 1.0f,
                 qPrintable(QString::number(view->transform().m11(), 'g', 17)));
        view->frameSelectedNodes();
        QVERIFY(float(view->transform().m11()) <= 1.0f);
        // Kept at 1:1, the framed nodes are in the middle of the view, wherever the cursor is.
        if (nodes > 0) {
            view->setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
            QTest::mouseMove(view->viewport(), QPoint(5, 5));
            view->scaleView(0.3);
            view->frameNodes();
            const QPointF middle = view->viewportInSceneCoords().center();
            const QPointF framed = view->visibleNodeBounds().center();
            QVERIFY2(qAbs(middle.x() - framed.x()) <= 1 && qAbs(middle.y() - framed.y()) <= 1,
                     qPrintable(QStringLiteral("%1, %2 against %3, %4")
                                    .arg(middle.x())
                                    .arg(middle.y())
                                    .arg(framed.x())
                                    .arg(framed.y())));
        }
    }

    void fitAndEnsureVisibleLog()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        network->createNode(QStringLiteral("Filter/Blur"));
        OssDebugCapture capture;
        widget()->view()->fitToViewAction();
        widget()->view()->ensureIsVisibleAction();
        QVERIFY(capture.messages().value(0).startsWith("[ !! ] --FIT TO VIEW[lt("));
        QVERIFY(capture.messages().value(1).startsWith("[ !! ] --POST FIT scale  "));
        QVERIFY(capture.messages().last().startsWith("[ !! ] --ENSURING IS VISIBLE [lt("));
        OssShaderNetworkView bare;
        OssDebugCapture second;
        bare.fitToViewAction();
        QVERIFY(second.contains("scene() is NULL"));
    }

    void preferencesReachEveryView()
    {
        manager()->setZoomTo(OssSnNodeGraphViewContextManager::Center);
        OssShaderNetworkView other;
        // The view binds to the manager half a second after it is made, and takes its settings
        // then.
        QCOMPARE(other.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
        QTRY_COMPARE_WITH_TIMEOUT(other.transformationAnchor(), QGraphicsView::AnchorViewCenter,
                                  2000);
        QCOMPARE(widget()->view()->transformationAnchor(), QGraphicsView::AnchorViewCenter);
        manager()->setZoomTo(OssSnNodeGraphViewContextManager::Cursor);
        QCOMPARE(other.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
        QCOMPARE(widget()->view()->transformationAnchor(), QGraphicsView::AnchorUnderMouse);
        manager()->setZoomTo(7);
        QCOMPARE(other.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
        manager()->resetZoomTo();

        other.setCursorTrackingMode(OssNgView::EdgePickUpTracking);
        manager()->setShakeToExtractEnabled(false);
        QCOMPARE(other.cursorTrackingMode(), int(OssNgView::NormalTracking));
        other.setCursorTrackingMode(OssNgView::EdgeSeverTracking);
        manager()->setShakeToExtractEnabled(true);
        manager()->setShakeToExtractEnabled(false);
        QCOMPARE(other.cursorTrackingMode(), int(OssNgView::EdgeSeverTracking));
        manager()->resetShakeToExtractEnabled();
    }

    void aViewGoneBeforeBindingNeverBinds()
    {
        auto *early = new OssShaderNetworkView;
        delete early;
        manager()->setZoomTo(OssSnNodeGraphViewContextManager::Center);
        // A view made after it binds after it: by then the early view's time has come as well.
        OssShaderNetworkView later;
        QTRY_COMPARE_WITH_TIMEOUT(later.transformationAnchor(), QGraphicsView::AnchorViewCenter,
                                  2000);
        // Preference changes reach the live views only (a binding of the gone view would call
        // into freed memory here).
        manager()->setZoomTo(OssSnNodeGraphViewContextManager::Cursor);
        QCOMPARE(later.transformationAnchor(), QGraphicsView::AnchorUnderMouse);
        QCOMPARE(manager()->zoomTo(), OssSnNodeGraphViewContextManager::Cursor);
        manager()->resetZoomTo();
    }

    void setNetworkNullLeavesUpdates()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        OssShaderNetworkView view;
        view.setNetwork(network);
        network->setAllowViewUpdate(false);
        QVERIFY(!view.updatesEnabled());
        view.setNetwork(nullptr);
        network->setAllowViewUpdate(true);
        QVERIFY(!view.updatesEnabled());
    }

    void nodeCreationActions_data()
    {
        QTest::addColumn<QString>("menuPath");
        QTest::addColumn<bool>("made");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("text");
        QTest::newRow("ordinary") << "Filter/Blur" << true << "/Ossa/NodeGraph/Create/Filter"
                                  << "Blur";
        QTest::newRow("empty parts") << "Filter//Blur/" << true << "/Ossa/NodeGraph/Create/Filter"
                                     << "Blur";
        QTest::newRow("hidden folder") << "_Hidden/Foo" << false << ""
                                       << "";
        QTest::newRow("one component") << "Foo" << true << "/Ossa/NodeGraph/Create/"
                                       << "Foo";
        QTest::newRow("empty") << "" << false << ""
                               << "";
    }

    void nodeCreationActions()
    {
        QFETCH(QString, menuPath);
        QFETCH(bool, made);
        QFETCH(QString, folder);
        QFETCH(QString, text);
        QString gotFolder, gotText;
        QCOMPARE(OssSnNodeCreationActions::folderAndText(menuPath, &gotFolder, &gotText), made);
        if (made) {
            QCOMPARE(gotFolder, folder);
            QCOMPARE(gotText, text);
        }
    }

    void nodeCreationActionsAreMadeOnce()
    {
        QObject owner;
        const QList<QAction *> first =
            OssSnNodeCreationActions::create(&owner, SLOT(deleteLater()));
        QVERIFY(!first.isEmpty());
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QVERIFY(tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Create/Filter/Blur")));
        QVERIFY(!tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Create/_Hidden/Legacy Blend")));
        QCOMPARE(tree->findAction(QStringLiteral("/Ossa/NodeGraph/Create/Filter/Blur"))->data(),
                 QVariant(QStringLiteral("Filter/Blur")));
        QVERIFY(OssSnNodeCreationActions::create(&owner, SLOT(deleteLater())).isEmpty());
        // A type registered at run time gets its action on the next run.
        OssSnNodeType type = *OssSnNodeTypeCatalogue::instance()->type("Filter/Blur");
        type.pathKey = type.menuPath = QStringLiteral("Filter/Softer Blur");
        type.versionUuid = QStringLiteral("OSS_Test_Softer_Blur");
        QVERIFY(OssSnNodeTypeCatalogue::instance()->addType(type));
        QCOMPARE(OssSnNodeCreationActions::create(&owner, SLOT(deleteLater())).size(), 1);
        OssSnNodeTypeCatalogue::instance()->removeType(type.pathKey);
    }

    void creatingFromAnActionIsOneStep()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        QAction action;
        action.setData(QStringLiteral("Filter/Blur"));
        OssShaderNetworkView *view = widget()->view();
        OssSnBaseNode *node = view->createNodeFromAction(&action);
        QVERIFY(node);
        QCOMPARE(network->nodes(), QList<OssSnBaseNode *>{node});
        QVERIFY(node->selected());
        QCOMPARE(OssUndoManager::instance()->count(), 1);
        OssUndoManager::instance()->undo();
        QVERIFY(network->nodes().isEmpty());
    }

    void autoplaceLaysOutColumnsAsOneStep()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        OssSnBaseNode *a = network->createNode(QStringLiteral("Filter/Blur"), "A");
        OssSnBaseNode *b = network->createNode(QStringLiteral("Filter/Blur"), "B");
        OssSnBaseNode *c = network->createNode(QStringLiteral("Filter/Blur"), "C");
        QVERIFY(a->connectInput("Input", b, "Output"));
        QVERIFY(b->connectInput("Input", c, "Output"));
        OssNgNode *ga = OssSnNodeGraphViewContext::guiNodeOf(a);
        OssNgNode *gb = OssSnNodeGraphViewContext::guiNodeOf(b);
        OssNgNode *gc = OssSnNodeGraphViewContext::guiNodeOf(c);
        ga->setPos(500, 300);
        OssUndoManager::instance()->clear();
        manager()->beautifyNodesLayout(network, QList<OssSnBaseNode *>{a});
        QCOMPARE(OssUndoManager::instance()->count(), 1);
        QCOMPARE(ga->pos(), QPointF(500, 300));
        const qreal width = ga->sceneBoundingRect().width();
        QCOMPARE(gb->sceneBoundingRect().right(), ga->sceneBoundingRect().left() - 150.0);
        QCOMPARE(gc->sceneBoundingRect().right(), gb->sceneBoundingRect().left() - 150.0);
        QVERIFY(gb->pos().y() >= ga->pos().y());
        Q_UNUSED(width);
        OssUndoManager::instance()->undo();
        QVERIFY(gb->sceneBoundingRect().right() != ga->sceneBoundingRect().left() - 150.0);
        OssDebugCapture capture;
        OssShaderNetwork empty;
        manager()->beautifyNodesLayout(&empty, QList<OssSnBaseNode *>(), true);
        QVERIFY(capture.contains("[ !! ] Nothing to autoplace."));
    }

    // A node that feeds the root both directly and through another node stands in the deeper
    // column; a node behind an input tagged hidden is left where it is.
    void autoplaceTakesTheLongestPathAndSkipsHiddenInputs()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        OssSnBaseNode *root = network->createNode(QStringLiteral("Math/Add"), "Root");
        OssSnBaseNode *middle = network->createNode(QStringLiteral("Adjust/Invert"), "Middle");
        OssSnBaseNode *shared = network->createNode(QStringLiteral("Filter/Blur"), "Shared");
        OssSnBaseNode *masked = network->createNode(QStringLiteral("Filter/Blur"), "Masked");
        QVERIFY(root->connectInput("A", shared, "Output"));
        QVERIFY(root->connectInput("B", middle, "Output"));
        QVERIFY(middle->connectInput("Input", shared, "Output"));
        QVERIFY(middle->connectInput("Mask", masked, "Output"));
        OssNgNode *groot = OssSnNodeGraphViewContext::guiNodeOf(root);
        OssNgNode *gmiddle = OssSnNodeGraphViewContext::guiNodeOf(middle);
        OssNgNode *gshared = OssSnNodeGraphViewContext::guiNodeOf(shared);
        OssNgNode *gmasked = OssSnNodeGraphViewContext::guiNodeOf(masked);
        groot->setPos(800, 400);
        gmasked->setPos(-3000, -3000);
        manager()->beautifyNodesLayout(network, root);
        QCOMPARE(groot->pos(), QPointF(800, 400));
        QCOMPARE(gmiddle->sceneBoundingRect().right(), groot->sceneBoundingRect().left() - 150.0);
        QCOMPARE(gshared->sceneBoundingRect().right(), gmiddle->sceneBoundingRect().left() - 150.0);
        QCOMPARE(gmasked->pos(), QPointF(-3000, -3000));
    }

    // A tree placed after another keeps clear of it, and the whole call is one undo step.
    void autoplaceKeepsLaterTreesClearOfEarlierOnes()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        QList<OssSnBaseNode *> first, second;
        for (QList<OssSnBaseNode *> *tree : {&first, &second})
            for (int i = 0; i < 3; ++i) {
                tree->append(network->createNode(QStringLiteral("Filter/Blur"), QString(), false));
                if (i > 0)
                    QVERIFY(tree->at(i - 1)->connectInput("Input", tree->at(i), "Output"));
            }
        // The second root stands on top of the first one.
        OssSnNodeGraphViewContext::guiNodeOf(first.first())->setPos(0, 0);
        OssSnNodeGraphViewContext::guiNodeOf(second.first())->setPos(10, 10);
        QHash<OssSnBaseNode *, QPointF> before;
        for (OssSnBaseNode *node : first + second)
            before.insert(node, OssSnNodeGraphViewContext::guiNodeOf(node)->pos());
        OssUndoManager::instance()->clear();
        manager()->beautifyNodesLayout(network, {first.first(), second.first()});
        QCOMPARE(OssUndoManager::instance()->count(), 1);
        for (OssSnBaseNode *a : qAsConst(first))
            for (OssSnBaseNode *b : qAsConst(second))
                QVERIFY(!OssSnNodeGraphViewContext::guiNodeOf(a)->sceneBoundingRect().intersects(
                    OssSnNodeGraphViewContext::guiNodeOf(b)->sceneBoundingRect()));
        OssUndoManager::instance()->undo();
        for (OssSnBaseNode *node : first + second)
            QCOMPARE(OssSnNodeGraphViewContext::guiNodeOf(node)->pos(), before.value(node));
    }

    // Closing the project lets go of every scene, group network and remembered view.
    void closingTheProjectForgetsScenesGroupsAndViews()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        auto *group = qobject_cast<OssSnGroupNode *>(network->createNode("Misc/Group"));
        QVERIFY(group);
        OssShaderNetwork *inner = group->groupNetwork();
        QCOMPARE(manager()->groupNodeOfNetwork(inner), group);
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(network);
        QVERIFY(manager()->hasScene(network));
        QVERIFY(!manager()->viewRect(network).isNull());
        OssProjectManager::instance()->closeProject();
        QCOMPARE(manager()->sceneCount(), 0);
        QVERIFY(!manager()->groupNodeOfNetwork(inner));
        QTRY_VERIFY(manager()->viewRect(network).isNull());
    }

    // Opening a project while another is open, closing, and opening again in any order: the
    // root view shows the open project's first network with every node of it, and the scenes
    // of the open project's group networks stay.
    void openingOverAnOpenProjectShowsItsGraph_data()
    {
        QTest::addColumn<QStringList>("steps");
        QTest::newRow("sample over new") << QStringList{"new", "sample"};
        QTest::newRow("other over sample") << QStringList{"sample", "other"};
        QTest::newRow("sample over other over sample") << QStringList{"sample", "other", "sample"};
        QTest::newRow("close, then open") << QStringList{"sample", "close", "other"};
        QTest::newRow("new over sample") << QStringList{"sample", "new"};
        QTest::newRow("same file again") << QStringList{"sample", "sample"};
    }

    void openingOverAnOpenProjectShowsItsGraph()
    {
        QFETCH(QStringList, steps);
        // A second project on disk: the sample with one more node in its first network.
        OssShaderNetwork *sample = m_host.openSample();
        QVERIFY2(sample, qPrintable(m_host.errorString()));
        sample->createNode(QStringLiteral("Filter/Blur"))->setName(QStringLiteral("OnlyInOther"));
        const QString other = m_host.scratchPath(QStringLiteral("other.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(other, &error), qPrintable(error));
        OssProjectManager::instance()->closeProject();

        OssShaderNetworkView *view = widget()->view();
        for (const QString &step : steps) {
            if (step == QLatin1String("close")) {
                OssProjectManager::instance()->closeProject();
                QVERIFY(!view->scene());
                continue;
            }
            OssShaderNetwork *network = nullptr;
            if (step == QLatin1String("new"))
                network = m_host.newProject();
            else
                network = m_host.openProject(step == QLatin1String("other") ? other
                                                                            : m_host.samplePath());
            QVERIFY2(network, qPrintable(m_host.errorString()));
            QCOMPARE(network->node(QStringLiteral("OnlyInOther")) != nullptr,
                     step == QLatin1String("other"));
            QCOMPARE(view->network(), network);
            QVERIFY(view->scene());
            QCOMPARE(view->scene(), manager()->sceneForNetwork(network));
            for (OssSnBaseNode *node : network->nodes()) {
                OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
                QVERIFY2(gui && gui->scene() == view->scene(), qPrintable(node->name()));
            }
            for (OssSnBaseNode *node : network->getAllNodes())
                if (auto *group = qobject_cast<OssSnGroupNode *>(node)) {
                    QVERIFY(manager()->hasScene(group->groupNetwork()));
                    QCOMPARE(manager()->groupNodeOfNetwork(group->groupNetwork()), group);
                }
            // The framed view shows the nodes.
            const QRectF shown = view->viewportInSceneCoords();
            QVERIFY(shown.intersects(view->visibleNodeBounds()) || network->nodes().isEmpty());
        }
    }

    // The sample project as the shell first shows it, in the node graph of a 1600 x 1000
    // window: every node title is drawn, no two nodes overlap, and no two backdrops do (a
    // backdrop carries the nodes on it when dragged).
    void theSampleIsReadableWhenFramed()
    {
        OssShaderNetwork *network = m_host.openSample();
        QVERIFY2(network, qPrintable(m_host.errorString()));
        QWidget *window = widget()->window();
        const QSize size = window->size();
        window->resize(1190, 860);
        OssShaderNetworkView *view = widget()->view();
        QTRY_VERIFY(view->viewport()->width() > 1100);
        view->frameNodes(true);
        const OssNgStyle *style = OssNgStyle::instance();
        QVERIFY2(view->zoom() * style->titleTextHeight() >= style->minimumTextPixels(),
                 qPrintable(QString::number(view->zoom())));
        QList<OssNgNode *> nodes, backdrops;
        for (OssSnBaseNode *node : network->nodes()) {
            OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
            QVERIFY(gui);
            (qobject_cast<OssNgBackdropNode *>(gui) ? backdrops : nodes).append(gui);
        }
        const auto overlapping = [](const QList<OssNgNode *> &items) {
            for (int i = 0; i < items.size(); ++i)
                for (int j = i + 1; j < items.size(); ++j)
                    if (items.at(i)->sceneBoundingRect().intersects(
                            items.at(j)->sceneBoundingRect()))
                        return items.at(i)->text() + " and " + items.at(j)->text();
            return QString();
        };
        QCOMPARE(overlapping(nodes), QString());
        QCOMPARE(overlapping(backdrops), QString());
        QVERIFY(backdrops.size() >= 2);
        window->resize(size);
        // Nor do nodes overlap in the other shading group's network.
        OssProject *project = OssProjectManager::instance()->currentProject();
        for (OssShaderNetwork *other : project->networks()) {
            QList<OssNgNode *> guis;
            for (OssSnBaseNode *node : other->nodes())
                if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node))
                    if (!qobject_cast<OssNgBackdropNode *>(gui))
                        guis.append(gui);
            QCOMPARE(overlapping(guis), QString());
        }
    }

    // Removing many nodes at once runs without a spatial index, which comes back when the event
    // loop turns; undo and redo straight after each other leave the scene exact.
    void bulkRemovalGoesWithoutAnIndexUntilTheLoopTurns()
    {
        OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
        QList<OssSnBaseNode *> chain;
        for (int i = 0; i < 200; ++i) {
            chain.append(network->createNode(QStringLiteral("Filter/Blur"), QString(), false));
            OssSnNodeGraphViewContext::guiNodeOf(chain.last())->setPos(i * 300.0, (i % 7) * 90.0);
            if (i > 0)
                QVERIFY(chain.last()->connectInput("Input", chain.at(i - 1), "Output"));
        }
        QGraphicsScene *scene = manager()->sceneForNetwork(network);
        OssNgView::useSpatialIndex(scene);
        QCOMPARE(scene->bspTreeDepth(), 10);
        QCoreApplication::processEvents();
        const auto guiItemsInScene = [scene] {
            int count = 0;
            for (QGraphicsItem *item : scene->items())
                count += OssNgNode::fromItem(item) || item->type() == OssNgEdge::Type ? 1 : 0;
            return count;
        };
        QCOMPARE(guiItemsInScene(), 200 + 199);

        // One removal keeps the index.
        network->removeNode(chain.takeFirst());
        QCOMPARE(scene->itemIndexMethod(), QGraphicsScene::BspTreeIndex);
        QCoreApplication::processEvents();

        QHash<QString, QPointF> positions;
        for (OssSnBaseNode *node : qAsConst(chain))
            positions.insert(node->name(), OssSnNodeGraphViewContext::guiNodeOf(node)->pos());
        network->removeNodes(chain);
        QCOMPARE(scene->itemIndexMethod(), QGraphicsScene::NoIndex);
        QCOMPARE(guiItemsInScene(), 0);
        QTRY_COMPARE(scene->itemIndexMethod(), QGraphicsScene::BspTreeIndex);
        QCOMPARE(scene->bspTreeDepth(), 10);

        for (int round = 0; round < 2; ++round) {
            OssUndoManager::instance()->undo();
            QCOMPARE(network->nodes().size(), 199);
            QCOMPARE(guiItemsInScene(), 199 + 198);
            OssUndoManager::instance()->redo();
            QCOMPARE(guiItemsInScene(), 0);
        }
        OssUndoManager::instance()->undo();
        QCoreApplication::processEvents();
        QCOMPARE(scene->itemIndexMethod(), QGraphicsScene::BspTreeIndex);
        for (OssSnBaseNode *node : network->nodes()) {
            OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
            QCOMPARE(gui->pos(), positions.value(node->name()));
            // The rebuilt index finds every node where it is.
            QVERIFY(scene->items(gui->sceneBoundingRect().center()).contains(gui));
        }
    }
};

QTEST_MAIN(tst_ViewContextManager)
#include "tst_ViewContextManager.moc"
