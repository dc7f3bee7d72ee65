#include "OssSnManagerActions.h"

#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "OssSnNodeGraphWidget.h"

#include <OssActionTreeManager.h>
#include <OssIcon.h>
#include <OssImage.h>
#include <OssImageManager.h>
#include <OssShaderNetworkManager.h>
#include <OssUndoManager.h>

#include <QAction>
#include <QCoreApplication>

void OssSnManagerActions::create(OssSnNodeGraphViewContextManager *manager)
{
    using Manager = OssSnNodeGraphViewContextManager;
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    const auto tr = [](const char *text) {
        return QCoreApplication::translate("OssSnNodeGraphViewContextManager", text);
    };

    // Autoplace: filed unless an action of that path exists, always offered in the network's
    // global context menu.
    auto *autoplace = new QAction(tr("Autoplace"), manager);
    if (!tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Autoplace")))
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), autoplace);
    QObject::connect(autoplace, &QAction::triggered, manager,
                     qOverload<>(&Manager::beautifyNodesLayout));
    OssShaderNetworkManager::instance()->registerGlobalContextMenuAction(autoplace);

    // The port-list modes, in their numbering; the folder has no trailing slash on purpose.
    const char *const modes[] = {"Expanded", "Stream Collapsed", "Connected Only", "Collapsed"};
    for (int mode = 0; mode < 4; ++mode) {
        const QString text = tr("Switch to %1 mode").arg(tr(modes[mode]), 0, QLatin1Char(' '));
        auto *action = new QAction(text, manager);
        action->setProperty("Mode", mode);
        action->setToolTip(text);
        action->setWhatsThis(text);
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph"), action);
        QObject::connect(action, &QAction::triggered, manager,
                         &Manager::onNodeCollapsedModeChanged);
    }

    // Selected images of the image manager become nodes, offered in its context menu.
    const struct
    {
        const char *text;
        const char *pathKey;
        const char *toolTip;
    } imageActions[] = {
        {"As Tiled", "Procedural/Pattern/Tiled", "Add to Nodegraph as Tiled"},
        {"As TriPlanar", "Environment/Tri Planar Projection", "Add to Nodegraph as TriPlanar"},
    };
    for (const auto &entry : imageActions) {
        auto *action = new QAction(tr(entry.text), manager);
        action->setData(QString::fromLatin1(entry.pathKey));
        action->setToolTip(tr(entry.toolTip));
        OssImageManager::instance()->registerGlobalContextMenuAction(
            action, QStringLiteral("Add to Nodegraph"),
            OssIcon::getIconPath(QStringLiteral("NodeGraph.png")));
        QObject::connect(action, &QAction::triggered, manager, &Manager::addImageAs);
    }

    const QString shake = tr("Shake To Extract");
    auto *toggle = new QAction(shake, manager);
    toggle->setStatusTip(shake);
    toggle->setToolTip(shake);
    toggle->setObjectName(shake);
    toggle->setWhatsThis(shake);
    tree->registerAction(QStringLiteral("Ossa/NodeGraph/"), toggle);
    QObject::connect(toggle, &QAction::triggered, manager, &Manager::toggleShakeToExtractEnabled);
}

void OssSnNodeGraphViewContextManager::addImageAs()
{
    auto *action = qobject_cast<QAction *>(sender());
    if (!action || action->data().toString().isEmpty() || !m_nodeGraphWidget)
        return;
    OssShaderNetworkView *view = currentView();
    if (!view)
        return;
    const QString pathKey = action->data().toString();
    const QList<OssImage *> images = OssImageManager::instance()->selectedImages();
    if (images.isEmpty())
        return;
    // All the images of one request are one undo step.
    OssUndoManager::AutoMacro macro(QStringLiteral("Add to Nodegraph"));
    for (OssImage *image : images)
        view->createNodeFromDropImage(image, pathKey, QPointF(0, 0));
}
