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
#include <QtTest>

// Renders one of each item kind, every port-list mode and every mark to PNG files under the
// build tree (OSS_GALLERY_DIR), for a reviewer to look at. Each picture must show something,
// and pictures of different states must differ.
class tst_NodeGraphGallery : public QObject
{
    Q_OBJECT

private:
    OssTestHost m_host;

    static QImage render(QGraphicsScene &scene, const QString &name)
    {
        const QRectF area = scene.itemsBoundingRect().adjusted(-20, -20, 20, 20);
        QImage image(area.size().toSize() * 2, QImage::Format_ARGB32);
        image.fill(QColor(38, 38, 40));
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene.render(&painter, QRectF(), area);
        painter.end();
        QDir().mkpath(QStringLiteral(OSS_GALLERY_DIR));
        image.save(QStringLiteral(OSS_GALLERY_DIR "/%1.png").arg(name));
        return image;
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

private slots:
    void initTestCase() { QVERIFY2(m_host.start(), qPrintable(m_host.errorString())); }

    void portListModes()
    {
        QList<QImage> pictures;
        for (int mode = 0; mode <= 4; ++mode) {
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
        int column = 0;
        for (int mark = 0; mark < OssNgExtendedNode::MarkCount; ++mark) {
            OssNgExtendedNode *item =
                node(scene, QStringLiteral("Mark %1").arg(mark), {column++ * 200.0, 0});
            item->setMark(OssNgExtendedNode::Mark(mark), true);
        }
        column = 0;
        for (int shape : {0, 3, 4, 7}) {
            OssNgExtendedNode *item =
                node(scene, QStringLiteral("Shape %1").arg(shape), {column++ * 200.0, 150});
            item->setShapeType(shape);
        }
        OssNgExtendedNode *icons = node(scene, QStringLiteral("Icons"), {0, 300});
        icons->setIconVisible(icons->addIcon(QStringLiteral("GeoChannel")), true);
        icons->setIconVisible(icons->addIcon(QStringLiteral("BroadcastNodeSignal")), true);
        icons->setSelected(true);
        OssNgExtendedNode *hovered = node(scene, QStringLiteral("Hovered"), {200, 300});
        hovered->setHovered(true);
        const QImage image = render(scene, QStringLiteral("marks-and-shapes"));
        QVERIFY(!image.isNull());
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
