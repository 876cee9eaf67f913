// IniFile: an INI text of sections and keys held in one string arena, with typed reads, changes
// and a writer.
#pragma once
#include <cstddef>
#include <cstdint>
#include <new>

#include "base/cursor_list.h"
#include "config/name_index.h"
#include "config/string_pool.h"

// The type tag of a key: which of its three views IniWrite prints.
enum IniKeyType : std::int32_t { kIniString = 0, kIniInteger = 1, kIniFloat = 2 };

// One key. Owns no text: name and stringValue point into the pool of its IniFile, or at one of
// its three heap strings. The views are filled when the key is made and not kept in step.
struct IniKey {
  char* name;
  std::int32_t type;
  char* stringValue;  // null for an empty value
  std::int32_t intValue;
  float floatValue;

  // A new record (one heap block) named `name`, tagged string, with the views of `text`: for a
  // non-empty text stringValue is the text, trimmed in place, and the numbers are read from it
  // before the trim; otherwise null, 0 and 0.0. The name is trimmed in place. Null when memory
  // runs out.
  static IniKey* Make(char* name, char* text);
};

// One section: its keys in order of first appearance. Owns its IniKey records and their nodes,
// no text. Both records begin with their name, which CursorList::FindByName and NameIndex rely
// on. keys changes only through keyIndex.
struct IniSection {
  char* name = nullptr;
  CursorList keys;
  NameIndex keyIndex;

  // Reads key lines from the pool's cursor on, until the pool ends or a line that begins with
  // `[` or `#`, where the cursor is left. The first key of a name wins; a later one is traced
  // as a duplicate of `fileName` and dropped, as is a key whose node can't be had. A line whose
  // record can't be had is skipped. Returns the number of lines passed over: duplicates, lines
  // without "=", and lines whose record or node couldn't be had.
  std::int32_t IniParseKeys(StringPool* pool, const char* fileName);
  // Frees every key record, empties keys and its index and sets name to null. The caller frees
  // the section.
  void IniSectionClear();
};

class IniFile {
 public:
  static constexpr int kPathSize = 260;
  // Every IniFile's arena is made with this size and holds one byte more.
  static constexpr std::int32_t kArenaSize = 0x40000;

  // Resolves `name` into fileName (".\" ahead of a bare name, "INI" as the default extension;
  // null or empty gives an empty fileName), makes the arena and the three strings, and unless
  // skipReading is set reads the file with its includes. Never fails: a file that can't be read
  // gives an object with no sections.
  IniFile(const char* name, int autoWriteDefaults, int skipReading);
  // Frees sections, keys, the arena and the three strings. No write: what hasn't gone through
  // IniWrite is lost.
  ~IniFile();
  IniFile(const IniFile&) = delete;
  IniFile& operator=(const IniFile&) = delete;

  // Storage on the kernel heap; null (and no constructor run) when it is exhausted.
  static void* operator new(std::size_t size) noexcept;
  static void* operator new(std::size_t, void* where) noexcept { return where; }
  static void operator delete(void* block) noexcept;

  // Reads the file through gFMG into the arena behind what it holds, cuts it in place and adds
  // its sections, then reads its #include files, in line order, each with its own includes
  // before the next. Returns 1 when the text of this file was walked to its end; 0 when it
  // can't be opened, is empty, finds no free space, or begins with a line end or a zero byte.
  // An include's result is dropped. Include cycles end when the arena is full.
  int IniParseFile(const char* name);

  // Typed reads. A hit sets the tag (integer, float, string) and gives the stored view, also
  // for an empty value (0, 0.0, ""). A miss gives the default; with autoWriteDefaults set it
  // first adds the key with the default.
  std::int32_t IniGetInt(const char* section, const char* key, std::int32_t defaultValue);
  float IniGetFloat(const char* section, const char* key, float defaultValue);
  // Copies the value (or on a miss the default) into `out` of `size` bytes with strCopyN.
  // caseMode 1 upper-cases, 2 lower-cases a stored value; a default is copied as it is. With a
  // null `out` nothing happens but the lookup; with a size below 1 nothing is copied.
  void IniGetString(const char* section, const char* key, const char* defaultValue, char* out,
                    std::int32_t size, int caseMode);
  // 1 for "TRUE" and 0 for "FALSE" in any case (the tag stays string); any other value counts
  // by its integer view (the tag becomes integer). A miss gives the default unchanged. With
  // autoWriteDefaults set, a miss or a value that fell back on its number is rewritten as the
  // word of the result.
  std::int32_t IniGetBool(const char* section, const char* key, std::int32_t defaultValue);

