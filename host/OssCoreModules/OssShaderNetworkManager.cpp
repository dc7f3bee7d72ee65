#include "OssShaderNetworkManager.h"

#include "OssImageList.h"
#include "OssShaderNetwork.h"
#include "OssShaderNetworkCommands.h"
#include "OssShaderNetworkContextLoader.h"
#include "OssShadingGroup.h"
#include "OssSnBakePointNode.h"
#include "OssSnBaseContext.h"
#include "OssSnBroadcastTeleportNode.h"
#include "OssSnChannelInputNode.h"
#include "OssSnCustomProceduralNode.h"
#include "OssSnGeoChannelNode.h"
#include "OssSnGroupNode.h"
#include "OssSnImageSetNode.h"
#include "OssSnLayerShaderNode.h"
#include "OssSnMaterialNode.h"
#include "OssSnMultiChannelBakePointNode.h"
#include "OssSnMultiChannelBottomTransparencyNode.h"
#include "OssSnMultiChannelGroupNode.h"
#include "OssSnMultiChannelMergeNode.h"
#include "OssSnNodeTypeCatalogue.h"
#include "OssSnReceiverTeleportNode.h"
#include "OssSnUINode.h"
#include "OssSnViewerNode.h"

#include <OssDebug.h>
#include <OssUndoManager.h>

#include <functional>

namespace {

using NodeMaker = std::function<OssSnBaseNode *()>;

const QHash<QString, NodeMaker> &nodeMakers()
{
    static const QHash<QString, NodeMaker> makers{
        {QStringLiteral("OssSnBaseNode"), [] { return new OssSnBaseNode; }},
        {QStringLiteral("OssSnGroupNode"), [] { return new OssSnGroupNode; }},
        {QStringLiteral("OssSnMultiChannelGroupNode"),
         [] { return new OssSnMultiChannelGroupNode; }},
        {QStringLiteral("OssSnMultiChannelMergeNode"),
         [] { return new OssSnMultiChannelMergeNode; }},
        {QStringLiteral("OssSnMultiChannelBakePointNode"),
         [] { return new OssSnMultiChannelBakePointNode; }},
        {QStringLiteral("OssSnMultiChannelBottomTransparencyNode"),
         [] { return new OssSnMultiChannelBottomTransparencyNode; }},
        {QStringLiteral("OssSnMaterialNode"), [] { return new OssSnMaterialNode; }},
        {QStringLiteral("OssSnCustomProceduralNode"), [] { return new OssSnCustomProceduralNode; }},
        {QStringLiteral("OssSnBakePointNode"), [] { return new OssSnBakePointNode; }},
        {QStringLiteral("OssSnImageSetNode"), [] { return new OssSnImageSetNode; }},
        {QStringLiteral("OssSnChannelInputNode"), [] { return new OssSnChannelInputNode; }},
        {QStringLiteral("OssSnGeoChannelNode"), [] { return new OssSnGeoChannelNode; }},
        {QStringLiteral("OssSnBroadcastTeleportNode"),
         [] { return new OssSnBroadcastTeleportNode; }},
        {QStringLiteral("OssSnReceiverTeleportNode"), [] { return new OssSnReceiverTeleportNode; }},
        {QStringLiteral("OssSnViewerNode"), [] { return new OssSnViewerNode; }},
        {QStringLiteral("OssSnLayerShaderNode"), [] { return new OssSnLayerShaderNode; }},
        {QStringLiteral("OssSnUINode"), [] { return new OssSnUINode; }},
    };
    return makers;
}

const QString groupInputKey = QStringLiteral("_System/Group Input");
const QString groupOutputKey = QStringLiteral("_System/Group Output");

} // namespace

OssShaderNetworkManager *OssShaderNetworkManager::instance()
{
    static OssShaderNetworkManager *manager = new OssShaderNetworkManager;
    return manager;
}

