#pragma once

#include "OssCoreModulesExport.h"

#include <QObject>

class OssSnBaseNode;

// A layer shader seen as a shader of the layer stack.
class OSSCOREMODULES_EXPORT OssLayerShader : public QObject
{
    Q_OBJECT
public:
    explicit OssLayerShader(OssSnBaseNode *node);
    OssSnBaseNode *node() const;
    // A stack shader composes the layer stack; it has no displacement of its own.
    bool isStackShader() const;
};
