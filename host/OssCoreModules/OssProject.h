#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QList>
#include <QStringList>

class OssEntity;
class OssShaderNetwork;
class OssShadingGroup;

// An open project: its shading groups, each with a network.
class OSSCOREMODULES_EXPORT OssProject : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
public:
    explicit OssProject(QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString filePath() const { return m_filePath; }
    void setFilePath(const QString &path) { m_filePath = path; }

    QList<OssEntity *> entities() const { return m_entities; }
    OssEntity *entity(const QString &name) const;
    // The entity of that name, made when missing.
    OssEntity *addEntity(const QString &name);
    QList<OssShadingGroup *> shadingGroups() const { return m_shadingGroups; }
    OssShadingGroup *addShadingGroup(const QString &name, const QString &entityName);
    QList<OssShaderNetwork *> networks() const;
    QStringList loadWarnings() const;

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

private:
    QString m_name;
    QString m_filePath;
    QList<OssEntity *> m_entities;
    QList<OssShadingGroup *> m_shadingGroups;
};
