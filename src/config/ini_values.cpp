// IniFile values: typed reads with defaults, typed changes, numbered sections and the writer.
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "config/ini_file.h"
#include "platform/host_file.h"
#include "platform/number_text.h"

namespace {

constexpr int kTextSize = 260;
constexpr const char* kAppendStringTrace = "Unable to append string %s to the buffer!";
constexpr const char* kAppendKeyNameTrace = "Unable to append string key name %s to the buffer!";

// The value cut toward zero; one that has no 32-bit integer gives INT32_MIN, as the host's
// truncating conversion does, instead of undefined behaviour.
std::int32_t truncateToInt(float value) {
  if (!(value > -2147483904.0f && value < 2147483648.0f)) return INT32_MIN;
  return static_cast<std::int32_t>(value);
}

float clampUnit(double value) {
  if (value <= 0.0) return 0.0f;
  if (value >= 1.0) return 1.0f;
  return static_cast<float>(value);
}

// Appends `text` of `length` bytes at out[*used], keeping room for the terminator. 0 when it
// doesn't fit.
int put(char* out, std::size_t size, std::size_t* used, const char* text, std::size_t length) {
  if (*used + length >= size) return 0;
  std::memcpy(out + *used, text, length);
  *used += length;
  out[*used] = '\0';
  return 1;
}

int putRepeated(char* out, std::size_t size, std::size_t* used, char c, std::size_t count) {
  for (std::size_t i = 0; i < count; i++) {
    if (!put(out, size, used, &c, 1)) return 0;
  }
  return 1;
}

// Reads a decimal number at *p (at most 9 digits count), moving *p behind it.
std::size_t readCount(const char** p) {
  std::size_t n = 0;
  for (; **p >= '0' && **p <= '9'; (*p)++) {
    if (n < 100000000) n = n * 10 + static_cast<std::size_t>(**p - '0');
  }
  return n;
}

// Formats `format` with one integer, as printf would with one %d or %i conversion (flags
// "-+ 0", width, precision; "%%" is a percent sign), the digits coming from numFormatInt so
// that no locale plays a part. 1 done; 0 for a format without exactly one such conversion or a
// result that doesn't fit in `size` bytes.
int formatNumbered(char* out, std::size_t size, const char* format, std::int32_t n) {
  std::size_t used = 0;
  int conversions = 0;
  out[0] = '\0';
  for (const char* p = format; *p; p++) {
    if (*p != '%') {
      if (!put(out, size, &used, p, 1)) return 0;
      continue;
    }
    p++;
    if (*p == '%') {
      if (!put(out, size, &used, p, 1)) return 0;
      continue;
    }
    bool left = false, plus = false, space = false, zero = false;
    for (;; p++) {
      if (*p == '-') left = true;
      else if (*p == '+') plus = true;
      else if (*p == ' ') space = true;
      else if (*p == '0') zero = true;
      else break;
    }
    std::size_t width = readCount(&p);
    bool hasPrecision = *p == '.';
    std::size_t precision = 0;
    if (hasPrecision) {
      p++;
      precision = readCount(&p);
    }
    if ((*p != 'd' && *p != 'i') || ++conversions > 1) return 0;

    char digits[16];
    std::size_t length = numFormatInt(digits, sizeof digits, n);
    const char* magnitude = digits;
    const char* sign = plus ? "+" : space ? " " : "";
    if (digits[0] == '-') {
      sign = "-";
      magnitude++;
      length--;
    }
    if (hasPrecision && precision == 0 && n == 0) length = 0;  // "%.0d" of 0 prints nothing
    std::size_t leadingZeros = hasPrecision && precision > length ? precision - length : 0;
    std::size_t body = std::strlen(sign) + leadingZeros + length;
    std::size_t pad = width > body ? width - body : 0;
    if (zero && !left && !hasPrecision) {
      leadingZeros += pad;
      pad = 0;
    }
    if (!left && !putRepeated(out, size, &used, ' ', pad)) return 0;
    if (!put(out, size, &used, sign, std::strlen(sign))) return 0;
    if (!putRepeated(out, size, &used, '0', leadingZeros)) return 0;
    if (!put(out, size, &used, magnitude, length)) return 0;
    if (left && !putRepeated(out, size, &used, ' ', pad)) return 0;
  }
  return conversions == 1 ? 1 : 0;
}

// Gathers the text of a write and hands it to the stream in large pieces.
class WriteBuffer {
 public:
  explicit WriteBuffer(std::FILE* file) : file_(file) {}
  WriteBuffer(const WriteBuffer&) = delete;
  WriteBuffer& operator=(const WriteBuffer&) = delete;

