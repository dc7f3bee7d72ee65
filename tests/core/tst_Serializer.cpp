#include "OssColor.h"
#include "OssDeserializer.h"
#include "OssObjectReferenceManager.h"
#include "OssSerializableObject.h"
#include "OssSerializer.h"
#include "OssTestEnvironment.h"

#include <QColor>
#include <QFile>
#include <QPointF>
#include <QRectF>
#include <QtTest>

#include <memory>
#include <vector>

// A saved object with one stored property of each kind the host writes, a collection of named
// positions, and child objects saved as sub-objects.
class SampleObject : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(int shapeType MEMBER m_shapeType)
    Q_PROPERTY(double opacity MEMBER m_opacity)
    Q_PROPERTY(bool locked MEMBER m_locked)
    Q_PROPERTY(QString nodeColorTop MEMBER m_colorTop)
    Q_PROPERTY(QStringList tags MEMBER m_tags)
    Q_PROPERTY(QColor background MEMBER m_background)
    Q_PROPERTY(QPointF position MEMBER m_position)
    Q_PROPERTY(QPoint pixmapOffset MEMBER m_pixmapOffset)
    Q_PROPERTY(QRectF bounds MEMBER m_bounds)
    Q_PROPERTY(QByteArray blob MEMBER m_blob)
    Q_PROPERTY(Mode mode MEMBER m_mode)
    Q_PROPERTY(OssColor tint MEMBER m_tint)
    Q_PROPERTY(int transient MEMBER m_transient STORED false)

public:
    enum Mode
    {
        Expanded,
        Collapsed,
        Hidden
    };
    Q_ENUM(Mode)

    using OssSerializableObject::OssSerializableObject;

    int m_shapeType = 0;
    double m_opacity = 1.0;
    bool m_locked = false;
    QString m_colorTop;
    QStringList m_tags;
    QColor m_background;
    QPointF m_position;
    QPoint m_pixmapOffset;
    QRectF m_bounds;
    QByteArray m_blob;
    Mode m_mode = Expanded;
    OssColor m_tint;
    int m_transient = 0;

    QHash<QString, QString> m_positions; // key -> "x,y"
    QList<OssStringMap> m_elements;
    int m_collectionsEnded = 0;
    std::vector<std::unique_ptr<SampleObject>> m_children;

    SampleObject *addChild()
    {
        m_children.push_back(std::make_unique<SampleObject>());
        return m_children.back().get();
    }

    bool saveObjects(OssSerializer &serializer) override
    {
        OssStringMap attributes;
        QStringList keys = m_positions.keys();
        keys.sort();
        for (int i = 0; i < keys.size(); ++i)
            attributes.insert(QStringLiteral("map%1").arg(i),
                              keys.at(i) + QLatin1Char(':') + m_positions.value(keys.at(i)));
        serializer.beginCollection(QStringLiteral("m_positions"), keys.size(),
                                   QStringLiteral("QHash"), QStringLiteral("QString"), attributes);
        serializer.endCollection();
        serializer.beginCollection(QStringLiteral("m_elements"), m_elements.size(),
                                   QStringLiteral("QList"), QStringLiteral("OssStringMap"), {});
        for (const OssStringMap &element : qAsConst(m_elements))
            serializer.addCollectionElement(element);
        serializer.endCollection();
        for (const auto &child : m_children)
            child->save(serializer, QStringLiteral("child"));
        return OssSerializableObject::saveObjects(serializer);
    }

    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override
    {
        if (name == QLatin1String("child") && type == QLatin1String("SampleObject"))
            return addChild();
        return OssSerializableObject::onLoadSubObject(deserializer, name, type);
    }

    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const OssStringMap &attributes) override
    {
        if (name == QLatin1String("m_positions")) {
            for (const QString &value : attributes.values()) {
                const int colon = value.indexOf(QLatin1Char(':'));
                m_positions.insert(value.left(colon), value.mid(colon + 1));
            }
        }
        return OssSerializableObject::onLoadCollection(name, type, elementType, count, attributes);
    }

    void onLoadCollectionObject(const QString &name, const QString &, const QString &, int index,
                                const OssStringMap &attributes) override
    {
        if (name == QLatin1String("m_elements")) {
            QCOMPARE(index, m_elements.size());
            m_elements.append(attributes);
        }
    }

    void onEndCollection(const QString &, const QString &, const QString &) override
    {
        ++m_collectionsEnded;
    }
};

