#include "OssTestHost.h"

#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QSignalSpy>
#include <QtTest>

// A group's ports mirror its inner input and output nodes; removing such a node is one host
// operation whose undo gives back the identical graph (port order and connections included).
class tst_GroupPorts : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssSnGroupNode *m_group = nullptr;
    OssUndoManager *undo() { return OssUndoManager::instance(); }

    // The group's dump and the root network's dump together: both sides of every port.
    QString dump() const { return m_network->dump() + m_group->groupNetwork()->dump(); }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        m_group =
            qobject_cast<OssSnGroupNode *>(m_network->createNode(QStringLiteral("Misc/Group")));
        QVERIFY(m_group);
        OssShaderNetwork *inner = m_group->groupNetwork();
        // Inputs A, B, C fed from outside and feeding a mix inside; outputs X and Y feeding
        // blurs outside.
        OssSnBaseNode *mix = inner->createNode(QStringLiteral("Math/Mix"));
        QVERIFY(mix);
        const QStringList mixInputs = mix->inputNames();
        int used = 0;
        for (const char *name : {"A", "B", "C"}) {
            OssSnBaseNode *in =
                inner->createNode(QStringLiteral("_System/Group Input"), QString::fromLatin1(name));
            QVERIFY(in);
            OssSnBaseNode *source =
                m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
            QVERIFY(m_group->connectInput(in->name(), source, QStringLiteral("Output")));
            if (used < mixInputs.size())
                QVERIFY(mix->connectInput(mixInputs.at(used++), in, QStringLiteral("Output")));
        }
        for (const char *name : {"X", "Y"}) {
            OssSnBaseNode *out = inner->createNode(QStringLiteral("_System/Group Output"),
                                                   QString::fromLatin1(name));
            QVERIFY(out);
            QVERIFY(out->connectInput(QStringLiteral("Input"), mix, mix->prefferedOutputPoint()));
            OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
            QVERIFY(blur->connectInput(QStringLiteral("Input"), m_group, out->name()));
        }
        QCOMPARE(m_group->inputNames(), QStringList({"A", "B", "C"}));
        QCOMPARE(m_group->outputPointNames(), QStringList({"X", "Y"}));
        undo()->clear();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void removingAnInnerPortNodeIsUndoneExactly_data()
    {
        QTest::addColumn<QString>("node");
        QTest::addColumn<QStringList>("inputsAfter");
        QTest::addColumn<QStringList>("outputsAfter");
        QTest::newRow("first input") << "A" << QStringList{"B", "C"} << QStringList{"X", "Y"};
        QTest::newRow("middle input") << "B" << QStringList{"A", "C"} << QStringList{"X", "Y"};
        QTest::newRow("last input") << "C" << QStringList{"A", "B"} << QStringList{"X", "Y"};
        QTest::newRow("first output") << "X" << QStringList{"A", "B", "C"} << QStringList{"Y"};
        QTest::newRow("last output") << "Y" << QStringList{"A", "B", "C"} << QStringList{"X"};
    }

    void removingAnInnerPortNodeIsUndoneExactly()
    {
        QFETCH(QString, node);
        QFETCH(QStringList, inputsAfter);
        QFETCH(QStringList, outputsAfter);
        OssShaderNetwork *inner = m_group->groupNetwork();
        const QString before = dump();
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Remove Selected Nodes"));
            inner->removeNodes({inner->node(node)});
        }
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(m_group->inputNames(), inputsAfter);
        QCOMPARE(m_group->outputPointNames(), outputsAfter);
        // Nothing outside is left connected to the port that went.
        for (OssSnBaseNode *outer : m_network->nodes())
            for (const QString &input : outer->inputNames())
                if (outer->inputConnection(input) == m_group)
                    QVERIFY(outputsAfter.contains(outer->inputOutputPoint(input)));
        const QString after = dump();
        QVERIFY(after != before);

        undo()->undo();
        QCOMPARE(dump(), before);
        undo()->redo();
        QCOMPARE(dump(), after);
        undo()->undo();
        QCOMPARE(dump(), before);
    }

    void removingSeveralPortNodesAtOnceIsUndoneExactly()
    {
        OssShaderNetwork *inner = m_group->groupNetwork();
        const QString before = dump();
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Remove Selected Nodes"));
            inner->removeNodes({inner->node("C"), inner->node("A"), inner->node("X")});
        }
        QCOMPARE(m_group->inputNames(), QStringList{"B"});
        undo()->undo();
        QCOMPARE(dump(), before);
    }

    void undoingTheCreationOfAPortNodeRedoesItInPlace()
    {
        OssShaderNetwork *inner = m_group->groupNetwork();
        QSignalSpy created(m_group, &OssSnGroupNode::newGroupNodeInputOutputCreated);
        OssSnBaseNode *d = inner->createNode(QStringLiteral("_System/Group Input"), "D");
        QVERIFY(d);
        QCOMPARE(created.count(), 1);
        QCOMPARE(m_group->inputNames(), QStringList({"A", "B", "C", "D"}));
        const QString withD = dump();
        undo()->undo();
        QCOMPARE(m_group->inputNames(), QStringList({"A", "B", "C"}));
        undo()->redo();
        QCOMPARE(dump(), withD);
        // Putting back a port is not the creation of a new one.
        QCOMPARE(created.count(), 1);
    }

    void renamesFollowARestoredPortNode()
    {
        OssShaderNetwork *inner = m_group->groupNetwork();
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Remove"));
            inner->removeNodes({inner->node("B")});
        }
        undo()->undo();
        inner->node("B")->setName(QStringLiteral("Detail"));
        QCOMPARE(m_group->inputNames(), QStringList({"A", "Detail", "C"}));
    }

    void theCurrentViewerComesBackWithItsNode()
    {
        OssSnBaseNode *viewer = m_network->createNode(QStringLiteral("Misc/Viewer"));
        QVERIFY(viewer);
        OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
        manager->setCurrentViewerNode(viewer);
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Remove Selected Nodes"));
            m_network->removeNodes({viewer});
        }
        QCOMPARE(manager->currentViewerNode(), nullptr);
        undo()->undo();
        QCOMPARE(manager->currentViewerNode(), viewer);
        undo()->redo();
        QCOMPARE(manager->currentViewerNode(), nullptr);
        undo()->undo();
        QCOMPARE(manager->currentViewerNode(), viewer);
    }

    void aRemovalIsAnnouncedOnce()
    {
        OssSnBaseNode *in = m_group->groupNetwork()->node(QStringLiteral("A"));
        QSignalSpy announced(in, &OssSnBaseNode::nodeRemovedFromNetwork);
        QSignalSpy deregistered(OssShaderNetworkManager::instance(),
                                &OssShaderNetworkManager::nodeDeregistered);
        m_group->groupNetwork()->removeNode(in);
        QCOMPARE(announced.count(), 1);
        QCOMPARE(deregistered.count(), 1);
    }
};

QTEST_MAIN(tst_GroupPorts)
#include "tst_GroupPorts.moc"
