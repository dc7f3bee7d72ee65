#include "OssTestPluginHost.h"

#include <OssDefaultShortcuts.h>
#include <OssMainWindow.h>
#include <OssShortcutMap.h>

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QFile>
#include <QMenu>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <memory>

namespace {

const QString Folder = QStringLiteral("/Ossa/NodeGraph/");

struct DocumentedKey
{
    QString identity;
    QList<QKeySequence> keys;
};

// The keymap table of README.md: "| Action | `Key`, `Key` | what it does |" under the heading
// "Keys in the node graph".
QList<DocumentedKey> readmeKeymap(QString *error)
{
    QFile file(QStringLiteral(OSS_README));
    if (!file.open(QIODevice::ReadOnly)) {
        *error = file.errorString();
        return {};
    }
    const QString text = QString::fromUtf8(file.readAll());
    const int section = text.indexOf(QLatin1String("\n## Keys in the node graph\n"));
    if (section < 0) {
        *error = QStringLiteral("no section \"Keys in the node graph\"");
        return {};
    }
    const int end = text.indexOf(QLatin1String("\n## "), section + 1);
    QList<DocumentedKey> rows;
    const QRegularExpression row(QStringLiteral("^\\| ([^|`]+) \\| ((?:`[^`]+`(?:, )?)+) \\|"),
                                 QRegularExpression::MultilineOption);
    const QRegularExpression key(QStringLiteral("`([^`]+)`"));
    auto it = row.globalMatch(text.mid(section, end - section));
    while (it.hasNext()) {
        const QRegularExpressionMatch match = it.next();
        DocumentedKey entry{Folder + match.captured(1).trimmed(), {}};
        auto keys = key.globalMatch(match.captured(2));
        while (keys.hasNext())
            entry.keys << QKeySequence::fromString(keys.next().captured(1),
                                                   QKeySequence::PortableText);
        rows << entry;
    }
    if (rows.isEmpty())
        *error = QStringLiteral("the section has no key table");
    return rows;
}

} // namespace

