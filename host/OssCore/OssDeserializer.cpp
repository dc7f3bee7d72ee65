#include "OssDeserializer.h"

#include "OssSerializableObject.h"
#include "OssSerializer.h"

#include <QFile>
#include <QFileInfo>
#include <QMetaProperty>
#include <QXmlStreamReader>

#include <QHash>
#include <QStringView>

#include <algorithm>
#include <cctype>
#include <deque>
#include <vector>

// The parsed document: loading works on this tree so a broken file is known to be broken before
// any object changes.
struct OssXmlElement
{
    QString name;
    OssStringMap attributes;
    QString text;
    std::vector<const OssXmlElement *> children;
};

// The elements of a document live in one container that frees them together; a project of
// thousands of nodes has hundreds of thousands of elements.
struct OssXmlDocument
{
    std::deque<OssXmlElement> elements;
    const OssXmlElement *root = nullptr;
};

namespace {

// Element names, attribute names and short values repeat throughout a document ("property",
// "type", "QString", "true", port names...): each distinct text is allocated once and shared.
class StringPool
{
public:
    QString get(QStringView text)
    {
        // Longer texts (UUIDs, descriptions) are mostly unique; looking them up costs more than
        // it saves.
        constexpr qsizetype Longest = 24;
        if (text.size() > Longest)
            return text.toString();
        const auto found = m_strings.constFind(text);
        if (found != m_strings.constEnd())
            return found.value();
        const QString made = text.toString();
        // The key views the value's own characters, which stay put while the value is held.
        m_strings.insert(QStringView(made), made);
        return made;
    }

private:
    QHash<QStringView, QString> m_strings;
};

// Deeper nesting than this is refused instead of recursing without bound on hostile input.
constexpr int MaximumDepth = 512;

// The key-value entries of a collection or collection element: written compactly as XML
// attributes (of the element itself, or of an <attributes> child of a collection), or as
// <attribute key=".." value=".."/> children.
OssStringMap attributeChildren(const OssXmlElement &element, bool ownAttributes)
{
    OssStringMap result;
    if (ownAttributes)
        result = element.attributes;
    for (const OssXmlElement *child : element.children) {
        if (child->name == QLatin1String("attribute"))
            result.insert(child->attributes.value(QStringLiteral("key")),
                          child->attributes.value(QStringLiteral("value")));
        else if (child->name == QLatin1String("attributes"))
            for (const OssStringMap::Entry &entry : child->attributes)
                result.insert(entry.first, entry.second);
    }
    return result;
}

} // namespace

OssDeserializer::OssDeserializer() = default;
OssDeserializer::~OssDeserializer() = default;

