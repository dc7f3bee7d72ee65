#include "OssLayerRefreshSuspensionManager.h"

int OssLayerRefreshSuspensionManager::s_depth = 0;
int OssLayerRefreshSuspensionManager::s_heldBack = 0;
int OssLayerRefreshSuspensionManager::s_refreshes = 0;

void OssLayerRefreshSuspensionManager::requestRefresh()
{
    if (s_depth > 0)
        ++s_heldBack;
    else
        ++s_refreshes;
}

OssLayerRefreshSuspensionManager::RefreshStateSuspender::RefreshStateSuspender()
{
    ++s_depth;
}

OssLayerRefreshSuspensionManager::RefreshStateSuspender::~RefreshStateSuspender()
{
    if (--s_depth == 0 && s_heldBack > 0) {
        s_heldBack = 0;
        ++s_refreshes;
    }
}
