#include "OssSnInitialPositions.h"

#include <QtTest>

class tst_InitialPositions : public QObject
{
    Q_OBJECT

private slots:
    void writing()
    {
        OssSnInitialPositionMap positions;
        QCOMPARE(OssSnInitialPositions::toAttributes(positions).size(), 0);
        positions.insert(QStringLiteral("Base"), qMakePair(QPoint(10, -4), QPoint(32, -4)));
        positions.insert(QStringLiteral("Mask"), qMakePair(QPoint(0, 0), QPoint(-1, 7)));
        const OssStringMap attributes = OssSnInitialPositions::toAttributes(positions);
        QCOMPARE(attributes.keys(), QStringList({QStringLiteral("map0"), QStringLiteral("map1")}));
        // The hash's own order decides which key gets which index.
        const QStringList keys = positions.keys();
        for (int i = 0; i < keys.size(); ++i) {
            const auto p = positions.value(keys.at(i));
            QCOMPARE(attributes.value(QStringLiteral("map%1").arg(i)),
                     QStringLiteral("%1:%2,%3,%4,%5")
                         .arg(keys.at(i))
                         .arg(p.first.x())
                         .arg(p.first.y())
                         .arg(p.second.x())
                         .arg(p.second.y()));
        }
        QVERIFY(attributes.values().contains(QStringLiteral("Base:10,-4,32,-4")));
    }

    void reading_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("read");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QPoint>("a");
        QTest::addColumn<QPoint>("b");

        QTest::newRow("plain") << "Base:1,2,3,4" << true << "Base" << QPoint(1, 2) << QPoint(3, 4);
        QTest::newRow("negative") << "Base:10,-4,32,-4" << true << "Base" << QPoint(10, -4)
                                  << QPoint(32, -4);
        QTest::newRow("not a number reads as 0")
            << "Base:x,2,3,4" << true << "Base" << QPoint(0, 2) << QPoint(3, 4);
        QTest::newRow("three numbers") << "Base:1,2,3" << false << "" << QPoint() << QPoint();
        QTest::newRow("five numbers") << "Base:1,2,3,4,5" << false << "" << QPoint() << QPoint();
        QTest::newRow("key with a colon") << "A:B:1,2,3,4" << false << "" << QPoint() << QPoint();
        QTest::newRow("no colon") << "1,2,3,4" << false << "" << QPoint() << QPoint();
        QTest::newRow("empty key") << ":1,2,3,4" << true << "" << QPoint(1, 2) << QPoint(3, 4);
    }

    void reading()
    {
        QFETCH(QString, value);
        QFETCH(bool, read);
        QFETCH(QString, key);
        QFETCH(QPoint, a);
        QFETCH(QPoint, b);
        OssSnInitialPositionMap positions;
        positions.insert(QStringLiteral("Kept"), qMakePair(QPoint(5, 5), QPoint(6, 6)));
        OssStringMap attributes;
        attributes.insert(QStringLiteral("map0"), value);
        OssSnInitialPositions::readAttributes(attributes, positions);
        QCOMPARE(positions.size(), read ? 2 : 1);
        QCOMPARE(positions.value(QStringLiteral("Kept")), qMakePair(QPoint(5, 5), QPoint(6, 6)));
        if (read)
            QCOMPARE(positions.value(key), qMakePair(a, b));
    }

    void roundTripWithMalformedNeighbours()
    {
        OssSnInitialPositionMap original;
        original.insert(QStringLiteral("Base"), qMakePair(QPoint(-4, 0), QPoint(-32, 9)));
        original.insert(QStringLiteral("odd:name"), qMakePair(QPoint(1, 1), QPoint(1, 1)));
        OssSnInitialPositionMap read;
        OssSnInitialPositions::readAttributes(OssSnInitialPositions::toAttributes(original), read);
        // A name holding a colon is written but not read back.
        QCOMPARE(read.size(), 1);
        QCOMPARE(read.value(QStringLiteral("Base")), original.value(QStringLiteral("Base")));
    }

    void dumps()
    {
        OssSnInitialPositionMap positions;
        positions.insert(QStringLiteral("Base"), qMakePair(QPoint(10, -4), QPoint(32, -4)));
        QCOMPARE(OssSnInitialPositions::dump(positions),
                 QStringLiteral("Base A(10, -4), B(32, -4)"));
        QCOMPARE(OssSnInitialPositions::dump(OssSnInitialPositionMap()), QString());
        OssSnTextPositionMap texts;
        texts.insert(QStringLiteral("Mask"), 0.1234567f);
        QCOMPARE(OssSnInitialPositions::dump(texts), QStringLiteral("Mask 0.123457"));
        texts.insert(QStringLiteral("Mask"), 12.5f);
        QCOMPARE(OssSnInitialPositions::dump(texts), QStringLiteral("Mask 12.5"));
    }
};

QTEST_GUILESS_MAIN(tst_InitialPositions)
#include "tst_InitialPositions.moc"
