#pragma once

#include "OssPluginInterface.h"

#include <QObject>

class OssShaderNetworkView;

// The plug-in object: the host's entry into the node-graph view of shader networks.
class OssShaderNetworkNodeGraphViewContextPlugin : public QObject, public OssPluginInterface
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

private slots:
    void createNodeCreationActions();
    void createNodeFromAction();

private:
    OssShaderNetworkView *currentShaderNetworkView();
};
