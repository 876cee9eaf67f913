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

TEST_F(GrowArrayTest, CreateAcceptsUpTo65534) {
  struct Case {
    int capacity;
    int result;
  } cases[] = {{65534, 1}, {65535, 0}, {70000, 0}, {0, 0}, {-1, 0}, {-65536, 0}, {1, 1}};
  for (const Case& c : cases) {
    EXPECT_EQ(array.Create(c.capacity), c.result) << c.capacity;
    EXPECT_EQ(array.capacity, c.result ? c.capacity : 0) << c.capacity;
    EXPECT_EQ(array.current, -1);
    if (array.data) {
      for (int i = 0; i < array.capacity; i++) ASSERT_EQ(array.data[i], nullptr);
    }
    array.Clear();
  }
}

TEST_F(GrowArrayTest, AppendDoublesFrom8To32768AndRefusesThe32769th) {
  for (int i = 0; i < 32768; i++) ASSERT_EQ(array.Append(&item), 1) << i;
  EXPECT_EQ(array.capacity, 32768);
  EXPECT_EQ(array.current, 32767);
  EXPECT_EQ(array.Append(&item), 0);
  EXPECT_EQ(array.count, 32768);
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

TEST_F(GrowArrayTest, CursorStopsAtCount) {
  array.MoveFirst();
  EXPECT_EQ(array.current, -1);
  array.Append(&item);
  array.Append(&item);
  array.MoveFirst();
  EXPECT_EQ(array.current, 0);
  array.MoveNext();
  array.MoveNext();
  array.MoveNext();
  EXPECT_EQ(array.current, 2);
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
  for (int i = 0; i < 8; i++) EXPECT_EQ(array.data[i], &item);
  EXPECT_EQ(array.Append(nullptr), 1);
  EXPECT_EQ(array.capacity, 16);
  EXPECT_EQ(array.data[7], &item);
}
