#pragma once

#include <OssScriptEngine.h>

#include <QString>
#include <QtTest>

// Python helpers every script test defines once: expect_error(kind, message, call, *args) runs
// a call that must raise Kind with exactly Message.
inline const char *ossPythonTestHelpers()
{
    return R"PY(
import ossa


def expect_error(kind, message, call, *args):
    try:
        result = call(*args)
    except kind as error:
        assert str(error) == message, "message was %r" % str(error)
        return error
    raise AssertionError("%r returned %r instead of raising %s" % (call, result, kind.__name__))
)PY";
}

// Runs Code in the shared namespace; a run that does not end with status 0 fails the calling
// test with the script's traceback.
#define OSS_RUN_PYTHON(code)                                                                       \
    do {                                                                                           \
        const OssScriptEngine::Result ossResult_ =                                                 \
            OssScriptEngine::instance()->run(QString(code));                                       \
        QVERIFY2(ossResult_.status == 0, qPrintable(ossResult_.error));                            \
    } while (false)
