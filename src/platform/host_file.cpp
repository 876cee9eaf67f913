// Host files and paths: the one place that calls the OS for files and knows its separator.
#include "platform/host_file.h"
#include "platform/host_path.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::uint32_t kMaxTransfer = 0x7FFFFFFF;
constexpr int kTemporaryTries = 10000;

int openFlagsOf(int flags) { return flags | O_CLOEXEC; }

// A new file, never one that exists nor through a symbolic link; -1 with errno set otherwise.
std::int32_t createExclusive(const HostPath& hostPath) {
  int descriptor;
  do {
    descriptor =
        open(hostPath.text(), openFlagsOf(O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW), 0666);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor < 0 ? -1 : descriptor;
}

}  // namespace

std::int32_t hostFileOpenRead(const char* path, HostAccess access) {
  HostPath hostPath(path);
  if (!hostPath.valid()) return -1;
  int descriptor;
  do {
    descriptor = open(hostPath.text(), openFlagsOf(O_RDONLY));
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) return -1;
  // A directory opens for reading here, but it is no file to read.
  struct stat status;
  if (fstat(descriptor, &status) != 0 || S_ISDIR(status.st_mode)) {
    close(descriptor);
    return -1;
  }
  posix_fadvise(descriptor, 0, 0,
                access == HostAccess::kRandom ? POSIX_FADV_RANDOM : POSIX_FADV_SEQUENTIAL);
  return descriptor;
}

std::int32_t hostFileCreate(const char* path) {
  HostPath hostPath(path);
  if (!hostPath.valid()) return -1;
  int descriptor;
  do {
    descriptor = open(hostPath.text(), openFlagsOf(O_WRONLY | O_CREAT | O_TRUNC), 0666);
  } while (descriptor < 0 && errno == EINTR);
  return descriptor < 0 ? -1 : descriptor;
}

std::int32_t hostFileCreateNew(const char* path) {
  HostPath hostPath(path);
  if (!hostPath.valid()) return -1;
  return createExclusive(hostPath);
}

std::int32_t hostFileCreateTemporary(const char* besidePath, char* temporary) {
  if (!besidePath || !temporary) return -1;
  const char* slash = std::strrchr(besidePath, '\\');
  std::size_t directoryLength = slash ? static_cast<std::size_t>(slash - besidePath) + 1 : 0;
  char name[32];
  for (int attempt = 0; attempt < kTemporaryTries; attempt++) {
    auto nameLength = static_cast<std::size_t>(
        std::snprintf(name, sizeof name, "~tess%04d.tmp", attempt));
    if (directoryLength + nameLength >= static_cast<std::size_t>(kHostPathSize)) return -1;
    std::memcpy(temporary, besidePath, directoryLength);
    std::memcpy(temporary + directoryLength, name, nameLength + 1);
    HostPath hostPath(temporary);
    if (!hostPath.valid()) return -1;
    std::int32_t descriptor = createExclusive(hostPath);
    if (descriptor >= 0) return descriptor;
    // Only a name already taken is worth another try.
    if (errno != EEXIST) return -1;
  }
  return -1;
}

std::int32_t hostFileClose(std::int32_t descriptor) {
  // Linux releases the descriptor even when close is interrupted: never retry.
  return close(descriptor) == 0 ? 0 : -1;
}

std::int32_t hostFileRead(std::int32_t descriptor, void* buffer, std::uint32_t count) {
  if (count > kMaxTransfer) count = kMaxTransfer;
  ssize_t got;
  do {
    got = read(descriptor, buffer, count);
  } while (got < 0 && errno == EINTR);
  return got < 0 ? -1 : static_cast<std::int32_t>(got);
}

std::int32_t hostFileWrite(std::int32_t descriptor, const void* buffer, std::uint32_t count) {
  if (count > kMaxTransfer) count = kMaxTransfer;
  const auto* bytes = static_cast<const char*>(buffer);
  std::uint32_t done = 0;
  // A short write (a full disk, a signal) is retried for the rest, so that a caller who sees
  // fewer bytes than asked knows the data didn't all reach the file.
  while (done < count) {
    ssize_t put = write(descriptor, bytes + done, count - done);
    if (put < 0 && errno == EINTR) continue;
    if (put <= 0) return done > 0 ? static_cast<std::int32_t>(done) : -1;
    done += static_cast<std::uint32_t>(put);
  }
  return static_cast<std::int32_t>(done);
}

std::int64_t hostFileSeek(std::int32_t descriptor, std::int64_t offset, std::int32_t origin) {
  int whence;
  switch (origin) {
    case 0:
      whence = SEEK_SET;
      break;
    case 1:
      whence = SEEK_CUR;
      break;
    case 2:
      whence = SEEK_END;
      break;
    default:
      return -1;
  }
  off_t position = lseek(descriptor, static_cast<off_t>(offset), whence);
  return position < 0 ? -1 : static_cast<std::int64_t>(position);
}

