// Private heap stand-in: every block is its own malloc, linked into the heap's list of live blocks.
#pragma once
#include <cstddef>
#include <cstdint>

struct HostHeap;

// Returns a new empty heap, or null when the host has no memory for its header.
HostHeap* hostHeapCreate();

// Returns a block of `size` bytes aligned to 16, not cleared; null when the host has no memory
// or the fail-the-Nth-allocation switch fires. A size of 0 gives a valid block of its own.
void* hostHeapAlloc(HostHeap* heap, std::size_t size);

// Gives a block back to its heap. A null block is ignored.
void hostHeapFree(HostHeap* heap, void* block);

// Frees every block still on the heap, then the heap itself. A null heap is ignored.
void hostHeapDestroy(HostHeap* heap);

// Live block count and byte count of a heap; 0 for a null heap.
std::int64_t hostHeapLiveBlocks(const HostHeap* heap);
std::int64_t hostHeapLiveBytes(const HostHeap* heap);

// Test switch: the nth allocation from now on (1 = the very next) fails, once, on any heap.
// 0 turns the switch off. Returns how many allocations are still to go before the failure.
void hostHeapFailNth(std::int64_t n);
std::int64_t hostHeapFailPending();
