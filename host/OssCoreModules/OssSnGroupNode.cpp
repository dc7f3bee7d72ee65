#include "OssSnGroupNode.h"

#include "OssArchive.h"
#include "OssLayerShaderModel.h"
#include "OssShaderNetwork.h"
#include "OssShaderNetworkCommands.h"
#include "OssShaderNetworkManager.h"
#include "OssSnSpecialNodes.h"

#include <OssDeserializer.h>
#include <OssLinkedCustomAttributeManager.h>
#include <OssSerializer.h>
#include <OssUndoManager.h>

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QUndoCommand>

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
class KnobLinksCommand : public QUndoCommand
{
public:
    KnobLinksCommand(OssSnGroupNode *group, const QString &knob, const Links &after)
        : QUndoCommand(QStringLiteral("Link %1").arg(knob)), m_group(group), m_knob(knob),
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

void pushStep(QUndoCommand *command)
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
    // A knob drives the inner attributes linked to it.
    for (const auto &link : knobLinks(name))
        link.first->setNodeAttribute(link.second, value, false);
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
    class ReorderCommand : public QUndoCommand
    {
    public:
        ReorderCommand(OssSnGroupNode *group, QStringList before, QStringList after)
            : QUndoCommand(QStringLiteral("Reorder Group Inputs")), m_group(group),
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

OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode(QObject *parent) : OssSnGroupNode(parent)
{
    m_shaderModel = OssLayerShaderModelManager::instance()->defaultModel();
}

void OssSnMultiChannelGroupNode::setShaderModel(OssLayerShaderModel *model)
{
    if (m_shaderModel == model)
        return;
    m_shaderModel = model;
    setValid(model != nullptr);
    emit shaderModelChanged();
}

QString OssSnMultiChannelGroupNode::shaderModelId() const
{
    return m_shaderModel ? m_shaderModel->id() : QString();
}

void OssSnMultiChannelGroupNode::setShaderModelId(const QString &id)
{
    setShaderModel(OssLayerShaderModelManager::instance()->model(id));
}

void OssSnMultiChannelGroupNode::setValid(bool valid)
{
    if (m_valid == valid)
        return;
    m_valid = valid;
    emit validityChanged();
}

bool OssSnMultiChannelGroupNode::batchConnectInputNode(OssSnBaseNode *base, OssSnBaseNode *over,
                                                       bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect Channels"));
    bool connected = false;
    for (const QString &input : inputNames()) {
        OssSnBaseNode *source = nullptr;
        if (input.endsWith(QLatin1String("Base")) || input == QLatin1String("Base"))
            source = base;
        else if (input.endsWith(QLatin1String("Over")) || input == QLatin1String("Over"))
            source = over;
        else
            continue;
        if (!source)
            continue;
        // Each channel input takes the output point of the same stream name when the source
        // has one, its preferred output otherwise.
        const QString stream = input.left(input.size() - 4);
        const QString output =
            source->hasOutputPoint(stream) ? stream : source->prefferedOutputPoint();
        connected = connectInput(input, source, output, undoable) || connected;
    }
    return connected;
}

QList<OssSnBaseNode *> OssSnMultiChannelBakePointNode::activeBakePointNodes() const
{
    QList<OssSnBaseNode *> nodes;
    for (OssSnBaseNode *node : groupNetwork()->nodes())
        if (qobject_cast<OssSnBakePointNode *>(node) && node->enabledAsBool())
            nodes.append(node);
    return nodes;
}

int OssSnMultiChannelBakePointNode::configureBakepoints()
{
    int made = 0;
    for (OssSnBaseNode *output : groupOutputNodes()) {
        const QString input = output->inputNames().value(0);
        if (input.isEmpty())
            continue;
        OssSnBaseNode *feeding = output->inputConnection(input);
        if (qobject_cast<OssSnBakePointNode *>(feeding))
            continue;
        OssSnBaseNode *bakePoint = groupNetwork()->createNode(
            QStringLiteral("Misc/Bake Point"), output->name() + QStringLiteral("_BakePoint"));
        if (!bakePoint)
            break;
        if (feeding)
            bakePoint->connectInput(bakePoint->preferredInput().isEmpty()
                                        ? bakePoint->inputNames().value(0)
                                        : bakePoint->preferredInput(),
                                    feeding, output->inputOutputPoint(input));
        output->connectInput(input, bakePoint, bakePoint->prefferedOutputPoint());
        connect(static_cast<OssSnBakePointNode *>(bakePoint),
                &OssSnBakePointNode::bakedStateChanged, this,
                &OssSnMultiChannelBakePointNode::bakedStateChanged);
        ++made;
    }
    return made;
}

void OssSnMaterialNode::connectPreviewShaderNetwork()
{
    if (m_previewConnected)
        return;
    m_previewConnected = true;
    emit nodeStateRefreshed();
}

bool OssSnMaterialNode::importFromFile(const QString &path, QStringList *errors)
{
    QByteArray data;
    QString error;
    if (!OssArchive::read(path, QString::fromLatin1(OssArchive::MaterialKind), &data, &error)) {
        if (errors)
            errors->append(error);
        return false;
    }
    OssDeserializer deserializer;
    QString type;
    if (!deserializer.inspect(data, &type, &error, path)) {
        if (errors)
            errors->append(error);
        return false;
    }
    if (type != QLatin1String("OssShaderNetwork")) {
        if (errors)
            errors->append(
                QStringLiteral("\"%1\": the archive holds no material network").arg(path));
        return false;
    }
    // Read into a scratch network first so a bad archive leaves this material as it was.
    OssShaderNetwork scratch;
    scratch.setAnnounceNodes(false);
    deserializer.setRestoreUuids(false);
    if (!deserializer.loadFromData(data, &scratch, &error, path)) {
        if (errors)
            errors->append(error);
        return false;
    }
    if (errors)
        errors->append(scratch.loadWarnings());
    OssUndoManager::AutoMacro macro(QStringLiteral("Import Material"));
    groupNetwork()->removeNodes(groupNetwork()->nodes());
    const QList<OssSnBaseNode *> nodes = scratch.nodes();
    for (OssSnBaseNode *node : nodes) {
        scratch.takeNodeDirect(node);
        groupNetwork()->insertNode(node);
    }
    return true;
}

bool OssSnMaterialNode::exportToFile(const QString &path, QString *error)
{
    OssSerializer serializer;
    const QByteArray data = serializer.saveToData(groupNetwork(), QStringLiteral("material"));
    return OssArchive::write(path, QString::fromLatin1(OssArchive::MaterialKind), data, error);
}

bool OssSnMaterialNode::generateMaterialThumbnail(const QString &path)
{
    // A swatch of the material's inner nodes: one stripe per node, coloured from its name.
    QImage image(128, 128, QImage::Format_ARGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    const QList<OssSnBaseNode *> nodes = groupNetwork()->nodes();
    const int count = qMax(1, nodes.size());
    for (int i = 0; i < nodes.size(); ++i) {
        const uint hash = qHash(nodes.at(i)->name());
        painter.fillRect(QRect(0, i * 128 / count, 128, 128 / count + 1),
                         QColor::fromHsv(int(hash % 360), 160, 200));
    }
    painter.end();
    return image.save(path, "PNG");
}
