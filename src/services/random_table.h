// RandomTable: cheap random numbers, 4096 values drawn once per seeding and read in a cycle.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

// No lock: draws from two threads may read the same value.
class RandomTable : public RandomInterface {
 public:
  static constexpr int kSize = 4096;

  RandomTable() = default;
  RandomTable(const RandomTable&) = delete;
  RandomTable& operator=(const RandomTable&) = delete;

  void SetSeed(std::uint32_t seed) override;
  std::uint32_t GetSeed() override;
  float NextFloat(float scale) override;
  std::int32_t NextInt(std::int32_t range) override;
  std::int32_t NextShort() override;

  // Seeds with 1.
  void Init();

  float values[kSize] = {};
  std::uint32_t drawIndex = 0;
  std::uint32_t seed = 0;

 private:
  float Draw();
};

// Null before bring-up has bound it and after shutdown has unbound it.
extern RandomTable* gRND;
