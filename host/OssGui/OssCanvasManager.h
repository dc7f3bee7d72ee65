#pragma once

#include "OssGuiExport.h"

class OssCanvasWidget;

// The canvas that painting goes to now; null when none is shown.
class OSSGUI_EXPORT OssCanvasManager
{
public:
    static OssCanvasWidget *currentCanvas();
    static void setCurrentCanvas(OssCanvasWidget *canvas);
};
