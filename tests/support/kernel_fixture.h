// Test support: a kernel brought up around each test, a temporary directory, a trace capture.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

// Brings the kernel up before each test and takes it down after, checking that the test left
// no block on the heap beyond those it declared with AllowLiveBlocks.
class KernelTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Live blocks on the kernel's heap right now.
  static std::int64_t LiveBlocks();

  std::int64_t blocksAtStart_ = 0;
};

// A fresh directory under the system's temporary directory, removed with all it holds.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::string& path() const { return path_; }
  // path() + "/" + name
  std::string file(const std::string& name) const;

 private:
  std::string path_;
};

// Switches the kernel log on into a temporary file at threshold 0 while it lives; the kernel
// must be up. Lines() gives what was logged so far, without line ends.
class TraceCapture {
 public:
  TraceCapture();
  ~TraceCapture();
  std::vector<std::string> Lines() const;
  // True if some line is exactly this text.
  bool Has(const std::string& line) const;

 private:
  TempDir dir_;
  std::string file_;
};

std::string readWholeFile(const std::string& path);
// A host path in the system's backslash form.
std::string systemPath(const std::string& hostPath);
void writeWholeFile(const std::string& path, const std::string& bytes);
