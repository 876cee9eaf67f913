// Private heap stand-in: small blocks carved from slabs, large ones (and all under a sanitizer)
// each their own malloc.
#include "platform/host_heap.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

// Under a sanitizer every block stays its own malloc, so that its bounds are checked.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TESS_HEAP_BLOCKS_OWN_MALLOC 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || \
    __has_feature(memory_sanitizer)
#define TESS_HEAP_BLOCKS_OWN_MALLOC 1
#endif
#endif
#ifndef TESS_HEAP_BLOCKS_OWN_MALLOC
#define TESS_HEAP_BLOCKS_OWN_MALLOC 0
#endif

namespace {

constexpr bool kCarve = !TESS_HEAP_BLOCKS_OWN_MALLOC;
constexpr std::size_t kGrain = 16;
constexpr std::uint32_t kClasses = kHostHeapLargestCarved / kGrain;
constexpr std::uint32_t kOwnMalloc = kClasses;  // the size class of a block that is its own malloc
constexpr std::size_t kSlabSize = 64 * 1024;

// Stands right in front of every block, carved or not.
struct alignas(16) Tag {
  HostHeap* owner;  // null once the block is given back
  std::uint32_t sizeClass;
  std::uint32_t size;  // the size asked, for a carved block
};
static_assert(sizeof(Tag) == 16);

// In front of the tag of a block that is its own malloc: the heap's list of such blocks.
struct alignas(16) LargeHeader {
  LargeHeader* previous;
  LargeHeader* next;
  std::size_t size;
  Tag tag;
};
static_assert(sizeof(LargeHeader) == 48);

// At the start of a slab; carved blocks follow it.
struct alignas(16) Slab {
  Slab* next;
};

// A carved block that has been given back: the link of its size class's free list.
struct FreeBlock {
  FreeBlock* next;
};

std::atomic<std::int64_t> gFailCountdown{0};

bool failThisAllocation() {
  std::int64_t left = gFailCountdown.load();
  while (left > 0) {
    if (gFailCountdown.compare_exchange_weak(left, left - 1)) return left == 1;
  }
  return false;
}

std::size_t carvedSize(std::uint32_t sizeClass) { return sizeof(Tag) + (sizeClass + 1) * kGrain; }

}  // namespace

struct HostHeap {
  LargeHeader* firstLarge = nullptr;
  Slab* slabs = nullptr;
  char* carveFrom = nullptr;  // the unused end of the newest slab
  char* carveEnd = nullptr;
  FreeBlock* freeBlocks[kClasses] = {};
  std::int64_t liveBlocks = 0;
  std::int64_t liveBytes = 0;
};

namespace {

Tag* allocateLarge(HostHeap* heap, std::size_t size, bool zeroed) {
  if (size > SIZE_MAX - sizeof(LargeHeader)) return nullptr;
  std::size_t whole = sizeof(LargeHeader) + size;
  auto* header = static_cast<LargeHeader*>(zeroed ? std::calloc(1, whole) : std::malloc(whole));
  if (!header) return nullptr;
  header->previous = nullptr;
  header->next = heap->firstLarge;
  header->size = size;
  if (heap->firstLarge) heap->firstLarge->previous = header;
  heap->firstLarge = header;
  header->tag.sizeClass = kOwnMalloc;
  return &header->tag;
}

void freeLarge(HostHeap* heap, Tag* tag) {
  auto* header = reinterpret_cast<LargeHeader*>(reinterpret_cast<char*>(tag) -
                                                offsetof(LargeHeader, tag));
  if (header->previous) header->previous->next = header->next;
  else heap->firstLarge = header->next;
  if (header->next) header->next->previous = header->previous;
  heap->liveBytes -= static_cast<std::int64_t>(header->size);
  std::free(header);
}

// A block of the size class from its free list, else from the newest slab, else from a new one.
Tag* carve(HostHeap* heap, std::uint32_t sizeClass) {
  if (FreeBlock* reused = heap->freeBlocks[sizeClass]) {
    heap->freeBlocks[sizeClass] = reused->next;
    return reinterpret_cast<Tag*>(reused) - 1;
  }
  std::size_t need = carvedSize(sizeClass);
  if (static_cast<std::size_t>(heap->carveEnd - heap->carveFrom) < need) {
    auto* slab = static_cast<Slab*>(std::malloc(kSlabSize));
    if (!slab) return nullptr;
    slab->next = heap->slabs;
    heap->slabs = slab;
    heap->carveFrom = reinterpret_cast<char*>(slab + 1);
    heap->carveEnd = reinterpret_cast<char*>(slab) + kSlabSize;
  }
  auto* tag = reinterpret_cast<Tag*>(heap->carveFrom);
  heap->carveFrom += need;
  tag->sizeClass = sizeClass;
  return tag;
}

}  // namespace

HostHeap* hostHeapCreate() {
  void* storage = std::malloc(sizeof(HostHeap));
  return storage ? new (storage) HostHeap() : nullptr;
}

namespace {

void* allocate(HostHeap* heap, std::size_t size, bool zeroed) {
  if (!heap || failThisAllocation()) return nullptr;
  Tag* tag = nullptr;
  if (kCarve && size <= kHostHeapLargestCarved) {
    tag = carve(heap, size == 0 ? 0 : static_cast<std::uint32_t>((size - 1) / kGrain));
    if (!tag) return nullptr;
    tag->size = static_cast<std::uint32_t>(size);
    if (zeroed) std::memset(tag + 1, 0, size);
  } else {
    tag = allocateLarge(heap, size, zeroed);
    if (!tag) return nullptr;
  }
  tag->owner = heap;
  heap->liveBlocks++;
  heap->liveBytes += static_cast<std::int64_t>(size);
  return tag + 1;
}

}  // namespace

void* hostHeapAlloc(HostHeap* heap, std::size_t size) { return allocate(heap, size, false); }

void* hostHeapAllocZeroed(HostHeap* heap, std::size_t size) {
  return allocate(heap, size, true);
}

void hostHeapFree(HostHeap* heap, void* block) {
  if (!heap || !block) return;
  Tag* tag = static_cast<Tag*>(block) - 1;
  if (tag->owner != heap) std::abort();  // another heap's block, or a second free: a bug
  tag->owner = nullptr;
  heap->liveBlocks--;
  if (tag->sizeClass == kOwnMalloc) {
    freeLarge(heap, tag);
    return;
  }
  heap->liveBytes -= tag->size;
  auto* link = static_cast<FreeBlock*>(block);
  link->next = heap->freeBlocks[tag->sizeClass];
  heap->freeBlocks[tag->sizeClass] = link;
}

void hostHeapDestroy(HostHeap* heap) {
  if (!heap) return;
  for (LargeHeader* header = heap->firstLarge; header;) {
    LargeHeader* next = header->next;
    std::free(header);
    header = next;
  }
  for (Slab* slab = heap->slabs; slab;) {
    Slab* next = slab->next;
    std::free(slab);
    slab = next;
  }
  heap->~HostHeap();
  std::free(heap);
}

std::int64_t hostHeapLiveBlocks(const HostHeap* heap) { return heap ? heap->liveBlocks : 0; }

std::int64_t hostHeapLiveBytes(const HostHeap* heap) { return heap ? heap->liveBytes : 0; }

void hostHeapFailNth(std::int64_t n) { gFailCountdown.store(n > 0 ? n : 0); }

std::int64_t hostHeapFailPending() { return gFailCountdown.load(); }
