// Tests of the path helpers: the backslash rules, the cuts at `size`, and null or empty input.
#include "base/path_util.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "kernel_fixture.h"

namespace {

// Each helper as one signature: directory, name or path, extension, output, size.
struct Helper {
  const char* name;
  void (*call)(const char*, const char*, const char*, char*, int);
};
const Helper kCheckFilePath{"fmgCheckFilePath", [](const char* d, const char* t, const char*,
                                                   char* o, int s) { fmgCheckFilePath(d, t, o, s); }};
const Helper kCheckFilename{"fmgCheckFilename", fmgCheckFilename};
const Helper kGetFilePath{"fmgGetFilePath", [](const char*, const char* t, const char*, char* o,
                                               int s) { fmgGetFilePath(t, o, s); }};
const Helper kGetFileExtension{"fmgGetFileExtension",
                               [](const char*, const char* t, const char*, char* o, int s) {
                                 fmgGetFileExtension(t, o, s);
                               }};
const Helper kRemoveFilePath{"fmgRemoveFilePath", [](const char*, const char* t, const char*,
                                                     char* o, int s) { fmgRemoveFilePath(t, o, s); }};
const Helper kSetFileExtension{"fmgSetFileExtension",
                               [](const char*, const char* t, const char* e, char* o, int s) {
                                 fmgSetFileExtension(t, e, o, s);
                               }};

// Runs a helper into a buffer prefilled with 'x'; fails the test if it wrote past `size`.
std::string run(const Helper& helper, const char* directory, const char* text,
                const char* extension, int size) {
  char output[300];
  std::memset(output, 'x', sizeof output);
  helper.call(directory, text, extension, output, size);
  EXPECT_EQ(std::string(output + size, 4), "xxxx") << helper.name << " wrote past " << size;
  return std::string(output, strnlen(output, static_cast<std::size_t>(size)));
}

std::string backslashed(std::string path) {
  for (char& c : path) c = c == '/' ? '\\' : c;
  return path;
}

}  // namespace

