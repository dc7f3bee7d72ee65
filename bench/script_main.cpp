// Creating and connecting a chain of nodes in one undo step, from one Python script through the
// scripting bridge and from C++ through the host's operations, on the real plug-in; prints both
// times and their ratio.
#include <OssApplication.h>
#include <OssDebug.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssScriptEngine.h>
#include <OssSettings.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnNodeGraphPluginCore.h>
#include <OssUndoManager.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <vector>

namespace {

const char *const PathKey = "Math/Add";

OssShaderNetwork *freshNetwork()
{
    OssProjectManager::instance()->closeProject();
    return OssProjectManager::instance()->newProject()->networks().first();
}

// The chain from C++: each node fed by the one before it, all in one undo step.
double fromCpp(int count, QString *problem)
{
    OssShaderNetwork *network = freshNetwork();
    const int steps = OssUndoManager::instance()->index();
    QElapsedTimer timer;
    timer.start();
    {
        OssUndoManager::AutoMacro macro(QStringLiteral("Build Chain"));
        OssSnBaseNode *previous = nullptr;
        for (int i = 0; i < count; ++i) {
            OssSnBaseNode *node = network->createNode(QString::fromLatin1(PathKey));
            if (previous)
                node->connectInput(QStringLiteral("A"), previous,
                                   previous->outputPointNames().constFirst());
            previous = node;
        }
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    }
    const double elapsed = timer.nsecsElapsed() / 1e6;
    if (network->nodeCount() != count || OssUndoManager::instance()->index() != steps + 1)
        *problem = QStringLiteral("C++ built %1 nodes in %2 steps")
                       .arg(network->nodeCount())
                       .arg(OssUndoManager::instance()->index() - steps);
    return elapsed;
}

// The same chain from one Python script.
double fromPython(int count, QString *problem)
{
    OssShaderNetwork *network = freshNetwork();
    const int steps = OssUndoManager::instance()->index();
    const QString script = QStringLiteral(R"PY(
graph = ossa.project().nodeGraphs()[0]
with ossa.undo("Build Chain"):
    previous = None
    for i in range(%1):
        node = graph.createNode("%2")
        if previous is not None:
            graph.connectNodes(previous, node, "A")
        previous = node
previous = node = graph = None
)PY")
                               .arg(count)
                               .arg(QString::fromLatin1(PathKey));
    QElapsedTimer timer;
    timer.start();
    const OssScriptEngine::Result result = OssScriptEngine::instance()->run(script);
    const double elapsed = timer.nsecsElapsed() / 1e6;
    if (result.status != 0)
        *problem = result.error;
    else if (network->nodeCount() != count || OssUndoManager::instance()->index() != steps + 1)
        *problem = QStringLiteral("Python built %1 nodes in %2 steps")
                       .arg(network->nodeCount())
                       .arg(OssUndoManager::instance()->index() - steps);
    return elapsed;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    OssApplication::configureAllocator();
    QApplication app(argc, argv);
    QTemporaryDir settings;
    OssSettings::setStorageDirectory(settings.path());
    OssDebugSinks::setEchoToStandardError(false);
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Script bridge benchmark"));
    parser.addHelpOption();
    const QCommandLineOption nodesOption(QStringLiteral("nodes"), QStringLiteral("Chain length."),
                                         QStringLiteral("n"), QStringLiteral("10000"));
    const QCommandLineOption runsOption(QStringLiteral("runs"), QStringLiteral("Runs per figure."),
                                        QStringLiteral("n"), QStringLiteral("3"));
    parser.addOptions({nodesOption, runsOption});
    parser.process(app);
    const int count = qMax(1, parser.value(nodesOption).toInt());
    const int runs = qMax(1, parser.value(runsOption).toInt());

    OssSnNodeGraphPluginCore plugin;
    plugin.start();
    OssScriptEngine::instance();

    QTextStream out(stdout);
    std::vector<double> cpp;
    std::vector<double> python;
    for (int run = 0; run < runs; ++run) {
        QString problem;
        cpp.push_back(fromCpp(count, &problem));
        python.push_back(fromPython(count, &problem));
        if (!problem.isEmpty()) {
            QTextStream(stderr) << problem << '\n';
            return 1;
        }
    }
    OssProjectManager::instance()->closeProject();
    const double ratio = median(python) / median(cpp);
    out << "create_and_connect_" << count << "_nodes_cpp_ms " << median(cpp) << '\n';
    out << "create_and_connect_" << count << "_nodes_python_ms " << median(python) << '\n';
    out << "python_to_cpp_ratio " << ratio << (ratio <= 3 ? " (target <= 3 met)" : " (over 3)")
        << '\n';
    return 0;
}
