// The bake commands of OssShaderNetworkView, and the upkeep of the merge nodes' "Use Blending
// Colorspace" when 8-bit paint is fed through them.

#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssApplication.h>
#include <OssCanvasManager.h>
#include <OssCanvasWidget.h>
#include <OssChannel.h>
#include <OssCustomAttribute.h>
#include <OssDebug.h>
#include <OssEntity.h>
#include <OssGeoImageSet.h>
#include <OssGuiApplication.h>
#include <OssImageSetUtils.h>
#include <OssMessageBox.h>
#include <OssNgNode.h>
#include <OssQuestionBox.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssShaderNetworkUtils.h>
#include <OssShadingGroup.h>
#include <OssSnBakePointNode.h>
#include <OssSnBaseNode.h>
#include <OssSnImageSetNodeBase.h>
#include <OssUndoManager.h>

#include <QInputDialog>
#include <QSet>

namespace {

const QString BlendTag = QStringLiteral("_blend");
const QString ShaderInputTag = QStringLiteral("_shaderInput");
const QString MaskInput = QStringLiteral("Mask");
const QString BlendAttribute = QStringLiteral("BlendColorSpaceEnabled");
constexpr int BytePaint = OssChannel::UnsignedByte;
// A shader input of this colour space holds data that is never blended in a colour space.
constexpr int RawShaderInputColorSpace = 1;
// The paint node of a bake sits this far right of and above the baked node.
constexpr qreal Gap = 30.0;

// The preference's values.
const QString Prompt = QStringLiteral("Prompt");
const QString Change = QStringLiteral("Change");
const QString Leave = QStringLiteral("Leave");

bool isMerge(const OssSnBaseNode *node)
{
    return node->hasTag(BlendTag);
}

// The attribute is a user enum, held as one (OssUserEnum) or in its text form ("0:Disabled|
// Enabled"); its current index is 0 (disabled) or 1 (enabled).
int blendColorSpaceEnabled(const OssSnBaseNode *node)
{
    const QVariant value = node->nodeAttributeValue(BlendAttribute);
    if (value.userType() == qMetaTypeId<OssUserEnum>())
        return value.value<OssUserEnum>().currentValue();
    if (value.userType() == QMetaType::QString)
        return OssUserEnum::fromString(value.toString()).currentValue();
    return value.toInt();
}

void setBlendColorSpaceEnabled(OssSnBaseNode *node, bool enabled)
{
    QVariant value = node->nodeAttributeValue(BlendAttribute);
    if (value.userType() == qMetaTypeId<OssUserEnum>()) {
        OssUserEnum choice = value.value<OssUserEnum>();
        choice.setCurrentValue(enabled ? 1 : 0);
        value = QVariant::fromValue(choice);
    } else if (value.userType() == QMetaType::QString) {
        OssUserEnum choice = OssUserEnum::fromString(value.toString());
        choice.setCurrentValue(enabled ? 1 : 0);
        value = choice.toString();
    } else {
        value = enabled ? 1 : 0;
    }
    node->setNodeAttribute(BlendAttribute, value, true);
}

// Whether Node stands for paint stored as 8-bit (byte) colour: a paint node of a byte channel
// that is not scalar data, a byte shader input that is blended as colour, or a bake point,
// which bakes into a byte image set unless its image set says otherwise.
bool holdsBytePaint(OssSnBaseNode *node)
{
    if (OssSnImageSetNodeBase *imageSetNode = OssShaderNetworkUtils::asTrueImageSetNode(node)) {
        if (OssChannel *channel = imageSetNode->imageSet())
            return channel->channelType() == BytePaint &&
                   channel->colorSpace() != QLatin1String("scalar");
        const QVariant depth = node->nodeAttributeValue(QStringLiteral("Depth"));
        return depth.isValid() && depth.toInt() == BytePaint;
    }
    if (node->hasTag(ShaderInputTag)) {
        if (node->nodeAttributeValue(QStringLiteral("ColorSpace")).toInt() ==
            RawShaderInputColorSpace)
            return false;
        return node->nodeAttributeValue(QStringLiteral("Depth")).toInt() == BytePaint;
    }
    if (OssSnBakePointNode *bakePoint = OssShaderNetworkUtils::asTrueBakePointNode(node)) {
        OssShaderNetwork *network = bakePoint->network();
        OssShadingGroup *group = network ? network->shadingGroup() : nullptr;
        OssChannel *channel = group ? group->channel(bakePoint->bakedImageSet()) : nullptr;
        return !channel || (channel->channelType() == BytePaint &&
                            channel->colorSpace() != QLatin1String("scalar"));
    }
    return false;
}

// Collects the merge nodes upstream of a node, not looking through their masks.
class UpstreamMergeNodesFinder : public OssShaderNetworkUtils::OssNodeWalkerUpstream
{
public:
    QList<OssSnBaseNode *> merges;

protected:
    bool visit(OssSnBaseNode *node) override
    {
        if (isMerge(node))
            merges.append(node);
        return true;
    }
    bool followInput(OssSnBaseNode *node, const QString &input) override
    {
        return !(isMerge(node) && input == MaskInput);
    }
};

// Looks downstream of a node, along preferred outputs and not into merge masks, for 8-bit
// paint that what flows there ends in.
class BakePointFinder : public OssShaderNetworkUtils::OssNodeWalkerDownstream
{
public:
    explicit BakePointFinder(OssSnBaseNode *start) : m_start(start) {}
    bool found = false;

protected:
    bool visit(OssSnBaseNode *node) override
    {
        if (node != m_start && holdsBytePaint(node)) {
            found = true;
            return false;
        }
        return true;
    }
    bool followConnection(OssSnBaseNode *node, const QString &outputPoint, OssSnBaseNode *target,
                          const QString &input) override
    {
        if (isMerge(target) && input == MaskInput)
            return false;
        return OssNodeWalkerDownstream::followConnection(node, outputPoint, target, input);
    }

private:
    OssSnBaseNode *m_start;
};

QList<OssSnBaseNode *> bakePointsAmong(const QList<OssSnBaseNode *> &nodes)
{
    QList<OssSnBaseNode *> bakePoints;
    for (OssSnBaseNode *node : nodes)
        if (OssShaderNetworkUtils::asTrueBakePointNode(node))
            bakePoints.append(node);
    return bakePoints;
}

// Bakes the bake points in one undo step, or writes Empty when there are none.
void bakeInOneStep(const QList<OssSnBaseNode *> &nodes, const char *empty, const QString &title,
                   bool includeUpToDate)
{
    if (nodes.isEmpty()) {
        OSS_DEBUG("%s", empty);
        return;
    }
    OssUndoManager::AutoMacro macro(title);
    OssShaderNetworkUtils::bakeBakePoints(nodes, true, includeUpToDate);
}

} // namespace

