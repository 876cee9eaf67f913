// CursorList: a doubly linked list of untyped payloads that remembers a position.
#include "base/cursor_list.h"

#include "base/memory_manager.h"
#include "base/string_util.h"

CursorList::~CursorList() {
  if (gMEM) {
    Clear();
  } else {
    Forget();
  }
}

void CursorList::Forget() {
  current = head = tail = nullptr;
  count = 0;
  index = -1;
}

void CursorList::MoveFirst() {
  current = head;
  index = head ? 0 : -1;
}

void CursorList::MoveNext() {
  if (!current) return;
  current = current->next;
  index++;
}

void CursorList::MoveToIndex(std::int32_t position) {
  MoveFirst();
  for (std::int32_t i = 0; i < position && current; i++) MoveNext();
}

CursorNode* CursorList::MakeNode(void* payload) {
  auto* node = static_cast<CursorNode*>(memAlloc(sizeof(CursorNode)));
  if (!node) return nullptr;
  node->next = nullptr;
  node->previous = nullptr;
  node->payload = payload;
  count++;
  return node;
}

int CursorList::Append(void* payload) {
  CursorNode* node = MakeNode(payload);
  if (!node) return 0;
  if (!head) {
    head = node;
  } else {
    tail->next = node;
    node->previous = tail;
  }
  tail = current = node;
  index++;
  return 1;
}

int CursorList::InsertBeforeCurrent(void* payload) {
  CursorNode* node = MakeNode(payload);
  if (!node) return 0;
  if (!head) {
    head = tail = current = node;
    index = 0;
    return 1;
  }
  if (!current) current = head;
  if (current == head) {
    head = node;
  } else {
    current->previous->next = node;
    node->previous = current->previous;
  }
  node->next = current;
  current->previous = node;
  current = node;
  return 1;
}

void CursorList::RemoveCurrent() {
  CursorNode* node = current;
  if (node == head) head = node->next;
  else node->previous->next = node->next;
  if (node == tail) {
    tail = current = node->previous;
    index--;
  } else {
    node->next->previous = node->previous;
    current = node->next;
  }
  memFree(node);
  count--;
}

void CursorList::Clear() {
  current = head;
  while (current) RemoveCurrent();
  index = -1;
}

int CursorList::FindByName(const char* name) {
  if (strIsEmpty(name)) return 0;
  return Find([name](void* payload) {
    return strEquals(*static_cast<const char* const*>(payload), name, 0) == 1;
  });
}
