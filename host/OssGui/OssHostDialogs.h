#pragma once

#include "OssGuiExport.h"

#include <QDialog>
#include <QMessageBox>
#include <QStringList>

// A frameless popup (the rename field of the node graph): Return accepts, Escape rejects.
class OSSGUI_EXPORT OssPopupDialog : public QDialog
{
    Q_OBJECT
public:
    explicit OssPopupDialog(QWidget *parent = nullptr);

    // Runs the dialog, or takes a queued answer (true/false) when one is waiting; without popups
    // it is rejected at once.
    int exec() override;
};

// The host's file dialogs. The start folder comes from a resource path key and the chosen
// folder is remembered under that key. A queued answer (a path or a list of paths) is used
// instead of asking; without popups nothing is chosen.
class OSSGUI_EXPORT OssFileDialog
{
public:
    static QString getSaveFileName(QWidget *parent, const QString &title, const QString &filter,
                                   const QString &pathKey);
    static QStringList getOpenFileNames(QWidget *parent, const QString &title,
                                        const QString &filter, const QString &pathKey);
};

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
