#pragma once

#include <QStringList>

class OssMainWindow;

// The shell's scripting: the Script Console palette and headless script runs. Without the
// scripting layer (built without Python) these report that scripting is unavailable.
namespace OssShellScripting {

bool available();

// Adds the Script Console palette, docked under the window and hidden until asked for.
void installConsole(OssMainWindow &window);

// Runs a script file (Code empty) or Code, writing its output to the process's standard output
// and error, with sys.argv = Argv. Returns the exit status: 0, 1 after an uncaught exception
// (its traceback on standard error), 2 when the file cannot be read or scripting is unavailable,
// or the code of a SystemExit.
int runBatch(const QString &file, const QString &code, const QStringList &argv);

} // namespace OssShellScripting
