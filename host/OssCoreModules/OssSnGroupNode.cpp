#include "OssSnGroupNode.h"

#include "OssShaderNetwork.h"
#include "OssShaderNetworkCommands.h"
#include "OssShaderNetworkManager.h"

#include <OssDeserializer.h>
#include <OssLinkedCustomAttributeManager.h>
#include <OssSerializer.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QFile>

namespace {

bool isGroupInput(const OssSnBaseNode *node)
{
    return node->hasTag(QStringLiteral("_input"));
}

bool isGroupOutput(const OssSnBaseNode *node)
{
    return node->hasTag(QStringLiteral("_output"));
}

} // namespace

OssSnGroupNode::OssSnGroupNode(QObject *parent)
    : OssSnBaseNode(parent), m_groupNetwork(new OssShaderNetwork(QString(), this))
{
    connect(this, &OssSnBaseNode::nodeAttributeChanged, this,
            &OssSnGroupNode::onOwnAttributeChanged);
}

namespace {

using Links = QList<OssLinkedCustomAttributeManager::Link>;

// Sets the links of one knob to a given list, and back.
class KnobLinksCommand : public OssUndoCommand
{
public:
    KnobLinksCommand(OssSnGroupNode *group, const QString &knob, const Links &after)
        : OssUndoCommand(QStringLiteral("Link %1").arg(knob)), m_group(group), m_knob(knob),
          m_before(OssLinkedCustomAttributeManager::instance()->links(group, knob)), m_after(after)
    {}
    void redo() override { apply(m_after); }
    void undo() override { apply(m_before); }

private:
    void apply(const Links &links)
    {
        if (!m_group)
            return;
        OssLinkedCustomAttributeManager *manager = OssLinkedCustomAttributeManager::instance();
        manager->unlinkAll(m_group, m_knob);
        for (const auto &link : links)
            if (link.first)
                manager->link(m_group, m_knob, link.first, link.second);
    }
    QPointer<OssSnGroupNode> m_group;
    QString m_knob;
    Links m_before, m_after;
};

void pushStep(OssUndoCommand *command)
{
    if (OssUndoManager::instance()->isReplaying()) {
        command->redo();
        delete command;
    } else {
        OssUndoManager::instance()->addUndo(command);
    }
}

} // namespace

QString OssSnGroupNode::createKnob(OssSnBaseNode *inner, const QString &attribute,
                                   const QString &group)
{
    if (!inner || inner->network() != m_groupNetwork || !inner->exists(attribute))
        return QString();
    QString groupName = group.isEmpty() ? inner->name() : group;
    groupName.replace(QLatin1Char('/'), QLatin1Char('_'));
    QString knob = groupName + QLatin1Char('/') + attribute;
    for (int i = 1; exists(knob); ++i)
        knob = groupName + QLatin1Char('/') + attribute + QString::number(i);
    const OssCustomAttribute source = inner->userAttribute(attribute);
    OssUndoManager::AutoMacro macro(QStringLiteral("Create Knob %1").arg(knob));
    QList<OssCustomAttribute> after = nodeAttributes();
    after.append(OssCustomAttribute(knob, source.value(), source.prettyName(), true));
    pushStep(new OssSnNodeAttributeCommand(QStringLiteral("Create Knob %1").arg(knob), this,
                                           nodeAttributes(), after));
    pushStep(new KnobLinksCommand(this, knob, Links{{inner, attribute}}));
    return knob;
}

QString OssSnGroupNode::linkKnobs(const QString &newName, const QStringList &knobs)
{
    if (knobs.isEmpty() || newName.isEmpty())
        return QString();
    QString type;
    Links links;
    for (const QString &knob : knobs) {
        if (!hasNodeAttribute(knob))
            return QString();
        const QString knobType = userAttribute(knob).typeName();
        if (!type.isEmpty() && knobType != type)
            return QString();
        type = knobType;
        for (const auto &link : OssLinkedCustomAttributeManager::instance()->links(this, knob))
            if (!links.contains(link))
                links.append(link);
    }
    const QString groupName = getAttributeGroupName(knobs.first());
    const QString linked = groupName.isEmpty() ? newName : groupName + QLatin1Char('/') + newName;
    if (exists(linked) && !knobs.contains(linked))
        return QString();
    OssUndoManager::AutoMacro macro(QStringLiteral("Link Knobs %1").arg(newName));
    const OssCustomAttribute first = userAttribute(knobs.first());
    QList<OssCustomAttribute> after;
    for (const OssCustomAttribute &attribute : nodeAttributes()) {
        if (attribute.name() == knobs.first())
            after.append(OssCustomAttribute(linked, first.value(), newName, true));
        else if (!knobs.contains(attribute.name()))
            after.append(attribute);
    }
    for (const QString &knob : knobs)
        pushStep(new KnobLinksCommand(this, knob, Links()));
    pushStep(
        new OssSnNodeAttributeCommand(QStringLiteral("Link Knobs"), this, nodeAttributes(), after));
    pushStep(new KnobLinksCommand(this, linked, links));
    return linked;
}

