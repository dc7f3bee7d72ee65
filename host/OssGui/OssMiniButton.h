#pragma once

#include "OssGuiExport.h"

#include <QPushButton>

// A small push button with a short text.
class OSSGUI_EXPORT OssMiniButton : public QPushButton
{
    Q_OBJECT
public:
    explicit OssMiniButton(const QString &text, QWidget *parent = nullptr);
};
