// tessarine-convert run as a user would: from a shell, in the directory of the user's files.
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <cstring>
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

// A gun data file of `count` guns whose values vary (the save writes every key anyway).
std::string generatedGuns(int count) {
  std::string text;
  for (int i = 1; i <= count; i++) {
    char section[kGunSectionNameSize];
    GunSectionName(section, i);
    text += "["s + section + "]\nTypeName=Gun " + std::to_string(i) + "\nCaliber=" +
            std::to_string(7 + i % 30) + ".5\nROF=" + std::to_string(300 + i) + "\nAmmoWt=0.0" +
            std::to_string(i % 90 + 10) + "\nAddLight=" + (i % 2 ? "TRUE" : "FALSE") +
            "\nFireColor=1,0." + std::to_string(i % 10) + ",0.25\nTracerLength=5\n\n";
  }
  return text;
}

std::size_t entries(const std::string& directory) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(directory), {}));
}

}  // namespace

class ConvertTest : public ProgramTest {
 protected:
  ConvertTest() : ProgramTest(TESS_CONVERT_BINARY) {}
  // The conversion of `source` must give the editor's Save of what its Open loaded.
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
  std::string sibling = "../" + work.path().substr(work.path().rfind('/') + 1) + "/";
  ASSERT_EQ(Run("'" + sibling + "guns.ini' '" + work.file("out.ini") + "'", scratch.path()).status, 0);
  ExpectEditorsBytes("guns.ini", "out");
  std::string big = generatedGuns(3000), empties;  // more than the text limit holds
  for (int i = 1; i <= 1000; i++) empties += "[GunData" + std::to_string(i < 1000 ? i + 1000 : i).substr(i < 1000) + "]\n";
  const struct { std::string name, text, message; } cases[] = {
      {"big", big, "the load stops here, at the 262144-byte text limit (the file has " + std::to_string(big.size())},
      {"gap", "[GunData001]\nTypeName=A\n[GunData002]\nTypeName=B\n[GunData004]\nTypeName=D\n",
       "gap.ini:5: section [GunData004] is not read: there is no GunData003"},
      {"second", "[GunData002]\nTypeName=B\n", "second.ini: no gun section GunData001"},
      {"noise", std::string(5000, '\x7f').replace(100, 1, "\n"), "no gun section GunData001"},
      {"empties", empties, "guns 892 to 1000 lose keys in"},  // the save's arena is full
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    writeWholeFile(work.file(c.name + ".ini"), c.text);
    ProgramOutcome refused = Run(c.name + ".ini " + c.name + ".ini");  // TARGET = SOURCE
    EXPECT_EQ(refused.status, 1);
    for (const std::string& part : {c.message, "nothing was written"s}) {
      EXPECT_NE(refused.err.find(part), std::string::npos) << refused.err;
    }
    EXPECT_EQ(readWholeFile(work.file(c.name + ".ini")), c.text) << "the source stays whole";
    EXPECT_FALSE(fs::exists(work.file(c.name + ".dat")));
    ProgramOutcome allowed = Run("--allow-loss " + c.name + ".ini out.ini");
    EXPECT_TRUE(allowed.status == 0 && allowed.err.find("warning: ") != std::string::npos) << allowed.err;
    ExpectEditorsBytes(c.name + ".ini", "out");
  }
  EXPECT_NE(Run("--allow-loss empties.ini out.ini").err.find("bytes; the editor loads only the "
                                                              "first 262144"), std::string::npos);
}

