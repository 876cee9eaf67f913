// The document of the editor: its title, path and dirty flag, the save prompt, the file
// choosers and the five file commands, all on the window seam.
#pragma once
#include <cstdint>

#include "shell/window_seam.h"

constexpr int kDocumentTextSize = 260;

// "Untitled", or the file's name without its directory as the chooser gave it; the caption.
extern char DocumentTitle[kDocumentTextSize];
// The document's full path; means something only while DocumentHasPath is 1.
extern char DocumentPath[kDocumentTextSize];
extern std::int32_t DocumentHasPath;
// The choosers work on these two; the document takes them over only when a file was chosen.
extern char ScratchPath[kDocumentTextSize];
extern char ScratchFileTitle[kDocumentTextSize];
// The directory of the last file chosen in a chooser, without a trailing backslash; also the
// process's working directory while the window is open. Kept in the settings file.
extern char TargetDirectory[kDocumentTextSize];

// The question about unsaved changes, and the document's dirty flag.
struct SavePrompt {
  char caption[kDocumentTextSize];
  ShellWindow* owner;
  std::int32_t dirty;
};
extern SavePrompt SaveChangesPrompt;

// Stores the owner, copies the caption (cut to 259 bytes) and clears the dirty flag.
void SaveChangesPromptInit(ShellWindow* owner, const char* caption);
// ShellWindow::kNo at once, asking nothing, while the document is clean. Otherwise asks the
// owner "Save changes to <title>?" (the title cut so that the text fits 260 bytes with its
// question mark) and gives the answer: kYes, kNo, anything else meaning cancel. Without an
// owner a dirty document can't be asked about: kCancel.
int SaveChangesPromptAsk(const char* title);

// The choosers' filter: gun data files (*.ini), then all files (*.*), each text NUL-ended,
// closed by one more NUL.
extern const char kGunFileFilter[];

// The record that the two choosers share; what one call leaves in it stays for the next.
struct FileDialogRecord {
  ShellWindow* owner;
  char* file;   // the proposed name on entry, the chosen path on return; kDocumentTextSize
  char* fileTitle;  // the chosen name without its directory; kDocumentTextSize
  const char* filter;
  const char* defaultExtension;  // null for the open chooser
};
extern FileDialogRecord FileDialog;

// Sets the shared record up for `owner`, with no buffers, filter or extension yet.
void winFileDialogInit(ShellWindow* owner);
// Run the open or the save chooser of `owner` on the buffers (kDocumentTextSize bytes each;
// `file` holds the proposed name). Not 0 when the user chose a file: `file` then holds its
// path and `fileTitle` its name. 0, with the buffers untouched, when the user cancelled or
// there is no owner.
int winFileOpenDialog(ShellWindow* owner, char* file, char* fileTitle, const char* filter);
int winFileSaveDialog(ShellWindow* owner, char* file, char* fileTitle, const char* filter,
                      const char* defaultExtension);

// The three sequences the commands share. The window (never null) is the document's window: it
// shows the rows, runs the choosers and carries the caption.
//
// Runs the save chooser proposing ScratchPath. When a file is chosen: takes over its path and
// title, makes its directory TargetDirectory and the working directory, sets the caption,
// saves, and marks the document filed and clean whether or not the save succeeded. A cancel
// changes nothing.
void SaveToChosenFile(ShellWindow* window);
// Saves under the document's path, or through the save chooser (proposing no name) when it
// has none. Clean afterwards, even when the save failed.
void SaveDocument(ShellWindow* window);
// An empty, unnamed, clean document: title and caption "Untitled", no guns, no path.
void ResetDocument(ShellWindow* window);

// The file commands. Each of New, Open and Close first asks about unsaved changes: Yes saves
// (a cancelled save chooser then acts as No), No goes on, Cancel ends the command unchanged.
void OnNew(ShellWindow* window);
// After the question, runs the open chooser proposing the document's name (or none); a chosen
// file becomes the document, its directory the working directory, and it is loaded, clean.
void OnOpen(ShellWindow* window);
void OnSave(ShellWindow* window);
// Always runs the save chooser, proposing the document's name when it has a file.
void OnSaveAs(ShellWindow* window);
// 1 when the window may close (the user didn't cancel the question), 0 when it stays open.
int OnCloseCommand(ShellWindow* window);

// Runs a gun command on the window's rows and marks the document dirty when the command says
// it changed the document (returned 1).
void RunGunCommand(ShellWindow* window, int (*command)(GunListView* view));
