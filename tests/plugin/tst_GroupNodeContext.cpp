#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnGroupPortOrder.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssApplication.h>
#include <OssNgEdge.h>
#include <OssNgExtendedNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBakePointNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMultiChannelBakePointNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssSnNodeTypeCatalogue.h>

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QtTest>

// The view context of group nodes on the real host and plug-in: its subgraph view and tab, the
// shape and category of each group kind, gizmo export, and the inner input and output nodes.
class tst_GroupNodeContext : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    QStringList m_addedTypes;

    OssSnNodeGraphViewContextManager *manager() { return m_host.manager(); }
    OssSnNodeGraphWidget *widget() { return manager()->nodeGraphWidget(); }
    OssNgNode *gui(OssSnBaseNode *node) { return OssSnNodeGraphViewContext::guiNodeOf(node); }
    OssNgExtendedNode *extended(OssSnBaseNode *node)
    {
        return qobject_cast<OssNgExtendedNode *>(gui(node));
    }
    OssSnGroupNodeGraphViewContext *context(OssSnBaseNode *node)
    {
        return qobject_cast<OssSnGroupNodeGraphViewContext *>(OssSnNodeGraphViewContext::of(node));
    }
    OssSnGroupNode *makeGroup(const char *name = nullptr)
    {
        return qobject_cast<OssSnGroupNode *>(m_network->createNode(
            QStringLiteral("Misc/Group"), name ? QString::fromLatin1(name) : QString()));
    }
    // A node type of the given class whose description gives no shape.
    QString addTypeWithoutShape(const QString &nodeClass)
    {
        const QString key = QStringLiteral("Test/") + nodeClass;
        const QString path = m_host.scratchPath(nodeClass + QStringLiteral(".xml"));
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return QString();
        file.write(QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                  "<NodeType PathKey=\"%1\" MenuPath=\"%1\" Class=\"%2\" "
                                  "VersionUuid=\"TEST_%2\" Date=\"2026-01-01\" NodeGraph=\"true\">"
                                  "<Contexts><Context Type=\"NodeGraphView\" "
                                  "Class=\"OssSnGroupNodeGraphViewContext\"/></Contexts>"
                                  "</NodeType>\n")
                       .arg(key, nodeClass)
                       .toUtf8());
        file.close();
        QString error;
        if (!OssSnNodeTypeCatalogue::instance()->addTypeFromFile(path, &error)) {
            qWarning("%s", qPrintable(error));
            return QString();
        }
        m_addedTypes.append(key);
        return key;
    }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        m_network = m_host.newProject(QStringLiteral("Head"));
        QVERIFY(m_network);
        QCOMPARE(widget()->count(), 1);
    }

    void cleanup()
    {
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
        for (const QString &key : qAsConst(m_addedTypes))
            OssSnNodeTypeCatalogue::instance()->removeType(key);
        m_addedTypes.clear();
    }

    // --- initializeGui

    void initializeGuiOnANodeThatIsNotAGroup()
    {
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        m_host.clearLines();
        auto *wrong = new OssSnGroupNodeGraphViewContext(blur);
        wrong->initializeGui();
        QCOMPARE(m_host.lines(), QStringList{QStringLiteral("GroupNode is NULL")});
        // No tab and no wiring: the tab slots do nothing for it.
        wrong->showGroupNodeTab();
        QCOMPARE(widget()->count(), 1);
        m_host.clearLines();
        QMetaObject::invokeMethod(wrong, "adjustInputOutputPos");
        QCOMPARE(m_host.lines(), QStringList{QStringLiteral("g is NULL")});
        delete wrong;
    }

    void initializeGuiShapeComesFromTheKind_data()
    {
        QTest::addColumn<QString>("nodeClass");
        QTest::addColumn<int>("shape");
        QTest::newRow("group") << "OssSnGroupNode" << 4;
        QTest::newRow("material") << "OssSnMaterialNode" << 3;
        QTest::newRow("multi-channel group") << "OssSnMultiChannelGroupNode" << 7;
        QTest::newRow("multi-channel merge") << "OssSnMultiChannelMergeNode" << 7;
    }

    void initializeGuiShapeComesFromTheKind()
    {
        QFETCH(QString, nodeClass);
        QFETCH(int, shape);
        const QString key = addTypeWithoutShape(nodeClass);
        QVERIFY(!key.isEmpty());
        OssSnBaseNode *node = m_network->createNode(key);
        QVERIFY(node);
        QVERIFY(context(node));
        QCOMPARE(context(node)->shapeType(), shape);
        QCOMPARE(gui(node)->shapeType(), shape);
    }

    void initializeGuiMakesTheViewAndKeepsTheTabHidden()
    {
        OssSnGroupNode *group = makeGroup();
        OssShaderNetworkView *view = context(group)->subgraphView();
        QVERIFY(view);
        QCOMPARE(view->network(), group->groupNetwork());
        QCOMPARE(view->scene(), manager()->sceneForNetwork(group->groupNetwork()));
        QCOMPARE(widget()->count(), 1);
        QCOMPARE(widget()->indexOf(view), -1);
        // Inner nodes are in the view's scene.
        OssSnBaseNode *inner = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        QCOMPARE(gui(inner)->scene(), view->scene());
    }

    // --- updateMultiChannelNodeUI

    void updateMultiChannelNodeUI_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("validCategory");
        QTest::addColumn<int>("validShape");
        QTest::addColumn<QString>("invalidCategory");
        QTest::addColumn<int>("invalidShape");
        QTest::newRow("merge") << "_System/MultiChannelMerge"
                               << "MultiChannelMerge" << 7 << "MultiChannelInvalid" << 4;
        QTest::newRow("bake point") << "_System/MultiChannelBakePoint"
                                    << "MultiChannelBakePoint" << 7 << "MultiChannelInvalid" << 4;
        QTest::newRow("bottom transparency")
            << "_System/MultiChannelBottomTransparency"
            << "MultiChannelBottomTransparency" << 7 << "MultiChannelInvalid" << 4;
        // A plain multi-channel group is none of the listed classes: left alone.
        QTest::newRow("plain multi-channel group") << "Misc/Multi Channel Group"
                                                   << "Misc" << 7 << "Misc" << 7;
    }

    void updateMultiChannelNodeUI()
    {
        QFETCH(QString, key);
        QFETCH(QString, validCategory);
        QFETCH(int, validShape);
        QFETCH(QString, invalidCategory);
        QFETCH(int, invalidShape);
        auto *node = qobject_cast<OssSnMultiChannelGroupNode *>(m_network->createNode(key));
        QVERIFY(node);
        node->setValid(true);
        QCOMPARE(extended(node)->category(), validCategory);
        QCOMPARE(extended(node)->shapeType(), validShape);
        QCOMPARE(context(node)->shapeType(), validShape);
        node->setValid(false);
        QCOMPARE(extended(node)->category(), invalidCategory);
        QCOMPARE(extended(node)->shapeType(), invalidShape);
        QCOMPARE(context(node)->shapeType(), invalidShape);
        node->setValid(true);
        QCOMPARE(extended(node)->category(), validCategory);
        QCOMPARE(context(node)->shapeType(), validShape);
    }

    void updateMultiChannelNodeUIForAMaterial()
    {
        OssSnBaseNode *material = m_network->createNode(QStringLiteral("_System/Material"));
        QVERIFY(material);
        QCOMPARE(extended(material)->category(), QStringLiteral("MultiChannelMaterial"));
        QCOMPARE(context(material)->shapeType(), 3);
    }

    // --- onBakedStateChanged

    void onBakedStateChanged()
    {
        auto *multi = qobject_cast<OssSnMultiChannelBakePointNode *>(
            m_network->createNode(QStringLiteral("_System/MultiChannelBakePoint")));
        QVERIFY(multi);
        for (OssSnBaseNode *node : multi->activeBakePointNodes())
            node->setEnabled(false);
        emit multi->bakedStateChanged();
        QVERIFY(!extended(multi)->mark(OssNgExtendedNode::BakedMark));
        auto *bake = qobject_cast<OssSnBakePointNode *>(
            multi->groupNetwork()->createNode(QStringLiteral("Misc/Bake Point")));
        QVERIFY(bake);
        emit multi->bakedStateChanged();
        QVERIFY(extended(multi)->mark(OssNgExtendedNode::BakedMark));
        QVERIFY(!extended(multi)->mark(OssNgExtendedNode::StaleMark));
        bake->bake(QStringLiteral("Set"));
        emit multi->bakedStateChanged();
        QVERIFY(!extended(multi)->mark(OssNgExtendedNode::StaleMark));
        // A baked result that no longer matches what is upstream is stale.
        bake->setBakedSignature(QStringLiteral("an older graph"));
        emit multi->bakedStateChanged();
        QVERIFY(extended(multi)->mark(OssNgExtendedNode::StaleMark));
    }

    // --- tabs

    void addTabToWidget()
    {
        OssSnGroupNode *first = makeGroup("First");
        OssSnGroupNode *second = makeGroup("Second");
        OssShaderNetworkView *firstView = context(first)->subgraphView();
        OssShaderNetworkView *secondView = context(second)->subgraphView();
        // Another group's node is not this context's business.
        context(first)->addTabToWidget(second);
        QCOMPARE(widget()->count(), 1);
        context(first)->addTabToWidget(first);
        QCOMPARE(widget()->count(), 2);
        QCOMPARE(widget()->indexOf(firstView), 1);
        QCOMPARE(widget()->tabText(1), QStringLiteral("First"));
        // Appended, never made current.
        QCOMPARE(widget()->currentIndex(), 0);
        context(second)->addTabToWidget(second);
        QCOMPARE(widget()->indexOf(secondView), 2);
        QCOMPARE(widget()->currentIndex(), 0);
        // Once only.
        context(first)->addTabToWidget(first);
        QCOMPARE(widget()->count(), 3);
    }

    void showGroupNodeTab()
    {
        OssSnGroupNode *group = makeGroup();
        context(group)->showGroupNodeTab();
        QCOMPARE(widget()->count(), 2);
        QCOMPARE(manager()->currentView(), context(group)->subgraphView());
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewNetwork(), group->groupNetwork());
        context(group)->showGroupNodeTab();
        QCOMPARE(widget()->count(), 2);
    }

    void showGroupNodeTabBehind()
    {
        OssSnGroupNode *group = makeGroup();
        OssShaderNetworkView *root = manager()->currentView();
        context(group)->showGroupNodeTabBehind();
        QCOMPARE(widget()->count(), 2);
        QCOMPARE(widget()->indexOf(context(group)->subgraphView()), 1);
        QCOMPARE(manager()->currentView(), root);
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewNetwork(), m_network);
        // When it is current already, it stays current.
        context(group)->showGroupNodeTab();
        context(group)->showGroupNodeTabBehind();
        QCOMPARE(manager()->currentView(), context(group)->subgraphView());
    }

    void makeGroupNodeTabCurrent()
    {
        OssSnGroupNode *first = makeGroup("First");
        OssSnGroupNode *second = makeGroup("Second");
        // Without a tab there is nothing to make current.
        context(first)->makeGroupNodeTabCurrent(first);
        QCOMPARE(widget()->count(), 1);
        QCOMPARE(widget()->currentIndex(), 0);
        context(first)->addTabToWidget(first);
        context(first)->makeGroupNodeTabCurrent(second);
        QCOMPARE(widget()->currentIndex(), 0);
        context(first)->makeGroupNodeTabCurrent(first);
        QCOMPARE(manager()->currentView(), context(first)->subgraphView());
        QCOMPARE(OssShaderNetworkManager::instance()->currentViewNetwork(), first->groupNetwork());
    }

    void forceOpenGroupSubgraphOnOpenNodeGraph()
    {
        OssSnGroupNode *group = makeGroup();
        emit group->openNodeGraph();
        QCOMPARE(manager()->currentView(), context(group)->subgraphView());
    }

    void hideGroupNodeTab()
    {
        OssSnGroupNode *first = makeGroup("First");
        OssSnGroupNode *second = makeGroup("Second");
        context(first)->showGroupNodeTab();
        context(first)->hideGroupNodeTab(m_network, second);
        QCOMPARE(widget()->count(), 2);
        context(first)->hideGroupNodeTab(m_network, first);
        QCOMPARE(widget()->count(), 1);
        // Removing the group takes its tab along.
        context(second)->showGroupNodeTab();
        QCOMPARE(widget()->count(), 2);
        m_network->removeNodes({second});
        QCOMPARE(widget()->count(), 1);
    }

    void changeGroupNodeTabText()
    {
        OssSnGroupNode *group = makeGroup();
        group->setName(QStringLiteral("Hidden"));
        context(group)->showGroupNodeTab();
        QCOMPARE(widget()->tabText(1), QStringLiteral("Hidden"));
        group->setName(QStringLiteral("Scratches"));
        QCOMPARE(widget()->tabText(1), QStringLiteral("Scratches"));
    }

    // --- opening from the view

    void doubleClickOpensTheGroupWithControl_data()
    {
        QTest::addColumn<bool>("control");
        QTest::newRow("plain double-click") << false;
        QTest::newRow("control double-click") << true;
    }

    void doubleClickOpensTheGroupWithControl()
    {
        QFETCH(bool, control);
        QWidget *window = widget()->window();
        window->resize(1000, 800);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        OssSnGroupNode *group = makeGroup();
        OssShaderNetworkView *view = manager()->currentView();
        gui(group)->setPos(0, 0);
        view->resetTransform();
        view->centerOn(gui(group)->sceneBoundingRect().center());
        QSignalSpy opened(view, &OssShaderNetworkView::nodeDoubleClicked);
        const QPoint at = view->mapFromScene(gui(group)->sceneBoundingRect().center());
        QTest::mouseDClick(view->viewport(), Qt::LeftButton,
                           control ? Qt::ControlModifier : Qt::NoModifier, at);
        QCOMPARE(opened.count(), 1);
        QCOMPARE(opened.first().first().value<OssSnBaseNode *>(), group);
        QCOMPARE(widget()->count(), control ? 2 : 1);
        QCOMPARE(manager()->currentView() == context(group)->subgraphView(), control);
        window->hide();
    }

    // --- onExportAsGizmo

    void onExportAsGizmo()
    {
        OssSnGroupNode *group = makeGroup();
        OssSnGroupNode *other = makeGroup("Other");
        m_host.clearLines();
        QVERIFY(QMetaObject::invokeMethod(context(group), "onExportAsGizmo",
                                          Q_ARG(OssSnGroupNode *, nullptr)));
        QCOMPARE(m_host.lines(),
                 QStringList{"OssSnGroupNodeGraphViewContext::onExportAsGizmo GroupNode is NULL"});
        const QString file = m_host.scratchPath(QStringLiteral("gizmo.ong"));
        // Another group's request is not this context's: the answer stays queued.
        OssApplication::queueDialogAnswer(file);
        QVERIFY(QMetaObject::invokeMethod(context(group), "onExportAsGizmo",
                                          Q_ARG(OssSnGroupNode *, other)));
        QVERIFY(OssApplication::hasDialogAnswer());
        QVERIFY(QMetaObject::invokeMethod(context(group), "onExportAsGizmo",
                                          Q_ARG(OssSnGroupNode *, group)));
        QVERIFY(!OssApplication::hasDialogAnswer());
        QVERIFY(QFileInfo(file).size() > 0);
    }

    // --- adjustInputOutputPos

    void adjustInputOutputPos()
    {
        OssSnGroupNode *group = makeGroup();
        OssShaderNetwork *inner = group->groupNetwork();
        OssSnBaseNode *blur = inner->createNode(QStringLiteral("Filter/Blur"));
        gui(blur)->setPos(200, 100);
        OssSnBaseNode *output = inner->createNode(QStringLiteral("_System/Group Output"), "Out");
        QVERIFY(output->connectInput(output->inputNames().first(), blur, QStringLiteral("Output")));
        output->setSelected(true);
        m_host.clearLines();
        // A new inner input node: the group adds a port and the output node steps aside.
        OssSnBaseNode *input = inner->createNode(QStringLiteral("_System/Group Input"), "In");
        QVERIFY(blur->connectInput(QStringLiteral("Input"), input, input->prefferedOutputPoint()));
        QVERIFY(!output->selected());
        QVERIFY(!gui(output)->isSelected());
        QVERIFY(!m_host.hasLine("Output node should have only one input into the node"));
        const QRectF blurBounds = gui(blur)->boundingRect();
        QCOMPARE(gui(output)->pos(), QPointF(200 + blurBounds.width() + 150, 100));
        // The next one places the input node before the node it feeds.
        inner->createNode(QStringLiteral("_System/Group Input"), "In2");
        QCOMPARE(gui(input)->pos(), QPointF(200 - gui(input)->boundingRect().width() - 70, 100));
        // An output node with more than one input says so.
        output->addInput(QStringLiteral("Extra"));
        m_host.clearLines();
        inner->createNode(QStringLiteral("_System/Group Output"), "Out2");
        QVERIFY(m_host.hasLine("Output node should have only one input into the node"));
    }

    // --- group port order

    void reorderGroupInputsByPos_data()
    {
        QTest::addColumn<QList<int>>("heights");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("top to bottom") << QList<int>{300, 100, 200} << QStringList{"B", "C", "A"};
        QTest::newRow("left to right does not count")
            << QList<int>{100, 100, 100} << QStringList{"A", "B", "C"};
        QTest::newRow("already in order") << QList<int>{0, 50, 100} << QStringList{"A", "B", "C"};
    }

    void reorderGroupInputsByPos()
    {
        QFETCH(QList<int>, heights);
        QFETCH(QStringList, order);
        OssSnGroupNode *group = makeGroup();
        OssShaderNetwork *inner = group->groupNetwork();
        const QStringList names{"A", "B", "C"};
        for (int i = 0; i < names.size(); ++i) {
            OssSnBaseNode *node =
                inner->createNode(QStringLiteral("_System/Group Input"), names.at(i));
            // Right to left, so that a left-to-right order would differ.
            gui(node)->setPos(1000 - 200 * i, heights.at(i));
        }
        // Moving an input node reorders already; asking again keeps the order.
        manager()->reorderGroupInputsByPos(group);
        QCOMPARE(group->inputNames(), order);
    }

    void reorderGroupInputsByPosWithoutGroup()
    {
        m_host.clearLines();
        manager()->reorderGroupInputsByPos(nullptr);
        QCOMPARE(m_host.lines(), QStringList{"GroupNode is NULL"});
    }
};

QTEST_MAIN(tst_GroupNodeContext)
#include "tst_GroupNodeContext.moc"
