// The two gun files: the INI text file the user opens and saves, and its binary .dat sibling.
#include "gun/gun_file.h"

#include <bit>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "config/ini_file.h"
#include "files/file_manager.h"
#include "gun/gun_commands.h"
#include "gun/gun_data.h"
#include "gun/gun_list.h"
#include "platform/host_file.h"
#include "platform/number_text.h"

// Records go to the .dat file in their memory form, which must be the file's little-endian form.
static_assert(std::endian::native == std::endian::little);

// Reliability comes before Accuracy in the file, after it in the record.
const GunKey kGunKeys[kGunKeyCount] = {
    {"TypeName", GunKeyKind::kText, offsetof(GunData, TypeName), 64},
    {"FullName", GunKeyKind::kText, offsetof(GunData, FullName), 128},
    {"Caliber", GunKeyKind::kFloat, offsetof(GunData, Caliber), 0},
    {"ROF", GunKeyKind::kFloat, offsetof(GunData, ROF), 0},
    {"MuzzleVel", GunKeyKind::kFloat, offsetof(GunData, MuzzleVel), 0},
    {"AmmoWt", GunKeyKind::kFloat, offsetof(GunData, AmmoWt), 0},
    {"WarheadWt", GunKeyKind::kFloat, offsetof(GunData, WarheadWt), 0},
    {"Reliability", GunKeyKind::kFloat, offsetof(GunData, Reliability), 0},
    {"Accuracy", GunKeyKind::kFloat, offsetof(GunData, Accuracy), 0},
    {"AddLight", GunKeyKind::kBool, offsetof(GunData, AddLight), 0},
    {"MaxLightRange", GunKeyKind::kFloat, offsetof(GunData, MaxLightRange), 0},
    {"FireColor", GunKeyKind::kColor, offsetof(GunData, FireColor), 0},
    {"GunFireEffect", GunKeyKind::kText, offsetof(GunData, GunFireEffect), 64},
    {"GunFireSound", GunKeyKind::kText, offsetof(GunData, GunFireSound), 64},
    {"EffectClassName", GunKeyKind::kText, offsetof(GunData, EffectClassName), 64},
    {"EffectTime", GunKeyKind::kFloat, offsetof(GunData, EffectTime), 0},
    {"TracerTexture", GunKeyKind::kText, offsetof(GunData, TracerTexture), 64},
    {"TracerSize", GunKeyKind::kFloat, offsetof(GunData, TracerSize), 0},
    {"TracerDistFactor", GunKeyKind::kFloat, offsetof(GunData, TracerDistFactor), 0},
    {"TracerLength", GunKeyKind::kFloat, offsetof(GunData, TracerLength), 0},
    {"MaxVisibleDist", GunKeyKind::kFloat, offsetof(GunData, MaxVisibleDist), 0},
    {"MaxStreakVisibleDist", GunKeyKind::kFloat, offsetof(GunData, MaxStreakVisibleDist), 0},
};

void GunSectionName(char* out, int number) {
  char digits[16];
  std::size_t length = numFormatInt(digits, sizeof digits, number);
  std::strcpy(out, "GunData");
  for (std::size_t pad = length; pad < 3; pad++) std::strcat(out, "0");
  std::strcat(out, digits);
}

