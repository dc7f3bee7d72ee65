#include "OssTestEnvironment.h"

#include <OssChannel.h>
#include <OssDebug.h>
#include <OssDragAndDropManager.h>
#include <OssEntity.h>
#include <OssGeoImageSet.h>
#include <OssImage.h>
#include <OssImageList.h>
#include <OssImageManager.h>
#include <OssImageUniqueId.h>
#include <OssMaterialPaintManager.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssShaderNetwork.h>
#include <OssShadingGroup.h>
#include <OssSnBaseNode.h>
#include <OssUndoManager.h>

#include <QImage>
#include <QMimeData>
#include <QUrl>
#include <QtTest>

// Images, drops, archives as dragged things and geo-channels.
class tst_HostExtras : public QObject
{
    Q_OBJECT

private:
    OssTestEnvironment m_environment;
    OssShaderNetwork *m_network = nullptr;

    QString writeImage(const QString &name, const QSize &size)
    {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(QColor(200, 100, 50));
        const QString path = m_environment.scratchDirectory() + QLatin1Char('/') + name;
        image.save(path);
        return path;
    }

private slots:
    void init() { m_network = OssProjectManager::instance()->newProject()->networks().first(); }

    void cleanup()
    {
        OssProjectManager::instance()->closeProject();
        OssImageManager::instance()->clear();
    }

