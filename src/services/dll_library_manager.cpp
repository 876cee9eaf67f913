// DllLibraryManager: loads plug-in libraries by name, counts their loads and hands them the
// registry.
#include "services/dll_library_manager.h"

#include <new>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "platform/host_sync.h"
#include "services/interface_manager.h"

DllLibraryManager* gDLL = nullptr;

namespace {

constexpr const char* kDefaultPath = ".\\";

DllLibrary* libraryAt(const CursorNode* node) { return static_cast<DllLibrary*>(node->payload); }

const char* shown(const char* name) { return name ? name : ""; }

std::uintptr_t ownerOf(const DllLibrary* library) {
  return reinterpret_cast<std::uintptr_t>(library->module);
}

// ExitDLL, then the unload: one time per load, whichever path gets here.
void unload(DllLibrary* library) {
  auto exitDll = reinterpret_cast<ExitDllFunction>(hostLibrarySymbol(library->module, "ExitDLL"));
  if (exitDll) exitDll();
  hostLibraryFree(library->module);
  library->module = nullptr;
}

void destroy(DllLibrary* library) {
  if (library->module) unload(library);
  strFree(&library->name);
  memFree(library);
}

}  // namespace

int DllLibraryManager::Lookup(const char* name) {
  if (strIsEmpty(name)) return 0;
  return libraries.Find([name](void* payload) {
    return strEquals(static_cast<DllLibrary*>(payload)->name, name, 1) == 1;
  });
}

void DllLibraryManager::DestroyCurrent() {
  destroy(libraryAt(libraries.current));
  libraries.RemoveCurrent();
}

void DllLibraryManager::SetLibraryPath(const char* path) {
  SpinLockGuard guard(lock);
  strCopyN(libraryPath, strIsEmpty(path) ? kDefaultPath : path, kPathSize);
  dbgTrace("DLL library path set to %s.", libraryPath);
}

const char* DllLibraryManager::GetLibraryPath() {
  SpinLockGuard guard(lock);
  return libraryPath;
}

// Files the loaded module under `name` and runs its InitDLL. 0, with the module left to the
// caller, when there is no memory for the record or its node.
int DllLibraryManager::AddLibrary(const char* name, HostModule module) {
  auto* library = static_cast<DllLibrary*>(memAlloc(sizeof(DllLibrary)));
  char* copy = library ? strDuplicate(name) : nullptr;
  if (!copy) {
    memFree(library);
    dbgTrace("...unable to allocate memory for DLL library %s!", shown(name));
    return 0;
  }
  *library = DllLibrary{nullptr, copy, 0};
  if (!libraries.Append(library)) {
    dbgTrace("...unable to append DLL library %s to the list!", shown(name));
    destroy(library);
    return 0;
  }
  library->module = module;
  auto initDll = reinterpret_cast<InitDllFunction>(hostLibrarySymbol(module, "InitDLL"));
  if (initDll) initDll(module, gIM);
  hostAtomicIncrement(&library->refCount);
  return 1;
}

int DllLibraryManager::LoadDll(const char* name) {
  SpinLockGuard guard(lock);
  dbgTrace("Loading DLL library %s...", shown(name));
  if (Lookup(name)) {
    std::int32_t count = hostAtomicIncrement(&libraryAt(libraries.current)->refCount);
    dbgTrace("...DLL library %s already loaded (%d).", name, count);
    return 1;
  }
  fmgCheckFilename(libraryPath, name, "DLL", resolvedPath, kPathSize);
  HostModule module = hostLibraryLoad(resolvedPath);
  if (module && AddLibrary(name, module)) return 1;
  hostLibraryFree(module);
  dbgTrace("...unable to load DLL library %s!", resolvedPath);
  return 0;
}

int DllLibraryManager::FreeDll(const char* name) {
  SpinLockGuard guard(lock);
  dbgTrace("Freeing DLL library %s...", shown(name));
  if (!Lookup(name)) {
    dbgTrace("...unable to free DLL library %s.", shown(name));
    return 0;
  }
  DllLibrary* library = libraryAt(libraries.current);
  std::int32_t count = hostAtomicDecrement(&library->refCount);
  if (count > 0) {
    dbgTrace("...DLL library %s still in use (%d).", name, count);
    return 1;
  }
  if (!gIM->CanFreeOwner(ownerOf(library))) {
    dbgTrace("...unable to free DLL library %s.", name);
    return 0;
  }
  DestroyCurrent();
  return 1;
}

int DllLibraryManager::FreeAll() {
  SpinLockGuard guard(lock);
  libraries.MoveFirst();
  while (libraries.current) {
    DllLibrary* library = libraryAt(libraries.current);
    if (!gIM->CanFreeOwner(ownerOf(library))) {
      dbgTrace("...unable to free DLL library %s.", library->name);
      libraries.MoveNext();
      continue;
    }
    dbgTrace("Freeing DLL library %s.", library->name);
    DestroyCurrent();
  }
  return 0;
}

void DllLibraryManager::Init() {
  lock.Reset();
  SpinLockGuard guard(lock);
  strClear(resolvedPath);
  strCopyN(libraryPath, kDefaultPath, kPathSize);
  libraries.Clear();
}
