#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssArchive.h>
#include <OssCanvasManager.h>
#include <OssCanvasWidget.h>
#include <OssChannel.h>
#include <OssCustomAttribute.h>
#include <OssEntity.h>
#include <OssGeoImageSet.h>
#include <OssImageSetUtils.h>
#include <OssShaderNetwork.h>
#include <OssShadingGroup.h>
#include <OssSnBakePointNode.h>
#include <OssSnBaseNode.h>
#include <OssSnCustomProceduralNode.h>
#include <OssSnImageSetNodeBase.h>
#include <OssUndoManager.h>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QInputDialog>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

// The bake commands and the upkeep of the merge nodes' blending colour space, on the real host
// with the plug-in.
//
// The graph: Noise feeds bake point BP1, which feeds Blur, which feeds bake point BP2; Lone
// stands alone. For the blending upkeep: merges M1 (Base of M2) and M2, a mask merge MaskMerge
// feeding M1's Mask, and the paint node Paint of channel "Diffuse".
class tst_BakeCommands : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;

    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }
    OssSnBakePointNode *bakePoint(const QString &name)
    {
        return qobject_cast<OssSnBakePointNode *>(node(name));
    }
    OssUndoManager *undo() { return OssUndoManager::instance(); }
    OssSnNodeGraphViewContextManager *manager() { return m_host.manager(); }
    void select(const QStringList &names)
    {
        m_network->clearSelection();
        for (const QString &name : names)
            node(name)->setSelected(true);
    }
    QAction *action(const QString &text)
    {
        return OssActionTreeManager::instance()->findAction(QStringLiteral("/Ossa/NodeGraph/") +
                                                            text);
    }
    bool wire(const QString &source, const QString &target, const QString &input)
    {
        OssSnNodeGraphViewContext *context = OssSnNodeGraphViewContext::of(node(target));
        if (!context)
            return false;
        context->connectInputFromGui(node(source), input, node(source)->prefferedOutputPoint());
        return node(target)->inputConnection(input) == node(source);
    }
    static int blending(OssSnBaseNode *merge)
    {
        // Enum attributes hold their text form ("1:Disabled|Enabled").
        return OssUserEnum::fromString(
                   merge->nodeAttributeValue("BlendColorSpaceEnabled").toString())
            .currentValue();
    }
    QList<int> mergeStates()
    {
        return {blending(node("M1")), blending(node("M2")), blending(node("MaskMerge"))};
    }
    OssChannel *diffuse() { return m_network->shadingGroup()->channel("Diffuse"); }
    // Answers the next modal dialog (an item choice or a message box) from the event loop:
    // records its title and text, then picks Item or presses the button; Cancel when empty.
    void answerNextDialog(const QString &item, QString *title = nullptr, QString *text = nullptr)
    {
        QTimer::singleShot(0, this, [=] {
            QWidget *modal = QApplication::activeModalWidget();
            if (title && modal)
                *title = modal->windowTitle();
            if (auto *input = qobject_cast<QInputDialog *>(modal)) {
                if (text)
                    *text = input->labelText() + "|" + input->comboBoxItems().join(",");
                if (item.isEmpty()) {
                    input->reject();
                } else {
                    input->setTextValue(item);
                    input->accept();
                }
            } else if (auto *box = qobject_cast<QMessageBox *>(modal)) {
                if (text)
                    *text = box->text();
                box->button(QMessageBox::Ok)->click();
            }
        });
    }
    // A custom procedural with two outputs, Color (preferred) and Height, fed by Noise.
    OssSnBaseNode *twoOutputNode()
    {
        const QByteArray description =
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<NodeType PathKey=\"Custom/Layered\" MenuPath=\"Custom/Layered\" "
            "Class=\"OssSnBaseNode\" VersionUuid=\"TEST_Layered\" Date=\"2026-01-01\" "
            "NodeGraph=\"true\">\n"
            "  <Inputs Preferred=\"Input\"><Input Name=\"Input\" Type=\"color\" Tags=\"\"/>"
            "</Inputs>\n"
            "  <Outputs Preferred=\"Color\"><Output Name=\"Color\" Type=\"color\"/>"
            "<Output Name=\"Height\" Type=\"float\"/></Outputs>\n"
            "</NodeType>\n";
        const QString path = m_host.scratchPath("layered.opc");
        QString error;
        if (!OssArchive::write(path, QString::fromLatin1(OssArchive::CustomProceduralKind),
                               description, &error))
            return nullptr;
        auto *node = qobject_cast<OssSnCustomProceduralNode *>(
            m_network->createNode("Misc/Custom Procedural", "Layered"));
        if (!node || !node->importFromFile(path))
            return nullptr;
        node->connectInput("Input", node->network()->node("Noise"), "Output");
        return node;
    }
    OssGeoImageSet *addGeoChannel(const QString &name)
    {
        OssGeoImageSet *geo = m_network->geoEntity()->addGeoChannel(name);
        geo->setInternalFormat(OssChannel::HalfFloat);
        geo->setColorSpaceConfiguration("scalar");
        return geo;
    }
    static QVariantMap answer(QMessageBox::StandardButton button, bool dontShowAgain)
    {
        return {{"button", int(button)}, {"dontShowAgain", dontShowAgain}};
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(false);
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY2(m_host.createNodes(m_network, {{"Procedural/Noise/Perlin", "Noise"},
                                                {"Misc/Bake Point", "BP1"},
                                                {"Filter/Blur", "Blur"},
                                                {"Misc/Bake Point", "BP2"},
                                                {"Filter/Blur", "Lone"},
                                                {"Layer/Merge", "M1"},
                                                {"Layer/Merge", "M2"},
                                                {"Layer/Merge", "MaskMerge"},
                                                {"Procedural/Noise/Perlin", "Source"},
                                                {"Misc/Channel Input", "Paint"}}),
                 qPrintable(m_host.errorString()));
        QVERIFY(node("BP1")->connectInput("Input", node("Noise"), "Output"));
        QVERIFY(node("Blur")->connectInput("Input", node("BP1"), "Output"));
        QVERIFY(node("BP2")->connectInput("Input", node("Blur"), "Output"));
        QVERIFY(node("M1")->connectInput("Base", node("Source"), "Output"));
        QVERIFY(node("M2")->connectInput("Base", node("M1"), "Output"));
        QVERIFY(node("M1")->connectInput("Mask", node("MaskMerge"), "Output"));
        m_network->shadingGroup()->addChannel("Diffuse");
        qobject_cast<OssSnImageSetNodeBase *>(node("Paint"))->setImageSet(diffuse());
        QCOMPARE(mergeStates(), (QList<int>{0, 0, 0}));
        m_network->clearSelection();
        undo()->clear();
        m_host.clearLines();
    }

    void cleanup()
    {
        manager()->resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
        OssApplication::setPopupsAllowed(false);
        OssApplication::clearDialogAnswers();
        OssCanvasManager::setCurrentCanvas(nullptr);
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- Smart Bake And Update

    void smartBakeBakesEveryBakePointUpstreamFirst()
    {
        QStringList order;
        for (const char *name : {"BP1", "BP2"})
            QObject::connect(bakePoint(name), &OssSnBakePointNode::bakedStateChanged, this,
                             [&order, name] { order << QString::fromLatin1(name); });
        action("Smart Bake And Update")->trigger();
        QCOMPARE(order, (QStringList{"BP1", "BP2"}));
        QVERIFY(bakePoint("BP1")->isBakedResultUpToDate(true));
        QVERIFY(bakePoint("BP2")->isBakedResultUpToDate(true));
        QCOMPARE(bakePoint("BP2")->bakedImageSet(), QStringLiteral("Node_Bake_BP2"));
        // A change upstream makes the bake out of date; the next smart bake brings it back.
        node("Noise")->setNodeAttribute("Frequency", 7.0);
        QVERIFY(!bakePoint("BP1")->isBakedResultUpToDate(false));
        QVERIFY(!bakePoint("BP2")->isBakedResultUpToDate(true));
        action("Smart Bake And Update")->trigger();
        QVERIFY(bakePoint("BP2")->isBakedResultUpToDate(true));
    }

    void aBakeIsOneUndoStepThatFillsTheBakePointsImageSet()
    {
        action("Smart Bake And Update")->trigger();
        OssChannel *baked = m_network->shadingGroup()->channel("Node_Bake_BP2");
        QVERIFY(baked);
        QCOMPARE(baked->content(), bakePoint("BP2")->bakedSignature());
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Smart Bake And Update"));
        undo()->undo();
        QVERIFY(!bakePoint("BP1")->hasBakedResult());
        QVERIFY(!bakePoint("BP2")->hasBakedResult());
        QVERIFY(!m_network->shadingGroup()->channel("Node_Bake_BP2"));
        undo()->redo();
        QVERIFY(bakePoint("BP2")->isBakedResultUpToDate(true));
        QCOMPARE(m_network->shadingGroup()->channel("Node_Bake_BP2")->content(),
                 bakePoint("BP2")->bakedSignature());
        // Nothing to bake is no step.
        undo()->clear();
        select({"Blur"});
        view()->bakeSelectedBakePoints();
        QCOMPARE(undo()->count(), 0);
    }

    void smartBakeWithoutBakePointsSaysSo()
    {
        m_network->removeNodes({node("BP1"), node("BP2")});
        m_host.clearLines();
        view()->bakeEmptyAndUpdateOutOfDateBakePoints();
        QCOMPARE(m_host.lines(), QStringList{"[ !! ] No Bake Point nodes found"});
    }

    // --- Bake Selected and Update Selected

    void bakeSelectedBakesOnlyTheSelectedBakePoints()
    {
        select({"BP2", "Blur"});
        action("Bake Selected")->trigger();
        QVERIFY(!bakePoint("BP1")->hasBakedResult());
        QVERIFY(bakePoint("BP2")->isBakedResultUpToDate(false));
    }

    void bakeSelectedAndUpdateSelectedTreatCurrentBakesApart_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("bp1Bakes");
        QTest::addColumn<int>("bp2Bakes");
        // BP1's bake is current, BP2's is stale: only the update leaves BP1 alone.
        QTest::newRow("bake selected") << "Bake Selected" << 1 << 1;
        QTest::newRow("update selected") << "Update Selected" << 0 << 1;
    }

    void bakeSelectedAndUpdateSelectedTreatCurrentBakesApart()
    {
        QFETCH(QString, command);
        QFETCH(int, bp1Bakes);
        QFETCH(int, bp2Bakes);
        bakePoint("BP1")->bake("Node_Bake_BP1");
        bakePoint("BP2")->bake("Node_Bake_BP2");
        node("Blur")->setNodeAttribute("Radius", 9.0);
        QVERIFY(bakePoint("BP1")->isBakedResultUpToDate(false));
        QVERIFY(!bakePoint("BP2")->isBakedResultUpToDate(false));
        QSignalSpy bp1(bakePoint("BP1"), &OssSnBakePointNode::bakedStateChanged);
        QSignalSpy bp2(bakePoint("BP2"), &OssSnBakePointNode::bakedStateChanged);
        select({"BP1", "BP2"});
        action(command)->trigger();
        QCOMPARE(bp1.count(), bp1Bakes);
        QCOMPARE(bp2.count(), bp2Bakes);
        QVERIFY(bakePoint("BP2")->isBakedResultUpToDate(false));
    }

    void selectedCommandsWithoutABakePointSaySo_data()
    {
        QTest::addColumn<QString>("command");
        QTest::newRow("bake") << "Bake Selected";
        QTest::newRow("update") << "Update Selected";
    }

    void selectedCommandsWithoutABakePointSaySo()
    {
        QFETCH(QString, command);
        select({"Blur", "Noise"});
        action(command)->trigger();
        QVERIFY(m_host.hasLine("[ !! ] No Bake Point nodes are selected"));
        QVERIFY(!bakePoint("BP1")->hasBakedResult());
        QVERIFY(!bakePoint("BP2")->hasBakedResult());
    }

    // --- Update Upstream and Update Downstream

    void updatesFollowTheGraphFromTheSelection_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<bool>("bp1");
        QTest::addColumn<bool>("bp2");
        QTest::newRow("upstream of Blur") << "Update Upstream"
                                          << "Blur" << true << false;
        QTest::newRow("upstream of BP2") << "Update Upstream"
                                         << "BP2" << true << false;
        QTest::newRow("downstream of Blur") << "Update Downstream"
                                            << "Blur" << false << true;
        QTest::newRow("downstream of Noise") << "Update Downstream"
                                             << "Noise" << true << true;
    }

    void updatesFollowTheGraphFromTheSelection()
    {
        QFETCH(QString, command);
        QFETCH(QString, selected);
        QFETCH(bool, bp1);
        QFETCH(bool, bp2);
        select({selected});
        action(command)->trigger();
        QCOMPARE(bakePoint("BP1")->hasBakedResult(), bp1);
        QCOMPARE(bakePoint("BP2")->hasBakedResult(), bp2);
    }

    void updatesSayWhatIsMissing_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QString>("line");
        QTest::newRow("upstream, nothing selected")
            << "Update Upstream" << QStringList() << "[ !! ] No nodes are selected";
        QTest::newRow("downstream, nothing selected")
            << "Update Downstream" << QStringList() << "[ !! ] No nodes are selected";
        QTest::newRow("upstream, none there") << "Update Upstream" << QStringList{"Noise"}
                                              << "[ !! ] No upstream Bake Point nodes found";
        QTest::newRow("downstream, none there") << "Update Downstream" << QStringList{"Lone"}
                                                << "[ !! ] No downstream Bake Point nodes found";
    }

    void updatesSayWhatIsMissing()
    {
        QFETCH(QString, command);
        QFETCH(QStringList, selected);
        QFETCH(QString, line);
        select(selected);
        action(command)->trigger();
        QCOMPARE(m_host.lines().filter("[ !! ] No"), QStringList{line});
        QVERIFY(!bakePoint("BP1")->hasBakedResult());
        QVERIFY(!bakePoint("BP2")->hasBakedResult());
    }

    void bakeCommandsWithoutANetworkDoNothing()
    {
        OssShaderNetworkView lone;
        lone.bakeSelectedBakePoints();
        lone.updateUpstreamBakePoints();
        QCOMPARE(m_host.lines(), (QStringList{"m_network is NULL", "m_network is NULL"}));
    }

    // --- Bake to Paint Node

    void bakingMakesAPaintNodeThatTakesTheNodesPlace()
    {
        const QString before = m_network->dump();
        select({"Blur"});
        action("Bake to Paint Node")->trigger();
        OssSnBaseNode *paint = node("Node_Bake_Blur");
        QVERIFY(paint);
        QCOMPARE(paint->pathKey(), QStringLiteral("Misc/Channel Input"));
        OssChannel *imageSet = qobject_cast<OssSnImageSetNodeBase *>(paint)->imageSet();
        QVERIFY(imageSet);
        QCOMPARE(imageSet->name(), QStringLiteral("Node_Bake_Blur"));
        QCOMPARE(m_network->shadingGroup()->channel("Node_Bake_Blur"), imageSet);
        // The bake holds the result of Blur's graph: another graph gives other content.
        const QString baked = imageSet->content();
        QCOMPARE(baked, OssImageSetUtils::resultDigest(node("Blur"), "Output"));
        // The paint node feeds what Blur fed, above Blur and selected alone.
        QCOMPARE(node("BP2")->inputConnection("Input"), paint);
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{paint});
        QVERIFY(OssSnNodeGraphViewContext::guiNodeOf(paint)->pos().y() <
                OssSnNodeGraphViewContext::guiNodeOf(node("Blur"))->pos().y());
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Bake to Paintable"));
        undo()->undo();
        QCOMPARE(m_network->dump(), before);
        QVERIFY(!m_network->shadingGroup()->channel("Node_Bake_Blur"));
        undo()->redo();
        QCOMPARE(node("BP2")->inputConnection("Input"), node("Node_Bake_Blur"));
        QCOMPARE(m_network->shadingGroup()->channel("Node_Bake_Blur")->content(), baked);
        node("Noise")->setNodeAttribute("Frequency", 11.0);
        QVERIFY(OssImageSetUtils::resultDigest(node("Blur"), "Output") != baked);
    }

    void bakingAPaintNodeFlushesItsPaintBufferFirst()
    {
        OssCanvasWidget canvas;
        OssCanvasManager::setCurrentCanvas(&canvas);
        select({"Paint"});
        view()->bakeToPaintableNode();
        QCOMPARE(canvas.flushCount(), 1);
        QCOMPARE(canvas.lastFlushedImageSet(), diffuse());
        QVERIFY(node("Node_Bake_Paint"));
    }

    void onlyOneNodeIsBakedToAPaintNode_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::newRow("none") << QStringList();
        QTest::newRow("two") << QStringList{"Blur", "Lone"};
    }

    void onlyOneNodeIsBakedToAPaintNode()
    {
        QFETCH(QStringList, selected);
        const QString before = m_network->dump();
        select(selected);
        view()->bakeToPaintableNode();
        QVERIFY(m_host.hasLine("[ !! ] Bake to Paintable Node: Only one node must be selected for "
                               "baking to a paintable node"));
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(undo()->count(), 0);
    }

    void theUserPicksWhichOutputIsBaked()
    {
        OssSnBaseNode *layered = twoOutputNode();
        QVERIFY(layered);
        QVERIFY(node("Lone")->connectInput("Input", layered, "Height"));
        QVERIFY(node("Blur")->connectInput("Input", layered, "Color"));
        undo()->clear();
        OssApplication::setPopupsAllowed(true);
        QString title, text;
        answerNextDialog("Height", &title, &text);
        select({"Layered"});
        view()->bakeToPaintableNode();
        QCOMPARE(title, QStringLiteral("Bake to Paintable"));
        QCOMPARE(text, QStringLiteral("Select the output port to bake at:|Color,Height"));
        OssSnBaseNode *paint = node("Node_Bake_Layered");
        QVERIFY(paint);
        QCOMPARE(qobject_cast<OssSnImageSetNodeBase *>(paint)->imageSet()->content(),
                 OssImageSetUtils::resultDigest(layered, "Height"));
        // Only what the chosen output fed moves to the paint node.
        QCOMPARE(node("Lone")->inputConnection("Input"), paint);
        QCOMPARE(node("Blur")->inputConnection("Input"), layered);
    }

    void cancellingTheOutputChoiceBakesNothing()
    {
        QVERIFY(twoOutputNode());
        undo()->clear();
        const QString before = m_network->dump();
        OssApplication::setPopupsAllowed(true);
        answerNextDialog(QString());
        select({"Layered"});
        view()->bakeToPaintableNode();
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(undo()->count(), 0);
        QVERIFY(!m_network->shadingGroup()->channel("Node_Bake_Layered"));
    }

    // --- Export to Geo-Channel

    void exportingFillsANewImageSetOfTheGeoChannel()
    {
        OssGeoImageSet *ao = addGeoChannel("AO");
        OssChannel *previous = m_network->shadingGroup()->addChannel("Old AO");
        ao->setImageSet(previous);
        diffuse()->setWidth(4096);
        diffuse()->setHeight(1024);
        QVERIFY(node("Lone")->connectInput("Input", node("Paint"), "Output"));
        undo()->clear();
        select({"Lone"});
        view()->exportToGeoChannel(ao);
        OssChannel *imageSet = ao->imageSet();
        QVERIFY(imageSet);
        QCOMPARE(imageSet->name(), QStringLiteral("Node_To_GeoChannel_AO"));
        QCOMPARE(imageSet->channelType(), int(OssChannel::HalfFloat));
        QCOMPARE(imageSet->colorSpace(), QStringLiteral("scalar"));
        // As large as the largest paint it is made from.
        QCOMPARE(QSize(imageSet->width(), imageSet->height()), QSize(4096, 1024));
        QCOMPARE(imageSet->content(), OssImageSetUtils::resultDigest(node("Lone"), "Output"));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Export to Geo-Channel"));
        undo()->undo();
        QCOMPARE(ao->imageSet(), previous);
        QVERIFY(!m_network->shadingGroup()->channel("Node_To_GeoChannel_AO"));
    }

    void aCurrentBakePointHandsOverACopyOfItsBake()
    {
        OssGeoImageSet *ao = addGeoChannel("AO");
        select({"BP1"});
        view()->bakeSelectedBakePoints();
        OssChannel *baked = m_network->shadingGroup()->channel("Node_Bake_BP1");
        QVERIFY(baked);
        view()->exportToGeoChannel(ao);
        QVERIFY(ao->imageSet());
        QVERIFY(ao->imageSet() != baked);
        QCOMPARE(ao->imageSet()->name(), QStringLiteral("Node_To_GeoChannel_AO"));
        QCOMPARE(ao->imageSet()->content(), baked->content());
        QCOMPARE(ao->imageSet()->channelType(), baked->channelType());
        // Once stale, the node's result is rendered for the geo-channel instead.
        node("Noise")->setNodeAttribute("Frequency", 13.0);
        view()->exportToGeoChannel(ao);
        QCOMPARE(ao->imageSet()->name(), QStringLiteral("Node_To_GeoChannel_AO1"));
        QCOMPARE(ao->imageSet()->content(), OssImageSetUtils::resultDigest(node("BP1"), "Output"));
        QCOMPARE(ao->imageSet()->channelType(), int(OssChannel::HalfFloat));
    }

    void exportingWithoutPaintUpstreamUsesTheDefaultSize()
    {
        OssGeoImageSet *ao = addGeoChannel("AO");
        select({"Blur"});
        action("Export to Geo-Channel")->trigger();
        // Without popups nobody can be asked which geo-channel.
        QVERIFY(m_host.hasLine("[ !! ] Unable to request geo-channel from user"));
        QVERIFY(!ao->imageSet());
        view()->exportToGeoChannel(ao, "Output");
        QCOMPARE(QSize(ao->imageSet()->width(), ao->imageSet()->height()), QSize(2048, 2048));
    }

    void theUserPicksTheGeoChannel()
    {
        addGeoChannel("AO");
        OssGeoImageSet *curvature = addGeoChannel("Curvature");
        OssApplication::setPopupsAllowed(true);
        QString title, text;
        answerNextDialog("Curvature", &title, &text);
        select({"Blur"});
        action("Export to Geo-Channel")->trigger();
        QCOMPARE(title, QStringLiteral("Export to Geo-Channel"));
        QCOMPARE(text, QStringLiteral("Select the geo-channel to export to:|AO,Curvature"));
        QVERIFY(curvature->imageSet());
        QCOMPARE(curvature->imageSet()->name(), QStringLiteral("Node_To_GeoChannel_Curvature"));
    }

    void exportRefusals_data()
    {
        QTest::addColumn<QStringList>("selected");
        QTest::addColumn<QString>("geoChannel");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing selected")
            << QStringList() << "AO"
            << "Only one node must be selected for exporting to a geo-channel.";
        QTest::newRow("two selected")
            << QStringList{"Blur", "Lone"} << "AO"
            << "Only one node must be selected for exporting to a geo-channel.";
        QTest::newRow("another object's geo-channel")
            << QStringList{"Blur"} << "elsewhere"
            << "Node and geo-channel must belong to the same object.";
        QTest::newRow("no geo-channel to pick")
            << QStringList{"Blur"} << ""
            << "No geo-channels are available to export into. Please add one.";
    }

    void exportRefusals()
    {
        QFETCH(QStringList, selected);
        QFETCH(QString, geoChannel);
        QFETCH(QString, text);
        OssEntity elsewhere("Elsewhere");
        OssGeoImageSet *target = geoChannel == "AO"          ? addGeoChannel("AO")
                                 : geoChannel == "elsewhere" ? elsewhere.addGeoChannel("AO")
                                                             : nullptr;
        const QString before = m_network->dump();
        OssApplication::setPopupsAllowed(true);
        QString title, shown;
        answerNextDialog(QString(), &title, &shown);
        select(selected);
        view()->exportToGeoChannel(target);
        QCOMPARE(title, QStringLiteral("Export to Geo-Channel"));
        QCOMPARE(shown, text);
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(undo()->count(), 0);
    }

    // --- blending colour space of merge nodes

    void anEightBitPaintNodeUnderTwoDisabledMergesAsksOnceForBoth()
    {
        OssApplication::setPopupsAllowed(true);
        OssApplication::queueDialogAnswer(answer(QMessageBox::Yes, false));
        QVERIFY(wire("M2", "Paint", "Mask"));
        QVERIFY(!OssApplication::hasDialogAnswer());
        // The mask merge stays as it is: masks are not paint.
        QCOMPARE(mergeStates(), (QList<int>{1, 1, 0}));
        QCOMPARE(manager()->autoUpdateUpstreamMergeNodeColorspaceEnabled(),
                 QStringLiteral("Prompt"));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Connect Mask"));
        undo()->undo();
        QCOMPARE(mergeStates(), (QList<int>{0, 0, 0}));
        QVERIFY(!node("Paint")->inputConnection("Mask"));
    }

    void thePromptIsARealQuestionWithItsTextAndCheckBox()
    {
        OssApplication::setPopupsAllowed(true);
        QString title, text;
        QTimer::singleShot(0, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            title = box->windowTitle();
            text = box->text();
            QVERIFY(box->checkBox());
            QCOMPARE(box->checkBox()->text(), QStringLiteral("Don't show again"));
            box->checkBox()->setChecked(true);
            box->button(QMessageBox::Yes)->click();
        });
        QVERIFY(wire("M2", "BP1", "Input"));
        QCOMPARE(title, QStringLiteral("Update 'Blending Colorspace' of Merge Nodes"));
        QCOMPARE(text,
                 QStringLiteral(
                     "There are Merge nodes upstream of BP1 which is set to represent 8bit (byte) "
                     "color paint data.\nMerge nodes have an attribute named 'Use Blending "
                     "Colorspace'. When this is set to 'Disable' for an 8-bit (byte) color paint "
                     "channel, precision issues could occur and result in visual banding "
                     "artefacts in your paint.\nWould you like to set the attribute 'Use "
                     "Blending Colorspace' to 'Enable' for those Merge nodes?"));
        QCOMPARE(mergeStates(), (QList<int>{1, 1, 0}));
        QCOMPARE(manager()->autoUpdateUpstreamMergeNodeColorspaceEnabled(),
                 QStringLiteral("Change"));
    }

    void answersAndPreferences_data()
    {
        QTest::addColumn<QString>("preference");
        QTest::addColumn<bool>("popups");
        QTest::addColumn<int>("button");
        QTest::addColumn<bool>("dontShowAgain");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<int>("enabled");
        QTest::addColumn<QString>("storedPreference");
        QTest::newRow("prompt, no")
            << "Prompt" << true << int(QMessageBox::No) << false << true << 0 << "Prompt";
        QTest::newRow("prompt, no, never again")
            << "Prompt" << true << int(QMessageBox::No) << true << true << 0 << "Leave";
        QTest::newRow("prompt, yes, never again")
            << "Prompt" << true << int(QMessageBox::Yes) << true << true << 1 << "Change";
        QTest::newRow("prompt without popups")
            << "Prompt" << false << int(QMessageBox::Yes) << false << false << 0 << "Prompt";
        QTest::newRow("change") << "Change" << true << int(QMessageBox::No) << false << false << 1
                                << "Change";
        QTest::newRow("leave") << "Leave" << true << int(QMessageBox::Yes) << false << false << 0
                               << "Leave";
    }

    void answersAndPreferences()
    {
        QFETCH(QString, preference);
        QFETCH(bool, popups);
        QFETCH(int, button);
        QFETCH(bool, dontShowAgain);
        QFETCH(bool, asked);
        QFETCH(int, enabled);
        QFETCH(QString, storedPreference);
        manager()->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(preference);
        OssApplication::setPopupsAllowed(popups);
        OssApplication::queueDialogAnswer(
            answer(static_cast<QMessageBox::StandardButton>(button), dontShowAgain));
        QVERIFY(wire("M2", "Paint", "Mask"));
        QCOMPARE(!OssApplication::hasDialogAnswer(), asked);
        QCOMPARE(mergeStates(), (QList<int>{enabled, enabled, 0}));
        QCOMPARE(manager()->autoUpdateUpstreamMergeNodeColorspaceEnabled(), storedPreference);
    }

    void afterNoNeverAgainLaterConnectionsNeitherAskNorChange()
    {
        OssApplication::setPopupsAllowed(true);
        OssApplication::queueDialogAnswer(answer(QMessageBox::No, true));
        QVERIFY(wire("M2", "Paint", "Mask"));
        QCOMPARE(manager()->autoUpdateUpstreamMergeNodeColorspaceEnabled(),
                 QStringLiteral("Leave"));
        OssApplication::queueDialogAnswer(answer(QMessageBox::Yes, false));
        QVERIFY(wire("M2", "BP1", "Input"));
        QVERIFY(OssApplication::hasDialogAnswer());
        QCOMPARE(mergeStates(), (QList<int>{0, 0, 0}));
    }

    void endPointsThatHoldNoBytePaintNeverAsk_data()
    {
        QTest::addColumn<int>("channelType");
        QTest::addColumn<QString>("colorSpace");
        QTest::newRow("float channel") << int(OssChannel::Float) << "sRGB";
        QTest::newRow("half-float channel") << int(OssChannel::HalfFloat) << "sRGB";
        QTest::newRow("scalar byte channel") << int(OssChannel::UnsignedByte) << "scalar";
    }

    void endPointsThatHoldNoBytePaintNeverAsk()
    {
        QFETCH(int, channelType);
        QFETCH(QString, colorSpace);
        diffuse()->setChannelType(channelType);
        diffuse()->setColorSpace(colorSpace);
        OssApplication::setPopupsAllowed(true);
        OssApplication::queueDialogAnswer(answer(QMessageBox::Yes, false));
        QVERIFY(wire("M2", "Paint", "Mask"));
        QVERIFY(OssApplication::hasDialogAnswer());
        QCOMPARE(mergeStates(), (QList<int>{0, 0, 0}));
    }

    void aNewMergeTakesItsBlendingFromThePaintBelow_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("channelType");
        QTest::addColumn<int>("enabled");
        QTest::newRow("above byte paint") << "Paint"
                                          << "Mask" << int(OssChannel::UnsignedByte) << 1;
        QTest::newRow("above float paint") << "Paint"
                                           << "Mask" << int(OssChannel::Float) << 0;
        QTest::newRow("above a bake point") << "BP1"
                                            << "Input" << int(OssChannel::Float) << 1;
        QTest::newRow("into a merge's mask only") << "MaskMerge"
                                                  << "Mask" << int(OssChannel::UnsignedByte) << 0;
        QTest::newRow("feeding nothing") << ""
                                         << "" << int(OssChannel::UnsignedByte) << 0;
    }

    void aNewMergeTakesItsBlendingFromThePaintBelow()
    {
        QFETCH(QString, target);
        QFETCH(QString, input);
        QFETCH(int, channelType);
        QFETCH(int, enabled);
        diffuse()->setChannelType(channelType);
        // MaskMerge's own output reaches the paint only through M1's Mask.
        QVERIFY(node("Paint")->connectInput("Mask", node("M2"), "Output"));
        OssSnBaseNode *merge = m_network->createNode("Layer/Merge", "New");
        if (!target.isEmpty())
            QVERIFY(node(target)->connectInput(input, merge, "Output"));
        OssShaderNetworkView::setBlendingColorspaceOnMergeNodeCreation(merge);
        QCOMPARE(blending(merge), enabled);
    }

    // --- paint buffer

    void paintStillInTheBufferIsFlushedIntoTheImageSetNode()
    {
        OssCanvasWidget canvas;
        OssCanvasManager::setCurrentCanvas(&canvas);
        QMetaObject::invokeMethod(view(), "bakePaintBufferToNode",
                                  Q_ARG(const OssSnBaseNode *, node("Paint")));
        QCOMPARE(canvas.flushCount(), 1);
        QCOMPARE(canvas.lastFlushedImageSet(), diffuse());
        QMetaObject::invokeMethod(view(), "bakePaintBufferToNode",
                                  Q_ARG(const OssSnBaseNode *, node("Blur")));
        QCOMPARE(canvas.flushCount(), 1);
    }
};

QTEST_MAIN(tst_BakeCommands)
#include "tst_BakeCommands.moc"
