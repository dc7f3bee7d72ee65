// The node creation commands of OssShaderNetworkView: paint, bake point and merge nodes, the
// generic creation of any node type at a position (with overlap relocation, a unique name,
// backdrops wrapping the selection and auto-connection to the selection), and quick create with
// its recent, favourite and usage lists kept in the settings.

#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssDebug.h>
#include <OssLayerShaderModel.h>
#include <OssLayerStreamUtils.h>
#include <OssMaterialPaintManager.h>
#include <OssNgBackdropNode.h>
#include <OssNgUndo.h>
#include <OssNodeQuickFindDialog.h>
#include <OssSettings.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssShaderNetworkUtils.h>
#include <OssSnBaseNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMaterialNode.h>
#include <OssSnMultiChannelBakePointNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssSnUINode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QCursor>
#include <QGraphicsScene>
#include <QScreen>

namespace {

const QString SettingsGroup = QStringLiteral("Node Graph");
const QString LastUsedKey = QStringLiteral("LastUsedNodePaths");
const QString FavouritesKey = QStringLiteral("FavouriteNodePaths");
// How often each node type was created through quick create, for its ranking.
const QString UseCountsKey = QStringLiteral("NodePathUseCounts");

const QString PaintNodeKey = QStringLiteral("Misc/Channel Input");
const QString BakePointKey = QStringLiteral("Misc/Bake Point");
const QString MergeKey = QStringLiteral("Layer/Merge");
const QString BackdropKey = QStringLiteral("Misc/Backdrop");
const QString HiddenInputTag = QStringLiteral("_hidden");

OssNgNode *guiOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContext::guiNodeOf(node);
}

void manuallyChanged()
{
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

// A settings value as a list of strings, whatever type it was stored with.
QStringList toStringList(const QVariant &value)
{
    if (!value.isValid())
        return {};
    if (value.type() == QVariant::String) {
        const QString text = value.toString();
        return text.isEmpty() ? QStringList() : QStringList{text};
    }
    QStringList list;
    for (const QVariant &item : value.toList())
        if (!item.toString().isEmpty())
            list.append(item.toString());
    return list;
}

QHash<QString, int> toUseCounts(const QVariant &value)
{
    QHash<QString, int> counts;
    const QVariantMap map = value.toMap();
    for (auto it = map.constBegin(); it != map.constEnd(); ++it)
        if (it.value().toInt() > 0)
            counts.insert(it.key(), it.value().toInt());
    return counts;
}

// Inputs an auto-connection may fill, best first: the preferred input, then the others in
// order; hidden inputs are left to the user.
QStringList connectableInputs(const OssSnBaseNode *node)
{
    QStringList inputs;
    const QString preferred = node->preferredInput();
    if (!preferred.isEmpty() && node->hasInput(preferred))
        inputs.append(preferred);
    for (const QString &input : node->inputNames())
        if (input != preferred)
            inputs.append(input);
    inputs.erase(std::remove_if(inputs.begin(), inputs.end(),
                                [node](const QString &input) {
                                    return node->hasInputTag(input, HiddenInputTag);
                                }),
                 inputs.end());
    return inputs;
}

QString nextFreeInput(const OssSnBaseNode *node)
{
    if (OssLayerStreamUtils::isMergeNode(node)) {
        // A merge takes the selection on its Over input first, then on its Base.
        for (const QString &input : {QStringLiteral("Over"), QStringLiteral("Base")})
            if (node->hasInput(input) && !node->inputConnection(input))
                return input;
        return QString();
    }
    for (const QString &input : connectableInputs(node))
        if (!node->inputConnection(input))
            return input;
    return QString();
}

// The input of Node that Source feeds, other than those in Before.
QString inputFedBy(const OssSnBaseNode *node, const OssSnBaseNode *source,
                   const QStringList &before)
{
    for (const QString &input : node->inputNames())
        if (node->inputConnection(input) == source && !before.contains(input))
            return input;
    return QString();
}

QStringList inputsFedBy(const OssSnBaseNode *node, const OssSnBaseNode *source)
{
    QStringList inputs;
    for (const QString &input : node->inputNames())
        if (node->inputConnection(input) == source)
            inputs.append(input);
    return inputs;
}

} // namespace

