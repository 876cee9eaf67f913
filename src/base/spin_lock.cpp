// SpinLock: the two-word lock embedded in every locking service.
#include "base/spin_lock.h"

#include "platform/host_sync.h"

void SpinLock::Reset() {
  locked = 0;
  sleepMs = 5;
}

void SpinLock::Acquire() {
  // With one thread nobody else can hold the word: plain stores do what the locked exchange
  // would, without its cost on every allocation. A lock this thread holds already still waits.
  if (hostIsSingleThreaded() && locked == 0) {
    locked = 1;
    return;
  }
  while (hostAtomicExchange(&locked, 1) != 0) hostSleepMs(static_cast<std::uint32_t>(sleepMs));
}

// A store with release order frees the lock as the exchange would, at a fraction of its cost.
void SpinLock::Release() { hostAtomicStoreRelease(&locked, 0); }
