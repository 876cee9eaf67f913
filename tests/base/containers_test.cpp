// Tests of CursorList and GrowArray: cursors, inserts, removals, growth and no memory.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "base/cursor_list.h"
#include "base/grow_array.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

struct Named {  // a payload that begins with its name
  const char* name;
};
Named alpha{"Alpha"}, beta{"Beta"}, gamma{"Gamma"}, unnamed{""};
using Names = std::vector<std::string>;

// The names from head to tail, checking both links and both ends on the way.
Names names(const CursorList& list) {
  Names out;
  const CursorNode* last = nullptr;
  for (const CursorNode* node = list.head; node; last = node, node = node->next) {
    EXPECT_EQ(node->previous, last);
    out.push_back(static_cast<Named*>(node->payload)->name);
  }
  EXPECT_EQ(list.tail, last);
  EXPECT_EQ(static_cast<int>(out.size()), list.count);
  return out;
}

const void* at(const CursorList& list) { return list.current ? list.current->payload : nullptr; }

class ContainersTest : public KernelTest {
 protected:
  void TearDown() override {
    list.Clear();
    array.Clear();
    KernelTest::TearDown();
  }
  CursorList list;
  GrowArray array;
  int item = 0;
};

}  // namespace

TEST_F(ContainersTest, CursorMovesStopPastTheTailAndRemoveCurrentMovesOn) {
  list.MoveFirst();
  EXPECT_EQ(std::make_tuple(list.current, list.index), std::make_tuple(nullptr, -1));
  for (Named* payload : {&alpha, &beta, &gamma}) ASSERT_EQ(list.Append(payload), 1);
  EXPECT_EQ(std::make_tuple(at(list), list.index), std::make_tuple(&gamma, 2));
  using Move = std::tuple<int, int, const Named*, int>;  // MoveToIndex, MoveNexts, where to
  for (auto [position, nexts, expected, index] :
       {Move{-5, 0, &alpha, 0}, {1, 0, &beta, 1}, {2, 1, nullptr, 3}, {2, 2, nullptr, 3},
        {99, 0, nullptr, 3}}) {
    list.MoveToIndex(position);
    for (int i = 0; i < nexts; i++) list.MoveNext();
    EXPECT_EQ(std::make_tuple(at(list), list.index), std::make_tuple(expected, index))
        << position << "+" << nexts;
  }
  list.MoveToIndex(1);
  // A middle node gives way to the next one, the tail to the new tail, the last node to none.
  using Removal = std::pair<const Named*, int>;
  for (auto [current, index] : {Removal{&gamma, 1}, {&alpha, 0}, {nullptr, -1}}) {
    list.RemoveCurrent();
    EXPECT_EQ(std::make_tuple(at(list), list.index), std::make_tuple(current, index));
  }
  EXPECT_EQ(names(list), Names{});
}

TEST_F(ContainersTest, InsertBeforeCurrentKeepsTheIndexAndNoMemoryChangesNothing) {
  ASSERT_EQ(list.InsertBeforeCurrent(&beta), 1);   // into an empty list
  ASSERT_EQ(list.InsertBeforeCurrent(&alpha), 1);  // ahead of the head
  EXPECT_EQ(list.index, 0);
  ASSERT_EQ(list.Append(&gamma), 1);
  list.MoveToIndex(2);
  ASSERT_EQ(list.InsertBeforeCurrent(&unnamed), 1);  // ahead of the tail
  EXPECT_EQ(list.index, 2);
  list.MoveToIndex(9);  // past the tail: ahead of the head, index untouched
  ASSERT_EQ(list.InsertBeforeCurrent(&gamma), 1);
  EXPECT_EQ(list.index, 4);
  list.MoveToIndex(1);
  for (auto add : {&CursorList::Append, &CursorList::InsertBeforeCurrent}) {
    hostHeapFailNth(1);
    EXPECT_EQ((list.*add)(&beta), 0);
  }
  EXPECT_EQ(names(list), (Names{"Gamma", "Alpha", "Beta", "", "Gamma"}));
  EXPECT_EQ(std::make_tuple(at(list), list.index), std::make_tuple(&alpha, 1));
}

TEST(CursorListAfterHeap, DestructorDropsNodesOnceTheHeapIsGone) {
  auto* list = new CursorList;  // gMEM is null here
  CursorNode node{reinterpret_cast<CursorNode*>(0x10), nullptr, nullptr};  // crashes if walked
  list->head = list->tail = list->current = &node;
  list->count = 1;
  delete list;
}

// Made with 1 to 65534 zeroed slots, or from 8 slots doubling up to 32768, refusing the 32769th
// item; a fixed one never grows, and one made at 30000 doubles once. No memory keeps the items.
TEST_F(ContainersTest, ArrayGrowsByDoublingWithinItsLimits) {
  for (int refused : {65535, 0, -1}) EXPECT_EQ(array.Create(refused), 0) << refused;
  EXPECT_EQ(array.data, nullptr);
  ASSERT_EQ(array.Create(65534), 1);
  for (int i = 0; i < 65534; i++) ASSERT_EQ(array.data[i], nullptr) << i;
  array.Clear();
  hostHeapFailNth(1);
  EXPECT_EQ(array.Append(&item), 0);  // the first block itself
  for (int i = 0; i < 8; i++) ASSERT_EQ(array.Append(&item), 1);
  hostHeapFailNth(1);
  EXPECT_EQ(array.Append(nullptr), 0);  // the grow to 16
  EXPECT_EQ(std::make_pair(array.capacity, array.count), std::make_pair(8, 8));
  for (int i = 8; i < 32768; i++) ASSERT_EQ(array.Append(&item), 1) << i;
  for (int i = 0; i < 32768; i++) ASSERT_EQ(array.data[i], &item) << i;
  EXPECT_EQ(std::make_pair(array.capacity, array.current), std::make_pair(32768, 32767));
  EXPECT_EQ(array.Append(&item), 0);
  array.MoveNext();
  array.MoveNext();  // the cursor stops at count
  EXPECT_EQ(array.current, 32768);
  array.Clear();
  array.MoveFirst();
  EXPECT_EQ(array.current, -1);  // empty
  array.fixed = 1;
  ASSERT_EQ(array.Create(2), 1);
  for (int result : {1, 1, 0}) EXPECT_EQ(array.Append(&item), result);
  array.fixed = 0;
  ASSERT_EQ(array.Create(30000), 1);
  EXPECT_EQ(array.Grow(), 1);
  EXPECT_EQ(array.capacity, 60000);
  EXPECT_EQ(array.Grow(), 0);
}
