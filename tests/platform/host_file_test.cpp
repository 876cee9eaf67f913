// Tests of the host file layer: separators at the OS boundary, paths coming in, modes, transfers.
#include "platform/host_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <string>

#include "kernel_fixture.h"

namespace {

std::string toSystem(const std::string& hostPath) {
  char out[kHostPathSize];
  HostPathResult result = hostPathToSystem(hostPath.c_str(), out, sizeof out);
  EXPECT_EQ(result, HostPathResult::kOk) << hostPath;
  return out;
}

std::string readAll(const std::string& systemPath) {
  std::int32_t descriptor = hostFileOpenRead(systemPath.c_str(), HostAccess::kSequential);
  if (descriptor < 0) return "<missing>";
  std::string bytes;
  char buffer[64];
  for (std::int32_t got; (got = hostFileRead(descriptor, buffer, sizeof buffer)) > 0;)
    bytes.append(buffer, got);
  hostFileClose(descriptor);
  return bytes;
}

// Runs a test body in `directory` and goes back to where it was.
class InDirectory {
 public:
  explicit InDirectory(const std::string& directory) {
    saved_ = std::filesystem::current_path();
    std::filesystem::current_path(directory);
  }
  ~InDirectory() { std::filesystem::current_path(saved_); }

 private:
  std::filesystem::path saved_;
};

}  // namespace

TEST(HostFile, HostPathsComingInReachTheirFiles) {
  TempDir dir;
  std::filesystem::create_directories(dir.file("guns/old"));
  writeWholeFile(dir.file("guns/a.ini"), "absolute");
  writeWholeFile(dir.file("top.ini"), "dotdot");

  std::string absolute = toSystem(dir.file("guns/a.ini"));
  EXPECT_EQ(absolute.find('/'), std::string::npos);
  EXPECT_EQ(absolute[0], '\\');
  EXPECT_EQ(readAll(absolute), "absolute");

  InDirectory here(dir.path());
  EXPECT_EQ(toSystem("guns/a.ini"), "guns\\a.ini");
  EXPECT_EQ(readAll(toSystem("guns/a.ini")), "absolute");
  EXPECT_EQ(readAll(toSystem("guns/old/../../top.ini")), "dotdot");
  EXPECT_EQ(readAll(toSystem("./guns/./a.ini")), "absolute");
  // A system path in the default-directory form opens relative to the working directory.
  EXPECT_EQ(readAll(".\\guns\\a.ini"), "absolute");
}

TEST(HostFile, HostPathsThatCantBeRepresentedAreRefused) {
  char out[kHostPathSize];
  std::strcpy(out, "stale");
  EXPECT_EQ(hostPathToSystem("/home/ann/back\\slash.ini", out, sizeof out),
            HostPathResult::kHasBackslash);
  EXPECT_STREQ(out, "");
  EXPECT_NE(std::strstr(hostPathMessage(HostPathResult::kHasBackslash), "backslash"), nullptr);

  std::string longest = "/" + std::string(258, 'a');  // 259 bytes: fits with its terminator
  EXPECT_EQ(hostPathToSystem(longest.c_str(), out, sizeof out), HostPathResult::kOk);
  EXPECT_EQ(std::strlen(out), 259u);
  std::string tooLong = longest + "b";
  EXPECT_EQ(hostPathToSystem(tooLong.c_str(), out, sizeof out), HostPathResult::kTooLong);
  EXPECT_STREQ(out, "");
  EXPECT_NE(std::strstr(hostPathMessage(HostPathResult::kTooLong), "too long"), nullptr);
  // A smaller buffer refuses rather than cuts.
  EXPECT_EQ(hostPathToSystem("abcdef", out, 4), HostPathResult::kTooLong);

  EXPECT_EQ(hostPathToSystem(nullptr, out, sizeof out), HostPathResult::kEmpty);
  EXPECT_EQ(hostPathToSystem("", out, sizeof out), HostPathResult::kEmpty);
  EXPECT_STREQ(hostPathMessage(HostPathResult::kOk), "");
}

