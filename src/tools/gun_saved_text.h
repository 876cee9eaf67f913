// The converter's quick load of a gun text file that is exactly what a save writes.
#pragma once

class GunListView;

// When the text of `name` (read through gFMG) is exactly what a save of guns writes (sections
// GunData001, GunData002 and so on, each with every key in the save's order and a blank line,
// and nothing else) and GunTextIsPlain would hold for it, loads its guns as GunFileLoad does,
// sets *guns to their number and returns true. The guns are read straight from the lines, with
// the IniFile's own conversions. For any other text (one with CR line ends, a comment, a value
// the check would speak of, a text that fills the load's arena) returns false and loads nothing.
bool GunLoadSavedText(GunListView* view, const char* name, int* guns);