namespace {

constexpr const char* kSectionFormat = "GunData%03d";
constexpr int kPathSize = 260;
constexpr int kColorTextSize = 1024;  // three "%f" texts of any float, with their commas
// The binary file goes out in pieces of up to this many bytes rather than a write per record.
constexpr std::size_t kBinaryBatch = 32768;

// "%f,%f,%f" of the three colour components.
void colorText(char* out, const float* color) {
  std::size_t used = 0;
  for (int i = 0; i < 3; i++) {
    if (i > 0) out[used++] = ',';
    used += numFormatFixed(out + used, kColorTextSize - used, static_cast<double>(color[i]), 6);
  }
  out[used] = '\0';
}

void readKey(IniFile* ini, const char* section, const GunKey& key, GunData* record) {
  char* field = reinterpret_cast<char*>(record) + key.offset;
  switch (key.kind) {
    case GunKeyKind::kText:
      ini->IniGetString(section, key.name, "", field, key.size, 0);
      break;
    case GunKeyKind::kFloat: {
      float value = ini->IniGetFloat(section, key.name, 0.0f);
      std::memcpy(field, &value, sizeof value);
      break;
    }
    case GunKeyKind::kBool:
      record->AddLight = static_cast<std::int16_t>(ini->IniGetBool(section, key.name, 0));
      break;
    case GunKeyKind::kColor:
      IniGetColor(record->FireColor, ini, section, key.name);
      break;
  }
}

void writeKey(IniFile* ini, const char* section, const GunKey& key, const GunData* record) {
  const char* field = reinterpret_cast<const char*>(record) + key.offset;
  switch (key.kind) {
    case GunKeyKind::kText:
      ini->IniSetString(section, key.name, field);
      break;
    case GunKeyKind::kFloat: {
      float value;
      std::memcpy(&value, field, sizeof value);
      ini->IniSetFloat(section, key.name, value);
      break;
    }
    case GunKeyKind::kBool:
      ini->IniSetBool(section, key.name, record->AddLight);
      break;
    case GunKeyKind::kColor: {
      char text[kColorTextSize];
      colorText(text, record->FireColor);
      ini->IniSetString(section, key.name, text);
      break;
    }
  }
}

// The text of a save, gathered in one block. It counts the bytes the same save through an
// IniFile would copy into that file's arena: every section name, key name and text value that
// isn't empty, each with its terminator. A put that would outgrow the block or the arena fails.
struct SaveText {
  char* data;
  std::size_t used = 0;
  std::size_t arenaBytes = 0;

  bool Put(const char* text, std::size_t length) {
    if (length > static_cast<std::size_t>(IniFile::kArenaSize) - used) return false;
    std::memcpy(data + used, text, length);
    used += length;
    return true;
  }
  bool Put(const char* text) { return Put(text, std::strlen(text)); }
  bool Arena(const char* text) {
    arenaBytes += std::strlen(text) + 1;
    return arenaBytes <= static_cast<std::size_t>(IniFile::kArenaSize);
  }
};

// "name=value" of a text key as the IniFile stores it: the copy of the value is trimmed.
bool putText(SaveText* out, const char* value) {
  if (value[0] != '\0' && !out->Arena(value)) return false;
  char trimmed[kColorTextSize];
  std::strcpy(trimmed, value);
  strTrim(trimmed);
  return out->Put(trimmed);
}

// One key line; false when a text field has no terminator inside it, or the text is too long.
bool putKey(SaveText* out, const GunKey& key, const GunData* record) {
  const char* field = reinterpret_cast<const char*>(record) + key.offset;
  if (!out->Arena(key.name) || !out->Put(key.name) || !out->Put("=", 1)) return false;
  bool put = true;
  switch (key.kind) {
    case GunKeyKind::kText: {
      auto size = static_cast<std::size_t>(key.size);
      put = strnlen(field, size) < size && putText(out, field);
      break;
    }
    case GunKeyKind::kFloat: {
      float value;
      std::memcpy(&value, field, sizeof value);
      char number[64];
      put = out->Put(number, numFormatFixed(number, sizeof number, static_cast<double>(value), 6));
      break;
    }
    case GunKeyKind::kBool:
      put = out->Put(record->AddLight ? "TRUE" : "FALSE");
      break;
    case GunKeyKind::kColor: {
      char text[kColorTextSize];
      colorText(text, record->FireColor);
      put = putText(out, text);
      break;
    }
  }
  return put && out->Put("\n", 1);
}

// The text file of the list written straight from the records. Its bytes are those an IniFile
// given every key in turn writes, which is what a save makes wherever that IniFile takes every
// key: so this is used only where each text field ends inside its field and the arena would
// hold all the copies. False, with nothing written, where that isn't so or there's no memory.
bool saveTextDirect(const char* path) {
  SaveText out{static_cast<char*>(memAlloc(IniFile::kArenaSize))};
  if (!out.data) return false;
  bool fits = true;
  int number = 1;
  for (GunList.MoveFirst(); fits && GunList.current; GunList.MoveNext()) {
    char section[kGunSectionNameSize];
    GunSectionName(section, number++);
    fits = out.Arena(section) && out.Put("[", 1) && out.Put(section) && out.Put("]\n", 2);
    const auto* record = static_cast<const GunData*>(GunList.current->payload);
    for (const GunKey& key : kGunKeys) fits = fits && putKey(&out, key, record);
    fits = fits && out.Put("\n", 1);
  }
  if (fits) {
    char name[kPathSize];
    name[0] = '\0';
    fmgCheckFilename(nullptr, path, "INI", name, kPathSize);
    if (std::FILE* file = hostFileOpenStream(name, "w")) {
      std::fwrite(out.data, 1, out.used, file);
      std::fclose(file);
    }
  }
  memFree(out.data);
  return fits;
}

void saveText(const char* path) {
  if (saveTextDirect(path)) return;
  IniFile ini(path, 0, 1);
  int number = 1;
  for (GunList.MoveFirst(); GunList.current; GunList.MoveNext()) {
    char section[kGunSectionNameSize];
    GunSectionName(section, number++);
    const auto* record = static_cast<const GunData*>(GunList.current->payload);
    for (const GunKey& key : kGunKeys) writeKey(&ini, section, key, record);
  }
  ini.IniWrite(nullptr);
}

void putLittleEndian32(unsigned char* out, std::int32_t value) {
  auto bits = static_cast<std::uint32_t>(value);
  for (int i = 0; i < 4; i++) out[i] = static_cast<unsigned char>(bits >> (8 * i));
}

}  // namespace

