#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QStringList>

class OssImage;
class OssImageUniqueId;
class QAction;
class QDragEnterEvent;
class QMimeData;

// The images the host has loaded.
class OSSCOREMODULES_EXPORT OssImageManager : public QObject
{
    Q_OBJECT
public:
    static OssImageManager *instance();

    // Reads an image file with Qt's image readers: one image per layer (a multi-page file
    // gives several). An unreadable file gives none and a debug line with the reason.
    QList<OssImage *> open(const QString &path, int flags = 0);
    QList<OssImage *> images() const { return m_images; }
    QList<OssImage *> selectedImages() const;
    OssImage *getImage(const OssImageUniqueId &id) const;
    void clear();

    // Context-menu actions are QActions. The manager keeps them as QObjects, so that the model
    // needs no QtWidgets, and gives an action its icon through the "icon" property; the typed
    // list is made where QAction is known (the menu that shows them).
    void registerGlobalContextMenuAction(QObject *action, const QString &menuTitle,
                                         const QString &iconPath);
    template <typename Action = QAction>
    QList<Action *> globalContextMenuActions(const QString &menuTitle) const
    {
        QList<Action *> actions;
        for (QObject *object : globalContextMenuObjects(menuTitle))
            if (auto *action = qobject_cast<Action *>(object))
                actions.append(action);
        return actions;
    }
    QList<QObject *> globalContextMenuObjects(const QString &menuTitle) const;
    QStringList globalContextMenuTitles() const;

    // Takes a drag of image files or loaded image ids for target 4 (the node graph).
    bool processDragEvent(QDragEnterEvent *event, int target);
    // The local image files of a drop: the dropped file URLs and the paths of the image path
    // mime type, each kept when its suffix names an image format Qt reads or Qt recognises
    // its content. A damaged file of an image kind is kept, so that opening it can say why it
    // is left out.
    QStringList dropEvent_AcceptURLs(const QMimeData *mimeData) const;

signals:
    void imagesChanged();

private:
    explicit OssImageManager(QObject *parent = nullptr);
    QList<OssImage *> m_images;
    QList<QPair<QString, QPointer<QObject>>> m_actions;
};
