// The gun text scanner and checker in the process: the scanner sees the load's sections on their
// lines, and a file that the quick look at the parsed file calls plain has nothing to report.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "config/ini_file.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "platform/number_text.h"
#include "tools/console_list_view.h"
#include "tools/gun_check.h"
#include "tools/gun_from_dat.h"
#include "tools/gun_text_scan.h"

using namespace std::string_literals;

class GunCheckTest : public KernelTest {
 protected:
  // Writes `text` as g.ini; its scan, checked against the load's gun count and the quick look.
  GunTextScan Check(const std::string& text, bool* plain) {
    writeWholeFile(dir.file("g.ini"), text);
    GunTextScan scan;
    EXPECT_TRUE(ScanGunText(path.c_str(), "g.ini", &scan));
    int guns = CheckGunText(&scan);
    {
      IniFile ini(path.c_str(), 0, 0);
      *plain = GunTextIsPlain(ini);
    }
    ConsoleListView view(nullptr);
    GunFileLoad(&view, path.c_str());
    EXPECT_EQ(guns, GunList.count) << "the scanner and the load disagree";
    GunListEmpty(&view);
    EXPECT_TRUE(!*plain || scan.findings.empty()) << "plain, yet reported: " << text.substr(0, 60);
    return scan;
  }
  TempDir dir;
  std::string path = systemPath(dir.file("g.ini"));
};

TEST_F(GunCheckTest, SeesTheSectionsOfTheLoadOnTheirLinesAndOnlyPlainFilesPassUnscanned) {
  std::string include = dir.file("inc b.ini"), late = dir.file("late.ini");
  writeWholeFile(include, "[GunData002]\nTypeName=B\n");
  writeWholeFile(late, "[GunData003]\n");
  // A first file that leaves one byte of the text limit: the next include gets nothing of its
  // text, and the one after it isn't read.
  std::string full = "[GunData001]\n#include " + systemPath(late) + "\n#include \"" +
                     systemPath(include) + "\"\n";
  full += std::string(262143 - full.size(), ';');
  const std::string one = "GunData001@g.ini:1 ";
  const struct { std::string text, sections; int losses; bool plain; } cases[] = {
      {"[GunData001]\r\nTypeName=A\r\n[GunData002]\rTypeName=B\r", one + "GunData002@g.ini:3 ", 0, true},
      {"[GunData001]\nCaliber= 12.7 \nAddLight=TRUE\nFireColor=1,0.5,0.25\n", one, 0, true},
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
      {"[GunData001]\nROF=6 rpm\n", one, 0, false},
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

// Decimals around the places where a float and its six-decimal text part (below and above 16,
// 64ths past 2^18, one to seven decimals, signs), against the plain round trip.
TEST_F(GunCheckTest, ReportsExactlyTheNumbersWhoseSixDecimalTextReadsBackDifferent) {
  auto changes = [](const std::string& text) {
    char written[400];
    auto value = static_cast<float>(numParseDouble(text.c_str()));
    numFormatFixed(written, sizeof written, static_cast<double>(value), 6);
    return static_cast<float>(numParseDouble(written)) != value;
  };
  std::vector<std::string> texts = {"15.999999", "16.000001", "262143.984375", "262144.015625",
                                    "-0.000000", "0.0000004", "1e-7", ".5", "00012.500000",
                                    "8388608.5", "16777217.000000", "123456789.123456"};
  const long wholes[] = {0, 1, 7, 15, 16, 17, 1000, 262143, 262144, 999999, 16777216};
  for (std::mt19937 random(20); texts.size() < 12000;) {
    long whole = random() % 2 ? wholes[random() % std::size(wholes)] : random() % 300000;
    auto decimals = static_cast<std::size_t>(random() % 8);
    long millionths = random() % 4 == 0 ? (random() % 64) * 15625 : random() % 1000000;
    std::string fraction = std::to_string(1000000 + millionths).substr(1, std::min<std::size_t>(decimals, 6));
    if (decimals == 7) fraction += std::to_string(random() % 10);
    texts.push_back((random() % 5 == 0 ? "-" : "") + std::to_string(whole) + "." + fraction);
  }
  for (std::size_t first = 0; first < texts.size(); first += 3000) {  // within the text limit
    std::string file;
    std::set<int> wanted, reported;  // lines of the values that change
    for (int gun = 1; gun <= 3000; gun++) {
      const std::string& text = texts[first + static_cast<std::size_t>(gun) - 1];
      // The colour's components are held within 0 to 1, so it takes the fractions only.
      std::string component = "0." + text.substr(text.find('.') + 1);
      char section[kGunSectionNameSize];
      GunSectionName(section, gun);
      file += "["s + section + "]\nCaliber=" + text + "\nFireColor=" + component + ",0.5," +
              component + "\n";
      if (changes(text)) wanted.insert(3 * gun - 1);
      if (changes(component)) wanted.insert(3 * gun);
    }
    ASSERT_FALSE(wanted.empty()) << "the texts should hold values that change";
    bool plain = true;
    for (const Finding& finding : Check(file, &plain).findings) {
      if (finding.text.find("reads back as") != std::string::npos) reported.insert(finding.line);
    }
    EXPECT_EQ(reported, wanted);
  }
}

TEST_F(GunCheckTest, NoMemoryForTheParseIsNeverPlainAndTheRebuildFromDatGivesEverythingBack) {
  writeWholeFile(dir.file("g.ini"), "[GunData001]\nTypeName=A\n[GunData002]\nTypeName=B\n");
  ConsoleListView view(nullptr);
  GunFileLoad(&view, path.c_str());
  ASSERT_EQ(GunFileSave(&view, path.c_str()), 1);
  GunListEmpty(&view);
  std::FILE* sink = std::fopen("/dev/null", "w");
  std::string dat = systemPath(dir.file("g.dat"));
  int failures = 0, unplain = 0;
  for (int nth = 1; nth <= 30; nth++) {
    std::int64_t blocks = LiveBlocks();
    hostHeapFailNth(nth);
    {
      IniFile ini(path.c_str(), 0, 0);
      hostHeapFailNth(0);
      char name[8] = "";
      ini.IniGetString("GunData002", "TypeName", "", name, sizeof name, 0);
      unplain += GunTextIsPlain(ini) ? 0 : 1;
      EXPECT_TRUE(!GunTextIsPlain(ini) || std::string(name) == "B") << "plain with a part lost" << nth;
    }
    hostHeapFailNth(nth);
    int done = GunListFromDat(&view, dat.c_str(), "g.dat", false, sink);
    hostHeapFailNth(0);
    failures += done ? 0 : 1;
    EXPECT_EQ(view.RowCount(), GunList.count) << nth;
    EXPECT_TRUE(!done || GunList.count == 2) << nth;
    GunListEmpty(&view);
    ASSERT_EQ(LiveBlocks(), blocks) << nth;
  }
  std::fclose(sink);
  EXPECT_GT(failures, 0) << "some allocation failed on the way";
  EXPECT_GT(unplain, 0) << "some allocation of the parse failed";
}
