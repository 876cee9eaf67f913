#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/host_heap.h"

// Blocks of every size around the carving limit, over many slabs, are aligned and never overlap;
// given-back space is reused and the counts follow the blocks, not the slabs.
TEST(HostHeap, KeepsBlocksApartAcrossSizesSlabsAndReuse) {
  HostHeap* heap = hostHeapCreate();
  const std::size_t sizes[] = {0, 1, 15, 16, 17, 48, 560, kHostHeapLargestCarved,
                               kHostHeapLargestCarved + 1, 70000};
  std::vector<std::pair<unsigned char*, std::size_t>> blocks;
  for (int round = 0; round < 600; round++) {
    for (std::size_t size : sizes) {
      auto* block = static_cast<unsigned char*>(hostHeapAlloc(heap, size));
      ASSERT_TRUE(block && reinterpret_cast<std::uintptr_t>(block) % 16 == 0) << size;
      std::memset(block, static_cast<int>(blocks.size() & 0xFF), size);
      blocks.emplace_back(block, size);
    }
    // Every other block of every third round goes back, so that its space is reused.
    for (auto i = blocks.size() - 10 + round % 2; round % 3 == 2 && i < blocks.size(); i += 2)
      hostHeapFree(heap, std::exchange(blocks[i].first, nullptr));
  }
  std::int64_t live = 0, bytes = 0;
  for (std::size_t i = 0; i < blocks.size(); i++) {
    for (std::size_t b = 0; blocks[i].first && b < blocks[i].second; b++)
      ASSERT_EQ(blocks[i].first[b], i & 0xFF) << "block " << i << " byte " << b;
    live += blocks[i].first != nullptr;
    bytes += blocks[i].first ? static_cast<std::int64_t>(blocks[i].second) : 0;
  }
  EXPECT_EQ(hostHeapLiveBlocks(heap), live);
  EXPECT_EQ(hostHeapLiveBytes(heap), bytes);
  hostHeapFree(heap, nullptr);
  hostHeapDestroy(heap);  // takes the blocks left with it; the sanitizer build sees no leak
}
