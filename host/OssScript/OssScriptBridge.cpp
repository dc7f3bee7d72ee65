#include "OssScriptPython.h"

#include "OssScriptEngine.h"

#include <OssPalette.h>
#include <OssProject.h>
#include <OssProjectManager.h>
#include <OssScriptManager.h>
#include <OssUndoManager.h>
#include <OssaAPI.h>

#include <QColor>
#include <QGraphicsScene>
#include <QGraphicsView>
#include <QHash>
#include <QImage>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPainter>
#include <QPoint>
#include <QPointF>
#include <QStringList>
#include <QWidget>

#include <algorithm>
#include <limits>
#include <memory>
#include <vector>

namespace OssScriptBridge {

namespace {

// Python's own exception for a failed conversion; a pybind11 error type that sets TypeError.
[[noreturn]] void typeError(const QString &message)
{
    throw py::type_error(message.toStdString());
}

QHash<int, py::object> &exceptionClasses()
{
    static auto *classes = new QHash<int, py::object>;
    return *classes;
}

QObject *objectOf(py::handle value)
{
    HostObject &host = value.cast<HostObject &>();
    if (!host.object)
        raiseScriptError(OssScriptException::ObjectNotValid,
                         QStringLiteral("Script object not valid"));
    return host.object.data();
}

bool isHost(py::handle value)
{
    return py::isinstance<HostObject>(value);
}

bool isInteger(py::handle value)
{
    return py::isinstance<py::int_>(value) && !py::isinstance<py::bool_>(value);
}

bool isNumber(py::handle value)
{
    return isInteger(value) || py::isinstance<py::float_>(value);
}

// The meta-type of the pointer that the element type of "QList<X*>" names, or 0.
int listElementType(const QByteArray &typeName)
{
    if (!typeName.startsWith("QList<") || !typeName.endsWith("*>"))
        return 0;
    const int id = QMetaType::type(typeName.mid(6, typeName.size() - 7).constData());
    return QMetaType::typeFlags(id) & QMetaType::PointerToQObject ? id : 0;
}

QString typeLabel(py::handle value)
{
    return toQString(py::str(value.get_type().attr("__name__")));
}

// Any Python value as a variant: None, bool, int, float, str, host objects, lists, dicts.
QVariant toVariant(py::handle value)
{
    if (value.is_none())
        return QVariant();
    if (py::isinstance<py::bool_>(value))
        return value.cast<bool>();
    if (isInteger(value)) {
        const long long number = value.cast<long long>();
        if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())
            return static_cast<int>(number);
        return number;
    }
    if (py::isinstance<py::float_>(value))
        return value.cast<double>();
    if (py::isinstance<py::str>(value))
        return toQString(value);
    if (isHost(value))
        return QVariant::fromValue(objectOf(value));
    if (py::isinstance<py::list>(value) || py::isinstance<py::tuple>(value)) {
        QVariantList list;
        for (py::handle item : value)
            list.append(toVariant(item));
        return list;
    }
    if (py::isinstance<py::dict>(value)) {
        QVariantMap map;
        for (auto item : value.cast<py::dict>()) {
            if (!py::isinstance<py::str>(item.first))
                typeError(QStringLiteral("dictionary keys must be str, not %1")
                              .arg(typeLabel(item.first)));
            map.insert(toQString(item.first), toVariant(item.second));
        }
        return map;
    }
    typeError(QStringLiteral("cannot pass a value of type %1 to the host").arg(typeLabel(value)));
}

py::object fromVariant(const QVariant &value);

py::object fromObjectList(const QList<QObject *> &objects)
{
    py::list list;
    for (QObject *object : objects)
        list.append(wrap(object));
    return std::move(list);
}

py::object fromVariant(const QVariant &value)
{
    const int type = value.userType();
    switch (type) {
    case QMetaType::UnknownType:
        return py::none();
    case QMetaType::Bool:
        return py::bool_(value.toBool());
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
        return py::int_(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
        return py::int_(value.toULongLong());
    case QMetaType::Double:
    case QMetaType::Float:
        return py::float_(value.toDouble());
    case QMetaType::QString:
        return fromQString(value.toString());
    case QMetaType::QStringList: {
        py::list list;
        for (const QString &text : value.toStringList())
            list.append(fromQString(text));
        return std::move(list);
    }
    case QMetaType::QPointF:
        return py::make_tuple(value.toPointF().x(), value.toPointF().y());
    case QMetaType::QPoint:
        return py::make_tuple(value.toPoint().x(), value.toPoint().y());
    case QMetaType::QVariantList: {
        py::list list;
        for (const QVariant &item : value.toList())
            list.append(fromVariant(item));
        return std::move(list);
    }
    case QMetaType::QVariantMap: {
        py::dict dict;
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            dict[fromQString(it.key())] = fromVariant(it.value());
        return std::move(dict);
    }
    default:
        break;
    }
    if (QMetaType::typeFlags(type) & QMetaType::PointerToQObject)
        return wrap(*static_cast<QObject *const *>(value.constData()));
    if (listElementType(QByteArray(value.typeName())))
        return fromObjectList(*static_cast<const QList<QObject *> *>(value.constData()));
    if (value.canConvert<QString>())
        return fromQString(value.toString());
    typeError(QStringLiteral("the host returned a value of type %1 that scripts cannot use")
                  .arg(QString::fromLatin1(value.typeName())));
}

// A host object of the class ClassType (a pointer meta-type), or null for None.
QObject *toObject(py::handle value, int classType, const QByteArray &typeName)
{
    if (value.is_none())
        return nullptr;
    if (!isHost(value))
        typeError(QStringLiteral("expected %1, not %2")
                      .arg(QString::fromLatin1(typeName), typeLabel(value)));
    QObject *object = objectOf(value);
    const QMetaObject *wanted = QMetaType::metaObjectForType(classType);
    if (wanted && !wanted->cast(object))
        typeError(QStringLiteral("expected %1, not %2")
                      .arg(QString::fromLatin1(typeName),
                           QString::fromLatin1(object->metaObject()->className())));
    return object;
}

// The storage of one argument or result of a call, in the form the meta-object system reads.
class Value
{
public:
    explicit Value(const QByteArray &typeName) : m_typeName(typeName)
    {
        m_type = QMetaType::type(typeName.constData());
        if (m_type == QMetaType::QVariant)
            m_kind = Variant;
        else if (QMetaType::typeFlags(m_type) & QMetaType::PointerToQObject)
            m_kind = Object;
        else if ((m_elementType = listElementType(typeName)))
            m_kind = ObjectList;
        else if (m_type != QMetaType::UnknownType && m_type != QMetaType::Void)
            m_kind = Plain;
        if (m_kind == Plain)
            m_variant = QVariant(m_type, nullptr);
    }

    bool supported() const { return m_kind != Unsupported; }
    void *data()
    {
        switch (m_kind) {
        case Variant:
            return &m_variant;
        case Object:
            return &m_object;
        case ObjectList:
            return &m_objects;
        case Plain:
            return m_variant.data();
        case Unsupported:
            break;
        }
        return nullptr;
    }

    // Takes a Python argument; TypeError when it does not fit the type.
    void set(py::handle value)
    {
        switch (m_kind) {
        case Variant:
            m_variant = toVariant(value);
            return;
        case Object:
            m_object = toObject(value, m_type, m_typeName);
            return;
        case ObjectList:
            if (!py::isinstance<py::list>(value) && !py::isinstance<py::tuple>(value))
                typeError(QStringLiteral("expected a list, not %1").arg(typeLabel(value)));
            m_objects.clear();
            for (py::handle item : value)
                m_objects.append(toObject(item, m_elementType, m_typeName));
            return;
        case Plain:
            setPlain(value);
            return;
        case Unsupported:
            break;
        }
        typeError(QStringLiteral("scripts cannot pass %1").arg(QString::fromLatin1(m_typeName)));
    }

    py::object get() const
    {
        switch (m_kind) {
        case Variant:
        case Plain:
            return fromVariant(m_variant);
        case Object:
            return wrap(m_object);
        case ObjectList:
            return fromObjectList(m_objects);
        case Unsupported:
            break;
        }
        return py::none();
    }

private:
    enum Kind
    {
        Unsupported,
        Variant,
        Object,
        ObjectList,
        Plain,
    };

    [[noreturn]] void mismatch(py::handle value) const
    {
        typeError(QStringLiteral("expected %1, not %2")
                      .arg(QString::fromLatin1(m_typeName), typeLabel(value)));
    }

    void setPlain(py::handle value)
    {
        switch (m_type) {
        case QMetaType::Bool:
            if (!py::isinstance<py::bool_>(value))
                mismatch(value);
            m_variant = value.cast<bool>();
            return;
        case QMetaType::Int: {
            if (!isInteger(value))
                mismatch(value);
            const long long number = value.cast<long long>();
            if (number < std::numeric_limits<int>::min() ||
                number > std::numeric_limits<int>::max())
                throw py::value_error("integer out of range for int");
            m_variant = static_cast<int>(number);
            return;
        }
        case QMetaType::Double:
            if (!isNumber(value))
                mismatch(value);
            m_variant = value.cast<double>();
            return;
        case QMetaType::Float:
            if (!isNumber(value))
                mismatch(value);
            m_variant = value.cast<float>();
            return;
        case QMetaType::QString:
            if (!py::isinstance<py::str>(value))
                mismatch(value);
            m_variant = toQString(value);
            return;
        case QMetaType::QStringList: {
            if (!py::isinstance<py::list>(value) && !py::isinstance<py::tuple>(value))
                mismatch(value);
            QStringList list;
            for (py::handle item : value) {
                if (!py::isinstance<py::str>(item))
                    mismatch(value);
                list.append(toQString(item));
            }
            m_variant = list;
            return;
        }
        case QMetaType::QPointF:
        case QMetaType::QPoint: {
            const bool whole = m_type == QMetaType::QPoint;
            if (!(py::isinstance<py::tuple>(value) || py::isinstance<py::list>(value)) ||
                py::len(value) != 2)
                mismatch(value);
            const py::sequence pair = value.cast<py::sequence>();
            for (py::handle item : pair)
                if (whole ? !isInteger(item) : !isNumber(item))
                    mismatch(value);
            if (whole)
                m_variant = QPoint(pair[0].cast<int>(), pair[1].cast<int>());
            else
                m_variant = QPointF(pair[0].cast<double>(), pair[1].cast<double>());
            return;
        }
        default:
            break;
        }
        QVariant converted = toVariant(value);
        if (!converted.convert(m_type))
            mismatch(value);
        m_variant = converted;
    }

    QByteArray m_typeName;
    int m_type = QMetaType::UnknownType;
    int m_elementType = 0;
    Kind m_kind = Unsupported;
    QVariant m_variant;
    QObject *m_object = nullptr;
    QList<QObject *> m_objects;
};

// The public slots and Q_INVOKABLE methods of a class that go by a name, cached per class.
const std::vector<int> &methodsNamed(const QMetaObject *meta, const QByteArray &name)
{
    static QHash<const QMetaObject *, QHash<QByteArray, std::vector<int>>> cache;
    auto found = cache.find(meta);
    if (found == cache.end()) {
        QHash<QByteArray, std::vector<int>> byName;
        for (int i = 0; i < meta->methodCount(); ++i) {
            const QMetaMethod method = meta->method(i);
            if (method.access() != QMetaMethod::Public ||
                (method.methodType() != QMetaMethod::Slot &&
                 method.methodType() != QMetaMethod::Method))
                continue;
            // QObject's own slot (deleteLater) is not for scripts.
            if (i < QObject::staticMetaObject.methodCount())
                continue;
            byName[method.name()].push_back(i);
        }
        found = cache.insert(meta, byName);
    }
    static const std::vector<int> none;
    auto named = found->find(name);
    return named == found->end() ? none : *named;
}

QStringList scriptNames(const QObject *object)
{
    QStringList names;
    const QMetaObject *meta = object->metaObject();
    for (int i = QObject::staticMetaObject.methodCount(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.access() == QMetaMethod::Public && (method.methodType() == QMetaMethod::Slot ||
                                                       method.methodType() == QMetaMethod::Method))
            names.append(QString::fromLatin1(method.name()));
    }
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i)
        names.append(QString::fromLatin1(meta->property(i).name()));
    names.removeDuplicates();
    names.sort();
    return names;
}

// Calls one method with converted arguments; TypeError when they do not fit.
py::object invoke(QObject *object, const QMetaMethod &method, const std::vector<py::handle> &args)
{
    std::vector<std::unique_ptr<Value>> values;
    QGenericArgument generic[10];
    const QList<QByteArray> types = method.parameterTypes();
    for (int i = 0; i < types.size(); ++i) {
        values.push_back(std::make_unique<Value>(types.at(i)));
        Value &value = *values.back();
        try {
            value.set(args[static_cast<size_t>(i)]);
        } catch (py::type_error &error) {
            const QList<QByteArray> names = method.parameterNames();
            typeError(
                QStringLiteral("%1() argument %2 (%3): %4")
                    .arg(QString::fromLatin1(method.name()))
                    .arg(i + 1)
                    .arg(QString::fromLatin1(names.value(i)), QString::fromUtf8(error.what())));
        }
        generic[i] = QGenericArgument(types.at(i).constData(), value.data());
    }
    const QByteArray returnType = method.typeName();
    std::unique_ptr<Value> result;
    QGenericReturnArgument returned;
    if (method.returnType() != QMetaType::Void) {
        result = std::make_unique<Value>(returnType);
        if (result->supported())
            returned = QGenericReturnArgument(returnType.constData(), result->data());
    }
    OssScriptManager *scripts = OssScriptManager::instance();
    const int reported = scripts->errors().size();
    const bool called = method.invoke(object, Qt::DirectConnection, returned, generic[0],
                                      generic[1], generic[2], generic[3], generic[4], generic[5],
                                      generic[6], generic[7], generic[8], generic[9]);
    if (!called)
        raiseScriptError(
            OssScriptException::OperationFailed,
            QStringLiteral("Cannot call %1").arg(QString::fromLatin1(method.methodSignature())));
    // The host reports errors through its script error channel: the first one of this call
    // becomes the Python exception.
    const QList<OssScriptErrorReport> errors = scripts->errors();
    if (errors.size() > reported)
        raiseScriptError(errors.at(reported).type, errors.at(reported).message);
    return result && result->supported() ? result->get() : py::object(py::none());
}

// What o.name(...) calls: the methods of that name, chosen by their argument count and types.
struct BoundMethod
{
    QPointer<QObject> object;
    QByteArray name;

