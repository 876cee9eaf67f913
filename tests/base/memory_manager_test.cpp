// Tests of the MemoryManager: sizes on the heap, the heap's end at shutdown, threads.
#include "base/memory_manager.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstdint>
#include <chrono>
#include <cstring>
#include <memory>
#include <thread>

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

// A cleared block is cleared whatever lay there before, small or large, and counts as any block.
TEST_F(MemoryManagerTest, ClearsTheBlocksItIsAskedToClear) {
  for (std::uint32_t size : {1u, 24u, 200u, 4000u, 300000u}) {
    for (int round = 0; round < 2; round++) {  // the second round may reuse the first's block
      std::int64_t before = hostHeapLiveBytes(gMEM->heap);
      auto* block = static_cast<unsigned char*>(memAllocZeroed(size));
      ASSERT_NE(block, nullptr) << size;
      EXPECT_EQ(hostHeapLiveBytes(gMEM->heap) - before, (size + 1) & ~1u) << size;
      for (std::uint32_t i = 0; i < size; i++) ASSERT_EQ(block[i], 0) << size << " at " << i;
      std::memset(block, 0xA5, size);
      memFree(block);
    }
  }
  EXPECT_EQ(memAllocZeroed(0), nullptr);
  hostHeapFailNth(1);
  EXPECT_EQ(memAllocZeroed(64), nullptr);
}

// Bytes the process holds from malloc (AddressSanitizer reports none; its leak check stands in).
static std::size_t mallocBytes() {
  struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

TEST(MemoryManager, ShutdownGivesEveryBlockBackAndLeavesNoHeap) {
  auto manager = std::make_unique<MemoryManager>();
  std::size_t before = mallocBytes();
  manager->Init();
  for (int i = 0; i < 4; i++) ASSERT_NE(manager->Alloc(1 << 20, 0, 0, 0), nullptr);
  manager->Shutdown();
  EXPECT_LT(mallocBytes(), before + (1 << 20)) << "blocks left behind";
  ASSERT_EQ(manager->heap, nullptr);
  EXPECT_EQ(manager->Alloc(16, 0, 0, 0), nullptr) << "no heap: no block";
}

TEST_F(MemoryManagerTest, FreeWaitsWhileAnotherThreadHoldsTheLock) {
  void* block = memAlloc(16);
  gMEM->lock.Acquire();
  std::thread freeing([block] { memFree(block); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(LiveBlocks(), blocksAtStart_ + 1) << "freed under another thread's lock";
  gMEM->lock.Release();
  freeing.join();
}
