// Prints the records of a binary gun file as readable text, every field by name.
#include "tools/gun_dump.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include "gun/gun_data.h"
#include "platform/number_text.h"
#include "tools/gun_dat_reader.h"

namespace {

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

}  // namespace

int GunDumpFile(const char* path, const char* shownName, std::FILE* out, std::FILE* err) {
  GunDatReader reader;
  if (!reader.Open(path, shownName, err)) return 0;
  std::fprintf(out, "%s: %d record(s)\n", shownName, reader.count);
  GunData gun;
  for (std::int32_t i = 0; reader.Next(&gun); i++) {
    std::fprintf(out, "\nRecord %d (offset %u)\n", i + 1,
                 static_cast<unsigned>(4 + sizeof(GunData) * static_cast<unsigned>(i)));
    printRecord(out, gun);
  }
  return reader.Whole(err);
}