// A full disk: a small tmpfs where the test may mount one; elsewhere a file size limit, which
// fails the writes the same way.
TEST_F(ConvertTest, AFailedWriteLeavesTheEarlierTargetAndNamesTheReason) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(200));
  TempDir disk;
  bool mounted = mount("tmpfs", disk.path().c_str(), "tmpfs", 0, "size=64k") == 0;
  writeWholeFile(disk.file("out.ini"), "earlier text");
  writeWholeFile(disk.file("out.dat"), "earlier binary");
  ProgramOutcome limited = Run("guns.ini '" + disk.file("out.ini") + "'", work.path(),
                               mounted ? "" : "trap '' XFSZ; ulimit -f 64; ");
  EXPECT_EQ(limited.status, 1);
  EXPECT_NE(limited.err.find("can't write " + disk.file("out.ini") + ": writing " +
                             disk.file("out.ini.~")), std::string::npos) << limited.err;
  EXPECT_NE(limited.err.find(mounted ? "No space left on device" : "File too large"),
            std::string::npos) << limited.err;
  EXPECT_EQ(readWholeFile(disk.file("out.ini")) + readWholeFile(disk.file("out.dat")),
            "earlier textearlier binary");
  EXPECT_EQ(entries(disk.path()), 2u) << "no temporary file is left";
  if (mounted) umount(disk.path().c_str());
  writeWholeFile(work.file("kept.ini"), "earlier");
  fs::permissions(work.file("kept.ini"), fs::perms(0640));
  ASSERT_EQ(Run("guns.ini kept.ini").status, 0);
  EXPECT_EQ(fs::status(work.file("kept.ini")).permissions(), fs::perms(0640)) << "kept as replaced";
}

TEST_F(ConvertTest, CheckReportsEachFaultOnItsLine) {
  ProgramOutcome clean = Run("--check '" TESS_SOURCE_DIR "/examples/guns.ini'", scratch.path());
  EXPECT_EQ(clean.status + clean.out.size(), 0u) << clean.out << clean.err;
  writeWholeFile(work.file("loop.ini"), "#include faults.ini\n");
  writeWholeFile(work.file("faults.ini"), "[GunData001]\nTypeName=" + std::string(70, 'T') +
                 "\nCaliber=twelve\nROF=600 rpm\r\nAddLight=yes\nAmmoWt=0.0000004\nColour=red\n"
                 "ROF=700\nFireColor=1,0.5\n# a note\nMuzzleVel=800\n[GunData001]\n[GunData003]\n"
                 "#include missing.ini\n#include loop.ini\n");
  // One line for each fault, in order, on its line: the start of each is enough.
  std::istringstream lines(Run("--check faults.ini").out);
  for (const char* report : {
           "faults.ini:2: TypeName is 70 bytes long; its 64-byte field keeps 63 and loses 7",
           "faults.ini:3: Caliber \"twelve\" is not a number",
           "faults.ini:4: ROF \"600 rpm\" has text behind the number",
           "faults.ini:5: AddLight \"yes\" is neither TRUE nor FALSE",
           "faults.ini:6: AmmoWt 0.0000004: the .dat gets 4e-07 but the text file is written "
           "0.000000",
           "faults.ini:7: unknown key \"Colour\"",
           "faults.ini:8: key ROF repeats the one at line 4, which counts",
           "faults.ini:9: FireColor \"1,0.5\" has fewer than three components",
           "faults.ini:11: key line outside any section's key list",
           "faults.ini:12: section [GunData001] repeats the one at faults.ini:1, which counts",
           "faults.ini:13: section [GunData003] is not read: there is no GunData002",
           "faults.ini:14: #include \"missing.ini\": the file can't be read",
           "loop.ini:1: #include \"faults.ini\" forms a cycle (faults.ini -> loop.ini -> "
           "faults.ini)", ""}) {
    std::string line;
    EXPECT_EQ(std::getline(lines, line) ? line.substr(0, std::strlen(report)) : "", report);
  }
  ProgramOutcome warned = Run("faults.ini out.ini");  // a conversion warns of the same changes
  EXPECT_NE(warned.err.find("warning: faults.ini:3: Caliber \"twelve\""), std::string::npos);
}

