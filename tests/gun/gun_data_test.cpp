// Tests of GunDataDerive: the documented bit patterns, zero and negative inputs.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "gun/gun_data.h"

namespace {

std::uint32_t bits(float value) { return std::bit_cast<std::uint32_t>(value); }

GunData zeroRecord() {
  GunData record;
  std::memset(&record, 0, sizeof record);
  return record;
}

}  // namespace

TEST(GunData, WorkedExampleGivesItsBitPatterns) {
  GunData record = zeroRecord();
  record.Caliber = 20;
  record.ROF = 600;
  record.MuzzleVel = 800;
  record.WarheadWt = 0.1f;
  ASSERT_EQ(bits(record.WarheadWt), 0x3DCCCCCDu);
  GunDataDerive(&record);
  EXPECT_EQ(bits(record.CaliberTerm), 0xB9D1B719u);
  EXPECT_EQ(bits(record.FireInterval), 0x3DCCCCCDu);
  EXPECT_EQ(bits(record.WarheadTerm), 0x40AC4627u);
  EXPECT_EQ(bits(record.InvMuzzleVel), 0x3AA3D70Au);
  for (std::int32_t slot : {record.SlotA, record.SlotB, record.SlotC, record.SlotD}) {
    EXPECT_EQ(slot, -1);
  }
  EXPECT_EQ(record.TracerSlot, 0);
  EXPECT_EQ(record.TailSlot, 0u);
}

TEST(GunData, ZeroInputsGiveNegativeZeroAndInfinities) {
  GunData record = zeroRecord();
  GunDataDerive(&record);
  EXPECT_EQ(bits(record.CaliberTerm), 0x80000000u);
  EXPECT_EQ(bits(record.FireInterval), 0x7F800000u);
  EXPECT_EQ(bits(record.InvMuzzleVel), 0x7F800000u);
  EXPECT_EQ(bits(record.WarheadTerm), 0u);
}

TEST(GunData, NegativeWarheadWeightGivesNaNAndNothingStops) {
  GunData record = zeroRecord();
  record.WarheadWt = -0.5f;
  record.ROF = 60;
  GunDataDerive(&record);
  EXPECT_TRUE(std::isnan(record.WarheadTerm));
  EXPECT_EQ(record.FireInterval, 1.0f);
}
