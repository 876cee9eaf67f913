// Tests of IniFile reading: the dialect line by line, names, includes and the trace words.
#include <gtest/gtest.h>

#include <string>

#include "config/ini_file.h"
#include "ini_test_util.h"

namespace {

class IniParse : public IniTest {};

TEST_F(IniParse, ReadsTheDialect) {
  struct Case {
    const char* what;
    std::string text;
    const char* picture;
    int result;
  } cases[] = {
      {"CR LF lines", "[S]\r\nk=v\r\n", "[S]k=v;", 1},
      {"a line end first gives nothing", "\r\n[S]\r\nk=v\r\n", "", 0},
      {"a zero byte first gives nothing", std::string("\0[S]\nk=v\n", 9), "", 0},
      {"last line without a line end", "[S]\nk=v", "[S]k=v;", 1},
      {"CR alone ends a line", "[S]\rk=v\rj=w", "[S]k=v,j=w;", 1},
      {"keys ahead of the first section", "k=1\n;c\n[S]\nj=2\n", "[S]j=2;", 1},
      {"a # line ends the key list",
       "[S]\nk=1\n#pragma x\nj=2\n[T]\nm=3\n", "[S]k=1;[T]m=3;", 1},
      {"only ; first is a comment", "[S]\n;x=1\n ;y=2\n", "[S];y=2;", 1},
      {"first key of a name wins", "[S]\nKey=1\nkEY=2\n", "[S]Key=1;", 1},
      {"first section of a name wins whole", "[S]\nk=1\n[s]\nj=2\n", "[S]k=1;", 1},
      {"names and values trimmed, inner blanks kept", "[S]\n  a b \t=  c d  \n", "[S]a b=c d;", 1},
      {"nothing behind = is null, blanks are empty", "[S]\nk=\nj=   \n", "[S]k=(null),j=;", 1},
      {"the key ends at the first =", "[S]\nk=a=b;c\n", "[S]k=a=b;c;", 1},
      {"lines without = are ignored", "[S]\nplain\nk=1\n", "[S]k=1;", 1},
      {"section names are not trimmed", "[ S ]\nk=1\n", "[ S ]k=1;", 1},
      {"a header without ] is a section", "[S\nk=1\n", "[S]k=1;", 1},
      {"text behind ] stays in the name", "[S] x\nk=1\n", "[S] x]k=1;", 1},
      {"blanks ahead of [ make no header", " [T]\n[S]\n [T]=1\n", "[S][T]=1;", 1},
      {"empty names are stored", "[]\n=1\n=2\n[]\n", "[]=1,=2;[];", 1},
      {"line ends behind a zero byte stay",
       std::string("[S]\nk=1\0\nj=2\n", 13), "[S]k=1,j=2;", 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Write("t.ini", c.text);
    IniFile ini("t.ini", 0, 1);
    EXPECT_EQ(ini.IniParseFile("t.ini"), c.result);
    EXPECT_EQ(iniPicture(ini), c.picture);
  }
}

TEST_F(IniParse, FillsTheNumberViewsOnce) {
  Write("t.ini", "[S]\na= 12.7 \nb=letters\nc=\nd=   \ne=-3e2x\n");
  IniFile ini("t.ini", 0, 0);
  struct Row {
    const char* key;
    const char* text;
    int intValue;
    float floatValue;
  } rows[] = {{"a", "12.7", 12, 12.7f},
              {"b", "letters", 0, 0.0f},
              {"c", nullptr, 0, 0.0f},
              {"d", "", 0, 0.0f},
              {"e", "-3e2x", -3, -300.0f}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.key);
    IniKey* key = iniPeek(ini, "S", row.key);
    ASSERT_NE(key, nullptr);
    EXPECT_EQ(key->type, kIniString);
    if (row.text) {
      ASSERT_NE(key->stringValue, nullptr);
      EXPECT_STREQ(key->stringValue, row.text);
    } else {
      EXPECT_EQ(key->stringValue, nullptr);
    }
    EXPECT_EQ(key->intValue, row.intValue);
    EXPECT_EQ(key->floatValue, row.floatValue);
  }
}

TEST_F(IniParse, ResolvesTheNameOnlyForTheObject) {
  Write("a.INI", "[A]\n#include b\n#include b.INI\n");
  Write("b", "[B]\n");
  Write("b.INI", "[BB]\n");
  IniFile ini("a", 0, 0);
  EXPECT_STREQ(ini.fileName, ".\\a.INI");
  EXPECT_EQ(iniPicture(ini), "[A];[B];[BB];");

  IniFile bare(nullptr, 0, 0);
  EXPECT_STREQ(bare.fileName, "");
  EXPECT_EQ(bare.sections.count, 0);
  IniFile empty("", 0, 0);
  EXPECT_STREQ(empty.fileName, "");

  IniFile skipped("a", 0, 1);
  EXPECT_EQ(skipped.sections.count, 0);
  EXPECT_EQ(iniUsed(skipped), 0);

  IniFile missing("nothing.ini", 0, 0);
  EXPECT_STREQ(missing.fileName, ".\\nothing.ini");
  EXPECT_EQ(missing.sections.count, 0);
}

TEST_F(IniParse, ReadsIncludesAfterTheFileDepthFirstInLineOrder) {
  Write("main.ini",
        "[M1]\nk=1\n#include one.ini\nlost=1\n[M2]\nj=2\n#INCLUDE \"two words.ini\" junk\n");
  Write("one.ini", "[O]\n#include three.ini ignored\n#include missing.ini\n");
  Write("three.ini", "[T]\n#include four.ini\n");
  Write("four.ini", "[F]\nx=4\n");
  Write("two words.ini", "[W]\nk=w\n[M1]\nk=dup\nextra=1\n");
  IniFile ini("main.ini", 0, 0);
  EXPECT_EQ(iniPicture(ini), "[M1]k=1;[M2]j=2;[O];[T];[F]x=4;[W]k=w;");
}

TEST_F(IniParse, IgnoresDirectivesThatAreNoInclude) {
  Write("main.ini",
        "[M]\n#include\tb.ini\n#include\n# include b.ini\n#included b.ini\n#Include c.ini\n");
  Write("b.ini", "[B]\n");
  Write("c.ini", "[C]\n");
  IniFile ini("main.ini", 0, 0);
  EXPECT_EQ(iniPicture(ini), "[M];[C];");
}

TEST_F(IniParse, TracesDuplicatesWithTheirFiles) {
  TraceCapture trace;
  Write("a.INI", "[S]\nk=1\n#include sub.ini\n");
  Write("sub.ini", "[s]\nk=2\n[U]\nj=1\nJ=2\n");
  IniFile ini("a", 0, 0);
  EXPECT_EQ(iniPicture(ini), "[S]k=1;[U]j=1;");
  EXPECT_TRUE(trace.Has("MSG|Deleting duplicate section s from sub.ini..."));
  EXPECT_TRUE(trace.Has("MSG|Deleting duplicate key J from .\\a.INI..."));
}

// A file that includes itself, or two that include each other, are read again behind the last
// copy until the arena is full; a cycle of tiny files goes some 20,000 levels deep.
TEST_F(IniParse, EndsIncludeCyclesAtTheFullArena) {
  Write("self", "#include self");
  Write("a.ini", "[A]\nk=1\n#include b.ini\n");
  Write("b.ini", "[B]\n#include a.ini\n");
  for (const char* name : {"self", "a.ini"}) {
    SCOPED_TRACE(name);
    IniFile ini(name, 0, 1);
    EXPECT_EQ(ini.IniParseFile(name), 1);
    EXPECT_EQ(ini.pool.FreeSpace(), 0);
    EXPECT_EQ(ini.pool.top, ini.pool.base + ini.pool.capacity);
    EXPECT_EQ(ini.pool.base[ini.pool.capacity - 1], '\0');
  }
  IniFile pair("a.ini", 0, 0);
  EXPECT_EQ(iniPicture(pair), "[A]k=1;[B];");
}

}  // namespace
