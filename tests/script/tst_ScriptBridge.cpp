#include "OssPythonTestSupport.h"
#include "OssTestPluginHost.h"

#include <OssScriptEngine.h>
#include <OssScriptManager.h>
#include <OssShaderNetwork.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>
#include <OssaAPI.h>

#include <OssNgNode.h>
#include <OssSnNodeGraphViewContext.h>

#include <QPointF>
#include <QSignalSpy>
#include <QtTest>

// A script object with one slot per type scripts exchange with the host.
class Probe : public Ossa::API
{
    Q_OBJECT
    Q_PROPERTY(int level READ level WRITE setLevel)
public:
    int level() const { return m_level; }
    void setLevel(int level) { m_level = level; }
    Q_INVOKABLE int next(int Value) const { return Value + 1; }

public slots:
    bool flip(bool Value) { return !Value; }
    int twice(int Value) { return 2 * Value; }
    double half(double Value) { return Value / 2; }
    float third(float Value) { return Value / 3; }
    QString upper(const QString &Text) { return Text.toUpper(); }
    QStringList words(const QString &Text) { return Text.split(QLatin1Char(' ')); }
    QPointF moved(QPointF Point, double By) { return Point + QPointF(By, By); }
    QPoint swapped(QPoint Point) { return QPoint(Point.y(), Point.x()); }
    QVariant same(const QVariant &Value) { return Value; }
    Ossa::API *self() { return this; }
    Ossa::API *nothing() { return nullptr; }
    QList<Ossa::API *> pair() { return {this, this}; }
    int count(const QList<Ossa::API *> &Objects) { return Objects.size(); }
    bool isNone(Ossa::API *Object) { return Object == nullptr; }
    // Overloads told apart by their argument count.
    int sum(int A) { return A; }
    int sum(int A, int B) { return A + B; }
    void fail(int Type, const QString &Message)
    {
        OssScriptError(Type, __FILE__, __LINE__, "%s", Message.toUtf8().constData());
    }

private:
    int m_level = 3;
};

