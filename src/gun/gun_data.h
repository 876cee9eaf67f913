// GunData: one gun, a flat 560-byte record that is both the memory form and the binary file form.
#pragma once
#include <cstddef>
#include <cstdint>

// Fields stand in file order with nothing between them; text fields always end within their
// field. The derived fields and the slots exist for the reader of the binary file.
struct GunData {
  char TypeName[64];
  char FullName[128];
  float Caliber;      // millimetres
  float ROF;          // rounds per minute
  float MuzzleVel;    // metres per second
  float AmmoWt;       // kilograms (entered in grams)
  float WarheadWt;    // kilograms (entered in grams)
  float Accuracy;
  float Reliability;
  float CaliberTerm;   // derived: -(caliber in metres)^2
  float FireInterval;  // derived: seconds between rounds
  float WarheadTerm;   // derived: (8400 * warhead kg)^0.25
  float InvMuzzleVel;  // derived: seconds per metre
  std::int32_t SlotA;
  std::int32_t SlotB;
  char GunFireEffect[64];
  char GunFireSound[64];
  std::int32_t SlotC;
  std::int32_t SlotD;
  std::uint16_t PadBeforeAddLight;
  std::int16_t AddLight;  // 0 or 1
  float FireColor[3];     // red, green, blue
  float MaxLightRange;
  float EffectTime;
  char TracerTexture[64];
  std::int32_t TracerSlot;
  float TracerSize;
  float TracerDistFactor;
  float TracerLength;
  float MaxVisibleDist;
  float MaxStreakVisibleDist;
  char EffectClassName[64];
  std::uint32_t TailSlot;
};

static_assert(sizeof(float) == 4 && sizeof(GunData) == 560);
static_assert(offsetof(GunData, TypeName) == 0 && offsetof(GunData, FullName) == 64);
static_assert(offsetof(GunData, Caliber) == 192 && offsetof(GunData, ROF) == 196);
static_assert(offsetof(GunData, MuzzleVel) == 200 && offsetof(GunData, AmmoWt) == 204);
static_assert(offsetof(GunData, WarheadWt) == 208 && offsetof(GunData, Accuracy) == 212);
static_assert(offsetof(GunData, Reliability) == 216 && offsetof(GunData, CaliberTerm) == 220);
static_assert(offsetof(GunData, FireInterval) == 224 && offsetof(GunData, WarheadTerm) == 228);
static_assert(offsetof(GunData, InvMuzzleVel) == 232 && offsetof(GunData, SlotA) == 236);
static_assert(offsetof(GunData, SlotB) == 240 && offsetof(GunData, GunFireEffect) == 244);
static_assert(offsetof(GunData, GunFireSound) == 308 && offsetof(GunData, SlotC) == 372);
static_assert(offsetof(GunData, SlotD) == 376 && offsetof(GunData, PadBeforeAddLight) == 380);
static_assert(offsetof(GunData, AddLight) == 382 && offsetof(GunData, FireColor) == 384);
static_assert(offsetof(GunData, MaxLightRange) == 396 && offsetof(GunData, EffectTime) == 400);
static_assert(offsetof(GunData, TracerTexture) == 404 && offsetof(GunData, TracerSlot) == 468);
static_assert(offsetof(GunData, TracerSize) == 472 && offsetof(GunData, TracerDistFactor) == 476);
static_assert(offsetof(GunData, TracerLength) == 480 && offsetof(GunData, MaxVisibleDist) == 484);
static_assert(offsetof(GunData, MaxStreakVisibleDist) == 488);
static_assert(offsetof(GunData, EffectClassName) == 492 && offsetof(GunData, TailSlot) == 556);

// Sets the four derived fields and SlotA..SlotD from the entered fields: products and quotients
// in double precision, one rounding at each store. Nothing is validated: a zero divisor gives
// infinity and a negative warhead weight a NaN.
void GunDataDerive(GunData* record);
