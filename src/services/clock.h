// Clock: frame timing for a loop that ticks once per frame, on the host's millisecond timer.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

#include "base/spin_lock.h"

class Clock : public ClockInterface {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;

  void Reset() override;
  void SetPeriod(std::uint32_t milliseconds) override;
  std::uint32_t GetElapsed() override;
  float GetElapsedSeconds() override;
  void Tick() override;
  std::uint32_t GetInterval() override;
  float GetIntervalSeconds() override;
  float GetFrameRate() override;
  void Delay(std::uint32_t milliseconds) override;

  // Takes the timer's finest period (unless it is 18 ms or coarser) as the frame period and
  // ticks once. A timer that can't serve is traced; the Clock then works with period 0.
  void Init();
  // Gives the timer period back.
  void Stop();

  std::uint32_t timerPeriod = 0;
  std::uint32_t startTime = 0;
  std::uint32_t lastElapsed = 0;
  std::uint32_t framePeriod = 0;
  std::uint32_t elapsed = 0;
  std::uint32_t interval = 0;
  float elapsedSeconds = 0;
  float intervalSeconds = 0;
  float frameRate = 0;
  SpinLock lock{0, 5};

 private:
  std::uint32_t SinceStart() const;
  void TickLocked();
  void StartLocked();
  // Reads a field under the lock.
  template <typename Field>
  Field Locked(const Field& field);
};
