#include "OssShaderNetwork.h"

#include "OssEntity.h"
#include "OssShaderNetworkCommands.h"
#include "OssShaderNetworkManager.h"
#include "OssShadingGroup.h"
#include "OssSnBaseContext.h"
#include "OssSnGroupNode.h"
#include "OssSnImageSetNodeBase.h"
#include "OssSnNodeTypeCatalogue.h"

#include <OssDebug.h>
#include <OssDeserializer.h>
#include <OssSerializer.h>
#include <OssUndoManager.h>

#include <QRegularExpression>

#include <QSet>
#include <algorithm>

OssShaderNetwork::OssShaderNetwork(const QString &name, QObject *parent)
    : OssSerializableObject(parent), m_name(name)
{}

OssShaderNetwork::~OssShaderNetwork()
{
    // Nodes are children; delete them while the network is still a network so that their
    // destructors can tidy connections.
    const QList<OssSnBaseNode *> nodes = m_nodes;
    m_nodes.clear();
    m_byName.clear();
    qDeleteAll(nodes);
}

QString OssShaderNetwork::path() const
{
    if (const OssSnGroupNode *group = parentGroupNode())
        return group->path();
    return QLatin1Char('/') + m_name;
}

QList<OssSnBaseNode *> OssShaderNetwork::getAllNodes() const
{
    QList<OssSnBaseNode *> all;
    for (OssSnBaseNode *node : m_nodes) {
        all.append(node);
        if (auto *group = qobject_cast<OssSnGroupNode *>(node))
            if (group->groupNetwork())
                all.append(group->groupNetwork()->getAllNodes());
    }
    return all;
}

bool OssShaderNetwork::containsNode(const OssSnBaseNode *node) const
{
    return node && m_byName.value(node->name()) == node;
}

QList<OssSnBaseNode *> OssShaderNetwork::selectedNodes() const
{
    QList<OssSnBaseNode *> selected;
    for (OssSnBaseNode *node : m_nodes)
        if (node->selected())
            selected.append(node);
    return selected;
}

void OssShaderNetwork::clearSelection()
{
    for (OssSnBaseNode *node : qAsConst(m_nodes))
        node->setSelected(false);
}

OssShaderNetwork *OssShaderNetwork::rootNetwork() const
{
    const OssShaderNetwork *network = this;
    while (const OssSnGroupNode *group = network->parentGroupNode()) {
        const OssShaderNetwork *outer = group->network();
        if (!outer)
            break;
        network = outer;
    }
    return const_cast<OssShaderNetwork *>(network);
}

OssSnGroupNode *OssShaderNetwork::parentGroupNode() const
{
    return qobject_cast<OssSnGroupNode *>(parent());
}

OssShadingGroup *OssShaderNetwork::shadingGroup() const
{
    return qobject_cast<OssShadingGroup *>(rootNetwork()->parent());
}

OssEntity *OssShaderNetwork::geoEntity() const
{
    const OssShadingGroup *group = shadingGroup();
    return group ? group->entity() : nullptr;
}

int OssShaderNetwork::viewerNodeCurrentEdge() const
{
    const OssShaderNetwork *root = rootNetwork();
    return root == this ? m_viewerEdge : root->viewerNodeCurrentEdge();
}

void OssShaderNetwork::setViewerNodeCurrentEdge(int edge, bool undoable)
{
    OssShaderNetwork *root = rootNetwork();
    if (root != this) {
        root->setViewerNodeCurrentEdge(edge, undoable);
        return;
    }
    if (edge == m_viewerEdge || edge < 0 || edge > 9)
        return;
    auto *command = new OssSnViewerEdgeCommand(this, m_viewerEdge, edge);
    if (undoable && !OssUndoManager::instance()->isReplaying()) {
        OssUndoManager::instance()->addUndo(command);
    } else {
        command->redo();
        delete command;
    }
}

void OssShaderNetwork::setViewerEdgeDirect(int edge)
{
    if (edge == m_viewerEdge)
        return;
    m_viewerEdge = edge;
    emit viewerNodeCurrentEdgeChanged(edge);
    // The viewer node announces the change too: its view context listens to the node.
    for (OssSnBaseNode *node : getAllNodes())
        if (node->hasTag(QStringLiteral("_viewer")))
            emit node->viewerNodeCurrentEdgeChanged(edge);
}

OssSnBaseNode *OssShaderNetwork::viewerNode() const
{
    for (OssSnBaseNode *node : rootNetwork()->getAllNodes())
        if (node->hasTag(QStringLiteral("_viewer")))
            return node;
    return nullptr;
}

