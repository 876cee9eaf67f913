// The gun checker: what a load makes of a gun text file, and what a record loses on its way
// through the text file.
#include "tools/gun_check.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "base/string_util.h"
#include "config/ini_file.h"
#include "gun/gun_data.h"
#include "gun/gun_file.h"
#include "platform/number_text.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The length of the number the load reads at the start of `text` (leading blanks included), or
// 0 when there is none: an optional sign, digits with an optional point (one digit at least),
// an optional exponent with digits.
std::size_t numberLength(std::string_view text) {
  std::size_t i = 0;
  while (i < text.size() && isBlank(text[i])) i++;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) i++;
  std::size_t digits = 0;
  for (; i < text.size() && isDigit(text[i]); i++) digits++;
  if (i < text.size() && text[i] == '.') {
    for (i++; i < text.size() && isDigit(text[i]); i++) digits++;
  }
  if (digits == 0) return 0;
  std::size_t exponent = i;
  if (exponent < text.size() && (text[exponent] == 'e' || text[exponent] == 'E')) {
    exponent++;
    if (exponent < text.size() && (text[exponent] == '+' || text[exponent] == '-')) exponent++;
    if (exponent < text.size() && isDigit(text[exponent])) {
      for (i = exponent; i < text.size() && isDigit(text[i]); i++) {}
    }
  }
  return i;
}

// The number the load reads from `text`, which needn't end with a terminator.
double parseNumber(std::string_view text) {
  char copy[64];
  if (text.size() < sizeof copy) {
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return numParseDouble(copy);
  }
  return numParseDouble(std::string(text).c_str());
}

// The sign and the whole part of a decimal of the plain form [-]digits.digits, with at most nine
// digits before the point and six behind it.
struct PlainDecimal {
  bool negative;
  long whole;
  long millionths;
};

// True and *out when `text` is a plain decimal of that form. The float read from one always
// reads back from its six-decimal text: below 16 a float lies within half a millionth of the
// decimal it was read from, so its six-decimal text is that decimal; from 16 on, floats are
// further than a millionth apart, so the six-decimal text, within half a millionth of the
// float, reads back as the same float.
bool readPlainDecimal(std::string_view text, PlainDecimal* out) {
  std::size_t i = !text.empty() && text[0] == '-' ? 1 : 0;
  std::size_t start = i;
  long whole = 0;
  for (; i < text.size() && isDigit(text[i]); i++) {
    // A longer whole part is refused below; reading on would overflow.
    if (i - start < 9) whole = whole * 10 + (text[i] - '0');
  }
  std::size_t point = i;
  if (point == start || point - start > 9 || point == text.size() || text[point] != '.' ||
      text.size() - point > 7) {
    return false;
  }
  long millionths = 0;
  for (i = point + 1; i < text.size(); i++) {
    if (!isDigit(text[i])) return false;
    millionths = millionths * 10 + (text[i] - '0');
  }
  for (std::size_t decimals = text.size() - point - 1; decimals < 6; decimals++) millionths *= 10;
  *out = {start == 1, whole, millionths};
  return true;
}

std::string shortest(float value) {
  char text[64];
  auto end = std::to_chars(text, text + sizeof text, value).ptr;
  return std::string(text, end);
}

// "" when the six-decimal text of `value` reads back as the same float; else why not. `source`
// is the text `value` was read from, if any: when the six-decimal text is that very text, it
// reads back as `value` without a second reading.
std::string textRoundTrip(float value, std::string_view source = {}) {
  char text[400];
  std::size_t length = numFormatFixed(text, sizeof text, static_cast<double>(value), 6);
  if (!source.empty() && source == std::string_view(text, length)) return "";
  auto back = static_cast<float>(numParseDouble(text));
  if (std::bit_cast<std::uint32_t>(back) == std::bit_cast<std::uint32_t>(value)) return "";
  return "the .dat gets " + shortest(value) + " but the text file is written " + text +
         ", which reads back as " + shortest(back);
}

// The value the load takes from a number's text, with any change said; "" when none. `what`
// names the value.
std::string numberChange(const std::string& what, std::string_view text) {
  std::string shown(text);
  if (text.empty()) return what + " has no value: reads as 0";
  std::size_t length = numberLength(text);
  if (length == 0) return what + " \"" + shown + "\" is not a number: reads as 0";
  if (length < text.size()) {
    return what + " \"" + shown + "\" has text behind the number: reads as " +
           shown.substr(0, length);
  }
  return "";
}

