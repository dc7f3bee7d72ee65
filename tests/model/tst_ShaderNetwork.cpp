#include "OssTestHost.h"

#include <OssChannel.h>
#include <OssEntity.h>
#include <OssObjectReferenceManager.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkContextLoader.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseContext.h>
#include <OssSnBroadcastTeleportNode.h>
#include <OssSnChannelInputNode.h>
#include <OssSnGroupNode.h>
#include <OssSnTeleportNode.h>
#include <OssSnViewerNode.h>
#include <OssTeleportNodeManager.h>
#include <OssUndoManager.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

// A context that records what the host does with it.
class RecordingContext : public OssSnBaseContext
{
    Q_OBJECT
    Q_PROPERTY(int answer READ answer WRITE setAnswer)
public:
    using OssSnBaseContext::OssSnBaseContext;
    int answer() const { return m_answer; }
    void setAnswer(int answer) { m_answer = answer; }
    void initializeGui() override { ++initializeCount; }
    int initializeCount = 0;

private:
    int m_answer = 0;
};

class RecordingLoader : public OssShaderNetworkContextLoader
{
public:
    OssSnContextList load(const QString &description, OssSnBaseNode *node) override
    {
        lastDescription = description;
        return {new RecordingContext(node)};
    }
    QString lastDescription;
};

// Connections of a network as text, for before/after comparisons.
QStringList wiring(const OssShaderNetwork *network)
{
    QStringList lines;
    for (OssSnBaseNode *node : network->nodes())
        for (const QString &input : node->inputNames())
            if (OssSnBaseNode *source = node->inputConnection(input))
                lines << QStringLiteral("%1.%2<-%3.%4")
                             .arg(node->name(), input, source->name(),
                                  node->inputOutputPoint(input));
    return lines;
}

QStringList names(const QList<OssSnBaseNode *> &nodes)
{
    QStringList result;
    for (const OssSnBaseNode *node : nodes)
        result << node->name();
    return result;
}

} // namespace

