// The millisecond timer of the Clock: a 32-bit monotonic counter and its period, replaceable
// by tests so that a wrap of the counter can be reached without waiting 49 days.
#pragma once
#include <cstdint>

struct HostTimerCaps {
  std::uint32_t periodMin;
  std::uint32_t periodMax;
};

class HostTimer {
 public:
  // 0 and the finest and coarsest periods in milliseconds, or not 0 when the host can't tell.
  virtual int GetDevCaps(HostTimerCaps* caps);
  // Asks for (or gives back) a timer period; the host's monotonic clock needs neither.
  virtual void BeginPeriod(std::uint32_t period);
  virtual void EndPeriod(std::uint32_t period);
  // Milliseconds of a monotonic clock, modulo 2^32.
  virtual std::uint32_t Now();

 protected:
  ~HostTimer() = default;
};

// The timer in force: the installed one, or the host's. Installing null restores the host's.
HostTimer* hostTimer();
void hostInstallTimer(HostTimer* timer);
