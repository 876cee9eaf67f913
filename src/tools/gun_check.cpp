// The gun checker: what a load makes of a gun text file, and what a record loses on its way
// through the text file.
#include "tools/gun_check.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>

#include "base/string_util.h"
#include "gun/gun_data.h"
#include "gun/gun_file.h"
#include "platform/number_text.h"

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The length of the number the load reads at the start of `text` (leading blanks included), or
// 0 when there is none: an optional sign, digits with an optional point (one digit at least),
// an optional exponent with digits.
std::size_t numberLength(const std::string& text) {
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

std::string shortest(float value) {
  char text[64];
  auto end = std::to_chars(text, text + sizeof text, value).ptr;
  return std::string(text, end);
}

std::string writtenText(float value) {
  char text[400];
  numFormatFixed(text, sizeof text, static_cast<double>(value), 6);
  return text;
}

// "" when the six-decimal text of `value` reads back as the same float; else why not.
std::string textRoundTrip(float value) {
  std::string text = writtenText(value);
  auto back = static_cast<float>(numParseDouble(text.c_str()));
  if (std::bit_cast<std::uint32_t>(back) == std::bit_cast<std::uint32_t>(value)) return "";
  return "the .dat gets " + shortest(value) + " but the text file is written " + text +
         ", which reads back as " + shortest(back);
}

// The value the load takes from a number's text, with any change said; "" when none.
std::string numberChange(const std::string& what, const std::string& text) {
  if (text.empty()) return what + " has no value: reads as 0";
  std::size_t length = numberLength(text);
  if (length == 0) return what + " \"" + text + "\" is not a number: reads as 0";
  if (length < text.size()) {
    return what + " \"" + text + "\" has text behind the number: reads as " +
           text.substr(0, length);
  }
  return "";
}

std::string boolChange(const std::string& text) {
  if (strEquals(text.c_str(), "TRUE", 0) || strEquals(text.c_str(), "FALSE", 0)) return "";
  return "AddLight \"" + text + "\" is neither TRUE nor FALSE: reads as " +
         (numParseInt(text.c_str()) != 0 ? "TRUE" : "FALSE");
}

std::string textChange(const GunKey& key, const std::string& text) {
  std::vector<char> field(static_cast<std::size_t>(key.size));
  strCopyN(field.data(), text.c_str(), key.size);
  std::size_t kept = std::strlen(field.data());
  if (kept == text.size()) return "";
  return std::string(key.name) + " is " + std::to_string(text.size()) + " bytes long; its " +
         std::to_string(key.size) + "-byte field keeps " + std::to_string(kept) +
         " and loses " + std::to_string(text.size() - kept);
}

// A component as the load takes it: read, then held within 0 to 1.
void colorComponentChanges(const std::string& part, int index, std::vector<std::string>* out) {
  std::string what = "FireColor component " + std::to_string(index + 1);
  std::string change = numberChange(what, TrimBlanks(part));
  if (!change.empty()) out->push_back(change);
  double value = numParseDouble(part.c_str());
  if (value < 0.0 || value > 1.0) {
    out->push_back(what + " " + TrimBlanks(part) + " lies outside 0 to 1: reads as " +
                   (value < 0.0 ? "0" : "1"));
    return;
  }
  std::string trip = textRoundTrip(static_cast<float>(value));
  if (!trip.empty()) out->push_back(what + ": " + trip);
}

std::vector<std::string> colorChanges(const std::string& text) {
  std::size_t first = text.find(',');
  std::size_t second = first == std::string::npos ? first : text.find(',', first + 1);
  if (second == std::string::npos) {
    return {"FireColor \"" + text + "\" has fewer than three components: reads as black (0,0,0)"};
  }
  std::vector<std::string> out;
  colorComponentChanges(text.substr(0, first), 0, &out);
  colorComponentChanges(text.substr(first + 1, second - first - 1), 1, &out);
  colorComponentChanges(text.substr(second + 1), 2, &out);
  return out;
}

const GunKey* findKey(const std::string& name) {
  for (const GunKey& key : kGunKeys) {
    if (strEquals(name.c_str(), key.name, 0)) return &key;
  }
  return nullptr;
}

std::vector<std::string> valueChanges(const GunKey& key, const std::string& value) {
  switch (key.kind) {
    case GunKeyKind::kText: {
      std::string change = textChange(key, value);
      return change.empty() ? std::vector<std::string>{} : std::vector<std::string>{change};
    }
    case GunKeyKind::kBool: {
      std::string change = boolChange(value);
      return change.empty() ? std::vector<std::string>{} : std::vector<std::string>{change};
    }
    case GunKeyKind::kColor:
      return colorChanges(value);
    case GunKeyKind::kFloat:
      break;
  }
  std::vector<std::string> out;
  std::string change = numberChange(key.name, value);
  if (!change.empty()) out.push_back(change);
  std::string trip = textRoundTrip(static_cast<float>(numParseDouble(value.c_str())));
  if (!trip.empty()) out.push_back(std::string(key.name) + " " + value + ": " + trip);
  return out;
}

void checkKeys(GunTextScan* scan, const ScanSection& section) {
  for (const ScanKey& key : section.keys) {
    const GunKey* known = findKey(key.name);
    if (!known) {
      scan->Add(section.file, key.line, FindingKind::kChange,
                "unknown key \"" + key.name + "\" is not read; a save drops it");
      continue;
    }
    for (std::string& change : valueChanges(*known, key.value)) {
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
  for (bool found = true; found;) {
    char name[kGunSectionNameSize];
    GunSectionName(name, count + 1);
    found = false;
    for (std::size_t i = 0; i < scan->sections.size() && !found; i++) {
      if (!strEquals(scan->sections[i].name.c_str(), name, 0)) continue;
      numberOf[i] = ++count;
      found = true;
    }
  }
  // Copies: findings may be added while the sections are walked.
  const std::vector<ScanSection> sections = scan->sections;
  for (std::size_t i = 0; i < sections.size(); i++) {
    if (numberOf[i] == 0) checkUnloadedSection(scan, sections[i], count);
    else checkKeys(scan, sections[i]);
  }
  if (count == 0) {
    scan->Add(0, 0, FindingKind::kLoss,
              "no gun section GunData001: the load gives no gun at all");
  }
  return count;
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
