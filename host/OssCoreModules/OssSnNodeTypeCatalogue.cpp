#include "OssSnNodeTypeCatalogue.h"

#include "OssColor.h"
#include "OssCustomAttribute.h"
#include "OssDebug.h"
#include "OssResourceInfo.h"

#include <QCryptographicHash>
#include <QDate>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QTextCodec>
#include <QXmlStreamReader>

#include <cmath>

namespace {

QString quoted(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}

// "true" or "false"; anything else is refused.
bool parseBool(const QString &text, bool *value)
{
    if (text == QLatin1String("true")) {
        *value = true;
        return true;
    }
    if (text == QLatin1String("false")) {
        *value = false;
        return true;
    }
    return false;
}

// Reals separated by white space or commas, each finite.
bool parseReals(const QString &text, int count, QVector<double> *values)
{
    const QStringList parts =
        text.trimmed().split(QRegularExpression(QStringLiteral("[\\s,]+")), Qt::SkipEmptyParts);
    if (parts.size() != count)
        return false;
    values->clear();
    for (const QString &part : parts) {
        bool ok = false;
        const double value = part.toDouble(&ok);
        if (!ok || !std::isfinite(value))
            return false;
        values->append(value);
    }
    return true;
}

// The value an attribute of that type starts with when its description gives no Default.
QVariant emptyValue(const QString &type)
{
    if (type == QLatin1String("bool"))
        return false;
    if (type == QLatin1String("int"))
        return 0;
    if (type == QLatin1String("float"))
        return 0.0;
    if (type == QLatin1String("color"))
        return QVariant::fromValue(OssColor(0.0, 0.0, 0.0, 1.0));
    if (type == QLatin1String("imageList"))
        return QStringList();
    if (type == QLatin1String("vector"))
        return QStringLiteral("0 0 0");
    return QString();
}

// Converts a Default text to the attribute type's value; false with the reason otherwise.
bool convertDefault(const QString &type, const QString &text, QVariant *value, QString *reason)
{
    if (type == QLatin1String("bool")) {
        bool flag = false;
        if (!parseBool(text, &flag)) {
            *reason = QStringLiteral("is not \"true\" or \"false\"");
            return false;
        }
        *value = flag;
    } else if (type == QLatin1String("int")) {
        bool ok = false;
        const int number = text.trimmed().toInt(&ok, 10);
        if (!ok) {
            *reason = QStringLiteral("is not an integer");
            return false;
        }
        *value = number;
    } else if (type == QLatin1String("float")) {
        QVector<double> reals;
        if (!parseReals(text, 1, &reals)) {
            *reason = QStringLiteral("is not a number");
            return false;
        }
        *value = reals.first();
    } else if (type == QLatin1String("string")) {
        *value = text;
    } else if (type == QLatin1String("color")) {
        bool ok = false;
        const OssColor color = OssColor::fromString(text, &ok);
        if (!ok) {
            *reason = QStringLiteral("is not a colour");
            return false;
        }
        *value = QVariant::fromValue(color);
    } else if (type == QLatin1String("enum")) {
        bool ok = false;
        const OssUserEnum userEnum = OssUserEnum::fromString(text, &ok);
        if (!ok) {
            *reason = QStringLiteral("is not an enumeration \"index:key1|key2\" with the index "
                                     "among the keys");
            return false;
        }
        *value = userEnum.toString();
    } else if (type == QLatin1String("imageList")) {
        *value = text.split(QLatin1Char('|'), Qt::SkipEmptyParts);
    } else if (type == QLatin1String("vector")) {
        QVector<double> reals;
        if (!parseReals(text, 3, &reals)) {
            *reason = QStringLiteral("is not three numbers \"x y z\"");
            return false;
        }
        QStringList parts;
        for (const double real : qAsConst(reals))
            parts.append(QString::number(real));
        *value = parts.join(QLatin1Char(' '));
    } else {
        *reason = QStringLiteral("has an unknown type");
        return false;
    }
    return true;
}

// Reads one description into a node type, stopping at the first problem.
class DescriptionReader
{
public:
    DescriptionReader(const QString &text, const QString &fileName)
        : m_reader(text), m_fileName(fileName)
    {}

