#pragma once

#include "OssTestEnvironment.h"

#include <OssDebug.h>

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

class OssShaderNetwork;

// The host started in-process for one test program: its managers and node-type catalogue, at
// most one open project, settings and files in temporary folders, and every debug line written
// while it lives. A test class holds one as a member, calls start() in initTestCase() and
// reset() in cleanup(), so each test function begins on a host with nothing open.
class OssTestHost
{
public:
    OssTestHost();
    virtual ~OssTestHost();
    OssTestHost(const OssTestHost &) = delete;
    OssTestHost &operator=(const OssTestHost &) = delete;

    // Makes the host's managers and reads the node-type catalogue. False, with errorString(),
    // when the host cannot run (no node types, a project already open).
    virtual bool start();
    // Closes the project, empties the undo history and forgets the captured lines. False, with
    // errorString(), when something of the closed project is left behind.
    virtual bool reset();
    QString errorString() const { return m_error; }

    // Makes a new project, one shading group for Entity, current; its network.
    OssShaderNetwork *newProject(const QString &entityName = QStringLiteral("Mesh"));
    // Creates nodes in Network from (path key, name) pairs, in order. False, with errorString(),
    // when one cannot be made.
    bool createNodes(OssShaderNetwork *network, const QList<QPair<QString, QString>> &nodes);
    // The small graph many tests walk: noises N1 and N2 feed inputs A and B of a mix "Mix",
    // which feeds the input of a blur "Out". False, with errorString(), when it cannot be built.
    bool createMixChain(OssShaderNetwork *network);
    // Opens the sample project of the resources; its first network, or null (errorString()).
    OssShaderNetwork *openSample();
    // Opens a project file; its first network, or null (errorString()).
    OssShaderNetwork *openProject(const QString &path);
    // Saves the project under Name in the scratch folder and opens it again; the first network
    // of the reopened project, or null (errorString()).
    OssShaderNetwork *saveAndReopen(const QString &name);
    static QString samplePath();

    // The messages of the debug lines written since the host was made or the last reset() or
    // clearLines(), in order and exactly as written.
    QStringList lines() const { return m_capture.messages(); }
    bool hasLine(const QString &message) const { return m_capture.contains(message); }
    int lineCount(const QString &message) const { return m_capture.count(message); }
    void clearLines() { m_capture.clear(); }

    // A fresh folder for the files of this test program, removed with the host.
    QString scratchDirectory() const { return m_environment.scratchDirectory(); }
    QString scratchPath(const QString &name) const;
    QString settingsDirectory() const { return m_environment.settingsDirectory(); }

protected:
    // What a closed project left behind, one line per finding; nothing when the host is clean.
    virtual QStringList leftovers() const;
    bool fail(const QString &error);

private:
    OssTestEnvironment m_environment;
    OssDebugCapture m_capture;
    QString m_error;
};
