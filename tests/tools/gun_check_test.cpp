// The gun text scanner in the process: it must see what the load sees, and plain must mean clean.
#include <gtest/gtest.h>

#include <string>

#include "config/ini_file.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"
#include "tools/console_list_view.h"
#include "tools/gun_check.h"
#include "tools/gun_text_scan.h"

using namespace std::string_literals;

class GunCheckTest : public KernelTest {
 protected:
  GunTextScan Check(const std::string& text, bool* plain) {
    writeWholeFile(dir.file("g.ini"), text);
    GunTextScan scan;
    EXPECT_TRUE(ScanGunText(path.c_str(), "g.ini", &scan));
    int guns = CheckGunText(&scan);
    {
      IniFile ini(path.c_str(), 0, 0);
      *plain = GunTextIsPlain(ini);
    }
    GunFileLoad(&view, path.c_str());
    EXPECT_EQ(guns, GunList.count) << "the scanner and the load disagree";
    GunListEmpty(&view);
    EXPECT_TRUE(!*plain || scan.findings.empty()) << "plain, yet reported: " << text.substr(0, 60);
    return scan;
  }
  TempDir dir;
  std::string path = systemPath(dir.file("g.ini"));
  ConsoleListView view{nullptr};
};

TEST_F(GunCheckTest, SeesTheSectionsOfTheLoadOnTheirLinesAndOnlyPlainFilesPassUnscanned) {
  std::string include = dir.file("inc b.ini"), late = dir.file("late.ini");
  writeWholeFile(include, "[GunData002]\nTypeName=B\n");
  writeWholeFile(late, "[GunData003]\n");
  // One byte of the text limit left: the next include gets none of it, the one after is unread.
  std::string full = "[GunData001]\n#include " + systemPath(late) + "\n#include \"" +
                     systemPath(include) + "\"\n";
  full += std::string(262143 - full.size(), ';');
  const std::string one = "GunData001@g.ini:1 ";
  const struct { std::string text, sections; int losses; bool plain; } cases[] = {
      {"[GunData001]\r\nCaliber= 12.7 \r\nAddLight=TRUE\nFireColor=1,0.5,0.25\n[GunData002]\rTypeName=B\r",
       one + "GunData002@g.ini:5 ", 0, true},
      {"\n[GunData001]\n", "", 2, false},  // nothing read: no gun at all
      {"[GunData001]\nA=1\0\n[GunData002]\n"s, one, 0, false},  // no line ends behind a zero byte
      {"[GunData002]\n[gundata001]\n", "GunData002@g.ini:1 gundata001@g.ini:2 ", 0, false},
      {"[GunData001]\n#x\n[GunData001]\n[GunData002]", one + "GunData002@g.ini:4 ", 0, false},
      {"#include \"" + systemPath(include) + "\" ignored\n[GunData001]\n",
       "GunData001@g.ini:2 GunData002@" + include + ":1 ", 0, false},
      {full, one, 2, false},
      {"[GunData001]\nROF=6\nrof=7\n", one, 0, false},
      {"[GunData001]\nROF=6\n[GunData001]\n", one, 0, false},
      {"[GunData001]\n#include missing.ini\n", one, 1, false},
      {"[GunData001]\n" + std::string(262144, ';'), one, 1, false},
      {"[GunData001]\nROF=6e+2 rpm\n", one, 0, false},
      {"[GunData001]\nFireColor=1,0.0000004,1\n", one, 0, false},
      {"[GunData001]\nColour=red\n", one, 0, false},
      {"[GunData001]\nno equals sign\n", one, 0, false},
      {"x=1\n[GunData001]\n", "GunData001@g.ini:2 ", 0, false},
  };
  for (const auto& c : cases) {
    bool plain = false;
    GunTextScan scan = Check(c.text, &plain);
    std::string sections;
    for (const ScanSection& s : scan.sections) {
      sections += s.name + "@" + scan.files[s.file] + ":" + std::to_string(s.line) + " ";
    }
    EXPECT_EQ(sections, c.sections) << c.text.substr(0, 60);
    EXPECT_EQ(CountFindings(scan, FindingKind::kLoss), c.losses) << c.text.substr(0, 60);
    EXPECT_EQ(plain, c.plain) << c.text.substr(0, 60);
  }
}
