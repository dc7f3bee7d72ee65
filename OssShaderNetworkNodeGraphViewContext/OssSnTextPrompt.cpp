#include "OssSnTextPrompt.h"

#include <OssApplication.h>
#include <OssDebug.h>

#include <QInputDialog>

QString OssSnTextPrompt::getText(QWidget *parent, const QString &title, const QString &label,
                                 const QString &text, bool *ok)
{
    *ok = false;
    if (OssApplication::hasDialogAnswer()) {
        const QVariant answer = OssApplication::takeDialogAnswer();
        *ok = answer.type() == QVariant::String;
        return *ok ? answer.toString() : QString();
    }
    if (!OssApplication::popupsAllowed()) {
        OSS_DEBUG("[ !! ] %s: %s (no answer without dialogs)", qPrintable(title),
                  qPrintable(label));
        return QString();
    }
    QInputDialog dialog(parent);
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setWindowTitle(title);
    dialog.setLabelText(label);
    dialog.setTextValue(text);
    if (dialog.exec() != QDialog::Accepted)
        return QString();
    *ok = true;
    return dialog.textValue();
}
