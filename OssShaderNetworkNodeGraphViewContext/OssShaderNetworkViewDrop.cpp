// What OssShaderNetworkView takes when something is dragged onto the node graph: objects of the
// host's drag and drop, material and custom procedural archives, and images (loaded images or
// image files), which become texture nodes. Also the archive imports the drops lead to.

#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssDebug.h>
#include <OssDragAndDropManager.h>
#include <OssFileDialog.h>
#include <OssGuiApplication.h>
#include <OssImage.h>
#include <OssImageList.h>
#include <OssImageManager.h>
#include <OssImageUniqueId.h>
#include <OssMaterialPaintManager.h>
#include <OssMessageBox.h>
#include <OssNgNode.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkManager.h>
#include <OssSnBaseNode.h>
#include <OssSnCustomProceduralNode.h>
#include <OssSnMaterialNode.h>
#include <OssUndoManager.h>

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMimeData>

namespace {

constexpr int NodeGraphTarget = OssDragAndDropManager::NodeGraphTarget;
const QString TiledType = QStringLiteral("Procedural/Pattern/Tiled");
const QString TriPlanarType = QStringLiteral("Environment/Tri Planar Projection");
const QString MaterialType = QStringLiteral("_System/Material");
const QString CustomProceduralType = QStringLiteral("Misc/Custom Procedural");

bool carriesImages(const QMimeData *mime)
{
    return mime->hasFormat(QString::fromLatin1(OssImage::MimeType)) ||
           mime->hasFormat(QString::fromLatin1(OssImage::PathMimeType)) ||
           !OssImageManager::instance()->dropEvent_AcceptURLs(mime).isEmpty();
}

// The images of a drop, in order. Files that do not open into exactly one image are listed in
// Rejected.
QList<OssImage *> droppedImages(const QMimeData *mime, QStringList *rejected)
{
    QList<OssImage *> images;
    OssImageManager *manager = OssImageManager::instance();
    const QString idFormat = QString::fromLatin1(OssImage::MimeType);
    if (mime->hasFormat(idFormat)) {
        const QString text = QString::fromUtf8(mime->data(idFormat));
        for (const OssImageUniqueId &id : OssImageUniqueId::imageIdListFromString(text))
            if (OssImage *image = manager->getImage(id))
                images.append(image);
    }
    // 9216 asks for the default image category.
    for (const QString &path : manager->dropEvent_AcceptURLs(mime)) {
        const QList<OssImage *> opened = manager->open(path, 9216);
        if (opened.size() == 1)
            images.append(opened.first());
        else
            rejected->append(path);
    }
    return images;
}

} // namespace

// --- drag and drop

void OssShaderNetworkView::dragEnterEvent(QDragEnterEvent *event)
{
    m_dragAccepted = false;
    if (!scene()) {
        QGraphicsView::dragEnterEvent(event);
        return;
    }
    const QMimeData *mime = event->mimeData();
    OssMaterialPaintManager *paint = OssMaterialPaintManager::instance();
    if (OssDragAndDropManager::instance()->acceptDragEnter(mime, NodeGraphTarget) ||
        paint->draggableMaterialType(mime) || paint->draggableCustomProceduralType(mime)) {
        m_dragAccepted = true;
        event->acceptProposedAction();
        return;
    }
    if (OssImageManager::instance()->processDragEvent(event, NodeGraphTarget)) {
        m_dragAccepted = true;
        return;
    }
    QGraphicsView::dragEnterEvent(event);
}

void OssShaderNetworkView::dragMoveEvent(QDragMoveEvent *event)
{
    if (!scene()) {
        QGraphicsView::dragMoveEvent(event);
        return;
    }
    // What may be dropped was decided when the drag entered; a refused drag stays refused, so
    // the cursor says so before the button is released.
    if (m_dragAccepted)
        event->acceptProposedAction();
    else
        event->ignore();
}

