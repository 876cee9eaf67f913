// Tests of StringPool: the arena's bounds, the walk, and a pool without an arena.
#include "config/string_pool.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

constexpr std::int32_t kSize = 262144;

class StringPoolTest : public KernelTest {};

// Fills the pool so that `used` bytes are in use, with strings of at most 1000 bytes.
void fillTo(StringPool& pool, std::int32_t used) {
  std::string chunk(999, 'x');
  while (pool.top - pool.base + 1000 <= used) ASSERT_EQ(pool.Append(chunk.c_str()), 1);
  std::int32_t rest = used - static_cast<std::int32_t>(pool.top - pool.base);
  if (rest > 0) {
    ASSERT_EQ(pool.Append(std::string(rest - 1, 'y').c_str()), 1);
  }
  ASSERT_EQ(pool.top - pool.base, used);
}

TEST_F(StringPoolTest, NewPoolIsAllZero) {
  StringPool pool;
  EXPECT_EQ(pool.base, nullptr);
  EXPECT_EQ(pool.top, nullptr);
  EXPECT_EQ(pool.cursor, nullptr);
  EXPECT_EQ(pool.capacity, 0);
  EXPECT_EQ(pool.HasMore(), 0);
  EXPECT_EQ(pool.FreeSpace(), 0);
  EXPECT_EQ(pool.Append("a"), 0);
}

TEST_F(StringPoolTest, CreateGivesOneByteMoreThanAsked) {
  StringPool pool;
  pool.Create(kSize);
  ASSERT_NE(pool.base, nullptr);
  EXPECT_EQ(pool.capacity, kSize + 1);
  EXPECT_EQ(pool.FreeSpace(), kSize + 1);
  EXPECT_EQ(pool.top, pool.base);
  EXPECT_EQ(pool.cursor, pool.base);
  EXPECT_EQ(pool.HasMore(), 0);
}

TEST_F(StringPoolTest, AppendStopsShortOfTheLastByte) {
  StringPool pool;
  pool.Create(kSize);
  fillTo(pool, 262140);
  ASSERT_EQ(pool.Append("abc"), 1);
  EXPECT_EQ(pool.top - pool.base, kSize);
  EXPECT_STREQ(pool.CurrentString(), "abc");
  EXPECT_EQ(pool.FreeSpace(), 1);

  char* top = pool.top;
  char* cursor = pool.cursor;
  EXPECT_EQ(pool.Append(""), 0);
  EXPECT_EQ(pool.top, top);
  EXPECT_EQ(pool.cursor, cursor);
  EXPECT_EQ(pool.base[kSize], '\0');
}

TEST_F(StringPoolTest, AppendRefusesATerminatorOnTheLastByte) {
  StringPool pool;
  pool.Create(9);  // capacity 10
  EXPECT_EQ(pool.Append("abcdefghi"), 0);  // 10 bytes: would end on the last byte
  EXPECT_EQ(pool.top, pool.base);
  EXPECT_EQ(pool.Append("abcdefgh"), 1);  // 9 bytes
  EXPECT_EQ(pool.FreeSpace(), 1);
}

TEST_F(StringPoolTest, EmptyTextTakesOneByteAndCountsInAWalk) {
  StringPool pool;
  pool.Create(64);
  ASSERT_EQ(pool.Append("a"), 1);
  ASSERT_EQ(pool.Append(""), 1);
  char* empty = pool.CurrentString();
  EXPECT_EQ(empty, pool.base + 2);
  EXPECT_STREQ(empty, "");
  ASSERT_EQ(pool.Append("b"), 1);
  EXPECT_EQ(pool.top - pool.base, 5);

  ASSERT_EQ(pool.MoveTo(pool.base), 1);
  const char* seen[3] = {};
  int n = 0;
  while (pool.HasMore()) {
    ASSERT_LT(n, 3);
    seen[n++] = pool.CurrentString();
    pool.MoveNext();
  }
  ASSERT_EQ(n, 3);
  EXPECT_STREQ(seen[0], "a");
  EXPECT_STREQ(seen[1], "");
  EXPECT_STREQ(seen[2], "b");
  EXPECT_EQ(pool.cursor, pool.top);
}