// A property declared as QVariant: its value's type travels with it.
class VariantHolder : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QVariant anything MEMBER m_anything)
    Q_PROPERTY(int count MEMBER m_count)
public:
    QVariant m_anything;
    int m_count = 0;
};

namespace {

void fill(SampleObject &object)
{
    object.m_shapeType = 7;
    object.m_opacity = 0.1 + 0.2; // not exactly representable: must survive as written
    object.m_locked = true;
    object.m_colorTop = QStringLiteral("0.5 0.25 0 1");
    object.m_tags = QStringList{QStringLiteral("_input"), QStringLiteral("semi;colon"), QString(),
                                QStringLiteral("back\\slash")};
    object.m_background = QColor(10, 20, 30, 40);
    object.m_position = QPointF(-12.5, 1e6 / 3);
    object.m_pixmapOffset = QPoint(-4, 9);
    object.m_bounds = QRectF(1, 2, 300.25, 150);
    object.m_blob = QByteArray("\x00\x01<&>", 5);
    object.m_mode = SampleObject::Hidden;
    object.m_tint = OssColor(0.2, 0.4, 0.6, 0.8);
    object.m_transient = 42;
    object.setUserAttribute(OssCustomAttribute(QStringLiteral("TitleText"),
                                               QStringLiteral("Dirt <layer> & \"wear\""),
                                               QStringLiteral("Title")));
    object.setUserAttribute(OssCustomAttribute(QStringLiteral("ZOrder"), -3, {}, false));
    object.setUserAttribute(OssCustomAttribute(QStringLiteral("BackgroundColor"),
                                               QVariant::fromValue(OssColor(1, 0.5, 0.25, 1))));
    object.setUserAttribute(
        OssCustomAttribute(QStringLiteral("BlendColorSpaceEnabled"),
                           QVariant::fromValue(OssUserEnum(
                               {QStringLiteral("Disable"), QStringLiteral("Enable")}, 1))));
    object.m_positions.insert(QStringLiteral("Base"), QStringLiteral("10,-4,32,-4"));
    object.m_positions.insert(QStringLiteral("Mask"), QStringLiteral("0,0,0,0"));
    OssStringMap element;
    element.insert(QStringLiteral("map10"), QStringLiteral("ten"));
    element.insert(QStringLiteral("map2"), QStringLiteral("two"));
    object.m_elements.append(element);
    object.m_elements.append(OssStringMap());
    SampleObject *child = object.addChild();
    child->m_shapeType = 3;
    child->m_colorTop = QStringLiteral("child");
    child->addChild()->m_shapeType = 4;
}

void compareObjects(const SampleObject &a, const SampleObject &b)
{
    QCOMPARE(b.uuid(), a.uuid());
    QCOMPARE(b.m_shapeType, a.m_shapeType);
    QCOMPARE(b.m_opacity, a.m_opacity);
    QCOMPARE(b.m_locked, a.m_locked);
    QCOMPARE(b.m_colorTop, a.m_colorTop);
    QCOMPARE(b.m_tags, a.m_tags);
    QCOMPARE(b.m_background, a.m_background);
    QCOMPARE(b.m_position, a.m_position);
    QCOMPARE(b.m_pixmapOffset, a.m_pixmapOffset);
    QCOMPARE(b.m_bounds, a.m_bounds);
    QCOMPARE(b.m_blob, a.m_blob);
    QCOMPARE(b.m_mode, a.m_mode);
    QVERIFY(b.m_tint == a.m_tint);
    QCOMPARE(b.userAttributes().size(), a.userAttributes().size());
    for (int i = 0; i < a.userAttributes().size(); ++i)
        QVERIFY2(b.userAttributes().at(i) == a.userAttributes().at(i),
                 qPrintable(a.userAttributes().at(i).name()));
    QCOMPARE(b.m_positions, a.m_positions);
    QCOMPARE(b.m_elements.size(), a.m_elements.size());
    for (int i = 0; i < a.m_elements.size(); ++i)
        QVERIFY(b.m_elements.at(i) == a.m_elements.at(i));
    QCOMPARE(b.m_children.size(), a.m_children.size());
    for (size_t i = 0; i < a.m_children.size(); ++i)
        compareObjects(*a.m_children[i], *b.m_children[i]);
}

QByteArray documentWith(const QString &objectBody)
{
    return QStringLiteral("<?xml version=\"1.0\"?>\n<OssaDocument formatVersion=\"1\">"
                          "<object name=\"root\" type=\"SampleObject\" uuid=\"\">%1</object>"
                          "</OssaDocument>\n")
        .arg(objectBody)
        .toUtf8();
}

} // namespace