OssSnBaseNode *OssShaderNetwork::moveCurrentViewerNodeToNetwork()
{
    OssSnBaseNode *viewer = OssShaderNetworkManager::instance()->currentViewerNode();
    if (!viewer || viewer->network()->rootNetwork() != rootNetwork())
        viewer = viewerNode();
    if (!viewer)
        return nullptr;
    OssShaderNetwork *from = viewer->network();
    if (from == this)
        return viewer;
    // The viewer keeps no connections across networks.
    OssUndoManager::AutoMacro macro(QStringLiteral("Move Viewer"));
    macro.addUndo(new OssSnRemoveNodeCommand(from, viewer));
    macro.addUndo(new OssSnInsertNodeCommand(this, viewer));
    return viewer;
}

void OssShaderNetwork::setAllowViewUpdate(bool allow)
{
    if (allow == m_allowViewUpdate)
        return;
    m_allowViewUpdate = allow;
    emit allowViewUpdateChanged(allow);
}

namespace {

const QRegularExpression &trailingDigits()
{
    static const QRegularExpression pattern(QStringLiteral("\\d+$"));
    return pattern;
}

} // namespace

QString OssShaderNetwork::generateUniqueNodeName(const QString &base) const
{
    QString stem = base.trimmed();
    if (stem.isEmpty())
        stem = QStringLiteral("Node");
    if (!m_byName.contains(stem))
        return stem;
    stem.remove(trailingDigits());
    if (stem.isEmpty())
        stem = QStringLiteral("Node");
    // Every suffix below the hint is taken, so the search starts there: creating many nodes
    // of one type stays linear.
    int &hint = m_suffixHints[stem];
    for (int i = qMax(1, hint);; ++i) {
        const QString candidate = stem + QString::number(i);
        if (!m_byName.contains(candidate)) {
            hint = i;
            return candidate;
        }
    }
}

void OssShaderNetwork::releaseName(const QString &name)
{
    // A freed numbered name lowers its stem's hint so the gap is reused.
    const QRegularExpressionMatch match = trailingDigits().match(name);
    if (!match.hasMatch())
        return;
    const QString stem = name.left(match.capturedStart());
    auto hint = m_suffixHints.find(stem);
    bool ok = false;
    const int number = match.captured().toInt(&ok);
    if (hint != m_suffixHints.end() && ok && number < hint.value())
        hint.value() = number;
}

QList<OssSnBaseNode *> OssShaderNetwork::createNodes(const QString &pathKey, int count,
                                                     bool undoable, const QString &name)
{
    QList<OssSnBaseNode *> created;
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    for (int i = 0; i < count; ++i) {
        QString error;
        OssSnBaseNode *node = manager->instantiateNode(pathKey, &error, false, this);
        if (!node) {
            OSS_DEBUG("[ !! ] Cannot create node '%s': %s", qPrintable(pathKey), qPrintable(error));
            break;
        }
        if (!name.isEmpty())
            node->setNameDirect(name);
        insertNode(node, undoable);
        created.append(node);
    }
    return created;
}

QList<OssSnBaseNode *> OssShaderNetwork::createNodesFromNodePathKey(const QString &pathKey,
                                                                    bool undoable)
{
    return createNodes(pathKey, 1, undoable);
}

OssSnBaseNode *OssShaderNetwork::createNode(const QString &pathKey, const QString &name,
                                            bool undoable)
{
    const QList<OssSnBaseNode *> nodes = createNodes(pathKey, 1, undoable, name);
    return nodes.isEmpty() ? nullptr : nodes.first();
}

OssSnBaseNode *OssShaderNetwork::createPaintableNode(const QString &channelName,
                                                     const QString &pathKey, bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Create Paint Node"));
    OssSnBaseNode *node = createNode(
        pathKey.isEmpty() ? QStringLiteral("Misc/Channel Input") : pathKey,
        channelName.isEmpty() ? QString() : generateUniqueNodeName(channelName), undoable);
    if (auto *imageSetNode = qobject_cast<OssSnImageSetNodeBase *>(node))
        if (!channelName.isEmpty())
            imageSetNode->setImageSetName(channelName);
    return node;
}

OssSnBaseNode *OssShaderNetwork::createMultiChannelMergeNode(OssSnBaseNode *source, bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Create Multi-Channel Merge"));
    OssSnBaseNode *merge =
        createNode(QStringLiteral("_System/MultiChannelMerge"), QString(), undoable);
    if (!merge)
        return nullptr;
    if (source && containsNode(source) && !source->prefferedOutputPoint().isEmpty()) {
        const QString base = merge->inputNames().value(0);
        if (!base.isEmpty())
            merge->connectInput(base, source, source->prefferedOutputPoint(), undoable);
    }
    return merge;
}

