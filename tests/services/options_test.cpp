// Tests of the Options service: one open file, replaced whole, read with defaults added.
#include <gtest/gtest.h>

#include "config/ini_file.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "services/options.h"

TEST_F(KernelTest, OptionsHoldOneFileAtATime) {
  TempDir dir;
  Options options;
  options.Init();
  auto* file = reinterpret_cast<IniFile*>(&options);
  EXPECT_EQ(options.GetOptions(&file), 0);
  EXPECT_EQ(file, reinterpret_cast<IniFile*>(&options)) << "untouched";
  writeWholeFile(dir.file("a.ini"), "[Video]\nWidth=800\n");
  options.OpenOptions(systemPath(dir.file("a.ini")).c_str());
  ASSERT_EQ(options.GetOptions(&file), 1);
  EXPECT_EQ(file->IniGetInt("Video", "Width", 0), 800);
  EXPECT_EQ(file->IniGetInt("Video", "Height", 600), 600);  // added: the file is changed
  options.OpenOptions(systemPath(dir.file("missing.ini")).c_str());  // replaces, unwritten
  ASSERT_EQ(options.GetOptions(&file), 1);
  EXPECT_EQ(file->sections.count, 0);
  EXPECT_EQ(readWholeFile(dir.file("a.ini")), "[Video]\nWidth=800\n");
  hostHeapFailNth(1);  // no memory for the object: nothing stays open
  options.OpenOptions(systemPath(dir.file("a.ini")).c_str());
  EXPECT_EQ(options.GetOptions(&file), 0);
  options.Shutdown();
}
