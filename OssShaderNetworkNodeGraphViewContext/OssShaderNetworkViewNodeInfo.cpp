// Commands of OssShaderNetworkView around files and node information: export and import of node
// files
// (*.ong), finding a node by name, node information, debug dumps, the material preview picture
// and the image set of image set nodes.

#include "OssShaderNetworkView.h"

#include "OssSnNodeGraphViewContext.h"

#include <OssApplication.h>
#include <OssChannel.h>
#include <OssDebug.h>
#include <OssFileDialog.h>
#include <OssMessageBox.h>
#include <OssNgBackdropNode.h>
#include <OssNodeInfoDialog.h>
#include <OssResourceInfo.h>
#include <OssSearchNodeDialog.h>
#include <OssShaderNetwork.h>
#include <OssShaderNetworkIO.h>
#include <OssShaderNetworkManager.h>
#include <OssShadingGroup.h>
#include <OssSnBaseNode.h>
#include <OssSnImageSetNodeBase.h>
#include <OssSnMaterialNode.h>
#include <OssUndoCommand.h>
#include <OssUndoManager.h>

#include <QDir>
#include <QFileInfo>
#include <QGraphicsScene>
#include <QInputDialog>
#include <QPointer>

namespace {

const QString NodeFileFilter = QStringLiteral("*.ong");
const QString NodeFileSuffix = QStringLiteral(".ong");

// An image set node changing the channel it shows.
class ImageSetChange : public OssUndoCommand
{
public:
    ImageSetChange(OssSnImageSetNodeBase *node, OssChannel *imageSet)
        : OssUndoCommand(QStringLiteral("Set Image Set %1").arg(imageSet->name())), m_node(node),
          m_old(node->imageSet()), m_oldName(node->imageSetName()), m_new(imageSet)
    {}
    void redo() override
    {
        if (m_node && m_new)
            m_node->setImageSet(m_new);
    }
    void undo() override
    {
        if (!m_node)
            return;
        if (m_old) {
            m_node->setImageSet(m_old);
        } else {
            m_node->setImageSet(nullptr, false);
            m_node->setImageSetName(m_oldName);
            emit m_node->imageSetChanged();
        }
    }

private:
    QPointer<OssSnImageSetNodeBase> m_node;
    QPointer<OssChannel> m_old;
    QString m_oldName;
    QPointer<OssChannel> m_new;
};

QString rectText(const QRectF &r)
{
    return QString::asprintf("lt(%f, %f), rb(%f, %f), c(%f, %f) h(%f), w(%f)", r.left(), r.top(),
                             r.right(), r.bottom(), r.center().x(), r.center().y(), r.height(),
                             r.width());
}

} // namespace

// --- node files

void OssShaderNetworkView::exportNodes()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = selectionWithoutViewer();
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ -- ] No node selected to export");
        return;
    }
    QString path = OssFileDialog::getSaveFileName(
        this, tr("Export Nodes to File"), NodeFileFilter,
        QString::fromLatin1(OssResourceInfo::defaultExportNodeGraphPathKey));
    if (path.isEmpty())
        return;
    if (!path.endsWith(NodeFileSuffix, Qt::CaseInsensitive))
        path += NodeFileSuffix;
    QString error;
    if (!OssShaderNetworkIO::saveNodesToXmlFile(nodes, path, &error)) {
        OSS_DEBUG("[ !! ] Export nodes failed: %s", qPrintable(error));
        OssMessageBox::warning(this, tr("Node Export errors"), error);
        return;
    }
    OSS_DEBUG("[ -- ] Exported %d nodes to '%s'", nodes.size(), qPrintable(path));
}

void OssShaderNetworkView::importNodes()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QStringList paths = OssFileDialog::getOpenFileNames(
        this, tr("Import Nodes from File"), NodeFileFilter,
        QString::fromLatin1(OssResourceInfo::defaultImportNodeGraphPathKey));
    if (paths.isEmpty())
        return;
    const QPointF at = mapToScene(creationViewPos());
    OssUndoManager::AutoMacro macro(QStringLiteral("Import nodes"));
    QStringList errors;
    QList<OssSnBaseNode *> imported;
    for (const QString &path : paths) {
        QString error;
        const QList<OssSnBaseNode *> nodes =
            OssShaderNetworkIO::loadNodesFromXmlFile(m_network, path, &error);
        if (nodes.isEmpty()) {
            errors.append(error.isEmpty()
                              ? QStringLiteral("\"%1\": the file holds no nodes").arg(path)
                              : error);
            continue;
        }
        imported += nodes;
    }
    if (!errors.isEmpty()) {
        // Nothing of a failed import stays: not even the files that could be read.
        macro.cancel();
        for (const QString &error : qAsConst(errors))
            OSS_DEBUG("[ !! ] Import nodes failed: %s", qPrintable(error));
        OssMessageBox::warning(this, tr("Node Import errors"), errors.join(QLatin1Char('\n')));
        return;
    }
    OssShaderNetworkManager::instance()->upgradeNetworks({m_network});
    placeInsertedNodes(imported, &at);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
}

// --- finding and inspecting nodes

