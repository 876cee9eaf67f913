// Tests of NameIndex: lookups that end where the plain walk ends, in a list and in IniFile.
#include "config/name_index.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "base/cursor_list.h"
#include "config/ini_file.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

class NameIndexTest : public KernelTest {
 protected:
  void TearDown() override {
    NameIndex::SetWalkLimit(kDefaultLimit);
    KernelTest::TearDown();
  }
  const std::int32_t kDefaultLimit = NameIndex::WalkLimit();
};

struct Named {
  const char* name;
};

// The position of the list's cursor (-1 for a null cursor), then its index.
void addCursor(const CursorList& list, std::vector<std::int32_t>* out) {
  std::int32_t position = -1, at = 0;
  for (CursorNode* n = list.head; n; n = n->next, at++) {
    if (n == list.current) position = at;
  }
  out->push_back(position);
  out->push_back(list.index);
}

std::string cursorOf(const CursorList& list) {
  std::vector<std::int32_t> cursor;
  addCursor(list, &cursor);
  return std::to_string(cursor[0]) + "/" + std::to_string(cursor[1]);
}

// The same names in an indexed list and a walked one; every lookup agrees in result and cursor.
// A failed table allocation leaves the walk, and the next Append builds the table again.
TEST_F(NameIndexTest, FindsWhereTheWalkEndsWithDuplicatesEmptyNamesAndNoMemory) {
  NameIndex::SetWalkLimit(2);
  std::vector<Named> names;
  for (int i = 0; i < 60; i++) names.push_back({i % 7 == 3 ? "" : i % 5 == 0 ? "dup" : nullptr});
  std::vector<std::string> own(names.size());
  for (std::size_t i = 0; i < names.size(); i++) {
    own[i] = "n" + std::to_string(i);
    if (!names[i].name) names[i].name = own[i].c_str();
  }
  const char* asked[] = {"DUP", "n1", "N59", "n58", "", "absent", nullptr, "n2", "dup", "n30"};
  CursorList indexed, walked;
  NameIndex index;
  int tablesRefused = 0;
  for (std::size_t i = 0; i < names.size(); i++) {
    // The second allocation of an Append is a table: the first, a rebuilt one or a larger one.
    bool refuseTable = i == 3 || (i >= 30 && i < 46);
    if (refuseTable) hostHeapFailNth(2);
    ASSERT_EQ(index.Append(&indexed, &names[i]), 1);
    tablesRefused += refuseTable && hostHeapFailPending() == 0;
    hostHeapFailNth(0);
    ASSERT_EQ(walked.Append(&names[i]), 1);
    for (const char* name : asked) {
      ASSERT_EQ(index.Find(&indexed, name), walked.FindByName(name)) << i << " " << name;
      ASSERT_EQ(cursorOf(indexed), cursorOf(walked)) << i << " " << (name ? name : "(null)");
    }
  }
  EXPECT_GE(tablesRefused, 2);
  hostHeapFailNth(1);
  EXPECT_EQ(index.Append(&indexed, &names[0]), 0);  // no node: list and index unchanged
  EXPECT_EQ(indexed.count, 60);
  EXPECT_EQ(index.Find(&indexed, "n58"), 1);
  EXPECT_EQ(cursorOf(indexed), "58/58");
  index.Clear();
  indexed.Clear();
  walked.Clear();
}

// ---- Differential run on IniFile: tables everywhere against the plain walk ----

const char* const kSectionNames[] = {"S1", "s1", "S2", "GunData001", "gundata001", "GunData002",
                                     "GunData003", "T", " S1", ""};
const char* const kFormats[] = {"S%d", "s%d", "GunData%03d", "k%d", "x"};

// The cursors of every list of the object.
std::vector<std::int32_t> cursors(const IniFile& ini) {
  std::vector<std::int32_t> out;
  addCursor(ini.sections, &out);
  for (CursorNode* s = ini.sections.head; s; s = s->next) {
    addCursor(static_cast<IniSection*>(s->payload)->keys, &out);
  }
  return out;
}

// The whole state of the object that a lookup may change or that a write shows: every section
// and key with its views, and each list's cursor.
std::string state(const IniFile& ini) {
  std::ostringstream out;
  out << "sections " << cursorOf(ini.sections) << " pool " << (ini.pool.top - ini.pool.base);
  for (CursorNode* s = ini.sections.head; s; s = s->next) {
    auto* section = static_cast<IniSection*>(s->payload);
    out << "\n[" << section->name << "] " << cursorOf(section->keys);
    for (CursorNode* k = section->keys.head; k; k = k->next) {
      auto* key = static_cast<IniKey*>(k->payload);
      const char* v = key->stringValue;
      std::uint32_t bits;
      std::memcpy(&bits, &key->floatValue, sizeof bits);
      out << " " << key->name << "=" << (v ? v : "(null)") << ":" << key->type << ":"
          << key->intValue << ":" << bits;
    }
  }
  return out.str();
}

