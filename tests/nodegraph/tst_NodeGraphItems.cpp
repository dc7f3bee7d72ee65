#include "OssTestHost.h"

#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgExtendedNode.h>
#include <OssNgNodeState.h>
#include <OssNgStyle.h>
#include <OssNgUINodes.h>
#include <OssNgUndo.h>

#include <OssDeserializer.h>
#include <OssSerializer.h>
#include <OssUndoManager.h>

#include <QFontMetricsF>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QtTest>

namespace {

// A serialisable holder that saves one GUI node's state as the sub-object "m_GuiNode".
class Holder : public OssSerializableObject
{
    Q_OBJECT
public:
    explicit Holder(OssNgNode *node) : m_node(node) {}
    bool saveObjects(OssSerializer &serializer) override
    {
        return m_node->save(serializer, QStringLiteral("m_GuiNode"));
    }
    OssSerializableObject *onLoadSubObject(OssDeserializer &, const QString &name,
                                           const QString &) override
    {
        return name == QLatin1String("m_GuiNode") ? m_node->state() : nullptr;
    }

private:
    OssNgNode *m_node;
};

OssNgExtendedNode *makeNode(QGraphicsScene &scene, const QString &text, const QPointF &pos,
                            const QStringList &inputs = {"A", "B"},
                            const QStringList &outputs = {"Output"})
{
    auto *node = new OssNgExtendedNode;
    node->setText(text);
    for (int i = 0; i < inputs.size(); ++i)
        node->addInputPort(inputs.at(i), i == 0);
    for (const QString &output : outputs)
        node->addOutputPort(output);
    node->setPos(pos);
    scene.addItem(node);
    return node;
}

} // namespace

