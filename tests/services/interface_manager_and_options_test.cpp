// The InterfaceManager registry (names, counts, owners, traces, no memory) and the Options.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/memory_manager.h"
#include "base/string_util.h"
#include "config/ini_file.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "services/interface_manager.h"
#include "services/options.h"

static int serviceA, serviceB;

// Counts may fall below zero; Shutdown drops every entry and names those still referenced.
TEST_F(KernelTest, InterfaceManagerCountsReferencesPerNameAndInitForgetsItsNodes) {
  InterfaceManager im;
  im.Init();
  TraceCapture traces;
  const std::int64_t blocks = LiveBlocks();
  for (int nth = 1; nth <= 3; nth++) {  // no memory for the entry, its name or its node
    hostHeapFailNth(nth);
    EXPECT_EQ(im.Register("CLK", &serviceB, 0), 0) << nth;
    EXPECT_EQ(im.entries.count + LiveBlocks(), blocks) << nth;
  }
  void *held = nullptr, *other = &serviceB;
  for (const char* name : {"CLK", "AAA", "BBB", "ZERO", "LOW", "clk", ""}) {
    EXPECT_EQ(im.Register(name, &serviceA, *name == 'C' ? 5 : 0), 1);
  }
  EXPECT_EQ(im.Register(nullptr, &serviceA, 0), 1);
  EXPECT_EQ(im.Register("CLK", &serviceB, 9), 0);
  for (const char* name : {"CLK", "AAA", "AAA", "BBB"}) im.Get(name, &held);
  EXPECT_EQ(im.Get("", &other) + im.Release("", &other) + im.Unregister(""), 0);
  EXPECT_EQ(im.Unregister("AAA"), 1);  // with two references open
  EXPECT_EQ(im.CanFreeOwner(5), 0);
  EXPECT_EQ(im.CanFreeOwner(0), 1);  // owner 0 is no library's
  EXPECT_EQ(im.Release("CLK", &held), 1);
  EXPECT_EQ(im.Release("CLK", &held), 0);  // now null: no count, no trace
  EXPECT_EQ(im.CanFreeOwner(5), 1);
  EXPECT_EQ(im.Unregister("CLK"), 1);
  EXPECT_EQ(im.Get("CLK", &held) + im.Release("CLK", &other) + im.Unregister("CLK"), 0);
  EXPECT_EQ(im.Release("LOW", &other), 1);  // any variable but null releases
  im.Shutdown();
  for (std::string line : {"Unable to register Interface CLK!", "Interface CLK already registered.",
                           "Unable to get Interface CLK!", "Unable to release Interface CLK!",
                           "Register count for Interface AAA is non-zero (2)!",
                           "Unable to unregister Interface CLK."}) {
    EXPECT_TRUE(traces.Has("MSG|" + line)) << line;
  }
  std::vector<std::string> lines = traces.Lines();
  std::erase_if(lines, [](const auto& line) { return line.find(" count of ") == line.npos; });
  EXPECT_EQ(lines, std::vector<std::string>{"MSG|...Interface BBB has reference count of 1."});
  // Brought up again, the registry lets go of its nodes but not of the entries they held.
  ASSERT_EQ(im.Register("KEPT", &serviceA, 0), 1);
  auto* kept = static_cast<InterfaceEntry*>(im.entries.head->payload);
  im.Init();
  ASSERT_EQ(im.entries.count, 0);  // else the entry below would be freed twice
  strFree(&kept->name);
  memFree(kept);
}

TEST_F(KernelTest, OptionsHoldOneFileAtATime) {
  TempDir dir;
  Options options;
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
}
