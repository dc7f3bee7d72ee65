#include "OssTestPluginHost.h"

#include "NodeGraphPalette.h"
#include "NodeGraphView.h"
#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnScriptObjects.h"

#include <OssPalette.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssScriptManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>

#include <QGraphicsView>
#include <QMetaMethod>
#include <QSignalSpy>
#include <QtTest>

#include <functional>
#include <memory>

// The node graph's script objects on the real plug-in: the palette's tabs and views, each
// view's network, zoom and centre, and the errors scripts get for bad input.
class tst_ScriptObjects : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;

    OssScriptManager *scripts() { return OssScriptManager::instance(); }
    OssSnNodeGraphWidget *tabs() { return m_host.nodeGraphWidget(); }
    OssPalette *nodeGraphPalette()
    {
        return OssPaletteManager::instance()->find(QStringLiteral("Node Graph"));
    }
    Ossa::NodeGraphPalette *palette()
    {
        return qobject_cast<Ossa::NodeGraphPalette *>(scripts()->apiFor(nodeGraphPalette()));
    }
    Ossa::NodeGraphView *viewObject(QWidget *view)
    {
        return qobject_cast<Ossa::NodeGraphView *>(scripts()->apiFor(view));
    }
    Ossa::NodeGraph *graphObject(OssShaderNetwork *network)
    {
        return qobject_cast<Ossa::NodeGraph *>(scripts()->apiFor(network));
    }
    // A group node whose subgraph tab is open behind the root tab.
    OssSnGroupNode *openGroup(const QString &name)
    {
        auto *group = qobject_cast<OssSnGroupNode *>(
            m_network->createNode(QStringLiteral("Misc/Group"), name));
        auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
            group->context(QStringLiteral("NodeGraphView")));
        context->addTabToWidget(group);
        return group;
    }
    int errorCount() { return scripts()->errors().size(); }
    // Exactly one error was reported since Before, of that type and with that text.
    bool reportedOnce(int before, int type, const QString &message)
    {
        const QList<OssScriptErrorReport> errors = scripts()->errors();
        if (errors.size() != before + 1) {
            qWarning("%d errors reported instead of one", static_cast<int>(errors.size()) - before);
            return false;
        }
        if (errors.last().type != type || errors.last().message != message) {
            qWarning("reported %d \"%s\"", errors.last().type, qPrintable(errors.last().message));
            return false;
        }
        return true;
    }
    static QStringList ownSlots(const QMetaObject &meta)
    {
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            if (meta.method(i).methodType() == QMetaMethod::Slot)
                names.append(QString::fromLatin1(meta.method(i).methodSignature()));
        return names;
    }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        // Shown, so that the view scrolls and centres like the one on screen.
        tabs()->window()->resize(1000, 800);
        tabs()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(tabs()->window()));
    }

    void cleanup()
    {
        while (tabs()->count() > 1)
            tabs()->hideTab(tabs()->count() - 1);
        if (tabs()->indexOf(tabs()->view()) < 0)
            tabs()->addRootView();
        QVERIFY(m_host.reset());
    }

    // --- factories and classes

    void factoriesServeThePaletteAndTheView()
    {
        OssAPIFactory *paletteFactory = scripts()->factory(QStringLiteral("OssPalette"));
        OssAPIFactory *viewFactory = scripts()->factory(QStringLiteral("OssShaderNetworkView"));
        QVERIFY(paletteFactory);
        QVERIFY(viewFactory);
        QCOMPARE(paletteFactory->scriptClassName(), QStringLiteral("Ossa::NodeGraphPalette"));
        QCOMPARE(viewFactory->scriptClassName(), QStringLiteral("Ossa::NodeGraphView"));
        QCOMPARE(scripts()->factoryFor(tabs()->view()), viewFactory);
        QVERIFY(palette());
        QCOMPARE(palette()->internalObject(), nodeGraphPalette());
    }

    void paletteFactoryIsRegisteredFirst()
    {
        QSignalSpy registered(scripts(), &OssScriptManager::apiFactoryRegistered);
        OssSnScriptObjects::registerFactories();
        QCOMPARE(registered.count(), 2);
        QCOMPARE(registered.at(0).at(0).toString(), QStringLiteral("OssPalette"));
        QCOMPARE(registered.at(1).at(0).toString(), QStringLiteral("OssShaderNetworkView"));
        // Registering again replaces the factories: one of each is served.
        QCOMPARE(scripts()->factory(QStringLiteral("OssPalette"))->scriptClassName(),
                 QStringLiteral("Ossa::NodeGraphPalette"));
    }

    void slotsInBindingOrder()
    {
        QCOMPARE(ownSlots(Ossa::NodeGraphPalette::staticMetaObject),
                 QStringList({"currentTabIndex()", "setCurrentTabIndex(int)", "closeTab(int)",
                              "nodeGraphViewList()", "nodeGraphView(int)",
                              "indexForNodeGraph(Ossa::NodeGraph*)"}));
        QCOMPARE(ownSlots(Ossa::NodeGraphView::staticMetaObject),
                 QStringList({"nodeGraph()", "zoomLevel()", "setZoomLevel(float)", "center()",
                              "setCenter(QPointF)", "posFromGlobalPos(QPoint)"}));
        QCOMPARE(QByteArray(Ossa::NodeGraphPalette::staticMetaObject.superClass()->className()),
                 QByteArray("Ossa::Palette"));
        QCOMPARE(QByteArray(Ossa::NodeGraphView::staticMetaObject.superClass()->className()),
                 QByteArray("Ossa::API"));
    }

    void constructorsRefuseOtherObjects()
    {
        QObject plain;
        int before = errorCount();
        Ossa::NodeGraphPalette wrongPalette(&plain);
        QVERIFY(reportedOnce(before, 11,
                             "Invalid OssPalette object passed to "
                             "Ossa::NodeGraphPalette::NodeGraphPalette()."));
        QVERIFY(wrongPalette.isNull());
        before = errorCount();
        Ossa::NodeGraphView wrongView(&plain);
        QVERIFY(reportedOnce(before, 11,
                             "Invalid QGraphicsView object passed to "
                             "Ossa::NodeGraphView::NodeGraphView()."));
        QVERIFY(wrongView.isNull());
    }

    // --- currentTabIndex / setCurrentTabIndex

    void currentTabIndex()
    {
        openGroup(QStringLiteral("First"));
        QCOMPARE(palette()->currentTabIndex(), 0);
        tabs()->setCurrentIndex(1);
        const int before = errorCount();
        QCOMPARE(palette()->currentTabIndex(), 1);
        QCOMPARE(errorCount(), before);
    }

    void setCurrentTabIndex_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("current");
        QTest::addColumn<QString>("error");
        QTest::newRow("negative") << -1 << 0 << "CurrentTabIndex cannot be a negative number";
        QTest::newRow("the tab count")
            << 2 << 0
            << "CurrentTabIndex cannot be larger than or equal to the number of open tabs";
        QTest::newRow("past the end")
            << 7 << 0
            << "CurrentTabIndex cannot be larger than or equal to the number of open tabs";
        QTest::newRow("the last tab") << 1 << 1 << "";
        QTest::newRow("the root tab") << 0 << 0 << "";
    }

    void setCurrentTabIndex()
    {
        QFETCH(int, index);
        QFETCH(int, current);
        QFETCH(QString, error);
        openGroup(QStringLiteral("First"));
        QCOMPARE(tabs()->count(), 2);
        const int before = errorCount();
        palette()->setCurrentTabIndex(index);
        QCOMPARE(tabs()->currentIndex(), current);
        if (error.isEmpty())
            QCOMPARE(errorCount(), before);
        else
            QVERIFY(reportedOnce(before, 13, error));
    }

    // --- closeTab

    void closeTab()
    {
        openGroup(QStringLiteral("First"));
        openGroup(QStringLiteral("Second"));
        QWidget *second = tabs()->widget(2);
        const int before = errorCount();
        palette()->closeTab(1);
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->widget(1), second);
        // No range check: an index past the end closes nothing and reports nothing.
        palette()->closeTab(9);
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(errorCount(), before);
    }

    // --- nodeGraphViewList

    void nodeGraphViewList()
    {
        openGroup(QStringLiteral("First"));
        openGroup(QStringLiteral("Second"));
        const QList<Ossa::NodeGraphView *> views = palette()->nodeGraphViewList();
        QCOMPARE(views.size(), 3);
        for (int i = 0; i < views.size(); ++i)
            QCOMPARE(views.at(i)->internalObject(), tabs()->widget(i));
        // The registry hands out the same script objects again.
        QCOMPARE(palette()->nodeGraphViewList(), views);
    }

    // --- nodeGraphView

    void nodeGraphView_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("found");
        QTest::newRow("root tab") << 0 << true;
        QTest::newRow("group tab") << 1 << true;
        QTest::newRow("past the last tab") << 2 << false;
        QTest::newRow("negative") << -1 << false;
    }

    void nodeGraphView()
    {
        QFETCH(int, index);
        QFETCH(bool, found);
        openGroup(QStringLiteral("First"));
        const int before = errorCount();
        Ossa::NodeGraphView *view = palette()->nodeGraphView(index);
        QCOMPARE(errorCount(), before);
        QCOMPARE(view != nullptr, found);
        if (found)
            QCOMPARE(view->internalObject(), tabs()->widget(index));
    }

    // --- indexForNodeGraph

    void indexForNodeGraphFindsOpenTabs()
    {
        OssSnGroupNode *group = openGroup(QStringLiteral("First"));
        QCOMPARE(palette()->indexForNodeGraph(graphObject(m_network)), 0);
        QCOMPARE(palette()->indexForNodeGraph(graphObject(group->groupNetwork())), 1);
    }

    void indexForNodeGraphReopensAClosedGroupTab()
    {
        OssSnGroupNode *first = openGroup(QStringLiteral("First"));
        openGroup(QStringLiteral("Second"));
        tabs()->setCurrentIndex(2);
        QWidget *current = tabs()->currentWidget();
        palette()->closeTab(1);
        QCOMPARE(tabs()->count(), 2);
        const int before = errorCount();
        QCOMPARE(palette()->indexForNodeGraph(graphObject(first->groupNetwork())), 2);
        QCOMPARE(errorCount(), before);
        QCOMPARE(tabs()->count(), 3);
        QCOMPARE(qobject_cast<OssShaderNetworkView *>(tabs()->widget(2))->network(),
                 first->groupNetwork());
        // The reopened tab comes back behind the current one.
        QCOMPARE(tabs()->currentWidget(), current);
    }

    void indexForNodeGraphPutsTheRootTabBack()
    {
        openGroup(QStringLiteral("First"));
        tabs()->hideTab(0);
        QCOMPARE(tabs()->indexOf(tabs()->view()), -1);
        QCOMPARE(palette()->indexForNodeGraph(graphObject(m_network)), 0);
        QCOMPARE(tabs()->widget(0), tabs()->view());
        QCOMPARE(tabs()->count(), 2);
    }

    void indexForNodeGraphRefusesOtherObjects_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::newRow("null") << "null";
        QTest::newRow("not a network") << "node";
        QTest::newRow("network gone") << "gone";
    }

    void indexForNodeGraphRefusesOtherObjects()
    {
        QFETCH(QString, argument);
        std::unique_ptr<OssShaderNetwork> temporary;
        Ossa::NodeGraph *graph = nullptr;
        Ossa::NodeGraph unbound;
        if (argument == QLatin1String("node")) {
            unbound.initAPI(m_network->createNode(QStringLiteral("Misc/Group")));
            graph = &unbound;
        } else if (argument == QLatin1String("gone")) {
            temporary = std::make_unique<OssShaderNetwork>(QStringLiteral("Scratch"));
            graph = graphObject(temporary.get());
            temporary.reset();
        }
        const int before = errorCount();
        QCOMPARE(palette()->indexForNodeGraph(graph), -1);
        QVERIFY(reportedOnce(before, 11, "Cannot obtain the Shader Network object"));
    }

    void indexForNodeGraphOfANetworkNotShown()
    {
        QVERIFY(m_host.openSample());
        OssProject *project = OssProjectManager::instance()->currentProject();
        QVERIFY(project->networks().size() >= 2);
        OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentShaderNetwork();
        OssShaderNetwork *other = project->networks().at(0) == shown ? project->networks().at(1)
                                                                     : project->networks().at(0);
        const int tabsBefore = tabs()->count();
        const int before = errorCount();
        QCOMPARE(palette()->indexForNodeGraph(graphObject(other)), -1);
        QVERIFY(reportedOnce(before, 11, "Cannot create a NodeGraphView"));
        QCOMPARE(tabs()->count(), tabsBefore);
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(other);
        QCOMPARE(palette()->indexForNodeGraph(graphObject(other)), 0);
    }

    // --- a palette that is not the node graph, and one that is gone

    void paletteSlotsReportWithout_data()
    {
        QTest::addColumn<QString>("palette");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("error");
        QTest::newRow("another palette's body")
            << "Node Properties" << 11 << "Cannot obtain the Node Graph widget";
        QTest::newRow("palette destroyed") << "" << 0 << "Internal OssPalette object not valid";
    }

    void paletteSlotsReportWithout()
    {
        QFETCH(QString, palette);
        QFETCH(int, type);
        QFETCH(QString, error);
        std::unique_ptr<OssPalette> temporary;
        OssPalette *internal = OssPaletteManager::instance()->find(palette);
        if (palette.isEmpty()) {
            temporary = std::make_unique<OssPalette>();
            internal = temporary.get();
        }
        QVERIFY(internal);
        auto *object = qobject_cast<Ossa::NodeGraphPalette *>(scripts()->apiFor(internal));
        QVERIFY(object);
        temporary.reset();
        const int tabsBefore = tabs()->count();
        const std::vector<std::function<bool()>> calls = {
            [&] { return object->currentTabIndex() == -1; },
            [&] {
                object->setCurrentTabIndex(0);
                return true;
            },
            [&] {
                object->closeTab(0);
                return true;
            },
            [&] { return object->nodeGraphViewList().isEmpty(); },
            [&] { return object->nodeGraphView(0) == nullptr; },
            [&] { return object->indexForNodeGraph(graphObject(m_network)) == -1; },
        };
        for (size_t i = 0; i < calls.size(); ++i) {
            const int before = errorCount();
            QVERIFY2(calls[i](), qPrintable(QStringLiteral("slot %1").arg(i)));
            QVERIFY2(reportedOnce(before, type, error),
                     qPrintable(QStringLiteral("slot %1").arg(i)));
        }
        QCOMPARE(tabs()->count(), tabsBefore);
    }

    // --- NodeGraphView: nodeGraph

    void nodeGraph()
    {
        OssSnGroupNode *group = openGroup(QStringLiteral("First"));
        Ossa::NodeGraph *root = viewObject(tabs()->view())->nodeGraph();
        QVERIFY(root);
        QCOMPARE(root->internalObject(), m_network);
        QCOMPARE(viewObject(tabs()->view())->nodeGraph(), root);
        Ossa::NodeGraph *inner = viewObject(tabs()->widget(1))->nodeGraph();
        QCOMPARE(inner->internalObject(), group->groupNetwork());
        // Round trip: the tab of the view's own network is the view's tab.
        QCOMPARE(palette()->indexForNodeGraph(inner), 1);
    }

    // --- zoomLevel / setZoomLevel

    void setZoomLevel_data()
    {
        QTest::addColumn<double>("start");
        QTest::addColumn<float>("level");
        QTest::newRow("2 from 1") << 1.0 << 2.0f;
        QTest::newRow("2 from 0.3") << 0.3 << 2.0f;
        QTest::newRow("0.5 from 3") << 3.0 << 0.5f;
        QTest::newRow("1 from 0.25") << 0.25 << 1.0f;
        QTest::newRow("same level") << 1.5 << 1.5f;
    }

    void setZoomLevel()
    {
        QFETCH(double, start);
        QFETCH(float, level);
        OssShaderNetworkView *view = tabs()->view();
        view->resetTransform();
        view->scale(start, start);
        Ossa::NodeGraphView *object = viewObject(view);
        QVERIFY(qFuzzyCompare(object->zoomLevel(), static_cast<float>(start)));
        const QPointF centre = object->center();
        const int before = errorCount();
        object->setZoomLevel(level);
        QCOMPARE(errorCount(), before);
        QVERIFY2(qAbs(object->zoomLevel() - level) < 1e-4f,
                 qPrintable(QString::number(object->zoomLevel())));
        QVERIFY(qFuzzyCompare(view->transform().m11(), static_cast<qreal>(object->zoomLevel())));
        // Both steps are anchored at the view's centre: it stays where it was, to a pixel.
        const QPointF after = object->center();
        QVERIFY2(QLineF(centre, after).length() <= 2.0 / qMin(start, double(level)) + 1,
                 qPrintable(QStringLiteral("%1,%2 -> %3,%4")
                                .arg(centre.x())
                                .arg(centre.y())
                                .arg(after.x())
                                .arg(after.y())));
    }

    // --- center / setCenter / posFromGlobalPos

    void center()
    {
        OssShaderNetworkView *view = tabs()->view();
        Ossa::NodeGraphView *object = viewObject(view);
        view->resetTransform();
        object->setCenter(QPointF(250, -120));
        const QPointF centre = object->center();
        // Within the half pixel that halving the widget's size in integers loses on each axis.
        QVERIFY2(QLineF(centre, QPointF(250, -120)).length() <= 1.5,
                 qPrintable(QStringLiteral("%1,%2").arg(centre.x()).arg(centre.y())));
        // The middle of the widget on screen is the view's centre in the scene.
        const QPoint middle = view->mapToGlobal(QPoint(view->width() / 2, view->height() / 2));
        QCOMPARE(object->posFromGlobalPos(middle), centre);
        // One pixel to the right at zoom 2 is half a scene unit.
        object->setZoomLevel(2.0f);
        const QPointF zoomed = object->posFromGlobalPos(middle);
        QVERIFY(qAbs(object->posFromGlobalPos(middle + QPoint(10, 0)).x() - zoomed.x() - 5.0) <
                1e-6);
    }

    // --- a view that is not a node graph view, and one that is gone

    void viewSlotsReportWithout_data()
    {
        QTest::addColumn<bool>("destroy");
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("error");
        QTest::newRow("another graphics view")
            << false << 11 << "Cannot obtain the Node Graph view";
        QTest::newRow("view destroyed") << true << 0 << "Internal QGraphicsView object not valid";
    }

    void viewSlotsReportWithout()
    {
        QFETCH(bool, destroy);
        QFETCH(int, type);
        QFETCH(QString, error);
        auto plain = std::make_unique<QGraphicsView>();
        Ossa::NodeGraphView object(plain.get());
        QVERIFY(!object.isNull());
        if (destroy)
            plain.reset();
        const std::vector<std::function<bool()>> calls = {
            [&] { return object.nodeGraph() == nullptr; },
            [&] { return object.zoomLevel() == 0.0f; },
            [&] {
                object.setZoomLevel(2.0f);
                return true;
            },
            [&] { return object.center() == QPointF(0, 0); },
            [&] {
                object.setCenter(QPointF(5, 5));
                return true;
            },
            [&] { return object.posFromGlobalPos(QPoint(3, 3)) == QPointF(0, 0); },
        };
        for (size_t i = 0; i < calls.size(); ++i) {
            const int before = errorCount();
            QVERIFY2(calls[i](), qPrintable(QStringLiteral("slot %1").arg(i)));
            QVERIFY2(reportedOnce(before, type, error),
                     qPrintable(QStringLiteral("slot %1").arg(i)));
        }
        if (!destroy)
            QCOMPARE(plain->transform(), QTransform());
    }
};

QTEST_MAIN(tst_ScriptObjects)
#include "tst_ScriptObjects.moc"
