#include "OssTestEnvironment.h"

#include <OssCanvasManager.h>
#include <OssCanvasWidget.h>
#include <OssChannel.h>
#include <OssNodeInfoDialog.h>
#include <OssNodeQuickFindDialog.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssSearchNodeDialog.h>
#include <OssShaderNetwork.h>
#include <OssShadingGroup.h>
#include <OssSnBaseNode.h>

#include <QLineEdit>
#include <QtTest>

// The host's canvas and the node dialogs the node graph opens.
class tst_HostWidgets : public QObject
{
    Q_OBJECT

private:
    OssTestEnvironment m_environment;
    OssShaderNetwork *m_network = nullptr;

private slots:
    void init() { m_network = OssProjectManager::instance()->newProject()->networks().first(); }

    void cleanup() { OssProjectManager::instance()->closeProject(); }

    void canvasesRecordFlushes()
    {
        OssCanvasWidget canvas;
        OssCanvasManager::setCurrentCanvas(&canvas);
        OssChannel *channel =
            OssProjectManager::instance()->currentProject()->shadingGroups().first()->addChannel(
                QStringLiteral("Diffuse"));
        QSignalSpy flushed(&canvas, &OssCanvasWidget::paintBufferFlushed);
        OssCanvasManager::currentCanvas()->handleBakeBehavior(channel);
        QCOMPARE(canvas.flushCount(), 1);
        QCOMPARE(canvas.lastFlushedImageSet(), channel);
        QCOMPARE(flushed.count(), 1);
        OssCanvasManager::setCurrentCanvas(nullptr);
    }

    void quickFindDialog()
    {
        OssNodeQuickFindDialog dialog({"Filter/Blur", "Layer/Merge", "Adjust/Invert"},
                                      {"Procedural/Noise/Perlin"}, 2, QPoint(10, 10),
                                      QSize(800, 600));
        const QStringList shown = dialog.shownPathKeys();
        QCOMPARE(shown.mid(0, 3),
                 (QStringList{"Filter/Blur", "Layer/Merge", "Procedural/Noise/Perlin"}));
        for (const QString &key : shown)
            QVERIFY2(!key.startsWith('_'), qPrintable(key));
        dialog.setFilter(QStringLiteral("noise/p"));
        QCOMPARE(dialog.shownPathKeys().value(0), QStringLiteral("Procedural/Noise/Perlin"));
        dialog.toggleFavourite(QStringLiteral("Procedural/Noise/Perlin"));
        QVERIFY(dialog.favourites().isEmpty());
        QTest::keyClick(dialog.findChild<QLineEdit *>(), Qt::Key_Return);
        QCOMPARE(dialog.chosenPathKey(), QStringLiteral("Procedural/Noise/Perlin"));
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QCOMPARE(dialog.nodePosition(), QPoint(10, 10));
    }

    void searchAndInfoDialogs()
    {
        OssSnBaseNode *blur = m_network->createNode(QStringLiteral("Filter/Blur"));
        m_network->createNode(QStringLiteral("Adjust/Invert"));
        OssSearchNodeDialog search(m_network->nodes());
        QCOMPARE(search.shownNames(), (QStringList{"Blur", "Invert"}));
        QTest::keyClicks(search.findChild<QLineEdit *>(), QStringLiteral("BL"));
        QCOMPARE(search.shownNames(), QStringList{"Blur"});
        QTest::keyClick(search.findChild<QLineEdit *>(), Qt::Key_Return);
        QCOMPARE(search.chosenNode(), blur);
        OssNodeInfoDialog info({blur});
        QVERIFY(info.text().startsWith(QStringLiteral("Node 'Blur' (OssSnBaseNode)")));
    }
};

QTEST_MAIN(tst_HostWidgets)
#include "tst_HostWidgets.moc"
