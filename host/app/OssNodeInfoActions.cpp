#include "OssNodeInfoActions.h"

#include "OssPluginHost.h"

#include <OssActionTreeManager.h>
#include <OssDebug.h>

#include <QAction>
#include <QPluginLoader>

namespace OssNodeInfoActions {

void file(const OssPluginHost &plugins)
{
    struct Command
    {
        const char *text;
        const char *slot;
    };
    static const Command commands[] = {
        {"Dump Selected Node Info", "dumpSelectedNodeInfo"},
        {"Upgrade Selected Node Info", "upgradeSelectedNodeInfo"},
        {"Upgrade All Node Info", "upgradeAllNodeInfo"},
    };
    const QString folder = QStringLiteral("/Ossa/NodeGraph/");
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    for (const OssPluginHost::LoadedPlugin &plugin : plugins.plugins()) {
        QObject *instance =
            plugin.initialized && plugin.loader ? plugin.loader->instance() : nullptr;
        if (!instance)
            continue;
        for (const Command &command : commands) {
            const QByteArray signature = QByteArray(command.slot) + "()";
            if (instance->metaObject()->indexOfMethod(signature.constData()) < 0 ||
                tree->hasAction(folder + QLatin1String(command.text)))
                continue;
            auto *action = new QAction(QObject::tr(command.text), instance);
            const QByteArray slot = command.slot;
            QObject::connect(action, &QAction::triggered, instance, [instance, slot] {
                if (!QMetaObject::invokeMethod(instance, slot.constData()))
                    OSS_DEBUG("[ !! ] The node graph command %s cannot be run", slot.constData());
            });
            tree->registerAction(folder, action);
        }
    }
}

} // namespace OssNodeInfoActions
