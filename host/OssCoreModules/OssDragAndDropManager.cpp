#include "OssDragAndDropManager.h"

#include <QMimeData>

OssDragAndDropManager *OssDragAndDropManager::instance()
{
    static OssDragAndDropManager *manager = new OssDragAndDropManager;
    return manager;
}

OssDragAndDropManager::OssDragAndDropManager(QObject *parent) : QObject(parent) {}

void OssDragAndDropManager::registerHandler(const QString &name, Handler accepts, Handler handle)
{
    m_handlers.append(Entry{name, std::move(accepts), std::move(handle)});
}

bool OssDragAndDropManager::acceptDragEnter(const QMimeData *mimeData, int target) const
{
    if (!mimeData)
        return false;
    for (const Entry &entry : m_handlers)
        if (entry.accepts(mimeData, target, QVariantMap()))
            return true;
    return false;
}

bool OssDragAndDropManager::drop(const QMimeData *mimeData, int target,
                                 const QVariantMap &parameters)
{
    if (!mimeData)
        return false;
    for (const Entry &entry : m_handlers)
        if (entry.accepts(mimeData, target, parameters) &&
            entry.handle(mimeData, target, parameters))
            return true;
    return false;
}