TEST(PathUtil, EdgeCases) {
  const std::string longDirectory(300, 'd');
  const char* const longDir = longDirectory.c_str();
  struct Case {
    const Helper& helper;
    const char* directory;
    const char* text;
    const char* extension;
    int size;
    std::string expected;
  } cases[] = {
      {kCheckFilePath, nullptr, "gun.ini", nullptr, 260, ".\\gun.ini"},
      {kCheckFilePath, "data", "gun.ini", nullptr, 260, "data\\gun.ini"},
      {kCheckFilePath, "data\\", "gun.ini", nullptr, 260, "data\\gun.ini"},
      {kCheckFilePath, "", "gun.ini", nullptr, 260, "gun.ini"},
      {kCheckFilePath, "data", "sub\\gun.ini", nullptr, 260, "sub\\gun.ini"},
      {kCheckFilePath, "data", "c:gun.ini", nullptr, 260, "data\\c:gun.ini"},
      {kCheckFilePath, "data", "a/gun.ini", nullptr, 260, "data\\a/gun.ini"},
      {kCheckFilePath, "data", "gun.ini", nullptr, 9, "data\\gun"},
      {kCheckFilePath, "data", "gun.ini", nullptr, 5, "data"},
      {kCheckFilePath, nullptr, "gun.ini", nullptr, 2, "."},
      {kCheckFilePath, "dir", "\xC3\xA9.ini", nullptr, 6, "dir\\"},  // é is never cut in half
      {kCheckFilePath, longDir, "gun.ini", nullptr, 260, std::string(259, 'd')},
      {kCheckFilename, longDir, "gun", "ini", 260, std::string(259, 'd')},
      {kCheckFilename, nullptr, "gun", "ini", 260, ".\\gun.ini"},
      {kCheckFilename, nullptr, "gun", ".ini", 260, ".\\gun.ini"},
      {kCheckFilename, nullptr, "gun.txt", "ini", 260, ".\\gun.txt"},
      {kCheckFilename, nullptr, "gun.", "ini", 260, ".\\gun."},
      {kCheckFilename, nullptr, "a.b\\gun", "ini", 260, "a.b\\gun"},
      {kCheckFilename, nullptr, "gun", "", 260, ".\\gun."},
      {kCheckFilename, nullptr, "gun", nullptr, 260, ".\\gun"},
      {kCheckFilename, "data", "gun", "ini", 10, "data\\gun."},
      {kCheckFilename, "data", "gun", "ini", 11, "data\\gun.i"},
      {kGetFilePath, nullptr, "c:\\data\\gun.ini", nullptr, 260, "c:\\data"},
      {kGetFilePath, nullptr, "gun.ini", nullptr, 260, ".\\"},
      {kGetFilePath, nullptr, "\\gun.ini", nullptr, 260, ""},
      {kGetFilePath, nullptr, "/home/ann/gun.ini", nullptr, 260, ".\\"},
      {kGetFilePath, nullptr, "data\\sub\\gun.ini", nullptr, 10, "data\\sub"},
      {kGetFileExtension, nullptr, "gun.ini", nullptr, 260, "ini"},
      {kGetFileExtension, nullptr, "gun", nullptr, 260, ""},
      {kGetFileExtension, nullptr, "gun.", nullptr, 260, ""},
      {kGetFileExtension, nullptr, "..\\gun", nullptr, 260, ""},
      {kGetFileExtension, nullptr, "a.b\\gun", nullptr, 260, "b\\gun"},
      {kGetFileExtension, nullptr, "gun.tar.gz", nullptr, 260, "gz"},
      {kGetFileExtension, nullptr, "gun.ini", nullptr, 3, "in"},
      {kRemoveFilePath, nullptr, "c:\\data\\gun.ini", nullptr, 260, "gun.ini"},
      {kRemoveFilePath, nullptr, "data\\", nullptr, 260, ""},
      {kRemoveFilePath, nullptr, "a/b/gun.ini", nullptr, 260, "a/b/gun.ini"},
      {kSetFileExtension, nullptr, "gun.ini", "dat", 260, "gun.dat"},
      {kSetFileExtension, nullptr, "gun.ini", ".dat", 260, "gun.dat"},
      {kSetFileExtension, nullptr, "gun", "dat", 260, "gun.dat"},
      {kSetFileExtension, nullptr, "gun.ini", nullptr, 260, "gun"},
      {kSetFileExtension, nullptr, "gun.ini", "", 260, "gun."},
      {kSetFileExtension, nullptr, "a.b\\gun", "dat", 260, "a.dat"},
      {kSetFileExtension, nullptr, "gun.ini", "dat", 5, "gun."},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(run(c.helper, c.directory, c.text, c.extension, c.size), c.expected)
        << c.helper.name << " dir=" << (c.directory ? c.directory : "(null)") << " text=" << c.text
        << " ext=" << (c.extension ? c.extension : "(null)") << " size=" << c.size;
  }
  char path[260] = "data\\gun.ini";  // in place, as the gun save does
  fmgSetFileExtension(path, "dat", path, sizeof path);
  EXPECT_STREQ(path, "data\\gun.dat");
}

class PathUtilReport : public KernelTest {};

TEST_F(PathUtilReport, NullOrEmptyInputClearsTheOutputAndTraces) {
  for (const Helper* helper : {&kCheckFilePath, &kCheckFilename, &kGetFilePath,
                               &kGetFileExtension, &kRemoveFilePath, &kSetFileExtension}) {
    for (const char* text : {static_cast<const char*>(nullptr), ""}) {
      TraceCapture traces;
      EXPECT_EQ(run(*helper, "data", text, "ini", 260), "") << helper->name;
      EXPECT_EQ(traces.Lines(), std::vector<std::string>{std::string("MSG|") + helper->name +
                                                         ": NULL string passed in as argument, "
                                                         "no action taken."});
    }
  }
  fmgGetFilePath(nullptr, nullptr, 260);  // a null output is tolerated at that point
}

TEST(PathUtil, CurrentDirectoryInBackslashForm) {
  TempDir dir;
  char saved[260];
  fmgGetCurrentDirectory(saved, sizeof saved);
  ASSERT_STRNE(saved, "");
  EXPECT_EQ(std::strchr(saved, '/'), nullptr);
  EXPECT_EQ(fmgSetCurrentDirectory(backslashed(dir.path()).c_str()), 1);
  char now[260];
  fmgGetCurrentDirectory(now, sizeof now);
  char real[4096];
  ASSERT_NE(getcwd(real, sizeof real), nullptr);
  EXPECT_EQ(std::string(now), backslashed(real));
  for (const char* refused : {static_cast<const char*>(nullptr), "", "\\no\\such\\dir"}) {
    EXPECT_EQ(fmgSetCurrentDirectory(refused), 0);
  }
  EXPECT_EQ(fmgSetCurrentDirectory(saved), 1);
  char small[4] = "abc";  // too small a buffer is cleared, not cut
  fmgGetCurrentDirectory(small, sizeof small);
  EXPECT_STREQ(small, "");
}
