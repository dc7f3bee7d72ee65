#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphPluginCore.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssApplication.h>
#include <OssArchive.h>
#include <OssDragAndDropManager.h>
#include <OssFileDialog.h>
#include <OssImage.h>
#include <OssImageList.h>
#include <OssImageManager.h>
#include <OssImageUniqueId.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssSnBaseNode.h>
#include <OssSnCustomProceduralNode.h>
#include <OssSnGroupNode.h>
#include <OssSnMaterialNode.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QTimer>
#include <QUrl>
#include <QtTest>

// Dragging things onto the node graph and importing archives, on the real host with the
// plug-in: real QMimeData as a file manager or the image browser sends it, real drag events on
// the view's viewport.
class tst_DragAndDrop : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    QString m_before;

    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssUndoManager *undo() { return OssUndoManager::instance(); }

    QString writeImage(const QString &name, const QColor &color = QColor(200, 100, 50))
    {
        QImage image(QSize(16, 16), QImage::Format_ARGB32);
        image.fill(color);
        const QString path = m_host.scratchPath(name);
        image.save(path);
        return path;
    }
    QString writeFile(const QString &name, const QByteArray &content)
    {
        const QString path = m_host.scratchPath(name);
        QFile file(path);
        file.open(QIODevice::WriteOnly);
        file.write(content);
        return path;
    }
    static QMimeData *filesMime(const QStringList &paths)
    {
        auto *mime = new QMimeData;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls << QUrl::fromLocalFile(path);
        mime->setUrls(urls);
        return mime;
    }
    static QMimeData *imageIdsMime(const QList<OssImage *> &images)
    {
        auto *mime = new QMimeData;
        QStringList ids;
        for (OssImage *image : images)
            ids << image->uniqueId().toString();
        mime->setData(QString::fromLatin1(OssImage::MimeType), ids.join('\n').toUtf8());
        return mime;
    }

    // The drag as a window system delivers it: enter, a move, then (when it was taken) the
    // release. Whether the view took it before the release.
    bool drag(QMimeData *mime, const QPoint &at, bool release = true)
    {
        QWidget *viewport = view()->viewport();
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, mime, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(at, Qt::CopyAction | Qt::MoveAction, mime, Qt::LeftButton,
                            Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        const bool accepted = enter.isAccepted() && move.isAccepted();
        if (accepted && release) {
            QDropEvent drop(at, Qt::CopyAction | Qt::MoveAction, mime, Qt::LeftButton,
                            Qt::NoModifier);
            QApplication::sendEvent(viewport, &drop);
        }
        return accepted;
    }
    QPoint dropPoint() const { return QPoint(300, 200); }

    QList<OssSnBaseNode *> customProcedurals() const
    {
        QList<OssSnBaseNode *> found;
        for (OssSnBaseNode *node : m_network->nodes())
            if (qobject_cast<OssSnCustomProceduralNode *>(node))
                found << node;
        return found;
    }
    QList<OssSnBaseNode *> nodesOfType(const QString &pathKey) const
    {
        QList<OssSnBaseNode *> found;
        for (OssSnBaseNode *node : m_network->nodes())
            if (node->pathKey() == pathKey)
                found << node;
        return found;
    }
    static OssImage *imageOf(OssSnBaseNode *node, const QString &attribute)
    {
        const OssImageList ids = node->nodeAttributeValue(attribute).value<OssImageList>();
        return ids.size() == 1 ? OssImageManager::instance()->getImage(ids.ids().first()) : nullptr;
    }
    // No two of the nodes' GUI items overlap.
    static bool spreadApart(const QList<OssSnBaseNode *> &nodes)
    {
        for (int i = 0; i < nodes.size(); ++i)
            for (int j = i + 1; j < nodes.size(); ++j)
                if (OssSnNodeGraphViewContext::guiNodeOf(nodes.at(i))
                        ->sceneBoundingRect()
                        .intersects(
                            OssSnNodeGraphViewContext::guiNodeOf(nodes.at(j))->sceneBoundingRect()))
                    return false;
        return true;
    }

    // The names of the nodes inside a material, sorted.
    static QStringList innerNames(OssSnMaterialNode *material)
    {
        QStringList names;
        for (OssSnBaseNode *node : material->groupNetwork()->nodes())
            names << node->name();
        names.sort();
        return names;
    }
    QStringList m_archivedNames;

    // A material archive holding a blur and a noise besides what a new material holds, written
    // from a material node.
    QString writeMaterialArchive(const QString &name)
    {
        OssShaderNetwork *scratch = m_network;
        auto *material =
            qobject_cast<OssSnMaterialNode *>(scratch->createNode("_System/Material", "Source"));
        if (!material)
            return QString();
        material->groupNetwork()->createNode("Filter/Blur", "InnerBlur");
        material->groupNetwork()->createNode("Procedural/Noise/Perlin", "InnerNoise");
        const QString path = m_host.scratchPath(name);
        QString error;
        if (!material->exportToFile(path, &error))
            return QString();
        m_archivedNames = innerNames(material);
        scratch->removeNode(material);
        return path;
    }
    QString writeProceduralArchive(const QString &name, const QString &pathKey)
    {
        const QString description =
            QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                           "<NodeType PathKey=\"%1\" MenuPath=\"%1\" Class=\"OssSnBaseNode\" "
                           "VersionUuid=\"TEST_%2\" Date=\"2026-01-01\" NodeGraph=\"true\">\n"
                           "  <Inputs Preferred=\"Input\"><Input Name=\"Input\" Type=\"color\" "
                           "Tags=\"\"/><Input Name=\"Amount\" Type=\"float\" Tags=\"\"/></Inputs>\n"
                           "  <Outputs Preferred=\"Output\"><Output Name=\"Output\" "
                           "Type=\"color\"/></Outputs>\n"
                           "  <Attributes><Attribute Name=\"Scale\" PrettyName=\"Scale\" "
                           "Type=\"float\" Default=\"2\" Visible=\"true\"/></Attributes>\n"
                           "</NodeType>\n")
                .arg(pathKey, QString(pathKey).replace('/', '_'));
        const QString path = m_host.scratchPath(name);
        QString error;
        return OssArchive::write(path, QString::fromLatin1(OssArchive::CustomProceduralKind),
                                 description.toUtf8(), &error)
                   ? path
                   : QString();
    }