// numberChange without building the name unless there is something to say.
void addNumberChange(const char* name, std::string_view text, std::vector<std::string>* out) {
  std::size_t length = text.empty() ? 0 : numberLength(text);
  if (length != 0 && length == text.size()) return;
  out->push_back(numberChange(name, text));
}

std::string boolChange(std::string_view text) {
  if (SameName(text, "TRUE") || SameName(text, "FALSE")) return "";
  std::string shown(text);
  return "AddLight \"" + shown + "\" is neither TRUE nor FALSE: reads as " +
         (numParseInt(shown.c_str()) != 0 ? "TRUE" : "FALSE");
}

std::string textChange(const GunKey& key, std::string_view text) {
  // A text shorter than its field is kept whole.
  if (text.size() < static_cast<std::size_t>(key.size)) return "";
  std::vector<char> field(static_cast<std::size_t>(key.size));
  strCopyN(field.data(), std::string(text).c_str(), key.size);
  std::size_t kept = std::strlen(field.data());
  if (kept == text.size()) return "";
  return std::string(key.name) + " is " + std::to_string(text.size()) + " bytes long; its " +
         std::to_string(key.size) + "-byte field keeps " + std::to_string(kept) +
         " and loses " + std::to_string(text.size() - kept);
}

std::string componentName(int index) {
  return "FireColor component " + std::to_string(index + 1);
}

// A component as the load takes it: read, then held within 0 to 1.
void colorComponentChanges(std::string_view part, int index, std::vector<std::string>* out) {
  std::string_view trimmed = TrimBlanks(part);
  // Most components are plain decimals within 0 to 1, which need no reading.
  PlainDecimal decimal;
  if (readPlainDecimal(trimmed, &decimal) &&
      (decimal.whole == 0 || (decimal.whole == 1 && decimal.millionths == 0)) &&
      (!decimal.negative || (decimal.whole == 0 && decimal.millionths == 0))) {
    return;
  }
  std::size_t length = trimmed.empty() ? 0 : numberLength(trimmed);
  if (length == 0 || length < trimmed.size()) {
    out->push_back(numberChange(componentName(index), trimmed));
  }
  double value = parseNumber(part);
  if (value < 0.0 || value > 1.0) {
    out->push_back(componentName(index) + " " + std::string(trimmed) + " lies outside 0 to 1: " +
                   "reads as " + (value < 0.0 ? "0" : "1"));
    return;
  }
  std::string trip = textRoundTrip(static_cast<float>(value), trimmed);
  if (!trip.empty()) out->push_back(componentName(index) + ": " + trip);
}

void colorChanges(std::string_view text, std::vector<std::string>* out) {
  std::size_t first = text.find(',');
  std::size_t second = first == std::string_view::npos ? first : text.find(',', first + 1);
  if (second == std::string_view::npos) {
    out->push_back("FireColor \"" + std::string(text) +
                   "\" has fewer than three components: reads as black (0,0,0)");
    return;
  }
  colorComponentChanges(text.substr(0, first), 0, out);
  colorComponentChanges(text.substr(first + 1, second - first - 1), 1, out);
  colorComponentChanges(text.substr(second + 1), 2, out);
}

// The known key of that name, found by its hash first, and first of all at `*next`, where the
// key behind the last one found stands; *next then moves behind this one.
const GunKey* findKey(const ScanKey& key, std::size_t* next) {
  static const auto hashes = [] {
    std::array<std::uint32_t, kGunKeyCount> all{};
    for (std::size_t i = 0; i < all.size(); i++) all[i] = NameHash(kGunKeys[i].name);
    return all;
  }();
  for (std::size_t tried = 0; tried < hashes.size(); tried++) {
    std::size_t i = (*next + tried) % hashes.size();
    if (hashes[i] != key.nameHash || !SameName(key.name, kGunKeys[i].name)) continue;
    *next = i + 1;
    return &kGunKeys[i];
  }
  return nullptr;
}

