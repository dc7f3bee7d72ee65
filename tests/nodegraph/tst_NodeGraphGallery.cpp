#include "OssTestHost.h"

#include <OssNgBackdropNode.h>
#include <OssNgEdge.h>
#include <OssNgExtendedNode.h>
#include <OssNgUINodes.h>
#include <OssNgView.h>

#include <QDir>
#include <QGraphicsScene>
#include <QImage>
#include <QPainter>
#include <QRegion>
#include <QtTest>

// Renders one of each item kind, every port-list mode and every mark to PNG files under the
// build tree (OSS_GALLERY_DIR), for a reviewer to look at. Each picture must show something,
// and pictures of different states must differ.
class tst_NodeGraphGallery : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;

    // The part of the scene a picture shows, and the picture at twice the scene's scale.
    static QRectF areaOf(QGraphicsScene &scene)
    {
        return scene.itemsBoundingRect().adjusted(-20, -20, 20, 20);
    }

    static QImage paint(QGraphicsScene &scene)
    {
        const QRectF area = areaOf(scene);
        QImage image(area.size().toSize() * 2, QImage::Format_ARGB32);
        image.fill(background());
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, QRectF(), area);
        painter.end();
        return image;
    }

    static QImage render(QGraphicsScene &scene, const QString &name)
    {
        const QImage image = paint(scene);
        QDir().mkpath(QStringLiteral(OSS_GALLERY_DIR));
        image.save(QStringLiteral(OSS_GALLERY_DIR "/%1.png").arg(name));
        return image;
    }

    static QColor background() { return QColor(38, 38, 40); }

    // The picture's pixels of a scene rectangle.
    static QRect pixelsOf(QGraphicsScene &scene, const QImage &image, const QRectF &sceneRect)
    {
        const QRectF area = areaOf(scene);
        return QRectF((sceneRect.topLeft() - area.topLeft()) * 2, sceneRect.size() * 2)
                   .toAlignedRect() &
               image.rect();
    }

    // How many pixels of a rectangle of the picture are not background.
    static int painted(const QImage &image, const QRect &pixels)
    {
        int count = 0;
        for (int y = pixels.top(); y <= pixels.bottom(); ++y)
            for (int x = pixels.left(); x <= pixels.right(); ++x)
                count += image.pixel(x, y) != background().rgb() ? 1 : 0;
        return count;
    }

    // Pixels that are not background outside every item's bounds (with a pixel for smoothing).
    static int paintedOutsideItems(QGraphicsScene &scene, const QImage &image)
    {
        QRegion inside;
        for (QGraphicsItem *item : scene.items())
            inside += pixelsOf(scene, image, item->sceneBoundingRect()).adjusted(-1, -1, 1, 1);
        int count = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixel(x, y) != background().rgb() && !inside.contains(QPoint(x, y)))
                    ++count;
        return count;
    }

    static OssNgExtendedNode *node(QGraphicsScene &scene, const QString &text, const QPointF &pos)
    {
        auto *item = new OssNgExtendedNode;
        item->setText(text);
        item->setCategory(QStringLiteral("Layer"));
        for (const char *input : {"Base", "Over", "Mask"})
            item->addInputPort(QString::fromLatin1(input), QByteArray(input) == "Base");
        item->addOutputPort(QStringLiteral("Output"));
        item->addOutputPort(QStringLiteral("Alpha"));
        item->setPos(pos);
        scene.addItem(item);
        return item;
    }

    static QList<int> shapes()
    {
        return {OssNgNode::RoundedShape, OssNgNode::MaterialShape, OssNgNode::GroupShape,
                OssNgNode::MultiChannelGroupShape};
    }

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void portListModes()
    {
        QList<QImage> pictures;
        for (int mode = OssNgExtendedNode::PortListShown;
             mode <= OssNgExtendedNode::PortListExpanded; ++mode) {
            QGraphicsScene scene;
            OssNgExtendedNode *source = node(scene, QStringLiteral("Source"), {0, -200});
            OssNgExtendedNode *merge = node(scene, QStringLiteral("Merge"), {0, 0});
            merge->connectInput(QStringLiteral("Over"), source, QStringLiteral("Output"));
            merge->setPortListMode(OssNgExtendedNode::PortListMode(mode));
            pictures << render(scene, QStringLiteral("portlist-mode-%1").arg(mode));
        }
        for (int i = 1; i < pictures.size(); ++i)
            QVERIFY2(pictures.at(i) != pictures.at(i - 1), qPrintable(QString::number(i)));
    }

    void marksAndShapes()
    {
        QGraphicsScene scene;
        QList<OssNgExtendedNode *> items;
        int column = 0;
        for (int mark = 0; mark < OssNgExtendedNode::MarkCount; ++mark) {
            OssNgExtendedNode *item =
                node(scene, QStringLiteral("Mark %1").arg(mark), {column++ * 200.0, 0});
            item->setMark(OssNgExtendedNode::Mark(mark), true);
            items.append(item);
        }
        column = 0;
        for (int shape : shapes()) {
            OssNgExtendedNode *item =
                node(scene, QStringLiteral("Shape %1").arg(shape), {column++ * 200.0, 150});
            item->setShapeType(shape);
            items.append(item);
        }
        OssNgExtendedNode *icons = node(scene, QStringLiteral("Icons"), {0, 300});
        icons->setIconVisible(icons->addIcon(QStringLiteral("GeoChannel")), true);
        icons->setIconVisible(icons->addIcon(QStringLiteral("BroadcastNodeSignal")), true);
        icons->setSelected(true);
        OssNgExtendedNode *hovered = node(scene, QStringLiteral("Hovered"), {200, 300});
        hovered->setHovered(true);
        items << icons << hovered;
        const QImage image = render(scene, QStringLiteral("marks-and-shapes"));
        // Every node is drawn where it stands, and nothing is drawn outside the items' bounds.
        for (OssNgExtendedNode *item : qAsConst(items)) {
            const QRect pixels = pixelsOf(scene, image, item->sceneBoundingRect());
            QVERIFY2(painted(image, pixels) > pixels.width() * pixels.height() / 2,
                     qPrintable(item->text()));
        }
        QCOMPARE(paintedOutsideItems(scene, image), 0);
    }

    // Each shape has an outline of its own: the same node in two shapes looks different.
    void shapesDiffer()
    {
        QList<QImage> pictures;
        for (int shape : shapes()) {
            QGraphicsScene scene;
            node(scene, QStringLiteral("Shape"), {0, 0})->setShapeType(shape);
            pictures.append(paint(scene));
        }
        for (int i = 0; i < pictures.size(); ++i)
            for (int j = i + 1; j < pictures.size(); ++j)
                QVERIFY2(pictures.at(i) != pictures.at(j),
                         qPrintable(
                             QStringLiteral("%1 and %2").arg(shapes().at(i)).arg(shapes().at(j))));
    }

    void markIsDrawn_data()
    {
        QTest::addColumn<int>("mark");
        QTest::newRow("system shader") << int(OssNgExtendedNode::SystemShaderMark);
        QTest::newRow("cached") << int(OssNgExtendedNode::CachedMark);
        QTest::newRow("disabled") << int(OssNgExtendedNode::DisabledMark);
        QTest::newRow("active") << int(OssNgExtendedNode::GuiActiveMark);
        QTest::newRow("baked") << int(OssNgExtendedNode::BakedMark);
        QTest::newRow("stale") << int(OssNgExtendedNode::StaleMark);
    }

    // A mark changes the node's picture, inside the node.
    void markIsDrawn()
    {
        QFETCH(int, mark);
        QGraphicsScene scene;
        OssNgExtendedNode *item = node(scene, QStringLiteral("Marked"), {0, 0});
        const QImage without = paint(scene);
        item->setMark(OssNgExtendedNode::Mark(mark), true);
        const QImage with = paint(scene);
        QCOMPARE(with.size(), without.size());
        const QRect pixels = pixelsOf(scene, with, item->sceneBoundingRect());
        int changed = 0;
        for (int y = 0; y < with.height(); ++y)
            for (int x = 0; x < with.width(); ++x)
                if (with.pixel(x, y) != without.pixel(x, y)) {
                    QVERIFY(pixels.contains(x, y));
                    ++changed;
                }
        QVERIFY(changed > 20);
    }

    void everyItemKind()
    {
        QGraphicsScene scene;
        auto *backdrop = new OssNgBackdropNode;
        backdrop->setTitleText(QStringLiteral("Backdrop"));
        backdrop->setNodeBackgroundColour(QColor(90, 70, 40));
        scene.addItem(backdrop);
        OssNgExtendedNode *a = node(scene, QStringLiteral("Noise"), {40, 60});
        OssNgExtendedNode *b = node(scene, QStringLiteral("Blur"), {40, 220});
        backdrop->wrapAroundSelection(a->sceneBoundingRect().united(b->sceneBoundingRect()));
        auto *dot = new OssNgDotNode;
        dot->addInputPort(QStringLiteral("Input"), true);
        dot->addOutputPort(QStringLiteral("Output"));
        dot->setPos(400, 160);
        scene.addItem(dot);
        dot->connectInput(QStringLiteral("Input"), a, QStringLiteral("Output"));
        b->connectInput(QStringLiteral("Base"), dot, QStringLiteral("Output"));
        OssNgEdge *bypassed = b->connectInput(QStringLiteral("Mask"), a, QStringLiteral("Alpha"));
        bypassed->setBypassed(true);
        bypassed->switchToDotableMode(true);
        auto *note = new OssNgUINode;
        note->setTitleText(QStringLiteral("Note"));
        note->setLabel(QStringLiteral("Sticky notes wrap their label over several lines."));
        note->setPos(500, 0);
        scene.addItem(note);
        b->setVirtualInputEdge(a, QStringLiteral("Over"));
        const QImage image = render(scene, QStringLiteral("every-item-kind"));
        QSet<QRgb> colours;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3)
                colours.insert(image.pixel(x, y));
        QVERIFY(colours.size() > 20);
    }
};

QTEST_MAIN(tst_NodeGraphGallery)
#include "tst_NodeGraphGallery.moc"