  void Put(const char* text, std::size_t length) {
    if (length > sizeof data_ - used_) {
      Flush();
      if (length > sizeof data_) {
        std::fwrite(text, 1, length, file_);
        return;
      }
    }
    std::memcpy(data_ + used_, text, length);
    used_ += length;
  }
  void Put(const char* text) { Put(text, std::strlen(text)); }
  void Put(char c) { Put(&c, 1); }
  // Hands what is gathered to the stream; call before the stream is closed.
  void Flush() {
    if (used_ > 0) std::fwrite(data_, 1, used_, file_);
    used_ = 0;
  }

 private:
  std::FILE* file_;
  char data_[32768];
  std::size_t used_ = 0;
};

}  // namespace

IniKey* IniFile::FindKey(const char* section, const char* key, IniSection** inSection) {
  if (inSection) *inSection = nullptr;
  if (!sectionIndex.Find(&sections, section)) return nullptr;
  auto* found = static_cast<IniSection*>(sections.current->payload);
  if (inSection) *inSection = found;
  if (!found->keyIndex.Find(&found->keys, key)) return nullptr;
  return static_cast<IniKey*>(found->keys.current->payload);
}

int IniFile::AddMissedKey(const char* section, IniSection* found, const char* key,
                          IniKey* record) {
  if (!record || !found || std::strcmp(record->name, key) != 0) return IniAddKey(section, record);
  // IniAddKey would find the section where the cursor stands and miss the key again, leaving
  // both cursors as they are now: only its append is left to do.
  if (!found->keyIndex.Append(&found->keys, record)) memFree(record);
  return 1;
}

std::int32_t IniFile::IniGetInt(const char* section, const char* key, std::int32_t defaultValue) {
  if (IniKey* found = FindKey(section, key)) {
    found->type = kIniInteger;
    return found->intValue;
  }
  if (autoWriteDefaults) IniSetInt(section, key, defaultValue);
  return defaultValue;
}

float IniFile::IniGetFloat(const char* section, const char* key, float defaultValue) {
  if (IniKey* found = FindKey(section, key)) {
    found->type = kIniFloat;
    return found->floatValue;
  }
  if (autoWriteDefaults) IniSetFloat(section, key, defaultValue);
  return defaultValue;
}

void IniFile::IniGetString(const char* section, const char* key, const char* defaultValue,
                           char* out, std::int32_t size, int caseMode) {
  IniKey* found = FindKey(section, key);
  if (!out) return;
  // A buffer without room for the terminator takes no copy; the key is still read or added.
  bool copies = size >= 1;
  if (found) {
    found->type = kIniString;
    if (!copies) return;
    strCopyN(out, found->stringValue, size);
    if (caseMode == 1) strUpper(out);
    else if (caseMode == 2) strLower(out);
    return;
  }
  if (autoWriteDefaults) IniSetString(section, key, defaultValue);
  if (copies) strCopyN(out, defaultValue, size);
}

std::int32_t IniFile::IniGetBool(const char* section, const char* key, std::int32_t defaultValue) {
  std::int32_t result = defaultValue;
  if (IniKey* found = FindKey(section, key)) {
    found->type = kIniString;
    char text[kTextSize];
    strCopyN(text, found->stringValue, kTextSize);
    if (strEquals(text, trueString, 0)) return 1;
    if (strEquals(text, falseString, 0)) return 0;
    result = found->intValue != 0 ? 1 : 0;
    found->type = kIniInteger;
  }
  if (autoWriteDefaults) IniSetString(section, key, result ? trueString : falseString);
  return result;
}

int IniGetColor(float* color, IniFile* ini, const char* section, const char* key) {
  if (!color || !ini) return 0;
  char text[kTextSize];
  ini->IniGetString(section, key, "", text, kTextSize, 0);
  return IniReadColor(color, text);
}

int IniReadColor(float* color, char* text) {
  char* green = std::strchr(text, ',');
  if (!green) return 0;
  *green++ = '\0';
  char* blue = std::strchr(green, ',');
  if (!blue) return 0;
  *blue++ = '\0';
  // A third comma ends the number in front of it; an empty part reads as 0.
  color[0] = clampUnit(numParseDouble(text));
  color[1] = clampUnit(numParseDouble(green));
  color[2] = clampUnit(numParseDouble(blue));
  return 1;
}

IniKey* IniFile::MakeNamedKey(const char* key, char* text, const char* arenaFullTrace) {
  if (!pool.Append(key)) {
    dbgTrace(arenaFullTrace, key);
    return nullptr;
  }
  return IniKey::Make(pool.CurrentString(), text);
}

