// The GUI tests' entry point: the editor's Qt process on the offscreen platform around GoogleTest.
#include <gtest/gtest.h>

#include <QByteArray>
#include <QtGlobal>

#include "shell/qt/tessarine_app.h"

int main(int argc, char** argv) {
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  ::testing::InitGoogleTest(&argc, argv);
  return runWithQt(argv[0], [] { return RUN_ALL_TESTS(); });
}
