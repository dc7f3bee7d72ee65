#pragma once

#include "OssCoreModulesExport.h"
#include "OssImageUniqueId.h"

#include <QList>
#include <QMetaType>
#include <QString>

// A list of image ids, as node attributes hold them ("TileImage", "frontImage", ...).
class OSSCOREMODULES_EXPORT OssImageList
{
public:
    OssImageList() = default;
    explicit OssImageList(const QList<OssImageUniqueId> &ids) : m_ids(ids) {}
    QList<OssImageUniqueId> ids() const { return m_ids; }
    void append(const OssImageUniqueId &id) { m_ids.append(id); }
    int size() const { return m_ids.size(); }
    bool operator==(const OssImageList &other) const { return m_ids == other.m_ids; }
    // The ids joined by newlines (the text form saved in projects).
    QString toString() const;
    static OssImageList fromString(const QString &text);
    // Makes the type known to QVariant with its text conversions.
    static void registerType();

private:
    QList<OssImageUniqueId> m_ids;
};

Q_DECLARE_METATYPE(OssImageList)
