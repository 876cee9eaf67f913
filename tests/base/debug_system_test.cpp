// Tests of the DebugSystem log: gating, levels, line formats, modes, and the program's silence.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "base/debug_system.h"
#include "kernel_fixture.h"

namespace {

void traceTagged(DebugSystem& log, const char* tag, int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  log.TraceTagged(tag, level, format, args);
  va_end(args);
}

// A log with the switch on, writing to `path` once per line (mode 1).
struct SwitchedLog {
  explicit SwitchedLog(const std::string& path) {
    dbgSetLogSwitch(1);
    log.Init(path.c_str());
    dbgSetLogSwitch(0);
  }
  DebugSystem log;
};

}  // namespace

TEST(DebugSystem, ProgramConfigurationWritesNothing) {
  TempDir dir;
  std::string path = dir.file("debug.out");
  DebugSystem log;
  log.Init(path.c_str());
  EXPECT_EQ(log.active, 0);
  EXPECT_STREQ(log.fileName, "");
  log.SetThreshold(0);
  log.SetMode(1);
  EXPECT_EQ(log.threshold, 0);
  EXPECT_EQ(log.mode, 1);
  log.Trace(3, "nothing %d", 1);
  EXPECT_FALSE(std::ifstream(path).good());
}

TEST(DebugSystem, ThresholdLevelsAndLineFormats) {
  TempDir dir;
  std::string path = dir.file("log.txt");
  SwitchedLog switched(path);
  DebugSystem& log = switched.log;
  log.SetMode(1);
  log.Trace(3, "default threshold writes nothing");
  log.SetThreshold(2);
  log.Trace(0, "trace");
  log.Trace(1, "message");
  log.Trace(2, "warning %d", 2);
  log.Trace(3, "error %s", "x");
  log.Trace(4, "off");
  traceTagged(log, "FMG", 3, "tagged %d%%", 100);
  traceTagged(log, "FMG", 1, "below the threshold");
  EXPECT_EQ(readWholeFile(path), "WRN|warning 2\nERR|error x\nOFF|off\nERR|(FMG) tagged 100%\n");
  log.Shutdown();
  EXPECT_EQ(log.active, 0);
  log.Trace(3, "after shutdown");
  EXPECT_EQ(readWholeFile(path).find("after"), std::string::npos);
}

TEST(DebugSystem, ModeZeroWritesToAnOpenStreamOnlyAndModeOneClosesIt) {
  TempDir dir;
  std::string path = dir.file("log.txt");
  SwitchedLog switched(path);
  DebugSystem& log = switched.log;
  log.SetThreshold(0);
  log.Trace(1, "no stream yet");
  EXPECT_EQ(readWholeFile(path), "");
  log.stream = std::fopen(path.c_str(), "a");
  log.Trace(1, "flushed %s", "at once");
  EXPECT_EQ(readWholeFile(path), "MSG|flushed at once\n");  // fflush per line
  log.SetMode(0);
  EXPECT_NE(log.stream, nullptr);
  log.SetMode(1);
  EXPECT_EQ(log.stream, nullptr);
  log.fileName[0] = '\0';
  log.Trace(1, "mode 1 with no name and no stream");
  EXPECT_EQ(readWholeFile(path), "MSG|flushed at once\n");
}

TEST(DebugSystem, LongMessageIsCutInsideTheLineBuffer) {
  TempDir dir;
  std::string path = dir.file("log.txt");
  SwitchedLog switched(path);
  switched.log.SetThreshold(0);
  switched.log.SetMode(1);
  std::string longText(3000, 'y');
  switched.log.Trace(1, "%s", longText.c_str());
  std::string written = readWholeFile(path);
  EXPECT_EQ(written.size(), 1023u);
  EXPECT_EQ(written.substr(0, 5), "MSG|y");
}
