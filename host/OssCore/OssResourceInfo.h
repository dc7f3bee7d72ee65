#pragma once

#include "OssCoreExport.h"

#include <QHash>
#include <QObject>
#include <QString>

// Where the host's resources live: icons, node-type descriptions, sample projects, and the
// remembered start folders of file dialogs (keyed by resource path keys).
//
// The root is, in order of precedence: setResourceRoot(), the environment variable
// OSSA_RESOURCE_DIR, the folder "resources" of the source tree the host was built from.
class OSSCORE_EXPORT OssResourceInfo : public QObject
{
    Q_OBJECT
public:
    static OssResourceInfo *instance();

    static const char *const defaultGizmoPathKey;
    static const char *const defaultExportNodeGraphPathKey;
    static const char *const defaultImportNodeGraphPathKey;

    void setResourceRoot(const QString &root);
    QString resourceRoot() const;
    QString iconPath() const;
    QString nodeTypePath() const;
    QString projectPath() const;

    // The start folder remembered under a resource path key (the user's home by default).
    QString path(const QString &key) const;
    void setPath(const QString &key, const QString &folder);

private:
    explicit OssResourceInfo(QObject *parent = nullptr);
    QString m_root;
    QHash<QString, QString> m_paths;
};
