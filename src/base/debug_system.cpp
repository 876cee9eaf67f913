// DebugSystem: the kernel's log, and dbgTrace, the one trace call of the kernel.
#include "base/debug_system.h"

#include <cstring>

#include "platform/host_file.h"

DebugSystem* gDBG = nullptr;

namespace {

const char kLevelNames[5][4] = {"TRC", "MSG", "WRN", "ERR", "OFF"};
constexpr int kDefaultThreshold = 4;
constexpr int kUntaggedLevel = 1;
int gLogSwitch = 0;

// One log line, cut at the buffer's end like the message itself.
struct LineBuffer {
  char text[DebugSystem::kLineSize];
  std::size_t used = 0;

  void Add(const char* part) {
    std::size_t length = std::strlen(part);
    std::size_t room = sizeof text - 1 - used;
    if (length > room) length = room;
    std::memcpy(text + used, part, length);
    used += length;
    text[used] = '\0';
  }
};

// TraceList repeats the tests of Trace, so forwarding to it is forwarding to Trace.
void forwardTrace(int level, const char* format, va_list args) {
  if (gLogSwitch && gDBG) gDBG->TraceList(level, format, args);
}

}  // namespace

DebugSystem::~DebugSystem() { Shutdown(); }

bool DebugSystem::Passes(int level) const {
  return active != 0 && threshold < kDefaultThreshold && level >= threshold;
}

void DebugSystem::CloseStream() {
  if (active != 0 && stream) {
    std::fclose(stream);
    stream = nullptr;
  }
}

void DebugSystem::Trace(int level, const char* format, ...) {
  if (!Passes(level)) return;
  va_list args;
  va_start(args, format);
  TraceList(level, format, args);
  va_end(args);
}

void DebugSystem::TraceTagged(const char* tag, int level, const char* format, va_list args) {
  // The level indexes the name table; callers stay within 0..4, the guard keeps a stray one in.
  if (!Passes(level) || level < 0 || level > 4) return;
  char message[kLineSize];
  std::vsnprintf(message, sizeof message, format, args);
  LineBuffer line;
  line.Add(kLevelNames[level]);
  line.Add("|");
  if (tag) {
    line.Add("(");
    line.Add(tag);
    line.Add(") ");
  }
  line.Add(message);
  line.Add("\n");
  if (mode == 1 && fileName[0] != '\0') stream = hostFileOpenStream(fileName, "a");
  if (stream) {
    std::fwrite(line.text, 1, line.used, stream);
    std::fflush(stream);
  }
  if (mode == 1) CloseStream();
}

void DebugSystem::TraceList(int level, const char* format, va_list args) {
  TraceTagged(nullptr, level, format, args);
}

void DebugSystem::SetThreshold(int level) { threshold = level; }

void DebugSystem::SetMode(int newMode) {
  mode = newMode;
  if (mode == 1) CloseStream();
}

void DebugSystem::Init(const char* name) {
  threshold = kDefaultThreshold;
  stream = nullptr;
  active = 0;
  fileName[0] = '\0';
  if (gLogSwitch && name) {
    std::snprintf(fileName, sizeof fileName, "%s", name);
    active = 1;
    if (gLogSwitch == kDbgLogEverything) {
      threshold = 0;
      mode = 1;
    }
  }
}

void DebugSystem::Shutdown() {
  CloseStream();
  active = 0;
}

void dbgTrace(int level, const char* format, ...) {
  va_list args;
  va_start(args, format);
  forwardTrace(level, format, args);
  va_end(args);
}

void dbgTrace(const char* format, ...) {
  va_list args;
  va_start(args, format);
  forwardTrace(kUntaggedLevel, format, args);
  va_end(args);
}

void dbgSetLogSwitch(int on) { gLogSwitch = on; }
