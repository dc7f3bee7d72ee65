#include "OssSnGroupNode.h"

#include "OssLayerShaderModel.h"
#include "OssShaderNetwork.h"
#include "OssShaderNetworkManager.h"
#include "OssSnSpecialNodes.h"

#include <OssDeserializer.h>
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
    connect(m_groupNetwork, &OssShaderNetwork::nodeAdded, this, &OssSnGroupNode::onInnerNodeAdded);
    connect(m_groupNetwork, &OssShaderNetwork::nodeRemoved, this,
            &OssSnGroupNode::onInnerNodeRemoved);
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
    return serializer.saveObject(m_groupNetwork, QStringLiteral("groupNetwork"));
}

OssSerializableObject *OssSnGroupNode::onLoadSubObject(OssDeserializer &deserializer,
                                                       const QString &name, const QString &type)
{
    if (name == QLatin1String("groupNetwork"))
        return m_groupNetwork;
    return OssSnBaseNode::onLoadSubObject(deserializer, name, type);
}

void OssSnGroupNode::onInnerNodeAdded(OssSnBaseNode *node)
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
    connect(
        node, &OssSnBaseNode::nameChanged, this,
        [this, node, old = node->name()](const QString &) mutable {
            onInnerNodeRenamed(node, old);
            old = node->name();
        },
        Qt::UniqueConnection);
}

void OssSnGroupNode::onInnerNodeRemoved(OssSnBaseNode *node)
{
    disconnect(node, &OssSnBaseNode::nameChanged, this, nullptr);
    if (isGroupInput(node))
        removeInput(node->name());
    else if (isGroupOutput(node))
        removeOutputPoint(node->name());
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
    OssDeserializer deserializer;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (errors)
            errors->append(QStringLiteral("\"%1\": cannot open: %2").arg(path, file.errorString()));
        return false;
    }
    const QByteArray data = file.readAll();
    QString type;
    QString error;
    if (!deserializer.inspect(data, &type, &error, path)) {
        if (errors)
            errors->append(error);
        return false;
    }
    if (type != QLatin1String("OssShaderNetwork")) {
        if (errors)
            errors->append(QStringLiteral("\"%1\": not a material archive").arg(path));
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
