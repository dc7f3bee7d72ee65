#include "OssaAPI.h"

#include "OssProject.h"
#include "OssProjectManager.h"
#include "OssScriptManager.h"
#include "OssShaderNetwork.h"
#include "OssShaderNetworkManager.h"
#include "OssShadingGroup.h"
#include "OssSnBaseNode.h"
#include "OssSnGroupNode.h"

#include <OssUndoManager.h>

#include <QMetaType>

namespace Ossa {

namespace {

// Makes script objects of class Script for internal objects of the class named Internal.
template <typename Script> class HostFactory : public OssAPIFactory
{
public:
    HostFactory(const char *internal, const char *script) : m_internal(internal), m_script(script)
    {}
    API *create(QObject *internalObject) override
    {
        auto *api = new Script;
        api->initAPI(internalObject);
        return api;
    }
    QString internalClassName() const override { return QString::fromLatin1(m_internal); }
    QString scriptClassName() const override { return QString::fromLatin1(m_script); }

private:
    const char *m_internal;
    const char *m_script;
};

template <typename Script> Script *scriptObject(QObject *internal)
{
    return qobject_cast<Script *>(OssScriptManager::instance()->apiFor(internal));
}

template <typename Script, typename Internal>
QList<Script *> scriptObjects(const QList<Internal *> &internals)
{
    QList<Script *> result;
    result.reserve(internals.size());
    for (Internal *internal : internals)
        if (Script *made = scriptObject<Script>(internal))
            result.append(made);
    return result;
}

// The internal object of a script object passed as an argument, or null after reporting it.
template <typename Internal>
Internal *argument(API *api, const char *what, const char *file, int line)
{
    auto *internal = api ? qobject_cast<Internal *>(api->internalObject()) : nullptr;
    if (!internal)
        OssScriptError(api ? OssScriptException::ObjectNotValid
                           : OssScriptException::InvalidArgument,
                       file, line, "%s is not a valid %s", api ? "Argument" : "None", what);
    return internal;
}

void reportGone(const char *className, const char *file, int line)
{
    OssScriptError(OssScriptException::ObjectNotValid, file, line, "Internal %s object not valid",
                   className);
}

void manuallyChanged()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

} // namespace

#define OSS_INTERNAL(Type, Fallback)                                                               \
    auto *internal = qobject_cast<Type *>(internalObject());                                       \
    if (!internal) {                                                                               \
        reportGone(#Type, __FILE__, __LINE__);                                                     \
        return Fallback;                                                                           \
    }

API::API(QObject *parent) : QObject(parent) {}

API::~API() = default;

void API::initAPI(QObject *internalObject)
{
    m_internal = internalObject;
}

Palette::Palette(QObject *parent) : API(parent) {}

// --- NodeGraph

NodeGraph::NodeGraph(QObject *parent) : API(parent) {}

QString NodeGraph::name() const
{
    OSS_INTERNAL(OssShaderNetwork, QString())
    return internal->name();
}

QString NodeGraph::path() const
{
    OSS_INTERNAL(OssShaderNetwork, QString())
    return internal->path();
}

int NodeGraph::nodeCount() const
{
    OSS_INTERNAL(OssShaderNetwork, 0)
    return internal->nodeCount();
}

QList<Node *> NodeGraph::nodes() const
{
    OSS_INTERNAL(OssShaderNetwork, {})
    return scriptObjects<Node>(internal->nodes());
}

Node *NodeGraph::node(const QString &Name) const
{
    OSS_INTERNAL(OssShaderNetwork, nullptr)
    return scriptObject<Node>(internal->node(Name));
}

Node *NodeGraph::createNode(const QString &PathKey, const QString &Name)
{
    OSS_INTERNAL(OssShaderNetwork, nullptr)
    if (!OssShaderNetworkManager::instance()->nodeGraphPathKeys().contains(PathKey)) {
        OssScriptError(OssScriptException::NotFound, __FILE__, __LINE__,
                       "Unknown node path key '%s'", PathKey.toUtf8().constData());
        return nullptr;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Create Node"));
    OssSnBaseNode *made = internal->createNode(PathKey, Name);
    if (!made) {
        macro.cancel();
        OssScriptError(OssScriptException::OperationFailed, __FILE__, __LINE__,
                       "Cannot create a node of type '%s'", PathKey.toUtf8().constData());
        return nullptr;
    }
    manuallyChanged();
    return scriptObject<Node>(made);
}

bool NodeGraph::connectNodes(Node *Source, Node *Target, const QString &Input,
                             const QString &OutputPoint)
{
    OSS_INTERNAL(OssShaderNetwork, false)
    auto *source = argument<OssSnBaseNode>(Source, "source node", __FILE__, __LINE__);
    if (!source)
        return false;
    auto *target = argument<OssSnBaseNode>(Target, "target node", __FILE__, __LINE__);
    if (!target)
        return false;
    if (target->network() != internal || source->network() != internal) {
        OssScriptError(OssScriptException::InvalidArgument, __FILE__, __LINE__,
                       "Both nodes must be in the network '%s'",
                       internal->name().toUtf8().constData());
        return false;
    }
    QString output = OutputPoint;
    if (output.isEmpty() && !source->outputPointNames().isEmpty())
        output = source->outputPointNames().constFirst();
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect Nodes"));
    QString refusal;
    if (!target->connectInput(Input, source, output, true, &refusal)) {
        macro.cancel();
        OssScriptError(OssScriptException::OperationFailed, __FILE__, __LINE__,
                       "Cannot connect '%s' to '%s.%s': %s", source->name().toUtf8().constData(),
                       target->name().toUtf8().constData(), Input.toUtf8().constData(),
                       refusal.toUtf8().constData());
        return false;
    }
    manuallyChanged();
    return true;
}

bool NodeGraph::disconnectInput(Node *Target, const QString &Input)
{
    OSS_INTERNAL(OssShaderNetwork, false)
    auto *target = argument<OssSnBaseNode>(Target, "node", __FILE__, __LINE__);
    if (!target)
        return false;
    if (!target->hasInput(Input)) {
        OssScriptError(OssScriptException::NotFound, __FILE__, __LINE__,
                       "Node '%s' has no input '%s'", target->name().toUtf8().constData(),
                       Input.toUtf8().constData());
        return false;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Disconnect Input"));
    const bool done = target->disconnectInput(Input);
    manuallyChanged();
    return done;
}

void NodeGraph::removeNode(Node *Node)
{
    OSS_INTERNAL(OssShaderNetwork, )
    auto *node = argument<OssSnBaseNode>(Node, "node", __FILE__, __LINE__);
    if (!node)
        return;
    if (!internal->containsNode(node)) {
        OssScriptError(OssScriptException::InvalidArgument, __FILE__, __LINE__,
                       "Node '%s' is not in the network '%s'", node->name().toUtf8().constData(),
                       internal->name().toUtf8().constData());
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Remove Node"));
    internal->removeNodes({node});
    manuallyChanged();
}

QList<Node *> NodeGraph::selectedNodes() const
{
    OSS_INTERNAL(OssShaderNetwork, {})
    return scriptObjects<Node>(internal->selectedNodes());
}

void NodeGraph::setSelectedNodes(const QList<Node *> &Nodes)
{
    OSS_INTERNAL(OssShaderNetwork, )
    QList<OssSnBaseNode *> chosen;
    for (Node *script : Nodes) {
        auto *node = argument<OssSnBaseNode>(script, "node", __FILE__, __LINE__);
        if (!node)
            return;
        chosen.append(node);
    }
    internal->clearSelection();
    for (OssSnBaseNode *node : qAsConst(chosen))
        node->setSelected(true);
}

void NodeGraph::clearSelection()
{
    OSS_INTERNAL(OssShaderNetwork, )
    internal->clearSelection();
}

void NodeGraph::autoplace(const QList<Node *> &Nodes)
{
    OSS_INTERNAL(OssShaderNetwork, )
    QList<OssSnBaseNode *> roots;
    for (Node *script : Nodes) {
        auto *node = argument<OssSnBaseNode>(script, "node", __FILE__, __LINE__);
        if (!node)
            return;
        roots.append(node);
    }
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    if (!roots.isEmpty()) {
        emit networks->beautifyNodesLayout(internal, roots);
        return;
    }
    // The whole network is laid out from its leaves when nothing is selected; the selection is
    // put back afterwards.
    const QList<OssSnBaseNode *> selected = internal->selectedNodes();
    internal->clearSelection();
    emit networks->beautifyNodesLayout(internal);
    for (OssSnBaseNode *node : selected)
        node->setSelected(true);
}

Node *NodeGraph::parentGroupNode() const
{
    OSS_INTERNAL(OssShaderNetwork, nullptr)
    return scriptObject<Node>(internal->parentGroupNode());
}

QString NodeGraph::dump() const
{
    OSS_INTERNAL(OssShaderNetwork, QString())
    return internal->dump();
}

// --- Node

Node::Node(QObject *parent) : API(parent) {}

QString Node::name() const
{
    OSS_INTERNAL(OssSnBaseNode, QString())
    return internal->name();
}

void Node::setName(const QString &Name)
{
    OSS_INTERNAL(OssSnBaseNode, )
    if (Name.isEmpty()) {
        OssScriptError(OssScriptException::InvalidArgument, __FILE__, __LINE__,
                       "A node name cannot be empty");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Rename Node"));
    internal->setName(Name);
    manuallyChanged();
}

QString Node::pathKey() const
{
    OSS_INTERNAL(OssSnBaseNode, QString())
    return internal->pathKey();
}

QString Node::className() const
{
    OSS_INTERNAL(OssSnBaseNode, QString())
    return QString::fromLatin1(internal->metaObject()->className());
}

QStringList Node::inputNames() const
{
    OSS_INTERNAL(OssSnBaseNode, {})
    return internal->inputNames();
}

QStringList Node::outputNames() const
{
    OSS_INTERNAL(OssSnBaseNode, {})
    return internal->outputPointNames();
}

Node *Node::inputNode(const QString &Input) const
{
    OSS_INTERNAL(OssSnBaseNode, nullptr)
    return scriptObject<Node>(internal->inputNode(Input));
}

QStringList Node::attributeNames() const
{
    OSS_INTERNAL(OssSnBaseNode, {})
    return internal->nodeAttributeNames();
}

QVariant Node::attribute(const QString &Name) const
{
    OSS_INTERNAL(OssSnBaseNode, QVariant())
    if (!internal->hasNodeAttribute(Name)) {
        OssScriptError(OssScriptException::NotFound, __FILE__, __LINE__,
                       "Node '%s' has no attribute '%s'", internal->name().toUtf8().constData(),
                       Name.toUtf8().constData());
        return QVariant();
    }
    return internal->nodeAttributeValue(Name);
}

void Node::setAttribute(const QString &Name, const QVariant &Value)
{
    OSS_INTERNAL(OssSnBaseNode, )
    if (!internal->hasNodeAttribute(Name)) {
        OssScriptError(OssScriptException::NotFound, __FILE__, __LINE__,
                       "Node '%s' has no attribute '%s'", internal->name().toUtf8().constData(),
                       Name.toUtf8().constData());
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Set Attribute"));
    internal->setNodeAttribute(Name, Value);
    manuallyChanged();
}

bool Node::isSelected() const
{
    OSS_INTERNAL(OssSnBaseNode, false)
    return internal->selected();
}

void Node::setSelected(bool Selected)
{
    OSS_INTERNAL(OssSnBaseNode, )
    internal->setSelected(Selected);
}

bool Node::isEnabled() const
{
    OSS_INTERNAL(OssSnBaseNode, false)
    return internal->enabledAsBool();
}

void Node::setEnabled(bool Enabled)
{
    OSS_INTERNAL(OssSnBaseNode, )
    OssUndoManager::AutoMacro macro(Enabled ? QStringLiteral("Enable Node")
                                            : QStringLiteral("Disable Node"));
    internal->setEnabled(Enabled);
    manuallyChanged();
}

bool Node::hasTag(const QString &Tag) const
{
    OSS_INTERNAL(OssSnBaseNode, false)
    return internal->hasTag(Tag);
}

NodeGraph *Node::nodeGraph() const
{
    OSS_INTERNAL(OssSnBaseNode, nullptr)
    return scriptObject<NodeGraph>(internal->network());
}

NodeGraph *Node::subNodeGraph() const
{
    OSS_INTERNAL(OssSnBaseNode, nullptr)
    auto *group = qobject_cast<OssSnGroupNode *>(internal);
    return group ? scriptObject<NodeGraph>(group->groupNetwork()) : nullptr;
}

// --- Project

Project::Project(QObject *parent) : API(parent) {}

QString Project::name() const
{
    OSS_INTERNAL(OssProject, QString())
    return internal->name();
}

QString Project::filePath() const
{
    OSS_INTERNAL(OssProject, QString())
    return internal->filePath();
}

QList<NodeGraph *> Project::nodeGraphs() const
{
    OSS_INTERNAL(OssProject, {})
    QList<OssShaderNetwork *> networks;
    for (OssShadingGroup *group : internal->shadingGroups())
        if (group->network())
            networks.append(group->network());
    return scriptObjects<NodeGraph>(networks);
}

QStringList Project::shadingGroupNames() const
{
    OSS_INTERNAL(OssProject, {})
    QStringList names;
    for (OssShadingGroup *group : internal->shadingGroups())
        names.append(group->name());
    return names;
}

NodeGraph *Project::currentNodeGraph() const
{
    OSS_INTERNAL(OssProject, nullptr)
    return scriptObject<NodeGraph>(OssShaderNetworkManager::instance()->currentShaderNetwork());
}

void Project::setCurrentNodeGraph(NodeGraph *Graph)
{
    OSS_INTERNAL(OssProject, )
    auto *network = argument<OssShaderNetwork>(Graph, "node graph", __FILE__, __LINE__);
    if (!network)
        return;
    if (!network->isRoot() || !internal->networks().contains(network)) {
        OssScriptError(OssScriptException::InvalidArgument, __FILE__, __LINE__,
                       "'%s' is not a root network of this project",
                       network->name().toUtf8().constData());
        return;
    }
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(network);
}

bool Project::save(const QString &Path)
{
    OSS_INTERNAL(OssProject, false)
    OssProjectManager *projects = OssProjectManager::instance();
    if (projects->currentProject() != internal) {
        OssScriptError(OssScriptException::NotSupported, __FILE__, __LINE__,
                       "Only the open project can be saved");
        return false;
    }
    const QString path = Path.isEmpty() ? internal->filePath() : Path;
    if (path.isEmpty()) {
        OssScriptError(OssScriptException::InvalidArgument, __FILE__, __LINE__,
                       "The project has no file yet: give a path");
        return false;
    }
    QString error;
    if (!projects->saveProject(path, &error)) {
        OssScriptError(OssScriptException::IOError, __FILE__, __LINE__, "Cannot save '%s': %s",
                       path.toUtf8().constData(), error.toUtf8().constData());
        return false;
    }
    return true;
}

#undef OSS_INTERNAL

void registerHostScriptTypes(OssScriptManager *manager)
{
    qRegisterMetaType<API *>();
    qRegisterMetaType<Palette *>();
    qRegisterMetaType<NodeGraph *>();
    qRegisterMetaType<Node *>();
    qRegisterMetaType<Project *>();
    qRegisterMetaType<QList<NodeGraph *>>();
    qRegisterMetaType<QList<Node *>>();
    manager->registerAPIFactory(new HostFactory<NodeGraph>("OssShaderNetwork", "Ossa::NodeGraph"));
    manager->registerAPIFactory(new HostFactory<Node>("OssSnBaseNode", "Ossa::Node"));
    manager->registerAPIFactory(new HostFactory<Project>("OssProject", "Ossa::Project"));
}

} // namespace Ossa
