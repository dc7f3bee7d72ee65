#include "OssMaterialPaintManager.h"

#include "OssSnBaseNode.h"

#include <OssUndoManager.h>

#include <QMimeData>
#include <QUrl>

#include <algorithm>

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
