// Measures the node graph against a plain QGraphicsScene baseline built in the same process, for
// several graph sizes, and prints a table plus one machine-readable line per scenario:
//   scenario <name> <N> <ours_ms> <baseline_ms> <ratio>
#include "BenchSystem.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssUndoManager.h>

#include <OssApplication.h>
#include <OssDebug.h>
#include <OssSettings.h>

#include <QDir>
#include <QGraphicsRectItem>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QFile>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextStream>

#include <malloc.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

namespace {

double median(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    std::sort(values.begin(), values.end());
    const size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2.0;
}

// Heap in use by this process in kilobytes (allocated blocks, mapped ones included): unlike the
// resident set, it falls when memory is freed, so sizes measured one after another compare.
double residentKilobytes()
{
    const struct mallinfo2 info = mallinfo2();
    return double(info.uordblks + info.hblkhd) / 1024.0;
}

// Resident set size of this process in kilobytes.
[[maybe_unused]] double residentSetKilobytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0.0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble();
    }
    return 0.0;
}

double elapsedMs(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.nsecsElapsed() / 1e6;
}

void settle(BenchSystem &system)
{
    QCoreApplication::processEvents();
    // Asking the scene for items forces its spatial index to be built.
    system.scene()->items(QPointF(0, 0));
    QCoreApplication::processEvents();
}

