#include "OssSnGeoChannelNodeGraphViewContext.h"

#include "ZelGLTextureToken.h"

#include <OssDebug.h>
#include <OssShaderNetworkUtils.h>
#include <OssSnBakePointNode.h>
#include <OssSnBroadcastTeleportNode.h>
#include <OssSnGeoChannelNode.h>
#include <OssSnTeleportNode.h>
#include <OssTeleportNodeManager.h>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

// --- bake point

OssSnBakePointNodeGraphViewContext::OssSnBakePointNodeGraphViewContext(QObject *parent)
    : OssSnNodeGraphViewContext(parent, true)
{}

void OssSnBakePointNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    OssSnBakePointNode *node = OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
    OssNgExtendedNode *gui = extendedNode();
    if (!node || !gui)
        return;
    m_geoIcon = gui->addIcon(QStringLiteral("GeoChannel"));
    m_rangeIcon = gui->addIcon(QStringLiteral("ActivePatchRange"));
    m_filterIcon = gui->addIcon(QStringLiteral("BakePointFiltered"));
    connect(node, SIGNAL(geoChannelNameChanged(QString)), this, SLOT(onGeoChannelChanged()));
    connect(node, SIGNAL(syncGeoChannelChanged(bool)), this, SLOT(onGeoChannelChanged()));
    connect(node, SIGNAL(bakedStateChanged()), this, SLOT(onBakedStateChanged()));
    connect(node, SIGNAL(limitBakeChanged(bool)), this, SLOT(onLimitBakeChanged()));
    connect(node, SIGNAL(filterCollectionEnabledChanged(bool)), this, SLOT(onFilteredChanged()));
    connect(node, SIGNAL(filterCollectionTextChanged(QString)), this, SLOT(onFilteredChanged()));
    onBakedStateChanged();
    onGeoChannelChanged();
    onLimitBakeChanged();
    onFilteredChanged();
}

bool OssSnBakePointNodeGraphViewContext::attributeIsStub(const QString &name, bool flag) const
{
    if (name == QLatin1String("limitBakeBackground") && !flag)
        return false;
    return OssSnNodeGraphViewContext::attributeIsStub(name, flag);
}

void OssSnBakePointNodeGraphViewContext::onBakedStateChanged()
{
    OssSnBakePointNode *node = OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
    OssNgExtendedNode *gui = extendedNode();
    if (!node || !gui)
        return;
    gui->setMark(OssNgExtendedNode::BakedMark, node->hasBakedResult());
    gui->setMark(OssNgExtendedNode::StaleMark, !node->isBakedResultUpToDate(false));
    node->emitNodeStateRefreshed();
}

void OssSnBakePointNodeGraphViewContext::onGeoChannelChanged()
{
    OssSnBakePointNode *node = OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
    if (OssNgExtendedNode *gui = extendedNode(); gui && node)
        gui->setIconVisible(m_geoIcon, node->syncGeoChannel() && !node->geoChannelName().isEmpty());
    updateGUIText();
}

void OssSnBakePointNodeGraphViewContext::onLimitBakeChanged()
{
    OssSnBakePointNode *node = OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
    if (OssNgExtendedNode *gui = extendedNode(); gui && node)
        gui->setIconVisible(m_rangeIcon, node->limitBake() && !node->limitBakeRange().isEmpty());
}

void OssSnBakePointNodeGraphViewContext::onFilteredChanged()
{
    OssSnBakePointNode *node = OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
    if (OssNgExtendedNode *gui = extendedNode(); gui && node)
        gui->setIconVisible(m_filterIcon, node->filterCollectionEnabled() &&
                                              !node->filterCollectionText().isEmpty());
}

void OssSnBakePointNodeGraphViewContext::updateGUIText()
{
    OssSnBakePointNode *node = OssShaderNetworkUtils::asTrueBakePointNode(parentNode());
    if (!node)
        return;
    QString text = node->name();
    if (node->syncGeoChannel() && !node->geoChannelName().isEmpty())
        text += QStringLiteral(" (") + node->geoChannelName() + QLatin1Char(')');
    OssSnNodeGraphViewContext::setText(text);
}

