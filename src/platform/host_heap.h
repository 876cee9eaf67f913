// Private heap stand-in: small blocks carved from slabs, large ones (and all under a sanitizer)
// each their own malloc.
#pragma once
#include <cstddef>
#include <cstdint>

struct HostHeap;

// Returns a new empty heap, or null when the host has no memory for its header.
HostHeap* hostHeapCreate();

// Returns a block of `size` bytes aligned to 16, not cleared; null when the host has no memory
// or the fail-the-Nth-allocation switch fires. A size of 0 gives a valid block of its own.
// In a plain build a block of up to kHostHeapLargestCarved bytes is carved from a slab of the
// heap and its space reused after a free; in a sanitizer build every block is its own malloc,
// so that overruns and uses after free are seen.
void* hostHeapAlloc(HostHeap* heap, std::size_t size);
constexpr std::size_t kHostHeapLargestCarved = 1024;
// hostHeapAlloc, with the block cleared. A large block comes cleared from the host, so pages
// that nobody writes are never touched.
void* hostHeapAllocZeroed(HostHeap* heap, std::size_t size);

// Gives a block back to its heap. A null block is ignored; a block of another heap, or one
// given back twice, aborts the process.
void hostHeapFree(HostHeap* heap, void* block);

// Frees every block still on the heap, then the heap itself. A null heap is ignored.
void hostHeapDestroy(HostHeap* heap);

// Live block count and byte count of a heap: the blocks given out and not given back, and the
// sizes they were asked with, however they are carved; 0 for a null heap.
std::int64_t hostHeapLiveBlocks(const HostHeap* heap);
std::int64_t hostHeapLiveBytes(const HostHeap* heap);

// Test switch: the nth allocation from now on (1 = the very next) fails, once, on any heap.
// 0 turns the switch off. Returns how many allocations are still to go before the failure.
void hostHeapFailNth(std::int64_t n);
std::int64_t hostHeapFailPending();
