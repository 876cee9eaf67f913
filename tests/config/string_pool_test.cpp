// Tests of StringPool at its edges: a read that fills the arena, and a pool without an arena.
#include "config/string_pool.h"

#include <gtest/gtest.h>

#include <cstring>

#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

class StringPoolTest : public KernelTest {};

// A read of the whole free space has no terminator: the pool cuts it at the last byte and has no
// space from then on, so walks stay in the arena. Append never takes the last byte either.
TEST_F(StringPoolTest, CutsAReadThatFillsTheArenaAtItsLastByte) {
  for (std::int32_t read : {13, 14, 15}) {
    StringPool pool;
    pool.Create(15);
    ASSERT_EQ(pool.Append(""), 1);
    char* start = pool.FreeStart();
    std::memset(start, 'z', static_cast<std::size_t>(read));
    pool.Advance(read + 1);
    EXPECT_EQ(std::strlen(start), static_cast<std::size_t>(read < 14 ? read : 14)) << read;
    EXPECT_EQ(pool.FreeSpace(), read < 14 ? 1 : 0) << read;
    EXPECT_EQ(pool.top, pool.base + (read < 14 ? read + 2 : 16)) << read;
    EXPECT_EQ(pool.Append(""), 0) << read;
    ASSERT_EQ(pool.MoveTo(start), 1) << read;
    pool.MoveNext();
    EXPECT_EQ(pool.HasMore(), 0) << read;
  }
}

TEST_F(StringPoolTest, RefusesEverythingWithoutAnArena) {
  StringPool pool;
  EXPECT_EQ(pool.Append("a"), 0);
  hostHeapFailNth(1);
  pool.Create(64);
  EXPECT_EQ(pool.base, nullptr);
  EXPECT_EQ(pool.FreeSpace() + pool.HasMore() + pool.Append("text"), 0);
  pool.Advance(10);
  EXPECT_EQ(pool.top, nullptr);
  char outside[] = "x";
  EXPECT_EQ(pool.MoveTo(outside), 0);
  pool.Create(16);
  pool.Create(32);  // gives the first arena back; the fixture counts the blocks
  pool.Release();
  pool.Release();
}

}  // namespace