bool OssShaderNetwork::insertNode(OssSnBaseNode *node, bool undoable)
{
    // A node made for this network is its child already; one of another network is refused.
    if (!node || containsNode(node) || (node->network() && node->network() != this))
        return false;
    if (node->network() && node->network()->containsNode(node))
        return false;
    node->setNameDirect(generateUniqueNodeName(
        node->name().isEmpty() ? node->pathKey().section(QLatin1Char('/'), -1) : node->name()));
    auto *command = new OssSnInsertNodeCommand(this, node);
    if (undoable && !OssUndoManager::instance()->isReplaying()) {
        OssUndoManager::instance()->addUndo(command);
    } else {
        command->redo();
        // Without history the network owns the node from now on.
        delete command;
    }
    return true;
}

bool OssShaderNetwork::removeNode(OssSnBaseNode *node, bool undoable, bool)
{
    if (!containsNode(node))
        return false;
    auto *command = new OssSnRemoveNodeCommand(this, node);
    if (undoable && !OssUndoManager::instance()->isReplaying()) {
        OssUndoManager::instance()->addUndo(command);
    } else {
        command->redo();
        delete command; // deletes the node, which is out of the network now
    }
    return true;
}

void OssShaderNetwork::removeNodes(const QList<OssSnBaseNode *> &nodes, bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Remove Nodes"));
    for (OssSnBaseNode *node : nodes)
        removeNode(node, undoable);
}

void OssShaderNetwork::extractNodes(const QList<OssSnBaseNode *> &nodes, bool undoable)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Extract Nodes"));
    const QSet<OssSnBaseNode *> extracted(nodes.begin(), nodes.end());
    for (OssSnBaseNode *node : nodes) {
        if (!containsNode(node))
            continue;
        QString mainInput = node->preferredInput();
        if (mainInput.isEmpty() || !node->hasInput(mainInput))
            mainInput = node->inputNames().value(0);
        OssSnBaseNode *upstream = mainInput.isEmpty() ? nullptr : node->inputConnection(mainInput);
        const QString upstreamOutput = node->inputOutputPoint(mainInput);
        const QVector<OssSnOutputLink> links = node->outputLinks();
        for (const QString &input : node->inputNames())
            if (node->inputConnection(input))
                node->disconnectInput(input, undoable);
        for (const OssSnOutputLink &link : links) {
            if (!link.target)
                continue;
            // Bridge the gap when the upstream node can feed the downstream input.
            if (upstream && !extracted.contains(link.target.data()) &&
                link.target->connectionRefusal(link.input, upstream, upstreamOutput).isEmpty())
                link.target->connectInput(link.input, upstream, upstreamOutput, undoable);
            else
                link.target->disconnectInput(link.input, undoable);
        }
    }
}

void OssShaderNetwork::addNodeDirect(OssSnBaseNode *node, int index)
{
    insertDirect(node, index, nullptr);
}

void OssShaderNetwork::restoreNodeDirect(OssSnBaseNode *node, const OssSnTakenNode &taken)
{
    insertDirect(node, taken.index, &taken.groupPort);
    if (taken.wasCurrentViewer && containsNode(node))
        OssShaderNetworkManager::instance()->setCurrentViewerNode(node);
}

void OssShaderNetwork::insertDirect(OssSnBaseNode *node, int index, const OssSnTakenPort *groupPort)
{
    if (!node || containsNode(node))
        return;
    if (m_byName.contains(node->name()))
        node->setNameDirect(generateUniqueNodeName(node->name()));
    node->setParent(this);
    if (index < 0 || index > m_nodes.size())
        m_nodes.append(node);
    else
        m_nodes.insert(index, node);
    m_byName.insert(node->name(), node);
    connect(node, &OssSerializableObject::selectedChanged, this,
            &OssShaderNetwork::onNodeSelectedChanged, Qt::UniqueConnection);
    // Contexts come alive once their node is in a network the host announces.
    if (m_announceNodes)
        for (const QString &name : node->contextNames())
            if (OssSnBaseContext *context = node->context(name))
                context->ensureGuiInitialized();
    emit nodeAdded(node);
    // A group input or output node brings the group's port it mirrors: back at its place with
    // its connections when the node is put back, at the end when it is new.
    if (OssSnGroupNode *group = parentGroupNode()) {
        if (groupPort && groupPort->isValid())
            group->restoreInnerNodePort(node, *groupPort);
        else
            group->addInnerNodePort(node);
    }
    if (m_announceNodes)
        OssShaderNetworkManager::instance()->registerNode(this, node);
}

