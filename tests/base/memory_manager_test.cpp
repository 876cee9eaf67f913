// Tests of the MemoryManager and memAlloc/memFree.
#include <gtest/gtest.h>

#include <cstdint>

#include "base/memory_manager.h"
#include "core/core.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

class MemoryManagerTest : public KernelTest {};

TEST_F(MemoryManagerTest, RoundsOddSizesUpAndRefusesZero) {
  struct Case {
    std::uint32_t asked;
    std::int64_t heapBytes;
  } cases[] = {{1, 2}, {2, 2}, {3, 4}, {560, 560}, {561, 562}};
  for (const Case& c : cases) {
    std::int64_t before = hostHeapLiveBytes(gMEM->heap);
    void* block = memAlloc(c.asked);
    ASSERT_NE(block, nullptr) << c.asked;
    EXPECT_EQ(hostHeapLiveBytes(gMEM->heap) - before, c.heapBytes) << c.asked;
    memFree(block);
  }
  std::int64_t blocks = LiveBlocks();
  EXPECT_EQ(memAlloc(0), nullptr);
  EXPECT_EQ(LiveBlocks(), blocks);
}

TEST_F(MemoryManagerTest, FailedAllocationGivesNullAndTheNextOneWorks) {
  hostHeapFailNth(1);
  EXPECT_EQ(memAlloc(16), nullptr);
  void* block = memAlloc(16);
  EXPECT_NE(block, nullptr);
  memFree(block);
  memFree(nullptr);
}

TEST(MemoryManagerLifecycle, ShutdownTakesLiveBlocksAndLeavesMemFreeHarmless) {
  ASSERT_EQ(CoreStartup(), 1);
  void* leftOver = memAlloc(100);
  ASSERT_NE(leftOver, nullptr);
  CoreShutdown();
  EXPECT_EQ(gMEM, nullptr);
  memFree(leftOver);  // the heap is gone; this must do nothing
  memFree(nullptr);
}
