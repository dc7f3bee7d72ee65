#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QtTest>

// Walking the selection along the graph from the view's selected nodes. The graph: N1 and N2
// feed inputs A and B of Mix, which feeds Out; Lone stands alone; Proxy is the current material
// proxy (a system shader node).
class tst_SelectionNavigation : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }

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

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QCOMPARE(view()->network(), m_network);
        QVERIFY2(m_host.createMixChain(m_network), qPrintable(m_host.errorString()));
        QVERIFY2(m_host.createNodes(
                     m_network, {{"Filter/Blur", "Lone"}, {"_System/Current Material", "Proxy"}}),
                 qPrintable(m_host.errorString()));
        m_network->clearSelection();
        OssUndoManager::instance()->clear();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void walks_data()
    {
        QTest::addColumn<QString>("slot");
        QTest::addColumn<QStringList>("before");
        QTest::addColumn<QStringList>("after");
        QTest::newRow("all upstream of the end")
            << "selectAllUpstream" << QStringList{"Out"} << QStringList{"Mix", "N1", "N2", "Out"};
        QTest::newRow("all downstream of a source")
            << "selectAllDownstream" << QStringList{"N2"} << QStringList{"Mix", "N2", "Out"};
        QTest::newRow("upstream moves to the inputs")
            << "selectUpstream" << QStringList{"Mix"} << QStringList{"N1", "N2"};
        QTest::newRow("upstream without inputs keeps the node")
            << "selectUpstream" << QStringList{"N1"} << QStringList{"N1"};
        QTest::newRow("downstream moves to the outputs")
            << "selectDownstream" << QStringList{"Mix"} << QStringList{"Out"};
        QTest::newRow("downstream at the end keeps the node")
            << "selectDownstream" << QStringList{"Out"} << QStringList{"Out"};
        QTest::newRow("add upstream")
            << "addSelectUpstream" << QStringList{"Mix"} << QStringList{"Mix", "N1", "N2"};
        QTest::newRow("add downstream")
            << "addSelectDownstream" << QStringList{"N1"} << QStringList{"Mix", "N1"};
        QTest::newRow("next sibling")
            << "selectNextSibling" << QStringList{"N1"} << QStringList{"N2"};
        QTest::newRow("previous sibling")
            << "selectPrevSibling" << QStringList{"N2"} << QStringList{"N1"};
        QTest::newRow("next sibling of two, one of which has one")
            << "selectNextSibling" << QStringList{"N1", "Lone"} << QStringList{"N2"};
        QTest::newRow("no next sibling keeps the selection")
            << "selectNextSibling" << QStringList{"N2"} << QStringList{"N2"};
        QTest::newRow("add next sibling")
            << "addSelectNextSibling" << QStringList{"N1"} << QStringList{"N1", "N2"};
        QTest::newRow("add previous sibling")
            << "addSelectPrevSibling" << QStringList{"N2"} << QStringList{"N1", "N2"};
        QTest::newRow("between") << "selectBetween" << QStringList{"N1", "Out"}
                                 << QStringList{"Mix", "N1", "Out"};
        QTest::newRow("between needs two")
            << "selectBetween" << QStringList{"N1"} << QStringList{"N1"};
        QTest::newRow("select all leaves system shader nodes out")
            << "selectAll" << QStringList{} << QStringList{"Lone", "Mix", "N1", "N2", "Out"};
        QTest::newRow("a system shader node starts no walk")
            << "addSelectDownstream" << QStringList{"Proxy"} << QStringList{"Proxy"};
    }

    void walks()
    {
        QFETCH(QString, slot);
        QFETCH(QStringList, before);
        QFETCH(QStringList, after);
        select(before);
        const QTransform transform = view()->transform();
        const QPointF centre = view()->mapToScene(view()->viewport()->rect().center());
        QVERIFY(QMetaObject::invokeMethod(view(), slot.toLatin1().constData()));
        QCOMPARE(selection(), after);
        // The scene shows the same selection.
        for (OssSnBaseNode *each : m_network->nodes())
            QCOMPARE(OssSnNodeGraphViewContext::guiNodeOf(each)->isSelected(), each->selected());
        // No undo step, no pan, no zoom.
        QCOMPARE(OssUndoManager::instance()->count(), 0);
        QCOMPARE(view()->transform(), transform);
        QCOMPARE(view()->mapToScene(view()->viewport()->rect().center()), centre);
    }

    void aWalkStaysInTheStartingNodesNetwork()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        OssShaderNetwork *inner = group->groupNetwork();
        OssSnBaseNode *in = inner->createNode(QStringLiteral("_System/Group Input"), "In");
        OssSnBaseNode *blur = inner->createNode(QStringLiteral("Filter/Blur"), "Inside");
        QVERIFY(blur->connectInput("Input", in, "Output"));
        QVERIFY(group->connectInput("In", node("Out"), "Output"));
        emit group->openNodeGraph();
        OssShaderNetworkView *groupView = m_host.manager()->currentView();
        QCOMPARE(groupView->network(), inner);
        blur->setSelected(true);
        groupView->selectAllUpstream();
        QVERIFY(in->selected());
        QCOMPARE(selection(), QStringList{});
    }

    void selectAllWithoutANetworkSaysSo()
    {
        OssShaderNetworkView loose;
        m_host.clearLines();
        loose.selectAll();
        QVERIFY(m_host.hasLine(QStringLiteral("m_network is NULL")));
    }
};

QTEST_MAIN(tst_SelectionNavigation)
#include "tst_SelectionNavigation.moc"
