#include "OssProject.h"

#include "OssSnGroupNode.h"

#include "OssEntity.h"
#include "OssShaderNetwork.h"
#include "OssShadingGroup.h"
#include "OssSnGroupNode.h"

#include <OssDeserializer.h>
#include <OssSerializer.h>

OssProject::OssProject(QObject *parent) : OssSerializableObject(parent) {}

OssShadingGroup *OssProject::addShadingGroup(const QString &name, const QString &entityName)
{
    auto *group = new OssShadingGroup(name, this);
    group->setEntityName(entityName);
    addEntity(entityName);
    m_shadingGroups.append(group);
    return group;
}

OssEntity *OssProject::entity(const QString &name) const
{
    for (OssEntity *candidate : m_entities)
        if (candidate->name() == name)
            return candidate;
    return nullptr;
}

OssEntity *OssProject::addEntity(const QString &name)
{
    if (OssEntity *existing = entity(name))
        return existing;
    auto *created = new OssEntity(name, this);
    m_entities.append(created);
    return created;
}

QList<OssShaderNetwork *> OssProject::networks() const
{
    QList<OssShaderNetwork *> networks;
    for (OssShadingGroup *group : m_shadingGroups)
        networks.append(group->network());
    return networks;
}

QStringList OssProject::loadWarnings() const
{
    // Group networks are read with their nodes and keep warnings of their own.
    QStringList warnings;
    QList<OssShaderNetwork *> pending = networks();
    while (!pending.isEmpty()) {
        OssShaderNetwork *network = pending.takeFirst();
        const bool inGroup = network->parentGroupNode() != nullptr;
        for (const QString &warning : network->loadWarnings())
            warnings.append(inGroup ? QStringLiteral("%1: %2").arg(network->path(), warning)
                                    : warning);
        for (OssSnBaseNode *node : network->nodes())
            if (auto *group = qobject_cast<OssSnGroupNode *>(node))
                pending.append(group->groupNetwork());
    }
    return warnings;
}

bool OssProject::saveObjects(OssSerializer &serializer)
{
    for (OssEntity *entity : qAsConst(m_entities))
        if (!serializer.saveObject(entity, QStringLiteral("entity")))
            return false;
    for (OssShadingGroup *group : qAsConst(m_shadingGroups))
        if (!serializer.saveObject(group, QStringLiteral("shadingGroup")))
            return false;
    return true;
}

OssSerializableObject *OssProject::onLoadSubObject(OssDeserializer &, const QString &name,
                                                   const QString &)
{
    if (name == QLatin1String("entity")) {
        auto *created = new OssEntity(QString(), this);
        m_entities.append(created);
        return created;
    }
    if (name != QLatin1String("shadingGroup"))
        return nullptr;
    auto *group = new OssShadingGroup(QString(), this);
    m_shadingGroups.append(group);
    return group;
}
