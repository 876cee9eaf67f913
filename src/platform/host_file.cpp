// Host files and paths: the one place that calls the OS for files and knows its separator.
#include "platform/host_file.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::uint32_t kMaxTransfer = 0x7FFFFFFF;

// A system path turned into the host's form for one call. A path that no system path buffer
// holds (kHostPathSize bytes or more) leaves it invalid, and the call fails.
class HostPath {
 public:
  explicit HostPath(const char* path) {
    if (!path) return;
    std::size_t length = strnlen(path, sizeof text_);
    if (length >= sizeof text_) return;
    for (std::size_t i = 0; i < length; i++) text_[i] = path[i] == '\\' ? '/' : path[i];
    text_[length] = '\0';
    valid_ = true;
  }
  bool valid() const { return valid_; }
  const char* text() const { return text_; }

 private:
  char text_[kHostPathSize];
  bool valid_ = false;
};

int openFlagsOf(int flags) { return flags | O_CLOEXEC; }

// A file being rewritten is cut when it is closed rather than emptied when it is opened: on
// ext4, emptying a file frees all its blocks at once (each freed range trimmed on the spot when
// the disk is mounted with discard) and sends the new bytes to the disk as the file is closed,
// which costs more than the whole rewrite. The marks are kept by descriptor; one past the
// table is emptied at the open instead. Atomic, since threads open and close descriptors.
struct RewriteMark {
  std::atomic<bool> active{false};
  std::atomic<std::int64_t> position{0};
  std::atomic<std::int64_t> end{0};  // the furthest byte written so far
};
constexpr int kRewriteMarks = 1024;
RewriteMark gRewrites[kRewriteMarks];

RewriteMark* rewriteOf(int descriptor) {
  if (descriptor < 0 || descriptor >= kRewriteMarks) return nullptr;
  RewriteMark* mark = &gRewrites[descriptor];
  return mark->active.load(std::memory_order_relaxed) ? mark : nullptr;
}

// Opens `path` to be rewritten; -1 on failure.
int openRewrite(const char* path) {
  HostPath hostPath(path);
  if (!hostPath.valid()) return -1;
  int descriptor;
  do {
    descriptor = open(hostPath.text(), openFlagsOf(O_WRONLY | O_CREAT), 0666);
  } while (descriptor < 0 && errno == EINTR);
  if (descriptor < 0) return -1;
  // Only a regular file has bytes to cut; a device or a pipe is written as it comes.
  struct stat status;
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return descriptor;
  if (descriptor >= kRewriteMarks) {
    if (ftruncate(descriptor, 0) != 0) {
      close(descriptor);
      return -1;
    }
    return descriptor;
  }
  RewriteMark& mark = gRewrites[descriptor];
  mark.position.store(0, std::memory_order_relaxed);
  mark.end.store(0, std::memory_order_relaxed);
  mark.active.store(true, std::memory_order_relaxed);
  return descriptor;
}

// Cuts a rewritten file after `end` and drops its mark; 0 done (or nothing to cut), -1 when
// the cut failed or `end` is unknown (below 0), which leaves the file as it stands.
int cutRewrite(int descriptor, std::int64_t end) {
  RewriteMark* mark = rewriteOf(descriptor);
  if (!mark) return 0;
  mark->active.store(false, std::memory_order_relaxed);
  if (end < 0) return -1;
  return ftruncate(descriptor, static_cast<off_t>(end)) == 0 ? 0 : -1;
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

std::int32_t hostFileCreate(const char* path) { return openRewrite(path); }

std::int32_t hostFileClose(std::int32_t descriptor) {
  RewriteMark* mark = rewriteOf(descriptor);
  int cut = mark ? cutRewrite(descriptor, mark->end.load(std::memory_order_relaxed)) : 0;
  // Linux releases the descriptor even when close is interrupted: never retry.
  return close(descriptor) == 0 && cut == 0 ? 0 : -1;
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
  if (RewriteMark* mark = rewriteOf(descriptor)) {
    std::int64_t position = mark->position.load(std::memory_order_relaxed) + done;
    mark->position.store(position, std::memory_order_relaxed);
    if (position > mark->end.load(std::memory_order_relaxed)) {
      mark->end.store(position, std::memory_order_relaxed);
    }
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
  if (position < 0) return -1;
  if (RewriteMark* mark = rewriteOf(descriptor)) {
    mark->position.store(static_cast<std::int64_t>(position), std::memory_order_relaxed);
  }
  return static_cast<std::int64_t>(position);
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

std::FILE* hostFileOpenRewriteStream(const char* path) {
  int descriptor = openRewrite(path);
  if (descriptor < 0) return nullptr;
  std::FILE* stream = fdopen(descriptor, "w");
  if (!stream) hostFileClose(descriptor);
  return stream;
}

int hostFileCloseRewriteStream(std::FILE* stream) {
  int flushed = std::fflush(stream);
  off_t end = ftello(stream);
  int cut = cutRewrite(fileno(stream), static_cast<std::int64_t>(end));
  int closed = std::fclose(stream);
  return flushed == 0 && end >= 0 && cut == 0 && closed == 0 ? 0 : -1;
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
