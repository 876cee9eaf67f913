// String helpers: the kernel's text primitives on NUL-terminated UTF-8 byte strings.
#include "base/string_util.h"

#include <cstdint>
#include <cstring>

#include "base/memory_manager.h"

namespace {

// Space, or one of \t \n \v \f \r, which lie together from 9 to 13.
bool isSpace(char c) { return c == ' ' || static_cast<unsigned char>(c - '\t') <= '\r' - '\t'; }

char toUpper(char c) { return (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c; }

char toLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

bool isContinuationByte(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// Length of the longest prefix of `text` (of `length` bytes) that is at most `limit` bytes and
// doesn't end inside a UTF-8 sequence.
std::size_t boundedPrefix(const char* text, std::size_t length, std::size_t limit) {
  if (length <= limit) return length;
  std::size_t cut = limit;
  while (cut > 0 && isContinuationByte(text[cut])) cut--;
  return cut;
}

}  // namespace

int strIsEmpty(const char* text) { return (!text || text[0] == '\0') ? 1 : 0; }

void strClear(char* buffer) {
  if (buffer) buffer[0] = '\0';
}

char* strDuplicate(const char* text) {
  if (!text) return nullptr;
  std::size_t length = std::strlen(text);
  if (length >= UINT32_MAX) return nullptr;  // no heap block is that large
  auto* copy = static_cast<char*>(memAlloc(static_cast<std::uint32_t>(length + 1)));
  if (!copy) return nullptr;
  std::memcpy(copy, text, length + 1);
  return copy;
}

void strFree(char** text) {
  if (*text) {
    memFree(*text);
    *text = nullptr;
  }
}

int strEquals(const char* a, const char* b, int caseSensitive) {
  if (strIsEmpty(a) || strIsEmpty(b)) return 0;
  if (caseSensitive) return std::strcmp(a, b) == 0 ? 1 : 0;
  // Case is folded only where the bytes differ; a NUL against anything else never folds equal.
  for (;; a++, b++) {
    if (*a != *b && toLower(*a) != toLower(*b)) return 0;
    if (*a == '\0') return 1;
  }
}

char* strCopyN(char* destination, const char* source, int size) {
  if (!destination) return nullptr;
  if (strIsEmpty(source)) {
    destination[0] = '\0';
    return destination;
  }
  if (size < 1) return destination;
  auto room = static_cast<std::size_t>(size);
  std::size_t length = boundedPrefix(source, strnlen(source, room), room - 1);
  std::memmove(destination, source, length);
  std::memset(destination + length, 0, room - length);
  return destination;
}

char* strAppendN(char* destination, const char* source, int size) {
  if (!destination || strIsEmpty(source) || size < 1) return destination;
  auto room = static_cast<std::size_t>(size);
  std::size_t used = strnlen(destination, room);
  if (used >= room) {
    destination[room - 1] = '\0';
    return destination;
  }
  std::size_t length = boundedPrefix(source, strnlen(source, room), room - 1 - used);
  std::memmove(destination + used, source, length);
  destination[used + length] = '\0';
  return destination;
}

char* strUpper(char* text) {
  if (strIsEmpty(text)) return text;
  for (char* p = text; *p; p++) *p = toUpper(*p);
  return text;
}

char* strLower(char* text) {
  if (strIsEmpty(text)) return text;
  for (char* p = text; *p; p++) *p = toLower(*p);
  return text;
}

char* strTrim(char* text) {
  if (strIsEmpty(text)) return text;
  // Most texts have nothing to trim: a blank at neither end leaves the text as it is.
  if (!isSpace(text[0]) && !isSpace(text[std::strlen(text) - 1])) return text;
  char* start = text;
  while (isSpace(*start)) start++;
  // One pass finds the end and the last byte that isn't white space.
  char* end = start;
  char* lastSolid = nullptr;
  for (; *end; end++) {
    if (!isSpace(*end)) lastSolid = end;
  }
  if (!lastSolid) {
    text[0] = '\0';
    return text;
  }
  if (start != text) {
    std::memmove(text, start, static_cast<std::size_t>(end - start) + 1);
    lastSolid -= start - text;
  }
  lastSolid[1] = '\0';
  return text;
}