// --- bake points

void OssShaderNetworkView::bakeEmptyAndUpdateOutOfDateBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    bakeInOneStep(bakePointsAmong(m_network->getAllNodes()), "[ !! ] No Bake Point nodes found",
                  QStringLiteral("Smart Bake And Update"), true);
}

void OssShaderNetworkView::bakeSelectedBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    bakeInOneStep(bakePointsAmong(m_network->selectedNodes()),
                  "[ !! ] No Bake Point nodes are selected", QStringLiteral("Bake Selected"), true);
}

void OssShaderNetworkView::updateSelectedBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    // Only the selected update leaves bake points whose bake is still current alone.
    bakeInOneStep(bakePointsAmong(m_network->selectedNodes()),
                  "[ !! ] No Bake Point nodes are selected", QStringLiteral("Update Selected"),
                  false);
}

void OssShaderNetworkView::updateUpstreamBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> selection = m_network->selectedNodes();
    if (selection.isEmpty()) {
        OSS_DEBUG("[ !! ] No nodes are selected");
        return;
    }
    bakeInOneStep(OssShaderNetworkUtils::getUpstreamBakePointNodes(selection),
                  "[ !! ] No upstream Bake Point nodes found", QStringLiteral("Update Upstream"),
                  true);
}

void OssShaderNetworkView::updateDownstreamBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> selection = m_network->selectedNodes();
    if (selection.isEmpty()) {
        OSS_DEBUG("[ !! ] No nodes are selected");
        return;
    }
    bakeInOneStep(OssShaderNetworkUtils::getDownstreamBakePointNodes(selection),
                  "[ !! ] No downstream Bake Point nodes found",
                  QStringLiteral("Update Downstream"), true);
}

void OssShaderNetworkView::bakePaintBufferToNode(const OssSnBaseNode *Node)
{
    auto *imageSetNode =
        OssShaderNetworkUtils::asTrueImageSetNode(const_cast<OssSnBaseNode *>(Node));
    if (!imageSetNode)
        return;
    OssChannel *imageSet = imageSetNode->imageSet();
    if (!imageSet) {
        OSS_DEBUG("ImageSet is NULL");
        return;
    }
    if (OssCanvasWidget *canvas = OssCanvasManager::currentCanvas())
        canvas->handleBakeBehavior(imageSet);
}

// --- baking into a paint node and exporting into a geo-channel

