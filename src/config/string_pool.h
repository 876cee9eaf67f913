// StringPool: one fixed arena of NUL-terminated strings that never grows, moves or frees singly.
#pragma once
#include <cstdint>

// The bytes in use run from `base` to `top`; everything behind `top` is zero, so text read in at
// `top` has its terminator for free. Strings lie end to end, and a pointer into the arena stays
// good until Reset or Release. No lock: the pool belongs to one IniFile.
//
// A read may fill the whole free space, last byte included; Advance then stops `top` at the
// arena's end and makes the last byte the terminator, so every scan stays inside the arena and
// the free space is 0 from then on.
class StringPool {
 public:
  StringPool() = default;
  // Gives the arena back if it is still held.
  ~StringPool();
  StringPool(const StringPool&) = delete;
  StringPool& operator=(const StringPool&) = delete;

  // Releases any arena held, then makes a zeroed arena of size + 1 bytes (capacity). When
  // memAlloc gives nothing, or the size is below 0 or too large for a capacity, the pool has no
  // arena: base, top and cursor are null and every read of it finds nothing.
  void Create(std::int32_t size);
  // Gives the arena back; base, top and cursor become null, capacity stays. Safe to repeat.
  void Release();
  // Zeroes the whole arena and moves top and cursor back to base.
  void Reset();
  // Copies text and its terminator to top and sets the cursor on the copy. Returns 1; returns 0
  // with nothing changed, cursor included, when there is no arena or the copy would reach the
  // last byte of the arena (that byte is never written by Append). text must not be null.
  int Append(const char* text);
  // The string the cursor stands on.
  char* CurrentString() const { return cursor; }
  // Steps the cursor over the current string and its terminator; returns the new cursor.
  // REQUIRES: HasMore().
  char* MoveNext();
  // Returns 1 with the cursor on target when a walk from the first string lands exactly on it.
  // Returns 0 with the cursor unchanged for a null target or one that points at an empty
  // string; returns 0 with the cursor at top when the walk misses it (an address inside a
  // string is never found). Addresses are compared, never text. Takes constant time.
  int MoveTo(const char* target);
  // 1 when there is an arena and the cursor lies below top, else 0.
  int HasMore() const;
  // Where the next text goes: top.
  char* FreeStart() const { return top; }
  // capacity less the bytes in use; 0 with no arena, never below 0.
  std::int32_t FreeSpace() const;
  // Moves top on by count bytes, which the caller has filled from FreeStart. If that would pass
  // the arena's end, top stops at the end and the arena's last byte is set to 0, cutting the
  // text there.
  void Advance(std::int32_t count);

  char* base = nullptr;
  char* top = nullptr;
  char* cursor = nullptr;
  std::int32_t capacity = 0;
};
