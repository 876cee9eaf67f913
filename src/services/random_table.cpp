// RandomTable: cheap random numbers, 4096 values drawn once per seeding and read in a cycle.
#include "services/random_table.h"

#include "platform/host_random.h"

RandomTable* gRND = nullptr;

namespace {
// 2^-15: turns the generator's 0..32767 into 0 .. 32767/32768, exactly in a float.
constexpr float kGeneratorScale = 3.0517578125e-05f;
// kSize is a power of two, so a mask replaces the remainder, also across the index's wrap.
constexpr std::uint32_t kIndexMask = RandomTable::kSize - 1;
}  // namespace

void RandomTable::SetSeed(std::uint32_t newSeed) {
  drawIndex = 0;
  seed = newSeed;
  hostRandomSeed(newSeed);
  for (float& value : values) value = static_cast<float>(hostRandom()) * kGeneratorScale;
}

std::uint32_t RandomTable::GetSeed() { return seed; }

float RandomTable::Draw() { return values[drawIndex++ & kIndexMask]; }

float RandomTable::NextFloat(float scale) {
  return static_cast<float>(static_cast<double>(scale) * Draw());
}

std::int32_t RandomTable::NextInt(std::int32_t range) {
  return static_cast<std::int32_t>(static_cast<double>(range) * Draw());
}

std::int32_t RandomTable::NextShort() { return static_cast<std::int32_t>(Draw() * 32767.0); }

void RandomTable::Init() { SetSeed(1); }
