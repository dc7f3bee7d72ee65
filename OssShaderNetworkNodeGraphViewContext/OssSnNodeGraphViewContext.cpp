#include "OssSnNodeGraphViewContext.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"
#include "ZelGLTextureToken.h"

#include <OssColor.h>
#include <OssDebug.h>
#include <OssLayerShaderManager.h>
#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgNodeState.h>
#include <OssNgStyle.h>
#include <OssNgUndo.h>
#include <OssResourceInfo.h>
#include <OssSerializer.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkUtils.h>
#include <OssSnCustomProceduralNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssUndoManager.h>

#include <QGraphicsScene>
#include <QPixmap>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

namespace {

const QString ContextName = QStringLiteral("NodeGraphView");

QColor colourFrom(const QString &text)
{
    QColor colour;
    if (text.isEmpty())
        return colour;
    const OssColor parsed = OssColor::fromString(text);
    colour.setRgbF(parsed.red(), parsed.green(), parsed.blue(), parsed.alpha());
    return colour;
}

} // namespace

OssSnNodeGraphViewContext::OssSnNodeGraphViewContext(QObject *parent, bool withGui)
    : OssSnBaseContext(qobject_cast<OssSnBaseNode *>(parent))
{
    if (!parent)
        return;
    m_portListMode =
        OssSnNodeGraphViewContextManager::instance()->defaultNodePortDisplayModeAsEnum() ==
                OssSnNodeGraphViewContextManager::NoPortList
            ? OssNgExtendedNode::PortListHidden
            : OssNgExtendedNode::PortListShown;
    if (withGui)
        adoptGuiNode(createGuiNode());
}

OssSnNodeGraphViewContext::~OssSnNodeGraphViewContext()
{
    // The context owns its GUI node: it leaves the scene and the business node with the context.
    // A scene or a business node that went first took it along, and the pointer reads null.
    if (OssNgNode *gui = m_guiNode.data()) {
        m_guiNode = nullptr;
        gui->setParent(nullptr);
        gui->dispose();
        delete gui;
    }
}

OssSnNodeGraphViewContext *OssSnNodeGraphViewContext::of(const OssSnBaseNode *node)
{
    return node ? qobject_cast<OssSnNodeGraphViewContext *>(node->context(ContextName)) : nullptr;
}

OssNgNode *OssSnNodeGraphViewContext::guiNodeOf(const OssSnBaseNode *node)
{
    const OssSnNodeGraphViewContext *context = of(node);
    return context ? context->guiNode() : nullptr;
}

OssNgExtendedNode *OssSnNodeGraphViewContext::extendedNode() const
{
    return qobject_cast<OssNgExtendedNode *>(guiNode());
}

OssNgNode *OssSnNodeGraphViewContext::createGuiNode()
{
    OssSnBaseNode *node = parentNode();
    if (!node || !OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(node->network()))
        return nullptr;
    auto *gui = new OssNgExtendedNode;
    gui->setMark(OssNgExtendedNode::SystemShaderMark,
                 OssLayerShaderManager::isSystemShaderNode(node, true));
    gui->setMark(OssNgExtendedNode::FirstStateMark, false);
    gui->setMark(OssNgExtendedNode::CachedMark, node->cacheActive() == OssSnCacheActive);
    gui->setMark(OssNgExtendedNode::DisabledMark, !node->enabledAsBool());
    gui->setMark(OssNgExtendedNode::ExtraMark1, false);
    gui->setMark(OssNgExtendedNode::ExtraMark2, false);
    return gui;
}

void OssSnNodeGraphViewContext::adoptGuiNode(OssNgNode *gui)
{
    OssSnBaseNode *node = parentNode();
    if (!gui || !node)
        return;
    m_guiNode = gui;
    gui->setParent(node);
    gui->setText(node->name());
    gui->setToolTip(node->description());
    if (QGraphicsScene *scene =
            OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(node->network()))
        scene->addItem(gui);
}

// --- port-list mode

OssNgExtendedNode::PortListMode OssSnNodeGraphViewContext::portListMode() const
{
    return OssNgExtendedNode::PortListMode(portListModeAsInt());
}

int OssSnNodeGraphViewContext::portListModeAsInt() const
{
    if (const OssNgExtendedNode *gui = extendedNode())
        return gui->portListModeAsInt();
    return m_portListMode;
}

void OssSnNodeGraphViewContext::setPortListMode(OssNgExtendedNode::PortListMode mode)
{
    if (int(mode) == portListModeAsInt()) {
        m_portListMode = mode;
        return;
    }
    m_portListMode = mode;
    if (OssNgExtendedNode *gui = extendedNode())
        gui->setPortListMode(mode);
    emit portListModeChanged(mode);
}

void OssSnNodeGraphViewContext::setPortListMode(int mode)
{
    if (mode >= OssNgExtendedNode::PortListShown && mode <= OssNgExtendedNode::PortListExpanded)
        setPortListMode(OssNgExtendedNode::PortListMode(mode));
}

void OssSnNodeGraphViewContext::resetPortListMode()
{
    setPortListMode(OssNgExtendedNode::PortListShown);
}

