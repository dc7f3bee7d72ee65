#include "OssPythonTestSupport.h"
#include "OssTestPluginHost.h"

#include <OssPalette.h>
#include <OssScriptConsole.h>
#include <OssScriptEngine.h>

#include <QtTest>

#include <memory>

// The Script Console palette: entries run on Return once complete, multi-line blocks, history
// on Up and Down, Tab completion from the bridge, and output and errors in one log.
class tst_ScriptConsole : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    std::unique_ptr<OssScriptConsole> m_console;

    OssScriptConsoleInput *input() { return m_console->input(); }
    void enter(const QString &text)
    {
        QTest::keyClicks(input(), text);
        QTest::keyClick(input(), Qt::Key_Return);
    }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        QVERIFY(m_host.newProject());
        m_console = std::make_unique<OssScriptConsole>();
        m_console->resize(600, 400);
        m_console->show();
        input()->setFocus();
    }

    void cleanup()
    {
        m_console.reset();
        QVERIFY(m_host.reset());
    }

    void expressionsEchoTheirValue()
    {
        enter(QStringLiteral("6 * 7"));
        QCOMPARE(m_console->logText(), QStringLiteral(">>> 6 * 7\n42\n"));
        QVERIFY(input()->toPlainText().isEmpty());
    }

    void blocksWaitForAnEmptyLine()
    {
        enter(QStringLiteral("for i in range(3):"));
        // Not run yet: the block continues, indented.
        QCOMPARE(input()->toPlainText(), QStringLiteral("for i in range(3):\n    "));
        QVERIFY(m_console->logText().isEmpty());
        enter(QStringLiteral("print(i * 10)"));
        QCOMPARE(input()->toPlainText(),
                 QStringLiteral("for i in range(3):\n    print(i * 10)\n    "));
        // Return on the empty line ends the block.
        QTest::keyClick(input(), Qt::Key_Backspace);
        QTest::keyClick(input(), Qt::Key_Backspace);
        QTest::keyClick(input(), Qt::Key_Backspace);
        QTest::keyClick(input(), Qt::Key_Backspace);
        QTest::keyClick(input(), Qt::Key_Return);
        QCOMPARE(m_console->logText(), QStringLiteral(">>> for i in range(3):\n...     print(i * "
                                                      "10)\n0\n10\n20\n"));
    }

    void shiftReturnAddsALine()
    {
        QTest::keyClicks(input(), QStringLiteral("a = 1"));
        QTest::keyClick(input(), Qt::Key_Return, Qt::ShiftModifier);
        QTest::keyClicks(input(), QStringLiteral("b = a + 1"));
        QCOMPARE(input()->toPlainText(), QStringLiteral("a = 1\nb = a + 1"));
        QTest::keyClick(input(), Qt::Key_Return);
        enter(QStringLiteral("b"));
        QVERIFY2(m_console->logText().endsWith(QLatin1String(">>> b\n2\n")),
                 qPrintable(m_console->logText()));
    }

    void errorsGoToTheLogAndTheConsoleGoesOn()
    {
        enter(QStringLiteral("1 / 0"));
        QVERIFY(
            m_console->logText().contains(QLatin1String("ZeroDivisionError: division by zero")));
        enter(QStringLiteral("ossa.palette('Node Graph').setCurrentTabIndex(-5)"));
        QVERIFY2(m_console->logText().contains(
                     QLatin1String("ossa.OutOfRange: CurrentTabIndex cannot be a negative number")),
                 qPrintable(m_console->logText()));
        enter(QStringLiteral("print('still here')"));
        QVERIFY(m_console->logText().endsWith(QLatin1String("still here\n")));
    }

    void historyWalksUpAndDown()
    {
        enter(QStringLiteral("x = 1"));
        enter(QStringLiteral("y = 2"));
        QTest::keyClicks(input(), QStringLiteral("draft"));
        QTest::keyClick(input(), Qt::Key_Up);
        QCOMPARE(input()->toPlainText(), QStringLiteral("y = 2"));
        QTest::keyClick(input(), Qt::Key_Up);
        QCOMPARE(input()->toPlainText(), QStringLiteral("x = 1"));
        QTest::keyClick(input(), Qt::Key_Up);
        QCOMPARE(input()->toPlainText(), QStringLiteral("x = 1"));
        QTest::keyClick(input(), Qt::Key_Down);
        QCOMPARE(input()->toPlainText(), QStringLiteral("y = 2"));
        QTest::keyClick(input(), Qt::Key_Down);
        QCOMPARE(input()->toPlainText(), QStringLiteral("draft"));
    }

    void tabCompletesFromTheBridge()
    {
        enter(QStringLiteral("graph = ossa.project().nodeGraphs()[0]"));
        QTest::keyClicks(input(), QStringLiteral("graph.createN"));
        QTest::keyClick(input(), Qt::Key_Tab);
        QCOMPARE(input()->toPlainText(), QStringLiteral("graph.createNode("));
        input()->clear();
        // Several matches: their common part is completed and all are listed in the log.
        QTest::keyClicks(input(), QStringLiteral("graph.se"));
        QTest::keyClick(input(), Qt::Key_Tab);
        QCOMPARE(input()->toPlainText(), QStringLiteral("graph.se"));
        QVERIFY2(m_console->logText().contains(QLatin1String("graph.selectedNodes(")) &&
                     m_console->logText().contains(QLatin1String("graph.setSelectedNodes(")),
                 qPrintable(m_console->logText()));
        input()->clear();
        // With nothing before the cursor, Tab indents.
        QTest::keyClick(input(), Qt::Key_Tab);
        QCOMPARE(input()->toPlainText(), QStringLiteral("    "));
    }

    void theLogKeepsItsLastLines()
    {
        OssScriptEngine::instance()->setOutputLimit(0);
        enter(QStringLiteral("for i in range(20000): print(i)"));
        QTest::keyClick(input(), Qt::Key_Return);
        QVERIFY(m_console->log()->document()->blockCount() <= 5000);
        QVERIFY(m_console->logText().endsWith(QLatin1String("19999\n")));
        OssScriptEngine::instance()->setOutputLimit(4 * 1024 * 1024);
    }

    void paletteIsRegistered()
    {
        OssPalette *palette = OssScriptConsole::createPalette();
        QVERIFY(palette);
        QCOMPARE(OssPaletteManager::instance()->find(QStringLiteral("Script Console")), palette);
        QVERIFY(qobject_cast<OssScriptConsole *>(palette->originalWidget()));
        // Asking again gives the same palette.
        QCOMPARE(OssScriptConsole::createPalette(), palette);
    }
};

QTEST_MAIN(tst_ScriptConsole)
#include "tst_ScriptConsole.moc"
