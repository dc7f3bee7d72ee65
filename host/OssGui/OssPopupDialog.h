#pragma once

#include "OssGuiExport.h"

#include <QDialog>

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
