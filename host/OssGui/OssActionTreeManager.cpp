#include "OssActionTreeManager.h"

#include <QAction>

OssActionTreeManager *OssActionTreeManager::instance()
{
    static OssActionTreeManager *manager = new OssActionTreeManager;
    return manager;
}

OssActionTreeManager::OssActionTreeManager(QObject *parent) : QObject(parent) {}

QString OssActionTreeManager::identity(const QString &path)
{
    // Empty components do not count: "/Ossa/NodeGraph/Create//Foo" is "/Ossa/NodeGraph/Create/Foo".
    QString collapsed;
    collapsed.reserve(path.size());
    for (const QChar c : path)
        if (c != QLatin1Char('/') || !collapsed.endsWith(QLatin1Char('/')))
            collapsed.append(c);
    return collapsed;
}

QString OssActionTreeManager::fullPath(const QString &folder, const QAction *action)
{
    // The folder as given, a slash, and the text, with empty components dropped:
    // "/Ossa/NodeGraph/" and "/Ossa/NodeGraph" both give "/Ossa/NodeGraph/Frame All" (the
    // folders themselves stay distinct).
    if (!action)
        return QString();
    return folder.isEmpty() ? action->text() : identity(folder + QLatin1Char('/') + action->text());
}

void OssActionTreeManager::registerAction(const QString &folder, QAction *action)
{
    if (!action || m_entries.contains(action))
        return;
    Entry entry{folder, fullPath(folder, action), action, action};
    if (!m_byFolder.contains(folder))
        m_folders.append(folder);
    m_byFolder[folder].append(action);
    m_byPath[entry.fullPath].append(action);
    m_entries.insert(action, entry);
    connect(action, &QObject::destroyed, this, &OssActionTreeManager::forget);
    emit actionRegistered(folder, action);
}

void OssActionTreeManager::forget(QObject *action)
{
    const auto it = m_entries.find(action);
    if (it == m_entries.end())
        return;
    // The action is being destroyed: only the address it was registered under is used.
    QAction *key = it->address;
    m_byFolder[it->folder].removeAll(key);
    QList<QAction *> &sameIdentity = m_byPath[it->fullPath];
    sameIdentity.removeAll(key);
    if (sameIdentity.isEmpty())
        m_byPath.remove(it->fullPath);
    m_entries.erase(it);
}

bool OssActionTreeManager::hasAction(const QString &fullPath) const
{
    return m_byPath.contains(identity(fullPath));
}

QAction *OssActionTreeManager::findAction(const QString &fullPath) const
{
    const QList<QAction *> actions = m_byPath.value(identity(fullPath));
    return actions.isEmpty() ? nullptr : actions.first();
}

QList<QAction *> OssActionTreeManager::findActions(const QString &fullPath) const
{
    return m_byPath.value(identity(fullPath));
}

QList<QAction *> OssActionTreeManager::actions(const QString &folder) const
{
    return m_byFolder.value(folder);
}
