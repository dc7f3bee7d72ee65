#pragma once

class OssPluginHost;

// The node graph's node information commands that the application's own menu configuration files
// under "/Ossa/NodeGraph/" (the node graph plug-in makes the commands but no actions for them):
// "Dump Selected Node Info", "Upgrade Selected Node Info" and "Upgrade All Node Info". Each
// action runs the plug-in command of that name; a command no loaded plug-in has gets no action.
namespace OssNodeInfoActions {
void file(const OssPluginHost &plugins);
}
