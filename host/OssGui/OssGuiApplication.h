#pragma once

#include "OssGuiExport.h"

class QWidget;

// The GUI side of the application: the main window that parents the host's dialogs and message
// boxes when they are given no parent. Null until the shell's window registers itself.
class OSSGUI_EXPORT OssGuiApplication
{
public:
    static QWidget *mainWindow();
    static void setMainWindow(QWidget *window);
};
