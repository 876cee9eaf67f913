// The program's life in one call: the main window's modal run between the kernel's bring-up
// and shutdown.
#include "shell/qt/tessarine_app.h"

#include <QApplication>

#include "core/core.h"
#include "services/application.h"
#include "shell/qt/gun_list_dialog.h"

int InitInstance() {
  GunListDialog dialog;
  // The result isn't looked at: the bring-up always reaches its end.
  CoreStartup();
  // Told to the Application service with the window's handle, as the window opens.
  gInstanceHandle = qApp;
  dialog.DoModal();
  CoreShutdown();
  return 0;
}