namespace {

// The output point to bake or export: asked for when popups are allowed and there is a choice,
// else the preferred one. False when the user cancelled.
bool chooseOutputPoint(QWidget *parent, OssSnBaseNode *node, const QString &title,
                       const QString &label, QString *outputPoint)
{
    const QStringList outputs = node->outputPointNames();
    *outputPoint = node->prefferedOutputPoint();
    if (!OssApplication::popupsAllowed() || outputs.size() < 2)
        return true;
    bool ok = false;
    const QString chosen = QInputDialog::getItem(
        parent, title, label, outputs, qMax(0, outputs.indexOf(*outputPoint)), false, &ok);
    if (!ok)
        return false;
    *outputPoint = chosen;
    return true;
}

} // namespace

void OssShaderNetworkView::bakeToPaintableNode()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Bake to Paintable"));
    const QList<OssSnBaseNode *> selection = m_network->selectedNodes();
    if (selection.size() != 1) {
        macro.cancel();
        OssMessageBox::warning(this, tr("Bake to Paintable Node"),
                               tr("Only one node must be selected for baking to a paintable node"));
        return;
    }
    OssSnBaseNode *source = selection.first();
    if (source->outputPointCount() == 0) {
        macro.cancel();
        OssMessageBox::warning(this, tr("Bake to Paintable Node"),
                               tr("The node '%1' has no output to bake").arg(source->name()));
        return;
    }
    QString output;
    if (!chooseOutputPoint(this, source, tr("Bake to Paintable"),
                           tr("Select the output port to bake at:"), &output)) {
        macro.cancel();
        return;
    }
    bakePaintBufferToNode(source);

    // The image set the paint node shows, filled with the source's result.
    OssChannel *imageSet = OssImageSetUtils::duplicateImageSet(
        m_network->shadingGroup(), nullptr, QStringLiteral("Node_Bake_") + source->name());
    if (!imageSet) {
        OSS_DEBUG("ImageSet is NULL");
        macro.cancel();
        return;
    }
    OssImageSetUtils::bake(source, output, imageSet);
    OssSnBaseNode *paintable = m_network->createPaintableNode(imageSet->name());
    auto *paintNode = OssShaderNetworkUtils::asTrueImageSetNode(paintable);
    if (!paintNode) {
        OSS_DEBUG("PaintableNode is NULL");
        macro.cancel();
        return;
    }
    paintNode->setImageSet(imageSet, true);

    // What the source fed from that output, the paint node feeds now.
    for (const auto &link : source->outputConnections(output))
        link.first->setInputNode(link.second, paintable, paintable->prefferedOutputPoint());

    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(paintable)) {
        positionNodeManual(paintable, source, QPointF(Gap, -(gui->boundingRect().height() + Gap)));
        emit gui->posChanged(gui->pos());
    }
    m_network->clearSelection();
    paintable->setSelected(true);
    emit nodeAdded(paintable);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

void OssShaderNetworkView::exportToGeoChannel()
{
    exportToGeoChannel(nullptr, QString());
}

void OssShaderNetworkView::exportToGeoChannel(OssGeoImageSet *pGeoImageSet)
{
    exportToGeoChannel(pGeoImageSet, QString());
}

