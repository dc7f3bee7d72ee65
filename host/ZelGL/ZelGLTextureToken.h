#pragma once

#include <QtGlobal>

#if defined(ZELGL_LIBRARY)
#define ZELGL_EXPORT Q_DECL_EXPORT
#else
#define ZELGL_EXPORT Q_DECL_IMPORT
#endif

// A claim on the renderer's texture cache. Holding one keeps the cache alive; the renderer frees
// the cache when the last token goes. Code that may draw textures holds a static token.
class ZELGL_EXPORT ZelGLTextureToken
{
public:
    ZelGLTextureToken();
    ~ZelGLTextureToken();
    ZelGLTextureToken(const ZelGLTextureToken &);
    ZelGLTextureToken &operator=(const ZelGLTextureToken &) = default;

    // Tokens alive in the process.
    static int liveTokens();
};