QPoint OssShaderNetworkView::creationViewPos() const
{
    // At the cursor when it is over the view, else in the middle of what is shown.
    const QPoint cursor = viewport()->mapFromGlobal(QCursor::pos());
    return viewport()->rect().contains(cursor) ? cursor : viewport()->rect().center();
}

void OssShaderNetworkView::placeCreatedNode(OssSnBaseNode *node, const QPointF &scenePos,
                                            bool relocate)
{
    OssNgNode *gui = guiOf(node);
    if (!gui)
        return;
    gui->savePosition();
    gui->setPos(scenePos - gui->boundingRect().center());
    if (relocate)
        placeNode(node);
    // Undo of the creation then redo brings the node back where it was put.
    OssUndoManager::instance()->addUndo(new OssNgNodePositionChangeUndo(gui), false);
}

void OssShaderNetworkView::selectAlone(OssSnBaseNode *node)
{
    if (!m_network || !node)
        return;
    m_network->clearSelection();
    node->setSelected(true);
}

// --- paint, bake point and merge nodes

void OssShaderNetworkView::createPaintableNode()
{
    createPaintableNode(creationViewPos());
}

void OssShaderNetworkView::createPaintableNode(QPoint NodeViewPos)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Add Paint Node"));
    OssSnBaseNode *node = m_network->createPaintableNode();
    if (!node) {
        macro.cancel();
        return;
    }
    placeCreatedNode(node, mapToScene(NodeViewPos), true);
    emit nodeAdded(node);
    selectAlone(node);
    manuallyChanged();
}

void OssShaderNetworkView::createBakePointNode()
{
    createBakePointNode(creationViewPos());
}

void OssShaderNetworkView::createBakePointNode(QPoint NodeViewPos)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Add Bake Point Node"));
    OssSnBaseNode *node = nullptr;
    {
        OssUndoManager::AutoMacro creation(QStringLiteral("Add Bake Point"));
        node = m_network->createPaintableNode(QString(), BakePointKey);
        if (!node) {
            creation.cancel();
            macro.cancel();
            return;
        }
        // A bake point made by hand bakes only where its input has content.
        node->setNodeAttribute(QStringLiteral("limitBakeBackground"), true);
    }
    placeCreatedNode(node, mapToScene(NodeViewPos), true);
    emit nodeAdded(node);
    selectAlone(node);
    manuallyChanged();
}

void OssShaderNetworkView::createMergeNode()
{
    createMergeNode(creationViewPos());
}

void OssShaderNetworkView::createMergeNode(QPoint NodeViewPos)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Create Multi-Channel Merge"));
    const QList<OssNgNode *> sorted = sortedSelection();
    auto *first = sorted.isEmpty()
                      ? nullptr
                      : qobject_cast<OssSnMultiChannelGroupNode *>(sorted.first()->parent());
    OssSnBaseNode *merge = nullptr;
    if (first && first->shaderModel()) {
        // The merge follows the selected node's shader model and takes it as its base.
        merge = m_network->createMultiChannelMergeNode(first);
        if (merge) {
            placeCreatedNode(merge, mapToScene(NodeViewPos), true);
            emit nodeAdded(merge);
            selectAlone(merge);
        }
    } else {
        merge = createNodeAt(MergeKey, mapToScene(NodeViewPos));
    }
    if (!merge) {
        macro.cancel();
        return;
    }
    manuallyChanged();
}

// --- generic creation

