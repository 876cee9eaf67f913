// Tests of IniFile values: the three views and the tag, defaults, the pool cost of changes, and
// what the writer prints and a second read makes of it.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "config/ini_file.h"
#include "ini_test_util.h"

namespace {

class IniValues : public IniTest {};

// How a key's stringValue is expected to stand.
enum class Text { kNull, kSame, kEmptyString, kTrue, kFalse };

TEST_F(IniValues, FillsTheViewsAsEachEventSays) {
  const std::string parsed = "[S]\nk= 3.75 \n";
  struct Row {
    const char* what;
    std::string file;
    std::function<double(IniFile&)> act;
    double result;
    int type;
    Text text;
    const char* expected;  // for kSame
    int intValue;
    float floatValue;
  } rows[] = {
      {"parsed", parsed, [](IniFile&) { return 1.0; }, 1, 0, Text::kSame, "3.75", 3, 3.75f},
      {"parsed empty", "[S]\nk=\n", [](IniFile&) { return 1.0; }, 1, 0, Text::kNull, "", 0, 0},
      {"SetInt new", "", [](IniFile& i) { return i.IniSetInt("S", "k", -7); }, 1, 1, Text::kNull,
       "", -7, -7.0f},
      {"SetInt exists", parsed, [](IniFile& i) { return i.IniSetInt("s", "K", 9); }, 1, 1,
       Text::kSame, "3.75", 9, 3.75f},
      {"SetFloat new", "", [](IniFile& i) { return i.IniSetFloat("S", "k", -2.75f); }, 1, 2,
       Text::kNull, "", -2, -2.75f},
      {"SetFloat exists", parsed, [](IniFile& i) { return i.IniSetFloat("S", "k", 0.5f); }, 1, 2,
       Text::kSame, "3.75", 3, 0.5f},
      {"SetString new", "", [](IniFile& i) { return i.IniSetString("S", "k", "  7.25 x "); }, 1,
       0, Text::kSame, "7.25 x", 7, 7.25f},
      {"SetString new empty", "", [](IniFile& i) { return i.IniSetString("S", "k", ""); }, 1, 0,
       Text::kNull, "", 0, 0},
      {"SetString exists", parsed, [](IniFile& i) { return i.IniSetString("S", "k", " a b "); },
       1, 0, Text::kSame, " a b ", 3, 3.75f},
      {"SetString exists null", parsed,
       [](IniFile& i) { return i.IniSetString("S", "k", nullptr); }, 1, 0, Text::kEmptyString,
       "", 3, 3.75f},
      {"SetBool new", "", [](IniFile& i) { return i.IniSetBool("S", "k", 5); }, 1, 0, Text::kTrue,
       "", 0, 0},
      {"SetBool exists", parsed, [](IniFile& i) { return i.IniSetBool("S", "k", 0); }, 1, 0,
       Text::kFalse, "", 3, 3.75f},
      {"GetInt hit", parsed, [](IniFile& i) { return i.IniGetInt("S", "k", 99); }, 3, 1,
       Text::kSame, "3.75", 3, 3.75f},
      {"GetFloat hit", parsed, [](IniFile& i) { return i.IniGetFloat("S", "k", 99); }, 3.75, 2,
       Text::kSame, "3.75", 3, 3.75f},
      {"GetString hit after SetInt", parsed,
       [](IniFile& i) {
         char out[8];
         i.IniSetInt("S", "k", 1);
         i.IniGetString("S", "k", "d", out, sizeof out, 0);
         return std::strcmp(out, "3.75") == 0 ? 1.0 : 0.0;
       },
       1, 0, Text::kSame, "3.75", 1, 3.75f},
      {"GetBool of a number", parsed, [](IniFile& i) { return i.IniGetBool("S", "k", 0); }, 1, 1,
       Text::kSame, "3.75", 3, 3.75f},
      {"GetBool of a word", "[S]\nk=tRuE\n", [](IniFile& i) { return i.IniGetBool("S", "k", 0); },
       1, 0, Text::kSame, "tRuE", 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    Write("t.ini", row.file);
    IniFile ini("t.ini", 0, 0);
    EXPECT_EQ(row.act(ini), row.result);
    IniKey* key = iniPeek(ini, "S", "k");
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->type, row.type);
    EXPECT_EQ(key->intValue, row.intValue);
    EXPECT_EQ(key->floatValue, row.floatValue);
    switch (row.text) {
      case Text::kNull: EXPECT_EQ(key->stringValue, nullptr); break;
      case Text::kEmptyString: EXPECT_EQ(key->stringValue, ini.emptyString); break;
      case Text::kTrue: EXPECT_EQ(key->stringValue, ini.trueString); break;
      case Text::kFalse: EXPECT_EQ(key->stringValue, ini.falseString); break;
      case Text::kSame:
        ASSERT_NE(key->stringValue, nullptr);
        EXPECT_STREQ(key->stringValue, row.expected);
        EXPECT_TRUE(key->stringValue >= ini.pool.base && key->stringValue < ini.pool.top);
        break;
    }
  }
}

TEST_F(IniValues, WritesEachKindAndReadsItBack) {
  IniFile ini("out", 0, 1);
  ini.IniSetInt("S", "int", 42);
  ini.IniSetFloat("S", "float", 1.25f);
  ini.IniSetFloat("S", "tiny", 4e-7f);
  ini.IniSetFloat("S", "third", 1.0f / 3.0f);
  ini.IniSetString("S", "text", "a;b = c");
  ini.IniSetString("S", "padded", "x");
  ini.IniSetString("S", "padded", " y ");
  ini.IniSetString("S", "empty", "");
  ini.IniSetString("S", "blank", nullptr);
  ini.IniSetInt("S", "blank", 0);
  ini.IniGetString("S", "blank", "", nullptr, 0, 0);  // a null buffer changes nothing
  ini.IniSetBool("T", "on", 1);
  ini.IniSetBool("T", "off", 0);
  ASSERT_EQ(ini.IniWrite(nullptr), 1);
  const std::string written =
      "[S]\nint=42\nfloat=1.250000\ntiny=0.000000\nthird=0.333333\ntext=a;b = c\npadded= y \n"
      "empty=\nblank=0\n\n[T]\non=TRUE\noff=FALSE\n\n";
  EXPECT_EQ(Read("out.INI"), written);

  IniFile back("out", 0, 0);
  IniKey* intKey = iniPeek(back, "S", "int");
  ASSERT_NE(intKey, nullptr);
  EXPECT_EQ(intKey->type, kIniString);
  EXPECT_STREQ(intKey->stringValue, "42");
  EXPECT_EQ(back.IniGetInt("S", "int", 0), 42);
  EXPECT_EQ(back.IniGetFloat("S", "float", 0), 1.25f);
  EXPECT_EQ(iniPeek(back, "S", "float")->intValue, 1);
  EXPECT_EQ(back.IniGetFloat("S", "tiny", 9), 0.0f);
  EXPECT_EQ(back.IniGetFloat("S", "third", 9), 0.333333f);
  EXPECT_NE(0.333333f, 1.0f / 3.0f);
  char out[32];
  back.IniGetString("S", "text", "", out, sizeof out, 0);
  EXPECT_STREQ(out, "a;b = c");
  back.IniGetString("S", "padded", "", out, sizeof out, 0);
  EXPECT_STREQ(out, "y");
  EXPECT_EQ(iniPeek(back, "S", "empty")->stringValue, nullptr);
  back.IniGetString("S", "empty", "default", out, sizeof out, 0);
  EXPECT_STREQ(out, "");
  EXPECT_EQ(back.IniGetInt("S", "empty", 5), 0);
  EXPECT_EQ(back.IniGetBool("T", "on", 0), 1);
  EXPECT_EQ(back.IniGetBool("T", "off", 1), 0);
  EXPECT_EQ(iniPeek(back, "T", "on")->intValue, 0);
  EXPECT_EQ(iniPeek(back, "T", "on")->floatValue, 0.0f);

  // Every key read with its type writes back the same, but for the blanks that were trimmed
  // and the empty key, which the last read tagged integer.
  ASSERT_EQ(back.IniWrite(nullptr), 1);
  std::string normalised = written;
  normalised.replace(normalised.find("padded= y "), 10, "padded=y");
  normalised.replace(normalised.find("empty="), 6, "empty=0");
  EXPECT_EQ(Read("out.INI"), normalised);
}

TEST_F(IniValues, WritesWhatTheLastTouchChose) {
  Write("t.ini", "[S]\nf= 12.75 \nn=7\nu=  untouched  \n");
  IniFile ini("t.ini", 0, 0);
  EXPECT_EQ(ini.IniGetInt("S", "f", 0), 12);
  ASSERT_EQ(ini.IniSetInt("S", "n", 8), 1);
  ASSERT_EQ(ini.IniWrite(nullptr), 1);
  EXPECT_EQ(Read("t.ini"), "[S]\nf=12\nn=8\nu=untouched\n\n");

  char out[16];
  ini.IniGetString("S", "n", "", out, sizeof out, 0);
  EXPECT_STREQ(out, "7");
  EXPECT_EQ(ini.IniGetFloat("S", "f", 0), 12.75f);
  ASSERT_EQ(ini.IniWrite(nullptr), 1);
  EXPECT_EQ(Read("t.ini"), "[S]\nf=12.750000\nn=7\nu=untouched\n\n");
}

TEST_F(IniValues, GetsBoolByWordThenByNumber) {
  struct Row {
    const char* value;
    int expected;
    int type;
  } rows[] = {{"TRUE", 1, 0}, {"true", 1, 0}, {"FaLsE", 0, 0}, {"5", 1, 1},
              {"-1", 1, 1},   {"0", 0, 1},    {"yes", 0, 1},   {"", 0, 1}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.value);
    Write("t.ini", std::string("[S]\nk=") + row.value + "\n");
    IniFile ini("t.ini", 0, 0);
    EXPECT_EQ(ini.IniGetBool("S", "k", 7), row.expected);
    EXPECT_EQ(iniPeek(ini, "S", "k")->type, row.type);
  }
  IniFile none("t.ini", 0, 0);
  EXPECT_EQ(none.IniGetBool("S", "missing", 7), 7);
  EXPECT_EQ(none.IniGetBool("Nowhere", "k", -3), -3);
}

