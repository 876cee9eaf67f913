// Times the converter's work on 400 guns: GunFileLoad of the text file, GunFileSave of both files.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "bench_guns.h"
#include "core/core.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "tools/console_list_view.h"

namespace {

constexpr int kGuns = 400;

class ConverterFixture : public benchmark::Fixture {
 public:
  void SetUp(benchmark::State&) override {
    char pattern[] = "/tmp/tessarine-bench-XXXXXX";
    directory_ = mkdtemp(pattern);
    source_ = systemPath(writeBenchGuns(directory_, kGuns));
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
