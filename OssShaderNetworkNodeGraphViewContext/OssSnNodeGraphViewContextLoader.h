#pragma once

#include <OssShaderNetworkContextLoader.h>

// Makes the view context of a new node from the "Contexts" section of its description: the
// context class, the UI node's GUI class, shape, colours, icon, edge stubs and input tags.
class OssSnNodeGraphViewContextLoader : public OssShaderNetworkContextLoader
{
    Q_OBJECT
public:
    using OssShaderNetworkContextLoader::OssShaderNetworkContextLoader;
    OssSnContextList load(const QString &description, OssSnBaseNode *node) override;
};
