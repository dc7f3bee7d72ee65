#pragma once

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>

// Drives the modal dialogs and popup menus that a command opens and runs inside its own event
// loop: the action runs on the first visible modal widget (or popup) of the wanted class that
// is not Skip, from within that loop. Whatever is still open after the time limit is closed, so
// that a test that went wrong fails instead of hanging; timedOut() then tells.
class OssModalDriver
{
public:
    template <typename Widget>
    static void whenModal(std::function<void(Widget *)> action, QWidget *skip = nullptr)
    {
        whenShown<Widget>([] { return QApplication::activeModalWidget(); }, std::move(action),
                          skip);
    }

    static void whenPopup(std::function<void(QMenu *)> action, QWidget *skip = nullptr)
    {
        whenShown<QMenu>([] { return QApplication::activePopupWidget(); }, std::move(action), skip);
    }

    static bool &timedOut()
    {
        static bool flag = false;
        return flag;
    }

private:
    template <typename Widget>
    static void whenShown(std::function<QWidget *()> find, std::function<void(Widget *)> action,
                          QWidget *skip)
    {
        auto *timer = new QTimer;
        auto *clock = new QElapsedTimer;
        clock->start();
        QPointer<QWidget> skipped(skip);
        timer->setInterval(10);
        QObject::connect(timer, &QTimer::timeout, [=] {
            auto *widget = qobject_cast<Widget *>(find());
            const bool ready = widget && widget->isVisible() && widget != skipped.data();
            if (!ready && clock->elapsed() < 10000)
                return;
            timer->stop();
            timer->deleteLater();
            delete clock;
            if (!ready) {
                timedOut() = true;
                for (int i = 0; i < 10 && QApplication::activePopupWidget(); ++i)
                    QApplication::activePopupWidget()->close();
                for (int i = 0; i < 10 && QApplication::activeModalWidget(); ++i)
                    QApplication::activeModalWidget()->hide();
                return;
            }
            QPointer<QWidget> handled(widget);
            action(widget);
            // An action that failed half-way leaves its window open: close it, so that the
            // command returns and the test reports the failure.
            QTimer::singleShot(5000, [handled] {
                if (handled && handled->isVisible()) {
                    timedOut() = true;
                    handled->hide();
                }
            });
        });
        timer->start();
    }
};
