#include "OssTestHost.h"

#include <OssArchive.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBakePointNode.h>
#include <OssSnCustomProceduralNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMaterialNode.h>
#include <OssSnNodeTypeCatalogue.h>
#include <OssSnTeleportNode.h>
#include <OssUndoManager.h>

#include <QRandomGenerator>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

// Knobs, archives, projects holding every kind of node, and long edit sequences under undo.
class tst_ModelPersistence : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssUndoManager *undo() { return OssUndoManager::instance(); }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init() { m_network = m_host.newProject(); }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void knobsDriveInnerAttributesAndSurviveSaving()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        OssShaderNetwork *inner = group->groupNetwork();
        OssSnBaseNode *blur = inner->createNode(QStringLiteral("Filter/Blur"));
        OssSnBaseNode *sharpen = inner->createNode(QStringLiteral("Filter/Sharpen"));
        undo()->clear();

        const QString knob = group->createKnob(blur, QStringLiteral("Radius"));
        QCOMPARE(knob, QStringLiteral("Blur/Radius"));
        QCOMPARE(OssSnGroupNode::getAttributeGroupName(knob), QStringLiteral("Blur"));
        QCOMPARE(undo()->count(), 1);
        group->setNodeAttribute(knob, 6.0);
        QCOMPARE(blur->nodeAttributeValue("Radius").toDouble(), 6.0);
        undo()->undo();
        QCOMPARE(blur->nodeAttributeValue("Radius").toDouble(), 2.0);
        undo()->undo();
        QVERIFY(!group->hasNodeAttribute(knob));
        QVERIFY(group->knobLinks(knob).isEmpty());
        undo()->redo();
        QCOMPARE(group->knobLinks(knob).size(), 1);

        // Knobs of different value types do not link.
        const QString amount = group->createKnob(sharpen, QStringLiteral("Amount"));
        QVERIFY(!amount.isEmpty());
        const QString quality = group->createKnob(blur, QStringLiteral("Quality"));
        const int steps = undo()->count();
        QVERIFY(group->linkKnobs(QStringLiteral("Mixed"), {knob, quality}).isEmpty());
        QCOMPARE(undo()->count(), steps);

        const QString linked = group->linkKnobs(QStringLiteral("Softness"), {knob, amount});
        QCOMPARE(linked, QStringLiteral("Blur/Softness"));
        QCOMPARE(undo()->count(), steps + 1);
        QVERIFY(!group->hasNodeAttribute(knob) && !group->hasNodeAttribute(amount));
        group->setNodeAttribute(linked, 3.0);
        QCOMPARE(blur->nodeAttributeValue("Radius").toDouble(), 3.0);
        QCOMPARE(sharpen->nodeAttributeValue("Amount").toDouble(), 3.0);
        QVERIFY(group->renameKnobName(linked, QStringLiteral("Softness"), QStringLiteral("Soft")));
        QCOMPARE(group->userAttribute(linked).prettyName(), QStringLiteral("Soft"));

        // Opening the saved project deletes this one, group included.
        const QStringList attributeNames = group->nodeAttributeNames();
        OssShaderNetwork *loaded = m_host.saveAndReopen(QStringLiteral("knobs.ossa"));
        QVERIFY2(loaded, qPrintable(m_host.errorString()));
        m_network = loaded;
        auto *group2 = qobject_cast<OssSnGroupNode *>(loaded->node(QStringLiteral("Group")));
        QCOMPARE(group2->nodeAttributeNames(), attributeNames);
        QCOMPARE(group2->knobLinks(linked).size(), 2);
        QCOMPARE(group2->userAttribute(linked).prettyName(), QStringLiteral("Soft"));
        group2->setNodeAttribute(linked, 1.5);
        QCOMPARE(group2->groupNetwork()->node("Sharpen")->nodeAttributeValue("Amount").toDouble(),
                 1.5);
        QVERIFY(group2->deleteAttribute(linked));
        QVERIFY(group2->knobLinks(linked).isEmpty());
    }

    void everyKindRoundTrips()
    {
        // One node of every creatable type, all in one project, a few connected.
        int made = 0;
        for (const QString &key : OssSnNodeTypeCatalogue::instance()->nodeGraphPathKeys())
            if (m_network->createNode(key))
                ++made;
        QCOMPARE(made, OssSnNodeTypeCatalogue::instance()->nodeGraphPathKeys().size());
        QVERIFY(
            m_network->node("Blur")->connectInput("Input", m_network->node("Perlin"), "Output"));
        QVERIFY(m_network->node("Merge")->connectInput("Base", m_network->node("Blur"), "Output"));
        m_network->node("Merge")->setNodeAttribute(QStringLiteral("Amount"), 0.25);
        m_network->node("Merge")->addTag(QStringLiteral("_custom"));
        qobject_cast<OssSnTeleportNode *>(m_network->node("Broadcast"))
            ->setChannelName(QStringLiteral("Dirt"));
        qobject_cast<OssSnBakePointNode *>(m_network->node("Bake Point"))->bake("Baked");
        const QString before = m_network->dump();
        OssShaderNetwork *loaded = m_host.saveAndReopen(QStringLiteral("kinds.ossa"));
        QVERIFY2(loaded, qPrintable(m_host.errorString()));
        m_network = loaded;
        const QString after = loaded->dump();
        if (after != before) {
            const QStringList a = before.split('\n'), b = after.split('\n');
            for (int i = 0; i < qMin(a.size(), b.size()); ++i)
                QCOMPARE(b.at(i), a.at(i));
        }
        QCOMPARE(after, before);
        QCOMPARE(qobject_cast<OssSnTeleportNode *>(loaded->node("Broadcast"))->channelName(),
                 QStringLiteral("Dirt"));
        QVERIFY(qobject_cast<OssSnBakePointNode *>(loaded->node("Bake Point"))
                    ->isBakedResultUpToDate(false));
    }

    void randomEditsUndoAndRedoExactly()
    {
        const QStringList keys{"Filter/Blur", "Adjust/Invert",
                               "Layer/Merge", "Procedural/Noise/Perlin",
                               "Math/Mix",    "Misc/Group"};
        QRandomGenerator random(20261122);
        QStringList dumps{m_network->dump()};
        for (int step = 0; step < 120; ++step) {
            const QList<OssSnBaseNode *> nodes = m_network->nodes();
            const int action = nodes.size() < 3 ? 0 : random.bounded(7);
            OssSnBaseNode *a = nodes.isEmpty() ? nullptr : nodes.at(random.bounded(nodes.size()));
            OssSnBaseNode *b = nodes.isEmpty() ? nullptr : nodes.at(random.bounded(nodes.size()));
            const int before = undo()->count();
            switch (action) {
            case 0:
                m_network->createNode(keys.at(random.bounded(keys.size())));
                break;
            case 1:
                if (!a->inputNames().isEmpty() && !b->outputPointNames().isEmpty())
                    a->connectInput(a->inputNames().at(random.bounded(a->inputNames().size())), b,
                                    b->prefferedOutputPoint());
                break;
            case 2:
                m_network->removeNodes({a});
                break;
            case 3:
                m_network->extractNodes({a});
                break;
            case 4:
                a->setName(a->name() + QStringLiteral("x"));
                break;
            case 5:
                a->toggleDisable();
                break;
            default:
                if (!a->nodeAttributeNames().isEmpty())
                    a->setNodeAttribute(a->nodeAttributeNames().first(),
                                        QVariant(random.bounded(100)));
                break;
            }
            // Every command is at most one step; record the state after each step.
            QVERIFY(undo()->count() <= before + 1);
            if (undo()->count() == before + 1)
                dumps << m_network->dump();
        }
        QVERIFY(dumps.size() > 60);
        for (int i = dumps.size() - 1; i > 0; --i) {
            QCOMPARE(m_network->dump(), dumps.at(i));
            undo()->undo();
        }
        QCOMPARE(m_network->dump(), dumps.first());
        for (int i = 1; i < dumps.size(); ++i) {
            undo()->redo();
            QCOMPARE(m_network->dump(), dumps.at(i));
        }
    }

    void materialArchives_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("problem");
        QTest::newRow("empty") << QByteArray() << "the file is empty";
        QTest::newRow("not an archive") << QByteArray("<xml/>") << "not an archive";
        QTest::newRow("newer") << QByteArray("OSSA-ARCHIVE 9 material\n<x/>")
                               << "archive version 9 is newer than this program reads (1)";
        QTest::newRow("other kind") << QByteArray("OSSA-ARCHIVE 1 customProcedural\n<x/>")
                                    << "holds a customProcedural archive, not a material archive";
        QTest::newRow("truncated") << QByteArray("OSSA-ARCHIVE 1 material\n") << "truncated";
        QTest::newRow("bad payload")
            << QByteArray("OSSA-ARCHIVE 1 material\n<OssaDocument formatVersion=\"1\"><obj") << "";
    }

    void materialArchives()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);
        auto *material =
            qobject_cast<OssSnMaterialNode *>(m_network->createNode("_System/Material"));
        QVERIFY(material);
        material->groupNetwork()->createNode(QStringLiteral("Procedural/Noise/Grunge"));
        const QString before = m_network->dump();
        const QString path = m_host.scratchPath(QStringLiteral("bad.oma"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();
        QStringList errors;
        QVERIFY(!material->importFromFile(path, &errors));
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors.first().startsWith("\"" + path + "\": "), qPrintable(errors.first()));
        QVERIFY2(errors.first().contains(problem), qPrintable(errors.first()));
        QCOMPARE(m_network->dump(), before);
    }

    void materialAndProceduralArchivesRoundTrip()
    {
        auto *material =
            qobject_cast<OssSnMaterialNode *>(m_network->createNode("_System/Material"));
        OssSnBaseNode *grunge =
            material->groupNetwork()->createNode(QStringLiteral("Procedural/Noise/Grunge"));
        OssSnBaseNode *levels =
            material->groupNetwork()->createNode(QStringLiteral("Adjust/Levels"));
        QVERIFY(levels->connectInput("Input", grunge, "Output"));
        QString error;
        const QString path = m_host.scratchPath(QStringLiteral("dirt.oma"));
        QVERIFY2(material->exportToFile(path, &error), qPrintable(error));
        auto *other = qobject_cast<OssSnMaterialNode *>(m_network->createNode("_System/Material"));
        const int steps = undo()->count();
        QStringList errors;
        QVERIFY2(other->importFromFile(path, &errors), qPrintable(errors.join('\n')));
        QCOMPARE(undo()->count(), steps + 1);
        QCOMPARE(other->groupNetwork()->node("Levels")->inputConnection("Input"),
                 other->groupNetwork()->node("Grunge"));
        undo()->undo();
        QVERIFY(!other->groupNetwork()->node("Levels"));

        // A custom procedural takes the ports of its archive's definition.
        const OssSnNodeType *checker =
            OssSnNodeTypeCatalogue::instance()->type("Procedural/Pattern/Checker");
        const QString procedural = m_host.scratchPath(QStringLiteral("checker.opc"));
        QVERIFY(OssArchive::write(procedural, OssArchive::CustomProceduralKind,
                                  checker->source.toUtf8(), &error));
        auto *custom = qobject_cast<OssSnCustomProceduralNode *>(
            m_network->createNode("Misc/Custom Procedural"));
        QVERIFY(custom);
        OssSnBaseNode *invert = m_network->createNode(QStringLiteral("Adjust/Invert"));
        const QStringList portsBefore = custom->outputPointNames();
        if (!portsBefore.isEmpty())
            QVERIFY(invert->connectInput("Input", custom, portsBefore.first()));
        QVERIFY2(custom->importFromFile(procedural, &errors), qPrintable(errors.join('\n')));
        QCOMPARE(custom->nodeAttributeNames(), checker->attributeNames());
        QCOMPARE(custom->definition(), checker->source);
        undo()->undo();
        QCOMPARE(custom->outputPointNames(), portsBefore);
        QVERIFY(custom->definition().isEmpty());
    }

    // A file-size limit stands in for a full disk (it works for every user, root included, and
    // needs no device of its own): a write past it fails with the system's reason.
    void failedSavesSayWhyAndKeepTheOldFile_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::newRow("project") << "project";
        QTest::newRow("node file") << "nodes";
        QTest::newRow("material archive") << "material";
    }

    void failedSavesSayWhyAndKeepTheOldFile()
    {
        QFETCH(QString, kind);
        auto *material =
            qobject_cast<OssSnMaterialNode *>(m_network->createNode("_System/Material"));
        QList<OssSnBaseNode *> nodes;
        for (int i = 0; i < 60; ++i) {
            nodes << m_network->createNode(QStringLiteral("Filter/Blur"));
            material->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        }
        const QString path = m_host.scratchPath(QStringLiteral("limited.") + kind);
        const auto save = [&](QString *error) {
            if (kind == QLatin1String("project"))
                return OssProjectManager::instance()->saveProject(path, error);
            if (kind == QLatin1String("nodes"))
                return OssShaderNetworkIO::saveNodesToXmlFile(nodes, path, error);
            return material->exportToFile(path, error);
        };
        QFile old(path);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("the previous version");
        old.close();
        undo()->setClean();
        m_network->createNode(QStringLiteral("Adjust/Invert"));
        QVERIFY(!undo()->isClean());

        rlimit saved{};
        QVERIFY(getrlimit(RLIMIT_FSIZE, &saved) == 0);
        rlimit limited = saved;
        limited.rlim_cur = 2048;
        const auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        QVERIFY(setrlimit(RLIMIT_FSIZE, &limited) == 0);
        QString error;
        const bool saved2 = save(&error);
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, previousHandler);

        QVERIFY(!saved2);
        QVERIFY2(error.contains(path), qPrintable(error));
        QVERIFY2(error.contains(QStringLiteral("too large"), Qt::CaseInsensitive),
                 qPrintable(error));
        QVERIFY2(!error.contains(QStringLiteral("Unknown error")), qPrintable(error));
        QVERIFY(old.open(QIODevice::ReadOnly));
        QCOMPARE(old.readAll(), QByteArray("the previous version"));
        old.close();
        // Nothing was saved: the project still has unsaved edits.
        QVERIFY(!undo()->isClean());
    }

    void savingAProjectKeepsThePreviousVersion()
    {
        const QString path = m_host.scratchPath(QStringLiteral("versions.ossa"));
        QString error;
        m_network->createNode(QStringLiteral("Filter/Blur"));
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QVERIFY(!QFileInfo::exists(path + QStringLiteral(".bak")));
        QFile first(path);
        QVERIFY(first.open(QIODevice::ReadOnly));
        const QByteArray firstVersion = first.readAll();
        first.close();
        m_network->createNode(QStringLiteral("Adjust/Invert"));
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QFile backup(path + QStringLiteral(".bak"));
        QVERIFY(backup.open(QIODevice::ReadOnly));
        QCOMPARE(backup.readAll(), firstVersion);
        QVERIFY(first.open(QIODevice::ReadOnly));
        QVERIFY(first.readAll() != firstVersion);
    }

    void anImportedCustomProceduralSurvivesSaving()
    {
        const OssSnNodeType *checker =
            OssSnNodeTypeCatalogue::instance()->type("Procedural/Pattern/Checker");
        const QString procedural = m_host.scratchPath(QStringLiteral("kept.opc"));
        QString error;
        QVERIFY(OssArchive::write(procedural, OssArchive::CustomProceduralKind,
                                  checker->source.toUtf8(), &error));
        auto *custom = qobject_cast<OssSnCustomProceduralNode *>(
            m_network->createNode("Misc/Custom Procedural"));
        QVERIFY(custom);
        QStringList errors;
        QVERIFY2(custom->importFromFile(procedural, &errors), qPrintable(errors.join('\n')));
        OssSnBaseNode *invert = m_network->createNode(QStringLiteral("Adjust/Invert"));
        QVERIFY(invert->connectInput("Input", custom, custom->outputPointNames().value(0)));
        const QString name = custom->name();
        const QString dump = m_network->dump();

        const QString path = m_host.scratchPath(QStringLiteral("custom.ossa"));
        QVERIFY2(OssProjectManager::instance()->saveProject(path, &error), qPrintable(error));
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        m_network = OssProjectManager::instance()->currentProject()->networks().value(0);
        auto *reopened = qobject_cast<OssSnCustomProceduralNode *>(m_network->node(name));
        QVERIFY2(reopened, "the node came back as another class");
        QCOMPARE(reopened->definition(), checker->source);
        QCOMPARE(reopened->sourceFile(), procedural);
        QCOMPARE(reopened->nodeAttributeNames(), checker->attributeNames());
        QCOMPARE(m_network->dump(), dump);
    }

    void aCustomProceduralArchiveThatIsNotUtf8IsRefused()
    {
        const OssSnNodeType *checker =
            OssSnNodeTypeCatalogue::instance()->type("Procedural/Pattern/Checker");
        QByteArray payload = checker->source.toUtf8();
        // A byte that starts no UTF-8 sequence, inside the description's text.
        const int at = payload.indexOf("Checker");
        QVERIFY(at > 0);
        payload.insert(at, char(0xff));
        const QString path = m_host.scratchPath(QStringLiteral("latin.opc"));
        QString error;
        QVERIFY(OssArchive::write(path, OssArchive::CustomProceduralKind, payload, &error));
        auto *custom = qobject_cast<OssSnCustomProceduralNode *>(
            m_network->createNode("Misc/Custom Procedural"));
        QVERIFY(custom);
        const QString before = m_network->dump();
        const int steps = undo()->count();
        QStringList errors;
        QVERIFY(!custom->importFromFile(path, &errors));
        QVERIFY2(errors.join('\n').contains(QStringLiteral("not UTF-8")),
                 qPrintable(errors.join('\n')));
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(undo()->count(), steps);
    }
};

QTEST_MAIN(tst_ModelPersistence)
#include "tst_ModelPersistence.moc"
