#pragma once

#include "OssCoreExport.h"
#include "OssStringMap.h"

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <memory>

class OssSerializableObject;
class QXmlStreamWriter;

// Writes serialisable objects as XML.
//
// <OssaDocument formatVersion="1">
//   <object name=".." type="ClassName" uuid="{..}" [attributes..]>
//     <property name=".." type="..">value</property>
//     <userAttribute name=".." prettyName=".." visible="1" type="..">value</userAttribute>
//     <collection name=".." count="N" type=".." elementType="..">
//       <attribute key=".." value=".."/> ...
//       <element><attribute .../></element> ...
//     </collection>
//     <object ...> (sub-objects) </object>
//   </object>
// </OssaDocument>
class OSSCORE_EXPORT OssSerializer
{
public:
    static constexpr int FormatVersion = 2;

    OssSerializer();
    ~OssSerializer();
    OssSerializer(const OssSerializer &) = delete;
    OssSerializer &operator=(const OssSerializer &) = delete;

    // Writes Root as the document's one top-level object.
    QByteArray saveToData(OssSerializableObject *root,
                          const QString &name = QStringLiteral("root"));
    // Writes to a file through a temporary file, so a failed save leaves the old file intact;
    // with a backup suffix the file it replaces is kept as path + suffix.
    bool saveToFile(const QString &path, OssSerializableObject *root, QString *error,
                    const QString &name = QStringLiteral("root"),
                    const QString &backupSuffix = QString());

    // Used from saveObjects(): a named sub-object of the object being written.
    bool saveObject(OssSerializableObject *object, const QString &name,
                    const OssStringMap &attributes = OssStringMap());
    void beginCollection(const QString &name, int count, const QString &type,
                         const QString &elementType, const OssStringMap &attributes);
    // One element of the open collection.
    void addCollectionElement(const OssStringMap &attributes);
    void endCollection();

    // Text forms of property and attribute values (also used by the deserializer).
    static QString variantToText(const QVariant &value);
    static QVariant textToVariant(const QString &text, const QString &typeName, bool *ok = nullptr);

private:
    void writeObject(OssSerializableObject *object, const QString &name,
                     const OssStringMap &attributes);

    QByteArray m_buffer;
    std::unique_ptr<QXmlStreamWriter> m_writer;
    int m_openCollections = 0;
};
