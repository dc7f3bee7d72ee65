#include "OssLinkedCustomAttributeManager.h"

#include <algorithm>

OssLinkedCustomAttributeManager *OssLinkedCustomAttributeManager::instance()
{
    static OssLinkedCustomAttributeManager *manager = new OssLinkedCustomAttributeManager;
    return manager;
}

OssLinkedCustomAttributeManager::OssLinkedCustomAttributeManager(QObject *parent) : QObject(parent)
{}

QString OssLinkedCustomAttributeManager::key(const QObject *owner, const QString &attribute)
{
    return QString::number(reinterpret_cast<quintptr>(owner), 16) + QLatin1Char('/') + attribute;
}

void OssLinkedCustomAttributeManager::watch(QObject *object)
{
    if (m_watched[object]++ == 0)
        connect(object, &QObject::destroyed, this, &OssLinkedCustomAttributeManager::forget);
}

void OssLinkedCustomAttributeManager::forget(QObject *object)
{
    m_watched.remove(object);
    for (auto it = m_entries.begin(); it != m_entries.end();) {
        if (it->owner.isNull() || it->owner.data() == object) {
            it = m_entries.erase(it);
            continue;
        }
        it->links.erase(std::remove_if(it->links.begin(), it->links.end(),
                                       [object](const Link &l) {
                                           return l.first.isNull() || l.first.data() == object;
                                       }),
                        it->links.end());
        ++it;
    }
}

bool OssLinkedCustomAttributeManager::link(QObject *owner, const QString &attribute,
                                           QObject *target, const QString &targetAttribute)
{
    if (!owner || !target)
        return false;
    Entry &entry = m_entries[key(owner, attribute)];
    entry.owner = owner;
    entry.attribute = attribute;
    for (const Link &existing : qAsConst(entry.links)) {
        if (existing.first == target && existing.second == targetAttribute)
            return false;
    }
    entry.links.append(Link(target, targetAttribute));
    watch(owner);
    watch(target);
    emit linksChanged(owner, attribute);
    return true;
}

bool OssLinkedCustomAttributeManager::unlink(QObject *owner, const QString &attribute,
                                             QObject *target, const QString &targetAttribute)
{
    auto it = m_entries.find(key(owner, attribute));
    if (it == m_entries.end())
        return false;
    for (int i = 0; i < it->links.size(); ++i) {
        if (it->links.at(i).first == target && it->links.at(i).second == targetAttribute) {
            it->links.removeAt(i);
            if (it->links.isEmpty())
                m_entries.erase(it);
            emit linksChanged(owner, attribute);
            return true;
        }
    }
    return false;
}

QList<OssLinkedCustomAttributeManager::Link>
OssLinkedCustomAttributeManager::unlinkAll(QObject *owner, const QString &attribute)
{
    const QList<Link> removed = m_entries.take(key(owner, attribute)).links;
    if (!removed.isEmpty())
        emit linksChanged(owner, attribute);
    return removed;
}

void OssLinkedCustomAttributeManager::renameAttribute(QObject *owner, const QString &attribute,
                                                      const QString &newName)
{
    if (attribute == newName)
        return;
    auto it = m_entries.find(key(owner, attribute));
    if (it == m_entries.end())
        return;
    Entry entry = *it;
    m_entries.erase(it);
    entry.attribute = newName;
    Entry &target = m_entries[key(owner, newName)];
    target.owner = owner;
    target.attribute = newName;
    target.links += entry.links;
    emit linksChanged(owner, attribute);
    emit linksChanged(owner, newName);
}

QList<OssLinkedCustomAttributeManager::Link>
OssLinkedCustomAttributeManager::links(const QObject *owner, const QString &attribute) const
{
    QList<Link> result;
    for (const Link &l : m_entries.value(key(owner, attribute)).links) {
        if (!l.first.isNull())
            result.append(l);
    }
    return result;
}

QList<OssLinkedCustomAttributeManager::Link>
OssLinkedCustomAttributeManager::linkedFrom(const QObject *target,
                                            const QString &targetAttribute) const
{
    QList<Link> result;
    for (const Entry &entry : m_entries) {
        for (const Link &l : entry.links) {
            if (l.first.data() == target && l.second == targetAttribute && entry.owner)
                result.append(Link(entry.owner, entry.attribute));
        }
    }
    return result;
}