    void idLists_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("count");
        const QString a = QUuid::createUuid().toString();
        const QString b = QUuid::createUuid().toString();
        QTest::newRow("newlines") << a + "\n" + b << 2;
        QTest::newRow("commas") << a + "," + b << 2;
        QTest::newRow("junk skipped") << a + ",nonsense,\n" << 1;
        QTest::newRow("empty") << "" << 0;
    }

    void idLists()
    {
        QFETCH(QString, text);
        QFETCH(int, count);
        QCOMPARE(OssImageUniqueId::imageIdListFromString(text).size(), count);
    }

    void imageListsRoundTripAsAttributes()
    {
        const OssImageList list({OssImageUniqueId::create(), OssImageUniqueId::create()});
        OssSnBaseNode *tiled = m_network->createNode(QStringLiteral("Procedural/Pattern/Tiled"));
        tiled->setNodeAttribute(QStringLiteral("TileImage"), QVariant::fromValue(list));
        const QString path = m_environment.scratchDirectory() + "/images.ossa";
        QString error;
        QVERIFY(OssProjectManager::instance()->saveProject(path, &error));
        QVERIFY2(OssProjectManager::instance()->openProject(path, &error), qPrintable(error));
        m_network = OssProjectManager::instance()->currentProject()->networks().first();
        const QVariant value = m_network->node("Tiled")->nodeAttributeValue("TileImage");
        QCOMPARE(value.value<OssImageList>(), list);
    }

    void openingImages()
    {
        const QString png = writeImage("a.png", QSize(8, 4));
        const QList<OssImage *> opened = OssImageManager::instance()->open(png);
        QCOMPARE(opened.size(), 1);
        QCOMPARE(opened.first()->size(), QSize(8, 4));
        QCOMPARE(OssImageManager::instance()->getImage(opened.first()->uniqueId()), opened.first());
        const QString bad = m_environment.scratchDirectory() + "/bad.png";
        QFile file(bad);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("not an image");
        file.close();
        OssDebugCapture capture;
        QVERIFY(OssImageManager::instance()->open(bad).isEmpty());
        QVERIFY(capture.messages().value(0).startsWith("[ !! ] Cannot open image '" + bad + "'"));
        QVERIFY(OssImageManager::instance()->open(bad + "x").isEmpty());
    }

    void imageDropsAreLeftToTheNodeGraphView()
    {
        const QString png = writeImage("drop.png", QSize(4, 4));
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(png)});
        OssDragAndDropManager *drops = OssDragAndDropManager::instance();
        const QVariantMap parameters{{"NodeGraph", QVariant::fromValue<QObject *>(m_network)},
                                     {"Position", QPointF(10, 20)}};
        // The view makes the texture nodes itself; the manager neither accepts nor drops them.
        QVERIFY(!drops->acceptDragEnter(&mime, 4));
        QVERIFY(!drops->drop(&mime, 4, parameters));
        QVERIFY(m_network->nodes().isEmpty());
        QCOMPARE(OssUndoManager::instance()->count(), 0);
        // The image manager finds the file among the URLs, and a damaged file of an image kind
        // too (opening it says why it is left out), but not a file of another kind.
        const QString damaged = m_environment.scratchDirectory() + QStringLiteral("/damaged.png");
        const QString text = m_environment.scratchDirectory() + QStringLiteral("/notes.txt");
        for (const QString &path : {damaged, text}) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("not an image");
        }
        mime.setUrls(
            {QUrl::fromLocalFile(png), QUrl::fromLocalFile(damaged), QUrl::fromLocalFile(text)});
        QCOMPARE(OssImageManager::instance()->dropEvent_AcceptURLs(&mime),
                 (QStringList{png, damaged}));
    }

    void registeredHandlersTakeTheirOwnKinds()
    {
        OssDragAndDropManager *drops = OssDragAndDropManager::instance();
        QStringList handled;
        drops->registerHandler(
            QStringLiteral("swatches"),
            [](const QMimeData *mime, int target, const QVariantMap &) {
                return target == 4 && mime->hasFormat("application/x-test-swatch");
            },
            [&handled](const QMimeData *mime, int, const QVariantMap &parameters) {
                handled << QString::fromUtf8(mime->data("application/x-test-swatch"))
                        << parameters.value("Position").toString();
                return true;
            });
        QMimeData swatch;
        swatch.setData("application/x-test-swatch", "red");
        QVERIFY(drops->acceptDragEnter(&swatch, 4));
        QVERIFY(!drops->acceptDragEnter(&swatch, 3));
        QVERIFY(drops->drop(&swatch, 4, {{"Position", QStringLiteral("here")}}));
        QCOMPARE(handled, (QStringList{"red", "here"}));
        QMimeData text;
        text.setText(QStringLiteral("hello"));
        QVERIFY(!drops->acceptDragEnter(&text, 4));
        QVERIFY(!drops->drop(&text, 4, QVariantMap()));
    }

    void archivesAndMerges()
    {
        QMimeData material, procedural, mixed;
        material.setUrls({QUrl::fromLocalFile("/x/a.oma")});
        procedural.setUrls({QUrl::fromLocalFile("/x/b.opc")});
        mixed.setUrls({QUrl::fromLocalFile("/x/a.oma"), QUrl::fromLocalFile("/x/b.opc")});
        OssMaterialPaintManager *paint = OssMaterialPaintManager::instance();
        QVERIFY(paint->draggableMaterialType(&material));
        QVERIFY(!paint->draggableMaterialType(&procedural));
        QVERIFY(paint->draggableCustomProceduralType(&procedural));
        QVERIFY(!paint->draggableMaterialType(&mixed));
        QCOMPARE(paint->pathListFromMimeData(&mixed).size(), 2);
        OssSnBaseNode *noise = m_network->createNode(QStringLiteral("Procedural/Noise/Perlin"));
        OssSnBaseNode *grunge = m_network->createNode(QStringLiteral("Procedural/Noise/Grunge"));
        OssSnBaseNode *merge = m_network->createNode(QStringLiteral("Layer/Merge"));
        QVERIFY(paint->autoconnectMergeNode(noise, merge));
        QCOMPARE(merge->inputConnection("Over"), noise);
        QVERIFY(paint->autoconnectMergeNode(grunge, merge));
        QCOMPARE(merge->inputConnection("Base"), grunge);
    }

    void geoChannelsSurviveSaving()
    {
        OssProject *project = OssProjectManager::instance()->currentProject();
        OssEntity *entity = project->entities().first();
        OssGeoImageSet *ao = entity->addGeoChannel(QStringLiteral("AO"));
        ao->setBleed(8);
        OssChannel *channel =
            project->shadingGroups().first()->addChannel(QStringLiteral("AO_Set"));
        ao->setImageSet(channel);
        QCOMPARE(ao->imageSetName(), QStringLiteral("AO_Set"));
        const QString path = m_environment.scratchDirectory() + "/geo.ossa";
        QString error;
        QVERIFY(OssProjectManager::instance()->saveProject(path, &error));
        QVERIFY(OssProjectManager::instance()->openProject(path, &error));
        OssEntity *loaded = OssProjectManager::instance()->currentProject()->entities().first();
        QCOMPARE(loaded->geoChannels().size(), 1);
        QCOMPARE(loaded->geoChannel("AO")->bleed(), 8);
        QCOMPARE(loaded->geoChannel("AO")->imageSetName(), QStringLiteral("AO_Set"));
        QCOMPARE(loaded->geoChannel("AO")->entity(), loaded);
    }
};

QTEST_MAIN(tst_HostExtras)
#include "tst_HostExtras.moc"