    py::object call(py::args args, py::kwargs kwargs) const
    {
        if (!object)
            raiseScriptError(OssScriptException::ObjectNotValid,
                             QStringLiteral("Script object not valid"));
        const QMetaObject *meta = object->metaObject();
        QString lastError;
        for (int index : methodsNamed(meta, name)) {
            const QMetaMethod method = meta->method(index);
            const QList<QByteArray> names = method.parameterNames();
            if (static_cast<int>(args.size() + kwargs.size()) != names.size())
                continue;
            std::vector<py::handle> ordered;
            for (py::handle arg : args)
                ordered.push_back(arg);
            ordered.resize(static_cast<size_t>(names.size()));
            bool fits = true;
            for (auto item : kwargs) {
                const int at = names.indexOf(item.first.cast<std::string>().c_str());
                if (at < static_cast<int>(args.size()) || ordered[static_cast<size_t>(at)]) {
                    fits = false;
                    break;
                }
                ordered[static_cast<size_t>(at)] = item.second;
            }
            if (!fits)
                continue;
            try {
                return invoke(object, method, ordered);
            } catch (py::type_error &error) {
                lastError = QString::fromUtf8(error.what());
            }
        }
        if (!lastError.isEmpty())
            typeError(lastError);
        typeError(QStringLiteral("%1() takes none of these arguments; it is %2")
                      .arg(QString::fromLatin1(name), signatures().join(QStringLiteral(" or "))));
    }

