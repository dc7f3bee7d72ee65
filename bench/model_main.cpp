// Measures the shader-network model on networks of 1,000 to 10,000 nodes against a floor
// measured in the same run: the same graph kept as plain structs and written and read with
// QXmlStreamWriter/QXmlStreamReader directly. The ratio (ours / floor) is the model's overhead
// for undo, signals, checks and its file format; a ratio that grows with N shows a cost that is
// worse than linear.
//   scenario <name> <N> <ours_ms> <baseline_ms> <ratio>

#include <OssApplication.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>

#include <QBuffer>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTextStream>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

// The plain floor: what any node graph must at least store.
struct PlainNode
{
    QString name;
    QString pathKey;
    QVector<QString> inputs{QStringLiteral("Base"), QStringLiteral("Over"), QStringLiteral("Mask")};
    QVector<PlainNode *> sources{nullptr, nullptr, nullptr};
};

// Node I (I > 0) feeds input I % 2 ("Base" or "Over") of node (I - 1) / 2: a binary tree of
// merges, the shape of a deep layer stack.
int parentOf(int index)
{
    return (index - 1) / 2;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double timeMs(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return timer.nsecsElapsed() / 1e6;
}

struct Figures
{
    double create = 0, connect = 0, save = 0, load = 0, undoAll = 0;
};

Figures measureOurs(int count, const QString &directory)
{
    Figures figures;
    OssShaderNetwork *network = OssProjectManager::instance()->newProject()->networks().first();
    QList<OssSnBaseNode *> nodes;
    figures.create = timeMs([&] {
        OssUndoManager::AutoMacro macro(QStringLiteral("Create"));
        for (int i = 0; i < count; ++i)
            nodes.append(network->createNode(QStringLiteral("Layer/Merge")));
    });
    figures.connect = timeMs([&] {
        OssUndoManager::AutoMacro macro(QStringLiteral("Connect"));
        for (int i = 1; i < count; ++i)
            nodes.at(parentOf(i))
                ->connectInput(i % 2 ? QStringLiteral("Base") : QStringLiteral("Over"), nodes.at(i),
                               QStringLiteral("Output"));
    });
    const QString path = directory + QStringLiteral("/ours.ossa");
    QString error;
    figures.save = timeMs([&] { OssProjectManager::instance()->saveProject(path, &error); });
    figures.undoAll = timeMs([&] {
        OssUndoManager::instance()->undo();
        OssUndoManager::instance()->undo();
    });
    figures.load = timeMs([&] { OssProjectManager::instance()->openProject(path, &error); });
    if (!error.isEmpty())
        qFatal("%s", qPrintable(error));
    OssProjectManager::instance()->closeProject();
    return figures;
}

Figures measureFloor(int count, const QString &directory)
{
    Figures figures;
    std::vector<PlainNode> nodes;
    figures.create = timeMs([&] {
        nodes.reserve(count);
        for (int i = 0; i < count; ++i)
            nodes.push_back(
                PlainNode{QStringLiteral("Merge%1").arg(i), QStringLiteral("Layer/Merge")});
    });
    figures.connect = timeMs([&] {
        for (int i = 1; i < count; ++i)
            nodes[parentOf(i)].sources[i % 2 ? 0 : 1] = &nodes[i];
    });
    const QString path = directory + QStringLiteral("/floor.xml");
    figures.save = timeMs([&] {
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        QXmlStreamWriter writer(&file);
        writer.setAutoFormatting(true);
        writer.writeStartDocument();
        writer.writeStartElement(QStringLiteral("network"));
        for (const PlainNode &node : nodes) {
            writer.writeStartElement(QStringLiteral("node"));
            writer.writeAttribute(QStringLiteral("name"), node.name);
            writer.writeAttribute(QStringLiteral("pathKey"), node.pathKey);
            for (int k = 0; k < node.inputs.size(); ++k) {
                writer.writeStartElement(QStringLiteral("input"));
                writer.writeAttribute(QStringLiteral("name"), node.inputs.at(k));
                if (node.sources.at(k))
                    writer.writeAttribute(QStringLiteral("source"), node.sources.at(k)->name);
                writer.writeEndElement();
            }
            writer.writeEndElement();
        }
        writer.writeEndDocument();
    });
    figures.undoAll = timeMs([&] {
        for (PlainNode &node : nodes)
            std::fill(node.sources.begin(), node.sources.end(), nullptr);
        nodes.clear();
    });
    figures.load = timeMs([&] {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QXmlStreamReader reader(&file);
        std::vector<PlainNode> loaded;
        QHash<QString, int> byName;
        QVector<QPair<int, QPair<int, QString>>> pending;
        while (!reader.atEnd()) {
            if (reader.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (reader.name() == QLatin1String("node")) {
                byName.insert(reader.attributes().value("name").toString(), int(loaded.size()));
                loaded.push_back(PlainNode{reader.attributes().value("name").toString(),
                                           reader.attributes().value("pathKey").toString()});
            } else if (reader.name() == QLatin1String("input") &&
                       reader.attributes().hasAttribute("source")) {
                pending.append(
                    {int(loaded.size()) - 1, {0, reader.attributes().value("source").toString()}});
            }
        }
        for (const auto &link : pending)
            loaded[link.first].sources[link.second.first] =
                &loaded[byName.value(link.second.second)];
    });
    return figures;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // The process is set up as the host shell sets itself up.
    OssApplication::configureAllocator();
    QGuiApplication app(argc, argv);
    QTemporaryDir directory;
    QTemporaryDir settings;
    qputenv("OSSA_SETTINGS_DIR", settings.path().toUtf8());
    const int runs = 3;
    QTextStream out(stdout);
    out << QStringLiteral("%1 %2 %3 %4 %5\n")
               .arg(QStringLiteral("scenario"), -12)
               .arg(QStringLiteral("N"), 6)
               .arg(QStringLiteral("ours ms"), 10)
               .arg(QStringLiteral("floor ms"), 10)
               .arg(QStringLiteral("ratio"), 8);
    QStringList lines;
    for (int count : {1000, 3000, 10000}) {
        std::vector<Figures> ours, floor;
        for (int run = 0; run < runs; ++run) {
            floor.push_back(measureFloor(count, directory.path()));
            ours.push_back(measureOurs(count, directory.path()));
        }
        const std::vector<std::pair<QString, double Figures::*>> scenarios{
            {QStringLiteral("create"), &Figures::create},
            {QStringLiteral("connect"), &Figures::connect},
            {QStringLiteral("save"), &Figures::save},
            {QStringLiteral("load"), &Figures::load},
            {QStringLiteral("undo_all"), &Figures::undoAll}};
        for (const auto &scenario : scenarios) {
            std::vector<double> a, b;
            for (const Figures &f : ours)
                a.push_back(f.*scenario.second);
            for (const Figures &f : floor)
                b.push_back(f.*scenario.second);
            const double mine = median(a), base = qMax(median(b), 0.001);
            out << QStringLiteral("%1 %2 %3 %4 %5\n")
                       .arg(scenario.first, -12)
                       .arg(count, 6)
                       .arg(mine, 10, 'f', 2)
                       .arg(base, 10, 'f', 2)
                       .arg(mine / base, 8, 'f', 1);
            lines << QStringLiteral("scenario model_%1 %2 %3 %4 %5")
                         .arg(scenario.first)
                         .arg(count)
                         .arg(mine, 0, 'f', 3)
                         .arg(base, 0, 'f', 3)
                         .arg(mine / base, 0, 'f', 3);
        }
        out.flush();
    }
    for (const QString &line : qAsConst(lines))
        out << line << '\n';
    return 0;
}