void GunFileLoad(GunListView* view, const char* path) {
  GunListEmpty(view);
  IniFile ini(path, 0, 0);
  GunFileLoadParsed(view, &ini);
}

void GunFileLoadParsed(GunListView* view, IniFile* ini) {
  GunListLoad(view, ini->IniCountSections(kSectionFormat), [ini](int number, GunData* record) {
    char section[kGunSectionNameSize];
    GunSectionName(section, number);
    for (const GunKey& key : kGunKeys) readKey(ini, section, key, record);
  });
}

void GunListLoad(GunListView* view, int count, const std::function<void(int, GunData*)>& fill) {
  int row = GunList.count;
  for (int number = 1; number <= count; number++) {
    auto* record = static_cast<GunData*>(memAlloc(sizeof(GunData)));
    if (!record) continue;
    std::memset(record, 0, sizeof(GunData));
    fill(number, record);
    GunDataDerive(record);
    // A record without a node is dropped together with its row, so both stay in step.
    if (!GunList.Append(record)) {
      memFree(record);
      continue;
    }
    AddRow(view, row++, record);
  }
  view->SelectRow(0);
}

int GunFileSave(GunListView* view, const char* path) {
  char binaryPath[kPathSize];
  fmgSetFileExtension(path, "dat", binaryPath, sizeof binaryPath);
  // Without a file manager (its registration found no memory) no file can be made.
  std::int32_t handle = gFMG ? gFMG->CreateFile(binaryPath) : -1;
  if (handle == -1) {
    winMessageBox(view, "ERROR!", "Unable to create %s for writing!", path);
    return 0;
  }
  unsigned char batch[kBinaryBatch];
  putLittleEndian32(batch, GunList.count);
  std::size_t used = 4;
  for (GunList.MoveFirst(); GunList.current; GunList.MoveNext()) {
    if (used + sizeof(GunData) > sizeof batch) {
      gFMG->WriteFile(handle, batch, static_cast<std::uint32_t>(used));
      used = 0;
    }
    std::memcpy(batch + used, GunList.current->payload, sizeof(GunData));
    used += sizeof(GunData);
  }
  gFMG->WriteFile(handle, batch, static_cast<std::uint32_t>(used));
  gFMG->CloseFile(handle);
  saveText(path);
  return 1;
}
