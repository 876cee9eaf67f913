// The process's one pseudo-random generator: a linear congruential generator whose 15 result
// bits are taken from the high half of its state, where the low-order cycles don't show.
#include "platform/host_random.h"

namespace {
std::uint32_t state = 1;
}  // namespace

void hostRandomSeed(std::uint32_t seed) { state = seed; }

std::int32_t hostRandom() {
  state = state * 1103515245u + 12345u;
  return static_cast<std::int32_t>((state >> 16) & 0x7FFFu);
}
