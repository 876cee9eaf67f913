// MemoryManager: the one private heap of the program, and memAlloc/memFree in front of it.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

#include "base/spin_lock.h"

struct HostHeap;

struct MemoryRecord {
  std::uint32_t words[3] = {0, 0, 0};
};

class MemoryManager : public MemoryInterface {
 public:
  static constexpr int kRecordSlots = 65535;

  MemoryManager() = default;
  MemoryManager(const MemoryManager&) = delete;
  MemoryManager& operator=(const MemoryManager&) = delete;

  void* Alloc(std::uint32_t size, std::uint32_t a, std::uint32_t b, std::uint32_t tag) override;
  void Free(void* block) override;
  void ReservedA(std::uint32_t word) override;
  void Compact() override;
  void ReservedB(std::uint32_t word) override;

  // Alloc with the block cleared; not in the table. The arenas take it, so that the pages of a
  // large block that nobody writes are never touched.
  void* AllocZeroed(std::uint32_t size);

  // Creates the heap. Bring-up only.
  void Init();
  // Destroys the heap with every block still on it. Shutdown only.
  void Shutdown();

  HostHeap* heap = nullptr;
  std::uint32_t recordCount = 0;
  // Inert for the whole run: nothing reads or writes them, but libraries see the object's size.
  MemoryRecord records[kRecordSlots];
  SpinLock lock{0, 5};
  std::uint32_t reservedWords[3] = {0, 0, 0};
};

// Null before bring-up has created the heap and after shutdown has destroyed it.
extern MemoryManager* gMEM;
// Passed along with every allocation; nothing assigns it.
extern std::uint32_t gAllocTag;

// Alloc on gMEM with the size, 0, 0 and gAllocTag. gMEM must be set.
void* memAlloc(std::uint32_t size);
// AllocZeroed on gMEM: memAlloc with the block cleared. gMEM must be set.
void* memAllocZeroed(std::uint32_t size);
// Free on gMEM; does nothing while gMEM is null, so clean-ups at process exit are safe.
void memFree(void* block);
