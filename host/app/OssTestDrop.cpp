#include "OssTestDrop.h"

#include <QApplication>
#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QGraphicsView>
#include <QMimeData>
#include <QPointer>
#include <QTimer>
#include <QUrl>

#include <cstdio>

namespace {

// The node graph: the largest graphics view shown in the window.
QGraphicsView *nodeGraphView(QWidget *window)
{
    QGraphicsView *largest = nullptr;
    for (QGraphicsView *view : window->findChildren<QGraphicsView *>())
        if (view->isVisible() && view->scene() &&
            (!largest || view->width() * view->height() > largest->width() * largest->height()))
            largest = view;
    return largest;
}

void dropFiles(QWidget *window, const QPoint &at, const QStringList &files)
{
    QGraphicsView *view = nodeGraphView(window);
    if (!view) {
        std::fprintf(stderr, "Test drop: no node graph to drop on\n");
        return;
    }
    QMimeData mime;
    QList<QUrl> urls;
    for (const QString &file : files)
        urls << QUrl::fromLocalFile(file);
    mime.setUrls(urls);
    const Qt::DropActions actions = Qt::CopyAction | Qt::MoveAction | Qt::LinkAction;
    QWidget *viewport = view->viewport();
    QDragEnterEvent enter(at, actions, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QDragMoveEvent move(at, actions, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    if (!enter.isAccepted() || !move.isAccepted()) {
        QDragLeaveEvent leave;
        QApplication::sendEvent(viewport, &leave);
        std::fprintf(stderr, "Test drop: refused\n");
        return;
    }
    QDropEvent drop(at, actions, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    std::fprintf(stderr, "Test drop: %s\n", drop.isAccepted() ? "taken" : "not taken");
}

} // namespace

void ossScheduleTestDrop(QWidget *window)
{
    const QStringList parts =
        qEnvironmentVariable("OSSA_TEST_DROP").split(QLatin1Char(';'), Qt::SkipEmptyParts);
    if (parts.size() < 2)
        return;
    const QStringList xy = parts.first().split(QLatin1Char(','));
    const QPoint at(xy.value(0).toInt(), xy.value(1).toInt());
    const QStringList files = parts.mid(1);
    // The views bind to their networks with a delay; drop once the graph is in place.
    QPointer<QWidget> target(window);
    QTimer::singleShot(1500, window, [target, at, files] {
        if (target)
            dropFiles(target, at, files);
    });
}