void OssSnNodeGraphViewContext::setPortListMode(
    OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState state)
{
    switch (state) {
    case OssSnNodeGraphViewContextManager::Expanded:
        setPortListMode(OssNgExtendedNode::PortListShown);
        break;
    case OssSnNodeGraphViewContextManager::ConnectedOnly:
        setPortListMode(OssNgExtendedNode::PortListConnected);
        break;
    case OssSnNodeGraphViewContextManager::Collapsed:
        setPortListMode(OssNgExtendedNode::PortListExpanded);
        break;
    default:
        setPortListMode(OssNgExtendedNode::PortListFolded);
        break;
    }
}

QPointF OssSnNodeGraphViewContext::nodePosition() const
{
    return guiNode() ? guiNode()->pos() : QPointF();
}

QSizeF OssSnNodeGraphViewContext::nodeSize() const
{
    return guiNode() ? guiNode()->boundingRect().size() : QSizeF();
}

// --- initialisation

void OssSnNodeGraphViewContext::applyColours()
{
    if (!guiNode())
        return;
    guiNode()->setShapeType(m_shapeType);
    guiNode()->setNodeColor(colourFrom(m_nodeColorTop), colourFrom(m_nodeColorBottom));
}

void OssSnNodeGraphViewContext::buildPorts()
{
    OssSnBaseNode *node = parentNode();
    OssNgNode *gui = guiNode();
    if (!node || !gui)
        return;
    for (const InputDescriptor &input : inputs())
        gui->addInputPort(input.name, input.preferred, input.setAtLoad, input.tags);
    for (const QString &output : node->outputPointNames())
        gui->addOutputPort(output, !node->outputPortsHidden());
    if (OssNgExtendedNode *extended = extendedNode()) {
        extended->setPortListModeFromInt(m_portListMode);
        extended->setMultiChannelModesAllowed(qobject_cast<OssSnMultiChannelGroupNode *>(node) ||
                                              node->hasTag(QStringLiteral("_shader")));
    }
}

