// GrowArray: an array of untyped pointers with a cursor, doubling on demand below 65535 slots.
#pragma once
#include <cstdint>

// Owns its block of slots, never the items. Slots at or beyond `count` hold null.
class GrowArray {
 public:
  // Capacities of this many slots or more are refused.
  static constexpr std::int32_t kCapacityLimit = 65535;
  static constexpr std::int32_t kFirstCapacity = 8;

  GrowArray() = default;
  // Frees the block; while gMEM is null (the heap is gone with it) it only drops the pointer.
  ~GrowArray();
  GrowArray(const GrowArray&) = delete;
  GrowArray& operator=(const GrowArray&) = delete;

  // Makes an empty array of `capacity` zeroed slots; `fixed` isn't touched and `data` must be
  // null (Clear first). 1, or 0 with no storage for a capacity below 1, of kCapacityLimit or
  // more, or when out of memory.
  int Create(std::int32_t capacity);
  // Doubles the capacity. 0 with the array unchanged when fixed, at the limit or out of memory.
  int Grow();
  // Appends an item, creating the array at capacity 8 (not fixed) when it has no storage.
  // The cursor moves onto the new item. 1, or 0 with the array unchanged.
  int Append(void* item);
  // current = 0, or -1 when empty.
  void MoveFirst();
  // current grows by 1 up to count.
  void MoveNext();
  // Frees the block; count 0, current -1; capacity and fixed stay, the items aren't freed.
  void Clear();

  std::int32_t current = -1;
  std::int32_t count = 0;
  std::int32_t capacity = 0;
  std::int32_t fixed = 0;
  void** data = nullptr;
};
