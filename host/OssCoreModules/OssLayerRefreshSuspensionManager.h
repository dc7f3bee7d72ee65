#pragma once

#include "OssCoreModulesExport.h"

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
