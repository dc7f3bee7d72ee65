#include "OssDefaultShortcuts.h"

#include <QAction>
#include <QHash>
#include <QWidget>

namespace {

const QHash<QString, QList<QKeySequence>> &table()
{
    static const QHash<QString, QList<QKeySequence>> keys = [] {
        QHash<QString, QList<QKeySequence>> map;
        const QString folder = QStringLiteral("/Ossa/NodeGraph/");
        const auto add = [&](const char *text, QList<QKeySequence> sequences) {
            map.insert(folder + QLatin1String(text), sequences);
        };
        add("Connect Selected Node to Viewer", {QKeySequence(Qt::Key_1)});
        const char *const viewers[] = {
            "Connect Selected Node to Viewer2", "Connect Selected Node to Viewer3",
            "Connect Selected Node to Viewer4", "Connect Selected Node to Viewer5",
            "Connect Selected Node to Viewer6", "Connect Selected Node to Viewer7",
            "Connect Selected Node to Viewer8", "Connect Selected Node to Viewer9"};
        for (int i = 0; i < 8; ++i)
            add(viewers[i], {QKeySequence(Qt::Key_2 + i)});
        add("Connect Selected Node to Viewer0", {QKeySequence(Qt::Key_0)});
        add("Delete", {QKeySequence(Qt::Key_Delete), QKeySequence(Qt::Key_Backspace)});
        add("Extract", {QKeySequence(Qt::CTRL + Qt::Key_E)});
        add("Frame Nodes", {QKeySequence(Qt::Key_Home)});
        add("Focus Selection", {QKeySequence(Qt::Key_F)});
        add("Disable", {QKeySequence(Qt::Key_D)});
        add("Bypass", {QKeySequence(Qt::Key_B)});
        add("Duplicate", {QKeySequence(Qt::CTRL + Qt::Key_D)});
        add("Select All", {QKeySequence::SelectAll});
        add("Cut", {QKeySequence::Cut});
        add("Copy", {QKeySequence::Copy});
        add("Paste", {QKeySequence::Paste});
        add("Swap Inputs", {QKeySequence(Qt::SHIFT + Qt::Key_X)});
        add("Rename Node", {QKeySequence(Qt::Key_F2)});
        add("Select All Upstream", {QKeySequence(Qt::CTRL + Qt::Key_Up)});
        add("Select All Downstream", {QKeySequence(Qt::CTRL + Qt::Key_Down)});
        add("Select Previous Upstream", {QKeySequence(Qt::Key_Up)});
        add("Select Next Downstream", {QKeySequence(Qt::Key_Down)});
        add("Add Select Previous Upstream", {QKeySequence(Qt::SHIFT + Qt::Key_Up)});
        add("Add Select Next Downstream", {QKeySequence(Qt::SHIFT + Qt::Key_Down)});
        add("Select Next Sibling", {QKeySequence(Qt::Key_Right)});
        add("Select Previous Sibling", {QKeySequence(Qt::Key_Left)});
        add("Add Select Next Sibling", {QKeySequence(Qt::SHIFT + Qt::Key_Right)});
        add("Add Select Previous Sibling", {QKeySequence(Qt::SHIFT + Qt::Key_Left)});
        add("Autoplace", {QKeySequence(Qt::Key_L)});
        add("Toggle Port List", {QKeySequence(Qt::Key_P)});
        add("Cycle Port List Mode", {QKeySequence(Qt::SHIFT + Qt::Key_P)});
        add("Zoom In", {QKeySequence(Qt::Key_Plus), QKeySequence(Qt::Key_Equal)});
        add("Zoom Out", {QKeySequence(Qt::Key_Minus)});
        add("Quick Create", {QKeySequence(Qt::Key_Tab)});
        add("Search Node", {QKeySequence(Qt::CTRL + Qt::Key_F)});
        add("Create Paint Node", {QKeySequence(Qt::SHIFT + Qt::Key_N)});
        add("Info Viewer", {QKeySequence(Qt::Key_I)});
        add("Import Nodes", {QKeySequence(Qt::CTRL + Qt::Key_I)});
        add("Export Nodes", {QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_E)});
        return map;
    }();
    return keys;
}

} // namespace

QList<QKeySequence> OssDefaultShortcuts::keysFor(const QString &identity)
{
    return table().value(identity);
}

QStringList OssDefaultShortcuts::identities()
{
    QStringList names = table().keys();
    names.sort();
    return names;
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
