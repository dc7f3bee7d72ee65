#include "ZelGLTextureToken.h"

#include <atomic>

namespace {
std::atomic<int> g_liveTokens{0};
} // namespace

ZelGLTextureToken::ZelGLTextureToken()
{
    ++g_liveTokens;
}

ZelGLTextureToken::ZelGLTextureToken(const ZelGLTextureToken &)
{
    ++g_liveTokens;
}

ZelGLTextureToken::~ZelGLTextureToken()
{
    --g_liveTokens;
}

int ZelGLTextureToken::liveTokens()
{
    return g_liveTokens.load();
}