class tst_ShaderNetwork : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    RecordingLoader *m_loader = nullptr;
    OssShaderNetwork *m_network = nullptr;
    OssUndoManager *undo() { return OssUndoManager::instance(); }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        m_loader = new RecordingLoader;
        OssShaderNetworkManager::instance()->registerContextLoader(QStringLiteral("NodeGraphView"),
                                                                   m_loader);
    }

    void init() { m_network = m_host.newProject(QStringLiteral("Head")); }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void createdNodesGetUniqueNamesContextsAndOneUndoStep()
    {
        QSignalSpy registered(OssShaderNetworkManager::instance(),
                              &OssShaderNetworkManager::nodeRegistered);
        OssSnBaseNode *first = m_network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *second = m_network->createNode(QStringLiteral("Filter/Blur"));
        QVERIFY(first && second);
        QCOMPARE(first->name(), QStringLiteral("Blur"));
        QCOMPARE(second->name(), QStringLiteral("Blur1"));
        QCOMPARE(registered.count(), 2);
        auto *context = qobject_cast<RecordingContext *>(first->context("NodeGraphView"));
        QVERIFY(context);
        QCOMPARE(context->initializeCount, 1);
        QVERIFY(m_loader->lastDescription.contains(QStringLiteral("PathKey=\"Filter/Blur\"")));
        QCOMPARE(first->path(), QStringLiteral("/Head_SG/Blur"));
        QCOMPARE(undo()->count(), 2);

        QSignalSpy deregistered(OssShaderNetworkManager::instance(),
                                &OssShaderNetworkManager::nodeDeregistered);
        undo()->undo();
        QCOMPARE(names(m_network->nodes()), QStringList{"Blur"});
        QCOMPARE(deregistered.count(), 1);
        undo()->redo();
        QCOMPARE(names(m_network->nodes()), (QStringList{"Blur", "Blur1"}));
        // The same node comes back, and its context is not initialised twice.
        QCOMPARE(m_network->node(QStringLiteral("Blur1")), second);
        QCOMPARE(
            qobject_cast<RecordingContext *>(second->context("NodeGraphView"))->initializeCount, 1);
    }

    void unknownPathKeyCreatesNothing()
    {
        m_host.clearLines();
        QVERIFY(m_network->createNodes(QStringLiteral("No/Such Type")).isEmpty());
        QVERIFY(m_host.hasLine(
            "[ !! ] Cannot create node 'No/Such Type': unknown node type 'No/Such Type'"));
        QCOMPARE(undo()->count(), 0);
    }

    void uniqueNames_data()
    {
        QTest::addColumn<QStringList>("existing");
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("expected");
        QTest::newRow("free") << QStringList() << "Blur"
                              << "Blur";
        QTest::newRow("taken") << QStringList{"Blur"} << "Blur"
                               << "Blur1";
        QTest::newRow("numbered base") << QStringList{"Blur", "Blur1"} << "Blur1"
                                       << "Blur2";
        QTest::newRow("gap reused") << QStringList{"Blur", "Blur2"} << "Blur"
                                    << "Blur1";
        QTest::newRow("only digits") << QStringList{"7"} << "7"
                                     << "Node1";
        QTest::newRow("blank") << QStringList() << "  "
                               << "Node";
    }

    void uniqueNames()
    {
        QFETCH(QStringList, existing);
        QFETCH(QString, base);
        QFETCH(QString, expected);
        for (const QString &name : existing)
            QVERIFY(m_network->createNode(QStringLiteral("Filter/Blur"), name));
        QCOMPARE(m_network->generateUniqueNodeName(base), expected);
    }

    void connectionsAreCheckedAndUndoable_data()
    {
        QTest::addColumn<QString>("sourceKey");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("refusal");
        QTest::newRow("colour into colour") << "Procedural/Noise/Perlin"
                                            << "Output"
                                            << "Input"
                                            << "";
        QTest::newRow("shader into colour")
            << "Shaders/Surface"
            << "Output"
            << "Input"
            << "output 'Surface.Output' (shader) cannot feed input 'Blur.Input' (color)";
        QTest::newRow("missing input") << "Procedural/Noise/Perlin"
                                       << "Output"
                                       << "Nope"
                                       << "node 'Blur' has no input 'Nope'";
        QTest::newRow("missing output") << "Procedural/Noise/Perlin"
                                        << "Nope"
                                        << "Input"
                                        << "node 'Perlin' has no output point 'Nope'";
    }

    void connectionsAreCheckedAndUndoable()
    {
        QFETCH(QString, sourceKey);
        QFETCH(QString, output);
        QFETCH(QString, input);
        QFETCH(QString, refusal);
        OssSnBaseNode *source = m_network->createNode(sourceKey);
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        QVERIFY(source && blur);
        undo()->clear();
        QSignalSpy changed(blur, &OssSnBaseNode::inputNodeChanged);
        QSignalSpy used(source, &OssSnBaseNode::outputPointUsed);
        QString error;
        const bool ok = blur->connectInput(input, source, output, true, &error);
        QCOMPARE(error, refusal);
        QCOMPARE(ok, refusal.isEmpty());
        if (!ok) {
            QCOMPARE(undo()->count(), 0);
            QCOMPARE(changed.count(), 0);
            return;
        }
        QCOMPARE(blur->inputConnection(input), source);
        QCOMPARE(source->outputNodes(), QList<OssSnBaseNode *>{blur});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(used.count(), 1);
        QSignalSpy freed(source, &OssSnBaseNode::outputPointFreed);
        undo()->undo();
        QVERIFY(!blur->inputConnection(input));
        QVERIFY(source->outputNodes().isEmpty());
        QCOMPARE(freed.count(), 1);
        undo()->redo();
        QCOMPARE(blur->inputConnection(input), source);
    }

    void cyclesAreRefused()
    {
        OssSnBaseNode *a = m_network->createNode(QStringLiteral("Filter/Blur"), "A");
        OssSnBaseNode *b = m_network->createNode(QStringLiteral("Filter/Sharpen"), "B");
        OssSnBaseNode *c = m_network->createNode(QStringLiteral("Adjust/Invert"), "C");
        QVERIFY(b->connectInput("Input", a, "Output"));
        QVERIFY(c->connectInput("Input", b, "Output"));
        QString error;
        QVERIFY(!a->connectInput("Input", c, "Output", true, &error));
        QCOMPARE(error, QStringLiteral("connecting 'C' to 'A.Input' would make a cycle"));
        QVERIFY(!a->connectInput("Input", a, "Output", true, &error));
        QVERIFY(!a->inputConnection("Input"));
    }

    void removingANodeRestoresItsConnectionsOnUndo()
    {
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *merge = m_network->createNode(QStringLiteral("Layer/Merge"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        QVERIFY(merge->connectInput("Base", blur, "Output"));
        QVERIFY(merge->connectInput("Over", noise, "Output"));
        const QStringList before = wiring(m_network);
        const int steps = undo()->count();
        m_network->removeNodes({blur});
        QCOMPARE(undo()->count(), steps + 1);
        QVERIFY(!m_network->containsNode(blur));
        QCOMPARE(wiring(m_network), QStringList{"Merge.Over<-Perlin.Output"});
        QCOMPARE(noise->outputNodes(), QList<OssSnBaseNode *>{merge});
        undo()->undo();
        QCOMPARE(wiring(m_network), before);
        QCOMPARE(names(m_network->nodes()), (QStringList{"Perlin", "Blur", "Merge"}));
        undo()->redo();
        QCOMPARE(wiring(m_network), QStringList{"Merge.Over<-Perlin.Output"});
    }

    void extractBridgesTheStream()
    {
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *invert = m_network->createNode(QStringLiteral("Adjust/Invert"));
        OssSnBaseNode *merge = m_network->createNode(QStringLiteral("Layer/Merge"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        QVERIFY(invert->connectInput("Input", blur, "Output"));
        QVERIFY(merge->connectInput("Mask", blur, "Output"));
        const QStringList before = wiring(m_network);
        const int steps = undo()->count();
        m_network->extractNodes({blur});
        QCOMPARE(undo()->count(), steps + 1);
        QCOMPARE(wiring(m_network),
                 (QStringList{"Invert.Input<-Perlin.Output", "Merge.Mask<-Perlin.Output"}));
        QVERIFY(m_network->containsNode(blur));
        undo()->undo();
        QCOMPARE(wiring(m_network), before);
    }

    void cancelledMacroLeavesTheNetworkAsItWas()
    {
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        const int steps = undo()->count();
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Build"));
            OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
            QVERIFY(blur->connectInput("Input", noise, "Output"));
            noise->setName(QStringLiteral("Renamed"));
            macro.cancel();
        }
        QCOMPARE(undo()->count(), steps);
        QCOMPARE(names(m_network->nodes()), QStringList{"Perlin"});
        QVERIFY(noise->outputNodes().isEmpty());
    }

    void stateChangesAreUndoable_data()
    {
        QTest::addColumn<QString>("change");
        QTest::newRow("rename") << "rename";
        QTest::newRow("disable") << "disable";
        QTest::newRow("bypass") << "bypass";
        QTest::newRow("attribute") << "attribute";
        QTest::newRow("remove attribute") << "remove attribute";
    }

    void stateChangesAreUndoable()
    {
        QFETCH(QString, change);
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        const auto snapshot = [blur] {
            return QStringList{blur->name(), QString::number(blur->enabledAsBool()),
                               QString::number(blur->bypassed()),
                               QString::number(blur->nodeAttributes().size()),
                               blur->nodeAttributeValue("Radius").toString()};
        };
        const QStringList before = snapshot();
        const int steps = undo()->count();
        if (change == "rename")
            blur->setName(QStringLiteral("Soft"));
        else if (change == "disable")
            blur->toggleDisable();
        else if (change == "bypass")
            blur->toggleBypass();
        else if (change == "attribute")
            blur->setNodeAttribute(QStringLiteral("Radius"), 5.0);
        else
            blur->removeNodeAttribute(QStringLiteral("Radius"));
        const QStringList after = snapshot();
        QVERIFY(after != before);
        QCOMPARE(undo()->count(), steps + 1);
        undo()->undo();
        QCOMPARE(snapshot(), before);
        undo()->redo();
        QCOMPARE(snapshot(), after);
        if (change == "rename")
            QCOMPARE(m_network->node(QStringLiteral("Soft")), blur);
    }

    void renamingToATakenNameKeepsNamesUnique_data()
    {
        QTest::addColumn<bool>("throughProperty");
        QTest::newRow("rename command") << false;
        QTest::newRow("name property") << true;
    }

    void renamingToATakenNameKeepsNamesUnique()
    {
        QFETCH(bool, throughProperty);
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *invert = m_network->createNode(QStringLiteral("Adjust/Invert"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        QVERIFY(invert->connectInput("Input", blur, "Output"));
        if (throughProperty)
            QVERIFY(invert->setProperty("name", QStringLiteral("Blur")));
        else
            invert->setName(QStringLiteral("Blur"));
        QVERIFY(invert->name() != QLatin1String("Blur"));
        QCOMPARE(m_network->node(QStringLiteral("Blur")), blur);
        QCOMPARE(m_network->node(invert->name()), invert);
        // Both nodes stay reachable: a save and reopen keeps both connections.
        const QString path = m_host.scratchPath(QStringLiteral("renamed.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        OssShaderNetwork *reopened =
            OssProjectManager::instance()->currentProject()->networks().value(0);
        QVERIFY(reopened);
        m_network = reopened;
        QCOMPARE(wiring(reopened).size(), 2);
        // The shadowed node can still be deleted.
        OssSnBaseNode *reopenedBlur = reopened->node(QStringLiteral("Blur"));
        QVERIFY(reopenedBlur);
        QVERIFY(reopened->removeNode(reopenedBlur));
        QVERIFY(!reopened->containsNode(reopenedBlur));
    }

    void groupsMirrorTheirInputAndOutputNodes()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        QVERIFY(group);
        OssShaderNetwork *inner = group->groupNetwork();
        QCOMPARE(inner->parent(), group);
        QCOMPARE(inner->parentGroupNode(), group);
        QCOMPARE(inner->rootNetwork(), m_network);
        QCOMPARE(inner->geoEntity()->name(), QStringLiteral("Head"));
        QCOMPARE(names(group->groupInputNodes()), group->inputNames());
        QCOMPARE(names(group->groupOutputNodes()), group->outputPointNames());
        QSignalSpy added(group, &OssSnBaseNode::inputAdded);
        OssSnBaseNode *extra = inner->createNode(QStringLiteral("_System/Group Input"), "Detail");
        QVERIFY(extra);
        QCOMPARE(added.count(), 1);
        QVERIFY(group->hasInput(QStringLiteral("Detail")));
        extra->setName(QStringLiteral("Fine Detail"));
        QVERIFY(group->hasInput(QStringLiteral("Fine Detail")));
        QVERIFY(!group->hasInput(QStringLiteral("Detail")));
        undo()->undo(); // rename
        undo()->undo(); // creation
        QVERIFY(!group->hasInput(QStringLiteral("Detail")));
        QVERIFY(!group->hasInput(QStringLiteral("Fine Detail")));
        QVERIFY(m_network->getAllNodes().contains(group->groupInputNodes().value(0)) ||
                group->groupInputNodes().isEmpty());
        QCOMPARE(group->groupNetwork()->path(), group->path());
    }

    void projectRoundTrip()
    {
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        blur->setNodeAttribute(QStringLiteral("Radius"), 7.5);
        blur->setUserAttribute(OssCustomAttribute(QStringLiteral("Note"), QStringLiteral("soft")));
        blur->toggleBypass();
        qobject_cast<RecordingContext *>(blur->context("NodeGraphView"))->setAnswer(42);
        group->groupNetwork()->createNode(QStringLiteral("Adjust/Invert"));
        const QString path = m_host.scratchPath(QStringLiteral("round.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        const QStringList before = wiring(m_network);
        const QStringList allBefore = names(m_network->getAllNodes());

        QSignalSpy ended(OssShaderNetworkManager::instance(),
                         &OssShaderNetworkManager::afterShaderNetworkEndCollection);
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        OssShaderNetwork *loaded =
            OssProjectManager::instance()->currentProject()->networks().first();
        QVERIFY(loaded != m_network);
        m_network = loaded;
        QVERIFY(ended.count() >= 1);
        QCOMPARE(wiring(loaded), before);
        QCOMPARE(names(loaded->getAllNodes()), allBefore);
        OssSnBaseNode *blur2 = loaded->node(QStringLiteral("Blur"));
        QCOMPARE(blur2->nodeAttributeValue("Radius").toDouble(), 7.5);
        QCOMPARE(blur2->userAttribute("Note").value().toString(), QStringLiteral("soft"));
        QVERIFY(blur2->bypassed());
        auto *context = qobject_cast<RecordingContext *>(blur2->context("NodeGraphView"));
        QCOMPARE(context->answer(), 42);
        QCOMPARE(context->initializeCount, 1);
        QVERIFY(qobject_cast<OssSnGroupNode *>(loaded->node(QStringLiteral("Group"))));
        QCOMPARE(loaded->geoEntity()->name(), QStringLiteral("Head"));
        QCOMPARE(undo()->count(), 0);

        // Saving what was loaded gives the same file.
        const QString again = m_host.scratchPath(QStringLiteral("again.ossa"));
        QVERIFY(OssProjectManager::instance()->saveProject(again, &error));
        QFile a(path), b(again);
        QVERIFY(a.open(QIODevice::ReadOnly) && b.open(QIODevice::ReadOnly));
        QCOMPARE(b.readAll(), a.readAll());
    }

    void aNodeWithTwoAttributeListsLoadsWhatItHasAndSaysSo()
    {
        m_network->createNode(QStringLiteral("Filter/Blur"));
        const QString path = m_host.scratchPath(QStringLiteral("twice.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray text = file.readAll();
        file.close();
        // Before the node's attribute list, a shorter one naming only its first attribute.
        const int start =
            text.indexOf("<collection name=\"nodeAttributes\"", text.indexOf("Filter/Blur"));
        QVERIFY(start > 0);
        const int firstEnd = text.indexOf("/>", text.indexOf("<element", start)) + 2;
        const QByteArray head = text.mid(start, text.indexOf('>', start) + 1 - start);
        QByteArray shorter = text.mid(start, firstEnd - start) + "</collection>";
        const QString countOfOne = QString::fromUtf8(head).replace(
            QRegularExpression(QStringLiteral("count=\"\\d+\"")), QStringLiteral("count=\"1\""));
        shorter.replace(head, countOfOne.toUtf8());
        text.insert(start, shorter);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();

        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        OssProject *project = OssProjectManager::instance()->currentProject();
        m_network = project->networks().value(0);
        OssSnBaseNode *blur = m_network->node(QStringLiteral("Blur"));
        QVERIFY(blur);
        QVERIFY(!blur->nodeAttributeNames().isEmpty());
        for (const QString &name : blur->nodeAttributeNames())
            QVERIFY2(blur->exists(name), qPrintable(name));
        const QString warnings = project->loadWarnings().join(QLatin1Char('\n'));
        QVERIFY2(warnings.contains(QStringLiteral("node 'Blur'")), qPrintable(warnings));
        QVERIFY2(warnings.contains(QStringLiteral("twice")), qPrintable(warnings));
        // What was read is what a save keeps: load, save, load is a fixed point.
        const QString dump = m_network->dump();
        const QString again = m_host.scratchPath(QStringLiteral("twice-again.ossa"));
        QVERIFY2(OssProjectManager::instance()->saveProject(again, &error), qPrintable(error));
        QVERIFY2(OssProjectManager::instance()->openProject(again, &error), qPrintable(error));
        m_network = OssProjectManager::instance()->currentProject()->networks().value(0);
        QCOMPARE(m_network->dump(), dump);
    }

    void repairsMadeWhileReadingAreReported()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        QVERIFY(group);
        group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        const QString path = m_host.scratchPath(QStringLiteral("repaired.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray text = file.readAll();
        file.close();
        // A node type nobody installed, inside the group, and a value that is not a number.
        QVERIFY(text.contains("Filter/Blur"));
        text.replace("Filter/Blur", "Filter/Not Installed");
        QVERIFY(text.contains("answer=\"0\""));
        text.replace("answer=\"0\"", "answer=\"many\"");
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();

        QSignalSpy reported(OssProjectManager::instance(), &OssProjectManager::loadWarningsFound);
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        m_network = OssProjectManager::instance()->currentProject()->networks().value(0);
        QCOMPARE(reported.count(), 1);
        const QStringList warnings = reported.first().at(1).toStringList();
        QCOMPARE(warnings, OssProjectManager::instance()->lastLoadWarnings());
        const QString all = warnings.join(QLatin1Char('\n'));
        QVERIFY2(all.contains(QStringLiteral("Filter/Not Installed")), qPrintable(all));
        QVERIFY2(all.contains(QStringLiteral("Group")), qPrintable(all));
        QVERIFY2(all.contains(QStringLiteral("many")), qPrintable(all));
    }

    void aRepeatedUuidStaysWithItsFirstObject()
    {
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        const QByteArray first = noise->uuidString().toUtf8();
        const QByteArray second = blur->uuidString().toUtf8();
        const QString path = m_host.scratchPath(QStringLiteral("uuids.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray text = file.readAll();
        file.close();
        QVERIFY(text.contains(second));
        text.replace(second, first);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
        file.close();
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        m_network = OssProjectManager::instance()->currentProject()->networks().value(0);
        OssSnBaseNode *perlin = m_network->node(QStringLiteral("Perlin"));
        OssSnBaseNode *soft = m_network->node(QStringLiteral("Blur"));
        QVERIFY(perlin && soft);
        QCOMPARE(perlin->uuidString().toUtf8(), first);
        QVERIFY(soft->uuid() != perlin->uuid());
        QCOMPARE(OssObjectReferenceManager::instance()->getPointer(perlin->uuid()), perlin);
        const QString warnings =
            OssProjectManager::instance()->lastLoadWarnings().join(QLatin1Char('\n'));
        QVERIFY2(warnings.contains(QStringLiteral("repeats the UUID")), qPrintable(warnings));
    }

    void nodeDocumentsReadWithRepairsSaySo_data()
    {
        // Each edit replaces every occurrence of its left side by its right side.
        QTest::addColumn<QStringList>("edits");
        QTest::addColumn<int>("inserted");
        QTest::addColumn<QString>("warning");
        QTest::newRow("unknown type")
            << QStringList{"Filter/Blur=>Filter/Not Installed"} << 2 << "Filter/Not Installed";
        QTest::newRow("connection to a missing node")
            << QStringList{"source=\"Perlin\"=>source=\"Gone\""} << 2 << "Gone";
        QTest::newRow("not a node") << QStringList{"Filter/Blur=>Filter/Not Installed",
                                                   "Procedural/Noise/Perlin=>Not/Installed",
                                                   "type=\"OssSnBaseNode\"=>type=\"OssProject\""}
                                    << 0 << "OssProject";
    }

    void nodeDocumentsReadWithRepairsSaySo()
    {
        QFETCH(QStringList, edits);
        QFETCH(int, inserted);
        QFETCH(QString, warning);
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        QByteArray data = OssShaderNetworkIO::nodesToData({noise, blur});
        for (const QString &edit : edits) {
            const QByteArray from = edit.section(QStringLiteral("=>"), 0, 0).toUtf8();
            QVERIFY2(data.contains(from), from.constData());
            data.replace(from, edit.section(QStringLiteral("=>"), 1).toUtf8());
        }
        OssShaderNetwork *other = m_host.newProject(QStringLiteral("Other"));
        QString error;
        const QList<OssSnBaseNode *> nodes =
            OssShaderNetworkIO::nodesFromData(other, data, true, &error, QStringLiteral("paste"));
        QCOMPARE(nodes.size(), inserted);
        const QString warnings = OssShaderNetworkIO::lastWarnings().join(QLatin1Char('\n'));
        QVERIFY2(warnings.contains(warning), qPrintable(warnings));
        QVERIFY2(m_host.hasLine(QStringLiteral("[ !! ] paste: ") +
                                OssShaderNetworkIO::lastWarnings().first()),
                 qPrintable(m_host.lines().join('\n')));
        m_network = other;
    }

    void badProjectFilesLeaveTheOpenProject_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("message");
        QTest::newRow("missing") << QByteArray() << "cannot open";
        QTest::newRow("empty") << QByteArray("") << "empty";
        QTest::newRow("not xml") << QByteArray("hello") << "";
        QTest::newRow("truncated") << QByteArray("<OssaDocument formatVersion=\"1\"><object "
                                                 "name=\"project\" type=\"OssProject\">")
                                   << "";
        QTest::newRow("not a project")
            << QByteArray("<OssaDocument formatVersion=\"1\"><object name=\"x\" "
                          "type=\"OssShaderNetwork\"/></OssaDocument>")
            << "the document holds a OssShaderNetwork, not a OssProject";
    }

    void badProjectFilesLeaveTheOpenProject()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, message);
        m_network->createNode(QStringLiteral("Filter/Blur"));
        OssProject *project = OssProjectManager::instance()->currentProject();
        const QString path = m_host.scratchPath(QTest::currentDataTag());
        if (QByteArray(QTest::currentDataTag()) != "missing") {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(content);
        }
        QString error;
        QVERIFY(!OssProjectManager::instance()->openProject(path, &error));
        QVERIFY2(error.startsWith("\"" + path + "\""), qPrintable(error));
        QVERIFY2(error.contains(message), qPrintable(error));
        QCOMPARE(OssProjectManager::instance()->currentProject(), project);
        QCOMPARE(names(m_network->nodes()), QStringList{"Blur"});
    }

    void unknownNodeTypesKeepTheirData()
    {
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        const QString path = m_host.scratchPath(QStringLiteral("unknown.ossa"));
        QString error;
        QVERIFY(OssProjectManager::instance()->saveProject(path, &error));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray text = file.readAll();
        file.close();
        text.replace("Filter/Blur", "Gone/Blur");
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        m_host.clearLines();
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        OssShaderNetwork *loaded =
            OssProjectManager::instance()->currentProject()->networks().first();
        m_network = loaded;
        OssSnBaseNode *kept = loaded->node(QStringLiteral("Blur"));
        QVERIFY(kept);
        QCOMPARE(kept->pathKey(), QStringLiteral("Gone/Blur"));
        QCOMPARE(kept->inputNames(), (QStringList{"Input", "Mask"}));
        QCOMPARE(wiring(loaded), QStringList{"Blur.Input<-Perlin.Output"});
        QVERIFY(m_host.hasLine(QStringLiteral("[ !! ] %1: node type 'Gone/Blur' is not "
                                              "installed: unknown node type 'Gone/Blur'")
                                   .arg(path)));
    }

    void convertKeepsNameAndMatchingConnections()
    {
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *invert = m_network->createNode(QStringLiteral("Adjust/Invert"));
        QVERIFY(blur->connectInput("Input", noise, "Output"));
        QVERIFY(invert->connectInput("Input", blur, "Output"));
        const QStringList before = wiring(m_network);
        const int steps = undo()->count();
        OssSnBaseNode *sharpen = OssShaderNetworkManager::instance()->convertNodeToKeyPath(
            blur, QStringLiteral("Filter/Sharpen"));
        QVERIFY(sharpen);
        QCOMPARE(sharpen->name(), QStringLiteral("Blur"));
        QCOMPARE(sharpen->pathKey(), QStringLiteral("Filter/Sharpen"));
        QStringList after = wiring(m_network);
        after.sort();
        QStringList expected = before;
        expected.sort();
        QCOMPARE(after, expected);
        QCOMPARE(undo()->count(), steps + 1);
        undo()->undo();
        QCOMPARE(m_network->node(QStringLiteral("Blur")), blur);
        QCOMPARE(wiring(m_network), before);
    }

    void sampleProjectOpensCleanly()
    {
        m_host.clearLines();
        m_network = m_host.openSample();
        QVERIFY2(m_network, qPrintable(m_host.errorString()));
        // The stand-in context of this test has none of the view context's saved properties;
        // the reader says so for each, and nothing else may be reported.
        QStringList lines = m_host.lines();
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const QString &line) {
                                       return line.contains(QStringLiteral(
                                           "RecordingContext has no writable property"));
                                   }),
                    lines.end());
        QVERIFY2(lines.isEmpty(), qPrintable(lines.join('\n')));
        OssProject *project = OssProjectManager::instance()->currentProject();
        QCOMPARE(m_network, project->networks().first());
        QCOMPARE(m_network->geoEntity()->name(), QStringLiteral("Helmet"));
        QCOMPARE(project->entities().size(), 1);
        QCOMPARE(project->shadingGroups().size(), 2);
        QCOMPARE(project->networks().at(1)->geoEntity(), m_network->geoEntity());
        const int total =
            m_network->getAllNodes().size() + project->networks().at(1)->getAllNodes().size();
        QVERIFY2(total >= 40 && total <= 80, qPrintable(QString::number(total)));
        auto *paint = qobject_cast<OssSnChannelInputNode *>(m_network->node("Paint_Diffuse"));
        QVERIFY(paint && paint->imageSet());
        QCOMPARE(paint->imageSet()->name(), QStringLiteral("Diffuse Color"));
        QCOMPARE(m_network->node("Shell_Surface")->inputConnection("Diffuse Color"),
                 m_network->node("Grade"));
        auto *receiver = qobject_cast<OssSnTeleportNode *>(m_network->node("Wear_Receiver"));
        QVERIFY(receiver && receiver->teleportNodeManager()->broadcastNodeForChannel(
                                receiver->channelName()) == m_network->node("Wear_Broadcast"));
        QVERIFY(m_network->viewerNode());
    }

    void viewerEdgeLivesOnTheRootNetwork()
    {
        OssSnBaseNode *viewer = m_network->createNode(QStringLiteral("Misc/Viewer"));
        QVERIFY(qobject_cast<OssSnViewerNode *>(viewer));
        QCOMPARE(viewer->inputNames().mid(0, 3), (QStringList{"0", "1", "2"}));
        QVERIFY(viewer->hasInput(QStringLiteral("ToView")));
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        QSignalSpy nodeSignal(viewer, &OssSnBaseNode::viewerNodeCurrentEdgeChanged);
        group->groupNetwork()->setViewerNodeCurrentEdge(3);
        QCOMPARE(m_network->viewerNodeCurrentEdge(), 3);
        QCOMPARE(nodeSignal.count(), 1);
        undo()->undo();
        QCOMPARE(m_network->viewerNodeCurrentEdge(), 0);
    }

    // A removal that was undone and then dropped from the history (a new step made after the
    // undo) leaves its nodes alone, even when the new step has taken them out again: they
    // belong to the new step, whose undo brings them back.
    void aDroppedUndoneRemovalLeavesItsNodesAlone()
    {
        QList<OssSnBaseNode *> nodes;
        for (int i = 0; i < 3; ++i)
            nodes << m_network->createNode(QStringLiteral("Filter/Blur"));
        QVERIFY(nodes[1]->connectInput("Input", nodes[0], "Output"));
        const QString before = m_network->dump();
        m_network->removeNodes(nodes);
        undo()->undo();
        QCOMPARE(m_network->dump(), before);
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Remove Selected Nodes"));
            m_network->removeNodes(nodes);
        }
        QCOMPARE(m_network->nodeCount(), 0);
        undo()->undo();
        QCOMPARE(m_network->dump(), before);
    }

    // A creation that was undone and then dropped from the history takes its node with it.
    void aDroppedUndoneCreationDeletesItsNode()
    {
        OssSnBaseNode *kept = m_network->createNode(QStringLiteral("Filter/Blur"));
        QPointer<OssSnBaseNode> dropped = m_network->createNode(QStringLiteral("Filter/Blur"));
        undo()->undo();
        QVERIFY(dropped && !dropped->parent());
        m_network->createNode(QStringLiteral("Adjust/Invert"));
        QVERIFY(!dropped);
        QVERIFY(m_network->containsNode(kept));
    }
};

QTEST_MAIN(tst_ShaderNetwork)
#include "tst_ShaderNetwork.moc"
