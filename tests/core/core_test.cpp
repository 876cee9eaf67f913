// Tests of bring-up and shutdown: registrations, global pointers and the order of the traces.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "core/core.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "services/application.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"
#include "services/random_table.h"

TEST(Core, StartupRegistersEveryServiceAndShutdownClearsThem) {
  ASSERT_EQ(CoreStartup(), 1);
  ASSERT_NE(gIM, nullptr);
  struct Case {
    const char* name;
    int refCount;
  } cases[] = {{"DBG", 0}, {"MEM", 0}, {"DLL", 1}, {"FMG", 1},
               {"RND", 1}, {"CLK", 0}, {"OPT", 0}, {"APP", 0}};
  EXPECT_EQ(gIM->entries.count, 8);
  for (const Case& c : cases) {
    void* iface = nullptr;
    ASSERT_EQ(gIM->Get(c.name, &iface), 1) << c.name;
    auto* entry = static_cast<InterfaceEntry*>(gIM->entries.current->payload);
    EXPECT_EQ(entry->refCount, c.refCount + 1) << c.name;
    EXPECT_EQ(entry->owner, 0u) << c.name;
    gIM->Release(c.name, &iface);
  }
  // The program's pointers lead to the same objects as the registry's tables.
  void* table = nullptr;
  gIM->Get("FMG", &table);
  EXPECT_EQ(table, static_cast<FileInterface*>(gFMG));
  gIM->Release("FMG", &table);
  gIM->Get("APP", &table);
  EXPECT_EQ(table, static_cast<ApplicationInterface*>(gAPP));
  gIM->Release("APP", &table);
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
  for (const void* global : {static_cast<const void*>(gMEM), static_cast<const void*>(gDBG),
                             static_cast<const void*>(gDLL), static_cast<const void*>(gFMG),
                             static_cast<const void*>(gRND), static_cast<const void*>(gAPP)}) {
    EXPECT_EQ(global, nullptr);
  }
  EXPECT_EQ(gIM->entries.count, 0);
  memFree(leftOver);  // gone with the heap; this must do nothing
}

TEST(Core, StartupAndShutdownTraceInMirrorOrder) {
  dbgSetLogSwitch(kDbgLogEverything);
  TempDir dir;
  std::string log = dir.file("debug.out");
  char startDirectory[260];
  fmgGetCurrentDirectory(startDirectory, 260);
  ASSERT_EQ(fmgSetCurrentDirectory(systemPath(dir.path()).c_str()), 1);
  ASSERT_EQ(CoreStartup(), 1);  // the log goes to .\debug.out
  CoreShutdown();
  dbgSetLogSwitch(0);
  fmgSetCurrentDirectory(startDirectory);
  std::vector<std::string> expected = {
      "MSG|Debug System initialized...",
      "MSG|Memory Manager initialized...",
      "MSG|Interface Manager initialized...",
      "MSG|Interface DBG successfully registered.",
      "MSG|Debug System interface registered...",
      "MSG|Interface MEM successfully registered.",
      "MSG|Memory Manager interface registered...",
      "MSG|Interface DLL successfully registered.",
      "MSG|DLL Library Manager initialized...",
      "MSG|Interface FMG successfully registered.",
      "MSG|FileManager initialized...",
      "MSG|Interface RND successfully registered.",
      "MSG|Clock with period 1 initialized (1,1000000).",
      "MSG|Interface CLK successfully registered.",
      "MSG|Interface OPT successfully registered.",
      "MSG|Interface APP successfully registered.",
      "MSG|Interface APP successfully unregistered.",
      "MSG|Interface OPT successfully unregistered.",
      "MSG|Clock with period 1 stopped...",
      "MSG|Interface CLK successfully unregistered.",
      "MSG|Interface RND successfully unregistered.",
      "MSG|File Manager deinitialized...",
      "MSG|Interface FMG successfully unregistered.",
      "MSG|DLL Library Manager deinitialized...",
      "MSG|Interface DLL successfully unregistered.",
      "MSG|Interface MEM successfully unregistered.",
      "MSG|Memory Manager interface unregistered...",
      "MSG|Interface DBG successfully unregistered.",
      "MSG|Debug System interface unregistered...",
      "MSG|Interface Manager deinitialized...",
      "MSG|Memory Manager deinitialized...",
      "MSG|Debug System deinitialized...",
  };
  std::vector<std::string> lines;
  std::istringstream in(readWholeFile(log));
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  EXPECT_EQ(lines, expected);
}
