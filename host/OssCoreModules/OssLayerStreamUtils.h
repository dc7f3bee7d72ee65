#pragma once

#include "OssCoreModulesExport.h"

#include <QString>

class OssSnBaseNode;

// Merge nodes and their stream inputs.
class OSSCOREMODULES_EXPORT OssLayerStreamUtils
{
public:
    static bool isMergeNode(const OssSnBaseNode *node);
    // Whether Input is the base input of a merge node.
    static bool isBaseInput(const OssSnBaseNode *node, const QString &input);
    // Merges take whole streams on fixed inputs, whatever the stream's name.
    static QString baseInputName(const QString &streamName);
    static QString overInputName(const QString &streamName);
};
