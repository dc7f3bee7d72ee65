#include "OssPluginHost.h"

#include <OssDebug.h>
#include <OssPluginInterface.h>

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

#include <algorithm>

OssPluginHost::OssPluginHost(QObject *parent) : QObject(parent) {}

OssPluginHost::~OssPluginHost()
{
    unloadAll();
}

QString OssPluginHost::pluginDirectory(const QString &explicitDirectory)
{
    if (!explicitDirectory.isEmpty())
        return explicitDirectory;
    const QString fromEnvironment = qEnvironmentVariable("OSSA_PLUGIN_DIR");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QCoreApplication::applicationDirPath() + QStringLiteral("/plugins");
}

void OssPluginHost::skip(const QString &fileName, const QString &reason)
{
    m_problems.append(QStringLiteral("%1: %2").arg(fileName, reason));
    OSS_DEBUG("[ !! ] Plug-in '%s' skipped: %s", qPrintable(fileName), qPrintable(reason));
}

void OssPluginHost::sortForInitialization(QList<LoadedPlugin> &plugins)
{
    std::stable_sort(plugins.begin(), plugins.end(),
                     [](const LoadedPlugin &a, const LoadedPlugin &b) {
                         if (a.priority != b.priority)
                             return a.priority < b.priority;
                         return a.fileName < b.fileName;
                     });
}

int OssPluginHost::loadAll(const QString &directory)
{
    QDir folder(directory);
    if (!folder.exists()) {
        skip(directory, QStringLiteral("the plug-in folder does not exist"));
        return 0;
    }
    QList<LoadedPlugin> found;
    const QStringList files = folder.entryList(QDir::Files, QDir::Name);
    for (const QString &file : files) {
        const QString path = folder.absoluteFilePath(file);
        if (!QLibrary::isLibrary(path))
            continue;
        auto *loader = new QPluginLoader(path, this);
        // The interface id is read from the metadata before any code of the file runs.
        const QJsonObject metaData = loader->metaData();
        if (metaData.isEmpty()) {
            skip(file, QStringLiteral("no plug-in metadata (%1)").arg(loader->errorString()));
            delete loader;
            continue;
        }
        const QString iid = metaData.value(QStringLiteral("IID")).toString();
        if (iid != QLatin1String(OssPluginInterface_iid)) {
            skip(file, QStringLiteral("interface id '%1' is not '%2'")
                           .arg(iid, QLatin1String(OssPluginInterface_iid)));
            delete loader;
            continue;
        }
        QObject *instance = loader->instance();
        auto *plugin = qobject_cast<OssPluginInterface *>(instance);
        if (!plugin) {
            skip(file, instance ? QStringLiteral("the instance is not a host plug-in")
                                : QStringLiteral("cannot load: %1").arg(loader->errorString()));
            loader->unload();
            delete loader;
            continue;
        }
        LoadedPlugin entry;
        entry.fileName = file;
        entry.name = plugin->name();
        entry.description = plugin->description();
        entry.version = plugin->version();
        entry.priority = plugin->initializePriority();
        entry.plugin = plugin;
        entry.loader = loader;
        found.append(entry);
    }
    sortForInitialization(found);
    int initialized = 0;
    for (LoadedPlugin &entry : found) {
        entry.initialized = entry.plugin->initialize();
        if (entry.initialized) {
            ++initialized;
            OSS_DEBUG("[ -- ] Plug-in '%s' loaded from '%s'", qPrintable(entry.name),
                      qPrintable(entry.fileName));
        } else {
            skip(entry.fileName, QStringLiteral("initialize() failed"));
        }
        m_plugins.append(entry);
    }
    return initialized;
}

void OssPluginHost::unloadAll()
{
    for (int i = m_plugins.size() - 1; i >= 0; --i)
        if (m_plugins.at(i).initialized && m_plugins.at(i).plugin)
            m_plugins.at(i).plugin->uninitialize();
    // The libraries stay mapped: Qt keeps plug-in instances alive until the process ends.
    m_plugins.clear();
}
