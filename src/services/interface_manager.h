// InterfaceManager: the registry in which services and libraries find one another by name.
#pragma once
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

// The registry's table, as a library receives it from InitDLL; the order is fixed.
class InterfaceTable {
 public:
  // 1: entry created. 0: the name is present already, or no memory. Names are case-sensitive;
  // an empty name makes an entry that nothing can reach.
  virtual int Register(const char* name, void* iface, std::uintptr_t owner) = 0;
  // 1: entry removed, whatever its count. 0: no such name.
  virtual int Unregister(const char* name) = 0;
  // 1: count raised and *var set to the interface. 0: not found, *var untouched.
  virtual int Get(const char* name, void** var) = 0;
  // 1: count lowered (it may fall below 0) and *var set to null. 0: *var already null, or not
  // found; *var untouched.
  virtual int Release(const char* name, void** var) = 0;
  // 0 if an entry of this non-zero owner has a count above 0, else 1.
  virtual int CanFreeOwner(std::uintptr_t owner) = 0;

 protected:
  ~InterfaceTable() = default;
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

// Get and Release through a typed pointer variable.
template <typename T>
int imGet(InterfaceTable* manager, const char* name, T** var) {
  void* untyped = *var;
  int result = manager->Get(name, &untyped);
  *var = static_cast<T*>(untyped);
  return result;
}

template <typename T>
int imRelease(InterfaceTable* manager, const char* name, T** var) {
  void* untyped = *var;
  int result = manager->Release(name, &untyped);
  *var = static_cast<T*>(untyped);
  return result;
}
