#pragma once

// Runs the host shell: command line, plug-ins, main window, project, and the headless
// screenshot mode. Returns the process exit code.
int ossRunShell(int argc, char **argv);
