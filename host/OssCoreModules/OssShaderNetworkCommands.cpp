#include "OssShaderNetworkCommands.h"

#include "OssShaderNetwork.h"
#include "OssSnBaseNode.h"

OssSnConnectCommand::OssSnConnectCommand(OssSnBaseNode *target, const QString &input,
                                         OssSnBaseNode *newSource, const QString &newOutput)
    : OssUndoCommand(newSource ? QStringLiteral("Connect %1").arg(input)
                               : QStringLiteral("Disconnect %1").arg(input)),
      m_target(target), m_input(input), m_oldSource(target->inputConnection(input)),
      m_newSource(newSource), m_oldOutput(target->inputOutputPoint(input)), m_newOutput(newOutput)
{}

void OssSnConnectCommand::redo()
{
    if (m_target)
        m_target->setConnectionDirect(m_input, m_newSource, m_newOutput);
}

void OssSnConnectCommand::undo()
{
    if (m_target)
        m_target->setConnectionDirect(m_input, m_oldSource, m_oldOutput);
}

OssSnValueCommand::OssSnValueCommand(const QString &text, OssSnBaseNode *node,
                                     const QVariant &oldValue, const QVariant &newValue,
                                     Setter setter)
    : OssUndoCommand(text), m_node(node), m_old(oldValue), m_new(newValue),
      m_setter(std::move(setter))
{}

void OssSnValueCommand::redo()
{
    if (m_node)
        m_setter(m_node, m_new);
}

void OssSnValueCommand::undo()
{
    if (m_node)
        m_setter(m_node, m_old);
}

QStringList ossUserAttributeOrder(const OssSerializableObject *object)
{
    QStringList names;
    if (object)
        for (const OssCustomAttribute &attribute : object->userAttributes())
            names.append(attribute.name());
    return names;
}

void ossOrderUserAttributes(OssSerializableObject *object, const QStringList &names)
{
    if (!object || ossUserAttributeOrder(object) == names)
        return;
    // Taken out and put back quietly: the values do not change.
    const QList<OssCustomAttribute> attributes = object->userAttributes();
    QStringList order = names;
    for (const OssCustomAttribute &attribute : attributes)
        if (!order.contains(attribute.name()))
            order.append(attribute.name());
    for (const OssCustomAttribute &attribute : attributes)
        object->removeUserAttribute(attribute.name(), false);
    for (const QString &name : qAsConst(order))
        for (const OssCustomAttribute &attribute : attributes)
            if (attribute.name() == name)
                object->setUserAttribute(attribute, false);
}

OssSnNodeAttributeCommand::OssSnNodeAttributeCommand(const QString &text, OssSnBaseNode *node,
                                                     const QList<OssCustomAttribute> &before,
                                                     const QList<OssCustomAttribute> &after)
    : OssUndoCommand(text), m_node(node), m_before(before), m_after(after),
      m_orderBefore(ossUserAttributeOrder(node))
{}

namespace {

// Applies a new attribute list, telling listeners about each value that changed.
void applyAttributes(OssSnBaseNode *node, const QList<OssCustomAttribute> &attributes)
{
    const QList<OssCustomAttribute> old = node->nodeAttributes();
    node->setNodeAttributesDirect(attributes);
    for (const OssCustomAttribute &attribute : attributes) {
        for (const OssCustomAttribute &previous : old)
            if (previous.name() == attribute.name() && previous.value() != attribute.value())
                emit node->nodeAttributeChanged(attribute.name(), attribute.value());
    }
}

} // namespace

void OssSnNodeAttributeCommand::redo()
{
    if (m_node)
        applyAttributes(m_node, m_after);
}

void OssSnNodeAttributeCommand::undo()
{
    if (!m_node)
        return;
    applyAttributes(m_node, m_before);
    ossOrderUserAttributes(m_node, m_orderBefore);
}

OssSnInsertNodeCommand::OssSnInsertNodeCommand(OssShaderNetwork *network, OssSnBaseNode *node)
    : OssUndoCommand(QStringLiteral("Create %1").arg(node->name())), m_network(network),
      m_node(node)
{}

OssSnInsertNodeCommand::~OssSnInsertNodeCommand()
{
    if (m_out && m_node && !m_node->parent())
        delete m_node.data();
}

void OssSnInsertNodeCommand::redo()
{
    if (!m_network || !m_node)
        return;
    if (m_undone)
        m_network->restoreNodeDirect(m_node, m_taken);
    else
        m_network->addNodeDirect(m_node);
    m_out = false;
}

void OssSnInsertNodeCommand::undo()
{
    if (!m_network || !m_node)
        return;
    m_taken = m_network->takeNodeDirect(m_node);
    m_undone = true;
    m_out = true;
}

OssSnRemoveNodeCommand::OssSnRemoveNodeCommand(OssShaderNetwork *network, OssSnBaseNode *node)
    : OssUndoCommand(QStringLiteral("Remove %1").arg(node->name())), m_network(network),
      m_node(node)
{}

OssSnRemoveNodeCommand::~OssSnRemoveNodeCommand()
{
    if (m_out && m_node && !m_node->parent())
        delete m_node.data();
}

void OssSnRemoveNodeCommand::redo()
{
    if (!m_network || !m_node)
        return;
    // Record and cut every connection first, so undo can put back exactly these.
    m_links.clear();
    for (const QString &input : m_node->inputNames())
        if (OssSnBaseNode *source = m_node->inputConnection(input))
            m_links.append(Link{m_node, input, source, m_node->inputOutputPoint(input)});
    for (const OssSnOutputLink &link : m_node->outputLinks())
        if (link.target)
            m_links.append(Link{link.target, link.input, m_node, link.outputPoint});
    for (const Link &link : qAsConst(m_links))
        if (link.target)
            link.target->setConnectionDirect(link.input, nullptr, QString());
    m_taken = m_network->takeNodeDirect(m_node);
    m_out = true;
}

void OssSnRemoveNodeCommand::undo()
{
    if (!m_network || !m_node)
        return;
    m_network->restoreNodeDirect(m_node, m_taken);
    m_out = false;
    for (const Link &link : qAsConst(m_links))
        if (link.target && link.source)
            link.target->setConnectionDirect(link.input, link.source, link.output);
}

OssSnViewerEdgeCommand::OssSnViewerEdgeCommand(OssShaderNetwork *network, int oldEdge, int newEdge)
    : OssUndoCommand(QStringLiteral("Switch Viewer Input")), m_network(network), m_old(oldEdge),
      m_new(newEdge)
{}

void OssSnViewerEdgeCommand::redo()
{
    if (m_network)
        m_network->setViewerEdgeDirect(m_new);
}

void OssSnViewerEdgeCommand::undo()
{
    if (m_network)
        m_network->setViewerEdgeDirect(m_old);
}
