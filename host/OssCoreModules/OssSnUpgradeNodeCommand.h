#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnBaseNode.h"
#include "OssSnNodeType.h"

#include <OssCustomAttribute.h>
#include <OssUndoCommand.h>

#include <QPointer>
#include <QStringList>
#include <QVector>

// Brings a node to a node type's definition (redo) and back to what it was (undo): inputs and
// output points the definition lacks are taken out with their connections, missing ones are
// added, missing attributes get the type's default (or the value the node holds as a plain user
// attribute), tags are added, and the version, path key and description become the type's. A
// group keeps its ports, which mirror its inner input and output nodes.
class OSSCOREMODULES_EXPORT OssSnUpgradeNodeCommand : public OssUndoCommand
{
public:
    OssSnUpgradeNodeCommand(OssSnBaseNode *node, const OssSnNodeType &type);

    void redo() override;
    void undo() override;

    // The connections an upgrade to Type drops, as "node.input <- source.output" and
    // "target.input <- node.output"; empty when it drops none.
    static QStringList lostConnections(const OssSnBaseNode *node, const OssSnNodeType &type);

private:
    struct State
    {
        QList<OssCustomAttribute> attributes;
        QStringList attributeOrder;
        QStringList tags;
        QString pathKey, versionUuid, hashCreated, hashPresent, date, description;
    };
    static State stateOf(const OssSnBaseNode *node);
    static void applyState(OssSnBaseNode *node, const State &state);
    static bool keepsOwnPorts(const OssSnBaseNode *node);

    QPointer<OssSnBaseNode> m_node;
    State m_before, m_after;
    QStringList m_obsoleteInputs, m_obsoleteOutputs;
    QVector<OssSnNodeTypePort> m_newInputs, m_newOutputs;
    // Ports taken out by the last redo, in the order they were taken.
    QVector<OssSnTakenPort> m_taken;
};
