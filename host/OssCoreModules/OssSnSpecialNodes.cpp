#include "OssSnSpecialNodes.h"

#include "OssArchive.h"
#include "OssProject.h"
#include "OssShaderNetwork.h"
#include "OssSnNodeType.h"
#include "OssSnNodeTypeCatalogue.h"

#include <OssSerializer.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QCryptographicHash>
#include <QFile>
#include <QSet>

namespace {

// Swaps a custom procedural's definition (ports, attributes, source) and back.
class CustomProceduralDefinitionCommand : public OssUndoCommand
{
public:
    CustomProceduralDefinitionCommand(OssSnCustomProceduralNode *node, const OssSnNodeType &after,
                                      const QString &sourceFile)
        : OssUndoCommand(QStringLiteral("Import Custom Procedural")), m_node(node), m_after(after),
          m_afterFile(sourceFile), m_beforeFile(node->sourceFile())
    {
        m_before.pathKey = node->pathKey();
        m_before.description = node->description();
        m_before.tags = node->tags();
        for (const QString &input : node->inputNames())
            m_before.inputs.append(
                OssSnNodeTypePort{input, node->inputType(input), node->inputTags(input)});
        m_before.preferredInput = node->preferredInput();
        for (const QString &output : node->outputPointNames())
            m_before.outputs.append(OssSnNodeTypePort{output, node->outputPointType(output), {}});
        m_before.preferredOutput = node->prefferedOutputPoint();
        for (const OssCustomAttribute &attribute : node->nodeAttributes())
            m_before.attributes.append(OssSnNodeTypeAttribute{
                attribute.name(), attribute.prettyName(), attribute.typeName(), attribute.value(),
                attribute.isVisible()});
        m_before.versionUuid = node->versionUUID();
        m_before.hash = node->versionHashCreated();
        m_before.date = node->versionDate();
        m_before.source = node->definition();
    }
    void redo() override
    {
        if (m_node)
            m_node->setDefinitionDirect(m_after, m_afterFile);
    }
    void undo() override
    {
        if (m_node)
            m_node->setDefinitionDirect(m_before, m_beforeFile);
    }

private:
    QPointer<OssSnCustomProceduralNode> m_node;
    OssSnNodeType m_before, m_after;
    QString m_afterFile, m_beforeFile;
};

} // namespace

bool OssSnCustomProceduralNode::importFromFile(const QString &path, QStringList *errors)
{
    QByteArray data;
    QString error;
    OssSnNodeType type;
    if (!OssArchive::read(path, QString::fromLatin1(OssArchive::CustomProceduralKind), &data,
                          &error) ||
        !OssSnNodeTypeCatalogue::parse(QString::fromUtf8(data), path, &type, &error)) {
        if (errors)
            errors->append(error);
        return false;
    }
    // The definition replaces ports and attributes; connections of ports that keep their
    // names survive. One undo step.
    OssUndoManager::AutoMacro macro(QStringLiteral("Import Custom Procedural"));
    struct Link
    {
        QString input;
        QPointer<OssSnBaseNode> source;
        QString output;
    };
    QList<Link> inputs;
    for (const QString &input : inputNames())
        if (OssSnBaseNode *source = inputConnection(input))
            inputs.append(Link{input, source, inputOutputPoint(input)});
    const QVector<OssSnOutputLink> outputs = outputLinks();
    for (const Link &link : qAsConst(inputs))
        disconnectInput(link.input);
    for (const OssSnOutputLink &link : outputs)
        if (link.target)
            link.target->disconnectInput(link.input);
    OssUndoManager::instance()->addUndo(new CustomProceduralDefinitionCommand(this, type, path));
    for (const Link &link : qAsConst(inputs))
        if (link.source && hasInput(link.input))
            connectInput(link.input, link.source, link.output);
    for (const OssSnOutputLink &link : outputs)
        if (link.target && hasOutputPoint(link.outputPoint))
            link.target->connectInput(link.input, this, link.outputPoint);
    return true;
}

bool OssSnCustomProceduralNode::exportToFile(const QString &path, QString *error) const
{
    return OssArchive::write(path, QString::fromLatin1(OssArchive::CustomProceduralKind),
                             m_definition.toUtf8(), error);
}

void OssSnCustomProceduralNode::setDefinitionDirect(const OssSnNodeType &type,
                                                    const QString &sourceFile)
{
    const QString name = this->name();
    applyType(type);
    setNameDirect(name);
    m_sourceFile = sourceFile;
    m_definition = type.source;
    emit inputsRefreshed();
    emit outputsRefreshed();
    emit nodeRefreshed();
}

OssSnBakePointNode::OssSnBakePointNode(QObject *parent) : OssSnBaseNode(parent)
{
    // Any change upstream may make the bake stale; views re-read the state on this signal.
    connect(this, &OssSnBaseNode::inputNodeChanged, this, [this] {
        watchUpstream();
        emit bakedStateChanged();
    });
}

