// Tests of the Clock on a scripted millisecond counter: ticks, rates, the wrap, Delay and the
// bring-up's refusals of a coarse or missing timer.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "kernel_fixture.h"
#include "platform/host_timer.h"
#include "services/clock.h"

namespace {

// A counter that moves on by `step` at every reading, and records the period calls.
class ScriptedTimer final : public HostTimer {
 public:
  int GetDevCaps(HostTimerCaps* out) override {
    *out = caps;
    return capsResult;
  }
  void BeginPeriod(std::uint32_t period) override { calls.push_back("begin " + std::to_string(period)); }
  void EndPeriod(std::uint32_t period) override { calls.push_back("end " + std::to_string(period)); }
  std::uint32_t Now() override {
    reads++;
    std::uint32_t value = now;
    now += step;
    return value;
  }

  HostTimerCaps caps{1, 1000000};
  int capsResult = 0;
  std::uint32_t now = 1000;
  std::uint32_t step = 1;
  int reads = 0;
  std::vector<std::string> calls;
};

class ClockTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    hostInstallTimer(&timer);
  }
  void TearDown() override {
    hostInstallTimer(nullptr);
    KernelTest::TearDown();
  }
  ScriptedTimer timer;
  Clock clock;
};

}  // namespace

TEST_F(ClockTest, TickWaitsForTheFramePeriodAndStoresTheRates) {
  clock.Init();  // period 1, ticked once
  timer.calls.clear();
  struct Case {
    std::uint32_t period, step, interval;
    float seconds, rate;
  } cases[] = {
      {0, 0, 0, 0.0f, -1.0f},  // same millisecond: one reading, no rate
      {10, 1, 10, 0.01f, 100.0f},
      {4, 4, 4, 0.004f, 250.0f},
      {3, 7, 7, 0.007f, static_cast<float>(1.0 / (7 * 0.001))},  // the first reading past
  };
  for (const Case& c : cases) {
    clock.SetPeriod(c.period);  // doesn't touch the timer's period
    int readsBefore = timer.reads;
    timer.step = c.step;
    timer.now = 1000 + clock.GetElapsed();  // the counter stands where the last tick read it
    std::uint32_t before = clock.GetElapsed();
    clock.Tick();
    EXPECT_EQ(clock.GetInterval(), c.interval) << c.period;
    EXPECT_EQ(clock.GetElapsed(), before + c.interval);
    EXPECT_EQ(clock.GetIntervalSeconds(), c.seconds) << c.period;
    EXPECT_EQ(clock.GetFrameRate(), c.rate) << c.period;
    if (c.period == 0) {
      EXPECT_EQ(timer.reads, readsBefore + 1);
    }
  }
  EXPECT_TRUE(timer.calls.empty());
}

TEST_F(ClockTest, LosesOneMillisecondWhenTheCounterWraps) {
  timer.now = 0xFFFFFFFEu;
  clock.Init();  // starts at ...FE, ticks once at ...FF: elapsed 1
  ASSERT_EQ(clock.GetElapsed(), 1u);
  std::vector<std::uint32_t> elapsed;
  for (int i = 0; i < 3; i++) {  // readings 0, 1, 2 after the wrap
    clock.SetPeriod(0);
    clock.Tick();
    elapsed.push_back(clock.GetElapsed());
  }
  EXPECT_EQ(elapsed, (std::vector<std::uint32_t>{1, 2, 3}));
  EXPECT_EQ(clock.GetInterval(), 1u);
}

TEST_F(ClockTest, DelayCountsFromTheLastTickAndResetStartsAgain) {
  clock.Init();
  for (std::uint32_t wait : {0u, 5u}) {  // 0, or less than has passed since the tick: at once
    timer.now += 20;
    int reads = timer.reads;
    clock.Delay(wait);
    EXPECT_EQ(timer.reads, reads + 1) << wait;
  }
  timer.now = 1000 + 1 + 20;  // 20 ms after the tick
  std::uint32_t elapsed = clock.GetElapsed();
  clock.Delay(30);  // waits for the rest of the 30 ms, changes no field
  EXPECT_EQ(timer.now - 1, 1000u + 1 + 30);  // the last reading
  EXPECT_EQ(clock.GetElapsed(), elapsed);

  clock.SetPeriod(5);
  timer.now = 50000;
  clock.Reset();
  EXPECT_EQ(clock.GetElapsed(), 5u);
  EXPECT_EQ(clock.lastElapsed, 5u);
}

TEST_F(ClockTest, BringUpRefusesAMissingOrCoarseTimer) {
  struct Case {
    int capsResult;
    std::uint32_t periodMin;
    const char* trace;
    std::uint32_t period;
  } cases[] = {
      {1, 1, "MSG|Unable to get TimeCaps!", 0},
      {0, 18, "MSG|Not enough timer resolution (18,1000000)!", 0},
      {0, 17, "MSG|Clock with period 17 initialized (17,1000000).", 17},
  };
  for (const Case& c : cases) {
    TraceCapture traces;
    Clock fresh;
    timer.calls.clear();
    timer.capsResult = c.capsResult;
    timer.caps.periodMin = c.periodMin;
    fresh.Init();
    fresh.Stop();
    EXPECT_TRUE(traces.Has(c.trace)) << c.trace;
    EXPECT_EQ(fresh.framePeriod, c.period);
    std::vector<std::string> expected;
    if (c.period) expected.push_back("begin " + std::to_string(c.period));
    expected.push_back("end " + std::to_string(c.period));  // also after a failed start
    EXPECT_EQ(timer.calls, expected) << c.trace;
  }
}
