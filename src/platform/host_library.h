// Shared libraries: load, find an exported function, unload.
#pragma once

#include "tessarine/plugin.h"

// Loads the library at the system path and runs its constructors. Null when it can't be
// loaded; an empty path is refused, since the host would hand back the program itself.
HostModule hostLibraryLoad(const char* path);
// The address of an exported symbol, or null.
void* hostLibrarySymbol(HostModule module, const char* name);
// Drops one load of the module; its destructors run when the last one goes.
void hostLibraryFree(HostModule module);
