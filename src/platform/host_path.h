// HostPath: a system path turned into the host's form for one OS call (platform-internal).
#pragma once
#include <cstddef>
#include <cstring>

#include "platform/host_file.h"

// A path that no system path buffer holds (kHostPathSize bytes or more) leaves it invalid, and
// the call fails.
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
