// tessarine-convert run as a user would: from a shell, in the directory of the user's files.
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>
#include <sstream>
#include <string>

#include "core/core.h"
#include "fake_window.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "kernel_fixture.h"
#include "program_run.h"

namespace {

using namespace std::string_literals;
namespace fs = std::filesystem;

std::string generatedGuns(int count, bool keys = true) {
  std::string text;
  for (int i = 1; i <= count; i++) {
    char section[kGunSectionNameSize];
    GunSectionName(section, i);
    text += "["s + section + "]\n";
    if (!keys) continue;
    text += "TypeName=Gun " + std::to_string(i) + "\nCaliber=" + std::to_string(7 + i % 30) +
            ".5\nROF=" + std::to_string(300 + i) + "\nAmmoWt=0.0" + std::to_string(i % 90 + 10) +
            "\nAddLight=" + (i % 2 ? "TRUE" : "FALSE") + "\nFireColor=1,0." +
            std::to_string(i % 10) + ",0.25\nTracerLength=5\n\n";
  }
  return text;
}

bool holds(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace

class ConvertTest : public ProgramTest {
 protected:
  ConvertTest() : ProgramTest(TESS_CONVERT_BINARY) {}
  void ExpectEditorsBytes(const std::string& source, const std::string& target) {
    ASSERT_EQ(CoreStartup(), 1);
    {
      FakeWindow window;
      GunFileLoad(&window, systemPath(work.file(source)).c_str());
      EXPECT_EQ(GunFileSave(&window, systemPath(scratch.file("editor.ini")).c_str()), 1);
      GunListEmpty(&window);
    }
    CoreShutdown();
    EXPECT_EQ(readWholeFile(work.file(target + ".ini")), readWholeFile(scratch.file("editor.ini")));
    EXPECT_EQ(readWholeFile(work.file(target + ".dat")), readWholeFile(scratch.file("editor.dat")));
  }
};

TEST_F(ConvertTest, GivesTheEditorsBytesAndLosingGunsFailsUnlessAllowed) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(400));
  std::string sibling = "'../" + work.path().substr(work.path().rfind('/') + 1) + "/guns.ini' ";
  ASSERT_EQ(Run(sibling + "'" + work.file("out.ini") + "'", scratch.path()).status, 0);
  ExpectEditorsBytes("guns.ini", "out");
  fs::permissions(work.file("out.ini"), fs::perms(0640));  // a replaced file keeps its mode
  const std::string big = generatedGuns(3000);  // more than the text limit holds
  const struct { std::string name, text, message; } cases[] = {
      {"big", big, "at the 262144-byte text limit (the file has " + std::to_string(big.size())},
      {"gap", "[GunData001]\n[GunData002]\nTypeName=B\n[GunData004]\n",
       "gap.ini:4: section [GunData004] is not read: there is no GunData003"},
      {"second", "[GunData002]\nTypeName=B\n", "second.ini: no gun section GunData001"},
      {"noise", std::string(5000, '\x7f').replace(100, 1, "\n"), "no gun section GunData001"},
      {"empties", generatedGuns(1000, false), "guns 892 to 1000 lose keys in"},  // a full arena
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    writeWholeFile(work.file(c.name + ".ini"), c.text);
    ProgramOutcome refused = Run(c.name + ".ini " + c.name + ".ini");  // TARGET = SOURCE
    EXPECT_TRUE(refused.status == 1 && holds(refused.err, c.message) &&
                holds(refused.err, "nothing was written"))
        << refused.err;
    EXPECT_EQ(readWholeFile(work.file(c.name + ".ini")), c.text) << "the source stays whole";
    EXPECT_FALSE(fs::exists(work.file(c.name + ".dat")));
    ProgramOutcome allowed = Run("--allow-loss " + c.name + ".ini out.ini");
    EXPECT_TRUE(allowed.status == 0 && holds(allowed.err, "warning: ")) << allowed.err;
    ExpectEditorsBytes(c.name + ".ini", "out");
  }
  EXPECT_TRUE(holds(Run("--allow-loss empties.ini out.ini").err,
                    "bytes; the editor loads only the first 262144"));
  EXPECT_EQ(fs::status(work.file("out.ini")).permissions(), fs::perms(0640));
}

// A full disk: a small tmpfs where the test may mount one, else a file size limit.
TEST_F(ConvertTest, AFailedWriteLeavesTheEarlierTargetAndNamesTheReason) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(200));
  TempDir disk;
  bool mounted = mount("tmpfs", disk.path().c_str(), "tmpfs", 0, "size=64k") == 0;
  writeWholeFile(disk.file("out.ini"), "earlier text");
  writeWholeFile(disk.file("out.dat"), "earlier binary");
  ProgramOutcome limited = Run("guns.ini '" + disk.file("out.ini") + "'", work.path(),
                               mounted ? "" : "trap '' XFSZ; ulimit -f 64; ");
  EXPECT_EQ(limited.status, 1);
  EXPECT_TRUE(holds(limited.err, "can't write " + disk.file("out.ini") + ": writing " +
                                     disk.file("out.ini.~")) &&
              holds(limited.err, mounted ? "No space left on device" : "File too large"))
      << limited.err;
  EXPECT_EQ(readWholeFile(disk.file("out.ini")) + readWholeFile(disk.file("out.dat")),
            "earlier textearlier binary");
  EXPECT_EQ(std::distance(fs::directory_iterator(disk.path()), {}), 2) << "no temporary file";
  if (mounted) umount(disk.path().c_str());
}