TEST_F(IniValues, AddsMissedKeysOnlyWithAutoWriteDefaults) {
  Write("t.ini", "[S]\nnumber=12\n");
  char out[16];
  for (int autoWrite : {0, 1}) {
    SCOPED_TRACE(autoWrite);
    IniFile ini("t.ini", autoWrite, 0);
    EXPECT_EQ(ini.IniGetInt("S", "i", 4), 4);
    EXPECT_EQ(ini.IniGetFloat("New", "f", 1.5f), 1.5f);
    ini.IniGetString("S", "s", "Dflt", out, sizeof out, 1);
    EXPECT_STREQ(out, "Dflt");
    ini.IniGetString("S", "nobuffer", "x", nullptr, 0, 0);
    EXPECT_EQ(ini.IniGetBool("S", "b", 2), 2);
    EXPECT_EQ(ini.IniGetBool("S", "number", 0), 1);
    ASSERT_EQ(ini.IniWrite("written"), 1);
    EXPECT_EQ(Read("written.INI"),
              autoWrite ? "[S]\nnumber=TRUE\ni=4\ns=Dflt\nb=TRUE\n\n[New]\nf=1.500000\n\n"
                        : "[S]\nnumber=12\n\n");
    EXPECT_EQ(ini.IniGetInt("S", "i", 5), autoWrite ? 4 : 5);
  }
}

