// IniFile: the dialect, includes, the views, a write in either locale, the arena's end, no memory.
#include "config/ini_file.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "comma_locale.h"
#include "ini_picture.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "packed_catalog.h"
#include "platform/host_heap.h"

namespace {

constexpr std::size_t kArena = IniFile::kArenaSize;
using Act = std::function<double(IniFile&)>;

// The process works in a fresh directory, so bare names and includes reach the test's files.
class IniFileTest : public KernelTest {
 protected:
  IniFileTest() { std::filesystem::current_path(dir_.path()); }
  ~IniFileTest() override {
    useClassicLocale();
    std::filesystem::current_path(previous_);
  }
  TempDir dir_;
  std::filesystem::path previous_ = std::filesystem::current_path();
};

TEST_F(IniFileTest, ReadsTheDialect) {
  struct Case { const char* name; std::string text; const char* picture; int result; } cases[] = {
      {"a line end first gives nothing", "\r\n[S]\r\nk=v\r\n", "", 0},
      {"a zero byte first gives nothing", std::string("\0[S]\nk=v\n", 9), "", 0},
      {"keys ahead of the first section", "k=1\n;c\n[S]\nj=2\n", "[S]j=2;", 1},
      {"CR, LF; a # line ends keys", "[S]\r\nk=1\r#pragma x\nj=2\n[T]\rm=3", "[S]k=1;[T]m=3;", 1},
      {"only ; first is a comment", "[S]\n;x=1\n ;y=2\n", "[S];y=2;", 1},
      {"blanks ahead of [ make no header", " [T]\n[S]\n [T]=1\n", "[S][T]=1;", 1},
      {"first key and section of a name win", "[S]\nKey=1\nkEY=2\n[s]\nj=2\n", "[S]Key=1;", 1},
      {"keys and values trimmed", "[S]\n  a b \t=  c d  \n", "[S]a b=c d;", 1},
      {"the key ends at the first =", "[S]\nk=a=b;c\nplain\n", "[S]k=a=b;c;", 1},
      {"section names untrimmed, up to a final ]", "[ S ] x\n[T\n", "[ S ] x];[T];", 1},
  };
  for (const Case& c : cases) {
    writeWholeFile("t.ini", c.text);
    IniFile ini("t.ini", 0, 1);
    EXPECT_EQ(ini.IniParseFile("t.ini"), c.result) << c.name;
    EXPECT_EQ(iniPicture(ini), c.picture) << c.name;
  }
}

// Includes go depth first, behind the including file's sections; a disk file beats a packed one.
TEST_F(IniFileTest, ReadsIncludesFromACatalogLikeFromDisk) {
  TraceCapture trace;
  PackedCatalog catalog;
  catalog.Add("MAIN.INI", "[M]\nk=1\nK=2\n#INCLUDE one.ini x\nlost=1\n[M2]\n#include\tnever.ini\n"
                          "# include never.ini\n#include\n#include \"two words.ini\" x\n"
                          "#include loose.ini\n")
      .Add("ONE.INI", "[O]\n#include deep.ini\n#include gone.ini\n")
      .Add("DEEP.INI", "[D]\n#include deeper.ini\n")
      .Add("DEEPER.INI", "[m]\nk=3\n[E]\ne=4\n")
      .Add("TWO WORDS.INI", "[W]\n")
      .Add("LOOSE.INI", "[CAT]\n")
      .Add("NEVER.INI", "[N]\n");
  catalog.WriteTo("ini.cat");
  writeWholeFile("loose.ini", "[DISK]\n");
  ASSERT_EQ(gFMG->OpenCatalog("ini.cat"), 1);
  IniFile ini("main", 0, 0);
  EXPECT_EQ(iniPicture(ini), "[M]k=1;[M2];[O];[D];[E]e=4;[W];[DISK];");
  EXPECT_TRUE(trace.Has("MSG|Deleting duplicate key K from .\\main.INI..."));
  EXPECT_TRUE(trace.Has("MSG|Deleting duplicate section m from deeper.ini..."));
  gFMG->CloseCatalog("ini.cat");
}

// A first file up to the arena's size is taken whole, a longer one is cut at the arena's end.
TEST_F(IniFileTest, CutsTextAtTheArenasEnd) {
  for (std::size_t size : {kArena, kArena + 1, kArena + 5000}) {
    std::string text = "[S]\nk=" + std::string(size - 8, 'v') + "YZ";
    writeWholeFile("big.ini", size > kArena ? text + "\n[T]\nt=1\n" : text);
    IniFile ini("big.ini", 0, 0);
    // A full arena refuses what needs room and keeps what it has.
    EXPECT_EQ(ini.IniSetInt("New", "q", 1) + ini.IniSetString("S", "q", "x"), 0) << size;
    EXPECT_EQ(iniPicture(ini), "[S]k=" + text.substr(6, kArena - 6) + ";") << size;
    EXPECT_EQ(ini.pool.top, ini.pool.base + kArena + 1) << size;
  }
}

// Name tables from the first node on, so that failing theirs is swept too: it only slows lookups.
TEST_F(IniFileTest, ParsesAndSetsThroughEveryFailedAllocation) {
  writeWholeFile("main.ini", "[S]\nk=1\nj=2\n#include sub.ini\n[T]\nm=3\n");
  writeWholeFile("sub.ini", "[U]\nx=1\n");
  const std::int32_t defaultLimit = NameIndex::WalkLimit();
  NameIndex::SetWalkLimit(0);
  std::set<std::string> outcomes;
  for (std::int64_t n = 1, fired = 1; fired; n++) {
    std::int64_t before = LiveBlocks();
    hostHeapFailNth(n);
    {
      IniFile ini("main.ini", 0, 0);
      const std::string result = std::to_string(ini.IniSetInt("New", "q", 1));
      outcomes.insert(result + iniPicture(ini));
    }
    fired = hostHeapFailPending() == 0;
    hostHeapFailNth(0);
    ASSERT_EQ(LiveBlocks(), before) << n;
  }
  NameIndex::SetWalkLimit(defaultLimit);
  // No arena; the new key's or section's record or node (a lost key node keeps its section).
  const std::string all = "[S]k=1,j=2;[T]m=3;[U]x=1;";
  std::set<std::string> expected = {"0", "0" + all, "1" + all + "[New];"};
  // All (or a string failed); the file unread; a key's, section's or include's record or node.
  for (const char* parsed : {all.c_str(), "", "[S]j=2;[T]m=3;[U]x=1;", "[S]k=1;[T]m=3;[U]x=1;",
                             "[T]m=3;[U]x=1;", "[S]k=1,j=2;[U]x=1;", "[S]k=1,j=2;[T];[U]x=1;",
                             "[S]k=1,j=2;[T]m=3;", "[S]k=1,j=2;[T]m=3;[U];"}) {
    expected.insert("1" + std::string(parsed) + "[New]q=(null);");
  }
  EXPECT_EQ(outcomes, expected);
}

template <typename Operation, typename Argument>
Act on(Operation operation, Argument argument) {
  return [=](IniFile& ini) { return (ini.*operation)("S", "k", argument); };
}

// The result and the views of S/k after one event, on a file that holds it (p) or is empty.
TEST_F(IniFileTest, FillsTheViewsAsEachEventSays) {
  const std::string p = "[S]\nk= 3.75 \n";
  struct Row { std::string file; Act act; double result; const char* views; };
  const Row rows[] = {
      {"[S]\nk=\nj=  \n", [](IniFile&) { return 1; }, 1, "(null):0:0:0,j=:0:0:0"},  // parsed
      {"", on(&IniFile::IniSetInt, -7), 1, "(null):1:-7:-7"},
      {p, on(&IniFile::IniSetInt, 9), 1, "3.75:1:9:3.75"},
      {"", on(&IniFile::IniSetFloat, -2.75f), 1, "(null):2:-2:-2.75"},
      {p, on(&IniFile::IniSetFloat, 0.5f), 1, "3.75:2:3:0.5"},
      {"", on(&IniFile::IniSetString, " 7.25 x "), 1, "7.25 x:0:7:7.25"},
      {"", on(&IniFile::IniSetString, ""), 1, "(null):0:0:0"},
      {p, on(&IniFile::IniSetString, " a b "), 1, " a b :0:3:3.75"},
      {p, on(&IniFile::IniSetString, nullptr), 1, "(empty):0:3:3.75"},
      {"", on(&IniFile::IniSetBool, 5), 1, "(true):0:0:0"},
      {p, on(&IniFile::IniSetBool, 0), 1, "(false):0:3:3.75"},
      {p, on(&IniFile::IniGetInt, 99), 3, "3.75:1:3:3.75"},
      {p, on(&IniFile::IniGetFloat, 9.0f), 3.75, "3.75:2:3:3.75"},
      {p, on(&IniFile::IniGetBool, 7), 1, "3.75:1:3:3.75"},
      {"[S]\nk=tRuE\n", on(&IniFile::IniGetBool, 7), 1, "tRuE:0:0:0"},
      {"[S]\nk=yes\n", on(&IniFile::IniGetBool, 7), 0, "yes:1:0:0"},
  };
  for (const Row& row : rows) {
    writeWholeFile("t.ini", row.file);
    IniFile ini("t.ini", 0, 0);
    EXPECT_EQ(row.act(ini), row.result) << (&row - rows);
    EXPECT_EQ(iniPicture(ini, true), "[S]k=" + std::string(row.views) + ";") << (&row - rows);
  }
}

// What each kind of key writes and a second read makes of it, under "C" and a decimal comma.
TEST_F(IniFileTest, WritesEachKindAndReadsItBackInEitherLocale) {
  for (const char* locale : {"C", "comma"}) {
    std::string why;
    ASSERT_TRUE(locale[0] == 'C' || useCommaLocale(&why)) << why;
    IniFile ini(nullptr, 0, 1);
    ini.IniSetInt("S", "int", -42);
    ini.IniSetFloat("S", "float", 1.25f);
    ini.IniSetInt("S", "read", 7);
    char out[8];
    ini.IniGetString("S", "read", "d", out, sizeof out, 0);  // a string now, and an empty one
    for (auto [key, text] : {std::pair<const char*, const char*>{"text", "a;b = c"},
                             {"empty", ""}, {"color", "0.5,0.25,2"}}) {
      ini.IniSetString("S", key, text);
    }
    ini.IniSetBool("S", "on", 1);
    ini.IniSetBool("T", "off", 0);
    ASSERT_EQ(ini.IniWrite("out"), 1);
    EXPECT_EQ(readWholeFile("out.INI"),
              "[S]\nint=-42\nfloat=1.250000\nread=\ntext=a;b = c\nempty=\ncolor=0.5,0.25,2\n"
              "on=TRUE\n\n[T]\noff=FALSE\n\n")
        << locale;
    IniFile back("out", 0, 0);
    EXPECT_EQ(iniPicture(back, true),
              "[S]int=-42:0:-42:-42,float=1.250000:0:1:1.25,read=(null):0:0:0,text=a;b = c:0:0:0,"
              "empty=(null):0:0:0,color=0.5,0.25,2:0:0:0.5,on=TRUE:0:0:0;[T]off=FALSE:0:0:0;")
        << locale;
    float color[3];
    EXPECT_EQ(IniGetColor(color, &back, "S", "color"), 1);
    EXPECT_EQ(color[0] + color[1] * 10 + color[2] * 100, 103.0f) << locale;
  }
}

TEST_F(IniFileTest, CountsTheUnbrokenRunOfNumberedSections) {
  const std::string prefix(258, 'p');  // names fit 260 bytes for one digit, not for two
  std::string text = "[G001]\n[g002]\n[G004]\n[G3]\n[X-1]\n[X-2]\n";
  for (int n = 1; n <= 10; n++) text += "[" + prefix + std::to_string(n) + "]\n";
  writeWholeFile("count.ini", text);
  IniFile ini("count.ini", 0, 0);
  struct Case { std::string format; int count; } cases[] = {
      {"G%03d", 2}, {"G%d", 0}, {"X%+d", 0}, {"X-%i", 2}, {prefix + "%d", 9}, {"G001", 0},
      {"G%03d%d", 0}, {"G%s", 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ini.IniCountSections(c.format.c_str()), c.count) << c.format;
  }
}

}  // namespace
