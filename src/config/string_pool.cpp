// StringPool: one fixed arena of NUL-terminated strings that never grows, moves or frees singly.
#include "config/string_pool.h"

#include <cstdint>
#include <cstring>

#include "base/memory_manager.h"

StringPool::~StringPool() { Release(); }

void StringPool::Create(std::int32_t size) {
  Release();
  if (size < 0 || size == INT32_MAX) {
    capacity = 0;
    return;
  }
  capacity = size + 1;
  base = static_cast<char*>(memAllocZeroed(static_cast<std::uint32_t>(capacity)));
  top = cursor = base;
}

void StringPool::Release() {
  if (base) memFree(base);
  base = top = cursor = nullptr;
}

void StringPool::Reset() {
  // Nothing is ever written behind top, so zeroing the bytes in use zeroes the whole arena.
  if (base) std::memset(base, 0, static_cast<std::size_t>(top - base));
  top = cursor = base;
}

int StringPool::Append(const char* text) {
  // Without this test a pool whose Create failed would be written through null.
  if (!base) return 0;
  std::size_t length = std::strlen(text) + 1;
  std::size_t used = static_cast<std::size_t>(top - base);
  // Strictly below: the arena's last byte stays free for a terminator that a read may need.
  if (used + length >= static_cast<std::size_t>(capacity)) return 0;
  cursor = top;
  std::memcpy(top, text, length);
  top += length;
  return 1;
}

char* StringPool::MoveNext() {
  cursor += std::strlen(cursor) + 1;
  return cursor;
}

int StringPool::MoveTo(const char* target) {
  if (!target || target[0] == '\0') return 0;
  cursor = base;
  if (!base) return 0;
  // A walk from the first string stands on base and on every byte behind a zero byte below
  // top, and nowhere else. So it lands on target exactly when target is such a byte, and a
  // miss ends it at top; the test below gives that answer without walking, which keeps the
  // read of each included file from costing a pass over all the text before it.
  auto at = reinterpret_cast<std::uintptr_t>(target);
  if (at >= reinterpret_cast<std::uintptr_t>(base) && at < reinterpret_cast<std::uintptr_t>(top) &&
      (target == base || target[-1] == '\0')) {
    cursor = base + (target - base);
    return 1;
  }
  cursor = top;
  return 0;
}

int StringPool::HasMore() const { return (base && cursor < top) ? 1 : 0; }

std::int32_t StringPool::FreeSpace() const {
  if (!base) return 0;
  std::int32_t used = static_cast<std::int32_t>(top - base);
  return used < capacity ? capacity - used : 0;
}

void StringPool::Advance(std::int32_t count) {
  if (!base || count <= 0) return;
  std::int32_t room = FreeSpace();
  if (count <= room) {
    top += count;
    return;
  }
  // A read that filled the arena to its last byte has no terminator of its own: the last byte
  // becomes one, so no walk runs off the arena.
  top = base + capacity;
  base[capacity - 1] = '\0';
}