void OssSnNodeGraphViewContext::initializeGui()
{
    OssSnBaseNode *node = parentNode();
    OssNgNode *gui = guiNode();
    if (!gui || !node)
        return;
    connect(node, &OssSnBaseNode::selectedChanged, this, &OssSnNodeGraphViewContext::selectGuiNode);
    applySelection(node->selected());
    connect(node, &OssSnBaseNode::viewerNodeCurrentEdgeChanged, this,
            &OssSnNodeGraphViewContext::onViewerNodeCurrentEdgeChanged);

    applyColours();
    if (OssNgExtendedNode *extended = extendedNode()) {
        const QString key = node->pathKey();
        const QString first = key.section(QLatin1Char('/'), 0, 0);
        QString category = first;
        if (first == QLatin1String("Channel Input"))
            category = QStringLiteral("Paint");
        else if (first == QLatin1String("Teleport Broadcast"))
            category = QStringLiteral("TeleportBroadcast");
        else if (first == QLatin1String("Teleport Receiver"))
            category = QStringLiteral("TeleportReceiver");
        extended->setCategory(key.isEmpty() ? QString() : category);
        extended->setText(node->name());
        if (!m_pixmapPath.isEmpty()) {
            const QPixmap pixmap(OssResourceInfo::instance()->iconPath() + QLatin1Char('/') +
                                 m_pixmapPath);
            if (!pixmap.isNull())
                extended->setPixmap(pixmap, m_pixmapOffset);
        }
    }
    updateDescriptiveNames();
    buildPorts();
    calculateEdgesUI(node->inputNames(), false, m_inputNodeInitialPos, m_inputTextPositions,
                     m_inputPositions);
    calculateEdgesUI(node->outputPointNames(), true, m_outputNodeInitialPos, m_outputTextPositions,
                     m_outputPositions);
    gui->setConnectionTextPositions(m_inputTextPositions, m_outputTextPositions);
    gui->setConnectionPositions(m_inputPositions, m_outputPositions);

    // Wiring: every change of the business node reaches the GUI node. Member-function
    // connections: a network of thousands of nodes makes tens of thousands of them.
    using Ctx = OssSnNodeGraphViewContext;
    using Node = OssSnBaseNode;
    connect(node, &Node::nameChanged, this, &Ctx::setText);
    connect(node, &Node::descriptionChanged, this, &Ctx::setToolTip);
    connect(node, &Node::enabledChanged, this, &Ctx::updateGuiEdgesBypassStates);
    connect(node, &Node::cacheActiveChanged, this, &Ctx::cachedChanged);
    connect(node, &Node::inputNodeChanged, this, &Ctx::onParentNodeInputChange);
    connect(node, &Node::outputNodeDetached, this, &Ctx::onParentNodeDetachOutput);
    connect(node, &Node::inputAdded, this, &Ctx::onParentNodeInputAdded);
    connect(node, &Node::inputListAdded, this, &Ctx::onParentNodeInputListAdded);
    connect(node, &Node::inputsRefreshed, this, qOverload<>(&Ctx::onParentNodeInputsRefreshed));
    connect(node, &Node::outputsRefreshed, this, qOverload<>(&Ctx::onParentNodeOutputsRefreshed));
    // Reordering re-adds the list: the reuse is deliberate.
    connect(node, &Node::inputOrderChanged, this, &Ctx::onParentNodeInputListAdded);
    connect(node, &Node::nodeInputRenamed, this, &Ctx::onParentNodeInputRenamed);
    connect(node, &Node::inputRemoved, this, &Ctx::onParentNodeInputRemoved);
    connect(node, &Node::inputEnabledChanged, this, &Ctx::onInputEnabledChanged);
    connect(node, &Node::outputPointAdded, this, &Ctx::onParentNodeOutputPointAdded);
    connect(node, &Node::outputPointRemoved, this, &Ctx::onParentNodeOutputPointRemoved);
    connect(node, &Node::outputPointUsed, this, &Ctx::onParentNodeOutputPointUsed);
    connect(node, &Node::outputPointFreed, this, &Ctx::onParentNodeOutputPointFreed);
    connect(node, &Node::outputPointRenamed, this, &Ctx::onParentNodeOutputPointRenamed);
    connect(node, &Node::guiActiveChanged, this, &Ctx::onParentNodeGuiActiveChanged);
    connect(node, &Node::shaderModelChanged, this, &Ctx::updateDescriptiveNames);
    connect(node, &Node::emitSetLayout, this, &Ctx::onSetLayout);
    connect(node, &Node::nodePositionedManual, this, &Ctx::onNodePositionedManual);
    connect(node, &Node::nodePositionedUnderneath, this, &Ctx::onNodePositionedUnderneath);
    connect(node, &Node::nodePositionedNextTo, this, &Ctx::onNodePositionedNextTo);
    connect(node, &Node::nodeSyncedUnderneathNode, this, &Ctx::onNodeSyncedUnderneathNode);
    connect(node, &Node::nodePositionedOnTopIdented, this, &Ctx::onNodePositionedOnTopIdented);
    connect(node, &Node::uniformariseContainers, this, &Ctx::onUniformariseContainers);
    if (OssNgExtendedNode *extended = extendedNode())
        connect(extended, &OssNgExtendedNode::nodePortListModeChanged, this,
                qOverload<int>(&Ctx::setPortListMode));
    connect(gui, &OssNgNode::inputSourceChanged, this, &Ctx::onGuiNodeInputChange);
    connect(gui, &OssNgNode::posChanged, this, &Ctx::onGuiNodePosChanged);
    connect(gui, &OssNgNode::selectedChanged, this, &Ctx::onGuiNodeSelectedChanged);
    connect(gui, &OssNgNode::clickedOnDotableMarkerOnEdge, this, &Ctx::onDotableMarkerClicked);
    connect(node, &Node::inputConnectionIsShared, this, &Ctx::onParentInputIsShared);
    connect(node, &Node::systemShaderStatusSync, this, &Ctx::onUpdateSystemShaderStatus);
    connect(node, &Node::attachViewerToNode, this, &Ctx::onViewerAttachedToNode);
    connect(node, &Node::viewerNodeRequestUpdateVirtualEdge, this,
            &Ctx::updateViewerNodeVirtualEdge);
    connect(node, &Node::newNodeAdded, this, &Ctx::placeNode);
    connect(node, &Node::newNodeAdded, this, &Ctx::onNewNodeAdded);
    connect(node, &Node::gotoNode, this, &Ctx::gotoNode);
    connect(OssNgStyle::instance(), &OssNgStyle::colorsUpdated, this,
            &OssSnNodeGraphViewContext::onParentNodeInputsOutputsRefreshed);
    m_wired = true;

    // Edges of connections made before the GUI existed, then their marks.
    for (const QString &input : node->inputNames())
        if (OssSnBaseNode *source = node->inputConnection(input))
            onParentNodeInputChange(input, source, node->inputOutputPoint(input));
    for (const OssSnOutputLink &link : node->outputLinks())
        if (link.target)
            if (OssSnNodeGraphViewContext *target = of(link.target))
                target->onParentNodeInputChange(link.input, node, link.outputPoint);
    updateGuiEdgesBypassStates();
    for (const QString &shared : node->sharedInputs())
        onParentInputIsShared(shared);
    if (OssNgExtendedNode *extended = extendedNode())
        extended->refresh();
    if (node->hasTag(QStringLiteral("_viewer")) && node->network())
        onViewerNodeCurrentEdgeChanged(node->network()->rootNetwork()->viewerNodeCurrentEdge());
    connect(gui, &OssNgNode::hoveredChanged, this,
            [this](bool hovered) { onHoveredChanged(hovered); });
}

// --- host virtuals

bool OssSnNodeGraphViewContext::saveObjects(OssSerializer &serializer)
{
    if (guiNode() && !guiNode()->save(serializer, QStringLiteral("m_GuiNode"), OssStringMap()))
        return false;
    serializer.beginCollection(QStringLiteral("m_inputNodeInitialPos"),
                               m_inputNodeInitialPos.size(), QStringLiteral("QHash"),
                               QStringLiteral("QString"),
                               OssSnInitialPositions::toAttributes(m_inputNodeInitialPos));
    serializer.endCollection();
    serializer.beginCollection(QStringLiteral("m_outputNodeInitialPos"),
                               m_outputNodeInitialPos.size(), QStringLiteral("QHash"),
                               QStringLiteral("QString"),
                               OssSnInitialPositions::toAttributes(m_outputNodeInitialPos));
    serializer.endCollection();
    return OssSnBaseContext::saveObjects(serializer);
}