bool OssSnGroupNode::renameKnobName(const QString &knob, const QString &oldPrettyName,
                                    const QString &newText)
{
    if (!hasNodeAttribute(knob) || newText.isEmpty() || newText == oldPrettyName)
        return false;
    QList<OssCustomAttribute> after = nodeAttributes();
    for (OssCustomAttribute &attribute : after)
        if (attribute.name() == knob)
            attribute.setPrettyName(newText);
    pushStep(new OssSnNodeAttributeCommand(QStringLiteral("Rename Knob"), this, nodeAttributes(),
                                           after));
    emit nodeAttributePrettyNameChanged(knob, newText);
    return true;
}

bool OssSnGroupNode::deleteAttribute(const QString &knob)
{
    if (!hasNodeAttribute(knob))
        return false;
    OssUndoManager::AutoMacro macro(QStringLiteral("Delete Knob %1").arg(knob));
    pushStep(new KnobLinksCommand(this, knob, Links()));
    return removeNodeAttribute(knob);
}

QList<QPair<OssSnBaseNode *, QString>> OssSnGroupNode::knobLinks(const QString &knob) const
{
    QList<QPair<OssSnBaseNode *, QString>> result;
    for (const auto &link : OssLinkedCustomAttributeManager::instance()->links(this, knob))
        if (auto *node = qobject_cast<OssSnBaseNode *>(link.first))
            result.append(qMakePair(node, link.second));
    return result;
}

void OssSnGroupNode::onOwnAttributeChanged(const QString &name, const QVariant &value)
{
    // A knob drives the inner attributes linked to it; a link to an attribute its node no longer
    // has is broken, and does not bring the attribute back.
    for (const auto &link : knobLinks(name))
        if (link.first->hasNodeAttribute(link.second))
            link.first->setNodeAttribute(link.second, value, false);
}

void OssSnGroupNode::recordDrivenAttributeChanges(const QString &name, const QVariant &value)
{
    // Each linked inner attribute changes in a step of its own before the knob's: undoing the
    // knob then gives each inner attribute its own old value back, even one that differed from
    // the knob's.
    for (const auto &link : knobLinks(name))
        if (link.first->hasNodeAttribute(link.second))
            link.first->setNodeAttribute(link.second, value, true);
}

QList<OssSnBaseNode *> OssSnGroupNode::groupInputNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (const QString &input : inputNames())
        if (OssSnBaseNode *node = m_groupNetwork->node(input))
            if (isGroupInput(node))
                nodes.append(node);
    return nodes;
}

QList<OssSnBaseNode *> OssSnGroupNode::groupOutputNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (const QString &output : outputPointNames())
        if (OssSnBaseNode *node = m_groupNetwork->node(output))
            if (isGroupOutput(node))
                nodes.append(node);
    return nodes;
}

bool OssSnGroupNode::reorderInputs(const QStringList &order)
{
    if (order == inputNames())
        return true;
    const QStringList before = inputNames();
    if (!setInputOrder(order))
        return false;
    // Record the new order as a step of its own; replaying sets the order directly.
    class ReorderCommand : public OssUndoCommand
    {
    public:
        ReorderCommand(OssSnGroupNode *group, QStringList before, QStringList after)
            : OssUndoCommand(QStringLiteral("Reorder Group Inputs")), m_group(group),
              m_before(std::move(before)), m_after(std::move(after))
        {}
        void redo() override
        {
            if (m_group)
                m_group->setInputOrder(m_after);
        }
        void undo() override
        {
            if (m_group)
                m_group->setInputOrder(m_before);
        }

    private:
        QPointer<OssSnGroupNode> m_group;
        QStringList m_before, m_after;
    };
    if (!OssUndoManager::instance()->isReplaying())
        OssUndoManager::instance()->addUndo(new ReorderCommand(this, before, order), false);
    return true;
}

bool OssSnGroupNode::exportAsGizmo(const QString &fileName, QString *error)
{
    OssSerializer serializer;
    return serializer.saveToFile(fileName, this, error, QStringLiteral("gizmo"));
}

