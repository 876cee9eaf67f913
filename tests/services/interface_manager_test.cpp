// Tests of the InterfaceManager registry: counts, names, duplicates, traces and no-memory paths.
#include <gtest/gtest.h>

#include "base/memory_manager.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "services/interface_manager.h"

namespace {

int serviceA, serviceB;

InterfaceEntry* current(InterfaceManager& manager) {
  return static_cast<InterfaceEntry*>(manager.entries.current->payload);
}

}  // namespace

class InterfaceManagerTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    manager.Init();
  }
  void TearDown() override {
    manager.Shutdown();
    KernelTest::TearDown();
  }
  InterfaceManager manager;
};

TEST_F(InterfaceManagerTest, DuplicateAndCaseSensitiveNames) {
  TraceCapture traces;
  EXPECT_EQ(manager.Register("ABC", &serviceA, 7), 1);
  EXPECT_EQ(manager.Register("ABC", &serviceB, 9), 0);
  EXPECT_EQ(manager.Register("abc", &serviceB, 9), 1);
  void* var = nullptr;
  ASSERT_EQ(manager.Get("ABC", &var), 1);
  EXPECT_EQ(var, &serviceA);
  EXPECT_EQ(current(manager)->owner, 7u);
  ASSERT_EQ(manager.Get("abc", &var), 1);
  EXPECT_EQ(var, &serviceB);
  EXPECT_TRUE(traces.Has("MSG|Interface ABC successfully registered."));
  EXPECT_TRUE(traces.Has("MSG|Interface ABC already registered."));
  manager.Release("ABC", &var);
  var = &serviceB;
  manager.Release("abc", &var);
}

TEST_F(InterfaceManagerTest, EmptyNameRegistersButIsUnreachable) {
  EXPECT_EQ(manager.Register("", &serviceA, 0), 1);
  EXPECT_EQ(manager.Register(nullptr, &serviceA, 0), 1);
  EXPECT_EQ(manager.entries.count, 2);
  void* var = &serviceB;
  EXPECT_EQ(manager.Get("", &var), 0);
  EXPECT_EQ(var, &serviceB);
  EXPECT_EQ(manager.Release("", &var), 0);
  EXPECT_EQ(manager.Unregister(""), 0);
  EXPECT_EQ(manager.entries.count, 2);  // Shutdown destroys them
}

TEST_F(InterfaceManagerTest, CountsGoUpAndDownAndBelowZero) {
  TraceCapture traces;
  ASSERT_EQ(manager.Register("CLK", &serviceA, 5), 1);
  void* first = nullptr;
  void* second = nullptr;
  ASSERT_EQ(manager.Get("CLK", &first), 1);
  ASSERT_EQ(manager.Get("CLK", &second), 1);
  EXPECT_EQ(manager.CanFreeOwner(5), 0);
  EXPECT_EQ(manager.CanFreeOwner(0), 1);
  EXPECT_EQ(manager.Release("CLK", &first), 1);
  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(manager.Release("CLK", &first), 0);  // already released: the count stays
  EXPECT_EQ(current(manager)->refCount, 1);
  void* other = &serviceB;
  EXPECT_EQ(manager.Release("CLK", &other), 1);  // any non-null variable releases
  EXPECT_EQ(manager.Release("CLK", &second), 1);
  EXPECT_EQ(current(manager)->refCount, -1);
  EXPECT_EQ(manager.CanFreeOwner(5), 1);
  EXPECT_EQ(manager.Unregister("CLK"), 1);
  EXPECT_TRUE(traces.Has("MSG|Register count for Interface CLK is non-zero (-1)!"));
  EXPECT_TRUE(traces.Has("MSG|Interface CLK successfully unregistered."));
  void* stale = &serviceB;
  EXPECT_EQ(manager.Get("CLK", &stale), 0);
  EXPECT_EQ(stale, &serviceB);
  EXPECT_TRUE(traces.Has("MSG|Unable to get Interface CLK!"));
}

TEST_F(InterfaceManagerTest, UnregisterWithOpenReferencesAndShutdownTraces) {
  TraceCapture traces;
  manager.Register("AAA", &serviceA, 0);
  manager.Register("BBB", &serviceB, 0);
  void* var = nullptr;
  manager.Get("AAA", &var);
  manager.Get("AAA", &var);
  manager.Get("BBB", &var);
  EXPECT_EQ(manager.Unregister("AAA"), 1);
  EXPECT_TRUE(traces.Has("MSG|Register count for Interface AAA is non-zero (2)!"));
  EXPECT_EQ(manager.Unregister("AAA"), 0);
  EXPECT_TRUE(traces.Has("MSG|Unable to unregister Interface AAA."));
  var = nullptr;
  EXPECT_EQ(manager.Release("ZZZ", &var), 0);
  EXPECT_FALSE(traces.Has("MSG|Unable to release Interface ZZZ!"));  // null variable: no trace
  var = &serviceA;
  EXPECT_EQ(manager.Release("ZZZ", &var), 0);
  EXPECT_TRUE(traces.Has("MSG|Unable to release Interface ZZZ!"));
  manager.Shutdown();
  EXPECT_TRUE(traces.Has("MSG|...Interface BBB has reference count of 1."));
  EXPECT_EQ(manager.entries.count, 0);
}

TEST_F(InterfaceManagerTest, RepeatedLookupUsesTheCursorAndFailedOneClearsIt) {
  manager.Register("AAA", &serviceA, 0);
  manager.Register("BBB", &serviceB, 0);
  void* var = nullptr;
  ASSERT_EQ(manager.Get("AAA", &var), 1);
  CursorNode* savedHead = manager.entries.head;
  manager.entries.head = nullptr;  // only the shortcut through the cursor can find AAA now
  EXPECT_EQ(manager.Get("AAA", &var), 1);
  EXPECT_EQ(manager.Get("BBB", &var), 0);
  manager.entries.head = savedHead;
  EXPECT_EQ(manager.entries.current, nullptr);
  EXPECT_EQ(manager.Get("BBB", &var), 1);
}

TEST_F(InterfaceManagerTest, NoMemoryForEntryNameOrNodeKeepsNothing) {
  TraceCapture traces;
  for (int nth = 1; nth <= 3; nth++) {
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(nth);
    EXPECT_EQ(manager.Register("MEM", &serviceA, 0), 0) << nth;
    EXPECT_EQ(manager.entries.count, 0) << nth;
    EXPECT_EQ(LiveBlocks(), blocks) << nth;
  }
  EXPECT_TRUE(traces.Has("MSG|Unable to register Interface MEM!"));
  EXPECT_EQ(manager.Register("MEM", &serviceA, 0), 1);
}
