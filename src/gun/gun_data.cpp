// GunData: one gun, a flat 560-byte record that is both the memory form and the binary file form.
#include "gun/gun_data.h"

#include <cmath>

namespace {

// The constants differ in width, and the widths show in the last bits of the results.
constexpr float kMillimetre = 0.001f;  // single precision, widened for the product
constexpr float kSecondsPerMinute = 60.0f;
constexpr float kOne = 1.0f;
constexpr double kWarheadScale = 8400.0;
constexpr double kFourthRoot = 0.25;

}  // namespace

void GunDataDerive(GunData* record) {
  double metres = static_cast<double>(record->Caliber) * static_cast<double>(kMillimetre);
  record->CaliberTerm = static_cast<float>(-(metres * metres));
  record->FireInterval =
      static_cast<float>(static_cast<double>(kSecondsPerMinute) / static_cast<double>(record->ROF));
  record->WarheadTerm = static_cast<float>(
      std::pow(static_cast<double>(record->WarheadWt) * kWarheadScale, kFourthRoot));
  record->InvMuzzleVel =
      static_cast<float>(static_cast<double>(kOne) / static_cast<double>(record->MuzzleVel));
  record->SlotA = record->SlotB = record->SlotC = record->SlotD = -1;
}
