// Reads every file of a 64 MB catalog through gFMG, and the same bytes from one plain file.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "core/core.h"
#include "files/file_manager.h"
#include "platform/host_file.h"

namespace {

constexpr int kFiles = 256;
constexpr std::uint32_t kFileSize = 256 * 1024;  // 256 files of 256 KiB: 64 MiB in all
constexpr std::int64_t kTotal = std::int64_t{kFiles} * kFileSize;

struct Fixture {
  std::string directory;  // host form
  std::string catalog;    // system form
  std::string plain;      // system form
  std::vector<std::string> names;
};

Fixture gFixture;

void put32(std::string& bytes, std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(value >> shift));
}

std::string toSystem(const std::string& hostPath) {
  char out[kHostPathSize];
  if (hostPathToSystem(hostPath.c_str(), out, sizeof out) != HostPathResult::kOk) std::abort();
  return out;
}

// Writes the catalog (header, file table, one extension, data) and a plain file of its data.
void makeFiles() {
  char pattern[] = "/tmp/tessarine-fmg-bench-XXXXXX";
  if (!mkdtemp(pattern)) std::abort();
  gFixture.directory = pattern;
  for (int i = 0; i < kFiles; i++) {
    char name[32];
    std::snprintf(name, sizeof name, "FILE%03d.DAT", i);
    gFixture.names.push_back(name);
  }
  std::string tables;
  std::uint32_t tablesEnd = 28 + 4 + 4;  // header and the extension table
  for (const std::string& name : gFixture.names)
    tablesEnd += 8 + static_cast<std::uint32_t>(name.size()) + 1;
  tables.append("CAT\0", 4);
  tables.append(12, '\0');
  put32(tables, kFiles);
  put32(tables, 1);
  put32(tables, static_cast<std::uint32_t>(kTotal));
  for (int i = 0; i < kFiles; i++) {
    put32(tables, tablesEnd + static_cast<std::uint32_t>(i) * kFileSize);
    put32(tables, static_cast<std::uint32_t>(gFixture.names[i].size() + 1));
    tables.append(gFixture.names[i].c_str(), gFixture.names[i].size() + 1);
  }
  put32(tables, 4);
  tables.append("DAT\0", 4);

  std::string data(static_cast<std::size_t>(kTotal), '\0');
  std::uint32_t state = 12345;
  for (char& c : data) {
    state = state * 1664525u + 1013904223u;
    c = static_cast<char>(state >> 24);
  }
  std::ofstream catalog(gFixture.directory + "/bench.cat", std::ios::binary);
  catalog << tables << data;
  std::ofstream plain(gFixture.directory + "/plain.bin", std::ios::binary);
  plain << data;
  gFixture.catalog = toSystem(gFixture.directory + "/bench.cat");
  gFixture.plain = toSystem(gFixture.directory + "/plain.bin");
}

void CatalogThroughFileManager(benchmark::State& state) {
  auto chunk = static_cast<std::uint32_t>(state.range(0));
  std::vector<char> buffer(chunk);
  std::int64_t total = 0;
  for (auto _ : state) {
    for (const std::string& name : gFixture.names) {
      std::int32_t handle = gFMG->OpenFile(name.c_str());
      for (std::int32_t got; (got = gFMG->ReadFile(handle, buffer.data(), chunk)) > 0;)
        total += got;
      gFMG->CloseFile(handle);
    }
  }
  if (total != kTotal * state.iterations()) state.SkipWithError("short read");
  state.SetBytesProcessed(total);
}

void PlainReadOfOneFile(benchmark::State& state) {
  auto chunk = static_cast<std::uint32_t>(state.range(0));
  std::vector<char> buffer(chunk);
  std::int64_t total = 0;
  for (auto _ : state) {
    std::int32_t descriptor = hostFileOpenRead(gFixture.plain.c_str(), HostAccess::kSequential);
    for (std::int32_t got; (got = hostFileRead(descriptor, buffer.data(), chunk)) > 0;)
      total += got;
    hostFileClose(descriptor);
  }
  if (total != kTotal * state.iterations()) state.SkipWithError("short read");
  state.SetBytesProcessed(total);
}

BENCHMARK(CatalogThroughFileManager)
    ->Arg(512)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(PlainReadOfOneFile)->Arg(512)->Arg(4096)->Arg(65536)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  makeFiles();
  CoreStartup();
  int status = gFMG->OpenCatalog(gFixture.catalog.c_str()) ? 0 : 1;
  if (status == 0) benchmark::RunSpecifiedBenchmarks();
  CoreShutdown();
  std::filesystem::remove_all(gFixture.directory);
  benchmark::Shutdown();
  return status;
}
