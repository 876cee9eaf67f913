// Prints the records of a binary gun file as readable text, every field by name.
#include "tools/gun_dump.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "files/file_manager.h"
#include "gun/gun_data.h"
#include "platform/number_text.h"

namespace {

constexpr std::uint32_t kCountSize = 4;

void printName(std::FILE* out, const char* name) { std::fprintf(out, "  %-21s = ", name); }

void printText(std::FILE* out, const char* name, const char* field, std::size_t size) {
  printName(out, name);
  std::fprintf(out, "\"%.*s\"\n", static_cast<int>(strnlen(field, size)), field);
}

void printFloat(std::FILE* out, const char* name, float value) {
  char text[400];
  numFormatFixed(text, sizeof text, static_cast<double>(value), 6);
  printName(out, name);
  std::fprintf(out, "%s (bits 0x%08X)\n", text, std::bit_cast<std::uint32_t>(value));
}

void printInt(std::FILE* out, const char* name, std::int32_t value) {
  char text[16];
  numFormatInt(text, sizeof text, value);
  printName(out, name);
  std::fprintf(out, "%s\n", text);
}

void printRecord(std::FILE* out, const GunData& gun) {
  printText(out, "TypeName", gun.TypeName, sizeof gun.TypeName);
  printText(out, "FullName", gun.FullName, sizeof gun.FullName);
  printFloat(out, "Caliber (mm)", gun.Caliber);
  printFloat(out, "ROF (rpm)", gun.ROF);
  printFloat(out, "MuzzleVel (m/s)", gun.MuzzleVel);
  printFloat(out, "AmmoWt (kg)", gun.AmmoWt);
  printFloat(out, "WarheadWt (kg)", gun.WarheadWt);
  printFloat(out, "Accuracy", gun.Accuracy);
  printFloat(out, "Reliability", gun.Reliability);
  printFloat(out, "CaliberTerm", gun.CaliberTerm);
  printFloat(out, "FireInterval (s)", gun.FireInterval);
  printFloat(out, "WarheadTerm", gun.WarheadTerm);
  printFloat(out, "InvMuzzleVel (s/m)", gun.InvMuzzleVel);
  printInt(out, "SlotA", gun.SlotA);
  printInt(out, "SlotB", gun.SlotB);
  printText(out, "GunFireEffect", gun.GunFireEffect, sizeof gun.GunFireEffect);
  printText(out, "GunFireSound", gun.GunFireSound, sizeof gun.GunFireSound);
  printInt(out, "SlotC", gun.SlotC);
  printInt(out, "SlotD", gun.SlotD);
  printInt(out, "PadBeforeAddLight", gun.PadBeforeAddLight);
  printInt(out, "AddLight", gun.AddLight);
  printFloat(out, "FireColor red", gun.FireColor[0]);
  printFloat(out, "FireColor green", gun.FireColor[1]);
  printFloat(out, "FireColor blue", gun.FireColor[2]);
  printFloat(out, "MaxLightRange", gun.MaxLightRange);
  printFloat(out, "EffectTime", gun.EffectTime);
  printText(out, "TracerTexture", gun.TracerTexture, sizeof gun.TracerTexture);
  printInt(out, "TracerSlot", gun.TracerSlot);
  printFloat(out, "TracerSize", gun.TracerSize);
  printFloat(out, "TracerDistFactor", gun.TracerDistFactor);
  printFloat(out, "TracerLength", gun.TracerLength);
  printFloat(out, "MaxVisibleDist", gun.MaxVisibleDist);
  printFloat(out, "MaxStreakVisibleDist", gun.MaxStreakVisibleDist);
  printText(out, "EffectClassName", gun.EffectClassName, sizeof gun.EffectClassName);
  printInt(out, "TailSlot", static_cast<std::int32_t>(gun.TailSlot));
}

bool readExactly(std::int32_t handle, void* buffer, std::uint32_t size) {
  return gFMG->ReadFile(handle, buffer, size) == static_cast<std::int32_t>(size);
}

std::int32_t decodeCount(const unsigned char* bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; i++) value |= static_cast<std::uint32_t>(bytes[i]) << (8 * i);
  return static_cast<std::int32_t>(value);
}

}  // namespace

int GunDumpFile(const char* path, const char* shownName, std::FILE* out, std::FILE* err) {
  std::uint32_t size = gFMG->GetFileSize(path);
  std::int32_t handle = gFMG->OpenFile(path);
  if (handle == -1) {
    std::fprintf(err, "tessarine-convert: can't read %s\n", shownName);
    return 0;
  }
  unsigned char countBytes[kCountSize];
  std::int32_t count = readExactly(handle, countBytes, kCountSize) ? decodeCount(countBytes) : -1;
  std::uint64_t expected = kCountSize + std::uint64_t{sizeof(GunData)} * static_cast<std::uint64_t>(count < 0 ? 0 : count);
  if (count < 0 || size != expected) {
    gFMG->CloseFile(handle);
    std::fprintf(err,
                 "tessarine-convert: %s is no gun data file: %u bytes, not 4 + 560 x the count "
                 "it holds\n",
                 shownName, size);
    return 0;
  }
  std::fprintf(out, "%s: %d record(s)\n", shownName, count);
  for (std::int32_t i = 0; i < count; i++) {
    GunData gun;
    if (!readExactly(handle, &gun, sizeof gun)) {
      gFMG->CloseFile(handle);
      std::fprintf(err, "tessarine-convert: %s ends inside record %d\n", shownName, i + 1);
      return 0;
    }
    std::fprintf(out, "\nRecord %d (offset %u)\n", i + 1,
                 static_cast<unsigned>(kCountSize + sizeof(GunData) * static_cast<unsigned>(i)));
    printRecord(out, gun);
  }
  gFMG->CloseFile(handle);
  return 1;
}
