// Tests of the private heap stand-in: alignment, live counts, destroy and the fail switch.
#include <gtest/gtest.h>

#include <cstdint>

#include "platform/host_heap.h"

TEST(HostHeap, CountsLiveBlocksAndBytesAndAligns) {
  HostHeap* heap = hostHeapCreate();
  ASSERT_NE(heap, nullptr);
  void* blocks[5];
  for (int i = 0; i < 5; i++) {
    blocks[i] = hostHeapAlloc(heap, static_cast<std::size_t>(i * 7 + 1));
    ASSERT_NE(blocks[i], nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks[i]) % 16, 0u) << i;
  }
  EXPECT_EQ(hostHeapLiveBlocks(heap), 5);
  EXPECT_EQ(hostHeapLiveBytes(heap), 1 + 8 + 15 + 22 + 29);
  hostHeapFree(heap, blocks[2]);  // from the middle of the list
  hostHeapFree(heap, blocks[4]);  // the newest, at the list's head
  hostHeapFree(heap, nullptr);
  EXPECT_EQ(hostHeapLiveBlocks(heap), 3);
  EXPECT_EQ(hostHeapLiveBytes(heap), 1 + 8 + 22);
  hostHeapDestroy(heap);  // takes the three left with it; the sanitizer build sees no leak
  EXPECT_EQ(hostHeapAlloc(nullptr, 8), nullptr);
  EXPECT_EQ(hostHeapLiveBlocks(nullptr), 0);
}

TEST(HostHeap, FailSwitchFailsExactlyTheNthAllocationOnce) {
  HostHeap* heap = hostHeapCreate();
  hostHeapFailNth(3);
  for (int nth = 1; nth <= 4; nth++) {
    EXPECT_EQ(hostHeapFailPending(), nth <= 3 ? 4 - nth : 0) << nth;
    EXPECT_EQ(hostHeapAlloc(heap, 4) == nullptr, nth == 3) << nth;
  }
  EXPECT_EQ(hostHeapLiveBlocks(heap), 3);
  hostHeapDestroy(heap);
}
