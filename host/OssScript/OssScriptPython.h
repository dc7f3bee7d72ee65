#pragma once

// pybind11 before Qt: Qt's "slots" macro would clash with a member of Python's headers.
#pragma push_macro("slots")
#undef slots
#include <pybind11/embed.h>
#include <pybind11/stl.h>
#pragma pop_macro("slots")

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

namespace OssScriptBridge {

namespace py = pybind11;

// A host object seen from Python: its slots and Q_INVOKABLE methods are Python methods, its
// properties attributes.
struct HostObject
{
    QPointer<QObject> object;
};

// The Python form of a host object, or None for null.
py::object wrap(QObject *object);
// Python text <-> QString.
QString toQString(py::handle text);
py::str fromQString(const QString &text);
// Raises the ossa exception named for a script error type with Message.
[[noreturn]] void raiseScriptError(int type, const QString &message);
// The module's exception classes (ScriptError and one per error type), made on import.
py::object exceptionClass(int type);

} // namespace OssScriptBridge