OssSnBaseNode *OssShaderNetworkView::createNodeFromAction(QAction *Action)
{
    if (!Action) {
        OSS_DEBUG("Action is NULL");
        return nullptr;
    }
    const QString pathKey = Action->data().toString();
    const QPoint at = creationViewPos();
    if (pathKey == PaintNodeKey) {
        createPaintableNode(at);
    } else if (pathKey == BakePointKey) {
        createBakePointNode(at);
    } else if (pathKey == MergeKey) {
        createMergeNode(at);
    } else {
        return createNodeAt(pathKey, mapToScene(at));
    }
    // The commands above select what they made.
    const QList<OssSnBaseNode *> selected =
        m_network ? m_network->selectedNodes() : QList<OssSnBaseNode *>();
    return selected.size() == 1 ? selected.first() : nullptr;
}

OssSnBaseNode *OssShaderNetworkView::createNodeAt(const QString &pathKey, const QPointF &scenePos)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return nullptr;
    }
    OssUndoManager::AutoMacro macro(
        QStringLiteral("Create Node : %1").arg(pathKey.section(QLatin1Char('/'), -1)));
    const bool backdrop = pathKey == BackdropKey;
    int selectedCount = 0;
    const QRectF selection = selectionBounds(&selectedCount);
    const bool wrapSelection = backdrop && selectedCount > 0 && !selection.isNull();
    // What the new node connects to, in the order the user sees it, taken before it is selected.
    const QList<OssNgNode *> sorted = sortedSelection();

    const QList<OssSnBaseNode *> created = m_network->createNodes(pathKey);
    if (created.size() != 1) {
        macro.cancel();
        return nullptr;
    }
    OssSnBaseNode *node = created.first();
    placeCreatedNode(node, scenePos, !backdrop);
    if (m_network->node(node->name()) != node)
        node->setName(m_network->generateUniqueNodeName(node->name()));
    emit nodeAdded(node);

    if (node->pathKey() == QLatin1String("_System/Material") &&
        node->hasTag(QStringLiteral("_shader")))
        if (auto *material = qobject_cast<OssSnMaterialNode *>(node))
            material->connectPreviewShaderNetwork();
    if (auto *backdropGui = qobject_cast<OssNgBackdropNode *>(guiOf(node))) {
        backdropGui->setTitleText(node->name());
        if (wrapSelection) {
            backdropGui->saveBoundingRect();
            backdropGui->wrapAroundSelection(selection);
            OssUndoManager::instance()->addUndo(new OssNgBackdropNodeRectChangeUndo(backdropGui),
                                                false);
        }
        backdropGui->refreshChildrenList();
    }
    if (node->pathKey() == MergeKey)
        setBlendingColorspaceOnMergeNodeCreation(node);
    if (node->hasTag(QStringLiteral("_group"))) {
        // A group made with merges inside sets their blending colour space as well.
        auto *group = qobject_cast<OssSnGroupNode *>(node);
        OssShaderNetwork *groupNetwork = group ? group->groupNetwork() : nullptr;
        if (!group)
            OSS_DEBUG("AsGroup is NULL");
        else if (!groupNetwork)
            OSS_DEBUG("GroupNetwork is NULL");
        else
            for (OssSnBaseNode *inner : groupNetwork->getAllNodes())
                if (OssLayerStreamUtils::isMergeNode(inner))
                    setBlendingColorspaceOnMergeNodeCreation(inner);
    }
    if (node->pathKey() == QLatin1String("_System/Shader Input"))
        autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(node);
    if (node->pathKey() == QLatin1String("_System/MultiChannelBakePoint") &&
        node->hasNodeAttribute(QStringLiteral("_reconfigureBakepoints")))
        if (auto *bakePoints = qobject_cast<OssSnMultiChannelBakePointNode *>(node)) {
            bakePoints->configureBakepoints();
            node->removeNodeAttribute(QStringLiteral("_reconfigureBakepoints"));
        }

    // Backdrops and sticky notes hold no streams.
    const bool ordinary = !qobject_cast<OssSnUINode *>(node) || node->inputCount() > 0;
    if (ordinary)
        autoConnectToSelection(node, sorted);
    selectAlone(node);
    manuallyChanged();
    return node;
}

