#include "OssModalDriver.h"
#include "OssTestPluginHost.h"

#include "OssGroupNodeKnobWidget.h"
#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

#include <memory>

// The group knob manager on the real host and plug-in, driven through its widgets: the knob
// dialog, the pick dialog with its search, the link and rename questions and the view's commands
// that open it. Every change is one undo step whose undo gives back the identical network.
//
// The group "Grp" holds Soft (a blur), Crisp (a sharpen), Tint (a constant colour) and Unlit (a
// set-unlit node, never offered); its knobs start as Soft/Radius, Soft/Quality and Crisp/Amount.
class tst_KnobManager : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssSnGroupNode *m_group = nullptr;
    QString m_before;
    // The history position the checked command starts from.
    int m_baseIndex = 0;

    OssUndoManager *undo() { return OssUndoManager::instance(); }
    OssShaderNetwork *inner() { return m_group->groupNetwork(); }
    OssSnBaseNode *innerNode(const QString &name) { return inner()->node(name); }
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }

    // The knob names in the group's order.
    QStringList knobs() const
    {
        QStringList names;
        for (const QString &name : m_group->nodeAttributeNames())
            if (name.contains(QLatin1Char('/')))
                names << name;
        return names;
    }

    std::unique_ptr<OssGroupNodeKnobDialog> openDialog()
    {
        auto dialog = std::make_unique<OssGroupNodeKnobDialog>(m_group);
        dialog->resize(600, 400);
        dialog->show();
        if (!QTest::qWaitForWindowExposed(dialog.get()))
            return nullptr;
        return dialog;
    }
    static QTreeWidget *tree(OssGroupNodeKnobDialog *dialog)
    {
        return dialog->knobWidget()->knobTree();
    }
    static QTreeWidgetItem *item(QTreeWidget *tree, const QString &text)
    {
        const QList<QTreeWidgetItem *> found =
            tree->findItems(text, Qt::MatchStartsWith | Qt::MatchRecursive);
        return found.value(0);
    }
    static void click(QTreeWidget *tree, QTreeWidgetItem *item,
                      Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, modifiers,
                          tree->visualItemRect(item).center());
    }
    static QPushButton *button(OssGroupNodeKnobDialog *dialog, const QString &text)
    {
        for (QAbstractButton *each : dialog->knobWidget()->buttonBox()->buttons())
            if (each->text() == text)
                return qobject_cast<QPushButton *>(each);
        return nullptr;
    }
    static QPushButton *standardButton(QDialog *dialog, const QString &text)
    {
        for (QPushButton *each : dialog->findChildren<QPushButton *>())
            if (each->text().remove(QLatin1Char('&')) == text)
                return each;
        return nullptr;
    }
    // Answers the next message box with OK, recording "title: text".
    void expectMessage(QStringList *seen)
    {
        OssModalDriver::whenModal<QMessageBox>([=](QMessageBox *box) {
            seen->append(box->windowTitle() + QStringLiteral(": ") + box->text());
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
    }
    // Types Text into the next text question, records its title, label and starting text, and
    // presses OK (or Cancel when Text is null).
    void answerText(const QString &text, QStringList *seen, std::function<void()> next = nullptr)
    {
        OssModalDriver::whenModal<QInputDialog>([=](QInputDialog *input) {
            seen->append(QStringLiteral("%1|%2|%3")
                             .arg(input->windowTitle(), input->labelText(), input->textValue()));
            if (next)
                next();
            if (text.isNull()) {
                input->reject();
                return;
            }
            auto *edit = input->findChild<QLineEdit *>();
            edit->selectAll();
            QTest::keyClick(edit, Qt::Key_Backspace);
            QTest::keyClicks(edit, text);
            QTest::mouseClick(standardButton(input, QStringLiteral("OK")), Qt::LeftButton);
        });
    }

    void checkOneUndoStep(const QString &title)
    {
        QCOMPARE(undo()->index(), m_baseIndex + 1);
        QCOMPARE(undo()->undoText(), title);
        const QString after = m_network->dump();
        QVERIFY(after != m_before);
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
        undo()->redo();
        QCOMPARE(m_network->dump(), after);
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        // The dialogs are answered through their widgets.
        OssApplication::setPopupsAllowed(true);
    }

    void init()
    {
        OssModalDriver::timedOut() = false;
        m_network = m_host.newProject();
        QVERIFY(m_network);
        m_group = qobject_cast<OssSnGroupNode *>(
            m_network->createNode(QStringLiteral("Misc/Group"), QStringLiteral("Grp")));
        QVERIFY(m_group);
        QVERIFY(inner()->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Soft")));
        QVERIFY(inner()->createNode(QStringLiteral("Filter/Sharpen"), QStringLiteral("Crisp")));
        QVERIFY(inner()->createNode(QStringLiteral("Procedural/Constant/Color"),
                                    QStringLiteral("Tint")));
        QVERIFY(inner()->createNode(QStringLiteral("Misc/Set Unlit"), QStringLiteral("Unlit")));
        QCOMPARE(m_group->createKnob(innerNode("Soft"), "Radius"), QStringLiteral("Soft/Radius"));
        QCOMPARE(m_group->createKnob(innerNode("Soft"), "Quality"), QStringLiteral("Soft/Quality"));
        QCOMPARE(m_group->createKnob(innerNode("Crisp"), "Amount"), QStringLiteral("Crisp/Amount"));
        m_network->clearSelection();
        undo()->clear();
        m_baseIndex = 0;
        m_host.clearLines();
        m_before = m_network->dump();
    }

    void cleanup()
    {
        QVERIFY(!OssModalDriver::timedOut());
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- the knob dialog

    void knobsAreShownByAttributeGroup()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Group Node Knobs"));
        QVERIFY(dialog->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QTreeWidget *knobTree = tree(dialog.get());
        QVERIFY(knobTree->isHeaderHidden());
        QCOMPARE(knobTree->selectionMode(), QAbstractItemView::ExtendedSelection);
        QCOMPARE(knobTree->topLevelItemCount(), 2);
        QTreeWidgetItem *soft = knobTree->topLevelItem(0);
        QCOMPARE(soft->text(0), QStringLiteral("Soft"));
        QCOMPARE(soft->data(0, Qt::UserRole + 5).toString(), QStringLiteral("Soft"));
        QCOMPARE(soft->childCount(), 2);
        QTreeWidgetItem *radius = soft->child(0);
        QCOMPARE(radius->text(0), QStringLiteral("Radius { Soft.Radius }"));
        QCOMPARE(radius->data(0, Qt::UserRole + 1).value<QObject *>(),
                 static_cast<QObject *>(innerNode("Soft")));
        QCOMPARE(radius->data(0, Qt::UserRole + 2).toString(), QStringLiteral("Radius"));
        QCOMPARE(radius->data(0, Qt::UserRole + 4).toString(), QStringLiteral("Soft/Radius"));
        QCOMPARE(radius->data(0, Qt::UserRole + 5).toString(), QStringLiteral("Soft"));
        QCOMPARE(radius->data(0, Qt::UserRole + 6).toString(), QStringLiteral("Radius"));
        QCOMPARE(soft->child(1)->text(0), QStringLiteral("Quality { Soft.Quality }"));
        QCOMPARE(knobTree->topLevelItem(1)->text(0), QStringLiteral("Crisp"));
        QCOMPARE(knobTree->topLevelItem(1)->child(0)->text(0),
                 QStringLiteral("Amount { Crisp.Amount }"));
        QVERIFY(m_host.hasLine(QStringLiteral("[ -- ] Group node attributes : 'Collapsed, "
                                              "Soft/Radius, Soft/Quality, Crisp/Amount'")));
        // The buttons from the top, OK closing the dialog.
        QStringList texts;
        for (QAbstractButton *each : dialog->knobWidget()->buttonBox()->buttons())
            if (dialog->knobWidget()->buttonBox()->buttonRole(each) == QDialogButtonBox::ActionRole)
                texts << each->text();
        QCOMPARE(texts, QStringList({"Pick", "Edit", "Link", "Delete", "Up", "Down"}));
        QTest::mouseClick(standardButton(dialog.get(), QStringLiteral("OK")), Qt::LeftButton);
        QVERIFY(!dialog->isVisible());
        QCOMPARE(dialog->result(), int(QDialog::Accepted));
        QCOMPARE(undo()->count(), 0);
    }

    void buttonsFollowTheSelection_data()
    {
        QTest::addColumn<QStringList>("clicked");
        QTest::addColumn<QString>("enabled");
        QTest::newRow("nothing") << QStringList() << "Pick";
        QTest::newRow("one knob") << QStringList{"Radius"} << "Pick Edit Link Delete Up Down";
        QTest::newRow("two knobs") << QStringList{"Radius", "Amount"} << "Pick Link Delete";
        QTest::newRow("a group") << QStringList{"Soft"} << "Pick Delete Up Down";
        QTest::newRow("group and knob") << QStringList{"Amount", "Soft"} << "Pick Delete";
    }

    void buttonsFollowTheSelection()
    {
        QFETCH(QStringList, clicked);
        QFETCH(QString, enabled);
        auto dialog = openDialog();
        QVERIFY(dialog);
        for (int i = 0; i < clicked.size(); ++i)
            click(tree(dialog.get()), item(tree(dialog.get()), clicked.at(i)),
                  i == 0 ? Qt::NoModifier : Qt::ControlModifier);
        QStringList on;
        for (const char *text : {"Pick", "Edit", "Link", "Delete", "Up", "Down"})
            if (button(dialog.get(), QString::fromLatin1(text))->isEnabled())
                on << QString::fromLatin1(text);
        QCOMPARE(on.join(QLatin1Char(' ')), enabled);
    }

    // --- picking

    void pickedAttributesBecomeKnobsInOneStep()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        QStringList offered;
        QStringList under;
        OssModalDriver::whenModal<OssEnterIgnorantDialog>([&](OssEnterIgnorantDialog *pick) {
            QCOMPARE(pick->windowTitle(), QStringLiteral("Pick Knobs to Add"));
            QCOMPARE(pick->size(), QSize(600, 400));
            QTreeWidget *pickTree = dialog->knobWidget()->pickTree();
            QVERIFY(pickTree);
            for (int i = 0; i < pickTree->topLevelItemCount(); ++i)
                offered << pickTree->topLevelItem(i)->text(0);
            QTreeWidgetItem *soft = pickTree->findItems("Soft", Qt::MatchExactly).value(0);
            QVERIFY(soft);
            QCOMPARE(soft->data(0, Qt::UserRole).toString(), innerNode("Soft")->uuidString());
            QVERIFY(!(soft->flags() & Qt::ItemIsSelectable));
            for (int i = 0; i < soft->childCount(); ++i)
                under << soft->child(i)->text(0);
            soft->setExpanded(true);
            QTreeWidgetItem *tint = pickTree->findItems("Tint", Qt::MatchExactly).value(0);
            tint->setExpanded(true);
            click(pickTree, soft->child(0));
            click(pickTree, tint->child(0), Qt::ControlModifier);
            QCOMPARE(pickTree->selectedItems().size(), 2);
            QTest::mouseClick(standardButton(pick, QStringLiteral("OK")), Qt::LeftButton);
        });
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Pick")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        // Port nodes and set-unlit nodes are never offered.
        QCOMPARE(offered, QStringList({"Soft", "Crisp", "Tint"}));
        QCOMPARE(under, QStringList({"Radius", "Quality"}));
        QCOMPARE(knobs(), QStringList({"Soft/Radius", "Soft/Quality", "Crisp/Amount",
                                       "Soft/Radius1", "Tint/Color"}));
        QVERIFY(item(tree(dialog.get()), QStringLiteral("Color { Tint.Color }")));
        QVERIFY(!dialog->knobWidget()->pickTree());
        checkOneUndoStep(QStringLiteral("Creating Knobs"));
    }

    void onlyTypedNodesWithAttributesAreOffered_data()
    {
        QTest::addColumn<QString>("pathKey");
        QTest::addColumn<QString>("uuid");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<bool>("offered");
        QTest::newRow("typed node") << "Adjust/Gamma"
                                    << ""
                                    << "" << true;
        QTest::newRow("untyped node") << "Adjust/Gamma"
                                      << "-"
                                      << "" << false;
        QTest::newRow("untyped group-like node") << "Adjust/Gamma"
                                                 << "-"
                                                 << "_group" << true;
        QTest::newRow("set vector") << "Misc/Set Vector"
                                    << ""
                                    << "" << false;
        QTest::newRow("image set") << "Misc/Image Set"
                                   << ""
                                   << "" << false;
        QTest::newRow("viewer") << "Adjust/Gamma"
                                << ""
                                << "_viewer" << false;
        QTest::newRow("shader input") << "Adjust/Gamma"
                                      << ""
                                      << "_shaderInput" << false;
        QTest::newRow("bottom transparency") << "Adjust/Gamma"
                                             << ""
                                             << "_bottomTransparency" << false;
    }

    void onlyTypedNodesWithAttributesAreOffered()
    {
        QFETCH(QString, pathKey);
        QFETCH(QString, uuid);
        QFETCH(QString, tag);
        QFETCH(bool, offered);
        OssSnBaseNode *candidate = inner()->createNode(pathKey, QStringLiteral("Candidate"));
        QVERIFY(candidate);
        if (uuid == QLatin1String("-"))
            candidate->setVersionUUID(QString());
        if (!tag.isEmpty())
            candidate->addTag(tag);
        // Attributes whose names start with "_" are never offered.
        candidate->setNodeAttribute(QStringLiteral("_internal"), 1, false);
        auto dialog = openDialog();
        QVERIFY(dialog);
        QStringList names;
        QStringList attributes;
        OssModalDriver::whenModal<OssEnterIgnorantDialog>([&](OssEnterIgnorantDialog *pick) {
            QTreeWidget *pickTree = dialog->knobWidget()->pickTree();
            for (int i = 0; i < pickTree->topLevelItemCount(); ++i)
                names << pickTree->topLevelItem(i)->text(0);
            for (QTreeWidgetItem *each : pickTree->findItems("Candidate", Qt::MatchExactly))
                for (int i = 0; i < each->childCount(); ++i)
                    attributes << each->child(i)->data(0, Qt::UserRole).toString();
            QTest::mouseClick(standardButton(pick, QStringLiteral("Cancel")), Qt::LeftButton);
        });
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Pick")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(names.contains(QStringLiteral("Candidate")), offered);
        if (offered)
            QCOMPARE(attributes, QStringList({"Gamma", "Inverse"}));
    }

    void cancellingThePickChangesNothing()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        OssModalDriver::whenModal<OssEnterIgnorantDialog>([&](OssEnterIgnorantDialog *pick) {
            QTreeWidget *pickTree = dialog->knobWidget()->pickTree();
            QTreeWidgetItem *soft = pickTree->topLevelItem(0);
            soft->setExpanded(true);
            click(pickTree, soft->child(0));
            QTest::mouseClick(standardButton(pick, QStringLiteral("Cancel")), Qt::LeftButton);
        });
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Pick")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    void returnInTheSearchFieldSearchesInsteadOfAccepting()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        QString current;
        bool stillOpen = false;
        OssModalDriver::whenModal<OssEnterIgnorantDialog>([&](OssEnterIgnorantDialog *pick) {
            QLineEdit *search = dialog->knobWidget()->searchField();
            QTest::keyClicks(search, QStringLiteral("qual"));
            QTest::keyClick(search, Qt::Key_Return);
            QTest::keyClick(search, Qt::Key_Enter, Qt::KeypadModifier);
            QTest::keyClick(search, Qt::Key_Escape);
            stillOpen = pick->isVisible();
            QTreeWidgetItem *found = dialog->knobWidget()->pickTree()->currentItem();
            current = found ? found->text(0) : QString();
            QTest::mouseClick(standardButton(pick, QStringLiteral("Cancel")), Qt::LeftButton);
        });
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Pick")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QVERIFY(stillOpen);
        // Return found the first match; the keypad Enter searched again (the next match is
        // the same item, wrapping round).
        QCOMPARE(current, QStringLiteral("Quality"));
        QCOMPARE(undo()->count(), 0);
    }

    void searchWrapsAndKeepsTheCurrentItemWithoutMatch()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        QStringList steps;
        OssModalDriver::whenModal<OssEnterIgnorantDialog>([&](OssEnterIgnorantDialog *pick) {
            QTreeWidget *pickTree = dialog->knobWidget()->pickTree();
            QLineEdit *search = dialog->knobWidget()->searchField();
            const QList<QPushButton *> arrows = pick->findChildren<QPushButton *>();
            QPushButton *left = nullptr;
            QPushButton *right = nullptr;
            for (QPushButton *each : arrows)
                if (each->text().isEmpty())
                    (left ? right : left) = each;
            const auto current = [&] {
                QTreeWidgetItem *at = pickTree->currentItem();
                return at ? (at->parent() ? at->parent()->text(0) + QLatin1Char('.') : QString()) +
                                at->text(0)
                          : QString();
            };
            // Start on Tint, after every match of "r*d" (Radius twice, Threshold): the search
            // wraps to Soft's Radius.
            pickTree->setCurrentItem(pickTree->findItems("Tint", Qt::MatchExactly).value(0));
            QTest::keyClicks(search, QStringLiteral("r*d"));
            QTest::mouseClick(right, Qt::LeftButton);
            steps << current();
            QTest::mouseClick(right, Qt::LeftButton);
            steps << current();
            QTest::mouseClick(left, Qt::LeftButton);
            steps << current();
            // No match: the current item stays.
            search->clear();
            QTest::keyClicks(search, QStringLiteral("zebra"));
            QTest::mouseClick(right, Qt::LeftButton);
            steps << current();
            // A matching node is expanded to show its attributes.
            QTreeWidgetItem *crisp = pickTree->findItems("Crisp", Qt::MatchExactly).value(0);
            crisp->setExpanded(false);
            search->clear();
            QTest::keyClicks(search, QStringLiteral("CRI"));
            QTest::keyClick(search, Qt::Key_Return);
            steps << current() + (crisp->isExpanded() ? QStringLiteral(" expanded") : QString());
            QTest::mouseClick(standardButton(pick, QStringLiteral("Cancel")), Qt::LeftButton);
        });
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Pick")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(steps, QStringList({"Soft.Radius", "Crisp.Radius", "Soft.Radius", "Soft.Radius",
                                     "Crisp expanded"}));
        // Searching with the pick dialog closed does nothing.
        QVERIFY(QMetaObject::invokeMethod(dialog->knobWidget(), "findNextPickItem"));
    }

    // --- linking

    void linkingNeedsTwoKnobs()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Radius"));
        QStringList seen;
        expectMessage(&seen);
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Link")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(seen, QStringList{"Link Knobs: More than one knob needs to be selected in order "
                                   "to link."});
        QCOMPARE(m_network->dump(), m_before);
    }

    void knobsOfDifferingTypesDoNotLink()
    {
        QCOMPARE(m_group->createKnob(innerNode("Tint"), "Color"), QStringLiteral("Tint/Color"));
        undo()->clear();
        m_before = m_network->dump();
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Radius"));
        click(tree(dialog.get()), item(tree(dialog.get()), "Color"), Qt::ControlModifier);
        QStringList seen;
        expectMessage(&seen);
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Link")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(seen, QStringList{"Link Knobs: Cannot link knobs of differing types."});
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    void linkNameIsAskedAgainUntilAcceptable()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Radius"));
        click(tree(dialog.get()), item(tree(dialog.get()), "Amount"), Qt::ControlModifier);
        QStringList asked;
        QStringList told;
        // A blank is refused, then the name of an attribute the group has, then a good name.
        answerText(QStringLiteral("Soft ness"), &asked, [&] {
            expectMessage(&told);
            answerText(QStringLiteral("Collapsed"), &asked, [&] {
                expectMessage(&told);
                answerText(QStringLiteral("Softness"), &asked);
            });
        });
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Link")), Qt::LeftButton);
        QTRY_COMPARE(asked.size(), 3);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(asked, QStringList({"Link Knobs|Name of New Knob|",
                                     "Link Knobs|Name of New Knob|Soft ness",
                                     "Link Knobs|Name of New Knob|Collapsed"}));
        QCOMPARE(told, QStringList({"Link Knobs: The new name must consist of alphabets, "
                                    "numbers and underscores.",
                                    "Link Knobs: There is a node attribute of the same name. The "
                                    "new knob name must be unique."}));
        QVERIFY(m_host.hasLine(
            QStringLiteral("Entry must consist of alphabets, numbers and underscores.")));
        QVERIFY(m_host.hasLine(
            QStringLiteral("There already is an user attribute with the same name : Collapsed")));
        QCOMPARE(knobs(), QStringList({"Soft/Softness", "Soft/Quality"}));
        QCOMPARE(m_group->knobLinks("Soft/Softness").size(), 2);
        QTreeWidgetItem *current = tree(dialog.get())->currentItem();
        QVERIFY(current);
        QCOMPARE(current->text(0), QStringLiteral("Softness { Soft.Radius, Crisp.Amount }"));
        checkOneUndoStep(QStringLiteral("Link Knobs: Softness"));
    }

    void cancellingTheLinkNameChangesNothing()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Radius"));
        click(tree(dialog.get()), item(tree(dialog.get()), "Amount"), Qt::ControlModifier);
        QStringList asked;
        answerText(QString(), &asked);
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Link")), Qt::LeftButton);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(asked.size(), 1);
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    // --- editing, deleting, moving

    void doubleClickRenamesTheKnob()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        QTreeWidgetItem *radius = item(tree(dialog.get()), "Radius");
        click(tree(dialog.get()), radius);
        QStringList asked;
        answerText(QStringLiteral("Blur Size"), &asked);
        QTest::mouseDClick(tree(dialog.get())->viewport(), Qt::LeftButton, Qt::NoModifier,
                           tree(dialog.get())->visualItemRect(radius).center());
        QTRY_COMPARE(asked.size(), 1);
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(asked.first(), QStringLiteral("Knob linked to \"Soft.Radius\"|Name:|Radius"));
        QCOMPARE(m_group->userAttribute("Soft/Radius").prettyName(), QStringLiteral("Blur Size"));
        QCOMPARE(tree(dialog.get())->currentItem()->text(0),
                 QStringLiteral("Blur Size { Soft.Radius }"));
        checkOneUndoStep(QStringLiteral("Rename Knob"));
    }

    void editIsRefusedOnAGroupHeading()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Soft"));
        QVERIFY(!button(dialog.get(), QStringLiteral("Edit"))->isEnabled());
        QVERIFY(!button(dialog.get(), QStringLiteral("Link"))->isEnabled());
        // Reached by name, the commands still do nothing with a group selected.
        QVERIFY(QMetaObject::invokeMethod(dialog->knobWidget(), "editKnob"));
        QVERIFY(QMetaObject::invokeMethod(dialog->knobWidget(), "linkKnobs"));
        QCOMPARE(m_network->dump(), m_before);
    }

    void deletingAGroupRemovesEveryKnobOfIt()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Soft"));
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Delete")), Qt::LeftButton);
        QCOMPARE(knobs(), QStringList{"Crisp/Amount"});
        QVERIFY(m_group->knobLinks("Soft/Radius").isEmpty());
        QCOMPARE(tree(dialog.get())->topLevelItemCount(), 1);
        checkOneUndoStep(QStringLiteral("Delete Knobs"));
        QCOMPARE(m_group->knobLinks("Soft/Radius").size(), 0);
        undo()->undo();
        QCOMPARE(m_group->knobLinks("Soft/Radius").size(), 1);
    }

    void moving_data()
    {
        QTest::addColumn<QString>("clicked");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("order");
        const QStringList unchanged{"Soft/Radius", "Soft/Quality", "Crisp/Amount"};
        QTest::newRow("knob up in its group")
            << "Quality"
            << "Up" << QStringList{"Soft/Quality", "Soft/Radius", "Crisp/Amount"};
        QTest::newRow("knob down in its group")
            << "Radius"
            << "Down" << QStringList{"Soft/Quality", "Soft/Radius", "Crisp/Amount"};
        QTest::newRow("first knob of a group stays") << "Amount"
                                                     << "Up" << unchanged;
        QTest::newRow("last knob of a group stays") << "Quality"
                                                    << "Down" << unchanged;
        QTest::newRow("last knob of the list stays") << "Amount"
                                                     << "Down" << unchanged;
        QTest::newRow("group up") << "Crisp"
                                  << "Up"
                                  << QStringList{"Crisp/Amount", "Soft/Radius", "Soft/Quality"};
        QTest::newRow("group down")
            << "Soft"
            << "Down" << QStringList{"Crisp/Amount", "Soft/Radius", "Soft/Quality"};
        QTest::newRow("first group stays") << "Soft"
                                           << "Up" << unchanged;
    }

    void moving()
    {
        QFETCH(QString, clicked);
        QFETCH(QString, button);
        QFETCH(QStringList, order);
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), clicked));
        QTest::mouseClick(this->button(dialog.get(), button), Qt::LeftButton);
        QCOMPARE(knobs(), order);
        if (order == QStringList{"Soft/Radius", "Soft/Quality", "Crisp/Amount"}) {
            QCOMPARE(undo()->count(), 0);
            return;
        }
        // The moved item stays current.
        QVERIFY(tree(dialog.get())->currentItem()->text(0).startsWith(clicked));
        checkOneUndoStep(QStringLiteral("Reorder Knobs"));
    }

    void aKnobWhoseNodeWasDeletedShowsBrokenAndCanBeRemoved()
    {
        // The removal stays in the history, which keeps the node for its undo.
        inner()->removeNodes({innerNode("Crisp")});
        m_baseIndex = undo()->index();
        m_before = m_network->dump();
        auto dialog = openDialog();
        QVERIFY(dialog);
        QTreeWidgetItem *amount = item(tree(dialog.get()), "Amount");
        QVERIFY(amount);
        QCOMPARE(amount->text(0), QStringLiteral("Amount { Crisp.Amount (deleted) }"));
        QVERIFY(amount->data(0, OssKnobBrokenRole).toBool());
        QVERIFY(!item(tree(dialog.get()), "Radius")->data(0, OssKnobBrokenRole).toBool());
        click(tree(dialog.get()), amount);
        QTest::mouseClick(button(dialog.get(), QStringLiteral("Delete")), Qt::LeftButton);
        QCOMPARE(knobs(), QStringList({"Soft/Radius", "Soft/Quality"}));
        checkOneUndoStep(QStringLiteral("Delete Knobs"));
        // A saved project keeps only the links that still have their node.
        undo()->undo();
        OssShaderNetwork *reopened = m_host.saveAndReopen(QStringLiteral("broken.ossa"));
        QVERIFY2(reopened, qPrintable(m_host.errorString()));
        auto *group = qobject_cast<OssSnGroupNode *>(reopened->node("Grp"));
        QVERIFY(group);
        QVERIFY(group->hasNodeAttribute("Crisp/Amount"));
        QVERIFY(group->knobLinks("Crisp/Amount").isEmpty());
        QCOMPARE(group->knobLinks("Soft/Radius").size(), 1);
        m_group = group;
        m_network = reopened;
        auto again = openDialog();
        QVERIFY(again);
        QTreeWidgetItem *unlinked = item(tree(again.get()), "Amount");
        QCOMPARE(unlinked->text(0), QStringLiteral("Amount { (no link) }"));
        QVERIFY(unlinked->data(0, OssKnobBrokenRole).toBool());
    }

    void printingTheSelectedKnobs()
    {
        auto dialog = openDialog();
        QVERIFY(dialog);
        click(tree(dialog.get()), item(tree(dialog.get()), "Radius"));
        click(tree(dialog.get()), item(tree(dialog.get()), "Amount"), Qt::ControlModifier);
        QVERIFY(QMetaObject::invokeMethod(dialog->knobWidget(), "printInfoOfKnobItem"));
        QVERIFY(m_host.hasLine(
            QStringLiteral("[ -- ] Selected: this.'Soft/Radius' ('Radius') --> 'Soft'.'Radius'")));
        QVERIFY(m_host.hasLine(QStringLiteral(
            "[ -- ] Selected: this.'Crisp/Amount' ('Amount') --> 'Crisp'.'Amount'")));
    }

    // --- the view's commands

    void manageUserKnobsOpensTheDialogOfTheSelectedGroup()
    {
        m_group->setSelected(true);
        QSize size;
        QString title;
        int shown = 0;
        OssModalDriver::whenModal<OssGroupNodeKnobDialog>([&](OssGroupNodeKnobDialog *dialog) {
            size = dialog->size();
            title = dialog->windowTitle();
            shown = dialog->knobWidget()->knobTree()->topLevelItemCount();
            QTest::mouseClick(standardButton(dialog, QStringLiteral("OK")), Qt::LeftButton);
        });
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Manage User Knobs"));
        QVERIFY(action);
        action->trigger();
        QVERIFY(!OssModalDriver::timedOut());
        QCOMPARE(size, QSize(600, 400));
        QCOMPARE(title, QStringLiteral("Group Node Knobs"));
        QCOMPARE(shown, 2);
        QVERIFY(!QApplication::activeModalWidget());
    }

    void manageUserKnobsNeedsOneGroup()
    {
        QVERIFY(m_network->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Plain")));
        m_network->node("Plain")->setSelected(true);
        view()->manageUserKnobs();
        m_group->setSelected(true);
        view()->manageUserKnobs();
        QCOMPARE(
            m_host.lineCount(QStringLiteral("[ !! ] Select one group node to manage its knobs")),
            2);
        QVERIFY(!QApplication::activeModalWidget());
    }

    void exposeNodePropertiesMakesEveryAttributeAKnob()
    {
        m_group->setSelected(true);
        view()->openGroupNodeSubgraph();
        auto *context =
            qobject_cast<OssSnGroupNodeGraphViewContext *>(OssSnNodeGraphViewContext::of(m_group));
        QVERIFY(context);
        OssShaderNetworkView *subgraph = context->subgraphView();
        QVERIFY(subgraph);
        QCOMPARE(subgraph->network(), inner());
        undo()->clear();
        m_before = m_network->dump();
        innerNode("Tint")->setSelected(true);
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Expose Node Properties"));
        QVERIFY(action);
        QSignalSpy changed(OssShaderNetworkManager::instance(),
                           SIGNAL(nodeGraphIsManuallyChanged()));
        QCOMPARE(m_host.manager()->currentView(), subgraph);
        action->trigger();
        QCOMPARE(knobs(),
                 QStringList({"Soft/Radius", "Soft/Quality", "Crisp/Amount", "Tint/Color"}));
        QCOMPARE(changed.count(), 1);
        checkOneUndoStep(QStringLiteral("Expose Node Properties"));
        // A set-unlit node fails the exposure test; the root network has no group around it.
        undo()->undo();
        inner()->clearSelection();
        innerNode("Unlit")->setSelected(true);
        subgraph->exposeNodeProperties();
        m_network->node("Grp")->setSelected(true);
        view()->exposeNodeProperties();
        QCOMPARE(knobs(), QStringList({"Soft/Radius", "Soft/Quality", "Crisp/Amount"}));
        QCOMPARE(undo()->index(), 0);
    }

    void theCatalogueRowsHaveTheirActionsInOrder()
    {
        QStringList texts;
        for (QAction *each : m_host.plugin()->fixedActions())
            texts << each->text();
        const int cycle = texts.indexOf(QStringLiteral("Cycle Port List Mode"));
        const int manage = texts.indexOf(QStringLiteral("Manage User Knobs"));
        const int expose = texts.indexOf(QStringLiteral("Expose Node Properties"));
        const int subgraph = texts.indexOf(QStringLiteral("Open Group Node Subgraph"));
        QVERIFY(cycle >= 0);
        QVERIFY(manage > cycle);
        QCOMPARE(expose, manage + 1);
        QCOMPARE(subgraph, expose + 1);
        // The version control commands are reached by name and get no action here.
        const QMetaObject *plugin = m_host.plugin()->metaObject();
        QVERIFY(plugin->indexOfSlot("upgradeAllNodeInfo()") >= 0);
        QVERIFY(plugin->indexOfSlot("upgradeSelectedNodeInfo()") >= 0);
        QVERIFY(!texts.contains(QStringLiteral("Upgrade All Node Info")));
    }
};

QTEST_MAIN(tst_KnobManager)
#include "tst_KnobManager.moc"
