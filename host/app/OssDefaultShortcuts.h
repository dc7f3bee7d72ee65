#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStringList>

class QAction;
class QWidget;

// The shell's default keys for the node graph's commands, by action identity (folder and text,
// as the action tree names them). The keys work while the node graph has the keyboard focus, so
// that the panels keep their own keys (Delete in a list, digits in a field).
class OssDefaultShortcuts
{
public:
    // Every identity with default keys, in the table's order.
    static QStringList identities();
    // The default keys of an action identity; empty when it has none.
    static QList<QKeySequence> keysFor(const QString &identity);
    // Gives Action its default keys, working within Scope, unless it has keys already. True when
    // keys were given.
    static bool apply(QAction *action, const QString &identity, QWidget *scope);
};
