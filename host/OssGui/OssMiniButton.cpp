#include "OssMiniButton.h"

OssMiniButton::OssMiniButton(const QString &text, QWidget *parent) : QPushButton(text, parent)
{
    setFlat(false);
    setAutoFillBackground(true);
    const int side = fontMetrics().height() + 4;
    setFixedSize(qMax(side, fontMetrics().horizontalAdvance(text) + 8), side);
}
