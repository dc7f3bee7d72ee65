#include "OssTestPluginHost.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContext.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssApplication.h>
#include <OssChannel.h>
#include <OssNgNode.h>
#include <OssNodeInfoDialog.h>
#include <OssSearchNodeDialog.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssShadingGroup.h>
#include <OssSnBaseNode.h>
#include <OssSnImageSetNodeBase.h>
#include <OssUndoManager.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

namespace {

// Runs Answer on the next modal dialog of class Dialog as soon as it is up (the command under
// test waits in the dialog's exec()); gives up after five seconds.
template <typename Dialog> void whenShown(std::function<void(Dialog *)> answer)
{
    auto *timer = new QTimer;
    auto *deadline = new QElapsedTimer;
    deadline->start();
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, deadline, answer] {
        auto *dialog = qobject_cast<Dialog *>(QApplication::activeModalWidget());
        if (!dialog && deadline->elapsed() < 5000)
            return;
        timer->stop();
        timer->deleteLater();
        delete deadline;
        if (dialog)
            answer(dialog);
    });
    timer->start();
}

// Chooses Path in the next file dialog (the widget dialog, not the platform's), again on each
// tick until the dialog closes.
void chooseFile(const QString &path, QString *title = nullptr, QStringList *filters = nullptr)
{
    auto *timer = new QTimer;
    auto *deadline = new QElapsedTimer;
    deadline->start();
    timer->setInterval(50);
    struct Seen
    {
        bool any = false;
        QPointer<QFileDialog> dialog;
    };
    auto seen = std::make_shared<Seen>();
    QObject::connect(timer, &QTimer::timeout, [=] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        // Done once the chosen dialog is gone (another one is the next answer's business).
        const bool finished = (seen->any && (!seen->dialog || dialog != seen->dialog)) ||
                              (!seen->any && deadline->elapsed() > 5000);
        if (finished) {
            timer->stop();
            timer->deleteLater();
            delete deadline;
            return;
        }
        if (!dialog)
            return;
        if (!seen->any) {
            seen->any = true;
            seen->dialog = dialog;
            if (title)
                *title = dialog->windowTitle();
            if (filters)
                *filters = dialog->nameFilters();
        }
        dialog->setDirectory(QFileInfo(path).absolutePath());
        // Typed into the file name field, as a user would (selectFile() leaves a field that has
        // the focus alone).
        if (auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")))
            name->setText(QFileInfo(path).fileName());
        // QFileDialog keeps accept() protected; it is still the dialog's slot.
        if (!dialog->selectedFiles().isEmpty())
            QMetaObject::invokeMethod(dialog, "accept");
    });
    timer->start();
}

// Reads the next message box's title and text and closes it with OK.
void readMessageBox(QString *title, QString *text)
{
    whenShown<QMessageBox>([title, text](QMessageBox *box) {
        *title = box->windowTitle();
        *text = box->text();
        box->button(QMessageBox::Ok)->click();
    });
}

} // namespace

// Node files, search and node information on the real host and plug-in: export and import through
// the real file dialogs, imports of bad files refused with a message and no change, finding a node,
// node information and dumps, the material preview and image sets by name.
//
// The graph: N1 and N2 feed inputs A and B of Mix, which feeds Out; Viewer is the viewer.
class tst_NodeFilesAndInfo : public QObject
{
    Q_OBJECT

private:
    OssTestPluginHost m_host;
    OssShaderNetwork *m_network = nullptr;
    QString m_before;
    OssShaderNetworkView *view() { return m_host.manager()->currentView(); }
    OssSnBaseNode *node(const QString &name) { return m_network->node(name); }
    OssNgNode *gui(OssSnBaseNode *node) { return OssSnNodeGraphViewContext::guiNodeOf(node); }
    OssUndoManager *undo() { return OssUndoManager::instance(); }

    void select(const QStringList &names)
    {
        m_network->clearSelection();
        for (const QString &name : names)
            node(name)->setSelected(true);
    }
    QStringList names(const QList<OssSnBaseNode *> &nodes)
    {
        QStringList list;
        for (OssSnBaseNode *each : nodes)
            list << each->name();
        list.sort();
        return list;
    }
    // Exports the named nodes to a file of the scratch folder through the real save dialog.
    QString exportFile(const QStringList &selection, const QString &name)
    {
        const QString path = m_host.scratchPath(name);
        QFile::remove(path);
        select(selection);
        chooseFile(path);
        view()->exportNodes();
        return path;
    }
    void writeFile(const QString &path, const QByteArray &data)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(data);
    }

