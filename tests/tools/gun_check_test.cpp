// Tests of the gun text scanner and the .dat rebuild, in the process: the scanner must see the
// sections the load sees, on the lines a text editor shows.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "tools/console_list_view.h"
#include "tools/gun_check.h"
#include "tools/gun_from_dat.h"
#include "tools/gun_text_scan.h"

using namespace std::string_literals;

class GunCheckTest : public KernelTest {
 protected:
  // The sections the scanner keeps, as "name@line", after checking that it counts the guns the
  // load gives.
  std::vector<std::string> Scan(const std::string& text, int* losses) {
    writeWholeFile(dir.file("g.ini"), text);
    std::string path = systemPath(dir.file("g.ini"));
    GunTextScan scan;
    EXPECT_TRUE(ScanGunText(path.c_str(), "g.ini", &scan));
    int guns = CheckGunText(&scan);
    ConsoleListView view(nullptr);
    GunFileLoad(&view, path.c_str());
    EXPECT_EQ(guns, GunList.count) << "the scanner and the load disagree";
    GunListEmpty(&view);
    *losses = CountFindings(scan, FindingKind::kLoss);
    std::vector<std::string> sections;
    for (const ScanSection& section : scan.sections) {
      sections.push_back(section.name + "@" + scan.files[section.file] + ":" +
                         std::to_string(section.line));
    }
    return sections;
  }
  TempDir dir;
};

TEST_F(GunCheckTest, SeesTheSectionsOfTheLoadOnTheirLines) {
  std::string include = dir.file("inc b.ini");
  writeWholeFile(include, "[GunData002]\nTypeName=B\n");
  std::string late = dir.file("late.ini");
  writeWholeFile(late, "[GunData003]\n");
  // A first file that leaves one byte of the text limit: the next include gets nothing of its
  // text, and the one after it isn't read.
  std::string full = "[GunData001]\n#include " + systemPath(late) + "\n#include \"" +
                     systemPath(include) + "\"\n";
  full += std::string(262143 - full.size(), ';');
  struct Case {
    std::string text;
    std::vector<std::string> sections;
    int losses;
  } cases[] = {
      {"[GunData001]\r\nTypeName=A\r\n[GunData002]\rTypeName=B\r",
       {"GunData001@g.ini:1", "GunData002@g.ini:3"}, 0},
      {"\n[GunData001]\n", {}, 2},  // nothing read: no gun at all
      {"[GunData001]\nA=1\0\n[GunData002]\n"s, {"GunData001@g.ini:1"}, 0},  // no line ends behind a zero byte
      {"[GunData002]\n[gundata001]\n", {"GunData002@g.ini:1", "gundata001@g.ini:2"}, 0},
      {"[GunData001]\n#x\n[GunData001]\n[GunData002]", {"GunData001@g.ini:1", "GunData002@g.ini:4"}, 0},
      {"#include \"" + systemPath(include) + "\" ignored\n[GunData001]\n",
       {"GunData001@g.ini:2", "GunData002@" + include + ":1"}, 0},
      {full, {"GunData001@g.ini:1"}, 2},
  };
  for (const Case& c : cases) {
    int losses = -1;
    EXPECT_EQ(Scan(c.text, &losses), c.sections) << c.text.substr(0, 60);
    EXPECT_EQ(losses, c.losses) << c.text.substr(0, 60);
  }
}

TEST_F(GunCheckTest, RebuildFromDatGivesEverythingBackWhenMemoryRunsOut) {
  writeWholeFile(dir.file("g.ini"), "[GunData001]\nTypeName=A\n[GunData002]\nTypeName=B\n");
  ConsoleListView view(nullptr);
  GunFileLoad(&view, systemPath(dir.file("g.ini")).c_str());
  ASSERT_EQ(GunFileSave(&view, systemPath(dir.file("g.ini")).c_str()), 1);
  GunListEmpty(&view);
  std::FILE* sink = std::fopen("/dev/null", "w");
  std::string dat = systemPath(dir.file("g.dat"));
  int failures = 0;
  for (int nth = 1; nth <= 30; nth++) {
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(nth);
    int done = GunListFromDat(&view, dat.c_str(), "g.dat", false, sink);
    hostHeapFailNth(0);
    failures += done ? 0 : 1;
    EXPECT_EQ(view.RowCount(), GunList.count) << nth;
    EXPECT_EQ(GunList.count, done ? 2 : GunList.count) << nth;
    GunListEmpty(&view);
    ASSERT_EQ(LiveBlocks(), blocks) << nth;
  }
  std::fclose(sink);
  EXPECT_GT(failures, 0) << "some allocation failed on the way";
}
