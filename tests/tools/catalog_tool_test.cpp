// tessarine-catalog run as a user would: from a shell, in the directory of the files.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "catalog_bytes.h"
#include "core/core.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "program_run.h"

namespace fs = std::filesystem;

class CatalogToolTest : public ProgramTest {
 protected:
  CatalogToolTest() : ProgramTest(TESS_CATALOG_BINARY) { fs::create_directories(work.file("in")); }
  bool Empty() const { return fs::is_empty(work.file("in")); }
};

TEST_F(CatalogToolTest, CreateListExtractRoundTripsAndTheKernelServesEveryFile) {
  const struct { std::string name, stored; std::size_t size; } files[] = {
      {"a.b", "A.B", 0}, {"one.bin", "ONE.BIN", 1}, {"Page.dat", "PAGE.DAT", 4096},
      {"mega.DAT", "MEGA.DAT", 1 << 20},  // and 255 bytes, the longest name Linux allows:
      {std::string(251, 'n') + ".txt", std::string(251, 'N') + ".TXT", 77}};
  std::string names;
  std::vector<std::pair<std::string, std::string>> stored;  // the stored name, the bytes
  for (const auto& [name, upper, size] : files) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; i++) bytes[i] = static_cast<char>((i * 131 + name.size() + i / 509) % 251);
    writeWholeFile(work.file(name), bytes);
    stored.emplace_back(upper, bytes);
    names += " '" + name + "'";
  }
  ASSERT_EQ(Run("create packed.cat" + names).status, 0);
  ProgramOutcome listed = Run("list --long packed.cat");
  // The tables take 28 + 12 + 16 + 17 + 17 + 264 + 6 + 8 + 8 + 8 bytes.
  EXPECT_NE(listed.out.find("         0        384  yes   A.B\n"), std::string::npos) << listed.out;
  EXPECT_EQ(Run("extract packed.cat -C in").status, 0);  // it reads through gFMG
  for (const auto& [name, bytes] : stored) {
    EXPECT_EQ(readWholeFile(work.file("in/" + name)), bytes) << name;
  }
  ASSERT_EQ(CoreStartup(), 1);
  gFMG->SetSearchDirectory(systemPath(work.file("in")).c_str());
  ASSERT_EQ(gFMG->OpenCatalog(systemPath(work.file("packed.cat")).c_str()), 1);
  writeWholeFile(work.file("in/one.bin"), "loose");
  std::int32_t handle = gFMG->OpenFile("one.bin");
  char loose[8];
  EXPECT_EQ(gFMG->ReadFile(handle, loose, sizeof loose), 5) << "the disk file still wins";
  gFMG->CloseFile(handle);
  gFMG->CloseAllCatalogs();
  CoreShutdown();
}

TEST_F(CatalogToolTest, MalformedCatalogsAreRefusedWithTheirReasonAndNothingIsWritten) {
  writeWholeFile(work.file("a.dat"), "aaaaa");
  writeWholeFile(work.file("b.ini"), "bbb");
  ASSERT_EQ(Run("create good.cat a.dat b.ini").status, 0);
  const std::string good = readWholeFile(work.file("good.cat")), cut = "unable to read ";
  std::vector<std::pair<std::string, std::string>> cases;  // bytes, the start of the reason
  for (std::size_t size = 0; size < good.size(); size++) {
    cases.emplace_back(good.substr(0, size),
                       size < 28   ? "Error reading CatalogHeader for bad.cat!"
                       : size < 56 ? cut + "filename " + std::to_string((size - 28) / 14) + "!"
                       : size < 72 ? cut + "extension " + std::to_string((size - 56) / 8) + "!"
                                   : "bad.cat is not a whole catalog: ");
  }
  cases.emplace_back(std::string(good).replace(28, 4, le32(1072)).replace(42, 4, le32(1077)),
                     "A.DAT (entry 0) ends at byte 1077, past the file's end at 80");
  for (const auto& [bytes, reason] : cases) {
    writeWholeFile(work.file("bad.cat"), bytes);
    for (const char* command : {"list bad.cat", "extract bad.cat -C in"}) {
      ProgramOutcome run = Run(command);
      EXPECT_TRUE(run.status == 1 && run.err.find(reason) != std::string::npos && Empty())
          << command << " " << bytes.size() << ": " << run.err;
    }
  }
}

TEST_F(CatalogToolTest, EveryRunGivesItsMessageAndStatusAndWritesNothingOutsideItsDirectory) {
  RawCatalog().Add("../ESCAPE.DAT", "x").Add("SUB/DEEP.DAT", "y").Add("..\\UP.DAT", "z")
      .Add("OK.DAT", "ok").Add("ok.dat", "hidden").Add("NOEXT", "n").WriteTo(work.file("odd.cat"));
  writeWholeFile(work.file("a.dat"), "a");
  writeWholeFile(work.file("A.DAT"), "A");
  writeWholeFile(work.file("kept.cat"), "an older catalog");
  ASSERT_EQ(Run("create x.cat a.dat").status, 0);
  const ProgramCase cases[] = {
      {"create kept.cat a.dat A.DAT", 1, "A.DAT: another file is already stored under this name"},
      {"create kept.cat noext missing.dat", 1, "missing.dat: can't read the file"},
      {"create kept.cat 'back\\slash.dat'", 1, "backslash"},
      {"create no-dir/x.cat a.dat", 1, "no-dir/x.cat: can't create a temporary file"},
      {"extract x.cat gone.dat a.dat -C in", 1, "gone.dat: not in x.cat"},
      {"extract x.cat -C no-dir", 1, "no-dir/A.DAT: can't create a file in the target directory"},
      {"list missing.cat", 1, "Unable to open catalog file missing.cat!"},
      {"extract x.cat -C", 2, "Usage:"},
      {"--help", 0, "Usage:"},
      {"--version", 0, "tessarine-catalog "},
      {"extract odd.cat -C in", 1, "../ESCAPE.DAT: not extracted: its name holds a directory"},
      {"extract odd.cat -C in", 1, "SUB/DEEP.DAT: not extracted: its name holds a directory"},
      {"extract odd.cat -C in", 1, "..\\UP.DAT: not extracted: its name holds a directory"},
      {"extract odd.cat -C in", 1, "OK.DAT: not extracted: an earlier entry has the same name"},
      {"extract odd.cat -C in", 1, "NOEXT: not extracted: its name has no extension"},
  };
  ExpectRuns(cases);
  EXPECT_EQ(readWholeFile(work.file("kept.cat")), "an older catalog") << "refusals write nothing";
  EXPECT_TRUE(Empty());
  EXPECT_FALSE(fs::exists(work.file("no-dir")) || fs::exists(work.file("ESCAPE.DAT")));
  EXPECT_NE(Run("list --long odd.cat").out.find("no    OK.DAT  (an earlier entry has the same name)"),
            std::string::npos);
  // A link in the directory is replaced, never written through.
  writeWholeFile(work.file("target.txt"), "outside");
  fs::create_symlink("../target.txt", work.file("in/OK.DAT"));
  EXPECT_EQ(Run("extract odd.cat ok.DAT -C in").status, 0);
  EXPECT_FALSE(fs::is_symlink(work.file("in/OK.DAT")));
  EXPECT_EQ(readWholeFile(work.file("in/OK.DAT")) + readWholeFile(work.file("target.txt")),
            "okoutside");
}