    QStringList signatures() const
    {
        QStringList result;
        if (!object)
            return result;
        const QMetaObject *meta = object->metaObject();
        for (int index : methodsNamed(meta, name)) {
            const QMetaMethod method = meta->method(index);
            QStringList parameters;
            const QList<QByteArray> types = method.parameterTypes();
            const QList<QByteArray> names = method.parameterNames();
            for (int i = 0; i < types.size(); ++i)
                parameters.append(QStringLiteral("%1: %2").arg(QString::fromLatin1(names.at(i)),
                                                               QString::fromLatin1(types.at(i))));
            result.append(QStringLiteral("%1(%2) -> %3")
                              .arg(QString::fromLatin1(name), parameters.join(QStringLiteral(", ")),
                                   QString::fromLatin1(method.typeName())));
        }
        return result;
    }
};

QObject *liveObject(const HostObject &host)
{
    if (!host.object)
        raiseScriptError(OssScriptException::ObjectNotValid,
                         QStringLiteral("Script object not valid"));
    return host.object.data();
}

py::object getAttribute(const HostObject &host, const std::string &attribute)
{
    QObject *object = liveObject(host);
    const QByteArray name = QByteArray::fromStdString(attribute);
    const QMetaObject *meta = object->metaObject();
    if (!methodsNamed(meta, name).empty())
        return py::cast(BoundMethod{object, name});
    const int property = meta->indexOfProperty(name.constData());
    if (property >= QObject::staticMetaObject.propertyCount())
        return fromVariant(meta->property(property).read(object));
    throw py::attribute_error(
        QStringLiteral("'%1' object has no attribute '%2'")
            .arg(QString::fromLatin1(meta->className()), QString::fromStdString(attribute))
            .toStdString());
}

void setAttribute(const HostObject &host, const std::string &attribute, py::handle value)
{
    QObject *object = liveObject(host);
    const QMetaObject *meta = object->metaObject();
    const int index = meta->indexOfProperty(attribute.c_str());
    if (index < QObject::staticMetaObject.propertyCount() || !meta->property(index).isWritable())
        throw py::attribute_error(
            QStringLiteral("'%1' object has no writable attribute '%2'")
                .arg(QString::fromLatin1(meta->className()), QString::fromStdString(attribute))
                .toStdString());
    const QMetaProperty property = meta->property(index);
    Value converted{QByteArray(property.typeName())};
    converted.set(value);
    QVariant written = property.userType() == QMetaType::QVariant
                           ? *static_cast<QVariant *>(converted.data())
                           : QVariant(property.userType(), converted.data());
    if (!property.write(object, written))
        typeError(QStringLiteral("cannot set '%1'").arg(QString::fromStdString(attribute)));
}

// `with ossa.undo("Title"):` makes everything done in the block one undo step; an exception
// leaving the block takes the block's changes back.
struct UndoBlock
{
    QString title;
    std::unique_ptr<OssUndoManager::AutoMacro> macro;