std::unique_ptr<OssXmlDocument> OssDeserializer::parse(const QByteArray &data, QString *error)
{
    auto fail = [&](const QString &message) {
        if (error)
            *error = QStringLiteral("\"%1\": %2").arg(m_source, message);
        return std::unique_ptr<OssXmlDocument>();
    };
    // (Checked without copying the data: a project can be tens of megabytes.)
    if (std::all_of(data.cbegin(), data.cend(), [](char c) { return isspace(uchar(c)) != 0; }))
        return fail(QStringLiteral("the file is empty"));

    QXmlStreamReader reader(data);
    auto parsed = std::make_unique<OssXmlDocument>();
    StringPool pool;
    std::vector<OssXmlElement *> stack;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartElement) {
            if (static_cast<int>(stack.size()) >= MaximumDepth)
                return fail(QStringLiteral("elements are nested deeper than %1 levels at line %2")
                                .arg(MaximumDepth)
                                .arg(reader.lineNumber()));
            // A second top-level element is a well-formedness error the reader reports.
            OssXmlElement *element = &parsed->elements.emplace_back();
            element->name = pool.get(reader.name());
            const QXmlStreamAttributes attributes = reader.attributes();
            for (const QXmlStreamAttribute &attribute : attributes)
                element->attributes.insert(pool.get(attribute.name()), pool.get(attribute.value()));
            if (stack.empty())
                parsed->root = element;
            else
                stack.back()->children.push_back(element);
            stack.push_back(element);
        } else if (token == QXmlStreamReader::EndElement) {
            stack.pop_back();
        } else if (token == QXmlStreamReader::Characters && !stack.empty() &&
                   !reader.isWhitespace()) {
            OssXmlElement *element = stack.back();
            if (element->text.isEmpty())
                element->text = pool.get(reader.text());
            else
                element->text += reader.text();
        }
    }
    if (reader.hasError()) {
        const QString what = reader.error() == QXmlStreamReader::PrematureEndOfDocumentError
                                 ? QStringLiteral("the file is truncated (%1)")
                                 : QStringLiteral("the file is not a valid document (%1)");
        return fail(what.arg(reader.errorString()) + QStringLiteral(" at line %1, column %2")
                                                         .arg(reader.lineNumber())
                                                         .arg(reader.columnNumber()));
    }
    const OssXmlElement *document = parsed->root;
    if (!document)
        return fail(QStringLiteral("the file holds no document"));
    if (document->name != QLatin1String("OssaDocument"))
        return fail(QStringLiteral("the file is not an Ossa document (its root element is <%1>)")
                        .arg(document->name));
    bool isNumber = false;
    const int version =
        document->attributes.value(QStringLiteral("formatVersion")).toInt(&isNumber);
    if (!isNumber || version < 1)
        return fail(QStringLiteral("the document has no valid format version"));
    if (version > OssSerializer::FormatVersion)
        return fail(QStringLiteral("the document has format version %1, newer than the "
                                   "supported version %2")
                        .arg(version)
                        .arg(OssSerializer::FormatVersion));
    int objects = 0;
    for (const OssXmlElement *child : document->children)
        objects += child->name == QLatin1String("object") ? 1 : 0;
    if (objects != 1)
        return fail(
            QStringLiteral("the document holds %1 top-level objects instead of one").arg(objects));
    return parsed;
}

bool OssDeserializer::loadFromFile(const QString &path, OssSerializableObject *root, QString *error)
{
    m_source = path;
    QFile file(path);
    if (!QFileInfo::exists(path)) {
        if (error)
            *error = QStringLiteral("\"%1\": the file does not exist").arg(path);
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error =
                QStringLiteral("\"%1\": cannot open the file (%2)").arg(path, file.errorString());
        return false;
    }
    return loadFromData(file.readAll(), root, error, path);
}

bool OssDeserializer::loadFromData(const QByteArray &data, OssSerializableObject *root,
                                   QString *error, const QString &source,
                                   const QString &expectedType)
{
    m_source = source;
    m_warnings.clear();
    m_restoredUuids.clear();
    if (!root) {
        if (error)
            *error = QStringLiteral("\"%1\": nothing to load into").arg(source);
        return false;
    }
    const std::unique_ptr<OssXmlDocument> parsed = parse(data, error);
    if (!parsed)
        return false;
    for (const OssXmlElement *child : parsed->root->children) {
        if (child->name != QLatin1String("object"))
            continue;
        const QString type = child->attributes.value(QStringLiteral("type"));
        if (!expectedType.isEmpty() && type != expectedType) {
            if (error)
                *error = QStringLiteral("\"%1\": the document holds a %2, not a %3")
                             .arg(source, type, expectedType);
            return false;
        }
        apply(*child, root);
    }
    return true;
}

bool OssDeserializer::inspect(const QByteArray &data, QString *type, QString *error,
                              const QString &source)
{
    m_source = source;
    const std::unique_ptr<OssXmlDocument> parsed = parse(data, error);
    if (!parsed)
        return false;
    for (const OssXmlElement *child : parsed->root->children) {
        if (child->name == QLatin1String("object") && type)
            *type = child->attributes.value(QStringLiteral("type"));
    }
    return true;
}