TEST_F(IniValues, AppliesTheCaseModeToStoredTextOnly) {
  Write("t.ini", "[S]\nk=MiXed é\n");
  IniFile ini("t.ini", 0, 0);
  const char* expected[] = {"MiXed é", "MIXED é", "mixed é", "MiXed é"};
  char out[32];
  for (int mode = 0; mode < 4; mode++) {
    ini.IniGetString("S", "k", "", out, sizeof out, mode);
    EXPECT_STREQ(out, expected[mode]) << mode;
  }
  ini.IniGetString("S", "none", "DeFault", out, sizeof out, 1);
  EXPECT_STREQ(out, "DeFault");
  ini.IniGetString("S", "k", "", out, 4, 0);
  EXPECT_STREQ(out, "MiX");
}

TEST_F(IniValues, ReadsColors) {
  struct Row {
    const char* value;
    int result;
    float red, green, blue;
  } rows[] = {{"0.5,0.25,1", 1, 0.5f, 0.25f, 1.0f},
              {" -1 , 2.5 ,0.125", 1, 0.0f, 1.0f, 0.125f},
              {"0.1,0.2,0.3,0.4", 1, 0.1f, 0.2f, 0.3f},
              {"0.5,0.5,", 1, 0.5f, 0.5f, 0.0f},
              {"0.1,0.2", 0, 9, 9, 9},
              {"", 0, 9, 9, 9}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.value);
    Write("t.ini", std::string("[S]\nc=") + row.value + "\n");
    IniFile ini("t.ini", 0, 0);
    float color[3] = {9, 9, 9};
    EXPECT_EQ(IniGetColor(color, &ini, "S", "c"), row.result);
    EXPECT_EQ(color[0], row.red);
    EXPECT_EQ(color[1], row.green);
    EXPECT_EQ(color[2], row.blue);
  }
}