QString OssSnGroupNode::getAttributeGroupName(const QString &attribute)
{
    const int slash = attribute.indexOf(QLatin1Char('/'));
    return slash < 0 ? QString() : attribute.left(slash);
}

bool OssSnGroupNode::saveObjects(OssSerializer &serializer)
{
    if (!OssSnBaseNode::saveObjects(serializer))
        return false;
    QList<OssStringMap> links;
    for (const QString &knob : nodeAttributeNames())
        for (const auto &link : knobLinks(knob))
            // A link to a node taken out of the subnetwork (a broken knob) is not saved: the
            // name could match another node when read back.
            if (link.first->network() == m_groupNetwork)
                links.append(OssStringMap{{QStringLiteral("knob"), knob},
                                          {QStringLiteral("node"), link.first->name()},
                                          {QStringLiteral("attribute"), link.second}});
    serializer.beginCollection(QStringLiteral("knobLinks"), links.size(), QStringLiteral("QList"),
                               QStringLiteral("OssKnobLink"), OssStringMap());
    for (const OssStringMap &link : qAsConst(links))
        serializer.addCollectionElement(link);
    serializer.endCollection();
    return serializer.saveObject(m_groupNetwork, QStringLiteral("groupNetwork"));
}

OssSerializableObject *OssSnGroupNode::onLoadSubObject(OssDeserializer &deserializer,
                                                       const QString &name, const QString &type)
{
    if (name == QLatin1String("groupNetwork"))
        return m_groupNetwork;
    return OssSnBaseNode::onLoadSubObject(deserializer, name, type);
}

bool OssSnGroupNode::onLoadCollection(const QString &name, const QString &type,
                                      const QString &elementType, int count,
                                      const OssStringMap &attributes)
{
    if (name == QLatin1String("knobLinks")) {
        m_loadingLinks.clear();
        return true;
    }
    return OssSnBaseNode::onLoadCollection(name, type, elementType, count, attributes);
}

void OssSnGroupNode::onLoadCollectionObject(const QString &name, const QString &type,
                                            const QString &elementType, int index,
                                            const OssStringMap &attributes)
{
    if (name == QLatin1String("knobLinks"))
        m_loadingLinks.append(attributes);
    else
        OssSnBaseNode::onLoadCollectionObject(name, type, elementType, index, attributes);
}

void OssSnGroupNode::onLoadFinished()
{
    // The subnetwork is loaded by now; links name its nodes.
    for (const OssStringMap &link : qAsConst(m_loadingLinks))
        if (OssSnBaseNode *node = m_groupNetwork->node(link.value(QStringLiteral("node"))))
            OssLinkedCustomAttributeManager::instance()->link(
                this, link.value(QStringLiteral("knob")), node,
                link.value(QStringLiteral("attribute")));
    m_loadingLinks.clear();
    OssSnBaseNode::onLoadFinished();
}

void OssSnGroupNode::addInnerNodePort(OssSnBaseNode *node)
{
    if (isGroupInput(node)) {
        if (addInput(node->name(), node->outputPointType(node->prefferedOutputPoint())))
            emit newGroupNodeInputOutputCreated();
    } else if (isGroupOutput(node)) {
        if (addOutputPoint(node->name(), node->inputType(node->inputNames().value(0))))
            emit newGroupNodeInputOutputCreated();
    } else {
        return;
    }
    followRenames(node);
}

OssSnTakenPort OssSnGroupNode::takeInnerNodePort(OssSnBaseNode *node)
{
    disconnect(node, &OssSnBaseNode::nameChanged, this, nullptr);
    if (isGroupInput(node))
        return takeInput(node->name());
    if (isGroupOutput(node))
        return takeOutputPoint(node->name());
    return OssSnTakenPort();
}

void OssSnGroupNode::restoreInnerNodePort(OssSnBaseNode *node, const OssSnTakenPort &port)
{
    if (!isGroupInput(node) && !isGroupOutput(node))
        return;
    restorePort(port);
    followRenames(node);
}

void OssSnGroupNode::followRenames(OssSnBaseNode *node)
{
    connect(
        node, &OssSnBaseNode::nameChanged, this,
        [this, node, old = node->name()](const QString &) mutable {
            onInnerNodeRenamed(node, old);
            old = node->name();
        },
        Qt::UniqueConnection);
}

void OssSnGroupNode::onInnerNodeRenamed(OssSnBaseNode *node, const QString &oldName)
{
    if (isGroupInput(node))
        renameInput(oldName, node->name());
    else if (isGroupOutput(node))
        renameOutputPoint(oldName, node->name());
}
