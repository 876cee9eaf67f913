// Shared libraries on dlopen: load, find an exported function, unload.
#include "platform/host_library.h"

#include <dlfcn.h>

#include "platform/host_path.h"

HostModule hostLibraryLoad(const char* path) {
  HostPath hostPath(path);
  if (!hostPath.valid() || hostPath.text()[0] == '\0') return nullptr;
  // A name without a slash would make dlopen search the system's library path instead.
  if (!std::strchr(hostPath.text(), '/')) return nullptr;
  return dlopen(hostPath.text(), RTLD_NOW | RTLD_LOCAL);
}

void* hostLibrarySymbol(HostModule module, const char* name) {
  return module ? dlsym(module, name) : nullptr;
}

void hostLibraryFree(HostModule module) {
  if (module) dlclose(module);
}