void OssShaderNetworkView::autoConnectToSelection(OssSnBaseNode *node,
                                                  const QList<OssNgNode *> &sorted)
{
    QList<OssSnBaseNode *> sources;
    for (OssNgNode *gui : sorted) {
        auto *source = qobject_cast<OssSnBaseNode *>(gui->parent());
        if (source && source != node && source->network() == node->network())
            sources.append(source);
    }
    if (sources.isEmpty())
        return;

    if (auto *multiChannel = qobject_cast<OssSnMultiChannelGroupNode *>(node)) {
        // Multi-channel nodes take whole streams: the first matching node is the base, the
        // second the over.
        QList<OssSnBaseNode *> matching;
        for (OssSnBaseNode *source : qAsConst(sources))
            if (OssLayerShaderModelManager::matchingShaderModelNodePair(source, node))
                matching.append(source);
        if (matching.isEmpty())
            return;
        OssSnBaseNode *over = matching.value(1);
        if (multiChannel->batchConnectInputNode(matching.first(), over)) {
            const QList<OssSnBaseNode *> connected =
                over ? QList<OssSnBaseNode *>{matching.first(), over}
                     : QList<OssSnBaseNode *>{matching.first()};
            for (int i = 0; i < connected.size(); ++i)
                OSS_DEBUG("[ -- ] Autoconnect selected node ['%s', outputCount:'%s'] to new "
                          "node['%s', input(%d):'%s']",
                          qPrintable(connected.at(i)->name()),
                          qPrintable(QString::number(connected.at(i)->outputPointCount())),
                          qPrintable(node->name()), i, i == 0 ? "base" : "over");
        }
        return;
    }

    const bool merge = OssLayerStreamUtils::isMergeNode(node);
    const bool shader = node->hasTag(QStringLiteral("_shader"));
    for (OssSnBaseNode *source : qAsConst(sources)) {
        if (source->outputPointCount() == 0 || source->prefferedOutputPoint().isEmpty()) {
            OSS_DEBUG("[ -- ] Selected node '%s' has no output, skipping autoconnecting to it",
                      qPrintable(source->name()));
            continue;
        }
        if (nextFreeInput(node).isEmpty()) {
            OSS_DEBUG("* No more inputs to connect to, stop autoconnect.");
            break;
        }
        const QStringList before = inputsFedBy(node, source);
        if (merge) {
            OssMaterialPaintManager::instance()->autoconnectMergeNode(source, node);
        } else if (shader) {
            // Shader inputs are matched by the name of the source's output first.
            OssShaderNetworkUtils::batchConnect({source}, node);
        } else {
            node->connectInput(nextFreeInput(node), source, source->prefferedOutputPoint());
        }
        const QString input = inputFedBy(node, source, before);
        if (input.isEmpty())
            continue;
        OSS_DEBUG("[ -- ] Autoconnect selected node ['%s', outputCount:'%s'] to new node['%s', "
                  "input(%d):'%s']",
                  qPrintable(source->name()),
                  qPrintable(QString::number(source->outputPointCount())), qPrintable(node->name()),
                  node->inputNames().indexOf(input), qPrintable(input));
    }
}

void OssShaderNetworkView::insertIntoStreamAfter(OssSnBaseNode *node, OssSnBaseNode *upstream)
{
    // What Upstream's preferred output fed now comes from the new node, which Upstream feeds.
    const QString output = upstream->prefferedOutputPoint();
    const QString newOutput = node->prefferedOutputPoint();
    if (output.isEmpty() || newOutput.isEmpty() || inputsFedBy(node, upstream).isEmpty())
        return;
    for (const auto &link : upstream->outputConnections(output))
        if (link.first != node)
            link.first->connectInput(link.second, node, newOutput);
}