void OssShaderNetworkView::dragLeaveEvent(QDragLeaveEvent *event)
{
    m_dragAccepted = false;
    QGraphicsView::dragLeaveEvent(event);
}

void OssShaderNetworkView::dropEvent(QDropEvent *event)
{
    m_dragAccepted = false;
    if (!scene()) {
        QGraphicsView::dropEvent(event);
        return;
    }
    const QMimeData *mime = event->mimeData();
    const QPointF scenePos = mapToScene(event->pos());

    // Objects of the host's own drag and drop.
    OssDragAndDropManager *drops = OssDragAndDropManager::instance();
    if (drops->acceptDragEnter(mime, NodeGraphTarget)) {
        const QVariantMap parameters{
            {QStringLiteral("NodeGraph"), QVariant::fromValue<QObject *>(m_network)},
            {QStringLiteral("Position"), scenePos}};
        if (drops->drop(mime, NodeGraphTarget, parameters)) {
            event->acceptProposedAction();
            QGraphicsView::dropEvent(event);
            return;
        }
    }

    // Archives.
    if (!carriesImages(mime)) {
        OssMaterialPaintManager *paint = OssMaterialPaintManager::instance();
        if (paint->draggableMaterialType(mime)) {
            importMaterial(paint->pathListFromMimeData(mime), event->pos());
            event->acceptProposedAction();
        } else if (paint->draggableCustomProceduralType(mime)) {
            importCustomProcedural(paint->pathListFromMimeData(mime), event->pos());
            event->acceptProposedAction();
        } else {
            QGraphicsView::dropEvent(event);
        }
        return;
    }

    // Images: one texture node each.
    QStringList rejected;
    const QList<OssImage *> images = droppedImages(mime, &rejected);
    if (!rejected.isEmpty()) {
        for (const QString &path : qAsConst(rejected))
            OSS_DEBUG("[ !! ] Dropped file '%s' is not one readable image, it is left out",
                      qPrintable(path));
    }
    if (!images.isEmpty()) {
        QString type = TiledType;
        if (QGuiApplication::keyboardModifiers() & Qt::ShiftModifier) {
            OSS_DEBUG("[ -- ] Modifer Shift key pressed -> will create TriPlanar");
            type = TriPlanarType;
        }
        {
            OssUndoManager::AutoMacro macro(
                QStringLiteral("Drag and drop : creating %1 %2 of type '%3'")
                    .arg(images.size())
                    .arg(images.size() == 1 ? QStringLiteral("node") : QStringLiteral("nodes"))
                    .arg(type));
            // Every node is asked for the drop point; placement spreads them apart.
            for (OssImage *image : images)
                createNodeFromDropImage(image, type, scenePos);
        }
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
        event->acceptProposedAction();
    }
    if (!rejected.isEmpty())
        OssMessageBox::warning(this, tr("Drag and drop"),
                               tr("These files are not one readable image each and were left "
                                  "out:\n%1")
                                   .arg(rejected.join(QLatin1Char('\n'))));
}

void OssShaderNetworkView::createNodeFromDropImage(OssImage *Image, QString NodeType)
{
    createNodeFromDropImage(Image, NodeType, QPointF());
}

void OssShaderNetworkView::createNodeFromDropImage(OssImage *Image, QString NodeType,
                                                   QPointF NodeScenePos)
{
    OssUndoManager::AutoMacro macro(QStringLiteral("Creating %1").arg(NodeType));
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    if (!Image) {
        OSS_DEBUG("Image is NULL");
        macro.cancel();
        return;
    }
    const QList<OssSnBaseNode *> created = m_network->createNodesFromNodePathKey(NodeType, true);
    if (created.isEmpty()) {
        macro.cancel();
        return;
    }
    OssSnBaseNode *node = created.first();
    const QVariant images = QVariant::fromValue(OssImageList({Image->uniqueId()}));
    if (NodeType == TiledType) {
        node->setNodeAttribute(QStringLiteral("TileImage"), images, true);
    } else if (NodeType == TriPlanarType) {
        for (const char *attribute : {"frontImage", "topImage", "rightImage"})
            node->setNodeAttribute(QString::fromLatin1(attribute), images, true);
    }
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node)) {
        const QPointF point =
            NodeScenePos.isNull() ? mapToScene(viewport()->rect().center()) : NodeScenePos;
        gui->setPos(point - gui->boundingRect().center());
        placeNode(node);
        emit gui->posChanged(gui->pos());
    }
    emit nodeAdded(node);
}

