#pragma once

#include "OssPluginInterface.h"
#include "OssSnNodeGraphPluginCore.h"

// The plug-in object: the host's entry into the node-graph view of shader networks. It adds the
// metadata and the host's plug-in interface to the plug-in's start-up and actions.
class OssShaderNetworkNodeGraphViewContextPlugin : public OssSnNodeGraphPluginCore,
                                                   public OssPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.halvern.ossa.pluginterface/1.0")
    Q_INTERFACES(OssPluginInterface)
public:
    OssShaderNetworkNodeGraphViewContextPlugin() = default;

    bool initialize() override;
    bool uninitialize() override;
    ~OssShaderNetworkNodeGraphViewContextPlugin() override;
    QString name() const override;
    QString description() const override;
    QString authorName() const override;
    QString legalNotice() const override;
    int version() const override;
};
