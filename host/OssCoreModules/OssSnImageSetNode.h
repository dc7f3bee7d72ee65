#pragma once

#include "OssCoreModulesExport.h"
#include "OssSnImageSetNodeBase.h"

// A node that shows an image set.
class OSSCOREMODULES_EXPORT OssSnImageSetNode : public OssSnImageSetNodeBase
{
    Q_OBJECT
public:
    using OssSnImageSetNodeBase::OssSnImageSetNodeBase;
};
