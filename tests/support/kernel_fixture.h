// Test support: a kernel brought up around each test, a temporary directory, a trace capture.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

// Fails a test that leaves blocks beyond blocksAtStart_ (raised for blocks kept on purpose).
class KernelTest : public ::testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  static std::int64_t LiveBlocks();  // live blocks on the kernel's heap right now
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
  std::string file(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

// Logs at threshold 0 into a temporary file while it lives; the kernel must be up.
class TraceCapture {
 public:
  TraceCapture();
  ~TraceCapture();
  std::vector<std::string> Lines() const;  // without line ends
  bool Has(const std::string& line) const { return std::ranges::count(Lines(), line) > 0; }

 private:
  TempDir dir_;
  std::string file_;
};

std::string readWholeFile(const std::string& path);
void writeWholeFile(const std::string& path, const std::string& bytes);
std::string systemPath(std::string hostPath);  // in the system's backslash form