OssSnTakenNode OssShaderNetwork::takeNodeDirect(OssSnBaseNode *node)
{
    OssSnTakenNode taken;
    const int index = m_nodes.indexOf(node);
    if (index < 0)
        return taken;
    taken.index = index;
    taken.wasCurrentViewer = OssShaderNetworkManager::instance()->currentViewerNode() == node;
    m_nodes.removeAt(index);
    m_byName.remove(node->name());
    releaseName(node->name());
    disconnect(node, &OssSerializableObject::selectedChanged, this,
               &OssShaderNetwork::onNodeSelectedChanged);
    node->setParent(nullptr);
    if (m_announceNodes)
        OssShaderNetworkManager::instance()->deregisterNode(this, node);
    emit nodeRemoved(node);
    if (OssSnGroupNode *group = parentGroupNode())
        taken.groupPort = group->takeInnerNodePort(node);
    return taken;
}

void OssShaderNetwork::nodeRenamed(OssSnBaseNode *node, const QString &oldName)
{
    // Nodes made for this network but not inserted yet are not looked up by name.
    if (m_byName.value(oldName) != node)
        return;
    m_byName.remove(oldName);
    releaseName(oldName);
    m_byName.insert(node->name(), node);
}

void OssShaderNetwork::onNodeSelectedChanged()
{
    emit nodeSelectionChanged();
}

QString OssShaderNetwork::dump() const
{
    QList<OssSnBaseNode *> sorted = m_nodes;
    std::sort(sorted.begin(), sorted.end(),
              [](const OssSnBaseNode *a, const OssSnBaseNode *b) { return a->name() < b->name(); });
    QStringList lines;
    lines << QStringLiteral("network %1 viewer=%2").arg(path()).arg(m_viewerEdge);
    for (const OssSnBaseNode *node : qAsConst(sorted)) {
        lines << QStringLiteral("node %1 %2 key=%3 enabled=%4 bypassed=%5 tags=%6 order=%7")
                     .arg(node->name(), QString::fromLatin1(node->metaObject()->className()),
                          node->pathKey())
                     .arg(node->enabledAsBool())
                     .arg(node->bypassed())
                     .arg(node->tags().join(QLatin1Char(',')),
                          node->nodeAttributeNames().join(QLatin1Char(',')));
        for (const QString &input : node->inputNames()) {
            const OssSnBaseNode *source = node->inputConnection(input);
            lines << QStringLiteral("  in %1 <- %2")
                         .arg(input, source ? source->name() + QLatin1Char('.') +
                                                  node->inputOutputPoint(input)
                                            : QStringLiteral("-"));
        }
        lines << QStringLiteral("  out %1").arg(node->outputPointNames().join(QLatin1Char(',')));
        for (const OssCustomAttribute &attribute : node->userAttributes())
            lines << QStringLiteral("  attr %1 (%2, %3, %4) = %5")
                         .arg(attribute.name(), attribute.prettyName(), attribute.typeName())
                         .arg(attribute.isVisible())
                         .arg(OssSerializer::variantToText(attribute.value()));
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node))
            for (const QString &line : group->groupNetwork()->dump().split(QLatin1Char('\n')))
                lines << QStringLiteral("  | ") + line;
    }
    return lines.join(QLatin1Char('\n'));
}

// --- saving

bool OssShaderNetwork::saveObjects(OssSerializer &serializer)
{
    QList<OssSnBaseNode *> saved;
    const QSet<OssSnBaseNode *> subset(m_saveSubset.cbegin(), m_saveSubset.cend());
    for (OssSnBaseNode *node : qAsConst(m_nodes))
        if (subset.isEmpty() || subset.contains(node))
            saved.append(node);
    for (OssSnBaseNode *node : qAsConst(saved)) {
        const OssStringMap attributes{{QStringLiteral("pathKey"), node->pathKey()}};
        if (!serializer.saveObject(node, QStringLiteral("node"), attributes))
            return false;
    }
    // Only connections between saved nodes.
    const QSet<OssSnBaseNode *> savedSet(saved.cbegin(), saved.cend());
    const auto kept = [&savedSet](OssSnBaseNode *node, const QString &input) {
        OssSnBaseNode *source = node->inputConnection(input);
        return source && savedSet.contains(source) ? source : nullptr;
    };
    int count = 0;
    for (OssSnBaseNode *node : qAsConst(saved))
        for (const QString &input : node->inputNames())
            if (kept(node, input))
                ++count;
    serializer.beginCollection(QStringLiteral("connections"), count, QStringLiteral("QList"),
                               QStringLiteral("OssSnConnection"), OssStringMap());
    for (OssSnBaseNode *node : qAsConst(saved))
        for (const QString &input : node->inputNames())
            if (OssSnBaseNode *source = kept(node, input))
                serializer.addCollectionElement(
                    OssStringMap{{QStringLiteral("target"), node->name()},
                                 {QStringLiteral("input"), input},
                                 {QStringLiteral("source"), source->name()},
                                 {QStringLiteral("output"), node->inputOutputPoint(input)}});
    serializer.endCollection();
    return true;
}

