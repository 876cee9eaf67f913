// The settings file .\Tessarine.ini: the last gun file directory and the main window's place,
// read as the window opens and written as it closes.
#pragma once
#include <cstdint>

#include "shell/window_seam.h"

constexpr int kSettingsTextSize = 260;

// The working directory as the main window opened; the settings file lies there.
extern char StartupDirectory[kSettingsTextSize];
// The main window's placement, as last read or set.
extern WindowPlacement MainPlacement;

// Sets the length to 44 and reads the window's placement into `placement`.
void winGetPlacement(ShellWindow* window, WindowPlacement* placement);
// Puts the window at x, y in its restored state, keeping the size of the rectangle in
// `placement`, which winGetPlacement must have filled; `placement` then holds what was set.
void winMoveTo(ShellWindow* window, WindowPlacement* placement, std::int32_t x, std::int32_t y);
// winGetPlacement, then *x and *y get the left and top of the restored-state rectangle, also
// while the window is minimised or maximised.
void winGetPosition(ShellWindow* window, WindowPlacement* placement, std::int32_t* x,
                    std::int32_t* y);

// As the window opens, with MainPlacement read beforehand and the process in the start-up
// directory: takes that directory as StartupDirectory, reads TargetDirectory (default the
// start-up directory) and the position (default 0, 0), writes the file back at once (the first
// run creates it), goes to TargetDirectory (staying put if that fails) and moves the window.
void ReadSettings(ShellWindow* window);
// As the window closes: reads its restored position, goes back to the start-up directory and
// stores TargetDirectory and the position in the file, keeping whatever else it holds. Write
// errors pass in silence.
void WriteSettings(ShellWindow* window);

// The window-free part of the main window's start, in its order: the shared chooser record,
// the placement, the save prompt (clean, caption "Tessarine"), the settings, and an empty
// "Untitled" document.
void ShellWindowOpened(ShellWindow* window);
// The window-free part of its end: the settings, then the guns are given back.
void ShellWindowClosing(ShellWindow* window);
