#include "OssSnBaseNode.h"

#include "OssShaderNetwork.h"
#include "OssShaderNetworkCommands.h"
#include "OssSnBaseContext.h"
#include "OssSnNodeTypeCatalogue.h"

#include <OssClassFactory.h>
#include <OssDebug.h>
#include <OssDeserializer.h>
#include <OssSerializer.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QSet>

namespace {

// Colour, float and vector data convert into each other; shaders and materials only connect
// to their own kind; "any" connects to everything.
bool portTypesCompatible(const QString &inputType, const QString &outputType)
{
    if (inputType.isEmpty() || outputType.isEmpty() || inputType == QLatin1String("any") ||
        outputType == QLatin1String("any") || inputType == outputType)
        return true;
    static const QSet<QString> data{QStringLiteral("color"), QStringLiteral("float"),
                                    QStringLiteral("vector")};
    if (data.contains(inputType) && data.contains(outputType))
        return true;
    // A material is a shader as far as shader inputs are concerned.
    return inputType == QLatin1String("shader") && outputType == QLatin1String("material");
}

void pushOrRun(OssUndoCommand *command, bool undoable)
{
    if (undoable && !OssUndoManager::instance()->isReplaying()) {
        OssUndoManager::instance()->addUndo(command);
    } else {
        command->redo();
        delete command;
    }
}

QString joinTags(const QStringList &tags)
{
    return tags.join(QLatin1Char(','));
}

QStringList splitTags(const QString &text)
{
    return text.isEmpty() ? QStringList() : text.split(QLatin1Char(','));
}

} // namespace

OssSnBaseNode::OssSnBaseNode(QObject *parent) : OssSerializableObject(parent)
{
    qRegisterMetaType<OssSnBaseNodeCacheActiveState>("OssSnBaseNodeCacheActiveState");
    qRegisterMetaType<OssSnBaseNode *>("OssSnBaseNode*");
}

OssSnBaseNode::~OssSnBaseNode()
{
    // Leave no dangling downstream records in nodes that outlive this one.
    for (const OssSnNodeInput &input : qAsConst(m_inputs))
        if (input.source)
            input.source->removeOutputLink(input.sourceOutput, this, input.name);
}

void OssSnBaseNode::applyType(const OssSnNodeType &type)
{
    m_pathKey = type.pathKey;
    m_description = type.description;
    m_tags = type.tags;
    m_inputs.clear();
    for (const OssSnNodeTypePort &port : type.inputs) {
        OssSnNodeInput input;
        input.name = port.name;
        input.type = port.type;
        input.tags = port.tags;
        m_inputs.append(input);
    }
    m_preferredInput = type.preferredInput;
    m_outputs.clear();
    for (const OssSnNodeTypePort &port : type.outputs) {
        OssSnNodeOutputPoint output;
        output.name = port.name;
        output.type = port.type;
        m_outputs.append(output);
    }
    m_preferredOutput = type.preferredOutput;
    for (const QString &name : qAsConst(m_attributeOrder))
        removeUserAttribute(name, false);
    m_attributeOrder.clear();
    for (const OssSnNodeTypeAttribute &attribute : type.attributes) {
        setUserAttribute(OssCustomAttribute(attribute.name, attribute.defaultValue,
                                            attribute.prettyName, attribute.visible),
                         false);
        m_attributeOrder.append(attribute.name);
    }
    m_versionUuid = type.versionUuid;
    m_versionHashCreated = type.hash;
    m_versionDate = type.date;
}

void OssSnBaseNode::setName(const QString &name, bool undoable)
{
    if (name == m_name || name.trimmed().isEmpty())
        return;
    // A name another node of the network holds is made unique ("Blur" becomes "Blur1"): the
    // network finds its nodes by name, and two nodes under one name would shadow each other.
    QString unique = name;
    if (OssShaderNetwork *owner = network())
        if (OssSnBaseNode *holder = owner->node(name); holder && holder != this)
            unique = owner->generateUniqueNodeName(name);
    if (unique == m_name)
        return;
    pushOrRun(new OssSnValueCommand(QStringLiteral("Rename Node"), this, m_name, unique,
                                    [](OssSnBaseNode *node, const QVariant &value) {
                                        node->setNameDirect(value.toString());
                                    }),
              undoable);
}

void OssSnBaseNode::setNameDirect(const QString &name)
{
    if (name == m_name)
        return;
    const QString old = m_name;
    m_name = name;
    // Inside a network the name stays unique whatever path sets it (a script setting the
    // property, an undo replaying a rename whose name was taken since).
    if (OssShaderNetwork *owner = network())
        if (OssSnBaseNode *holder = owner->node(name); holder && holder != this)
            m_name = owner->generateUniqueNodeName(name);
    setObjectName(name);
    if (OssShaderNetwork *owner = network())
        owner->nodeRenamed(this, old);
    emit nameChanged(name);
}

