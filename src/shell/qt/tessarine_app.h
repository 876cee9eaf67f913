// The program's life in one call: the main window's modal run between the kernel's bring-up
// and shutdown.
#pragma once

// Constructs GunListDialog, brings the core up, stores the instance handle, runs the dialog
// modally, takes the core down and destroys the dialog. Always 0. Needs the QApplication.
int InitInstance();
