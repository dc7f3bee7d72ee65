#pragma once

#include "OssGuiExport.h"

#include <QHash>
#include <QMenu>
#include <QObject>
#include <QStringList>

// A menu of the application. Its shortcut group names the set of key bindings that apply while
// it is open.
class OSSGUI_EXPORT OssMenu : public QMenu
{
    Q_OBJECT
public:
    explicit OssMenu(const QString &title = QString(), QWidget *parent = nullptr);

    void setShortcutGroup(const QString &name) { m_shortcutGroup = name; }
    QString shortcutGroup() const { return m_shortcutGroup; }

private:
    QString m_shortcutGroup;
};

// Menus configured by (group, name): each definition is a list of entries, where an entry is the
// full path of an action in the action tree, "-" for a separator, or "Title>" followed by
// entries and a lone ">" for a sub-menu. Definitions come from code or from an XML file:
//
// <menus>
//   <menu group="Context" name="NodeGraph">
//     <action path="/Ossa/NodeGraph/Autoplace"/>
//     <separator/>
//     <submenu title="Select"> <action path="..."/> </submenu>
//   </menu>
// </menus>
class OSSGUI_EXPORT OssMenuManager : public QObject
{
    Q_OBJECT
public:
    static OssMenuManager *instance();

    void setDefinition(const QString &group, const QString &name, const QStringList &entries);
    QStringList definition(const QString &group, const QString &name) const;
    void removeDefinition(const QString &group, const QString &name);
    bool hasDefinition(const QString &group, const QString &name) const;
    // Reads every menu of a definition file; on error nothing is changed and Error says why.
    bool loadDefinitions(const QString &path, QString *error);

    // Where the definitions read when the manager is made live: "menus/menus.xml" in the
    // resource folder.
    static QString defaultDefinitionsPath();

    // A new menu built from the definition (the caller deletes it), or null when there is none.
    // Actions missing from the action tree are left out, and sub-menus left with none of theirs.
    OssMenu *makeMenu(const QString &group, const QString &name, QWidget *parent = nullptr) const;

private:
    explicit OssMenuManager(QObject *parent = nullptr);
    static QString key(const QString &group, const QString &name);
    static void dropIfEmpty(QMenu *submenu);
    QHash<QString, QStringList> m_definitions;
};
