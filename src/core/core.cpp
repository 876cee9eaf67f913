// The static service objects, in start-up order, and the bring-up and shutdown that use them.
#include "core/core.h"

#include "base/cursor_list.h"
#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "files/file_manager.h"
#include "services/interface_manager.h"

// Defined in the order of the start-up table, so construction follows it and destruction runs
// in reverse. None of the constructors uses another service or allocates.
CursorList GunList;
namespace {
FileManager fileManager;
MemoryManager memoryManager;
DebugSystem debugSystem;
InterfaceManager interfaceManager;
}  // namespace

namespace {

void registerService(const char* name, void* service) { gIM->Register(name, service, 0); }

}  // namespace

void BindCoreInterfaces() {
  imGet(gIM, "FMG", &gFMG);
}

void UnbindCoreInterfaces() {
  imRelease(gIM, "FMG", &gFMG);
}

int CoreStartup() {
  debugSystem.Init("debug.out");
  gDBG = &debugSystem;
  dbgTrace(1, "Debug System initialized...");

  memoryManager.Init();
  gMEM = &memoryManager;

  gIM = interfaceManager.Init();
  if (!gIM) {
    dbgTrace("Unable to Initialize Interface Manager!");
    return 0;
  }

  registerService("DBG", &debugSystem);
  dbgTrace(1, "Debug System interface registered...");
  registerService("MEM", &memoryManager);
  dbgTrace("Memory Manager interface registered...");

  fileManager.Init();
  registerService("FMG", &fileManager);
  dbgTrace("FileManager initialized...");

  BindCoreInterfaces();
  return 1;
}

void CoreShutdown() {
  UnbindCoreInterfaces();

  dbgTrace("File Manager deinitialized...");
  fileManager.Shutdown();
  gIM->Unregister("FMG");

  gIM->Unregister("MEM");
  dbgTrace("Memory Manager interface unregistered...");
  gIM->Unregister("DBG");
  dbgTrace(1, "Debug System interface unregistered...");

  interfaceManager.Shutdown();

  memoryManager.Shutdown();
  gMEM = nullptr;

  dbgTrace(1, "Debug System deinitialized...");
  debugSystem.Shutdown();
  gDBG = nullptr;
}
