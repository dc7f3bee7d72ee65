#pragma once

#include "OssGuiExport.h"

#include <QMessageBox>
#include <QString>

// A Yes/No question with a "Don't show again" check box.
class OSSGUI_EXPORT OssQuestionBox
{
public:
    struct Answer
    {
        QMessageBox::StandardButton button = QMessageBox::No;
        bool dontShowAgain = false;
    };
    // A queued answer is a QVariantMap {"button": int, "dontShowAgain": bool}.
    static Answer ask(QWidget *parent, const QString &title, const QString &text,
                      QMessageBox::StandardButton defaultButton = QMessageBox::No);
};
