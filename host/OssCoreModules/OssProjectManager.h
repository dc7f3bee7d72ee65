#pragma once

#include "OssChannel.h"
#include "OssCoreModulesExport.h"
#include "OssProject.h"

#include <QObject>
#include <QPointer>

// Opens, saves and closes the project. Opening reads the whole file into a new project first,
// so a bad file leaves the open project as it was.
class OSSCOREMODULES_EXPORT OssProjectManager : public QObject
{
    Q_OBJECT
public:
    static OssProjectManager *instance();

    OssProject *currentProject() const { return m_project; }
    // Starts an empty project with one shading group for one entity.
    OssProject *newProject(const QString &entityName = QStringLiteral("Mesh"));
    bool openProject(const QString &path, QString *error);
    bool saveProject(const QString &path, QString *error);
    void closeProject();

    OssChannel *currentChannel() const { return m_currentChannel; }
    void setCurrentChannel(OssChannel *channel);

signals:
    void currentChannelChanged(OssChannel *channel);
    void projectClosing();
    void projectClosed();
    void projectOpenCompleted(OssProject *project, bool success);
    void onMakeProjectCurrent(OssProject *project);

private:
    explicit OssProjectManager(QObject *parent = nullptr);
    void makeCurrent(OssProject *project);

    QPointer<OssProject> m_project;
    QPointer<OssChannel> m_currentChannel;
};
