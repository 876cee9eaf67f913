// The command-line programs load no plug-ins. Linked in place of the host's shared-library calls,
// this leaves the dynamic loader out, so that a program can be one static file that starts at
// once.
#include "platform/host_library.h"

HostModule hostLibraryLoad(const char*) { return nullptr; }

void* hostLibrarySymbol(HostModule, const char*) { return nullptr; }

void hostLibraryFree(HostModule) {}
