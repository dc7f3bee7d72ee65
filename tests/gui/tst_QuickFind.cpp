#include "OssTestEnvironment.h"

#include <OssNodeQuickFindDialog.h>
#include <OssNodeTypeMatcher.h>
#include <OssShaderNetworkManager.h>

#include <QElapsedTimer>
#include <QLineEdit>
#include <QListWidget>
#include <QtTest>

#include <algorithm>

// Quick creation's search: the ranking of node types against typed text over the shipped
// catalogue, and the dialog driven from the keyboard alone.
class tst_QuickFind : public QObject
{
    Q_OBJECT

private:
    OssTestEnvironment m_environment;
    OssNodeTypeMatcher m_matcher;

    static QStringList offeredKeys()
    {
        QStringList keys;
        for (const QString &key : OssShaderNetworkManager::instance()->nodeGraphPathKeys())
            if (!key.startsWith(QLatin1Char('_')))
                keys << key;
        return keys;
    }
    static QStringList menuPaths(const QStringList &keys)
    {
        QStringList paths;
        for (const QString &key : keys)
            paths << OssShaderNetworkManager::instance()->nodeMenuPath(key);
        return paths;
    }

private slots:
    void initTestCase()
    {
        const QStringList keys = offeredKeys();
        QVERIFY(keys.size() > 50);
        m_matcher.setEntries(keys, menuPaths(keys));
    }

    void init() { m_matcher.setHistory({}, {}, {}); }