OssSerializableObject *OssSnNodeGraphViewContext::onLoadSubObject(OssDeserializer &deserializer,
                                                                  const QString &name,
                                                                  const QString &type)
{
    if (name == QLatin1String("m_GuiNode"))
        return guiNode() ? guiNode()->state() : nullptr;
    return OssSnBaseContext::onLoadSubObject(deserializer, name, type);
}

void OssSnNodeGraphViewContext::onLoadCollectionObject(const QString &name, const QString &type,
                                                       const QString &elementType, int index,
                                                       const OssStringMap &attributes)
{
    const OssStringMap copy = attributes;
    OssSnBaseContext::onLoadCollectionObject(name, type, elementType, index, copy);
}

void OssSnNodeGraphViewContext::onEndCollection(const QString &name, const QString &type,
                                                const QString &elementType)
{
    OssSnBaseContext::onEndCollection(name, type, elementType);
}

bool OssSnNodeGraphViewContext::onLoadCollection(const QString &name, const QString &type,
                                                 const QString &elementType, int count,
                                                 const OssStringMap &attributes)
{
    if (name == QLatin1String("m_inputNodeInitialPos"))
        OssSnInitialPositions::readAttributes(attributes, m_inputNodeInitialPos);
    else if (name == QLatin1String("m_outputNodeInitialPos"))
        OssSnInitialPositions::readAttributes(attributes, m_outputNodeInitialPos);
    return OssSnBaseContext::onLoadCollection(name, type, elementType, count, attributes);
}

bool OssSnNodeGraphViewContext::attributeIsStub(const QString &name, bool flag) const
{
    return OssSnBaseContext::attributeIsStub(name, flag);
}

QString OssSnNodeGraphViewContext::versionHashSource() const
{
    const OssSnBaseNode *node = parentNode();
    if (!node) {
        OSS_DEBUG("ParentNode is NULL");
        return QString();
    }
    QString text;
    if (!qobject_cast<const OssSnCustomProceduralNode *>(node)) {
        text += QStringLiteral("InputInitialPositions\n%1\n")
                    .arg(OssSnInitialPositions::dump(m_inputNodeInitialPos));
        text += QStringLiteral("OutputInitialPositions\n%1\n")
                    .arg(OssSnInitialPositions::dump(m_outputNodeInitialPos));
        text += QStringLiteral("InputInitialTextPositions\n%1\n")
                    .arg(OssSnInitialPositions::dump(m_inputTextPositions));
        text += QStringLiteral("OutputInitialTextPositions\n%1\n")
                    .arg(OssSnInitialPositions::dump(m_outputTextPositions));
    }
    text += QStringLiteral("ShapeType : %1\n").arg(m_shapeType);
    text +=
        QStringLiteral("ColorTop : %1, ColorBottom : %2\n").arg(m_nodeColorTop, m_nodeColorBottom);
    return text + OssSnBaseContext::versionHashSource();
}

void OssSnNodeGraphViewContext::copyGuiStateFrom(OssSnBaseContext *other)
{
    auto *source = qobject_cast<OssSnNodeGraphViewContext *>(other);
    if (!source)
        return;
    m_inputNodeInitialPos = source->m_inputNodeInitialPos;
    m_outputNodeInitialPos = source->m_outputNodeInitialPos;
    m_shapeType = source->m_shapeType;
    m_nodeColorTop = source->m_nodeColorTop;
    m_nodeColorBottom = source->m_nodeColorBottom;
    onParentNodeInputsOutputsRefreshed();
}

void OssSnNodeGraphViewContext::copyGuiNodeStateFrom(OssSnBaseContext *other)
{
    auto *source = qobject_cast<OssSnNodeGraphViewContext *>(other);
    if (!source) {
        OSS_DEBUG("OtherView is NULL");
        return;
    }
    if (guiNode())
        guiNode()->copyFrom(source->guiNode());
}

void OssSnNodeGraphViewContext::connectInputFromGui(OssSnBaseNode *source, const QString &inputName,
                                                    const QString &outputPointName)
{
    OssSnBaseNode *node = parentNode();
    if (outputPointName.isEmpty()) {
        OSS_DEBUG("output point name cannot be empty : %s", qPrintable(inputName));
        return;
    }
    if (inputName.isEmpty()) {
        OSS_DEBUG("input name cannot be empty : %s", qPrintable(outputPointName));
        return;
    }
    // One undo step with the merge nodes' blending upkeep that feeding paint may call for.
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect %1").arg(inputName));
    OssShaderNetworkUtils::setInputNodeBatchConnectable(node, inputName, source, outputPointName,
                                                        true, true, true, false);
    if (node->inputConnection(inputName) == source)
        OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(node);
}