void OssSnBaseNode::setDescription(const QString &description)
{
    if (description == m_description)
        return;
    m_description = description;
    emit descriptionChanged(description);
}

QString OssSnBaseNode::path() const
{
    const OssShaderNetwork *owner = network();
    return (owner ? owner->path() : QString()) + QLatin1Char('/') + m_name;
}

OssShaderNetwork *OssSnBaseNode::network() const
{
    return qobject_cast<OssShaderNetwork *>(parent());
}

void OssSnBaseNode::addTag(const QString &tag)
{
    if (!m_tags.contains(tag))
        m_tags.append(tag);
}

OssSnBaseContext *OssSnBaseNode::context(const QString &name) const
{
    // Asked for on every GUI lookup: found in place, without copying the guarded pointer.
    const auto found = m_contexts.constFind(name);
    return found == m_contexts.constEnd() ? nullptr : found->data();
}

void OssSnBaseNode::attachContext(const QString &name, OssSnBaseContext *context)
{
    if (OssSnBaseContext *previous = m_contexts.value(name))
        if (previous != context)
            delete previous;
    if (!context) {
        m_contexts.remove(name);
        return;
    }
    context->setParent(this);
    m_contexts.insert(name, context);
}

// --- inputs

int OssSnBaseNode::indexOfInput(const QString &name) const
{
    for (int i = 0; i < m_inputs.size(); ++i)
        if (m_inputs.at(i).name == name)
            return i;
    return -1;
}

int OssSnBaseNode::indexOfOutput(const QString &name) const
{
    for (int i = 0; i < m_outputs.size(); ++i)
        if (m_outputs.at(i).name == name)
            return i;
    return -1;
}

QStringList OssSnBaseNode::inputNames() const
{
    QStringList names;
    names.reserve(m_inputs.size());
    for (const OssSnNodeInput &input : m_inputs)
        names.append(input.name);
    return names;
}

const OssSnNodeInput *OssSnBaseNode::input(const QString &name) const
{
    const int index = indexOfInput(name);
    return index < 0 ? nullptr : &m_inputs.at(index);
}

QString OssSnBaseNode::inputType(const QString &name) const
{
    const OssSnNodeInput *in = input(name);
    return in ? in->type : QString();
}

QStringList OssSnBaseNode::inputTags(const QString &name) const
{
    const OssSnNodeInput *in = input(name);
    return in ? in->tags : QStringList();
}

bool OssSnBaseNode::hasInputTag(const QString &name, const QString &tag) const
{
    return inputTags(name).contains(tag);
}

void OssSnBaseNode::addInputTag(const QString &name, const QString &tag)
{
    const int index = indexOfInput(name);
    if (index >= 0 && !m_inputs.at(index).tags.contains(tag))
        m_inputs[index].tags.append(tag);
}

OssSnBaseNode *OssSnBaseNode::inputConnection(const QString &name) const
{
    const OssSnNodeInput *in = input(name);
    return in ? in->source.data() : nullptr;
}

QString OssSnBaseNode::inputOutputPoint(const QString &name) const
{
    const OssSnNodeInput *in = input(name);
    return in && in->source ? in->sourceOutput : QString();
}

QList<OssSnBaseNode *> OssSnBaseNode::inputNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (const OssSnNodeInput &in : m_inputs)
        nodes.append(in.source.data());
    return nodes;
}

bool OssSnBaseNode::inputEnabled(const QString &name) const
{
    const OssSnNodeInput *in = input(name);
    return in && in->enabled;
}

void OssSnBaseNode::setInputEnabled(const QString &name, bool enabled)
{
    const int index = indexOfInput(name);
    if (index < 0 || m_inputs.at(index).enabled == enabled)
        return;
    m_inputs[index].enabled = enabled;
    emit inputEnabledChanged(name, enabled);
}

QStringList OssSnBaseNode::sharedInputs() const
{
    QStringList names;
    for (const OssSnNodeInput &in : m_inputs)
        if (in.shared)
            names.append(in.name);
    return names;
}

void OssSnBaseNode::setInputShared(const QString &name, bool shared)
{
    const int index = indexOfInput(name);
    if (index < 0 || m_inputs.at(index).shared == shared)
        return;
    m_inputs[index].shared = shared;
    if (shared)
        emit inputConnectionIsShared(name);
}

QStringList OssSnBaseNode::prettyInputNameList() const
{
    QStringList names;
    for (const OssSnNodeInput &in : m_inputs)
        names.append(in.prettyName.isEmpty() ? in.name : in.prettyName);
    return names;
}

