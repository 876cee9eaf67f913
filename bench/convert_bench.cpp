// Times the converter's work on 400 guns: GunFileLoad of the text file, GunFileSave of both files.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "core/core.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "tools/console_list_view.h"

namespace {

constexpr int kGuns = 400;

std::string systemPath(std::string path) {
  for (char& c : path) {
    if (c == '/') c = '\\';
  }
  return path;
}

// Writes a text file of kGuns guns with every key filled; returns its host path.
std::string writeSource(const std::string& directory) {
  std::string path = directory + "/bench-guns.ini";
  std::ofstream out(path, std::ios::binary);
  for (int i = 1; i <= kGuns; i++) {
    char section[1024];
    std::snprintf(section, sizeof section,
                  "[GunData%03d]\nTypeName=Gun %d\nFullName=Benchmark gun %d\nCaliber=20\n"
                  "ROF=%d\nMuzzleVel=800\nAmmoWt=0.25\nWarheadWt=0.1\nReliability=0.9\n"
                  "Accuracy=0.75\nAddLight=TRUE\nMaxLightRange=30\nFireColor=1,0.5,0.25\n"
                  "GunFireEffect=fx_muzzle\nGunFireSound=snd_gun\nEffectClassName=GunEffect\n"
                  "EffectTime=0.2\nTracerTexture=tracer_red\nTracerSize=0.3\n"
                  "TracerDistFactor=1.5\nTracerLength=4\nMaxVisibleDist=1000\n"
                  "MaxStreakVisibleDist=500\n\n",
                  i, i, i, 300 + i);
    out << section;
  }
  return path;
}

class ConverterFixture : public benchmark::Fixture {
 public:
  void SetUp(benchmark::State&) override {
    char pattern[] = "/tmp/tessarine-bench-XXXXXX";
    directory_ = mkdtemp(pattern);
    source_ = systemPath(writeSource(directory_));
    target_ = systemPath(directory_ + "/bench-out.ini");
    CoreStartup();
  }
  void TearDown(benchmark::State&) override {
    GunListEmpty(&view_);
    CoreShutdown();
    std::system(("rm -rf '" + directory_ + "'").c_str());
  }

 protected:
  ConsoleListView view_{stderr};
  std::string directory_, source_, target_;
};

BENCHMARK_F(ConverterFixture, Load400Guns)(benchmark::State& state) {
  for (auto _ : state) GunFileLoad(&view_, source_.c_str());
  state.SetItemsProcessed(state.iterations() * kGuns);
}

BENCHMARK_F(ConverterFixture, Save400Guns)(benchmark::State& state) {
  GunFileLoad(&view_, source_.c_str());
  for (auto _ : state) GunFileSave(&view_, target_.c_str());
  state.SetItemsProcessed(state.iterations() * kGuns);
}

BENCHMARK_F(ConverterFixture, LoadAndSave400Guns)(benchmark::State& state) {
  for (auto _ : state) {
    GunFileLoad(&view_, source_.c_str());
    GunFileSave(&view_, target_.c_str());
  }
  state.SetItemsProcessed(state.iterations() * kGuns);
}

}  // namespace

BENCHMARK_MAIN();
