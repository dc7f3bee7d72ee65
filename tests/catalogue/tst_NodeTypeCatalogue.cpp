#include "OssColor.h"
#include "OssDebug.h"
#include "OssResourceInfo.h"
#include "OssSnNodeTypeCatalogue.h"
#include "OssTestEnvironment.h"

#include <QtTest>

#include <algorithm>

namespace {

// A description with one of everything, in the shape the shipped files have.
const char *const completeDescription =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<NodeType PathKey="Filter/Blur" MenuPath="Filter/Blur" Class="OssSnBaseNode" VersionUuid="OSS_Filter_Blur" Date="2026-03-14" NodeGraph="true">
  <Description>
    Softens its input with a Gaussian blur.
  </Description>
  <Tags><Tag>_blend</Tag><Tag>soft</Tag></Tags>
  <Inputs Preferred="Input">
    <Input Name="Input" Type="color" Tags=""/>
    <Input Name="Mask" Type="float" Tags="a,,b"/>
  </Inputs>
  <Outputs Preferred="Output"><Output Name="Output" Type="color"/><Output Name="Alpha" Type="float"/></Outputs>
  <Attributes>
    <Attribute Name="Radius" PrettyName="Blur Radius" Type="float" Default="2" Visible="true"/>
    <Attribute Name="Hidden" Type="int" Default="7" Visible="false"/>
  </Attributes>
  <Contexts><Context Type="NodeGraphView" ShapeType="0"><Inputs><Input Name="Input"><Pos>0,-60</Pos></Input></Inputs></Context></Contexts>
</NodeType>
)";

QString minimal(const QString &pathKey, const QString &uuid = QString(),
                const QString &body = QString())
{
    return QStringLiteral("<NodeType PathKey=\"%1\" VersionUuid=\"%2\">%3</NodeType>")
        .arg(pathKey, uuid, body);
}

// The attributes of the first "Context" of a description.
QXmlStreamAttributes firstContext(const QString &source)
{
    QXmlStreamReader reader(source);
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement &&
            reader.name() == QLatin1String("Context"))
            return reader.attributes();
    }
    return {};
}

// Name to tags of the "Input" (or "Output") elements inside the Contexts section.
QMap<QString, QString> contextPorts(const QString &source, const QString &element)
{
    QMap<QString, QString> ports;
    QXmlStreamReader reader(source);
    bool inContexts = false;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement && reader.name() == QLatin1String("Contexts"))
            inContexts = true;
        else if (token == QXmlStreamReader::EndElement &&
                 reader.name() == QLatin1String("Contexts"))
            inContexts = false;
        else if (token == QXmlStreamReader::StartElement && inContexts && reader.name() == element)
            ports.insert(reader.attributes().value(QLatin1String("Name")).toString(),
                         reader.attributes().value(QLatin1String("Tags")).toString());
    }
    return ports;
}

QStringList shippedFiles()
{
    QStringList files;
    QDirIterator it(OssResourceInfo::instance()->nodeTypePath(), {QStringLiteral("*.xml")},
                    QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        files.append(it.next());
    return files;
}

} // namespace

class tst_NodeTypeCatalogue : public QObject
{
    Q_OBJECT

private:
    QString writeFile(const QString &relativePath, const QByteArray &bytes)
    {
        const QString path = m_env.scratchDirectory() + QLatin1Char('/') + relativePath;
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            qFatal("cannot write %s", qPrintable(path));
        file.write(bytes);
        return path;
    }

    OssTestEnvironment m_env;
    OssSnNodeTypeCatalogue m_shipped;

private slots:
    void initTestCase()
    {
        QStringList errors;
        const int loaded =
            m_shipped.loadDirectory(OssResourceInfo::instance()->nodeTypePath(), &errors);
        QCOMPARE(errors, QStringList());
        QCOMPARE(loaded, shippedFiles().size());
    }

    void everyShippedDescriptionLoads()
    {
        QVERIFY2(m_shipped.count() >= 55, qPrintable(QString::number(m_shipped.count())));
        QCOMPARE(m_shipped.nodePathKeys().size(), m_shipped.count());
    }

    void instanceLoadsTheNodeTypeFolder()
    {
        OssSnNodeTypeCatalogue *catalogue = OssSnNodeTypeCatalogue::instance();
        QCOMPARE(catalogue, OssSnNodeTypeCatalogue::instance());
        QCOMPARE(catalogue->nodePathKeys(), m_shipped.nodePathKeys());
    }

