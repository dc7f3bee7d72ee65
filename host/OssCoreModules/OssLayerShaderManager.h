#pragma once

#include "OssCoreModulesExport.h"

#include <QObject>
#include <QPointer>

class OssLayerShader;
class OssShaderNetwork;
class OssSnBaseNode;

// Layer shaders, the current shader and system shaders.
class OSSCOREMODULES_EXPORT OssLayerShaderManager : public QObject
{
    Q_OBJECT
public:
    static OssLayerShaderManager *instance();
    // System shaders are the host's own: the current-material proxy and shaders the host keeps
    // under "_System/". With IncludeProxies false the proxy does not count.
    static bool isSystemShaderNode(const OssSnBaseNode *node, bool includeProxies);
    bool isLayerShader(const OssSnBaseNode *node) const;
    OssSnBaseNode *currentShader() const;
    void setCurrentShader(OssSnBaseNode *node);
    // The network's current-material proxy node (tag "_currentMaterialProxy"), or null.
    OssSnBaseNode *getCurrentMaterialProxyShader(const OssShaderNetwork *network) const;
    OssLayerShader *getLayerShader(OssSnBaseNode *node) const;

signals:
    void currentShaderChanged(OssSnBaseNode *node);

private:
    explicit OssLayerShaderManager(QObject *parent = nullptr);
    QPointer<OssSnBaseNode> m_current;
};
