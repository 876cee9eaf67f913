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

// Mixes one 8-byte piece of a name into the hash. Bit 5 of every byte is set first: that folds
// A-Z onto a-z, so names that strEquals takes as equal hash alike (a few other bytes that it
// pairs up only share a hash).
std::uint64_t mixIn(std::uint64_t hash, std::uint64_t piece) {
  hash = (hash ^ (piece | 0x2020202020202020u)) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 29);
}

// The name is taken 8 bytes at a time; the last piece of a long name overlaps the one before.
std::uint32_t hashName(const char* name) {
  std::size_t length = std::strlen(name);
  std::uint64_t hash = length;
  std::uint64_t piece = 0;
  std::size_t at = 0;
  for (; at + 8 <= length; at += 8) {
    std::memcpy(&piece, name + at, 8);
    hash = mixIn(hash, piece);
  }
  if (at < length) {
    piece = 0;
    if (length >= 8) {
      std::memcpy(&piece, name + length - 8, 8);
    } else {
      for (std::size_t i = 0; i < length; i++) {
        piece |= static_cast<std::uint64_t>(static_cast<unsigned char>(name[i])) << (8 * i);
      }
    }
    hash = mixIn(hash, piece);
  }
  // A multiply carries a change only upward: spread the last bytes into the low bits too,
  // which pick the slot.
  hash ^= hash >> 33;
  hash *= 0xFF51AFD7ED558CCDu;
  hash ^= hash >> 33;
  return static_cast<std::uint32_t>(hash);
}

// strEquals for a name that isn't empty against a stored name: texts equal byte for byte are
// settled by the C library's vector routines, and only a mismatch is looked at letter by letter.
// Bytes equal without regard to case are equal with bit 5 set, so a first byte that differs
// there already decides.
bool sameName(const char* stored, const char* name) {
  if (!stored || ((stored[0] | 0x20) != (name[0] | 0x20))) return false;
  std::size_t length = std::strlen(name);
  if (std::strlen(stored) != length) return false;
  return std::memcmp(stored, name, length) == 0 || strEquals(stored, name, 0) == 1;
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
  unique_ = true;
  placed_ = nullptr;
  missed_ = nullptr;
}

int NameIndex::Find(CursorList* list, const char* name) {
  missed_ = nullptr;
  if (!slots_) return list->FindByName(name);
  if (list->count < 1 || strIsEmpty(name)) return 0;
  CursorNode* current = list->current;
  if (current && sameName(nameOf(current), name)) return 1;
  // Names read in list order: with every name filed once, the node behind the one this index
  // put the cursor on is the first of its name, and its position is one more.
  if (unique_ && current && current == placed_ && current->next &&
      sameName(nameOf(current->next), name)) {
    Place(list, current->next, placedPosition_ + 1);
    return 1;
  }
  std::uint32_t hash = hashName(name);
  Slot* slot = Probe(name, hash);
  if (!slot->node) {
    list->current = nullptr;
    list->index = list->count;
    missed_ = name;
    missedHash_ = hash;
    return 0;
  }
  Place(list, slot->node, slot->position);
  return 1;
}

void NameIndex::Place(CursorList* list, CursorNode* node, std::int32_t position) {
  list->current = placed_ = node;
  list->index = placedPosition_ = position;
}

int NameIndex::Append(CursorList* list, void* payload) {
  if (!list->Append(payload)) return 0;
  if (slots_) {
    if (!File(list->tail, list->count - 1)) Clear();
  } else if (list->count > gWalkLimit) {
    Build(list);
  }
  missed_ = nullptr;
  if (slots_) {
    placed_ = list->tail;
    placedPosition_ = list->count - 1;
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
  // Appending right after a miss of the same name: the name's hash is known.
  std::uint32_t hash = name == missed_ ? missedHash_ : hashName(name);
  Slot* slot = Probe(name, hash);
  if (slot->node) {  // the earlier node of this name is the one a walk finds
    unique_ = false;
    return true;
  }
  if (!fits(filed_ + 1, capacity_)) {
    if (!Resize(capacity_ * 2)) return false;
    slot = Probe(name, hash);
  }
  *slot = Slot{node, hash, position};
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
    if (!slot->node || (slot->hash == hash && sameName(nameOf(slot->node), name))) return slot;
  }
}
