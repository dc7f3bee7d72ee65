#pragma once

#include "OssTestHost.h"

#include <memory>

class OssSnNodeGraphPluginCore;
class OssSnNodeGraphViewContextManager;
class OssSnNodeGraphWidget;

// The test host with the node-graph plug-in started in it, the same way the plug-in's entry
// starts it when the host loads the plug-in: the banner, the view-context manager with its
// palettes, and the node-creation actions, owned by a plug-in object that lives with the host.
class OssTestPluginHost : public OssTestHost
{
public:
    OssTestPluginHost();
    ~OssTestPluginHost() override;

    // Starts the host, then the plug-in.
    bool start() override;

    OssSnNodeGraphPluginCore *plugin() const { return m_plugin.get(); }
    OssSnNodeGraphViewContextManager *manager() const;
    // The palette's tab widget with the root view.
    OssSnNodeGraphWidget *nodeGraphWidget() const;

protected:
    QStringList leftovers() const override;

private:
    std::unique_ptr<OssSnNodeGraphPluginCore> m_plugin;
};
