// The process's one pseudo-random generator, with the range 0 to 32767 on every host.
#pragma once
#include <cstdint>

constexpr std::int32_t kHostRandomMax = 32767;

// Starts the sequence anew from `seed`.
void hostRandomSeed(std::uint32_t seed);
// The next number of the sequence, from 0 to kHostRandomMax.
std::int32_t hostRandom();
