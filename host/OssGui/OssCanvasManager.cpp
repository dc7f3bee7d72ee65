#include "OssCanvasManager.h"

#include "OssCanvasWidget.h"

#include <QPointer>

namespace {
QPointer<OssCanvasWidget> &canvasSlot()
{
    static QPointer<OssCanvasWidget> canvas;
    return canvas;
}
} // namespace

OssCanvasWidget *OssCanvasManager::currentCanvas()
{
    return canvasSlot().data();
}

void OssCanvasManager::setCurrentCanvas(OssCanvasWidget *canvas)
{
    canvasSlot() = canvas;
}
