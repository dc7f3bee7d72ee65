#include "OssResourceInfo.h"

#include <QDir>

const char *const OssResourceInfo::defaultGizmoPathKey = "defaultGizmoPath";
const char *const OssResourceInfo::defaultExportNodeGraphPathKey = "defaultExportNodeGraphPath";
const char *const OssResourceInfo::defaultImportNodeGraphPathKey = "defaultImportNodeGraphPath";

OssResourceInfo *OssResourceInfo::instance()
{
    static OssResourceInfo *info = new OssResourceInfo;
    return info;
}

OssResourceInfo::OssResourceInfo(QObject *parent) : QObject(parent) {}

void OssResourceInfo::setResourceRoot(const QString &root)
{
    m_root = root;
}

QString OssResourceInfo::resourceRoot() const
{
    if (!m_root.isEmpty())
        return m_root;
    const QString fromEnvironment = qEnvironmentVariable("OSSA_RESOURCE_DIR");
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
    return QStringLiteral(OSS_SOURCE_RESOURCE_DIR);
}

QString OssResourceInfo::iconPath() const
{
    return resourceRoot() + QStringLiteral("/icons");
}

QString OssResourceInfo::nodeTypePath() const
{
    return resourceRoot() + QStringLiteral("/nodetypes");
}

QString OssResourceInfo::projectPath() const
{
    return resourceRoot() + QStringLiteral("/projects");
}

QString OssResourceInfo::path(const QString &key) const
{
    return m_paths.value(key, QDir::homePath());
}

void OssResourceInfo::setPath(const QString &key, const QString &folder)
{
    m_paths.insert(key, folder);
}