void OssDeserializer::applyProperty(OssSerializableObject *object, const QString &name,
                                    const QString &text, const QString &typeName)
{
    const QMetaObject *meta = object->metaObject();
    const int index = meta->indexOfProperty(name.toLatin1().constData());
    if (index < 0 || !meta->property(index).isWritable()) {
        m_warnings.append(QStringLiteral("%1 has no writable property \"%2\"")
                              .arg(QString::fromLatin1(meta->className()), name));
        return;
    }
    const QMetaProperty property = meta->property(index);
    QString type = typeName;
    if (type.isEmpty())
        type = property.isEnumType() ? QStringLiteral("int")
                                     : QString::fromLatin1(property.typeName());
    bool ok = false;
    const QVariant value = OssSerializer::textToVariant(text, type, &ok);
    if (!ok || !property.write(object, value))
        m_warnings.append(QStringLiteral("property \"%1\" of %2: cannot use \"%3\"")
                              .arg(name, QString::fromLatin1(meta->className()), text));
}

void OssDeserializer::apply(const OssXmlElement &element, OssSerializableObject *object)
{
    if (m_restoreUuids) {
        const QUuid uuid(element.attributes.value(QStringLiteral("uuid")));
        if (!uuid.isNull() && m_restoredUuids.contains(uuid)) {
            m_warnings.append(
                QStringLiteral("%1 \"%2\" repeats the UUID %3 of an earlier object; it was "
                               "given a new one")
                    .arg(QString::fromLatin1(object->metaObject()->className()),
                         element.attributes.value(QStringLiteral("name")), uuid.toString()));
        } else if (!uuid.isNull()) {
            m_restoredUuids.insert(uuid);
            object->setUuid(uuid);
        }
    }

    for (const OssXmlElement *childPointer : element.children) {
        const OssXmlElement &child = *childPointer;
        const QString childName = child.attributes.value(QStringLiteral("name"));
        if (child.name == QLatin1String("properties")) {
            // Format 2: every stored property as an attribute, typed by the property itself.
            for (const OssStringMap::Entry &entry : child.attributes)
                applyProperty(object, entry.first, entry.second, QString());
        } else if (child.name == QLatin1String("property")) {
            applyProperty(object, childName, child.text,
                          child.attributes.value(QStringLiteral("type")));
        } else if (child.name == QLatin1String("userAttribute")) {
            bool ok = false;
            const QVariant value = OssSerializer::textToVariant(
                child.text, child.attributes.value(QStringLiteral("type")), &ok);
            if (!ok) {
                m_warnings.append(QStringLiteral("user attribute \"%1\": cannot use \"%2\" as %3")
                                      .arg(childName, child.text,
                                           child.attributes.value(QStringLiteral("type"))));
                continue;
            }
            object->setUserAttribute(OssCustomAttribute(
                childName, value, child.attributes.value(QStringLiteral("prettyName")),
                child.attributes.value(QStringLiteral("visible")) != QLatin1String("0")));
        } else if (child.name == QLatin1String("collection")) {
            const QString type = child.attributes.value(QStringLiteral("type"));
            const QString elementType = child.attributes.value(QStringLiteral("elementType"));
            const int count = child.attributes.value(QStringLiteral("count")).toInt();
            if (!object->onLoadCollection(childName, type, elementType, count,
                                          attributeChildren(child, false)))
                continue;
            int index = 0;
            for (const OssXmlElement *item : child.children) {
                if (item->name == QLatin1String("element")) {
                    object->onLoadCollectionObject(childName, type, elementType, index++,
                                                   attributeChildren(*item, true));
                }
            }
            object->onEndCollection(childName, type, elementType);
        } else if (child.name == QLatin1String("object")) {
            m_currentUuid = child.attributes.value(QStringLiteral("uuid"));
            m_currentAttributes = attributeChildren(child, false);
            OssSerializableObject *sub = object->onLoadSubObject(
                *this, childName, child.attributes.value(QStringLiteral("type")));
            if (sub)
                apply(child, sub);
        }
        // Anything else belongs to a later or foreign writer and is skipped.
    }
    object->onLoadFinished();
}
