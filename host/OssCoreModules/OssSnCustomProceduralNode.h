#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"

#include <QString>
#include <QStringList>

class OssSnNodeType;

// A procedural whose definition comes from a custom procedural archive (*.opc).
class OSSCOREMODULES_EXPORT OssSnCustomProceduralNode : public OssSnBaseNode
{
    Q_OBJECT
    Q_PROPERTY(QString sourceFile READ sourceFile WRITE setSourceFile)
    Q_PROPERTY(QString definition READ definition WRITE setDefinition)
public:
    using OssSnBaseNode::OssSnBaseNode;
    QString sourceFile() const { return m_sourceFile; }
    void setSourceFile(const QString &path) { m_sourceFile = path; }
    // The node-type description the node was made from by an import ("" before any).
    QString definition() const { return m_definition; }
    void setDefinition(const QString &definition) { m_definition = definition; }
    // Reads a custom procedural archive (*.opc holding a node-type description) and takes its
    // ports and attributes, keeping connections of ports that keep their names (one undo
    // step); false with the reasons in Errors and nothing changed.
    bool importFromFile(const QString &path, QStringList *errors = nullptr);
    bool exportToFile(const QString &path, QString *error = nullptr) const;
    void setDefinitionDirect(const OssSnNodeType &type, const QString &sourceFile);

private:
    QString m_sourceFile;
    QString m_definition;
};
