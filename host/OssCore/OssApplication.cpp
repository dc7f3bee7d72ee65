#include "OssApplication.h"

namespace {
struct ApplicationState
{
    bool popupsAllowed = true;
    QPointer<QWidget> mainWindow;
    QList<QVariant> answers;
};

ApplicationState &state()
{
    static ApplicationState instance;
    return instance;
}
} // namespace

bool OssApplication::popupsAllowed()
{
    return state().popupsAllowed;
}

void OssApplication::setPopupsAllowed(bool allowed)
{
    state().popupsAllowed = allowed;
}

QWidget *OssApplication::mainWindow()
{
    return state().mainWindow;
}

void OssApplication::setMainWindow(QWidget *window)
{
    state().mainWindow = window;
}

void OssApplication::queueDialogAnswer(const QVariant &answer)
{
    state().answers.append(answer);
}

QVariant OssApplication::takeDialogAnswer()
{
    return state().answers.isEmpty() ? QVariant() : state().answers.takeFirst();
}

bool OssApplication::hasDialogAnswer()
{
    return !state().answers.isEmpty();
}

void OssApplication::clearDialogAnswers()
{
    state().answers.clear();
}
