// Shared helpers of the file tests: system paths, catalogs on disk, whole reads, open descriptors.
#pragma once
#include <cstdint>
#include <filesystem>
#include <string>

#include "files/file_manager.h"
#include "platform/host_file.h"

// The system (backslash) form of a host path.
inline std::string systemPath(const std::string& hostPath) {
  char out[kHostPathSize];
  if (hostPathToSystem(hostPath.c_str(), out, sizeof out) != HostPathResult::kOk)
    return "<refused>";
  return out;
}

// Reads a handle of gFMG to its end in chunks of `chunk` bytes.
inline std::string readToEnd(std::int32_t handle, std::uint32_t chunk = 7) {
  std::string bytes;
  char buffer[4096];
  for (std::int32_t got; (got = gFMG->ReadFile(handle, buffer, chunk)) > 0;)
    bytes.append(buffer, got);
  return bytes;
}

// Descriptors the process holds, to see that nothing is left open.
inline int openDescriptors() {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    (void)entry;
    count++;
  }
  return count;
}