    bool read(OssSnNodeType *type);
    QString error() const { return m_error; }

private:
    bool fail(qint64 line, const QString &problem)
    {
        m_error = QStringLiteral("%1: line %2: %3").arg(m_fileName).arg(line).arg(problem);
        return false;
    }
    bool failXml()
    {
        m_error = QStringLiteral("%1: line %2, column %3: %4")
                      .arg(m_fileName)
                      .arg(m_reader.lineNumber())
                      .arg(m_reader.columnNumber())
                      .arg(m_reader.errorString());
        return false;
    }
    QString attribute(const char *name) const
    {
        return m_reader.attributes().value(QLatin1String(name)).toString();
    }
    bool hasAttribute(const char *name) const
    {
        return m_reader.attributes().hasAttribute(QLatin1String(name));
    }
    // A "true"/"false" attribute that is true when absent.
    bool readFlag(const char *name, bool *value);

    bool readDocumentElement(OssSnNodeType *type);
    bool readTags(OssSnNodeType *type);
    bool readPorts(bool inputs, QVector<OssSnNodeTypePort> *ports, QString *preferred);
    bool readAttributes(QVector<OssSnNodeTypeAttribute> *attributes);
    bool readText(QString *text);

    QXmlStreamReader m_reader;
    QString m_fileName;
    QString m_error;
};

bool DescriptionReader::readFlag(const char *name, bool *value)
{
    *value = true;
    if (!hasAttribute(name))
        return true;
    if (parseBool(attribute(name), value))
        return true;
    return fail(m_reader.lineNumber(), QStringLiteral("%1 is %2, not \"true\" or \"false\"")
                                           .arg(QLatin1String(name), quoted(attribute(name))));
}

bool DescriptionReader::readText(QString *text)
{
    *text = m_reader.readElementText(QXmlStreamReader::ErrorOnUnexpectedElement);
    if (m_reader.hasError())
        return failXml();
    return true;
}

bool DescriptionReader::read(OssSnNodeType *type)
{
    if (!m_reader.readNextStartElement()) {
        if (m_reader.hasError())
            return failXml();
        return fail(m_reader.lineNumber(), QStringLiteral("the description has no element"));
    }
    if (m_reader.name() != QLatin1String("NodeType"))
        return fail(m_reader.lineNumber(),
                    QStringLiteral("the document element is %1, not \"NodeType\"")
                        .arg(quoted(m_reader.name().toString())));
    if (!readDocumentElement(type))
        return false;
    // Whatever follows the document element must still be well-formed and hold no element.
    while (!m_reader.atEnd())
        m_reader.readNext();
    if (m_reader.hasError())
        return failXml();
    return true;
}

bool DescriptionReader::readDocumentElement(OssSnNodeType *type)
{
    const qint64 line = m_reader.lineNumber();
    if (!hasAttribute("PathKey") || attribute("PathKey").isEmpty())
        return fail(line, QStringLiteral("the node type has no PathKey"));
    type->pathKey = attribute("PathKey");
    type->menuPath = hasAttribute("MenuPath") ? attribute("MenuPath") : type->pathKey;
    type->nodeClass = hasAttribute("Class") ? attribute("Class") : QStringLiteral("OssSnBaseNode");
    if (!OssSnNodeTypeCatalogue::knownNodeClasses().contains(type->nodeClass))
        return fail(line, QStringLiteral("unknown node class %1").arg(quoted(type->nodeClass)));
    type->versionUuid = attribute("VersionUuid");
    type->date = attribute("Date");
    if (!type->date.isEmpty() &&
        !QDate::fromString(type->date, QStringLiteral("yyyy-MM-dd")).isValid())
        return fail(line,
                    QStringLiteral("Date %1 is not a date \"yyyy-MM-dd\"").arg(quoted(type->date)));
    if (!readFlag("NodeGraph", &type->nodeGraph))
        return false;

    QSet<QString> sections;
    while (m_reader.readNextStartElement()) {
        const QString section = m_reader.name().toString();
        static const QStringList once = {QStringLiteral("Description"), QStringLiteral("Tags"),
                                         QStringLiteral("Inputs"),      QStringLiteral("Outputs"),
                                         QStringLiteral("Attributes"),  QStringLiteral("Contexts")};
        if (once.contains(section)) {
            if (sections.contains(section))
                return fail(m_reader.lineNumber(),
                            QStringLiteral("more than one %1 section").arg(quoted(section)));
            sections.insert(section);
        }
        bool ok = true;
        if (section == QLatin1String("Description")) {
            ok = readText(&type->description);
            type->description = type->description.trimmed();
        } else if (section == QLatin1String("Tags")) {
            ok = readTags(type);
        } else if (section == QLatin1String("Inputs")) {
            ok = readPorts(true, &type->inputs, &type->preferredInput);
        } else if (section == QLatin1String("Outputs")) {
            ok = readPorts(false, &type->outputs, &type->preferredOutput);
        } else if (section == QLatin1String("Attributes")) {
            ok = readAttributes(&type->attributes);
        } else {
            // "Contexts" belongs to the context loaders, which get the whole text; other
            // sections are left to whoever reads them.
            m_reader.skipCurrentElement();
        }
        if (!ok)
            return false;
    }
    if (m_reader.hasError())
        return failXml();
    return true;
}

bool DescriptionReader::readTags(OssSnNodeType *type)
{
    while (m_reader.readNextStartElement()) {
        const qint64 line = m_reader.lineNumber();
        if (m_reader.name() != QLatin1String("Tag"))
            return fail(line, QStringLiteral("unexpected element %1 in \"Tags\"")
                                  .arg(quoted(m_reader.name().toString())));
        QString tag;
        if (!readText(&tag))
            return false;
        tag = tag.trimmed();
        if (tag.isEmpty())
            return fail(line, QStringLiteral("empty tag"));
        if (!type->tags.contains(tag))
            type->tags.append(tag);
    }
    return !m_reader.hasError() || failXml();
}

bool DescriptionReader::readPorts(bool inputs, QVector<OssSnNodeTypePort> *ports,
                                  QString *preferred)
{
    const QString what = inputs ? QStringLiteral("input") : QStringLiteral("output");
    const QLatin1String element(inputs ? "Input" : "Output");
    const qint64 sectionLine = m_reader.lineNumber();
    *preferred = attribute("Preferred");
    while (m_reader.readNextStartElement()) {
        const qint64 line = m_reader.lineNumber();
        if (m_reader.name() != element)
            return fail(line, QStringLiteral("unexpected element %1 in %2")
                                  .arg(quoted(m_reader.name().toString()),
                                       quoted(QString(element) + QLatin1Char('s'))));
        OssSnNodeTypePort port;
        port.name = attribute("Name");
        if (port.name.isEmpty())
            return fail(line, QStringLiteral("%1 without a Name").arg(what));
        for (const OssSnNodeTypePort &other : qAsConst(*ports)) {
            if (other.name == port.name)
                return fail(line,
                            QStringLiteral("%1 %2 is declared twice").arg(what, quoted(port.name)));
        }
        port.type = hasAttribute("Type") ? attribute("Type") : QStringLiteral("any");
        if (!OssSnNodeTypeCatalogue::knownPortTypes().contains(port.type))
            return fail(line, QStringLiteral("%1 %2 has unknown type %3")
                                  .arg(what, quoted(port.name), quoted(port.type)));
        if (inputs && hasAttribute("Tags") && !attribute("Tags").isEmpty())
            port.tags = attribute("Tags").split(QLatin1Char(','), Qt::KeepEmptyParts);
        ports->append(port);
        m_reader.skipCurrentElement();
    }
    if (m_reader.hasError())
        return failXml();
    if (!preferred->isEmpty()) {
        bool found = false;
        for (const OssSnNodeTypePort &port : qAsConst(*ports))
            found = found || port.name == *preferred;
        if (!found)
            return fail(sectionLine, QStringLiteral("the preferred %1 %2 is not among the %1s")
                                         .arg(what, quoted(*preferred)));
    }
    return true;
}

bool DescriptionReader::readAttributes(QVector<OssSnNodeTypeAttribute> *attributes)
{
    while (m_reader.readNextStartElement()) {
        const qint64 line = m_reader.lineNumber();
        if (m_reader.name() != QLatin1String("Attribute"))
            return fail(line, QStringLiteral("unexpected element %1 in \"Attributes\"")
                                  .arg(quoted(m_reader.name().toString())));
        OssSnNodeTypeAttribute item;
        item.name = attribute("Name");
        if (item.name.isEmpty())
            return fail(line, QStringLiteral("attribute without a Name"));
        for (const OssSnNodeTypeAttribute &other : qAsConst(*attributes)) {
            if (other.name == item.name)
                return fail(
                    line, QStringLiteral("attribute %1 is declared twice").arg(quoted(item.name)));
        }
        item.prettyName = hasAttribute("PrettyName") ? attribute("PrettyName") : item.name;
        item.type = attribute("Type");
        if (!OssSnNodeTypeCatalogue::knownAttributeTypes().contains(item.type))
            return fail(line, QStringLiteral("attribute %1 has unknown type %2")
                                  .arg(quoted(item.name), quoted(item.type)));
        if (hasAttribute("Default")) {
            QString reason;
            if (!convertDefault(item.type, attribute("Default"), &item.defaultValue, &reason))
                return fail(line, QStringLiteral("the Default %1 of %2 attribute %3 %4")
                                      .arg(quoted(attribute("Default")), item.type,
                                           quoted(item.name), reason));
        } else if (item.type == QLatin1String("enum")) {
            return fail(line, QStringLiteral("enum attribute %1 has no Default naming its keys")
                                  .arg(quoted(item.name)));
        } else {
            item.defaultValue = emptyValue(item.type);
        }
        if (!readFlag("Visible", &item.visible))
            return false;
        attributes->append(item);
        m_reader.skipCurrentElement();
    }
    return !m_reader.hasError() || failXml();
}

} // namespace

