#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnGroupNode.h>
#include <OssUndoManager.h>

#include <QGraphicsScene>
#include <QSignalSpy>
#include <QtTest>

namespace {

enum class Gesture
{
    Click,
    ClickOnEmptyCanvas,
    RubberBand,
    SelectAll,
    FocusTwice,
    DeleteAndUndo,
    DeleteUndoRedo,
    HideSelected,
};

// Reads how many receivers a signal has (a protected member of QObject).
struct ReceiverCount : QObject
{
    static int of(const QObject *object, const char *signal)
    {
        // A pointer to the inherited member is of type int (QObject::*)(const char *) const and
        // is called on the object as it is, without pretending it is of this class.
        const auto receivers = &ReceiverCount::receivers;
        return (object->*receivers)(signal);
    }
};

} // namespace

Q_DECLARE_METATYPE(Gesture)

// The business nodes hold the selection and the scene shows it: whatever the user or a command
// does, the view and OssShaderNetwork::selectedNodes() agree.
class tst_Selection : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    OssSnNodeGraphViewContextManager *manager() { return m_host.manager(); }
    OssShaderNetworkView *view() { return manager()->currentView(); }
    OssNgNode *gui(const char *name)
    {
        return OssSnNodeGraphViewContext::guiNodeOf(m_network->node(QString::fromLatin1(name)));
    }
    QPoint at(const QPointF &scenePos) { return view()->mapFromScene(scenePos); }

    // Names of the selected business nodes and of the nodes whose GUI item is selected.
    QStringList modelSelection() const
    {
        QStringList names;
        for (OssSnBaseNode *node : m_network->selectedNodes())
            names << node->name();
        names.sort();
        return names;
    }
    QStringList sceneSelection() const
    {
        QStringList names;
        for (OssSnBaseNode *node : m_network->nodes())
            if (OssNgNode *item = OssSnNodeGraphViewContext::guiNodeOf(node))
                if (item->isSelected())
                    names << node->name();
        names.sort();
        return names;
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        manager()->nodeGraphWidget()->window()->resize(1000, 800);
        manager()->nodeGraphWidget()->window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(manager()->nodeGraphWidget()->window()));
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY(view());
        QCOMPARE(view()->network(), m_network);
        const QList<QPair<const char *, QPointF>> nodes{
            {"A", {0, 0}}, {"B", {300, 0}}, {"C", {0, 400}}};
        for (const auto &entry : nodes) {
            OssSnBaseNode *node = m_network->createNode(QStringLiteral("Filter/Blur"),
                                                        QString::fromLatin1(entry.first));
            QVERIFY(node);
            gui(entry.first)->setPos(entry.second);
        }
        m_network->clearSelection();
        view()->resetTransform();
        view()->centerOn(QPointF(200, 200));
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void viewAndModelAgree_data()
    {
        QTest::addColumn<Gesture>("gesture");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("click") << Gesture::Click << QStringList{"B"};
        QTest::newRow("click on empty canvas") << Gesture::ClickOnEmptyCanvas << QStringList{};
        QTest::newRow("rubber band") << Gesture::RubberBand << QStringList{"A", "B"};
        QTest::newRow("select all") << Gesture::SelectAll << QStringList{"A", "B", "C"};
        QTest::newRow("focus on A then B") << Gesture::FocusTwice << QStringList{"B"};
        QTest::newRow("delete and undo") << Gesture::DeleteAndUndo << QStringList{"A", "C"};
        QTest::newRow("delete, undo, redo") << Gesture::DeleteUndoRedo << QStringList{};
        QTest::newRow("hidden node") << Gesture::HideSelected << QStringList{"C"};
    }

    void viewAndModelAgree()
    {
        QFETCH(Gesture, gesture);
        QFETCH(QStringList, expected);
        // Start from A and C selected in the model.
        m_network->node("A")->setSelected(true);
        m_network->node("C")->setSelected(true);
        QCOMPARE(sceneSelection(), QStringList({"A", "C"}));
        switch (gesture) {
        case Gesture::Click:
            QTest::mouseClick(view()->viewport(), Qt::LeftButton, {},
                              at(gui("B")->sceneBoundingRect().center()));
            break;
        case Gesture::ClickOnEmptyCanvas:
            QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, at(QPointF(200, 250)));
            break;
        case Gesture::RubberBand: {
            const QRectF both = gui("A")->sceneBoundingRect() | gui("B")->sceneBoundingRect();
            const QPoint from = at(both.topLeft() - QPointF(30, 30));
            const QPoint to = at(both.bottomRight() + QPointF(30, 30));
            QTest::mousePress(view()->viewport(), Qt::LeftButton, {}, from);
            QMouseEvent move(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton,
                             Qt::NoModifier);
            QCoreApplication::sendEvent(view()->viewport(), &move);
            QMouseEvent end(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(view()->viewport(), &end);
            QTest::mouseRelease(view()->viewport(), Qt::LeftButton, {}, to);
            break;
        }
        case Gesture::SelectAll:
            view()->selectAll();
            break;
        case Gesture::FocusTwice:
            manager()->focusOnNode(m_network->node("A"));
            manager()->focusOnNode(m_network->node("B"));
            break;
        case Gesture::DeleteAndUndo:
        case Gesture::DeleteUndoRedo: {
            {
                OssUndoManager::AutoMacro macro(QStringLiteral("Remove Selected Nodes"));
                m_network->removeNodes(m_network->selectedNodes());
            }
            QCOMPARE(m_network->nodeCount(), 1);
            OssUndoManager::instance()->undo();
            QCOMPARE(m_network->nodeCount(), 3);
            if (gesture == Gesture::DeleteUndoRedo)
                OssUndoManager::instance()->redo();
            break;
        }
        case Gesture::HideSelected:
            gui("A")->hide();
            break;
        }
        QCOMPARE(modelSelection(), expected);
        QCOMPARE(sceneSelection(), expected);
    }

    void aHiddenNodeRefusesTheSelection()
    {
        gui("A")->hide();
        m_network->node("A")->setSelected(true);
        QVERIFY(!gui("A")->isSelected());
        QVERIFY(!m_network->node("A")->selected());
    }

    void aRemovalIsAnnouncedOnceAndOnlyToWhomItConcerns()
    {
        auto *group = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        auto *other = qobject_cast<OssSnGroupNode *>(m_network->createNode("Misc/Group"));
        QVERIFY(group && other);
        auto *context =
            qobject_cast<OssSnGroupNodeGraphViewContext *>(OssSnNodeGraphViewContext::of(group));
        auto *otherContext =
            qobject_cast<OssSnGroupNodeGraphViewContext *>(OssSnNodeGraphViewContext::of(other));
        QVERIFY(context && otherContext);
        context->showGroupNodeTab();
        otherContext->showGroupNodeTab();
        OssSnNodeGraphWidget *tabs = manager()->nodeGraphWidget();
        QVERIFY(tabs->indexOf(context->subgraphView()) > 0);
        QVERIFY(tabs->indexOf(otherContext->subgraphView()) > 0);
        // Group contexts do not each listen to every deregistration.
        const char *deregistered = SIGNAL(nodeDeregistered(OssShaderNetwork *, OssSnBaseNode *));
        const int listeners = ReceiverCount::of(OssShaderNetworkManager::instance(), deregistered);
        m_network->createNode("Misc/Group");
        QCOMPARE(ReceiverCount::of(OssShaderNetworkManager::instance(), deregistered), listeners);

        OssSnBaseNode *blur = m_network->node("A");
        QSignalSpy announced(blur, &OssSnBaseNode::nodeRemovedFromNetwork);
        m_network->removeNode(blur);
        QCOMPARE(announced.count(), 1);

        QSignalSpy groupAnnounced(group, &OssSnBaseNode::nodeRemovedFromNetwork);
        m_network->removeNode(group);
        QCOMPARE(groupAnnounced.count(), 1);
        QCOMPARE(tabs->indexOf(context->subgraphView()), -1);
        QVERIFY(tabs->indexOf(otherContext->subgraphView()) > 0);
    }
};

QTEST_MAIN(tst_Selection)
#include "tst_Selection.moc"
