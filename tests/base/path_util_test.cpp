#include "base/path_util.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// The helpers, called through one signature: directory, name or path, extension, output, size.
enum Helper { kJoin, kName, kDir, kExt, kBase, kSetExt };
void call(Helper helper, const char* d, const char* t, const char* e, char* o, int s) {
  switch (helper) {
    case kJoin: return fmgCheckFilePath(d, t, o, s);
    case kName: return fmgCheckFilename(d, t, e, o, s);
    case kDir: return fmgGetFilePath(t, o, s);
    case kExt: return fmgGetFileExtension(t, o, s);
    case kBase: return fmgRemoveFilePath(t, o, s);
    case kSetExt: return fmgSetFileExtension(t, e, o, s);
  }
}
constexpr const char* N = nullptr;

// Runs a helper into a buffer prefilled with 'x'; fails the test if it wrote past `size`.
std::string run(Helper helper, const char* directory, const char* text,
                const char* extension, int size) {
  char output[300];
  std::memset(output, 'x', sizeof output);
  call(helper, directory, text, extension, output, size);
  EXPECT_EQ(std::string(output + size, 4), "xxxx") << "helper " << helper << " past " << size;
  return std::string(output, strnlen(output, static_cast<std::size_t>(size)));
}

}  // namespace

TEST(PathUtil, JoinsAndSplitsByBackslashAndCutsAtTheSize) {
  const std::string longDirectory(300, 'd');
  const struct {
    Helper helper;
    const char *directory, *text, *extension;
    int size;  // 0: 260
    std::string expected;
  } cases[] = {
      {kJoin, N, "gun.ini", N, 0, ".\\gun.ini"}, {kJoin, "", "gun.ini", N, 0, "gun.ini"},
      {kJoin, "data\\", "gun.ini", N, 0, "data\\gun.ini"},
      {kJoin, "data", "sub\\gun.ini", N, 0, "sub\\gun.ini"},
      {kJoin, "data", "gun.ini", N, 9, "data\\gun"},
      {kJoin, "dir", "\xC3\xA9.ini", N, 6, "dir\\"},  // é is never cut in half
      {kJoin, longDirectory.c_str(), "gun.ini", N, 0, std::string(259, 'd')},
      {kName, N, "gun", ".ini", 0, ".\\gun.ini"}, {kName, N, "gun.txt", "ini", 0, ".\\gun.txt"},
      {kName, N, "a.b\\gun", "ini", 0, "a.b\\gun"},
      {kName, "data", "gun", "ini", 11, "data\\gun.i"},
      {kDir, N, "c:\\data\\gun.ini", N, 0, "c:\\data"}, {kDir, N, "/home/ann/gun.ini", N, 0, ".\\"},
      {kExt, N, "gun.tar.gz", N, 0, "gz"}, {kExt, N, "a.b\\gun", N, 0, "b\\gun"},
      {kExt, N, "gun.ini", N, 3, "in"}, {kBase, N, "c:\\data\\gun.ini", N, 0, "gun.ini"},
      {kBase, N, "a/b/gun.ini", N, 0, "a/b/gun.ini"}, {kSetExt, N, "gun.ini", ".dat", 0, "gun.dat"},
      {kSetExt, N, "gun.ini", N, 0, "gun"}, {kSetExt, N, "a.b\\gun", "dat", 0, "a.dat"},
      {kSetExt, N, "gun.ini", "dat", 5, "gun."},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(run(c.helper, c.directory, c.text, c.extension, c.size ? c.size : 260), c.expected)
        << "helper " << c.helper << " " << c.text << " " << c.size;
  }
  // Null or empty input clears the output.
  for (Helper helper : {kJoin, kName, kDir, kExt, kBase, kSetExt})
    for (const char* text : {N, ""}) EXPECT_EQ(run(helper, "data", text, "ini", 260), "") << helper;
  fmgGetFilePath(nullptr, nullptr, 260);  // a null output is tolerated at that point
  char path[260] = "data\\gun.ini";  // in place, as the gun save does
  fmgSetFileExtension(path, "dat", path, sizeof path);
  EXPECT_STREQ(path, "data\\gun.dat");
}
