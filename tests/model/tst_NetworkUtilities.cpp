#include "OssTestHost.h"

#include <OssLayerRefreshSuspensionManager.h>
#include <OssLayerShader.h>
#include <OssLayerShaderManager.h>
#include <OssLayerShaderModel.h>
#include <OssLayerShaderUtils.h>
#include <OssLayerStreamUtils.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkUtils.h>
#include <OssSnBakePointNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssSnUINode.h>
#include <OssUndoManager.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QtTest>

namespace {

QStringList names(const QList<OssSnBaseNode *> &nodes)
{
    QStringList result;
    for (const OssSnBaseNode *node : nodes)
        result << node->name();
    result.sort();
    return result;
}

} // namespace

// Walks, copies, bake state and layer helpers over a small texturing graph:
//
//   Perlin ─► Blur ─► Merge.Base ─► Surface.Diffuse Color
//   Checker ───────► Merge.Over
//   Grunge ───────► Merge.Mask
class tst_NetworkUtilities : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;
    OssShaderNetwork *m_network = nullptr;

    OssSnBaseNode *node(const char *name) { return m_network->node(QString::fromLatin1(name)); }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        m_network = m_host.newProject();
        for (const char *key :
             {"Procedural/Noise/Perlin", "Filter/Blur", "Procedural/Pattern/Checker",
              "Procedural/Noise/Grunge", "Layer/Merge", "Shaders/Surface"})
            QVERIFY(m_network->createNode(QString::fromLatin1(key)));
        QVERIFY(node("Blur")->connectInput("Input", node("Perlin"), "Output"));
        QVERIFY(node("Merge")->connectInput("Base", node("Blur"), "Output"));
        QVERIFY(node("Merge")->connectInput("Over", node("Checker"), "Output"));
        QVERIFY(node("Merge")->connectInput("Mask", node("Grunge"), "Output"));
        QVERIFY(node("Surface")->connectInput("Diffuse Color", node("Merge"), "Output"));
        OssUndoManager::instance()->clear();
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void walks_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<bool>("upstream");
        QTest::addColumn<bool>("wholeGraph");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("all upstream")
            << "Surface" << true << true
            << QStringList{"Blur", "Checker", "Grunge", "Merge", "Perlin"};
        QTest::newRow("upstream stream")
            << "Surface" << true << false << QStringList{"Blur", "Merge", "Perlin"};
        QTest::newRow("all downstream")
            << "Perlin" << false << true << QStringList{"Blur", "Merge", "Surface"};
        QTest::newRow("downstream stream of over") << "Checker" << false << false << QStringList{};
        QTest::newRow("downstream stream of base")
            << "Blur" << false << false << QStringList{"Merge", "Surface"};
    }

    void walks()
    {
        QFETCH(QString, start);
        QFETCH(bool, upstream);
        QFETCH(bool, wholeGraph);
        QFETCH(QStringList, expected);
        OssSnBaseNode *from = m_network->node(start);
        const QList<OssSnBaseNode *> found =
            upstream ? OssShaderNetworkUtils::getUpstreamNodes(from, true, wholeGraph, false)
                     : OssShaderNetworkUtils::getDownstreamNodes(from, true, wholeGraph);
        QCOMPARE(names(found), expected);
    }

    void siblingsAndBetween()
    {
        QCOMPARE(OssShaderNetworkUtils::nextSibling(node("Blur")), node("Checker"));
        QCOMPARE(OssShaderNetworkUtils::nextSibling(node("Checker")), node("Grunge"));
        QVERIFY(!OssShaderNetworkUtils::nextSibling(node("Grunge")));
        QCOMPARE(OssShaderNetworkUtils::prevSibling(node("Checker")), node("Blur"));
        QVERIFY(!OssShaderNetworkUtils::prevSibling(node("Blur")));
        QCOMPARE(names(OssShaderNetworkUtils::nodesBetween({node("Perlin"), node("Surface")})),
                 (QStringList{"Blur", "Merge"}));
        QVERIFY(OssShaderNetworkUtils::nodesBetween({node("Perlin")}).isEmpty());
    }

    void walkerStopsAtMaskInputs()
    {
        // Merge nodes upstream, without passing through a merge's "Mask".
        class MergeFinder : public OssShaderNetworkUtils::OssNodeWalkerUpstream
        {
        public:
            QStringList found;

        protected:
            bool visit(OssSnBaseNode *visited) override
            {
                found << visited->name();
                return true;
            }
            bool followInput(OssSnBaseNode *at, const QString &input) override
            {
                return !(OssLayerStreamUtils::isMergeNode(at) && input == QLatin1String("Mask"));
            }
        } finder;
        finder.walk(node("Surface"));
        QVERIFY(!finder.found.contains(QStringLiteral("Grunge")));
        QVERIFY(finder.found.contains(QStringLiteral("Checker")));
    }

    void duplicateKeepsInnerConnectionsInOneStep()
    {
        node("Blur")->setNodeAttribute(QStringLiteral("Radius"), 4.0, false);
        const QList<OssSnBaseNode *> copies =
            OssShaderNetworkIO::duplicateNodes(m_network, {node("Perlin"), node("Blur")}, true);
        QCOMPARE(names(copies), (QStringList{"Blur1", "Perlin1"}));
        OssSnBaseNode *blurCopy = node("Blur1");
        QCOMPARE(blurCopy->inputConnection("Input"), node("Perlin1"));
        QCOMPARE(blurCopy->nodeAttributeValue("Radius").toDouble(), 4.0);
        QVERIFY(blurCopy->uuid() != node("Blur")->uuid());
        QVERIFY(blurCopy->outputNodes().isEmpty());
        QCOMPARE(OssUndoManager::instance()->count(), 1);
        OssUndoManager::instance()->undo();
        QVERIFY(!node("Blur1") && !node("Perlin1"));
        OssUndoManager::instance()->redo();
        QCOMPARE(node("Blur1")->inputConnection("Input"), node("Perlin1"));
    }

    void clipboardRoundTrip()
    {
        QVERIFY(OssShaderNetworkIO::copyNodesToClipboard({node("Merge"), node("Checker")}, ""));
        QVERIFY(OssShaderNetworkIO::clipboardHasNodes());
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        QString error;
        const QList<OssSnBaseNode *> pasted =
            OssShaderNetworkIO::pasteNodesFromClipboard(group->groupNetwork(), true, {}, &error);
        QVERIFY2(pasted.size() == 2, qPrintable(error));
        OssSnBaseNode *merge = group->groupNetwork()->node(QStringLiteral("Merge"));
        QCOMPARE(merge->inputConnection("Over"), group->groupNetwork()->node("Checker"));
        QVERIFY(!merge->inputConnection("Base"));
    }

    void foreignClipboardTextPastesNothing()
    {
        QGuiApplication::clipboard()->setText(QStringLiteral("just some words"));
        const QString before = m_network->dump();
        QString error;
        QVERIFY(OssShaderNetworkIO::pasteNodesFromClipboard(m_network, true, {}, &error).isEmpty());
        QVERIFY(!error.isEmpty());
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(OssUndoManager::instance()->count(), 0);
    }

    void connectionsAcrossNetworksAreRefused()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        OssSnBaseNode *inner = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        QString error;
        QVERIFY(!inner->connectInput("Input", node("Perlin"), "Output", true, &error));
        QCOMPARE(error, QStringLiteral("nodes 'Perlin' and 'Blur' are not in the same network"));
    }

    void nodeFiles()
    {
        const QString path = m_host.scratchPath(QStringLiteral("nodes.ong"));
        QString error;
        QVERIFY(
            OssShaderNetworkIO::saveNodesToXmlFile({node("Perlin"), node("Blur")}, path, &error));
        const QList<OssSnBaseNode *> loaded =
            OssShaderNetworkIO::loadNodesFromXmlFile(m_network, path, &error);
        QCOMPARE(loaded.size(), 2);
        const int count = m_network->nodeCount();
        const QString bad = m_host.scratchPath(QStringLiteral("bad.ong"));
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<OssaDocument formatVersion=\"1\"><object");
        file.close();
        QVERIFY(OssShaderNetworkIO::loadNodesFromXmlFile(m_network, bad, &error).isEmpty());
        QVERIFY2(error.startsWith("\"" + bad + "\""), qPrintable(error));
        QCOMPARE(m_network->nodeCount(), count);
        QVERIFY(OssShaderNetworkIO::loadNodesFromXmlFile(m_network, bad + "x", &error).isEmpty());
        QVERIFY(error.contains("cannot open"));
    }

    void bakePointsGoStaleWhenUpstreamChanges()
    {
        auto *bakePoint = qobject_cast<OssSnBakePointNode *>(
            m_network->createNode(QStringLiteral("Misc/Bake Point")));
        QVERIFY(bakePoint);
        QVERIFY(bakePoint->connectInput(bakePoint->inputNames().first(), node("Merge"), "Output"));
        QVERIFY(!bakePoint->hasBakedResult());
        QCOMPARE(OssShaderNetworkUtils::bakeBakePoints({bakePoint}, true, true), 1);
        QVERIFY(bakePoint->isBakedResultUpToDate(false));
        QCOMPARE(bakePoint->bakedImageSet(), QStringLiteral("Node_Bake_Bake Point"));
        QSignalSpy stale(bakePoint, &OssSnBakePointNode::bakedStateChanged);
        node("Perlin")->setNodeAttribute(QStringLiteral("Scale"), 9.0);
        QVERIFY(!bakePoint->isBakedResultUpToDate(false));
        // "Update" bakes only bake points that have a result and are stale.
        QCOMPARE(OssShaderNetworkUtils::bakeBakePoints({bakePoint}, false, false), 1);
        QVERIFY(bakePoint->isBakedResultUpToDate(true));
        QCOMPARE(OssShaderNetworkUtils::bakeBakePoints({bakePoint}, false, false), 0);
        QCOMPARE(OssShaderNetworkUtils::getUpstreamBakePointNodes({node("Surface")}).size(), 0);
        QCOMPARE(OssShaderNetworkUtils::getDownstreamBakePointNodes({node("Perlin")}),
                 QList<OssSnBaseNode *>{bakePoint});
        Q_UNUSED(stale);
    }

    void layerHelpers()
    {
        QVERIFY(OssLayerStreamUtils::isMergeNode(node("Merge")));
        QVERIFY(!OssLayerStreamUtils::isMergeNode(node("Blur")));
        QVERIFY(OssLayerStreamUtils::isBaseInput(node("Merge"), "Base"));
        QVERIFY(!OssLayerStreamUtils::isBaseInput(node("Merge"), "Over"));
        QVERIFY(OssLayerShaderUtils::isLayerShaderNode(node("Surface")));
        QVERIFY(
            !OssLayerShaderManager::instance()->getLayerShader(node("Surface"))->isStackShader());
        OssSnBaseNode *stack = m_network->createNode(QStringLiteral("Shaders/Stack"));
        QVERIFY(OssLayerShaderManager::instance()->getLayerShader(stack)->isStackShader());
        OssSnBaseNode *proxy = m_network->createNode(QStringLiteral("_System/Current Material"));
        QVERIFY(proxy);
        QVERIFY(OssLayerShaderManager::isSystemShaderNode(proxy, true));
        QVERIFY(!OssLayerShaderManager::isSystemShaderNode(proxy, false));
        QCOMPARE(OssLayerShaderManager::instance()->getCurrentMaterialProxyShader(m_network),
                 proxy);
        auto *merge = qobject_cast<OssSnMultiChannelGroupNode *>(
            m_network->createMultiChannelMergeNode(nullptr));
        QVERIFY(merge && merge->shaderModel());
        QCOMPARE(merge->shaderModel()->id(), QStringLiteral("Surface"));
        auto *other = qobject_cast<OssSnMultiChannelGroupNode *>(
            m_network->createNode(QStringLiteral("Misc/Multi Channel Group")));
        QVERIFY(OssLayerShaderModelManager::matchingShaderModelNodePair(merge, other));
        other->setShaderModelId(QStringLiteral("Unlit"));
        QVERIFY(!OssLayerShaderModelManager::matchingShaderModelNodePair(merge, other));
    }

    void refreshesAreHeldBackWhileSuspended()
    {
        const int before = OssLayerRefreshSuspensionManager::refreshCount();
        {
            OssLayerRefreshSuspensionManager::RefreshStateSuspender outer;
            {
                OssLayerRefreshSuspensionManager::RefreshStateSuspender inner;
                OssLayerRefreshSuspensionManager::requestRefresh();
            }
            OssLayerRefreshSuspensionManager::requestRefresh();
            QCOMPARE(OssLayerRefreshSuspensionManager::refreshCount(), before);
        }
        QCOMPARE(OssLayerRefreshSuspensionManager::refreshCount(), before + 1);
    }

    void uiNodesKeepDisplayStateInUserAttributes()
    {
        OssSnBaseNode *backdrop = m_network->createNode(QStringLiteral("Misc/Backdrop"));
        QVERIFY(qobject_cast<OssSnUINode *>(backdrop));
        QVERIFY(backdrop->exists(QStringLiteral("TitleText")));
        QVERIFY(backdrop->exists(QStringLiteral("BackgroundColor")));
        QVERIFY(!backdrop->hasNodeAttribute(QStringLiteral("TitleText")));
    }
};

QTEST_MAIN(tst_NetworkUtilities)
#include "tst_NetworkUtilities.moc"
