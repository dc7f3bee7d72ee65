#pragma once

#include "OssCoreExport.h"

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QUuid>

// Resolves objects by UUID. Every OssSerializableObject is known here from construction to
// destruction; other objects can be added by hand.
class OSSCORE_EXPORT OssObjectReferenceManager : public QObject
{
    Q_OBJECT
public:
    static OssObjectReferenceManager *instance();

    void registerObject(const QUuid &uuid, QObject *object);
    void deregisterObject(const QUuid &uuid, QObject *object);

    // The object with that UUID (text with or without braces), or null.
    QObject *getPointer(const QString &reference) const;
    QObject *getPointer(const QUuid &uuid) const;
    int count() const { return m_objects.size(); }

private:
    explicit OssObjectReferenceManager(QObject *parent = nullptr);
    QHash<QUuid, QPointer<QObject>> m_objects;
};
