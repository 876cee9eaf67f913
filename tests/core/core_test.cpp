// Tests of bring-up and shutdown: registrations, global pointers and the order of the traces.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "core/core.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "services/interface_manager.h"

TEST(Core, StartupRegistersServicesAndShutdownClearsThem) {
  ASSERT_EQ(CoreStartup(), 1);
  ASSERT_NE(gIM, nullptr);
  using Case = std::tuple<const char*, int, const void*>;
  // Each entry holds the service's table, as a library calls through it.
  for (auto [name, refCount, iface] :
       {Case{"DBG", 0, static_cast<DebugInterface*>(gDBG)},
        {"MEM", 0, static_cast<MemoryInterface*>(gMEM)},
        {"FMG", 1, static_cast<FileInterface*>(gFMG)}}) {
    ASSERT_EQ(gIM->entries.FindByName(name), 1) << name;
    auto* entry = static_cast<InterfaceEntry*>(gIM->entries.current->payload);
    EXPECT_EQ(entry->refCount, refCount) << name;
    EXPECT_EQ(entry->owner, 0u) << name;
    EXPECT_NE(iface, nullptr) << name;
    EXPECT_EQ(entry->iface, iface) << name;
  }
  void* leftOver = memAlloc(100);
  ASSERT_NE(leftOver, nullptr);
  CoreShutdown();
  EXPECT_EQ(gMEM, nullptr);
  EXPECT_EQ(gDBG, nullptr);
  EXPECT_EQ(gIM->entries.count, 0);
  memFree(leftOver);  // gone with the heap; this must do nothing
}

TEST(Core, ShutdownTracesInMirrorOrder) {
  ASSERT_EQ(CoreStartup(), 1);
  std::vector<std::string> lines;
  {
    TraceCapture traces;
    CoreShutdown();  // the capture's log stays readable: it allocates nothing
    lines = traces.Lines();
    ASSERT_EQ(CoreStartup(), 1);
  }
  std::vector<std::string> expected = {
      "MSG|Interface APP successfully unregistered.",
      "MSG|File Manager deinitialized...",
      "MSG|Interface FMG successfully unregistered.",
      "MSG|Interface MEM successfully unregistered.",
      "MSG|Memory Manager interface unregistered...",
      "MSG|Interface DBG successfully unregistered.",
      "MSG|Debug System interface unregistered...",
      "MSG|Interface Manager deinitialized...",
      "MSG|Memory Manager deinitialized...",
      "MSG|Debug System deinitialized...",
  };
  lines.resize(expected.size());
  EXPECT_EQ(lines, expected);
  CoreShutdown();
}
