// NameIndex: a hash of the names in one CursorList, so that a lookup by name takes constant time.
#pragma once
#include <cstdint>

#include "base/cursor_list.h"

// Stands beside one CursorList whose payloads begin with a pointer to their name, as the
// section list and the key lists of an IniFile do. The list must change only through Append
// here, or be emptied whole after Clear here, and a filed payload must keep its name (the name
// given to a Find that missed, too, until the Append that follows it).
//
// Find gives what the list's FindByName gives and leaves `current` and `index` exactly where
// that walk leaves them: the current node is tried first; otherwise a hit puts the cursor on the
// first node of that name from the head, with that node's position as `index`, and a miss leaves
// `current` null and `index` equal to `count`. Names compare as FindByName compares them (ASCII
// letters without regard to case); an empty name is never filed and never found.
//
// A short list is simply walked. Once it holds more than WalkLimit() nodes it gets a table on
// the kernel heap; when memory for the table runs out the list is walked, and a later Append
// tries again. No lock, like the list.
class NameIndex {
 public:
  NameIndex() = default;
  // Frees the table; while gMEM is null (the heap is gone with it) only drops the pointer.
  ~NameIndex();
  NameIndex(const NameIndex&) = delete;
  NameIndex& operator=(const NameIndex&) = delete;

  // FindByName on `list`, in constant time on average. 1 found, 0 not found.
  int Find(CursorList* list, const char* name);
  // Appends `payload` to `list` (CursorList::Append, with its cursor and index rules) and files
  // the new node under its name unless an earlier node has it. 1, or 0 when the list's node
  // can't be had, with list and index unchanged.
  int Append(CursorList* list, void* payload);
  // Forgets every name and frees the table.
  void Clear();

  // Lists up to this many nodes are walked without a table (4 by default). 0 gives every list a
  // table from its first node on; INT32_MAX never makes one, which is the plain walk.
  static std::int32_t WalkLimit();
  static void SetWalkLimit(std::int32_t count);

 private:
  struct Slot {
    CursorNode* node;  // null for a free slot
    std::uint32_t hash;
    std::int32_t position;
  };

  // Makes a table for the whole list; leaves none when memory runs out.
  void Build(CursorList* list);
  // Files `node` at `position` unless its name is empty or filed already. False when the table
  // had to grow and couldn't.
  bool File(CursorNode* node, std::int32_t position);
  // Moves the table to one of `capacity` slots; false, with the old one kept, without memory.
  bool Resize(std::uint32_t capacity);
  // The slot holding `name` (with hash `hash`), or the free slot where it would go.
  Slot* Probe(const char* name, std::uint32_t hash) const;
  // Puts the list's cursor on `node` at `position` and remembers both.
  void Place(CursorList* list, CursorNode* node, std::int32_t position);

  Slot* slots_ = nullptr;
  std::uint32_t capacity_ = 0;  // a power of two while there is a table
  std::uint32_t filed_ = 0;
  bool unique_ = true;  // no two filed nodes had the same name
  CursorNode* placed_ = nullptr;  // where this index last put the cursor, and its position
  std::int32_t placedPosition_ = -1;
  const char* missed_ = nullptr;  // the name of the last miss, and its hash
  std::uint32_t missedHash_ = 0;
};
