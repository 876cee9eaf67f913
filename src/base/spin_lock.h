// SpinLock: the two-word lock embedded in every locking service.
#pragma once
#include <cstdint>

// Acquire exchanges `locked` with 1 and sleeps `sleepMs` between attempts; not recursive, no
// time-out: a thread that takes a lock it already holds waits for ever.
struct SpinLock {
  std::int32_t locked;
  std::int32_t sleepMs;

  // Plain stores, for a service's initialisation: free, with the sleep of every service (5 ms).
  void Reset();
  void Acquire();
  void Release();
};

// Holds a lock for one scope, so that every path out releases it.
class SpinLockGuard {
 public:
  explicit SpinLockGuard(SpinLock& lock) : lock_(lock) { lock_.Acquire(); }
  ~SpinLockGuard() { lock_.Release(); }
  SpinLockGuard(const SpinLockGuard&) = delete;
  SpinLockGuard& operator=(const SpinLockGuard&) = delete;

 private:
  SpinLock& lock_;
};
