#include "OssImages.h"

#include "OssProject.h"
#include "OssShaderNetwork.h"
#include "OssSnBaseNode.h"

#include <OssDebug.h>
#include <OssUndoManager.h>

#include <QDragEnterEvent>
#include <QFileInfo>
#include <QIcon>
#include <QImageReader>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

const char *const OssImage::MimeType = "application/x-ossa-image-ids";
const char *const OssImage::PathMimeType = "application/x-ossa-image-paths";

OssImageUniqueId OssImageUniqueId::fromString(const QString &text)
{
    return OssImageUniqueId(QUuid(text.trimmed()));
}

QList<OssImageUniqueId> OssImageUniqueId::imageIdListFromString(const QString &text)
{
    QList<OssImageUniqueId> ids;
    static const QRegularExpression separators(QStringLiteral("[\\n,]"));
    for (const QString &part : text.split(separators, Qt::SkipEmptyParts)) {
        const OssImageUniqueId id = fromString(part);
        if (id.isValid())
            ids.append(id);
    }
    return ids;
}

QString OssImageList::toString() const
{
    QStringList parts;
    for (const OssImageUniqueId &id : m_ids)
        parts.append(id.toString());
    return parts.join(QLatin1Char('\n'));
}

OssImageList OssImageList::fromString(const QString &text)
{
    return OssImageList(OssImageUniqueId::imageIdListFromString(text));
}

void OssImageList::registerType()
{
    static const bool registered = [] {
        qRegisterMetaType<OssImageList>("OssImageList");
        qRegisterMetaType<OssImageUniqueId>("OssImageUniqueId");
        QMetaType::registerConverter<OssImageList, QString>(&OssImageList::toString);
        QMetaType::registerConverter<QString, OssImageList>(&OssImageList::fromString);
        QMetaType::registerEqualsComparator<OssImageList>();
        return true;
    }();
    Q_UNUSED(registered);
}

OssImage::OssImage(const QString &path, int layer, const QSize &size, int depth, QObject *parent)
    : QObject(parent), m_id(OssImageUniqueId::create()), m_path(path), m_layer(layer), m_size(size),
      m_depth(depth)
{}

void OssImage::setSelected(bool selected)
{
    if (selected == m_selected)
        return;
    m_selected = selected;
    emit selectedChanged(selected);
}

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
    for (const QUrl &url : mimeData->urls())
        if (url.isLocalFile() && QImageReader(url.toLocalFile()).canRead())
            paths.append(url.toLocalFile());
    return paths;
}

bool OssImageManager::processDragEvent(QDragEnterEvent *event, int target)
{
    if (!event || target != OssDragAndDropManager::NodeGraphTarget)
        return false;
    const QMimeData *mime = event->mimeData();
    if (mime->hasFormat(QString::fromLatin1(OssImage::MimeType)) ||
        !dropEvent_AcceptURLs(mime).isEmpty()) {
        event->acceptProposedAction();
        return true;
    }
    return false;
}

// --- drag and drop

OssDragAndDropManager *OssDragAndDropManager::instance()
{
    static OssDragAndDropManager *manager = new OssDragAndDropManager;
    return manager;
}

OssDragAndDropManager::OssDragAndDropManager(QObject *parent) : QObject(parent) {}

void OssDragAndDropManager::registerHandler(const QString &name, Handler accepts, Handler handle)
{
    m_handlers.append(Entry{name, std::move(accepts), std::move(handle)});
}

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

// --- material paint

OssMaterialPaintManager *OssMaterialPaintManager::instance()
{
    static OssMaterialPaintManager *manager = new OssMaterialPaintManager;
    return manager;
}

OssMaterialPaintManager::OssMaterialPaintManager(QObject *parent) : QObject(parent) {}

QStringList OssMaterialPaintManager::pathListFromMimeData(const QMimeData *mimeData) const
{
    QStringList paths;
    if (mimeData)
        for (const QUrl &url : mimeData->urls())
            if (url.isLocalFile())
                paths.append(url.toLocalFile());
    return paths;
}

bool OssMaterialPaintManager::draggableMaterialType(const QMimeData *mimeData) const
{
    const QStringList paths = pathListFromMimeData(mimeData);
    return !paths.isEmpty() && std::all_of(paths.begin(), paths.end(), [](const QString &path) {
        return path.endsWith(QLatin1String(".oma"), Qt::CaseInsensitive);
    });
}

bool OssMaterialPaintManager::draggableCustomProceduralType(const QMimeData *mimeData) const
{
    const QStringList paths = pathListFromMimeData(mimeData);
    return !paths.isEmpty() && std::all_of(paths.begin(), paths.end(), [](const QString &path) {
        return path.endsWith(QLatin1String(".opc"), Qt::CaseInsensitive);
    });
}

bool OssMaterialPaintManager::autoconnectMergeNode(OssSnBaseNode *selected, OssSnBaseNode *merge)
{
    if (!selected || !merge || selected->prefferedOutputPoint().isEmpty())
        return false;
    const QString input =
        !merge->inputConnection(QStringLiteral("Over")) && merge->hasInput(QStringLiteral("Over"))
            ? QStringLiteral("Over")
            : QStringLiteral("Base");
    OssUndoManager::AutoMacro macro(QStringLiteral("Connect Merge"));
    return merge->connectInput(input, selected, selected->prefferedOutputPoint());
}
