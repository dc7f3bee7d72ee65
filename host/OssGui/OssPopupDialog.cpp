#include "OssPopupDialog.h"

#include <OssApplication.h>

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