void OssShaderNetworkView::searchNodesAction()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    OSS_DEBUG("[ !! ] Found %d nodes in the network", nodes.size());
    OssSearchNodeDialog dialog(nodes, this);
    dialog.move(viewport()->mapToGlobal(creationViewPos()));
    const int answer = dialog.exec();
    window()->activateWindow();
    setFocus(Qt::OtherFocusReason);
    if (answer != QDialog::Accepted)
        return;
    OssSnBaseNode *node = dialog.chosenNode();
    if (!node || node->network() != m_network)
        return;
    OssUndoManager::AutoMacro macro(QStringLiteral("Focus on %1").arg(node->name()));
    // Selection lives on the business node; a backdrop's frame follows it like any node.
    m_network->clearSelection();
    node->setSelected(true);
    if (OssNgNode *gui = OssSnNodeGraphViewContext::guiNodeOf(node)) {
        const QRectF rect = gui->sceneBoundingRect();
        // A node that does not fit in the view at this zoom is framed; otherwise only centred.
        if (rect.width() > viewport()->width() / transform().m11() ||
            rect.height() > viewport()->height() / transform().m11())
            frameSelectedNodes();
        else
            centerViewOn(rect.center());
    }
}

void OssShaderNetworkView::printNodeInfo()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> nodes = m_network->selectedNodes();
    if (nodes.isEmpty()) {
        OSS_DEBUG("[ -- ] No node selected to show information about");
        return;
    }
    OssNodeInfoDialog dialog(nodes, this);
    dialog.exec();
}

void OssShaderNetworkView::dumpSelectedNodeInfo()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    OSS_DEBUG("Dump Selected Shader Node Info");
    for (OssSnBaseNode *node : m_network->selectedNodes())
        OSS_DEBUG("%s", qPrintable(node->dumpNodeInfo()));
}

void OssShaderNetworkView::dumpNodeUIAction()
{
    if (!scene()) {
        OSS_DEBUG("scene() is NULL");
        return;
    }
    for (QGraphicsItem *item : scene()->selectedItems()) {
        const QGraphicsObject *object = item->toGraphicsObject();
        QString name = object ? object->objectName() : QString();
        if (const OssNgNode *gui = OssNgNode::fromItem(item))
            name = gui->text();
        const QRectF itemsRect =
            item->childItems().isEmpty() ? item->sceneBoundingRect() : item->childrenBoundingRect();
        OSS_DEBUG("[ !! ] --%s, p(%f, %f), sp(%f, %f), sbr[%s], ibr[%s], sr[%s]", qPrintable(name),
                  item->pos().x(), item->pos().y(), item->scenePos().x(), item->scenePos().y(),
                  qPrintable(rectText(item->sceneBoundingRect())), qPrintable(rectText(itemsRect)),
                  qPrintable(rectText(scene()->sceneRect())));
    }
}

void OssShaderNetworkView::generateMaterialPreview()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    const QList<OssSnBaseNode *> selected = m_network->selectedNodes();
    auto *material =
        selected.size() == 1 ? qobject_cast<OssSnMaterialNode *>(selected.first()) : nullptr;
    if (!material) {
        OSS_DEBUG("Only one nodes needs to be selected for material preview creation");
        return;
    }
    const QString path = QDir::current().filePath(QStringLiteral("MaterialPreview.png"));
    if (!material->generateMaterialThumbnail(path)) {
        OSS_DEBUG("[ !! ] Could not write the material preview '%s'", qPrintable(path));
        OssMessageBox::warning(this, tr("Thumbnail Generation Error"),
                               tr("Could not write the material preview \"%1\".").arg(path));
    }
}

void OssShaderNetworkView::setImageSetByNameAction()
{
    if (!m_network) {
        OSS_DEBUG("m_network is NULL");
        return;
    }
    QString name;
    if (OssApplication::hasDialogAnswer()) {
        name = OssApplication::takeDialogAnswer().toString();
    } else if (OssApplication::popupsAllowed()) {
        bool ok = false;
        name = QInputDialog::getText(this, tr("Image Set Name"), tr("Image Set Name :"),
                                     QLineEdit::Normal, QString(), &ok);
        if (!ok)
            return;
    }
    name = name.trimmed();
    if (name.isEmpty())
        return;
    OssShadingGroup *group = m_network->rootNetwork()->shadingGroup();
    OssChannel *imageSet = group ? group->channel(name) : nullptr;
    if (!imageSet) {
        const QString error = tr("There is no image set \"%1\" in this shading group.").arg(name);
        OSS_DEBUG("[ !! ] %s", qPrintable(error));
        OssMessageBox::warning(this, tr("Image Set Name"), error);
        return;
    }
    OssUndoManager::AutoMacro macro(QStringLiteral("Set Image Set %1").arg(name));
    for (OssSnBaseNode *node : m_network->selectedNodes())
        if (auto *imageSetNode = qobject_cast<OssSnImageSetNodeBase *>(node))
            if (imageSetNode->imageSet() != imageSet)
                OssUndoManager::instance()->addUndo(new ImageSetChange(imageSetNode, imageSet));
}
