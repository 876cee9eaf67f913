// The plug-in loader on copies of the tests' plug-ins: a copy is a new file, so it loads fresh.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "core/core.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "probe.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"

static std::int32_t loadCountOfCurrent() {
  return static_cast<DllLibrary*>(gDLL->libraries.current->payload)->refCount;
}

class DllLibraryManagerTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    probe.readRefCount = loadCountOfCurrent;
    ASSERT_EQ(gIM->Register("PRB", &probe, 0), 1);
    gDLL->SetLibraryPath(systemPath(dir.path()).c_str());
    std::filesystem::copy_file(TESS_PROBE_PLUGIN, dir.file("probe.DLL"));
  }
  void TearDown() override {
    gDLL->FreeAll();
    gIM->Unregister("PRB");
    KernelTest::TearDown();
  }
  Probe probe;
  TempDir dir;
};

// A library whose interface is held stays loaded through FreeDll, FreeAll and shutdown.
TEST_F(DllLibraryManagerTest, CountsLoadsAndKeepsALibraryWhoseInterfaceIsHeld) {
  TraceCapture traces;
  std::filesystem::copy_file(TESS_BARE_PLUGIN, dir.file("bare.so"));
  for (int load = 1; load <= 2; load++) {  // the second time, loaded again after the unload
    ASSERT_EQ(gDLL->LoadDll("probe"), 1);  // the default extension is added
    EXPECT_EQ(probe.refCountDuringInit, 0);
    ASSERT_EQ(gDLL->LoadDll("probe"), 1);
    EXPECT_EQ(gDLL->FreeDll("probe") + gDLL->FreeDll("probe"), 2);
    EXPECT_EQ(probe.inits * 10 + probe.exits, load * 11);
  }
  EXPECT_EQ(gDLL->LoadDll("PROBE"), 0);  // names are compared, and files opened, by case
  ASSERT_EQ(gDLL->LoadDll("probe"), 1);
  void *held = nullptr, *again = nullptr;
  ASSERT_EQ(gIM->Get("TST", &held), 1);
  for (int count : {0, -1}) {
    EXPECT_EQ(gDLL->FreeDll("probe"), 0);
    EXPECT_EQ(loadCountOfCurrent(), count);
  }
  EXPECT_EQ(gDLL->LoadDll("probe"), 1);  // found again: no InitDLL
  for (int i = 0; i < 3; i++) ASSERT_EQ(gDLL->LoadDll("bare.so"), 1);  // exports no entry point
  EXPECT_EQ(gDLL->FreeAll(), 0);  // the count of 3 doesn't keep bare.so
  ASSERT_EQ(gDLL->libraries.count, 1);
  EXPECT_EQ(gIM->Get("TST", &again), 1);  // still loaded and usable
  EXPECT_EQ(gIM->Release("TST", &held) + gIM->Release("TST", &again), 2);
  gDLL->FreeAll();
  EXPECT_EQ(gDLL->FreeDll("probe"), 0);
  EXPECT_EQ(probe.inits * 10 + probe.exits, 33);
  EXPECT_TRUE(traces.Has("MSG|...DLL library probe still in use (1)."));
  // Both FreeAll of shutdown keep it: it goes with the process, its record with the heap.
  ASSERT_EQ(gDLL->LoadDll("probe") + gIM->Get("TST", &held), 2);
  CoreShutdown();
  EXPECT_EQ(probe.exits, 3);
  ASSERT_EQ(CoreStartup(), 1);
  blocksAtStart_ = LiveBlocks();
}

TEST_F(DllLibraryManagerTest, RefusesWhatItCannotLoadAndKeepsNothing) {
  writeWholeFile(dir.file("text.DLL"), "not a library\n");
  const std::string in = systemPath(dir.path());
  const std::string noMemory = "MSG|...unable to allocate memory for DLL library probe!";
  const struct { const char *path, *name; int failing; std::string resolved, trace; } rows[] = {
      {nullptr, "", 0, "", ""},
      {"", "missing", 0, ".\\missing.DLL", "MSG|DLL library path set to .\\."},  // the working one
      {in.c_str(), "text", 0, in + "\\text.DLL", ""},
      {in.c_str(), "probe", 1, in + "\\probe.DLL", noMemory},  // no memory for the record
      {in.c_str(), "probe", 2, in + "\\probe.DLL", noMemory},  // its name
      {in.c_str(), "probe", 3, in + "\\probe.DLL",
       "MSG|...unable to append DLL library probe to the list!"},  // its node
  };
  for (const auto& row : rows) {
    TraceCapture traces;
    gDLL->SetLibraryPath(row.path);
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(row.failing);
    EXPECT_EQ(gDLL->LoadDll(row.name), 0) << row.name << row.failing;  // the switch fires once
    EXPECT_TRUE(traces.Has("MSG|...unable to load DLL library " + row.resolved + "!")) << row.name;
    EXPECT_TRUE(row.trace.empty() || traces.Has(row.trace)) << row.trace;
    EXPECT_EQ(LiveBlocks(), blocks);
  }
  EXPECT_STREQ(gDLL->GetLibraryPath(), in.c_str());
  EXPECT_EQ(probe.inits, 0);
  EXPECT_EQ(gDLL->FreeDll(""), 0);
}
