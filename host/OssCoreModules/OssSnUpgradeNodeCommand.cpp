#include "OssSnUpgradeNodeCommand.h"

#include "OssShaderNetworkCommands.h"
#include "OssSnGroupNode.h"
#include "OssSnNodeType.h"

OssSnUpgradeNodeCommand::OssSnUpgradeNodeCommand(OssSnBaseNode *node, const OssSnNodeType &type)
    : OssUndoCommand(QStringLiteral("Upgrade %1").arg(node->name())), m_node(node),
      m_before(stateOf(node))
{
    if (!keepsOwnPorts(node)) {
        for (const QString &input : node->inputNames())
            if (!type.input(input))
                m_obsoleteInputs.append(input);
        for (const QString &output : node->outputPointNames())
            if (!type.output(output))
                m_obsoleteOutputs.append(output);
    }
    for (const OssSnNodeTypePort &port : type.inputs)
        if (!node->hasInput(port.name))
            m_newInputs.append(port);
    for (const OssSnNodeTypePort &port : type.outputs)
        if (!node->hasOutputPoint(port.name))
            m_newOutputs.append(port);

    m_after = m_before;
    // A value the node already holds (an old file keeps its attributes as plain user attributes)
    // stays; only what is missing gets the type's default.
    for (const OssSnNodeTypeAttribute &attribute : type.attributes) {
        if (node->hasNodeAttribute(attribute.name))
            continue;
        if (node->exists(attribute.name)) {
            OssCustomAttribute kept = node->userAttribute(attribute.name);
            if (kept.prettyName().isEmpty())
                kept.setPrettyName(attribute.prettyName);
            m_after.attributes.append(kept);
        } else {
            m_after.attributes.append(OssCustomAttribute(attribute.name, attribute.defaultValue,
                                                         attribute.prettyName, attribute.visible));
        }
    }
    for (const QString &tag : type.tags)
        if (!m_after.tags.contains(tag))
            m_after.tags.append(tag);
    if (m_after.pathKey.isEmpty())
        m_after.pathKey = type.pathKey;
    m_after.versionUuid = type.versionUuid;
    m_after.hashCreated = type.hash;
    m_after.hashPresent = type.hash;
    m_after.date = type.date;
    m_after.description = type.description;
}

bool OssSnUpgradeNodeCommand::keepsOwnPorts(const OssSnBaseNode *node)
{
    return qobject_cast<const OssSnGroupNode *>(node) != nullptr;
}

QStringList OssSnUpgradeNodeCommand::lostConnections(const OssSnBaseNode *node,
                                                     const OssSnNodeType &type)
{
    QStringList lost;
    if (!node || keepsOwnPorts(node))
        return lost;
    for (const QString &input : node->inputNames())
        if (!type.input(input))
            if (const OssSnBaseNode *source = node->inputConnection(input))
                lost << QStringLiteral("%1.%2 <- %3.%4")
                            .arg(node->name(), input, source->name(),
                                 node->inputOutputPoint(input));
    for (const OssSnOutputLink &link : node->outputLinks())
        if (link.target && !type.output(link.outputPoint))
            lost << QStringLiteral("%1.%2 <- %3.%4")
                        .arg(link.target->name(), link.input, node->name(), link.outputPoint);
    return lost;
}

OssSnUpgradeNodeCommand::State OssSnUpgradeNodeCommand::stateOf(const OssSnBaseNode *node)
{
    State state;
    state.attributes = node->nodeAttributes();
    state.attributeOrder = ossUserAttributeOrder(node);
    state.tags = node->tags();
    state.pathKey = node->pathKey();
    state.versionUuid = node->versionUUID();
    state.hashCreated = node->versionHashCreated();
    state.hashPresent = node->versionHashPresent();
    state.date = node->versionDate();
    state.description = node->description();
    return state;
}

void OssSnUpgradeNodeCommand::applyState(OssSnBaseNode *node, const State &state)
{
    if (state.attributes != node->nodeAttributes())
        node->setNodeAttributesDirect(state.attributes);
    ossOrderUserAttributes(node, state.attributeOrder);
    node->setTags(state.tags);
    node->setPathKey(state.pathKey);
    node->setVersionUUID(state.versionUuid);
    node->setVersionHashCreated(state.hashCreated);
    node->setVersionHashPresent(state.hashPresent);
    node->setVersionDate(state.date);
    node->setDescription(state.description);
}

void OssSnUpgradeNodeCommand::redo()
{
    if (!m_node)
        return;
    m_taken.clear();
    for (const QString &input : qAsConst(m_obsoleteInputs))
        m_taken.append(m_node->takeInput(input));
    for (const QString &output : qAsConst(m_obsoleteOutputs))
        m_taken.append(m_node->takeOutputPoint(output));
    for (const OssSnNodeTypePort &port : qAsConst(m_newInputs))
        m_node->addInput(port.name, port.type, port.tags);
    for (const OssSnNodeTypePort &port : qAsConst(m_newOutputs))
        m_node->addOutputPoint(port.name, port.type);
    applyState(m_node, m_after);
    emit m_node->nodeRefreshed();
}

void OssSnUpgradeNodeCommand::undo()
{
    if (!m_node)
        return;
    for (int i = m_newOutputs.size() - 1; i >= 0; --i)
        m_node->removeOutputPoint(m_newOutputs.at(i).name);
    for (int i = m_newInputs.size() - 1; i >= 0; --i)
        m_node->removeInput(m_newInputs.at(i).name);
    for (int i = m_taken.size() - 1; i >= 0; --i)
        if (m_taken.at(i).isValid())
            m_node->restorePort(m_taken.at(i));
    m_taken.clear();
    applyState(m_node, m_before);
    emit m_node->nodeRefreshed();
}
