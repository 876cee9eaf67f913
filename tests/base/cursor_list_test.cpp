// Tests of CursorList: cursor moves, inserts, removals, the lookup pattern and no-memory paths.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/cursor_list.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

struct Named {
  const char* name;
};

Named alpha{"Alpha"}, beta{"Beta"}, gamma{"Gamma"}, unnamed{""};

std::vector<std::string> names(const CursorList& list) {
  std::vector<std::string> out;
  for (const CursorNode* node = list.head; node; node = node->next) {
    out.push_back(static_cast<Named*>(node->payload)->name);
    if (node->next) {
      EXPECT_EQ(node->next->previous, node);
    }
  }
  EXPECT_EQ(static_cast<int>(out.size()), list.count);
  EXPECT_EQ(list.head == nullptr, list.count == 0);
  EXPECT_EQ(list.tail == nullptr, list.count == 0);
  EXPECT_TRUE(!list.head || list.head->previous == nullptr);
  EXPECT_TRUE(!list.tail || list.tail->next == nullptr);
  return out;
}

using Names = std::vector<std::string>;

}  // namespace

class CursorListTest : public KernelTest {
 protected:
  void Fill() {
    ASSERT_EQ(list.Append(&alpha), 1);
    ASSERT_EQ(list.Append(&beta), 1);
    ASSERT_EQ(list.Append(&gamma), 1);
  }
  void TearDown() override {
    list.Clear();
    KernelTest::TearDown();
  }
  CursorList list;
};

TEST_F(CursorListTest, WalksAndStopsPastTheTail) {
  list.MoveFirst();
  EXPECT_EQ(list.current, nullptr);
  EXPECT_EQ(list.index, -1);
  Fill();
  EXPECT_EQ(list.index, 2);
  EXPECT_EQ(list.current, list.tail);
  list.MoveToIndex(2);
  list.MoveNext();
  EXPECT_EQ(list.current, nullptr);
  EXPECT_EQ(list.index, 3);
  list.MoveNext();
  EXPECT_EQ(list.index, 3);
  struct Case {
    int position;
    const Named* expected;
    int index;
  } cases[] = {{-5, &alpha, 0}, {0, &alpha, 0}, {1, &beta, 1}, {2, &gamma, 2},
               {3, nullptr, 3}, {99, nullptr, 3}};
  for (const Case& c : cases) {
    list.MoveToIndex(c.position);
    EXPECT_EQ(list.current ? list.current->payload : nullptr, c.expected) << c.position;
    EXPECT_EQ(list.index, c.index) << c.position;
  }
}

TEST_F(CursorListTest, RemoveCurrentMovesTheCursorAsDocumented) {
  Fill();
  list.MoveToIndex(1);
  list.RemoveCurrent();  // a middle node: the next one takes its place
  EXPECT_EQ(list.current->payload, &gamma);
  EXPECT_EQ(list.index, 1);
  list.RemoveCurrent();  // the tail: back to the new tail
  EXPECT_EQ(list.current->payload, &alpha);
  EXPECT_EQ(list.index, 0);
  list.RemoveCurrent();  // the only node
  EXPECT_EQ(names(list), Names{});
  EXPECT_EQ(list.current, nullptr);
  EXPECT_EQ(list.index, -1);
}

TEST_F(CursorListTest, InsertBeforeCurrentKeepsTheIndex) {
  ASSERT_EQ(list.InsertBeforeCurrent(&beta), 1);  // into an empty list
  EXPECT_EQ(list.index, 0);
  ASSERT_EQ(list.InsertBeforeCurrent(&alpha), 1);  // ahead of the head
  EXPECT_EQ(list.index, 0);
  ASSERT_EQ(list.Append(&gamma), 1);
  list.MoveToIndex(2);
  ASSERT_EQ(list.InsertBeforeCurrent(&unnamed), 1);  // ahead of the tail
  EXPECT_EQ(list.index, 2);
  EXPECT_EQ(names(list), (Names{"Alpha", "Beta", "", "Gamma"}));
  list.MoveToIndex(9);  // past the tail: inserts ahead of the head, index untouched
  ASSERT_EQ(list.InsertBeforeCurrent(&gamma), 1);
  EXPECT_EQ(list.index, 4);
  EXPECT_EQ(names(list), (Names{"Gamma", "Alpha", "Beta", "", "Gamma"}));
}

TEST_F(CursorListTest, LookupTriesTheCursorFirstAndLeavesItOnTheFind) {
  Fill();
  EXPECT_EQ(list.FindByName("ALPHA"), 1);
  EXPECT_EQ(list.index, 0);
  // A repeated lookup must not walk: with the head made unreachable, only the shortcut finds it.
  CursorNode* savedHead = list.head;
  list.head = nullptr;
  EXPECT_EQ(list.FindByName("alpha"), 1);
  list.head = savedHead;
  EXPECT_EQ(list.FindByName("gamma"), 1);
  EXPECT_EQ(list.index, 2);
  EXPECT_EQ(list.FindByName("Delta"), 0);
  EXPECT_EQ(list.current, nullptr);
  EXPECT_EQ(list.index, 3);
  list.MoveToIndex(1);
  EXPECT_EQ(list.FindByName(""), 0);  // an empty name fails and leaves the cursor alone
  EXPECT_EQ(list.FindByName(nullptr), 0);
  EXPECT_EQ(list.index, 1);
  ASSERT_EQ(list.Append(&unnamed), 1);
  EXPECT_EQ(list.FindByName(""), 0);
}

TEST_F(CursorListTest, NoMemoryLeavesTheListAsItWas) {
  Fill();
  list.MoveToIndex(1);
  hostHeapFailNth(1);
  EXPECT_EQ(list.Append(&unnamed), 0);
  hostHeapFailNth(1);
  EXPECT_EQ(list.InsertBeforeCurrent(&unnamed), 0);
  EXPECT_EQ(names(list), (Names{"Alpha", "Beta", "Gamma"}));
  EXPECT_EQ(list.index, 1);
  EXPECT_EQ(list.current->payload, &beta);
}

TEST(CursorListAfterHeap, DestructorDropsNodesOnceTheHeapIsGone) {
  auto* list = new CursorList;
  // With no heap (gMEM null) the destructor must not touch its dangling nodes.
  CursorNode fake{nullptr, nullptr, nullptr};
  list->head = list->tail = list->current = &fake;
  list->count = 1;
  fake.next = reinterpret_cast<CursorNode*>(0x10);  // would crash if walked
  delete list;
}
