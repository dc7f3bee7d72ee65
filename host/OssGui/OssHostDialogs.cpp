#include "OssHostDialogs.h"

#include "OssGuiApplication.h"

#include <OssApplication.h>
#include <OssDebug.h>
#include <OssResourceInfo.h>

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>

OssPopupDialog::OssPopupDialog(QWidget *parent)
    : QDialog(parent, Qt::Popup | Qt::FramelessWindowHint)
{}

int OssPopupDialog::exec()
{
    if (OssApplication::hasDialogAnswer()) {
        const int result = OssApplication::takeDialogAnswer().toBool() ? Accepted : Rejected;
        setResult(result);
        return result;
    }
    if (!OssApplication::popupsAllowed()) {
        setResult(Rejected);
        return Rejected;
    }
    return QDialog::exec();
}

namespace {

QString startFolder(const QString &pathKey)
{
    return OssResourceInfo::instance()->path(pathKey);
}

void rememberFolder(const QString &pathKey, const QString &file)
{
    if (!file.isEmpty())
        OssResourceInfo::instance()->setPath(pathKey, QFileInfo(file).absolutePath());
}

} // namespace

QString OssFileDialog::getSaveFileName(QWidget *parent, const QString &title, const QString &filter,
                                       const QString &pathKey)
{
    QString file;
    if (OssApplication::hasDialogAnswer())
        file = OssApplication::takeDialogAnswer().toString();
    else if (OssApplication::popupsAllowed())
        file = QFileDialog::getSaveFileName(parent, title, startFolder(pathKey), filter);
    rememberFolder(pathKey, file);
    return file;
}

QStringList OssFileDialog::getOpenFileNames(QWidget *parent, const QString &title,
                                            const QString &filter, const QString &pathKey)
{
    QStringList files;
    if (OssApplication::hasDialogAnswer())
        files = OssApplication::takeDialogAnswer().toStringList();
    else if (OssApplication::popupsAllowed())
        files = QFileDialog::getOpenFileNames(parent, title, startFolder(pathKey), filter);
    if (!files.isEmpty())
        rememberFolder(pathKey, files.first());
    return files;
}

namespace {

QMessageBox::StandardButton showBox(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                    const QString &text, QMessageBox::StandardButtons buttons)
{
    if (OssApplication::hasDialogAnswer())
        return static_cast<QMessageBox::StandardButton>(OssApplication::takeDialogAnswer().toInt());
    if (!OssApplication::popupsAllowed()) {
        OssDebug(__FILE__, __LINE__, "[ !! ] %s: %s", title.toUtf8().constData(),
                 text.toUtf8().constData());
        // The first button of the set stands for the box's default answer.
        for (int bit = 0; bit < 32; ++bit) {
            const auto button = static_cast<QMessageBox::StandardButton>(1u << bit);
            if (buttons.testFlag(button))
                return button;
        }
        return QMessageBox::NoButton;
    }
    QMessageBox box(icon, title, text, buttons, parent ? parent : OssGuiApplication::mainWindow());
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

QMessageBox::StandardButton OssMessageBox::warning(QWidget *parent, const QString &title,
                                                   const QString &text,
                                                   QMessageBox::StandardButtons buttons)
{
    return showBox(QMessageBox::Warning, parent, title, text, buttons);
}

QMessageBox::StandardButton OssMessageBox::information(QWidget *parent, const QString &title,
                                                       const QString &text,
                                                       QMessageBox::StandardButtons buttons)
{
    return showBox(QMessageBox::Information, parent, title, text, buttons);
}

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