QStringList OssSnBaseNode::descriptiveInputNameList() const
{
    QStringList names;
    for (const OssSnNodeInput &in : m_inputs)
        names.append(in.descriptiveName);
    return names;
}

void OssSnBaseNode::setInputDescriptiveName(const QString &name, const QString &text)
{
    const int index = indexOfInput(name);
    if (index >= 0)
        m_inputs[index].descriptiveName = text;
}

bool OssSnBaseNode::addInput(const QString &name, const QString &type, const QStringList &tags)
{
    if (name.isEmpty() || hasInput(name))
        return false;
    OssSnNodeInput in;
    in.name = name;
    in.type = type;
    in.tags = tags;
    m_inputs.append(in);
    emit inputAdded(name);
    return true;
}

bool OssSnBaseNode::removeInput(const QString &name)
{
    const int index = indexOfInput(name);
    if (index < 0)
        return false;
    if (m_inputs.at(index).source)
        setConnectionDirect(name, nullptr, QString());
    m_inputs.remove(index);
    if (m_preferredInput == name)
        m_preferredInput.clear();
    emit inputRemoved(name);
    return true;
}

OssSnTakenPort OssSnBaseNode::takeInput(const QString &name)
{
    OssSnTakenPort taken;
    const int index = indexOfInput(name);
    if (index < 0)
        return taken;
    taken.kind = OssSnTakenPort::Input;
    taken.index = index;
    taken.input = m_inputs.at(index);
    taken.preferred = m_preferredInput == name;
    removeInput(name);
    return taken;
}

bool OssSnBaseNode::restorePort(const OssSnTakenPort &port)
{
    if (port.kind == OssSnTakenPort::Input) {
        const QString &name = port.input.name;
        if (name.isEmpty() || hasInput(name))
            return false;
        OssSnNodeInput in = port.input;
        in.source = nullptr;
        in.sourceOutput.clear();
        m_inputs.insert(qBound(0, port.index, int(m_inputs.size())), in);
        if (port.preferred)
            m_preferredInput = name;
        emit inputAdded(name);
        emit inputOrderChanged(inputNames());
        if (port.input.source)
            setConnectionDirect(name, port.input.source, port.input.sourceOutput);
        return true;
    }
    if (port.kind == OssSnTakenPort::Output) {
        const QString &name = port.output.name;
        if (name.isEmpty() || hasOutputPoint(name))
            return false;
        m_outputs.insert(qBound(0, port.index, int(m_outputs.size())), port.output);
        if (port.preferred)
            m_preferredOutput = name;
        emit outputPointAdded(name);
        for (const OssSnOutputLink &link : port.links)
            if (link.target)
                link.target->setConnectionDirect(link.input, this, name);
        return true;
    }
    return false;
}

bool OssSnBaseNode::renameInput(const QString &oldName, const QString &newName)
{
    const int index = indexOfInput(oldName);
    if (index < 0 || newName.isEmpty() || hasInput(newName))
        return false;
    OssSnNodeInput &in = m_inputs[index];
    in.name = newName;
    if (in.source)
        for (OssSnOutputLink &link : in.source->m_outputLinks)
            if (link.target == this && link.input == oldName)
                link.input = newName;
    if (m_preferredInput == oldName)
        m_preferredInput = newName;
    emit nodeInputRenamed(oldName, newName);
    return true;
}

bool OssSnBaseNode::setInputOrder(const QStringList &order)
{
    if (order.size() != m_inputs.size())
        return false;
    QVector<OssSnNodeInput> reordered;
    for (const QString &name : order) {
        const int index = indexOfInput(name);
        if (index < 0 || order.count(name) != 1)
            return false;
        reordered.append(m_inputs.at(index));
    }
    m_inputs = reordered;
    emit inputOrderChanged(order);
    return true;
}

// --- outputs

QStringList OssSnBaseNode::outputPointNames() const
{
    QStringList names;
    for (const OssSnNodeOutputPoint &out : m_outputs)
        names.append(out.name);
    return names;
}

QString OssSnBaseNode::outputPointType(const QString &name) const
{
    const int index = indexOfOutput(name);
    return index < 0 ? QString() : m_outputs.at(index).type;
}

QString OssSnBaseNode::prefferedOutputPoint() const
{
    if (!m_preferredOutput.isEmpty() && hasOutputPoint(m_preferredOutput))
        return m_preferredOutput;
    return m_outputs.isEmpty() ? QString() : m_outputs.first().name;
}

QStringList OssSnBaseNode::prettyOutputNameList() const
{
    QStringList names;
    for (const OssSnNodeOutputPoint &out : m_outputs)
        names.append(out.prettyName.isEmpty() ? out.name : out.prettyName);
    return names;
}

QStringList OssSnBaseNode::descriptiveOutputNameList() const
{
    QStringList names;
    for (const OssSnNodeOutputPoint &out : m_outputs)
        names.append(out.descriptiveName);
    return names;
}

