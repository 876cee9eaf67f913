// Tests of GrowArray: creation limits, doubling, the fixed flag and no-memory paths.
#include <gtest/gtest.h>

#include "base/grow_array.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

class GrowArrayTest : public KernelTest {
 protected:
  void TearDown() override {
    array.Clear();
    KernelTest::TearDown();
  }
  GrowArray array;
  int item = 0;
};

TEST_F(GrowArrayTest, CreateAcceptsUpTo65534ZeroedSlots) {
  const std::pair<int, int> cases[] = {{65534, 1}, {65535, 0}, {70000, 0}, {0, 0},
                                       {-1, 0},    {-65536, 0}, {1, 1}};
  for (const auto& [capacity, result] : cases) {
    EXPECT_EQ(array.Create(capacity), result) << capacity;
    EXPECT_EQ(array.capacity, result ? capacity : 0) << capacity;
    EXPECT_EQ(array.data != nullptr, result == 1) << capacity;
    for (int i = 0; array.data && i < array.capacity; i++) ASSERT_EQ(array.data[i], nullptr);
    array.Clear();
  }
}

TEST_F(GrowArrayTest, AppendDoublesFrom8To32768AndRefusesThe32769th) {
  array.MoveFirst();
  EXPECT_EQ(array.current, -1);
  for (int i = 0; i < 32768; i++) ASSERT_EQ(array.Append(&item), 1) << i;
  EXPECT_EQ(array.capacity, 32768);
  EXPECT_EQ(array.current, 32767);
  EXPECT_EQ(array.Append(&item), 0);
  EXPECT_EQ(array.count, 32768);
  array.MoveNext();
  array.MoveNext();  // the cursor stops at count
  EXPECT_EQ(array.current, 32768);
}

TEST_F(GrowArrayTest, FixedArrayRefusesToGrowAndLargeOneDoublesOnce) {
  array.fixed = 1;
  ASSERT_EQ(array.Create(2), 1);
  ASSERT_EQ(array.Append(&item), 1);
  ASSERT_EQ(array.Append(&item), 1);
  EXPECT_EQ(array.Append(&item), 0);
  EXPECT_EQ(array.count, 2);
  array.Clear();
  array.fixed = 0;
  ASSERT_EQ(array.Create(30000), 1);
  EXPECT_EQ(array.Grow(), 1);
  EXPECT_EQ(array.capacity, 60000);
  EXPECT_EQ(array.Grow(), 0);
}

TEST_F(GrowArrayTest, NoMemoryKeepsTheItems) {
  hostHeapFailNth(1);
  EXPECT_EQ(array.Append(&item), 0);  // the first block itself
  EXPECT_EQ(array.count, 0);
  for (int i = 0; i < 8; i++) ASSERT_EQ(array.Append(&item), 1);
  hostHeapFailNth(1);
  EXPECT_EQ(array.Append(nullptr), 0);  // the grow to 16
  EXPECT_EQ(array.capacity, 8);
  EXPECT_EQ(array.count, 8);
  EXPECT_EQ(array.Append(nullptr), 1);
  EXPECT_EQ(array.capacity, 16);
  for (int i = 0; i < 8; i++) EXPECT_EQ(array.data[i], &item) << i;
}
