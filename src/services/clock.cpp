// Clock: frame timing for a loop that ticks once per frame, on the host's millisecond timer.
#include "services/clock.h"

#include "base/debug_system.h"
#include "platform/host_timer.h"

namespace {
// A timer this coarse can't time frames.
constexpr std::uint32_t kCoarsestUsablePeriod = 17;
}  // namespace

std::uint32_t Clock::SinceStart() const {
  std::uint32_t now = hostTimer()->Now();
  // After the counter wrapped one more millisecond is taken off, so elapsed stands still once.
  return now >= startTime ? now - startTime : now - startTime - 1u;
}

void Clock::TickLocked() {
  interval = 0;
  do {
    elapsed = SinceStart();
    interval = elapsed - lastElapsed;
  } while (interval < framePeriod);
  lastElapsed = elapsed;
  elapsedSeconds = static_cast<float>(elapsed * 0.001);
  double seconds = interval * 0.001;
  intervalSeconds = static_cast<float>(seconds);
  frameRate = seconds > 0.0 ? static_cast<float>(1.0 / seconds) : -1.0f;
}

template <typename Field>
Field Clock::Locked(const Field& field) {
  SpinLockGuard guard(lock);
  return field;
}

void Clock::StartLocked() {
  startTime = hostTimer()->Now();
  lastElapsed = 0;
  interval = 0;
  TickLocked();
}

void Clock::Reset() {
  SpinLockGuard guard(lock);
  StartLocked();
}

void Clock::SetPeriod(std::uint32_t milliseconds) {
  SpinLockGuard guard(lock);
  framePeriod = milliseconds;
}

std::uint32_t Clock::GetElapsed() { return Locked(elapsed); }

float Clock::GetElapsedSeconds() { return Locked(elapsedSeconds); }

void Clock::Tick() {
  SpinLockGuard guard(lock);
  TickLocked();
}

std::uint32_t Clock::GetInterval() { return Locked(interval); }

float Clock::GetIntervalSeconds() { return Locked(intervalSeconds); }

float Clock::GetFrameRate() { return Locked(frameRate); }

void Clock::Delay(std::uint32_t milliseconds) {
  SpinLockGuard guard(lock);
  while (SinceStart() - lastElapsed < milliseconds) {
  }
}

void Clock::Init() {
  lock.Reset();
  SpinLockGuard guard(lock);
  HostTimerCaps caps{};
  if (hostTimer()->GetDevCaps(&caps) != 0) {
    dbgTrace("Unable to get TimeCaps!");
    return;
  }
  if (caps.periodMin > kCoarsestUsablePeriod) {
    dbgTrace("Not enough timer resolution (%d,%d)!", caps.periodMin, caps.periodMax);
    return;
  }
  timerPeriod = caps.periodMin;
  hostTimer()->BeginPeriod(timerPeriod);
  framePeriod = timerPeriod;
  StartLocked();
  dbgTrace("Clock with period %d initialized (%d,%d).", timerPeriod, caps.periodMin,
           caps.periodMax);
}

void Clock::Stop() {
  SpinLockGuard guard(lock);
  hostTimer()->EndPeriod(timerPeriod);
  dbgTrace("Clock with period %d stopped...", timerPeriod);
}
