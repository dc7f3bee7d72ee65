#include "OssFormLayout.h"

#include <QFormLayout>
#include <QWidget>

void OssFormLayout::alignLabels(QWidget *widget)
{
    if (!widget)
        return;
    QList<QWidget *> labels;
    int widest = 0;
    for (QFormLayout *form : widget->findChildren<QFormLayout *>()) {
        for (int row = 0; row < form->rowCount(); ++row) {
            QLayoutItem *item = form->itemAt(row, QFormLayout::LabelRole);
            if (item && item->widget()) {
                labels.append(item->widget());
                widest = qMax(widest, item->widget()->sizeHint().width());
            }
        }
    }
    for (QWidget *label : labels)
        label->setMinimumWidth(widest);
}
