// GunSafeSave: the editor's Save of the gun list, checked, replacing the target only when whole.
#pragma once
#include <cstdio>

class GunListView;

// Saves the gun list with GunFileSave under temporary names beside `textName` (system form, its
// extension already resolved), reads both files back and checks them against the list, and only
// then renames them to `textName` and its .dat sibling, which keep the permissions of the files
// they replace. Returns 1 saved. Returns 0 with the file tried and the host's reason on `err`
// when a write, the check or a rename fails: the temporary files are removed and the target's
// earlier files stay as they were. Guns whose keys the save's text arena can't hold count as
// lost: 0 with a message, unless `allowLoss`, when they are a warning and the save goes on. A
// text file longer than the load's text limit gives a warning.
int GunSafeSave(GunListView* view, const char* textName, bool allowLoss, std::FILE* err);
