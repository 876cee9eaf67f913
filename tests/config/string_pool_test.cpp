// Tests of StringPool: the arena's bounds, the walk, and a pool without an arena.
#include "config/string_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

class StringPoolTest : public KernelTest {};

TEST_F(StringPoolTest, AppendStopsShortOfTheLastByte) {
  StringPool pool;
  pool.Create(262144);
  ASSERT_NE(pool.base, nullptr);
  EXPECT_EQ(pool.capacity, 262145);
  EXPECT_EQ(pool.FreeSpace(), 262145);
  std::string chunk(999, 'x');
  for (int i = 0; i < 262; i++) ASSERT_EQ(pool.Append(chunk.c_str()), 1);
  ASSERT_EQ(pool.Append(std::string(139, 'y').c_str()), 1);
  ASSERT_EQ(pool.top - pool.base, 262140);
  ASSERT_EQ(pool.Append("abc"), 1);
  EXPECT_EQ(pool.top - pool.base, 262144);
  EXPECT_STREQ(pool.CurrentString(), "abc");

  char* top = pool.top;
  char* cursor = pool.cursor;
  EXPECT_EQ(pool.Append(""), 0);
  EXPECT_EQ(pool.top, top);
  EXPECT_EQ(pool.cursor, cursor);
  EXPECT_EQ(pool.base[262144], '\0');
}

TEST_F(StringPoolTest, WalksEveryStringTheEmptyOnesToo) {
  StringPool pool;
  pool.Create(64);
  ASSERT_EQ(pool.Append(""), 1);
  char* empty = pool.CurrentString();
  ASSERT_EQ(pool.Append("first"), 1);
  ASSERT_EQ(pool.Append("second"), 1);
  char* second = pool.CurrentString();
  EXPECT_EQ(pool.top - pool.base, 14);

  char* before = pool.cursor;
  EXPECT_EQ(pool.MoveTo(empty), 0) << "an empty string is never found, even the first";
  EXPECT_EQ(pool.MoveTo(nullptr), 0);
  EXPECT_EQ(pool.cursor, before);
  EXPECT_EQ(pool.MoveTo(second + 1), 0);
  EXPECT_EQ(pool.cursor, pool.top);
  EXPECT_EQ(pool.HasMore(), 0);

  pool.cursor = pool.base;
  std::string seen;
  while (pool.HasMore()) {
    seen += std::string("|") + pool.CurrentString();
    pool.MoveNext();
  }
  EXPECT_EQ(seen, "||first|second");
  EXPECT_EQ(pool.cursor, pool.top);

  // Cutting a string in place makes a new start; joining two removes one.
  second[2] = '\0';
  EXPECT_EQ(pool.MoveTo(second + 3), 1);
  EXPECT_STREQ(pool.CurrentString(), "ond");
  second[-1] = '#';
  EXPECT_EQ(pool.MoveTo(second), 0);

  pool.Reset();
  EXPECT_EQ(second[0], '\0');
  EXPECT_EQ(pool.top, pool.base);
  EXPECT_EQ(pool.FreeSpace(), 65);
}

// A read of the whole free space leaves no terminator; the pool cuts the text at its last byte
// and reports no space from then on, so walks and appends stay inside the arena.
TEST_F(StringPoolTest, CutsAReadThatFillsTheArenaAtItsLastByte) {
  for (std::int32_t read : {13, 14, 15}) {
    SCOPED_TRACE(read);
    StringPool pool;
    pool.Create(15);  // capacity 16
    ASSERT_EQ(pool.Append(""), 1);
    char* start = pool.FreeStart();
    ASSERT_EQ(pool.FreeSpace(), 15);
    std::memset(start, 'z', static_cast<std::size_t>(read));
    pool.Advance(read + 1);
    std::int32_t kept = std::min(read, 14);
    EXPECT_EQ(std::strlen(start), static_cast<std::size_t>(kept));
    EXPECT_EQ(pool.FreeSpace(), read < 14 ? 1 : 0);
    EXPECT_LE(pool.top, pool.base + pool.capacity);
    EXPECT_EQ(pool.Append(""), 0);
    ASSERT_EQ(pool.MoveTo(start), 1);
    pool.MoveNext();
    EXPECT_EQ(pool.HasMore(), 0);
  }
}

TEST_F(StringPoolTest, RefusesEverythingWithoutAnArena) {
  std::int64_t before = LiveBlocks();
  StringPool pool;
  EXPECT_EQ(pool.capacity, 0);
  EXPECT_EQ(pool.Append("a"), 0);
  hostHeapFailNth(1);
  pool.Create(64);
  EXPECT_EQ(pool.base, nullptr);
  EXPECT_EQ(pool.top, nullptr);
  EXPECT_EQ(pool.cursor, nullptr);
  EXPECT_EQ(pool.capacity, 65);
  EXPECT_EQ(pool.FreeSpace(), 0);
  EXPECT_EQ(pool.HasMore(), 0);
  EXPECT_EQ(pool.Append("text"), 0);
  pool.Advance(10);
  EXPECT_EQ(pool.top, nullptr);
  char outside[] = "x";
  EXPECT_EQ(pool.MoveTo(outside), 0);

  pool.Create(16);
  pool.Create(32);
  EXPECT_EQ(LiveBlocks(), before + 1);
  pool.Release();
  pool.Release();
  EXPECT_EQ(pool.capacity, 33);
  EXPECT_EQ(LiveBlocks(), before);
}

}  // namespace
