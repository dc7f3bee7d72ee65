#include "OssSnContextDescription.h"

#include <QtTest>

namespace {

QString wrap(const QString &contexts)
{
    return QStringLiteral(
               "<NodeType PathKey=\"Filter/Blur\"><Inputs><Input Name=\"Base\"/></Inputs>"
               "<Contexts>%1</Contexts><Tail/></NodeType>")
        .arg(contexts);
}

} // namespace

class tst_ContextDescription : public QObject
{
    Q_OBJECT

private slots:
    void noContexts()
    {
        const auto description = OssSnContextDescription::read(
            QStringLiteral("<NodeType><Inputs><Input Name=\"Base\"/></Inputs></NodeType>"));
        QVERIFY(description.contexts.isEmpty());
        QVERIFY(!description.truncated);
    }

    void attributes()
    {
        const auto description = OssSnContextDescription::read(wrap(QStringLiteral(
            "<Context Type=\"NodeGraphView\" Class=\"OssSnBakePointNodeGraphViewContext\" "
            "ShapeType=\"7\" NodeColorTop=\"1 0 0 1\" NodeColorBottom=\"\" "
            "Pixmap=\"nodes/bake.png\" PixmapOffset=\"4,-2\"/>")));
        QCOMPARE(description.contexts.size(), 1);
        const OssSnContextDescription::Context &context = description.contexts.first();
        QCOMPARE(context.type, QStringLiteral("NodeGraphView"));
        QCOMPARE(context.className.value(), QStringLiteral("OssSnBakePointNodeGraphViewContext"));
        QVERIFY(!context.guiNodeClass.has_value());
        QCOMPARE(context.shapeType.value(), 7);
        QCOMPARE(context.nodeColorTop.value(), QStringLiteral("1 0 0 1"));
        QCOMPARE(context.nodeColorBottom.value(), QString());
        QCOMPARE(context.pixmapPath.value(), QStringLiteral("nodes/bake.png"));
        QCOMPARE(context.pixmapOffset.value(), QPoint(4, -2));
    }

