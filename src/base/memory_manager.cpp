// MemoryManager: the one private heap of the program, and memAlloc/memFree in front of it.
#include "base/memory_manager.h"

#include "base/debug_system.h"
#include "platform/host_heap.h"

MemoryManager* gMEM = nullptr;
std::uint32_t gAllocTag = 0;

namespace {

// An odd size is rounded up to an even one.
std::uint64_t evenSize(std::uint32_t size) {
  return (static_cast<std::uint64_t>(size) + 1) & ~std::uint64_t{1};
}

}  // namespace

void* MemoryManager::Alloc(std::uint32_t size, std::uint32_t, std::uint32_t, std::uint32_t) {
  SpinLockGuard guard(lock);
  return size == 0 ? nullptr : hostHeapAlloc(heap, evenSize(size));
}

void* MemoryManager::AllocZeroed(std::uint32_t size) {
  SpinLockGuard guard(lock);
  return size == 0 ? nullptr : hostHeapAllocZeroed(heap, evenSize(size));
}

void MemoryManager::Free(void* block) {
  SpinLockGuard guard(lock);
  hostHeapFree(heap, block);
}

void MemoryManager::ReservedA(std::uint32_t) {}

// Blocks are separate host allocations, so there is nothing to coalesce.
void MemoryManager::Compact() { SpinLockGuard guard(lock); }

void MemoryManager::ReservedB(std::uint32_t) {}

void MemoryManager::Init() {
  lock.Reset();
  SpinLockGuard guard(lock);
  // Nothing ever writes the records, so they still hold the zeros of static initialisation;
  // clearing them again would only bring 768 KiB of untouched pages into memory.
  recordCount = 0;
  heap = hostHeapCreate();
  for (std::uint32_t& word : reservedWords) word = 0;
  dbgTrace("Memory Manager initialized...");
}

void MemoryManager::Shutdown() {
  SpinLockGuard guard(lock);
  dbgTrace("Memory Manager deinitialized...");
  hostHeapDestroy(heap);
  heap = nullptr;
}

void* memAlloc(std::uint32_t size) { return gMEM->Alloc(size, 0, 0, gAllocTag); }

void* memAllocZeroed(std::uint32_t size) { return gMEM->AllocZeroed(size); }

void memFree(void* block) {
  if (gMEM) gMEM->Free(block);
}
