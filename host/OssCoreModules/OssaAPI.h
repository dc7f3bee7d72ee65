#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariant>

class OssScriptManager;

// Script objects: thin QObjects whose public slots are what scripts call. Slot types are written
// with their namespace (Ossa::Node *, QList<Ossa::Node *>) so that script bindings find them in
// the meta-type system by the names the meta-object records.
namespace Ossa {

// Base of every script object, bound to one internal object through a guarded pointer.
class OSSCOREMODULES_EXPORT API : public QObject
{
    Q_OBJECT
public:
    explicit API(QObject *parent = nullptr);
    ~API() override;

    void initAPI(QObject *internalObject);
    // True when no internal object is bound or the bound one is gone.
    bool isNull() const { return m_internal.isNull(); }
    QObject *internalObject() const { return m_internal.data(); }

private:
    QPointer<QObject> m_internal;
};

// Script object of a palette.
class OSSCOREMODULES_EXPORT Palette : public API
{
    Q_OBJECT
public:
    explicit Palette(QObject *parent = nullptr);
};

class Node;

// Script object of a shader network: its nodes, their creation, connections and selection, and
// automatic layout. Every change is one undo step (or part of the script's open undo step).
class OSSCOREMODULES_EXPORT NodeGraph : public API
{
    Q_OBJECT
public:
    explicit NodeGraph(QObject *parent = nullptr);

public slots:
    // The network's name; empty when the network is gone.
    QString name() const;
    QString path() const;
    int nodeCount() const;
    QList<Ossa::Node *> nodes() const;
    // The node of that name, or None.
    Ossa::Node *node(const QString &Name) const;
    // A new node of the type PathKey ("Layer/Merge"), named Name when given.
    Ossa::Node *createNode(const QString &PathKey, const QString &Name = QString());
    // Feeds Target's input from Source's output point (its first one when empty).
    bool connectNodes(Ossa::Node *Source, Ossa::Node *Target, const QString &Input,
                      const QString &OutputPoint = QString());
    bool disconnectInput(Ossa::Node *Target, const QString &Input);
    void removeNode(Ossa::Node *Node);
    QList<Ossa::Node *> selectedNodes() const;
    void setSelectedNodes(const QList<Ossa::Node *> &Nodes);
    void clearSelection();
    // Arranges the whole network (or the given nodes' trees) in columns.
    void autoplace(const QList<Ossa::Node *> &Nodes = QList<Ossa::Node *>());
    // The network of the group node this network belongs to, or None for a root network.
    Ossa::Node *parentGroupNode() const;
    // A canonical text of the network, for comparisons.
    QString dump() const;
};

// Script object of a shader-network node.
class OSSCOREMODULES_EXPORT Node : public API
{
    Q_OBJECT
public:
    explicit Node(QObject *parent = nullptr);

public slots:
    QString name() const;
    void setName(const QString &Name);
    QString pathKey() const;
    QString className() const;
    QStringList inputNames() const;
    QStringList outputNames() const;
    Ossa::Node *inputNode(const QString &Input) const;
    QStringList attributeNames() const;
    QVariant attribute(const QString &Name) const;
    void setAttribute(const QString &Name, const QVariant &Value);
    bool isSelected() const;
    void setSelected(bool Selected);
    bool isEnabled() const;
    void setEnabled(bool Enabled);
    bool hasTag(const QString &Tag) const;
    // The network the node is in.
    Ossa::NodeGraph *nodeGraph() const;
    // A group node's own network, or None.
    Ossa::NodeGraph *subNodeGraph() const;
};

// Script object of a project.
class OSSCOREMODULES_EXPORT Project : public API
{
    Q_OBJECT
public:
    explicit Project(QObject *parent = nullptr);

public slots:
    QString name() const;
    QString filePath() const;
    // The root networks of the shading groups, in order.
    QList<Ossa::NodeGraph *> nodeGraphs() const;
    QStringList shadingGroupNames() const;
    Ossa::NodeGraph *currentNodeGraph() const;
    // Makes the network current, so the node graph shows it.
    void setCurrentNodeGraph(Ossa::NodeGraph *Graph);
    // Saves to Path, or to the project's own file when Path is empty.
    bool save(const QString &Path = QString());
};

// Registers the meta-types of the host's script classes and their factories.
OSSCOREMODULES_EXPORT void registerHostScriptTypes(OssScriptManager *manager);

} // namespace Ossa
