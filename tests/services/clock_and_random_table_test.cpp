// The Clock on a scripted millisecond counter, and the random table's cycle and ranges.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kernel_fixture.h"
#include "platform/host_timer.h"
#include "services/clock.h"
#include "services/random_table.h"

// A counter that moves on by `step` at every reading, and records the period calls.
class ScriptedTimer final : public HostTimer {
 public:
  ScriptedTimer() { hostInstallTimer(this); }
  ~ScriptedTimer() { hostInstallTimer(nullptr); }
  int GetDevCaps(HostTimerCaps* out) override {
    *out = caps;
    return capsResult;
  }
  void BeginPeriod(std::uint32_t ms) override { calls += "begin " + std::to_string(ms) + ","; }
  void EndPeriod(std::uint32_t ms) override { calls += "end " + std::to_string(ms) + ","; }
  std::uint32_t Now() override { return (now += step) - step; }

  HostTimerCaps caps{1, 1000000};
  int capsResult = 0;
  std::uint32_t now = 1000, step = 1;
  std::string calls;
};

class ClockTest : public KernelTest {
 protected:
  ScriptedTimer timer;
  Clock clock;
};

// The counter's wrap loses 1 ms; Delay counts from the last tick, not from its call.
TEST_F(ClockTest, TickWaitsForTheFramePeriodDelayCountsFromTheTickAndResetStartsAgain) {
  timer.now = 0xFFFFFFFEu;
  clock.Init();  // period 1, started at ...FE and ticked once at ...FF: elapsed 1
  const struct { std::uint32_t period, now, step, elapsed, interval; float secs, rate; } rows[] = {
      {0, 0xFFFFFFFFu, 0, 1, 0, 0.0f, -1.0f},  // the same millisecond: no rate
      {0, 0, 0, 1, 0, 0.0f, -1.0f},
      {10, 0, 1, 11, 10, 0.01f, 100.0f},
      {4, 10, 4, 15, 4, 0.004f, 250.0f},
      {3, 14, 7, 22, 7, 0.007f, static_cast<float>(1.0 / (7 * 0.001))},  // the first reading past
  };
  for (const auto& row : rows) {
    clock.SetPeriod(row.period);
    timer.now = row.now;
    timer.step = row.step;
    clock.Tick();
    const auto read = std::tuple(clock.GetElapsed(), clock.GetInterval(),
                                 clock.GetIntervalSeconds(), clock.GetFrameRate());
    EXPECT_EQ(read, std::tuple(row.elapsed, row.interval, row.secs, row.rate)) << row.now;
  }
  timer.step = 1;  // the last tick read elapsed 22, at the counter's 21
  for (std::uint32_t wait : {0u, 5u, 30u}) {  // 20 ms after the tick: at once, or the rest
    timer.now = 21 + 20;
    clock.Delay(wait);
    EXPECT_EQ(timer.now - 1, 21 + std::max(wait, 20u)) << wait;  // the last reading
  }
  clock.SetPeriod(5);
  timer.now = 50000;
  clock.Reset();
  EXPECT_EQ(clock.GetElapsed() + clock.lastElapsed, 10u);
}

TEST_F(ClockTest, BringUpRefusesAMissingOrCoarseTimer) {
  const struct { std::uint32_t fails, periodMin, period; const char *trace, *calls; } rows[] = {
      {1, 1, 0, "MSG|Unable to get TimeCaps!", "end 0,"},
      {0, 18, 0, "MSG|Not enough timer resolution (18,1000000)!", "end 0,"},
      {0, 17, 17, "MSG|Clock with period 17 initialized (17,1000000).", "begin 17,end 17,"},
  };
  for (const auto& row : rows) {
    TraceCapture traces;
    timer.calls.clear();
    timer.capsResult = static_cast<int>(row.fails);
    timer.caps.periodMin = row.periodMin;
    clock.Init();  // a failed bring-up leaves the frame period as it was: 0
    clock.Stop();
    EXPECT_TRUE(traces.Has(row.trace)) << row.trace;
    EXPECT_EQ(clock.framePeriod, row.period);
    EXPECT_EQ(timer.calls, row.calls) << row.trace;
  }
}

// The generator gives 0 to 32767; the table scales it below 1, so no range reaches its bound.
TEST(RandomTable, DrawsCycleThroughTheTableFromItsSeedAndStayBelowTheirBounds) {
  RandomTable table;
  table.Init();
  EXPECT_EQ(table.GetSeed(), 1u);
  std::vector<float> first;
  for (int i = 0; i < RandomTable::kSize; i++) first.push_back(table.NextFloat(1.0f));
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);  // the 4097th draw
  EXPECT_GT(std::ranges::count_if(first, [&](float v) { return v != first[0]; }), 4000);
  table.SetSeed(1);  // the same seed gives the same sequence, whatever was drawn between
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);
  table.drawIndex = 0xFFFFFFFFu;  // the index wraps on a multiple of the table's size
  EXPECT_EQ(table.NextFloat(1.0f), first[RandomTable::kSize - 1]);
  EXPECT_EQ(table.NextFloat(1.0f), first[0]);
  EXPECT_TRUE(std::ranges::all_of(table.values, [](float v) { return v >= 0 && v < 1; }));
  table.values[7] = 32767.0f / 32768.0f;  // the largest value the generator can give
  for (auto [range, largest] : {std::pair{1, 0}, {0, 0}, {-100, -99}, {32768, 32767}}) {
    table.drawIndex = 7;
    EXPECT_EQ(table.NextInt(range), largest) << range;
  }
  table.drawIndex = 7;
  EXPECT_EQ(table.NextShort(), 32766);
}
