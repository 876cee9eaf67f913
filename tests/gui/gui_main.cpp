// The GUI tests' entry point: a QApplication on the offscreen platform around GoogleTest.
#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>

#include "platform/host_window.h"
#include "shell/qt/qt_window_calls.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  QApplication application(argc, argv);
  std::setlocale(LC_NUMERIC, "C");
  QtWindowCalls windowCalls;
  hostInstallWindowCalls(&windowCalls);
  int result = RUN_ALL_TESTS();
  hostInstallWindowCalls(nullptr);
  return result;
}
