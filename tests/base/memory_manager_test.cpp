#include "base/memory_manager.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <thread>

#include "kernel_fixture.h"
#include "platform/host_heap.h"

class MemoryManagerTest : public KernelTest {};

// A cleared block is cleared whatever lay there before: each block is dirtied and given back.
TEST_F(MemoryManagerTest, RoundsOddSizesUpAndClearsOnlyWhenAsked) {
  for (std::uint32_t size : {1u, 2u, 3u, 4000u, 300000u}) {
    for (auto* alloc : {memAlloc, memAllocZeroed}) {
      std::int64_t before = hostHeapLiveBytes(gMEM->heap);
      auto* block = static_cast<unsigned char*>(alloc(size));
      ASSERT_NE(block, nullptr) << size;
      EXPECT_EQ(hostHeapLiveBytes(gMEM->heap) - before, (size + 1) & ~1u) << size;
      for (std::uint32_t i = 0; alloc == memAllocZeroed && i < size; i++)
        ASSERT_EQ(block[i], 0) << size << " at " << i;
      std::memset(block, 0xA5, size);
      memFree(block);
    }
  }
  for (auto* alloc : {memAlloc, memAllocZeroed}) {
    EXPECT_EQ(alloc(0), nullptr);
    hostHeapFailNth(1);
    EXPECT_EQ(alloc(16), nullptr);
  }
  memFree(nullptr);
}

TEST(MemoryManager, ShutdownGivesEveryBlockBackAndLeavesNoHeap) {
  // AddressSanitizer reports no malloc bytes; its leak check stands in there.
  auto mallocBytes = [] { return mallinfo2().uordblks + mallinfo2().hblkhd; };
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