void OssSnBakePointNode::setGeoChannelName(const QString &name)
{
    if (name == m_geoChannelName)
        return;
    m_geoChannelName = name;
    emit geoChannelNameChanged(name);
}

void OssSnBakePointNode::setSyncGeoChannel(bool sync)
{
    if (sync == m_syncGeoChannel)
        return;
    m_syncGeoChannel = sync;
    emit syncGeoChannelChanged(sync);
}

void OssSnBakePointNode::setLimitBake(bool limit)
{
    if (limit == m_limitBake)
        return;
    m_limitBake = limit;
    emit limitBakeChanged(limit);
}

void OssSnBakePointNode::setFilterCollectionEnabled(bool enabled)
{
    if (enabled == m_filterCollectionEnabled)
        return;
    m_filterCollectionEnabled = enabled;
    emit filterCollectionEnabledChanged(enabled);
}

void OssSnBakePointNode::setFilterCollectionText(const QString &text)
{
    if (text == m_filterCollectionText)
        return;
    m_filterCollectionText = text;
    emit filterCollectionTextChanged(text);
}

QString OssSnBakePointNode::upstreamSignature() const
{
    // Names, types, state and attribute values of every node upstream, in a fixed walk order,
    // with the connections between them.
    QCryptographicHash hash(QCryptographicHash::Sha1);
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> stack{this};
    while (!stack.isEmpty()) {
        const OssSnBaseNode *node = stack.takeLast();
        if (seen.contains(node))
            continue;
        seen.insert(node);
        hash.addData(node->name().toUtf8());
        hash.addData(node->pathKey().toUtf8());
        hash.addData(node->enabledAsBool() ? "1" : "0");
        hash.addData(node->bypassed() ? "1" : "0");
        for (const OssCustomAttribute &attribute : node->nodeAttributes()) {
            hash.addData(attribute.name().toUtf8());
            hash.addData(OssSerializer::variantToText(attribute.value()).toUtf8());
        }
        for (const QString &input : node->inputNames()) {
            const OssSnBaseNode *source = node->inputConnection(input);
            hash.addData(input.toUtf8());
            hash.addData(source ? source->name().toUtf8() : QByteArray("-"));
            hash.addData(node->inputOutputPoint(input).toUtf8());
            if (source)
                stack.append(source);
        }
    }
    return QString::fromLatin1(hash.result().toHex());
}

bool OssSnBakePointNode::isBakedResultUpToDate(bool deep) const
{
    if (!hasBakedResult() || m_bakedSignature != upstreamSignature())
        return false;
    if (!deep)
        return true;
    QSet<const OssSnBaseNode *> seen;
    QList<const OssSnBaseNode *> stack;
    for (OssSnBaseNode *input : inputNodes())
        if (input)
            stack.append(input);
    while (!stack.isEmpty()) {
        const OssSnBaseNode *node = stack.takeLast();
        if (seen.contains(node))
            continue;
        seen.insert(node);
        if (auto *bakePoint = qobject_cast<const OssSnBakePointNode *>(node))
            if (bakePoint->hasBakedResult() && !bakePoint->isBakedResultUpToDate(false))
                return false;
        for (OssSnBaseNode *input : node->inputNodes())
            if (input)
                stack.append(input);
    }
    return true;
}

void OssSnBakePointNode::bake(const QString &imageSetName)
{
    m_bakedImageSet = imageSetName;
    m_bakedSignature = upstreamSignature();
    emit bakedStateChanged();
    emit nodeStateRefreshed();
}

void OssSnBakePointNode::clearBake()
{
    if (m_bakedSignature.isEmpty())
        return;
    m_bakedSignature.clear();
    m_bakedImageSet.clear();
    emit bakedStateChanged();
}

void OssSnBakePointNode::watchUpstream()
{
    // Changes of attributes and state upstream are announced through the stale check the
    // views make on bakedStateChanged; connections are watched here.
    for (OssSnBaseNode *input : inputNodes()) {
        if (!input)
            continue;
        connect(input, &OssSnBaseNode::nodeAttributeChanged, this,
                &OssSnBakePointNode::bakedStateChanged, Qt::UniqueConnection);
        connect(input, &OssSnBaseNode::enabledChanged, this, &OssSnBakePointNode::bakedStateChanged,
                Qt::UniqueConnection);
    }
}

void OssSnImageSetNodeBase::setImageSet(OssChannel *imageSet, bool notify)
{
    if (m_imageSet == imageSet)
        return;
    m_imageSet = imageSet;
    if (imageSet)
        m_imageSetName = imageSet->name();
    if (notify)
        emit imageSetChanged();
}

OssChannel *OssSnImageSetNodeBase::imageSet() const
{
    if (m_imageSet)
        return m_imageSet;
    const OssShaderNetwork *owner = network();
    const OssShadingGroup *group = owner ? owner->shadingGroup() : nullptr;
    return group && !m_imageSetName.isEmpty() ? group->channel(m_imageSetName) : nullptr;
}

