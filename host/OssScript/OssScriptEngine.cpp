#include "OssScriptPython.h"

#include "OssScriptEngine.h"

#include <QFile>
#include <QFileInfo>

#include <memory>

namespace py = pybind11;
using namespace OssScriptBridge;

namespace {

// Helpers that are simplest in Python itself: the traceback text of the exception being handled,
// console compilation, and completion.
const char *const HelperSource = R"PY(
import codeop as _codeop
import rlcompleter as _rlcompleter
import sys as _sys
import traceback as _traceback


def format_exception(kind, value, tb):
    return "".join(_traceback.format_exception(kind, value, tb))


def compile_entry(source):
    # None while the entry needs more lines; a single statement echoes its value.
    try:
        code = _codeop.compile_command(source, "<console>", "single")
    except SyntaxError:
        return compile(source, "<console>", "exec")
    if code is None and source.endswith("\n\n"):
        return compile(source, "<console>", "exec")
    return code


def complete(text, namespace):
    completer = _rlcompleter.Completer(namespace)
    found = []
    index = 0
    while True:
        match = completer.complete(text, index)
        if match is None:
            return found
        if match not in found:
            found.append(match)
        index += 1
)PY";

struct Interpreter
{
    std::unique_ptr<py::scoped_interpreter> interpreter;
    py::object main;
    py::module_ helpers;
};

Interpreter &interpreter()
{
    static auto *state = [] {
        auto *made = new Interpreter;
        // Signal handlers stay the application's.
        made->interpreter = std::make_unique<py::scoped_interpreter>(false);
        made->main = py::module_::import("__main__").attr("__dict__");
        // The module's definition must outlive the module, which lives as long as the process.
        static py::module_::module_def definition;
        made->helpers = py::module_::create_extension_module("_ossa_console", nullptr, &definition);
        py::exec(HelperSource, made->helpers.attr("__dict__"));
        py::module_ ossa = py::module_::import("ossa");
        made->main["ossa"] = ossa;
        py::module_ sys = py::module_::import("sys");
        py::object stream = ossa.attr("OutputStream");
        py::object out = stream();
        py::object err = stream();
        err.attr("isError") = true;
        sys.attr("stdout") = out;
        sys.attr("stderr") = err;
        return made;
    }();
    return *state;
}

} // namespace

OssScriptEngine *OssScriptEngine::instance()
{
    // Never destroyed: the interpreter lives until the process ends.
    static OssScriptEngine *engine = new OssScriptEngine;
    return engine;
}

OssScriptEngine::OssScriptEngine()
{
    interpreter();
}

OssScriptEngine::~OssScriptEngine() = default;

void OssScriptEngine::setOutputLimit(qint64 characters)
{
    m_outputLimit = characters;
}

bool OssScriptEngine::write(const QString &text, bool isError)
{
    if (m_outputLimit > 0 && m_written > m_outputLimit)
        return false;
    m_written += text.size();
    emit output(text, isError);
    return m_outputLimit <= 0 || m_written <= m_outputLimit;
}

void OssScriptEngine::addObject(const QString &name, QObject *object)
{
    py::gil_scoped_acquire gil;
    py::module_::import("ossa").attr(name.toUtf8().constData()) = wrap(object);
}

OssScriptEngine::Result OssScriptEngine::run(const QString &code, const QString &fileName,
                                             const QStringList &argv)
{
    return execute(code, fileName, argv, false);
}

OssScriptEngine::Result OssScriptEngine::runFile(const QString &path, const QStringList &argv)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        Result failed;
        failed.status = 2;
        failed.error = QStringLiteral("Cannot open the script '%1': %2")
                           .arg(path, QFileInfo::exists(path) ? file.errorString()
                                                              : QStringLiteral("no such file"));
        return failed;
    }
    QStringList arguments = argv;
    if (arguments.isEmpty())
        arguments.append(path);
    return execute(QString::fromUtf8(file.readAll()), path, arguments, false);
}

OssScriptEngine::Result OssScriptEngine::runInteractive(const QString &source)
{
    return execute(source, QStringLiteral("<console>"), QStringList(), true);
}

OssScriptEngine::Result OssScriptEngine::execute(const QString &source, const QString &fileName,
                                                 const QStringList &argv, bool interactive)
{
    Interpreter &state = interpreter();
    Result result;
    // A script that runs a script (through a host slot) shares the first one's output budget.
    const bool outermost = !m_running;
    if (outermost)
        m_written = 0;
    m_running = true;
    try {
        if (!argv.isEmpty()) {
            py::list arguments;
            for (const QString &argument : argv)
                arguments.append(fromQString(argument));
            py::module_::import("sys").attr("argv") = arguments;
        }
        py::object code;
        if (interactive) {
            code = state.helpers.attr("compile_entry")(fromQString(source));
            if (code.is_none()) {
                result.incomplete = true;
                m_running = !outermost;
                return result;
            }
        } else {
            code = py::module_::import("builtins")
                       .attr("compile")(fromQString(source), fromQString(fileName), "exec");
        }
        state.main["__file__"] = fromQString(fileName);
        py::module_::import("builtins").attr("exec")(code, state.main);
    } catch (py::error_already_set &error) {
        if (error.matches(PyExc_SystemExit)) {
            py::object value = error.value().attr("code");
            if (value.is_none())
                result.status = 0;
            else if (py::isinstance<py::int_>(value))
                result.status = value.cast<int>();
            else {
                result.status = 1;
                result.error = toQString(py::str(value)) + QLatin1Char('\n');
            }
        } else {
            result.status = 1;
            // A syntax error found while compiling comes without a traceback.
            auto orNone = [](const py::object &part) {
                return part ? part : py::object(py::none());
            };
            result.error = toQString(state.helpers.attr("format_exception")(
                orNone(error.type()), orNone(error.value()), orNone(error.trace())));
        }
    } catch (std::exception &error) {
        result.status = 1;
        result.error = QString::fromUtf8(error.what()) + QLatin1Char('\n');
    }
    m_running = !outermost;
    return result;
}

bool OssScriptEngine::needsMoreInput(const QString &source)
{
    Interpreter &state = interpreter();
    try {
        return state.helpers.attr("compile_entry")(fromQString(source)).is_none();
    } catch (py::error_already_set &) {
        // A syntax error is not waiting for more: running the entry reports it.
        return false;
    }
}

QStringList OssScriptEngine::completions(const QString &text)
{
    Interpreter &state = interpreter();
    QStringList found;
    try {
        for (py::handle match : state.helpers.attr("complete")(fromQString(text), state.main))
            found.append(toQString(match));
    } catch (py::error_already_set &) {
        // Completing never fails loudly: an expression that cannot be evaluated has none.
    }
    return found;
}