void repaint(BenchSystem &system)
{
    system.view()->viewport()->repaint();
    QImage image(system.view()->viewport()->size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    system.view()->render(&painter);
}

void sendMouse(QWidget *target, QEvent::Type type, const QPoint &position, Qt::MouseButtons buttons)
{
    QMouseEvent event(type, position, target->mapToGlobal(position),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

struct Result
{
    QString scenario;
    int size = 0;
    double ours = -1;     // milliseconds (or KB per node); negative when not measured
    double baseline = -1; // likewise
};

// The measured scenarios; each returns one figure per system, the median over Runs.
class Bench
{
public:
    Bench(const BenchGraph &graph, int runs) : m_graph(graph), m_runs(runs) {}

    double open(BenchSystem &system)
    {
        std::vector<double> times;
        for (int run = 0; run < m_runs; ++run) {
            system.tearDown();
            times.push_back(elapsedMs([&] {
                system.build(m_graph);
                settle(system);
            }));
        }
        return median(times);
    }

    double memoryPerNode(BenchSystem &system)
    {
        system.tearDown();
        QCoreApplication::processEvents();
        const double before = residentKilobytes();
        system.build(m_graph);
        settle(system);
        repaint(system);
        return (residentKilobytes() - before) / qMax(1, m_graph.nodes.size());
    }

    double firstFullRepaint(BenchSystem &system)
    {
        std::vector<double> times;
        for (int run = 0; run < m_runs; ++run) {
            system.build(m_graph);
            settle(system);
            QGraphicsView *view = system.view();
            view->fitInView(system.scene()->itemsBoundingRect(), Qt::KeepAspectRatio);
            times.push_back(elapsedMs([&] { repaint(system); }));
        }
        return median(times);
    }

    double zoomStep(BenchSystem &system)
    {
        std::vector<double> times;
        for (int run = 0; run < m_runs; ++run) {
            QGraphicsView *view = system.view();
            view->resetTransform();
            view->centerOn(system.nodeCenter(m_graph.nodes.size() / 2));
            repaint(system);
            double total = 0.0;
            for (int step = 0; step < 8; ++step) {
                view->scale(1 / 1.2, 1 / 1.2);
                total += elapsedMs([&] { repaint(system); });
            }
            times.push_back(total / 8);
        }
        return median(times);
    }

    double pan(BenchSystem &system)
    {
        std::vector<double> times;
        QGraphicsView *view = system.view();
        view->resetTransform();
        view->centerOn(system.nodeCenter(m_graph.nodes.size() / 2));
        repaint(system);
        for (int run = 0; run < m_runs; ++run) {
            QScrollBar *bar = view->horizontalScrollBar();
            bar->setValue(bar->value() + (run % 2 ? -50 : 50));
            times.push_back(elapsedMs([&] { repaint(system); }));
        }
        return median(times);
    }

    double hitTest(BenchSystem &system)
    {
        std::vector<double> times;
        const int probes = 1000;
        for (int run = 0; run < m_runs; ++run) {
            times.push_back(elapsedMs([&] {
                                for (int i = 0; i < probes; ++i)
                                    system.scene()->items(
                                        system.nodeCenter((i * 7919) % m_graph.nodes.size()));
                            }) /
                            probes);
        }
        return median(times);
    }

    double drag(BenchSystem &system)
    {
        QGraphicsView *view = system.view();
        view->resetTransform();
        const QPointF grab = system.nodeCenter(0);
        view->centerOn(grab);
        system.selectNodes(qMin(1000, m_graph.nodes.size()));
        QWidget *viewport = view->viewport();
        QPoint at = view->mapFromScene(grab);
        sendMouse(viewport, QEvent::MouseButtonPress, at, Qt::LeftButton);
        std::vector<double> times;
        for (int step = 0; step < m_runs * 4; ++step) {
            at += QPoint(step % 2 ? -3 : 3, 1);
            times.push_back(
                elapsedMs([&] { sendMouse(viewport, QEvent::MouseMove, at, Qt::LeftButton); }));
        }
        sendMouse(viewport, QEvent::MouseButtonRelease, at, Qt::NoButton);
        return median(times);
    }

    // The lower bound of a layout: longest-path columns of the same edges, positions set.
    void longestPathLayout(BenchSystem &system)
    {
        const int count = m_graph.nodes.size();
        QVector<int> depth(count, 0);
        // Edges run from a node to one with a smaller index in both generated graphs; walking
        // the nodes in index order settles each depth before it is used.
        QVector<QVector<int>> sources(count);
        for (const BenchGraph::Edge &edge : m_graph.edges)
            sources[edge.to].append(edge.from);
        for (int i = 0; i < count; ++i)
            for (int from : sources.at(i))
                depth[from] = qMax(depth[from], depth[i] + 1);
        QVector<int> rows(count + 1, 0);
        const QList<QGraphicsItem *> items = system.scene()->items(Qt::AscendingOrder);
        int index = 0;
        for (QGraphicsItem *item : items) {
            if (item->parentItem() || item->type() != QGraphicsRectItem::Type)
                continue;
            if (index >= count)
                break;
            item->setPos(-depth[index] * 350.0, rows[depth[index]]++ * 140.0);
            ++index;
        }
    }

    // Writing and reading one element per node and edge with Qt's XML stream classes.
    double plainXmlRoundTrip(const QString &path)
    {
        return elapsedMs([&] {
            {
                QFile file(path);
                file.open(QIODevice::WriteOnly);
                QXmlStreamWriter writer(&file);
                writer.writeStartDocument();
                writer.writeStartElement(QStringLiteral("graph"));
                for (int i = 0; i < m_graph.nodes.size(); ++i) {
                    writer.writeStartElement(QStringLiteral("node"));
                    writer.writeAttribute(QStringLiteral("name"), QString::number(i));
                    writer.writeAttribute(QStringLiteral("x"),
                                          QString::number(m_graph.nodes[i].position.x()));
                    writer.writeAttribute(QStringLiteral("y"),
                                          QString::number(m_graph.nodes[i].position.y()));
                    writer.writeEndElement();
                }
                for (const BenchGraph::Edge &edge : m_graph.edges) {
                    writer.writeStartElement(QStringLiteral("edge"));
                    writer.writeAttribute(QStringLiteral("from"), QString::number(edge.from));
                    writer.writeAttribute(QStringLiteral("to"), QString::number(edge.to));
                    writer.writeEndElement();
                }
                writer.writeEndDocument();
            }
            QFile file(path);
            file.open(QIODevice::ReadOnly);
            QXmlStreamReader reader(&file);
            QVector<QPointF> positions;
            while (!reader.atEnd())
                if (reader.readNext() == QXmlStreamReader::StartElement &&
                    reader.name() == QLatin1String("node"))
                    positions.append(QPointF(reader.attributes().value("x").toDouble(),
                                             reader.attributes().value("y").toDouble()));
        });
    }

private:
    const BenchGraph &m_graph;
    int m_runs;
};

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // The process is set up as the host shell sets itself up.
    OssApplication::configureAllocator();
    QApplication app(argc, argv);
    // The benchmark never touches the user's settings.
    QTemporaryDir settings;
    OssSettings::setStorageDirectory(settings.path());
    OssDebugSinks::setEchoToStandardError(false);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Node graph benchmarks"));
    parser.addHelpOption();
    QCommandLineOption sizesOption(QStringLiteral("sizes"),
                                   QStringLiteral("Comma-separated node counts."),
                                   QStringLiteral("list"), QStringLiteral("1000,5000,10000"));
    QCommandLineOption runsOption(QStringLiteral("runs"), QStringLiteral("Runs per figure."),
                                  QStringLiteral("n"), QStringLiteral("3"));
    QCommandLineOption graphOption(QStringLiteral("graph"), QStringLiteral("tree or artist."),
                                   QStringLiteral("kind"), QStringLiteral("tree"));
    QCommandLineOption commandsOnlyOption(
        QStringLiteral("commands-only"),
        QStringLiteral("Only the whole-system commands (autoplace, undo, save and load)."));
    parser.addOptions({sizesOption, runsOption, graphOption, commandsOnlyOption});
    parser.process(app);

    const int runs = qMax(1, parser.value(runsOption).toInt());
    const bool artist = parser.value(graphOption) == QLatin1String("artist");
    const bool commandsOnly = parser.isSet(commandsOnlyOption);
    std::vector<Result> results;
    QTextStream out(stdout);

    for (const QString &sizeText : parser.value(sizesOption).split(QLatin1Char(','))) {
        const int size = sizeText.toInt();
        if (size <= 0)
            continue;
        const BenchGraph graph =
            artist ? BenchGraph::artistNetwork(size) : BenchGraph::binaryTree(size);
        Bench bench(graph, runs);
        BaselineSystem baseline;
        PluginSystem ours;
        NodeGraphSystem library;
        const std::vector<std::pair<QString, std::function<double(BenchSystem &)>>> scenarios{
            {QStringLiteral("memory_kb_per_node"),
             [&](BenchSystem &s) { return bench.memoryPerNode(s); }},
            {QStringLiteral("open"), [&](BenchSystem &s) { return bench.open(s); }},
            {QStringLiteral("first_full_repaint"),
             [&](BenchSystem &s) { return bench.firstFullRepaint(s); }},
            {QStringLiteral("zoom_step"), [&](BenchSystem &s) { return bench.zoomStep(s); }},
            {QStringLiteral("pan"), [&](BenchSystem &s) { return bench.pan(s); }},
            {QStringLiteral("hit_test"), [&](BenchSystem &s) { return bench.hitTest(s); }},
            {QStringLiteral("drag_step"), [&](BenchSystem &s) { return bench.drag(s); }},
        };
        // Each system runs the whole sequence (later scenarios reuse the scene the earlier ones
        // built): the baseline first, then ours, in the same process.
        std::vector<double> baseFigures;
        if (!commandsOnly) {
            for (const auto &scenario : scenarios)
                baseFigures.push_back(scenario.second(baseline));
            baseline.tearDown();
            for (size_t i = 0; i < scenarios.size(); ++i)
                results.push_back(
                    Result{scenarios[i].first, size, scenarios[i].second(ours), baseFigures[i]});
        }

        // Commands of the whole system, each against a baseline of the same run.
        ours.build(graph);
        settle(ours);
        // Autoplace against a longest-path column layout of the same edges on the baseline.
        const double layoutFloor = [&] {
            baseline.build(graph);
            settle(baseline);
            const double ms = elapsedMs([&] {
                bench.longestPathLayout(baseline);
                settle(baseline);
            });
            baseline.tearDown();
            return ms;
        }();
        // Settling is counted: the scene refiles the moved items when the event loop turns next.
        const double autoplace = elapsedMs([&] {
            OssSnNodeGraphViewContextManager::instance()->beautifyNodesLayout(
                ours.network(), QList<OssSnBaseNode *>(), true);
            settle(ours);
        });
        results.push_back(Result{QStringLiteral("autoplace"), size, autoplace, layoutFloor});
        // Undo and redo of removing every node, against the removal itself.
        const double removal = elapsedMs([&] {
            const QVector<OssSnBaseNode *> all = ours.nodes();
            ours.network()->removeNodes(QList<OssSnBaseNode *>(all.begin(), all.end()));
        });
        const double undoRedo = elapsedMs([&] {
            OssUndoManager::instance()->undo();
            OssUndoManager::instance()->redo();
        });
        results.push_back(Result{QStringLiteral("undo_redo_remove_all"), size, undoRedo, removal});
        OssUndoManager::instance()->undo();
        settle(ours);
        // The view's "Remove Selected Nodes" of 1,000 selected nodes and its undo, against taking
        // the same nodes with their edges out of the bare scene and putting them back.
        const int removed = qMin(1000, graph.nodes.size());
        const auto [plainRemoval, plainPutBack] = [&] {
            baseline.build(graph);
            settle(baseline);
            baseline.selectNodes(removed);
            const QList<QGraphicsItem *> items = baseline.selectedNodesWithEdges();
            const double out = elapsedMs([&] {
                for (QGraphicsItem *item : items)
                    baseline.scene()->removeItem(item);
                settle(baseline);
            });
            const double in = elapsedMs([&] {
                for (QGraphicsItem *item : items)
                    baseline.scene()->addItem(item);
                settle(baseline);
            });
            baseline.tearDown();
            return std::make_pair(out, in);
        }();
        auto *view = qobject_cast<OssShaderNetworkView *>(ours.view());
        ours.selectNodes(removed);
        const double deleteSelected = elapsedMs([&] {
            view->deleteSelectedNodes();
            settle(ours);
        });
        results.push_back(
            Result{QStringLiteral("delete_selected"), size, deleteSelected, plainRemoval});
        const double undoDelete = elapsedMs([&] {
            OssUndoManager::instance()->undo();
            settle(ours);
        });
        results.push_back(
            Result{QStringLiteral("undo_delete_selected"), size, undoDelete, plainPutBack});
        // Selecting everything upstream of the root (an absolute target: no baseline).
        ours.selectNodes(0);
        ours.nodes().first()->setSelected(true);
        const double upstream = elapsedMs([&] { view->selectAllUpstream(); });
        results.push_back(Result{QStringLiteral("select_upstream_root"), size, upstream, -1});
        // Save, close and open again, against writing and reading the scene's items as XML.
        const QString path = QDir::temp().filePath(QStringLiteral("ossa-bench.ossa"));
        // The three parts are reported too, so that the largest one is plain to see.
        QString error;
        const double save =
            elapsedMs([&] { OssProjectManager::instance()->saveProject(path, &error); });
        const double close = elapsedMs([&] { OssProjectManager::instance()->closeProject(); });
        const double load =
            elapsedMs([&] { OssProjectManager::instance()->openProject(path, &error); });
        const double xmlFloor = bench.plainXmlRoundTrip(path + QStringLiteral(".xml"));
        results.push_back(
            Result{QStringLiteral("save_close_load"), size, save + close + load, xmlFloor});
        results.push_back(Result{QStringLiteral("save_part"), size, save, -1});
        results.push_back(Result{QStringLiteral("close_part"), size, close, -1});
        results.push_back(Result{QStringLiteral("load_part"), size, load, -1});
        ours.tearDown();
        QFile::remove(path);
        QFile::remove(path + QStringLiteral(".xml"));

        // The node-graph library alone, for comparison with the whole system.
        for (size_t i = 1; !commandsOnly && i < scenarios.size(); ++i)
            results.push_back(Result{QStringLiteral("gui_") + scenarios[i].first, size,
                                     scenarios[i].second(library), baseFigures[i]});
        library.tearDown();
    }

    auto figure = [](double value) {
        return value < 0 ? QStringLiteral("n/a") : QString::number(value, 'f', 3);
    };
    out << QStringLiteral("%1 %2 %3 %4 %5\n")
               .arg(QStringLiteral("scenario"), -22)
               .arg(QStringLiteral("N"), 6)
               .arg(QStringLiteral("ours"), 12)
               .arg(QStringLiteral("baseline"), 12)
               .arg(QStringLiteral("ratio"), 8);
    for (const Result &r : results) {
        const QString ratio = r.ours < 0 || r.baseline <= 0
                                  ? QStringLiteral("n/a")
                                  : QString::number(r.ours / r.baseline, 'f', 2);
        out << QStringLiteral("%1 %2 %3 %4 %5\n")
                   .arg(r.scenario, -22)
                   .arg(r.size, 6)
                   .arg(figure(r.ours), 12)
                   .arg(figure(r.baseline), 12)
                   .arg(ratio, 8);
    }
    for (const Result &r : results) {
        const QString ratio = r.ours < 0 || r.baseline <= 0
                                  ? QStringLiteral("n/a")
                                  : QString::number(r.ours / r.baseline, 'f', 3);
        out << "scenario " << r.scenario << ' ' << r.size << ' ' << figure(r.ours) << ' '
            << figure(r.baseline) << ' ' << ratio << '\n';
    }
    return 0;
}