class tst_Serializer : public QObject
{
    Q_OBJECT

private slots:
    void roundTrip()
    {
        SampleObject original;
        fill(original);
        const QString path = m_environment.scratchDirectory() + QStringLiteral("/sample.ossa");
        QString error;
        QVERIFY2(OssSerializer().saveToFile(path, &original, &error), qPrintable(error));

        // The copy's UUIDs must come from the file; the original goes away first so the
        // reference manager resolves the UUID to the copy afterwards.
        const QUuid uuid = original.uuid();
        SampleObject loaded;
        {
            SampleObject expected;
            fill(expected);
            expected.setUuid(uuid);
            QVERIFY2(OssDeserializer().loadFromFile(path, &loaded, &error), qPrintable(error));
            expected.m_children[0]->setUuid(loaded.m_children[0]->uuid());
            expected.m_children[0]->m_children[0]->setUuid(
                loaded.m_children[0]->m_children[0]->uuid());
            QCOMPARE(loaded.uuid(), uuid);
            compareObjects(expected, loaded);
        }
        // Not stored: keeps its constructed value.
        QCOMPARE(loaded.m_transient, 0);
        QCOMPARE(loaded.m_collectionsEnded, 2);
        QCOMPARE(loaded.m_children[0]->m_children[0]->m_shapeType, 4);
        QCOMPARE(OssObjectReferenceManager::instance()->getPointer(loaded.uuidString()), &loaded);

        // Saving what was loaded gives the same bytes.
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(OssSerializer().saveToData(&loaded), file.readAll());
    }

