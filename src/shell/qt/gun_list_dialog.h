// The main window: the gun list and its buttons on template 102, the document's window seam.
#pragma once
#include <QIcon>

#include "shell/qt/template_dialog.h"
#include "shell/window_seam.h"

class GunListControl;

// The editor's one window. The constructor builds the template and loads the icon and uses no
// service; DoModal runs the window's whole life between CoreStartup and CoreShutdown.
class GunListDialog : public TemplateDialog, public ShellWindow {
  Q_OBJECT

 public:
  GunListDialog();
  ~GunListDialog() override;

  // OnInitDialog, the modal run, then DestroyWindow if closing hasn't run it yet. Returns the
  // run's result (2 after the Close command).
  int DoModal();
  // The steps as the window opens: icon, the handles to the Application, the columns, the
  // chooser record, placement, save prompt and settings, an empty "Untitled" document, and the
  // focus in the list.
  void OnInitDialog();
  // The steps as it closes, with the window still there: the settings, then the guns go.
  void DestroyWindow();
  GunListControl* List() const { return list_; }

  // GunListView
  int SelectedCount() override;
  int FirstSelectedRow() override;
  int RowCount() override;
  int FindRow(const char* text) override;
  int ReadCell(int row, int cell, char* buffer) override;
  void DeleteRow(int row) override;
  void DeleteAllRows() override;
  void InsertRow(int row, const char* text) override;
  void SetCell(int row, int cell, const char* text) override;
  void SelectRow(int row) override;
  int RunEditForm(EditGunDialog* form) override;
  void ShowMessage(const char* caption, const char* text) override;
  // ShellWindow
  int AskYesNoCancel(const char* caption, const char* text) override;
  int ChooseOpenFile(char* path, char* title, const char* filter) override;
  int ChooseSaveFile(char* path, char* title, const char* filter,
                     const char* defaultExtension) override;
  void SetCaption(const char* text) override;
  void Repaint() override;
  void GetPlacement(WindowPlacement* placement) override;
  void SetPlacement(const WindowPlacement* placement) override;

 public slots:
  // The Close command (the Close button, Esc, the close box): asks about unsaved changes and
  // ends the run unless the user cancels.
  void reject() override;

 private:
  void InsertColumns();
  void OnRowClick();
  void OnRowDoubleClick();

  GunListControl* list_;
  QIcon m_hIcon;
  bool destroyed_ = false;
};