  // Typed changes. 1 done; 0 when the arena can't take the name or text (traced, no key
  // changed), when memory for a record runs out, or for a null key. A new key or section goes
  // to the end of its list.
  int IniSetInt(const char* section, const char* key, std::int32_t value);
  int IniSetFloat(const char* section, const char* key, float value);
  // A non-empty value is copied into the arena each time, also over an existing key.
  int IniSetString(const char* section, const char* key, const char* value);
  // Points the key at the heap word "TRUE" (value not 0) or "FALSE"; takes no arena space for
  // an existing key.
  int IniSetBool(const char* section, const char* key, std::int32_t value);
  // Files `record` under `section`, making the section if needed. 0 for a null record or when
  // the section can't be made (the record is then freed). Returns 1 also when a key of the
  // record's name is there already or its node can't be had; the record is then freed.
  int IniAddKey(const char* section, IniKey* record);
  // The length of the unbroken run of sections named by `format` (one integer conversion,
  // %d or %i with optional flags "-+ 0", width and precision) for 1, 2, 3 ...; 0 for a format
  // without exactly one such conversion.
  std::int32_t IniCountSections(const char* format);
  // Writes every section and key to `name` (resolved as the constructor does, and kept as
  // fileName whatever follows) or, for null, to fileName; on disk even when the text came from
  // a catalog. 1 written (write errors aren't seen), 0 when the file can't be opened.
  int IniWrite(const char* name);

  char fileName[kPathSize];
  CursorList sections;
  StringPool pool;
  std::int32_t autoWriteDefaults = 0;
  char* emptyString = nullptr;
  char* trueString = nullptr;
  char* falseString = nullptr;
  // Beside sections, which changes only through it.
  NameIndex sectionIndex;
  // Lines the reads passed over or couldn't keep: directives, duplicate sections and keys, key
  // lines without "=" or outside a section, lines dropped for want of memory, and text behind a
  // zero byte or at an arena filled to its end. 0 means every line stands in the object as
  // written (blank lines and comments aside).
  std::int32_t irregularLines = 0;

 private:
  // The key `key` of section `section`, or null; moves both list cursors. *inSection, when
  // given, is the section found, or null.
  IniKey* FindKey(const char* section, const char* key, IniSection** inSection = nullptr);
  // IniAddKey(section, record) for a record made right after FindKey missed `key` in `found`
  // (null when the section was missed too), without repeating lookups that can only repeat.
  int AddMissedKey(const char* section, IniSection* found, const char* key, IniKey* record);
  // A new record holding `text`, named by a copy of `key` in the arena; null when the arena
  // can't take the name (traced with `arenaFullTrace`, which has one %s) or memory runs out.
  IniKey* MakeNamedKey(const char* key, char* text, const char* arenaFullTrace);
  // Reads one file into the arena and its sections into the object; puts the names of its
  // includes, in line order, ahead of those in `pending`.
  int ParseOneFile(const char* name, CursorList* pending);
  void ReadSectionHeader(char* line, const char* parsedFile);
};

// Reads "red,green,blue" from the key into color[0..2], each clamped to 0.0 .. 1.0. Returns 1;
// returns 0 with color untouched when the value has fewer than two commas (or ini or color is
// null). Reads the key as IniGetString does, with "" as the default.
int IniGetColor(float* color, IniFile* ini, const char* section, const char* key);
// The reading of IniGetColor from a copy of the value: `text` is cut at its commas.
int IniReadColor(float* color, char* text);
