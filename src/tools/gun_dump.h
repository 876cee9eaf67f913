// Prints the records of a binary gun file as readable text, every field by name.
#pragma once
#include <cstdio>

// Reads the .dat file `path` (system form) through the file manager and prints each record to
// `out`, naming the file `shownName`. Returns 1; or prints why to `err` and returns 0 for a file
// that can't be read or whose size isn't 4 + 560 x its count. A file cut inside its records
// first has its whole records printed.
int GunDumpFile(const char* path, const char* shownName, std::FILE* out, std::FILE* err);