OssShaderNetworkManager::OssShaderNetworkManager(QObject *parent) : QObject(parent)
{
    qRegisterMetaType<OssShaderNetwork *>("OssShaderNetwork*");
    // Image lists are node attribute values and must read back from projects.
    OssImageList::registerType();
    qRegisterMetaType<OssSnBaseNode *>("OssSnBaseNode*");
    qRegisterMetaType<QList<OssSnBaseNode *>>("QList<OssSnBaseNode*>");
    connect(OssSnNodeTypeCatalogue::instance(),
            &OssSnNodeTypeCatalogue::registeredNodePopulationChanged, this,
            &OssShaderNetworkManager::registeredNodePopulationChanged);
}

QStringList OssShaderNetworkManager::nodeGraphPathKeys() const
{
    return OssSnNodeTypeCatalogue::instance()->nodeGraphPathKeys();
}

QStringList OssShaderNetworkManager::nodePathKeys() const
{
    return OssSnNodeTypeCatalogue::instance()->nodePathKeys();
}

QString OssShaderNetworkManager::nodeMenuPath(const QString &pathKey) const
{
    return OssSnNodeTypeCatalogue::instance()->nodeMenuPath(pathKey);
}

QString OssShaderNetworkManager::convertPathKeyToVersionUUID(const QString &pathKey) const
{
    return OssSnNodeTypeCatalogue::instance()->versionUuidForPathKey(pathKey);
}

QString OssShaderNetworkManager::hashStringForVersionUUID(const QString &uuid) const
{
    return OssSnNodeTypeCatalogue::instance()->hashForVersionUuid(uuid);
}

QString OssShaderNetworkManager::versionDatePresent(const QString &uuid) const
{
    return OssSnNodeTypeCatalogue::instance()->dateForVersionUuid(uuid);
}

OssSnBaseNode *OssShaderNetworkManager::instantiateNodeOfClass(const QString &className,
                                                               OssShaderNetwork *network)
{
    const NodeMaker maker = nodeMakers().value(className);
    if (!maker)
        return nullptr;
    OssSnBaseNode *node = maker();
    node->setParent(network);
    return node;
}

OssSnBaseNode *OssShaderNetworkManager::instantiateNode(const QString &pathKey, QString *error,
                                                        bool forLoading, OssShaderNetwork *network)
{
    const OssSnNodeType *type = OssSnNodeTypeCatalogue::instance()->type(pathKey);
    if (!type) {
        if (error)
            *error = QStringLiteral("unknown node type '%1'").arg(pathKey);
        return nullptr;
    }
    const NodeMaker maker = nodeMakers().value(type->nodeClass);
    if (!maker) {
        if (error)
            *error = QStringLiteral("node type '%1' names the unknown class '%2'")
                         .arg(pathKey, type->nodeClass);
        return nullptr;
    }
    OssSnBaseNode *node = maker();
    node->setParent(network);
    node->applyType(*type);
    node->setNameDirect(pathKey.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty));
    for (auto it = m_loaders.cbegin(); it != m_loaders.cend(); ++it) {
        if (!it.value())
            continue;
        const OssSnContextList contexts = it.value()->load(type->source, node);
        // One context per name: the first made is attached; others are not the host's to keep.
        for (int i = 0; i < contexts.size(); ++i) {
            if (i == 0)
                node->attachContext(it.key(), contexts.at(i));
            else
                delete contexts.at(i);
        }
    }
    if (auto *group = qobject_cast<OssSnGroupNode *>(node))
        if (!forLoading)
            populateGroup(group);
    return node;
}

void OssShaderNetworkManager::populateGroup(OssSnGroupNode *group)
{
    OssShaderNetwork *inner = group->groupNetwork();
    const QStringList inputs = group->inputNames();
    const QStringList outputs = group->outputPointNames();
    for (const QString &input : inputs) {
        if (OssSnBaseNode *node = instantiateNode(groupInputKey, nullptr, false, inner)) {
            node->setNameDirect(input);
            inner->addNodeDirect(node);
        }
    }
    for (const QString &output : outputs) {
        if (OssSnBaseNode *node = instantiateNode(groupOutputKey, nullptr, false, inner)) {
            node->setNameDirect(output);
            inner->addNodeDirect(node);
        }
    }
}

