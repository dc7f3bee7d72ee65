#include "OssSerializer.h"

#include "OssFileWriter.h"

#include "OssColor.h"
#include "OssCustomAttribute.h"
#include "OssFileWriter.h"
#include "OssSerializableObject.h"

#include <QBuffer>
#include <QColor>
#include <QDataStream>
#include <QFile>
#include <QFileInfo>
#include <QMetaProperty>
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QSizeF>
#include <QUuid>
#include <QXmlStreamWriter>

namespace {

QString number(double value)
{
    return QString::number(value, 'g', 17);
}

QStringList splitNumbers(const QString &text)
{
    return text.split(QLatin1Char(','), Qt::KeepEmptyParts);
}

bool toDoubles(const QString &text, int expected, double *out)
{
    const QStringList parts = splitNumbers(text);
    if (parts.size() != expected)
        return false;
    for (int i = 0; i < expected; ++i) {
        bool ok = false;
        out[i] = parts.at(i).trimmed().toDouble(&ok);
        if (!ok)
            return false;
    }
    return true;
}

} // namespace

OssSerializer::OssSerializer() = default;
OssSerializer::~OssSerializer() = default;

QString OssSerializer::variantToText(const QVariant &value)
{
    const int type = value.userType();
    switch (type) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QMetaType::Double:
    case QMetaType::Float:
        return number(value.toDouble());
    case QMetaType::QStringList:
        // Each entry is escaped so entries may hold the separator.
        {
            QStringList escaped;
            for (QString entry : value.toStringList())
                escaped.append(entry.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
                                   .replace(QLatin1Char(';'), QLatin1String("\\;")));
            return escaped.join(QLatin1Char(';'));
        }
    case QMetaType::QColor: {
        const QColor color = value.value<QColor>();
        return color.isValid() ? color.name(QColor::HexArgb) : QString();
    }
    case QMetaType::QPoint: {
        const QPoint p = value.toPoint();
        return QStringLiteral("%1,%2").arg(p.x()).arg(p.y());
    }
    case QMetaType::QPointF: {
        const QPointF p = value.toPointF();
        return number(p.x()) + QLatin1Char(',') + number(p.y());
    }
    case QMetaType::QSize: {
        const QSize s = value.toSize();
        return QStringLiteral("%1,%2").arg(s.width()).arg(s.height());
    }
    case QMetaType::QSizeF: {
        const QSizeF s = value.toSizeF();
        return number(s.width()) + QLatin1Char(',') + number(s.height());
    }
    case QMetaType::QRect: {
        const QRect r = value.toRect();
        return QStringLiteral("%1,%2,%3,%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
    }
    case QMetaType::QRectF: {
        const QRectF r = value.toRectF();
        return number(r.x()) + QLatin1Char(',') + number(r.y()) + QLatin1Char(',') +
               number(r.width()) + QLatin1Char(',') + number(r.height());
    }
    case QMetaType::QByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QMetaType::QUuid:
        return value.toUuid().toString();
    default:
        break;
    }
    if (type == qMetaTypeId<OssColor>())
        return value.value<OssColor>().toString();
    if (type == qMetaTypeId<OssUserEnum>())
        return value.value<OssUserEnum>().toString();
    if (value.canConvert<QString>())
        return value.toString();
    // Anything else goes through its data-stream operators, when it has them.
    QByteArray data;
    QDataStream stream(&data, QIODevice::WriteOnly);
    if (QMetaType::save(stream, type, value.constData()))
        return QString::fromLatin1(data.toBase64());
    return QString();
}