TEST(HostFile, WorkingDirectoryComesInConvertedAndRefusedWhenUnrepresentable) {
  TempDir dir;
  std::filesystem::create_directories(dir.file("plain"));
  std::filesystem::create_directories(dir.file("odd\\name"));
  InDirectory here(dir.path());

  ASSERT_EQ(hostChangeDirectory("plain"), 0);
  char now[kHostPathSize];
  ASSERT_EQ(hostGetCurrentDirectory(now, sizeof now), 1);
  std::string expected = std::filesystem::current_path().string();
  for (char& c : expected) c = c == '/' ? '\\' : c;
  EXPECT_EQ(std::string(now), expected);
  // Going back up through a system path.
  ASSERT_EQ(hostChangeDirectory("..\\"), 0);

  // The host has a directory with a backslash in its name: reached by the host, refused coming in.
  ASSERT_EQ(chdir("odd\\name"), 0);
  std::strcpy(now, "stale");
  EXPECT_EQ(hostGetCurrentDirectory(now, sizeof now), 0);
  EXPECT_STREQ(now, "");
  EXPECT_EQ(hostChangeDirectory("missing"), -1);
}

TEST(HostFile, CreateUsesReadWriteForAllUnderTheUmask) {
  TempDir dir;
  InDirectory here(dir.path());
  mode_t old = umask(022);
  std::int32_t descriptor = hostFileCreate(".\\a.dat");
  ASSERT_GE(descriptor, 0);
  hostFileClose(descriptor);
  umask(0);
  descriptor = hostFileCreate(".\\b.dat");
  ASSERT_GE(descriptor, 0);
  hostFileClose(descriptor);
  umask(old);
  struct stat info;
  ASSERT_EQ(stat("a.dat", &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0644u);
  ASSERT_EQ(stat("b.dat", &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0666u);
}

TEST(HostFile, WriteSeekReadStatAndTruncate) {
  TempDir dir;
  InDirectory here(dir.path());
  std::int32_t descriptor = hostFileCreate("f.bin");
  ASSERT_GE(descriptor, 0);
  EXPECT_EQ(hostFileWrite(descriptor, "0123456789", 10), 10);
  std::int64_t size = -1;
  ASSERT_EQ(hostFileStat(descriptor, &size), 1);
  EXPECT_EQ(size, 10);
  EXPECT_EQ(hostFileRead(descriptor, &size, 4), -1) << "written-only descriptor";
  hostFileClose(descriptor);

  descriptor = hostFileOpenRead("f.bin", HostAccess::kRandom);
  ASSERT_GE(descriptor, 0);
  char buffer[16] = {};
  EXPECT_EQ(hostFileSeek(descriptor, 3, 0), 3);
  EXPECT_EQ(hostFileRead(descriptor, buffer, 4), 4);
  EXPECT_EQ(std::string(buffer, 4), "3456");
  EXPECT_EQ(hostFileSeek(descriptor, -2, 1), 5);
  EXPECT_EQ(hostFileSeek(descriptor, -1, 2), 9);
  EXPECT_EQ(hostFileRead(descriptor, buffer, 16), 1);
  EXPECT_EQ(hostFileRead(descriptor, buffer, 16), 0);
  EXPECT_EQ(hostFileSeek(descriptor, -1, 0), -1);
  EXPECT_EQ(hostFileSeek(descriptor, 0, 3), -1);
  hostFileClose(descriptor);

  // Creating an existing file empties it.
  descriptor = hostFileCreate("f.bin");
  ASSERT_GE(descriptor, 0);
  hostFileClose(descriptor);
  EXPECT_EQ(readAll("f.bin"), "");

  EXPECT_EQ(hostFileOpenRead("missing.bin", HostAccess::kSequential), -1);
  EXPECT_EQ(hostFileOpenRead(nullptr, HostAccess::kSequential), -1);
  EXPECT_EQ(hostFileCreate("no\\such\\dir\\f.bin"), -1);
  EXPECT_EQ(hostFileRead(-1, buffer, 1), -1);
  EXPECT_EQ(hostFileWrite(-1, buffer, 1), -1);
  EXPECT_EQ(hostFileClose(-1), -1);
}

TEST(HostFile, StreamsOpenThroughSystemPaths) {
  TempDir dir;
  std::filesystem::create_directories(dir.file("sub"));
  InDirectory here(dir.path());
  std::FILE* stream = hostFileOpenStream(".\\sub\\out.ini", "wb");
  ASSERT_NE(stream, nullptr);
  std::fputs("[Gun]\n", stream);
  std::fclose(stream);
  EXPECT_EQ(readWholeFile("sub/out.ini"), "[Gun]\n");
  EXPECT_EQ(hostFileOpenStream("missing\\x.ini", "rb"), nullptr);
}