// The default keymap as the shell binds it: documented in README.md, free of conflicts, and each
// key, pressed in the node graph's view, triggers its action there.
class tst_NodeGraphKeys : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    std::unique_ptr<OssMainWindow> m_window;
    OssShaderNetwork *m_network = nullptr;

    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(false);
        OssShortcutMap::resetAll();
        m_window = std::make_unique<OssMainWindow>();
        m_window->rebuildActionMenus();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    }

    void cleanupTestCase()
    {
        m_window.reset();
        OssShortcutMap::resetAll();
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY2(m_host.createMixChain(m_network), qPrintable(m_host.errorString()));
        m_network->clearSelection();
        m_network->node(QStringLiteral("Mix"))->setSelected(true);
        OssUndoManager::instance()->clear();
        m_host.clearLines();
    }

    void cleanup()
    {
        // A command may have left a popup open.
        if (QWidget *popup = QApplication::activePopupWidget())
            popup->close();
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    void readmeDocumentsTheDefaultKeymap()
    {
        QString error;
        const QList<DocumentedKey> documented = readmeKeymap(&error);
        QVERIFY2(error.isEmpty(), qPrintable(error));
        QStringList identities;
        for (const DocumentedKey &entry : documented) {
            identities << entry.identity;
            QCOMPARE(entry.keys, OssDefaultShortcuts::keysFor(entry.identity));
        }
        QCOMPARE(identities, OssDefaultShortcuts::identities());
    }

    void theDefaultKeymapHasNoConflicts()
    {
        QHash<QString, QList<QKeySequence>> bindings;
        for (const QString &identity : OssDefaultShortcuts::identities())
            bindings.insert(identity, OssDefaultShortcuts::keysFor(identity));
        const QMap<QString, QStringList> conflicts = OssShortcutMap::conflicts(bindings);
        QVERIFY2(conflicts.isEmpty(), qPrintable(conflicts.keys().join(QStringLiteral(", "))));
        // Nor with the shell's own keys (save, undo, quit...), which act everywhere.
        const QList<QAction *> tree = [] {
            QList<QAction *> all;
            OssActionTreeManager *manager = OssActionTreeManager::instance();
            for (const QString &folder : manager->folders())
                all << manager->actions(folder);
            return all;
        }();
        for (QAction *action : m_window->findChildren<QAction *>()) {
            if (tree.contains(action))
                continue;
            for (const QKeySequence &key : action->shortcuts())
                for (auto it = bindings.cbegin(); it != bindings.cend(); ++it)
                    QVERIFY2(!it.value().contains(key),
                             qPrintable(key.toString() + QLatin1Char(' ') + it.key()));
        }
    }

    void eachDocumentedKeyTriggersItsAction_data()
    {
        QTest::addColumn<QString>("identity");
        QTest::addColumn<QKeySequence>("key");
        QString error;
        for (const DocumentedKey &entry : readmeKeymap(&error))
            for (const QKeySequence &key : entry.keys)
                QTest::newRow(qPrintable(entry.identity.mid(Folder.size()) + QLatin1String(" / ") +
                                         key.toString()))
                    << entry.identity << key;
    }

    void eachDocumentedKeyTriggersItsAction()
    {
        QFETCH(QString, identity);
        QFETCH(QKeySequence, key);
        QAction *action = OssActionTreeManager::instance()->findAction(identity);
        // The keymap may name a command the node graph does not offer yet; the action
        // catalogue's test says which.
        if (!action)
            QSKIP(qPrintable(identity + QStringLiteral(" is not offered yet")));
        QCOMPARE(action->shortcuts(), OssDefaultShortcuts::keysFor(identity));
        OssShaderNetworkView *graph = view();
        QVERIFY(graph);
        QApplication::setActiveWindow(m_window.get());
        graph->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(graph));
        QSignalSpy triggered(action, &QAction::triggered);
        // Commands that ask (quick create, search, file dialogs) are answered with Cancel.
        QTimer closer;
        closer.setInterval(50);
        connect(&closer, &QTimer::timeout, [] {
            if (auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget()))
                dialog->reject();
        });
        closer.start();
        const int code = key[0];
        QTest::keyClick(graph, Qt::Key(code & ~Qt::KeyboardModifierMask),
                        Qt::KeyboardModifiers(code & Qt::KeyboardModifierMask));
        closer.stop();
        QCOMPARE(triggered.count(), 1);
        // The command ran in the focused view, not on a fall-back.
        for (const QString &line : m_host.lines())
            QVERIFY2(!line.contains(QLatin1String("fallback")), qPrintable(line));
    }

    // Some keys, end to end: the effect on the network of the focused view.
    void keysChangeTheNetwork()
    {
        OssShaderNetworkView *graph = view();
        QApplication::setActiveWindow(m_window.get());
        graph->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(graph));
        QTest::keyClick(graph, Qt::Key_D);
        QVERIFY(!m_network->node(QStringLiteral("Mix"))->enabledAsBool());
        QTest::keyClick(graph, Qt::Key_D, Qt::ControlModifier);
        QVERIFY(m_network->node(QStringLiteral("Mix1")));
        QTest::keyClick(graph, Qt::Key_Backspace);
        QVERIFY(!m_network->node(QStringLiteral("Mix1")));
        m_network->node(QStringLiteral("Out"))->setSelected(true);
        QTest::keyClick(graph, Qt::Key_Up);
        QVERIFY(m_network->node(QStringLiteral("Mix"))->selected());
        QVERIFY(!m_network->node(QStringLiteral("Out"))->selected());
    }

    // A user's binding wins over the default, is kept in the settings, and a key given up
    // triggers nothing any more.
    void userBindingsReplaceTheDefaults()
    {
        const QString bypass = Folder + QStringLiteral("Bypass");
        OssShortcutMap::setUserKeys(bypass, {QKeySequence(Qt::SHIFT + Qt::Key_B)});
        m_window->applyDefaultShortcuts();
        QAction *action = OssActionTreeManager::instance()->findAction(bypass);
        QCOMPARE(action->shortcuts(), QList<QKeySequence>{QKeySequence(Qt::SHIFT + Qt::Key_B)});
        OssShaderNetworkView *graph = view();
        QApplication::setActiveWindow(m_window.get());
        graph->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget *>(graph));
        QSignalSpy triggered(action, &QAction::triggered);
        QTest::keyClick(graph, Qt::Key_B);
        QCOMPARE(triggered.count(), 0);
        QTest::keyClick(graph, Qt::Key_B, Qt::ShiftModifier);
        QCOMPARE(triggered.count(), 1);
        QVERIFY(m_network->node(QStringLiteral("Mix"))->bypassed());
        OssShortcutMap::resetKeys(bypass);
        m_window->applyDefaultShortcuts();
        QCOMPARE(action->shortcuts(), OssDefaultShortcuts::keysFor(bypass));
    }

    // The Node Graph menu of the menu bar holds the action-tree folders, each action with its key.
    void theNodeGraphMenuShowsTheKeys()
    {
        QMenu *menu = m_window->topMenu(QStringLiteral("Node Graph"));
        QVERIFY(menu);
        QAction *remove = OssActionTreeManager::instance()->findAction(Folder + "Delete");
        QVERIFY(menu->actions().contains(remove));
        QCOMPARE(remove->shortcut(), QKeySequence(Qt::Key_Delete));
        // The folder forms "/Ossa/NodeGraph" and "Ossa/NodeGraph/" join the same menu.
        QAction *mode = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Switch to Collapsed mode"));
        QAction *shake = OssActionTreeManager::instance()->findAction(
            QStringLiteral("Ossa/NodeGraph/Shake To Extract"));
        QVERIFY(mode && shake);
        QVERIFY(menu->actions().contains(mode));
        QVERIFY(menu->actions().contains(shake));
        // Each folder is a section of its own.
        QAction *expanded = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Switch to Expanded mode"));
        const int first = menu->actions().indexOf(expanded);
        QVERIFY(first > 0);
        QVERIFY(menu->actions().at(first - 1)->isSeparator());
        QVERIFY(menu->actions().at(menu->actions().indexOf(shake) - 1)->isSeparator());
        bool create = false;
        for (QAction *entry : menu->actions())
            create = create || (entry->menu() && entry->text() == QLatin1String("Create"));
        QVERIFY(create);
    }
};

QTEST_MAIN(tst_NodeGraphKeys)
#include "tst_NodeGraphKeys.moc"
