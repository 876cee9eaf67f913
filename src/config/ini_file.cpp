// IniFile: building the object, reading a file with its includes, and tearing it down.
#include "config/ini_file.h"

#include <cstring>
#include <new>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "files/file_manager.h"
#include "platform/number_text.h"

namespace {

constexpr const char kDefaultExtension[] = "INI";

IniSection* newSection(char* name) {
  void* block = memAlloc(sizeof(IniSection));
  if (!block) return nullptr;
  auto* section = new (block) IniSection;
  section->name = name;
  return section;
}

void deleteSection(IniSection* section) {
  section->IniSectionClear();
  section->~IniSection();
  memFree(section);
}

// Each CR and each LF ends a line by itself; the text ends at its first zero byte. True when
// that byte comes before `end`, so that text behind it is not cut into lines.
bool cutLines(char* text, const char* end) {
  for (char* p = text;;) {
    p += std::strcspn(p, "\r\n");
    if (*p == '\0') return p < end;
    *p++ = '\0';
  }
}

// "#include name" or "#include "name with blanks"": files the name, which stays in the arena.
// Any other directive is ignored.
void readDirective(char* line, CursorList* includes) {
  char* word = line + 1;
  char* blank = std::strchr(word, ' ');  // a tab is no separator here
  if (!blank) return;
  *blank = '\0';
  if (!strEquals(word, "include", 0)) return;
  char* name = blank + 1;
  if (name[0] == '"') {
    name++;
    if (char* quote = std::strchr(name, '"')) *quote = '\0';
  } else if (char* end = std::strchr(name, ' ')) {
    *end = '\0';
  }
  // Without a node the include is dropped; nothing is reported.
  includes->Append(name);
}

// Moves the nodes of `from` ahead of those of `into`, keeping their order; `from` ends empty.
// No node is made, so nothing can fail.
void moveToFront(CursorList* into, CursorList* from) {
  if (from->count < 1) return;
  from->tail->next = into->head;
  if (into->head) into->head->previous = from->tail;
  else into->tail = from->tail;
  into->head = from->head;
  into->count += from->count;
  into->MoveFirst();
  from->head = from->tail = from->current = nullptr;
  from->count = 0;
  from->index = -1;
}

}  // namespace

IniKey* IniKey::Make(char* name, char* text) {
  auto* key = static_cast<IniKey*>(memAlloc(sizeof(IniKey)));
  if (!key) return nullptr;
  key->name = name;
  key->type = kIniString;
  strTrim(name);
  if (strIsEmpty(text)) {
    key->stringValue = nullptr;
    key->intValue = 0;
    key->floatValue = 0.0f;
    return key;
  }
  // The numbers are read before the trim; both readers skip leading blanks anyway.
  key->stringValue = text;
  key->intValue = numParseInt(text);
  key->floatValue = static_cast<float>(numParseDouble(text));
  strTrim(text);
  return key;
}

std::int32_t IniSection::IniParseKeys(StringPool* pool, const char* fileName) {
  std::int32_t passedOver = 0;
  while (pool->HasMore()) {
    char* line = pool->CurrentString();
    if (line[0] == '[' || line[0] == '#') break;
    pool->MoveNext();
    if (line[0] == '\0' || line[0] == ';') continue;
    char* equals = std::strchr(line, '=');
    IniKey* key = nullptr;
    if (equals) {
      *equals = '\0';
      key = IniKey::Make(line, equals + 1);
    }
    if (!key) {
      passedOver++;
      continue;
    }
    // A key whose node can't be had is dropped with the same words as a duplicate.
    if (keyIndex.Find(&keys, key->name) || !keyIndex.Append(&keys, key)) {
      dbgTrace("Deleting duplicate key %s from %s...", key->name, fileName);
      memFree(key);
      passedOver++;
    }
  }
  return passedOver;
}

void IniSection::IniSectionClear() {
  for (keys.MoveFirst(); keys.current; keys.MoveNext()) memFree(keys.current->payload);
  keys.Clear();
  keyIndex.Clear();
  name = nullptr;
}

void* IniFile::operator new(std::size_t size) noexcept {
  return gMEM ? memAlloc(static_cast<std::uint32_t>(size)) : nullptr;
}