void OssShaderNetworkManager::registerContextLoader(const QString &name,
                                                    OssShaderNetworkContextLoader *loader)
{
    m_loaders.insert(name, loader);
}

OssShaderNetworkContextLoader *OssShaderNetworkManager::contextLoader(const QString &name) const
{
    return m_loaders.value(name).data();
}

void OssShaderNetworkManager::setCurrentShaderNetwork(OssShaderNetwork *network)
{
    if (m_currentNetwork == network)
        return;
    m_currentNetwork = network;
    emit currentShaderNetworkChanged(network);
}

void OssShaderNetworkManager::setCurrentViewNetwork(OssShaderNetwork *network)
{
    if (m_currentViewNetwork == network)
        return;
    m_currentViewNetwork = network;
    emit currentViewNetworkChanged(network);
}

OssShaderNetwork *OssShaderNetworkManager::getShaderNetwork(OssShadingGroup *shadingGroup) const
{
    return shadingGroup ? shadingGroup->network() : nullptr;
}

void OssShaderNetworkManager::addShaderNetwork(OssShaderNetwork *network)
{
    if (!network)
        return;
    connect(network, &QObject::destroyed, this,
            [this, network] { m_refreshCounts.remove(network); });
    emit shaderNetworkAdded(network);
}

void OssShaderNetworkManager::refreshGraph(OssShaderNetwork *network)
{
    if (!network)
        return;
    ++m_refreshCounts[network];
    emit graphRefreshed(network);
}

void OssShaderNetworkManager::setCurrentViewerNode(OssSnBaseNode *node)
{
    if (node && !node->hasTag(QStringLiteral("_viewer")))
        return;
    if (m_currentViewer == node)
        return;
    m_currentViewer = node;
    emit currentViewerNodeChanged(node);
}

void OssShaderNetworkManager::registerGlobalContextMenuAction(QObject *action)
{
    if (action && !globalContextMenuObjects().contains(action))
        m_globalActions.append(action);
}

QList<QObject *> OssShaderNetworkManager::globalContextMenuObjects() const
{
    QList<QObject *> actions;
    for (const QPointer<QObject> &action : m_globalActions)
        if (action)
            actions.append(action);
    return actions;
}

bool OssShaderNetworkManager::upgradeNode(OssSnBaseNode *node)
{
    if (!node)
        return false;
    const OssSnNodeType *type =
        OssSnNodeTypeCatalogue::instance()->typeForVersionUuid(node->versionUUID());
    if (!type && !node->pathKey().isEmpty())
        type = OssSnNodeTypeCatalogue::instance()->type(node->pathKey());
    if (!type) {
        OSS_DEBUG("[ !! ] Cannot upgrade node '%s': no installed definition",
                  qPrintable(node->path()));
        return false;
    }
    for (const OssSnNodeTypePort &port : type->inputs)
        if (!node->hasInput(port.name))
            node->addInput(port.name, port.type, port.tags);
    for (const OssSnNodeTypePort &port : type->outputs)
        if (!node->hasOutputPoint(port.name))
            node->addOutputPoint(port.name, port.type);
    // A value the node already holds (an old file keeps its attributes as plain user
    // attributes) stays; only what is missing gets the type's default.
    for (const OssSnNodeTypeAttribute &attribute : type->attributes)
        if (!node->hasNodeAttribute(attribute.name))
            node->setNodeAttribute(attribute.name,
                                   node->exists(attribute.name)
                                       ? node->userAttribute(attribute.name).value()
                                       : attribute.defaultValue,
                                   false);
    for (const QString &tag : type->tags)
        node->addTag(tag);
    if (node->pathKey().isEmpty())
        node->setPathKey(type->pathKey);
    node->setVersionUUID(type->versionUuid);
    node->setVersionHashCreated(type->hash);
    node->setVersionDate(type->date);
    node->setDescription(type->description);
    emit node->nodeRefreshed();
    return true;
}

