#include "OssObjectReferenceManager.h"

OssObjectReferenceManager *OssObjectReferenceManager::instance()
{
    static OssObjectReferenceManager *manager = new OssObjectReferenceManager;
    return manager;
}

OssObjectReferenceManager::OssObjectReferenceManager(QObject *parent) : QObject(parent) {}

void OssObjectReferenceManager::registerObject(const QUuid &uuid, QObject *object)
{
    if (uuid.isNull() || !object)
        return;
    m_objects.insert(uuid, object);
}

void OssObjectReferenceManager::deregisterObject(const QUuid &uuid, QObject *object)
{
    auto it = m_objects.find(uuid);
    // Only the object that holds the entry may remove it (a copy may share a saved UUID).
    if (it != m_objects.end() && (it.value().isNull() || it.value().data() == object))
        m_objects.erase(it);
}

QObject *OssObjectReferenceManager::getPointer(const QString &reference) const
{
    QString text = reference.trimmed();
    if (!text.startsWith(QLatin1Char('{')))
        text = QLatin1Char('{') + text + QLatin1Char('}');
    return getPointer(QUuid(text));
}

QObject *OssObjectReferenceManager::getPointer(const QUuid &uuid) const
{
    if (uuid.isNull())
        return nullptr;
    return m_objects.value(uuid).data();
}
