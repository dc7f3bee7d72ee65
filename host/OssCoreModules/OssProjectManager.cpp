#include "OssProjectManager.h"

#include "OssChannel.h"
#include "OssProject.h"
#include "OssShaderNetwork.h"
#include "OssShaderNetworkManager.h"

#include <OssDebug.h>
#include <OssDeserializer.h>
#include <OssSerializer.h>
#include <OssUndoManager.h>

#include <QFile>
#include <QFileInfo>

OssProjectManager *OssProjectManager::instance()
{
    static OssProjectManager *manager = new OssProjectManager;
    return manager;
}

OssProjectManager::OssProjectManager(QObject *parent) : QObject(parent) {}

OssProject *OssProjectManager::newProject(const QString &entityName)
{
    auto *project = new OssProject;
    project->setName(QStringLiteral("Untitled"));
    project->addShadingGroup(entityName + QStringLiteral("_SG"), entityName);
    makeCurrent(project);
    emit projectOpenCompleted(project, true);
    return project;
}

bool OssProjectManager::openProject(const QString &path, QString *error)
{
    OssDeserializer deserializer;
    QFile file(path);
    QByteArray data;
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("\"%1\": cannot open: %2").arg(path, file.errorString());
        return false;
    }
    data = file.readAll();
    // The whole document is parsed and checked before anything is built from it, so a bad
    // file leaves the open project as it was.
    auto *project = new OssProject;
    deserializer.setRestoreUuids(true);
    if (!deserializer.loadFromData(data, project, error, path, QStringLiteral("OssProject"))) {
        delete project;
        return false;
    }
    project->setFilePath(QFileInfo(path).absoluteFilePath());
    // What the reader mended or dropped: values it could not use, then what the networks found.
    m_lastLoadWarnings = deserializer.warnings() + project->loadWarnings();
    for (const QString &warning : qAsConst(m_lastLoadWarnings))
        OSS_DEBUG("[ !! ] %s: %s", qPrintable(path), qPrintable(warning));
    makeCurrent(project);
    emit projectOpenCompleted(project, true);
    if (!m_lastLoadWarnings.isEmpty())
        emit loadWarningsFound(path, m_lastLoadWarnings);
    return true;
}

bool OssProjectManager::saveProject(const QString &path, QString *error)
{
    if (!m_project) {
        if (error)
            *error = QStringLiteral("no project is open");
        return false;
    }
    OssSerializer serializer;
    // The file being replaced stays beside the new one as "<name>.bak", one version back.
    if (!serializer.saveToFile(path, m_project, error, QStringLiteral("project"),
                               QStringLiteral(".bak")))
        return false;
    m_project->setFilePath(QFileInfo(path).absoluteFilePath());
    OssUndoManager::instance()->setClean();
    return true;
}

void OssProjectManager::closeProject()
{
    if (!m_project)
        return;
    emit projectClosing();
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(nullptr);
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(nullptr);
    setCurrentChannel(nullptr);
    // Undo steps may hold nodes of this project.
    OssUndoManager::instance()->clear();
    delete m_project.data();
    emit projectClosed();
}

void OssProjectManager::setCurrentChannel(OssChannel *channel)
{
    if (m_currentChannel == channel)
        return;
    m_currentChannel = channel;
    emit currentChannelChanged(channel);
}

void OssProjectManager::makeCurrent(OssProject *project)
{
    closeProject();
    m_project = project;
    OssUndoManager::instance()->clear();
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    for (OssShaderNetwork *network : project->networks())
        networks->addShaderNetwork(network);
    emit onMakeProjectCurrent(project);
    const QList<OssShaderNetwork *> all = project->networks();
    if (!all.isEmpty()) {
        networks->setCurrentShaderNetwork(all.first());
        networks->setCurrentViewNetwork(all.first());
    }
}