private slots:
    void initTestCase()
    {
        // The file dialogs are Qt's own widgets, which the test can fill in.
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QVERIFY2(m_host.start(), qPrintable(m_host.errorString()));
        QWidget *window = m_host.manager()->nodeGraphWidget()->window();
        window->resize(1000, 800);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        OssApplication::setPopupsAllowed(true);
    }

    void init()
    {
        m_network = m_host.newProject();
        QVERIFY(m_network);
        QVERIFY2(m_host.createMixChain(m_network), qPrintable(m_host.errorString()));
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Viewer", "Viewer"}}));
        gui(node("N1"))->setPos(0, 0);
        gui(node("N2"))->setPos(300, 0);
        gui(node("Mix"))->setPos(150, 250);
        gui(node("Out"))->setPos(150, 500);
        gui(node("Viewer"))->setPos(600, 500);
        m_network->clearSelection();
        OssApplication::clearDialogAnswers();
        QDir scratch(m_host.scratchDirectory());
        for (const QString &file : scratch.entryList({"*.ong"}))
            scratch.remove(file);
        undo()->clear();
        m_host.clearLines();
        m_before = m_network->dump();
    }

    void cleanup()
    {
        OssApplication::clearDialogAnswers();
        QVERIFY2(m_host.reset(), qPrintable(m_host.errorString()));
    }

    // --- export and import

    void exportedNodesComeBackInAnotherProject()
    {
        QString title;
        QStringList filters;
        const QString path = m_host.scratchPath("chain.ong");
        QFile::remove(path);
        select({"N1", "Mix", "Viewer"});
        chooseFile(path, &title, &filters);
        view()->exportNodes();
        QCOMPARE(title, QStringLiteral("Export Nodes to File"));
        QCOMPARE(filters, QStringList{"*.ong"});
        QVERIFY(QFile::exists(path));
        QCOMPARE(m_network->dump(), m_before);

        m_network = m_host.newProject();
        QCursor::setPos(view()->viewport()->mapToGlobal(QPoint(500, 400)));
        const QPointF cursor = view()->mapToScene(QPoint(500, 400));
        chooseFile(path, &title, &filters);
        view()->importNodes();
        QCOMPARE(title, QStringLiteral("Import Nodes from File"));
        QCOMPARE(filters, QStringList{"*.ong"});
        // The viewer stays out of the file; the connection between the two nodes comes along.
        QCOMPARE(names(m_network->nodes()), (QStringList{"Mix", "N1"}));
        QCOMPARE(node("Mix")->inputConnection("A"), node("N1"));
        QCOMPARE(names(m_network->selectedNodes()), (QStringList{"Mix", "N1"}));
        const QRectF bounds =
            gui(node("N1"))->sceneBoundingRect() | gui(node("Mix"))->sceneBoundingRect();
        QCOMPARE(bounds.topLeft(), cursor);
        QCOMPARE(undo()->count(), 1);
        QCOMPARE(undo()->undoText(), QStringLiteral("Import nodes"));
        undo()->undo();
        QVERIFY(m_network->nodes().isEmpty());
    }

    void importingTwiceGivesFreshNames()
    {
        const QString path = exportFile({"Mix"}, "mix.ong");
        chooseFile(path);
        view()->importNodes();
        QCOMPARE(m_network->nodeCount(), 6);
        const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
        QCOMPARE(selected.size(), 1);
        QVERIFY(selected.first()->name() != QStringLiteral("Mix"));
        QCOMPARE(selected.first()->pathKey(), QStringLiteral("Math/Mix"));
    }

    void exportAddsTheSuffix()
    {
        const QString path = m_host.scratchPath("nosuffix");
        QFile::remove(path + ".ong");
        select({"Mix"});
        chooseFile(path);
        view()->exportNodes();
        QVERIFY(QFile::exists(path + ".ong"));
    }

    void exportingOnlyTheViewerWritesNoFile()
    {
        select({"Viewer"});
        // A queued answer stands for the dialog: it is still there when nobody asked.
        OssApplication::queueDialogAnswer(m_host.scratchPath("viewer.ong"));
        view()->exportNodes();
        QVERIFY(OssApplication::hasDialogAnswer());
        QVERIFY(m_host.hasLine("[ -- ] No node selected to export"));
        QCOMPARE(QDir(m_host.scratchDirectory()).entryList({"*.ong"}), QStringList());
    }

    void cancelledDialogsChangeNothing()
    {
        select({"Mix"});
        whenShown<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
        view()->exportNodes();
        QCOMPARE(QDir(m_host.scratchDirectory()).entryList({"*.ong"}), QStringList());
        whenShown<QFileDialog>([](QFileDialog *dialog) { dialog->reject(); });
        view()->importNodes();
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    void badFilesAreRefusedAndChangeNothing_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QString>("reason");
        QTest::newRow("missing") << "missing"
                                 << "cannot open";
        QTest::newRow("truncated") << "truncated"
                                   << "chain.ong";
        QTest::newRow("not a node file") << "project"
                                         << "not a OssShaderNetwork";
        QTest::newRow("newer version") << "newer"
                                       << "newer than the supported version";
        QTest::newRow("empty") << "empty"
                               << "";
        QTest::newRow("no nodes") << "nonodes"
                                  << "the file holds no nodes";
    }

    void badFilesAreRefusedAndChangeNothing()
    {
        QFETCH(QString, kind);
        QFETCH(QString, reason);
        const QString good = exportFile({"N1", "Mix"}, "good.ong");
        QFile file(good);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray data = file.readAll();
        file.close();
        QVERIFY(data.contains("formatVersion=\""));
        m_network->clearSelection();
        m_before = m_network->dump();
        undo()->clear();
        m_host.clearLines();

        const QString path = m_host.scratchPath("chain.ong");
        QFile::remove(path);
        if (kind == "truncated") {
            writeFile(path, data.left(data.size() / 2));
        } else if (kind == "project") {
            QFile::copy(OssTestHost::samplePath(), path);
        } else if (kind == "newer") {
            QString text = QString::fromUtf8(data);
            text.replace(QRegularExpression("formatVersion=\"(\\d+)\""), "formatVersion=\"999\"");
            writeFile(path, text.toUtf8());
        } else if (kind == "empty") {
            writeFile(path, QByteArray());
        } else if (kind == "nonodes") {
            // The same document with the network's nodes and connections taken out.
            const int start = data.indexOf('>', data.indexOf("type=\"OssShaderNetwork\"")) + 1;
            const int end = data.lastIndexOf("</", data.lastIndexOf("</") - 1);
            writeFile(path, data.left(start) + data.mid(end));
        }
        // A path chosen in the dialog whose file then vanished or is broken.
        OssApplication::queueDialogAnswer(QStringList{path});
        QString title;
        QString text;
        readMessageBox(&title, &text);
        view()->importNodes();
        QCOMPARE(title, QStringLiteral("Node Import errors"));
        QVERIFY2(!text.isEmpty(), qPrintable(kind));
        QVERIFY2(text.contains(reason), qPrintable(text));
        QVERIFY(m_host.hasLine("[ !! ] Import nodes failed: " + text));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
        QVERIFY(m_network->selectedNodes().isEmpty());
    }

    void oneBadFileOfSeveralImportsNothing()
    {
        const QString good = exportFile({"Mix"}, "one.ong");
        const QString missing = m_host.scratchPath("gone.ong");
        QFile::remove(missing);
        m_before = m_network->dump();
        OssApplication::queueDialogAnswer(QStringList{good, missing});
        QString title;
        QString text;
        readMessageBox(&title, &text);
        view()->importNodes();
        QVERIFY(text.contains("gone.ong"));
        QCOMPARE(m_network->dump(), m_before);
        QCOMPARE(undo()->count(), 0);
    }

    // --- finding a node

    void searchSelectsTheChosenNodeAlone()
    {
        select({"N1", "N2"});
        gui(node("Out"))->setPos(3000, 3000);
        whenShown<OssSearchNodeDialog>([](OssSearchNodeDialog *dialog) {
            auto *edit = dialog->findChild<QLineEdit *>();
            QTest::keyClicks(edit, QStringLiteral("Out"));
            QTest::keyClick(edit, Qt::Key_Return);
        });
        view()->searchNodesAction();
        QVERIFY(m_host.hasLine("[ !! ] Found 5 nodes in the network"));
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{node("Out")});
        const QPointF centre = view()->mapToScene(view()->viewport()->rect().center());
        QVERIFY(gui(node("Out"))->sceneBoundingRect().adjusted(-2, -2, 2, 2).contains(centre));
    }

    void searchCancelledKeepsTheSelection()
    {
        select({"N1"});
        whenShown<OssSearchNodeDialog>([](OssSearchNodeDialog *dialog) { dialog->reject(); });
        view()->searchNodesAction();
        QCOMPARE(m_network->selectedNodes(), QList<OssSnBaseNode *>{node("N1")});
    }

    // --- node information

    void infoViewerShowsTheSelectedNodes()
    {
        select({"Mix"});
        QString text;
        whenShown<OssNodeInfoDialog>([&text](OssNodeInfoDialog *dialog) {
            text = dialog->text();
            dialog->accept();
        });
        view()->printNodeInfo();
        QVERIFY2(text.startsWith("Node 'Mix'"), qPrintable(text));
    }

    void infoViewerWithNothingSelectedOpensNothing()
    {
        bool shown = false;
        whenShown<OssNodeInfoDialog>([&shown](OssNodeInfoDialog *dialog) {
            shown = true;
            dialog->accept();
        });
        view()->printNodeInfo();
        QVERIFY(!shown);
        QVERIFY(m_host.hasLine("[ -- ] No node selected to show information about"));
    }

    void dumpsOfTheSelectedNodes()
    {
        select({"Mix", "Out"});
        view()->dumpSelectedNodeInfo();
        const QStringList lines = m_host.lines();
        QCOMPARE(lines.value(0), QStringLiteral("Dump Selected Shader Node Info"));
        QCOMPARE(lines.size(), 3);
        QVERIFY(lines.contains(node("Mix")->dumpNodeInfo()));
        QVERIFY(lines.contains(node("Out")->dumpNodeInfo()));
        m_host.clearLines();
        select({"Mix"});
        view()->dumpNodeUIAction();
        QCOMPARE(m_host.lines().size(), 1);
        QVERIFY2(m_host.lines().first().startsWith("[ !! ] --Mix, p(150.000000, 250.000000), "
                                                   "sp(150.000000, 250.000000)"),
                 qPrintable(m_host.lines().first()));
    }

    void materialPreviewOfOneMaterial()
    {
        QVERIFY(m_host.createNodes(m_network, {{"_System/Material", "Material"}}));
        const QString previous = QDir::currentPath();
        const QString folder = m_host.scratchPath("preview");
        QDir().mkpath(folder);
        QDir::setCurrent(folder);
        QFile::remove("MaterialPreview.png");
        select({"Material"});
        view()->generateMaterialPreview();
        QVERIFY(QImage(QDir(folder).filePath("MaterialPreview.png")).width() > 0);
        // Two nodes: nothing written.
        QFile::remove("MaterialPreview.png");
        select({"Material", "Mix"});
        view()->generateMaterialPreview();
        QVERIFY(
            m_host.hasLine("Only one nodes needs to be selected for material preview creation"));
        QVERIFY(!QFile::exists("MaterialPreview.png"));
        // A picture that cannot be written is reported.
        QDir().mkpath(QDir(folder).filePath("MaterialPreview.png"));
        select({"Material"});
        QString title;
        QString text;
        readMessageBox(&title, &text);
        view()->generateMaterialPreview();
        QCOMPARE(title, QStringLiteral("Thumbnail Generation Error"));
        QDir::setCurrent(previous);
    }

    void imageSetByName()
    {
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Image Set", "Images"}}));
        OssChannel *dirt = m_network->shadingGroup()->addChannel("Dirt");
        auto *images = qobject_cast<OssSnImageSetNodeBase *>(node("Images"));
        QVERIFY(images && dirt);
        undo()->clear();
        select({"Images", "Mix"});
        OssApplication::queueDialogAnswer(QStringLiteral("Dirt"));
        view()->setImageSetByNameAction();
        QCOMPARE(images->imageSet(), dirt);
        QCOMPARE(undo()->count(), 1);
        undo()->undo();
        QVERIFY(images->imageSet() != dirt);
        undo()->redo();
        QCOMPARE(images->imageSet(), dirt);
    }

    void unknownImageSetIsReported()
    {
        QVERIFY(m_host.createNodes(m_network, {{"Misc/Image Set", "Images"}}));
        auto *images = qobject_cast<OssSnImageSetNodeBase *>(node("Images"));
        undo()->clear();
        select({"Images"});
        OssApplication::queueDialogAnswer(QStringLiteral("Rust"));
        QString title;
        QString text;
        readMessageBox(&title, &text);
        view()->setImageSetByNameAction();
        QCOMPARE(title, QStringLiteral("Image Set Name"));
        QVERIFY(text.contains("\"Rust\""));
        QVERIFY(!images->imageSet());
        QCOMPARE(undo()->count(), 0);
    }
};

QTEST_MAIN(tst_NodeFilesAndInfo)
#include "tst_NodeFilesAndInfo.moc"