// The bridge between Python and the host's script objects: conversions, errors, host objects
// that go away, output, undo, and the network operations scripts use for real work.
class tst_ScriptBridge : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    Probe *m_probe = nullptr;

    OssScriptEngine *engine() { return OssScriptEngine::instance(); }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        qRegisterMetaType<QList<Ossa::API *>>();
        m_probe = new Probe;
        m_probe->initAPI(m_probe);
        OssScriptManager::instance()->registerAPI(m_probe);
        engine()->addObject(QStringLiteral("probe"), m_probe);
        OSS_RUN_PYTHON(ossPythonTestHelpers());
        OSS_RUN_PYTHON("probe = ossa.probe");
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        engine()->setOutputLimit(4 * 1024 * 1024);
    }

    void cleanup() { QVERIFY(m_host.reset()); }

    void conversions_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("expected");
        QTest::newRow("bool") << "probe.flip(True)"
                              << "False";
        QTest::newRow("int") << "probe.twice(-21)"
                             << "-42";
        QTest::newRow("double from int") << "probe.half(3)"
                                         << "1.5";
        QTest::newRow("float") << "round(probe.third(1.5), 6)"
                               << "0.5";
        QTest::newRow("QString") << "probe.upper('ab é')"
                                 << "'AB É'";
        QTest::newRow("QStringList") << "probe.words('a b')"
                                     << "['a', 'b']";
        QTest::newRow("QPointF") << "probe.moved((1, 2.5), 0.5)"
                                 << "(1.5, 3.0)";
        QTest::newRow("QPoint") << "probe.swapped([1, 2])"
                                << "(2, 1)";
        QTest::newRow("QVariant None") << "probe.same(None)"
                                       << "None";
        QTest::newRow("QVariant list") << "probe.same([1, 'a', 2.5, True])"
                                       << "[1, 'a', 2.5, True]";
        QTest::newRow("QVariant dict") << "probe.same({'k': [1]})"
                                       << "{'k': [1]}";
        QTest::newRow("QVariant big int") << "probe.same(2**40)"
                                          << "1099511627776";
        QTest::newRow("QVariant object") << "probe.same(probe) == probe"
                                         << "True";
        QTest::newRow("script object") << "probe.self() == probe"
                                       << "True";
        QTest::newRow("null object") << "probe.nothing()"
                                     << "None";
        QTest::newRow("list of objects") << "[p == probe for p in probe.pair()]"
                                         << "[True, True]";
        QTest::newRow("list argument") << "probe.count((probe, probe, probe))"
                                       << "3";
        QTest::newRow("None argument") << "probe.isNone(None)"
                                       << "True";
        QTest::newRow("overload 1") << "probe.sum(4)"
                                    << "4";
        QTest::newRow("overload 2") << "probe.sum(4, 5)"
                                    << "9";
        QTest::newRow("keyword") << "probe.sum(4, B=6)"
                                 << "10";
        QTest::newRow("invokable") << "probe.next(1)"
                                   << "2";
        QTest::newRow("property") << "probe.level"
                                  << "3";
    }

    void conversions()
    {
        QFETCH(QString, expression);
        QFETCH(QString, expected);
        OSS_RUN_PYTHON(QStringLiteral("value = repr(%1)\nassert value == %2, value")
                           .arg(expression, QStringLiteral("\"%1\"").arg(expected)));
    }

    void propertyWrite()
    {
        OSS_RUN_PYTHON("probe.level = 9");
        QCOMPARE(m_probe->level(), 9);
        OSS_RUN_PYTHON("expect_error(TypeError, 'expected int, not str', setattr, probe, 'level', "
                       "'x')");
        QCOMPARE(m_probe->level(), 9);
        m_probe->setLevel(3);
    }

    void wrongArguments_data()
    {
        QTest::addColumn<QString>("call");
        QTest::addColumn<QString>("exception");
        QTest::addColumn<QString>("message");
        QTest::newRow("str for int") << "probe.twice, 'x'"
                                     << "TypeError"
                                     << "twice() argument 1 (Value): expected int, not str";
        QTest::newRow("int for bool") << "probe.flip, 1"
                                      << "TypeError"
                                      << "flip() argument 1 (Value): expected bool, not int";
        QTest::newRow("bool for int") << "probe.twice, True"
                                      << "TypeError"
                                      << "twice() argument 1 (Value): expected int, not bool";
        QTest::newRow("int out of range") << "probe.twice, 2**40"
                                          << "ValueError"
                                          << "integer out of range for int";
        QTest::newRow("int for str") << "probe.upper, 3"
                                     << "TypeError"
                                     << "upper() argument 1 (Text): expected QString, not int";
        QTest::newRow("short point") << "probe.moved, (1,), 2"
                                     << "TypeError"
                                     << "moved() argument 1 (Point): expected QPointF, not tuple";
        QTest::newRow("float in QPoint")
            << "probe.swapped, (1.5, 2)"
            << "TypeError"
            << "swapped() argument 1 (Point): expected QPoint, not tuple";
        QTest::newRow("int in object list")
            << "probe.count, [probe, 1]"
            << "TypeError"
            << "count() argument 1 (Objects): expected QList<Ossa::API*>, not int";
        QTest::newRow("str for object")
            << "probe.isNone, 'x'"
            << "TypeError"
            << "isNone() argument 1 (Object): expected Ossa::API*, not str";
        QTest::newRow("no arguments") << "probe.twice"
                                      << "TypeError"
                                      << "twice() takes none of these arguments; it is "
                                         "twice(Value: int) -> int";
        QTest::newRow("unknown keyword") << "lambda: probe.sum(4, C=1)"
                                         << "TypeError"
                                         << "sum() takes none of these arguments; it is sum(A: "
                                            "int) -> int or sum(A: int, B: int) -> int";
        QTest::newRow("set in QVariant") << "probe.same, {1}"
                                         << "TypeError"
                                         << "same() argument 1 (Value): cannot pass a value of "
                                            "type set to the host";
        QTest::newRow("no such attribute") << "getattr, probe, 'nosuch'"
                                           << "AttributeError"
                                           << "'Probe' object has no "
                                              "attribute 'nosuch'";
    }

    void wrongArguments()
    {
        QFETCH(QString, call);
        QFETCH(QString, exception);
        QFETCH(QString, message);
        QString escaped = message;
        escaped.replace(QLatin1Char('\''), QStringLiteral("\\'"));
        OSS_RUN_PYTHON(QStringLiteral("expect_error(%1, '%2', %3)").arg(exception, escaped, call));
        // The host is unharmed and keeps answering.
        OSS_RUN_PYTHON("assert probe.twice(2) == 4");
    }

    void scriptErrorsBecomeExceptions_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("exception");
        QTest::newRow("object not valid") << 0 << "ObjectNotValid";
        QTest::newRow("object unavailable") << 11 << "ObjectUnavailable";
        QTest::newRow("out of range") << 13 << "OutOfRange";
        QTest::newRow("not found") << 3 << "NotFound";
    }

    void scriptErrorsBecomeExceptions()
    {
        QFETCH(int, type);
        QFETCH(QString, exception);
        OSS_RUN_PYTHON(QStringLiteral("error = expect_error(ossa.%1, 'it went wrong', probe.fail, "
                                      "%2, 'it went wrong')\n"
                                      "assert isinstance(error, ossa.ScriptError)\n"
                                      "assert error.type == %2\n"
                                      "assert type(error).__name__ == '%1'")
                           .arg(exception)
                           .arg(type));
    }

    void raisingScriptsReportAndTheHostGoesOn()
    {
        const OssScriptEngine::Result result =
            engine()->run(QStringLiteral("def inner():\n    return 1 / 0\ninner()\n"),
                          QStringLiteral("broken.py"));
        QCOMPARE(result.status, 1);
        QVERIFY2(result.error.contains(QLatin1String("ZeroDivisionError")),
                 qPrintable(result.error));
        QVERIFY2(result.error.contains(QLatin1String("broken.py\", line 2, in inner")),
                 qPrintable(result.error));
        const OssScriptEngine::Result syntax = engine()->run(QStringLiteral("def ("));
        QCOMPARE(syntax.status, 1);
        QVERIFY(syntax.error.contains(QLatin1String("SyntaxError")));
        OSS_RUN_PYTHON("assert probe.twice(1) == 2");
    }

    void exitStatus_data()
    {
        QTest::addColumn<QString>("code");
        QTest::addColumn<int>("status");
        QTest::newRow("plain end") << "x = 1" << 0;
        QTest::newRow("exit without code") << "import sys\nsys.exit()" << 0;
        QTest::newRow("exit 3") << "raise SystemExit(3)" << 3;
        QTest::newRow("exit with text") << "import sys\nsys.exit('no input')" << 1;
        QTest::newRow("exception") << "raise ValueError('bad')" << 1;
        QTest::newRow("script error") << "probe.fail(13, 'far')" << 1;
    }

    void exitStatus()
    {
        QFETCH(QString, code);
        QFETCH(int, status);
        QCOMPARE(engine()->run(code).status, status);
    }

    void outputReachesTheEngine()
    {
        QSignalSpy spy(engine(), &OssScriptEngine::output);
        OSS_RUN_PYTHON("print('hello')\nimport sys\nsys.stderr.write('careful\\n')");
        QString out;
        QString err;
        for (const QList<QVariant> &call : qAsConst(spy))
            (call.at(1).toBool() ? err : out) += call.at(0).toString();
        QCOMPARE(out, QStringLiteral("hello\n"));
        QCOMPARE(err, QStringLiteral("careful\n"));
    }

    void endlessOutputIsStopped_data()
    {
        QTest::addColumn<QString>("code");
        QTest::newRow("print loop") << "while True:\n    print('x' * 100)";
        QTest::newRow("loop that swallows exceptions")
            << "while True:\n    try:\n        print('x' * 100)\n    except Exception:\n        "
               "pass";
    }

    void endlessOutputIsStopped()
    {
        QFETCH(QString, code);
        engine()->setOutputLimit(200000);
        qint64 written = 0;
        const QMetaObject::Connection counting =
            connect(engine(), &OssScriptEngine::output, this,
                    [&written](const QString &text, bool) { written += text.size(); });
        const OssScriptEngine::Result result = engine()->run(code);
        disconnect(counting);
        QCOMPARE(result.status, 1);
        QVERIFY2(result.error.contains(QLatin1String("OutputLimitExceeded")),
                 qPrintable(result.error));
        QVERIFY(written <= 200000 + 200);
        // The next run has its own budget.
        OSS_RUN_PYTHON("print('after')");
    }

    void goneScriptObjectsRaise()
    {
        auto *doomed = new Probe;
        doomed->initAPI(doomed);
        OssScriptManager::instance()->registerAPI(doomed);
        engine()->addObject(QStringLiteral("doomed"), doomed);
        OSS_RUN_PYTHON("doomed = ossa.doomed\nassert doomed.twice(2) == 4\nrepeat = doomed.twice");
        OssScriptManager::instance()->deleteAPI(doomed);
        OSS_RUN_PYTHON("expect_error(ossa.ObjectNotValid, 'Script object not valid', lambda: "
                       "doomed.twice)\n"
                       "expect_error(ossa.ObjectNotValid, 'Script object not valid', repeat, 2)\n"
                       "assert not doomed.isValid()");
        OSS_RUN_PYTHON("del doomed, repeat\nossa.doomed = None");
    }

    void undoBlockIsOneStep()
    {
        OssUndoManager *undo = OssUndoManager::instance();
        const int before = undo->index();
        OSS_RUN_PYTHON(R"PY(
graph = ossa.project().nodeGraphs()[0]
start = graph.nodeCount()
with ossa.undo("Build Chain"):
    a = graph.createNode("Procedural/Noise/Perlin", "A")
    b = graph.createNode("Filter/Blur", "B")
    assert graph.connectNodes(a, b, "Input")
    b.setAttribute(b.attributeNames()[0], b.attribute(b.attributeNames()[0]))
assert graph.nodeCount() == start + 2
assert b.inputNode("Input") == a
)PY");
        QCOMPARE(undo->index(), before + 1);
        QCOMPARE(undo->undoText(), QStringLiteral("Build Chain"));
        const QString built = m_network->dump();
        undo->undo();
        QVERIFY(!m_network->node(QStringLiteral("A")));
        QVERIFY(!m_network->node(QStringLiteral("B")));
        undo->redo();
        QCOMPARE(m_network->dump(), built);
    }

    void undoBlockLeftByAnExceptionTakesItsChangesBack()
    {
        OssUndoManager *undo = OssUndoManager::instance();
        const int before = undo->index();
        const QString start = m_network->dump();
        const OssScriptEngine::Result result = engine()->run(QStringLiteral(R"PY(
graph = ossa.project().nodeGraphs()[0]
with ossa.undo("Half Done"):
    graph.createNode("Filter/Blur", "Kept")
    graph.createNode("No/Such/Type")
)PY"));
        QCOMPARE(result.status, 1);
        QVERIFY2(result.error.contains(QLatin1String("ossa.NotFound: Unknown node path key "
                                                     "'No/Such/Type'")),
                 qPrintable(result.error));
        QCOMPARE(undo->index(), before);
        QCOMPARE(m_network->dump(), start);
    }

    void eachCallOutsideABlockIsItsOwnStep()
    {
        OssUndoManager *undo = OssUndoManager::instance();
        const int before = undo->index();
        OSS_RUN_PYTHON("graph = ossa.project().nodeGraphs()[0]\n"
                       "n = graph.createNode('Filter/Blur', 'Solo')\n"
                       "n.setName('Renamed')");
        QCOMPARE(undo->index(), before + 2);
        QVERIFY(m_network->node(QStringLiteral("Renamed")));
        undo->undo();
        QVERIFY(m_network->node(QStringLiteral("Solo")));
    }

    void networkOperationsReportBadInput()
    {
        OSS_RUN_PYTHON(R"PY(
graph = ossa.project().nodeGraphs()[0]
a = graph.createNode("Filter/Blur", "A")
expect_error(ossa.NotFound, "Unknown node path key 'Nope'", graph.createNode, "Nope")
expect_error(ossa.InvalidArgument, "None is not a valid source node", graph.connectNodes, None, a,
             "Input")
expect_error(ossa.NotFound, "Node 'A' has no attribute 'nope'", a.attribute, "nope")
expect_error(ossa.NotFound, "Node 'A' has no input 'nope'", graph.disconnectInput, a, "nope")
try:
    graph.connectNodes(a, a, "Input")
except ossa.OperationFailed as failure:
    assert str(failure).startswith("Cannot connect 'A' to 'A.Input'"), str(failure)
else:
    raise AssertionError("a node fed by itself")
assert graph.node("nope") is None
)PY");
    }

    void selectionAndAutoplace()
    {
        QVERIFY(m_host.createMixChain(m_network));
        OSS_RUN_PYTHON(R"PY(
graph = ossa.project().nodeGraphs()[0]
graph.setSelectedNodes([graph.node("N1"), graph.node("Mix")])
assert sorted(n.name() for n in graph.selectedNodes()) == ["Mix", "N1"]
assert graph.node("N1").isSelected()
graph.clearSelection()
assert graph.selectedNodes() == []
graph.node("Out").setSelected(True)
)PY");
        // Everything piled on one spot; autoplace spreads the whole network out and keeps the
        // selection as it was.
        for (OssSnBaseNode *node : m_network->nodes())
            OssSnNodeGraphViewContext::guiNodeOf(node)->setPos(0, 0);
        OssUndoManager *undo = OssUndoManager::instance();
        const int before = undo->index();
        OSS_RUN_PYTHON("ossa.project().nodeGraphs()[0].autoplace()");
        QCOMPARE(undo->index(), before + 1);
        QSet<QPair<qreal, qreal>> places;
        for (OssSnBaseNode *node : m_network->nodes()) {
            const QPointF at = OssSnNodeGraphViewContext::guiNodeOf(node)->pos();
            places.insert(qMakePair(at.x(), at.y()));
        }
        QCOMPARE(places.size(), m_network->nodeCount());
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{m_network->node("Out")});
    }

    void completions()
    {
        QVERIFY(engine()->completions(QStringLiteral("ossa.pal")).contains("ossa.palette("));
        QVERIFY(engine()->completions(QStringLiteral("probe.tw")).contains("probe.twice("));
        QVERIFY(engine()->completions(QStringLiteral("probe.lev")).contains("probe.level"));
        OSS_RUN_PYTHON("graph = ossa.project().nodeGraphs()[0]");
        const QStringList found = engine()->completions(QStringLiteral("graph.create"));
        QCOMPARE(found, QStringList{QStringLiteral("graph.createNode(")});
        QVERIFY(engine()->completions(QStringLiteral("nosuchname.x")).isEmpty());
    }
};

QTEST_MAIN(tst_ScriptBridge)
#include "tst_ScriptBridge.moc"