bool OssSnBaseNode::addOutputPoint(const QString &name, const QString &type)
{
    if (name.isEmpty() || hasOutputPoint(name))
        return false;
    OssSnNodeOutputPoint out;
    out.name = name;
    out.type = type;
    m_outputs.append(out);
    emit outputPointAdded(name);
    return true;
}

bool OssSnBaseNode::removeOutputPoint(const QString &name)
{
    const int index = indexOfOutput(name);
    if (index < 0)
        return false;
    for (const OssSnOutputLink &link : outputLinks())
        if (link.outputPoint == name && link.target)
            link.target->setConnectionDirect(link.input, nullptr, QString());
    m_outputs.remove(index);
    emit outputPointRemoved(name);
    return true;
}

OssSnTakenPort OssSnBaseNode::takeOutputPoint(const QString &name)
{
    OssSnTakenPort taken;
    const int index = indexOfOutput(name);
    if (index < 0)
        return taken;
    taken.kind = OssSnTakenPort::Output;
    taken.index = index;
    taken.output = m_outputs.at(index);
    taken.preferred = m_preferredOutput == name;
    for (const OssSnOutputLink &link : qAsConst(m_outputLinks))
        if (link.outputPoint == name && link.target)
            taken.links.append(link);
    removeOutputPoint(name);
    return taken;
}

bool OssSnBaseNode::renameOutputPoint(const QString &oldName, const QString &newName)
{
    const int index = indexOfOutput(oldName);
    if (index < 0 || newName.isEmpty() || hasOutputPoint(newName))
        return false;
    m_outputs[index].name = newName;
    for (OssSnOutputLink &link : m_outputLinks) {
        if (link.outputPoint != oldName)
            continue;
        link.outputPoint = newName;
        if (link.target) {
            const int in = link.target->indexOfInput(link.input);
            if (in >= 0)
                link.target->m_inputs[in].sourceOutput = newName;
        }
    }
    if (m_preferredOutput == oldName)
        m_preferredOutput = newName;
    emit outputPointRenamed(oldName, newName);
    return true;
}

QList<OssSnBaseNode *> OssSnBaseNode::outputNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (const OssSnOutputLink &link : m_outputLinks)
        if (link.target && !nodes.contains(link.target.data()))
            nodes.append(link.target.data());
    return nodes;
}

QList<QPair<OssSnBaseNode *, QString>>
OssSnBaseNode::outputConnections(const QString &outputPoint) const
{
    QList<QPair<OssSnBaseNode *, QString>> result;
    for (const OssSnOutputLink &link : m_outputLinks)
        if (link.target && link.outputPoint == outputPoint)
            result.append(qMakePair(link.target.data(), link.input));
    return result;
}

QVector<OssSnOutputLink> OssSnBaseNode::outputLinks() const
{
    return m_outputLinks;
}

void OssSnBaseNode::addOutputLink(const QString &outputPoint, OssSnBaseNode *target,
                                  const QString &input)
{
    const bool firstUse = outputLinkCount(outputPoint) == 0;
    m_outputLinks.append(OssSnOutputLink{target, input, outputPoint});
    if (firstUse)
        emit outputPointUsed(outputPoint);
}

void OssSnBaseNode::removeOutputLink(const QString &outputPoint, OssSnBaseNode *target,
                                     const QString &input)
{
    for (int i = 0; i < m_outputLinks.size(); ++i) {
        const OssSnOutputLink &link = m_outputLinks.at(i);
        if (link.target == target && link.input == input && link.outputPoint == outputPoint) {
            m_outputLinks.remove(i);
            emit outputNodeDetached(outputPoint);
            if (outputLinkCount(outputPoint) == 0)
                emit outputPointFreed(outputPoint);
            return;
        }
    }
}

int OssSnBaseNode::outputLinkCount(const QString &outputPoint) const
{
    int count = 0;
    for (const OssSnOutputLink &link : m_outputLinks)
        if (link.outputPoint == outputPoint && link.target)
            ++count;
    return count;
}

// --- connections

bool OssSnBaseNode::isUpstreamOrSelf(const OssSnBaseNode *other) const
{
    if (!other)
        return false;
    QSet<const OssSnBaseNode *> seen;
    QVector<const OssSnBaseNode *> stack{this};
    while (!stack.isEmpty()) {
        const OssSnBaseNode *node = stack.takeLast();
        if (node == other)
            return true;
        if (seen.contains(node))
            continue;
        seen.insert(node);
        for (const OssSnNodeInput &in : node->m_inputs)
            if (in.source)
                stack.append(in.source.data());
    }
    return false;
}

