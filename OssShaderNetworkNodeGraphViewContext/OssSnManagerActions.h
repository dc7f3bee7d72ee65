#pragma once

class OssSnNodeGraphViewContextManager;

// The view-context manager's own actions, made while it is built: Autoplace, the four
// port-list modes, the shake-to-extract toggle and the image manager's "As Tiled" and "As
// TriPlanar", each parented to the manager and firing one of its slots.
namespace OssSnManagerActions {
void create(OssSnNodeGraphViewContextManager *manager);
}