int IniFile::IniSetInt(const char* section, const char* key, std::int32_t value) {
  if (!key) return 0;
  IniSection* target;
  if (IniKey* found = FindKey(section, key, &target)) {
    found->type = kIniInteger;
    found->intValue = value;
    return 1;
  }
  IniKey* record = MakeNamedKey(key, nullptr, kAppendStringTrace);
  if (!record) return 0;
  record->type = kIniInteger;
  record->intValue = value;
  record->floatValue = static_cast<float>(value);
  return AddMissedKey(section, target, key, record);
}

int IniFile::IniSetFloat(const char* section, const char* key, float value) {
  if (!key) return 0;
  IniSection* target;
  if (IniKey* found = FindKey(section, key, &target)) {
    found->type = kIniFloat;
    found->floatValue = value;
    return 1;
  }
  IniKey* record = MakeNamedKey(key, nullptr, kAppendStringTrace);
  if (!record) return 0;
  record->type = kIniFloat;
  record->intValue = truncateToInt(value);
  record->floatValue = value;
  return AddMissedKey(section, target, key, record);
}

int IniFile::IniSetString(const char* section, const char* key, const char* value) {
  if (!key) return 0;
  char* text = emptyString;
  if (!strIsEmpty(value)) {
    if (!pool.Append(value)) {
      dbgTrace(kAppendStringTrace, value);
      return 0;
    }
    text = pool.CurrentString();
  }
  IniSection* target;
  if (IniKey* found = FindKey(section, key, &target)) {
    found->type = kIniString;
    found->stringValue = text;
    return 1;
  }
  // When the name doesn't fit, the copy of the value stays behind as dead text.
  return AddMissedKey(section, target, key, MakeNamedKey(key, text, kAppendKeyNameTrace));
}

int IniFile::IniSetBool(const char* section, const char* key, std::int32_t value) {
  if (!key) return 0;
  char* word = value ? trueString : falseString;
  IniSection* target;
  if (IniKey* found = FindKey(section, key, &target)) {
    found->type = kIniString;
    found->stringValue = word;
    return 1;
  }
  return AddMissedKey(section, target, key, MakeNamedKey(key, word, kAppendKeyNameTrace));
}

int IniFile::IniAddKey(const char* section, IniKey* record) {
  if (!record) return 0;
  IniSection* target = nullptr;
  if (sectionIndex.Find(&sections, section)) {
    target = static_cast<IniSection*>(sections.current->payload);
  } else {
    if (!section || !pool.Append(section)) {
      if (section) dbgTrace(kAppendStringTrace, section);
      memFree(record);
      return 0;
    }
    void* block = memAlloc(sizeof(IniSection));
    if (!block) {
      memFree(record);
      return 0;
    }
    target = new (block) IniSection;
    target->name = pool.CurrentString();
    if (!sectionIndex.Append(&sections, target)) {
      dbgTrace("Unable to append section %s to the list!", section);
      target->~IniSection();
      memFree(target);
      memFree(record);
      return 0;
    }
  }
  // A record that isn't filed (its name is there already, or no node) would be owned by nobody.
  if (target->keyIndex.Find(&target->keys, record->name) ||
      !target->keyIndex.Append(&target->keys, record)) {
    memFree(record);
  }
  return 1;
}

std::int32_t IniFile::IniCountSections(const char* format) {
  if (!format) return 0;
  char name[kTextSize];
  for (std::int32_t n = 1;; n++) {
    // A format the formatter can't take fails at 1 already; a later failure is a name too long.
    if (!formatNumbered(name, sizeof name, format, n)) return n - 1;
    if (!sectionIndex.Find(&sections, name)) return n - 1;
  }
}

int IniFile::IniWrite(const char* name) {
  if (name) fmgCheckFilename(nullptr, name, "INI", fileName, kPathSize);
  std::FILE* file = hostFileOpenStream(fileName, "w");
  if (!file) return 0;
  WriteBuffer out(file);
  char number[64];
  for (sections.MoveFirst(); sections.current; sections.MoveNext()) {
    auto* section = static_cast<IniSection*>(sections.current->payload);
    out.Put('[');
    out.Put(section->name ? section->name : "");
    out.Put("]\n", 2);
    CursorList& keys = section->keys;
    for (keys.MoveFirst(); keys.current; keys.MoveNext()) {
      auto* key = static_cast<IniKey*>(keys.current->payload);
      out.Put(key->name ? key->name : "");
      out.Put('=');
      if (key->type == kIniInteger) {
        out.Put(number, numFormatInt(number, sizeof number, key->intValue));
      } else if (key->type == kIniFloat) {
        out.Put(number, numFormatFixed(number, sizeof number,
                                       static_cast<double>(key->floatValue), 6));
      } else if (!strIsEmpty(key->stringValue)) {
        out.Put(key->stringValue);
      }
      out.Put('\n');
    }
    out.Put('\n');
  }
  out.Flush();
  std::fclose(file);
  return 1;
}