    void enter()
    {
        if (macro)
            throw py::value_error("this undo block is open already");
        macro = std::make_unique<OssUndoManager::AutoMacro>(title);
    }
    bool exit(py::handle type, py::handle, py::handle)
    {
        if (macro && !type.is_none())
            macro->cancel();
        macro.reset();
        return false;
    }
};

QObject *internalOf(QObject *object)
{
    if (auto *api = qobject_cast<Ossa::API *>(object))
        return api->internalObject();
    return object;
}

// Writes a PNG of a view's whole scene (or of any other widget) to Path.
void writePicture(py::handle target, const std::string &file, double scale)
{
    const QString path = QString::fromStdString(file);
    if (!isHost(target))
        typeError(QStringLiteral("expected a host object, not %1").arg(typeLabel(target)));
    QObject *internal = internalOf(objectOf(target));
    if (!internal)
        raiseScriptError(OssScriptException::ObjectNotValid,
                         QStringLiteral("Internal object not valid"));
    if (scale <= 0 || scale > 8)
        raiseScriptError(OssScriptException::OutOfRange,
                         QStringLiteral("Scale must be above 0 and at most 8"));
    QImage image;
    if (auto *view = qobject_cast<QGraphicsView *>(internal)) {
        QGraphicsScene *scene = view->scene();
        if (!scene)
            raiseScriptError(OssScriptException::ObjectUnavailable,
                             QStringLiteral("The view has no scene"));
        QRectF area = scene->itemsBoundingRect().adjusted(-40, -40, 40, 40);
        if (area.isEmpty())
            area = QRectF(0, 0, 200, 200);
        // Large graphs are scaled down to stay within a picture of 8192 pixels a side.
        const double fit = std::min({scale, 8192.0 / area.width(), 8192.0 / area.height()});
        image = QImage((area.size() * fit).toSize().expandedTo(QSize(1, 1)),
                       QImage::Format_ARGB32_Premultiplied);
        image.fill(view->backgroundBrush().style() == Qt::NoBrush
                       ? QColor(58, 58, 58)
                       : view->backgroundBrush().color());
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        scene->render(&painter, QRectF(QPointF(0, 0), QSizeF(image.size())), area);
    } else if (auto *widget = qobject_cast<QWidget *>(internal)) {
        image = widget->grab().toImage();
    } else {
        typeError(QStringLiteral("cannot make a picture of %1")
                      .arg(QString::fromLatin1(internal->metaObject()->className())));
    }
    if (!image.save(path, "PNG"))
        raiseScriptError(OssScriptException::IOError,
                         QStringLiteral("Cannot write the picture '%1'").arg(path));
}

// sys.stdout and sys.stderr of scripts: text goes to the engine, which passes it on.
struct OutputStream
{
    bool isError = false;
    void write(py::handle text)
    {
        if (!OssScriptEngine::instance()->write(toQString(py::str(text)), isError))
            PyErr_SetString(exceptionClasses().value(-1).ptr(),
                            "The script wrote more output than allowed");
        if (PyErr_Occurred())
            throw py::error_already_set();
    }
};

} // namespace

