#pragma once

#include "OssGuiExport.h"

#include <QMessageBox>
#include <QString>

// Message boxes that respect batch use: without popups they log the text and return the default
// button; a queued answer (a QMessageBox::StandardButton as int) is used instead of asking.
class OSSGUI_EXPORT OssMessageBox
{
public:
    static QMessageBox::StandardButton
    warning(QWidget *parent, const QString &title, const QString &text,
            QMessageBox::StandardButtons buttons = QMessageBox::Ok);
    static QMessageBox::StandardButton
    information(QWidget *parent, const QString &title, const QString &text,
                QMessageBox::StandardButtons buttons = QMessageBox::Ok);
};
