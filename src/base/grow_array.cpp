// GrowArray: an array of untyped pointers with a cursor, doubling on demand below 65535 slots.
#include "base/grow_array.h"

#include <cstring>

#include "base/memory_manager.h"

namespace {

void** allocateSlots(std::int32_t slots) {
  auto bytes = static_cast<std::uint32_t>(slots) * sizeof(void*);
  auto* block = static_cast<void**>(memAlloc(static_cast<std::uint32_t>(bytes)));
  if (block) std::memset(block, 0, bytes);
  return block;
}

}  // namespace

GrowArray::~GrowArray() {
  if (gMEM) memFree(data);
  data = nullptr;
}

int GrowArray::Create(std::int32_t newCapacity) {
  current = -1;
  count = 0;
  capacity = 0;
  // Callers Clear before they reload; a block still held would otherwise be lost.
  memFree(data);
  data = nullptr;
  // A negative capacity would wrap to a huge size: refused like one that is too large.
  if (newCapacity >= kCapacityLimit || newCapacity < 0) return 0;
  data = newCapacity > 0 ? allocateSlots(newCapacity) : nullptr;
  if (!data) return 0;
  capacity = newCapacity;
  return 1;
}

int GrowArray::Grow() {
  if (fixed) return 0;
  std::int32_t doubled = capacity * 2;
  if (doubled >= kCapacityLimit) return 0;
  void** block = allocateSlots(doubled);
  if (!block) return 0;
  if (data) std::memcpy(block, data, static_cast<std::size_t>(capacity) * sizeof(void*));
  memFree(data);
  data = block;
  capacity = doubled;
  return 1;
}

int GrowArray::Append(void* item) {
  if (!data) {
    Create(kFirstCapacity);
    fixed = 0;
  }
  if (count >= capacity && !Grow()) return 0;
  current = count;
  data[count] = item;
  count++;
  return 1;
}

void GrowArray::MoveFirst() { current = count > 0 ? 0 : -1; }

void GrowArray::MoveNext() {
  if (current < count) current++;
}

void GrowArray::Clear() {
  current = -1;
  count = 0;
  memFree(data);
  data = nullptr;
}
