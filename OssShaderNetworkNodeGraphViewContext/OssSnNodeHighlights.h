#pragma once

#include <OssShaderNetworkManager.h>

class OssChannel;
class OssSnBaseNode;

// GUI nodes and edges showing states the host keeps: the debug colours of nodes and inputs, the
// channel input node of the current channel, and the node under the pointer in the properties
// panel.
class OssSnNodeHighlights
{
public:
    // The old debug colours go, then the new ones are shown. Keys are object references.
    static void showDebugColours(const OssDebugNodeColours &rNewNodes,
                                 const OssDebugInputColours &rNewInputs,
                                 const OssDebugNodeColours &rOldNodes,
                                 const OssDebugInputColours &rOldInputs);
    // The channel input nodes of the current root network that paint the channel light up.
    static void highlightChannel(OssChannel *pImageSet);
    static void showHover(OssSnBaseNode *MouseOver, OssSnBaseNode *OldMouseOver);
};