QString OssSnBaseNode::connectionRefusal(const QString &inputName, OssSnBaseNode *source,
                                         const QString &outputPoint) const
{
    const OssSnNodeInput *in = input(inputName);
    if (!in)
        return QStringLiteral("node '%1' has no input '%2'").arg(m_name, inputName);
    if (!source)
        return QString();
    if (source->network() != network())
        return QStringLiteral("nodes '%1' and '%2' are not in the same network")
            .arg(source->name(), m_name);
    if (!source->hasOutputPoint(outputPoint))
        return QStringLiteral("node '%1' has no output point '%2'")
            .arg(source->name(), outputPoint);
    if (source->isUpstreamOrSelf(this))
        return QStringLiteral("connecting '%1' to '%2.%3' would make a cycle")
            .arg(source->name(), m_name, inputName);
    const QString outType = source->outputPointType(outputPoint);
    if (!portTypesCompatible(in->type, outType))
        return QStringLiteral("output '%1.%2' (%3) cannot feed input '%4.%5' (%6)")
            .arg(source->name(), outputPoint, outType, m_name, inputName, in->type);
    return QString();
}

bool OssSnBaseNode::connectInput(const QString &inputName, OssSnBaseNode *source,
                                 const QString &outputPoint, bool undoable, QString *error)
{
    const QString refusal = connectionRefusal(inputName, source, outputPoint);
    if (!refusal.isEmpty()) {
        OSS_DEBUG("[ !! ] Connection refused: %s", qPrintable(refusal));
        if (error)
            *error = refusal;
        return false;
    }
    const OssSnNodeInput *in = input(inputName);
    if (in->source == source && (!source || in->sourceOutput == outputPoint))
        return true;
    pushOrRun(new OssSnConnectCommand(this, inputName, source, source ? outputPoint : QString()),
              undoable);
    return true;
}

bool OssSnBaseNode::disconnectInput(const QString &inputName, bool undoable)
{
    return connectInput(inputName, nullptr, QString(), undoable);
}

void OssSnBaseNode::setConnectionDirect(const QString &inputName, OssSnBaseNode *source,
                                        const QString &outputPoint)
{
    const int index = indexOfInput(inputName);
    if (index < 0)
        return;
    OssSnNodeInput &in = m_inputs[index];
    if (in.source == source && in.sourceOutput == outputPoint)
        return;
    const QPointer<OssSnBaseNode> oldSource = in.source;
    const QString oldOutput = in.sourceOutput;
    in.source = source;
    in.sourceOutput = source ? outputPoint : QString();
    if (oldSource)
        oldSource->removeOutputLink(oldOutput, this, inputName);
    if (source)
        source->addOutputLink(outputPoint, this, inputName);
    emit inputNodeChanged(inputName, source, source ? outputPoint : QString());
}

// --- state

void OssSnBaseNode::setEnabled(bool enabled, bool undoable)
{
    if (enabled == m_enabled)
        return;
    pushOrRun(new OssSnValueCommand(enabled ? QStringLiteral("Enable Node")
                                            : QStringLiteral("Disable Node"),
                                    this, m_enabled, enabled,
                                    [](OssSnBaseNode *node, const QVariant &value) {
                                        node->setEnabledDirect(value.toBool());
                                    }),
              undoable);
}

void OssSnBaseNode::setEnabledDirect(bool enabled)
{
    if (enabled == m_enabled)
        return;
    m_enabled = enabled;
    emit enabledChanged(enabled ? 1 : 0);
}

void OssSnBaseNode::setBypassed(bool bypassed, bool undoable)
{
    if (bypassed == m_bypassed)
        return;
    pushOrRun(new OssSnValueCommand(QStringLiteral("Toggle Bypass"), this, m_bypassed, bypassed,
                                    [](OssSnBaseNode *node, const QVariant &value) {
                                        node->setBypassedDirect(value.toBool());
                                    }),
              undoable);
}

void OssSnBaseNode::setBypassedDirect(bool bypassed)
{
    if (bypassed == m_bypassed)
        return;
    m_bypassed = bypassed;
    emit bypassChanged(bypassed);
}

void OssSnBaseNode::setCacheActive(OssSnBaseNodeCacheActiveState state)
{
    if (state == m_cacheActive)
        return;
    m_cacheActive = state;
    emit cacheActiveChanged(state);
}

void OssSnBaseNode::setGuiActive(bool active)
{
    if (active == m_guiActive)
        return;
    m_guiActive = active;
    emit guiActiveChanged(active);
}

// --- node attributes

QList<OssCustomAttribute> OssSnBaseNode::nodeAttributes() const
{
    QList<OssCustomAttribute> attributes;
    attributes.reserve(m_attributeOrder.size());
    for (const QString &name : m_attributeOrder)
        attributes.append(userAttribute(name));
    return attributes;
}