class RandomInput {
 public:
  explicit RandomInput(std::uint32_t seed) : random_(seed) {}
  int Below(int n) { return static_cast<int>(random_() % static_cast<std::uint32_t>(n)); }
  std::string Section() {
    return Below(3) ? "S" + std::to_string(Below(40)) : kSectionNames[Below(10)];
  }
  std::string Key() {
    static const char* const special[] = {"a", "A", " a ", "", "KEY", "key", "=", ";c"};
    return Below(4) ? "k" + std::to_string(Below(40)) : special[Below(8)];
  }
  std::string Value() {
    static const char* const values[] = {"", "12", " -7.5 ", "TRUE", "false", "0.25,1,3",
                                         "x y", "1e3", "abc"};
    return values[Below(9)];
  }
  // Lines of every kind, with CR LF or LF ends and an include of `include` now and then.
  std::string File(const std::string& include) {
    std::string text;
    int lines = Below(120);
    for (int i = 0; i < lines; i++) {
      int kind = Below(20);
      if (kind < 3) text += "[" + Section() + (Below(8) ? "]" : "] x");
      else if (kind < 15) text += Key() + (Below(3) ? "=" : " = ") + Value();
      else if (kind == 15) text += ";" + Key() + "=1";
      else if (kind == 16) text += "#note";
      else if (kind == 17 && !include.empty()) text += "#include " + include;
      text += Below(4) ? "\n" : "\r\n";
    }
    return text;
  }

 private:
  std::mt19937 random_;
};

// One random operation on `ini`; what it gives, as text.
std::string operate(IniFile& ini, int op, const std::string& section,
                    const std::string& key, const std::string& value, int number) {
  const char* s = section.c_str();
  const char* k = key.c_str();
  const char* v = number % 5 == 0 ? nullptr : value.c_str();
  switch (op) {
    case 0: return std::to_string(ini.IniGetInt(s, k, number));
    case 1: return std::to_string(ini.IniGetFloat(s, k, static_cast<float>(number) / 4));
    case 2: {
      char out[24] = "untouched";
      int size = number % 25;
      ini.IniGetString(s, k, v ? v : "d", number % 7 ? out : nullptr, size, number % 3);
      return out;
    }
    case 3: return std::to_string(ini.IniGetBool(s, k, number % 3 - 1));
    case 4: {
      float color[3] = {-1, -1, -1};
      int read = IniGetColor(color, &ini, s, k);
      return std::to_string(read) + std::to_string(color[0] + color[1] + color[2]);
    }
    case 5: return std::to_string(ini.IniSetInt(s, k, number));
    case 6: return std::to_string(ini.IniSetFloat(s, k, static_cast<float>(number) / 8));
    case 7: return std::to_string(ini.IniSetString(s, k, v));
    case 8: return std::to_string(ini.IniSetBool(s, k, number % 2));
    case 9: return std::to_string(ini.IniCountSections(kFormats[number % 5]));
    default: {  // a user walking the lists leaves their cursors anywhere
      ini.sections.MoveToIndex(number % 45 - 2);
      if (ini.sections.current) {
        static_cast<IniSection*>(ini.sections.current->payload)->keys.MoveToIndex(number % 45);
      }
      return "moved";
    }
  }
}

TEST_F(NameIndexTest, IniFileMatchesThePlainWalkOverRandomSequences) {
  TempDir dir;
  constexpr int kSequences = 10000;
  constexpr std::int32_t kWalk = INT32_MAX;
  for (std::uint32_t seed = 1; seed <= kSequences; seed++) {
    // New names each round: rewriting one file over and over makes the file system flush it.
    const std::string round = std::to_string(seed);
    const std::string main = dir.file("main" + round + ".ini"), include = dir.file("inc" + round);
    const std::string writtenA = dir.file("a" + round), writtenB = dir.file("b" + round);
    RandomInput in(seed);
    writeWholeFile(main, in.File(systemPath(include)));
    // Now and then the include reads the main file again: a cycle that the full arena ends.
    writeWholeFile(include, in.File(in.Below(50) ? "" : systemPath(main)));
    std::int32_t limit = in.Below(4);  // 0 to 3: tables from the first node or soon after
    int autoWrite = in.Below(3) == 0;
    int skipReading = in.Below(8) == 0;
    // The limit counts when a list grows, so each object's operations run under its own.
    std::optional<IniFile> a, b;
    NameIndex::SetWalkLimit(limit);
    a.emplace(systemPath(main).c_str(), autoWrite, skipReading);
    NameIndex::SetWalkLimit(kWalk);
    b.emplace(systemPath(main).c_str(), autoWrite, skipReading);
    ASSERT_EQ(state(*a), state(*b)) << "seed " << seed << " after the parse";
    int ops = in.Below(60);
    for (int i = 0; i < ops; i++) {
      int op = in.Below(11);
      std::string section = in.Section(), key = in.Key(), value = in.Value();
      int number = in.Below(1000);
      NameIndex::SetWalkLimit(limit);
      std::string gotA = operate(*a, op, section, key, value, number);
      NameIndex::SetWalkLimit(kWalk);
      std::string gotB = operate(*b, op, section, key, value, number);
      ASSERT_EQ(gotA, gotB) << "seed " << seed << " op " << i << " kind " << op;
      ASSERT_EQ(cursors(*a), cursors(*b)) << "seed " << seed << " op " << i << " kind " << op;
    }
    ASSERT_EQ(state(*a), state(*b)) << "seed " << seed << " after " << ops << " operations";
    ASSERT_EQ(a->IniWrite(systemPath(writtenA).c_str()), 1);
    ASSERT_EQ(b->IniWrite(systemPath(writtenB).c_str()), 1);
    ASSERT_EQ(readWholeFile(writtenA + ".INI"), readWholeFile(writtenB + ".INI")) << seed;
    ASSERT_EQ(state(*a), state(*b)) << "seed " << seed << " after the write";
    for (const std::string& name : {main, include, writtenA + ".INI", writtenB + ".INI"}) {
      std::remove(name.c_str());
    }
  }
}

}  // namespace
