#include "OssSnUINodeGraphViewContext.h"

#include "OssShaderNetworkView.h"
#include "ZelGLTextureToken.h"

#include <OssColor.h>
#include <OssDebug.h>
#include <OssNgBackdropNode.h>
#include <OssNgUINodes.h>
#include <OssNgUndo.h>
#include <OssShaderNetworkManager.h>
#include <OssUndoManager.h>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

namespace {

const QString ZOrderName = QStringLiteral("ZOrder");

} // namespace

OssSnUINodeGraphViewContext::OssSnUINodeGraphViewContext(QObject *parent)
    : OssSnNodeGraphViewContext(parent, false)
{}

void OssSnUINodeGraphViewContext::setGuiNodeClass(const QString &guiNodeClass)
{
    m_guiNodeClass = guiNodeClass;
    if (guiNode() || !parentNode())
        return;
    OssNgNode *gui = nullptr;
    if (guiNodeClass == QLatin1String("Backdrop"))
        gui = new OssNgBackdropNode;
    else if (guiNodeClass == QLatin1String("Dot"))
        gui = new OssNgDotNode;
    else
        gui = new OssNgUINode;
    adoptGuiNode(gui);
    upgradeOldBadBackdrop();
}

void OssSnUINodeGraphViewContext::initializeGui()
{
    if (!guiNode())
        setGuiNodeClass(m_guiNodeClass);
    OssSnNodeGraphViewContext::initializeGui();
    OssSnBaseNode *node = parentNode();
    if (!node || !guiNode())
        return;
    // The name may have been given after the context was made (at creation or on loading).
    setText(node->name());
    using Ctx = OssSnUINodeGraphViewContext;
    connect(node, &OssSnBaseNode::containerChildrenRefreshed, this,
            &Ctx::onContainerChildrenRefreshed);
    connect(node, &OssSnBaseNode::containerStretchedBy, this, &Ctx::onContainerStretchedBy);
    connect(node, &OssSnBaseNode::containerPeersStretched, this, &Ctx::onContainerPeersStretched);
    connect(node, &OssSnBaseNode::containerRespacedWrt, this, &Ctx::onContainerRespacedWrt);
    connect(node, &OssSnBaseNode::containerMovedDown, this, &Ctx::onContainerMovedDown);
    connect(node, &OssSnBaseNode::containerMovedToFreshLocation, this,
            &Ctx::onContainerMovedToFreshLocation);
    connect(node, &OssSnBaseNode::zOrderChanged, this, &Ctx::onZOrderChanged);
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode())) {
        connect(backdrop, &OssNgBackdropNode::zOrderChanged, this, &Ctx::onZOrderChanged);
        connect(backdrop, &OssNgBackdropNode::resizedByUser, this, &Ctx::onGuiNodeResizedByUser);
    }
    for (const OssCustomAttribute &attribute : node->userAttributes())
        applyAttribute(attribute);
}

void OssSnUINodeGraphViewContext::applyAttribute(const OssCustomAttribute &attribute)
{
    OssNgNode *gui = guiNode();
    OssSnBaseNode *node = parentNode();
    if (!gui || !node || !attribute.isValid())
        return;
    const QString name = attribute.name();
    const QMetaObject *meta = gui->metaObject();
    if (name == QLatin1String("BackgroundColor")) {
        if (meta->indexOfMethod("setNodeBackgroundColour(QColor)") < 0) {
            OSS_DEBUG("[ !! ] Invalid attribute 'BackgroundColor' on node '%s'",
                      qPrintable(node->path()));
            return;
        }
        const OssColor colour = attribute.value().canConvert<OssColor>()
                                    ? attribute.value().value<OssColor>()
                                    : OssColor::fromString(attribute.value().toString());
        QColor qcolour;
        qcolour.setRgbF(colour.red(), colour.green(), colour.blue(), colour.alpha());
        QMetaObject::invokeMethod(gui, "setNodeBackgroundColour", Qt::DirectConnection,
                                  Q_ARG(QColor, qcolour));
    } else if (name == QLatin1String("TitleText")) {
        if (meta->indexOfMethod("setTitleText(QString)") >= 0)
            QMetaObject::invokeMethod(gui, "setTitleText", Qt::DirectConnection,
                                      Q_ARG(QString, attribute.value().toString()));
    } else if (name == QLatin1String("Label")) {
        if (meta->indexOfMethod("setLabel(QString)") >= 0)
            QMetaObject::invokeMethod(gui, "setLabel", Qt::DirectConnection,
                                      Q_ARG(QString, attribute.value().toString()));
    } else if (name == ZOrderName) {
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(gui))
            backdrop->setZOrder(attribute.value().toInt());
    }
}

void OssSnUINodeGraphViewContext::onUserAttributeChanged(OssCustomAttribute attribute,
                                                         OssSnBaseNode *)
{
    applyAttribute(attribute);
}

