// Atomic 32-bit words and a millisecond sleep, for spin locks and reference counts.
#pragma once
#include <cstdint>

// Each returns the value the word held before (exchange) or after (increment, decrement).
std::int32_t hostAtomicExchange(std::int32_t* word, std::int32_t value);
std::int32_t hostAtomicIncrement(std::int32_t* word);
std::int32_t hostAtomicDecrement(std::int32_t* word);
// Stores `value` with release order: what the thread wrote before is seen by the next thread
// that exchanges the word. A plain store on x86, where an exchange is a locked instruction.
void hostAtomicStoreRelease(std::int32_t* word, std::int32_t value);

// 1 while the process has never had a second thread, so that no other thread can see a word
// this one writes; 0 once one has been started (and from then on).
int hostIsSingleThreaded();

void hostSleepMs(std::uint32_t milliseconds);
