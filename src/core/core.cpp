// The static service objects, in start-up order, and the bring-up and shutdown that use them.
#include "core/core.h"

#include "base/cursor_list.h"
#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "files/file_manager.h"
#include "services/application.h"
#include "services/clock.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"
#include "services/options.h"
#include "services/random_table.h"

// Defined in the order of the start-up table, so construction follows it and destruction runs
// in reverse. None of the constructors uses another service or allocates.
CursorList GunList;
namespace {
Application application;
Options options;
Clock frameClock;
RandomTable randomTable;
FileManager fileManager;
DllLibraryManager dllLibraryManager;
MemoryManager memoryManager;
DebugSystem debugSystem;
InterfaceManager interfaceManager;
}  // namespace

namespace {

void registerService(const char* name, void* service) { gIM->Register(name, service, 0); }

// Get and Release through the table a library sees, the pointer kept to the object behind it.
template <typename Table, typename Service>
void bind(const char* name, Service** global) {
  Table* table = *global;
  imGet(gIM, name, &table);
  *global = static_cast<Service*>(table);
}

template <typename Table, typename Service>
void unbind(const char* name, Service** global) {
  Table* table = *global;
  imRelease(gIM, name, &table);
  *global = static_cast<Service*>(table);
}

}  // namespace

void BindCoreInterfaces(Application* app) {
  bind<DllInterface>("DLL", &gDLL);
  bind<FileInterface>("FMG", &gFMG);
  bind<RandomInterface>("RND", &gRND);
  gAPP = app;
}

void UnbindCoreInterfaces() {
  gAPP = nullptr;
  unbind<RandomInterface>("RND", &gRND);
  unbind<FileInterface>("FMG", &gFMG);
  // While every service is still up, so that a library's ExitDLL finds them all.
  if (gDLL) gDLL->FreeAll();
  unbind<DllInterface>("DLL", &gDLL);
}

int CoreStartup(FrameClock clock) {
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

  dllLibraryManager.Init();
  registerService("DLL", static_cast<DllInterface*>(&dllLibraryManager));
  dbgTrace("DLL Library Manager initialized...");

  fileManager.Init();
  registerService("FMG", static_cast<FileInterface*>(&fileManager));
  dbgTrace("FileManager initialized...");

  randomTable.Init();
  registerService("RND", static_cast<RandomInterface*>(&randomTable));
  if (clock == FrameClock::kStarted) frameClock.Init();
  registerService("CLK", static_cast<ClockInterface*>(&frameClock));
  options.Init();
  registerService("OPT", static_cast<OptionsInterface*>(&options));
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

  options.Shutdown();
  gIM->Unregister("OPT");
  frameClock.Stop();
  gIM->Unregister("CLK");
  gIM->Unregister("RND");

  dbgTrace("File Manager deinitialized...");
  fileManager.Shutdown();
  gIM->Unregister("FMG");

  dbgTrace("DLL Library Manager deinitialized...");
  // A second chance for a library that the first pass had to keep.
  dllLibraryManager.FreeAll();
  gIM->Unregister("DLL");

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
  // A library that no FreeAll could unload stays loaded; its record went with the heap.
  dllLibraryManager.libraries.Forget();

  dbgTrace(1, "Debug System deinitialized...");
  debugSystem.Shutdown();
  gDBG = nullptr;
}