    void requiredKinds_data()
    {
        QTest::addColumn<QString>("pathKey");
        QTest::addColumn<QString>("nodeClass");
        QTest::addColumn<QStringList>("tags");
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QStringList>("attributes");
        // Attribute name=value pairs the "Context" element must have.
        QTest::addColumn<QStringList>("context");

        const QString base = QStringLiteral("OssSnBaseNode");
        const QString groupContext = QStringLiteral("Class=OssSnGroupNodeGraphViewContext");
        QTest::newRow("backdrop") << "Misc/Backdrop"
                                  << "OssSnUINode" << QStringList() << QStringList()
                                  << QStringList()
                                  << QStringList{"Type=UINodeGraphView", "GuiNodeClass=Backdrop"};
        QTest::newRow("sticky note")
            << "Misc/Sticky Note"
            << "OssSnUINode" << QStringList() << QStringList() << QStringList()
            << QStringList{"Type=UINodeGraphView", "GuiNodeClass=StickyNote"};
        QTest::newRow("dot") << "Misc/Dot"
                             << "OssSnUINode" << QStringList{"_dot"} << QStringList()
                             << QStringList()
                             << QStringList{"Type=UINodeGraphView", "GuiNodeClass=Dot"};
        QTest::newRow("viewer") << "Misc/Viewer"
                                << "OssSnViewerNode" << QStringList{"_viewer"}
                                << QStringList{"0", "1", "2", "3", "4",     "5",
                                               "6", "7", "8", "9", "ToView"}
                                << QStringList() << QStringList{"Type=NodeGraphView"};
        QTest::newRow("merge") << "Layer/Merge" << base << QStringList{"_blend"}
                               << QStringList{"Base", "Over", "Mask"}
                               << QStringList{"BlendColorSpaceEnabled"} << QStringList();
        QTest::newRow("bake point") << "Misc/Bake Point"
                                    << "OssSnBakePointNode" << QStringList() << QStringList()
                                    << QStringList{"limitBakeBackground"}
                                    << QStringList{"Class=OssSnBakePointNodeGraphViewContext"};
        QTest::newRow("channel input") << "Misc/Channel Input"
                                       << "OssSnChannelInputNode" << QStringList() << QStringList()
                                       << QStringList() << QStringList();
        QTest::newRow("image set") << "Misc/Image Set"
                                   << "OssSnImageSetNode" << QStringList() << QStringList()
                                   << QStringList() << QStringList();
        QTest::newRow("geo-channel")
            << "Misc/Geo Channel"
            << "OssSnGeoChannelNode" << QStringList() << QStringList() << QStringList()
            << QStringList{"Class=OssSnGeoChannelNodeGraphViewContext"};
        QTest::newRow("teleport broadcast")
            << "Teleport Broadcast/Broadcast"
            << "OssSnBroadcastTeleportNode" << QStringList() << QStringList()
            << QStringList{"ChannelName"}
            << QStringList{"Class=OssSnBaseTeleportNodeGraphViewContext"};
        QTest::newRow("teleport receiver")
            << "Teleport Receiver/Receiver"
            << "OssSnReceiverTeleportNode" << QStringList() << QStringList()
            << QStringList{"ChannelName"}
            << QStringList{"Class=OssSnBaseTeleportNodeGraphViewContext"};
        QTest::newRow("group") << "Misc/Group"
                               << "OssSnGroupNode" << QStringList{"_group"} << QStringList()
                               << QStringList() << QStringList{groupContext, "ShapeType=4"};
        QTest::newRow("multi-channel group")
            << "Misc/Multi Channel Group"
            << "OssSnMultiChannelGroupNode" << QStringList() << QStringList() << QStringList()
            << QStringList{groupContext, "ShapeType=7"};
        QTest::newRow("multi-channel merge")
            << "_System/MultiChannelMerge"
            << "OssSnMultiChannelMergeNode" << QStringList() << QStringList{"Base", "Over", "Mask"}
            << QStringList() << QStringList{groupContext, "ShapeType=7"};
        QTest::newRow("multi-channel bake point")
            << "_System/MultiChannelBakePoint"
            << "OssSnMultiChannelBakePointNode" << QStringList() << QStringList()
            << QStringList{"_reconfigureBakepoints"} << QStringList{groupContext, "ShapeType=7"};
        QTest::newRow("multi-channel bottom transparency")
            << "_System/MultiChannelBottomTransparency"
            << "OssSnMultiChannelBottomTransparencyNode" << QStringList{"_bottomTransparency"}
            << QStringList() << QStringList() << QStringList{groupContext, "ShapeType=7"};
        QTest::newRow("material") << "_System/Material"
                                  << "OssSnMaterialNode" << QStringList{"_shader"} << QStringList()
                                  << QStringList() << QStringList{groupContext, "ShapeType=3"};
        QTest::newRow("custom procedural") << "Misc/Custom Procedural"
                                           << "OssSnCustomProceduralNode" << QStringList()
                                           << QStringList() << QStringList() << QStringList();
        QTest::newRow("shader input")
            << "_System/Shader Input" << base << QStringList{"_shaderInput"} << QStringList()
            << QStringList() << QStringList();
        QTest::newRow("group input") << "_System/Group Input" << base << QStringList{"_input"}
                                     << QStringList() << QStringList() << QStringList();
        QTest::newRow("group output") << "_System/Group Output" << base << QStringList{"_output"}
                                      << QStringList() << QStringList() << QStringList();
        QTest::newRow("graph layer input")
            << "_System/Graph Layer Input" << base << QStringList{"_GraphLayerInput"}
            << QStringList() << QStringList() << QStringList();
        QTest::newRow("current-material proxy")
            << "_System/Current Material" << base << QStringList{"_currentMaterialProxy"}
            << QStringList() << QStringList() << QStringList();
        QTest::newRow("layer shader") << "Shaders/Surface"
                                      << "OssSnLayerShaderNode" << QStringList{"_shader"}
                                      << QStringList() << QStringList{"name"} << QStringList();
        QTest::newRow("tiled") << "Procedural/Pattern/Tiled" << base << QStringList()
                               << QStringList() << QStringList{"TileImage"} << QStringList();
        QTest::newRow("tri-planar")
            << "Environment/Tri Planar Projection" << base << QStringList() << QStringList()
            << QStringList{"frontImage", "topImage", "rightImage"} << QStringList();
        QTest::newRow("set unlit") << "Misc/Set Unlit" << base << QStringList() << QStringList()
                                   << QStringList() << QStringList();
        QTest::newRow("set vector") << "Misc/Set Vector" << base << QStringList() << QStringList()
                                    << QStringList() << QStringList();
    }

