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

}  // namespace

// A log made with the switch on, writing to `path`.
class DebugLogTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dbgSetLogSwitch(1);
    log.Init(path.c_str());
    dbgSetLogSwitch(0);
  }
  TempDir dir;
  std::string path = dir.file("log.txt");
  DebugSystem log;
};

TEST_F(DebugLogTest, ProgramConfigurationWritesNothing) {
  DebugSystem quiet;
  quiet.Init(dir.file("quiet.txt").c_str());  // the switch is off, as in the program
  EXPECT_STREQ(quiet.fileName, "");
  quiet.SetThreshold(0);
  quiet.SetMode(1);
  quiet.Trace(3, "nothing %d", 1);
  EXPECT_FALSE(std::ifstream(dir.file("quiet.txt")).good());
}

TEST_F(DebugLogTest, ModeZeroNeedsAnOpenStreamAndModeOneClosesIt) {
  log.SetThreshold(0);
  log.Trace(1, "no stream yet");
  EXPECT_EQ(readWholeFile(path), "");
  log.stream = std::fopen(path.c_str(), "a");
  log.Trace(1, "flushed %s", "at once");
  EXPECT_EQ(readWholeFile(path), "MSG|flushed at once\n");  // flushed per line
  log.SetMode(1);
  EXPECT_EQ(log.stream, nullptr);
  log.Trace(3, "%s", std::string(3000, 'y').c_str());  // cut inside the 1024-byte line buffer
  EXPECT_EQ(readWholeFile(path), "MSG|flushed at once\nERR|" + std::string(1019, 'y'));
}

TEST_F(DebugLogTest, ThresholdLevelsAndLineFormats) {
  log.SetMode(1);
  log.Trace(3, "default threshold writes nothing");
  log.SetThreshold(2);
  for (int level = 0; level <= 4; level++) log.Trace(level, "level %d", level);
  traceTagged(log, "FMG", 3, "tagged %d%%", 100);
  traceTagged(log, "FMG", 1, "below the threshold");
  log.Shutdown();
  log.Trace(3, "after shutdown");
  EXPECT_EQ(readWholeFile(path), "WRN|level 2\nERR|level 3\nOFF|level 4\nERR|(FMG) tagged 100%\n");
}