int OssShaderNetworkManager::upgradeNetworks(const QList<OssShaderNetwork *> &networks)
{
    int upgraded = 0;
    for (OssShaderNetwork *network : networks)
        for (OssSnBaseNode *node : network->getAllNodes()) {
            // A custom procedural's definition is the archive it imported, not the installed
            // type it was made from: upgrading would throw the imported definition away.
            if (qobject_cast<OssSnCustomProceduralNode *>(node))
                continue;
            if (node->versionHashCreated() != node->versionHashPresent() && upgradeNode(node))
                ++upgraded;
        }
    return upgraded;
}

OssSnBaseNode *OssShaderNetworkManager::convertNodeToKeyPath(OssSnBaseNode *node,
                                                             const QString &pathKey)
{
    OssShaderNetwork *network = node ? node->network() : nullptr;
    if (!network)
        return nullptr;
    QString error;
    OssSnBaseNode *replacement = instantiateNode(pathKey, &error, false, network);
    if (!replacement) {
        OSS_DEBUG("[ !! ] Cannot convert node '%s': %s", qPrintable(node->path()),
                  qPrintable(error));
        return nullptr;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Convert %1").arg(node->name()));
    const QString name = node->name();
    struct Link
    {
        QString input;
        QPointer<OssSnBaseNode> source;
        QString output;
    };
    QList<Link> inputs;
    for (const QString &input : node->inputNames())
        if (OssSnBaseNode *source = node->inputConnection(input))
            inputs.append(Link{input, source, node->inputOutputPoint(input)});
    const QVector<OssSnOutputLink> outputs = node->outputLinks();
    for (const OssCustomAttribute &attribute : node->nodeAttributes())
        if (replacement->hasNodeAttribute(attribute.name()))
            replacement->setNodeAttribute(attribute.name(), attribute.value(), false);
    for (const OssCustomAttribute &attribute : node->userAttributes())
        replacement->setUserAttribute(attribute, false);
    network->removeNode(node);
    replacement->setNameDirect(name);
    network->insertNode(replacement);
    for (const Link &link : qAsConst(inputs))
        if (link.source && replacement->hasInput(link.input))
            replacement->connectInput(link.input, link.source, link.output);
    for (const OssSnOutputLink &link : outputs) {
        if (!link.target)
            continue;
        const QString output = replacement->hasOutputPoint(link.outputPoint)
                                   ? link.outputPoint
                                   : replacement->prefferedOutputPoint();
        if (!output.isEmpty())
            link.target->connectInput(link.input, replacement, output);
    }
    return replacement;
}

void OssShaderNetworkManager::createDelayedKnobs(const QList<OssSnBaseNode *> &) {}

void OssShaderNetworkManager::emitNodeGraphIsManuallyChanged()
{
    ++m_manualChanges;
    emit nodeGraphIsManuallyChanged();
}

void OssShaderNetworkManager::setDebugNodes(const OssDebugNodeColours &nodes,
                                            const OssDebugInputColours &inputs)
{
    const OssDebugNodeColours oldNodes = m_debugNodes;
    const OssDebugInputColours oldInputs = m_debugInputs;
    m_debugNodes = nodes;
    m_debugInputs = inputs;
    emit debugNodesChanged(nodes, inputs, oldNodes, oldInputs);
}

void OssShaderNetworkManager::registerNode(OssShaderNetwork *network, OssSnBaseNode *node)
{
    emit nodeRegistered(network, node);
}

void OssShaderNetworkManager::deregisterNode(OssShaderNetwork *network, OssSnBaseNode *node)
{
    if (m_currentViewer == node)
        m_currentViewer = nullptr;
    node->emitRemovedFromNetwork();
    emit nodeDeregistered(network, node);
}

void OssShaderNetworkManager::networkLoaded(OssShaderNetwork *network)
{
    emit afterShaderNetworkEndCollection(network);
}
