#include "OssShaderNetworkNodeGraphViewContextPlugin.h"

#include "ZelGLTextureToken.h"

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

OssShaderNetworkNodeGraphViewContextPlugin::~OssShaderNetworkNodeGraphViewContextPlugin() = default;

bool OssShaderNetworkNodeGraphViewContextPlugin::initialize()
{
    return start();
}

bool OssShaderNetworkNodeGraphViewContextPlugin::uninitialize()
{
    return true;
}

QString OssShaderNetworkNodeGraphViewContextPlugin::name() const
{
    return tr("Node Graph View Context");
}

QString OssShaderNetworkNodeGraphViewContextPlugin::description() const
{
    return tr("Node Graph View of the Shader Network");
}

QString OssShaderNetworkNodeGraphViewContextPlugin::authorName() const
{
    return QStringLiteral("The Ossa node graph team");
}

QString OssShaderNetworkNodeGraphViewContextPlugin::legalNotice() const
{
    return QStringLiteral("Part of Ossa. All rights reserved by its authors.");
}

int OssShaderNetworkNodeGraphViewContextPlugin::version() const
{
    return 1;
}
