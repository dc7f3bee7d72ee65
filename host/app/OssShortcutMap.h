#pragma once

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class QAction;
class QWidget;

// The keys of the shell's actions by action identity: the user's own bindings, kept in the
// settings group "Shortcuts", over the default keymap (OssDefaultShortcuts). A user binding may
// be empty: the action then has no key even when the default keymap gives it one.
class OssShortcutMap
{
public:
    static QString settingsGroup();

    static QList<QKeySequence> defaultKeys(const QString &identity);
    static bool hasUserKeys(const QString &identity);
    static QList<QKeySequence> userKeys(const QString &identity);
    // The keys in force: the user's when set, else the defaults.
    static QList<QKeySequence> keysFor(const QString &identity);

    static void setUserKeys(const QString &identity, const QList<QKeySequence> &keys);
    // Back to the default keys of one action, or of all.
    static void resetKeys(const QString &identity);
    static void resetAll();

    // Gives Action the keys in force, working while Scope holds the focus. An action that came
    // with keys of its own keeps them unless the user bound it. True when the map set its keys.
    static bool bind(QAction *action, const QString &identity, QWidget *scope);

    // Each key that more than one identity is bound to, as its portable text, with those
    // identities in sorted order.
    static QMap<QString, QStringList>
    conflicts(const QHash<QString, QList<QKeySequence>> &bindings);

    static QString keysText(const QList<QKeySequence> &keys);
    static QList<QKeySequence> keysFromText(const QString &text);
};