    void requiredKinds()
    {
        QFETCH(QString, pathKey);
        QFETCH(QString, nodeClass);
        QFETCH(QStringList, tags);
        QFETCH(QStringList, inputs);
        QFETCH(QStringList, attributes);
        QFETCH(QStringList, context);
        const OssSnNodeType *type = m_shipped.type(pathKey);
        QVERIFY2(type, qPrintable(pathKey));
        QCOMPARE(type->nodeClass, nodeClass);
        for (const QString &tag : qAsConst(tags))
            QVERIFY2(type->hasTag(tag), qPrintable(tag));
        for (const QString &input : qAsConst(inputs))
            QVERIFY2(type->input(input), qPrintable(input));
        for (const QString &attribute : qAsConst(attributes))
            QVERIFY2(type->attribute(attribute), qPrintable(attribute));
        const QXmlStreamAttributes contextAttributes = firstContext(type->source);
        for (const QString &pair : qAsConst(context)) {
            const QString name = pair.section(QLatin1Char('='), 0, 0);
            QCOMPARE(contextAttributes.value(name).toString(), pair.section(QLatin1Char('='), 1));
        }
    }

    void namedValuesOfShippedTypes()
    {
        const OssSnNodeType *merge = m_shipped.type(QStringLiteral("Layer/Merge"));
        QVERIFY(merge);
        const OssSnNodeTypeAttribute *blend =
            merge->attribute(QStringLiteral("BlendColorSpaceEnabled"));
        QCOMPARE(blend->type, QStringLiteral("enum"));
        QCOMPARE(blend->defaultValue.toString(), QStringLiteral("0:Disabled|Enabled"));
        QCOMPARE(merge->input(QStringLiteral("Mask"))->type, QStringLiteral("float"));

        QCOMPARE(m_shipped.type(QStringLiteral("Procedural/Pattern/Tiled"))
                     ->attribute(QStringLiteral("TileImage"))
                     ->type,
                 QStringLiteral("imageList"));
        const OssSnNodeType *triPlanar =
            m_shipped.type(QStringLiteral("Environment/Tri Planar Projection"));
        for (const char *name : {"frontImage", "topImage", "rightImage"}) {
            const OssSnNodeTypeAttribute *image = triPlanar->attribute(QLatin1String(name));
            QCOMPARE(image->type, QStringLiteral("imageList"));
            QCOMPARE(image->defaultValue.toStringList(), QStringList());
        }
        QVERIFY(m_shipped.type(QStringLiteral("Misc/Viewer"))
                    ->input(QStringLiteral("ToView"))
                    ->hasTag(QStringLiteral("_hidden")));
        QCOMPARE(m_shipped.versionUuidForPathKey(QStringLiteral("Misc/Set Unlit")),
                 QStringLiteral("OSS_Misc_Set_Unlit"));
        QCOMPARE(m_shipped.versionUuidForPathKey(QStringLiteral("Misc/Set Vector")),
                 QStringLiteral("OSS_Misc_Set_Vector"));
    }

    void everyNodeClassIsShipped()
    {
        QSet<QString> used;
        for (const QString &key : m_shipped.nodePathKeys())
            used.insert(m_shipped.type(key)->nodeClass);
        for (const QString &nodeClass : OssSnNodeTypeCatalogue::knownNodeClasses())
            QVERIFY2(used.contains(nodeClass), qPrintable(nodeClass));
    }

    void shippedTypesAreConsistent()
    {
        QSet<QString> uuids;
        for (const QString &key : m_shipped.nodePathKeys()) {
            const OssSnNodeType *type = m_shipped.type(key);
            const QByteArray where = key.toUtf8();
            QVERIFY2(type->menuPath == key, where.constData());
            QVERIFY2(!type->description.isEmpty(), where.constData());
            QVERIFY2(type->versionUuid.startsWith(QLatin1String("OSS_")), where.constData());
            QVERIFY2(!uuids.contains(type->versionUuid), where.constData());
            uuids.insert(type->versionUuid);
            QVERIFY2(QDate::fromString(type->date, Qt::ISODate).isValid(), where.constData());

            // The node-graph section names only ports the type has, with the same input tags.
            const QXmlStreamAttributes context = firstContext(type->source);
            QVERIFY2(context.hasAttribute(QLatin1String("Type")), where.constData());
            const auto inputs = contextPorts(type->source, QStringLiteral("Input"));
            for (auto it = inputs.cbegin(); it != inputs.cend(); ++it) {
                const OssSnNodeTypePort *port = type->input(it.key());
                QVERIFY2(port, qPrintable(key + QLatin1Char(' ') + it.key()));
                QCOMPARE(it.value(), port->tags.join(QLatin1Char(',')));
            }
            const auto outputs = contextPorts(type->source, QStringLiteral("Output"));
            for (auto it = outputs.cbegin(); it != outputs.cend(); ++it)
                QVERIFY2(type->output(it.key()), qPrintable(key + QLatin1Char(' ') + it.key()));
            const QString pixmap = context.value(QLatin1String("Pixmap")).toString();
            if (!pixmap.isEmpty())
                QVERIFY2(QFile::exists(OssResourceInfo::instance()->iconPath() + QLatin1Char('/') +
                                       pixmap),
                         qPrintable(pixmap));
        }
    }

