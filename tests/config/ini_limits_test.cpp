// Tests of IniFile at its limits: the full arena, cut text, exhausted memory, catalogs and a
// decimal-comma locale.
#include <gtest/gtest.h>

#include <clocale>
#include <cstdio>
#include <set>
#include <string>

#include "base/debug_system.h"
#include "catalog_writer.h"
#include "comma_locale.h"
#include "config/ini_file.h"
#include "files/file_manager.h"
#include "ini_test_util.h"
#include "platform/host_heap.h"

namespace {

class IniLimits : public IniTest {};

constexpr std::size_t kArena = IniFile::kArenaSize;

// "[S]\nk=vvv...", `size` bytes long, whose last bytes are `tail`.
std::string oneLongKey(std::size_t size, const std::string& tail) {
  std::string text = "[S]\nk=";
  text.append(size - text.size() - tail.size(), 'v');
  return text + tail;
}

TEST_F(IniLimits, TakesAFirstFileOfTheArenaSizeWhole) {
  Write("big.ini", oneLongKey(kArena, "YZ"));
  IniFile ini("big.ini", 0, 0);
  IniKey* key = iniPeek(ini, "S", "k");
  ASSERT_NE(key, nullptr);
  std::string value = key->stringValue;
  EXPECT_EQ(value.size(), kArena - 6);
  EXPECT_EQ(value.substr(value.size() - 2), "YZ");
  EXPECT_EQ(ini.pool.FreeSpace(), 0);
  EXPECT_EQ(ini.pool.top, ini.pool.base + kArena + 1);
}

// One byte more has no room for its terminator: the text ends one byte short, inside the arena.
TEST_F(IniLimits, CutsALongerFileAtTheArenasEnd) {
  Write("big.ini", oneLongKey(kArena + 1, "YZ"));
  IniFile ini("big.ini", 0, 0);
  std::string value = iniPeek(ini, "S", "k")->stringValue;
  EXPECT_EQ(value.size(), kArena - 6);
  EXPECT_EQ(value.back(), 'Y');
  EXPECT_EQ(ini.pool.FreeSpace(), 0);
  EXPECT_EQ(ini.pool.top, ini.pool.base + kArena + 1);

  std::string lines = "[S]\n";
  for (int i = 0; lines.size() < 300000; i++) {
    lines += "key" + std::to_string(i) + "=" + std::string(120, 'v') + "\n";
  }
  Write("lines.ini", lines);
  Write("head.ini", lines.substr(0, kArena));
  IniFile cut("lines.ini", 0, 0);
  IniFile head("head.ini", 0, 0);
  EXPECT_EQ(iniPicture(cut), iniPicture(head));
  EXPECT_EQ(cut.pool.FreeSpace(), 0);
}

// An included file is read into whatever space the including one left, down to one byte: every
// cut of it parses like the same prefix read on its own, and nothing is read past the arena.
TEST_F(IniLimits, ParsesEveryCutOfAnIncludeAtTheArenasEnd) {
  const std::string included = "[B]\r\nx=1\r\n[C]\ny = 2 \n#pragma once\nz=3";
  const std::string tail = "\n#include b.ini\n";
  for (std::size_t room = 1; room <= included.size() + 2; room++) {
    SCOPED_TRACE(room);
    Write("main.ini", "[A]\nk=" + std::string(kArena - room - 6 - tail.size(), 'v') + tail);
    Write("b.ini", included);
    std::string prefix = included.substr(0, std::min(room - 1, included.size()));
    Write("prefix.ini", prefix);
    IniFile ini("main.ini", 0, 0);
    IniFile alone("prefix.ini", 0, 0);
    std::string picture = iniPicture(ini);
    ASSERT_EQ(picture.substr(0, 4), "[A]k");
    EXPECT_EQ(picture.substr(picture.find(';') + 1), iniPicture(alone));
    EXPECT_EQ(ini.pool.FreeSpace(), room > included.size() + 1 ? 1 : 0);
  }
}

TEST_F(IniLimits, RefusesSetsAtTheFullArenaAndKeepsWhatItHas) {
  TraceCapture trace;
  IniFile ini(nullptr, 0, 1);
  ASSERT_EQ(ini.IniSetString("S", "fill", "x"), 1);
  ASSERT_EQ(ini.IniSetInt("S", "n", 1), 1);
  // Leaves exactly `room` bytes free.
  auto leave = [&](std::int32_t room) {
    std::int32_t free = ini.pool.FreeSpace();
    ASSERT_GT(free, room);
    ASSERT_EQ(ini.IniSetString("S", "fill", std::string(free - room - 1, 'f').c_str()), 1);
    ASSERT_EQ(ini.pool.FreeSpace(), room);
  };

  leave(6);  // the value "abcd" fits; the name behind it doesn't
  EXPECT_EQ(ini.IniSetString("S", "k2", "abcd"), 0);
  EXPECT_TRUE(trace.Has("MSG|Unable to append string key name k2 to the buffer!"));
  EXPECT_EQ(ini.pool.FreeSpace(), 1);
  EXPECT_EQ(ini.IniSetString("S", "fill", "x"), 0);
  EXPECT_TRUE(trace.Has("MSG|Unable to append string x to the buffer!"));
  EXPECT_EQ(ini.IniSetInt("S", "k3", 1), 0);
  EXPECT_TRUE(trace.Has("MSG|Unable to append string k3 to the buffer!"));
  EXPECT_EQ(ini.IniSetBool("S", "k4", 1), 0);
  EXPECT_TRUE(trace.Has("MSG|Unable to append string key name k4 to the buffer!"));
  // Changes that need no arena space still work.
  EXPECT_EQ(ini.IniSetInt("S", "n", 7), 1);
  EXPECT_EQ(ini.IniSetBool("s", "N", 1), 1);
  EXPECT_EQ(ini.IniSetString("S", "n", ""), 1);
  EXPECT_EQ(ini.IniGetInt("S", "n", 0), 7);
  EXPECT_EQ(ini.IniGetInt("S", "missing", 3), 3);

  IniFile other(nullptr, 0, 1);
  ASSERT_EQ(other.IniSetString("S", "fill", "x"), 1);
  std::int32_t free = other.pool.FreeSpace();
  ASSERT_EQ(other.IniSetString("S", "fill", std::string(free - 6, 'f').c_str()), 1);
  ASSERT_EQ(other.pool.FreeSpace(), 5);  // the key "q" fits, the section "New" doesn't
  std::int64_t blocks = LiveBlocks();
  EXPECT_EQ(other.IniSetInt("New", "q", 1), 0);
  EXPECT_TRUE(trace.Has("MSG|Unable to append string New to the buffer!"));
  EXPECT_EQ(LiveBlocks(), blocks);
  EXPECT_EQ(other.IniSetInt("S", "q", 1), 1) << "a shorter change still fits";
  EXPECT_EQ(other.sections.count, 1);
  EXPECT_EQ(std::string(iniPeek(other, "S", "fill")->stringValue), std::string(free - 6, 'f'));
}

// Every allocation of a parse with an include fails once in turn: each outcome is one of the
// documented ones, and destroying the object gives every block back.
TEST_F(IniLimits, ParsesThroughEveryFailedAllocation) {
  TraceCapture trace;
  Write("main.ini", "[S]\nk=1\nj=2\n#include sub.ini\n[T]\nm=3\n");
  Write("sub.ini", "[U]\nx=1\n");
  std::set<std::string> outcomes;
  for (std::int64_t n = 1;; n++) {
    std::int64_t before = LiveBlocks();
    hostHeapFailNth(n);
    {
      IniFile ini("main.ini", 0, 0);
      outcomes.insert(iniPicture(ini));
    }
    bool fired = hostHeapFailPending() == 0;
    hostHeapFailNth(0);
    ASSERT_EQ(LiveBlocks(), before) << n;
    if (!fired) break;
  }
  const char* expected[] = {
      "[S]k=1,j=2;[T]m=3;[U]x=1;",  // all of it
      "",                           // no arena
      "[S]j=2;[T]m=3;[U]x=1;",      // a key's record or node
      "[S]k=1;[T]m=3;[U]x=1;",
      "[T]m=3;[U]x=1;",             // a section's record or node
      "[S]k=1,j=2;[U]x=1;",
      "[S]k=1,j=2;[T];[U]x=1;",
      "[S]k=1,j=2;[T]m=3;",         // the include's node, or its file record
      "[S]k=1,j=2;[T]m=3;[U];",
  };
  for (const char* picture : expected) EXPECT_EQ(outcomes.count(picture), 1u) << picture;
  EXPECT_EQ(outcomes.size(), std::size(expected));
  EXPECT_TRUE(trace.Has("MSG|Deleting duplicate key k from .\\main.ini..."));
  EXPECT_TRUE(trace.Has("MSG|Unable to append section U to the list, file sub.ini!"));
}

TEST_F(IniLimits, SetsThroughEveryFailedAllocation) {
  TraceCapture trace;
  struct Row {
    std::int64_t failing;
    int result;
    const char* picture;
  } rows[] = {
      {1, 0, "[S];"},             // the key record
      {2, 0, "[S];"},             // the section record
      {3, 0, "[S];"},             // the section's node
      {4, 1, "[S];[New];"},       // the key's node: the key is lost
      {5, 1, "[S];[New]q=(null);"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.failing);
    Write("t.ini", "[S]\n");
    IniFile ini("t.ini", 0, 0);
    std::int64_t before = LiveBlocks();
    hostHeapFailNth(row.failing);
    EXPECT_EQ(ini.IniSetInt("New", "q", 1), row.result);
    hostHeapFailNth(0);
    EXPECT_EQ(iniPicture(ini), row.picture);
    EXPECT_EQ(LiveBlocks() - before, row.failing == 4 ? 2 : row.failing == 5 ? 4 : 0);
  }
  EXPECT_TRUE(trace.Has("MSG|Unable to append section New to the list!"));
}

TEST_F(IniLimits, ReadsFromACatalogLikeFromDisk) {
  CatalogWriter catalog;
  catalog.Add("MAIN.INI", "[M]\nk=1\n#include sub.ini\n#include \"two words.ini\"\n#include loose.ini\n")
      .Add("SUB.INI", "[S]\n#include deep.ini\n#include gone.ini\n")
      .Add("DEEP.INI", "[D]\nd=4\n")
      .Add("TWO WORDS.INI", "[W]\n")
      .Add("LOOSE.INI", "[CAT]\n")
      .Add("LOOP.INI", "[L]\n#include loop.ini\n#include never.ini\n")
      .Add("NEVER.INI", "[N]\n");
  catalog.WriteTo(dir_.file("ini.cat"));
  Write("loose.ini", "[DISK]\n");
  ASSERT_EQ(gFMG->OpenCatalog("ini.cat"), 1);
  {
    IniFile ini("main", 0, 0);
    EXPECT_EQ(iniPicture(ini), "[M]k=1;[S];[D]d=4;[W];[DISK];");
    EXPECT_EQ(ini.IniGetInt("d", "D", 0), 4);
    ASSERT_EQ(ini.IniWrite(nullptr), 1);
  }
  EXPECT_EQ(Read("main.INI"), "[M]\nk=1\n\n[S]\n\n[D]\nd=4\n\n[W]\n\n[DISK]\n\n");
  {
    // Depth first: the cycle fills the arena before the include behind it is reached.
    IniFile loop("loop", 0, 0);
    EXPECT_EQ(iniPicture(loop), "[L];");
    EXPECT_EQ(loop.pool.FreeSpace(), 0);
  }
  gFMG->CloseCatalog("ini.cat");
  EXPECT_EQ(gFMG->openFiles.count, 0);
}

// The same file gives the same values and writes the same bytes whatever the locale.
TEST_F(IniLimits, IgnoresTheDecimalCommaOfTheLocale) {
  Write("t.ini", "[S]\nf=1.5\ng=-2.25e1\ni=7.9\nc=0.5,0.25,1\nl=1,5\n");
  struct Seen {
    float f, g, l;
    int i;
    float color[3];
    std::string written;
  };
  auto run = [&](const char* name) {
    Seen seen{};
    IniFile ini("t.ini", 0, 0);
    seen.f = ini.IniGetFloat("S", "f", 0);
    seen.g = ini.IniGetFloat("S", "g", 0);
    seen.l = ini.IniGetFloat("S", "l", 0);
    seen.i = ini.IniGetInt("S", "i", 0);
    IniGetColor(seen.color, &ini, "S", "c");
    ini.IniSetFloat("S", "h", 3.125f);
    ini.IniSetString("S", "s", " 2.5 ");
    EXPECT_EQ(ini.IniWrite(name), 1);
    seen.written = Read(std::string(name) + ".INI");
    return seen;
  };
  Seen classic = run("classic");
  std::string why;
  ASSERT_TRUE(useCommaLocale(&why)) << why;
  char probe[16];
  std::snprintf(probe, sizeof probe, "%.1f", 1.5);
  Seen comma = run("comma");
  useClassicLocale();
  EXPECT_STREQ(probe, "1,5") << "the locale wasn't in effect";
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");

  EXPECT_EQ(classic.f, 1.5f);
  EXPECT_EQ(classic.g, -22.5f);
  EXPECT_EQ(classic.l, 1.0f);
  EXPECT_EQ(classic.i, 7);
  EXPECT_EQ(classic.color[1], 0.25f);
  EXPECT_EQ(classic.written,
            "[S]\nf=1.500000\ng=-22.500000\ni=7\nc=0.5,0.25,1\nl=1.000000\nh=3.125000\ns=2.5\n\n");
  EXPECT_EQ(comma.f, classic.f);
  EXPECT_EQ(comma.g, classic.g);
  EXPECT_EQ(comma.l, classic.l);
  EXPECT_EQ(comma.i, classic.i);
  for (int c = 0; c < 3; c++) EXPECT_EQ(comma.color[c], classic.color[c]);
  EXPECT_EQ(comma.written, classic.written);
}

}  // namespace
