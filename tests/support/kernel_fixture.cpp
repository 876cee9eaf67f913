// Test support: a kernel brought up around each test, a temporary directory, a trace capture.
#include "kernel_fixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "core/core.h"
#include "platform/host_heap.h"

void KernelTest::SetUp() {
  ASSERT_EQ(CoreStartup(), 1);
  blocksAtStart_ = LiveBlocks();
}

void KernelTest::TearDown() {
  hostHeapFailNth(0);
  EXPECT_EQ(LiveBlocks(), blocksAtStart_) << "the test leaked blocks on the kernel heap";
  CoreShutdown();
}

std::int64_t KernelTest::LiveBlocks() { return gMEM ? hostHeapLiveBlocks(gMEM->heap) : 0; }

TempDir::TempDir() {
  path_ = (std::filesystem::temp_directory_path() / "tessarine-XXXXXX").string();
  if (!mkdtemp(path_.data())) std::abort();
}

TempDir::~TempDir() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

TraceCapture::TraceCapture() : file_(dir_.file("trace.log")) {
  dbgSetLogSwitch(1);
  gDBG->Init(file_.c_str());
  gDBG->SetThreshold(0);
  gDBG->SetMode(1);
}

TraceCapture::~TraceCapture() {
  dbgSetLogSwitch(0);
  gDBG->Init("");
}

std::vector<std::string> TraceCapture::Lines() const {
  std::istringstream in(readWholeFile(file_));
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

std::string systemPath(std::string path) {
  std::replace(path.begin(), path.end(), '/', '\\');
  return path;
}

std::string readWholeFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeWholeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}
