// The random table: the seeded table, the cycle of 4096 draws and the ranges.
#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "services/random_table.h"

// The generator gives 0 to 32767; the table scales it below 1, so no range reaches its bound.
TEST(RandomTable, DrawsCycleThroughTheTableFromItsSeedAndStayBelowTheirBounds) {
  RandomTable table;
  table.Init();
  EXPECT_EQ(table.GetSeed(), 1u);
  std::vector<float> first;
  for (int i = 0; i < RandomTable::kSize; i++) first.push_back(table.NextFloat(1.0f));
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);  // the 4097th draw
  EXPECT_GT(std::ranges::count_if(first, [&](float v) { return v != first[0]; }), 4000);
  table.SetSeed(1);  // the same seed gives the same sequence, whatever was drawn between
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);
  table.drawIndex = 0xFFFFFFFFu;  // the index wraps on a multiple of the table's size
  EXPECT_EQ(table.NextFloat(1.0f), first[RandomTable::kSize - 1]);
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);
  EXPECT_TRUE(std::ranges::all_of(table.values, [](float v) { return v >= 0 && v < 1; }));
  table.values[7] = 32767.0f / 32768.0f;  // the largest value the generator can give
  for (auto [range, largest] : {std::pair{1, 0}, {0, 0}, {-100, -99}, {32768, 32767}}) {
    table.drawIndex = 7;
    EXPECT_EQ(table.NextInt(range), largest) << range;
  }
  table.drawIndex = 7;
  EXPECT_EQ(table.NextShort(), 32766);
}
