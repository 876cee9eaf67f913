// Times IniFile on a 250 KB file of 500 sections of 22 keys: the parse, and a typed read of
// every key.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "config/ini_file.h"
#include "core/core.h"

namespace {

constexpr int kSections = 500;

enum class Kind { kString, kInt, kFloat, kBool, kColor };

struct KeySpec {
  const char* name;
  Kind kind;
  const char* value;
};

// 22 keys of every kind, 501 bytes a section with its header and blank line: 250,500 bytes.
const KeySpec kKeys[] = {
    {"TypeName", Kind::kString, "Benchmark gun type"},
    {"FullName", Kind::kString, "Benchmark gun"},
    {"Caliber", Kind::kFloat, "20.000000"},
    {"ROF", Kind::kInt, "650"},
    {"MuzzleVel", Kind::kFloat, "800.500000"},
    {"AmmoWt", Kind::kFloat, "0.250000"},
    {"WarheadWt", Kind::kFloat, "0.100000"},
    {"Reliability", Kind::kFloat, "0.900000"},
    {"Accuracy", Kind::kFloat, "0.750000"},
    {"AddLight", Kind::kBool, "TRUE"},
    {"MaxLightRange", Kind::kInt, "30"},
    {"FireColor", Kind::kColor, "1.000000,0.500000,0.250000"},
    {"GunFireEffect", Kind::kString, "fx\\muzzle_flash"},
    {"GunFireSound", Kind::kString, "snd\\gun_fire"},
    {"EffectClassName", Kind::kString, "GunEffectClass"},
    {"EffectTime", Kind::kFloat, "0.200000"},
    {"TracerTexture", Kind::kString, "textures\\tracer_red"},
    {"TracerSize", Kind::kFloat, "0.300000"},
    {"TracerDistFactor", Kind::kFloat, "1.500000"},
    {"TracerLength", Kind::kInt, "4"},
    {"MaxVisibleDist", Kind::kInt, "1000"},
    {"MaxStreakVisibleDist", Kind::kInt, "500"},
};

std::string systemPath(std::string path) {
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return path;
}

// Writes the file; returns its size in bytes.
std::size_t writeSource(const std::string& path) {
  std::string text;
  char section[32];
  for (int i = 1; i <= kSections; i++) {
    std::snprintf(section, sizeof section, "[GunData%03d]\n", i);
    text += section;
    for (const KeySpec& key : kKeys) text += std::string(key.name) + "=" + key.value + "\n";
    text += "\n";
  }
  std::ofstream(path, std::ios::binary) << text;
  return text.size();
}

class IniFixture : public benchmark::Fixture {
 public:
  void SetUp(benchmark::State& state) override {
    char pattern[] = "/tmp/tessarine-bench-XXXXXX";
    directory_ = mkdtemp(pattern);
    bytes_ = writeSource(directory_ + "/bench.ini");
    path_ = systemPath(directory_ + "/bench.ini");
    if (CoreStartup() != 1) state.SkipWithError("the kernel didn't start");
  }
  void TearDown(benchmark::State&) override {
    CoreShutdown();
    std::remove((directory_ + "/bench.ini").c_str());
    std::remove(directory_.c_str());
  }

 protected:
  std::string directory_;
  std::string path_;
  std::size_t bytes_ = 0;
};

BENCHMARK_DEFINE_F(IniFixture, Parse)(benchmark::State& state) {
  for (auto _ : state) {
    IniFile ini(path_.c_str(), 0, 0);
    if (ini.sections.count != kSections) state.SkipWithError("the file wasn't read whole");
    benchmark::DoNotOptimize(ini.sections.count);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes_));
  state.counters["bytes"] = static_cast<double>(bytes_);
}

BENCHMARK_DEFINE_F(IniFixture, ReadEveryKey)(benchmark::State& state) {
  IniFile ini(path_.c_str(), 0, 0);
  char name[32];
  char text[260];
  float color[3];
  for (auto _ : state) {
    double sum = 0;
    for (int i = 1; i <= kSections; i++) {
      std::snprintf(name, sizeof name, "GunData%03d", i);
      for (const KeySpec& key : kKeys) {
        switch (key.kind) {
          case Kind::kString: ini.IniGetString(name, key.name, "", text, sizeof text, 0); sum += text[0]; break;
          case Kind::kInt: sum += ini.IniGetInt(name, key.name, 0); break;
          case Kind::kFloat: sum += ini.IniGetFloat(name, key.name, 0); break;
          case Kind::kBool: sum += ini.IniGetBool(name, key.name, 0); break;
          case Kind::kColor: sum += IniGetColor(color, &ini, name, key.name) + color[1]; break;
        }
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * bytes_));
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()) * kSections * 22);
}

BENCHMARK_REGISTER_F(IniFixture, Parse)->Unit(benchmark::kMicrosecond);
BENCHMARK_REGISTER_F(IniFixture, ReadEveryKey)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