class tst_NodeGraphItems : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void cleanup() { QVERIFY2(m_host.reset(), qPrintable(m_host.errorString())); }

    void edgesFollowTheirNodes()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *source = makeNode(scene, "Noise", {0, 0});
        OssNgExtendedNode *target = makeNode(scene, "Blur", {0, 200});
        OssNgEdge *edge = target->connectInput("B", source, "Output");
        QVERIFY(edge && edge->isFullConnected());
        QCOMPARE(edge->scene(), &scene);
        QCOMPARE(target->input("B"), edge);
        QCOMPARE(source->outputs(), QList<OssNgEdge *>{edge});
        QCOMPARE(edge->startPoint(), source->outputPortScenePos("Output"));
        QCOMPARE(edge->endPoint(), target->inputPortScenePos("B"));
        source->setPos(300, -50);
        QCOMPARE(edge->curve().pointAtPercent(0), source->outputPortScenePos("Output"));
        QCOMPARE(edge->curve().pointAtPercent(1), target->inputPortScenePos("B"));
        // Re-targeting keeps one edge per input.
        OssNgExtendedNode *other = makeNode(scene, "Other", {-300, 0});
        QCOMPARE(target->connectInput("B", other, "Output"), edge);
        QVERIFY(source->outputs().isEmpty());
        target->connectInput("B", nullptr, QString());
        QVERIFY(!target->input("B"));
        QVERIFY(other->outputs().isEmpty());
    }

    // An edge answers hit tests as its stroked shape does: on the curve and within half the
    // band's width of it, at the dot marker when dotable, nowhere else.
    void edgeHitTestsFollowTheCurve_data()
    {
        QTest::addColumn<QPointF>("targetPos");
        QTest::addColumn<bool>("dotable");
        QTest::newRow("short, straight") << QPointF(400, 0) << false;
        QTest::newRow("long, climbing") << QPointF(3000, -9000) << false;
        QTest::newRow("backwards") << QPointF(-600, 300) << false;
        QTest::newRow("dotable") << QPointF(700, 500) << true;
    }
    void edgeHitTestsFollowTheCurve()
    {
        QFETCH(QPointF, targetPos);
        QFETCH(bool, dotable);
        QGraphicsScene scene;
        OssNgExtendedNode *source = makeNode(scene, "Noise", {0, 0});
        OssNgExtendedNode *target = makeNode(scene, "Blur", targetPos);
        OssNgEdge *edge = target->connectInput("A", source, "Output");
        edge->switchToDotableMode(dotable);
        const QPainterPath curve = edge->curve();
        for (int i = 0; i <= 20; ++i) {
            const qreal t = i / 20.0;
            const QPointF on = edge->mapFromScene(curve.pointAtPercent(t));
            QVERIFY2(edge->contains(on), qPrintable(QString::number(t)));
            // Well inside and well outside the band, across the curve's direction.
            const qreal angle = qDegreesToRadians(curve.angleAtPercent(t) + 90.0);
            const QPointF across(qCos(angle), -qSin(angle));
            if (i > 0 && i < 20) {
                QVERIFY(edge->contains(on + across * 2.5));
                QVERIFY(edge->contains(on - across * 2.5));
                const QPointF away = on + across * 30.0;
                QCOMPARE(edge->contains(away), edge->shape().contains(away));
            }
        }
        const QPointF marker = edge->mapFromScene(edge->dotMarkerScenePos()) + QPointF(0, 6.5);
        QCOMPARE(edge->contains(marker), edge->shape().contains(marker));
        QVERIFY(!edge->contains(edge->boundingRect().topLeft() - QPointF(1, 1)));
        // The answer follows the curve when a node moves.
        const QPointF middle = edge->mapFromScene(curve.pointAtPercent(0.5));
        source->setPos(source->pos() + QPointF(0, 5000));
        QCOMPARE(edge->contains(middle), edge->shape().contains(middle));
        QVERIFY(edge->contains(edge->mapFromScene(edge->curve().pointAtPercent(0.5))));
        // The scene's own hit test finds the edge on its curve.
        QVERIFY(scene.items(edge->curve().pointAtPercent(0.5)).contains(edge));
    }

    // Moves inside a deferral adjust edges once, at its end; a node deleted meanwhile is no
    // trouble.
    void deferredEdgeUpdates()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *source = makeNode(scene, "Noise", {0, 0});
        OssNgExtendedNode *target = makeNode(scene, "Blur", {400, 0});
        OssNgExtendedNode *doomed = makeNode(scene, "Doomed", {0, 300});
        OssNgEdge *edge = target->connectInput("A", source, "Output");
        target->connectInput("B", doomed, "Output");
        const QPointF before = edge->curve().pointAtPercent(0);
        {
            const OssNgNode::DeferEdgeUpdates outer;
            {
                const OssNgNode::DeferEdgeUpdates inner;
                source->setPos(0, 200);
                source->setPos(0, 250);
                target->setPos(500, 100);
            }
            // Still deferred: the outer scope lives.
            QCOMPARE(edge->curve().pointAtPercent(0), before);
            doomed->setPos(50, 300);
            delete doomed;
        }
        QCOMPARE(edge->curve().pointAtPercent(0), source->outputPortScenePos("Output"));
        QCOMPARE(edge->curve().pointAtPercent(1), target->inputPortScenePos("A"));
        QVERIFY(!target->input("B"));
        // Outside a deferral, edges follow at once again.
        source->setPos(0, 0);
        QCOMPARE(edge->curve().pointAtPercent(0), source->outputPortScenePos("Output"));
    }

    void deletingOrDisposingANodeTakesItsEdges()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *a = makeNode(scene, "A", {0, 0});
        OssNgExtendedNode *b = makeNode(scene, "B", {0, 200});
        OssNgExtendedNode *c = makeNode(scene, "C", {0, 400});
        QPointer<OssNgEdge> ab = b->connectInput("A", a, "Output");
        QPointer<OssNgEdge> bc = c->connectInput("A", b, "Output");
        b->dispose();
        QVERIFY(!b->scene());
        QVERIFY(!ab && !bc);
        QVERIFY(a->outputs().isEmpty() && c->inputs().isEmpty());
        // Put back and connected again, then deleted: its edges go with it.
        scene.addItem(b);
        bc = c->connectInput("A", b, "Output");
        delete b;
        QVERIFY(!bc);
        QVERIFY(c->inputs().isEmpty());
    }

    void inputEdgesFollowTheirNodeBetweenScenes()
    {
        QGraphicsScene first, second;
        OssNgExtendedNode *a = makeNode(first, "A", {0, 0});
        OssNgExtendedNode *b = makeNode(first, "B", {0, 200});
        OssNgEdge *edge = b->connectInput("A", a, "Output");
        first.removeItem(b);
        QVERIFY(!edge->scene());
        first.addItem(b);
        QCOMPARE(edge->scene(), &first);
        Q_UNUSED(second);
    }

    void portListModes_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QStringList>("visibleInputs");
        QTest::addColumn<bool>("horizontal");
        QTest::newRow("shown") << 0 << QStringList{"A", "B", "C"} << true;
        QTest::newRow("hidden") << 1 << QStringList{"A", "B", "C"} << false;
        QTest::newRow("folded") << 2 << QStringList{"A"} << true;
        QTest::newRow("connected") << 3 << QStringList{"A", "C"} << true;
        QTest::newRow("expanded") << 4 << QStringList{"A", "B", "C"} << true;
    }

    void portListModes()
    {
        QFETCH(int, mode);
        QFETCH(QStringList, visibleInputs);
        QFETCH(bool, horizontal);
        QGraphicsScene scene;
        OssNgExtendedNode *source = makeNode(scene, "S", {0, -200});
        OssNgExtendedNode *node = makeNode(scene, "N", {0, 0}, {"A", "B", "C"});
        node->connectInput("C", source, "Output");
        QSignalSpy changed(node, &OssNgExtendedNode::nodePortListModeChanged);
        node->setProperty("portListMode", mode);
        QCOMPARE(node->portListModeAsInt(), mode);
        QCOMPARE(changed.count(), 0);
        QStringList visible;
        for (const QString &name : node->inputPortNames())
            if (node->inputPort(name)->visible)
                visible << name;
        QCOMPARE(visible, visibleInputs);
        QCOMPARE(node->flow() == OssNgNode::Flow::Horizontal, horizontal);
        // The edge still ends at its input's anchor, visible or folded.
        QCOMPARE(node->input("C")->endPoint(), node->inputPortScenePos("C"));
    }

    void cyclingIsTheUsersChange()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *node = makeNode(scene, "N", {0, 0});
        QSignalSpy changed(node, &OssNgExtendedNode::nodePortListModeChanged);
        node->cyclePortListMode();
        node->cyclePortListMode();
        QCOMPARE(changed.count(), 2);
        QCOMPARE(changed.at(0).at(0).toInt(), 1);
        QCOMPARE(changed.at(1).at(0).toInt(), 0);
        node->setMultiChannelModesAllowed(true);
        for (int i = 0; i < 4; ++i)
            node->cyclePortListMode();
        QCOMPARE(node->portListModeAsInt(), 4);
    }

    void iconsMarksAndPorts()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *node = makeNode(scene, "N", {0, 0});
        const int geo = node->addIcon("GeoChannel");
        const int patch = node->addIcon("ActivePatchRange");
        QCOMPARE(geo, 0);
        QCOMPARE(patch, 1);
        QVERIFY(!node->iconVisible(patch));
        node->setIconVisible(patch, true);
        QVERIFY(node->iconVisible(patch) && !node->iconVisible(geo));
        node->setMark(OssNgExtendedNode::CachedMark, true);
        QVERIFY(node->mark(OssNgExtendedNode::CachedMark));
        QVERIFY(node->renameInputPort("A", "Base"));
        QVERIFY(!node->renameInputPort("B", "Base"));
        QCOMPARE(node->inputPortNames(), (QStringList{"Base", "B"}));
        node->setInputPortText("Base", "0:Current Material");
        QCOMPARE(node->inputPort("Base")->label(), QStringLiteral("0:Current Material"));
        node->setConnectionDescriptiveNames({"Diffuse"}, {"Material"});
        QCOMPARE(node->outputPointDescriptiveName("Output"), QStringLiteral("Material"));
        QVERIFY(node->removeInputPort("B"));
        QCOMPARE(node->inputPortNames(), QStringList{"Base"});
        // A port's hit area is where it is drawn.
        const QPointF anchor = node->mapFromScene(node->inputPortScenePos("Base"));
        QCOMPARE(node->inputPortAt(anchor), QStringLiteral("Base"));
        QCOMPARE(node->inputPortAt(anchor + QPointF(30, 30)), QString());
    }

    void invokableSettersByName_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<bool>("present");
        QTest::newRow("backdrop colour")
            << "backdrop" << QByteArray("setNodeBackgroundColour(QColor)") << true;
        QTest::newRow("backdrop title")
            << "backdrop" << QByteArray("setTitleText(QString)") << true;
        QTest::newRow("backdrop label") << "backdrop" << QByteArray("setLabel(QString)") << false;
        QTest::newRow("note label") << "note" << QByteArray("setLabel(QString)") << true;
        QTest::newRow("note colour")
            << "note" << QByteArray("setNodeBackgroundColour(QColor)") << true;
        QTest::newRow("dot label") << "dot" << QByteArray("setLabel(QString)") << false;
    }

    void invokableSettersByName()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, signature);
        QFETCH(bool, present);
        std::unique_ptr<OssNgNode> node;
        if (kind == "backdrop")
            node.reset(new OssNgBackdropNode);
        else if (kind == "note")
            node.reset(new OssNgUINode);
        else
            node.reset(new OssNgDotNode);
        QCOMPARE(node->metaObject()->indexOfMethod(signature.constData()) >= 0, present);
    }

    void backdropsCarryTheirChildren()
    {
        QGraphicsScene scene;
        auto *backdrop = new OssNgBackdropNode;
        scene.addItem(backdrop);
        OssNgExtendedNode *inside = makeNode(scene, "Inside", {100, 100});
        OssNgExtendedNode *outside = makeNode(scene, "Outside", {900, 900});
        backdrop->wrapAroundSelection(inside->sceneBoundingRect());
        QVERIFY(backdrop->sceneBoundingRect().contains(inside->sceneBoundingRect()));
        QVERIFY(backdrop->nodesInside().contains(inside));
        QVERIFY(!backdrop->nodesInside().contains(outside));
        const QPointF before = inside->pos();
        backdrop->setPosition(backdrop->pos() + QPointF(50, 20));
        QCOMPARE(inside->pos(), before + QPointF(50, 20));
        QCOMPARE(outside->pos(), QPointF(900, 900));
        QCOMPARE(backdrop->childrenList().size(), 1);
        QSignalSpy z(backdrop, &OssNgBackdropNode::zOrderChanged);
        backdrop->setZOrder(3);
        QCOMPARE(z.count(), 1);
        QVERIFY(backdrop->zValue() < inside->zValue());
        QVERIFY(QMetaObject::invokeMethod(backdrop, "setTitleText", Q_ARG(QString, "Dirt")));
        QCOMPARE(backdrop->titleText(), QStringLiteral("Dirt"));
        // Only the title bar takes clicks.
        QVERIFY(backdrop->hitTest(QPointF(20, 5)));
        QVERIFY(!backdrop->hitTest(QPointF(20, backdrop->titleBarHeight() + 20)));
    }

    void undoStepsRestorePositionsAndRectangles()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *node = makeNode(scene, "N", {10, 20});
        node->savePosition();
        node->setPos(200, 300);
        OssUndoManager::instance()->addUndo(new OssNgNodePositionChangeUndo(node));
        OssUndoManager::instance()->addUndo(
            new OssNgNodePositionChangeUndo(node, {200, 300}, {-5, -5}));
        QCOMPARE(node->pos(), QPointF(-5, -5));
        OssUndoManager::instance()->undo();
        QCOMPARE(node->pos(), QPointF(200, 300));
        OssUndoManager::instance()->undo();
        QCOMPARE(node->pos(), QPointF(10, 20));
        OssUndoManager::instance()->redo();
        QCOMPARE(node->pos(), QPointF(200, 300));

        auto *backdrop = new OssNgBackdropNode;
        scene.addItem(backdrop);
        backdrop->setPos(0, 0);
        backdrop->saveBoundingRect();
        backdrop->setRect(QRectF(40, 30, 500, 260));
        OssUndoManager::instance()->addUndo(new OssNgBackdropNodeRectChangeUndo(backdrop));
        QCOMPARE(QRectF(backdrop->pos(), backdrop->nodeSize()), QRectF(40, 30, 500, 260));
        OssUndoManager::instance()->undo();
        QCOMPARE(QRectF(backdrop->pos(), backdrop->nodeSize()), QRectF(0, 0, 400, 240));
        OssUndoManager::instance()->redo();
        QCOMPARE(QRectF(backdrop->pos(), backdrop->nodeSize()), QRectF(40, 30, 500, 260));
        OssUndoManager::instance()->clear();
    }

    void guiStateRoundTrip()
    {
        QGraphicsScene scene;
        OssNgExtendedNode *node = makeNode(scene, "N", {123.5, -40});
        node->setPortListMode(OssNgExtendedNode::PortListFolded);
        node->setZValue(4);
        Holder holder(node);
        OssSerializer serializer;
        const QByteArray data = serializer.saveToData(&holder, QStringLiteral("context"));
        QVERIFY(data.contains("name=\"m_GuiNode\""));

        OssNgExtendedNode *copy = makeNode(scene, "Copy", {0, 0});
        Holder target(copy);
        OssDeserializer deserializer;
        QString error;
        QVERIFY2(deserializer.loadFromData(data, &target, &error), qPrintable(error));
        QCOMPARE(copy->pos(), QPointF(123.5, -40));
        QCOMPARE(copy->portListModeAsInt(), 2);
        QCOMPARE(copy->zValue(), 4.0);
        OssNgExtendedNode *clone = makeNode(scene, "Clone", {0, 0});
        clone->copyFrom(node);
        QCOMPARE(clone->pos(), node->pos());
        QCOMPARE(clone->portListModeAsInt(), 2);
    }

    // The title (with the icon's room before it) sits between the input and output label
    // columns: each label has the width its text needs, inside the node, and nothing overlaps.
    void titleAndLabelsNeverOverlap_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("inputs");
        QTest::addColumn<QStringList>("outputs");
        QTest::addColumn<bool>("icon");
        QTest::newRow("merge") << "Paint_Merge" << QStringList{"Base", "Over", "Mask"}
                               << QStringList{"Output"} << false;
        QTest::newRow("long labels")
            << "Surface" << QStringList{"Diffuse Color", "Specular Color", "Roughness", "Normal"}
            << QStringList{"Output"} << false;
        QTest::newRow("icon and one input")
            << "Viewer" << QStringList{"Input"} << QStringList{} << true;
        QTest::newRow("long title, long output")
            << "Wear_Broadcast (WearMask)" << QStringList{"Input"} << QStringList{"Scratch_Height"}
            << true;
        QTest::newRow("no ports") << "Backdrop like" << QStringList{} << QStringList{} << false;
    }

    void titleAndLabelsNeverOverlap()
    {
        QFETCH(QString, title);
        QFETCH(QStringList, inputs);
        QFETCH(QStringList, outputs);
        QFETCH(bool, icon);
        QGraphicsScene scene;
        OssNgExtendedNode *node = makeNode(scene, title, {0, 0}, inputs, outputs);
        if (icon) {
            QPixmap pixmap(32, 32);
            pixmap.fill(Qt::red);
            node->setPixmap(pixmap, QPoint());
        }
        const QRectF body(QPointF(0, 0), node->nodeSize());
        const QRectF titleRect = node->titleRect();
        const QFontMetricsF titleMetrics(OssNgStyle::instance()->titleFont());
        const QFontMetricsF labelMetrics(OssNgStyle::instance()->labelFont());
        QVERIFY(body.contains(titleRect));
        // The title's text fits beside the icon.
        const qreal iconRoom = icon ? 16 : 0;
        QVERIFY(titleRect.width() - iconRoom >= titleMetrics.horizontalAdvance(title));
        QList<QRectF> labels;
        for (const bool input : {true, false})
            for (const QString &port : input ? inputs : outputs) {
                const QRectF label = node->portLabelRect(port, input);
                QVERIFY2(!label.isEmpty(), qPrintable(port));
                QVERIFY2(body.contains(label), qPrintable(port));
                QVERIFY2(label.width() >= labelMetrics.horizontalAdvance(port), qPrintable(port));
                QVERIFY2(!label.intersects(titleRect), qPrintable(port));
                for (const QRectF &other : qAsConst(labels))
                    QVERIFY2(!label.intersects(other), qPrintable(port));
                labels.append(label);
            }
    }

    // Backdrop titles and sticky-note text stay readable when zoomed far out: drawn larger in
    // the scene, they stay at least the landmark size tall on screen.
    void landmarkTextStaysReadable_data()
    {
        QTest::addColumn<bool>("backdrop");
        QTest::addColumn<qreal>("scale");
        QTest::newRow("backdrop at 100 %") << true << 1.0;
        QTest::newRow("backdrop at 20 %") << true << 0.2;
        QTest::newRow("backdrop at 8 %") << true << 0.08;
        QTest::newRow("sticky note at 30 %") << false << 0.3;
        QTest::newRow("sticky note at 10 %") << false << 0.1;
    }

    void landmarkTextStaysReadable()
    {
        QFETCH(bool, backdrop);
        QFETCH(qreal, scale);
        QGraphicsScene scene;
        scene.setBackgroundBrush(Qt::black);
        QColor text;
        if (backdrop) {
            auto *item = new OssNgBackdropNode;
            item->setTitleText(QStringLiteral("Dirt"));
            item->setNodeSize(QSizeF(3000, 2000));
            scene.addItem(item);
            text = OssNgStyle::instance()->textColor();
        } else {
            auto *item = new OssNgUINode;
            item->setTitleText(QStringLiteral("Note"));
            item->setNodeSize(QSizeF(1200, 800));
            scene.addItem(item);
            text = Qt::black;
        }
        const QRectF source = scene.items().first()->sceneBoundingRect();
        QImage image((source.size() * scale).toSize() + QSize(1, 1), QImage::Format_ARGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        scene.render(&painter, QRectF(QPointF(0, 0), source.size() * scale), source);
        painter.end();
        // The rows of the top left corner with pixels of the text's colour.
        int top = image.height(), bottom = -1;
        for (int y = 0; y < qMin(image.height(), 80); ++y)
            for (int x = 0; x < qMin(image.width(), 120); ++x) {
                const QColor c = image.pixelColor(x, y);
                if (qAbs(c.red() - text.red()) + qAbs(c.green() - text.green()) +
                        qAbs(c.blue() - text.blue()) <
                    40) {
                    top = qMin(top, y);
                    bottom = qMax(bottom, y);
                }
            }
        QVERIFY2(bottom >= 0, "no text drawn");
        // Capital letters are about two thirds of a line.
        QVERIFY2(bottom - top + 1 >= OssNgStyle::instance()->landmarkTextPixels() * 0.5,
                 qPrintable(QString::number(bottom - top + 1)));
    }

    void levelOfDetailPaintsWithoutText()
    {
        // Far away a node is one filled box: rendering stays cheap and shows no text.
        QGraphicsScene scene;
        OssNgExtendedNode *node = makeNode(scene, "A long node title", {0, 0});
        node->setNodeColor(QColor(200, 0, 0), QColor(200, 0, 0));
        QImage far(20, 8, QImage::Format_ARGB32);
        far.fill(Qt::white);
        QPainter painter(&far);
        scene.render(&painter, QRectF(0, 0, 20, 8), node->sceneBoundingRect());
        painter.end();
        QSet<QRgb> colours;
        for (int y = 2; y < 6; ++y)
            for (int x = 2; x < 18; ++x)
                colours.insert(far.pixel(x, y));
        QVERIFY(colours.size() <= 3);
    }

    // Near, a node shows its title and ports; at middle distance its ports, and its title while
    // that is tall enough to read; far away, neither.
    void levelsOfDetail_data()
    {
        QTest::addColumn<qreal>("scale");
        QTest::addColumn<bool>("titleShown");
        QTest::addColumn<bool>("portsShown");
        QTest::newRow("near") << 1.0 << true << true;
        // Titles show whenever they are at least 7 pixels tall on screen.
        const qreal title = OssNgStyle::instance()->titleTextHeight();
        QTest::newRow("title 8 pixels tall") << 8.0 / title << true << true;
        QTest::newRow("title 6 pixels tall") << 6.0 / title << false << true;
        QTest::newRow("middle") << 0.3 << false << true;
        QTest::newRow("far") << 0.1 << false << false;
    }
    void levelsOfDetail()
    {
        QFETCH(qreal, scale);
        QFETCH(bool, titleShown);
        QFETCH(bool, portsShown);
        QGraphicsScene scene;
        scene.setBackgroundBrush(Qt::white);
        OssNgExtendedNode *node = makeNode(scene, "WWWWWWWW", {0, 0});
        const QColor fill(200, 0, 0);
        node->setNodeColor(fill, fill);
        const QRectF source = node->sceneBoundingRect();
        QImage image((source.size() * scale).toSize() + QSize(1, 1), QImage::Format_ARGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        scene.render(&painter, QRectF(QPointF(0, 0), source.size() * scale), source);
        painter.end();
        const auto toImage = [&](const QPointF &local) {
            return ((node->mapToScene(local) - source.topLeft()) * scale).toPoint();
        };
        const auto differs = [&](const QRect &area) {
            int count = 0;
            for (int y = area.top(); y <= area.bottom(); ++y)
                for (int x = area.left(); x <= area.right(); ++x) {
                    const QColor c = image.pixelColor(x, y);
                    count += qAbs(c.red() - fill.red()) + c.green() + c.blue() > 90 ? 1 : 0;
                }
            return count;
        };
        const QSizeF size = node->nodeSize();
        const QRect title(toImage({size.width() * 0.3, size.height() * 0.4}),
                          toImage({size.width() * 0.7, size.height() * 0.6}));
        QCOMPARE(differs(title) > 0, titleShown);
        // Input ports sit on the left side, inside the body's outline.
        const QRect ports(toImage({0, size.height() * 0.2}), toImage({2, size.height() * 0.8}));
        QCOMPARE(differs(ports.adjusted(1, 0, 1, 0)) > 0, portsShown);
    }
};

QTEST_MAIN(tst_NodeGraphItems)
#include "tst_NodeGraphItems.moc"
