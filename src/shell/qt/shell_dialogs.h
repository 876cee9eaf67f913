// The small modal dialogs of the editor: the message box, the three-way question and the two
// file choosers, on Qt's own widgets so that they behave alike on every desktop.
#pragma once

class QWidget;

// An OK box with a warning icon.
void showMessageBox(QWidget* owner, const char* caption, const char* text);
// Yes, No and Cancel with a warning icon, Yes first; Esc answers Cancel. ShellWindow::kYes,
// kNo or kCancel.
int askYesNoCancel(QWidget* owner, const char* caption, const char* text);

enum class ChooserKind { kOpen, kSave };

// Runs a file chooser in the working directory. `path` (260 bytes) holds the proposed name on
// entry, in the system's form; `filter` is pairs of NUL-ended texts (caption, pattern) closed by
// one more NUL, where "*.*" matches every name. The chosen filter is kept for the next call.
// The open chooser takes existing files only; the save chooser asks before it overwrites and
// adds `defaultExtension` (may be null) to a name typed without one. Not 0 when a file was
// chosen: `path` then holds its full path and `title` its name, both in the system's form. A
// path the system can't represent is refused with a message and counts as cancelled; a cancel
// leaves both buffers untouched.
int chooseFile(QWidget* owner, ChooserKind kind, char* path, char* title, const char* filter,
               const char* defaultExtension);