OssSerializableObject *OssShaderNetwork::onLoadSubObject(OssDeserializer &deserializer,
                                                         const QString &name, const QString &type)
{
    if (name != QLatin1String("node"))
        return nullptr;
    const QString pathKey = deserializer.currentAttributes().value(QStringLiteral("pathKey"));
    QString error;
    OssSnBaseNode *node =
        OssShaderNetworkManager::instance()->instantiateNode(pathKey, &error, true, this);
    if (!node) {
        // Keep the node's saved ports, attributes and connections in a node of its saved
        // class, so that nothing in the file is lost.
        node = OssShaderNetworkManager::instance()->instantiateNodeOfClass(type, this);
        if (!node) {
            m_loadWarnings.append(
                QStringLiteral("an object of class '%1' (path key '%2') is not a node; dropped")
                    .arg(type, pathKey));
            return nullptr;
        }
        node->setPathKey(pathKey);
        // Told once the node is read: its saved contexts may have upgraded it to a known type.
        m_untypedNodes.insert(node, error);
    }
    m_loadingNodes.append(node);
    return node;
}

bool OssShaderNetwork::onLoadCollection(const QString &name, const QString &, const QString &, int,
                                        const OssStringMap &)
{
    if (name != QLatin1String("connections"))
        return false;
    m_loadingConnections.clear();
    return true;
}

void OssShaderNetwork::onLoadCollectionObject(const QString &name, const QString &, const QString &,
                                              int, const OssStringMap &attributes)
{
    if (name != QLatin1String("connections"))
        return;
    m_loadingConnections.append(PendingConnection{
        attributes.value(QStringLiteral("target")), attributes.value(QStringLiteral("input")),
        attributes.value(QStringLiteral("source")), attributes.value(QStringLiteral("output"))});
}

void OssShaderNetwork::onLoadFinished()
{
    const QVector<OssSnBaseNode *> loaded = m_loadingNodes;
    m_loadingNodes.clear();
    for (auto it = m_untypedNodes.cbegin(); it != m_untypedNodes.cend(); ++it)
        if (!OssSnNodeTypeCatalogue::instance()->contains(it.key()->pathKey()))
            m_loadWarnings.append(QStringLiteral("node type '%1' is not installed: %2")
                                      .arg(it.key()->pathKey(), it.value()));
    m_untypedNodes.clear();
    QHash<QString, QString> renamed;
    for (OssSnBaseNode *node : loaded) {
        const QString savedName = node->name();
        for (const QString &note : node->takeLoadNotes())
            m_loadWarnings.append(QStringLiteral("node '%1': %2").arg(savedName, note));
        if (savedName.isEmpty() || m_byName.contains(savedName)) {
            node->setNameDirect(generateUniqueNodeName(
                savedName.isEmpty() ? node->pathKey().section(QLatin1Char('/'), -1) : savedName));
            m_loadWarnings.append(
                QStringLiteral("node '%1' renamed to '%2'").arg(savedName, node->name()));
        }
        addNodeDirect(node);
    }
    for (const PendingConnection &connection : qAsConst(m_loadingConnections)) {
        OssSnBaseNode *target = m_byName.value(connection.target);
        OssSnBaseNode *source = m_byName.value(connection.source);
        if (!target || !source) {
            m_loadWarnings.append(QStringLiteral("connection %1.%2 <- %3.%4 names a missing node")
                                      .arg(connection.target, connection.input, connection.source,
                                           connection.output));
            continue;
        }
        QString error;
        if (!target->connectInput(connection.input, source, connection.output, false, &error))
            m_loadWarnings.append(error);
    }
    m_loadingConnections.clear();
    if (m_announceNodes)
        OssShaderNetworkManager::instance()->networkLoaded(this);
}