    void firstResult_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("first");
        QTest::newRow("letters of one word") << "blr"
                                             << "Filter/Blur";
        QTest::newRow("start of the name") << "tri"
                                           << "Environment/Tri Planar Projection";
        QTest::newRow("word starts") << "tpp"
                                     << "Environment/Tri Planar Projection";
        QTest::newRow("word starts and runs") << "hsat"
                                              << "Adjust/Hue Saturation";
        QTest::newRow("second word") << "dblur"
                                     << "Filter/Directional Blur";
        QTest::newRow("initials") << "bp"
                                  << "Misc/Bake Point";
        QTest::newRow("initials of three words") << "htn"
                                                 << "Filter/Height To Normal";
        QTest::newRow("two initials") << "ao"
                                      << "Environment/Ambient Occlusion";
        QTest::newRow("capitals ignored") << "MRG"
                                          << "Layer/Merge";
        QTest::newRow("prefix beats scattered") << "dot"
                                                << "Misc/Dot";
        QTest::newRow("exact beats longer") << "blur"
                                            << "Filter/Blur";
        QTest::newRow("blanks ignored") << "edge w"
                                        << "Mask/Edge Wear";
        QTest::newRow("menu path") << "filter/blur"
                                   << "Filter/Blur";
        QTest::newRow("menu folder") << "noise/perl"
                                     << "Procedural/Noise/Perlin";
        QTest::newRow("shader folder") << "shaders/unl"
                                       << "Shaders/Unlit";
        QTest::newRow("multiply") << "mult"
                                  << "Math/Multiply";
    }

    void firstResult()
    {
        QFETCH(QString, typed);
        QFETCH(QString, first);
        const QStringList ranked = m_matcher.rank(typed);
        QVERIFY2(!ranked.isEmpty(), qPrintable(typed));
        QCOMPARE(ranked.first(), first);
    }

    void nothingMatches_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::newRow("letters no type has in that order") << "zqj";
        QTest::newRow("unknown letters") << "qqq";
        QTest::newRow("longer than any name") << "blurblurblurblurblurblurblurblur";
    }

    void nothingMatches()
    {
        QFETCH(QString, typed);
        QCOMPARE(m_matcher.rank(typed), QStringList());
    }

    void matchKinds_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("menuPath");
        QTest::addColumn<int>("kind");
        QTest::newRow("prefix") << "bri"
                                << "Adjust/Brightness Contrast" << int(OssNodeTypeMatcher::Prefix);
        QTest::newRow("word starts")
            << "bc"
            << "Adjust/Brightness Contrast" << int(OssNodeTypeMatcher::WordMatch);
        QTest::newRow("scattered")
            << "bgc"
            << "Adjust/Brightness Contrast" << int(OssNodeTypeMatcher::ScatteredMatch);
        QTest::newRow("path only")
            << "adjbri"
            << "Adjust/Brightness Contrast" << int(OssNodeTypeMatcher::PathMatch);
        QTest::newRow("camel case word start")
            << "mcbp"
            << "_System/MultiChannelBakePoint" << int(OssNodeTypeMatcher::WordMatch);
        QTest::newRow("letters out of order") << "rulb"
                                              << "Filter/Blur" << int(OssNodeTypeMatcher::NoMatch);
        QTest::newRow("none") << "zz"
                              << "Adjust/Brightness Contrast" << int(OssNodeTypeMatcher::NoMatch);
    }

    void matchKinds()
    {
        QFETCH(QString, typed);
        QFETCH(QString, menuPath);
        QFETCH(int, kind);
        const OssNodeTypeMatcher::Match match =
            OssNodeTypeMatcher::match(typed, OssNodeTypeMatcher::displayName(menuPath), menuPath);
        QCOMPARE(int(match.kind), kind);
    }

    // Among matches of the same kind the user's history decides; it never lifts a worse kind
    // of match over a better one.
    void historyOrdersEqualMatches()
    {
        QCOMPARE(m_matcher.rank("blr").first(), QStringLiteral("Filter/Blur"));
        m_matcher.setHistory({"Filter/Directional Blur"}, {}, {});
        QCOMPARE(m_matcher.rank("blr").first(), QStringLiteral("Filter/Directional Blur"));
        QCOMPARE(m_matcher.rank("blur").first(), QStringLiteral("Filter/Blur"));
        m_matcher.setHistory({}, {"Filter/Directional Blur"}, {});
        QCOMPARE(m_matcher.rank("blr").first(), QStringLiteral("Filter/Directional Blur"));
        m_matcher.setHistory({}, {}, {{"Filter/Directional Blur", 3}, {"Filter/Blur", 1}});
        QCOMPARE(m_matcher.rank("blr").first(), QStringLiteral("Filter/Directional Blur"));
        // A recent type comes before a favourite, a favourite before a much used type.
        m_matcher.setHistory({"Adjust/Gamma"}, {"Adjust/Grayscale"}, {{"Mask/Edge Wear", 9}});
        QCOMPARE(m_matcher.rank("g").mid(0, 2), (QStringList{"Adjust/Gamma", "Adjust/Grayscale"}));
    }

    void emptyTextListsRecentThenFavouritesThenAll()
    {
        m_matcher.setHistory({"Math/Mix", "Filter/Blur"}, {"Layer/Merge", "Math/Mix"}, {});
        const QStringList ranked = m_matcher.rank(QString());
        QCOMPARE(ranked.mid(0, 3), (QStringList{"Math/Mix", "Filter/Blur", "Layer/Merge"}));
        QCOMPARE(ranked.size(), offeredKeys().size());
        QCOMPARE(ranked.count("Math/Mix"), 1);
    }

    // Each keystroke ranks the whole catalogue well within 5 ms.
    void rankingEachKeystrokeIsFast()
    {
        const QString word = QStringLiteral("directional blur");
        QVector<qint64> times;
        for (int round = 0; round < 20; ++round)
            for (int length = 1; length <= word.size(); ++length) {
                QElapsedTimer timer;
                timer.start();
                const QStringList ranked = m_matcher.rank(word.left(length));
                times << timer.nsecsElapsed();
                QVERIFY(!ranked.isEmpty());
            }
        std::sort(times.begin(), times.end());
        const double medianMs = times.at(times.size() / 2) / 1e6;
        QVERIFY2(medianMs < 5.0, qPrintable(QString::number(medianMs)));
    }

    // --- the dialog from the keyboard

    void typingRanksAndReturnChooses()
    {
        OssNodeQuickFindDialog dialog({}, {}, 10, QPoint(5, 5), QSize(800, 600));
        auto *edit = dialog.findChild<QLineEdit *>();
        QVERIFY(edit);
        QTest::keyClicks(edit, QStringLiteral("tri"));
        QCOMPARE(dialog.currentPathKey(), QStringLiteral("Environment/Tri Planar Projection"));
        QTest::keyClick(edit, Qt::Key_Return);
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.chosenPathKey(), QStringLiteral("Environment/Tri Planar Projection"));
        QVERIFY(!dialog.insertAfterSelection());
    }

    void arrowsMoveWithinTheList()
    {
        OssNodeQuickFindDialog dialog({}, {}, 10, QPoint(5, 5), QSize(800, 600));
        auto *edit = dialog.findChild<QLineEdit *>();
        QTest::keyClicks(edit, QStringLiteral("blur"));
        const QStringList shown = dialog.shownPathKeys();
        QVERIFY(shown.size() >= 2);
        QTest::keyClick(edit, Qt::Key_Down);
        QCOMPARE(dialog.currentPathKey(), shown.at(1));
        QTest::keyClick(edit, Qt::Key_Up);
        QTest::keyClick(edit, Qt::Key_Up);
        QCOMPARE(dialog.currentPathKey(), shown.at(0));
        QTest::keyClick(edit, Qt::Key_PageDown);
        QCOMPARE(dialog.currentPathKey(), shown.last());
        // The typed text is left alone by the arrows.
        QCOMPARE(dialog.filter(), QStringLiteral("blur"));
        QTest::keyClick(edit, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(dialog.chosenPathKey(), shown.last());
        QVERIFY(dialog.insertAfterSelection());
    }

    void escapeClosesWithoutChoice()
    {
        OssNodeQuickFindDialog dialog({}, {}, 10, QPoint(5, 5), QSize(800, 600));
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto *edit = dialog.findChild<QLineEdit *>();
        QTest::keyClicks(edit, QStringLiteral("blr"));
        QTest::keyClick(edit, Qt::Key_Escape);
        QTRY_VERIFY(!dialog.isVisible());
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QVERIFY(dialog.chosenPathKey().isEmpty());
    }

    void returnWithNothingShownChoosesNothing()
    {
        OssNodeQuickFindDialog dialog({}, {}, 10, QPoint(5, 5), QSize(800, 600));
        auto *edit = dialog.findChild<QLineEdit *>();
        QTest::keyClicks(edit, QStringLiteral("qqq"));
        QVERIFY(dialog.shownPathKeys().isEmpty());
        QTest::keyClick(edit, Qt::Key_Return);
        QVERIFY(dialog.chosenPathKey().isEmpty());
        QVERIFY(dialog.result() != int(QDialog::Accepted));
    }

    void controlFMarksTheHighlightedTypeAsFavourite()
    {
        OssNodeQuickFindDialog dialog({"Math/Mix"}, {}, 10, QPoint(5, 5), QSize(800, 600));
        auto *edit = dialog.findChild<QLineEdit *>();
        QTest::keyClicks(edit, QStringLiteral("sharp"));
        QTest::keyClick(edit, Qt::Key_F, Qt::ControlModifier);
        QCOMPARE(dialog.favourites(), QStringList{"Filter/Sharpen"});
        QCOMPARE(dialog.filter(), QStringLiteral("sharp"));
        edit->clear();
        // With nothing typed the recent type leads, the new favourite follows.
        QCOMPARE(dialog.shownPathKeys().mid(0, 2), (QStringList{"Math/Mix", "Filter/Sharpen"}));
        QTest::keyClick(edit, Qt::Key_Down);
        QTest::keyClick(edit, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(dialog.favourites().isEmpty());
    }

    void recentListIsCutAndUnknownTypesDropped()
    {
        OssNodeQuickFindDialog dialog({"Filter/Blur", "No/Such Type", "Math/Mix", "Layer/Merge"},
                                      {}, 2, QPoint(5, 5), QSize(800, 600));
        const QStringList shown = dialog.shownPathKeys();
        QCOMPARE(shown.value(0), QStringLiteral("Filter/Blur"));
        QVERIFY(!shown.contains("No/Such Type"));
        QCOMPARE(shown.size(), offeredKeys().size());
    }
};

QTEST_MAIN(tst_QuickFind)
#include "tst_QuickFind.moc"
