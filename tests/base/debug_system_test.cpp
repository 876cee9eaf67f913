#include "base/debug_system.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "kernel_fixture.h"

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

TEST_F(DebugLogTest, LinesPassTheThresholdAndGoWhereTheModeSays) {
  log.SetMode(1);
  log.Trace(3, "default threshold writes nothing");
  log.SetThreshold(2);
  for (int level = 0; level <= 4; level++) log.Trace(level, "level %d%%", level);
  log.Trace(3, "%s", std::string(3000, 'y').c_str());  // cut inside the 1024-byte line buffer
  EXPECT_EQ(readWholeFile(path),
            "WRN|level 2%\nERR|level 3%\nOFF|level 4%\nERR|" + std::string(1019, 'y'));
  log.stream = std::fopen(path.c_str(), "w");
  log.SetMode(0);  // any mode but 1 leaves the stream alone
  ASSERT_NE(log.stream, nullptr);
  log.Trace(2, "flushed %s", "at once");
  EXPECT_EQ(readWholeFile(path), "WRN|flushed at once\n");  // flushed per line
  log.SetMode(1);
  EXPECT_EQ(log.stream, nullptr);
  log.fileName[0] = '\0';  // mode 1 without a name: a line goes only to a stream opened by hand
  log.stream = std::fopen(path.c_str(), "w");
  log.Trace(2, "by hand");
  EXPECT_EQ(log.stream, nullptr) << "closed after the line";
  log.Trace(2, "no stream now");
  EXPECT_EQ(readWholeFile(path), "WRN|by hand\n");
}
