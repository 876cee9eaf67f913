// Tests of the plug-in loader: load counts, InitDLL and ExitDLL once per load, libraries held
// by their interfaces, refusals, and a library kept past shutdown.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/core.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "probe.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"

namespace {

DllLibrary* currentLibrary() { return static_cast<DllLibrary*>(gDLL->libraries.current->payload); }

std::int32_t loadCountOfCurrent() { return currentLibrary()->refCount; }

// Each test loads its own copies: a copy is a new file to the host, so it loads fresh.
class DllLibraryManagerTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    probe.readRefCount = loadCountOfCurrent;
    ASSERT_EQ(gIM->Register("PRB", &probe, 0), 1);
    gDLL->SetLibraryPath(systemPath(dir.path()).c_str());
  }
  void TearDown() override {
    gDLL->FreeAll();
    gIM->Unregister("PRB");
    KernelTest::TearDown();
  }
  void Install(const char* library, const std::string& name) {
    std::filesystem::copy_file(library, dir.file(name));
  }
  int Loaded() { return gDLL->libraries.count; }
  int HeldTestInterface() {
    void* iface = nullptr;
    return gIM->Get("TST", &iface);
  }
  void ReleaseTestInterface() {
    void* iface = &probe;
    gIM->Release("TST", &iface);
  }

  Probe probe;
  TempDir dir;
};

}  // namespace

TEST_F(DllLibraryManagerTest, CountsLoadsAndRunsEachEntryPointOncePerLoad) {
  Install(TESS_PROBE_PLUGIN, "probe.DLL");
  TraceCapture traces;
  ASSERT_EQ(gDLL->LoadDll("probe"), 1);  // the default extension is added
  EXPECT_EQ(probe.refCountDuringInit, 0);
  ASSERT_EQ(gDLL->LoadDll("probe"), 1);
  EXPECT_EQ(probe.inits, 1);
  EXPECT_EQ(loadCountOfCurrent(), 2);
  EXPECT_EQ(gDLL->LoadDll("PROBE"), 0);  // names are compared, and files opened, by case

  EXPECT_EQ(gDLL->FreeDll("probe"), 1);
  EXPECT_EQ(probe.exits, 0);
  EXPECT_EQ(HeldTestInterface(), 1);
  ReleaseTestInterface();
  EXPECT_EQ(gDLL->FreeDll("probe"), 1);
  EXPECT_EQ(probe.exits, 1);
  EXPECT_EQ(Loaded(), 0);
  EXPECT_EQ(gDLL->FreeDll("probe"), 0);
  EXPECT_EQ(probe.inits, 1);
  std::vector<std::string> lines = traces.Lines();
  std::erase_if(lines, [](const std::string& line) { return line.find("Interface") != std::string::npos; });
  EXPECT_EQ(lines, (std::vector<std::string>{
                       "MSG|Loading DLL library probe...",
                       "MSG|Loading DLL library probe...",
                       "MSG|...DLL library probe already loaded (2).",
                       "MSG|Loading DLL library PROBE...",
                       "MSG|...unable to load DLL library " + systemPath(dir.path()) + "\\PROBE.DLL!",
                       "MSG|Freeing DLL library probe...",
                       "MSG|...DLL library probe still in use (1).",
                       "MSG|Freeing DLL library probe...",
                       "MSG|Freeing DLL library probe...",
                       "MSG|...unable to free DLL library probe.",
                   }));
}

TEST_F(DllLibraryManagerTest, AHeldInterfaceKeepsItsLibraryUntilReleased) {
  Install(TESS_PROBE_PLUGIN, "probe.DLL");
  Install(TESS_BARE_PLUGIN, "bare.so");
  ASSERT_EQ(gDLL->LoadDll("probe.DLL"), 1);
  for (int i = 0; i < 3; i++) ASSERT_EQ(gDLL->LoadDll("bare.so"), 1);  // exports no entry point
  ASSERT_EQ(HeldTestInterface(), 1);
  EXPECT_EQ(gDLL->FreeDll("probe.DLL"), 0);
  EXPECT_EQ(loadCountOfCurrent(), 0);
  EXPECT_EQ(gDLL->FreeDll("probe.DLL"), 0);
  EXPECT_EQ(loadCountOfCurrent(), -1);
  EXPECT_EQ(gDLL->LoadDll("probe.DLL"), 1);  // found again: no second InitDLL
  EXPECT_EQ(loadCountOfCurrent(), 0);
  EXPECT_EQ(gDLL->FreeAll(), 0);  // the count of 3 doesn't keep bare.so
  ASSERT_EQ(Loaded(), 1);
  gDLL->libraries.MoveFirst();
  EXPECT_STREQ(currentLibrary()->name, "probe.DLL");
  EXPECT_EQ(probe.exits, 0);
  EXPECT_EQ(HeldTestInterface(), 1);  // still loaded and usable
  ReleaseTestInterface();
  ReleaseTestInterface();
  gDLL->FreeAll();
  EXPECT_EQ(probe.inits, 1);
  EXPECT_EQ(probe.exits, 1);
  EXPECT_EQ(Loaded(), 0);
}