void OssSnNodeGraphViewContext::applySelection(bool selected)
{
    OssSnBaseNode *node = parentNode();
    if (guiNode() && guiNode()->isSelected() != selected) {
        guiNode()->setSelected(selected);
        // A hidden or disabled item refuses to be selected: the node stays as the user sees it.
        selected = guiNode()->isSelected();
    }
    if (node && node->selected() != selected)
        node->setSelected(selected);
    if (!node || !selected || !node->hasTag(QStringLiteral("_viewer")))
        return;
    OssShaderNetwork *network = node->network();
    if (!network) {
        OSS_DEBUG("Network is NULL");
        return;
    }
    OssShaderNetwork *root = network->rootNetwork();
    if (!root) {
        OSS_DEBUG("RootNetwork is NULL");
        return;
    }
    onViewerNodeCurrentEdgeChanged(root->viewerNodeCurrentEdge());
    emit network->nodeSelectionChanged();
}

void OssSnNodeGraphViewContext::refreshInputEdge(const QString &input)
{
    OssSnBaseNode *node = parentNode();
    if (node)
        onParentNodeInputChange(input, node->inputConnection(input), node->inputOutputPoint(input));
}

void OssSnNodeGraphViewContext::applyPortVisibility()
{
    if (OssNgExtendedNode *extended = extendedNode()) {
        extended->setPortListModeFromInt(m_portListMode);
        extended->refresh();
    }
}

void OssSnNodeGraphViewContext::calculateEdgeMultipliers(QVector<int> &MultiplierList,
                                                         int &MinMultiplier, int Count)
{
    if (Count <= 0)
        return;
    const int start = MultiplierList.size();
    for (int i = 0; i < Count; ++i)
        MultiplierList.append(0);
    const int half = Count / 2;
    for (int left = 0, right = Count - 1; left < right; ++left, --right) {
        MultiplierList[start + left] = left - half;
        MultiplierList[start + right] = half - (Count - 1 - right);
    }
    for (int i = start; i < MultiplierList.size(); ++i)
        if (qAbs(MultiplierList.at(i)) < MinMultiplier)
            MinMultiplier = qAbs(MultiplierList.at(i));
}

// --- slots reacting to the business node

void OssSnNodeGraphViewContext::setText(QString text)
{
    if (!guiNode())
        return;
    guiNode()->setText(text);
    if (OssNgExtendedNode *extended = extendedNode())
        extended->refresh();
}

void OssSnNodeGraphViewContext::setToolTip(QString text)
{
    if (guiNode())
        guiNode()->setToolTip(text);
}

void OssSnNodeGraphViewContext::updateGuiEdgesBypassStates()
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node)
        return;
    if (OssNgExtendedNode *extended = extendedNode())
        extended->setMark(OssNgExtendedNode::DisabledMark, !node->enabledAsBool());
    for (const QString &input : node->inputNames())
        if (OssNgEdge *edge = guiNode()->input(input))
            edge->setBypassed(!node->inputEnabled(input) || !node->enabledAsBool());
}

void OssSnNodeGraphViewContext::cachedChanged()
{
    if (OssNgExtendedNode *extended = extendedNode())
        extended->setMark(OssNgExtendedNode::CachedMark,
                          parentNode()->cacheActive() == OssSnCacheActive);
}

void OssSnNodeGraphViewContext::onGuiNodeInputChange(OssNgNode *newInput, QString inputName,
                                                     QString outputPointName)
{
    OssSnBaseNode *node = parentNode();
    if (!node)
        return;
    auto *source = newInput ? qobject_cast<OssSnBaseNode *>(newInput->parent()) : nullptr;
    if (!newInput) {
        // The user cut or dropped the edge: disconnect in the network.
        OssUndoManager::AutoMacro macro(QStringLiteral("Disconnect %1").arg(inputName));
        node->disconnectInput(inputName);
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
        return;
    }
    connectInputFromGui(source, inputName, outputPointName);
}

void OssSnNodeGraphViewContext::onGuiNodePosChanged(QPointF)
{
    OssSnBaseNode *node = parentNode();
    if (!node || !node->network())
        return;
    const bool input = node->hasTag(QStringLiteral("_input"));
    const bool output = node->hasTag(QStringLiteral("_output"));
    if ((input || output) && node->network()->parentGroupNode())
        OssSnNodeGraphViewContextManager::instance()->groupInputOutputMoved(
            node->network()->parentGroupNode(), node, input);
}

void OssSnNodeGraphViewContext::onDotableMarkerClicked(OssNgEdge *edge)
{
    OssShaderNetworkView *view = currentView();
    if (!view || !edge)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Add dot node in edge"));
    view->insertDotIntoEdge(edge);
}

void OssSnNodeGraphViewContext::onParentNodeInputChange(QString input, OssSnBaseNode *source,
                                                        QString outputPoint)
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node)
        return;
    OssNgNode *sourceGui = guiNodeOf(source);
    if (source && sourceGui)
        guiNode()->connectInput(input, sourceGui, outputPoint);
    else
        guiNode()->disconnectInput(input);
    updateGuiEdgesBypassStates();
    if (OssNgExtendedNode *extended = extendedNode())
        extended->refresh();
    if (node->hasTag(QStringLiteral("_viewer")) && input == QLatin1String("0")) {
        updateViewerNodeVirtualEdge();
        QString text = QStringLiteral("0");
        if (source)
            text = source->hasTag(QStringLiteral("_currentMaterialProxy"))
                       ? QStringLiteral("0:Current Material")
                       : QStringLiteral("0:%1").arg(source->name());
        guiNode()->setInputPortText(QStringLiteral("0"), text);
    }
}

