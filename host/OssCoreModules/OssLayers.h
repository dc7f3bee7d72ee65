#pragma once

#include "OssCoreModulesExport.h"

#include <QObject>
#include <QPointer>

class OssShaderNetwork;
class OssSnBaseNode;

// A layer shader seen as a shader of the layer stack.
class OSSCOREMODULES_EXPORT OssLayerShader : public QObject
{
    Q_OBJECT
public:
    explicit OssLayerShader(OssSnBaseNode *node);
    OssSnBaseNode *node() const;
    // A stack shader composes the layer stack; it has no displacement of its own.
    bool isStackShader() const;
};

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
    OssSnBaseNode *currentShader() const { return m_current; }
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

class OSSCOREMODULES_EXPORT OssLayerShaderUtils
{
public:
    static bool isLayerShaderNode(const OssSnBaseNode *node);
};

class OSSCOREMODULES_EXPORT OssLayerManager
{
public:
    // Connects Node's output point to the network's current-material proxy (one undo step).
    static bool connectNodeToCurrentMaterialProxy(OssShaderNetwork *network, OssSnBaseNode *node,
                                                  const QString &outputPoint, const QString &text);
};

// Holds layer refreshes back while large edits run.
class OSSCOREMODULES_EXPORT OssLayerRefreshSuspensionManager
{
public:
    static bool isSuspended() { return s_depth > 0; }
    static int refreshesHeldBack() { return s_heldBack; }
    // Asks for a refresh; while suspended it is held back and run once at the end.
    static void requestRefresh();
    static int refreshCount() { return s_refreshes; }

    class OSSCOREMODULES_EXPORT RefreshStateSuspender
    {
    public:
        RefreshStateSuspender();
        ~RefreshStateSuspender();
        RefreshStateSuspender(const RefreshStateSuspender &) = delete;
        RefreshStateSuspender &operator=(const RefreshStateSuspender &) = delete;
    };

private:
    static int s_depth;
    static int s_heldBack;
    static int s_refreshes;
};

// Merge nodes and their stream inputs.
class OSSCOREMODULES_EXPORT OssLayerStreamUtils
{
public:
    static bool isMergeNode(const OssSnBaseNode *node);
    // Whether Input is the base input of a merge node.
    static bool isBaseInput(const OssSnBaseNode *node, const QString &input);
    // Merges take whole streams on fixed inputs, whatever the stream's name.
    static QString baseInputName(const QString &streamName);
    static QString overInputName(const QString &streamName);
};