OssSnNodeTypeCatalogue *OssSnNodeTypeCatalogue::instance()
{
    static OssSnNodeTypeCatalogue *catalogue = nullptr;
    if (catalogue == nullptr) {
        catalogue = new OssSnNodeTypeCatalogue;
        catalogue->loadDirectory(OssResourceInfo::instance()->nodeTypePath());
    }
    return catalogue;
}

OssSnNodeTypeCatalogue::OssSnNodeTypeCatalogue(QObject *parent) : QObject(parent) {}

OssSnNodeTypeCatalogue::~OssSnNodeTypeCatalogue() = default;

QStringList OssSnNodeTypeCatalogue::knownNodeClasses()
{
    static const QStringList classes = {
        QStringLiteral("OssSnBaseNode"),
        QStringLiteral("OssSnGroupNode"),
        QStringLiteral("OssSnMultiChannelGroupNode"),
        QStringLiteral("OssSnMultiChannelMergeNode"),
        QStringLiteral("OssSnMultiChannelBakePointNode"),
        QStringLiteral("OssSnMultiChannelBottomTransparencyNode"),
        QStringLiteral("OssSnMaterialNode"),
        QStringLiteral("OssSnCustomProceduralNode"),
        QStringLiteral("OssSnBakePointNode"),
        QStringLiteral("OssSnImageSetNode"),
        QStringLiteral("OssSnChannelInputNode"),
        QStringLiteral("OssSnGeoChannelNode"),
        QStringLiteral("OssSnBroadcastTeleportNode"),
        QStringLiteral("OssSnReceiverTeleportNode"),
        QStringLiteral("OssSnViewerNode"),
        QStringLiteral("OssSnLayerShaderNode"),
        QStringLiteral("OssSnUINode"),
    };
    return classes;
}

