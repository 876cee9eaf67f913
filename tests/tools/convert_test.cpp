// Tests of tessarine-convert, run as a user would: from a shell, in another directory.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "core/core.h"
#include "fake_window.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "kernel_fixture.h"

namespace {

struct Outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs the converter with `arguments` (already quoted for the shell) in `directory`.
Outcome convert(const TempDir& scratch, const std::string& directory, const std::string& arguments) {
  std::string command = "cd '" + directory + "' && " TESS_CONVERT_BINARY " " + arguments + " >'" +
                        scratch.file("out.txt") + "' 2>'" + scratch.file("err.txt") + "'";
  int raw = std::system(command.c_str());
  return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readWholeFile(scratch.file("out.txt")),
          readWholeFile(scratch.file("err.txt"))};
}

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
  TempDir work;     // where the user's files are
  TempDir shell;    // where the user's shell stands
  TempDir scratch;  // captured output
};

TEST_F(ConvertTest, GivesTheSameBytesAsTheEditorsOwnSaveForRelativeAndAbsolutePaths) {
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

  Outcome absolute = convert(scratch, shell.path(),
                         "'" + work.file("guns.ini") + "' '" + work.file("absolute.ini") + "'");
  EXPECT_EQ(absolute.status, 0) << absolute.err;
  Outcome relative = convert(scratch, work.path() + "/..",
                         "'./" + work.path().substr(work.path().rfind('/') + 1) +
                             "/guns.ini' relative.ini");
  EXPECT_EQ(relative.status, 0) << relative.err;
  std::string relativeDir = work.path() + "/..";
  for (const char* extension : {".ini", ".dat"}) {
    std::string expected = readWholeFile(work.file(std::string("reference") + extension));
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(readWholeFile(work.file(std::string("absolute") + extension)), expected);
    EXPECT_EQ(readWholeFile(relativeDir + "/relative" + extension), expected);
  }
  std::remove((relativeDir + "/relative.ini").c_str());
  std::remove((relativeDir + "/relative.dat").c_str());

  Outcome dump = convert(scratch, work.path(), "--dump reference.dat");
  EXPECT_EQ(dump.status, 0) << dump.err;
  EXPECT_NE(dump.out.find("reference.dat: 400 record(s)"), std::string::npos);
  EXPECT_NE(dump.out.find("TypeName              = \"Gun 400\""), std::string::npos);
  EXPECT_NE(dump.out.find("FireInterval (s)"), std::string::npos);
  EXPECT_NE(dump.out.find("SlotD                 = -1"), std::string::npos);
}

TEST_F(ConvertTest, ErrorsGiveAMessageAndANonZeroStatus) {
  writeWholeFile(work.file("guns.ini"), generatedGuns(2));
  writeWholeFile(work.file("odd.dat"), std::string(4 + 560 + 1, '\0'));
  std::string blockedDat = work.file("blocked.dat");
  ASSERT_EQ(std::system(("mkdir '" + blockedDat + "'").c_str()), 0);  // CreateFile must fail
  struct Case {
    std::string arguments;
    int status;
    std::string message;
  } cases[] = {
      {"missing.ini out.ini", 1, "can't read missing.ini"},
      {"guns.ini no-dir/out.ini", 1, "can't write no-dir/out.ini"},
      {"guns.ini blocked.ini", 1, "Unable to create"},
      {"'back\\slash.ini' out.ini", 1, "backslash"},
      {"--dump odd.dat", 1, "is no gun data file"},
      {"--dump missing.dat", 1, "can't read"},
      {"", 2, "Usage:"},
      {"--bogus x", 2, "Usage:"},
  };
  for (const Case& c : cases) {
    Outcome run = convert(scratch, work.path(), c.arguments);
    EXPECT_EQ(run.status, c.status) << c.arguments;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << c.arguments << ": " << run.err;
  }
}

TEST_F(ConvertTest, SourceWithoutGunsConvertsToAnEmptyDocumentWithAWarning) {
  writeWholeFile(work.file("none.ini"), "[Other]\nKey=1\n");
  Outcome run = convert(scratch, work.path(), "none.ini empty.ini");
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.err.find("warning"), std::string::npos);
  EXPECT_EQ(readWholeFile(work.file("empty.dat")), std::string(4, '\0'));
  EXPECT_EQ(readWholeFile(work.file("empty.ini")), "");
  Outcome help = convert(scratch, work.path(), "--help");
  EXPECT_EQ(help.status, 0);
  EXPECT_NE(help.out.find("Usage:"), std::string::npos);
  Outcome version = convert(scratch, work.path(), "--version");
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("tessarine-convert ", 0), 0u);
}