    // Properties are written as XML attributes: text that attributes would normalise (line
    // breaks, tabs, spaces at the ends) or must escape comes back unchanged.
    void propertyTextSurvives_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("line breaks and tabs") << QStringLiteral("first\nsecond\r\n\tthird");
        QTest::newRow("spaces at the ends") << QStringLiteral("  padded  ");
        QTest::newRow("markup") << QStringLiteral("<a href=\"x\">&amp; 'q'</a>");
        QTest::newRow("non-ASCII") << QStringLiteral("Rouille \u00e9paisse \u2013 \u6d4b\u8bd5");
    }
    void propertyTextSurvives()
    {
        QFETCH(QString, text);
        SampleObject object;
        object.m_colorTop = text;
        object.m_tags = QStringList{text, QStringLiteral("plain")};
        const QByteArray data = OssSerializer().saveToData(&object);
        QVERIFY(data.contains("<properties "));
        QVERIFY(!data.contains("<property "));
        SampleObject loaded;
        QString error;
        QVERIFY2(OssDeserializer().loadFromData(data, &loaded, &error), qPrintable(error));
        QCOMPARE(loaded.m_colorTop, text);
        QCOMPARE(loaded.m_tags, object.m_tags);
    }

    void variantPropertiesKeepTheirType()
    {
        VariantHolder object;
        object.m_anything = QPointF(1.5, -2);
        object.m_count = 7;
        const QByteArray data = OssSerializer().saveToData(&object);
        QVERIFY(data.contains("<property name=\"anything\" type=\"QPointF\">"));
        QVERIFY(data.contains("count=\"7\""));
        VariantHolder loaded;
        QString error;
        QVERIFY2(OssDeserializer().loadFromData(data, &loaded, &error), qPrintable(error));
        QCOMPARE(loaded.m_anything, QVariant(QPointF(1.5, -2)));
        QCOMPARE(loaded.m_count, 7);
    }

    void attributeOrderIsKept()
    {
        SampleObject object;
        OssStringMap element;
        for (int i = 12; i >= 0; --i)
            element.insert(QStringLiteral("map%1").arg(i), QString::number(i));
        object.m_elements.append(element);
        SampleObject loaded;
        QString error;
        QVERIFY(
            OssDeserializer().loadFromData(OssSerializer().saveToData(&object), &loaded, &error));
        QCOMPARE(loaded.m_elements.value(0).keys(), element.keys());
    }

    void copiesCanKeepTheirOwnUuid()
    {
        SampleObject object;
        SampleObject copy;
        const QUuid own = copy.uuid();
        OssDeserializer deserializer;
        deserializer.setRestoreUuids(false);
        QString error;
        QVERIFY(deserializer.loadFromData(OssSerializer().saveToData(&object), &copy, &error));
        QCOMPARE(copy.uuid(), own);
        QCOMPARE(OssObjectReferenceManager::instance()->getPointer(object.uuid()), &object);
    }

    void badInput_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("problem");

        const QByteArray good = documentWith(QStringLiteral("<property name=\"shapeType\" "
                                                            "type=\"int\">3</property>"));
        QTest::newRow("empty") << QByteArray() << "the file is empty";
        QTest::newRow("blank") << QByteArray(" \n\t") << "the file is empty";
        QTest::newRow("not xml") << QByteArray("shapeType = 3\n") << "not a valid document";
        QTest::newRow("binary") << QByteArray("\x89PNG\r\n\x1a\n\0\0", 10)
                                << "not a valid document";
        QTest::newRow("truncated") << good.left(good.size() / 2) << "the file is truncated";
        QTest::newRow("unclosed element")
            << QByteArray("<OssaDocument formatVersion=\"1\"><object name=\"a\">")
            << "the file is truncated";
        QTest::newRow("mismatched tags")
            << QByteArray("<OssaDocument formatVersion=\"1\"><object></property></OssaDocument>")
            << "not a valid document";
        QTest::newRow("other root") << QByteArray("<project/>") << "its root element is <project>";
        QTest::newRow("newer format")
            << QByteArray(good).replace("formatVersion=\"1\"", "formatVersion=\"3\"")
            << "format version 3, newer than the supported version 2";
        QTest::newRow("no format version")
            << QByteArray(good).replace("formatVersion=\"1\"", "") << "no valid format version";
        QTest::newRow("no object")
            << QByteArray("<OssaDocument formatVersion=\"1\"/>") << "0 top-level objects";
        QTest::newRow("two objects")
            << QByteArray("<OssaDocument formatVersion=\"1\"><object/><object/></OssaDocument>")
            << "2 top-level objects";
        QByteArray deep("<OssaDocument formatVersion=\"1\"><object>");
        for (int i = 0; i < 2000; ++i)
            deep += "<object name=\"child\" type=\"SampleObject\">";
        QTest::newRow("deep nesting") << deep << "nested deeper than 512 levels";
    }

    void badInput()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);

        const QString path = m_environment.scratchDirectory() + QStringLiteral("/bad.ossa");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
        file.close();

        SampleObject open;
        fill(open);
        const QByteArray before = OssSerializer().saveToData(&open);
        QString error;
        QVERIFY(!OssDeserializer().loadFromFile(path, &open, &error));
        QVERIFY2(error.startsWith(QLatin1Char('"') + path + QLatin1Char('"')), qPrintable(error));
        QVERIFY2(error.contains(problem), qPrintable(error));
        QCOMPARE(OssSerializer().saveToData(&open), before);
    }

    void missingFile()
    {
        SampleObject open;
        fill(open);
        const QByteArray before = OssSerializer().saveToData(&open);
        const QString path = m_environment.scratchDirectory() + QStringLiteral("/nowhere.ossa");
        QString error;
        QVERIFY(!OssDeserializer().loadFromFile(path, &open, &error));
        QCOMPARE(error, QStringLiteral("\"%1\": the file does not exist").arg(path));
        QCOMPARE(OssSerializer().saveToData(&open), before);
    }

    void unknownPartsAreSkipped()
    {
        const QByteArray data = documentWith(
            QStringLiteral("<futureThing level=\"9\"><property name=\"shapeType\" type=\"int\">8"
                           "</property></futureThing>"
                           "<property name=\"noSuchProperty\" type=\"int\">1</property>"
                           "<property name=\"opacity\" type=\"double\">not a number</property>"
                           "<property name=\"shapeType\" type=\"int\">5</property>"
                           "<object name=\"stranger\" type=\"Elsewhere\"><property "
                           "name=\"shapeType\" type=\"int\">6</property></object>"
                           "<userAttribute name=\"Label\" type=\"QString\">Hi</userAttribute>"));
        SampleObject object;
        OssDeserializer deserializer;
        QString error;
        QVERIFY2(deserializer.loadFromData(data, &object, &error), qPrintable(error));
        QCOMPARE(object.m_shapeType, 5);
        QCOMPARE(object.m_opacity, 1.0);
        QCOMPARE(object.userAttribute(QStringLiteral("Label")).value().toString(),
                 QStringLiteral("Hi"));
        QCOMPARE(deserializer.warnings().size(), 2);
        QVERIFY(deserializer.warnings().at(0).contains(QLatin1String("noSuchProperty")));
        QVERIFY(deserializer.warnings().at(1).contains(QLatin1String("opacity")));
    }

    void hugeValuesLoad()
    {
        const QString huge(200000, QLatin1Char('x'));
        const QByteArray data = documentWith(
            QStringLiteral("<property name=\"nodeColorTop\" type=\"QString\">%1</property>")
                .arg(huge));
        SampleObject object;
        QString error;
        QVERIFY2(OssDeserializer().loadFromData(data, &object, &error), qPrintable(error));
        QCOMPARE(object.m_colorTop.size(), huge.size());
    }

    void valueText_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");

        QTest::newRow("int") << QVariant(-4) << "-4";
        QTest::newRow("bool") << QVariant(true) << "true";
        QTest::newRow("double") << QVariant(0.5) << "0.5";
        QTest::newRow("point") << QVariant(QPoint(-4, 9)) << "-4,9";
        QTest::newRow("pointf") << QVariant(QPointF(1.5, -2)) << "1.5,-2";
        QTest::newRow("rectf") << QVariant(QRectF(0, 1, 2, 3)) << "0,1,2,3";
        QTest::newRow("colour") << QVariant(QColor(255, 0, 0)) << "#ffff0000";
        QTest::newRow("list") << QVariant(QStringList{QStringLiteral("a;b"), QStringLiteral("c")})
                              << "a\\;b;c";
        QTest::newRow("OssColor") << QVariant::fromValue(OssColor(1, 0.5, 0, 1)) << "1 0.5 0 1";
        QTest::newRow("user enum") << QVariant::fromValue(OssUserEnum(
                                          {QStringLiteral("Disable"), QStringLiteral("Enable")}, 0))
                                   << "0:Disable|Enable";
    }

    void valueText()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QCOMPARE(OssSerializer::variantToText(value), text);
        bool ok = false;
        const QVariant back =
            OssSerializer::textToVariant(text, QString::fromLatin1(value.typeName()), &ok);
        QVERIFY(ok);
        QCOMPARE(OssSerializer::variantToText(back), text);
    }

private:
    OssTestEnvironment m_environment;
};

QTEST_GUILESS_MAIN(tst_Serializer)
#include "tst_Serializer.moc"