void OssShaderNetworkView::exportToGeoChannel(OssGeoImageSet *pGeoImageSet, QString OutputPointName)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> selection = m_network->selectedNodes();
    if (selection.size() != 1) {
        OssMessageBox::warning(this, tr("Export to Geo-Channel"),
                               tr("Only one node must be selected for exporting to a "
                                  "geo-channel."));
        return;
    }
    OssSnBaseNode *node = selection.first();
    OssEntity *pGeoEntity = m_network->geoEntity();
    if (!pGeoEntity) {
        OSS_DEBUG("pGeoEntity is NULL");
        return;
    }
    if (pGeoImageSet && pGeoImageSet->entity() != pGeoEntity) {
        OssMessageBox::warning(this, tr("Export to Geo-Channel"),
                               tr("Node and geo-channel must belong to the same object."));
        return;
    }
    if (!pGeoImageSet) {
        if (!OssApplication::popupsAllowed()) {
            OSS_DEBUG("[ !! ] Unable to request geo-channel from user");
            return;
        }
        const QList<OssGeoImageSet *> channels = pGeoEntity->geoChannels();
        if (channels.isEmpty()) {
            OssMessageBox::warning(this, tr("Export to Geo-Channel"),
                                   tr("No geo-channels are available to export into. Please "
                                      "add one."));
            return;
        }
        QStringList names;
        for (OssGeoImageSet *channel : channels)
            names << channel->name();
        bool ok = false;
        const QString chosen =
            QInputDialog::getItem(this, tr("Export to Geo-Channel"),
                                  tr("Select the geo-channel to export to:"), names, 0, false, &ok);
        pGeoImageSet = ok ? pGeoEntity->geoChannel(chosen) : nullptr;
        if (!pGeoImageSet) {
            OSS_DEBUG("pGeoImageSet is NULL");
            return;
        }
    }
    const QString imageSetName = QStringLiteral("Node_To_GeoChannel_") + pGeoImageSet->name();
    OssShadingGroup *group = m_network->shadingGroup();
    OssUndoManager::AutoMacro macro(tr("Export to Geo-Channel"));

    // A bake point whose bake is current hands over a copy of the image set it baked into.
    OssSnBakePointNode *bakePoint = OssShaderNetworkUtils::asTrueBakePointNode(node);
    OssChannel *baked = bakePoint && group ? group->channel(bakePoint->bakedImageSet()) : nullptr;
    if (baked && bakePoint->hasBakedResult() && bakePoint->isBakedResultUpToDate(false)) {
        OssChannel *copy = OssImageSetUtils::duplicateImageSet(group, baked, imageSetName);
        OssImageSetUtils::setGeoChannelImageSet(pGeoImageSet, copy);
        return;
    }

    QString output = OutputPointName;
    if (output.isEmpty() && !chooseOutputPoint(this, node, tr("Export to Geo-Channel"),
                                               tr("Select the output port to export:"), &output)) {
        macro.cancel();
        return;
    }
    if (!node->hasOutputPoint(output)) {
        macro.cancel();
        OSS_DEBUG("[ !! ] Node '%s' has no output point '%s'", qPrintable(node->name()),
                  qPrintable(output));
        return;
    }
    OssChannel *imageSet = OssImageSetUtils::createImageSetFromGeoChannel(
        group, pGeoImageSet, imageSetName,
        OssImageSetUtils::queryMaximumRequiredTextureResolutions(node));
    if (!imageSet) {
        OSS_DEBUG("ImageSet is NULL");
        macro.cancel();
        return;
    }
    OssImageSetUtils::setGeoChannelImageSet(pGeoImageSet, imageSet);
    OssImageSetUtils::bake(node, output, imageSet);
}

// --- blending colour space of merge nodes

void OssShaderNetworkView::autoUpdateUpstreamMergeNodeColorSpaceEnabledAttributes(
    OssSnBaseNode *EndPointNode)
{
    if (!EndPointNode) {
        OSS_DEBUG("EndPointNode is NULL");
        return;
    }
    OssSnNodeGraphViewContextManager *manager = OssSnNodeGraphViewContextManager::instance();
    const QString behaviour = manager->autoUpdateUpstreamMergeNodeColorspaceEnabled();
    if (behaviour == Leave || !holdsBytePaint(EndPointNode))
        return;

    UpstreamMergeNodesFinder finder;
    finder.walk(EndPointNode);
    QList<OssSnBaseNode *> disabled;
    for (OssSnBaseNode *merge : qAsConst(finder.merges))
        if (merge != EndPointNode && blendColorSpaceEnabled(merge) == 0)
            disabled.append(merge);
    if (disabled.isEmpty())
        return;

    bool change = behaviour == Change;
    if (behaviour == Prompt) {
        if (!OssApplication::popupsAllowed())
            return;
        const OssQuestionBox::Answer answer = OssQuestionBox::ask(
            OssGuiApplication::mainWindow(), tr("Update 'Blending Colorspace' of Merge Nodes"),
            tr("There are Merge nodes upstream of %1 which is set to represent 8bit (byte) "
               "color paint data.\nMerge nodes have an attribute named 'Use Blending "
               "Colorspace'. When this is set to 'Disable' for an 8-bit (byte) color paint "
               "channel, precision issues could occur and result in visual banding artefacts in "
               "your paint.\nWould you like to set the attribute 'Use Blending Colorspace' to "
               "'Enable' for those Merge nodes?")
                .arg(EndPointNode->name()));
        change = answer.button == QMessageBox::Yes;
        if (answer.dontShowAgain)
            manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(change ? Change : Leave);
    }
    if (!change)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Update Blending Colorspace"));
    for (OssSnBaseNode *merge : qAsConst(disabled))
        setBlendColorSpaceEnabled(merge, true);
}

void OssShaderNetworkView::setBlendingColorspaceOnMergeNodeCreation(OssSnBaseNode *mergeNode)
{
    if (!mergeNode) {
        OSS_DEBUG("MergeNode is NULL");
        return;
    }
    if (mergeNode->nodeAttributeValue(BlendAttribute).isNull())
        return;
    BakePointFinder finder(mergeNode);
    finder.walk(mergeNode);
    if ((blendColorSpaceEnabled(mergeNode) != 0) != finder.found)
        setBlendColorSpaceEnabled(mergeNode, finder.found);
}