TEST_F(ConvertTest, FromDatRebuildsTheTextAndNamesStaleRecords) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(3));
  ASSERT_EQ(Run("guns.ini first.ini").status, 0);
  ProgramOutcome back = Run("--from-dat first.dat back.ini");
  EXPECT_EQ(back.status + back.err.size(), 0u) << back.err;
  ASSERT_EQ(Run("back.ini again.ini").status, 0);
  std::string dat = readWholeFile(work.file("first.dat"));
  EXPECT_EQ(readWholeFile(work.file("again.dat")) + readWholeFile(work.file("back.dat")), dat + dat);
  std::string stale = dat;
  stale[4 + 560 + 224] ^= 1;            // record 2's FireInterval
  stale[4 + 2 * 560 + 204 + 3] = 0x10;  // record 3's AmmoWt: a float too small for six decimals
  writeWholeFile(work.file("stale.dat"), stale);
  writeWholeFile(work.file("cut.dat"), dat.substr(0, 4 + 560 + 100));
  writeWholeFile(work.file("text.dat"), "not a gun file at all");
  const ProgramCase cases[] = {
      {"--from-dat stale.dat fixed.ini", 0, "warning: stale.dat: record 2 (Gun 2): its stored "
                                            "derived values differ from the recomputed ones "
                                            "(FireInterval)"},
      {"--from-dat stale.dat fixed.ini", 0, "record 3 (Gun 3): AmmoWt: the .dat gets"},
      {"--from-dat cut.dat x.ini", 1, "cut.dat ends inside record 2: 664 bytes, where the count 3 "
                                      "it begins with asks for 1684 (4 + 560 x 3)"},
      {"--from-dat text.dat x.ini", 1, "text.dat is no gun data file: 21 bytes"},
      {"--dump cut.dat", 1, "cut.dat ends inside record 2"},
      {"--from-dat --allow-loss cut.dat x.ini", 0, "warning: cut.dat ends inside record 2"},
  };
  ExpectRuns(cases);
  EXPECT_EQ(readWholeFile(work.file("fixed.dat")).substr(4 + 560, 560), dat.substr(4 + 560, 560));
  EXPECT_EQ(readWholeFile(work.file("x.dat")), "\x01\0\0\0"s + dat.substr(4, 560));
  ProgramOutcome dump = Run("--dump cut.dat");
  EXPECT_NE(dump.out.find("Record 1 (offset 4)"), std::string::npos) << "the whole record is shown";
  EXPECT_NE(dump.out.find("FireInterval (s)"), std::string::npos);
  EXPECT_EQ(dump.out.find("Record 2"), std::string::npos);
}

TEST_F(ConvertTest, OptionsAndRefusalsAsUsersExpect) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(2));
  writeWholeFile(work.file("-dash.ini"), generatedGuns(1));
  fs::create_symlink("/dev/full", work.file("full.ini"));
  fs::create_directory(work.file("folder")), fs::create_directory(work.file("folder.ini"));
  const ProgramCase cases[] = {
      {"-h", 0, "Usage:"},
      {"--version", 0, "tessarine-convert 0."},
      {"-- -dash.ini out.ini", 0, ""},
      {"--bogus guns.ini out.ini", 2, "unknown option '--bogus'"},
      {"", 2, "a conversion takes two file names, not 0"},
      {"--check", 2, "--check takes one file name or more, not 0"},
      {"--dump a b", 2, "--dump takes one file name, not 2"},
      {"--check --dump a", 2, "--dump can't be combined with another mode"},
      {"--allow-loss --check guns.ini", 2, "--allow-loss can't be used with --check"},
      {"guns.ini same.dat", 1, "both the text and the binary file"},
      {"guns.ini " + std::string(255, 'n'), 1, "too long"},  // no room for ".INI"
      {"'back\\slash.ini' out.ini", 1, "backslash"},
      {"guns.ini full.ini", 1, "full.ini is a device, not a file"},
      {"guns.ini folder", 1, "folder is a directory, not a file"},
      {"guns.ini no-dir/out.ini", 1, "can't write no-dir/out.ini: creating no-dir/out.ini.~"},
      {"guns no-dir.ini", 1, "can't read guns.INI: No such file or directory"},
      {"folder.ini x.ini", 1, "can't read folder.ini: Is a directory"},
      {"--check guns.ini missing.ini", 1, "can't read missing.ini: No such file or directory"},
  };
  ExpectRuns(cases);
  EXPECT_EQ(entries(work.path()), 7u) << "the refusals wrote nothing";  // out.ini, out.dat
}
