#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnNodePropertiesWidget.h"

#include <OssActionTreeManager.h>
#include <OssAttributeEditor.h>
#include <OssExpandableListWidget.h>
#include <OssMiniButton.h>
#include <OssNgNode.h>
#include <OssNodePropertyEditor.h>
#include <OssNumberAttributeEditor.h>
#include <OssSettings.h>
#include <OssShaderNetwork.h>
#include <OssSnBaseNode.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QLayout>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTimer>
#include <QToolButton>
#include <QtTest>

// The "Node Properties" palette on the real host and plug-in: panels opened by double-clicks in
// the root view and by the view's command, their order and cap, their frames, their upkeep
// when the node changes, and the editors inside them driven with real input.
class tst_NodePropertiesPanel : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;

    OssSnNodeGraphViewContextManager *manager() { return m_host.manager(); }
    OssShaderNetworkView *view() { return manager()->nodeGraphWidget()->view(); }
    OssSnNodePropertiesWidget *panels()
    {
        return qobject_cast<OssSnNodePropertiesWidget *>(manager()->nodePropertiesWidget());
    }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }
    OssSnBaseNode *make(const QString &key, const QString &name, const QPointF &pos = {})
    {
        OssSnBaseNode *made = m_network->createNode(key, name);
        if (made)
            OssSnNodeGraphViewContext::guiNodeOf(made)->setPos(pos);
        return made;
    }
    OssNodePropertyEditor *editorOf(OssSnBaseNode *node)
    {
        return qobject_cast<OssNodePropertyEditor *>(panels()->panel(node));
    }
    void setMaxPanels(int max)
    {
        QLineEdit *field = panels()->maxPanelsField();
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, QString::number(max));
        QTest::keyClick(field, Qt::Key_Return);
    }
    // Lets the panels scheduled for deletion go.
    static void flushDeletions()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void doubleClick(OssSnBaseNode *node)
    {
        OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node);
        view()->centerOn(gui);
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                           view()->mapFromScene(gui->sceneBoundingRect().center()));
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        QWidget *graph = manager()->nodeGraphWidget()->window();
        graph->resize(900, 700);
        graph->show();
        QVERIFY(QTest::qWaitForWindowExposed(graph));
        panels()->window()->resize(420, 700);
        panels()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(panels()->window()));
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QCOMPARE(view()->network(), m_network);
        setMaxPanels(10);
        OssUndoManager::instance()->clear();
    }

    void cleanup()
    {
        QMetaObject::invokeMethod(panels(), "deleteAllProperties");
        flushDeletions();
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- opening

    void doubleClickOpensThePanel()
    {
        OssSnBaseNode *mix = make("Math/Mix", "Mix", {0, 0});
        QVERIFY(mix);
        QSignalSpy shown(panels(), &OssSnNodePropertiesWidget::nodeDoubledClicked);
        doubleClick(mix);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(panels()->shownNodes(), QList<OssSnBaseNode *>{mix});
        OssNodePropertyEditor *editor = editorOf(mix);
        QVERIFY(editor);
        QCOMPARE(editor->heading()->text(), QStringLiteral("Mix"));
        QVERIFY(editor->editor(QStringLiteral("Amount")));
        QCOMPARE(editor->objectName(), mix->uuidString().remove('{').remove('}'));
        QTRY_VERIFY(editor->isVisible());
    }

    void openNodePropertiesOpensEachSelectedNode()
    {
        OssSnBaseNode *a = make("Math/Mix", "A", {0, 0});
        OssSnBaseNode *b = make("Filter/Blur", "B", {300, 0});
        OssSnBaseNode *c = make("Filter/Blur", "C", {600, 0});
        a->setSelected(true);
        c->setSelected(true);
        view()->openNodeProperties();
        QCOMPARE(panels()->panelCount(), 2);
        QVERIFY(panels()->panel(a) && panels()->panel(c));
        QVERIFY(!panels()->panel(b));
    }

    void reopeningMovesThePanelToTheTop()
    {
        OssSnBaseNode *a = make("Math/Mix", "A");
        OssSnBaseNode *b = make("Filter/Blur", "B", {300, 0});
        panels()->openProperty(a);
        panels()->openProperty(b);
        QWidget *first = panels()->panel(a);
        QCOMPARE(panels()->shownNodes(), (QList<OssSnBaseNode *>{b, a}));
        panels()->openProperty(a);
        QCOMPARE(panels()->shownNodes(), (QList<OssSnBaseNode *>{a, b}));
        QCOMPARE(panels()->panel(a), first);
        QCOMPARE(panels()->panelCount(), 2);
    }

    void dotAndViewerOpenNoPanel_data()
    {
        QTest::addColumn<QString>("type");
        QTest::newRow("dot") << "Misc/Dot";
        QTest::newRow("viewer") << "Misc/Viewer";
    }
    void dotAndViewerOpenNoPanel()
    {
        QFETCH(QString, type);
        OssSnBaseNode *made = make(type, QString());
        QVERIFY(made);
        QSignalSpy shown(panels(), &OssSnNodePropertiesWidget::nodeDoubledClicked);
        panels()->openProperty(made);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(panels()->panelCount(), 0);
    }

    // --- the cap

    void panelsAreCappedByMaxPanels()
    {
        setMaxPanels(2);
        OssSettings settings;
        settings.beginGroup(QStringLiteral("OssSnNodePropertiesWidget"));
        QCOMPARE(settings.value(QStringLiteral("MaxPanels")).toInt(), 2);
        OssSnBaseNode *a = make("Math/Mix", "A");
        OssSnBaseNode *b = make("Filter/Blur", "B", {300, 0});
        OssSnBaseNode *c = make("Filter/Blur", "C", {600, 0});
        panels()->openProperty(a);
        panels()->openProperty(b);
        QPointer<QWidget> oldest = panels()->panel(a);
        panels()->openProperty(c);
        QCOMPARE(panels()->shownNodes(), (QList<OssSnBaseNode *>{c, b}));
        QTRY_VERIFY(!oldest);
        // Reopening the dropped node makes a fresh panel and drops the next oldest.
        panels()->openProperty(a);
        QVERIFY(panels()->panel(a));
        QCOMPARE(panels()->shownNodes(), (QList<OssSnBaseNode *>{a, c}));
    }

    void emptiedFieldDropsEveryPanel()
    {
        OssSnBaseNode *a = make("Math/Mix", "A");
        panels()->openProperty(a);
        QLineEdit *field = panels()->maxPanelsField();
        field->clear();
        panels()->openProperty(make("Filter/Blur", "B", {300, 0}));
        QCOMPARE(panels()->panelCount(), 0);
        field->setText(QStringLiteral("10"));
    }

    void hundredPanelsLeaveNoWidgetsBehind()
    {
        OssSnBaseNode *mix = make("Math/Mix", "Mix");
        OssSnBaseNode *bricks = make("Procedural/Pattern/Bricks", "Bricks", {300, 0});
        // Warm up once so lazily made objects (styles, fonts) are not counted.
        panels()->openProperty(mix);
        QMetaObject::invokeMethod(panels(), "deleteAllProperties");
        flushDeletions();
        const int before = QApplication::allWidgets().size();
        for (int round = 0; round < 100; ++round) {
            panels()->openProperty(round % 2 ? mix : bricks);
            QVERIFY(panels()->panelCount() >= 1);
            if (round % 3 == 0)
                QMetaObject::invokeMethod(panels(), "deleteAllProperties");
            else
                panels()->panel(round % 2 ? mix : bricks)->close();
            flushDeletions();
        }
        QMetaObject::invokeMethod(panels(), "deleteAllProperties");
        flushDeletions();
        QCOMPARE(panels()->panelCount(), 0);
        QCOMPARE(QApplication::allWidgets().size(), before);
    }

    void deleteAllButtonAndActionEmptyThePalette()
    {
        OssSnBaseNode *a = make("Math/Mix", "A");
        OssSnBaseNode *b = make("Filter/Blur", "B", {300, 0});
        panels()->openProperty(a);
        panels()->openProperty(b);
        auto *button = panels()->findChild<QToolButton *>(QStringLiteral("deleteAllProperties"));
        QVERIFY(button);
        QCOMPARE(button->toolTip(), QStringLiteral("Remove all panels."));
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(panels()->panelCount(), 0);
        QVERIFY(!panels()->panel(a));

        panels()->openProperty(a);
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Delete All Properties"));
        QVERIFY(action);
        QCOMPARE(action->shortcut(), QKeySequence(QStringLiteral("Ctrl+Shift+A")));
        action->trigger();
        QCOMPARE(panels()->panelCount(), 0);
    }

    // --- editing through the panel

    void typedValueIsOneUndoStepAndFollowsUndo()
    {
        OssSnBaseNode *mix = make("Math/Mix", "Mix");
        doubleClick(mix);
        auto *amount = qobject_cast<OssNumberAttributeEditor *>(
            editorOf(mix)->editor(QStringLiteral("Amount")));
        QVERIFY(amount);
        const QString before = m_network->dump();
        const int steps = OssUndoManager::instance()->count();
        amount->field()->setFocus();
        amount->field()->selectAll();
        QTest::keyClicks(amount->field(), QStringLiteral("0.75"));
        QTest::keyClick(amount->field(), Qt::Key_Return);
        QCOMPARE(mix->nodeAttributeValue(QStringLiteral("Amount")), QVariant(0.75));
        QCOMPARE(OssUndoManager::instance()->count(), steps + 1);
        QCOMPARE(OssUndoManager::instance()->undoText(), QStringLiteral("Set Amount of Mix"));
        const QString after = m_network->dump();

        OssUndoManager::instance()->undo();
        QCOMPARE(m_network->dump(), before);
        QCOMPARE(amount->field()->text(), QStringLiteral("0.5"));
        OssUndoManager::instance()->redo();
        QCOMPARE(m_network->dump(), after);
        QCOMPARE(amount->field()->text(), QStringLiteral("0.75"));
    }

    // --- upkeep

    void newVisibleAttributeRebuildsThePanel()
    {
        OssSnBaseNode *mix = make("Math/Mix", "Mix");
        panels()->openProperty(mix);
        QPointer<QWidget> old = panels()->panel(mix);
        mix->setNodeAttribute(QStringLiteral("Extra"), 3);
        QTRY_VERIFY(!old);
        QVERIFY(editorOf(mix)->editor(QStringLiteral("Extra")));
    }

    void renamingKeepsCollapsedSections_data()
    {
        QTest::addColumn<bool>("visible");
        QTest::newRow("visible attribute rebuilds") << true;
        QTest::newRow("hidden attribute does not") << false;
    }
    void renamingKeepsCollapsedSections()
    {
        QFETCH(bool, visible);
        OssSnBaseNode *shader = make("Shaders/Default", "Shader");
        QVERIFY(shader);
        shader->setNodeAttribute(QStringLiteral("DiffuseWeight"), 1.0, false);
        shader->setNodeAttribute(QStringLiteral("SpecularWeight"), 0.5, false);
        if (!visible) {
            OssCustomAttribute hidden = shader->userAttribute(QStringLiteral("SpecularWeight"));
            hidden.setVisible(false);
            shader->setUserAttribute(hidden);
        }
        panels()->openProperty(shader);
        OssNodePropertyEditor *editor = editorOf(shader);
        QVERIFY(editor);
        QCOMPARE(editor->sectionNames().mid(1, 1), QStringList{QStringLiteral("Diffuse")});
        editor->section(QStringLiteral("Diffuse"))->collapse();

        QVERIFY(shader->renameNodeAttribute(QStringLiteral("SpecularWeight"),
                                            QStringLiteral("SpecularAmount")));
        flushDeletions();
        if (!visible) {
            QCOMPARE(editorOf(shader), editor);
            return;
        }
        OssNodePropertyEditor *rebuilt = editorOf(shader);
        QVERIFY(rebuilt && rebuilt != editor);
        QVERIFY(rebuilt->editor(QStringLiteral("SpecularAmount")));
        QVERIFY(rebuilt->section(QStringLiteral("Diffuse"))->isCollapsed());
        QVERIFY(!rebuilt->section(QStringLiteral("Specular"))->isCollapsed());
        QCOMPARE(panels()->shownNodes().first(), shader);
    }

    void removedNodeDropsItsPanel()
    {
        OssSnBaseNode *mix = make("Math/Mix", "Mix");
        panels()->openProperty(mix);
        QPointer<QWidget> panel = panels()->panel(mix);
        QVERIFY(m_network->removeNode(mix));
        QCOMPARE(panels()->panelCount(), 0);
        QTRY_VERIFY(!panel);
    }

    // --- frame, group buttons, hover

    void frameTakesTheNodesColour()
    {
        OssSnBaseNode *mix = make("Math/Mix", "Mix");
        panels()->openProperty(mix);
        QWidget *panel = panels()->panel(mix);
        const QColor colour = OssSnNodeGraphViewContext::guiNodeOf(mix)->fillBrush().gradient()
                                  ? OssSnNodeGraphViewContext::guiNodeOf(mix)
                                        ->fillBrush()
                                        .gradient()
                                        ->stops()
                                        .first()
                                        .second
                                  : OssSnNodeGraphViewContext::guiNodeOf(mix)->fillBrush().color();
        QVERIFY(panel->styleSheet().contains(
            QStringLiteral("border-top-color: %1;").arg(colour.name())));
        QVERIFY(
            panel->styleSheet().contains(QStringLiteral("border-left-color: rgba(0, 0, 0, 0%);")));
        mix->setSelected(true);
        QVERIFY(panel->styleSheet().contains(
            QStringLiteral("border-left-color: %1;").arg(colour.name())));
        // A node without a GUI node is framed in blue.
        QVERIFY(OssSnNodePropertiesWidget::panelStyleSheet(nullptr, QStringLiteral("x"),
                                                           QColor(0, 0, 255))
                    .contains(QStringLiteral("border-top-color: #0000ff;")));
    }

    void groupPanelHasItsTwoButtons()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(make("Misc/Group", "Group"));
        QVERIFY(group);
        panels()->openProperty(group);
        OssNodePropertyEditor *editor = editorOf(group);
        QVERIFY(editor);
        auto buttons = editor->heading()->findChildren<OssMiniButton *>();
        QCOMPARE(buttons.size(), 2);
        auto *knobs = editor->heading()->findChild<OssMiniButton *>(QStringLiteral("groupKnobs"));
        auto *subgraph =
            editor->heading()->findChild<OssMiniButton *>(QStringLiteral("groupSubgraph"));
        QVERIFY(knobs && subgraph);
        QCOMPARE(knobs->text(), QStringLiteral("p"));
        QCOMPARE(subgraph->text(), QStringLiteral("s"));
        QVERIFY(subgraph->toolTip().contains(QStringLiteral("Ctrl+Enter")));
        // The two buttons lead the heading.
        QCOMPARE(editor->heading()->layout()->indexOf(knobs), 0);
        QCOMPARE(editor->heading()->layout()->indexOf(subgraph), 1);

        QSignalSpy knobsAsked(panels(), &OssSnNodePropertiesWidget::groupNodeKnobsRequested);
        // The button opens the group's knob manager (modal); it is closed as soon as it shows.
        QString opened;
        QTimer::singleShot(0, this, [&opened] {
            if (QWidget *dialog = QApplication::activeModalWidget()) {
                opened = QString::fromLatin1(dialog->metaObject()->className());
                dialog->close();
            }
        });
        QTest::mouseClick(knobs, Qt::LeftButton);
        QCOMPARE(knobsAsked.count(), 1);
        QCOMPARE(opened, QStringLiteral("OssGroupNodeKnobDialog"));

        QCOMPARE(manager()->nodeGraphWidget()->count(), 1);
        QTest::mouseClick(subgraph, Qt::LeftButton);
        QCOMPARE(manager()->nodeGraphWidget()->count(), 2);
        auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(
            group->context(QStringLiteral("NodeGraphView")));
        QCOMPARE(manager()->currentView(), context->subgraphView());
    }

    void nodeUnderTheMouseIsReported()
    {
        OssSnBaseNode *a = make("Math/Mix", "A");
        OssSnBaseNode *b = make("Filter/Blur", "B", {300, 0});
        panels()->openProperty(a);
        panels()->openProperty(b);
        QSignalSpy under(panels(), &OssSnNodePropertiesWidget::propertiesUnderMouseChanged);
        QWidget *panelA = panels()->panel(a);
        QTRY_VERIFY(panelA->isVisible() && panelA->height() > 0);
        // The pointer comes in over the bar above the panels.
        QLineEdit *field = panels()->maxPanelsField();
        QTest::mouseMove(field->window()->windowHandle(),
                         field->mapTo(field->window(), field->rect().center()));
        QCOMPARE(panels()->nodeUnderMouse(), nullptr);
        QTest::mouseMove(panelA->window()->windowHandle(),
                         panelA->mapTo(panelA->window(), QPoint(panelA->width() / 2, 5)));
        QTRY_COMPARE(panels()->nodeUnderMouse(), a);
        QCOMPARE(under.last().at(0).value<OssSnBaseNode *>(), a);
        QWidget *panelB = panels()->panel(b);
        QTest::mouseMove(panelB->window()->windowHandle(),
                         panelB->mapTo(panelB->window(), QPoint(panelB->width() / 2, 5)));
        QTRY_COMPARE(panels()->nodeUnderMouse(), b);
        QCOMPARE(under.last().at(0).value<OssSnBaseNode *>(), b);
        bool leftA = false;
        for (const QList<QVariant> &change : qAsConst(under))
            leftA = leftA || change.at(1).value<OssSnBaseNode *>() == a;
        QVERIFY(leftA);
        QVERIFY(OssSnNodeGraphViewContext::guiNodeOf(b)->hovered());
    }
};

QTEST_MAIN(tst_NodePropertiesPanel)
#include "tst_NodePropertiesPanel.moc"
