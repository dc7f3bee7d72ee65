#include "OssTestPluginHost.h"

#include <OssShaderNetworkView.h>
#include <OssSnNodeGraphPluginCore.h>
#include <OssSnNodeGraphViewContextManager.h>
#include <OssSnNodeGraphWidget.h>

OssTestPluginHost::OssTestPluginHost() = default;

OssTestPluginHost::~OssTestPluginHost() = default;

bool OssTestPluginHost::start()
{
    if (m_plugin)
        return fail(QStringLiteral("the plug-in is started already"));
    if (!OssTestHost::start())
        return false;
    m_plugin = std::make_unique<OssSnNodeGraphPluginCore>();
    if (!m_plugin->start())
        return fail(QStringLiteral("the plug-in did not start"));
    if (!nodeGraphWidget() || !nodeGraphWidget()->view())
        return fail(QStringLiteral("the plug-in made no node graph view"));
    return true;
}

OssSnNodeGraphViewContextManager *OssTestPluginHost::manager() const
{
    return OssSnNodeGraphViewContextManager::instance();
}

OssSnNodeGraphWidget *OssTestPluginHost::nodeGraphWidget() const
{
    return manager()->nodeGraphWidget();
}

QStringList OssTestPluginHost::leftovers() const
{
    QStringList found = OssTestHost::leftovers();
    if (!m_plugin)
        return found;
    if (const int scenes = manager()->sceneCount())
        found << QStringLiteral("scenes left: %1").arg(scenes);
    if (OssSnNodeGraphWidget *widget = nodeGraphWidget()) {
        if (widget->count() != 1)
            found << QStringLiteral("node graph tabs open: %1").arg(widget->count());
        if (widget->view() && widget->view()->network())
            found << QStringLiteral("the root view still shows a network");
    }
    return found;
}
