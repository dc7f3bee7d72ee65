#pragma once

#include <QString>

class QWidget;

// A one-line text question that respects batch use: a queued dialog answer (a string; anything
// else cancels) is used instead of asking, and without popups the question is logged and
// cancelled.
class OssSnTextPrompt
{
public:
    static QString getText(QWidget *parent, const QString &title, const QString &label,
                           const QString &text, bool *ok);
};
