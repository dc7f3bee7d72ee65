#include "OssTestEnvironment.h"
#include "OssUndoCommand.h"
#include "OssUndoManager.h"

#include <QSignalSpy>
#include <QtTest>

#include <memory>
#include <vector>

namespace {

// The state the steps change: a list of numbers.
QList<int> g_values;

class AppendStep : public OssUndoCommand
{
public:
    explicit AppendStep(int value)
        : OssUndoCommand(QStringLiteral("Append %1").arg(value)), m_value(value)
    {}
    ~AppendStep() override { s_deleted.append(m_value); }
    void redo() override { g_values.append(m_value); }
    void undo() override { g_values.removeLast(); }

    // The values of the steps deleted so far, in order.
    static QList<int> s_deleted;

private:
    int m_value;
};

QList<int> AppendStep::s_deleted;

// A faulty step that tries to record another step while it is replayed.
class RecordingStep : public OssUndoCommand
{
public:
    void redo() override
    {
        g_values.append(99);
        OssUndoManager::instance()->addUndo(new AppendStep(100));
    }
    void undo() override { g_values.removeAll(99); }
};

QList<int> parseValues(const QString &text)
{
    QList<int> values;
    for (const QString &part : text.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        values.append(part.toInt());
    return values;
}

// Runs a script of tokens: "+N" adds a step appending N, "[Title" opens a macro, "]" closes the
// innermost macro, "!" cancels the innermost macro.
void runScript(const QString &script)
{
    std::vector<std::unique_ptr<OssUndoManager::AutoMacro>> macros;
    for (const QString &token : script.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        if (token.startsWith(QLatin1Char('+')))
            OssUndoManager::instance()->addUndo(new AppendStep(token.mid(1).toInt()));
        else if (token.startsWith(QLatin1Char('[')))
            macros.push_back(std::make_unique<OssUndoManager::AutoMacro>(token.mid(1)));
        else if (token == QLatin1String("]"))
            macros.pop_back();
        else if (token == QLatin1String("!"))
            macros.back()->cancel();
    }
}

} // namespace

class tst_UndoManager : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        OssUndoManager::instance()->clear();
        g_values.clear();
        AppendStep::s_deleted.clear();
    }

    void macros_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("steps");
        QTest::addColumn<QString>("undoText");
        QTest::addColumn<QString>("afterOneUndo");

        QTest::newRow("plain steps") << "+1 +2"
                                     << "1 2" << 2 << "Append 2"
                                     << "1";
        QTest::newRow("macro folds its steps") << "[Move +1 +2 +3 ]"
                                               << "1 2 3" << 1 << "Move"
                                               << "";
        QTest::newRow("nested macros fold into the outermost") << "+7 [Outer +1 [Inner +2 ] +3 ]"
                                                               << "7 1 2 3" << 2 << "Outer"
                                                               << "7";
        QTest::newRow("empty macro leaves no step") << "+5 [Nothing ]"
                                                    << "5" << 1 << "Append 5"
                                                    << "";
        QTest::newRow("cancel discards the macro") << "+5 [Cut +1 +2 ! ]"
                                                   << "5" << 1 << "Append 5"
                                                   << "";
        QTest::newRow("cancel of an inner macro keeps the outer work")
            << "[Drop +1 [Create +2 +3 ! ] +4 ]"
            << "1 4" << 1 << "Drop"
            << "";
        QTest::newRow("steps after a cancel are still recorded") << "[Bake +1 ! +2 ]"
                                                                 << "2" << 1 << "Bake"
                                                                 << "";
        QTest::newRow("cancel twice is harmless") << "[Bake +1 ! ! ]"
                                                  << "" << 0 << ""
                                                  << "";
    }

    void macros()
    {
        QFETCH(QString, script);
        QFETCH(QString, after);
        QFETCH(int, steps);
        QFETCH(QString, undoText);
        QFETCH(QString, afterOneUndo);

        OssUndoManager *manager = OssUndoManager::instance();
        runScript(script);
        QCOMPARE(manager->macroDepth(), 0);
        QCOMPARE(g_values, parseValues(after));
        QCOMPARE(manager->count(), steps);
        QCOMPARE(manager->undoText(), undoText);
        if (steps == 0)
            return;

        manager->undo();
        QCOMPARE(g_values, parseValues(afterOneUndo));
        manager->redo();
        QCOMPARE(g_values, parseValues(after));
        // Undo everything, then redo everything: back to the same state each way.
        while (manager->canUndo())
            manager->undo();
        QVERIFY(g_values.isEmpty());
        while (manager->canRedo())
            manager->redo();
        QCOMPARE(g_values, parseValues(after));
    }

    void recordingDropsUndoneSteps()
    {
        OssUndoManager *manager = OssUndoManager::instance();
        runScript(QStringLiteral("+1 +2 +3"));
        manager->undo();
        manager->undo();
        QCOMPARE(manager->count(), 3);
        QCOMPARE(manager->index(), 1);
        QCOMPARE(manager->redoText(), QStringLiteral("Append 2"));
        QVERIFY(AppendStep::s_deleted.isEmpty());
        // The new step replaces both undone ones, which go newest first.
        runScript(QStringLiteral("+4"));
        QCOMPARE(AppendStep::s_deleted, QList<int>({3, 2}));
        QCOMPARE(g_values, QList<int>({1, 4}));
        QCOMPARE(manager->count(), 2);
        QVERIFY(!manager->canRedo());
        QCOMPARE(manager->redoText(), QString());
        QCOMPARE(manager->undoText(), QStringLiteral("Append 4"));
        manager->clear();
        QCOMPARE(AppendStep::s_deleted, QList<int>({3, 2, 1, 4}));
        QCOMPARE(manager->count(), 0);
        QVERIFY(!manager->canUndo());
        QCOMPARE(manager->undoText(), QString());
    }

    void cleanState()
    {
        OssUndoManager *manager = OssUndoManager::instance();
        QSignalSpy clean(manager, &OssUndoManager::cleanChanged);
        // Each entry: whether the history is clean after the step, and whether it announced it.
        const auto expect = [&](bool isClean, const QList<bool> &announced) {
            QCOMPARE(manager->isClean(), isClean);
            QList<bool> heard;
            for (const QList<QVariant> &arguments : qAsConst(clean))
                heard << arguments.at(0).toBool();
            clean.clear();
            QCOMPARE(heard, announced);
        };
        expect(true, {});
        runScript(QStringLiteral("+1"));
        expect(false, {false});
        manager->setClean();
        expect(true, {true});
        manager->setClean();
        expect(true, {});
        runScript(QStringLiteral("+2"));
        expect(false, {false});
        manager->undo();
        expect(true, {true});
        manager->undo();
        expect(false, {false});
        // Recording after undoing past the clean state loses it for good.
        runScript(QStringLiteral("+3"));
        expect(false, {});
        manager->undo();
        expect(false, {});
        manager->redo();
        expect(false, {});
        manager->clear();
        expect(true, {true});
    }

    void stepAlreadyMadeIsNotRunAgain()
    {
        OssUndoManager *manager = OssUndoManager::instance();
        g_values.append(4);
        manager->addUndo(new AppendStep(4), false);
        QCOMPARE(g_values, QList<int>({4}));
        manager->undo();
        QVERIFY(g_values.isEmpty());
        manager->redo();
        QCOMPARE(g_values, QList<int>({4}));

        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Outer"));
            g_values.append(5);
            macro.addUndo(new AppendStep(5), false);
        }
        QCOMPARE(g_values, QList<int>({4, 5}));
        manager->undo();
        QCOMPARE(g_values, QList<int>({4}));
    }

    void replayRecordsNothing()
    {
        OssUndoManager *manager = OssUndoManager::instance();
        manager->addUndo(new RecordingStep);
        // The step ran once through addUndo; the step it tried to add during that run is dropped.
        QCOMPARE(g_values, QList<int>({99}));
        QCOMPARE(manager->count(), 1);
        manager->undo();
        manager->redo();
        QCOMPARE(g_values, QList<int>({99}));
        QCOMPARE(manager->count(), 1);
        QVERIFY(!manager->isReplaying());
    }

    void undoIsRefusedInsideAMacro()
    {
        OssUndoManager *manager = OssUndoManager::instance();
        manager->addUndo(new AppendStep(1));
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Busy"));
            manager->addUndo(new AppendStep(2));
            manager->undo();
            QCOMPARE(g_values, QList<int>({1, 2}));
            QVERIFY(manager->inMacro());
        }
        QCOMPARE(manager->count(), 2);
    }

    void historySignal()
    {
        OssUndoManager *manager = OssUndoManager::instance();
        QSignalSpy spy(manager, &OssUndoManager::historyChanged);
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Two"));
            manager->addUndo(new AppendStep(1));
            manager->addUndo(new AppendStep(2));
            QCOMPARE(spy.count(), 0);
        }
        QCOMPARE(spy.count(), 1);
        manager->undo();
        QCOMPARE(spy.count(), 2);
    }

private:
    OssTestEnvironment m_environment;
};

QTEST_GUILESS_MAIN(tst_UndoManager)
#include "tst_UndoManager.moc"
