#include "OssSnNodeGraphViewContextFactories.h"

#include "ZelGLTextureToken.h"

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

void OssSnNodeGraphViewContextFactories::registerAll()
{
    OssClassFactory *factories[] = {
        new OssOssSnNodeGraphViewContextClassFactory,
        new OssOssSnBakePointNodeGraphViewContextClassFactory,
        new OssOssSnGeoChannelNodeGraphViewContextClassFactory,
        new OssOssSnBaseTeleportNodeGraphViewContextClassFactory,
        new OssOssSnGroupNodeGraphViewContextClassFactory,
        new OssOssSnUINodeGraphViewContextClassFactory,
    };
    for (OssClassFactory *factory : factories)
        factory->registerMe(factory);
}
