#include <OssDefaultShortcuts.h>
#include <OssMainWindow.h>
#include <OssShortcutEditor.h>
#include <OssShortcutMap.h>

#include <OssActionTreeManager.h>
#include <OssSettings.h>

#include <QAction>
#include <QApplication>
#include <QDialogButtonBox>
#include <QKeySequenceEdit>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

const QString Delete = QStringLiteral("/Ossa/NodeGraph/Delete");
const QString Bypass = QStringLiteral("/Ossa/NodeGraph/Bypass");
const QString Copy = QStringLiteral("/Ossa/NodeGraph/Copy");
const QString Other = QStringLiteral("/Ossa/Other/Thing");

} // namespace

// The user's key bindings over the default keymap, and the dialog that edits them.
class tst_ShortcutEditor : public QObject
{
    Q_OBJECT

private:
    QAction m_delete{QStringLiteral("Delete")};
    QAction m_bypass{QStringLiteral("Bypass")};
    QAction m_copy{QStringLiteral("Copy")};
    QAction m_thing{QStringLiteral("Thing")};

private slots:
    void initTestCase()
    {
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &m_delete);
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &m_bypass);
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &m_copy);
        tree->registerAction(QStringLiteral("/Ossa/Other/"), &m_thing);
    }

    void init() { OssShortcutMap::resetAll(); }

    void userKeysAreKeptInTheSettings()
    {
        QVERIFY(!OssShortcutMap::hasUserKeys(Bypass));
        QCOMPARE(OssShortcutMap::keysFor(Bypass), OssDefaultShortcuts::keysFor(Bypass));
        OssShortcutMap::setUserKeys(Bypass, {QKeySequence(Qt::CTRL + Qt::Key_B)});
        // Another settings object (a later run) reads the same.
        OssSettings settings;
        settings.beginGroup(OssShortcutMap::settingsGroup());
        QCOMPARE(settings.childKeys().size(), 1);
        QCOMPARE(OssShortcutMap::keysFor(Bypass),
                 QList<QKeySequence>{QKeySequence(Qt::CTRL + Qt::Key_B)});
        // An empty binding takes the default key away.
        OssShortcutMap::setUserKeys(Delete, {});
        QVERIFY(OssShortcutMap::hasUserKeys(Delete));
        QVERIFY(OssShortcutMap::keysFor(Delete).isEmpty());
        // Identities differing only in their slashes stay apart.
        OssShortcutMap::setUserKeys(QStringLiteral("Ossa/NodeGraph/Bypass"),
                                    {QKeySequence(Qt::Key_F9)});
        QCOMPARE(OssShortcutMap::keysFor(Bypass),
                 QList<QKeySequence>{QKeySequence(Qt::CTRL + Qt::Key_B)});
        OssShortcutMap::resetKeys(Bypass);
        QCOMPARE(OssShortcutMap::keysFor(Bypass), OssDefaultShortcuts::keysFor(Bypass));
        OssShortcutMap::resetAll();
        QVERIFY(!OssShortcutMap::hasUserKeys(Delete));
    }

    void bindingFollowsTheMap()
    {
        QWidget scope;
        QAction made(QStringLiteral("Made"));
        made.setShortcut(QKeySequence(Qt::Key_M));
        // An action made with keys of its own keeps them until the user binds it.
        QVERIFY(!OssShortcutMap::bind(&made, QStringLiteral("/Ossa/X/Made"), &scope));
        QCOMPARE(made.shortcut(), QKeySequence(Qt::Key_M));
        OssShortcutMap::setUserKeys(QStringLiteral("/Ossa/X/Made"), {QKeySequence(Qt::Key_N)});
        QVERIFY(OssShortcutMap::bind(&made, QStringLiteral("/Ossa/X/Made"), &scope));
        QCOMPARE(made.shortcut(), QKeySequence(Qt::Key_N));
        QVERIFY(scope.actions().contains(&made));

        QAction bypass(QStringLiteral("Bypass"));
        QVERIFY(OssShortcutMap::bind(&bypass, Bypass, &scope));
        QCOMPARE(bypass.shortcuts(), OssDefaultShortcuts::keysFor(Bypass));
        QCOMPARE(bypass.shortcutContext(), Qt::WidgetWithChildrenShortcut);
        OssShortcutMap::setUserKeys(Bypass, {});
        QVERIFY(OssShortcutMap::bind(&bypass, Bypass, &scope));
        QVERIFY(bypass.shortcuts().isEmpty());
        QCOMPARE(scope.actions().count(&bypass), 1);
    }

    void conflicts()
    {
        QHash<QString, QList<QKeySequence>> bindings;
        bindings.insert(Delete, {QKeySequence(Qt::Key_Delete), QKeySequence(Qt::Key_X)});
        bindings.insert(Bypass, {QKeySequence(Qt::Key_X)});
        bindings.insert(Copy, {QKeySequence(Qt::CTRL + Qt::Key_C)});
        const QMap<QString, QStringList> found = OssShortcutMap::conflicts(bindings);
        QCOMPARE(found.keys(), QStringList{"X"});
        QCOMPARE(found.value("X"), (QStringList{Bypass, Delete}));
    }

    void tableListsTheActionsWithTheirKeys()
    {
        OssShortcutMap::setUserKeys(Copy, {QKeySequence(Qt::Key_F7)});
        OssShortcutEditor editor;
        QTableWidget *table = editor.table();
        for (const QString &identity : {Delete, Bypass, Copy, Other})
            QVERIFY2(editor.rowOf(identity) >= 0, qPrintable(identity));
        const int copy = editor.rowOf(Copy);
        QCOMPARE(table->item(copy, OssShortcutEditor::ActionColumn)->text(), Copy);
        QCOMPARE(table->item(copy, OssShortcutEditor::KeyColumn)->text(),
                 QKeySequence(Qt::Key_F7).toString(QKeySequence::NativeText));
        QCOMPARE(table->item(copy, OssShortcutEditor::DefaultColumn)->text(),
                 QKeySequence(QKeySequence::Copy).toString(QKeySequence::NativeText));
        // A changed key shows in bold.
        QVERIFY(table->item(copy, OssShortcutEditor::KeyColumn)->font().bold());
        QVERIFY(!table->item(editor.rowOf(Delete), OssShortcutEditor::KeyColumn)->font().bold());
    }

    void searchFiltersByPathAndKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("shown");
        QTest::newRow("path") << "bypass" << QStringList{Bypass};
        QTest::newRow("folder") << "/Ossa/Other" << QStringList{Other};
        QTest::newRow("key") << "Backspace" << QStringList{Delete};
        QTest::newRow("nothing") << "no such action" << QStringList{};
    }

    void searchFiltersByPathAndKey()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, shown);
        OssShortcutEditor editor;
        // Typed into the search field.
        QTest::keyClicks(editor.filterEdit(), text);
        QStringList visible = editor.visibleIdentities();
        for (const QString &identity : {Delete, Bypass, Copy, Other})
            QCOMPARE(visible.contains(identity), shown.contains(identity));
        editor.filterEdit()->clear();
        QVERIFY(editor.visibleIdentities().contains(Other));
    }

    void conflictsAreHighlightedUntilResolved()
    {
        OssShortcutEditor editor;
        QVERIFY(editor.conflictsOf(Bypass).isEmpty());
        editor.setKeys(Bypass, {QKeySequence(Qt::Key_Delete)});
        QCOMPARE(editor.conflictsOf(Bypass), QStringList{Delete});
        QCOMPARE(editor.conflictsOf(Delete), QStringList{Bypass});
        const QTableWidgetItem *item =
            editor.table()->item(editor.rowOf(Delete), OssShortcutEditor::ActionColumn);
        QVERIFY(item->background().style() != Qt::NoBrush);
        QVERIFY(item->toolTip().contains(Bypass));
        QVERIFY(editor.table()
                    ->item(editor.rowOf(Copy), OssShortcutEditor::ActionColumn)
                    ->background()
                    .style() == Qt::NoBrush);
        editor.resetKeys(Bypass);
        QVERIFY(editor.conflictsOf(Delete).isEmpty());
        QCOMPARE(item->background().style(), Qt::NoBrush);
    }

    void aKeyTypedForTheCurrentRowBindsIt()
    {
        OssShortcutEditor editor;
        editor.show();
        QVERIFY(QTest::qWaitForWindowActive(&editor));
        editor.table()->setCurrentCell(editor.rowOf(Other), 0);
        auto *edit = editor.findChild<QKeySequenceEdit *>();
        QVERIFY(edit && edit->isEnabled());
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier);
        // The edit finishes a second after the last key.
        QTRY_COMPARE(editor.keys(Other),
                     QList<QKeySequence>{QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_K)});
    }

    void applyWritesOnlyWhatDiffersFromTheDefaults()
    {
        OssShortcutEditor editor;
        QSignalSpy applied(&editor, &OssShortcutEditor::applied);
        editor.setKeys(Bypass, {QKeySequence(Qt::Key_F8)});
        editor.setKeys(Delete, {});
        editor.setKeys(Copy, OssDefaultShortcuts::keysFor(Copy));
        QVERIFY(!OssShortcutMap::hasUserKeys(Bypass));
        editor.apply();
        QCOMPARE(applied.count(), 1);
        QCOMPARE(OssShortcutMap::userKeys(Bypass), QList<QKeySequence>{QKeySequence(Qt::Key_F8)});
        QVERIFY(OssShortcutMap::hasUserKeys(Delete));
        QVERIFY(OssShortcutMap::keysFor(Delete).isEmpty());
        QVERIFY(!OssShortcutMap::hasUserKeys(Copy));

        // Reset All and Cancel: nothing is written.
        OssShortcutEditor second;
        QCOMPARE(second.keys(Bypass), QList<QKeySequence>{QKeySequence(Qt::Key_F8)});
        second.resetAll();
        QCOMPARE(second.keys(Bypass), OssDefaultShortcuts::keysFor(Bypass));
        QCOMPARE(second.keys(Delete), OssDefaultShortcuts::keysFor(Delete));
        second.reject();
        QVERIFY(OssShortcutMap::hasUserKeys(Bypass));
        // Reset All applied clears every binding.
        second.resetAll();
        second.apply();
        QVERIFY(!OssShortcutMap::hasUserKeys(Bypass));
        QVERIFY(!OssShortcutMap::hasUserKeys(Delete));
    }

    // Edit > Keyboard Shortcuts... opens the editor; OK writes its bindings.
    void theShellOpensTheEditor()
    {
        OssMainWindow window;
        window.show();
        QAction *open = nullptr;
        for (QAction *menu : window.menuBar()->actions())
            if (menu->menu())
                for (QAction *entry : menu->menu()->actions())
                    if (entry->text() == QLatin1String("&Keyboard Shortcuts..."))
                        open = entry;
        QVERIFY(open);
        bool seen = false;
        QTimer::singleShot(0, this, [&] {
            auto *editor = qobject_cast<OssShortcutEditor *>(QApplication::activeModalWidget());
            if (!editor)
                return;
            seen = true;
            editor->setKeys(Bypass, {QKeySequence(Qt::Key_F6)});
            editor->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Ok)->click();
        });
        open->trigger();
        QVERIFY(seen);
        QCOMPARE(OssShortcutMap::userKeys(Bypass), QList<QKeySequence>{QKeySequence(Qt::Key_F6)});
    }
};

QTEST_MAIN(tst_ShortcutEditor)
#include "tst_ShortcutEditor.moc"