QStringList OssSnNodeTypeCatalogue::knownAttributeTypes()
{
    static const QStringList types = {
        QStringLiteral("bool"),      QStringLiteral("int"),    QStringLiteral("float"),
        QStringLiteral("string"),    QStringLiteral("color"),  QStringLiteral("enum"),
        QStringLiteral("imageList"), QStringLiteral("vector"),
    };
    return types;
}

QStringList OssSnNodeTypeCatalogue::knownPortTypes()
{
    static const QStringList types = {
        QStringLiteral("color"),  QStringLiteral("float"),    QStringLiteral("vector"),
        QStringLiteral("shader"), QStringLiteral("material"), QStringLiteral("any"),
    };
    return types;
}

bool OssSnNodeTypeCatalogue::parse(const QString &text, const QString &fileName,
                                   OssSnNodeType *type, QString *error)
{
    OssSnNodeType result;
    DescriptionReader reader(text, fileName);
    if (text.trimmed().isEmpty() || !reader.read(&result)) {
        if (error)
            *error = text.trimmed().isEmpty() ? fileName + QStringLiteral(": the file is empty")
                                              : reader.error();
        return false;
    }
    result.source = text;
    result.filePath = fileName;
    result.hash = QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha1).toHex());
    if (type)
        *type = result;
    return true;
}

