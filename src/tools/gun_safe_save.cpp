// GunSafeSave: the editor's Save of the gun list, checked, replacing the target only when whole.
#include "tools/gun_safe_save.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "base/path_util.h"
#include "gun/gun_data.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "platform/host_file.h"
#include "tools/gun_text_scan.h"
#include "tools/tool_files.h"

namespace {

constexpr int kPathSize = 260;
constexpr int kLongSize = 2 * kPathSize;

// The temporary and the final names of both files.
struct SaveNames {
  char text[kLongSize];
  char binary[kLongSize];
  char tempText[kLongSize];
  char tempBinary[kLongSize];
};

// The whole file, read straight into `bytes` (whatever it held before is replaced); false if it
// can't be opened or read.
bool readAll(const char* path, std::string* bytes) {
  std::int32_t descriptor = hostFileOpenRead(path, HostAccess::kSequential);
  if (descriptor == -1) return false;
  // Room for the size the file has, and one byte more, so that its end is read without growing.
  std::int64_t size = 0;
  if (hostFileStat(descriptor, &size) == 1 && size > 0) {
    bytes->resize(static_cast<std::size_t>(size) + 1);
  }
  std::size_t used = 0;
  std::int32_t got;
  do {
    if (used == bytes->size()) bytes->resize(std::max<std::size_t>(2 * used, 65536));
    auto room = static_cast<std::uint32_t>(std::min<std::size_t>(bytes->size() - used, 1u << 30));
    got = hostFileRead(descriptor, bytes->data() + used, room);
    if (got > 0) used += static_cast<std::size_t>(got);
  } while (got > 0);
  bytes->resize(used);
  hostFileClose(descriptor);
  return got == 0;
}

// The .dat file as GunFileSave writes it from the list.
bool binaryMatchesList(const std::string& bytes) {
  std::size_t expected = 4 + sizeof(GunData) * static_cast<std::size_t>(GunList.count);
  if (bytes.size() != expected) return false;
  auto count = static_cast<std::uint32_t>(GunList.count);
  for (int i = 0; i < 4; i++) {
    if (static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]) != ((count >> (8 * i)) & 0xFF)) return false;
  }
  std::size_t offset = 4;
  for (GunList.MoveFirst(); GunList.current; GunList.MoveNext(), offset += sizeof(GunData)) {
    if (std::memcmp(bytes.data() + offset, GunList.current->payload, sizeof(GunData)) != 0) {
      return false;
    }
  }
  return true;
}

// The number of the first gun whose section lacks a key, or is missing or cut; 0 when every gun
// has its section with all its keys, each section behind a blank line, and nothing follows.
int firstIncompleteGun(std::string_view text, int count) {
  std::size_t at = 0;
  std::string_view line;
  auto next = [&]() {
    std::size_t end = text.find('\n', at);
    if (end == std::string_view::npos) return false;
    line = text.substr(at, end - at);
    at = end + 1;
    return true;
  };
  for (int number = 1; number <= count; number++) {
    char section[kGunSectionNameSize];
    GunSectionName(section, number);
    std::string_view name(section);
    if (!next() || line.size() != name.size() + 2 || line.front() != '[' ||
        line.substr(1, name.size()) != name || line.back() != ']') {
      return number;
    }
    for (const GunKey& key : kGunKeys) {
      std::size_t length = std::strlen(key.name);
      if (!next() || !line.starts_with(key.name) || line.size() <= length || line[length] != '=') {
        return number;
      }
    }
    if (!next() || !line.empty()) return number;
  }
  return at == text.size() ? 0 : count + 1;
}

// "can't write TARGET: STEP FILE failed: reason", naming the file actually tried.
void failed(const char* target, const char* step, const char* path, const char* reason,
            std::FILE* err) {
  std::fprintf(err, "tessarine-convert: can't write %s: %s %s failed: %s\n",
               ShownPath(target).c_str(), step, ShownPath(path).c_str(),
               *reason ? reason : "the file came out incomplete");
}