py::object wrap(QObject *object)
{
    if (!object)
        return py::none();
    return py::cast(HostObject{object});
}

QString toQString(py::handle text)
{
    return QString::fromStdString(text.cast<std::string>());
}

py::str fromQString(const QString &text)
{
    return py::str(text.toStdString());
}

py::object exceptionClass(int type)
{
    const QHash<int, py::object> &classes = exceptionClasses();
    return classes.contains(type) ? classes.value(type) : classes.value(-2);
}

void raiseScriptError(int type, const QString &message)
{
    PyErr_SetString(exceptionClass(type).ptr(), message.toUtf8().constData());
    throw py::error_already_set();
}

} // namespace OssScriptBridge

using namespace OssScriptBridge;
using namespace pybind11::literals;

PYBIND11_EMBEDDED_MODULE(ossa, module)
{
    module.doc() = "The host application's objects for scripts.";

    // ScriptError, with one subclass per kind of script error. OutputLimitExceeded is not an
    // Exception, so that a loop that catches everything still stops.
    py::object builtins = py::module_::import("builtins");
    py::object type = builtins.attr("type");
    py::object base = type("ScriptError", py::make_tuple(builtins.attr("Exception")),
                           py::dict("__module__"_a = "ossa", "type"_a = -1));
    module.attr("ScriptError") = base;
    exceptionClasses().insert(-2, base);
    const QMetaEnum kinds = QMetaEnum::fromType<OssScriptException::Type>();
    for (int i = 0; i < kinds.keyCount(); ++i) {
        py::object kind = type(kinds.key(i), py::make_tuple(base),
                               py::dict("__module__"_a = "ossa", "type"_a = kinds.value(i)));
        module.attr(kinds.key(i)) = kind;
        exceptionClasses().insert(kinds.value(i), kind);
    }
    py::object limit = type("OutputLimitExceeded", py::make_tuple(builtins.attr("BaseException")),
                            py::dict("__module__"_a = "ossa"));
    module.attr("OutputLimitExceeded") = limit;
    exceptionClasses().insert(-1, limit);

    py::class_<HostObject>(module, "HostObject")
        .def("__getattr__", &getAttribute)
        .def("__setattr__", &setAttribute)
        .def("__dir__",
             [](const HostObject &host) {
                 py::list names;
                 for (const QString &name : scriptNames(liveObject(host)))
                     names.append(fromQString(name));
                 return names;
             })
        .def("__repr__",
             [](const HostObject &host) {
                 if (!host.object)
                     return std::string("<ossa object, gone>");
                 return QStringLiteral("<%1 at 0x%2>")
                     .arg(QString::fromLatin1(host.object->metaObject()->className()))
                     .arg(reinterpret_cast<quintptr>(host.object.data()), 0, 16)
                     .toStdString();
             })
        .def("__eq__",
             [](const HostObject &host, py::handle other) {
                 return isHost(other) && other.cast<HostObject &>().object == host.object;
             })
        .def("__hash__",
             [](const HostObject &host) {
                 return static_cast<py::ssize_t>(reinterpret_cast<quintptr>(host.object.data()));
             })
        .def("isValid", [](const HostObject &host) { return !host.object.isNull(); })
        .def("className", [](const HostObject &host) {
            return fromQString(QString::fromLatin1(liveObject(host)->metaObject()->className()));
        });

    py::class_<BoundMethod>(module, "HostMethod")
        .def("__call__", &BoundMethod::call)
        .def("__repr__",
             [](const BoundMethod &method) {
                 return QStringLiteral("<host method %1>")
                     .arg(method.signatures().join(QStringLiteral(" | ")))
                     .toStdString();
             })
        .def_property_readonly("__doc__", [](const BoundMethod &method) {
            return fromQString(method.signatures().join(QLatin1Char('\n')));
        });

    py::class_<UndoBlock>(module, "UndoBlock")
        .def("__enter__", &UndoBlock::enter)
        .def("__exit__", &UndoBlock::exit);

    py::class_<OutputStream>(module, "OutputStream")
        .def(py::init<>())
        .def_readwrite("isError", &OutputStream::isError)
        .def("write", &OutputStream::write)
        .def("flush", [](const OutputStream &) {})
        .def_property_readonly("encoding", [](const OutputStream &) { return "utf-8"; });

    module.def(
        "undo",
        [](const std::string &title) {
            auto block = std::make_unique<UndoBlock>();
            block->title = QString::fromStdString(title);
            return block;
        },
        "A block that is one undo step: with ossa.undo(\"Title\"): ...", py::arg("title"));
    module.def(
        "project",
        [] {
            return wrap(OssScriptManager::instance()->apiFor(
                OssProjectManager::instance()->currentProject()));
        },
        "The open project, or None.");
    module.def(
        "palette",
        [](const std::string &name) {
            OssPalette *palette = OssPaletteManager::instance()->find(QString::fromStdString(name));
            if (!palette)
                raiseScriptError(
                    OssScriptException::NotFound,
                    QStringLiteral("No palette named '%1'").arg(QString::fromStdString(name)));
            return wrap(OssScriptManager::instance()->apiFor(palette));
        },
        "The script object of a palette (\"Node Graph\").", py::arg("name"));
    module.def(
        "paletteNames",
        [] {
            py::list names;
            for (OssPalette *palette : OssPaletteManager::instance()->palettes())
                names.append(fromQString(palette->objectName()));
            return names;
        },
        "The names of the application's palettes.");
    module.def("writePicture", &writePicture,
               "Writes a PNG of a node graph view's whole graph (or of another widget).",
               py::arg("view"), py::arg("path"), py::arg("scale") = 1.0);
}
