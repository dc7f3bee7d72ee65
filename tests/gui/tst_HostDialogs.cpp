#include "OssApplication.h"
#include "OssDebug.h"
#include "OssExpandableListWidget.h"
#include "OssFileDialog.h"
#include "OssFormLayout.h"
#include "OssMessageBox.h"
#include "OssMiniButton.h"
#include "OssPopupDialog.h"
#include "OssQuestionBox.h"
#include "OssResourceInfo.h"
#include "OssTestEnvironment.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QtTest>

class tst_HostDialogs : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        OssApplication::clearDialogAnswers();
        OssApplication::setPopupsAllowed(false);
    }

    void batchUseAnswersWithoutAsking_data()
    {
        QTest::addColumn<int>("buttons");
        QTest::addColumn<int>("expected");
        QTest::newRow("ok") << int(QMessageBox::Ok) << int(QMessageBox::Ok);
        QTest::newRow("yes or no gives the first")
            << int(QMessageBox::Yes | QMessageBox::No) << int(QMessageBox::Yes);
    }

    void batchUseAnswersWithoutAsking()
    {
        QFETCH(int, buttons);
        QFETCH(int, expected);
        OssDebugCapture capture;
        const QMessageBox::StandardButton answer = OssMessageBox::warning(
            nullptr, QStringLiteral("Bake to Paintable Node"),
            QStringLiteral("Only one node must be selected for baking to a paintable node"),
            QMessageBox::StandardButtons(buttons));
        QCOMPARE(int(answer), expected);
        QCOMPARE(capture.messages(),
                 QStringList{QStringLiteral("[ !! ] Bake to Paintable Node: Only one node must be "
                                            "selected for baking to a paintable node")});
        QCOMPARE(OssQuestionBox::ask(nullptr, QStringLiteral("Q"), QStringLiteral("?")).button,
                 QMessageBox::No);
        QVERIFY(OssFileDialog::getSaveFileName(
                    nullptr, QStringLiteral("Export Nodes to File"), QStringLiteral("*.ong"),
                    QString::fromLatin1(OssResourceInfo::defaultExportNodeGraphPathKey))
                    .isEmpty());
        OssPopupDialog popup;
        QCOMPARE(popup.exec(), int(QDialog::Rejected));
    }

    void queuedAnswersAreUsedInOrder()
    {
        OssApplication::setPopupsAllowed(true);
        const QString key = QString::fromLatin1(OssResourceInfo::defaultImportNodeGraphPathKey);
        OssApplication::queueDialogAnswer(int(QMessageBox::No));
        OssApplication::queueDialogAnswer(
            QVariantMap{{QStringLiteral("button"), int(QMessageBox::Yes)},
                        {QStringLiteral("dontShowAgain"), true}});
        OssApplication::queueDialogAnswer(
            QStringList{QStringLiteral("/tmp/a/one.ong"), QStringLiteral("/tmp/a/two.ong")});
        OssApplication::queueDialogAnswer(true);

        QCOMPARE(OssMessageBox::warning(nullptr, QStringLiteral("T"), QStringLiteral("t"),
                                        QMessageBox::Yes | QMessageBox::No),
                 QMessageBox::No);
        const OssQuestionBox::Answer answer =
            OssQuestionBox::ask(nullptr, QStringLiteral("Update"), QStringLiteral("?"));
        QCOMPARE(answer.button, QMessageBox::Yes);
        QVERIFY(answer.dontShowAgain);
        QCOMPARE(OssFileDialog::getOpenFileNames(nullptr, QStringLiteral("Import"),
                                                 QStringLiteral("*.ong"), key)
                     .size(),
                 2);
        // The folder of the first chosen file is where the next dialog starts.
        QCOMPARE(OssResourceInfo::instance()->path(key), QStringLiteral("/tmp/a"));
        OssPopupDialog popup;
        QCOMPARE(popup.exec(), int(QDialog::Accepted));
        QVERIFY(!OssApplication::hasDialogAnswer());
    }

    void expandableList()
    {
        OssExpandableListWidget panel(QStringLiteral("Blur"));
        QCOMPARE(panel.property("OssExpandableListWidget").toBool(), true);
        QVERIFY(panel.heading());
        QCOMPARE(panel.heading()->text(), QStringLiteral("Blur"));
        auto *body = new QLabel(QStringLiteral("knobs"));
        panel.setBody(body);
        panel.show();
        QSignalSpy spy(&panel, &OssExpandableListWidget::collapsedChanged);
        QTest::mouseClick(panel.heading(), Qt::LeftButton);
        QVERIFY(panel.isCollapsed());
        QVERIFY(!body->isVisible());
        panel.collapse();
        QCOMPARE(spy.count(), 1);
        panel.expand();
        QVERIFY(body->isVisible());
        QCOMPARE(spy.count(), 2);

        auto *p = new OssMiniButton(QStringLiteral("p"));
        auto *s = new OssMiniButton(QStringLiteral("s"));
        panel.heading()->insertWidget(0, p);
        panel.heading()->insertWidget(1, s);
        QCOMPARE(panel.heading()->layout()->indexOf(p), 0);
        QCOMPARE(panel.heading()->layout()->indexOf(s), 1);
        QVERIFY(p->autoFillBackground());

        OssExpandableListWidget bare;
        QCOMPARE(bare.heading(), nullptr);
    }

    void formLabelsAreAligned()
    {
        QWidget panel;
        auto *outer = new QVBoxLayout(&panel);
        auto *first = new QFormLayout;
        auto *second = new QFormLayout;
        outer->addLayout(first);
        outer->addLayout(second);
        auto *shortLabel = new QLabel(QStringLiteral("Size"));
        auto *longLabel = new QLabel(QStringLiteral("Blending Colorspace Override"));
        first->addRow(shortLabel, new QLineEdit);
        second->addRow(longLabel, new QLineEdit);
        OssFormLayout::alignLabels(&panel);
        QCOMPARE(shortLabel->minimumWidth(), longLabel->sizeHint().width());
    }

private:
    OssTestEnvironment m_environment;
};

QTEST_MAIN(tst_HostDialogs)
#include "tst_HostDialogs.moc"
