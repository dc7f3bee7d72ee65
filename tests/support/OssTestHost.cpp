#include "OssTestHost.h"

#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssResourceInfo.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnNodeTypeCatalogue.h>
#include <OssUndoManager.h>

#include <QDir>

OssTestHost::OssTestHost() = default;

OssTestHost::~OssTestHost()
{
    // The project goes while the application and its widgets are still there, not at exit.
    OssProjectManager::instance()->closeProject();
}

bool OssTestHost::start()
{
    m_error.clear();
    OssUndoManager::instance();
    OssProjectManager *projects = OssProjectManager::instance();
    OssShaderNetworkManager::instance();
    const OssSnNodeTypeCatalogue *catalogue = OssSnNodeTypeCatalogue::instance();
    if (catalogue->count() == 0)
        return fail(QStringLiteral("no node types under \"%1\"")
                        .arg(OssResourceInfo::instance()->nodeTypePath()));
    if (projects->currentProject())
        return fail(QStringLiteral("a project is open before the host started"));
    return true;
}

bool OssTestHost::reset()
{
    m_error.clear();
    OssProjectManager::instance()->closeProject();
    // Steps recorded without a project (GUI items of a test's own scene) go too.
    OssUndoManager::instance()->clear();
    m_capture.clear();
    const QStringList left = leftovers();
    if (!left.isEmpty())
        return fail(left.join(QLatin1Char('\n')));
    return true;
}

QStringList OssTestHost::leftovers() const
{
    QStringList found;
    if (OssProjectManager::instance()->currentProject())
        found << QStringLiteral("a project is still open");
    if (const int steps = OssUndoManager::instance()->count())
        found << QStringLiteral("undo steps left: %1").arg(steps);
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    if (networks->currentShaderNetwork())
        found << QStringLiteral("a shader network is still current");
    if (networks->currentViewNetwork())
        found << QStringLiteral("a shader network is still shown");
    if (networks->currentViewerNode())
        found << QStringLiteral("a viewer node is still current");
    return found;
}

OssShaderNetwork *OssTestHost::newProject(const QString &entityName)
{
    m_error.clear();
    OssProject *project = OssProjectManager::instance()->newProject(entityName);
    return project->networks().value(0);
}

bool OssTestHost::createNodes(OssShaderNetwork *network,
                              const QList<QPair<QString, QString>> &nodes)
{
    if (!network)
        return fail(QStringLiteral("no network to create nodes in"));
    for (const auto &node : nodes)
        if (!network->createNode(node.first, node.second))
            return fail(QStringLiteral("cannot create %1 (%2)").arg(node.second, node.first));
    return true;
}

bool OssTestHost::createMixChain(OssShaderNetwork *network)
{
    const QString noise = QStringLiteral("Procedural/Noise/Perlin");
    if (!createNodes(network, {{noise, QStringLiteral("N1")},
                               {noise, QStringLiteral("N2")},
                               {QStringLiteral("Math/Mix"), QStringLiteral("Mix")},
                               {QStringLiteral("Filter/Blur"), QStringLiteral("Out")}}))
        return false;
    OssSnBaseNode *mix = network->node(QStringLiteral("Mix"));
    const QString output = QStringLiteral("Output");
    if (!mix->connectInput(QStringLiteral("A"), network->node(QStringLiteral("N1")), output) ||
        !mix->connectInput(QStringLiteral("B"), network->node(QStringLiteral("N2")), output) ||
        !network->node(QStringLiteral("Out"))
             ->connectInput(QStringLiteral("Input"), mix, mix->prefferedOutputPoint()))
        return fail(QStringLiteral("cannot connect the mix chain"));
    return true;
}

OssShaderNetwork *OssTestHost::openSample()
{
    return openProject(samplePath());
}

OssShaderNetwork *OssTestHost::openProject(const QString &path)
{
    m_error.clear();
    OssProjectManager *projects = OssProjectManager::instance();
    if (!projects->openProject(path, &m_error))
        return nullptr;
    OssShaderNetwork *network = projects->currentProject()->networks().value(0);
    if (!network)
        fail(QStringLiteral("\"%1\" holds no shader network").arg(path));
    return network;
}

OssShaderNetwork *OssTestHost::saveAndReopen(const QString &name)
{
    m_error.clear();
    const QString path = scratchPath(name);
    if (!OssProjectManager::instance()->saveProject(path, &m_error))
        return nullptr;
    return openProject(path);
}

QString OssTestHost::samplePath()
{
    return OssResourceInfo::instance()->projectPath() + QStringLiteral("/sample.ossa");
}

QString OssTestHost::scratchPath(const QString &name) const
{
    return QDir(scratchDirectory()).filePath(name);
}

bool OssTestHost::fail(const QString &error)
{
    m_error = error;
    return false;
}
