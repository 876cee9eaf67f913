// Tests of tessarine-convert, run as a user would: from a shell, in another directory.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/core.h"
#include "fake_window.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "kernel_fixture.h"
#include "program_run.h"

namespace {

// A gun data file of `count` guns with every key filled and values that vary.
std::string generatedGuns(int count) {
  std::string text;
  for (int i = 1; i <= count; i++) {
    char section[2048];
    std::snprintf(section, sizeof section,
                  "[GunData%03d]\nTypeName=Gun %d\nFullName=Generated gun number %d\n"
                  "Caliber=%d.%d\nROF=%d\nMuzzleVel=%d\nAmmoWt=0.%03d\nWarheadWt=0.%03d\n"
                  "Reliability=0.9\nAccuracy=0.%d\nAddLight=%s\nMaxLightRange=%d\n"
                  "FireColor=1,0.%d,0.25\nGunFireEffect=fx_%d\nGunFireSound=snd_%d\n"
                  "EffectClassName=Effect%d\nEffectTime=0.05\nTracerTexture=tracer_%d\n"
                  "TracerSize=0.2\nTracerDistFactor=1.1\nTracerLength=5\nMaxVisibleDist=%d\n"
                  "MaxStreakVisibleDist=%d\n\n",
                  i, i, i, 7 + i % 30, i % 10, 300 + i, 700 + i % 200, i % 1000, i % 500,
                  i % 10, i % 2 ? "TRUE" : "FALSE", i % 90, i % 10, i, i, i, i, 1000 + i, 500 + i);
    text += section;
  }
  return text;
}

}  // namespace

class ConvertTest : public ::testing::Test {
 protected:
  // Runs the converter with `arguments` (already quoted for the shell) in `directory`.
  ProgramOutcome Convert(const std::string& directory, const std::string& arguments) {
    return runProgram(TESS_CONVERT_BINARY, directory, arguments, scratch);
  }
  TempDir work;     // where the user's files are
  TempDir scratch;  // where the user's shell stands, and the captured output
};

TEST_F(ConvertTest, GivesTheSameBytesAsTheLibraryForRelativeAndAbsolutePaths) {
  std::string source = generatedGuns(400);
  ASSERT_LT(source.size(), 262144u);
  writeWholeFile(work.file("guns.ini"), source);
  ASSERT_EQ(CoreStartup(), 1);
  {
    FakeWindow window;
    GunFileLoad(&window, systemPath(work.file("guns.ini")).c_str());
    ASSERT_EQ(window.RowCount(), 400);
    ASSERT_EQ(GunFileSave(&window, systemPath(work.file("reference.ini")).c_str()), 1);
    GunListEmpty(&window);
  }
  CoreShutdown();
  std::string sibling = "../" + work.path().substr(work.path().rfind('/') + 1) + "/";
  for (std::string arguments : {"'" + work.file("guns.ini") + "' '" + work.file("out.ini") + "'",
                                "'" + sibling + "guns.ini' '" + sibling + "out.ini'"}) {
    ProgramOutcome run = Convert(scratch.path(), arguments);
    EXPECT_EQ(run.status, 0) << arguments << ": " << run.err;
    for (const char* extension : {".ini", ".dat"}) {
      std::string expected = readWholeFile(work.file(std::string("reference") + extension));
      ASSERT_FALSE(expected.empty());
      EXPECT_EQ(readWholeFile(work.file(std::string("out") + extension)), expected) << arguments;
      std::remove(work.file(std::string("out") + extension).c_str());
    }
  }
  ProgramOutcome dump = Convert(work.path(), "--dump reference.dat");
  EXPECT_EQ(dump.status, 0) << dump.err;
  for (const char* line : {"reference.dat: 400 record(s)", "TypeName              = \"Gun 400\"",
                           "FireInterval (s)", "SlotD                 = -1"}) {
    EXPECT_NE(dump.out.find(line), std::string::npos) << line;
  }
}

TEST_F(ConvertTest, EveryRunGivesItsMessageAndStatus) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(2));
  writeWholeFile(work.file("none.ini"), "[Other]\nKey=1\n");
  writeWholeFile(work.file("odd.dat"), std::string(4 + 560 + 1, '\0'));
  ASSERT_EQ(std::system(("mkdir '" + work.file("blocked.dat") + "'").c_str()), 0);
  const ProgramCase cases[] = {
      {"missing.ini out.ini", 1, "can't read missing.ini"},
      {"guns.ini no-dir/out.ini", 1, "can't write no-dir/out.ini"},
      {"guns.ini blocked.ini", 1, "can't write ./blocked.dat"},  // a directory
      {"guns.ini same.dat", 1, "both the text and the binary file"},
      {"guns.ini " + std::string(255, 'n'), 1, "too long"},  // no room for ".INI"
      {"'back\\slash.ini' out.ini", 1, "backslash"},
      {"--dump odd.dat", 1, "is no gun data file"},
      {"--dump missing.dat", 1, "can't read"},
      {"", 2, "Usage:"},
      {"--bogus x", 2, "Usage:"},
      {"none.ini empty.ini", 0, "warning"},
      {"--help", 0, "Usage:"},
      {"--version", 0, "tessarine-convert "},
  };
  expectRuns(TESS_CONVERT_BINARY, work.path(), cases, scratch);
  EXPECT_FALSE(std::filesystem::exists(work.file("blocked.ini"))) << "a refused target leaves nothing";
  EXPECT_EQ(readWholeFile(work.file("empty.dat")), std::string(4, '\0'));
  EXPECT_EQ(readWholeFile(work.file("empty.ini")), "");
}
