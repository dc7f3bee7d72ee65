#include "OssSnGroupNodeGraphViewContext.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"
#include "ZelGLTextureToken.h"

#include <OssDebug.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssSnMaterialNode.h>
#include <OssSnMultiChannelBakePointNode.h>
#include <OssSnMultiChannelBottomTransparencyNode.h>
#include <OssSnMultiChannelGroupNode.h>
#include <OssSnMultiChannelMergeNode.h>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

OssSnGroupNodeGraphViewContext::OssSnGroupNodeGraphViewContext(QObject *parent)
    : OssSnNodeGraphViewContext(parent, true)
{}

OssSnGroupNodeGraphViewContext::~OssSnGroupNodeGraphViewContext()
{
    // The subgraph view belongs to this context, wherever its tab is.
    delete m_view.data();
}

void OssSnGroupNodeGraphViewContext::initializeGui()
{
    OssSnNodeGraphViewContext::initializeGui();
    auto *group = qobject_cast<OssSnGroupNode *>(parentNode());
    if (!group)
        return;
    OssSnNodeGraphViewContextManager::instance()->registerGroupNetwork(group->groupNetwork(),
                                                                       group);
    connect(group, &OssSnBaseNode::nameChanged, this,
            &OssSnGroupNodeGraphViewContext::onNameChanged);
    connect(group, &OssSnGroupNode::openNodeGraph, this,
            &OssSnGroupNodeGraphViewContext::showGroupNodeTab);
    // The tab goes when the group is deregistered: the manager, which hears every
    // deregistration once, hands it to the removed group's own context only.
    if (auto *multi = qobject_cast<OssSnMultiChannelGroupNode *>(group))
        connect(multi, &OssSnMultiChannelGroupNode::validityChanged, this,
                &OssSnGroupNodeGraphViewContext::updateCategory);
    updateCategory();
}

void OssSnGroupNodeGraphViewContext::updateCategory()
{
    OssNgExtendedNode *gui = extendedNode();
    OssSnBaseNode *node = parentNode();
    if (!gui || !node)
        return;
    QString category;
    int shape = shapeType();
    if (auto *multi = qobject_cast<OssSnMultiChannelGroupNode *>(node)) {
        shape = multi->isValid() ? OssNgNode::MultiChannelGroupShape : OssNgNode::GroupShape;
        if (!multi->isValid())
            category = QStringLiteral("MultiChannelInvalid");
        else if (qobject_cast<OssSnMultiChannelMergeNode *>(node))
            category = QStringLiteral("MultiChannelMerge");
        else if (qobject_cast<OssSnMultiChannelBakePointNode *>(node))
            category = QStringLiteral("MultiChannelBakePoint");
        else if (qobject_cast<OssSnMultiChannelBottomTransparencyNode *>(node))
            category = QStringLiteral("MultiChannelBottomTransparency");
    } else if (qobject_cast<OssSnMaterialNode *>(node)) {
        category = QStringLiteral("MultiChannelMaterial");
        shape = OssNgNode::MaterialShape;
    }
    if (!category.isEmpty())
        gui->setCategory(category);
    gui->setShapeType(shape);
    gui->updateShape();
}

QString OssSnGroupNodeGraphViewContext::versionHashSource() const
{
    const OssSnBaseNode *node = parentNode();
    if (!node) {
        OSS_DEBUG("ParentNode is NULL");
        return QString();
    }
    if (qobject_cast<const OssSnMultiChannelGroupNode *>(node))
        return QString();
    return OssSnNodeGraphViewContext::versionHashSource();
}

void OssSnGroupNodeGraphViewContext::showGroupNodeTab()
{
    auto *group = qobject_cast<OssSnGroupNode *>(parentNode());
    OssSnNodeGraphWidget *widget = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    if (!group || !widget)
        return;
    OssShaderNetwork *inner = group->groupNetwork();
    if (!m_view) {
        m_view = new OssShaderNetworkView;
        m_view->setNetwork(inner);
        m_view->setScene(OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(inner));
        m_view->init();
        m_view->setNavigationControlType(widget->navigationControlType());
    }
    int index = widget->indexOf(m_view);
    if (index < 0)
        index = widget->addTab(m_view, group->name());
    widget->setCurrentIndex(index);
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(inner);
}

void OssSnGroupNodeGraphViewContext::hideGroupNodeTab(OssShaderNetwork *, OssSnBaseNode *node)
{
    if (node != parentNode() || !m_view)
        return;
    if (OssSnNodeGraphWidget *widget =
            OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget()) {
        const int index = widget->indexOf(m_view);
        if (index > 0)
            widget->removeTab(index);
    }
}

void OssSnGroupNodeGraphViewContext::onNameChanged(QString name)
{
    OssSnNodeGraphWidget *widget = OssSnNodeGraphViewContextManager::instance()->nodeGraphWidget();
    if (widget && m_view) {
        const int index = widget->indexOf(m_view);
        if (index > 0)
            widget->setTabText(index, name);
    }
}
