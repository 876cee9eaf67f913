// Path helpers: join, take apart and re-extend backslash paths, and the working directory.
#pragma once

// Paths follow the same rules on every host: `\` separates, ".\" is the default directory, and
// `/` or a drive colon mean nothing. `size` counts the whole output buffer (callers pass 260);
// results that don't fit are cut to size - 1 bytes, never cutting a UTF-8 sequence, without a
// report. A null or empty path or name clears the output and traces
// "<function>: NULL string passed in as argument, no action taken.".
//
// The extension dot of a text is its last dot, unless a backslash follows it directly; the
// whole text counts, so a dot in a directory name can be one and the dots of ".\" or "..\"
// are not.

// Joins `directory` (null means ".\"; empty stays empty) and `name` with one backslash, then
// adds `extension` (with or without its dot; null adds nothing) unless the result already has
// an extension dot. A name that holds a backslash is a path of its own: the directory is
// ignored.
void fmgCheckFilename(const char* directory, const char* name, const char* extension, char* output,
                      int size);
// The join of fmgCheckFilename without an extension.
void fmgCheckFilePath(const char* directory, const char* name, char* output, int size);
// The path up to its last backslash, without it; ".\" if it holds none.
void fmgGetFilePath(const char* path, char* output, int size);
// What follows the extension dot; empty if there is none.
void fmgGetFileExtension(const char* path, char* output, int size);
// What follows the last backslash; the whole path if it holds none.
void fmgRemoveFilePath(const char* path, char* output, int size);
// Cuts the path at its extension dot, then adds `extension` as fmgCheckFilename does; a null
// extension only removes.
void fmgSetFileExtension(const char* path, const char* extension, char* output, int size);

// The working directory, in the system's form, into a non-null buffer; the buffer is cleared
// if it can't be told or doesn't fit in `size`.
void fmgGetCurrentDirectory(char* buffer, int size);
// 1 changed to `directory`; 0 for a null or empty one or one that can't be entered.
int fmgSetCurrentDirectory(const char* directory);
