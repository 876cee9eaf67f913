// The one seam between the document logic and the window system: what the commands ask of it.
#pragma once
#include <cstdint>

#include "gun/gun_view.h"

// The restored-state rectangle of a window and how it is shown, in screen coordinates.
struct WindowPlacement {
  std::int32_t length;
  std::int32_t flags;
  std::int32_t showCmd;
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

// The main window as the document commands and the settings see it. Paths that cross this seam
// are in the system's backslash form, at most 259 bytes.
class ShellWindow : public GunListView {
 public:
  static constexpr int kYes = 6;
  static constexpr int kNo = 7;
  static constexpr int kCancel = 2;
  static constexpr int kPathSize = 260;

  // The three-way question with an exclamation icon: kYes, kNo or kCancel.
  virtual int AskYesNoCancel(const char* caption, const char* text) = 0;
  // A modal file chooser. `path` holds the proposed file name on entry (kPathSize bytes);
  // `filter` is pairs of NUL-ended texts (caption, pattern) closed by one more NUL. Not 0 when
  // the user chose a file: then `path` holds its full path and `title` its name without the
  // directory. The open chooser accepts existing files only; the save chooser asks before it
  // overwrites and adds `defaultExtension` to a name typed without one.
  virtual int ChooseOpenFile(char* path, char* title, const char* filter) = 0;
  virtual int ChooseSaveFile(char* path, char* title, const char* filter,
                             const char* defaultExtension) = 0;
  virtual void SetCaption(const char* text) = 0;
  // Repaints the window at once.
  virtual void Repaint() = 0;
  // Reads or sets the main window's placement (the restored-state rectangle).
  virtual void GetPlacement(WindowPlacement* placement) = 0;
  virtual void SetPlacement(const WindowPlacement* placement) = 0;

 protected:
  ~ShellWindow() = default;
};
