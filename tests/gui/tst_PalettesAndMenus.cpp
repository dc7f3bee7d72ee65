#include "OssActionTreeManager.h"
#include "OssMenuManager.h"
#include "OssPalette.h"
#include "OssTestEnvironment.h"

#include <OssImageManager.h>
#include <OssShaderNetworkManager.h>

#include <QAction>
#include <QFile>
#include <QLabel>
#include <QtTest>

#include <memory>

class tst_PalettesAndMenus : public QObject
{
    Q_OBJECT

private slots:
    void actionIdentities_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("fullPath");

        QTest::newRow("trailing slash") << "/Ossa/NodeGraph/"
                                        << "Autoplace"
                                        << "/Ossa/NodeGraph/Autoplace";
        QTest::newRow("no trailing slash") << "/Ossa/NodeGraph"
                                           << "Autoplace"
                                           << "/Ossa/NodeGraph/Autoplace";
        QTest::newRow("no leading slash") << "Ossa/NodeGraph/"
                                          << "Autoplace"
                                          << "Ossa/NodeGraph/Autoplace";
        QTest::newRow("empty menu folder") << "/Ossa/NodeGraph/Create/"
                                           << "Foo"
                                           << "/Ossa/NodeGraph/Create/Foo";
        QTest::newRow("empty menu folder asked with two slashes") << "/Ossa/NodeGraph/Create/"
                                                                  << "Foo"
                                                                  << "/Ossa/NodeGraph/Create//Foo";
    }

    void actionIdentities()
    {
        QFETCH(QString, folder);
        QFETCH(QString, text);
        QFETCH(QString, fullPath);
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QSignalSpy spy(tree, &OssActionTreeManager::actionRegistered);
        auto action = std::make_unique<QAction>(text);
        tree->registerAction(folder, action.get());
        QCOMPARE(spy.count(), 1);
        QVERIFY(tree->hasAction(fullPath));
        QCOMPARE(tree->findAction(fullPath), action.get());
        QVERIFY(tree->folders().contains(folder));
        QVERIFY(tree->actions(folder).contains(action.get()));
        action.reset();
        QVERIFY(!tree->hasAction(fullPath));
        QCOMPARE(tree->findAction(fullPath), nullptr);
    }

    void threeFolderFormsAreDistinct()
    {
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QAction a(QStringLiteral("Frame All")), b(QStringLiteral("Frame All")),
            c(QStringLiteral("Frame All"));
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &a);
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph"), &b);
        tree->registerAction(QStringLiteral("Ossa/NodeGraph/"), &c);
        QCOMPARE(tree->findAction(QStringLiteral("/Ossa/NodeGraph/Frame All")), &a);
        QCOMPARE(tree->findActions(QStringLiteral("/Ossa/NodeGraph/Frame All")),
                 (QList<QAction *>{&a, &b}));
        QCOMPARE(tree->findAction(QStringLiteral("Ossa/NodeGraph/Frame All")), &c);
        // Empty components do not count in an identity.
        QCOMPARE(tree->findAction(QStringLiteral("/Ossa/NodeGraph//Frame All")), &a);
    }

    void duplicateIdentitiesAreKept()
    {
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QAction first(QStringLiteral("Pick Up Edge Under Mouse"));
        QAction second(QStringLiteral("Pick Up Edge Under Mouse"));
        const QString folder = QStringLiteral("/Ossa/NodeGraph/Edges/");
        tree->registerAction(folder, &first);
        tree->registerAction(folder, &second);
        tree->registerAction(folder, &second); // filing the same action twice is a no-op
        const QString path = folder + first.text();
        QCOMPARE(tree->findActions(path), (QList<QAction *>{&first, &second}));
        QCOMPARE(tree->findAction(path), &first);
        QCOMPARE(tree->actions(folder).size(), 2);
    }

    void paletteRegistry()
    {
        OssPaletteManager *manager = OssPaletteManager::instance();
        QSignalSpy registered(manager, &OssPaletteManager::paletteRegistered);
        auto palette = std::make_unique<OssPalette>();
        palette->setObjectName(QStringLiteral("Node Graph"));
        palette->setWindowTitle(QStringLiteral("Node Graph"));
        palette->setContextHelpKey(QStringLiteral("node_graph_palette"));
        QPointer<QLabel> first = new QLabel(QStringLiteral("first"));
        palette->setBodyWidget(first);
        auto *second = new QLabel(QStringLiteral("second"));
        palette->setBodyWidget(second);
        QVERIFY(first.isNull());
        QCOMPARE(palette->originalWidget(), second);
        QCOMPARE(second->parentWidget(), palette.get());

        QVERIFY(manager->registerPalette(palette.get(), OssPaletteManager::NoFlags,
                                         QStringLiteral("/icons/NodeGraph.png")));
        QCOMPARE(registered.count(), 1);
        QCOMPARE(manager->find(QStringLiteral("Node Graph")), palette.get());
        QCOMPARE(manager->iconPath(palette.get()), QStringLiteral("/icons/NodeGraph.png"));
        QCOMPARE(manager->find(QStringLiteral("Node Graph"), OssPaletteManager::VisibleOnly),
                 nullptr);

        OssPalette sameName;
        sameName.setObjectName(QStringLiteral("Node Graph"));
        QVERIFY(!manager->registerPalette(&sameName));
        OssPalette unnamed;
        QVERIFY(!manager->registerPalette(&unnamed));

        QSignalSpy shown(palette.get(), &OssPalette::showRequested);
        palette->showBySidebar();
        QCOMPARE(shown.count(), 1);
        QVERIFY(palette->isVisible());
        QCOMPARE(manager->find(QStringLiteral("Node Graph"), OssPaletteManager::VisibleOnly),
                 palette.get());

        palette.reset();
        QCOMPARE(manager->find(QStringLiteral("Node Graph")), nullptr);
    }

    void menusFromDefinitions()
    {
        QAction autoplace(QStringLiteral("Autoplace"));
        QAction up(QStringLiteral("Select Upstream"));
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"),
                                                         &autoplace);
        OssActionTreeManager::instance()->registerAction(QStringLiteral("/Ossa/NodeGraph/"), &up);

        const QString path = m_environment.scratchDirectory() + QStringLiteral("/menus.xml");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<menus><menu group=\"Context\" name=\"NodeGraph\">"
                   "<action path=\"/Ossa/NodeGraph/Autoplace\"/><separator/>"
                   "<submenu title=\"Select\"><action path=\"/Ossa/NodeGraph/Select Upstream\"/>"
                   "<action path=\"/Ossa/NodeGraph/Missing\"/></submenu>"
                   "</menu></menus>");
        file.close();

        OssMenuManager *menus = OssMenuManager::instance();
        QString error;
        QVERIFY2(menus->loadDefinitions(path, &error), qPrintable(error));
        std::unique_ptr<OssMenu> menu(
            menus->makeMenu(QStringLiteral("Context"), QStringLiteral("NodeGraph")));
        QVERIFY(menu);
        const QList<QAction *> entries = menu->actions();
        QCOMPARE(entries.size(), 3);
        QCOMPARE(entries.at(0), &autoplace);
        QVERIFY(entries.at(1)->isSeparator());
        QVERIFY(entries.at(2)->menu());
        QCOMPARE(entries.at(2)->menu()->title(), QStringLiteral("Select"));
        QCOMPARE(entries.at(2)->menu()->actions(), QList<QAction *>{&up});
        QVERIFY(!menus->makeMenu(QStringLiteral("Context"), QStringLiteral("Nothing")));

        menu->setShortcutGroup(QStringLiteral("Node Graph"));
        QCOMPARE(menu->shortcutGroup(), QStringLiteral("Node Graph"));
    }

    void globalContextMenuActions()
    {
        // The model keeps the actions as objects; the typed lists give back the same actions.
        OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
        auto autoplace = std::make_unique<QAction>(QStringLiteral("Autoplace"));
        QAction frame(QStringLiteral("Frame All"));
        networks->registerGlobalContextMenuAction(autoplace.get());
        networks->registerGlobalContextMenuAction(&frame);
        networks->registerGlobalContextMenuAction(autoplace.get());
        QCOMPARE(networks->globalContextMenuActions(), (QList<QAction *>{autoplace.get(), &frame}));
        autoplace.reset();
        QCOMPARE(networks->globalContextMenuActions(), QList<QAction *>{&frame});

        OssImageManager *images = OssImageManager::instance();
        QAction tiled(QStringLiteral("As Tiled"));
        const QString icon = m_environment.scratchDirectory() + QStringLiteral("/tiled.png");
        QPixmap picture(16, 16);
        picture.fill(Qt::red);
        QVERIFY(picture.save(icon));
        QVERIFY(tiled.icon().isNull());
        images->registerGlobalContextMenuAction(&tiled, QStringLiteral("Add to Nodegraph"), icon);
        QVERIFY(!tiled.icon().isNull());
        QCOMPARE(images->globalContextMenuActions(QStringLiteral("Add to Nodegraph")),
                 QList<QAction *>{&tiled});
        QVERIFY(images->globalContextMenuActions(QStringLiteral("Other")).isEmpty());
        QCOMPARE(images->globalContextMenuTitles(),
                 QStringList{QStringLiteral("Add to Nodegraph")});
    }

    void brokenMenuFileChangesNothing()
    {
        OssMenuManager *menus = OssMenuManager::instance();
        menus->setDefinition(QStringLiteral("Context"), QStringLiteral("Kept"),
                             {QStringLiteral("-")});
        const QString path = m_environment.scratchDirectory() + QStringLiteral("/broken.xml");
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<menus><menu group=\"Context\" name=\"Kept\"><separator/><separator/>");
        file.close();
        QString error;
        QVERIFY(!menus->loadDefinitions(path, &error));
        QVERIFY2(error.startsWith(QLatin1Char('"') + path), qPrintable(error));
        QCOMPARE(menus->definition(QStringLiteral("Context"), QStringLiteral("Kept")),
                 QStringList{QStringLiteral("-")});
        QVERIFY(!menus->loadDefinitions(path + QStringLiteral(".missing"), &error));
        QVERIFY(error.contains(QLatin1String("cannot open")));
    }

private:
    OssTestEnvironment m_environment;
};

QTEST_MAIN(tst_PalettesAndMenus)
#include "tst_PalettesAndMenus.moc"
