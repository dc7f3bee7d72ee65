#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeCreationActions.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"
#include "OssSnUINodeGraphViewContext.h"

#include <OssActionTreeManager.h>
#include <OssColor.h>
#include <OssNgBackdropNode.h>
#include <OssNgStyle.h>
#include <OssNgUINodes.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssSnNodeTypeCatalogue.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QFile>
#include <QGraphicsScene>
#include <QSignalSpy>
#include <QtTest>

#include <memory>

// The view context of backdrops, sticky notes and dots on the real host and plug-in: the GUI
// node class, the attributes it follows, z-order, names, containers and old backdrops; with
// the placement at the free spot and the node-creation actions that come with them.
class tst_UINodeContext : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;

    OssSnNodeGraphViewContextManager *manager() { return m_host.manager(); }
    OssNgNode *gui(OssSnBaseNode *node) { return OssSnNodeGraphViewContext::guiNodeOf(node); }
    OssNgBackdropNode *backdropOf(OssSnBaseNode *node)
    {
        return qobject_cast<OssNgBackdropNode *>(gui(node));
    }
    OssSnBaseNode *make(const char *key, const char *name = nullptr)
    {
        return m_network->createNode(QString::fromLatin1(key),
                                     name ? QString::fromLatin1(name) : QString());
    }
    // A backdrop at a scene rectangle.
    OssSnBaseNode *backdropAt(const char *name, const QRectF &rect)
    {
        OssSnBaseNode *node = make("Misc/Backdrop", name);
        OssNgBackdropNode *backdrop = backdropOf(node);
        backdrop->setPos(rect.topLeft());
        backdrop->setNodeSize(rect.size());
        return node;
    }
    static QRectF area(OssNgBackdropNode *backdrop)
    {
        return QRectF(backdrop->pos(), backdrop->nodeSize());
    }
    // Makes the current tab a page that is not a view; the page (and its tab) goes with the
    // returned pointer.
    std::unique_ptr<QWidget> leaveNoView()
    {
        auto page = std::make_unique<QWidget>();
        manager()->nodeGraphWidget()->addTab(page.get(), QStringLiteral("not a view"));
        manager()->nodeGraphWidget()->setCurrentWidget(page.get());
        return page;
    }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void init()
    {
        m_network = m_host.newProject(QStringLiteral("Head"));
        QVERIFY(m_network);
        QCOMPARE(manager()->currentView()->network(), m_network);
    }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    // --- setGuiNodeClass

    void setGuiNodeClass_data()
    {
        QTest::addColumn<QString>("guiNodeClass");
        QTest::addColumn<QString>("itemClass");
        QTest::newRow("backdrop") << "Backdrop"
                                  << "OssNgBackdropNode";
        QTest::newRow("sticky note") << "StickyNote"
                                     << "OssNgUINode";
        QTest::newRow("dot") << "Dot"
                             << "OssNgDotNode";
        QTest::newRow("empty") << ""
                               << "OssNgUINode";
        QTest::newRow("unknown") << "Cloud"
                                 << "OssNgUINode";
    }

    void setGuiNodeClass()
    {
        QFETCH(QString, guiNodeClass);
        QFETCH(QString, itemClass);
        auto *node = new OssSnBaseNode(m_network);
        node->setPathKey(QStringLiteral("Misc/Thing"));
        auto *context = new OssSnUINodeGraphViewContext(node);
        QVERIFY(!context->guiNode());
        context->setGuiNodeClass(guiNodeClass);
        QVERIFY(context->guiNode());
        QCOMPARE(QString::fromLatin1(context->guiNode()->metaObject()->className()), itemClass);
        QCOMPARE(context->guiNode()->parent(), node);
        QCOMPARE(context->guiNode()->scene(), manager()->sceneForNetwork(m_network));
        QCOMPARE(context->property("guiNodeClass").toString(), guiNodeClass);
        // Made once: a second class does not replace it.
        OssNgNode *first = context->guiNode();
        context->setGuiNodeClass(QStringLiteral("Dot"));
        QCOMPARE(context->guiNode(), first);
        delete node;
    }

    // --- onUserAttributeChanged

    void onUserAttributeChangedTitleText()
    {
        OssSnBaseNode *node = make("Misc/Backdrop", "Dirt_Backdrop");
        OssNgBackdropNode *backdrop = backdropOf(node);
        node->setUserAttribute(OssCustomAttribute("TitleText", QStringLiteral("Dirt")));
        QCOMPARE(backdrop->titleText(), QStringLiteral("Dirt"));
        node->setUserAttribute(OssCustomAttribute("TitleText", QString()));
        QCOMPARE(backdrop->titleText(), QString());
        // A rename does not bring a title back.
        node->setName(QStringLiteral("Wear_Backdrop"));
        QCOMPARE(backdrop->titleText(), QString());
    }

    void onUserAttributeChangedBackgroundColor()
    {
        OssSnBaseNode *node = make("Misc/Backdrop");
        node->setUserAttribute(
            OssCustomAttribute("BackgroundColor", QVariant::fromValue(OssColor(1, 0, 0, 1))));
        QCOMPARE(backdropOf(node)->backgroundColour(), QColor(Qt::red));
        // Another type converts when it can.
        node->setUserAttribute(OssCustomAttribute("BackgroundColor", QStringLiteral("0 0 1 1")));
        QCOMPARE(backdropOf(node)->backgroundColour(), QColor(Qt::blue));
        // A GUI node without a background colour names the node by its path.
        OssSnBaseNode *dot = make("Misc/Dot", "Bend");
        m_host.clearLines();
        dot->setUserAttribute(OssCustomAttribute("BackgroundColor", QStringLiteral("1 0 0 1")));
        QCOMPARE(m_host.lines(),
                 QStringList{"[ !! ] Invalid attribute 'BackgroundColor' on node '/Head_SG/Bend'"});
    }

    void onUserAttributeChangedLabelAndZOrder()
    {
        OssSnBaseNode *note = make("Misc/Sticky Note");
        note->setUserAttribute(OssCustomAttribute("Label", QStringLiteral("Remember")));
        QCOMPARE(qobject_cast<OssNgUINode *>(gui(note))->label(), QStringLiteral("Remember"));
        OssSnBaseNode *node = make("Misc/Backdrop");
        node->setUserAttribute(OssCustomAttribute("ZOrder", 4));
        QCOMPARE(backdropOf(node)->zOrder(), 4);
        // Label and title on a dot are ignored without a word.
        OssSnBaseNode *dot = make("Misc/Dot");
        m_host.clearLines();
        dot->setUserAttribute(OssCustomAttribute("Label", QStringLiteral("x")));
        dot->setUserAttribute(OssCustomAttribute("TitleText", QStringLiteral("x")));
        dot->setUserAttribute(OssCustomAttribute("ZOrder", 2));
        QVERIFY(m_host.lines().isEmpty());
    }

    // --- onZOrderChanged

    void onZOrderChanged()
    {
        OssSnBaseNode *node = make("Misc/Backdrop");
        OssNgBackdropNode *backdrop = backdropOf(node);
        const OssCustomAttribute before = node->userAttribute(QStringLiteral("ZOrder"));
        QVERIFY(before.isValid());
        QSignalSpy writes(node, &OssSerializableObject::userAttributeChanged);
        backdrop->setZOrder(before.value().toInt() + 3);
        QCOMPARE(writes.count(), 1);
        const OssCustomAttribute after = node->userAttribute(QStringLiteral("ZOrder"));
        QCOMPARE(after.value().toInt(), before.value().toInt() + 3);
        // The attribute keeps its display name and stays hidden.
        QCOMPARE(after.prettyName(), before.prettyName());
        QCOMPARE(after.isVisible(), before.isVisible());
        // The same value again writes nothing.
        QVERIFY(QMetaObject::invokeMethod(OssSnNodeGraphViewContext::of(node), "onZOrderChanged",
                                          Q_ARG(int, after.value().toInt())));
        QCOMPARE(writes.count(), 1);
        // Without a "ZOrder" attribute nothing is written.
        QVERIFY(node->removeUserAttribute(QStringLiteral("ZOrder")));
        writes.clear();
        backdrop->setZOrder(9);
        QCOMPARE(writes.count(), 0);
        QVERIFY(!node->exists(QStringLiteral("ZOrder")));
    }

    // --- setText

    void setTextShowsTheNameGivenAtCreation_data()
    {
        QTest::addColumn<QString>("key");
        QTest::newRow("sticky note") << "Misc/Sticky Note";
        QTest::newRow("dot") << "Misc/Dot";
    }

    void setTextShowsTheNameGivenAtCreation()
    {
        QFETCH(QString, key);
        OssSnBaseNode *node = m_network->createNode(key, QStringLiteral("Reminder"));
        QCOMPARE(gui(node)->text(), QStringLiteral("Reminder"));
        node->setName(QStringLiteral("Later"));
        QCOMPARE(gui(node)->text(), QStringLiteral("Later"));
        m_network = m_host.saveAndReopen(QStringLiteral("names.ossa"));
        QVERIFY2(m_network, qPrintable(m_host.errorString()));
        QCOMPARE(gui(m_network->node(QStringLiteral("Later")))->text(), QStringLiteral("Later"));
    }

    // --- containers

    void childrenNodes()
    {
        OssSnBaseNode *node = backdropAt("Frame", QRectF(0, 0, 600, 400));
        OssSnBaseNode *inside = make("Filter/Blur", "Inside");
        gui(inside)->setPos(100, 100);
        OssSnBaseNode *outside = make("Filter/Blur", "Outside");
        gui(outside)->setPos(1000, 100);
        auto *context =
            qobject_cast<OssSnUINodeGraphViewContext *>(OssSnNodeGraphViewContext::of(node));
        QCOMPARE(context->childrenNodes(), QList<OssSnBaseNode *>{inside});
        auto *noteContext = qobject_cast<OssSnUINodeGraphViewContext *>(
            OssSnNodeGraphViewContext::of(make("Misc/Sticky Note")));
        QVERIFY(noteContext->childrenNodes().isEmpty());
    }

    void onContainerMovedDown()
    {
        OssSnBaseNode *upper = backdropAt("Upper", QRectF(0, 0, 600, 400));
        OssSnBaseNode *lower = backdropAt("Lower", QRectF(0, 350, 600, 300));
        OssSnBaseNode *member = make("Filter/Blur", "Member");
        gui(member)->setPos(100, 450);
        m_host.clearLines();
        emit lower->containerMovedDown(upper);
        QVERIFY(m_host.hasLine("[ -- ] About to move container 'Lower' down wrt to Upper'"));
        QCOMPARE(area(backdropOf(lower)), QRectF(0, 430, 600, 300));
        // What the container holds goes along.
        QCOMPARE(gui(member)->pos(), QPointF(100, 530));
    }

    void onContainerRespacedWrt()
    {
        OssSnBaseNode *outer = backdropAt("Outer", QRectF(0, 0, 800, 800));
        OssSnBaseNode *inner = backdropAt("Inner", QRectF(50, 50, 400, 300));
        backdropOf(inner)->setZOrder(1);
        OssSnBaseNode *below = make("Filter/Blur", "Below");
        gui(below)->setPos(100, 360);
        m_host.clearLines();
        emit outer->containerRespacedWrt(inner);
        QVERIFY(m_host.hasLine("[ -- ] About to respace container 'Outer' wrt 'Inner'"));
        // The member under the reference is a gap clear of it, and the container holds it.
        QCOMPARE(gui(below)->sceneBoundingRect().top(), 350.0 + 30);
        QVERIFY(area(backdropOf(outer)).contains(gui(below)->sceneBoundingRect()));
    }

    void containerSlotsWithoutAView_data()
    {
        QTest::addColumn<QString>("slot");
        QTest::newRow("respaced") << "containerRespacedWrt";
        QTest::newRow("moved down") << "containerMovedDown";
        QTest::newRow("stretched") << "containerStretchedBy";
        QTest::newRow("fresh location") << "containerMovedToFreshLocation";
    }

    void containerSlotsWithoutAView()
    {
        QFETCH(QString, slot);
        OssSnBaseNode *upper = backdropAt("Upper", QRectF(0, 0, 600, 400));
        OssSnBaseNode *lower = backdropAt("Lower", QRectF(0, 350, 600, 300));
        const std::unique_ptr<QWidget> page = leaveNoView();
        m_host.clearLines();
        if (slot == QLatin1String("containerMovedToFreshLocation"))
            emit lower->containerMovedToFreshLocation(false);
        else if (slot == QLatin1String("containerRespacedWrt"))
            emit lower->containerRespacedWrt(upper);
        else if (slot == QLatin1String("containerMovedDown"))
            emit lower->containerMovedDown(upper);
        else
            emit lower->containerStretchedBy(upper);
        QCOMPARE(m_host.lines(), QStringList{"[ !! ] Fatal error -> no view!"});
        QCOMPARE(area(backdropOf(lower)), QRectF(0, 350, 600, 300));
    }

    void containerSlotsOnANodeThatIsNotABackdrop()
    {
        OssSnBaseNode *upper = backdropAt("Upper", QRectF(0, 0, 600, 400));
        OssSnBaseNode *note = make("Misc/Sticky Note", "Note");
        m_host.clearLines();
        emit note->containerMovedDown(upper);
        QVERIFY(m_host.hasLine("[ !! ] Invalid container gui node found for node 'Note'"));
    }

    void onContainerStretchedBy()
    {
        OssSnBaseNode *frame = backdropAt("Frame", QRectF(0, 0, 400, 300));
        OssSnBaseNode *blur = make("Filter/Blur");
        gui(blur)->setPos(500, 100);
        emit frame->containerStretchedBy(blur);
        QVERIFY(area(backdropOf(frame)).contains(gui(blur)->sceneBoundingRect()));
    }

    void onContainerChildrenRefreshed()
    {
        OssSnBaseNode *frame = backdropAt("Frame", QRectF(0, 0, 100, 100));
        OssSnBaseNode *a = make("Filter/Blur", "A");
        gui(a)->setPos(300, 200);
        OssSnBaseNode *b = make("Filter/Blur", "B");
        gui(b)->setPos(600, 500);
        const int steps = OssUndoManager::instance()->count();
        {
            OssUndoManager::AutoMacro macro(QStringLiteral("Refresh"));
            emit frame->containerChildrenRefreshed({a, b}, true);
        }
        const QRectF wrapped = area(backdropOf(frame));
        QVERIFY(wrapped.contains(gui(a)->sceneBoundingRect()));
        QVERIFY(wrapped.contains(gui(b)->sceneBoundingRect()));
        QVERIFY(wrapped.left() > 100);
        QCOMPARE(OssUndoManager::instance()->count(), steps + 1);
        OssUndoManager::instance()->undo();
        QCOMPARE(area(backdropOf(frame)), QRectF(0, 0, 100, 100));
        // Not undoable: no step is recorded, so the undone one can still be redone.
        emit frame->containerChildrenRefreshed({a}, false);
        QVERIFY(area(backdropOf(frame)).contains(gui(a)->sceneBoundingRect()));
        QVERIFY(OssUndoManager::instance()->canRedo());
    }

    void onContainerPeersStretched()
    {
        OssSnBaseNode *narrow = backdropAt("Narrow", QRectF(50, 0, 200, 100));
        OssSnBaseNode *wide = backdropAt("Wide", QRectF(0, 200, 500, 100));
        OssSnBaseNode *note = make("Misc/Sticky Note", "Note");
        m_host.clearLines();
        emit narrow->containerPeersStretched({narrow, wide, note});
        QVERIFY(m_host.hasLine("[ !! ] Invalid container gui node found for node 'Note'"));
        QCOMPARE(area(backdropOf(narrow)), QRectF(0, 0, 500, 100));
        QCOMPARE(area(backdropOf(wide)), QRectF(0, 200, 500, 100));
    }

    void onContainerMovedToFreshLocation_data()
    {
        QTest::addColumn<bool>("preserveY");
        QTest::newRow("keeps its height") << true;
        QTest::newRow("at the top") << false;
    }

    void onContainerMovedToFreshLocation()
    {
        QFETCH(bool, preserveY);
        OssSnBaseNode *other = make("Filter/Blur", "Other");
        gui(other)->setPos(0, -300);
        OssSnBaseNode *frame = backdropAt("Frame", QRectF(-500, 100, 300, 200));
        OssSnBaseNode *held = make("Filter/Blur", "Held");
        gui(held)->setPos(-450, 150);
        const QRectF others = gui(other)->sceneBoundingRect();
        emit frame->containerMovedToFreshLocation(preserveY);
        const QPointF expected(others.right() + 30, preserveY ? 100 : others.top());
        QCOMPARE(backdropOf(frame)->pos(), expected);
        QCOMPARE(gui(held)->pos(), expected + QPointF(50, 50));
    }

    // --- the user moves and resizes backdrops

    void resizingABackdropPushesTheContainersBelow()
    {
        OssSnBaseNode *upper = backdropAt("Upper", QRectF(0, 0, 600, 300));
        OssSnBaseNode *lower = backdropAt("Lower", QRectF(0, 340, 600, 300));
        OssSnBaseNode *aside = backdropAt("Aside", QRectF(1000, 340, 300, 300));
        OssSnBaseNode *member = make("Filter/Blur", "Member");
        gui(member)->setPos(100, 400);
        OssNgBackdropNode *backdrop = backdropOf(upper);
        const int steps = OssUndoManager::instance()->count();
        // What the backdrop's mouse handling leaves behind.
        backdrop->saveBoundingRect();
        backdrop->setNodeSize(QSizeF(600, 500));
        m_host.clearLines();
        emit backdrop->resizedByUser(QRectF(0, 0, 600, 300));
        QVERIFY(m_host.hasLine("[ -- ] About to move container 'Lower' down wrt to Upper'"));
        QCOMPARE(area(backdropOf(lower)), QRectF(0, 530, 600, 300));
        QCOMPARE(gui(member)->pos(), QPointF(100, 590));
        QCOMPARE(area(backdropOf(aside)), QRectF(1000, 340, 300, 300));
        // One step undoes the resize and the push.
        QCOMPARE(OssUndoManager::instance()->count(), steps + 1);
        OssUndoManager::instance()->undo();
        QCOMPARE(area(backdrop), QRectF(0, 0, 600, 300));
        QCOMPARE(area(backdropOf(lower)), QRectF(0, 340, 600, 300));
        QCOMPARE(gui(member)->pos(), QPointF(100, 400));
    }

    // --- old backdrops

    // A project written before nodes had path keys: its backdrop has none, nor a version.
    void oldBackdropWithoutPathKeyIsUpgraded()
    {
        const QString fixture = QStringLiteral(OSS_TEST_DATA_DIR "/old-backdrop.ossa");
        {
            QFile file(fixture);
            QVERIFY(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromUtf8(file.readAll());
            QVERIFY(!text.contains(QStringLiteral("Misc/Backdrop")));
        }
        // Opened on a host with nothing open, as the shell starts.
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
        m_network = m_host.openProject(fixture);
        QVERIFY2(m_network, qPrintable(m_host.errorString()));
        // Upgraded while it was read: no word of a type that is not installed.
        for (const QString &line : m_host.lines())
            QVERIFY2(!line.contains(QStringLiteral("is not installed")), qPrintable(line));
        OssSnBaseNode *loaded = m_network->node(QStringLiteral("Dirt_Backdrop"));
        QVERIFY(loaded);
        QCOMPARE(loaded->pathKey(), QStringLiteral("Misc/Backdrop"));
        OssNgBackdropNode *backdrop = backdropOf(loaded);
        QVERIFY(backdrop);
        QVERIFY(backdrop->isVisible());
        QCOMPARE(backdrop->scene(), manager()->sceneForNetwork(m_network));
        QCOMPARE(area(backdrop), QRectF(-200, -100, 700, 500));
        QCOMPARE(backdrop->titleText(), QStringLiteral("Dirt"));
        QCOMPARE(backdrop->backgroundColour().name(), QColor::fromRgbF(0.45, 0.35, 0.2).name());
        auto *context =
            qobject_cast<OssSnUINodeGraphViewContext *>(OssSnNodeGraphViewContext::of(loaded));
        QVERIFY(context);
        QCOMPARE(context->childrenNodes(),
                 QList<OssSnBaseNode *>{m_network->node(QStringLiteral("Base_Color"))});

        // Saved again, it has its path key, and opens as a backdrop of its type.
        const QString saved = m_host.scratchPath(QStringLiteral("upgraded.ossa"));
        QString error;
        QVERIFY2(OssProjectManager::instance()->saveProject(saved, &error), qPrintable(error));
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
        m_network = m_host.openProject(saved);
        QVERIFY2(m_network, qPrintable(m_host.errorString()));
        QFile again(saved);
        QVERIFY(again.open(QIODevice::ReadOnly));
        const QString upgraded = QString::fromUtf8(again.readAll());
        const int at = upgraded.indexOf(QStringLiteral("Dirt_Backdrop"));
        const int begin = upgraded.lastIndexOf(QStringLiteral("<object name=\"node\""), at);
        QVERIFY(begin >= 0);
        QVERIFY(upgraded.mid(begin, at - begin).contains(QStringLiteral("Misc/Backdrop")));
        OssSnBaseNode *reopened = m_network->node(QStringLiteral("Dirt_Backdrop"));
        QCOMPARE(reopened->pathKey(), QStringLiteral("Misc/Backdrop"));
        QCOMPARE(area(backdropOf(reopened)), QRectF(-200, -100, 700, 500));
        QCOMPARE(backdropOf(reopened)->scene(), manager()->sceneForNetwork(m_network));
    }

    // --- placement at the free spot

    void freeSpotCountsTheMovingNode()
    {
        OssSnBaseNode *left = make("Filter/Blur", "Left");
        gui(left)->setPos(0, 0);
        OssSnBaseNode *node = make("Filter/Sharpen", "Far");
        gui(node)->setPos(5000, -700);
        const QRectF bounds = manager()->sceneForNetwork(m_network)->itemsBoundingRect();
        QVERIFY(bounds.right() >= gui(node)->sceneBoundingRect().right());
        emit node->emitSetLayout(OssSnBaseNode::NodeLayoutType(0), nullptr, true, false);
        const OssNgStyle *style = OssNgStyle::instance();
        QCOMPARE(gui(node)->pos(),
                 QPointF(bounds.right() + 30, bounds.top() + 30 + style->verticalSpacing() +
                                                  style->verticalSpacingFactor()));
    }

    // --- node-creation actions

    void creationActionsForAOneComponentMenuPathAreMadeOnce()
    {
        const QString path = m_host.scratchPath(QStringLiteral("Foo.xml"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                   "<NodeType PathKey=\"Test/Foo\" MenuPath=\"Foo\" Class=\"OssSnBaseNode\" "
                   "VersionUuid=\"TEST_Foo\" Date=\"2026-01-01\" NodeGraph=\"true\"/>\n");
        file.close();
        QString error;
        QVERIFY2(OssSnNodeTypeCatalogue::instance()->addTypeFromFile(path, &error),
                 qPrintable(error));
        OssActionTreeManager *tree = OssActionTreeManager::instance();
        QObject owner;
        OssSnNodeCreationActions::create(&owner, SLOT(deleteLater()));
        const QString identity = QStringLiteral("/Ossa/NodeGraph/Create//Foo");
        QCOMPARE(tree->findActions(identity).size(), 1);
        QCOMPARE(tree->findAction(identity)->data().toString(), QStringLiteral("Test/Foo"));
        // Again, as when the node-type list changes: nothing new.
        const QList<QAction *> again =
            OssSnNodeCreationActions::create(&owner, SLOT(deleteLater()));
        QVERIFY(again.isEmpty());
        QCOMPARE(tree->findActions(identity).size(), 1);
        OssSnNodeTypeCatalogue::instance()->removeType(QStringLiteral("Test/Foo"));
    }
};

QTEST_MAIN(tst_UINodeContext)
#include "tst_UINodeContext.moc"
