#pragma once

#include "OssCoreModulesExport.h"

#include <OssSerializableObject.h>

#include <QList>

class OssChannel;
class OssEntity;
class OssShaderNetwork;

// A shading group: the geometry it shades (an entity of its project, by name), its shader
// network and its paint channels.
class OSSCOREMODULES_EXPORT OssShadingGroup : public OssSerializableObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName)
    Q_PROPERTY(QString entityName READ entityName WRITE setEntityName)
public:
    explicit OssShadingGroup(const QString &name = QString(), QObject *parent = nullptr);
    QString name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }
    QString entityName() const { return m_entityName; }
    void setEntityName(const QString &name) { m_entityName = name; }
    OssEntity *entity() const;
    OssShaderNetwork *network() const { return m_network; }
    QList<OssChannel *> channels() const { return m_channels; }
    OssChannel *channel(const QString &name) const;
    OssChannel *addChannel(const QString &name);
    // For undo steps: puts a channel (back) at the end of the list, or takes it out; a taken
    // channel has no parent.
    void insertChannelDirect(OssChannel *channel);
    bool takeChannelDirect(OssChannel *channel);

    bool saveObjects(OssSerializer &serializer) override;
    OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer, const QString &name,
                                           const QString &type) override;

private:
    QString m_name;
    QString m_entityName;
    OssShaderNetwork *m_network = nullptr;
    QList<OssChannel *> m_channels;
};
