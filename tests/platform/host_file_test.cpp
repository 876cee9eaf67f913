// Tests of the host file layer: host paths coming in, separators at the OS boundary, modes.
#include "platform/host_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "kernel_fixture.h"

// The first bytes of a file opened through its system path, or "<missing>".
static std::string head(const char* systemPath) {
  std::int32_t descriptor = hostFileOpenRead(systemPath, HostAccess::kSequential);
  char bytes[64];
  std::int32_t got = hostFileRead(descriptor, bytes, sizeof bytes);
  hostFileClose(descriptor);
  return got < 0 ? "<missing>" : std::string(bytes, got);
}

TEST(HostFile, HostPathsComingInReachTheirFilesOrAreRefused) {
  TempDir dir;
  std::filesystem::create_directories(dir.file("guns/old"));
  writeWholeFile(dir.file("guns/a.ini"), "a");
  writeWholeFile(dir.file("top.ini"), "top");
  const std::filesystem::path saved = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());
  using R = HostPathResult;
  const struct { std::string path; R result; const char* content; const char* says; } cases[] = {
      {dir.file("guns/a.ini"), R::kOk, "a", ""}, {"guns/old/../../top.ini", R::kOk, "top", ""},
      {"./guns/./a.ini", R::kOk, "a", ""},
      {"/" + std::string(258, 'a'), R::kOk, "<missing>", ""},  // 259 bytes: fits with its NUL
      {"/" + std::string(259, 'a'), R::kTooLong, "", "too long"},
      {"guns\\a.ini", R::kHasBackslash, "", "backslash"}, {"", R::kEmpty, "", "No file name"},
  };
  for (const auto& c : cases) {
    char out[kHostPathSize] = "stale";
    EXPECT_EQ(hostPathToSystem(c.path.c_str(), out, sizeof out), c.result) << c.path;
    EXPECT_EQ(std::string(out), c.result == R::kOk ? systemPath(c.path) : "") << c.path;
    EXPECT_EQ(c.result == R::kOk ? head(out) : "", c.content) << c.path;
    EXPECT_NE(std::strstr(hostPathMessage(c.result), c.says), nullptr) << c.path;
  }
  char small[4];
  EXPECT_EQ(hostPathToSystem("abcdef", small, sizeof small), R::kTooLong) << "refused, never cut";
  EXPECT_EQ(hostPathToSystem(nullptr, small, sizeof small), R::kEmpty);
  // The other calls that take a system path convert it too.
  std::FILE* stream = hostFileOpenStream(".\\guns\\a.ini", "rb");
  EXPECT_TRUE(stream != nullptr && std::fgetc(stream) == 'a' && std::fclose(stream) == 0);
  EXPECT_EQ(hostChangeDirectory("guns\\old"), 0);
  EXPECT_EQ(head("..\\a.ini"), "a");
  std::filesystem::current_path(saved);
}

TEST(HostFile, CreatesReadWriteForAllUnderTheUmask) {
  TempDir dir;
  for (mode_t mask : {022, 0, 077}) {
    const std::string path = dir.file("f" + std::to_string(mask));
    const mode_t old = umask(mask);
    const std::int32_t descriptor = hostFileCreate(systemPath(path).c_str());
    umask(old);
    EXPECT_EQ(hostFileClose(descriptor), 0) << path;
    EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(path).permissions()), 0666u & ~mask)
        << path;
  }
}

// A dangling link takes the first temporary name: creating through it would write elsewhere.
TEST(HostFile, TemporaryFilesAreNewEvenPastADanglingLink) {
  TempDir dir;
  std::filesystem::create_symlink(dir.file("nowhere"), dir.file("~tess0000.tmp"));
  char temporary[kHostPathSize];
  std::int32_t descriptor =
      hostFileCreateTemporary(systemPath(dir.file("x.cat")).c_str(), temporary);
  ASSERT_GE(descriptor, 0);
  EXPECT_EQ(std::string(temporary), systemPath(dir.file("~tess0001.tmp")));
  EXPECT_EQ(hostFileClose(descriptor), 0);
  EXPECT_FALSE(std::filesystem::exists(dir.file("nowhere")));
  EXPECT_EQ(hostFileCreateNew(temporary), -1) << "the name is taken now";
  EXPECT_EQ(hostFileCreateTemporary(systemPath(dir.file("none/x.cat")).c_str(), temporary), -1);
}
