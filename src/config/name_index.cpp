// NameIndex: a hash of the names in one CursorList, so that a lookup by name takes constant time.
#include "config/name_index.h"

#include <cstring>

#include "base/memory_manager.h"
#include "base/string_util.h"

namespace {

constexpr std::uint32_t kFirstCapacity = 32;
// Keeps the size of a table within the 32 bits of memAlloc.
constexpr std::uint32_t kMaxCapacity = 1u << 26;
std::int32_t gWalkLimit = 4;

const char* nameOf(const CursorNode* node) {
  return node->payload ? *static_cast<const char* const*>(node->payload) : nullptr;
}

// FNV-1a over the name with bit 5 of every byte set. That folds A-Z onto a-z, so names that
// strEquals takes as equal hash alike; the few other bytes it pairs up only share a hash.
std::uint32_t hashName(const char* name) {
  std::uint32_t hash = 2166136261u;
  for (auto* p = reinterpret_cast<const unsigned char*>(name); *p; p++) {
    hash = (hash ^ (*p | 0x20u)) * 16777619u;
  }
  return hash;
}

// At most three quarters of the slots are used, so every probe ends at a free slot.
bool fits(std::uint32_t filed, std::uint32_t capacity) { return filed * 4 <= capacity * 3; }

}  // namespace

NameIndex::~NameIndex() {
  if (gMEM) Clear();
  slots_ = nullptr;
}

std::int32_t NameIndex::WalkLimit() { return gWalkLimit; }

void NameIndex::SetWalkLimit(std::int32_t count) { gWalkLimit = count < 0 ? 0 : count; }

void NameIndex::Clear() {
  memFree(slots_);
  slots_ = nullptr;
  capacity_ = 0;
  filed_ = 0;
}

int NameIndex::Find(CursorList* list, const char* name) {
  if (!slots_) return list->FindByName(name);
  if (list->count < 1 || strIsEmpty(name)) return 0;
  CursorNode* current = list->current;
  if (current && strEquals(nameOf(current), name, 0)) return 1;
  Slot* slot = Probe(name, hashName(name));
  if (!slot->node) {
    list->current = nullptr;
    list->index = list->count;
    return 0;
  }
  list->current = slot->node;
  list->index = slot->position;
  return 1;
}

int NameIndex::Append(CursorList* list, void* payload) {
  if (!list->Append(payload)) return 0;
  if (slots_) {
    if (!File(list->tail, list->count - 1)) Clear();
  } else if (list->count > gWalkLimit) {
    Build(list);
  }
  return 1;
}

void NameIndex::Build(CursorList* list) {
  std::uint32_t capacity = kFirstCapacity;
  while (!fits(static_cast<std::uint32_t>(list->count), capacity) && capacity <= kMaxCapacity) {
    capacity *= 2;
  }
  if (!Resize(capacity)) return;
  std::int32_t position = 0;
  for (CursorNode* node = list->head; node; node = node->next) File(node, position++);
}

bool NameIndex::File(CursorNode* node, std::int32_t position) {
  const char* name = nameOf(node);
  if (strIsEmpty(name)) return true;
  std::uint32_t hash = hashName(name);
  Slot* slot = Probe(name, hash);
  if (slot->node) return true;  // the earlier node of this name is the one a walk finds
  if (!fits(filed_ + 1, capacity_)) {
    if (!Resize(capacity_ * 2)) return false;
    slot = Probe(name, hash);
  }
  *slot = Slot{node, position, hash};
  filed_++;
  return true;
}

bool NameIndex::Resize(std::uint32_t capacity) {
  if (capacity > kMaxCapacity) return false;
  auto* slots = static_cast<Slot*>(memAlloc(capacity * static_cast<std::uint32_t>(sizeof(Slot))));
  if (!slots) return false;
  std::memset(slots, 0, capacity * sizeof(Slot));
  Slot* old = slots_;
  std::uint32_t oldCapacity = capacity_;
  slots_ = slots;
  capacity_ = capacity;
  for (std::uint32_t i = 0; i < oldCapacity; i++) {
    if (!old[i].node) continue;
    std::uint32_t at = old[i].hash & (capacity - 1);
    while (slots[at].node) at = (at + 1) & (capacity - 1);
    slots[at] = old[i];
  }
  memFree(old);
  return true;
}

NameIndex::Slot* NameIndex::Probe(const char* name, std::uint32_t hash) const {
  std::uint32_t mask = capacity_ - 1;
  for (std::uint32_t at = hash & mask;; at = (at + 1) & mask) {
    Slot* slot = &slots_[at];
    if (!slot->node || (slot->hash == hash && strEquals(nameOf(slot->node), name, 0))) return slot;
  }
}
