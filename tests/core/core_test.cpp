// Tests of bring-up and shutdown: registrations, global pointers and the order of the traces.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "core/core.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "services/application.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"
#include "services/random_table.h"

using Lines = std::vector<std::string>;

TEST(Core, StartupRegistersEveryServiceAndShutdownClearsThem) {
  ASSERT_EQ(CoreStartup(), 1);
  EXPECT_EQ(gIM->entries.count, 8);
  const std::pair<const char*, int> references[] = {{"DBG", 0}, {"MEM", 0}, {"DLL", 1},
                                                    {"FMG", 1}, {"RND", 1}, {"CLK", 0},
                                                    {"OPT", 0}, {"APP", 0}};
  for (const auto& [name, count] : references) {  // the bound pointers hold one reference
    void* iface = nullptr;
    ASSERT_EQ(gIM->Get(name, &iface), 1) << name;
    auto* entry = static_cast<InterfaceEntry*>(gIM->entries.current->payload);
    EXPECT_EQ(entry->refCount, count + 1) << name;
    EXPECT_EQ(entry->owner, 0u) << name;
    gIM->Release(name, &iface);
  }
  // The program's pointers lead to the same objects as the registry's tables.
  const std::pair<const char*, void*> bound[] = {
      {"FMG", static_cast<FileInterface*>(gFMG)}, {"APP", static_cast<ApplicationInterface*>(gAPP)}};
  for (auto [name, pointer] : bound) {
    void* table = nullptr;
    gIM->Get(name, &table);
    EXPECT_EQ(table, pointer) << name;
    gIM->Release(name, &table);
  }
  EXPECT_EQ(gRND->GetSeed(), 1u);

  int window, instance;
  gMainWindowHandle = &window;
  gInstanceHandle = &instance;
  ApplicationTakeHandles();
  Application* app = gAPP;
  void* leftOver = memAlloc(100);
  ASSERT_NE(leftOver, nullptr);
  CoreShutdown();
  EXPECT_EQ(app->GetWindowHandle(), nullptr);
  EXPECT_EQ(app->GetInstanceHandle(), nullptr);
  gMainWindowHandle = gInstanceHandle = nullptr;
  const void* globals[] = {gMEM, gDBG, gDLL, gFMG, gRND, gAPP};
  for (int i = 0; i < 6; i++) EXPECT_EQ(globals[i], nullptr) << "global " << i;
  EXPECT_EQ(gIM->entries.count, 0);
  memFree(leftOver);  // gone with the heap; this must do nothing
}

TEST(Core, StartupAndShutdownTraceInMirrorOrder) {
  dbgSetLogSwitch(kDbgLogEverything);
  TempDir dir;
  char startDirectory[260];
  fmgGetCurrentDirectory(startDirectory, 260);
  ASSERT_EQ(fmgSetCurrentDirectory(systemPath(dir.path()).c_str()), 1);
  ASSERT_EQ(CoreStartup(), 1);  // the log goes to .\debug.out
  CoreShutdown();
  dbgSetLogSwitch(0);
  fmgSetCurrentDirectory(startDirectory);
  // "+X" and "-X" stand for the registration and the unregistration of the interface X.
  const Lines steps = {
      "Debug System initialized...", "Memory Manager initialized...",
      "Interface Manager initialized...", "+DBG", "Debug System interface registered...", "+MEM",
      "Memory Manager interface registered...", "+DLL", "DLL Library Manager initialized...",
      "+FMG", "FileManager initialized...", "+RND",
      "Clock with period 1 initialized (1,1000000).", "+CLK", "+OPT", "+APP", "-APP", "-OPT",
      "Clock with period 1 stopped...", "-CLK", "-RND", "File Manager deinitialized...", "-FMG",
      "DLL Library Manager deinitialized...", "-DLL", "-MEM",
      "Memory Manager interface unregistered...", "-DBG", "Debug System interface unregistered...",
      "Interface Manager deinitialized...", "Memory Manager deinitialized...",
      "Debug System deinitialized..."};
  Lines expected;
  for (const std::string& step : steps) {
    const char* how = step[0] == '+' ? " successfully registered." : " successfully unregistered.";
    bool interface = step.size() == 4 && (step[0] == '+' || step[0] == '-');
    expected.push_back("MSG|" + (interface ? "Interface " + step.substr(1) + how : step));
  }
  Lines lines;
  std::istringstream in(readWholeFile(dir.file("debug.out")));
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  EXPECT_EQ(lines, expected);
}

// Brought up again, the registry lets go of its nodes but not of the entries they held; its
// shutdown names only the entries with references still open.
TEST_F(KernelTest, RegistryInitDropsItsNodesAndShutdownNamesOpenReferences) {
  InterfaceManager registry;
  registry.Init();
  int service;
  void* got = nullptr;
  ASSERT_EQ(registry.Register("KEPT", &service, 0), 1);
  auto* kept = static_cast<InterfaceEntry*>(registry.entries.head->payload);
  registry.Init();
  ASSERT_EQ(registry.entries.count, 0);  // else the entry below would be freed twice
  EXPECT_EQ(registry.entries.head, nullptr);
  EXPECT_STREQ(kept->name, "KEPT");
  strFree(&kept->name);
  memFree(kept);

  for (const char* name : {"AAA", "BBB"}) ASSERT_EQ(registry.Register(name, &service, 0), 1);
  ASSERT_EQ(registry.Get("AAA", &got), 1);
  Lines named;
  {
    TraceCapture trace;
    registry.Shutdown();
    for (const std::string& line : trace.Lines()) {
      if (line.find("reference count") != std::string::npos) named.push_back(line);
    }
  }
  EXPECT_EQ(named, Lines{"MSG|...Interface AAA has reference count of 1."});
  EXPECT_EQ(registry.entries.count, 0);
}