bool OssSnNodeTypeCatalogue::readFile(const QString &path, OssSnNodeType *type, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: cannot be read (%2)").arg(path, file.errorString());
        return false;
    }
    return parseBytes(file.readAll(), path, type, error);
}

bool OssSnNodeTypeCatalogue::parseBytes(const QByteArray &bytes, const QString &fileName,
                                        OssSnNodeType *type, QString *error)
{
    QTextCodec::ConverterState state;
    const QString text =
        QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0) {
        *error = fileName + QStringLiteral(": the file is not UTF-8 text");
        return false;
    }
    return parse(text, fileName, type, error);
}

int OssSnNodeTypeCatalogue::loadDirectory(const QString &dir, QStringList *errors)
{
    auto report = [errors](const QString &error) {
        OSS_DEBUG("Node type description skipped: %s", qPrintable(error));
        if (errors)
            errors->append(error);
    };
    if (!QFileInfo(dir).isDir()) {
        report(dir + QStringLiteral(": no such folder"));
        return 0;
    }
    QStringList paths;
    QDirIterator files(dir, {QStringLiteral("*.xml")}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    paths.sort();

    int loaded = 0;
    for (const QString &path : qAsConst(paths)) {
        OssSnNodeType type;
        QString error;
        if (readFile(path, &type, &error) && insert(type, &error))
            ++loaded;
        else
            report(error);
    }
    if (loaded > 0)
        emit registeredNodePopulationChanged();
    return loaded;
}

bool OssSnNodeTypeCatalogue::insert(const OssSnNodeType &type, QString *error)
{
    const QString file = type.filePath.isEmpty() ? QStringLiteral("node type") : type.filePath;
    QString problem;
    if (type.pathKey.isEmpty())
        problem = QStringLiteral("the node type has no path key");
    else if (m_types.contains(type.pathKey))
        problem = QStringLiteral("path key %1 is already registered").arg(quoted(type.pathKey));
    else if (!type.versionUuid.isEmpty() && m_byVersionUuid.contains(type.versionUuid))
        problem =
            QStringLiteral("version UUID %1 is already registered by %2")
                .arg(quoted(type.versionUuid), quoted(m_byVersionUuid.value(type.versionUuid)));
    if (!problem.isEmpty()) {
        if (error)
            *error = file + QStringLiteral(": ") + problem;
        return false;
    }

    auto stored = QSharedPointer<OssSnNodeType>::create(type);
    if (stored->menuPath.isEmpty())
        stored->menuPath = stored->pathKey;
    if (stored->hash.isEmpty() && !stored->source.isEmpty())
        stored->hash = QString::fromLatin1(
            QCryptographicHash::hash(stored->source.toUtf8(), QCryptographicHash::Sha1).toHex());
    m_types.insert(type.pathKey, stored);
    m_order.append(type.pathKey);
    if (!type.versionUuid.isEmpty())
        m_byVersionUuid.insert(type.versionUuid, type.pathKey);
    return true;
}

bool OssSnNodeTypeCatalogue::addType(const OssSnNodeType &type, QString *error)
{
    if (!insert(type, error))
        return false;
    emit registeredNodePopulationChanged();
    return true;
}

bool OssSnNodeTypeCatalogue::addTypeFromFile(const QString &path, QString *error)
{
    OssSnNodeType type;
    QString problem;
    if (!readFile(path, &type, &problem)) {
        if (error)
            *error = problem;
        return false;
    }
    return addType(type, error);
}

bool OssSnNodeTypeCatalogue::removeType(const QString &pathKey)
{
    const auto stored = m_types.take(pathKey);
    if (stored.isNull())
        return false;
    m_order.removeOne(pathKey);
    if (!stored->versionUuid.isEmpty() && m_byVersionUuid.value(stored->versionUuid) == pathKey)
        m_byVersionUuid.remove(stored->versionUuid);
    emit registeredNodePopulationChanged();
    return true;
}

void OssSnNodeTypeCatalogue::clear()
{
    if (m_order.isEmpty())
        return;
    m_order.clear();
    m_types.clear();
    m_byVersionUuid.clear();
    emit registeredNodePopulationChanged();
}

bool OssSnNodeTypeCatalogue::contains(const QString &pathKey) const
{
    return m_types.contains(pathKey);
}

const OssSnNodeType *OssSnNodeTypeCatalogue::type(const QString &pathKey) const
{
    return m_types.value(pathKey).data();
}

QStringList OssSnNodeTypeCatalogue::nodePathKeys() const
{
    return m_order;
}

QStringList OssSnNodeTypeCatalogue::nodeGraphPathKeys() const
{
    QStringList keys;
    for (const QString &key : m_order) {
        if (m_types.value(key)->nodeGraph)
            keys.append(key);
    }
    return keys;
}

QString OssSnNodeTypeCatalogue::nodeMenuPath(const QString &pathKey) const
{
    const OssSnNodeType *found = type(pathKey);
    return found ? found->menuPath : QString();
}

QString OssSnNodeTypeCatalogue::versionUuidForPathKey(const QString &pathKey) const
{
    const OssSnNodeType *found = type(pathKey);
    return found ? found->versionUuid : QString();
}

QString OssSnNodeTypeCatalogue::hashForVersionUuid(const QString &uuid) const
{
    const OssSnNodeType *found = typeForVersionUuid(uuid);
    return found ? found->hash : QString();
}

QString OssSnNodeTypeCatalogue::dateForVersionUuid(const QString &uuid) const
{
    const OssSnNodeType *found = typeForVersionUuid(uuid);
    return found ? found->date : QString();
}

const OssSnNodeType *OssSnNodeTypeCatalogue::typeForVersionUuid(const QString &uuid) const
{
    if (uuid.isEmpty())
        return nullptr;
    const auto key = m_byVersionUuid.constFind(uuid);
    return key == m_byVersionUuid.constEnd() ? nullptr : type(key.value());
}
