#pragma once

#include "OssCoreExport.h"
#include "OssCustomAttribute.h"
#include "OssGroupParameterObject.h"
#include "OssStringMap.h"

#include <QList>
#include <QObject>
#include <QUuid>

class OssSerializer;
class OssDeserializer;

// A QObject with a UUID, a selection state, user attributes and a place in the host's files.
//
// Saving writes every stored, writable Qt property of the object, its user attributes, and then
// whatever saveObjects() adds (sub-objects and collections). Loading restores the properties and
// attributes and hands sub-objects and collections to the on-load call-backs.
class OSSCORE_EXPORT OssSerializableObject : public QObject, public OssGroupParameterObject
{
    Q_OBJECT
public:
    explicit OssSerializableObject(QObject *parent = nullptr);
    ~OssSerializableObject() override;

    QUuid uuid() const { return m_uuid; }
    // The UUID with braces; OssObjectReferenceManager resolves it back to this object.
    QString uuidString() const;
    // Replaces the UUID (used when a saved object is read back).
    void setUuid(const QUuid &uuid);

    bool selected() const { return m_selected; }

    // User attributes, in the order they were first set.
    OssCustomAttribute userAttribute(const QString &name) const;
    QList<OssCustomAttribute> userAttributes() const { return m_userAttributes; }
    bool exists(const QString &name) const;
    bool userAttributesExist() const { return !m_userAttributes.isEmpty(); }
    // Adds or replaces an attribute (invalid attributes are ignored). With Notify, emits
    // userAttributeChanged and calls onUserAttributeChanged.
    void setUserAttribute(const OssCustomAttribute &attribute, bool notify = true);
    bool removeUserAttribute(const QString &name, bool notify = true);

    // Saves this object as a named sub-object of the serializer's current object.
    bool save(OssSerializer &serializer, const QString &name,
              const OssStringMap &attributes = OssStringMap());

    // Serialisation call-backs, in the order the host's virtual table lists them.
    // Writes sub-objects and collections after the properties; the base writes nothing.
    virtual bool saveObjects(OssSerializer &serializer);
    // The object into which a named sub-object loads, or null to skip it.
    virtual OssSerializableObject *onLoadSubObject(OssDeserializer &deserializer,
                                                   const QString &name, const QString &type);
    // One element of a collection being read.
    virtual void onLoadCollectionObject(const QString &name, const QString &type,
                                        const QString &elementType, int index,
                                        const OssStringMap &attributes);
    // The end of a collection being read.
    virtual void onEndCollection(const QString &name, const QString &type,
                                 const QString &elementType);
    // The start of a collection; returning false skips its elements.
    virtual bool onLoadCollection(const QString &name, const QString &type,
                                  const QString &elementType, int count,
                                  const OssStringMap &attributes);
    // Called after the whole object (properties, attributes, sub-objects) has been read.
    virtual void onLoadFinished() {}

public slots:
    void setSelected(bool selected);

signals:
    void selectedChanged(bool selected);
    void userAttributeChanged(const OssCustomAttribute &attribute);
    void userAttributeRemoved(const QString &name);

protected:
    // Hooks for subclasses that react to their own attributes.
    virtual void userAttributeChangedHook(const OssCustomAttribute &) {}
    virtual void userAttributeRemovedHook(const QString &) {}

private:
    int indexOfUserAttribute(const QString &name) const;

    QUuid m_uuid;
    bool m_selected = false;
    QList<OssCustomAttribute> m_userAttributes;
};
