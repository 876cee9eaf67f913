// Tests of bring-up and shutdown: registrations, global pointers and the order of the traces.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "core/core.h"
#include "kernel_fixture.h"
#include "services/interface_manager.h"

namespace {

InterfaceEntry* entryNamed(const char* name) {
  if (!gIM->entries.FindByName(name)) return nullptr;
  return static_cast<InterfaceEntry*>(gIM->entries.current->payload);
}

}  // namespace

TEST(Core, StartupRegistersServicesAndSetsPointers) {
  ASSERT_EQ(CoreStartup(), 1);
  EXPECT_NE(gIM, nullptr);
  EXPECT_NE(gMEM, nullptr);
  EXPECT_NE(gDBG, nullptr);
  for (const char* name : {"DBG", "MEM", "FMG"}) {
    InterfaceEntry* entry = entryNamed(name);
    ASSERT_NE(entry, nullptr) << name;
    EXPECT_EQ(entry->refCount, std::string(name) == "FMG" ? 1 : 0) << name;
    EXPECT_EQ(entry->owner, 0u) << name;
  }
  EXPECT_EQ(entryNamed("DBG")->iface, gDBG);
  EXPECT_EQ(entryNamed("MEM")->iface, gMEM);
  CoreShutdown();
  EXPECT_EQ(gMEM, nullptr);
  EXPECT_EQ(gDBG, nullptr);
  ASSERT_NE(gIM, nullptr);
  EXPECT_EQ(gIM->entries.count, 0);
  memFree(nullptr);
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
  ASSERT_GE(lines.size(), expected.size());
  lines.resize(expected.size());
  EXPECT_EQ(lines, expected);
  CoreShutdown();
}
