// Path helpers: join, take apart and re-extend backslash paths, and the working directory.
#include "base/path_util.h"

#include <cstring>

#include "base/debug_system.h"
#include "base/string_util.h"
#include "platform/host_file.h"

namespace {

constexpr const char* kDefaultDirectory = ".\\";
constexpr char kSeparator = '\\';
constexpr char kExtensionMark = '.';

// 1 after tracing, if `text` is null or empty; the output is cleared then.
int refuseEmpty(const char* text, char* output, const char* function) {
  if (!strIsEmpty(text)) return 0;
  strClear(output);
  dbgTrace("%s: NULL string passed in as argument, no action taken.", function);
  return 1;
}

// The extension dot: the last dot of the whole text, unless a backslash follows it.
char* extensionDot(char* text) {
  char* dot = std::strrchr(text, kExtensionMark);
  return (dot && dot[1] != kSeparator) ? dot : nullptr;
}

const char* extensionDot(const char* text) { return extensionDot(const_cast<char*>(text)); }

int room(const char* output, int size) {
  return size - static_cast<int>(strnlen(output, static_cast<std::size_t>(size))) - 1;
}

// The join of directory and name; the output ends within `size` bytes.
void joinPath(const char* directory, const char* name, char* output, int size) {
  if (std::strchr(name, kSeparator)) {
    strCopyN(output, name, size);
    return;
  }
  // Bounded, unlike the other steps' room tests: a directory too long for the output is cut.
  strCopyN(output, directory ? directory : kDefaultDirectory, size);
  int left = room(output, size);
  if (left <= 0) return;
  std::size_t length = std::strlen(output);
  if (length > 0 && output[length - 1] != kSeparator) {
    strAppendN(output, "\\", size);
    left--;
  }
  if (left > 0) strAppendN(output, name, size);
  output[size - 1] = '\0';
}

// Adds an extension behind what the output holds, with one dot whatever form it is given in.
void appendExtension(const char* extension, char* output, int size) {
  int left = room(output, size);
  if (left <= 0) return;
  if (!extensionDot(extension)) {
    strAppendN(output, ".", size);
    left--;
  }
  if (left > 0) strAppendN(output, extension, size);
  output[size - 1] = '\0';
}

bool unusable(const char* output, int size) { return !output || size < 1; }

}  // namespace

void fmgCheckFilename(const char* directory, const char* name, const char* extension, char* output,
                      int size) {
  if (refuseEmpty(name, output, "fmgCheckFilename") || unusable(output, size)) return;
  joinPath(directory, name, output, size);
  if (!extension || extensionDot(output)) return;
  appendExtension(extension, output, size);
}

void fmgCheckFilePath(const char* directory, const char* name, char* output, int size) {
  if (refuseEmpty(name, output, "fmgCheckFilePath") || unusable(output, size)) return;
  joinPath(directory, name, output, size);
}

void fmgGetFilePath(const char* path, char* output, int size) {
  if (refuseEmpty(path, output, "fmgGetFilePath") || unusable(output, size)) return;
  strCopyN(output, path, size);
  char* last = std::strrchr(output, kSeparator);
  if (last) {
    *last = '\0';
  } else {
    strCopyN(output, kDefaultDirectory, size);
  }
}

void fmgGetFileExtension(const char* path, char* output, int size) {
  if (refuseEmpty(path, output, "fmgGetFileExtension") || unusable(output, size)) return;
  const char* dot = extensionDot(path);
  if (dot) {
    strCopyN(output, dot + 1, size);
  } else {
    strClear(output);
  }
}

void fmgRemoveFilePath(const char* path, char* output, int size) {
  if (refuseEmpty(path, output, "fmgRemoveFilePath") || unusable(output, size)) return;
  const char* last = std::strrchr(path, kSeparator);
  strCopyN(output, last ? last + 1 : path, size);
}

void fmgSetFileExtension(const char* path, const char* extension, char* output, int size) {
  if (refuseEmpty(path, output, "fmgSetFileExtension") || unusable(output, size)) return;
  strCopyN(output, path, size);
  char* dot = extensionDot(output);
  if (dot) *dot = '\0';
  if (!extension) return;
  appendExtension(extension, output, size);
}

void fmgGetCurrentDirectory(char* buffer, int size) {
  if (buffer && !hostGetCurrentDirectory(buffer, size)) {
    dbgTrace("fmgGetCurrentDirectory: the working directory has no system path that fits, "
             "buffer cleared.");
  }
}

int fmgSetCurrentDirectory(const char* directory) {
  if (strIsEmpty(directory)) return 0;
  return hostChangeDirectory(directory) == 0 ? 1 : 0;
}