TEST_F(DllLibraryManagerTest, RefusesWhatItCannotLoadAndKeepsNothing) {
  writeWholeFile(dir.file("text.DLL"), "not a library\n");
  Install(TESS_PROBE_PLUGIN, "probe.DLL");
  std::string missing = systemPath(dir.path()) + "\\missing.DLL";
  struct Case {
    const char* name;
    int failingAllocation;
    std::string resolved;
  } cases[] = {
      {"", 0, ""},
      {"missing", 0, missing},
      {"text", 0, systemPath(dir.path()) + "\\text.DLL"},
      {"probe", 1, systemPath(dir.path()) + "\\probe.DLL"},  // the record
      {"probe", 2, systemPath(dir.path()) + "\\probe.DLL"},  // its name
      {"probe", 3, systemPath(dir.path()) + "\\probe.DLL"},  // its node
  };
  for (const Case& c : cases) {
    TraceCapture traces;
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(c.failingAllocation);
    EXPECT_EQ(gDLL->LoadDll(c.name), 0) << c.name << c.failingAllocation;
    hostHeapFailNth(0);
    EXPECT_EQ(gDLL->resolvedPath, c.resolved);
    EXPECT_TRUE(traces.Has("MSG|...unable to load DLL library " + c.resolved + "!")) << c.name;
    const char* before[] = {"", "MSG|...unable to allocate memory for DLL library probe!",
                            "MSG|...unable to allocate memory for DLL library probe!",
                            "MSG|...unable to append DLL library probe to the list!"};
    if (c.failingAllocation) {
      EXPECT_TRUE(traces.Has(before[c.failingAllocation])) << c.failingAllocation;
    }
    EXPECT_EQ(Loaded(), 0);
    EXPECT_EQ(LiveBlocks(), blocks);
  }
  EXPECT_EQ(probe.inits, 0);
  EXPECT_EQ(gDLL->FreeDll(""), 0);
}

TEST_F(DllLibraryManagerTest, AnEmptyLibraryPathMeansTheWorkingDirectory) {
  for (const char* path : {"", static_cast<const char*>(nullptr)}) {
    TraceCapture traces;
    gDLL->SetLibraryPath(path);
    EXPECT_STREQ(gDLL->GetLibraryPath(), ".\\");
    EXPECT_TRUE(traces.Has("MSG|DLL library path set to .\\."));
  }
  gDLL->SetLibraryPath("\\opt\\plugins");
  gDLL->LoadDll("x");
  EXPECT_STREQ(gDLL->resolvedPath, "\\opt\\plugins\\x.DLL");
}

TEST(DllLibraryManagerShutdown, KeepsAHeldLibraryLoadedPastBothPasses) {
  TempDir dir;
  std::filesystem::copy_file(TESS_PROBE_PLUGIN, dir.file("kept.DLL"));
  Probe probe;
  ASSERT_EQ(CoreStartup(), 1);
  gIM->Register("PRB", &probe, 0);
  ASSERT_EQ(gDLL->LoadDll(systemPath(dir.file("kept.DLL")).c_str()), 1);
  void* held = nullptr;
  ASSERT_EQ(gIM->Get("TST", &held), 1);
  CoreShutdown();
  EXPECT_EQ(probe.exits, 0);  // goes with the process
  ASSERT_EQ(CoreStartup(), 1);  // a new bring-up starts with an empty list
  DllLibraryManager* dll = nullptr;
  ASSERT_EQ(imGet(gIM, "DLL", &dll), 1);
  EXPECT_EQ(dll->libraries.count, 0);
  imRelease(gIM, "DLL", &dll);
  CoreShutdown();
}