TEST_F(IniValues, CountsTheUnbrokenRunOfNumberedSections) {
  Write("t.ini", "[GunData001]\n[gundata002]\n[GunData004]\n[GunData3]\n[G 7|]\n[G  8|]\n");
  IniFile ini("t.ini", 0, 0);
  struct Row {
    const char* format;
    int count;
  } rows[] = {{"GunData%03d", 2}, {"GUNDATA%.3i", 2}, {"gundata%d", 0},  {"Other%d", 0},
              {"G%2d|", 0},       {"G%-2d|", 0},      {"G %d|", 0},      {"GunData%03d%d", 0},
              {"GunData001", 0},  {"GunData%03f", 0}, {"G%+d", 0}};
  for (const Row& row : rows) EXPECT_EQ(ini.IniCountSections(row.format), row.count) << row.format;
  Write("u.ini", "[G 1|]\n[G 2|]\n[G1 |]\n[P+1%]\n[P+2%]\n[P+3%]\n[Z00001]\n");
  IniFile more("u.ini", 0, 0);
  Row moreRows[] = {{"G%2d|", 2},   {"G% d|", 2},  {"G%-2d|", 1},  {"P%+d%%", 3},
                    {"Z%05d", 1},   {"Z%.5d", 1},  {"Z%5.5d", 1},  {"Z%-05d", 0}};
  for (const Row& row : moreRows) {
    EXPECT_EQ(more.IniCountSections(row.format), row.count) << row.format;
  }
  IniFile empty(nullptr, 0, 1);
  EXPECT_EQ(empty.IniCountSections("GunData%03d"), 0);
}

TEST_F(IniValues, SpendsThePoolAsDocumented) {
  Write("t.ini", "[S]\nk=1\n");
  IniFile ini("t.ini", 0, 0);
  long used = iniUsed(ini);
  struct Row {
    const char* what;
    std::function<int(IniFile&)> act;
    long cost;
  } rows[] = {
      {"SetInt existing", [](IniFile& i) { return i.IniSetInt("S", "k", 5); }, 0},
      {"SetFloat existing", [](IniFile& i) { return i.IniSetFloat("S", "k", 5); }, 0},
      {"SetBool existing", [](IniFile& i) { return i.IniSetBool("S", "k", 1); }, 0},
      {"SetString existing", [](IniFile& i) { return i.IniSetString("S", "k", "abc"); }, 4},
      {"SetString again", [](IniFile& i) { return i.IniSetString("S", "k", "abc"); }, 4},
      {"SetString empty", [](IniFile& i) { return i.IniSetString("S", "k", ""); }, 0},
      {"new key", [](IniFile& i) { return i.IniSetInt("S", "key2", 5); }, 5},
      {"new bool key", [](IniFile& i) { return i.IniSetBool("S", "b", 0); }, 2},
      {"new section and key", [](IniFile& i) { return i.IniSetString("Sec", "kk", "v"); }, 9},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    EXPECT_EQ(row.act(ini), 1);
    EXPECT_EQ(iniUsed(ini) - used, row.cost);
    used = iniUsed(ini);
  }
  EXPECT_EQ(iniPicture(ini), "[S]k=,key2=(null),b=FALSE;[Sec]kk=v;");
}

TEST_F(IniValues, KeepsTheWrittenNameAndFailsOnlyOnOpen) {
  IniFile ini(nullptr, 0, 1);
  EXPECT_EQ(ini.IniWrite(nullptr), 0);
  ASSERT_EQ(ini.IniWrite("empty.ini"), 1);
  EXPECT_EQ(Read("empty.ini"), "");
  ini.IniSetInt("S", "k", 1);
  ASSERT_EQ(ini.IniWrite(nullptr), 1);
  EXPECT_STREQ(ini.fileName, ".\\empty.ini");
  EXPECT_EQ(Read("empty.ini"), "[S]\nk=1\n\n");
  EXPECT_EQ(ini.IniWrite("no such dir\\x"), 0);
  EXPECT_STREQ(ini.fileName, "no such dir\\x.INI");
  EXPECT_EQ(iniPicture(ini), "[S]k=(null);");
}

}  // namespace
