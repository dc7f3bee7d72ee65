#pragma once

#include "OssChannel.h"
#include "OssCoreModulesExport.h"
#include "OssProject.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

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
    // Opens the project at Path. A file that cannot be read is refused with the reason and the
    // open project stays; a file read with repairs (values that do not convert, nodes of unknown
    // types, connections to missing nodes) opens, and the repairs are reported through
    // lastLoadWarnings() and loadWarningsFound().
    bool openProject(const QString &path, QString *error);
    QStringList lastLoadWarnings() const { return m_lastLoadWarnings; }
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
    // After a project opened with repairs: each warning names what was dropped or changed.
    void loadWarningsFound(const QString &path, const QStringList &warnings);

private:
    explicit OssProjectManager(QObject *parent = nullptr);
    void makeCurrent(OssProject *project);

    QPointer<OssProject> m_project;
    QPointer<OssChannel> m_currentChannel;
    QStringList m_lastLoadWarnings;
};
