#include "OssDefaultShortcuts.h"

#include <QAction>
#include <QHash>
#include <QWidget>

namespace {

// One row of the default keymap: the action's text under "/Ossa/NodeGraph/" and its keys, in
// the order the node graph's menu lists the actions.
struct Row
{
    const char *text;
    QList<QKeySequence> keys;
};

const QList<Row> &rows()
{
    static const QList<Row> table{
        {"Connect Selected Node to Viewer", {QKeySequence(Qt::Key_1)}},
        {"Connect Selected Node to Viewer2", {QKeySequence(Qt::Key_2)}},
        {"Connect Selected Node to Viewer3", {QKeySequence(Qt::Key_3)}},
        {"Connect Selected Node to Viewer4", {QKeySequence(Qt::Key_4)}},
        {"Connect Selected Node to Viewer5", {QKeySequence(Qt::Key_5)}},
        {"Connect Selected Node to Viewer6", {QKeySequence(Qt::Key_6)}},
        {"Connect Selected Node to Viewer7", {QKeySequence(Qt::Key_7)}},
        {"Connect Selected Node to Viewer8", {QKeySequence(Qt::Key_8)}},
        {"Connect Selected Node to Viewer9", {QKeySequence(Qt::Key_9)}},
        {"Connect Selected Node to Viewer0", {QKeySequence(Qt::Key_0)}},
        {"Delete", {QKeySequence(Qt::Key_Delete), QKeySequence(Qt::Key_Backspace)}},
        {"Extract", {QKeySequence(Qt::Key_E)}},
        {"Frame Nodes", {QKeySequence(Qt::Key_Home), QKeySequence(Qt::Key_A)}},
        {"Focus Selection", {QKeySequence(Qt::Key_F)}},
        {"Disable", {QKeySequence(Qt::Key_D)}},
        {"Bypass", {QKeySequence(Qt::Key_B)}},
        {"Quick Create", {QKeySequence(Qt::Key_Tab)}},
        {"Duplicate", {QKeySequence(Qt::CTRL + Qt::Key_D)}},
        {"Select All", {QKeySequence(Qt::CTRL + Qt::Key_A)}},
        {"Cut", {QKeySequence(Qt::CTRL + Qt::Key_X)}},
        {"Copy", {QKeySequence(Qt::CTRL + Qt::Key_C)}},
        {"Paste", {QKeySequence(Qt::CTRL + Qt::Key_V)}},
        {"Search Node", {QKeySequence(Qt::CTRL + Qt::Key_F)}},
        {"Info Viewer", {QKeySequence(Qt::Key_I)}},
        {"Create Paint Node", {QKeySequence(Qt::SHIFT + Qt::Key_N)}},
        {"Import Nodes", {QKeySequence(Qt::CTRL + Qt::Key_I)}},
        {"Export Nodes", {QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_E)}},
        {"Swap Inputs", {QKeySequence(Qt::SHIFT + Qt::Key_X)}},
        {"Rename Node", {QKeySequence(Qt::Key_R), QKeySequence(Qt::Key_F2)}},
        {"Toggle Port List", {QKeySequence(Qt::Key_P)}},
        {"Cycle Port List Mode", {QKeySequence(Qt::SHIFT + Qt::Key_P)}},
        {"Select All Upstream", {QKeySequence(Qt::CTRL + Qt::Key_Up)}},
        {"Select All Downstream", {QKeySequence(Qt::CTRL + Qt::Key_Down)}},
        {"Select Previous Upstream", {QKeySequence(Qt::Key_Up)}},
        {"Select Next Downstream", {QKeySequence(Qt::Key_Down)}},
        {"Add Select Previous Upstream", {QKeySequence(Qt::SHIFT + Qt::Key_Up)}},
        {"Add Select Next Downstream", {QKeySequence(Qt::SHIFT + Qt::Key_Down)}},
        {"Select Next Sibling", {QKeySequence(Qt::Key_Right)}},
        {"Select Previous Sibling", {QKeySequence(Qt::Key_Left)}},
        {"Add Select Next Sibling", {QKeySequence(Qt::SHIFT + Qt::Key_Right)}},
        {"Add Select Previous Sibling", {QKeySequence(Qt::SHIFT + Qt::Key_Left)}},
        {"Zoom In", {QKeySequence(Qt::Key_Plus), QKeySequence(Qt::Key_Equal)}},
        {"Zoom Out", {QKeySequence(Qt::Key_Minus)}},
        {"Autoplace", {QKeySequence(Qt::Key_L)}},
    };
    return table;
}

const QHash<QString, QList<QKeySequence>> &table()
{
    static const QHash<QString, QList<QKeySequence>> keys = [] {
        QHash<QString, QList<QKeySequence>> map;
        for (const Row &row : rows())
            map.insert(QStringLiteral("/Ossa/NodeGraph/") + QLatin1String(row.text), row.keys);
        return map;
    }();
    return keys;
}

} // namespace

QStringList OssDefaultShortcuts::identities()
{
    QStringList all;
    for (const Row &row : rows())
        all << QStringLiteral("/Ossa/NodeGraph/") + QLatin1String(row.text);
    return all;
}

QList<QKeySequence> OssDefaultShortcuts::keysFor(const QString &identity)
{
    return table().value(identity);
}

bool OssDefaultShortcuts::apply(QAction *action, const QString &identity, QWidget *scope)
{
    if (!action || !scope || !action->shortcuts().isEmpty())
        return false;
    const QList<QKeySequence> keys = keysFor(identity);
    if (keys.isEmpty())
        return false;
    action->setShortcuts(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    scope->addAction(action);
    return true;
}
