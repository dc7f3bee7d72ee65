#pragma once

#include "OssCoreExport.h"

#include <QString>

// Carrier of named parameters: gives each Qt property of the object a display label.
class OSSCORE_EXPORT OssGroupParameterObject
{
public:
    virtual ~OssGroupParameterObject();
    // The label of a property; by default the name split at camel-case humps and capitalised
    // ("shakeToExtractTime" gives "Shake To Extract Time").
    virtual QString prettyPropertyName(const QString &Name) const;
};