QString OssSnImageSetNodeBase::imageSetName() const
{
    return m_imageSet ? m_imageSet->name() : m_imageSetName;
}

bool OssSnImageSetNodeBase::enablePropertiesBasedOnManagedByChannel()
{
    // The channel manages size and pixel type: they are shown read-only while a channel is
    // attached.
    const bool managed = m_imageSet != nullptr;
    for (const OssCustomAttribute &attribute : nodeAttributes())
        if (attribute.name() == QLatin1String("Width") ||
            attribute.name() == QLatin1String("Height") ||
            attribute.name() == QLatin1String("Depth"))
            setUserAttribute(OssCustomAttribute(QStringLiteral("_readOnly_") + attribute.name(),
                                                managed, QString(), false),
                             false);
    return managed;
}

void OssSnGeoChannelNode::setGeoChannelName(const QString &name)
{
    if (name == m_geoChannelName)
        return;
    m_geoChannelName = name;
    emit geoChannelNameChanged(name);
}

void OssSnGeoChannelNode::setImageSetValid(bool valid)
{
    if (valid == m_imageSetValid)
        return;
    m_imageSetValid = valid;
    emit imageSetValidChanged(valid);
}

OssSnTeleportNode::OssSnTeleportNode(QObject *parent) : OssSnBaseNode(parent)
{
    connect(this, &OssSnBaseNode::nodeAttributeChanged, this,
            [this](const QString &name, const QVariant &value) {
                if (name != QLatin1String("ChannelName"))
                    return;
                emit channelNameChanged(value.toString());
                // Every teleport of the network may change state: a broadcast or receiver of a
                // channel came or went.
                if (OssShaderNetwork *owner = network())
                    for (OssSnBaseNode *node : owner->rootNetwork()->getAllNodes())
                        if (auto *teleport = qobject_cast<OssSnTeleportNode *>(node))
                            emit teleport->updateState();
            });
}

QString OssSnTeleportNode::channelName() const
{
    return nodeAttributeValue(QStringLiteral("ChannelName")).toString();
}

void OssSnTeleportNode::setChannelName(const QString &name, bool undoable)
{
    setNodeAttribute(QStringLiteral("ChannelName"), name, undoable);
}

OssTeleportNodeManager *OssSnTeleportNode::teleportNodeManager() const
{
    OssShaderNetwork *owner = network();
    if (!owner)
        return nullptr;
    static QHash<const OssShaderNetwork *, OssTeleportNodeManager *> managers;
    OssShaderNetwork *root = owner->rootNetwork();
    OssTeleportNodeManager *&manager = managers[root];
    if (!manager) {
        manager = new OssTeleportNodeManager(root);
        QObject::connect(root, &QObject::destroyed, [root] { delete managers.take(root); });
    }
    return manager;
}

OssTeleportNodeManager::OssTeleportNodeManager(const OssShaderNetwork *rootNetwork)
    : m_network(rootNetwork)
{}

OssSnBroadcastTeleportNode *
OssTeleportNodeManager::broadcastNodeForChannel(const QString &channel) const
{
    for (OssSnBaseNode *node : m_network->getAllNodes())
        if (auto *broadcast = qobject_cast<OssSnBroadcastTeleportNode *>(node))
            if (!channel.isEmpty() && broadcast->channelName() == channel)
                return broadcast;
    return nullptr;
}

QList<OssSnReceiverTeleportNode *>
OssTeleportNodeManager::receiversOfChannel(const QString &channel) const
{
    QList<OssSnReceiverTeleportNode *> receivers;
    for (OssSnBaseNode *node : m_network->getAllNodes())
        if (auto *receiver = qobject_cast<OssSnReceiverTeleportNode *>(node))
            if (!channel.isEmpty() && receiver->channelName() == channel)
                receivers.append(receiver);
    return receivers;
}

bool OssSnViewerNode::connectViewerInput(const QString &number, OssSnBaseNode *source,
                                         const QString &outputPoint, bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("View Node"));
    if (!connectInput(number, source, outputPoint, undoable))
        return false;
    bool ok = false;
    const int edge = number.toInt(&ok);
    if (ok && network())
        network()->setViewerNodeCurrentEdge(edge, undoable);
    return true;
}

void OssSnUINode::applyType(const OssSnNodeType &type)
{
    OssSnBaseNode::applyType(type);
    // Title, label, colour and z-order stay user attributes but are not parameters.
    static const QStringList shown{QStringLiteral("TitleText"), QStringLiteral("BackgroundColor"),
                                   QStringLiteral("ZOrder"), QStringLiteral("Label")};
    QList<OssCustomAttribute> kept;
    QList<OssCustomAttribute> display;
    for (const OssCustomAttribute &attribute : nodeAttributes())
        (shown.contains(attribute.name()) ? display : kept).append(attribute);
    setNodeAttributesDirect(kept);
    for (const OssCustomAttribute &attribute : qAsConst(display))
        setUserAttribute(attribute, false);
}
