#include "OssPythonTestSupport.h"
#include "OssTestPluginHost.h"

#include "NodeGraphView.h"
#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphWidget.h"

#include <OssPalette.h>
#include <OssScriptEngine.h>
#include <OssScriptManager.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>

#include <QGraphicsView>
#include <QtTest>

#include <memory>

// The node graph's script objects driven from Python, slot by slot, with the same cases as
// the C++ tests: results, the exceptions bad input raises, and objects that are gone.
class tst_ScriptObjectsPython : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;

    OssSnNodeGraphWidget *tabs() { return m_host.nodeGraphWidget(); }
    OssSnGroupNode *openGroup(const QString &name)
    {
        auto *group = qobject_cast<OssSnGroupNode *>(
            m_network->createNode(QStringLiteral("Misc/Group"), name));
        qobject_cast<OssSnGroupNodeGraphViewContext *>(
            group->context(QStringLiteral("NodeGraphView")))
            ->addTabToWidget(group);
        return group;
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OSS_RUN_PYTHON(ossPythonTestHelpers());
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        // Shown, so that the view scrolls and centres like the one on screen.
        tabs()->window()->resize(1000, 800);
        tabs()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(tabs()->window()));
        OSS_RUN_PYTHON("palette = ossa.palette('Node Graph')\n"
                       "graph = ossa.project().nodeGraphs()[0]\n"
                       "errors = ossa.ScriptError");
    }

    void cleanup()
    {
        while (tabs()->count() > 1)
            tabs()->hideTab(tabs()->count() - 1);
        if (tabs()->indexOf(tabs()->view()) < 0)
            tabs()->addRootView();
        OSS_RUN_PYTHON("palette = graph = view = None");
        QVERIFY(m_host.reset());
    }

    void scriptClasses()
    {
        OSS_RUN_PYTHON("assert palette.className() == 'Ossa::NodeGraphPalette'\n"
                       "assert palette.nodeGraphView(0).className() == 'Ossa::NodeGraphView'\n"
                       "assert graph.className() == 'Ossa::NodeGraph'\n"
                       "names = dir(palette)\n"
                       "for name in ('currentTabIndex', 'setCurrentTabIndex', 'closeTab',\n"
                       "             'nodeGraphViewList', 'nodeGraphView', 'indexForNodeGraph'):\n"
                       "    assert name in names, name");
    }

    // --- currentTabIndex / setCurrentTabIndex

    void currentTabIndex()
    {
        openGroup(QStringLiteral("First"));
        OSS_RUN_PYTHON("assert palette.currentTabIndex() == 0");
        tabs()->setCurrentIndex(1);
        OSS_RUN_PYTHON("assert palette.currentTabIndex() == 1");
    }

    void setCurrentTabIndex_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<int>("current");
        QTest::newRow("negative") << "expect_error(ossa.OutOfRange, 'CurrentTabIndex cannot be a "
                                     "negative number', palette.setCurrentTabIndex, -1)"
                                  << 0;
        QTest::newRow("the tab count")
            << "expect_error(ossa.OutOfRange, 'CurrentTabIndex cannot be larger than or equal to "
               "the number of open tabs', palette.setCurrentTabIndex, 2)"
            << 0;
        QTest::newRow("the last tab") << "palette.setCurrentTabIndex(1)" << 1;
        QTest::newRow("wrong type") << "expect_error(TypeError, 'setCurrentTabIndex() argument 1 "
                                       "(Index): expected int, not str', "
                                       "palette.setCurrentTabIndex, '1')"
                                    << 0;
    }

    void setCurrentTabIndex()
    {
        QFETCH(QString, code);
        QFETCH(int, current);
        openGroup(QStringLiteral("First"));
        OSS_RUN_PYTHON(code);
        QCOMPARE(tabs()->currentIndex(), current);
    }

    // --- closeTab

    void closeTab()
    {
        openGroup(QStringLiteral("First"));
        openGroup(QStringLiteral("Second"));
        QWidget *second = tabs()->widget(2);
        OSS_RUN_PYTHON("palette.closeTab(1)\npalette.closeTab(9)");
        QCOMPARE(tabs()->count(), 2);
        QCOMPARE(tabs()->widget(1), second);
    }

    // --- nodeGraphViewList / nodeGraphView

    void nodeGraphViewList()
    {
        OssSnGroupNode *group = openGroup(QStringLiteral("First"));
        OSS_RUN_PYTHON(QStringLiteral("views = palette.nodeGraphViewList()\n"
                                      "assert len(views) == 2\n"
                                      "assert views[0] == palette.nodeGraphView(0)\n"
                                      "assert views[1].nodeGraph().name() == '%1'\n"
                                      "assert views[0].nodeGraph() == graph")
                           .arg(group->groupNetwork()->name()));
    }

    void nodeGraphView_data()
    {
        QTest::addColumn<QString>("code");
        QTest::newRow("root tab") << "assert palette.nodeGraphView(0).nodeGraph() == graph";
        QTest::newRow("past the last tab") << "assert palette.nodeGraphView(2) is None";
        QTest::newRow("negative") << "assert palette.nodeGraphView(-1) is None";
    }

    void nodeGraphView()
    {
        QFETCH(QString, code);
        openGroup(QStringLiteral("First"));
        const int before = OssScriptManager::instance()->errors().size();
        OSS_RUN_PYTHON(code);
        QCOMPARE(OssScriptManager::instance()->errors().size(), before);
    }

    // --- indexForNodeGraph

    void indexForNodeGraphReopensAClosedGroupTab()
    {
        openGroup(QStringLiteral("First"));
        openGroup(QStringLiteral("Second"));
        OSS_RUN_PYTHON(R"PY(
inner = graph.node("First").subNodeGraph()
assert palette.indexForNodeGraph(inner) == 1
palette.setCurrentTabIndex(2)
palette.closeTab(1)
assert len(palette.nodeGraphViewList()) == 2
assert palette.indexForNodeGraph(inner) == 2
assert palette.nodeGraphView(2).nodeGraph() == inner
assert palette.currentTabIndex() == 1
assert palette.indexForNodeGraph(graph) == 0
)PY");
        QCOMPARE(tabs()->count(), 3);
    }

    void indexForNodeGraphPutsTheRootTabBack()
    {
        tabs()->hideTab(0);
        OSS_RUN_PYTHON("assert palette.indexForNodeGraph(graph) == 0");
        QCOMPARE(tabs()->widget(0), tabs()->view());
    }

    void indexForNodeGraphRefusesOtherObjects_data()
    {
        QTest::addColumn<QString>("code");
        QTest::newRow("None") << "expect_error(ossa.ObjectUnavailable, 'Cannot obtain the Shader "
                                 "Network object', palette.indexForNodeGraph, None)";
        QTest::newRow("a node") << "expect_error(TypeError, 'indexForNodeGraph() argument 1 "
                                   "(NodeGraphObject): expected Ossa::NodeGraph*, not Ossa::Node', "
                                   "palette.indexForNodeGraph, graph.createNode('Filter/Blur'))";
        QTest::newRow("a number") << "expect_error(TypeError, 'indexForNodeGraph() argument 1 "
                                     "(NodeGraphObject): expected Ossa::NodeGraph*, not int', "
                                     "palette.indexForNodeGraph, 0)";
    }

    void indexForNodeGraphRefusesOtherObjects()
    {
        QFETCH(QString, code);
        OSS_RUN_PYTHON(code);
    }

    // --- a palette that is not the node graph, and one that is gone

    void paletteSlotsRaiseWithout_data()
    {
        QTest::addColumn<bool>("destroy");
        QTest::addColumn<QString>("exception");
        QTest::addColumn<QString>("message");
        QTest::newRow("another palette's body") << false << "ObjectUnavailable"
                                                << "Cannot obtain the Node Graph widget";
        QTest::newRow("palette destroyed") << true << "ObjectNotValid"
                                           << "Internal OssPalette object not valid";
    }

    void paletteSlotsRaiseWithout()
    {
        QFETCH(bool, destroy);
        QFETCH(QString, exception);
        QFETCH(QString, message);
        std::unique_ptr<OssPalette> temporary;
        if (destroy) {
            temporary = std::make_unique<OssPalette>();
            temporary->setObjectName(QStringLiteral("Doomed"));
            QVERIFY(OssPaletteManager::instance()->registerPalette(temporary.get()));
            OSS_RUN_PYTHON("other = ossa.palette('Doomed')");
            temporary.reset();
        } else {
            OSS_RUN_PYTHON("other = ossa.palette('Node Properties')");
        }
        OSS_RUN_PYTHON(QStringLiteral(R"PY(
kind, message = ossa.%1, '%2'
expect_error(kind, message, other.currentTabIndex)
expect_error(kind, message, other.setCurrentTabIndex, 0)
expect_error(kind, message, other.closeTab, 0)
expect_error(kind, message, other.nodeGraphViewList)
expect_error(kind, message, other.nodeGraphView, 0)
expect_error(kind, message, other.indexForNodeGraph, graph)
other = None
)PY")
                           .arg(exception, message));
    }

    void unknownPalette()
    {
        OSS_RUN_PYTHON("expect_error(ossa.NotFound, \"No palette named 'Nope'\", ossa.palette, "
                       "'Nope')");
    }

    // --- NodeGraphView

    void zoomLevel_data()
    {
        QTest::addColumn<double>("level");
        QTest::newRow("2") << 2.0;
        QTest::newRow("0.5") << 0.5;
        QTest::newRow("1") << 1.0;
    }

    void zoomLevel()
    {
        QFETCH(double, level);
        // Each step keeps the centre to a pixel: within two pixels at the smaller scale.
        tabs()->view()->scale(1.7, 1.7);
        OSS_RUN_PYTHON(QStringLiteral("view = palette.nodeGraphView(0)\n"
                                      "centre = view.center()\n"
                                      "view.setZoomLevel(%1)\n"
                                      "assert abs(view.zoomLevel() - %1) < 1e-4, view.zoomLevel()\n"
                                      "after = view.center()\n"
                                      "near = 2 / min(1.7, %1) + 1\n"
                                      "assert abs(after[0] - centre[0]) < near and "
                                      "abs(after[1] - centre[1]) < near, (centre, after)")
                           .arg(level));
        QVERIFY(qAbs(tabs()->view()->transform().m11() - level) < 1e-4);
    }

    void centerAndGlobalPositions()
    {
        OssShaderNetworkView *view = tabs()->view();
        const QPoint middle = view->mapToGlobal(QPoint(view->width() / 2, view->height() / 2));
        OSS_RUN_PYTHON(QStringLiteral(R"PY(
view = palette.nodeGraphView(0)
view.setZoomLevel(1)
view.setCenter((250, -120.5))
x, y = view.center()
assert abs(x - 250) <= 1 and abs(y + 120.5) <= 1, (x, y)
assert view.posFromGlobalPos((%1, %2)) == view.center()
expect_error(TypeError, "setCenter() argument 1 (Center): expected QPointF, not str",
             view.setCenter, "middle")
expect_error(TypeError, "posFromGlobalPos() argument 1 (GlobalPos): expected QPoint, not tuple",
             view.posFromGlobalPos, (1.5, 2))
)PY")
                           .arg(middle.x())
                           .arg(middle.y()));
    }

    void viewSlotsRaiseWithout_data()
    {
        QTest::addColumn<bool>("destroy");
        QTest::addColumn<QString>("exception");
        QTest::addColumn<QString>("message");
        QTest::newRow("another graphics view") << false << "ObjectUnavailable"
                                               << "Cannot obtain the Node Graph view";
        QTest::newRow("view destroyed") << true << "ObjectNotValid"
                                        << "Internal QGraphicsView object not valid";
    }

    void viewSlotsRaiseWithout()
    {
        QFETCH(bool, destroy);
        QFETCH(QString, exception);
        QFETCH(QString, message);
        auto plain = std::make_unique<QGraphicsView>();
        auto *object = new Ossa::NodeGraphView(plain.get());
        OssScriptManager::instance()->registerAPI(object);
        OssScriptEngine::instance()->addObject(QStringLiteral("otherView"), object);
        OSS_RUN_PYTHON("other = ossa.otherView\nossa.otherView = None");
        if (destroy)
            plain.reset();
        OSS_RUN_PYTHON(QStringLiteral(R"PY(
kind, message = ossa.%1, '%2'
expect_error(kind, message, other.nodeGraph)
expect_error(kind, message, other.zoomLevel)
expect_error(kind, message, other.setZoomLevel, 2.0)
expect_error(kind, message, other.center)
expect_error(kind, message, other.setCenter, (5, 5))
expect_error(kind, message, other.posFromGlobalPos, (3, 3))
other = None
)PY")
                           .arg(exception, message));
    }

    // The view of a group's subgraph goes with the group node; a script that kept it gets
    // told so and the host carries on.
    void viewOfADeletedGroup()
    {
        OssSnGroupNode *group = openGroup(QStringLiteral("Gone"));
        OSS_RUN_PYTHON("kept = palette.nodeGraphView(1)\nassert kept.zoomLevel() > 0");
        QVERIFY(m_network->removeNode(group, false));
        OSS_RUN_PYTHON("expect_error(ossa.ObjectNotValid, 'Internal QGraphicsView object not "
                       "valid', kept.zoomLevel)\n"
                       "kept = None\n"
                       "assert len(palette.nodeGraphViewList()) == 1");
    }
};

QTEST_MAIN(tst_ScriptObjectsPython)
#include "tst_ScriptObjectsPython.moc"
