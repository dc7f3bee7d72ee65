#pragma once

#include "OssCoreModulesExport.h"

#include <QObject>
#include <QStringList>

class OssSnBaseNode;
class QMimeData;

// Material and custom procedural archives as dragged things, and merge auto-connection.
class OSSCOREMODULES_EXPORT OssMaterialPaintManager : public QObject
{
    Q_OBJECT
public:
    static OssMaterialPaintManager *instance();
    bool draggableMaterialType(const QMimeData *mimeData) const;
    bool draggableCustomProceduralType(const QMimeData *mimeData) const;
    QStringList pathListFromMimeData(const QMimeData *mimeData) const;
    // Feeds the selected node's preferred output into the merge's "Over" input when free,
    // else its "Base" (one undo step).
    bool autoconnectMergeNode(OssSnBaseNode *selected, OssSnBaseNode *merge);

private:
    explicit OssMaterialPaintManager(QObject *parent = nullptr);
};
