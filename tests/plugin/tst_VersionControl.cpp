#include "OssModalDriver.h"
#include "OssTestPluginHost.h"

#include "OssShaderNetworkUpgradeView.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssApplication.h>
#include <OssResourceInfo.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

// The node version control window on the real host and plug-in: how nodes are compared with
// the installed definitions, the context menu driven through its widgets, upgrading, converting
// and dumping, the view's commands that open the window, and the outdated sample project.
//
// The nodes: blurs Alpha and Zed, the sharpen Crisp and the gamma Gam, all made from the
// installed definitions; each test makes some of them outdated.
class tst_VersionControl : public QObject
{
    Q_OBJECT

private:
    using View = OssShaderNetworkUpgradeView;

    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    QString m_before;
    QString m_installed;
    QString m_installedDate;

    OssUndoManager *undo() { return OssUndoManager::instance(); }
    OssShaderNetworkManager *manager() { return OssShaderNetworkManager::instance(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }

    static void setVersion(OssSnBaseNode *node, const QString &created, const QString &present,
                           const QString &date)
    {
        node->setVersionHashCreated(created);
        node->setVersionHashPresent(present);
        node->setVersionDate(date);
    }
    void rebase()
    {
        undo()->clear();
        m_host.clearLines();
        m_before = m_network->dump();
    }

    static QTreeWidgetItem *versionRow(View &view, const QString &uuid)
    {
        for (int i = 0; i < view.tree()->topLevelItemCount(); ++i)
            if (view.tree()->topLevelItem(i)->text(View::UuidColumn) == uuid)
                return view.tree()->topLevelItem(i);
        return nullptr;
    }
    static QTreeWidgetItem *nodeRow(View &view, OssSnBaseNode *node)
    {
        for (int i = 0; i < view.tree()->topLevelItemCount(); ++i) {
            QTreeWidgetItem *top = view.tree()->topLevelItem(i);
            for (int j = 0; j < top->childCount(); ++j)
                if (View::nodeOfRow(top->child(j)) == node)
                    return top->child(j);
        }
        return nullptr;
    }
    // The states a row shows its path in: S(ame), D(ifferent), O(lder), N(ewer), C(ustom).
    static QString states(QTreeWidgetItem *row)
    {
        QString shown;
        const char letters[] = "SDONC";
        for (int column = View::SameColumn; column <= View::CustomColumn; ++column)
            if (!row->text(column).isEmpty())
                shown += QLatin1Char(letters[column - View::SameColumn]);
        return shown;
    }
    static QString counts(QTreeWidgetItem *versionRow)
    {
        QStringList texts;
        for (int column = View::SameColumn; column <= View::CustomColumn; ++column)
            texts << versionRow->text(column);
        return texts.join(QLatin1Char(','));
    }

    static bool showView(View &view, const QList<OssSnBaseNode *> &nodes)
    {
        view.populateNodes(nodes);
        // Wide enough for every column to lie in sight.
        view.resize(2600, 600);
        view.show();
        return QTest::qWaitForWindowExposed(&view);
    }
    // Moves the mouse over a cell and asks for the context menu there.
    static void contextMenuAt(View &view, QTreeWidgetItem *row, int column)
    {
        QTreeWidget *tree = view.tree();
        const QPoint at(tree->header()->sectionViewportPosition(column) + 4,
                        tree->visualItemRect(row).center().y());
        QTest::mouseMove(tree->viewport(), at);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, tree->viewport()->mapToGlobal(at));
        QApplication::sendEvent(tree->viewport(), &event);
    }
    static QAction *actionNamed(QMenu *menu, const QString &text)
    {
        for (QAction *action : menu->actions())
            if (action->text() == text)
                return action;
        return nullptr;
    }
    // Clicks the entry Text of the next context menu.
    static void chooseFromMenu(const QString &text, std::function<void()> next = nullptr)
    {
        OssModalDriver::whenPopup([=](QMenu *menu) {
            if (next)
                next();
            QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier,
                              menu->actionGeometry(actionNamed(menu, text)).center());
        });
    }
    // Answers the next message box, recording its text.
    static void answerMessage(QMessageBox::StandardButton button, QString *text)
    {
        OssModalDriver::whenModal<QMessageBox>([=](QMessageBox *box) {
            *text = box->text();
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(true);
        m_installed = manager()->hashStringForVersionUUID(QStringLiteral("OSS_Filter_Blur"));
        m_installedDate = manager()->versionDatePresent(QStringLiteral("OSS_Filter_Blur"));
        QVERIFY(!m_installed.isEmpty());
        QCOMPARE(m_installedDate, QStringLiteral("2026-03-14"));
    }

    void init()
    {
        OssModalDriver::timedOut() = false;
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY2(m_host.createNodes(m_network, {{"Filter/Blur", "Zed"},
                                                {"Filter/Blur", "Alpha"},
                                                {"Filter/Sharpen", "Crisp"},
                                                {"Adjust/Gamma", "Gam"}}),
                 qPrintable(m_host.errorString()));
        m_network->clearSelection();
        rebase();
    }

    void cleanup()
    {
        QVERIFY(!OssModalDriver::timedOut());
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- the host keeps each node's own definition hash

    void aNodeKeepsItsOwnDefinitionHash()
    {
        OssSnBaseNode *zed = node("Zed");
        QCOMPARE(zed->versionHashCreated(), m_installed);
        QCOMPARE(zed->versionHashPresent(), m_installed);
        zed->setVersionHashPresent(QStringLiteral("0123abcd"));
        QCOMPARE(zed->versionHashPresent(), QStringLiteral("0123abcd"));
        QCOMPARE(manager()->hashStringForVersionUUID(zed->versionUUID()), m_installed);

        OssShaderNetwork *reopened = m_host.saveAndReopen(QStringLiteral("own-hash.ossa"));
        QVERIFY2(reopened, qPrintable(m_host.errorString()));
        QCOMPARE(reopened->node("Zed")->versionHashPresent(), QStringLiteral("0123abcd"));
        QCOMPARE(reopened->node("Alpha")->versionHashPresent(), m_installed);
    }

    void aProjectSavedBeforeNodesKeptTheirHashStillLoads()
    {
        // The bundled sample was saved without present hashes: each node has the definition it
        // was created from.
        OssShaderNetwork *sample = m_host.openSample();
        QVERIFY2(sample, qPrintable(m_host.errorString()));
        QVERIFY(!sample->getAllNodes().isEmpty());
        for (OssSnBaseNode *each : sample->getAllNodes())
            QCOMPARE(each->versionHashPresent(), each->versionHashCreated());
    }

    // --- comparison

    void comparisonStates_data()
    {
        QTest::addColumn<QString>("uuid");
        QTest::addColumn<QString>("created");
        QTest::addColumn<QString>("present");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("counted");
        const QString h = QStringLiteral("installed");
        const QString blur = QStringLiteral("OSS_Filter_Blur");
        QTest::newRow("same although dated otherwise") << blur << h << h << "2020-01-01"
                                                       << "S"
                                                       << "1,,,,";
        QTest::newRow("different, same date") << blur << "x1"
                                              << "x1"
                                              << "2026-03-14"
                                              << "D"
                                              << ",1,,,";
        QTest::newRow("older") << blur << "x1"
                               << "x1"
                               << "2025-01-01"
                               << "DO"
                               << ",1,1,,";
        QTest::newRow("newer") << blur << "x1"
                               << "x1"
                               << "2027-01-01"
                               << "DN"
                               << ",1,,1,";
        QTest::newRow("undated is older") << blur << "x1"
                                          << "x1"
                                          << ""
                                          << "DO"
                                          << ",1,1,,";
        QTest::newRow("custom, never older") << blur << h << "y2"
                                             << "2025-01-01"
                                             << "DC"
                                             << ",1,,,1";
        QTest::newRow("no present hash: shown, not counted") << blur << h << ""
                                                             << "2026-03-14"
                                                             << "S"
                                                             << ",,,,";
        QTest::newRow("no installed definition: shown, not counted") << "OSS_Nothing_Installed"
                                                                     << "x1"
                                                                     << "x1"
                                                                     << "2026-03-14"
                                                                     << "S"
                                                                     << ",,,,";
    }

    void comparisonStates()
    {
        QFETCH(QString, uuid);
        QFETCH(QString, created);
        QFETCH(QString, present);
        QFETCH(QString, date);
        QFETCH(QString, shown);
        QFETCH(QString, counted);
        const auto resolve = [this](const QString &hash) {
            return hash == QLatin1String("installed") ? m_installed : hash;
        };
        OssSnBaseNode *zed = node("Zed");
        zed->setVersionUUID(uuid);
        setVersion(zed, resolve(created), resolve(present), date);
        View view;
        QVERIFY(showView(view, {zed}));
        QTreeWidgetItem *row = nodeRow(view, zed);
        QVERIFY(row);
        QCOMPARE(states(row), shown);
        QCOMPARE(counts(row->parent()), counted);
        QCOMPARE(row->text(View::HashColumn), resolve(present));
        QCOMPARE(row->data(View::HashColumn, Qt::UserRole).toString(), resolve(present));
        QCOMPARE(row->text(View::DateColumn), date.isEmpty() ? QStringLiteral("<EMPTY>") : date);
        for (int column = View::SameColumn; column <= View::CustomColumn; ++column) {
            const bool holds = !row->text(column).isEmpty();
            QCOMPARE(row->text(column), holds ? zed->path() : QString());
            QCOMPARE(row->data(column, Qt::UserRole).value<QObject *>(),
                     static_cast<QObject *>(holds ? zed : nullptr));
        }
    }

    void versionRowsAreSortedAndDescribeTheInstalledDefinition()
    {
        node("Gam")->setVersionUUID(QString());
        View view;
        QVERIFY(showView(view, m_network->nodes()));
        QCOMPARE(view.windowTitle(), QStringLiteral("Node Version Control"));
        QCOMPARE(view.minimumSize(), QSize(1024, 480));
        QStringList headers;
        for (int column = 0; column < view.tree()->columnCount(); ++column)
            headers << view.tree()->headerItem()->text(column);
        QCOMPARE(headers, QStringList({"UUID", "Hash", "Date", "Same", "Different", "Older",
                                       "Newer", "Custom"}));
        QCOMPARE(view.tree()->selectionMode(), QAbstractItemView::ExtendedSelection);
        QStringList versions;
        for (int i = 0; i < view.tree()->topLevelItemCount(); ++i)
            versions << view.tree()->topLevelItem(i)->text(View::UuidColumn);
        // The empty version UUID sorts first; the viewer of the new project has its own.
        QCOMPARE(versions.first(), QStringLiteral("<EMPTY>"));
        QStringList sorted = versions.mid(1);
        sorted.sort();
        QCOMPARE(versions.mid(1), sorted);
        QTreeWidgetItem *blur = versionRow(view, QStringLiteral("OSS_Filter_Blur"));
        QVERIFY(blur);
        QCOMPARE(blur->text(View::HashColumn), m_installed);
        QCOMPARE(blur->text(View::DateColumn), m_installedDate);
        QCOMPARE(blur->childCount(), 2);
        // Node rows by name.
        QCOMPARE(View::nodeOfRow(blur->child(0)), node("Alpha"));
        QCOMPARE(View::nodeOfRow(blur->child(1)), node("Zed"));
        QCOMPARE(counts(blur), QStringLiteral("2,,,,"));
        QCOMPARE(versionRow(view, QStringLiteral("<EMPTY>"))->text(View::HashColumn),
                 QStringLiteral("<EMPTY>"));
        // Close accepts the window.
        QPushButton *close = view.findChild<QPushButton *>();
        QCOMPARE(close->text(), QStringLiteral("Close"));
        QTest::mouseClick(close, Qt::LeftButton);
        QVERIFY(!view.isVisible());
        QCOMPARE(view.result(), int(QDialog::Accepted));
    }

    // --- the context menu

    void theHoveredStateColumnIsTheMenusActiveEntry_data()
    {
        QTest::addColumn<int>("column");
        QTest::addColumn<QString>("active");
        QTest::newRow("Different") << int(View::DifferentColumn) << "All";
        QTest::newRow("Older") << int(View::OlderColumn) << "Old";
        QTest::newRow("Newer") << int(View::NewerColumn) << "New";
        QTest::newRow("Custom") << int(View::CustomColumn) << "Custom";
        QTest::newRow("Same") << int(View::SameColumn) << "";
        QTest::newRow("UUID") << int(View::UuidColumn) << "";
    }

    void theHoveredStateColumnIsTheMenusActiveEntry()
    {
        QFETCH(int, column);
        QFETCH(QString, active);
        setVersion(node("Zed"), "x1", "x1", "2025-01-01");
        rebase();
        View view;
        QVERIFY(showView(view, {node("Zed")}));
        QString shownActive = QStringLiteral("unseen");
        QStringList entries;
        QStringList keys;
        OssModalDriver::whenPopup([&](QMenu *menu) {
            shownActive = menu->activeAction() ? menu->activeAction()->text() : QString();
            for (QAction *action : menu->actions())
                entries << (action->isSeparator() ? QStringLiteral("-") : action->text());
            if (QAction *convert = actionNamed(menu, QStringLiteral("Convert To")))
                for (QAction *key : convert->menu()->actions())
                    keys << key->text();
            QTest::keyClick(menu, Qt::Key_Escape);
        });
        contextMenuAt(view, nodeRow(view, node("Zed")), column);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(shownActive, active);
        QCOMPARE(entries, QStringList({"All", "Old", "New", "Custom", "-", "Dump", "Convert To"}));
        QStringList sortedKeys = manager()->nodePathKeys();
        sortedKeys.sort();
        QCOMPARE(keys, sortedKeys);
        QCOMPARE(m_network->dump(), m_before);
    }

    void noMenuAwayFromTheRows()
    {
        View view;
        QVERIFY(showView(view, {node("Zed")}));
        bool shown = false;
        const QPoint below(10, view.tree()->viewport()->height() - 5);
        QContextMenuEvent event(QContextMenuEvent::Mouse, below,
                                view.tree()->viewport()->mapToGlobal(below));
        QTimer::singleShot(50, [&] {
            if (QWidget *popup = QApplication::activePopupWidget()) {
                shown = true;
                popup->close();
            }
        });
        QApplication::sendEvent(view.tree()->viewport(), &event);
        QTest::qWait(100);
        QVERIFY(!shown);
    }

    void allOnAVersionRowUpgradesBothDifferentNodes()
    {
        setVersion(node("Zed"), "x1", "x1", "2026-03-14");
        setVersion(node("Alpha"), "x2", "x2", "2025-02-02");
        rebase();
        View view;
        QVERIFY(showView(view, m_network->nodes()));
        QTreeWidgetItem *blur = versionRow(view, QStringLiteral("OSS_Filter_Blur"));
        QCOMPARE(counts(blur), QStringLiteral(",2,1,,"));
        QSignalSpy changed(manager(), SIGNAL(nodeGraphIsManuallyChanged()));
        chooseFromMenu(QStringLiteral("All"));
        contextMenuAt(view, blur, View::DifferentColumn);
        QVERIFY(!OssModalDriver::timedOut());
        for (const char *name : {"Zed", "Alpha"}) {
            OssSnBaseNode *upgraded = node(QString::fromLatin1(name));
            QCOMPARE(upgraded->versionHashPresent(), m_installed);
            QCOMPARE(upgraded->versionHashCreated(), m_installed);
            QCOMPARE(upgraded->versionDate(), m_installedDate);
            QTreeWidgetItem *row = nodeRow(view, upgraded);
            QCOMPARE(states(row), QStringLiteral("S"));
            QCOMPARE(row->text(View::HashColumn), m_installed);
            QCOMPARE(row->text(View::DateColumn), m_installedDate);
            QCOMPARE(row->data(View::DateColumn, Qt::UserRole).toString(), m_installedDate);
        }
        // The counts follow; an emptied count shows nothing rather than 0.
        QCOMPARE(counts(blur), QStringLiteral("2,,,,"));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Upgrade Nodes"));
        const QString after = m_network->dump();
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(node("Alpha")->versionDate(), QStringLiteral("2025-02-02"));
        undo()->redo();
        QCOMPARE(m_network->dump(), after);
    }

    void onlyTheNodesOfTheChosenStateAreUpgraded()
    {
        setVersion(node("Zed"), "x1", "x1", "2025-01-01");
        setVersion(node("Alpha"), m_installed, "y1", "2025-01-01");
        rebase();
        View view;
        QVERIFY(showView(view, m_network->nodes()));
        QTreeWidgetItem *blur = versionRow(view, QStringLiteral("OSS_Filter_Blur"));
        QCOMPARE(counts(blur), QStringLiteral(",2,1,,1"));
        chooseFromMenu(QStringLiteral("Old"));
        contextMenuAt(view, blur, View::OlderColumn);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(states(nodeRow(view, node("Zed"))), QStringLiteral("S"));
        QCOMPARE(states(nodeRow(view, node("Alpha"))), QStringLiteral("DC"));
        QCOMPARE(node("Alpha")->versionHashPresent(), QStringLiteral("y1"));
        QCOMPARE(counts(blur), QStringLiteral("1,1,,,1"));
        // Nothing of the state left: the entry does nothing.
        chooseFromMenu(QStringLiteral("New"));
        contextMenuAt(view, blur, View::NewerColumn);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(undo()->count(), 1);
    }

    void anUpgradeThatDropsConnectionsListsThemAndWaitsForYes()
    {
        OssSnBaseNode *zed = node("Zed");
        // Zed's older definition had an input Detail, fed by Crisp.
        QVERIFY(zed->addInput(QStringLiteral("Detail")));
        QVERIFY(zed->connectInput(QStringLiteral("Detail"), node("Crisp"), QStringLiteral("Output"),
                                  false));
        setVersion(zed, "x1", "x1", "2025-01-01");
        rebase();
        QCOMPARE(manager()->upgradeLostConnections(zed), QStringList{"Zed.Detail <- Crisp.Output"});
        View view;
        QVERIFY(showView(view, {zed}));
        QString asked;
        chooseFromMenu(QStringLiteral("Old"), [&] { answerMessage(QMessageBox::No, &asked); });
        contextMenuAt(view, nodeRow(view, zed), View::OlderColumn);
        QVERIFY(!OssModalDriver::timedOut());
        QVERIFY2(asked.contains(QStringLiteral("Zed.Detail <- Crisp.Output")), qPrintable(asked));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
        QCOMPARE(states(nodeRow(view, zed)), QStringLiteral("DO"));

        asked.clear();
        chooseFromMenu(QStringLiteral("Old"), [&] { answerMessage(QMessageBox::Yes, &asked); });
        contextMenuAt(view, nodeRow(view, zed), View::OlderColumn);
        QVERIFY(!OssModalDriver::timedOut());
        QVERIFY(!asked.isEmpty());
        QVERIFY(!zed->hasInput(QStringLiteral("Detail")));
        QVERIFY(node("Crisp")->outputNodes().isEmpty());
        QCOMPARE(states(nodeRow(view, zed)), QStringLiteral("S"));
        QCOMPARE(undo()->count(), 1);
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(zed->inputConnection(QStringLiteral("Detail")), node("Crisp"));
    }

    void upgradingNetworksLeavesNodesThatWouldLoseConnections()
    {
        OssSnBaseNode *zed = node("Zed");
        QVERIFY(zed->addInput(QStringLiteral("Detail")));
        QVERIFY(zed->connectInput(QStringLiteral("Detail"), node("Crisp"), QStringLiteral("Output"),
                                  false));
        setVersion(zed, "x1", "x1", "2025-01-01");
        setVersion(node("Alpha"), "x1", "x1", "2025-01-01");
        QCOMPARE(manager()->upgradeNetworks({m_network}), 1);
        QCOMPARE(node("Alpha")->versionHashPresent(), m_installed);
        QCOMPARE(zed->versionHashPresent(), QStringLiteral("x1"));
        QVERIFY(m_host.hasLine(QStringLiteral("[ !! ] Node '%1' keeps its definition: upgrading "
                                              "it would drop connections")
                                   .arg(zed->path())));
    }

    void convertToMakesTheSelectedNodesAnotherType()
    {
        View view;
        QVERIFY(showView(view, m_network->nodes()));
        QTreeWidgetItem *zed = nodeRow(view, node("Zed"));
        QTest::mouseClick(view.tree()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          view.tree()->visualItemRect(zed).center());
        QString chosen;
        OssModalDriver::whenPopup([&](QMenu *menu) {
            // Down to "Convert To", Right into its list, down to the key, Return.
            for (int i = 0; i < 10 && (!menu->activeAction() ||
                                       menu->activeAction()->text() != QLatin1String("Convert To"));
                 ++i)
                QTest::keyClick(menu, Qt::Key_Down);
            OssModalDriver::whenPopup(
                [&](QMenu *keys) {
                    for (int i = 0;
                         i < 500 && (!keys->activeAction() || keys->activeAction()->text() !=
                                                                  QLatin1String("Filter/Sharpen"));
                         ++i)
                        QTest::keyClick(keys, Qt::Key_Down);
                    chosen = keys->activeAction() ? keys->activeAction()->text() : QString();
                    QTest::keyClick(keys, Qt::Key_Return);
                },
                menu);
            QTest::keyClick(menu, Qt::Key_Right);
        });
        contextMenuAt(view, zed, View::UuidColumn);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(chosen, QStringLiteral("Filter/Sharpen"));
        OssSnBaseNode *converted = node("Zed");
        QVERIFY(converted);
        QCOMPARE(converted->pathKey(), QStringLiteral("Filter/Sharpen"));
        // The window shows the nodes the networks hold now.
        QTreeWidgetItem *sharpen = versionRow(view, QStringLiteral("OSS_Filter_Sharpen"));
        QVERIFY(sharpen);
        QCOMPARE(sharpen->childCount(), 2);
        QVERIFY(nodeRow(view, converted));
        QCOMPARE(versionRow(view, QStringLiteral("OSS_Filter_Blur"))->childCount(), 1);
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Convert to Filter/Sharpen"));
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
    }

    void dumpWritesTheInstalledDefinition()
    {
        View view;
        QVERIFY(showView(view, {node("Zed")}));
        chooseFromMenu(QStringLiteral("Dump"));
        contextMenuAt(view, nodeRow(view, node("Zed")), View::HashColumn);
        QVERIFY(!OssModalDriver::timedOut());
        bool found = false;
        for (const QString &line : m_host.lines())
            found = found || (line.startsWith(QStringLiteral("[ -- ] Definition of '%1' "
                                                             "(OSS_Filter_Blur):")
                                                  .arg(node("Zed")->path())) &&
                              line.contains(QStringLiteral("PathKey=\"Filter/Blur\"")));
        QVERIFY(found);
        QCOMPARE(undo()->count(), 0);
    }

    // --- the view's commands

    void theViewsCommandsOpenTheWindowModally()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(
            m_network->createNode(QStringLiteral("Misc/Group"), QStringLiteral("Grp")));
        QVERIFY(group);
        OssSnBaseNode *innerBlur =
            group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("In"));
        QVERIFY(innerBlur);
        m_network->clearSelection();
        node("Crisp")->setSelected(true);
        innerBlur->setSelected(true);
        OssShaderNetworkView *view = m_host.manager()->currentView();
        QVERIFY(view);
        const auto nodesShown = [](View *window) {
            QStringList names;
            for (int i = 0; i < window->tree()->topLevelItemCount(); ++i)
                for (int j = 0; j < window->tree()->topLevelItem(i)->childCount(); ++j)
                    names << View::nodeOfRow(window->tree()->topLevelItem(i)->child(j))->name();
            names.sort();
            return names;
        };
        QStringList shown;
        QObject *parent = nullptr;
        bool modal = false;
        const auto closeWindow = [&] {
            OssModalDriver::whenModal<View>([&](View *window) {
                shown = nodesShown(window);
                parent = window->parent();
                modal = window->isModal();
                QTest::mouseClick(window->findChild<QPushButton *>(), Qt::LeftButton);
            });
        };
        // Reached by name on the plug-in, as scripts do: no action fires them.
        closeWindow();
        QVERIFY(QMetaObject::invokeMethod(m_host.plugin(), "upgradeSelectedNodeInfo"));
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(shown, QStringList({"Crisp", "In"}));
        QCOMPARE(parent, static_cast<QObject *>(view));
        QVERIFY(modal);
        QVERIFY(m_host.hasLine(QStringLiteral("[ -- ] Upgrade Selected Shader Node Info")));

        closeWindow();
        QVERIFY(QMetaObject::invokeMethod(m_host.plugin(), "upgradeAllNodeInfo"));
        QVERIFY(!OssModalDriver::timedOut());
        QStringList all;
        for (OssSnBaseNode *each : m_network->getAllNodes())
            all << each->name();
        all.sort();
        QCOMPARE(shown, all);
        QVERIFY(m_host.hasLine(QStringLiteral("[ -- ] Upgrade All Shader Node Info")));

        closeWindow();
        view->upgradeNodeInfo({node("Gam"), node("Alpha")});
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(shown, QStringList({"Alpha", "Gam"}));
        QVERIFY(!QApplication::activeModalWidget());
    }

    // --- the outdated sample project

    void theOutdatedSampleShowsEveryState()
    {
        OssShaderNetwork *outdated = m_host.openProject(OssResourceInfo::instance()->projectPath() +
                                                        QStringLiteral("/outdated.ossa"));
        QVERIFY2(outdated, qPrintable(m_host.errorString()));
        m_network = outdated;
        View view;
        QVERIFY(showView(view, outdated->getAllNodes()));
        const QMap<QString, QString> expected{{"Dirt_Soften", "DO"}, {"Dirt_Grunge", "DO"},
                                              {"Trim_Tint", "DN"},   {"Dirt_Levels", "DC"},
                                              {"Trim_Merge", "D"},   {"Dirt_Merge", "S"},
                                              {"Base_Color", "S"}};
        for (auto each = expected.begin(); each != expected.end(); ++each) {
            QTreeWidgetItem *row = nodeRow(view, outdated->node(each.key()));
            QVERIFY2(row, qPrintable(each.key()));
            QCOMPARE(states(row), each.value());
        }
        // Dirt_Grunge's old definition had an input its installed one lacks.
        rebase();
        QString asked;
        chooseFromMenu(QStringLiteral("Old"), [&] { answerMessage(QMessageBox::No, &asked); });
        contextMenuAt(view, nodeRow(view, outdated->node("Dirt_Grunge")), View::OlderColumn);
        QVERIFY(!OssModalDriver::timedOut());
        QVERIFY2(asked.contains(QStringLiteral("Dirt_Grunge.Detail <- Dirt_Breakup.Output")),
                 qPrintable(asked));
        QCOMPARE(m_network->dump(), m_before);
    }
};

QTEST_MAIN(tst_VersionControl)
#include "tst_VersionControl.moc"
