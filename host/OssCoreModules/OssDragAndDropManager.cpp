#include "OssDragAndDropManager.h"

#include "OssImage.h"
#include "OssImageList.h"
#include "OssImageManager.h"
#include "OssShaderNetwork.h"
#include "OssSnBaseNode.h"

#include <OssUndoManager.h>

#include <QMimeData>

OssDragAndDropManager *OssDragAndDropManager::instance()
{
    static OssDragAndDropManager *manager = new OssDragAndDropManager;
    return manager;
}

OssDragAndDropManager::OssDragAndDropManager(QObject *parent) : QObject(parent) {}

namespace {

QList<OssImage *> droppedImages(const QMimeData *mimeData)
{
    QList<OssImage *> images;
    OssImageManager *manager = OssImageManager::instance();
    if (mimeData->hasFormat(QString::fromLatin1(OssImage::MimeType))) {
        const QString text =
            QString::fromUtf8(mimeData->data(QString::fromLatin1(OssImage::MimeType)));
        for (const OssImageUniqueId &id : OssImageUniqueId::imageIdListFromString(text))
            if (OssImage *image = manager->getImage(id))
                images.append(image);
        return images;
    }
    for (const QString &path : manager->dropEvent_AcceptURLs(mimeData)) {
        const QList<OssImage *> opened = manager->open(path);
        // A file is used only when it gives exactly one layer.
        if (opened.size() == 1)
            images.append(opened.first());
    }
    return images;
}

} // namespace

void OssDragAndDropManager::registerHandler(const QString &name, Handler accepts, Handler handle)
{
    m_handlers.append(Entry{name, std::move(accepts), std::move(handle)});
}

bool OssDragAndDropManager::acceptDragEnter(const QMimeData *mimeData, int target) const
{
    if (!mimeData)
        return false;
    for (const Entry &entry : m_handlers)
        if (entry.accepts(mimeData, target, QVariantMap()))
            return true;
    return target == NodeGraphTarget &&
           (mimeData->hasFormat(QString::fromLatin1(OssImage::MimeType)) ||
            !OssImageManager::instance()->dropEvent_AcceptURLs(mimeData).isEmpty());
}

bool OssDragAndDropManager::drop(const QMimeData *mimeData, int target,
                                 const QVariantMap &parameters)
{
    if (!mimeData)
        return false;
    for (const Entry &entry : m_handlers)
        if (entry.accepts(mimeData, target, parameters) &&
            entry.handle(mimeData, target, parameters))
            return true;
    auto *network = qobject_cast<OssShaderNetwork *>(
        parameters.value(QStringLiteral("NodeGraph")).value<QObject *>());
    if (target != NodeGraphTarget || !network || !acceptDragEnter(mimeData, target))
        return false;
    const QList<OssImage *> images = droppedImages(mimeData);
    if (images.isEmpty())
        return false;
    OssUndoManager::AutoMacro macro(QStringLiteral("Drop Images"));
    for (OssImage *image : images) {
        OssSnBaseNode *node = network->createNode(QStringLiteral("Procedural/Pattern/Tiled"));
        if (!node) {
            macro.cancel();
            return false;
        }
        node->setNodeAttribute(QStringLiteral("TileImage"),
                               QVariant::fromValue(OssImageList({image->uniqueId()})));
    }
    return true;
}
