#pragma once

#include "OssCoreModulesExport.h"

#include "OssShaderNetwork.h"

#include <OssCustomAttribute.h>
#include <OssUndoCommand.h>

#include <QList>
#include <QPointer>
#include <QVariant>

#include <functional>

class OssShaderNetwork;
class OssSnBaseNode;

// Undo steps of the shader-network model. Each restores exactly what it changed.

// One input's connection: from (old source, old output point) to (new source, new output).
class OSSCOREMODULES_EXPORT OssSnConnectCommand : public OssUndoCommand
{
public:
    OssSnConnectCommand(OssSnBaseNode *target, const QString &input, OssSnBaseNode *newSource,
                        const QString &newOutput);
    void redo() override;
    void undo() override;

private:
    QPointer<OssSnBaseNode> m_target;
    QString m_input;
    QPointer<OssSnBaseNode> m_oldSource, m_newSource;
    QString m_oldOutput, m_newOutput;
};

// A value change applied through a setter taking the new value (name, enabled, bypass, ...).
class OSSCOREMODULES_EXPORT OssSnValueCommand : public OssUndoCommand
{
public:
    using Setter = std::function<void(OssSnBaseNode *, const QVariant &)>;
    OssSnValueCommand(const QString &text, OssSnBaseNode *node, const QVariant &oldValue,
                      const QVariant &newValue, Setter setter);
    void redo() override;
    void undo() override;

private:
    QPointer<OssSnBaseNode> m_node;
    QVariant m_old, m_new;
    Setter m_setter;
};

// The names of an object's user attributes in their order.
OSSCOREMODULES_EXPORT QStringList ossUserAttributeOrder(const OssSerializableObject *object);
// Puts an object's user attributes in the order of Names (those it does not name follow in their
// order); values stay. Undo steps use it to give back the exact attribute list.
OSSCOREMODULES_EXPORT void ossOrderUserAttributes(OssSerializableObject *object,
                                                  const QStringList &names);

// The whole ordered node-attribute list of a node, before and after.
class OSSCOREMODULES_EXPORT OssSnNodeAttributeCommand : public OssUndoCommand
{
public:
    OssSnNodeAttributeCommand(const QString &text, OssSnBaseNode *node,
                              const QList<OssCustomAttribute> &before,
                              const QList<OssCustomAttribute> &after);
    void redo() override;
    void undo() override;

private:
    QPointer<OssSnBaseNode> m_node;
    QList<OssCustomAttribute> m_before, m_after;
    // The order of all the node's user attributes before, which undo gives back too.
    QStringList m_orderBefore;
};

// Puts a node into a network (redo) or takes it out (undo). While its undo has the node out of
// every network, the step owns it and deletes it with itself.
class OSSCOREMODULES_EXPORT OssSnInsertNodeCommand : public OssUndoCommand
{
public:
    OssSnInsertNodeCommand(OssShaderNetwork *network, OssSnBaseNode *node);
    ~OssSnInsertNodeCommand() override;
    void redo() override;
    void undo() override;

private:
    QPointer<OssShaderNetwork> m_network;
    QPointer<OssSnBaseNode> m_node;
    // Set once undone: what a redo puts back.
    OssSnTakenNode m_taken;
    bool m_undone = false;
    // The node is out because of this step's undo (and so the step's own).
    bool m_out = false;
};

// Takes a node and every connection to and from it out of its network (redo) and puts them
// back (undo). Owns the node while its redo has it out: a step that was undone and is dropped
// from the history leaves the node alone, whoever has it now.
class OSSCOREMODULES_EXPORT OssSnRemoveNodeCommand : public OssUndoCommand
{
public:
    OssSnRemoveNodeCommand(OssShaderNetwork *network, OssSnBaseNode *node);
    ~OssSnRemoveNodeCommand() override;
    void redo() override;
    void undo() override;

private:
    struct Link
    {
        QPointer<OssSnBaseNode> target;
        QString input;
        QPointer<OssSnBaseNode> source;
        QString output;
    };
    QPointer<OssShaderNetwork> m_network;
    QPointer<OssSnBaseNode> m_node;
    QList<Link> m_links;
    OssSnTakenNode m_taken;
    bool m_out = false;
};

// The viewer's current edge of a root network.
class OSSCOREMODULES_EXPORT OssSnViewerEdgeCommand : public OssUndoCommand
{
public:
    OssSnViewerEdgeCommand(OssShaderNetwork *network, int oldEdge, int newEdge);
    void redo() override;
    void undo() override;

private:
    QPointer<OssShaderNetwork> m_network;
    int m_old, m_new;
};
