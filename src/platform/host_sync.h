// Atomic 32-bit words and a millisecond sleep, for spin locks and reference counts.
#pragma once
#include <cstdint>

// Each returns the value the word held before (exchange) or after (increment, decrement).
std::int32_t hostAtomicExchange(std::int32_t* word, std::int32_t value);
std::int32_t hostAtomicIncrement(std::int32_t* word);
std::int32_t hostAtomicDecrement(std::int32_t* word);

void hostSleepMs(std::uint32_t milliseconds);
