// DllLibraryManager: loads plug-in libraries by name, counts their loads and hands them the
// registry.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

#include "base/cursor_list.h"
#include "base/spin_lock.h"
#include "platform/host_library.h"

// One loaded library.
struct DllLibrary {
  HostModule module;  // null once unloaded
  char* name;         // as the caller gave it to LoadDll
  std::int32_t refCount;  // LoadDll calls not yet matched by FreeDll
};

class DllLibraryManager : public DllInterface {
 public:
  static constexpr int kPathSize = 260;

  DllLibraryManager() = default;
  DllLibraryManager(const DllLibraryManager&) = delete;
  DllLibraryManager& operator=(const DllLibraryManager&) = delete;

  void SetLibraryPath(const char* path) override;
  const char* GetLibraryPath() override;
  int LoadDll(const char* name) override;
  int FreeDll(const char* name) override;
  int FreeAll() override;

  // The path ".\" and an empty list (records are not freed). Bring-up only.
  void Init();

  char libraryPath[kPathSize] = {};
  char resolvedPath[kPathSize] = {};
  SpinLock lock{0, 5};
  CursorList libraries;

 private:
  int Lookup(const char* name);
  int AddLibrary(const char* name, HostModule module);
  void DestroyCurrent();
};

// Null before bring-up has bound it and after shutdown has unbound it.
extern DllLibraryManager* gDLL;