// What the load changes of `value`.
void valueChanges(const GunKey& key, std::string_view value, std::vector<std::string>* out) {
  std::string change;
  switch (key.kind) {
    case GunKeyKind::kText:
      change = textChange(key, value);
      break;
    case GunKeyKind::kBool:
      change = boolChange(value);
      break;
    case GunKeyKind::kColor:
      colorChanges(value, out);
      break;
    case GunKeyKind::kFloat: {
      // A plain decimal is a whole number text that reads back: nothing to say.
      PlainDecimal decimal;
      if (readPlainDecimal(value, &decimal)) break;
      addNumberChange(key.name, value, out);
      std::string trip = textRoundTrip(static_cast<float>(parseNumber(value)), value);
      if (!trip.empty()) {
        out->push_back(std::string(key.name) + " " + std::string(value) + ": " + trip);
      }
      break;
    }
  }
  if (!change.empty()) out->push_back(std::move(change));
}

void checkKeys(GunTextScan* scan, const ScanSection& section) {
  std::vector<std::string> changes;
  std::size_t next = 0;
  for (const ScanKey& key : section.keys) {
    const GunKey* known = findKey(key, &next);
    if (!known) {
      scan->Add(section.file, key.line, FindingKind::kChange,
                "unknown key \"" + std::string(key.name) + "\" is not read; a save drops it");
      continue;
    }
    changes.clear();
    valueChanges(*known, key.value, &changes);
    for (std::string& change : changes) {
      scan->Add(section.file, key.line, FindingKind::kChange, std::move(change));
    }
  }
}

// The number of a name of the form GunData + digits (any case), or -1 for any other name.
long gunNumberOf(const std::string& name) {
  const std::size_t stem = 7;
  if (name.size() <= stem || !strEquals(name.substr(0, stem).c_str(), "GunData", 0)) return -1;
  long number = 0;
  for (std::size_t i = stem; i < name.size(); i++) {
    if (!isDigit(name[i])) return -1;
    number = std::min(number * 10 + (name[i] - '0'), 1L << 30);
  }
  return number;
}

void checkUnloadedSection(GunTextScan* scan, const ScanSection& section, int count) {
  long number = gunNumberOf(section.name);
  std::string name = "section [" + section.name + "]";
  if (number < 0) {
    scan->Add(section.file, section.line, FindingKind::kChange,
              name + " is no gun section: the load ignores it and a save drops it");
    return;
  }
  if (number == 0) {
    scan->Add(section.file, section.line, FindingKind::kLoss,
              name + " is not read: guns are numbered from 1, so this gun is lost");
    return;
  }
  char expected[kGunSectionNameSize];
  GunSectionName(expected, static_cast<int>(number));
  if (!strEquals(expected, section.name.c_str(), 0)) {
    scan->Add(section.file, section.line, FindingKind::kLoss,
              name + " is not read: gun sections are named GunData001, GunData002 and so on, "
                     "with at least three digits, so this gun is lost");
    return;
  }
  char missing[kGunSectionNameSize];
  GunSectionName(missing, count + 1);
  scan->Add(section.file, section.line, FindingKind::kLoss,
            name + " is not read: there is no " + missing +
                (count == 0 ? "" : ", so the numbering stops at gun " + std::to_string(count)) +
                " and every gun behind the gap is lost");
}

}  // namespace

int CheckGunText(GunTextScan* scan) {
  std::vector<int> numberOf(scan->sections.size(), 0);
  int count = 0;
  for (long found = 0; found >= 0;) {
    char name[kGunSectionNameSize];
    GunSectionName(name, count + 1);
    found = scan->FindSection(name);
    if (found >= 0) numberOf[static_cast<std::size_t>(found)] = ++count;
  }
  for (std::size_t i = 0; i < scan->sections.size(); i++) {
    const ScanSection& section = scan->sections[i];
    if (numberOf[i] == 0) checkUnloadedSection(scan, section, count);
    else checkKeys(scan, section);
  }
  if (count == 0) {
    scan->Add(0, 0, FindingKind::kLoss,
              "no gun section GunData001: the load gives no gun at all");
  }
  return count;
}

bool GunValueIsKept(const GunKey& key, std::string_view value) {
  std::vector<std::string> changes;
  valueChanges(key, value, &changes);
  return changes.empty();
}