OssCustomAttribute OssSnBaseNode::nodeAttribute(const QString &name) const
{
    return hasNodeAttribute(name) ? userAttribute(name) : OssCustomAttribute();
}

QVariant OssSnBaseNode::nodeAttributeValue(const QString &name) const
{
    return nodeAttribute(name).value();
}

void OssSnBaseNode::setNodeAttribute(const QString &name, const QVariant &value, bool final)
{
    if (name.isEmpty())
        return;
    const bool known = hasNodeAttribute(name);
    if (known && userAttribute(name).value() == value)
        return;
    if (!final || OssUndoManager::instance()->isReplaying()) {
        setNodeAttributeDirect(name, value);
        return;
    }
    QList<OssCustomAttribute> after = nodeAttributes();
    if (known) {
        after[m_attributeOrder.indexOf(name)].setValue(value);
    } else {
        OssCustomAttribute created =
            exists(name) ? userAttribute(name) : OssCustomAttribute(name, value);
        created.setValue(value);
        after.append(created);
    }
    OssUndoManager::instance()->addUndo(new OssSnNodeAttributeCommand(
        QStringLiteral("Set %1").arg(name), this, nodeAttributes(), after));
}

void OssSnBaseNode::setNodeAttributeDirect(const QString &name, const QVariant &value)
{
    OssCustomAttribute attribute =
        exists(name) ? userAttribute(name) : OssCustomAttribute(name, value);
    attribute.setValue(value);
    const bool created = !hasNodeAttribute(name);
    if (created)
        m_attributeOrder.append(name);
    setUserAttribute(attribute);
    if (created)
        emit nodeAttributeCreated(name);
    emit nodeAttributeChanged(name, value);
}

bool OssSnBaseNode::removeNodeAttribute(const QString &name, bool undoable)
{
    const int index = m_attributeOrder.indexOf(name);
    if (index < 0)
        return false;
    QList<OssCustomAttribute> after = nodeAttributes();
    after.removeAt(index);
    pushOrRun(new OssSnNodeAttributeCommand(QStringLiteral("Remove %1").arg(name), this,
                                            nodeAttributes(), after),
              undoable);
    return true;
}

bool OssSnBaseNode::renameNodeAttribute(const QString &oldName, const QString &newName)
{
    const int index = m_attributeOrder.indexOf(oldName);
    if (index < 0 || newName.isEmpty() || exists(newName))
        return false;
    const OssCustomAttribute old = userAttribute(oldName);
    removeUserAttribute(oldName, false);
    m_attributeOrder[index] = newName;
    setUserAttribute(OssCustomAttribute(newName, old.value(),
                                        old.prettyName() == oldName ? newName : old.prettyName(),
                                        old.isVisible()),
                     false);
    emit nodeAttributeRenamed(oldName, newName);
    return true;
}

bool OssSnBaseNode::setNodeAttributePrettyName(const QString &name, const QString &prettyName)
{
    if (!hasNodeAttribute(name))
        return false;
    OssCustomAttribute attribute = userAttribute(name);
    attribute.setPrettyName(prettyName);
    setUserAttribute(attribute);
    emit nodeAttributePrettyNameChanged(name, prettyName);
    return true;
}

void OssSnBaseNode::setNodeAttributesUndo(const QList<OssCustomAttribute> &attributes)
{
    if (attributes == nodeAttributes())
        return;
    pushOrRun(new OssSnNodeAttributeCommand(QStringLiteral("Reorder Knobs"), this, nodeAttributes(),
                                            attributes),
              true);
}

void OssSnBaseNode::setNodeAttributesDirect(const QList<OssCustomAttribute> &attributes)
{
    const QList<OssCustomAttribute> old = nodeAttributes();
    QStringList order;
    for (const OssCustomAttribute &attribute : attributes)
        order.append(attribute.name());
    for (const OssCustomAttribute &attribute : old)
        if (!order.contains(attribute.name()))
            removeUserAttribute(attribute.name(), false);
    const QStringList before = m_attributeOrder;
    m_attributeOrder = order;
    for (const OssCustomAttribute &attribute : attributes)
        if (attribute != userAttribute(attribute.name()))
            setUserAttribute(attribute);
    for (const OssCustomAttribute &attribute : old)
        if (!order.contains(attribute.name()) && attribute.isVisible())
            emit visibleNodeAttributeRemoved(attribute.name());
    for (const OssCustomAttribute &attribute : attributes)
        if (!before.contains(attribute.name()))
            emit nodeAttributeCreated(attribute.name());
    emit nodeAttributesSet();
}

QString OssSnBaseNode::nodeAttributeNameAsUserAttributeName(const QString &attribute) const
{
    // Node attributes are stored as user attributes of the same name.
    return attribute;
}

