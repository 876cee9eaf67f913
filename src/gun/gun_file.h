// The two gun files: the INI text file the user opens and saves, and its binary .dat sibling.
#pragma once

class GunListView;

// Replaces GunList and the view's rows with the guns of the text file at `path` (sections
// "GunData%03d" from 1), then selects row 0. Reports nothing: an unreadable file gives an
// empty list.
void GunFileLoad(GunListView* view, const char* path);

// Writes the .dat sibling of `path` (the gun count, then each 560-byte record in list order),
// then the text file. Returns 1 when the .dat file could be created; else shows "Unable to
// create %s for writing!" naming `path`, writes neither file and returns 0.
int GunFileSave(GunListView* view, const char* path);