// --- quick create

void OssShaderNetworkView::quickCreate()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QPoint cursor = creationViewPos();
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    QStringList lastUsed = toStringList(settings.value(LastUsedKey));
    const QStringList favourites = toStringList(settings.value(FavouritesKey));
    QHash<QString, int> useCounts = toUseCounts(settings.value(UseCountsKey));
    const int keep =
        qMax(0, OssSnNodeGraphViewContextManager::instance()->numberOfLastUsedNodePathsToStore());

    OssNodeQuickFindDialog dialog(lastUsed, favourites, keep, cursor, viewport()->size(), this);
    dialog.setUseCounts(useCounts);
    // The dialog opens at the cursor, inside the screen.
    QPoint at = viewport()->mapToGlobal(cursor);
    if (const QScreen *screen = this->screen()) {
        const QRect area = screen->availableGeometry();
        at.setX(qBound(area.left(), at.x(), qMax(area.left(), area.right() - dialog.width())));
        at.setY(qBound(area.top(), at.y(), qMax(area.top(), area.bottom() - dialog.height())));
    }
    dialog.move(at);
    dialog.exec();
    // The keyboard goes back to the graph (some window managers leave it nowhere).
    window()->activateWindow();
    setFocus(Qt::OtherFocusReason);

    settings.setValue(FavouritesKey, dialog.favourites());
    const QString pathKey = dialog.chosenPathKey();
    if (pathKey.isEmpty())
        return;
    lastUsed.removeAll(pathKey);
    lastUsed.prepend(pathKey);
    settings.setValue(LastUsedKey, QStringList(lastUsed.mid(0, keep)));
    useCounts[pathKey] += 1;
    QVariantMap counts;
    for (auto it = useCounts.constBegin(); it != useCounts.constEnd(); ++it)
        counts.insert(it.key(), it.value());
    settings.setValue(UseCountsKey, counts);
    settings.sync();

    const QPointF scenePos = mapToScene(dialog.nodePosition());
    if (pathKey == PaintNodeKey) {
        createPaintableNode(dialog.nodePosition());
    } else if (pathKey == BakePointKey) {
        createBakePointNode(dialog.nodePosition());
    } else if (dialog.insertAfterSelection()) {
        createNodeAfterSelection(pathKey);
    } else {
        createNodeAt(pathKey, scenePos);
    }
}

OssSnBaseNode *OssShaderNetworkView::createNodeAfterSelection(const QString &pathKey)
{
    const QList<OssNgNode *> sorted = sortedSelection();
    auto *upstream =
        sorted.isEmpty() ? nullptr : qobject_cast<OssSnBaseNode *>(sorted.first()->parent());
    if (!upstream) {
        OSS_DEBUG("[ -- ] Nothing selected to create '%s' after, creating it at the cursor",
                  qPrintable(pathKey));
        return createNodeAt(pathKey, mapToScene(creationViewPos()));
    }
    // The new node goes under the selected node, fed by it alone.
    OssUndoManager::AutoMacro macro(
        QStringLiteral("Create Node : %1").arg(pathKey.section(QLatin1Char('/'), -1)));
    m_network->clearSelection();
    upstream->setSelected(true);
    const QRectF upstreamRect = sorted.first()->sceneBoundingRect();
    const QPointF below(upstreamRect.center().x(),
                        upstreamRect.bottom() + upstreamRect.height() / 2.0 + 60.0);
    OssSnBaseNode *node = createNodeAt(pathKey, below);
    if (!node) {
        macro.cancel();
        return nullptr;
    }
    insertIntoStreamAfter(node, upstream);
    if (OssLayerStreamUtils::isMergeNode(node))
        setBlendingColorspaceOnMergeNodeCreation(node);
    manuallyChanged();
    return node;
}