private slots:
    void initTestCase()
    {
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        OssApplication::setPopupsAllowed(false);
        QWidget *window = m_host.nodeGraphWidget()->window();
        window->resize(1000, 800);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QCOMPARE(view()->network(), m_network);
        undo()->clear();
        m_host.clearLines();
        m_before = m_network->dump();
    }

    void cleanup()
    {
        OssApplication::setPopupsAllowed(false);
        OssApplication::clearDialogAnswers();
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- loaded images

    void loadedImagesBecomeOneTiledNodeEachInOneStep()
    {
        QList<OssImage *> images;
        for (const char *name : {"red.png", "green.png", "blue.png"})
            images << OssImageManager::instance()->open(writeImage(name)).value(0);
        QVERIFY(!images.contains(nullptr));
        QSignalSpy added(view(), &OssShaderNetworkView::nodeAdded);
        std::unique_ptr<QMimeData> mime(imageIdsMime(images));
        QVERIFY(drag(mime.get(), dropPoint()));

        const QList<OssSnBaseNode *> tiled = nodesOfType("Procedural/Pattern/Tiled");
        QCOMPARE(tiled.size(), 3);
        QCOMPARE(m_network->nodes().size(), 3);
        for (int i = 0; i < 3; ++i)
            QCOMPARE(imageOf(tiled.at(i), "TileImage"), images.at(i));
        QCOMPARE(added.count(), 3);
        // At the drop point, moved off each other.
        const QPointF scenePoint = view()->mapToScene(dropPoint());
        QVERIFY(OssSnNodeGraphViewContext::guiNodeOf(tiled.first())
                    ->sceneBoundingRect()
                    .contains(scenePoint));
        QVERIFY(spreadApart(tiled));
        QVERIFY(m_host.hasLine(
            QStringLiteral("[ -- ] Found overlapping node %1, '%2', will relocate THIS node (%3, "
                           "'%4') ")
                .arg(
                    QString::asprintf("%p", static_cast<void *>(
                                                OssSnNodeGraphViewContext::guiNodeOf(tiled.at(0)))),
                    tiled.at(0)->name(),
                    QString::asprintf("%p", static_cast<void *>(
                                                OssSnNodeGraphViewContext::guiNodeOf(tiled.at(1)))),
                    tiled.at(1)->name())));

        QCOMPARE(undo()->count(), 1);
        QCOMPARE(
            undo()->undoText(),
            QStringLiteral("Drag and drop : creating 3 nodes of type 'Procedural/Pattern/Tiled'"));
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
        undo()->redo();
        QCOMPARE(nodesOfType("Procedural/Pattern/Tiled").size(), 3);
    }

    void shiftMakesOneTriPlanarNodeShowingTheImageThrice()
    {
        OssImage *image = OssImageManager::instance()->open(writeImage("shift.png")).value(0);
        QVERIFY(image);
        std::unique_ptr<QMimeData> mime(imageIdsMime({image}));
        QTest::keyPress(view(), Qt::Key_Shift, Qt::ShiftModifier);
        QCOMPARE(QGuiApplication::keyboardModifiers(), Qt::ShiftModifier);
        QVERIFY(drag(mime.get(), dropPoint()));
        QTest::keyRelease(view(), Qt::Key_Shift, Qt::NoModifier);

        QVERIFY(m_host.hasLine(
            QStringLiteral("[ -- ] Modifer Shift key pressed -> will create TriPlanar")));
        const QList<OssSnBaseNode *> made = nodesOfType("Environment/Tri Planar Projection");
        QCOMPARE(made.size(), 1);
        QCOMPARE(m_network->nodes().size(), 1);
        for (const char *attribute : {"frontImage", "topImage", "rightImage"})
            QCOMPARE(imageOf(made.first(), attribute), image);
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(),
                 QStringLiteral("Drag and drop : creating 1 node of type 'Environment/Tri "
                                "Planar Projection'"));
    }

    void unknownImageIdsMakeNothing()
    {
        auto mime = std::make_unique<QMimeData>();
        mime->setData(QString::fromLatin1(OssImage::MimeType),
                      OssImageUniqueId::create().toString().toUtf8());
        drag(mime.get(), dropPoint());
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    // --- image files

    void imageFilesFromAFileManagerAreOpenedAndTheUnreadableOneNamed()
    {
        QStringList files;
        for (int i = 0; i < 10; ++i)
            files << (i == 6 ? writeFile("broken.png", "\x89PNG\r\n\x1a\n truncated")
                             : writeImage(QStringLiteral("file%1.png").arg(i)));
        std::unique_ptr<QMimeData> mime(filesMime(files));
        QVERIFY(drag(mime.get(), dropPoint()));

        const QList<OssSnBaseNode *> tiled = nodesOfType("Procedural/Pattern/Tiled");
        QCOMPARE(tiled.size(), 9);
        QStringList shown;
        for (OssSnBaseNode *node : tiled)
            shown << QFileInfo(imageOf(node, "TileImage")->path()).fileName();
        QStringList expected;
        for (const QString &file : files)
            if (!file.endsWith("broken.png"))
                expected << QFileInfo(file).fileName();
        QCOMPARE(shown, expected);
        QVERIFY(spreadApart(tiled));
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(
            undo()->undoText(),
            QStringLiteral("Drag and drop : creating 9 nodes of type 'Procedural/Pattern/Tiled'"));
        // The one left out is named, in the warning and on its own line.
        QVERIFY(m_host.hasLine(QStringLiteral("[ !! ] Drag and drop: These files are not one "
                                              "readable image each and were left out:\n") +
                               files.at(6)));
        QVERIFY(m_host.hasLine(
            QStringLiteral("[ !! ] Dropped file '%1' is not one readable image, it is left out")
                .arg(files.at(6))));
    }

    void imagePathsOfTheImageMimeTypeAreOpened()
    {
        const QString png = writeImage("path.png");
        auto mime = std::make_unique<QMimeData>();
        mime->setData(QString::fromLatin1(OssImage::PathMimeType), png.toUtf8());
        QVERIFY(drag(mime.get(), dropPoint()));
        const QList<OssSnBaseNode *> tiled = nodesOfType("Procedural/Pattern/Tiled");
        QCOMPARE(tiled.size(), 1);
        QCOMPARE(imageOf(tiled.first(), "TileImage")->path(), QFileInfo(png).absoluteFilePath());
    }

    void unsupportedFilesAreRefusedBeforeTheRelease_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("text") << "notes.txt" << QByteArray("hello");
        QTest::newRow("node file") << "nodes.ong" << QByteArray("<xml/>");
        QTest::newRow("no suffix") << "README" << QByteArray("read me");
    }

    void unsupportedFilesAreRefusedBeforeTheRelease()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        std::unique_ptr<QMimeData> mime(filesMime({writeFile(name, content)}));
        QVERIFY(!drag(mime.get(), dropPoint(), false));
        // Released anyway (a window system would not deliver it): nothing happens.
        QDropEvent drop(dropPoint(), Qt::CopyAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view()->viewport(), &drop);
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    void aViewWithoutASceneLeavesDragsToTheBaseView()
    {
        OssShaderNetworkView lone;
        lone.setNetwork(m_network);
        lone.resize(200, 200);
        const QString png = writeImage("no scene.png");
        std::unique_ptr<QMimeData> mime(filesMime({png}));
        QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, mime.get(), Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(lone.viewport(), &enter);
        QVERIFY(!enter.isAccepted());
        QDropEvent drop(QPoint(10, 10), Qt::CopyAction, mime.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(lone.viewport(), &drop);
        QCOMPARE(m_network->dump(), m_before);
    }

    void commandsWithoutANetworkDoNothing()
    {
        OssShaderNetworkView lone;
        const QString path = writeProceduralArchive("Lone.opc", "Custom/Lone");
        lone.importCustomProcedural({path}, QPoint());
        lone.importMaterial({path}, QPoint());
        lone.createNodeFromDropImage(nullptr, "Procedural/Pattern/Tiled");
        QCOMPARE(m_host.lines(),
                 (QStringList{"m_network is NULL", "m_network is NULL", "m_network is NULL"}));
        QCOMPARE(undo()->count(), 0);
    }

    void aMixOfArchiveKindsIsRefused()
    {
        std::unique_ptr<QMimeData> mime(
            filesMime({writeFile("a.oma", "x"), writeFile("b.opc", "x")}));
        QVERIFY(!drag(mime.get(), dropPoint(), false));
    }

    // --- general objects

    void theHostsOwnObjectsGoToItsManagerWithTheNetworkAndPoint()
    {
        QVariantMap received;
        OssDragAndDropManager::instance()->registerHandler(
            QStringLiteral("test swatches"),
            [](const QMimeData *mime, int target, const QVariantMap &) {
                return target == OssDragAndDropManager::NodeGraphTarget &&
                       mime->hasFormat("application/x-test-swatch");
            },
            [&received](const QMimeData *, int, const QVariantMap &parameters) {
                received = parameters;
                return true;
            });
        auto mime = std::make_unique<QMimeData>();
        mime->setData("application/x-test-swatch", "red");
        QVERIFY(drag(mime.get(), dropPoint()));
        QCOMPARE(received.value("NodeGraph").value<QObject *>(), m_network);
        QCOMPARE(received.value("Position").toPointF(), view()->mapToScene(dropPoint()));
    }

    // --- material archives

    void aDroppedMaterialArchiveIsImportedAtTheDropPoint()
    {
        const QString path = writeMaterialArchive("Rust.oma");
        QVERIFY(!path.isEmpty());
        undo()->clear();
        m_before = m_network->dump();
        std::unique_ptr<QMimeData> mime(filesMime({path}));
        QVERIFY(drag(mime.get(), dropPoint()));

        const QList<OssSnBaseNode *> materials = nodesOfType("_System/Material");
        QCOMPARE(materials.size(), 1);
        auto *material = qobject_cast<OssSnMaterialNode *>(materials.first());
        QCOMPARE(material->name(), QStringLiteral("Rust"));
        const QStringList inner = innerNames(material);
        QVERIFY(inner.contains("InnerBlur") && inner.contains("InnerNoise"));
        QCOMPARE(inner, m_archivedNames);
        QCOMPARE(OssSnNodeGraphViewContext::guiNodeOf(material)->sceneBoundingRect().topLeft(),
                 view()->mapToScene(dropPoint()));
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{material});
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Import material"));
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
    }

    void badArchivesSayWhatIsWrongAndChangeNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("problem");
        QTest::newRow("missing") << "missing" << QByteArray() << "cannot open";
        QTest::newRow("empty") << "file" << QByteArray() << "the file is empty";
        QTest::newRow("header only")
            << "file" << QByteArray("OSSA-ARCHIVE 1 material\n") << "the archive is truncated";
        QTest::newRow("truncated payload")
            << "file" << QByteArray("OSSA-ARCHIVE 1 material\n<?xml version=\"1.0\"?><Oss") << "";
        QTest::newRow("wrong kind") << "file" << QByteArray("OSSA-ARCHIVE 1 customProcedural\n<x/>")
                                    << "holds a customProcedural archive, not a material archive";
        QTest::newRow("newer version") << "file" << QByteArray("OSSA-ARCHIVE 7 material\n<x/>")
                                       << "archive version 7 is newer than this program reads (1)";
        QTest::newRow("not an archive") << "file" << QByteArray("hello") << "not an archive";
    }

    void badArchivesSayWhatIsWrongAndChangeNothing()
    {
        QFETCH(QString, kind);
        QFETCH(QByteArray, content);
        QFETCH(QString, problem);
        const QString good = writeMaterialArchive("Good.oma");
        undo()->clear();
        m_before = m_network->dump();
        const QString bad =
            kind == "missing" ? m_host.scratchPath("Missing.oma") : writeFile("Bad.oma", content);
        // A good archive next to the bad one is not imported either.
        view()->importMaterial({good, bad}, QPoint(100, 100));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
        const QStringList lines = m_host.lines();
        const QString box = QStringLiteral("[ !! ] Material Import errors: \"%1\": ").arg(bad);
        QVERIFY2(std::any_of(lines.begin(), lines.end(),
                             [&](const QString &line) {
                                 return line.startsWith(box) && line.contains(problem);
                             }),
                 qPrintable(lines.join('\n')));
        QVERIFY(std::any_of(lines.begin(), lines.end(), [&](const QString &line) {
            return line.startsWith(QStringLiteral("[ !! ] Import failed: \"%1\": ").arg(bad));
        }));
    }

    void importMaterialAsksForTheFilesInARealDialog()
    {
        const QString path = writeMaterialArchive("Asked.oma");
        undo()->clear();
        OssApplication::setPopupsAllowed(true);
        OssFileDialog::setUseNativeDialogs(false);
        QString title;
        QTimer::singleShot(0, this, [&] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            title = dialog->windowTitle();
            dialog->selectFile(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Import Material"));
        QVERIFY(action);
        action->trigger();
        QCOMPARE(title, QStringLiteral("Import Material from Archive"));
        QCOMPARE(nodesOfType("_System/Material").size(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Import material"));
    }

    void aCancelledDialogImportsNothing()
    {
        OssApplication::setPopupsAllowed(true);
        OssFileDialog::setUseNativeDialogs(false);
        QTimer::singleShot(0, this, [] {
            if (auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget()))
                dialog->reject();
        });
        m_host.plugin()->importCustomProcedural();
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    // --- custom procedural archives

    void aDroppedCustomProceduralTakesItsDefinition()
    {
        const QString path = writeProceduralArchive("Bricks.opc", "Custom/Bricks");
        QVERIFY(!path.isEmpty());
        std::unique_ptr<QMimeData> mime(filesMime({path}));
        QVERIFY(drag(mime.get(), dropPoint()));
        const QList<OssSnBaseNode *> made = customProcedurals();
        QCOMPARE(made.size(), 1);
        auto *procedural = qobject_cast<OssSnCustomProceduralNode *>(made.first());
        QCOMPARE(procedural->name(), QStringLiteral("Bricks"));
        QCOMPARE(procedural->sourceFile(), path);
        QCOMPARE(procedural->inputNames(), (QStringList{"Input", "Amount"}));
        QCOMPARE(procedural->nodeAttributeValue("Scale").toDouble(), 2.0);
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Import custom procedural"));
        undo()->undo();
        QCOMPARE(m_network->dump(), m_before);
    }

    void importCustomProceduralFromTheActionWithQueuedFiles()
    {
        const QString first = writeProceduralArchive("One.opc", "Custom/One");
        const QString second = writeProceduralArchive("Two.opc", "Custom/Two");
        OssApplication::queueDialogAnswer(QStringList{first, second});
        QAction *action = OssActionTreeManager::instance()->findAction(
            QStringLiteral("/Ossa/NodeGraph/Import Custom Procedural"));
        QVERIFY(action);
        action->trigger();
        QCOMPARE(customProcedurals().size(), 2);
        QCOMPARE(undo()->count(), 1);
        QVERIFY(spreadApart(m_network->nodes()));
    }

    void aWrongKindOfProceduralArchiveIsReported()
    {
        const QString path = writeFile("Wrong.opc", "OSSA-ARCHIVE 1 material\n<x/>");
        view()->importCustomProcedural({path}, QPoint(50, 50));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
        QVERIFY(m_host.hasLine(
            QStringLiteral("[ !! ] Custom Procedural Import errors: \"%1\": holds a material "
                           "archive, not a customProcedural archive")
                .arg(path)));
    }

    // --- nodes from images without a drop

    void aNodeForAnImageWithoutAPointGoesToTheViewsCentre()
    {
        OssImage *image = OssImageManager::instance()->open(writeImage("centre.png")).value(0);
        view()->createNodeFromDropImage(image, "Procedural/Pattern/Tiled");
        const QList<OssSnBaseNode *> tiled = nodesOfType("Procedural/Pattern/Tiled");
        QCOMPARE(tiled.size(), 1);
        QVERIFY(OssSnNodeGraphViewContext::guiNodeOf(tiled.first())
                    ->sceneBoundingRect()
                    .contains(view()->mapToScene(view()->viewport()->rect().center())));
        QCOMPARE(undo()->undoText(), QStringLiteral("Creating Procedural/Pattern/Tiled"));
    }

    void otherNodeTypesGetNoImage()
    {
        OssImage *image = OssImageManager::instance()->open(writeImage("other.png")).value(0);
        view()->createNodeFromDropImage(image, "Filter/Blur", QPointF(10, 10));
        QCOMPARE(m_network->nodes().size(), 1);
        QVERIFY(!m_network->nodes().first()->nodeAttributeValue("TileImage").isValid());
    }

    void selectedImagesAreAddedAsTiledOrTriPlanar_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pathKey");
        QTest::addColumn<QString>("attribute");
        QTest::newRow("tiled") << "As Tiled"
                               << "Procedural/Pattern/Tiled"
                               << "TileImage";
        QTest::newRow("tri-planar") << "As TriPlanar"
                                    << "Environment/Tri Planar Projection"
                                    << "topImage";
    }

    void selectedImagesAreAddedAsTiledOrTriPlanar()
    {
        QFETCH(QString, text);
        QFETCH(QString, pathKey);
        QFETCH(QString, attribute);
        OssImageManager *images = OssImageManager::instance();
        images->clear();
        QList<OssImage *> chosen;
        for (int i = 0; i < 3; ++i) {
            OssImage *image =
                images->open(writeImage(QStringLiteral("pick%1.png").arg(i))).value(0);
            image->setSelected(i != 1);
            if (i != 1)
                chosen << image;
        }
        QAction *action = nullptr;
        for (QAction *each : images->globalContextMenuActions(QStringLiteral("Add to Nodegraph")))
            if (each->text() == text)
                action = each;
        QVERIFY(action);
        QCOMPARE(action->data().toString(), pathKey);
        QCOMPARE(action->toolTip(),
                 QStringLiteral("Add to Nodegraph as ") + text.mid(QStringLiteral("As ").size()));
        action->trigger();
        const QList<OssSnBaseNode *> made = nodesOfType(pathKey);
        QCOMPARE(made.size(), 2);
        QCOMPARE(imageOf(made.at(0), attribute), chosen.at(0));
        QCOMPARE(imageOf(made.at(1), attribute), chosen.at(1));
        QVERIFY(spreadApart(made));
        QCOMPARE(undo()->count(), 1);
        images->clear();
    }
};

QTEST_MAIN(tst_DragAndDrop)
#include "tst_DragAndDrop.moc"
