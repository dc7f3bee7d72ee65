#include "OssSnNodeCreationActions.h"

#include "ZelGLTextureToken.h"

#include <OssActionTreeManager.h>
#include <OssShaderNetworkManager.h>

#include <QAction>

// Keeps the renderer's texture cache alive while the plug-in is loaded.
static const ZelGLTextureToken s_textureToken;

namespace {
const QString CreateFolder = QStringLiteral("/Ossa/NodeGraph/Create/");
} // namespace

bool OssSnNodeCreationActions::folderAndText(const QString &menuPath, QString *folder,
                                             QString *text)
{
    if (menuPath.isEmpty())
        return false;
    QStringList parts = menuPath.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    if (parts.isEmpty())
        return false;
    *text = parts.takeLast();
    if (!parts.isEmpty() && parts.first().startsWith(QLatin1Char('_')))
        return false;
    *folder = CreateFolder + parts.join(QLatin1Char('/'));
    return true;
}

QList<QAction *> OssSnNodeCreationActions::create(QObject *owner, const char *slot)
{
    QList<QAction *> made;
    QStringList keys = OssShaderNetworkManager::instance()->nodeGraphPathKeys();
    std::sort(keys.begin(), keys.end());
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    for (const QString &key : qAsConst(keys)) {
        QString folder, text;
        if (!folderAndText(OssShaderNetworkManager::instance()->nodeMenuPath(key), &folder, &text))
            continue;
        // The full path is the folder, a slash, and the text: a one-component path gives
        // "/Ossa/NodeGraph/Create//Foo".
        if (tree->hasAction(folder + QLatin1Char('/') + text))
            continue;
        auto *action = new QAction(text, owner);
        action->setData(QVariant(key));
        QObject::connect(action, SIGNAL(triggered()), owner, slot);
        tree->registerAction(folder, action);
        made.append(action);
    }
    return made;
}
