// Tests of the path helpers: the backslash rules, the cuts at `size`, and null or empty input.
#include "base/path_util.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "kernel_fixture.h"

namespace {

enum Helper {
  kCheckFilePath,
  kCheckFilename,
  kGetFilePath,
  kGetFileExtension,
  kRemoveFilePath,
  kSetFileExtension
};

const char* helperName(Helper helper) {
  switch (helper) {
    case kCheckFilePath:
      return "fmgCheckFilePath";
    case kCheckFilename:
      return "fmgCheckFilename";
    case kGetFilePath:
      return "fmgGetFilePath";
    case kGetFileExtension:
      return "fmgGetFileExtension";
    case kRemoveFilePath:
      return "fmgRemoveFilePath";
    case kSetFileExtension:
      return "fmgSetFileExtension";
  }
  return "";
}

// Runs one helper into a 300-byte buffer prefilled with 'x', so a write past `size` shows.
std::string run(Helper helper, const char* directory, const char* text, const char* extension,
                int size, std::string* spill = nullptr) {
  char output[300];
  std::memset(output, 'x', sizeof output);
  switch (helper) {
    case kCheckFilePath:
      fmgCheckFilePath(directory, text, output, size);
      break;
    case kCheckFilename:
      fmgCheckFilename(directory, text, extension, output, size);
      break;
    case kGetFilePath:
      fmgGetFilePath(text, output, size);
      break;
    case kGetFileExtension:
      fmgGetFileExtension(text, output, size);
      break;
    case kRemoveFilePath:
      fmgRemoveFilePath(text, output, size);
      break;
    case kSetFileExtension:
      fmgSetFileExtension(text, extension, output, size);
      break;
  }
  if (spill) *spill = std::string(output + size, 4);
  return std::string(output, strnlen(output, static_cast<std::size_t>(size)));
}

struct Case {
  Helper helper;
  const char* directory;
  const char* text;  // the name, or the path
  const char* extension;
  int size;
  const char* expected;
};

const Case kCases[] = {
    {kCheckFilePath, nullptr, "gun.ini", nullptr, 260, ".\\gun.ini"},
    {kCheckFilePath, "data", "gun.ini", nullptr, 260, "data\\gun.ini"},
    {kCheckFilePath, "data\\", "gun.ini", nullptr, 260, "data\\gun.ini"},
    {kCheckFilePath, "", "gun.ini", nullptr, 260, "gun.ini"},
    {kCheckFilePath, "data", "sub\\gun.ini", nullptr, 260, "sub\\gun.ini"},
    {kCheckFilePath, "data", "c:gun.ini", nullptr, 260, "data\\c:gun.ini"},
    {kCheckFilePath, "data", "a/gun.ini", nullptr, 260, "data\\a/gun.ini"},
    {kCheckFilePath, "data", "gun.ini", nullptr, 9, "data\\gun"},
    {kCheckFilePath, "data", "gun.ini", nullptr, 6, "data\\"},
    {kCheckFilePath, "data", "gun.ini", nullptr, 5, "data"},
    {kCheckFilePath, "data", "sub\\gun.ini", nullptr, 5, "sub\\"},
    {kCheckFilePath, nullptr, "gun.ini", nullptr, 2, "."},
    {kCheckFilename, nullptr, "gun", "ini", 260, ".\\gun.ini"},
    {kCheckFilename, nullptr, "gun", ".ini", 260, ".\\gun.ini"},
    {kCheckFilename, nullptr, "gun.txt", "ini", 260, ".\\gun.txt"},
    {kCheckFilename, nullptr, "gun.", "ini", 260, ".\\gun."},
    {kCheckFilename, nullptr, "..\\gun", "ini", 260, "..\\gun.ini"},
    {kCheckFilename, nullptr, "a.b\\gun", "ini", 260, "a.b\\gun"},
    {kCheckFilename, nullptr, "gun", "", 260, ".\\gun."},
    {kCheckFilename, nullptr, "gun", nullptr, 260, ".\\gun"},
    {kCheckFilename, "data", "gun", "ini", 10, "data\\gun."},
    {kCheckFilename, "data", "gun", "ini", 11, "data\\gun.i"},
    {kCheckFilename, "data", "gun", ".ini", 10, "data\\gun."},
    {kCheckFilename, "data", "gun", "ini", 9, "data\\gun"},
    {kGetFilePath, nullptr, "c:\\data\\gun.ini", nullptr, 260, "c:\\data"},
    {kGetFilePath, nullptr, "gun.ini", nullptr, 260, ".\\"},
    {kGetFilePath, nullptr, "\\gun.ini", nullptr, 260, ""},
    {kGetFilePath, nullptr, "/home/ann/gun.ini", nullptr, 260, ".\\"},
    {kGetFilePath, nullptr, "gun.ini", nullptr, 2, "."},
    {kGetFilePath, nullptr, "data\\sub\\gun.ini", nullptr, 10, "data\\sub"},
    {kGetFileExtension, nullptr, "gun.ini", nullptr, 260, "ini"},
    {kGetFileExtension, nullptr, "gun", nullptr, 260, ""},
    {kGetFileExtension, nullptr, "gun.", nullptr, 260, ""},
    {kGetFileExtension, nullptr, ".\\gun", nullptr, 260, ""},
    {kGetFileExtension, nullptr, "..\\gun", nullptr, 260, ""},
    {kGetFileExtension, nullptr, "a.b\\gun", nullptr, 260, "b\\gun"},
    {kGetFileExtension, nullptr, "gun.tar.gz", nullptr, 260, "gz"},
    {kGetFileExtension, nullptr, "gun.ini", nullptr, 3, "in"},
    {kRemoveFilePath, nullptr, "c:\\data\\gun.ini", nullptr, 260, "gun.ini"},
    {kRemoveFilePath, nullptr, "data\\", nullptr, 260, ""},
    {kRemoveFilePath, nullptr, "gun.ini", nullptr, 260, "gun.ini"},
    {kRemoveFilePath, nullptr, "a/b/gun.ini", nullptr, 260, "a/b/gun.ini"},
    {kSetFileExtension, nullptr, "gun.ini", "dat", 260, "gun.dat"},
    {kSetFileExtension, nullptr, "gun.ini", ".dat", 260, "gun.dat"},
    {kSetFileExtension, nullptr, "gun", "dat", 260, "gun.dat"},
    {kSetFileExtension, nullptr, "gun.", "dat", 260, "gun.dat"},
    {kSetFileExtension, nullptr, "gun.ini", nullptr, 260, "gun"},
    {kSetFileExtension, nullptr, "gun.ini", "", 260, "gun."},
    {kSetFileExtension, nullptr, ".\\gun", "dat", 260, ".\\gun.dat"},
    {kSetFileExtension, nullptr, "a.b\\gun", "dat", 260, "a.dat"},
    {kSetFileExtension, nullptr, "gun.ini", "dat", 5, "gun."},
    {kSetFileExtension, nullptr, "gun.ini", "dat", 4, "gun"},
};

}  // namespace

