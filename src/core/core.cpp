// The static service objects, in start-up order, and the bring-up and shutdown that use them.
#include "core/core.h"

#include "base/cursor_list.h"
#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "files/file_manager.h"
#include "services/application.h"
#include "services/interface_manager.h"

// Defined in the order of the start-up table, so construction follows it and destruction runs
// in reverse. None of the constructors uses another service or allocates.
CursorList GunList;
namespace {
Application application;
FileManager fileManager;
MemoryManager memoryManager;
DebugSystem debugSystem;
InterfaceManager interfaceManager;
}  // namespace

namespace {

void registerService(const char* name, void* service) { gIM->Register(name, service, 0); }

}  // namespace

// The registry hands out service tables; the program's pointers are to the objects behind them.
void BindCoreInterfaces(Application* app) {
  FileInterface* files = nullptr;
  imGet(gIM, "FMG", &files);
  gFMG = static_cast<FileManager*>(files);
  gAPP = app;
}

void UnbindCoreInterfaces() {
  gAPP = nullptr;
  FileInterface* files = gFMG;
  imRelease(gIM, "FMG", &files);
  gFMG = static_cast<FileManager*>(files);
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

  registerService("DBG", static_cast<DebugInterface*>(&debugSystem));
  dbgTrace(1, "Debug System interface registered...");
  registerService("MEM", static_cast<MemoryInterface*>(&memoryManager));
  dbgTrace("Memory Manager interface registered...");

  fileManager.Init();
  registerService("FMG", static_cast<FileInterface*>(&fileManager));
  dbgTrace("FileManager initialized...");

  application.Init();
  registerService("APP", static_cast<ApplicationInterface*>(&application));
  BindCoreInterfaces(&application);
  return 1;
}

namespace {

// Steps 1 to 9 of the shutdown: every registered service down, then the registry.
void shutdownRegisteredServices() {
  application.windowHandle = nullptr;
  application.instanceHandle = nullptr;
  UnbindCoreInterfaces();
  gIM->Unregister("APP");

  dbgTrace("File Manager deinitialized...");
  fileManager.Shutdown();
  gIM->Unregister("FMG");

  gIM->Unregister("MEM");
  dbgTrace("Memory Manager interface unregistered...");
  gIM->Unregister("DBG");
  dbgTrace(1, "Debug System interface unregistered...");

  interfaceManager.Shutdown();
}

}  // namespace

void CoreShutdown() {
  // A bring-up that got no registry left only the log and the heap up.
  if (gIM) shutdownRegisteredServices();
  memoryManager.Shutdown();
  gMEM = nullptr;

  dbgTrace(1, "Debug System deinitialized...");
  debugSystem.Shutdown();
  gDBG = nullptr;
}
