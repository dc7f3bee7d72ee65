#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssDebug.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssSnGroupNode.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QtTest>

namespace {
// A step that changes nothing: only its place in the history matters.
class LooseStep : public OssUndoCommand
{
public:
    LooseStep() : OssUndoCommand(QStringLiteral("Loose step")) {}
    void redo() override {}
    void undo() override {}
};
} // namespace

// The shared test host itself: it starts the plug-in as the host does, captures debug lines
// exactly, and leaves nothing of one test to the next.
class tst_TestHost : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        // Starting writes the plug-in's banner first; then the root view reports its navigation.
        QCOMPARE(m_host.lines(),
                 (QStringList{QStringLiteral("[ Plugin ] Shader Network - Node Graph View Context"),
                              QStringLiteral("[ -- ] Nodegraph navigation set to 'Kova'")}));
        QVERIFY(!m_host.start());
        QCOMPARE(m_host.errorString(), QStringLiteral("the plug-in is started already"));
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void thePluginOwnsItsCreationActions()
    {
        QAction *blur = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Create/Filter/Blur"));
        QVERIFY(blur);
        QCOMPARE(blur->parent(), m_host.plugin());
        OssShaderNetwork *network = m_host.newProject();
        QVERIFY(network);
        QCOMPARE(m_host.nodeGraphWidget()->view()->network(), network);
        blur->trigger();
        QCOMPARE(network->nodes().size(), 1);
        QCOMPARE(OssUndoManager::instance()->count(), 1);
    }

    void hostOperationLinesAreCapturedExactly()
    {
        OssShaderNetwork *network = m_host.newProject();
        m_host.clearLines();
        QVERIFY(network->createNodes(QStringLiteral("No/Such Type")).isEmpty());
        const QString refusal =
            QStringLiteral("[ !! ] Cannot create node 'No/Such Type': unknown node type "
                           "'No/Such Type'");
        QCOMPARE(m_host.lines(), QStringList{refusal});
        QVERIFY(m_host.hasLine(refusal));
        QVERIFY(!m_host.hasLine(refusal.left(20)));
        QVERIFY(network->createNodes(QStringLiteral("No/Such Type")).isEmpty());
        QCOMPARE(m_host.lineCount(refusal), 2);
        m_host.clearLines();
        QVERIFY(m_host.lines().isEmpty());
        QVERIFY(!m_host.hasLine(refusal));
    }

    void resetLeavesNoProjectNoScenesAndNoHistory()
    {
        OssShaderNetwork *network = m_host.newProject(QStringLiteral("Head"));
        auto *group = qobject_cast<OssSnGroupNode *>(network->createNode("Misc/Group"));
        QVERIFY(group);
        group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        emit group->openNodeGraph();
        QCOMPARE(m_host.nodeGraphWidget()->count(), 2);
        QVERIFY(m_host.manager()->sceneCount() >= 2);
        QVERIFY(OssUndoManager::instance()->count() > 0);
        OSS_DEBUG("[ -- ] a line before the reset");
        QVERIFY(!m_host.lines().isEmpty());

        const QPointer<OssShaderNetwork> closed = network;
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
        QVERIFY(!OssProjectManager::instance()->currentProject());
        QVERIFY(!closed);
        QCOMPARE(m_host.manager()->sceneCount(), 0);
        QCOMPARE(OssUndoManager::instance()->count(), 0);
        QCOMPARE(m_host.nodeGraphWidget()->count(), 1);
        QVERIFY(!m_host.nodeGraphWidget()->view()->network());
        QVERIFY(m_host.lines().isEmpty());

        // The next project starts from there like the first one.
        OssShaderNetwork *next = m_host.newProject();
        // (The closed network is gone; the new one may take its address.)
        QVERIFY(next);
        QCOMPARE(m_host.manager()->currentView()->network(), next);
        QCOMPARE(OssUndoManager::instance()->count(), 0);
    }

    void resetClearsHistoryMadeWithoutAProject()
    {
        OssUndoManager::instance()->addUndo(new LooseStep);
        QVERIFY(!OssProjectManager::instance()->currentProject());
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
        QCOMPARE(OssUndoManager::instance()->count(), 0);
    }

    void resetNamesWhatItCannotClose()
    {
        // Without a project to close, a network of the test's own keeps its scene.
        auto *loose = new OssShaderNetwork(QStringLiteral("Loose"));
        loose->createNode(QStringLiteral("Filter/Blur"), QString(), false);
        QVERIFY(!m_host.reset());
        QCOMPARE(m_host.errorString(), QStringLiteral("scenes left: 1"));
        QVERIFY(!OssProjectManager::instance()->currentProject());
        delete loose;
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    void openSampleGivesItsFirstNetwork()
    {
        OssShaderNetwork *network = m_host.openSample();
        QVERIFY2(network, qPrintable(m_host.errorString()));
        OssProject *project = OssProjectManager::instance()->currentProject();
        QCOMPARE(network, project->networks().first());
        QCOMPARE(project->filePath(), QFileInfo(OssTestHost::samplePath()).absoluteFilePath());
        QVERIFY(network->node(QStringLiteral("Shell_Surface")));
        QCOMPARE(m_host.nodeGraphWidget()->view()->network(), network);
        for (const QString &line : m_host.lines())
            QVERIFY2(!line.startsWith(QStringLiteral("[ !! ]")), qPrintable(line));

        // A project that cannot be opened says why and leaves the open one.
        const QString missing = m_host.scratchPath(QStringLiteral("missing.ossa"));
        QVERIFY(!m_host.openProject(missing));
        QVERIFY2(m_host.errorString().startsWith("\"" + missing + "\": cannot open"),
                 qPrintable(m_host.errorString()));
        QCOMPARE(OssProjectManager::instance()->currentProject(), project);
    }

    void saveAndReopenGivesTheSavedNetwork()
    {
        OssShaderNetwork *network = m_host.newProject();
        network->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Soft"));
        OssShaderNetwork *reopened = m_host.saveAndReopen(QStringLiteral("reopen.ossa"));
        QVERIFY2(reopened, qPrintable(m_host.errorString()));
        QCOMPARE(OssProjectManager::instance()->currentProject()->filePath(),
                 m_host.scratchPath(QStringLiteral("reopen.ossa")));
        QVERIFY(reopened->node(QStringLiteral("Soft")));
        QCOMPARE(reopened->nodes().size(), 1);
    }
};

QTEST_MAIN(tst_TestHost)
#include "tst_TestHost.moc"