    void pixmapOffset_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("set");
        QTest::addColumn<QPoint>("offset");
        QTest::newRow("two numbers") << "4,-2" << true << QPoint(4, -2);
        QTest::newRow("one number") << "4" << false << QPoint();
        QTest::newRow("three numbers") << "4,2,1" << false << QPoint();
        QTest::newRow("not numbers") << "x,y" << true << QPoint(0, 0);
        QTest::newRow("empty part") << ",5" << true << QPoint(0, 5);
    }

    void pixmapOffset()
    {
        QFETCH(QString, text);
        QFETCH(bool, set);
        QFETCH(QPoint, offset);
        const auto description = OssSnContextDescription::read(wrap(
            QStringLiteral("<Context Type=\"NodeGraphView\" PixmapOffset=\"%1\"/>").arg(text)));
        QCOMPARE(description.contexts.value(0).pixmapOffset.has_value(), set);
        if (set)
            QCOMPARE(description.contexts.value(0).pixmapOffset.value(), offset);
    }

    void typesThatAreUsed_data()
    {
        QTest::addColumn<QString>("element");
        QTest::addColumn<int>("used");
        QTest::newRow("node graph view") << "<Context Type=\"NodeGraphView\"/>" << 1;
        QTest::newRow("ui node graph view") << "<Context Type=\"UINodeGraphView\"/>" << 1;
        QTest::newRow("other type") << "<Context Type=\"Viewport\" ShapeType=\"3\"/>" << 0;
        QTest::newRow("no type") << "<Context ShapeType=\"3\"/>" << 0;
        QTest::newRow("type is case-sensitive") << "<Context Type=\"nodegraphview\"/>" << 0;
        QTest::newRow("other element") << "<Kontext Type=\"NodeGraphView\"/>" << 0;
    }

    void typesThatAreUsed()
    {
        QFETCH(QString, element);
        QFETCH(int, used);
        QCOMPARE(OssSnContextDescription::read(wrap(element)).contexts.size(), used);
    }

    void portsAndTags()
    {
        const auto description = OssSnContextDescription::read(wrap(QStringLiteral(
            "<Context Type=\"UINodeGraphView\" GuiNodeClass=\"Backdrop\">"
            "<Inputs>"
            "<Input Name=\"Base\" Tags=\"a,,b\"><Pos OriginOffset=\"10\">32,-4</Pos></Input>"
            "<Input Tags=\"lost\"><Pos>1,1</Pos></Input>"
            "<Input Name=\"Mask\"><Pos OriginOffset=\"3\">1,2</Pos><Pos>5,6</Pos></Input>"
            "<Input Name=\"Bad\"><Pos>1,2,3</Pos></Input>"
            "<Note/>"
            "</Inputs>"
            "<Outputs><Output Name=\"out\" Tags=\"ignored\"><Pos "
            "OriginOffset=\"-8\">0,40</Pos></Output></Outputs>"
            "<Other><Input Name=\"NotHere\"/></Other>"
            "</Context>")));
        QCOMPARE(description.contexts.size(), 1);
        const OssSnContextDescription::Context &context = description.contexts.first();
        QCOMPARE(context.guiNodeClass.value(), QStringLiteral("Backdrop"));
        QCOMPARE(context.inputs.size(), 3);
        QCOMPARE(context.inputs[0].name, QStringLiteral("Base"));
        QCOMPARE(context.inputs[0].tags.value(),
                 QStringList({QStringLiteral("a"), QString(), QStringLiteral("b")}));
        QCOMPARE(context.inputs[0].initialPosition.value(),
                 qMakePair(QPoint(10, 0), QPoint(32, -4)));
        // A later Pos replaces the earlier one, its absent OriginOffset included.
        QCOMPARE(context.inputs[1].initialPosition.value(), qMakePair(QPoint(0, 0), QPoint(5, 6)));
        QVERIFY(!context.inputs[1].tags.has_value());
        QVERIFY(!context.inputs[2].initialPosition.has_value());
        QCOMPARE(context.outputs.size(), 1);
        QVERIFY(!context.outputs[0].tags.has_value());
        QCOMPARE(context.outputs[0].initialPosition.value(),
                 qMakePair(QPoint(-8, 0), QPoint(0, 40)));
    }

    void contextsAreKeptInOrder()
    {
        const auto description = OssSnContextDescription::read(wrap(QStringLiteral(
            "<Context Type=\"NodeGraphView\" ShapeType=\"3\"/>"
            "<Context Type=\"NodeGraphView\" Class=\"OssSnGroupNodeGraphViewContext\"/>")));
        QCOMPARE(description.contexts.size(), 2);
        QCOMPARE(description.contexts[0].shapeType.value(), 3);
        QVERIFY(!description.contexts[1].shapeType.has_value());
    }

    void malformedInputKeepsWhatWasRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("contexts");
        QTest::addColumn<int>("inputs");
        QTest::addColumn<bool>("lastInputPositioned");

        QTest::newRow("unclosed pos")
            << "<N><Contexts><Context Type=\"NodeGraphView\" ShapeType=\"4\"><Inputs>"
               "<Input Name=\"A\"><Pos>1,2</Pos></Input><Input Name=\"B\" Tags=\"t\"><Pos>3,4"
            << 1 << 2 << false;
        QTest::newRow("mismatched end tag")
            << "<N><Contexts><Context Type=\"NodeGraphView\"><Inputs><Input Name=\"A\">"
               "<Pos>1,2</Pos></Input></Outputs></Context></Contexts></N>"
            << 1 << 1 << true;
        QTest::newRow("garbage after a context")
            << "<N><Contexts><Context Type=\"NodeGraphView\"/><<<</Contexts></N>" << 1 << 0
            << false;
        QTest::newRow("not xml") << "ShapeType=3" << 0 << 0 << false;
        QTest::newRow("empty") << "" << 0 << 0 << false;
    }

    void malformedInputKeepsWhatWasRead()
    {
        QFETCH(QString, text);
        QFETCH(int, contexts);
        QFETCH(int, inputs);
        QFETCH(bool, lastInputPositioned);
        const auto description = OssSnContextDescription::read(text);
        QCOMPARE(description.contexts.size(), contexts);
        if (contexts == 0)
            return;
        const auto &ports = description.contexts.last().inputs;
        QCOMPARE(ports.size(), inputs);
        if (inputs > 0)
            QCOMPARE(ports.last().initialPosition.has_value(), lastInputPositioned);
        QVERIFY(description.truncated);
    }

    void hostileInput()
    {
        // Very long values, deep nesting and entity expansion must neither crash nor hang.
        const QString huge(1 << 20, QLatin1Char('9'));
        auto description = OssSnContextDescription::read(
            wrap(QStringLiteral("<Context Type=\"NodeGraphView\" ShapeType=\"%1\" Pixmap=\"%1\"/>")
                     .arg(huge)));
        QCOMPARE(description.contexts.value(0).shapeType.value(), 0);
        QCOMPARE(description.contexts.value(0).pixmapPath.value().size(), huge.size());

        QString deep =
            QStringLiteral("<N><Contexts><Context Type=\"NodeGraphView\" ShapeType=\"2\">");
        for (int i = 0; i < 20000; ++i)
            deep += QStringLiteral("<Deep>");
        description = OssSnContextDescription::read(deep);
        QCOMPARE(description.contexts.value(0).shapeType.value(), 2);

        const QString laughs = QStringLiteral(
            "<!DOCTYPE N [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\">"
            "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
            "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
            "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">]>"
            "<N><Contexts><Context Type=\"NodeGraphView\" Pixmap=\"&d;&d;&d;&d;&d;\"/>"
            "</Contexts></N>");
        description = OssSnContextDescription::read(laughs);
        QVERIFY(description.contexts.size() <= 1);
    }
};

QTEST_GUILESS_MAIN(tst_ContextDescription)
#include "tst_ContextDescription.moc"