int hostFileStat(std::int32_t descriptor, std::int64_t* size) {
  struct stat info;
  if (fstat(descriptor, &info) != 0) return 0;
  *size = static_cast<std::int64_t>(info.st_size);
  return 1;
}

std::FILE* hostFileOpenStream(const char* path, const char* mode) {
  HostPath hostPath(path);
  if (!hostPath.valid() || !mode) return nullptr;
  return std::fopen(hostPath.text(), mode);
}

int hostPathExists(const char* path) {
  HostPath hostPath(path);
  struct stat status;
  return hostPath.valid() && stat(hostPath.text(), &status) == 0 ? 1 : 0;
}

std::int32_t hostFileRemove(const char* path) {
  HostPath hostPath(path);
  return hostPath.valid() && std::remove(hostPath.text()) == 0 ? 0 : -1;
}

std::int32_t hostFileRename(const char* from, const char* to) {
  HostPath hostFrom(from);
  HostPath hostTo(to);
  if (!hostFrom.valid() || !hostTo.valid()) return -1;
  return std::rename(hostFrom.text(), hostTo.text()) == 0 ? 0 : -1;
}

const char kHostNoFileDirectory[] = "\\dev\\null";

std::int32_t hostFileCopyMode(const char* from, const char* to) {
  HostPath hostFrom(from);
  HostPath hostTo(to);
  struct stat status;
  if (!hostFrom.valid() || !hostTo.valid() || stat(hostFrom.text(), &status) != 0) return -1;
  return chmod(hostTo.text(), status.st_mode & 07777) == 0 ? 0 : -1;
}

HostPathKind hostPathKindOf(const char* path) {
  HostPath hostPath(path);
  struct stat status;
  if (!hostPath.valid() || stat(hostPath.text(), &status) != 0) return HostPathKind::kMissing;
  if (S_ISREG(status.st_mode)) return HostPathKind::kFile;
  if (S_ISDIR(status.st_mode)) return HostPathKind::kDirectory;
  if (S_ISCHR(status.st_mode) || S_ISBLK(status.st_mode)) return HostPathKind::kDevice;
  return HostPathKind::kOther;
}

const char* hostLastErrorText() { return errno == 0 ? "" : std::strerror(errno); }

void hostClearLastError() { errno = 0; }

std::int32_t hostProcessId() { return static_cast<std::int32_t>(getpid()); }

int hostGetCurrentDirectory(char* buffer, std::int32_t size) {
  if (!buffer) return 0;
  if (size < 1) return 0;
  char hostText[PATH_MAX];
  if (!getcwd(hostText, sizeof hostText) ||
      hostPathToSystem(hostText, buffer, size) != HostPathResult::kOk) {
    buffer[0] = '\0';
    return 0;
  }
  return 1;
}

std::int32_t hostChangeDirectory(const char* path) {
  HostPath hostPath(path);
  if (!hostPath.valid()) return -1;
  return chdir(hostPath.text()) == 0 ? 0 : -1;
}

HostPathResult hostPathToSystem(const char* hostPath, char* out, std::int32_t size) {
  if (out && size > 0) out[0] = '\0';
  if (!hostPath || hostPath[0] == '\0') return HostPathResult::kEmpty;
  std::size_t length = strnlen(hostPath, kHostPathSize);
  if (length >= static_cast<std::size_t>(kHostPathSize)) return HostPathResult::kTooLong;
  if (std::memchr(hostPath, '\\', length)) return HostPathResult::kHasBackslash;
  if (!out || size < 1 || length >= static_cast<std::size_t>(size)) return HostPathResult::kTooLong;
  for (std::size_t i = 0; i < length; i++) out[i] = hostPath[i] == '/' ? '\\' : hostPath[i];
  out[length] = '\0';
  return HostPathResult::kOk;
}

void hostPathFromSystem(const char* systemPath, char* out, std::int32_t size) {
  if (!out || size < 1) return;
  std::int32_t i = 0;
  for (; systemPath && systemPath[i] != '\0' && i < size - 1; i++) {
    out[i] = systemPath[i] == '\\' ? '/' : systemPath[i];
  }
  out[i] = '\0';
}

const char* hostPathMessage(HostPathResult result) {
  switch (result) {
    case HostPathResult::kOk:
      return "";
    case HostPathResult::kEmpty:
      return "No file name was given.";
    case HostPathResult::kHasBackslash:
      return "The path contains a backslash (\\), which Tessarine cannot use in a file name. "
             "Rename the file or folder, or choose another.";
    case HostPathResult::kTooLong:
      return "The path is too long: Tessarine handles paths of up to 259 bytes. "
             "Move the file to a shorter path, or choose another.";
  }
  return "";
}
