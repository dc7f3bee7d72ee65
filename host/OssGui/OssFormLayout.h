#pragma once

#include "OssGuiExport.h"

class QWidget;

// Helpers for the host's form layouts.
class OSSGUI_EXPORT OssFormLayout
{
public:
    // Gives every label of the form layouts inside Widget the width of the widest one, so
    // fields line up across sections.
    static void alignLabels(QWidget *widget);
};
