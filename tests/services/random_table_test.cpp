// Tests of the random table: the seeded table, the cycle of 4096 draws and the ranges.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/host_random.h"
#include "services/random_table.h"

TEST(RandomTable, DrawsCycleThroughTheTableFromItsSeed) {
  RandomTable table;
  table.Init();
  EXPECT_EQ(table.GetSeed(), 1u);
  std::vector<float> first;
  for (int i = 0; i < RandomTable::kSize; i++) first.push_back(table.NextFloat(1.0f));
  EXPECT_EQ(first[0], table.values[0]);
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);  // the 4097th draw
  EXPECT_GT(std::ranges::count_if(first, [&](float v) { return v != first[0]; }), 4000);

  table.NextInt(5);
  table.SetSeed(1);  // the same seed gives the same sequence, whatever was drawn between
  for (int i = 0; i < 3; i++) EXPECT_EQ(table.NextFloat(1.0f), first[i]);
  table.drawIndex = 0xFFFFFFFFu;  // the index wraps on a multiple of the table's size
  EXPECT_EQ(table.NextFloat(1.0f), first[RandomTable::kSize - 1]);
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);
}

TEST(RandomTable, RangesStayBelowTheirBounds) {
  RandomTable table;
  table.SetSeed(12345);
  table.values[7] = 32767.0f / 32768.0f;  // the largest value the generator can give
  auto at = [&](int index) -> RandomTable& {  // the table about to draw at `index`
    table.drawIndex = index;
    return table;
  };
  for (int i = 0; i < 2 * RandomTable::kSize; i++) {
    float value = table.values[i % RandomTable::kSize];
    ASSERT_GE(value, 0.0f);
    ASSERT_LT(value, 1.0f);
    EXPECT_EQ(at(i).NextInt(1), 0);
    EXPECT_EQ(at(i).NextInt(0), 0);
    EXPECT_LE(at(i).NextShort(), 32766);
    int n = at(i).NextInt(-100);
    EXPECT_TRUE(n <= 0 && n > -100);
  }
  EXPECT_EQ(at(7).NextShort(), 32766);
  EXPECT_EQ(at(7).NextInt(32768), 32767);
}

TEST(HostRandom, CoversExactlyZeroTo32767) {
  hostRandomSeed(99);
  int low = 32767, high = 0;
  for (int i = 0; i < 1000000; i++) {
    int value = hostRandom();
    low = std::min(low, value);
    high = std::max(high, value);
  }
  EXPECT_EQ(low, 0);
  EXPECT_EQ(high, kHostRandomMax);
}
