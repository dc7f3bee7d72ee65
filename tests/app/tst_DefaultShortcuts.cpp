#include <OssDefaultShortcuts.h>

#include <QAction>
#include <QLineEdit>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

// The shell's default keys for the node graph's actions, and where they act.
class tst_DefaultShortcuts : public QObject
{
    Q_OBJECT

private slots:
    void keys_data()
    {
        QTest::addColumn<QString>("identity");
        QTest::addColumn<QKeySequence>("key");
        QTest::newRow("delete") << "/Ossa/NodeGraph/Delete" << QKeySequence(Qt::Key_Delete);
        QTest::newRow("viewer 1") << "/Ossa/NodeGraph/Connect Selected Node to Viewer"
                                  << QKeySequence(Qt::Key_1);
        QTest::newRow("viewer 0") << "/Ossa/NodeGraph/Connect Selected Node to Viewer0"
                                  << QKeySequence(Qt::Key_0);
        QTest::newRow("viewer 7") << "/Ossa/NodeGraph/Connect Selected Node to Viewer7"
                                  << QKeySequence(Qt::Key_7);
        QTest::newRow("copy") << "/Ossa/NodeGraph/Copy" << QKeySequence(QKeySequence::Copy);
        QTest::newRow("frame") << "/Ossa/NodeGraph/Frame Nodes" << QKeySequence(Qt::Key_Home);
        QTest::newRow("quick create")
            << "/Ossa/NodeGraph/Quick Create" << QKeySequence(Qt::Key_Tab);
        QTest::newRow("search") << "/Ossa/NodeGraph/Search Node"
                                << QKeySequence(Qt::CTRL + Qt::Key_F);
        QTest::newRow("import") << "/Ossa/NodeGraph/Import Nodes"
                                << QKeySequence(Qt::CTRL + Qt::Key_I);
        QTest::newRow("none for another folder") << "/Ossa/Other/Delete" << QKeySequence();
    }

    void keys()
    {
        QFETCH(QString, identity);
        QFETCH(QKeySequence, key);
        const QList<QKeySequence> keys = OssDefaultShortcuts::keysFor(identity);
        if (key.isEmpty())
            QVERIFY(keys.isEmpty());
        else
            QCOMPARE(keys.value(0), key);
    }

    // One key never stands for two actions.
    void noKeyIsSharedByTwoActions()
    {
        QHash<QKeySequence, QString> owner;
        for (const QString &identity : OssDefaultShortcuts::identities())
            for (const QKeySequence &key : OssDefaultShortcuts::keysFor(identity)) {
                QVERIFY2(!owner.contains(key), qPrintable(key.toString() + " is used by " +
                                                          owner.value(key) + " and " + identity));
                owner.insert(key, identity);
            }
        QVERIFY(owner.size() > 40);
    }

    // A key reaches the action while the focus is inside the node graph, not elsewhere; keys
    // the user gave are kept.
    void keysActWithinTheNodeGraph()
    {
        QWidget window;
        auto *layout = new QVBoxLayout(&window);
        auto *graph = new QWidget;
        auto *graphChild = new QWidget(graph);
        graphChild->setFocusPolicy(Qt::StrongFocus);
        auto *elsewhere = new QWidget;
        elsewhere->setFocusPolicy(Qt::StrongFocus);
        layout->addWidget(graph);
        layout->addWidget(elsewhere);
        QAction remove(QStringLiteral("Delete"));
        QVERIFY(OssDefaultShortcuts::apply(&remove, "/Ossa/NodeGraph/Delete", graph));
        QAction chosen(QStringLiteral("Copy"));
        chosen.setShortcut(QKeySequence(Qt::Key_C));
        QVERIFY(!OssDefaultShortcuts::apply(&chosen, "/Ossa/NodeGraph/Copy", graph));
        QCOMPARE(chosen.shortcut(), QKeySequence(Qt::Key_C));
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QSignalSpy triggered(&remove, &QAction::triggered);
        elsewhere->setFocus();
        QTest::keyClick(elsewhere, Qt::Key_Delete);
        QCOMPARE(triggered.count(), 0);
        graphChild->setFocus();
        QTest::keyClick(graphChild, Qt::Key_Delete);
        QCOMPARE(triggered.count(), 1);
        QTest::keyClick(graphChild, Qt::Key_Backspace);
        QCOMPARE(triggered.count(), 2);
    }
};

QTEST_MAIN(tst_DefaultShortcuts)
#include "tst_DefaultShortcuts.moc"
