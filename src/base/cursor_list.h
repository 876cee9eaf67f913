// CursorList: a doubly linked list of untyped payloads that remembers a position.
#pragma once
#include <cstdint>

struct CursorNode {
  CursorNode* next;
  CursorNode* previous;
  void* payload;
};

// The list owns its nodes, never its payloads, and takes no lock. A lookup leaves the cursor on
// what it found (or null, with index == count, after a failed walk), so nothing may hold on to
// `current` across a lookup.
class CursorList {
 public:
  CursorList() = default;
  // Releases the nodes that are left; while gMEM is null (the heap is gone with them) it only
  // drops its pointers.
  ~CursorList();
  CursorList(const CursorList&) = delete;
  CursorList& operator=(const CursorList&) = delete;

  // current = head; index 0, or -1 for an empty list.
  void MoveFirst();
  // Steps to the next node; past the tail current is null and index == count. No-op when null.
  void MoveNext();
  // MoveFirst, then `position` steps; 0 or below means the head, beyond the tail ends past it.
  void MoveToIndex(std::int32_t position);
  // Appends at the tail and makes the new node current; index grows by 1. 1, or 0 when out of
  // memory with the list unchanged.
  int Append(void* payload);
  // Inserts ahead of current (ahead of the head when current is null) and makes the new node
  // current; index stays. 1, or 0 when out of memory with the list unchanged.
  int InsertBeforeCurrent(void* payload);
  // Unlinks current; the cursor moves to the next node, or to the new tail. current must not
  // be null. The payload isn't touched: read it from current first.
  void RemoveCurrent();
  // Removes every node; payloads aren't touched.
  void Clear();
  // Empties the list without touching its nodes, for nodes that went with a destroyed heap.
  void Forget();
  // The lookup pattern over payloads that begin with a pointer to their name, case-insensitive.
  // 1 found (cursor on it), 0 not found. An empty or null name is never found.
  int FindByName(const char* name);

  // The lookup pattern with any key: the current node is tried first, then the list from the
  // head. Callers searching by text test the text for emptiness themselves first.
  template <typename Matches>
  int Find(Matches matches) {
    if (count < 1) return 0;
    if (current && current->payload && matches(current->payload)) return 1;
    index = 0;
    for (current = head; current; current = current->next, index++) {
      if (current->payload && matches(current->payload)) return 1;
    }
    return 0;
  }

  CursorNode* current = nullptr;
  CursorNode* head = nullptr;
  CursorNode* tail = nullptr;
  std::int32_t count = 0;
  std::int32_t index = -1;

 private:
  CursorNode* MakeNode(void* payload);
};
