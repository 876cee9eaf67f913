// The millisecond timer of the Clock on the host's monotonic clock.
#include "platform/host_timer.h"

#include <time.h>

namespace {

class MonotonicTimer final : public HostTimer {};

MonotonicTimer monotonic;
HostTimer* installed = nullptr;

}  // namespace

int HostTimer::GetDevCaps(HostTimerCaps* caps) {
  // The monotonic clock resolves far below a millisecond, so the finest period is 1 ms; the
  // coarsest is what a 32-bit millisecond period allows.
  caps->periodMin = 1;
  caps->periodMax = 1000000;
  return 0;
}

void HostTimer::BeginPeriod(std::uint32_t) {}

void HostTimer::EndPeriod(std::uint32_t) {}

std::uint32_t HostTimer::Now() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  auto milliseconds = static_cast<std::uint64_t>(now.tv_sec) * 1000u +
                      static_cast<std::uint64_t>(now.tv_nsec) / 1000000u;
  return static_cast<std::uint32_t>(milliseconds);
}

HostTimer* hostTimer() { return installed ? installed : &monotonic; }

void hostInstallTimer(HostTimer* timer) { installed = timer; }
