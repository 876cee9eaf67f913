// Fuzzing support: the kernel brought up once per process, a scratch directory on a RAM file
// system, and the leak check that follows every input.
#include "fuzz_kernel.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "base/memory_manager.h"
#include "base/path_util.h"
#include "core/core.h"
#include "platform/host_heap.h"

namespace {

std::string hostDirectory;
std::string systemDirectory;
std::int64_t blocksAtStart = 0;

// /dev/shm keeps each input off the disk: writing a file there costs microseconds.
std::string makeScratchDirectory() {
  std::string base = std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp";
  std::string path = base + "/tessarine-fuzz-XXXXXX";
  if (!mkdtemp(path.data())) std::abort();
  return path;
}

}  // namespace

void fuzzKernelUp() {
  if (!hostDirectory.empty()) return;
  hostDirectory = makeScratchDirectory();
  std::atexit([] { std::filesystem::remove_all(hostDirectory); });
  systemDirectory = hostDirectory;
  for (char& c : systemDirectory) c = c == '/' ? '\\' : c;
  if (CoreStartup() != 1 || !fmgSetCurrentDirectory(systemDirectory.c_str())) std::abort();
  blocksAtStart = hostHeapLiveBlocks(gMEM->heap);
}

const std::string& fuzzDirectory() { return systemDirectory; }

std::string fuzzFile(const std::string& name) { return systemDirectory + "\\" + name; }

void fuzzWrite(const std::string& name, const std::uint8_t* data, std::size_t size) {
  std::ofstream(hostDirectory + "/" + name, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

void fuzzCheckNoLeak() {
  std::int64_t blocks = hostHeapLiveBlocks(gMEM->heap);
  if (blocks == blocksAtStart) return;
  std::fprintf(stderr, "kernel heap: %lld live blocks after the input, %lld before\n",
               static_cast<long long>(blocks), static_cast<long long>(blocksAtStart));
  std::abort();
}
