// Files as the converter names them to its user.
#pragma once
#include <cstdint>
#include <cstdio>
#include <string>

// `path` (system form) as the user reads it: slashes, and no "./" that the system put ahead of
// a bare name.
std::string ShownPath(const char* path);

// Opens `path` (system form) for reading through the file manager: the handle, or -1 after
// "can't read SHOWN: reason" on `err`.
std::int32_t OpenToRead(const char* path, const char* shownName, std::FILE* err);

// Tells the user that a conversion losing guns wrote nothing, and how to convert anyway.
void PrintLossRefused(std::FILE* err);
