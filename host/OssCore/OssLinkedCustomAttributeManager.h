#pragma once

#include "OssCoreExport.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPair>
#include <QPointer>
#include <QString>

// Links between an owner's attribute (a group node's knob) and attributes of other objects (the
// nodes inside the group the knob drives). Links to or from a destroyed object disappear.
class OSSCORE_EXPORT OssLinkedCustomAttributeManager : public QObject
{
    Q_OBJECT
public:
    using Link = QPair<QPointer<QObject>, QString>;

    static OssLinkedCustomAttributeManager *instance();

    // Adds a link (no duplicates); false when an object is null or the link exists.
    bool link(QObject *owner, const QString &attribute, QObject *target,
              const QString &targetAttribute);
    bool unlink(QObject *owner, const QString &attribute, QObject *target,
                const QString &targetAttribute);
    // Removes every link of Owner's Attribute and returns them.
    QList<Link> unlinkAll(QObject *owner, const QString &attribute);
    // Moves the links of Owner's attribute to a new attribute name (a knob renamed).
    void renameAttribute(QObject *owner, const QString &attribute, const QString &newName);
    // The (object, attribute) pairs linked to Owner's Attribute, in the order they were linked.
    QList<Link> links(const QObject *owner, const QString &attribute) const;
    // The owner attributes that drive Target's attribute.
    QList<Link> linkedFrom(const QObject *target, const QString &targetAttribute) const;

signals:
    void linksChanged(QObject *owner, const QString &attribute);

private:
    explicit OssLinkedCustomAttributeManager(QObject *parent = nullptr);
    static QString key(const QObject *owner, const QString &attribute);
    void watch(QObject *object);
    void forget(QObject *object);

    struct Entry
    {
        QPointer<QObject> owner;
        QString attribute;
        QList<Link> links;
    };
    QHash<QString, Entry> m_entries;
    QHash<QObject *, int> m_watched;
};
