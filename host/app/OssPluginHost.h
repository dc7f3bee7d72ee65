#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

class OssPluginInterface;
class QPluginLoader;

// Finds the host's plug-ins in a folder, loads those whose metadata names the host's plug-in
// interface, and initialises them in ascending initializePriority() (file name order on ties).
// Files that are not plug-ins, have another interface id or fail to load are logged and skipped.
class OssPluginHost : public QObject
{
    Q_OBJECT
public:
    struct LoadedPlugin
    {
        QString fileName;
        QString name;
        QString description;
        int version = 0;
        int priority = 0;
        bool initialized = false;
        OssPluginInterface *plugin = nullptr;
        QPluginLoader *loader = nullptr;
    };

    explicit OssPluginHost(QObject *parent = nullptr);
    ~OssPluginHost() override;

    // The folder: Explicit when given, else $OSSA_PLUGIN_DIR, else "plugins" beside the program.
    static QString pluginDirectory(const QString &explicitDirectory = QString());

    // Loads and initialises every plug-in of the folder; the number initialised.
    int loadAll(const QString &directory);
    // Calls uninitialize() in the reverse order of initialisation.
    void unloadAll();

    QList<LoadedPlugin> plugins() const { return m_plugins; }
    // Why each skipped file was skipped, one line per file.
    QStringList problems() const { return m_problems; }

    // Sorts by priority, then file name.
    static void sortForInitialization(QList<LoadedPlugin> &plugins);

private:
    void skip(const QString &fileName, const QString &reason);

    QList<LoadedPlugin> m_plugins;
    QStringList m_problems;
};
