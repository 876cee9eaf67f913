// The two gun files: the INI text file the user opens and saves, and its binary .dat sibling.
#pragma once

#include <cstddef>
#include <functional>

class GunListView;
class IniFile;
struct GunData;

enum class GunKeyKind { kText, kFloat, kBool, kColor };

// One key of a gun section and the record field it fills: a text field of `size` bytes, a
// float, AddLight ("TRUE"/"FALSE", 16 bits) or FireColor ("%f,%f,%f", three floats).
struct GunKey {
  const char* name;
  GunKeyKind kind;
  std::size_t offset;
  int size;  // text fields only
};

constexpr int kGunKeyCount = 22;
// The keys of a gun section in the order the save writes and the load reads them.
extern const GunKey kGunKeys[kGunKeyCount];

// Room for any section name GunSectionName makes, terminator included.
constexpr int kGunSectionNameSize = 32;
// "GunData%03d" of `number` into `out` of kGunSectionNameSize bytes: at least three digits.
void GunSectionName(char* out, int number);

// Replaces GunList and the view's rows with the guns of the text file at `path` (sections
// "GunData%03d" from 1), then selects row 0. Reports nothing: an unreadable file gives an
// empty list.
void GunFileLoad(GunListView* view, const char* path);

// The part of GunFileLoad behind the read: appends the guns of `ini` to GunList and the view's
// rows, then selects row 0. For a caller that looks at the parsed file first.
void GunFileLoadParsed(GunListView* view, IniFile* ini);

// Appends `count` guns to GunList and the view's rows, then selects row 0. Gun `number` (from 1)
// is a zero-filled record that `fill` gives its keys, then its derived values; a gun without
// memory is left out.
void GunListLoad(GunListView* view, int count, const std::function<void(int, GunData*)>& fill);

// Writes the .dat sibling of `path` (the gun count, then each 560-byte record in list order),
// then the text file. Returns 1 when the .dat file could be created; else shows "Unable to
// create %s for writing!" naming `path`, writes neither file and returns 0.
int GunFileSave(GunListView* view, const char* path);