void OssSnBakePointNodeGraphViewContext::setText(QString)
{
    updateGUIText();
}

// --- geo-channel

OssSnGeoChannelNodeGraphViewContext::OssSnGeoChannelNodeGraphViewContext(QObject *parent)
    : OssSnNodeGraphViewContext(parent, true)
{}

void OssSnGeoChannelNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    OssNgExtendedNode *gui = extendedNode();
    if (!gui)
        return;
    m_geoIcon = gui->addIcon(QStringLiteral("GeoChannel"));
    if (auto *node = qobject_cast<OssSnGeoChannelNode *>(parentNode())) {
        connect(node, &OssSnGeoChannelNode::imageSetValidChanged, this,
                &OssSnGeoChannelNodeGraphViewContext::onGeoChannelImageSetValidChanged);
        connect(node, &OssSnGeoChannelNode::geoChannelNameChanged, this,
                &OssSnGeoChannelNodeGraphViewContext::updateGUIText);
        onGeoChannelImageSetValidChanged(node->imageSetValid());
    }
    updateGUIText();
}

void OssSnGeoChannelNodeGraphViewContext::onGeoChannelImageSetValidChanged(bool Valid)
{
    if (OssNgExtendedNode *gui = extendedNode())
        gui->setIconVisible(m_geoIcon, Valid);
}

void OssSnGeoChannelNodeGraphViewContext::updateGUIText()
{
    OssSnBaseNode *node = parentNode();
    if (!node) {
        OSS_DEBUG("ParentNode is NULL");
        return;
    }
    QString text = node->name();
    if (auto *geo = qobject_cast<OssSnGeoChannelNode *>(node))
        if (!geo->geoChannelName().isEmpty())
            text += QStringLiteral(" (") + geo->geoChannelName() + QLatin1Char(')');
    OssSnNodeGraphViewContext::setText(text);
}

void OssSnGeoChannelNodeGraphViewContext::setText(QString)
{
    updateGUIText();
}

// --- teleport

OssSnBaseTeleportNodeGraphViewContext::OssSnBaseTeleportNodeGraphViewContext(QObject *parent)
    : OssSnNodeGraphViewContext(parent, true)
{}

void OssSnBaseTeleportNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    OssSnBaseNode *node = parentNode();
    OssNgExtendedNode *gui = extendedNode();
    if (!node || !gui)
        return;
    connect(node, SIGNAL(channelNameChanged(QString)), this, SLOT(updateNodeState()));
    connect(node, SIGNAL(updateState()), this, SLOT(updateNodeState()));
    const bool broadcast = qobject_cast<OssSnBroadcastTeleportNode *>(node) != nullptr;
    gui->addIcon(broadcast ? QStringLiteral("BroadcastNodeSilent")
                           : QStringLiteral("ReceiverNodeSilent"));
    gui->addIcon(broadcast ? QStringLiteral("BroadcastNodeSignal")
                           : QStringLiteral("ReceiverNodeSignal"));
    gui->setIconVisible(0, true);
    updateNodeState();
}

void OssSnBaseTeleportNodeGraphViewContext::updateNodeState()
{
    auto *node = qobject_cast<OssSnTeleportNode *>(parentNode());
    OssNgExtendedNode *gui = extendedNode();
    if (!node || !gui)
        return;
    const QString channel = node->channelName();
    OssSnNodeGraphViewContext::setText(
        channel.isEmpty() ? node->name() : QStringLiteral("%1 (%2)").arg(node->name(), channel));
    bool signalling = false;
    if (OssTeleportNodeManager *manager = node->teleportNodeManager()) {
        if (qobject_cast<OssSnBroadcastTeleportNode *>(node))
            signalling = manager->broadcastNodeForChannel(channel) == node &&
                         !manager->receiversOfChannel(channel).isEmpty();
        else
            signalling = manager->broadcastNodeForChannel(channel) != nullptr;
    }
    gui->setIconVisible(0, !signalling);
    gui->setIconVisible(1, signalling);
}

void OssSnBaseTeleportNodeGraphViewContext::setText(QString)
{
    updateNodeState();
}
