// The program's life in one call: the main window's modal run between the kernel's bring-up
// and shutdown.
#include "shell/qt/tessarine_app.h"

#include <QApplication>
#include <clocale>

#include "core/core.h"
#include "platform/host_window.h"
#include "services/application.h"
#include "shell/qt/qt_window_calls.h"
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

int runWithQt(char* programName, const std::function<int()>& body) {
  int argc = 1;
  char* argv[] = {programName, nullptr};
  QApplication application(argc, argv);
  // Qt set the numeric locale from the environment; number text must not follow it.
  std::setlocale(LC_NUMERIC, "C");
  QtWindowCalls windowCalls;
  hostInstallWindowCalls(&windowCalls);
  int result = body();
  hostInstallWindowCalls(nullptr);
  return result;
}
