// Tests of CursorList: cursor moves, inserts, removals, the lookup pattern and no-memory paths.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/cursor_list.h"
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

}  // namespace

class CursorListTest : public KernelTest {
 protected:
  void TearDown() override {
    list.Clear();
    KernelTest::TearDown();
  }
  CursorList list;
};

TEST_F(CursorListTest, MovesStopPastTheTailAndRemoveCurrentMovesOn) {
  list.MoveFirst();
  EXPECT_EQ(list.current, nullptr);
  EXPECT_EQ(list.index, -1);
  for (Named* payload : {&alpha, &beta, &gamma}) ASSERT_EQ(list.Append(payload), 1);
  EXPECT_EQ(at(list), &gamma);
  EXPECT_EQ(list.index, 2);
  using Move = std::tuple<int, int, const Named*, int>;  // MoveToIndex, MoveNexts, where to
  for (auto [position, nexts, expected, index] :
       {Move{-5, 0, &alpha, 0}, {0, 0, &alpha, 0}, {1, 0, &beta, 1}, {2, 1, nullptr, 3},
        {2, 2, nullptr, 3}, {99, 0, nullptr, 3}}) {
    list.MoveToIndex(position);
    for (int i = 0; i < nexts; i++) list.MoveNext();
    EXPECT_EQ(at(list), expected) << position << "+" << nexts;
    EXPECT_EQ(list.index, index) << position << "+" << nexts;
  }
  list.MoveToIndex(1);
  // A middle node gives way to the next one, the tail to the new tail, the last node to none.
  using Removal = std::pair<const Named*, int>;
  for (auto [current, index] : {Removal{&gamma, 1}, {&alpha, 0}, {nullptr, -1}}) {
    list.RemoveCurrent();
    EXPECT_EQ(at(list), current) << index;
    EXPECT_EQ(list.index, index);
  }
  EXPECT_EQ(names(list), Names{});
}

TEST_F(CursorListTest, InsertBeforeCurrentKeepsTheIndexAndNoMemoryChangesNothing) {
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
  hostHeapFailNth(1);
  EXPECT_EQ(list.Append(&beta), 0);
  hostHeapFailNth(1);
  EXPECT_EQ(list.InsertBeforeCurrent(&beta), 0);
  EXPECT_EQ(names(list), (Names{"Gamma", "Alpha", "Beta", "", "Gamma"}));
  EXPECT_EQ(at(list), &alpha);
  EXPECT_EQ(list.index, 1);
}

TEST_F(CursorListTest, LookupTriesTheCursorFirstAndLeavesItOnTheFind) {
  for (Named* payload : {&alpha, &beta, &gamma}) ASSERT_EQ(list.Append(payload), 1);
  EXPECT_EQ(list.FindByName("ALPHA"), 1);
  EXPECT_EQ(list.index, 0);
  CursorNode* savedHead = list.head;
  list.head = nullptr;  // only the shortcut through the cursor can find it now
  EXPECT_EQ(list.FindByName("alpha"), 1);
  list.head = savedHead;
  EXPECT_EQ(list.FindByName("gamma"), 1);
  EXPECT_EQ(list.index, 2);
  EXPECT_EQ(list.FindByName("Delta"), 0);
  EXPECT_EQ(list.current, nullptr);
  EXPECT_EQ(list.index, 3);
  ASSERT_EQ(list.Append(&unnamed), 1);
  list.MoveToIndex(1);
  EXPECT_EQ(list.FindByName(""), 0);  // never found, and the cursor stays
  EXPECT_EQ(list.FindByName(nullptr), 0);
  EXPECT_EQ(list.index, 1);
}

TEST(CursorListAfterHeap, DestructorDropsNodesOnceTheHeapIsGone) {
  auto* list = new CursorList;  // gMEM is null here
  CursorNode node{reinterpret_cast<CursorNode*>(0x10), nullptr, nullptr};  // crashes if walked
  list->head = list->tail = list->current = &node;
  list->count = 1;
  delete list;
}