    void hiddenAndFilteredPrefixes_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::newRow("hidden folder") << "_";
        QTest::newRow("shader network") << "Shader Network/";
        QTest::newRow("shaders") << "Shaders/";
        QTest::newRow("lighting") << "Lighting/";
    }

    void hiddenAndFilteredPrefixes()
    {
        QFETCH(QString, prefix);
        auto hasPrefix = [&](const QStringList &keys) {
            return std::any_of(keys.cbegin(), keys.cend(),
                               [&](const QString &key) { return key.startsWith(prefix); });
        };
        QVERIFY(hasPrefix(m_shipped.nodePathKeys()));
        QVERIFY(hasPrefix(m_shipped.nodeGraphPathKeys()));
    }

    void typesOutsideNodeGraphs()
    {
        const QStringList all = m_shipped.nodePathKeys();
        const QStringList graph = m_shipped.nodeGraphPathKeys();
        QVERIFY(graph.size() < all.size());
        for (const QString &key : all)
            QCOMPARE(graph.contains(key), m_shipped.type(key)->nodeGraph);
        // Same relative order as the full list.
        QStringList filtered = all;
        filtered.erase(std::remove_if(filtered.begin(), filtered.end(),
                                      [&](const QString &key) { return !graph.contains(key); }),
                       filtered.end());
        QCOMPARE(graph, filtered);
    }

    void parsesEveryField()
    {
        OssSnNodeType type;
        QString error;
        QVERIFY2(OssSnNodeTypeCatalogue::parse(QString::fromUtf8(completeDescription),
                                               QStringLiteral("blur.xml"), &type, &error),
                 qPrintable(error));
        QCOMPARE(type.pathKey, QStringLiteral("Filter/Blur"));
        QCOMPARE(type.menuPath, QStringLiteral("Filter/Blur"));
        QCOMPARE(type.nodeClass, QStringLiteral("OssSnBaseNode"));
        QCOMPARE(type.versionUuid, QStringLiteral("OSS_Filter_Blur"));
        QCOMPARE(type.date, QStringLiteral("2026-03-14"));
        QCOMPARE(type.filePath, QStringLiteral("blur.xml"));
        QCOMPARE(type.description, QStringLiteral("Softens its input with a Gaussian blur."));
        QCOMPARE(type.source, QString::fromUtf8(completeDescription));
        QVERIFY(type.nodeGraph);
        QCOMPARE(type.tags, QStringList({"_blend", "soft"}));
        QCOMPARE(type.inputNames(), QStringList({"Input", "Mask"}));
        QCOMPARE(type.inputs[0].type, QStringLiteral("color"));
        QCOMPARE(type.inputs[0].tags, QStringList());
        QCOMPARE(type.inputs[1].tags, QStringList({"a", "", "b"}));
        QCOMPARE(type.preferredInput, QStringLiteral("Input"));
        QCOMPARE(type.outputNames(), QStringList({"Output", "Alpha"}));
        QCOMPARE(type.outputs[1].type, QStringLiteral("float"));
        QCOMPARE(type.preferredOutput, QStringLiteral("Output"));
        QCOMPARE(type.attributeNames(), QStringList({"Radius", "Hidden"}));
        QCOMPARE(type.attributes[0].prettyName, QStringLiteral("Blur Radius"));
        QCOMPARE(type.attributes[0].defaultValue, QVariant(2.0));
        QVERIFY(type.attributes[0].visible);
        QCOMPARE(type.attributes[1].prettyName, QStringLiteral("Hidden"));
        QCOMPARE(type.attributes[1].defaultValue, QVariant(7));
        QVERIFY(!type.attributes[1].visible);
    }

    void defaultsOfAbsentAttributes()
    {
        OssSnNodeType type;
        QString error;
        QVERIFY2(OssSnNodeTypeCatalogue::parse(
                     QStringLiteral("<NodeType PathKey=\"Misc/Plain\"><Inputs><Input "
                                    "Name=\"In\"/></Inputs></NodeType>"),
                     QStringLiteral("plain.xml"), &type, &error),
                 qPrintable(error));
        QCOMPARE(type.menuPath, QStringLiteral("Misc/Plain"));
        QCOMPARE(type.nodeClass, QStringLiteral("OssSnBaseNode"));
        QVERIFY(type.nodeGraph);
        QCOMPARE(type.inputs.value(0).type, QStringLiteral("any"));
        QVERIFY(type.preferredInput.isEmpty());

        QVERIFY(OssSnNodeTypeCatalogue::parse(
            QStringLiteral("<NodeType PathKey=\"Misc/Plain\" MenuPath=\"Filter//Plain/\" "
                           "NodeGraph=\"false\"/>"),
            QStringLiteral("plain.xml"), &type, &error));
        QCOMPARE(type.menuPath, QStringLiteral("Filter//Plain/"));
        QVERIFY(!type.nodeGraph);
    }

    void attributeValues_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("value");
        QTest::newRow("bool") << "bool"
                              << "true" << QVariant(true);
        QTest::newRow("int") << "int"
                             << "-12" << QVariant(-12);
        QTest::newRow("float") << "float"
                               << "0.25" << QVariant(0.25);
        QTest::newRow("string") << "string"
                                << "a b" << QVariant(QStringLiteral("a b"));
        QTest::newRow("color") << "color"
                               << "1 0.5 0 1" << QVariant::fromValue(OssColor(1.0, 0.5, 0.0, 1.0));
        QTest::newRow("enum") << "enum"
                              << "1:Disabled|Enabled"
                              << QVariant(QStringLiteral("1:Disabled|Enabled"));
        QTest::newRow("image list") << "imageList"
                                    << "img1|img2" << QVariant(QStringList({"img1", "img2"}));
        QTest::newRow("empty image list") << "imageList"
                                          << "" << QVariant(QStringList());
        QTest::newRow("vector") << "vector"
                                << "0 1.5 -2" << QVariant(QStringLiteral("0 1.5 -2"));
        QTest::newRow("file") << "file"
                              << "/tmp/a b.txt" << QVariant(QStringLiteral("/tmp/a b.txt"));
    }

    void numberRanges_data()
    {
        QTest::addColumn<QString>("bounds");
        QTest::addColumn<QVariant>("minimum");
        QTest::addColumn<QVariant>("maximum");
        QTest::newRow("none") << "" << QVariant() << QVariant();
        QTest::newRow("both") << "Min=\"-1\" Max=\"2.5\"" << QVariant(-1.0) << QVariant(2.5);
        QTest::newRow("minimum only") << "Min=\"0\"" << QVariant(0.0) << QVariant();
        QTest::newRow("maximum only") << "Max=\"10\"" << QVariant() << QVariant(10.0);
    }

    void numberRanges()
    {
        QFETCH(QString, bounds);
        QFETCH(QVariant, minimum);
        QFETCH(QVariant, maximum);
        OssSnNodeType parsed;
        QString error;
        QVERIFY2(OssSnNodeTypeCatalogue::parse(
                     minimal(QStringLiteral("Misc/A"), QString(),
                             QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"float\" "
                                            "Default=\"0.5\" %1/></Attributes>")
                                 .arg(bounds)),
                     QStringLiteral("a.xml"), &parsed, &error),
                 qPrintable(error));
        QCOMPARE(parsed.attributes.value(0).minimum, minimum);
        QCOMPARE(parsed.attributes.value(0).maximum, maximum);
    }

    void shippedRangesHoldTheirDefaults()
    {
        const OssSnNodeType *mix = m_shipped.type(QStringLiteral("Math/Mix"));
        QVERIFY(mix);
        QCOMPARE(mix->attribute(QStringLiteral("Amount"))->minimum, QVariant(0.0));
        QCOMPARE(mix->attribute(QStringLiteral("Amount"))->maximum, QVariant(1.0));
        for (const QString &key : m_shipped.nodePathKeys()) {
            for (const OssSnNodeTypeAttribute &attribute : m_shipped.type(key)->attributes) {
                const double value = attribute.defaultValue.toDouble();
                if (attribute.minimum.isValid())
                    QVERIFY2(value >= attribute.minimum.toDouble(), qPrintable(key));
                if (attribute.maximum.isValid())
                    QVERIFY2(value <= attribute.maximum.toDouble(), qPrintable(key));
            }
        }
    }

    void attributeValues()
    {
        QFETCH(QString, type);
        QFETCH(QString, text);
        QFETCH(QVariant, value);
        OssSnNodeType parsed;
        QString error;
        QVERIFY2(OssSnNodeTypeCatalogue::parse(
                     minimal(QStringLiteral("Misc/A"), QString(),
                             QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"%1\" "
                                            "Default=\"%2\"/></Attributes>")
                                 .arg(type, text)),
                     QStringLiteral("a.xml"), &parsed, &error),
                 qPrintable(error));
        QCOMPARE(parsed.attributes.value(0).defaultValue.userType(), value.userType());
        // QVariant compares values of custom types by address, so colours are compared as such.
        if (value.userType() == qMetaTypeId<OssColor>())
            QCOMPARE(parsed.attributes.value(0).defaultValue.value<OssColor>(),
                     value.value<OssColor>());
        else
            QCOMPARE(parsed.attributes.value(0).defaultValue, value);
    }

    void badDescriptions_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("problem");

        const QString good = QString::fromUtf8(completeDescription);
        auto attribute = [](const QString &type, const QString &value) {
            return minimal(QStringLiteral("Bad/Attr"), QString(),
                           QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"%1\" "
                                          "Default=\"%2\"/></Attributes>")
                               .arg(type, value));
        };
        QTest::newRow("empty") << ""
                               << "the file is empty";
        QTest::newRow("not XML") << "just some words"
                                 << "line 1, column";
        QTest::newRow("truncated") << good.left(good.size() / 2) << "line ";
        QTest::newRow("extra element after the end")
            << minimal(QStringLiteral("Bad/Extra")) + QStringLiteral("<More/>") << "line 1";
        QTest::newRow("wrong document element") << "<Node PathKey=\"Bad/Root\"/>"
                                                << "the document element is \"Node\"";
        QTest::newRow("missing path key") << "<NodeType Class=\"OssSnBaseNode\"/>"
                                          << "no PathKey";
        QTest::newRow("empty path key") << "<NodeType PathKey=\"\"/>"
                                        << "no PathKey";
        QTest::newRow("unknown class") << "<NodeType PathKey=\"Bad/Class\" Class=\"OssSnWidget\"/>"
                                       << "unknown node class \"OssSnWidget\"";
        QTest::newRow("bad node-graph flag")
            << "<NodeType PathKey=\"Bad/Flag\" NodeGraph=\"perhaps\"/>"
            << "NodeGraph is";
        QTest::newRow("bad date") << "<NodeType PathKey=\"Bad/Date\" Date=\"2026-13-40\"/>"
                                  << "Date \"2026-13-40\"";
        QTest::newRow("duplicate input")
            << minimal(QStringLiteral("Bad/In"), QString(),
                       QStringLiteral("<Inputs><Input Name=\"A\"/><Input Name=\"A\"/></Inputs>"))
            << "input \"A\" is declared twice";
        QTest::newRow("duplicate output")
            << minimal(QStringLiteral("Bad/Out"), QString(),
                       QStringLiteral("<Outputs><Output Name=\"O\"/><Output "
                                      "Name=\"O\"/></Outputs>"))
            << "output \"O\" is declared twice";
        QTest::newRow("duplicate attribute")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"R\" Type=\"int\"/><Attribute "
                                      "Name=\"R\" Type=\"float\"/></Attributes>"))
            << "attribute \"R\" is declared twice";
        QTest::newRow("input without name")
            << minimal(QStringLiteral("Bad/In"), QString(),
                       QStringLiteral("<Inputs><Input Type=\"color\"/></Inputs>"))
            << "input without a Name";
        QTest::newRow("unknown port type")
            << minimal(QStringLiteral("Bad/In"), QString(),
                       QStringLiteral("<Inputs><Input Name=\"A\" Type=\"texture\"/></Inputs>"))
            << "unknown type \"texture\"";
        QTest::newRow("preferred input missing")
            << minimal(QStringLiteral("Bad/Pref"), QString(),
                       QStringLiteral("<Inputs Preferred=\"Base\"><Input Name=\"A\"/></Inputs>"))
            << "preferred input \"Base\"";
        QTest::newRow("preferred output missing")
            << minimal(QStringLiteral("Bad/Pref"), QString(),
                       QStringLiteral("<Outputs Preferred=\"Out\"><Output "
                                      "Name=\"Output\"/></Outputs>"))
            << "preferred output \"Out\"";
        QTest::newRow("stray element in inputs")
            << minimal(QStringLiteral("Bad/In"), QString(),
                       QStringLiteral("<Inputs><Output Name=\"A\"/></Inputs>"))
            << "unexpected element \"Output\"";
        QTest::newRow("two input sections")
            << minimal(QStringLiteral("Bad/In"), QString(), QStringLiteral("<Inputs/><Inputs/>"))
            << "more than one \"Inputs\" section";
        QTest::newRow("empty tag")
            << minimal(QStringLiteral("Bad/Tag"), QString(), QStringLiteral("<Tags><Tag/></Tags>"))
            << "empty tag";
        QTest::newRow("unknown attribute type")
            << attribute(QStringLiteral("matrix"), QStringLiteral("1"))
            << "unknown type \"matrix\"";
        QTest::newRow("attribute without type")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"V\"/></Attributes>"))
            << "unknown type \"\"";
        QTest::newRow("range on a string")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"string\" "
                                      "Min=\"1\"/></Attributes>"))
            << "string attribute \"V\" cannot have a Min";
        QTest::newRow("bad maximum")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"int\" "
                                      "Max=\"lots\"/></Attributes>"))
            << "the Max \"lots\" of int attribute \"V\" is not an integer";
        QTest::newRow("minimum above maximum")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"float\" "
                                      "Min=\"2\" Max=\"1\"/></Attributes>"))
            << "attribute \"V\" has a Min above its Max";
        QTest::newRow("int default")
            << attribute(QStringLiteral("int"), QStringLiteral("1.5")) << "is not an integer";
        QTest::newRow("float default")
            << attribute(QStringLiteral("float"), QStringLiteral("x")) << "is not a number";
        QTest::newRow("infinite float")
            << attribute(QStringLiteral("float"), QStringLiteral("inf")) << "is not a number";
        QTest::newRow("bool default") << attribute(QStringLiteral("bool"), QStringLiteral("yes"))
                                      << "is not \"true\" or \"false\"";
        QTest::newRow("color default")
            << attribute(QStringLiteral("color"), QStringLiteral("bright")) << "is not a colour";
        QTest::newRow("enum index out of range")
            << attribute(QStringLiteral("enum"), QStringLiteral("2:Off|On")) << "enumeration";
        QTest::newRow("enum without keys")
            << attribute(QStringLiteral("enum"), QStringLiteral("Off")) << "enumeration";
        QTest::newRow("enum without default")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"E\" "
                                      "Type=\"enum\"/></Attributes>"))
            << "has no Default";
        QTest::newRow("vector default")
            << attribute(QStringLiteral("vector"), QStringLiteral("1 2")) << "three numbers";
        QTest::newRow("bad visibility")
            << minimal(QStringLiteral("Bad/Attr"), QString(),
                       QStringLiteral("<Attributes><Attribute Name=\"V\" Type=\"int\" "
                                      "Visible=\"hidden\"/></Attributes>"))
            << "Visible is \"hidden\"";
        QTest::newRow("malformed contexts")
            << minimal(QStringLiteral("Bad/Ctx"), QString(),
                       QStringLiteral("<Contexts><Context Type=\"NodeGraphView\"></Contexts>"))
            << "line 1, column";
    }

    // A bad file is refused with its name and problem and changes nothing, whether it is added
    // alone or met while loading a folder.
    void badDescriptions()
    {
        QFETCH(QString, text);
        QFETCH(QString, problem);

        OssSnNodeType untouched;
        untouched.pathKey = QStringLiteral("untouched");
        QString error;
        QVERIFY(
            !OssSnNodeTypeCatalogue::parse(text, QStringLiteral("bad.xml"), &untouched, &error));
        QCOMPARE(untouched.pathKey, QStringLiteral("untouched"));
        QVERIFY2(error.startsWith(QLatin1String("bad.xml: ")), qPrintable(error));
        QVERIFY2(error.contains(problem), qPrintable(error));

        OssSnNodeTypeCatalogue catalogue;
        const QString folder = QStringLiteral("bad-%1")
                                   .arg(QTest::currentDataTag())
                                   .replace(QLatin1Char(' '), QLatin1Char('-'));
        writeFile(folder + QStringLiteral("/a.xml"),
                  minimal(QStringLiteral("Good/A"), QStringLiteral("OSS_Good_A")).toUtf8());
        const QString bad = writeFile(folder + QStringLiteral("/b.xml"), text.toUtf8());
        QSignalSpy changed(&catalogue, &OssSnNodeTypeCatalogue::registeredNodePopulationChanged);
        QStringList errors;
        QStringList logged;
        const int sink = OssDebugSinks::addSink(
            [&logged](const OssDebugLine &line) { logged.append(line.message); });
        const int loaded =
            catalogue.loadDirectory(m_env.scratchDirectory() + QLatin1Char('/') + folder, &errors);
        OssDebugSinks::removeSink(sink);
        QCOMPARE(loaded, 1);
        QCOMPARE(logged,
                 QStringList{QStringLiteral("Node type description skipped: ") + errors.value(0)});
        QCOMPARE(changed.count(), 1);
        QCOMPARE(errors.size(), 1);
        QVERIFY2(errors.first().startsWith(bad + QStringLiteral(": ")), qPrintable(errors.first()));
        QVERIFY2(errors.first().contains(problem), qPrintable(errors.first()));
        QCOMPARE(catalogue.nodePathKeys(), QStringList{"Good/A"});

        QVERIFY(!catalogue.addTypeFromFile(bad, &error));
        QCOMPARE(error, errors.first());
        QCOMPARE(changed.count(), 1);
        QCOMPARE(catalogue.nodePathKeys(), QStringList{"Good/A"});
    }

    void errorsNameTheLine()
    {
        QString error;
        QVERIFY(!OssSnNodeTypeCatalogue::parse(
            QStringLiteral("<NodeType PathKey=\"Bad/Line\">\n<Inputs>\n<Input Name=\"A\"/>\n"
                           "<Input Name=\"A\"/>\n</Inputs>\n</NodeType>"),
            QStringLiteral("line.xml"), nullptr, &error));
        QCOMPARE(error, QStringLiteral("line.xml: line 4: input \"A\" is declared twice"));
        QVERIFY(!OssSnNodeTypeCatalogue::parse(
            QStringLiteral("<NodeType PathKey=\"Bad/Line\">\n<Tags>\n</NodeType>"),
            QStringLiteral("line.xml"), nullptr, &error));
        QVERIFY2(error.startsWith(QLatin1String("line.xml: line 3, column ")), qPrintable(error));
    }

    void notUtf8IsRefused()
    {
        OssSnNodeTypeCatalogue catalogue;
        const QString path = writeFile(QStringLiteral("latin1.xml"),
                                       QByteArray("<NodeType PathKey=\"Bad/Caf\xe9\"/>"));
        QString error;
        QVERIFY(!catalogue.addTypeFromFile(path, &error));
        QCOMPARE(error, path + QStringLiteral(": the file is not UTF-8 text"));
        QVERIFY(!catalogue.addTypeFromFile(path + QStringLiteral(".missing"), &error));
        QVERIFY2(error.startsWith(path + QStringLiteral(".missing: cannot be read")),
                 qPrintable(error));
        QCOMPARE(catalogue.count(), 0);
    }

    void duplicatesAreRefused()
    {
        OssSnNodeTypeCatalogue catalogue;
        OssSnNodeType type;
        QString error;
        QVERIFY(OssSnNodeTypeCatalogue::parse(minimal("Misc/One", "OSS_Misc_One"), "one.xml", &type,
                                              &error));
        QVERIFY(catalogue.addType(type, &error));
        QSignalSpy changed(&catalogue, &OssSnNodeTypeCatalogue::registeredNodePopulationChanged);

        OssSnNodeType sameKey = type;
        sameKey.versionUuid = QStringLiteral("OSS_Other");
        QVERIFY(!catalogue.addType(sameKey, &error));
        QCOMPARE(error, QStringLiteral("one.xml: path key \"Misc/One\" is already registered"));

        OssSnNodeType sameUuid = type;
        sameUuid.pathKey = QStringLiteral("Misc/Two");
        QVERIFY(!catalogue.addType(sameUuid, &error));
        QVERIFY2(error.contains(QLatin1String("version UUID \"OSS_Misc_One\"")), qPrintable(error));

        OssSnNodeType noKey;
        QVERIFY(!catalogue.addType(noKey, &error));
        QCOMPARE(error, QStringLiteral("node type: the node type has no path key"));

        QCOMPARE(changed.count(), 0);
        QCOMPARE(catalogue.nodePathKeys(), QStringList{"Misc/One"});
        QCOMPARE(catalogue.typeForVersionUuid(QStringLiteral("OSS_Misc_One"))->pathKey,
                 QStringLiteral("Misc/One"));

        // Two files with one path key in a folder: the first in path order stays.
        writeFile(QStringLiteral("dup/a.xml"), minimal("Misc/Dup", "OSS_A").toUtf8());
        const QString second =
            writeFile(QStringLiteral("dup/b/c.xml"), minimal("Misc/Dup", "OSS_B").toUtf8());
        QStringList errors;
        QCOMPARE(
            catalogue.loadDirectory(m_env.scratchDirectory() + QStringLiteral("/dup"), &errors), 1);
        QCOMPARE(
            errors,
            QStringList{second + QStringLiteral(": path key \"Misc/Dup\" is already registered")});
        QCOMPARE(catalogue.versionUuidForPathKey(QStringLiteral("Misc/Dup")),
                 QStringLiteral("OSS_A"));
    }

    void populationSignals()
    {
        OssSnNodeTypeCatalogue catalogue;
        QSignalSpy changed(&catalogue, &OssSnNodeTypeCatalogue::registeredNodePopulationChanged);
        OssSnNodeType type;
        type.pathKey = QStringLiteral("Misc/Made");
        type.versionUuid = QStringLiteral("OSS_Misc_Made");
        QVERIFY(catalogue.addType(type));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(catalogue.nodeMenuPath(QStringLiteral("Misc/Made")), QStringLiteral("Misc/Made"));
        QVERIFY(catalogue.removeType(QStringLiteral("Misc/Made")));
        QCOMPARE(changed.count(), 2);
        QVERIFY(!catalogue.contains(QStringLiteral("Misc/Made")));
        QVERIFY(!catalogue.typeForVersionUuid(QStringLiteral("OSS_Misc_Made")));
        QVERIFY(!catalogue.removeType(QStringLiteral("Misc/Made")));
        QCOMPARE(changed.count(), 2);

        // A whole folder announces itself once.
        QCOMPARE(catalogue.loadDirectory(OssResourceInfo::instance()->nodeTypePath()),
                 m_shipped.count());
        QCOMPARE(changed.count(), 3);
        // Loading it again adds nothing and announces nothing.
        QStringList errors;
        QCOMPARE(catalogue.loadDirectory(OssResourceInfo::instance()->nodeTypePath(), &errors), 0);
        QCOMPARE(errors.size(), m_shipped.count());
        QCOMPARE(changed.count(), 3);
        catalogue.clear();
        QCOMPARE(changed.count(), 4);
        QCOMPARE(catalogue.count(), 0);
        catalogue.clear();
        QCOMPARE(changed.count(), 4);

        QCOMPARE(
            catalogue.loadDirectory(m_env.scratchDirectory() + QStringLiteral("/none"), &errors),
            0);
        QVERIFY(errors.last().endsWith(QLatin1String("/none: no such folder")));
        QCOMPARE(changed.count(), 4);
    }

    void registrationOrderFollowsSortedPaths()
    {
        writeFile(QStringLiteral("order/c.xml"), minimal("Order/C").toUtf8());
        writeFile(QStringLiteral("order/a/z.xml"), minimal("Order/Z").toUtf8());
        writeFile(QStringLiteral("order/b.xml"), minimal("Order/B").toUtf8());
        writeFile(QStringLiteral("order/b.txt"), QByteArray("not a description"));
        OssSnNodeTypeCatalogue catalogue;
        QStringList errors;
        QCOMPARE(
            catalogue.loadDirectory(m_env.scratchDirectory() + QStringLiteral("/order"), &errors),
            3);
        QCOMPARE(errors, QStringList());
        QCOMPARE(catalogue.nodePathKeys(), QStringList({"Order/Z", "Order/B", "Order/C"}));
        OssSnNodeType late;
        late.pathKey = QStringLiteral("Order/A");
        late.nodeGraph = false;
        QVERIFY(catalogue.addType(late));
        QCOMPARE(catalogue.nodePathKeys(),
                 QStringList({"Order/Z", "Order/B", "Order/C", "Order/A"}));
        QCOMPARE(catalogue.nodeGraphPathKeys(), QStringList({"Order/Z", "Order/B", "Order/C"}));
    }

    void hashFollowsTheFileText()
    {
        const QByteArray first = QByteArray(completeDescription);
        const QString path = writeFile(QStringLiteral("hash/blur.xml"), first);
        OssSnNodeTypeCatalogue catalogue;
        QVERIFY(catalogue.addTypeFromFile(path));
        const QString uuid = QStringLiteral("OSS_Filter_Blur");
        const QString hash = catalogue.hashForVersionUuid(uuid);
        QCOMPARE(hash, QString::fromLatin1(
                           QCryptographicHash::hash(first, QCryptographicHash::Sha1).toHex()));
        QCOMPARE(catalogue.type(QStringLiteral("Filter/Blur"))->filePath, path);

        // The same text gives the same hash; any change to it gives another.
        OssSnNodeType parsed;
        QVERIFY(
            OssSnNodeTypeCatalogue::parse(QString::fromUtf8(first), "other.xml", &parsed, nullptr));
        QCOMPARE(parsed.hash, hash);
        QByteArray changed = first;
        changed.replace("Gaussian", "box");
        writeFile(QStringLiteral("hash/blur.xml"), changed);
        QVERIFY(catalogue.removeType(QStringLiteral("Filter/Blur")));
        QCOMPARE(catalogue.hashForVersionUuid(uuid), QString());
        QVERIFY(catalogue.addTypeFromFile(path));
        QVERIFY(!catalogue.hashForVersionUuid(uuid).isEmpty());
        QVERIFY(catalogue.hashForVersionUuid(uuid) != hash);
    }

    void versionUuidLookUps()
    {
        const QString backdropUuid =
            m_shipped.versionUuidForPathKey(QStringLiteral("Misc/Backdrop"));
        QCOMPARE(backdropUuid, QStringLiteral("OSS_Misc_Backdrop"));
        const OssSnNodeType *backdrop = m_shipped.typeForVersionUuid(backdropUuid);
        QVERIFY(backdrop);
        QCOMPARE(backdrop->pathKey, QStringLiteral("Misc/Backdrop"));
        QCOMPARE(m_shipped.hashForVersionUuid(backdropUuid), backdrop->hash);
        QCOMPARE(backdrop->hash.size(), 40);
        QCOMPARE(m_shipped.dateForVersionUuid(backdropUuid), backdrop->date);
        QVERIFY(!backdrop->date.isEmpty());

        QCOMPARE(m_shipped.versionUuidForPathKey(QStringLiteral("No/Such")), QString());
        QCOMPARE(m_shipped.nodeMenuPath(QStringLiteral("No/Such")), QString());
        QCOMPARE(m_shipped.hashForVersionUuid(QStringLiteral("OSS_No_Such")), QString());
        QCOMPARE(m_shipped.dateForVersionUuid(QStringLiteral("OSS_No_Such")), QString());
        QVERIFY(!m_shipped.typeForVersionUuid(QString()));
        QVERIFY(!m_shipped.type(QStringLiteral("No/Such")));

        // Types without a version UUID share the empty one, which finds none of them.
        OssSnNodeTypeCatalogue catalogue;
        OssSnNodeType a;
        a.pathKey = QStringLiteral("Misc/A");
        OssSnNodeType b;
        b.pathKey = QStringLiteral("Misc/B");
        QVERIFY(catalogue.addType(a));
        QVERIFY(catalogue.addType(b));
        QCOMPARE(catalogue.hashForVersionUuid(QString()), QString());
    }
};

QTEST_GUILESS_MAIN(tst_NodeTypeCatalogue)
#include "tst_NodeTypeCatalogue.moc"
