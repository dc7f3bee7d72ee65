#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnImageSetNodeBase.h"

// A paint node: an image set node that painting writes into.
class OSSCOREMODULES_EXPORT OssSnChannelInputNode : public OssSnImageSetNodeBase
{
    Q_OBJECT
public:
    using OssSnImageSetNodeBase::OssSnImageSetNodeBase;
};
