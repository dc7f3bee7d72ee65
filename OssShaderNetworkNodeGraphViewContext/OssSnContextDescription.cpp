#include "OssSnContextDescription.h"

#include <QHash>
#include <QXmlStreamReader>

namespace {

QStringList splitKeepingEmpty(const QString &text)
{
    return text.split(QLatin1Char(','), Qt::KeepEmptyParts);
}

// Reads the children of an "Input" or "Output" (the reader stands on its start element).
void readPort(QXmlStreamReader &reader, OssSnContextDescription::Port &port)
{
    int originOffset = 0;
    QStringList lastParts;
    bool sawPos = false;
    while (reader.readNextStartElement()) {
        if (reader.name() != QLatin1String("Pos")) {
            reader.skipCurrentElement();
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        if (attributes.hasAttribute(QLatin1String("OriginOffset")))
            originOffset = OssSnContextDescription::toInt(
                attributes.value(QLatin1String("OriginOffset")).toString());
        else
            originOffset = 0;
        lastParts =
            splitKeepingEmpty(reader.readElementText(QXmlStreamReader::IncludeChildElements));
        sawPos = true;
    }
    if (reader.hasError())
        return;
    if (sawPos && lastParts.size() == 2)
        port.initialPosition = OssSnContextDescription::Maybe<QPair<QPoint, QPoint>>(qMakePair(
            QPoint(originOffset, 0), QPoint(OssSnContextDescription::toInt(lastParts.at(0)),
                                            OssSnContextDescription::toInt(lastParts.at(1)))));
}

// Reads "Inputs" or "Outputs" (the reader stands on its start element).
void readPorts(QXmlStreamReader &reader, QVector<OssSnContextDescription::Port> &ports,
               const QString &portElement, bool withTags)
{
    while (reader.readNextStartElement()) {
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() != portElement || !attributes.hasAttribute(QLatin1String("Name"))) {
            reader.skipCurrentElement();
            continue;
        }
        OssSnContextDescription::Port port;
        port.name = attributes.value(QLatin1String("Name")).toString();
        if (withTags && attributes.hasAttribute(QLatin1String("Tags")))
            port.tags = OssSnContextDescription::Maybe<QStringList>(
                splitKeepingEmpty(attributes.value(QLatin1String("Tags")).toString()));
        readPort(reader, port);
        ports.append(port);
    }
}

void readContext(QXmlStreamReader &reader, OssSnContextDescription &result)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    const QString type = attributes.value(QLatin1String("Type")).toString();
    if (!attributes.hasAttribute(QLatin1String("Type")) ||
        (type != QLatin1String("NodeGraphView") && type != QLatin1String("UINodeGraphView"))) {
        reader.skipCurrentElement();
        return;
    }
    // Appended after its children are read, also when reading stops inside it.
    OssSnContextDescription::Context context;
    context.type = type;
    auto text = [&](const char *name) -> OssSnContextDescription::Maybe<QString> {
        const QLatin1String key(name);
        if (!attributes.hasAttribute(key))
            return {};
        return attributes.value(key).toString();
    };
    context.guiNodeClass = text("GuiNodeClass");
    context.className = text("Class");
    const auto shape = text("ShapeType");
    if (shape.has_value())
        context.shapeType = OssSnContextDescription::toInt(shape.value());
    context.nodeColorTop = text("NodeColorTop");
    context.nodeColorBottom = text("NodeColorBottom");
    context.pixmapPath = text("Pixmap");
    const auto offset = text("PixmapOffset");
    if (offset.has_value()) {
        const QStringList parts = splitKeepingEmpty(offset.value());
        if (parts.size() == 2)
            context.pixmapOffset = OssSnContextDescription::Maybe<QPoint>(
                QPoint(OssSnContextDescription::toInt(parts.at(0)),
                       OssSnContextDescription::toInt(parts.at(1))));
    }
    while (reader.readNextStartElement()) {
        if (reader.name() == QLatin1String("Inputs"))
            readPorts(reader, context.inputs, QStringLiteral("Input"), true);
        else if (reader.name() == QLatin1String("Outputs"))
            readPorts(reader, context.outputs, QStringLiteral("Output"), false);
        else
            reader.skipCurrentElement();
    }
    result.contexts.append(context);
}

} // namespace

int OssSnContextDescription::toInt(const QString &text)
{
    bool ok = false;
    const int value = text.trimmed().toInt(&ok, 10);
    return ok ? value : 0;
}

OssSnContextDescription OssSnContextDescription::read(const QString &description)
{
    OssSnContextDescription result;
    QXmlStreamReader reader(description);
    // The first start element is the document element, the second its first child.
    if (reader.readNextStartElement()) {
        while (reader.readNextStartElement()) {
            if (reader.name() == QLatin1String("Contexts")) {
                while (reader.readNextStartElement()) {
                    if (reader.name() == QLatin1String("Context"))
                        readContext(reader, result);
                    else
                        reader.skipCurrentElement();
                }
            } else {
                reader.skipCurrentElement();
            }
        }
    }
    result.truncated = reader.hasError();
    return result;
}

OssSnContextDescription OssSnContextDescription::readCached(const QString &description)
{
    // Node types number in the hundreds; the bound only keeps odd callers (descriptions made up
    // on the fly) from growing the cache without end.
    constexpr int MaximumEntries = 4096;
    static QHash<QString, OssSnContextDescription> cache;
    const auto found = cache.constFind(description);
    if (found != cache.constEnd())
        return found.value();
    if (cache.size() >= MaximumEntries)
        cache.clear();
    const OssSnContextDescription result = read(description);
    cache.insert(description, result);
    return result;
}