QVariant OssSerializer::textToVariant(const QString &text, const QString &typeName, bool *ok)
{
    bool converted = true;
    QVariant result;
    const QByteArray name = typeName.toLatin1();
    const int type = QMetaType::type(name.constData());
    double d[4] = {0, 0, 0, 0};
    switch (type) {
    case QMetaType::Bool:
        converted = text == QLatin1String("true") || text == QLatin1String("false");
        result = text == QLatin1String("true");
        break;
    case QMetaType::Int:
        result = text.toInt(&converted);
        break;
    case QMetaType::UInt:
        result = text.toUInt(&converted);
        break;
    case QMetaType::LongLong:
        result = text.toLongLong(&converted);
        break;
    case QMetaType::ULongLong:
        result = text.toULongLong(&converted);
        break;
    case QMetaType::Double:
        result = text.toDouble(&converted);
        break;
    case QMetaType::Float:
        result = text.toFloat(&converted);
        break;
    case QMetaType::QString:
        result = text;
        break;
    case QMetaType::QStringList: {
        QStringList list;
        if (!text.isEmpty()) {
            QString current;
            for (int i = 0; i < text.size(); ++i) {
                const QChar c = text.at(i);
                if (c == QLatin1Char('\\') && i + 1 < text.size()) {
                    current.append(text.at(++i));
                } else if (c == QLatin1Char(';')) {
                    list.append(current);
                    current.clear();
                } else {
                    current.append(c);
                }
            }
            list.append(current);
        }
        result = list;
        break;
    }
    case QMetaType::QColor:
        result = text.isEmpty() ? QColor() : QColor(text);
        converted = text.isEmpty() || result.value<QColor>().isValid();
        break;
    case QMetaType::QPoint:
        converted = toDoubles(text, 2, d);
        result = QPoint(int(d[0]), int(d[1]));
        break;
    case QMetaType::QPointF:
        converted = toDoubles(text, 2, d);
        result = QPointF(d[0], d[1]);
        break;
    case QMetaType::QSize:
        converted = toDoubles(text, 2, d);
        result = QSize(int(d[0]), int(d[1]));
        break;
    case QMetaType::QSizeF:
        converted = toDoubles(text, 2, d);
        result = QSizeF(d[0], d[1]);
        break;
    case QMetaType::QRect:
        converted = toDoubles(text, 4, d);
        result = QRect(int(d[0]), int(d[1]), int(d[2]), int(d[3]));
        break;
    case QMetaType::QRectF:
        converted = toDoubles(text, 4, d);
        result = QRectF(d[0], d[1], d[2], d[3]);
        break;
    case QMetaType::QByteArray:
        result = QByteArray::fromBase64(text.toLatin1());
        break;
    case QMetaType::QUuid:
        result = QUuid(text);
        converted = !result.toUuid().isNull() || text == QUuid().toString();
        break;
    case QMetaType::UnknownType:
        converted = false;
        break;
    default:
        if (type == qMetaTypeId<OssColor>()) {
            const OssColor color = OssColor::fromString(text, &converted);
            converted = converted || text.isEmpty();
            result = QVariant::fromValue(color);
        } else if (type == qMetaTypeId<OssUserEnum>()) {
            result = QVariant::fromValue(OssUserEnum::fromString(text, &converted));
        } else {
            QVariant fromText(text);
            if (fromText.canConvert(type) && fromText.convert(type)) {
                result = fromText;
            } else {
                QByteArray data = QByteArray::fromBase64(text.toLatin1());
                QDataStream stream(&data, QIODevice::ReadOnly);
                result = QVariant(type, nullptr);
                converted = QMetaType::load(stream, type, result.data()) &&
                            stream.status() == QDataStream::Ok;
            }
        }
        break;
    }
    if (ok)
        *ok = converted;
    return converted ? result : QVariant();
}

QByteArray OssSerializer::saveToData(OssSerializableObject *root, const QString &name)
{
    m_buffer.clear();
    m_writer = std::make_unique<QXmlStreamWriter>(&m_buffer);
    m_writer->setAutoFormatting(true);
    m_writer->setAutoFormattingIndent(1);
    m_writer->writeStartDocument();
    m_writer->writeStartElement(QStringLiteral("OssaDocument"));
    m_writer->writeAttribute(QStringLiteral("formatVersion"), QString::number(FormatVersion));
    if (root)
        writeObject(root, name, OssStringMap());
    m_writer->writeEndElement();
    m_writer->writeEndDocument();
    m_writer.reset();
    QByteArray result;
    result.swap(m_buffer);
    return result;
}

bool OssSerializer::saveToFile(const QString &path, OssSerializableObject *root, QString *error,
                               const QString &name, const QString &backupSuffix)
{
    return OssFileWriter::writeAtomically(path, {saveToData(root, name)}, error, backupSuffix);
}

bool OssSerializer::saveObject(OssSerializableObject *object, const QString &name,
                               const OssStringMap &attributes)
{
    if (!m_writer || !object)
        return false;
    writeObject(object, name, attributes);
    return true;
}

namespace {

// Keys that are XML names are written as XML attributes of one element (compact, fast to
// read); a map with any other key is written as <attribute key=".." value=".."/> children.
bool isXmlName(const QString &key)
{
    if (key.isEmpty() || key.startsWith(QLatin1String("xml"), Qt::CaseInsensitive))
        return false;
    for (int i = 0; i < key.size(); ++i) {
        const ushort c = key.at(i).unicode();
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool other = (c >= '0' && c <= '9') || c == '.' || c == '-';
        if (!letter && (i == 0 || !other))
            return false;
    }
    return true;
}

bool allXmlNames(const OssStringMap &attributes)
{
    for (const OssStringMap::Entry &entry : attributes)
        if (!isXmlName(entry.first))
            return false;
    return true;
}

void writeEntries(QXmlStreamWriter &w, const OssStringMap &attributes)
{
    for (const OssStringMap::Entry &entry : attributes) {
        w.writeStartElement(QStringLiteral("attribute"));
        w.writeAttribute(QStringLiteral("key"), entry.first);
        w.writeAttribute(QStringLiteral("value"), entry.second);
        w.writeEndElement();
    }
}

// A string map as one <attributes k=".."/> element when every key is an XML name, otherwise
// as <attribute key=".." value=".."/> children; an empty map writes nothing.
void writeAttributeMap(QXmlStreamWriter &w, const OssStringMap &attributes)
{
    if (attributes.isEmpty())
        return;
    if (!allXmlNames(attributes)) {
        writeEntries(w, attributes);
        return;
    }
    w.writeStartElement(QStringLiteral("attributes"));
    for (const OssStringMap::Entry &entry : attributes)
        w.writeAttribute(entry.first, entry.second);
    w.writeEndElement();
}

} // namespace

