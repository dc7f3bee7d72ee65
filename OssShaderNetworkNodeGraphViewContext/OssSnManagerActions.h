#pragma once

class OssSnNodeGraphViewContextManager;

// The view-context manager's own actions, made while it is built: Autoplace, the four
// port-list modes and the shake-to-extract toggle, each parented to the manager and firing one
// of its slots. (The two image drops come with drop handling.)
namespace OssSnManagerActions {
void create(OssSnNodeGraphViewContextManager *manager);
}
