// The gun checker: what a load makes of a gun text file, and what a record loses on its way
// through the text file.
#pragma once
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/gun_text_scan.h"

class IniFile;
struct GunKey;
struct GunData;

// Adds to `scan` a finding for every gun section the load passes over (a gap in the numbering,
// no GunData001, a name off the format), for no gun at all, for every section that is no gun
// section, and for every key of a loaded gun that is unknown or whose value the load changes:
// numbers that aren't one or have text behind them, AddLight words other than TRUE and FALSE,
// texts longer than their field, FireColor that isn't three components within 0 to 1, and
// values whose six-decimal text reads back different. Returns the number of guns the load gives.
int CheckGunText(GunTextScan* scan);

// True when a check of the file that `ini` was read from (without a cut) would find nothing:
// the parse passed over no line, the sections are GunData001, GunData002 and so on in that
// order and no others, and every key is a known one, once in its section, with a value the load
// keeps as written. False says only that the file needs the scan and CheckGunText.
bool GunTextIsPlain(const IniFile& ini);

// True when the load keeps `value` of `key`, as the load stores it (trimmed), as written: the
// check finds nothing to say of it.
bool GunValueIsKept(const GunKey& key, std::string_view value);

// How many of the findings are of `kind`.
int CountFindings(const GunTextScan& scan, FindingKind kind);

// Prints the findings of `kind` (all without one) in file and line order, one a line: `prefix` then
// "FILE:LINE: text" ("FILE: text" without a line).
void PrintFindings(const GunTextScan& scan, std::optional<FindingKind> kind, const char* prefix,
                   std::FILE* out);

// What the text file would change in `record`, one sentence each: a text without a terminator
// in its field, holding a line end or blanks at its ends; a float whose six-decimal text reads
// back different; an AddLight other than 0 and 1; a FireColor component outside 0 to 1.
std::vector<std::string> CheckGunRecord(const GunData& record);
