// The bake commands of OssShaderNetworkView, and the upkeep of the merge nodes' "Use Blending
// Colorspace" when 8-bit paint is fed through them.

#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContextManager.h"

#include <OssApplication.h>
#include <OssCanvasManager.h>
#include <OssCanvasWidget.h>
#include <OssChannel.h>
#include <OssCustomAttribute.h>
#include <OssDebug.h>
#include <OssGuiApplication.h>
#include <OssQuestionBox.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkUtils.h>
#include <OssShadingGroup.h>
#include <OssSnBakePointNode.h>
#include <OssSnBaseNode.h>
#include <OssSnImageSetNodeBase.h>
#include <OssUndoManager.h>

#include <QSet>

namespace {

const QString BlendTag = QStringLiteral("_blend");
const QString ShaderInputTag = QStringLiteral("_shaderInput");
const QString MaskInput = QStringLiteral("Mask");
const QString BlendAttribute = QStringLiteral("BlendColorSpaceEnabled");
constexpr int BytePaint = OssChannel::UnsignedByte;
// A shader input of this colour space holds data that is never blended in a colour space.
constexpr int RawShaderInputColorSpace = 1;

// The preference's values.
const QString Prompt = QStringLiteral("Prompt");
const QString Change = QStringLiteral("Change");
const QString Leave = QStringLiteral("Leave");

bool isMerge(const OssSnBaseNode *node)
{
    return node->hasTag(BlendTag);
}

int blendColorSpaceEnabled(const OssSnBaseNode *node)
{
    const QVariant value = node->nodeAttributeValue(BlendAttribute);
    if (value.canConvert<OssUserEnum>() && value.userType() == qMetaTypeId<OssUserEnum>())
        return value.value<OssUserEnum>().currentValue();
    return value.toInt();
}

void setBlendColorSpaceEnabled(OssSnBaseNode *node, bool enabled)
{
    QVariant value = node->nodeAttributeValue(BlendAttribute);
    if (value.userType() == qMetaTypeId<OssUserEnum>()) {
        OssUserEnum choice = value.value<OssUserEnum>();
        choice.setCurrentValue(enabled ? 1 : 0);
        value = QVariant::fromValue(choice);
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

} // namespace

// --- bake points

void OssShaderNetworkView::bakeEmptyAndUpdateOutOfDateBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = bakePointsAmong(m_network->getAllNodes());
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ !! ] No Bake Point nodes found");
        return;
    }
    OssShaderNetworkUtils::bakeBakePoints(nodes, true, true);
}

void OssShaderNetworkView::bakeSelectedBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = bakePointsAmong(m_network->selectedNodes());
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ !! ] No Bake Point nodes are selected");
        return;
    }
    OssShaderNetworkUtils::bakeBakePoints(nodes, true, true);
}

void OssShaderNetworkView::updateSelectedBakePoints()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = bakePointsAmong(m_network->selectedNodes());
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ !! ] No Bake Point nodes are selected");
        return;
    }
    // Only the selected update leaves bake points whose bake is still current alone.
    OssShaderNetworkUtils::bakeBakePoints(nodes, true, false);
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
    const QList<OssSnBaseNode *> nodes =
        OssShaderNetworkUtils::getUpstreamBakePointNodes(selection);
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ !! ] No upstream Bake Point nodes found");
        return;
    }
    OssShaderNetworkUtils::bakeBakePoints(nodes, true, true);
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
    const QList<OssSnBaseNode *> nodes =
        OssShaderNetworkUtils::getDownstreamBakePointNodes(selection);
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ !! ] No downstream Bake Point nodes found");
        return;
    }
    OssShaderNetworkUtils::bakeBakePoints(nodes, true, true);
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
