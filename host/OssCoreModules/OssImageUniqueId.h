#pragma once

#include "OssCoreModulesExport.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QUuid>

// The unique id of a loaded image.
class OSSCOREMODULES_EXPORT OssImageUniqueId
{
public:
    OssImageUniqueId() = default;
    explicit OssImageUniqueId(const QUuid &uuid) : m_uuid(uuid) {}
    static OssImageUniqueId create() { return OssImageUniqueId(QUuid::createUuid()); }
    // An id from its text; invalid for anything else.
    static OssImageUniqueId fromString(const QString &text);
    // The ids of a list separated by newlines or commas; invalid entries are left out.
    static QList<OssImageUniqueId> imageIdListFromString(const QString &text);
    bool isValid() const { return !m_uuid.isNull(); }
    QString toString() const { return m_uuid.toString(); }
    bool operator==(const OssImageUniqueId &other) const { return m_uuid == other.m_uuid; }
    bool operator!=(const OssImageUniqueId &other) const { return !(*this == other); }

private:
    QUuid m_uuid;
};

Q_DECLARE_METATYPE(OssImageUniqueId)
