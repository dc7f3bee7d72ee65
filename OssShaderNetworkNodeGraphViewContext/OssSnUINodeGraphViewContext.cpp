#include "OssSnUINodeGraphViewContext.h"

#include "ZelGLTextureToken.h"

#include <OssColor.h>
#include <OssDebug.h>
#include <OssNgBackdropNode.h>
#include <OssNgUINodes.h>
#include <OssShaderNetworkManager.h>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

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
}

void OssSnUINodeGraphViewContext::initializeGui()
{
    if (!guiNode())
        setGuiNodeClass(m_guiNodeClass);
    OssSnNodeGraphViewContext::initializeGui();
    OssSnBaseNode *node = parentNode();
    if (!node || !guiNode())
        return;
    if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode())) {
        connect(backdrop, &OssNgBackdropNode::zOrderChanged, this,
                &OssSnUINodeGraphViewContext::onZOrderChanged);
        // A new backdrop is titled after its unique name.
        if (node->userAttribute(QStringLiteral("TitleText")).value().toString().isEmpty())
            backdrop->setTitleText(node->name());
    }
    for (const OssCustomAttribute &attribute : node->userAttributes())
        applyAttribute(attribute);
}

void OssSnUINodeGraphViewContext::applyAttribute(const OssCustomAttribute &attribute)
{
    OssNgNode *gui = guiNode();
    OssSnBaseNode *node = parentNode();
    if (!gui || !node)
        return;
    const QString name = attribute.name();
    const QMetaObject *meta = gui->metaObject();
    if (name == QLatin1String("BackgroundColor")) {
        if (meta->indexOfMethod("setNodeBackgroundColour(QColor)") < 0) {
            OSS_DEBUG("[ !! ] Invalid attribute 'BackgroundColor' on node '%s'",
                      qPrintable(node->name()));
            return;
        }
        const OssColor colour = attribute.value().canConvert<OssColor>()
                                    ? attribute.value().value<OssColor>()
                                    : OssColor::fromString(attribute.value().toString());
        QColor qcolour;
        qcolour.setRgbF(colour.red(), colour.green(), colour.blue(), colour.alpha());
        QMetaObject::invokeMethod(gui, "setNodeBackgroundColour", Q_ARG(QColor, qcolour));
    } else if (name == QLatin1String("TitleText")) {
        if (meta->indexOfMethod("setTitleText(QString)") >= 0 &&
            !attribute.value().toString().isEmpty())
            QMetaObject::invokeMethod(gui, "setTitleText",
                                      Q_ARG(QString, attribute.value().toString()));
    } else if (name == QLatin1String("Label")) {
        if (meta->indexOfMethod("setLabel(QString)") >= 0)
            QMetaObject::invokeMethod(gui, "setLabel",
                                      Q_ARG(QString, attribute.value().toString()));
    } else if (name == QLatin1String("ZOrder")) {
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(gui))
            backdrop->setZOrder(attribute.value().toInt());
    }
}

void OssSnUINodeGraphViewContext::onUserAttributeChanged(OssCustomAttribute attribute,
                                                         OssSnBaseNode *)
{
    applyAttribute(attribute);
}

void OssSnUINodeGraphViewContext::setText(QString text)
{
    OssNgNode *gui = guiNode();
    if (!gui)
        return;
    // A backdrop or note without a title of its own shows the node's name.
    const bool titled =
        parentNode() &&
        !parentNode()->userAttribute(QStringLiteral("TitleText")).value().toString().isEmpty();
    if (!titled && gui->metaObject()->indexOfMethod("setTitleText(QString)") >= 0)
        QMetaObject::invokeMethod(gui, "setTitleText", Q_ARG(QString, text));
    gui->setText(text);
}

void OssSnUINodeGraphViewContext::onZOrderChanged(int zOrder)
{
    OssSnBaseNode *node = parentNode();
    if (!node)
        return;
    // Written back only when it differs, so the attribute and the GUI do not echo.
    if (node->userAttribute(QStringLiteral("ZOrder")).value().toInt() != zOrder ||
        !node->exists(QStringLiteral("ZOrder")))
        node->setUserAttribute(OssCustomAttribute(QStringLiteral("ZOrder"), zOrder), false);
}

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
