// Atomic 32-bit words and a millisecond sleep, for spin locks and reference counts.
#include "platform/host_sync.h"

#include <atomic>
#include <chrono>
#include <thread>

#if defined(__has_include) && __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#define TESS_HAS_SINGLE_THREADED 1
#else
#define TESS_HAS_SINGLE_THREADED 0
#endif

std::int32_t hostAtomicExchange(std::int32_t* word, std::int32_t value) {
  return std::atomic_ref<std::int32_t>(*word).exchange(value);
}

std::int32_t hostAtomicIncrement(std::int32_t* word) {
  // The word wraps; so does the value reported, without signed overflow.
  auto before = static_cast<std::uint32_t>(std::atomic_ref<std::int32_t>(*word).fetch_add(1));
  return static_cast<std::int32_t>(before + 1u);
}

std::int32_t hostAtomicDecrement(std::int32_t* word) {
  auto before = static_cast<std::uint32_t>(std::atomic_ref<std::int32_t>(*word).fetch_sub(1));
  return static_cast<std::int32_t>(before - 1u);
}

void hostAtomicStoreRelease(std::int32_t* word, std::int32_t value) {
  std::atomic_ref<std::int32_t>(*word).store(value, std::memory_order_release);
}

int hostIsSingleThreaded() {
#if TESS_HAS_SINGLE_THREADED
  // The C library clears it for good when a thread is created, before the thread runs.
  return __libc_single_threaded ? 1 : 0;
#else
  return 0;
#endif
}

void hostSleepMs(std::uint32_t milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
