// The Clock on a scripted millisecond counter.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "kernel_fixture.h"
#include "platform/host_timer.h"
#include "services/clock.h"

namespace {

// A counter that moves on by `step` at every reading, and records the period calls.
class ScriptedTimer final : public HostTimer {
 public:
  ScriptedTimer() { hostInstallTimer(this); }
  ~ScriptedTimer() { hostInstallTimer(nullptr); }
  int GetDevCaps(HostTimerCaps* out) override { return *out = caps, capsResult; }
  void BeginPeriod(std::uint32_t period) override { calls += "begin " + std::to_string(period) + ","; }
  void EndPeriod(std::uint32_t period) override { calls += "end " + std::to_string(period) + ","; }
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
  const struct { std::uint32_t period, now, step, elapsed, interval; float seconds, rate; } rows[] = {
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
    EXPECT_EQ(clock.GetElapsed(), row.elapsed) << row.now;
    EXPECT_EQ(clock.GetInterval(), row.interval) << row.now;
    EXPECT_EQ(clock.GetIntervalSeconds(), row.seconds) << row.now;
    EXPECT_EQ(clock.GetFrameRate(), row.rate) << row.now;
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

}  // namespace