TEST_F(StringPoolTest, MoveToFindsOnlyStringStarts) {
  StringPool pool;
  pool.Create(64);
  ASSERT_EQ(pool.Append(""), 1);
  ASSERT_EQ(pool.Append("first"), 1);
  ASSERT_EQ(pool.Append("second"), 1);
  char* second = pool.CurrentString();

  char* before = pool.cursor;
  EXPECT_EQ(pool.MoveTo(pool.base), 0) << "the first string is empty";
  EXPECT_EQ(pool.cursor, before);
  EXPECT_EQ(pool.MoveTo(nullptr), 0);
  EXPECT_EQ(pool.cursor, before);

  EXPECT_EQ(pool.MoveTo(second + 1), 0);
  EXPECT_GE(pool.cursor, pool.top);
  EXPECT_EQ(pool.HasMore(), 0);

  EXPECT_EQ(pool.MoveTo(pool.base + 1), 1);
  EXPECT_STREQ(pool.CurrentString(), "first");
  EXPECT_EQ(pool.MoveTo(second), 1);
  EXPECT_EQ(pool.cursor, second);

  // Cutting a string in place makes a new start; joining two removes one.
  second[2] = '\0';
  EXPECT_EQ(pool.MoveTo(second + 3), 1);
  EXPECT_STREQ(pool.CurrentString(), "ond");
  second[-1] = '#';
  EXPECT_EQ(pool.MoveTo(second), 0);
  EXPECT_EQ(pool.cursor, pool.top);
}

TEST_F(StringPoolTest, ResetZeroesEverythingEarlierPointersSee) {
  StringPool pool;
  pool.Create(64);
  ASSERT_EQ(pool.Append("one"), 1);
  char* one = pool.CurrentString();
  ASSERT_EQ(pool.Append("two"), 1);
  char* two = pool.CurrentString();
  pool.Reset();
  EXPECT_EQ(one[0], '\0');
  EXPECT_EQ(two[0], '\0');
  EXPECT_EQ(pool.top, pool.base);
  EXPECT_EQ(pool.FreeSpace(), 65);
}

TEST_F(StringPoolTest, ReadThatLeavesRoomKeepsItsTerminator) {
  StringPool pool;
  pool.Create(8);  // capacity 9
  std::memcpy(pool.FreeStart(), "ab\ncd", 5);
  pool.Advance(6);
  EXPECT_EQ(pool.FreeSpace(), 3);
  EXPECT_EQ(pool.base[5], '\0');
  std::memcpy(pool.FreeStart(), "xy", 2);
  pool.Advance(3);
  EXPECT_EQ(pool.FreeSpace(), 0);
  EXPECT_STREQ(pool.base + 6, "xy");
}

// A read of the whole free space leaves no terminator; the pool cuts the text at its last byte
// and reports no space from then on, so walks and appends stay inside the arena.
TEST_F(StringPoolTest, ReadThatFillsTheArenaIsCutAtItsLastByte) {
  for (std::int32_t used : {0, 5}) {
    SCOPED_TRACE(used);
    StringPool pool;
    pool.Create(15);  // capacity 16
    if (used) {
      ASSERT_EQ(pool.Append("pre!"), 1);
    }
    std::int32_t room = pool.FreeSpace();
    ASSERT_EQ(room, 16 - used);
    char* start = pool.FreeStart();
    std::memset(start, 'z', static_cast<std::size_t>(room));
    pool.Advance(room + 1);
    EXPECT_EQ(pool.top, pool.base + pool.capacity);
    EXPECT_EQ(pool.FreeSpace(), 0);
    EXPECT_EQ(pool.base[15], '\0');
    EXPECT_EQ(std::strlen(start), static_cast<std::size_t>(room - 1));
    EXPECT_EQ(pool.Append(""), 0);
    ASSERT_EQ(pool.MoveTo(start), 1);
    pool.MoveNext();
    EXPECT_EQ(pool.HasMore(), 0);
    EXPECT_EQ(pool.cursor, pool.top);
  }
}

TEST_F(StringPoolTest, FailedCreateLeavesAPoolThatRefusesEverything) {
  StringPool pool;
  hostHeapFailNth(1);
  pool.Create(kSize);
  EXPECT_EQ(pool.base, nullptr);
  EXPECT_EQ(pool.top, nullptr);
  EXPECT_EQ(pool.cursor, nullptr);
  EXPECT_EQ(pool.capacity, kSize + 1);
  EXPECT_EQ(pool.FreeSpace(), 0);
  EXPECT_EQ(pool.HasMore(), 0);
  EXPECT_EQ(pool.Append("text"), 0);
  pool.Advance(10);
  EXPECT_EQ(pool.top, nullptr);
  char outside[] = "x";
  EXPECT_EQ(pool.MoveTo(outside), 0);
}

TEST_F(StringPoolTest, CreateAgainReplacesTheArenaAndReleaseTwiceIsHarmless) {
  std::int64_t before = LiveBlocks();
  StringPool pool;
  pool.Create(16);
  pool.Create(32);
  EXPECT_EQ(LiveBlocks(), before + 1);
  EXPECT_EQ(pool.capacity, 33);
  pool.Release();
  pool.Release();
  EXPECT_EQ(pool.base, nullptr);
  EXPECT_EQ(pool.capacity, 33);
  EXPECT_EQ(LiveBlocks(), before);
}

}  // namespace