bool GunTextIsPlain(const IniFile& ini) {
  if (ini.irregularLines != 0 || ini.sections.count == 0) return false;
  constexpr std::size_t keyCount = kGunKeyCount;
  int number = 0;
  for (const CursorNode* node = ini.sections.head; node; node = node->next) {
    const auto* section = static_cast<const IniSection*>(node->payload);
    char expected[kGunSectionNameSize];
    GunSectionName(expected, ++number);
    if (std::strcmp(section->name, expected) != 0) return false;
    // Keys mostly come in the save's order. The parse keeps one key of a name in any case, so
    // an exact match is a key's only one.
    std::size_t next = 0;
    for (const CursorNode* item = section->keys.head; item; item = item->next) {
      const auto* key = static_cast<const IniKey*>(item->payload);
      std::size_t tried = 0;
      for (; tried < keyCount; tried++, next = (next + 1) % keyCount) {
        if (std::strcmp(key->name, kGunKeys[next].name) == 0) break;
      }
      if (tried == keyCount) return false;
      if (!GunValueIsKept(kGunKeys[next], key->stringValue ? key->stringValue : "")) return false;
      next = (next + 1) % keyCount;
    }
  }
  return true;
}

int CountFindings(const GunTextScan& scan, FindingKind kind) {
  return static_cast<int>(std::count_if(scan.findings.begin(), scan.findings.end(),
                                        [kind](const Finding& f) { return f.kind == kind; }));
}

void PrintFindings(const GunTextScan& scan, std::optional<FindingKind> kind, const char* prefix,
                   std::FILE* out) {
  std::vector<const Finding*> sorted;
  for (const Finding& finding : scan.findings) {
    if (!kind || finding.kind == *kind) sorted.push_back(&finding);
  }
  std::stable_sort(sorted.begin(), sorted.end(), [](const Finding* a, const Finding* b) {
    return a->file != b->file ? a->file < b->file : a->line < b->line;
  });
  for (const Finding* finding : sorted) {
    const char* file = scan.files.empty() ? "" : scan.files[finding->file].c_str();
    if (finding->line > 0) {
      std::fprintf(out, "%s%s:%d: %s\n", prefix, file, finding->line, finding->text.c_str());
    } else {
      std::fprintf(out, "%s%s: %s\n", prefix, file, finding->text.c_str());
    }
  }
}

std::vector<std::string> CheckGunRecord(const GunData& record) {
  std::vector<std::string> out;
  const auto* bytes = reinterpret_cast<const char*>(&record);
  for (const GunKey& key : kGunKeys) {
    const char* field = bytes + key.offset;
    std::string name = key.name;
    if (key.kind == GunKeyKind::kText) {
      std::size_t length = strnlen(field, static_cast<std::size_t>(key.size));
      std::string text(field, length);
      if (length == static_cast<std::size_t>(key.size)) out.push_back(name + " has no end in its field");
      if (text.find_first_of("\r\n") != std::string::npos) {
        out.push_back(name + " holds a line end, which splits its line in the text file");
      }
      if (!text.empty() && (isBlank(text.front()) || isBlank(text.back()))) {
        out.push_back(name + " has blanks at its ends, which the load drops");
      }
    } else if (key.kind == GunKeyKind::kFloat) {
      float value;
      std::memcpy(&value, field, sizeof value);
      std::string trip = textRoundTrip(value);
      if (!trip.empty()) out.push_back(name + ": " + trip);
    } else if (key.kind == GunKeyKind::kBool && record.AddLight != 0 && record.AddLight != 1) {
      out.push_back("AddLight " + std::to_string(record.AddLight) + " is written TRUE: reads as 1");
    } else if (key.kind == GunKeyKind::kColor) {
      for (int i = 0; i < 3; i++) {
        float value = record.FireColor[i];
        if (value < 0.0f || value > 1.0f || value != value) {
          out.push_back("FireColor component " + std::to_string(i + 1) + " " + shortest(value) +
                        " lies outside 0 to 1: the load holds it within");
        } else if (std::string trip = textRoundTrip(value); !trip.empty()) {
          out.push_back("FireColor component " + std::to_string(i + 1) + ": " + trip);
        }
      }
    }
  }
  return out;
}
