// Counts its entry points in the tests' "PRB" record; registers "TST" while it is loaded.
#include <tessarine/plugin.h>

#include "probe.h"

namespace {
InterfaceTable* registry = nullptr;
Probe* probe = nullptr;
int testInterface = 0;
}  // namespace

int InitDLL(HostModule module, InterfaceTable* manager) {
  registry = manager;
  if (!imGet(registry, "PRB", &probe)) return 0;
  probe->inits++;
  probe->refCountDuringInit = probe->readRefCount ? probe->readRefCount() : -1;
  return registry->Register("TST", &testInterface, reinterpret_cast<std::uintptr_t>(module));
}

int ExitDLL() {
  registry->Unregister("TST");
  if (probe) probe->exits++;
  imRelease(registry, "PRB", &probe);
  return 1;
}
