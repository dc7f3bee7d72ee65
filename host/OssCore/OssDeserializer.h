#pragma once

#include "OssCoreExport.h"
#include "OssStringMap.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QUuid>

#include <memory>

class OssSerializableObject;
struct OssXmlElement;
struct OssXmlDocument;

// Reads what OssSerializer wrote. The whole document is parsed and checked before the first
// object is touched: a missing, empty, malformed, truncated or newer-format file changes nothing
// and reports the file and the problem. Unknown elements inside a known format are skipped.
class OSSCORE_EXPORT OssDeserializer
{
public:
    OssDeserializer();
    ~OssDeserializer();
    OssDeserializer(const OssDeserializer &) = delete;
    OssDeserializer &operator=(const OssDeserializer &) = delete;

    bool loadFromFile(const QString &path, OssSerializableObject *root, QString *error);
    // Source names the data in messages (a file name, "clipboard", ...).
    // With ExpectedType, a document whose top-level object is of another class is refused
    // before anything is loaded.
    bool loadFromData(const QByteArray &data, OssSerializableObject *root, QString *error,
                      const QString &source = QStringLiteral("data"),
                      const QString &expectedType = QString());

    // Checks a document without loading it; fills Type with the top-level object's class name.
    bool inspect(const QByteArray &data, QString *type, QString *error,
                 const QString &source = QStringLiteral("data"));

    // Whether objects take the UUIDs saved in the file (true, the default, for projects) or keep
    // their own (for pasted or imported copies that sit beside the originals).
    void setRestoreUuids(bool restore) { m_restoreUuids = restore; }

    // The UUID text and the attributes the object being offered had in the file (valid during
    // onLoadSubObject).
    QString currentUuid() const { return m_currentUuid; }
    OssStringMap currentAttributes() const { return m_currentAttributes; }
    // Messages about parts of the document that were skipped while loading (values that did not
    // convert, properties the object does not have).
    QStringList warnings() const { return m_warnings; }
    // The source being read.
    QString source() const { return m_source; }

private:
    std::unique_ptr<OssXmlDocument> parse(const QByteArray &data, QString *error);
    void apply(const OssXmlElement &element, OssSerializableObject *object);
    // Writes one saved property, converted from Text as TypeName (empty: the property's own
    // type); a missing property or a value that does not convert becomes a warning.
    void applyProperty(OssSerializableObject *object, const QString &name, const QString &text,
                       const QString &typeName);

    QString m_source;
    QString m_currentUuid;
    OssStringMap m_currentAttributes;
    QStringList m_warnings;
    // The UUIDs given out while reading one document: a repeated one stays with its first
    // object, so that references keep meaning one object.
    QSet<QUuid> m_restoredUuids;
    bool m_restoreUuids = true;
};