QList<OssSnBaseNode *> OssSnUINodeGraphViewContext::childrenNodes()
{
    QList<OssSnBaseNode *> children;
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode());
    if (!backdrop)
        return children;
    backdrop->refreshChildrenList();
    for (const QPointer<OssNgNode> &child : backdrop->childrenList())
        if (auto *node = child ? qobject_cast<OssSnBaseNode *>(child->parent()) : nullptr)
            children.append(node);
    return children;
}

void OssSnUINodeGraphViewContext::setText(QString text)
{
    OssNgNode *gui = guiNode();
    if (!gui)
        return;
    // A backdrop shows its title (the "TitleText" attribute) in place of the name.
    if (qobject_cast<OssNgBackdropNode *>(gui))
        return;
    gui->setText(text);
}

// --- containers

OssShaderNetworkView *OssSnUINodeGraphViewContext::containerView()
{
    return currentView();
}

void OssSnUINodeGraphViewContext::onContainerChildrenRefreshed(QList<OssSnBaseNode *> MemberNodes,
                                                               bool containerChildrenRefreshed)
{
    if (OssShaderNetworkView *view = containerView())
        view->wrapContainerAround(parentNode(), MemberNodes, containerChildrenRefreshed);
}

void OssSnUINodeGraphViewContext::onContainerStretchedBy(OssSnBaseNode *ReferenceNode)
{
    if (OssShaderNetworkView *view = containerView())
        view->stretchContainerBy(parentNode(), ReferenceNode);
}

void OssSnUINodeGraphViewContext::onContainerPeersStretched(
    QList<OssSnBaseNode *> ContainerNodeToStretchList)
{
    OssShaderNetworkView *view = containerView();
    if (!view)
        return;
    for (OssSnBaseNode *peer : ContainerNodeToStretchList)
        if (!qobject_cast<OssNgBackdropNode *>(guiNodeOf(peer)) && peer)
            OSS_DEBUG("[ !! ] Invalid container gui node found for node '%s'",
                      qPrintable(peer->name()));
    view->uniformariseContainers(ContainerNodeToStretchList);
}

void OssSnUINodeGraphViewContext::onContainerRespacedWrt(OssSnBaseNode *ReferenceNode)
{
    OssShaderNetworkView *view = containerView();
    OssSnBaseNode *node = parentNode();
    if (!view || !node)
        return;
    OSS_DEBUG("[ -- ] About to respace container '%s' wrt '%s'", qPrintable(node->name()),
              qPrintable(ReferenceNode ? ReferenceNode->name() : QString()));
    view->respaceContainer(node, ReferenceNode);
}

void OssSnUINodeGraphViewContext::onContainerMovedDown(OssSnBaseNode *ReferenceNode)
{
    OssShaderNetworkView *view = containerView();
    OssSnBaseNode *node = parentNode();
    if (!view || !node)
        return;
    OSS_DEBUG("[ -- ] About to move container '%s' down wrt to %s'", qPrintable(node->name()),
              qPrintable(ReferenceNode ? ReferenceNode->name() : QString()));
    view->moveContainerDown(node, ReferenceNode);
}

void OssSnUINodeGraphViewContext::onContainerMovedToFreshLocation(bool PreserveY)
{
    if (OssShaderNetworkView *view = containerView())
        view->moveContainerToFreshLocation(parentNode(), PreserveY);
}

void OssSnUINodeGraphViewContext::onGuiNodeResizedByUser(QRectF OldRect)
{
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode());
    OssSnBaseNode *node = parentNode();
    if (!backdrop || !node)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Resize %1").arg(node->name()));
    // The backdrop is already where the user left it; the step records the change.
    macro.addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop), false);
    if (OssShaderNetworkView *view = currentView())
        view->settleContainersAround(node, OldRect);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

// --- z-order

void OssSnUINodeGraphViewContext::onZOrderChanged(int ZOrder)
{
    OssSnBaseNode *node = parentNode();
    if (!node || !node->exists(ZOrderName))
        return;
    OssCustomAttribute attribute = node->userAttribute(ZOrderName);
    // Equal values change nothing: the attribute and the GUI would echo each other.
    if (attribute.value().toInt() == ZOrder)
        return;
    attribute.setValue(ZOrder);
    node->setUserAttribute(attribute, true);
}

// --- old files

bool OssSnUINodeGraphViewContext::upgradeOldBadBackdrop()
{
    OssSnBaseNode *node = parentNode();
    if (!node || !node->pathKey().isEmpty() || m_guiNodeClass != QLatin1String("Backdrop"))
        return false;
    OssShaderNetworkManager *manager = OssShaderNetworkManager::instance();
    const QString key = QStringLiteral("Misc/Backdrop");
    node->setPathKey(key);
    node->setVersionUUID(
        manager->hashStringForVersionUUID(manager->convertPathKeyToVersionUUID(key)));
    return manager->upgradeNode(node);
}