TEST(PathUtil, EdgeCases) {
  for (const Case& c : kCases) {
    std::string spill;
    std::string row = std::string(helperName(c.helper)) +
                      " dir=" + (c.directory ? c.directory : "(null)") + " text=" + c.text +
                      " ext=" + (c.extension ? c.extension : "(null)") +
                      " size=" + std::to_string(c.size);
    EXPECT_EQ(run(c.helper, c.directory, c.text, c.extension, c.size, &spill), c.expected) << row;
    EXPECT_EQ(spill, "xxxx") << row << ": wrote past size";
  }
}

TEST(PathUtil, DirectoryLongerThanTheOutputIsCut) {
  std::string directory(300, 'd');
  std::string spill;
  EXPECT_EQ(run(kCheckFilePath, directory.c_str(), "gun.ini", nullptr, 260, &spill),
            std::string(259, 'd'));
  EXPECT_EQ(spill, "xxxx");
  EXPECT_EQ(run(kCheckFilename, directory.c_str(), "gun", "ini", 260, &spill),
            std::string(259, 'd'));
  EXPECT_EQ(spill, "xxxx");
}

TEST(PathUtil, CutNeverSplitsAUtf8Sequence) {
  // "dir\\" + "é" (two bytes): with size 6 only one byte of it would fit.
  EXPECT_EQ(run(kCheckFilePath, "dir", "\xC3\xA9.ini", nullptr, 6, nullptr), "dir\\");
}

TEST(PathUtil, InPlaceChangeOfExtension) {
  char path[260] = "data\\gun.ini";
  fmgSetFileExtension(path, "dat", path, sizeof path);
  EXPECT_STREQ(path, "data\\gun.dat");
}

class PathUtilReport : public KernelTest {};

TEST_F(PathUtilReport, NullOrEmptyInputClearsTheOutputAndTraces) {
  for (Helper helper : {kCheckFilePath, kCheckFilename, kGetFilePath, kGetFileExtension,
                        kRemoveFilePath, kSetFileExtension}) {
    for (const char* text : {static_cast<const char*>(nullptr), ""}) {
      TraceCapture traces;
      EXPECT_EQ(run(helper, "data", text, "ini", 260), "") << helperName(helper);
      std::vector<std::string> expected = {std::string("MSG|") + helperName(helper) +
                                           ": NULL string passed in as argument, no action taken."};
      EXPECT_EQ(traces.Lines(), expected);
    }
  }
  // A null output is tolerated at that point.
  fmgGetFilePath(nullptr, nullptr, 260);
  fmgCheckFilename(nullptr, "", "ini", nullptr, 260);
}

TEST(PathUtil, CurrentDirectoryRoundTrip) {
  TempDir dir;
  char saved[260];
  fmgGetCurrentDirectory(saved, sizeof saved);
  ASSERT_STRNE(saved, "");
  EXPECT_EQ(std::strchr(saved, '/'), nullptr)
      << "the working directory reaches the system in backslash form";

  std::string target = dir.path();
  for (char& c : target) c = c == '/' ? '\\' : c;
  EXPECT_EQ(fmgSetCurrentDirectory(target.c_str()), 1);
  char now[260];
  fmgGetCurrentDirectory(now, sizeof now);
  char real[4096];
  ASSERT_NE(getcwd(real, sizeof real), nullptr);
  std::string expected = real;
  for (char& c : expected) c = c == '/' ? '\\' : c;
  EXPECT_EQ(std::string(now), expected);

  EXPECT_EQ(fmgSetCurrentDirectory(nullptr), 0);
  EXPECT_EQ(fmgSetCurrentDirectory(""), 0);
  EXPECT_EQ(fmgSetCurrentDirectory((target + "\\missing").c_str()), 0);
  EXPECT_EQ(fmgSetCurrentDirectory(saved), 1);

  // Too small a buffer is cleared, not cut.
  char small[4] = "abc";
  fmgGetCurrentDirectory(small, sizeof small);
  EXPECT_STREQ(small, "");
  fmgGetCurrentDirectory(nullptr, 260);
}
