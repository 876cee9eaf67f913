// InterfaceManager: the registry in which services and libraries find one another by name.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

#include "base/cursor_list.h"
#include "base/spin_lock.h"

// One registered name. The registry owns the entry and its name, never the interface.
struct InterfaceEntry {
  char* name;
  void* iface;
  std::uintptr_t owner;
  std::int32_t refCount;
};

class InterfaceManager : public InterfaceTable {
 public:
  InterfaceManager() = default;
  InterfaceManager(const InterfaceManager&) = delete;
  InterfaceManager& operator=(const InterfaceManager&) = delete;

  int Register(const char* name, void* iface, std::uintptr_t owner) override;
  int Unregister(const char* name) override;
  int Get(const char* name, void** var) override;
  int Release(const char* name, void** var) override;
  int CanFreeOwner(std::uintptr_t owner) override;

  // Empties the list (the entries are not freed) and returns this manager; never null.
  InterfaceManager* Init();
  // Frees every entry that is left, tracing those with references still open.
  void Shutdown();

  SpinLock lock{0, 5};
  CursorList entries;

 private:
  int Lookup(const char* name);
  void FreeCurrentEntry();
};

// Set from Init at bring-up and never cleared.
extern InterfaceManager* gIM;
