// NameIndex: lookups end where the plain walk ends, in a list and in IniFile.
#include "config/name_index.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "config/ini_file.h"
#include "ini_picture.h"
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

// The same names in an indexed list and a walked one, duplicates and empty names among them;
// every lookup agrees in result and cursor. A failed table allocation leaves the walk, and the
// next Append builds the table again.
TEST_F(NameIndexTest, FindsWhereTheWalkEndsWithDuplicatesEmptyNamesAndNoMemory) {
  NameIndex::SetWalkLimit(2);
  std::vector<std::string> names(60);
  std::vector<const char*> payloads(60);  // a payload begins with a pointer to its name
  CursorList indexed, walked;
  NameIndex index;
  int tablesRefused = 0;
  for (int i = 0; i < 60; i++) {
    names[i] = i % 7 == 3 ? "" : i % 5 == 0 ? "dup" : "n" + std::to_string(i);
    payloads[i] = names[i].c_str();
    // The second allocation of an Append is a table: the first, a rebuilt one or a larger one.
    bool refuseTable = i == 3 || (i >= 30 && i < 46);
    hostHeapFailNth(refuseTable ? 2 : 0);
    ASSERT_EQ(index.Append(&indexed, &payloads[i]), 1);
    tablesRefused += refuseTable && hostHeapFailPending() == 0;
    hostHeapFailNth(0);
    ASSERT_EQ(walked.Append(&payloads[i]), 1);
    for (const char* name : {"DUP", "n1", "N59", "n58", "", "absent", "n2", "dup", "n30"}) {
      ASSERT_EQ(index.Find(&indexed, name), walked.FindByName(name)) << i << " " << name;
      ASSERT_EQ(cursorOf(indexed), cursorOf(walked)) << i << " " << name;
    }
  }
  EXPECT_GE(tablesRefused, 2);
  hostHeapFailNth(1);
  EXPECT_EQ(index.Append(&indexed, &payloads[0]), 0);  // no node: list and index unchanged
  EXPECT_EQ(index.Find(&indexed, "n58") + indexed.count, 61);
  EXPECT_EQ(cursorOf(indexed), "58/58");
  index.Clear();
  indexed.Clear();
  walked.Clear();
}

// The whole state of the object that a lookup may change or that a write shows.
std::string state(const IniFile& ini) {
  return iniPicture(ini, true, true) + " pool " + std::to_string(ini.pool.top - ini.pool.base);
}

class RandomInput {
 public:
  explicit RandomInput(std::uint32_t seed) : random_(seed) {}
  int Below(int n) { return static_cast<int>(random_() % static_cast<std::uint32_t>(n)); }
  std::string Pick(std::initializer_list<const char*> words) {
    return words.begin()[Below(static_cast<int>(words.size()))];
  }
  std::string Section() {
    return Below(3) ? "S" + std::to_string(Below(40))
                    : Pick({"S1", "s1", "GunData001", "gundata001", "GunData002", "T", " S1", ""});
  }
  std::string Key() {
    return Below(4) ? "k" + std::to_string(Below(40))
                    : Pick({"a", "A", " a ", "", "KEY", "key", "=", ";c"});
  }
  std::string Value() {
    return Pick({"", "12", " -7.5 ", "TRUE", "false", "0.25,1,3", "x y", "1e3", "abc"});
  }
  // Lines of every kind, with CR LF or LF ends and an include of `include` now and then.
  std::string File(const std::string& include) {
    std::string text;
    for (int i = Below(120); i > 0; i--) {
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

// One random operation on `ini`; what it gives, as text. The other typed reads and sets look
// names up as these do.
std::string operate(IniFile& ini, int op, const std::string& section, const std::string& key,
                    const std::string& value, int number) {
  const char *s = section.c_str(), *k = key.c_str(), *v = number % 5 ? value.c_str() : nullptr;
  static const char* const formats[] = {"S%d", "s%d", "GunData%03d", "k%d", "x"};
  char out[24] = "untouched";
  switch (op) {
    case 0: return std::to_string(ini.IniGetInt(s, k, number));
    case 1:
      ini.IniGetString(s, k, v ? v : "d", number % 7 ? out : nullptr, number % 25, number % 3);
      return out;
    case 2: return std::to_string(ini.IniSetInt(s, k, number));
    case 3: return std::to_string(ini.IniSetString(s, k, v));
    case 4: return std::to_string(ini.IniSetBool(s, k, number % 2));
    case 5: return std::to_string(ini.IniCountSections(formats[number % 5]));
    default:  // a user walking the lists leaves their cursors anywhere
      ini.sections.MoveToIndex(number % 45 - 2);
      if (ini.sections.current) {
        static_cast<IniSection*>(ini.sections.current->payload)->keys.MoveToIndex(number % 45);
      }
      return "moved";
  }
}

TEST_F(NameIndexTest, IniFileMatchesThePlainWalkOverRandomSequences) {
  TempDir dir;
  for (std::uint32_t seed = 1; seed <= 10000; seed++) {
    // New names each round: rewriting one file over and over makes the file system flush it.
    const std::string round = std::to_string(seed), main = dir.file("main" + round + ".ini");
    const std::string include = dir.file("inc" + round), written[] = {dir.file("a" + round),
                                                                       dir.file("b" + round)};
    RandomInput in(seed);
    writeWholeFile(main, in.File(systemPath(include)));
    // Now and then the include reads the main file again: a cycle that the full arena ends.
    writeWholeFile(include, in.File(in.Below(50) ? "" : systemPath(main)));
    // Tables from the first node or soon after, against none. The limit counts when a list
    // grows, so each object's operations run under its own.
    const std::int32_t limits[] = {in.Below(4), INT32_MAX};
    const int autoWrite = in.Below(3) == 0, skipReading = in.Below(8) == 0;
    std::optional<IniFile> ini[2];
    for (int i = 0; i < 2; i++) {
      NameIndex::SetWalkLimit(limits[i]);
      ini[i].emplace(systemPath(main).c_str(), autoWrite, skipReading);
    }
    ASSERT_EQ(state(*ini[0]), state(*ini[1])) << "seed " << seed << " after the parse";
    for (int n = in.Below(60), i = 0; i < n; i++) {
      int op = in.Below(7), number = in.Below(1000);
      std::string section = in.Section(), key = in.Key(), value = in.Value(), got[2];
      for (int j = 0; j < 2; j++) {
        NameIndex::SetWalkLimit(limits[j]);
        got[j] = operate(*ini[j], op, section, key, value, number);
        got[j] += "\n" + state(*ini[j]);  // after the operation
      }
      ASSERT_EQ(got[0], got[1]) << "seed " << seed << " op " << i << " kind " << op;
    }
    for (int j = 0; j < 2; j++) ASSERT_EQ(ini[j]->IniWrite(systemPath(written[j]).c_str()), 1);
    ASSERT_EQ(readWholeFile(written[0] + ".INI"), readWholeFile(written[1] + ".INI")) << seed;
    ASSERT_EQ(state(*ini[0]), state(*ini[1])) << "seed " << seed << " after the write";
    for (const std::string& name : {main, include, written[0] + ".INI", written[1] + ".INI"}) {
      std::remove(name.c_str());
    }
  }
}

}  // namespace
