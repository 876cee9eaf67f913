// Tests of memAlloc/memFree on the kernel's heap.
#include <gtest/gtest.h>

#include <cstdint>

#include "base/memory_manager.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

class MemoryManagerTest : public KernelTest {};

TEST_F(MemoryManagerTest, RoundsOddSizesUpRefusesZeroAndPassesAFailureOn) {
  const std::pair<std::uint32_t, std::int64_t> cases[] = {{1, 2}, {2, 2}, {3, 4}, {561, 562}};
  for (const auto& [asked, heapBytes] : cases) {
    std::int64_t before = hostHeapLiveBytes(gMEM->heap);
    void* block = memAlloc(asked);
    ASSERT_NE(block, nullptr) << asked;
    EXPECT_EQ(hostHeapLiveBytes(gMEM->heap) - before, heapBytes) << asked;
    memFree(block);
  }
  EXPECT_EQ(memAlloc(0), nullptr);
  hostHeapFailNth(1);
  EXPECT_EQ(memAlloc(16), nullptr);
  memFree(nullptr);
}
