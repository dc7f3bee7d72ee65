#include "OssQuestionBox.h"

#include "OssGuiApplication.h"

#include <OssApplication.h>

#include <QCheckBox>
#include <QVariantMap>

OssQuestionBox::Answer OssQuestionBox::ask(QWidget *parent, const QString &title,
                                           const QString &text,
                                           QMessageBox::StandardButton defaultButton)
{
    Answer answer;
    answer.button = defaultButton;
    if (OssApplication::hasDialogAnswer()) {
        const QVariantMap queued = OssApplication::takeDialogAnswer().toMap();
        answer.button = static_cast<QMessageBox::StandardButton>(
            queued.value(QStringLiteral("button"), int(defaultButton)).toInt());
        answer.dontShowAgain = queued.value(QStringLiteral("dontShowAgain")).toBool();
        return answer;
    }
    if (!OssApplication::popupsAllowed())
        return answer;
    QMessageBox box(QMessageBox::Question, title, text, QMessageBox::Yes | QMessageBox::No,
                    parent ? parent : OssGuiApplication::mainWindow());
    box.setDefaultButton(defaultButton);
    auto *check = new QCheckBox(QObject::tr("Don't show again"), &box);
    box.setCheckBox(check);
    answer.button = static_cast<QMessageBox::StandardButton>(box.exec());
    answer.dontShowAgain = check->isChecked();
    return answer;
}