TEST_F(ConvertTest, CheckReportsEachFaultOnItsLine) {
  writeWholeFile(work.file("faults.ini"), "[GunData001]\nTypeName=" + std::string(70, 'T') +
                 "\nCaliber=twelve\nROF=600 rpm\r\nAddLight=yes\nAmmoWt=0.0000004\nColour=red\n"
                 "ROF=700\nFireColor=1,0.5\n# a note\nMuzzleVel=800\n[GunData001]\n[GunData003]\n"
                 "#include missing.ini\n#include faults.ini\n");
  // One line for each fault, in order, on its line.
  std::istringstream lines(Run("--check faults.ini").out);
  for (const std::string report :
       {"2: TypeName is 70 bytes long; its 64-byte field keeps 63 and loses 7",
        "3: Caliber \"twelve\" is not a number", "4: ROF \"600 rpm\" has text behind",
        "5: AddLight \"yes\" is neither", "6: AmmoWt 0.0000004: the .dat gets 4e-07",
        "7: unknown key \"Colour\"", "8: key ROF repeats the one at line 4",
        "9: FireColor \"1,0.5\" has fewer", "11: key line outside any section",
        "12: section [GunData001] repeats the one at faults.ini:1, which counts",
        "13: section [GunData003] is not read", "14: #include \"missing.ini\"",
        "15: #include \"faults.ini\" forms a cycle", ""}) {
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line.substr(0, report.size() + 11), report.empty() ? "" : "faults.ini:" + report);
  }
  ProgramOutcome warned = Run("faults.ini out.ini");  // a conversion warns of the same changes
  EXPECT_TRUE(holds(warned.err, "warning: faults.ini:3: Caliber \"twelve\"")) << warned.err;
}

TEST_F(ConvertTest, EveryRunGivesItsMessageAndStatusAndFromDatRebuildsTheText) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(3));
  ASSERT_EQ(Run("guns.ini first.ini").status, 0);
  ProgramOutcome back = Run("--from-dat first.dat back.ini");
  EXPECT_EQ(back.status + back.err.size(), 0u) << back.err;
  ASSERT_EQ(Run("back.ini again.ini").status, 0);
  std::string dat = readWholeFile(work.file("first.dat")), stale = dat;
  EXPECT_EQ(readWholeFile(work.file("again.dat")) + readWholeFile(work.file("back.dat")),
            dat + dat);
  stale[4 + 560 + 224] ^= 1;  // record 2's FireInterval
  writeWholeFile(work.file("stale.dat"), stale);
  writeWholeFile(work.file("cut.dat"), dat.substr(0, 4 + 560 + 100));
  writeWholeFile(work.file("text.dat"), "not a gun file at all");
  writeWholeFile(work.file("-dash.ini"), generatedGuns(1));
  fs::create_symlink("/dev/full", work.file("full.ini"));
  fs::create_directory(work.file("folder"));
  const ProgramCase cases[] = {
      {"--from-dat stale.dat fixed.ini", 0, "warning: stale.dat: record 2 (Gun 2): its stored "
                                            "derived values differ from the recomputed ones"},
      {"--from-dat cut.dat x.ini", 1, "cut.dat ends inside record 2: 664 bytes, where the count 3 "
                                      "it begins with asks for 1684 (4 + 560 x 3)"},
      {"--from-dat text.dat x.ini", 1, "text.dat is no gun data file: 21 bytes"},
      {"-h", 0, "Usage:"},
      {"-- -dash.ini out.ini", 0, ""},
      {"--bogus guns.ini out.ini", 2, "unknown option '--bogus'"},
      {"", 2, "a conversion takes two file names, not 0"},
      {"--allow-loss --check guns.ini", 2, "--allow-loss can't be used with --check"},
      {"guns.ini same.dat", 1, "both the text and the binary file"},
      {"guns.ini " + std::string(255, 'n'), 1, "too long"},  // no room for ".INI"
      {"'back\\slash.ini' out.ini", 1, "backslash"},
      {"guns.ini full.ini", 1, "full.ini is a device, not a file"},
      {"guns.ini folder", 1, "folder is a directory, not a file"},
      {"guns.ini no-dir/out.ini", 1, "can't write no-dir/out.ini: creating no-dir/out.ini.~"},
      {"guns no-dir.ini", 1, "can't read guns.INI: No such file or directory"},
      {"--check '" TESS_SOURCE_DIR "/examples/guns.ini'", 0, ""},  // nothing to report
      {"--check guns.ini missing.ini", 1, "can't read missing.ini: No such file or directory"},
      {"--dump cut.dat", 1, "cut.dat: 3 record(s)\n\nRecord 1 (offset 4)"},  // whole ones only
  };
  ExpectRuns(cases);
  // The refusals wrote nothing: 13 files above, and fixed and out, each .ini and .dat.
  EXPECT_EQ(std::distance(fs::directory_iterator(work.path()), {}), 17);
  EXPECT_EQ(readWholeFile(work.file("fixed.dat")).substr(4 + 560, 560), dat.substr(4 + 560, 560));
}