// --- archive imports

void OssShaderNetworkView::importMaterial()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QPoint viewPos = viewport()->mapFromGlobal(QCursor::pos());
    const QStringList paths = OssFileDialog::getOpenFileNames(
        OssGuiApplication::mainWindow(), tr("Import Material from Archive"),
        QStringLiteral("*.oma"), QStringLiteral("defaultImportMaterialPathKey"));
    if (!paths.isEmpty())
        importMaterial(paths, viewPos);
}

void OssShaderNetworkView::importMaterial(QStringList PathList, QPoint NodeViewPos)
{
    importArchives(PathList, NodeViewPos, MaterialType, QStringLiteral("Import material"),
                   tr("Material Import errors"));
}

void OssShaderNetworkView::importCustomProcedural()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QPoint viewPos = viewport()->mapFromGlobal(QCursor::pos());
    const QStringList paths = OssFileDialog::getOpenFileNames(
        OssGuiApplication::mainWindow(), tr("Import Custom Procedural from Archive"),
        QStringLiteral("*.opc"), QStringLiteral("defaultImportCustomProceduralPathKey"));
    if (!paths.isEmpty())
        importCustomProcedural(paths, viewPos);
}

void OssShaderNetworkView::importCustomProcedural(QStringList PathList, QPoint NodeViewPos)
{
    importArchives(PathList, NodeViewPos, CustomProceduralType,
                   QStringLiteral("Import custom procedural"),
                   tr("Custom Procedural Import errors"));
}

void OssShaderNetworkView::importArchives(const QStringList &paths, const QPoint &viewPos,
                                          const QString &pathKey, const QString &title,
                                          const QString &errorTitle)
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    if (paths.isEmpty())
        return;
    QStringList errors;
    QList<OssSnBaseNode *> imported;
    {
        OssUndoManager::AutoMacro macro(title);
        for (const QString &path : paths) {
            OssSnBaseNode *node =
                m_network->createNode(pathKey, QFileInfo(path).completeBaseName());
            if (!node) {
                errors.append(
                    QStringLiteral("\"%1\": no node of type '%2' can be made").arg(path, pathKey));
                continue;
            }
            bool ok = false;
            if (auto *material = qobject_cast<OssSnMaterialNode *>(node))
                ok = material->importFromFile(path, &errors);
            else if (auto *procedural = qobject_cast<OssSnCustomProceduralNode *>(node))
                ok = procedural->importFromFile(path, &errors);
            if (ok) {
                // Several archives at once must not land on each other.
                placeNode(node);
                imported.append(node);
            }
        }
        if (errors.isEmpty()) {
            OssShaderNetworkManager::instance()->upgradeNetworks({m_network});
            const QPointF scenePos = mapToScene(viewPos);
            placeInsertedNodes(imported, &scenePos);
            for (OssSnBaseNode *node : qAsConst(imported))
                emit nodeAdded(node);
        } else {
            macro.cancel();
        }
    }
    if (!errors.isEmpty()) {
        for (const QString &error : qAsConst(errors))
            OSS_DEBUG("[ !! ] Import failed: %s", qPrintable(error));
        OssMessageBox::warning(OssGuiApplication::mainWindow(), errorTitle,
                               errors.join(QLatin1Char('\n')));
        return;
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}