void IniFile::operator delete(void* block) noexcept { memFree(block); }

IniFile::IniFile(const char* name, int autoWrite, int skipReading) {
  fileName[0] = '\0';
  fmgCheckFilename(nullptr, name, kDefaultExtension, fileName, kPathSize);
  pool.Create(kArenaSize);
  emptyString = strDuplicate("");
  trueString = strDuplicate("TRUE");
  falseString = strDuplicate("FALSE");
  if (!skipReading) IniParseFile(fileName);
  autoWriteDefaults = autoWrite;
}

IniFile::~IniFile() {
  // With the heap gone the records and the arena died with it: only drop the pointers.
  if (!gMEM) {
    pool.base = pool.top = pool.cursor = nullptr;
    emptyString = trueString = falseString = nullptr;
    return;
  }
  for (sections.MoveFirst(); sections.current; sections.RemoveCurrent()) {
    if (auto* section = static_cast<IniSection*>(sections.current->payload)) deleteSection(section);
  }
  pool.Reset();
  strFree(&emptyString);
  strFree(&trueString);
  strFree(&falseString);
  pool.Release();
  sections.Clear();
  sectionIndex.Clear();
}

int IniFile::IniParseFile(const char* name) {
  // Includes are read depth first in line order. The names wait in one list instead of on the
  // call stack, so a cycle, which only the full arena ends, can't exhaust the stack.
  CursorList pending;
  int result = ParseOneFile(name, &pending);
  while (pending.count > 0) {
    pending.MoveFirst();
    auto* next = static_cast<const char*>(pending.current->payload);
    pending.RemoveCurrent();
    ParseOneFile(next, &pending);
  }
  return result;
}

int IniFile::ParseOneFile(const char* name, CursorList* pending) {
  std::int32_t handle = gFMG ? gFMG->OpenFile(name) : -1;
  if (handle == -1) return 0;
  CursorList includes;
  int result = 0;
  char* text = pool.FreeStart();
  std::int32_t room = pool.FreeSpace();
  std::int32_t count = room > 0 ? gFMG->ReadFile(handle, text, static_cast<std::uint32_t>(room)) : 0;
  if (count > room) count = room;
  if (count > 0) {
    pool.Advance(count + 1);
    // Text behind a zero byte is no lines; a read that filled the arena lost its last byte to
    // the terminator, which cuts it the same way.
    if (cutLines(text, text + count)) irregularLines++;
    // An empty first line means the file begins with a line end: it yields nothing.
    if (pool.MoveTo(text)) {
      while (pool.HasMore()) {
        char* line = pool.CurrentString();
        pool.MoveNext();
        if (line[0] == '[') {
          ReadSectionHeader(line, name);
          continue;
        }
        if (line[0] == '#') readDirective(line, &includes);
        if (line[0] != '\0' && line[0] != ';') irregularLines++;
      }
      result = 1;
    }
  }
  gFMG->CloseFile(handle);
  moveToFront(pending, &includes);
  return result;
}

void IniFile::ReadSectionHeader(char* line, const char* parsedFile) {
  char* name = line + 1;
  std::size_t length = std::strlen(name);
  if (length > 0 && name[length - 1] == ']') name[length - 1] = '\0';
  if (sectionIndex.Find(&sections, name)) {
    // The first section of a name wins whole; the key lines of this one are read as lines
    // outside a section, which is to say ignored.
    dbgTrace("Deleting duplicate section %s from %s...", name, parsedFile);
    irregularLines++;
    return;
  }
  IniSection* section = newSection(name);
  if (!section) {
    irregularLines++;
    // Without a record the section's key lines have nowhere to go: pass over them.
    while (pool.HasMore() && pool.CurrentString()[0] != '[' && pool.CurrentString()[0] != '#') {
      pool.MoveNext();
    }
    return;
  }
  irregularLines += section->IniParseKeys(&pool, fileName);
  if (!sectionIndex.Append(&sections, section)) {
    irregularLines++;
    dbgTrace("Unable to append section %s to the list, file %s!", name, parsedFile);
    deleteSection(section);
  }
}