// --- versions

QString OssSnBaseNode::versionHashPresent() const
{
    return OssSnNodeTypeCatalogue::instance()->hashForVersionUuid(m_versionUuid);
}

bool OssSnBaseNode::versionDateLT(const QString &a, const QString &b)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() && !b.isEmpty();
    return a < b;
}

QString OssSnBaseNode::versionHashSourcePresentDump() const
{
    const OssSnNodeType *type =
        OssSnNodeTypeCatalogue::instance()->typeForVersionUuid(m_versionUuid);
    return type ? type->source : QString();
}

QString OssSnBaseNode::dumpNodeInfo() const
{
    QStringList lines;
    lines << QStringLiteral("Node '%1' (%2)")
                 .arg(m_name, QString::fromLatin1(metaObject()->className()));
    lines << QStringLiteral("  path: %1").arg(path());
    lines << QStringLiteral("  path key: %1").arg(m_pathKey);
    lines << QStringLiteral("  version: %1 created %2 present %3 date %4")
                 .arg(m_versionUuid, m_versionHashCreated, versionHashPresent(), m_versionDate);
    lines << QStringLiteral("  tags: %1").arg(m_tags.join(QStringLiteral(", ")));
    lines << QStringLiteral("  enabled: %1, bypassed: %2")
                 .arg(m_enabled ? QStringLiteral("yes") : QStringLiteral("no"),
                      m_bypassed ? QStringLiteral("yes") : QStringLiteral("no"));
    for (const OssSnNodeInput &in : m_inputs)
        lines << QStringLiteral("  input %1 (%2) <- %3")
                     .arg(in.name, in.type,
                          in.source ? in.source->name() + QLatin1Char('.') + in.sourceOutput
                                    : QStringLiteral("-"));
    for (const OssSnNodeOutputPoint &out : m_outputs)
        lines << QStringLiteral("  output %1 (%2) -> %3 connection(s)")
                     .arg(out.name, out.type)
                     .arg(outputLinkCount(out.name));
    for (const OssCustomAttribute &attribute : nodeAttributes())
        lines << QStringLiteral("  attribute %1 = %2")
                     .arg(attribute.name(), OssSerializer::variantToText(attribute.value()));
    return lines.join(QLatin1Char('\n'));
}

// --- user attributes reach the contexts

void OssSnBaseNode::userAttributeChangedHook(const OssCustomAttribute &attribute)
{
    for (const QPointer<OssSnBaseContext> &context : qAsConst(m_contexts))
        if (context)
            context->onUserAttributeChanged(attribute, this);
}

void OssSnBaseNode::userAttributeRemovedHook(const QString &name)
{
    for (const QPointer<OssSnBaseContext> &context : qAsConst(m_contexts))
        if (context)
            context->onUserAttributeRemoved(name, this);
}

// --- saving

bool OssSnBaseNode::saveObjects(OssSerializer &serializer)
{
    serializer.beginCollection(QStringLiteral("inputs"), m_inputs.size(), QStringLiteral("QVector"),
                               QStringLiteral("OssSnNodeInput"),
                               OssStringMap{{QStringLiteral("preferred"), m_preferredInput}});
    // Fields at their usual values are left out; reading fills them back in.
    for (const OssSnNodeInput &in : qAsConst(m_inputs)) {
        OssStringMap entry{{QStringLiteral("name"), in.name}, {QStringLiteral("type"), in.type}};
        if (!in.tags.isEmpty())
            entry.insert(QStringLiteral("tags"), joinTags(in.tags));
        if (!in.enabled)
            entry.insert(QStringLiteral("enabled"), QStringLiteral("0"));
        if (in.shared)
            entry.insert(QStringLiteral("shared"), QStringLiteral("1"));
        if (!in.prettyName.isEmpty())
            entry.insert(QStringLiteral("prettyName"), in.prettyName);
        serializer.addCollectionElement(entry);
    }
    serializer.endCollection();
    serializer.beginCollection(QStringLiteral("outputPoints"), m_outputs.size(),
                               QStringLiteral("QVector"), QStringLiteral("OssSnNodeOutputPoint"),
                               OssStringMap{{QStringLiteral("preferred"), m_preferredOutput}});
    for (const OssSnNodeOutputPoint &out : qAsConst(m_outputs)) {
        OssStringMap entry{{QStringLiteral("name"), out.name}, {QStringLiteral("type"), out.type}};
        if (!out.prettyName.isEmpty())
            entry.insert(QStringLiteral("prettyName"), out.prettyName);
        serializer.addCollectionElement(entry);
    }
    serializer.endCollection();
    // Values are saved with the user attributes; this is their knob order.
    serializer.beginCollection(QStringLiteral("nodeAttributes"), m_attributeOrder.size(),
                               QStringLiteral("QStringList"), QStringLiteral("QString"),
                               OssStringMap());
    for (const QString &name : qAsConst(m_attributeOrder))
        serializer.addCollectionElement(OssStringMap{{QStringLiteral("name"), name}});
    serializer.endCollection();
    for (auto it = m_contexts.cbegin(); it != m_contexts.cend(); ++it)
        if (it.value() && !serializer.saveObject(it.value(), it.key()))
            return false;
    return true;
}

