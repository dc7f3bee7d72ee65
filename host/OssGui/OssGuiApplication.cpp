#include "OssGuiApplication.h"

#include <QPointer>
#include <QWidget>

namespace {
QPointer<QWidget> &mainWindowSlot()
{
    static QPointer<QWidget> window;
    return window;
}
} // namespace

QWidget *OssGuiApplication::mainWindow()
{
    return mainWindowSlot().data();
}

void OssGuiApplication::setMainWindow(QWidget *window)
{
    mainWindowSlot() = window;
}
