// Tests of the InterfaceManager registry: counts, names, duplicates, traces and no-memory paths.
#include <gtest/gtest.h>

#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "services/interface_manager.h"

namespace {
int serviceA, serviceB;
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
  int RefCount() {
    return static_cast<InterfaceEntry*>(manager.entries.current->payload)->refCount;
  }
  InterfaceManager manager;
};

TEST_F(InterfaceManagerTest, NamesAreUniqueCaseSensitiveAndFoundThroughTheCursorFirst) {
  TraceCapture traces;
  for (int nth = 1; nth <= 3; nth++) {  // no memory for the entry, its name or its node
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(nth);
    EXPECT_EQ(manager.Register("ABC", &serviceB, 0), 0) << nth;
    EXPECT_EQ(manager.entries.count, 0) << nth;
    EXPECT_EQ(LiveBlocks(), blocks) << nth;
  }
  EXPECT_EQ(manager.Register("ABC", &serviceA, 7), 1);
  EXPECT_EQ(manager.Register("ABC", &serviceB, 9), 0);
  EXPECT_EQ(manager.Register("abc", &serviceB, 9), 1);
  EXPECT_EQ(manager.Register("", &serviceA, 0), 1);
  EXPECT_EQ(manager.Register(nullptr, &serviceA, 0), 1);
  EXPECT_EQ(manager.entries.count, 4);
  void* var = nullptr;
  ASSERT_EQ(manager.Get("ABC", &var), 1);
  EXPECT_EQ(var, &serviceA);
  CursorNode* savedHead = manager.entries.head;
  manager.entries.head = nullptr;  // only the shortcut through the cursor can find ABC now
  EXPECT_EQ(manager.Get("ABC", &var), 1);
  EXPECT_EQ(manager.Get("abc", &var), 0);
  EXPECT_EQ(manager.entries.current, nullptr) << "a failed lookup clears the cursor";
  manager.entries.head = savedHead;
  ASSERT_EQ(manager.Get("abc", &var), 1);
  EXPECT_EQ(var, &serviceB);
  EXPECT_EQ(manager.Get("", &var) + manager.Release("", &var) + manager.Unregister(""), 0);
  EXPECT_EQ(var, &serviceB);
  EXPECT_EQ(manager.CanFreeOwner(7), 0);
  for (const char* line : {"MSG|Unable to register Interface ABC!",
                           "MSG|Interface ABC successfully registered.",
                           "MSG|Interface ABC already registered."}) {
    EXPECT_TRUE(traces.Has(line)) << line;
  }
}

TEST_F(InterfaceManagerTest, CountsFallBelowZeroAndUnregisterIgnoresThem) {
  TraceCapture traces;
  ASSERT_EQ(manager.Register("CLK", &serviceA, 5), 1);
  void *first = nullptr, *other = nullptr;
  for (const char* name : {"AAA", "BBB"}) ASSERT_EQ(manager.Register(name, &serviceB, 0), 1);
  for (const char* name : {"CLK", "CLK", "AAA", "AAA", "BBB"}) {
    ASSERT_EQ(manager.Get(name, &other), 1) << name;
  }
  EXPECT_EQ(manager.Unregister("AAA"), 1);  // with two references open
  ASSERT_EQ(manager.Get("CLK", &first), 1);
  EXPECT_EQ(manager.CanFreeOwner(5), 0);
  EXPECT_EQ(manager.CanFreeOwner(0), 1);
  EXPECT_EQ(manager.Release("CLK", &first), 1);
  EXPECT_EQ(first, nullptr);
  EXPECT_EQ(manager.Release("CLK", &first), 0);  // a null variable: no count, no trace
  EXPECT_EQ(RefCount(), 2);
  for (int i = 0; i < 3; i++) {
    other = &serviceB;  // any non-null variable releases
    EXPECT_EQ(manager.Release("CLK", &other), 1) << i;
  }
  EXPECT_EQ(RefCount(), -1);
  EXPECT_EQ(manager.CanFreeOwner(5), 1);
  EXPECT_EQ(manager.Unregister("CLK"), 1);
  EXPECT_EQ(manager.Unregister("CLK"), 0);
  void* stale = &serviceB;
  EXPECT_EQ(manager.Get("CLK", &stale), 0);
  EXPECT_EQ(manager.Release("CLK", &stale), 0);
  EXPECT_EQ(stale, &serviceB);
  EXPECT_EQ(manager.Release("ZZZ", &first), 0);
  manager.Shutdown();  // BBB still has its reference
  EXPECT_EQ(manager.entries.count, 0);
  for (const char* line : {"MSG|Register count for Interface AAA is non-zero (2)!",
                           "MSG|Register count for Interface CLK is non-zero (-1)!",
                           "MSG|Interface CLK successfully unregistered.",
                           "MSG|Unable to unregister Interface CLK.",
                           "MSG|Unable to get Interface CLK!",
                           "MSG|Unable to release Interface CLK!",
                           "MSG|...Interface BBB has reference count of 1."}) {
    EXPECT_TRUE(traces.Has(line)) << line;
  }
  EXPECT_FALSE(traces.Has("MSG|Unable to release Interface ZZZ!"));
}