OssSerializableObject *OssSnBaseNode::onLoadSubObject(OssDeserializer &, const QString &name,
                                                      const QString &type)
{
    if (OssSnBaseContext *existing = context(name))
        return existing;
    // A context the node's type did not give it (the type is not installed, or the file is
    // older than path keys): made from its saved class, so that its state is read and the node
    // keeps its look.
    if (!OssClassFactoryManager::instance()->hasFactory(type))
        return nullptr;
    QPointer<QObject> made = OssClassFactoryManager::instance()->create(type, this);
    auto *created = qobject_cast<OssSnBaseContext *>(made.data());
    if (!created) {
        delete made.data();
        return nullptr;
    }
    attachContext(name, created);
    return created;
}

bool OssSnBaseNode::onLoadCollection(const QString &name, const QString &, const QString &, int,
                                     const OssStringMap &attributes)
{
    if (name == QLatin1String("inputs") || name == QLatin1String("outputPoints") ||
        name == QLatin1String("nodeAttributes")) {
        // A second list of one kind replaces the first; say so rather than merge them.
        if (m_readCollections.contains(name))
            m_loadNotes.append(
                QStringLiteral("it holds \"%1\" twice; the last one is used").arg(name));
        m_readCollections.append(name);
    }
    if (name == QLatin1String("inputs")) {
        m_loadingInputs.clear();
        m_preferredInput = attributes.value(QStringLiteral("preferred"));
        return true;
    }
    if (name == QLatin1String("outputPoints")) {
        m_loadingOutputs.clear();
        m_preferredOutput = attributes.value(QStringLiteral("preferred"));
        return true;
    }
    if (name == QLatin1String("nodeAttributes")) {
        m_loadingAttributeOrder.clear();
        return true;
    }
    return false;
}

QStringList OssSnBaseNode::takeLoadNotes()
{
    m_readCollections.clear();
    QStringList notes;
    notes.swap(m_loadNotes);
    return notes;
}

void OssSnBaseNode::onLoadCollectionObject(const QString &name, const QString &, const QString &,
                                           int, const OssStringMap &attributes)
{
    const auto value = [&attributes](const char *key) {
        return attributes.value(QLatin1String(key));
    };
    if (name == QLatin1String("inputs")) {
        OssSnNodeInput in;
        in.name = value("name");
        in.type = value("type");
        in.tags = splitTags(value("tags"));
        in.enabled = value("enabled") != QLatin1String("0");
        in.shared = value("shared") == QLatin1String("1");
        in.prettyName = value("prettyName");
        if (!in.name.isEmpty())
            m_loadingInputs.append(in);
    } else if (name == QLatin1String("outputPoints")) {
        OssSnNodeOutputPoint out;
        out.name = value("name");
        out.type = value("type");
        out.prettyName = value("prettyName");
        if (!out.name.isEmpty())
            m_loadingOutputs.append(out);
    } else if (name == QLatin1String("nodeAttributes")) {
        if (!value("name").isEmpty())
            m_loadingAttributeOrder.append(value("name"));
    }
}

void OssSnBaseNode::onEndCollection(const QString &name, const QString &, const QString &)
{
    // The saved ports and attributes replace those of the type: groups and upgraded nodes may
    // differ from their type's description. Nodes are loaded before any connection is made.
    if (name == QLatin1String("inputs"))
        m_inputs = m_loadingInputs;
    else if (name == QLatin1String("outputPoints"))
        m_outputs = m_loadingOutputs;
    else if (name == QLatin1String("nodeAttributes")) {
        // Attributes of the type that the saved node no longer had go away.
        for (const QString &old : qAsConst(m_attributeOrder))
            if (!m_loadingAttributeOrder.contains(old))
                removeUserAttribute(old, false);
        // The order names only attributes the node has: a name without a value (removed by an
        // earlier list, or never saved) would come back on the next save with a default value.
        QStringList order;
        for (const QString &attribute : qAsConst(m_loadingAttributeOrder)) {
            if (order.contains(attribute))
                continue;
            if (!exists(attribute)) {
                m_loadNotes.append(
                    QStringLiteral("attribute \"%1\" is listed without a value; dropped")
                        .arg(attribute));
                continue;
            }
            order.append(attribute);
        }
        m_attributeOrder = order;
    }
}
