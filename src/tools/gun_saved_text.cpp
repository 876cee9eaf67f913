// The converter's quick load of a gun text file that is exactly what a save writes.
#include "tools/gun_saved_text.h"

#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "base/path_util.h"
#include "base/string_util.h"
#include "config/ini_file.h"
#include "files/file_manager.h"
#include "gun/gun_data.h"
#include "gun/gun_file.h"
#include "platform/number_text.h"
#include "tools/gun_check.h"
#include "tools/gun_text_scan.h"

namespace {

// The bytes of a value that the IniFile's colour read copies, terminator included.
constexpr int kColorTextSize = 260;

// The next line from *at on, cut at its line end in place; null when no line end follows.
char* nextLine(char* text, std::size_t size, std::size_t* at) {
  if (*at >= size) return nullptr;
  char* line = text + *at;
  auto* end = static_cast<char*>(std::memchr(line, '\n', size - *at));
  if (!end) return nullptr;
  *end = '\0';
  *at = static_cast<std::size_t>(end - text) + 1;
  return line;
}

// The value of a "name=value" line of `key`, stored as the parse stores it (trimmed); null when
// the line is not of that key or its value isn't kept as written.
char* keyValue(char* line, const GunKey& key) {
  std::size_t length = std::strlen(key.name);
  if (!line || std::strncmp(line, key.name, length) != 0 || line[length] != '=') return nullptr;
  char* value = strTrim(line + length + 1);
  return GunValueIsKept(key, value) ? value : nullptr;
}

// The values of every gun, kGunKeyCount a gun in the save's order, each cut in place; false
// when the text is not exactly a save's.
bool splitSaved(char* text, std::size_t size, std::vector<char*>* values) {
  if (std::memchr(text, '\0', size) || std::memchr(text, '\r', size)) return false;
  std::size_t at = 0;
  for (int number = 1; at < size; number++) {
    char section[kGunSectionNameSize + 2] = "[";
    GunSectionName(section + 1, number);
    std::strcat(section, "]");
    char* line = nextLine(text, size, &at);
    if (!line || std::strcmp(line, section) != 0) return false;
    for (const GunKey& key : kGunKeys) {
      char* value = keyValue(nextLine(text, size, &at), key);
      if (!value) return false;
      values->push_back(value);
    }
    line = nextLine(text, size, &at);
    if (!line || line[0] != '\0') return false;
  }
  return !values->empty();
}

// The field of `key` as the IniFile's typed read gives it from a stored `value` that is kept.
void readField(const GunKey& key, const char* value, GunData* record) {
  char* field = reinterpret_cast<char*>(record) + key.offset;
  switch (key.kind) {
    case GunKeyKind::kText:
      strCopyN(field, value, key.size);
      break;
    case GunKeyKind::kFloat: {
      auto number = static_cast<float>(numParseDouble(value));
      std::memcpy(field, &number, sizeof number);
      break;
    }
    case GunKeyKind::kBool:
      // A kept value is TRUE or FALSE, in any case.
      record->AddLight = static_cast<std::int16_t>(strEquals(value, "TRUE", 0));
      break;
    case GunKeyKind::kColor: {
      char text[kColorTextSize];
      strCopyN(text, value, sizeof text);
      IniReadColor(record->FireColor, text);
      break;
    }
  }
}

}  // namespace

bool GunLoadSavedText(GunListView* view, const char* name, int* guns) {
  char fileName[IniFile::kPathSize];
  fileName[0] = '\0';
  fmgCheckFilename(nullptr, name, "INI", fileName, IniFile::kPathSize);
  std::int32_t handle = gFMG ? gFMG->OpenFile(fileName) : -1;
  if (handle == -1) return false;
  // Room for one byte more than a save's text may have, so that a longer text shows.
  auto text = std::make_unique_for_overwrite<char[]>(kGunTextLimit);
  std::int32_t size = gFMG->ReadFile(handle, text.get(), kGunTextLimit);
  gFMG->CloseFile(handle);
  std::vector<char*> values;
  if (size <= 0 || size >= kGunTextLimit - 1 ||
      !splitSaved(text.get(), static_cast<std::size_t>(size), &values)) {
    return false;
  }
  *guns = static_cast<int>(values.size() / kGunKeyCount);
  GunListLoad(view, *guns, [&values](int number, GunData* record) {
    std::size_t first = static_cast<std::size_t>(number - 1) * kGunKeyCount;
    for (int i = 0; i < kGunKeyCount; i++) readField(kGunKeys[i], values[first + i], record);
  });
  return true;
}