bool makeNames(const char* textName, SaveNames* names, std::FILE* err) {
  std::strcpy(names->text, textName);
  fmgSetFileExtension(textName, "dat", names->binary, kLongSize);
  std::snprintf(names->tempText, kLongSize, "%s.~%d.INI", textName, hostProcessId());
  fmgSetFileExtension(names->tempText, "dat", names->tempBinary, kLongSize);
  for (const char* name : {names->binary, names->tempText, names->tempBinary}) {
    if (std::strlen(name) >= static_cast<std::size_t>(kPathSize)) {
      std::fprintf(err, "tessarine-convert: %s: %s\n", ShownPath(name).c_str(),
                   hostPathMessage(HostPathResult::kTooLong));
      return false;
    }
  }
  return true;
}

// Both temporary files as the list asks; false with a message (naming the file) when not.
bool checkWritten(const SaveNames& names, const char* saveError, bool allowLoss,
                  std::FILE* err) {
  // One buffer for both files, one after the other.
  std::string text;
  if (!readAll(names.tempBinary, &text) || !binaryMatchesList(text)) {
    failed(names.text, "writing", names.tempBinary, saveError, err);
    return false;
  }
  if (!readAll(names.tempText, &text)) {
    failed(names.text, "writing", names.tempText, *saveError ? saveError : hostLastErrorText(), err);
    return false;
  }
  int incomplete = firstIncompleteGun(text, GunList.count);
  if (incomplete != 0 && *saveError) {
    failed(names.text, "writing", names.tempText, saveError, err);
    return false;
  }
  if (incomplete != 0) {
    std::fprintf(err, "tessarine-convert: %sguns %d to %d lose keys in %s: the save holds the "
                 "text of a file in %ld bytes, and theirs does not fit\n",
                 allowLoss ? "warning: " : "", incomplete, GunList.count,
                 ShownPath(names.text).c_str(), kGunTextLimit);
    if (!allowLoss) {
      PrintLossRefused(err);
      return false;
    }
  }
  if (text.size() > static_cast<std::size_t>(kGunTextLimit)) {
    std::fprintf(err, "tessarine-convert: warning: %s has %zu bytes; the editor loads only the "
                 "first %ld, so a load of it loses the guns behind them\n",
                 ShownPath(names.text).c_str(), text.size(), kGunTextLimit);
  }
  return true;
}

// Complete files are renamed into place without waiting for the device: the rename is what
// keeps a failed run from touching the earlier files.
bool renameIntoPlace(const SaveNames& names, std::FILE* err) {
  // A replaced file keeps its permissions; a new one gets the usual ones.
  for (auto [temporary, replaced] : {std::pair{names.tempBinary, names.binary},
                                  std::pair{names.tempText, names.text}}) {
    if (hostPathKindOf(replaced) == HostPathKind::kFile) hostFileCopyMode(replaced, temporary);
  }
  if (hostFileRename(names.tempBinary, names.binary) != 0) {
    failed(names.text, "renaming to", names.binary, hostLastErrorText(), err);
    return false;
  }
  if (hostFileRename(names.tempText, names.text) != 0) {
    failed(names.text, "renaming to", names.text, hostLastErrorText(), err);
    return false;
  }
  return true;
}

}  // namespace

int GunSafeSave(GunListView* view, const char* textName, bool allowLoss, std::FILE* err) {
  SaveNames names;
  if (!makeNames(textName, &names, err)) return 0;
  hostClearLastError();
  int created = GunFileSave(view, names.tempText);
  // Taken at once: the save itself looks at no write's result, the host's last error tells.
  std::string saveError = hostLastErrorText();
  bool saved = false;
  if (!created) {
    failed(textName, "creating", names.tempBinary, saveError.c_str(), err);
  } else {
    saved = checkWritten(names, saveError.c_str(), allowLoss, err) && renameIntoPlace(names, err);
  }
  if (!saved) {
    hostFileRemove(names.tempBinary);
    hostFileRemove(names.tempText);
  }
  return saved ? 1 : 0;
}
