// Private heap stand-in: each block is its own malloc so AddressSanitizer sees every overrun.
#include "platform/host_heap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

// 32 bytes, so the block behind the header keeps malloc's 16-byte alignment.
struct alignas(16) BlockHeader {
  BlockHeader* previous;
  BlockHeader* next;
  std::size_t size;
  HostHeap* owner;
};
static_assert(sizeof(BlockHeader) == 32);

std::atomic<std::int64_t> gFailCountdown{0};

bool failThisAllocation() {
  std::int64_t left = gFailCountdown.load();
  while (left > 0) {
    if (gFailCountdown.compare_exchange_weak(left, left - 1)) return left == 1;
  }
  return false;
}

}  // namespace

struct HostHeap {
  BlockHeader* first = nullptr;
  std::int64_t liveBlocks = 0;
  std::int64_t liveBytes = 0;
};

HostHeap* hostHeapCreate() {
  void* storage = std::malloc(sizeof(HostHeap));
  return storage ? new (storage) HostHeap() : nullptr;
}

void* hostHeapAlloc(HostHeap* heap, std::size_t size) {
  if (!heap || failThisAllocation()) return nullptr;
  if (size > SIZE_MAX - sizeof(BlockHeader)) return nullptr;
  auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + size));
  if (!header) return nullptr;
  header->previous = nullptr;
  header->next = heap->first;
  header->size = size;
  header->owner = heap;
  if (heap->first) heap->first->previous = header;
  heap->first = header;
  heap->liveBlocks++;
  heap->liveBytes += static_cast<std::int64_t>(size);
  return header + 1;
}

void hostHeapFree(HostHeap* heap, void* block) {
  if (!heap || !block) return;
  BlockHeader* header = static_cast<BlockHeader*>(block) - 1;
  if (header->owner != heap) std::abort();  // a block of another heap: a bug, never data
  if (header->previous) header->previous->next = header->next;
  else heap->first = header->next;
  if (header->next) header->next->previous = header->previous;
  heap->liveBlocks--;
  heap->liveBytes -= static_cast<std::int64_t>(header->size);
  header->owner = nullptr;
  std::free(header);
}

void hostHeapDestroy(HostHeap* heap) {
  if (!heap) return;
  BlockHeader* header = heap->first;
  while (header) {
    BlockHeader* next = header->next;
    std::free(header);
    header = next;
  }
  heap->~HostHeap();
  std::free(heap);
}

std::int64_t hostHeapLiveBlocks(const HostHeap* heap) { return heap ? heap->liveBlocks : 0; }

std::int64_t hostHeapLiveBytes(const HostHeap* heap) { return heap ? heap->liveBytes : 0; }

void hostHeapFailNth(std::int64_t n) { gFailCountdown.store(n > 0 ? n : 0); }

std::int64_t hostHeapFailPending() { return gFailCountdown.load(); }
