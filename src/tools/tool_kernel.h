// Steps the command-line programs share: exit codes, host paths at the door, the kernel around
// the work, and the kernel's trace words caught for the user.
#pragma once
#include <cstdio>

#include "core/core.h"
#include "files/file_manager.h"

constexpr int kToolOk = 0;
constexpr int kToolFailed = 1;
constexpr int kToolUsage = 2;

// The host path in the system's form in `out` (kHostPathSize bytes), or a message
// "PROGRAM: PATH: why" on `err` and false.
bool toolSystemPath(const char* program, const char* hostPath, char* out, std::FILE* err);

// Runs `work` (returning an exit status) between bring-up and shutdown of the kernel; fails with
// a message if the services don't come up.
template <typename Work>
int toolWithKernel(const char* program, Work work, std::FILE* err) {
  int status = kToolFailed;
  if (CoreStartup(FrameClock::kIdle) && gFMG) {
    status = work();
  } else {
    std::fprintf(err, "%s: the kernel's services could not be brought up\n", program);
  }
  CoreShutdown();
  return status;
}

// While it lives, every kernel trace is kept in memory instead of going nowhere, so that a tool
// can tell the user why the kernel refused. The kernel must be up for its whole life.
class ToolTraceCapture {
 public:
  ToolTraceCapture();
  ~ToolTraceCapture();
  ToolTraceCapture(const ToolTraceCapture&) = delete;
  ToolTraceCapture& operator=(const ToolTraceCapture&) = delete;

  // The first trace so far, without its level and line end, with paths in the host's form
  // (at most `size` - 1 bytes); empty if nothing was traced.
  void FirstMessage(char* out, int size);

 private:
  char* text_ = nullptr;
  std::size_t size_ = 0;
  std::FILE* stream_ = nullptr;
};
