#include "OssSerializableObject.h"

#include "OssObjectReferenceManager.h"
#include "OssSerializer.h"

OssSerializableObject::OssSerializableObject(QObject *parent)
    : QObject(parent), m_uuid(QUuid::createUuid())
{
    OssObjectReferenceManager::instance()->registerObject(m_uuid, this);
}

OssSerializableObject::~OssSerializableObject()
{
    OssObjectReferenceManager::instance()->deregisterObject(m_uuid, this);
}

QString OssSerializableObject::uuidString() const
{
    return m_uuid.toString();
}

void OssSerializableObject::setUuid(const QUuid &uuid)
{
    if (uuid.isNull() || uuid == m_uuid)
        return;
    OssObjectReferenceManager::instance()->deregisterObject(m_uuid, this);
    m_uuid = uuid;
    OssObjectReferenceManager::instance()->registerObject(m_uuid, this);
}

void OssSerializableObject::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    emit selectedChanged(selected);
}

int OssSerializableObject::indexOfUserAttribute(const QString &name) const
{
    for (int i = 0; i < m_userAttributes.size(); ++i) {
        if (m_userAttributes.at(i).name() == name)
            return i;
    }
    return -1;
}

OssCustomAttribute OssSerializableObject::userAttribute(const QString &name) const
{
    const int index = indexOfUserAttribute(name);
    return index < 0 ? OssCustomAttribute() : m_userAttributes.at(index);
}

bool OssSerializableObject::exists(const QString &name) const
{
    return indexOfUserAttribute(name) >= 0;
}

void OssSerializableObject::setUserAttribute(const OssCustomAttribute &attribute, bool notify)
{
    if (!attribute.isValid())
        return;
    const int index = indexOfUserAttribute(attribute.name());
    if (index < 0)
        m_userAttributes.append(attribute);
    else
        m_userAttributes[index] = attribute;
    if (notify) {
        userAttributeChangedHook(attribute);
        emit userAttributeChanged(attribute);
    }
}

bool OssSerializableObject::removeUserAttribute(const QString &name, bool notify)
{
    const int index = indexOfUserAttribute(name);
    if (index < 0)
        return false;
    m_userAttributes.removeAt(index);
    if (notify) {
        userAttributeRemovedHook(name);
        emit userAttributeRemoved(name);
    }
    return true;
}

bool OssSerializableObject::save(OssSerializer &serializer, const QString &name,
                                 const OssStringMap &attributes)
{
    return serializer.saveObject(this, name, attributes);
}

bool OssSerializableObject::saveObjects(OssSerializer &)
{
    return true;
}

OssSerializableObject *OssSerializableObject::onLoadSubObject(OssDeserializer &, const QString &,
                                                              const QString &)
{
    return nullptr;
}

void OssSerializableObject::onLoadCollectionObject(const QString &, const QString &,
                                                   const QString &, int, const OssStringMap &)
{}

void OssSerializableObject::onEndCollection(const QString &, const QString &, const QString &) {}

bool OssSerializableObject::onLoadCollection(const QString &, const QString &, const QString &, int,
                                             const OssStringMap &)
{
    return true;
}
