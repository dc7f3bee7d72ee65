#include "OssImageManager.h"

#include "OssDragAndDropManager.h"
#include "OssImage.h"
#include "OssImageList.h"
#include "OssImageUniqueId.h"

#include <OssDebug.h>

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QMimeData>
#include <QUrl>

OssImageManager *OssImageManager::instance()
{
    static OssImageManager *manager = new OssImageManager;
    return manager;
}

OssImageManager::OssImageManager(QObject *parent) : QObject(parent)
{
    OssImageList::registerType();
}

QList<OssImage *> OssImageManager::open(const QString &path, int)
{
    QList<OssImage *> opened;
    QImageReader reader(path);
    if (!reader.canRead()) {
        OSS_DEBUG("[ !! ] Cannot open image '%s': %s", qPrintable(path),
                  qPrintable(reader.errorString()));
        return opened;
    }
    // Every image of the file is a layer; reading each checks that it really decodes.
    int layer = 0;
    do {
        const QImage image = reader.read();
        if (image.isNull()) {
            if (layer == 0)
                OSS_DEBUG("[ !! ] Cannot open image '%s': %s", qPrintable(path),
                          qPrintable(reader.errorString()));
            break;
        }
        opened.append(new OssImage(QFileInfo(path).absoluteFilePath(), layer, image.size(),
                                   image.depth(), this));
        ++layer;
    } while (reader.jumpToNextImage());
    m_images.append(opened);
    if (!opened.isEmpty())
        emit imagesChanged();
    return opened;
}

QList<OssImage *> OssImageManager::selectedImages() const
{
    QList<OssImage *> selected;
    for (OssImage *image : m_images)
        if (image->isSelected())
            selected.append(image);
    return selected;
}

OssImage *OssImageManager::getImage(const OssImageUniqueId &id) const
{
    for (OssImage *image : m_images)
        if (image->uniqueId() == id)
            return image;
    return nullptr;
}

void OssImageManager::clear()
{
    qDeleteAll(m_images);
    m_images.clear();
    emit imagesChanged();
}

void OssImageManager::registerGlobalContextMenuAction(QObject *action, const QString &menuTitle,
                                                      const QString &iconPath)
{
    if (!action)
        return;
    if (!iconPath.isEmpty())
        action->setProperty("icon", QIcon(iconPath));
    m_actions.append({menuTitle, action});
}

QList<QObject *> OssImageManager::globalContextMenuObjects(const QString &menuTitle) const
{
    QList<QObject *> actions;
    for (const auto &entry : m_actions)
        if (entry.first == menuTitle && entry.second)
            actions.append(entry.second);
    return actions;
}

QStringList OssImageManager::globalContextMenuTitles() const
{
    QStringList titles;
    for (const auto &entry : m_actions)
        if (entry.second && !titles.contains(entry.first))
            titles.append(entry.first);
    return titles;
}

QStringList OssImageManager::dropEvent_AcceptURLs(const QMimeData *mimeData) const
{
    QStringList paths;
    if (!mimeData)
        return paths;
    QStringList candidates;
    for (const QUrl &url : mimeData->urls())
        if (url.isLocalFile())
            candidates.append(url.toLocalFile());
    const QString pathFormat = QString::fromLatin1(OssImage::PathMimeType);
    if (mimeData->hasFormat(pathFormat))
        for (const QString &line :
             QString::fromUtf8(mimeData->data(pathFormat)).split(QLatin1Char('\n')))
            if (!line.trimmed().isEmpty())
                candidates.append(line.trimmed());
    static const QList<QByteArray> formats = QImageReader::supportedImageFormats();
    for (const QString &path : qAsConst(candidates)) {
        const QFileInfo info(path);
        if (paths.contains(path) || !info.isFile())
            continue;
        if (formats.contains(info.suffix().toLower().toUtf8()) || QImageReader(path).canRead())
            paths.append(path);
    }
    return paths;
}

bool OssImageManager::processDragEvent(QDragEnterEvent *event, int target)
{
    if (!event || target != OssDragAndDropManager::NodeGraphTarget)
        return false;
    const QMimeData *mime = event->mimeData();
    if (!OssImageUniqueId::imageIdListFromString(
             QString::fromUtf8(mime->data(QString::fromLatin1(OssImage::MimeType))))
             .isEmpty() ||
        !dropEvent_AcceptURLs(mime).isEmpty()) {
        event->acceptProposedAction();
        return true;
    }
    return false;
}
