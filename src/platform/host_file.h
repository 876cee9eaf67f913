// Host files and paths: the one place that calls the OS for files and knows its separator.
#pragma once
#include <cstdint>
#include <cstdio>

// Every path given to these functions is a system path: `\` separates, and becomes `/` at the
// moment of the call. A path that can't be converted (longer than the host allows) fails as
// the call itself would.

// How a file opened for reading will be read; a hint to the host only.
enum class HostAccess { kSequential, kRandom };

// Opens a file for reading. The descriptor, or -1.
std::int32_t hostFileOpenRead(const char* path, HostAccess access);
// Creates a file for writing, or empties one that exists; a new file gets read and write for
// all, less the umask. The descriptor, or -1.
std::int32_t hostFileCreate(const char* path);
// Creates a new file for writing, read and write for all less the umask, and fails if anything
// (a symbolic link included) has that name already. The descriptor, or -1.
std::int32_t hostFileCreateNew(const char* path);
// Creates a new file, as hostFileCreateNew does, under a free temporary name in the directory
// of `besidePath` (so that a rename onto `besidePath` stays in one file system). The descriptor
// with the name in `temporary` (kHostPathSize bytes); or -1.
std::int32_t hostFileCreateTemporary(const char* besidePath, char* temporary);
// 0 closed, -1 not.
std::int32_t hostFileClose(std::int32_t descriptor);
// Bytes read (at most 0x7FFFFFFF at once), 0 at the end of the file, -1 on an error.
std::int32_t hostFileRead(std::int32_t descriptor, void* buffer, std::uint32_t count);
// Writes all `count` bytes (at most 0x7FFFFFFF at once) unless the host fails part way: the
// bytes written, or -1 if the host failed before the first byte.
std::int32_t hostFileWrite(std::int32_t descriptor, const void* buffer, std::uint32_t count);
// Origin 0 start, 1 current, 2 end. The new position from the start of the file, or -1 (bad
// origin, a target before the start, or a descriptor that can't seek).
std::int64_t hostFileSeek(std::int32_t descriptor, std::int64_t offset, std::int32_t origin);
// 1 and sets *size to the size of the open file; 0 and leaves *size untouched if the host
// can't tell.
int hostFileStat(std::int32_t descriptor, std::int64_t* size);
// A C stream on the file, for writers that format text; null on failure. `mode` as fopen's.
std::FILE* hostFileOpenStream(const char* path, const char* mode);
// 1 if something (a file, a directory, anything) has this name; else 0.
int hostPathExists(const char* path);
// 0 removed, -1 not.
std::int32_t hostFileRemove(const char* path);
// Puts the file `from` in the place of `to` in one step, replacing what was there (a symbolic
// link itself, not its target). Both in one file system. 0 renamed, -1 not.
std::int32_t hostFileRename(const char* from, const char* to);

// A system path under which no file can exist (the host's null device is no directory): as a
// search directory it leaves every name to the catalogs.
extern const char kHostNoFileDirectory[];

// Gives `to` the permissions of `from`. 0 done, -1 not.
std::int32_t hostFileCopyMode(const char* from, const char* to);

// What a name stands for, links followed.
enum class HostPathKind { kMissing, kFile, kDirectory, kDevice, kOther };
HostPathKind hostPathKindOf(const char* path);

// The host's reason for the last failed call, as a sentence fragment ("No space left on
// device"); empty when no call has failed since hostClearLastError.
const char* hostLastErrorText();
void hostClearLastError();
// The number of this process, for names that no other process picks at the same time.
std::int32_t hostProcessId();

// The working directory, in the system's form, into `buffer` of `size` bytes. 1 done; 0 with
// the buffer cleared if the host can't tell or the directory can't be represented (see
// hostPathToSystem) or doesn't fit. A null buffer gives 0.
int hostGetCurrentDirectory(char* buffer, std::int32_t size);
// 0 changed, -1 not.
std::int32_t hostChangeDirectory(const char* path);

// What became of a host path coming into the system.
enum class HostPathResult {
  kOk,
  kEmpty,         // null or empty: no path was given
  kHasBackslash,  // a `\` in a host path would read as a separator inside the system
  kTooLong,       // 260 bytes or more: no system path buffer holds it
};

// The longest system path plus its terminator.
constexpr std::int32_t kHostPathSize = 260;

// Converts a path that comes from the host (typed, chosen, given on a command line) to the
// system's form: every `/` becomes `\`; nothing else changes, `..` and relative paths
// included. kOk and the converted path in `out` (of `size` bytes, at least kHostPathSize);
// otherwise the reason, with `out` cleared. A path is never cut.
HostPathResult hostPathToSystem(const char* hostPath, char* out, std::int32_t size);
// The other way, for showing a system path to the user: `\` becomes `/`, cut to `size` - 1
// bytes.
void hostPathFromSystem(const char* systemPath, char* out, std::int32_t size);
// A sentence for the user on why a path was refused; empty for kOk.
const char* hostPathMessage(HostPathResult result);
