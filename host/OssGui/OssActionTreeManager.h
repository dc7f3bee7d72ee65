#pragma once

#include "OssGuiExport.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>

class QAction;

// The host's tree of actions. An action is filed under a folder path exactly as given and is
// known by that folder path, a slash and its text, where empty components do not count:
// "/Ossa/NodeGraph/", "/Ossa/NodeGraph" and "Ossa/NodeGraph/" are three different folders, and
// "/Ossa/NodeGraph/Create//Foo" names the action "Foo" filed under "/Ossa/NodeGraph/Create/".
// (Look-ups ignore empty components so that a plug-in asking for the folder, a slash and the
// text finds an action of a one-component menu path, filed under a folder ending in a slash:
// creating the node-creation actions again then finds them instead of adding a second set.)
// Several actions may share one identity.
class OSSGUI_EXPORT OssActionTreeManager : public QObject
{
    Q_OBJECT
public:
    static OssActionTreeManager *instance();

    // Files Action under Folder. The tree does not own the action; a destroyed action leaves it.
    void registerAction(const QString &folder, QAction *action);
    bool hasAction(const QString &fullPath) const;
    // The first action filed at that full path, or null.
    QAction *findAction(const QString &fullPath) const;
    QList<QAction *> findActions(const QString &fullPath) const;

    // Folders in the order they were first used, and the actions of one folder in filing order.
    QStringList folders() const { return m_folders; }
    QList<QAction *> actions(const QString &folder) const;
    static QString fullPath(const QString &folder, const QAction *action);
    // A full path with empty components dropped: what identifies an action.
    static QString identity(const QString &path);

signals:
    void actionRegistered(const QString &folder, QAction *action);

private:
    explicit OssActionTreeManager(QObject *parent = nullptr);
    void forget(QObject *action);

    struct Entry
    {
        QString folder;
        QString fullPath;
        QPointer<QAction> action;
        // The address as registered: compared when the action is destroyed, never followed (by
        // then the object is only a QObject, and casting it back to QAction is undefined).
        QAction *address = nullptr;
    };
    QStringList m_folders;
    QHash<QString, QList<QAction *>> m_byFolder;
    QHash<QString, QList<QAction *>> m_byPath;
    QHash<QObject *, Entry> m_entries;
};
