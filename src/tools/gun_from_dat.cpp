// Rebuilds the gun list from a binary gun file, for a user who has only the .dat left.
#include "tools/gun_from_dat.h"

#include <cstddef>
#include <cstring>
#include <string>

#include "base/memory_manager.h"
#include "base/string_util.h"
#include "gun/gun_commands.h"
#include "gun/gun_data.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "tools/gun_check.h"
#include "tools/gun_dat_reader.h"
#include "tools/tool_files.h"

namespace {

struct DerivedField {
  const char* name;
  std::size_t offset;
};

// The fields GunDataDerive sets.
const DerivedField kDerivedFields[] = {
    {"CaliberTerm", offsetof(GunData, CaliberTerm)},   {"FireInterval", offsetof(GunData, FireInterval)},
    {"WarheadTerm", offsetof(GunData, WarheadTerm)},   {"InvMuzzleVel", offsetof(GunData, InvMuzzleVel)},
    {"SlotA", offsetof(GunData, SlotA)},               {"SlotB", offsetof(GunData, SlotB)},
    {"SlotC", offsetof(GunData, SlotC)},               {"SlotD", offsetof(GunData, SlotD)},
};

// A zeroed record with the entered fields of `stored`, as the text file carries them.
void rebuild(const GunData& stored, GunData* record) {
  std::memset(record, 0, sizeof *record);
  const auto* from = reinterpret_cast<const char*>(&stored);
  auto* to = reinterpret_cast<char*>(record);
  for (const GunKey& key : kGunKeys) {
    if (key.kind == GunKeyKind::kText) {
      std::string text(from + key.offset, strnlen(from + key.offset, static_cast<std::size_t>(key.size)));
      strCopyN(to + key.offset, text.c_str(), key.size);
    } else if (key.kind == GunKeyKind::kFloat) {
      std::memcpy(to + key.offset, from + key.offset, sizeof(float));
    }
  }
  record->AddLight = stored.AddLight != 0 ? 1 : 0;
  std::memcpy(record->FireColor, stored.FireColor, sizeof record->FireColor);
  GunDataDerive(record);
}

// Warnings on what the rebuilt record doesn't keep of the stored one.
void warnDifferences(int number, const GunData& stored, const GunData& record,
                     const char* shownName, std::FILE* err) {
  std::string prefix = std::string("tessarine-convert: warning: ") + shownName + ": record " +
                       std::to_string(number) + " (" + record.TypeName + "): ";
  std::string derived;
  GunData rest = stored;
  for (const DerivedField& field : kDerivedFields) {
    const auto* a = reinterpret_cast<const char*>(&stored) + field.offset;
    const auto* b = reinterpret_cast<const char*>(&record) + field.offset;
    if (std::memcmp(a, b, 4) != 0) {
      if (!derived.empty()) derived += ", ";
      derived += field.name;
    }
    std::memcpy(reinterpret_cast<char*>(&rest) + field.offset, b, 4);
  }
  if (!derived.empty()) {
    std::fprintf(err, "%sits stored derived values differ from the recomputed ones (%s)\n",
                 prefix.c_str(), derived.c_str());
  }
  for (const std::string& problem : CheckGunRecord(stored)) {
    std::fprintf(err, "%s%s\n", prefix.c_str(), problem.c_str());
  }
  if (std::memcmp(&rest, &record, sizeof rest) != 0) {
    std::fprintf(err, "%sbytes the text file doesn't carry (behind the texts, reserved fields) "
                 "are not kept\n", prefix.c_str());
  }
}

}  // namespace

int GunListFromDat(GunListView* view, const char* path, const char* shownName, bool allowLoss,
                   std::FILE* err) {
  GunListEmpty(view);
  GunDatReader reader;
  if (!reader.Open(path, shownName, err)) return 0;
  if (!reader.Whole(err, allowLoss) && !allowLoss) {
    PrintLossRefused(err);
    return 0;
  }
  GunData stored;
  for (int number = 1; reader.Next(&stored); number++) {
    auto* record = static_cast<GunData*>(memAlloc(sizeof(GunData)));
    if (record) rebuild(stored, record);
    if (!record || !GunList.Append(record)) {
      memFree(record);
      std::fprintf(err, "tessarine-convert: out of memory at record %d of %s\n", number, shownName);
      return 0;
    }
    AddRow(view, number - 1, record);
    warnDifferences(number, stored, *record, shownName, err);
  }
  return 1;
}
