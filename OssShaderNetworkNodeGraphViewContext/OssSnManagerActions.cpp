#include "OssSnManagerActions.h"

#include "OssSnNodeGraphViewContextManager.h"

#include <OssActionTreeManager.h>
#include <OssShaderNetworkManager.h>

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

    const QString shake = tr("Shake To Extract");
    auto *toggle = new QAction(shake, manager);
    toggle->setStatusTip(shake);
    toggle->setToolTip(shake);
    toggle->setObjectName(shake);
    toggle->setWhatsThis(shake);
    tree->registerAction(QStringLiteral("Ossa/NodeGraph/"), toggle);
    QObject::connect(toggle, &QAction::triggered, manager, &Manager::toggleShakeToExtractEnabled);
}