void OssSnNodeGraphViewContext::onParentNodeDetachOutput(QString)
{
    // The target's context detaches the edge when its input changes; nothing to do here but
    // keep the output's used mark right.
    if (guiNode())
        guiNode()->update();
}

void OssSnNodeGraphViewContext::onParentNodeInputAdded(QString input)
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node)
        return;
    guiNode()->addInputPort(input, input == node->preferredInput(), false, [&] {
        const QStringList tags = node->inputTags(input);
        return QSet<QString>(tags.begin(), tags.end());
    }());
}

void OssSnNodeGraphViewContext::onParentNodeInputListAdded(QStringList inputs)
{
    if (!guiNode())
        return;
    for (const QString &input : inputs)
        onParentNodeInputAdded(input);
    guiNode()->setInputPortOrder(parentNode()->inputNames());
}

void OssSnNodeGraphViewContext::onParentNodeInputsRefreshed()
{
    onParentNodeInputsRefreshed(true);
}

void OssSnNodeGraphViewContext::onParentNodeInputsRefreshed(bool Adjust)
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node)
        return;
    for (const QString &name : guiNode()->inputPortNames())
        if (!node->hasInput(name))
            guiNode()->removeInputPort(name);
    for (const QString &name : node->inputNames())
        if (!guiNode()->inputPort(name))
            onParentNodeInputAdded(name);
    guiNode()->setInputPortOrder(node->inputNames());
    if (Adjust)
        for (const QString &input : node->inputNames())
            onParentNodeInputChange(input, node->inputConnection(input),
                                    node->inputOutputPoint(input));
}

void OssSnNodeGraphViewContext::onParentNodeOutputsRefreshed()
{
    onParentNodeOutputsRefreshed(true);
}

void OssSnNodeGraphViewContext::onParentNodeOutputsRefreshed(bool)
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node)
        return;
    for (const QString &name : guiNode()->outputPortNames())
        if (!node->hasOutputPoint(name))
            guiNode()->removeOutputPort(name);
    for (const QString &name : node->outputPointNames())
        if (!guiNode()->outputPort(name))
            guiNode()->addOutputPort(name, !node->outputPortsHidden());
}

void OssSnNodeGraphViewContext::onParentNodeInputsOutputsRefreshed()
{
    onParentNodeInputsRefreshed(true);
    onParentNodeOutputsRefreshed(true);
}

void OssSnNodeGraphViewContext::onParentNodeInputRenamed(QString oldName, QString newName)
{
    if (guiNode())
        guiNode()->renameInputPort(oldName, newName);
}

