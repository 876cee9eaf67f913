// InterfaceManager: the registry in which services and libraries find one another by name.
#include "services/interface_manager.h"

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/string_util.h"
#include "platform/host_sync.h"

InterfaceManager* gIM = nullptr;

namespace {

InterfaceEntry* entryAt(const CursorNode* node) { return static_cast<InterfaceEntry*>(node->payload); }

// A null name may be registered; the traces show it as empty.
const char* shown(const char* name) { return name ? name : ""; }

}  // namespace

int InterfaceManager::Lookup(const char* name) {
  if (strIsEmpty(name)) return 0;
  return entries.Find([name](void* payload) {
    return strEquals(static_cast<InterfaceEntry*>(payload)->name, name, 1) == 1;
  });
}

void InterfaceManager::FreeCurrentEntry() {
  InterfaceEntry* entry = entryAt(entries.current);
  strFree(&entry->name);
  memFree(entry);
  entries.RemoveCurrent();
}

int InterfaceManager::Register(const char* name, void* iface, std::uintptr_t owner) {
  SpinLockGuard guard(lock);
  if (Lookup(name)) {
    dbgTrace("Interface %s already registered.", shown(name));
    return 0;
  }
  auto* entry = static_cast<InterfaceEntry*>(memAlloc(sizeof(InterfaceEntry)));
  if (entry) {
    entry->name = strDuplicate(name);
    entry->iface = iface;
    entry->owner = owner;
    entry->refCount = 0;
    // A name that could not be copied would make an entry nobody can reach or free by name.
    if ((entry->name || !name) && entries.Append(entry)) {
      dbgTrace("Interface %s successfully registered.", shown(name));
      return 1;
    }
    strFree(&entry->name);
    memFree(entry);
  }
  dbgTrace("Unable to register Interface %s!", shown(name));
  return 0;
}

int InterfaceManager::Unregister(const char* name) {
  SpinLockGuard guard(lock);
  if (!Lookup(name)) {
    dbgTrace("Unable to unregister Interface %s.", shown(name));
    return 0;
  }
  InterfaceEntry* entry = entryAt(entries.current);
  if (entry->refCount != 0) {
    dbgTrace("Register count for Interface %s is non-zero (%d)!", shown(name), entry->refCount);
  }
  FreeCurrentEntry();
  dbgTrace("Interface %s successfully unregistered.", shown(name));
  return 1;
}

int InterfaceManager::Get(const char* name, void** var) {
  SpinLockGuard guard(lock);
  if (!Lookup(name)) {
    dbgTrace("Unable to get Interface %s!", shown(name));
    return 0;
  }
  InterfaceEntry* entry = entryAt(entries.current);
  hostAtomicIncrement(&entry->refCount);
  *var = entry->iface;
  return 1;
}

int InterfaceManager::Release(const char* name, void** var) {
  SpinLockGuard guard(lock);
  if (!*var) return 0;
  if (!Lookup(name)) {
    dbgTrace("Unable to release Interface %s!", shown(name));
    return 0;
  }
  hostAtomicDecrement(&entryAt(entries.current)->refCount);
  *var = nullptr;
  return 1;
}

int InterfaceManager::CanFreeOwner(std::uintptr_t owner) {
  SpinLockGuard guard(lock);
  for (entries.MoveFirst(); entries.current; entries.MoveNext()) {
    const InterfaceEntry* entry = entryAt(entries.current);
    if (entry->owner != 0 && entry->owner == owner && entry->refCount > 0) return 0;
  }
  return 1;
}

InterfaceManager* InterfaceManager::Init() {
  lock.Reset();
  {
    SpinLockGuard guard(lock);
    entries.Clear();
  }
  dbgTrace("Interface Manager initialized...");
  return this;
}

void InterfaceManager::Shutdown() {
  {
    SpinLockGuard guard(lock);
    entries.MoveFirst();
    while (entries.current) {
      const InterfaceEntry* entry = entryAt(entries.current);
      if (entry->refCount > 0) {
        dbgTrace("...Interface %s has reference count of %d.", shown(entry->name), entry->refCount);
      }
      FreeCurrentEntry();
    }
  }
  dbgTrace("Interface Manager deinitialized...");
}
