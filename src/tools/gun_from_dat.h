// Rebuilds the gun list from a binary gun file, for a user who has only the .dat left.
#pragma once
#include <cstdio>

class GunListView;

// Replaces the gun list and the view's rows with the records of the .dat file `path` (system
// form). Each record is rebuilt from its entered fields as a load would make it (texts ended
// within their fields, AddLight 0 or 1, derived values recomputed), and a warning on `err`
// names the record whose stored derived values or other bytes differ from the rebuilt ones, or
// whose values the text file would change. A file cut inside its records gives its whole
// records with `allowLoss`, with a warning. Returns 1; returns 0 after a message naming
// `shownName` for a file that can't be read, isn't a gun data file or is cut (without
// `allowLoss`), or when memory runs out.
int GunListFromDat(GunListView* view, const char* path, const char* shownName, bool allowLoss,
                   std::FILE* err);
