// The document of the editor: its title, path and dirty flag, the save prompt, the file
// choosers and the five file commands, all on the window seam.
#include "shell/document.h"

#include "base/path_util.h"
#include "base/string_util.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"

char DocumentTitle[kDocumentTextSize] = "Untitled";
char DocumentPath[kDocumentTextSize];
std::int32_t DocumentHasPath = 0;
char ScratchPath[kDocumentTextSize];
char ScratchFileTitle[kDocumentTextSize];
char TargetDirectory[kDocumentTextSize];

SavePrompt SaveChangesPrompt = {{}, nullptr, 0};

const char kGunFileFilter[] = "Gun Data Files (*.ini)\0*.ini\0All Files (*.*)\0*.*\0";

FileDialogRecord FileDialog = {nullptr, nullptr, nullptr, nullptr, nullptr};

namespace {

constexpr const char* kUntitled = "Untitled";
constexpr char kQuestionStart[] = "Save changes to ";
constexpr char kQuestionEnd[] = "?";
constexpr const char* kSaveExtension = "ini";

// Yes saves; No goes on; anything else means cancel. Returns 0 when the command must end.
int settleUnsavedChanges(ShellWindow* window) {
  int answer = SaveChangesPromptAsk(DocumentTitle);
  if (answer == ShellWindow::kYes) {
    SaveDocument(window);
    return 1;
  }
  return answer == ShellWindow::kNo ? 1 : 0;
}

// The chooser proposes the document's own name when it has a file, else nothing.
void proposeDocumentName() {
  if (DocumentHasPath == 1) {
    strCopyN(ScratchPath, DocumentTitle, kDocumentTextSize);
  } else {
    strClear(ScratchPath);
  }
}

// The chosen file's directory becomes the one the process works in, before the file is touched.
void followChosenFile() {
  fmgGetFilePath(ScratchPath, TargetDirectory, kDocumentTextSize);
  fmgSetCurrentDirectory(TargetDirectory);
}

}  // namespace

void SaveChangesPromptInit(ShellWindow* owner, const char* caption) {
  SaveChangesPrompt.owner = owner;
  strCopyN(SaveChangesPrompt.caption, caption, kDocumentTextSize);
  SaveChangesPrompt.dirty = 0;
}

int SaveChangesPromptAsk(const char* title) {
  if (SaveChangesPrompt.dirty == 0) return ShellWindow::kNo;
  if (!SaveChangesPrompt.owner) return ShellWindow::kCancel;
  // The title is cut rather than the question, so that a long name still ends with "?".
  char text[kDocumentTextSize];
  constexpr int kTitleRoom =
      kDocumentTextSize - (sizeof kQuestionStart - 1) - (sizeof kQuestionEnd - 1);
  char shortTitle[kTitleRoom];
  strCopyN(shortTitle, title, kTitleRoom);
  strCopyN(text, kQuestionStart, kDocumentTextSize);
  strAppendN(text, shortTitle, kDocumentTextSize);
  strAppendN(text, kQuestionEnd, kDocumentTextSize);
  return SaveChangesPrompt.owner->AskYesNoCancel(SaveChangesPrompt.caption, text);
}

void winFileDialogInit(ShellWindow* owner) {
  FileDialog = {owner, nullptr, nullptr, nullptr, nullptr};
}

int winFileOpenDialog(ShellWindow* owner, char* file, char* fileTitle, const char* filter) {
  FileDialog = {owner, file, fileTitle, filter, nullptr};
  return owner ? owner->ChooseOpenFile(file, fileTitle, filter) : 0;
}

int winFileSaveDialog(ShellWindow* owner, char* file, char* fileTitle, const char* filter,
                      const char* defaultExtension) {
  FileDialog = {owner, file, fileTitle, filter, defaultExtension};
  return owner ? owner->ChooseSaveFile(file, fileTitle, filter, defaultExtension) : 0;
}

void SaveToChosenFile(ShellWindow* window) {
  if (!winFileSaveDialog(window, ScratchPath, ScratchFileTitle, kGunFileFilter, kSaveExtension)) {
    return;
  }
  strCopyN(DocumentPath, ScratchPath, kDocumentTextSize);
  strCopyN(DocumentTitle, ScratchFileTitle, kDocumentTextSize);
  followChosenFile();
  window->SetCaption(DocumentTitle);
  // A failed save has told the user already; the document counts as filed and clean anyway.
  GunFileSave(window, DocumentPath);
  DocumentHasPath = 1;
  SaveChangesPrompt.dirty = 0;
}

void SaveDocument(ShellWindow* window) {
  if (DocumentHasPath == 1) {
    GunFileSave(window, DocumentPath);
    SaveChangesPrompt.dirty = 0;
    return;
  }
  strClear(ScratchPath);
  SaveToChosenFile(window);
}

void ResetDocument(ShellWindow* window) {
  strCopyN(DocumentTitle, kUntitled, kDocumentTextSize);
  window->SetCaption(DocumentTitle);
  GunListEmpty(window);
  DocumentHasPath = 0;
  SaveChangesPrompt.dirty = 0;
}

void OnNew(ShellWindow* window) {
  if (!settleUnsavedChanges(window)) return;
  ResetDocument(window);
}

void OnOpen(ShellWindow* window) {
  if (!settleUnsavedChanges(window)) return;
  proposeDocumentName();
  if (!winFileOpenDialog(window, ScratchPath, ScratchFileTitle, kGunFileFilter)) return;
  strCopyN(DocumentPath, ScratchPath, kDocumentTextSize);
  strCopyN(DocumentTitle, ScratchFileTitle, kDocumentTextSize);
  followChosenFile();
  window->SetCaption(DocumentTitle);
  GunFileLoad(window, DocumentPath);
  window->Repaint();
  DocumentHasPath = 1;
  SaveChangesPrompt.dirty = 0;
}

void OnSave(ShellWindow* window) { SaveDocument(window); }

void OnSaveAs(ShellWindow* window) {
  proposeDocumentName();
  SaveToChosenFile(window);
}

int OnCloseCommand(ShellWindow* window) { return settleUnsavedChanges(window); }

void RunGunCommand(ShellWindow* window, int (*command)(GunListView* view)) {
  if (command(window) == 1) SaveChangesPrompt.dirty = 1;
}
