// What the tests' probe plug-in reports back: how often its entry points ran.
#pragma once
#include <cstdint>

struct Probe {
  std::int32_t inits = 0;
  std::int32_t exits = 0;
  // Asked from inside InitDLL: the library's load count at that moment.
  std::int32_t (*readRefCount)() = nullptr;
  std::int32_t refCountDuringInit = 0;
};
