// NameIndex in IniFile: lookups, cursors and written bytes as the plain walk gives them.
#include "config/name_index.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>

#include "config/ini_file.h"
#include "ini_picture.h"
#include "kernel_fixture.h"

namespace {

// The whole state of the object that a lookup may change or that a write shows.
std::string state(const IniFile& ini) {
  return iniPicture(ini, true, true) + " pool " + std::to_string(ini.pool.top - ini.pool.base);
}

struct RandomInput {
  std::mt19937 random;
  int Below(int n) { return static_cast<int>(random() % static_cast<std::uint32_t>(n)); }
  std::string Pick(std::initializer_list<const char*> words) {
    return words.begin()[Below(static_cast<int>(words.size()))];
  }
  std::string Section() {
    return Below(3) ? "S" + std::to_string(Below(40)) : Pick({"s1", "GunData001", "gundata001", "GunData002", " S1", ""});
  }
  std::string Key() { return Below(4) ? "k" + std::to_string(Below(40)) : Pick({"a", "A", " a ", "", "=", ";c"}); }
  std::string Value() { return Pick({"", "12", " -7.5 ", "TRUE", "false", "0.25,1,3", "x y", "1e3"}); }
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
};

// One random operation and what it gives; the other typed reads and sets look names up as these do.
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

class NameIndexTest : public KernelTest {};

}  // namespace

TEST_F(NameIndexTest, IniFileMatchesThePlainWalkOverRandomSequences) {
  const std::int32_t defaultLimit = NameIndex::WalkLimit();
  for (std::uint32_t seed = 1; seed <= 10000; seed++) {
    TempDir dir;  // new files each round: rewriting one file over and over makes the system flush it
    const std::string main = dir.file("main.ini"), include = dir.file("inc"),
                      written[] = {dir.file("a"), dir.file("b")};
    RandomInput in{std::mt19937(seed)};
    writeWholeFile(main, in.File(systemPath(include)));
    // Now and then the include reads the main file again: a cycle that the full arena ends.
    writeWholeFile(include, in.File(in.Below(50) ? "" : systemPath(main)));
    // Tables from the first node on, or built for a longer list, against none.
    const std::int32_t limits[] = {in.Below(4) * 9, INT32_MAX};
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
  }
  NameIndex::SetWalkLimit(defaultLimit);
}
