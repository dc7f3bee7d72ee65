#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <functional>

class QMimeData;

// The host's general drag and drop: modules register handlers for the kinds of dragged objects
// they own, and a drop goes to the first handler that takes it.
//
// Images (loaded image ids, image files) are not handled here for the node graph (target 4):
// the node graph view makes one texture node per image itself, with the node type chosen by
// the modifier keys, inside its own undo step and at the drop point. Were the manager to take
// them too, the view asks it first and its image path would never run.
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
    // A handler answers true when it took the drop; handlers are asked in registration order.
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
