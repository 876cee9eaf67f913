#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

#include "base/cursor_list.h"
#include "base/grow_array.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

static int a, b, c, d;  // payloads
using Payloads = std::vector<void*>;
using Where = std::pair<const void*, int>;  // the cursor's payload and index

// The payloads from head to tail, checking both links and both ends on the way.
static Payloads payloads(const CursorList& list) {
  Payloads out;
  const CursorNode* last = nullptr;
  for (const CursorNode* node = list.head; node; last = node, node = node->next) {
    EXPECT_EQ(node->previous, last);
    out.push_back(node->payload);
  }
  EXPECT_EQ(list.tail, last);
  EXPECT_EQ(static_cast<int>(out.size()), list.count);
  return out;
}

TEST_F(KernelTest, CursorMovesStopPastTheTailAndInsertsAndRemovalsKeepItInStep) {
  CursorList list;
  auto where = [&] { return Where(list.current ? list.current->payload : nullptr, list.index); };
  list.MoveFirst();
  EXPECT_EQ(where(), Where(nullptr, -1));
  // Into an empty list, ahead of the head, ahead of the tail, and past the tail: ahead of the head.
  using Insert = std::tuple<int, int*, int>;  // cursor moved to, payload, index after
  for (auto [position, payload, index] : {Insert{0, &b, 0}, {0, &a, 0}, {1, &c, 1}, {9, &d, 3}}) {
    list.MoveToIndex(position);
    ASSERT_EQ(list.InsertBeforeCurrent(payload), 1);
    EXPECT_EQ(list.index, index) << position;
  }
  ASSERT_EQ(list.Append(&a), 1);
  using Move = std::tuple<int, int, Where>;  // MoveToIndex, then MoveNexts, and where to
  for (auto [position, nexts, expected] : {Move{-5, 0, {&d, 0}}, {1, 0, {&a, 1}},
                                           {4, 1, {nullptr, 5}}, {4, 2, {nullptr, 5}},
                                           {99, 0, {nullptr, 5}}}) {
    list.MoveToIndex(position);
    for (int i = 0; i < nexts; i++) list.MoveNext();
    EXPECT_EQ(where(), expected) << position << "+" << nexts;
  }
  list.MoveToIndex(1);
  for (auto add : {&CursorList::Append, &CursorList::InsertBeforeCurrent}) {
    hostHeapFailNth(1);
    EXPECT_EQ((list.*add)(&b), 0);
  }
  EXPECT_EQ(payloads(list), (Payloads{&d, &a, &c, &b, &a}));
  // A middle node gives way to the next one, the tail to the new tail, the last node to none.
  for (Where expected : {Where{&c, 1}, {&b, 1}, {&a, 1}, {&d, 0}, {nullptr, -1}}) {
    list.RemoveCurrent();
    EXPECT_EQ(where(), expected);
  }
  EXPECT_EQ(payloads(list), Payloads{});
}

// Made with 1 to 65534 zeroed slots, or from 8 slots doubling up to 32768, refusing the 32769th
// item; a fixed one never grows, and one made at 30000 doubles once. No memory keeps the items.
TEST_F(KernelTest, ArrayGrowsByDoublingWithinItsLimits) {
  GrowArray array;
  for (int refused : {65535, 0, -1}) EXPECT_EQ(array.Create(refused), 0) << refused;
  EXPECT_EQ(array.data, nullptr);
  ASSERT_EQ(array.Create(65534), 1);
  EXPECT_EQ(std::count(array.data, array.data + 65534, nullptr), 65534);
  array.Clear();
  hostHeapFailNth(1);
  EXPECT_EQ(array.Append(&a), 0);  // the first block itself
  for (int i = 0; i < 8; i++) ASSERT_EQ(array.Append(&a), 1);
  hostHeapFailNth(1);
  EXPECT_EQ(array.Append(nullptr), 0);  // the grow to 16
  EXPECT_EQ(std::make_pair(array.capacity, array.count), std::make_pair(8, 8));
  for (int i = 8; i < 32768; i++) ASSERT_EQ(array.Append(&a), 1) << i;
  EXPECT_EQ(std::count(array.data, array.data + 32768, &a), 32768);
  EXPECT_EQ(std::make_pair(array.capacity, array.current), std::make_pair(32768, 32767));
  EXPECT_EQ(array.Append(&a), 0);
  for (int i = 0; i < 2; i++) array.MoveNext();  // the cursor stops at count
  EXPECT_EQ(array.current, 32768);
  ASSERT_EQ(array.Create(30000), 1);
  array.MoveFirst();
  EXPECT_EQ(array.current, -1);  // empty
  for (int result : {1, 0}) EXPECT_EQ(array.Grow(), result);
  EXPECT_EQ(array.capacity, 60000);
  array.fixed = 1;
  ASSERT_EQ(array.Create(2), 1);
  for (int result : {1, 1, 0}) EXPECT_EQ(array.Append(&a), result);
}