void OssSerializer::writeObject(OssSerializableObject *object, const QString &name,
                                const OssStringMap &attributes)
{
    QXmlStreamWriter &w = *m_writer;
    w.writeStartElement(QStringLiteral("object"));
    w.writeAttribute(QStringLiteral("name"), name);
    w.writeAttribute(QStringLiteral("type"),
                     QString::fromLatin1(object->metaObject()->className()));
    w.writeAttribute(QStringLiteral("uuid"), object->uuidString());
    writeAttributeMap(w, attributes);

    // Stored properties go as attributes of one <properties> element; the reader takes each
    // one's type from the property itself. A property whose value's type is not its declared
    // type (one declared as QVariant) keeps an element of its own that names the type.
    const QMetaObject *meta = object->metaObject();
    QXmlStreamAttributes compact;
    QList<QPair<QMetaProperty, QVariant>> typed;
    for (int i = 0; i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isStored(object) || !property.isWritable() ||
            qstrcmp(property.name(), "objectName") == 0)
            continue;
        const QVariant value = property.read(object);
        if (property.isEnumType())
            compact.append(QString::fromLatin1(property.name()), QString::number(value.toInt()));
        else if (value.userType() == property.userType())
            compact.append(QString::fromLatin1(property.name()), variantToText(value));
        else
            typed.append({property, value});
    }
    if (!compact.isEmpty()) {
        w.writeStartElement(QStringLiteral("properties"));
        w.writeAttributes(compact);
        w.writeEndElement();
    }
    for (const auto &entry : qAsConst(typed)) {
        const char *typeName = entry.second.typeName();
        w.writeStartElement(QStringLiteral("property"));
        w.writeAttribute(QStringLiteral("name"), QString::fromLatin1(entry.first.name()));
        w.writeAttribute(QStringLiteral("type"), QString::fromLatin1(typeName ? typeName : ""));
        w.writeCharacters(variantToText(entry.second));
        w.writeEndElement();
    }

    for (const OssCustomAttribute &attribute : object->userAttributes()) {
        w.writeStartElement(QStringLiteral("userAttribute"));
        w.writeAttribute(QStringLiteral("name"), attribute.name());
        w.writeAttribute(QStringLiteral("prettyName"), attribute.prettyName());
        w.writeAttribute(QStringLiteral("visible"),
                         attribute.isVisible() ? QStringLiteral("1") : QStringLiteral("0"));
        w.writeAttribute(QStringLiteral("type"), attribute.typeName());
        w.writeCharacters(variantToText(attribute.value()));
        w.writeEndElement();
    }

    const int openBefore = m_openCollections;
    object->saveObjects(*this);
    // A collection left open by a faulty saveObjects() must not swallow the rest of the file.
    while (m_openCollections > openBefore)
        endCollection();
    w.writeEndElement();
}

void OssSerializer::beginCollection(const QString &name, int count, const QString &type,
                                    const QString &elementType, const OssStringMap &attributes)
{
    if (!m_writer)
        return;
    QXmlStreamWriter &w = *m_writer;
    w.writeStartElement(QStringLiteral("collection"));
    w.writeAttribute(QStringLiteral("name"), name);
    w.writeAttribute(QStringLiteral("count"), QString::number(count));
    w.writeAttribute(QStringLiteral("type"), type);
    w.writeAttribute(QStringLiteral("elementType"), elementType);
    writeAttributeMap(w, attributes);
    ++m_openCollections;
}

void OssSerializer::addCollectionElement(const OssStringMap &attributes)
{
    if (!m_writer || m_openCollections == 0)
        return;
    QXmlStreamWriter &w = *m_writer;
    w.writeStartElement(QStringLiteral("element"));
    if (allXmlNames(attributes))
        for (const OssStringMap::Entry &entry : attributes)
            w.writeAttribute(entry.first, entry.second);
    else
        writeEntries(w, attributes);
    w.writeEndElement();
}

void OssSerializer::endCollection()
{
    if (!m_writer || m_openCollections == 0)
        return;
    m_writer->writeEndElement();
    --m_openCollections;
}
