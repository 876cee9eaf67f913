#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "core/core.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "services/application.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"
#include "services/random_table.h"

// The globals bound at bring-up hold one reference each; the traces of shutdown mirror those of
// bring-up.
TEST(Core, StartupBindsEveryServiceAndShutdownUndoesItInMirrorOrder) {
  dbgSetLogSwitch(kDbgLogEverything);
  TempDir dir;
  const std::filesystem::path startDirectory = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  ASSERT_EQ(CoreStartup(), 1);  // the log goes to .\debug.out
  const std::pair<const char*, int> references[] = {
      {"DBG", 1}, {"MEM", 1}, {"CLK", 1}, {"OPT", 1},
      {"DLL", 2}, {"FMG", 2}, {"RND", 2}, {"APP", 1}};
  for (auto [name, count] : references) {
    void* iface = nullptr;
    ASSERT_EQ(gIM->Get(name, &iface), 1) << name;
    EXPECT_EQ(static_cast<InterfaceEntry*>(gIM->entries.current->payload)->refCount, count);
    gIM->Release(name, &iface);
  }
  void* leftOver = memAlloc(100);
  CoreShutdown();
  dbgSetLogSwitch(0);
  std::filesystem::current_path(startDirectory);
  const void* globals[] = {gMEM, gDBG, gDLL, gFMG, gRND, gAPP};
  for (int i = 0; i < 6; i++) EXPECT_EQ(globals[i], nullptr) << "global " << i;
  EXPECT_EQ(gIM->entries.count, 0);
  memFree(leftOver);  // gone with the heap; this must do nothing
  // "+X" and "-X" stand for the registration and the unregistration of the interface X.
  const char* const steps[] = {
      "Debug System initialized...", "Memory Manager initialized...",
      "Interface Manager initialized...", "+DBG", "Debug System interface registered...", "+MEM",
      "Memory Manager interface registered...", "+DLL", "DLL Library Manager initialized...",
      "+FMG", "FileManager initialized...", "+RND", "Clock with period 1 initialized (1,1000000).",
      "+CLK", "+OPT", "+APP", "-APP", "-OPT", "Clock with period 1 stopped...", "-CLK", "-RND",
      "File Manager deinitialized...", "-FMG", "DLL Library Manager deinitialized...", "-DLL",
      "-MEM", "Memory Manager interface unregistered...", "-DBG",
      "Debug System interface unregistered...", "Interface Manager deinitialized...",
      "Memory Manager deinitialized...", "Debug System deinitialized..."};
  std::string expected;
  for (std::string step : steps) {
    if (step[0] == '+' || step[0] == '-') {
      step = "Interface " + step.substr(1) + " successfully " + (step[0] == '-' ? "un" : "") +
             "registered.";
    }
    expected += "MSG|" + step + "\n";
  }
  EXPECT_EQ(readWholeFile(dir.file("debug.out")), expected);
}
