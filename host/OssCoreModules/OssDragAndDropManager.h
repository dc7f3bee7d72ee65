#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>

class QMimeData;

// The host's general drag and drop: drops on the node graph (target 4) of image files or image
// ids make tiled-image nodes; other modules add handlers for their own kinds.
class OSSCOREMODULES_EXPORT OssDragAndDropManager : public QObject
{
    Q_OBJECT
public:
    static constexpr int NodeGraphTarget = 4;
    using Handler = std::function<bool(const QMimeData *, int, const QVariantMap &)>;
    static OssDragAndDropManager *instance();

    bool acceptDragEnter(const QMimeData *mimeData, int target) const;
    // Parameters: "NodeGraph" (the network, as a QObject*) and "Position" (scene point).
    bool drop(const QMimeData *mimeData, int target, const QVariantMap &parameters);
    // A handler answers true when it took the drop; handlers are asked in registration order
    // before the host's own.
    void registerHandler(const QString &name, Handler accepts, Handler handle);

private:
    explicit OssDragAndDropManager(QObject *parent = nullptr);
    struct Entry
    {
        QString name;
        Handler accepts;
        Handler handle;
    };
    QList<Entry> m_handlers;
};
