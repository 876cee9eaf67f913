// Test support: a scripted main window that records every call made across the window seam.
#pragma once
#include <array>
#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "shell/window_seam.h"

// Behaves as a single-selection list control with four cells a row, and answers the modal
// parts (edit form, three-way question, file choosers) from queues the test fills. A modal call
// with no scripted answer is a test failure and answers as a cancel would.
//
// Each call is appended to `calls` in a readable form:
//   "SelectedCount", "FirstSelectedRow", "RowCount", "FindRow Alpha", "ReadCell 0 1",
//   "DeleteRow 0", "DeleteAllRows", "InsertRow 0 Alpha", "SetCell 0 1 20.0", "SelectRow 2",
//   "EditForm Alpha" (the type name the form held on entry; "EditForm" for an empty one),
//   "Message ERROR!|text", "Ask Tessarine|text", "Open", "Save ini" (the default extension),
//   "Caption a.ini", "Repaint", "GetPlacement",
//   "SetPlacement left top right bottom showCmd flags".
// The queries are recorded too, so a test that compares whole call lists usually filters
// them out with Calls(prefixes) instead.
class FakeWindow : public ShellWindow {
 public:
  struct Choice {
    bool chosen = false;
    std::string path;   // given back when chosen; backslash form, as the real chooser gives
    std::string title;  // the name without its directory
  };
  using Form = std::function<int(EditGunDialog*)>;

  std::vector<std::array<std::string, 4>> rows;
  int selected = -1;
  std::vector<std::string> calls;

  std::deque<int> answers;         // for AskYesNoCancel
  std::deque<Choice> openChoices;  // for ChooseOpenFile
  std::deque<Choice> saveChoices;  // for ChooseSaveFile
  std::deque<Form> forms;          // for RunEditForm

  std::vector<std::string> messages;  // the texts of ShowMessage, in order
  std::vector<std::string> questions;  // the texts of AskYesNoCancel, in order
  std::vector<std::string> proposed;   // what `path` held on entry to each chooser, in order
  std::string lastFilter;              // the last chooser's filter, its NULs included
  std::string caption;
  WindowPlacement placement = {44, 0, 1, 0, 0, 400, 300};

  // Adds a row at the end with the given cells, without recording a call.
  void AddRowText(const std::string& c0, const std::string& c1 = "", const std::string& c2 = "",
                  const std::string& c3 = "");
  // The cells of a row joined by '|'.
  std::string RowText(int row) const;
  // The type names (cell 0) of all rows.
  std::vector<std::string> Names() const;
  // The recorded calls that begin with one of the prefixes, in order.
  std::vector<std::string> Calls(const std::vector<std::string>& prefixes) const;

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

  int AskYesNoCancel(const char* caption, const char* text) override;
  int ChooseOpenFile(char* path, char* title, const char* filter) override;
  int ChooseSaveFile(char* path, char* title, const char* filter,
                     const char* defaultExtension) override;
  void SetCaption(const char* text) override;
  void Repaint() override;
  void GetPlacement(WindowPlacement* placement) override;
  void SetPlacement(const WindowPlacement* placement) override;

 private:
  int Choose(std::deque<Choice>* queue, const char* what, char* path, char* title,
             const char* filter);
};
