// SpinLock: the two-word lock embedded in every locking service.
#include "base/spin_lock.h"

#include "platform/host_sync.h"

void SpinLock::Reset() {
  locked = 0;
  sleepMs = 5;
}

void SpinLock::Acquire() {
  while (hostAtomicExchange(&locked, 1) != 0) hostSleepMs(static_cast<std::uint32_t>(sleepMs));
}

void SpinLock::Release() { hostAtomicExchange(&locked, 0); }
