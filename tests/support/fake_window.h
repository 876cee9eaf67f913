// Test support: a scripted main window that records the calls made across the window seam.
#pragma once
#include <gtest/gtest.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "gun/gun_data.h"
#include "gun/gun_list.h"
#include "shell/window_seam.h"

// The type names of GunList in list order, and those a view's rows show ("?" unreadable).
inline std::vector<std::string> ListedNames() {
  std::vector<std::string> names;
  for (GunList.MoveFirst(); GunList.current; GunList.MoveNext()) {
    names.push_back(static_cast<GunData*>(GunList.current->payload)->TypeName);
  }
  return names;
}
inline std::vector<std::string> RowNames(GunListView* view) {
  std::vector<std::string> names;
  char cell[GunListView::kCellSize];
  for (int row = 0; row < view->RowCount(); row++) {
    names.push_back(view->ReadCell(row, 0, cell) ? cell : "?");
  }
  return names;
}

// Modal parts answer from queues the test fills; an unscripted one fails the test and cancels.
// `calls` records "InsertRow 0 Alpha", "Message CAP|TEXT", "Ask CAP|TEXT", "Open PROPOSED"...
class FakeWindow : public ShellWindow {
 public:
  using Form = std::function<int(EditGunDialog*)>;

  std::vector<std::array<std::string, 4>> rows;
  int selected = -1;
  int unreadableCell = -1;  // ReadCell of this cell number fails, as a control's may
  std::vector<std::string> calls;
  std::vector<int> answers;
  std::vector<std::string> choices;  // for both choosers: a backslash path, or "" to cancel
  std::vector<Form> forms;
  std::string caption;
  WindowPlacement placement = {44, 0, 1, 100, 50, 500, 350};

  // Scripts the next edit form to take this name, caliber 20, ROF 600 and MuzzleVel 800.
  void AcceptForm(const std::string& name) {
    forms.push_back([=](EditGunDialog* form) {
      std::snprintf(form->TypeName, sizeof form->TypeName, "%s", name.c_str());
      form->Caliber = 20, form->ROF = 600, form->MuzzleVel = 800;
      return 1;
    });
  }
  std::vector<std::string> Names() const {  // cell 0 of each row
    std::vector<std::string> names;
    for (const auto& cells : rows) names.push_back(cells[0]);
    return names;
  }
  std::vector<std::string> Calls(const std::vector<std::string>& prefixes) const {
    std::vector<std::string> out;
    std::copy_if(calls.begin(), calls.end(), std::back_inserter(out), [&](const auto& call) {
      return std::ranges::any_of(prefixes, [&](const auto& p) { return call.starts_with(p); });
    });
    return out;
  }

  int SelectedCount() override { return selected >= 0; }
  int FirstSelectedRow() override { return selected; }
  int RowCount() override { return static_cast<int>(rows.size()); }
  int FindRow(const char* text) override {
    auto same = [&](const auto& cells) { return strcasecmp(cells[0].c_str(), text) == 0; };
    auto found = std::ranges::find_if(rows, same);
    return found == rows.end() ? -1 : static_cast<int>(found - rows.begin());
  }
  int ReadCell(int row, int cell, char* buffer) override {
    if (!Has(row) || cell < 0 || cell > 3 || cell == unreadableCell) return 0;
    Copy(rows[row][cell], buffer);  // cut, as a control does
    return 1;
  }
  void DeleteRow(int row) override {
    if (!Has(row)) return;
    rows.erase(rows.begin() + row);
    if (selected >= row) selected = selected == row ? -1 : selected - 1;
  }
  void DeleteAllRows() override { rows.clear(), selected = -1; }
  void InsertRow(int row, const char* text) override {
    calls.push_back("InsertRow " + std::to_string(row) + " " + text);
    row = std::clamp(row, 0, RowCount());  // past the end appends, as a control does
    rows.insert(rows.begin() + row, {text, "", "", ""});
    if (selected >= row) ++selected;
  }
  void SetCell(int row, int cell, const char* text) override {
    if (Has(row) && cell >= 1 && cell <= 3) rows[row][cell] = text;
  }
  void SelectRow(int row) override { selected = Has(row) ? row : selected; }
  int RunEditForm(EditGunDialog* form) override {
    return Next<Form>(&forms, "edit form", [](EditGunDialog*) { return kCancelled; })(form);
  }
  void ShowMessage(const char* caption, const char* text) override {
    calls.push_back(std::string("Message ") + caption + "|" + text);
  }
  int AskYesNoCancel(const char* caption, const char* text) override {
    calls.push_back(std::string("Ask ") + caption + "|" + text);
    return Next(&answers, text, kCancel);
  }
  int ChooseOpenFile(char* path, char* title, const char*) override {
    return Choose("Open ", path, title);
  }
  int ChooseSaveFile(char* path, char* title, const char*, const char* extension) override {
    return Choose(std::string("Save ") + extension + " ", path, title);
  }
  void SetCaption(const char* text) override { calls.push_back("Caption " + (caption = text)); }
  void Repaint() override { calls.push_back("Repaint"); }
  void GetPlacement(WindowPlacement* out) override {
    EXPECT_EQ(out->length, 44) << "the length must be set before the placement is read";
    *out = placement;
  }
  void SetPlacement(const WindowPlacement* in) override { placement = *in; }

 private:
  bool Has(int row) const { return row >= 0 && row < static_cast<int>(rows.size()); }
  static_assert(kCellSize == kPathSize);
  static void Copy(const std::string& text, char* buffer) {
    buffer[text.copy(buffer, kCellSize - 1)] = '\0';
  }
  template <typename T>
  static T Next(std::vector<T>* queue, const std::string& what, T none) {
    if (queue->empty()) ADD_FAILURE() << what << " with no scripted answer";
    if (queue->empty()) return none;
    T answer = std::move(queue->front());
    queue->erase(queue->begin());
    return answer;
  }
  int Choose(const std::string& call, char* path, char* title) {
    calls.push_back(call + path);
    std::string chosen = Next(&choices, call + "chooser", std::string());
    if (!chosen.empty()) Copy(chosen, path), Copy(chosen.substr(chosen.rfind('\\') + 1), title);
    return !chosen.empty();  // the title without its directory
  }
};