void OssSnNodeGraphViewContext::onParentNodeInputRemoved(QString input)
{
    if (guiNode())
        guiNode()->removeInputPort(input);
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointAdded(QString outputPoint)
{
    if (!guiNode())
        return;
    guiNode()->addOutputPort(outputPoint, !parentNode()->outputPortsHidden());
    // A port put back by undo returns to its place, not to the end.
    guiNode()->setOutputPortOrder(parentNode()->outputPointNames());
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointRemoved(QString outputPoint)
{
    if (guiNode())
        guiNode()->removeOutputPort(outputPoint);
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointUsed(QString outputPoint)
{
    if (guiNode())
        guiNode()->setOutputPortUsed(outputPoint, true);
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointFreed(QString outputPoint)
{
    if (guiNode())
        guiNode()->setOutputPortUsed(outputPoint, false);
}

void OssSnNodeGraphViewContext::onParentNodeOutputPointRenamed(QString oldName, QString newName)
{
    if (guiNode())
        guiNode()->renameOutputPort(oldName, newName);
}

void OssSnNodeGraphViewContext::onParentNodeGuiActiveChanged(bool active)
{
    if (OssNgExtendedNode *extended = extendedNode())
        extended->setMark(OssNgExtendedNode::GuiActiveMark, active);
}

void OssSnNodeGraphViewContext::onParentInputIsShared(QString input)
{
    if (guiNode())
        if (OssNgEdge *edge = guiNode()->input(input))
            edge->setShared(true);
}

void OssSnNodeGraphViewContext::onInputEnabledChanged(QString input, bool enabled)
{
    if (guiNode())
        if (OssNgEdge *edge = guiNode()->input(input))
            edge->setBypassed(!enabled);
}

void OssSnNodeGraphViewContext::selectGuiNode(bool selected)
{
    applySelection(selected);
}

void OssSnNodeGraphViewContext::onGuiNodeSelectedChanged(bool selected)
{
    // The one place where a selection made in the view (a click, a rubber band, the scene
    // clearing its selection, an item hidden) becomes the business node's selection; the node's
    // own signal then brings every other follower along.
    OssSnBaseNode *node = parentNode();
    if (node && node->selected() != selected)
        node->setSelected(selected);
}

// --- placement

OssShaderNetworkView *OssSnNodeGraphViewContext::currentView(bool logMissing) const
{
    OssShaderNetworkView *view = OssSnNodeGraphViewContextManager::instance()->currentView();
    if (!view && logMissing)
        OSS_DEBUG("[ !! ] Fatal error -> no view!");
    return view;
}

void OssSnNodeGraphViewContext::onSetLayout(OssSnBaseNode::NodeLayoutType Type,
                                            OssSnBaseNode *ReferenceNode, bool FreshCoordinates,
                                            bool PreventOverlap)
{
    OssShaderNetworkView *view = currentView();
    if (!view)
        return;
    OssSnBaseNode *node = parentNode();
    const int type = int(Type);
    if (type == OssSnBaseNode::LayoutAtFreeSpot) {
        view->positionNodeAtFreeSpot(node);
        return;
    }
    if (type == OssSnBaseNode::LayoutBesideReference) {
        view->positionNodeBesideReference(node, ReferenceNode);
        return;
    }
    static const int normal[12][2] = {{0, 0}, {0, 1}, {2, 0},  {-1, 1}, {1, -1}, {0, 2},
                                      {3, 0}, {2, 0}, {-1, 0}, {0, 0},  {0, 0},  {1, -1}};
    static const int flipped[12][2] = {{0, 0}, {1, 0}, {0, 2},  {1, -1}, {-1, 1}, {2, 0},
                                       {0, 3}, {0, 2}, {0, -1}, {0, 0},  {0, 0},  {-1, 0}};
    const bool flip = portListModeAsInt() == OssNgExtendedNode::PortListHidden;
    int column = 0, row = 0;
    if (type >= OssSnBaseNode::LayoutBelow && type <= OssSnBaseNode::LayoutAboveRightOfStream) {
        column = flip ? flipped[type][0] : normal[type][0];
        row = flip ? flipped[type][1] : normal[type][1];
    }
    OSS_DEBUG("[ -- ] Positioning node '%s' wrt node '%s' at (%d, %d)", qPrintable(node->path()),
              ReferenceNode ? qPrintable(ReferenceNode->path()) : "", column, row);
    view->positionNodeOnGrid(node, ReferenceNode, column, row, FreshCoordinates);
    if (PreventOverlap || type == OssSnBaseNode::LayoutRightFar)
        view->placeNode(node);
}

void OssSnNodeGraphViewContext::onNodePositionedManual(OssSnBaseNode *ReferenceNode, QPointF Offset)
{
    if (OssShaderNetworkView *view = currentView())
        view->positionNodeManual(parentNode(), ReferenceNode, Offset);
}

void OssSnNodeGraphViewContext::onNodePositionedUnderneath(OssSnBaseNode *ReferenceNode, int Factor)
{
    if (OssShaderNetworkView *view = currentView())
        view->positionNodeUnderneath(parentNode(), ReferenceNode, Factor);
}

void OssSnNodeGraphViewContext::onNodePositionedNextTo(OssSnBaseNode *ReferenceNode)
{
    if (OssShaderNetworkView *view = currentView())
        view->positionNodeNextTo(parentNode(), ReferenceNode);
}

void OssSnNodeGraphViewContext::onNodePositionedOnTopIdented(OssSnBaseNode *ReferenceNode)
{
    if (OssShaderNetworkView *view = currentView())
        view->relocateNodeBeside(guiNode(), guiNodeOf(ReferenceNode));
}

void OssSnNodeGraphViewContext::onNodeSyncedUnderneathNode(OssSnBaseNode *ReferenceNode,
                                                           bool IgnoreContainerOfPreviousNode)
{
    OssShaderNetworkView *view = currentView();
    if (!view)
        return;
    OssSnBaseNode *node = parentNode();
    view->syncNodeUnderneath(
        node, node->containerNode(), ReferenceNode,
        IgnoreContainerOfPreviousNode || !ReferenceNode ? nullptr : ReferenceNode->containerNode());
}

void OssSnNodeGraphViewContext::onUniformariseContainers(QList<OssSnBaseNode *> LayerListNode)
{
    OssShaderNetworkView *view = currentView();
    if (!view)
        return;
    OSS_DEBUG("[ -- ] About to uniformarise %d layer stack containers", LayerListNode.size());
    view->uniformariseContainers(LayerListNode);
}

void OssSnNodeGraphViewContext::placeNode()
{
    if (OssShaderNetworkView *view = currentView())
        view->placeNode(parentNode());
}

// --- marks, viewer, misc

void OssSnNodeGraphViewContext::onUpdateSystemShaderStatus()
{
    if (OssNgExtendedNode *extended = extendedNode())
        extended->setMark(OssNgExtendedNode::SystemShaderMark,
                          OssLayerShaderManager::isSystemShaderNode(parentNode(), true));
}

void OssSnNodeGraphViewContext::onViewerAttachedToNode(int InputNumber)
{
    OssShaderNetworkView *view = currentView();
    if (!view)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Attach viewer to node"));
    view->connectToViewer(parentNode(), InputNumber);
}

void OssSnNodeGraphViewContext::onViewerNodeCurrentEdgeChanged(int edge)
{
    if (!guiNode())
        return;
    const QString current = QString::number(edge);
    for (OssNgEdge *input : guiNode()->inputs())
        input->setActivated(guiNode()->isSelected() && input->inputName() == current);
    updateViewerNodeVirtualEdge();
}

void OssSnNodeGraphViewContext::updateViewerNodeVirtualEdge()
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node || !node->hasTag(QStringLiteral("_viewer")) || !node->network())
        return;
    // The viewer shows the node feeding its current input; its virtual edge points at "ToView".
    const QString current =
        QString::number(node->network()->rootNetwork()->viewerNodeCurrentEdge());
    OssSnBaseNode *shown = node->inputConnection(current);
    if (node->hasInput(QStringLiteral("ToView")))
        guiNode()->setVirtualInputEdge(guiNodeOf(shown), QStringLiteral("ToView"));
}

void OssSnNodeGraphViewContext::onNewNodeAdded()
{
    if (qobject_cast<OssSnMultiChannelGroupNode *>(parentNode()))
        setPortListMode(OssSnNodeGraphViewContextManager::instance()->defaultMCMCollapsedState());
}

void OssSnNodeGraphViewContext::calculateEdgesUI(QStringList Edges, bool OutputEdge,
                                                 const OssSnInitialPositionMap &InitialPositionMap,
                                                 const OssSnTextPositionMap &InitialTextPositionMap,
                                                 OssSnInitialPositionMap &PositionMap, int Factor)
{
    QVector<int> multipliers;
    int minimum = Edges.size();
    calculateEdgeMultipliers(multipliers, minimum, Edges.size());
    OssSnTextPositionMap &texts = OutputEdge ? m_outputTextPositions : m_inputTextPositions;
    for (int i = 0; i < Edges.size(); ++i) {
        const QString &edge = Edges.at(i);
        // Without an initial stub the edge leaves straight out of its side.
        QPair<QPoint, QPoint> stub = InitialPositionMap.value(
            edge, qMakePair(QPoint(0, 0), QPoint(OutputEdge ? 40 : -40, 0)));
        stub.second += QPoint(0, multipliers.at(i) * 12 * Factor);
        PositionMap.insert(edge, stub);
        texts.insert(edge, InitialTextPositionMap.value(edge, 0.5f));
    }
}

void OssSnNodeGraphViewContext::updateDescriptiveNames()
{
    updateDescriptiveInputNames();
    updateDescriptiveOutputNames();
}

void OssSnNodeGraphViewContext::updateDescriptiveInputNames()
{
    OssSnBaseNode *node = parentNode();
    if (!guiNode() || !node)
        return;
    if (qobject_cast<OssSnMultiChannelGroupNode *>(node))
        guiNode()->setConnectionDescriptiveNames(node->descriptiveInputNameList(),
                                                 node->descriptiveOutputNameList());
    guiNode()->setConnectionPrettyNames(node->prettyInputNameList(), node->prettyOutputNameList());
}

void OssSnNodeGraphViewContext::updateDescriptiveOutputNames()
{
    updateDescriptiveInputNames();
}

void OssSnNodeGraphViewContext::setNodePosition(QPointF position)
{
    if (guiNode())
        guiNode()->setPos(position);
}

void OssSnNodeGraphViewContext::setNodePositionUndo(QPointF position)
{
    if (!guiNode())
        return;
    guiNode()->savePosition();
    guiNode()->setPos(position);
    OssUndoManager::instance()->addUndo(new OssNgNodePositionChangeUndo(guiNode()), false);
}

void OssSnNodeGraphViewContext::setNodeSize(QSizeF size)
{
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode())) {
        backdrop->saveBoundingRect();
        backdrop->setNodeSize(size);
    }
}

void OssSnNodeGraphViewContext::setNodeSizeUndo(QSizeF size)
{
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode())) {
        backdrop->saveBoundingRect();
        backdrop->setNodeSize(size);
        OssUndoManager::instance()->addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop), false);
    }
}

void OssSnNodeGraphViewContext::onHoveredChanged(bool hovered)
{
    if (OssSnBaseNode *node = parentNode())
        node->emitNodeStateRefreshed();
    emit hoveredChanged(hovered);
}

void OssSnNodeGraphViewContext::gotoNode()
{
    OssSnBaseNode *node = parentNode();
    OssSnNodeGraphWidget *widget = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    if (!node || !node->network() || !widget || !guiNode())
        return;
    OssShaderNetwork *root = node->network()->rootNetwork();
    if (!root->geoEntity() || !widget->view() || widget->view()->network() != root)
        return;
    if (OssSnGroupNode *group = node->network()->parentGroupNode())
        widget->showGroupNodeSubgraph(group);
    else
        widget->setCurrentIndex(0);
    OssShaderNetworkView *view = widget->currentView();
    if (guiNode()->isVisible() && view && view->network() == node->network())
        view->centerViewOn(guiNode()->pos() + guiNode()->boundingRect().center(), true);
}
