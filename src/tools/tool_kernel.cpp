// Steps the command-line programs share: exit codes, host paths at the door, the kernel around
// the work, and the kernel's trace words caught for the user.
#include "tools/tool_kernel.h"

#include <cstdlib>
#include <cstring>

#include "base/debug_system.h"
#include "platform/host_file.h"

bool toolSystemPath(const char* program, const char* hostPath, char* out, std::FILE* err) {
  HostPathResult result = hostPathToSystem(hostPath, out, kHostPathSize);
  if (result == HostPathResult::kOk) return true;
  std::fprintf(err, "%s: %s: %s\n", program, hostPath ? hostPath : "", hostPathMessage(result));
  return false;
}

ToolTraceCapture::ToolTraceCapture() {
  stream_ = open_memstream(&text_, &size_);
  if (!stream_ || !gDBG) return;
  dbgSetLogSwitch(1);
  // An empty file name makes the log active without a file; lines go to the stream set here.
  gDBG->Init("");
  gDBG->SetThreshold(0);
  gDBG->stream = stream_;
}

ToolTraceCapture::~ToolTraceCapture() {
  dbgSetLogSwitch(0);
  if (gDBG) gDBG->Init(nullptr);
  if (stream_) std::fclose(stream_);
  std::free(text_);
}

void ToolTraceCapture::FirstMessage(char* out, int size) {
  if (size < 1) return;
  out[0] = '\0';
  if (!stream_ || std::fflush(stream_) != 0 || !text_) return;
  const char* line = std::strchr(text_, '|');
  if (!line) return;
  line++;
  std::size_t length = std::strcspn(line, "\n");
  char message[DebugSystem::kLineSize];
  if (length >= sizeof message) length = sizeof message - 1;
  std::memcpy(message, line, length);
  message[length] = '\0';
  hostPathFromSystem(message, out, size);
}
