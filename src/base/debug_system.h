// DebugSystem: the kernel's log, and dbgTrace, the one trace call of the kernel.
#pragma once
#include "tessarine/plugin.h"
#include <cstdarg>
#include <cstdint>
#include <cstdio>

class DebugSystem : public DebugInterface {
 public:
  static constexpr int kPathSize = 260;
  static constexpr int kLineSize = 1024;

  DebugSystem() = default;
  ~DebugSystem();
  DebugSystem(const DebugSystem&) = delete;
  DebugSystem& operator=(const DebugSystem&) = delete;

  void Trace(int level, const char* format, ...) override;
  void TraceTagged(const char* tag, int level, const char* format, va_list args) override;
  void TraceList(int level, const char* format, va_list args) override;
  void SetThreshold(int level) override;
  void SetMode(int mode) override;

  // Resets to the constructed state. The file name is kept, and the log made active, only while
  // the log switch is on (dbgSetLogSwitch); in the program it is off and nothing is logged.
  void Init(const char* fileName);
  // Closes an open stream and makes the log inactive.
  void Shutdown();

  std::int32_t active = 0;
  std::FILE* stream = nullptr;
  char fileName[kPathSize] = {};
  std::int32_t threshold = 4;
  std::int32_t mode = 0;

 private:
  bool Passes(int level) const;
  void CloseStream();
};

// Null before bring-up has initialised the log and after shutdown.
extern DebugSystem* gDBG;

// Traces go nowhere unless the log switch is on; then they reach Trace of gDBG. The form without
// a level traces at level 1.
void dbgTrace(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));
void dbgTrace(const char* format, ...) __attribute__((format(printf, 1, 2)));

// For tests and libraries that want a log: on, dbgTrace forwards to gDBG and Init keeps its file
// name and activates the log. Nothing in the program turns it on.
void dbgSetLogSwitch(int on);
// The switch's setting that also makes Init start at threshold 0 in mode 1, so that the lines
// of bring-up itself are kept.
constexpr int kDbgLogEverything = 2;
