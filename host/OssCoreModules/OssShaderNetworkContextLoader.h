#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QObject>

class OssSnBaseContext;
class OssSnBaseNode;

using OssSnContextList = QList<OssSnBaseContext *>;

// Makes the contexts of one context name for a new node from its type description.
class OSSCOREMODULES_EXPORT OssShaderNetworkContextLoader : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;
    // Creates and fills the node's contexts from the whole description text. The contexts are
    // children of the node; the host attaches them under the loader's name.
    virtual OssSnContextList load(const QString &description, OssSnBaseNode *node) = 0;
};
