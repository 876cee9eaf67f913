// The program's life in one call: the main window's modal run between the kernel's bring-up
// and shutdown.
#pragma once
#include <functional>

// Constructs GunListDialog, brings the core up, stores the instance handle, runs the dialog
// modally, takes the core down and destroys the dialog. Always 0. Needs the QApplication.
int InitInstance();

// The editor's process around `body`: the QApplication on the stack, told only the program's
// name (so that no argument is read, Qt's own included), LC_NUMERIC back to "C" for libraries
// that print numbers, and the Application's window calls on Qt while `body` runs. Returns what
// `body` returns.
int runWithQt(char* programName, const std::function<int()>& body);
