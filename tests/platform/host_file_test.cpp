#include "platform/host_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "kernel_fixture.h"

namespace fs = std::filesystem;

TEST(HostFile, HostPathsComingInAreConvertedOrRefused) {
  using R = HostPathResult;
  const struct { std::string path; R result; const char* says; } cases[] = {
      {"/tmp/guns/a.ini", R::kOk, ""}, {"guns/old/../../top.ini", R::kOk, ""},
      {"/" + std::string(258, 'a'), R::kOk, ""},  // 259 bytes: fits with its NUL
      {"/" + std::string(259, 'a'), R::kTooLong, "too long"},
      {"guns\\a.ini", R::kHasBackslash, "backslash"}, {"", R::kEmpty, "No file name"},
  };
  for (const auto& c : cases) {
    char out[kHostPathSize] = "stale";
    EXPECT_EQ(hostPathToSystem(c.path.c_str(), out, sizeof out), c.result) << c.path;
    EXPECT_EQ(std::string(out), c.result == R::kOk ? systemPath(c.path) : "") << c.path;
    EXPECT_NE(std::strstr(hostPathMessage(c.result), c.says), nullptr) << c.path;
  }
  char small[4];
  EXPECT_EQ(hostPathToSystem("abcdef", small, sizeof small), R::kTooLong) << "refused, never cut";
  EXPECT_EQ(hostPathToSystem(nullptr, small, sizeof small), R::kEmpty);
}

// A dangling link takes the first temporary name: creating through it would write elsewhere.
TEST(HostFile, CreatesUnderTheUmaskAndTemporaryFilesPastADanglingLink) {
  TempDir dir;
  for (mode_t mask : {022, 0, 077}) {
    const std::string path = dir.file("f" + std::to_string(mask));
    const mode_t old = umask(mask);
    EXPECT_EQ(hostFileClose(hostFileCreate(systemPath(path).c_str())), 0) << path;
    umask(old);
    EXPECT_EQ(fs::status(path).permissions(), fs::perms(0666 & ~mask)) << path;
  }
  fs::create_symlink(dir.file("nowhere"), dir.file("~tess0000.tmp"));
  char temporary[kHostPathSize];
  std::int32_t descriptor =
      hostFileCreateTemporary(systemPath(dir.file("x.cat")).c_str(), temporary);
  ASSERT_GE(descriptor, 0);
  EXPECT_EQ(std::string(temporary), systemPath(dir.file("~tess0001.tmp")));
  EXPECT_EQ(hostFileClose(descriptor), 0);
  EXPECT_FALSE(fs::exists(dir.file("nowhere")));
  EXPECT_EQ(hostFileCreateNew(temporary), -1) << "the name is taken now";
  EXPECT_EQ(hostFileCreateTemporary(systemPath(dir.file("none/x.cat")).c_str(), temporary), -1);
}
