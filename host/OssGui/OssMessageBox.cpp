#include "OssMessageBox.h"

#include "OssGuiApplication.h"

#include <OssApplication.h>
#include <OssDebug.h>

namespace {

QMessageBox::StandardButton showBox(QMessageBox::Icon icon, QWidget *parent, const QString &title,
                                    const QString &text, QMessageBox::StandardButtons buttons)
{
    if (OssApplication::hasDialogAnswer())
        return static_cast<QMessageBox::StandardButton>(OssApplication::takeDialogAnswer().toInt());
    if (!OssApplication::popupsAllowed()) {
        OssDebug(__FILE__, __LINE__, "[ !! ] %s: %s", title.toUtf8().constData(),
                 text.toUtf8().constData());
        // The first button of the set stands for the box's default answer.
        for (int bit = 0; bit < 32; ++bit) {
            const auto button = static_cast<QMessageBox::StandardButton>(1u << bit);
            if (buttons.testFlag(button))
                return button;
        }
        return QMessageBox::NoButton;
    }
    QMessageBox box(icon, title, text, buttons, parent ? parent : OssGuiApplication::mainWindow());
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

} // namespace

QMessageBox::StandardButton OssMessageBox::warning(QWidget *parent, const QString &title,
                                                   const QString &text,
                                                   QMessageBox::StandardButtons buttons)
{
    return showBox(QMessageBox::Warning, parent, title, text, buttons);
}

QMessageBox::StandardButton OssMessageBox::information(QWidget *parent, const QString &title,
                                                       const QString &text,
                                                       QMessageBox::StandardButtons buttons)
{
    return showBox(QMessageBox::Information, parent, title, text, buttons);
}
