// Test support: a scripted main window that records every call made across the window seam.
#include "fake_window.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

// Copies text into a seam buffer of `size` bytes; a text that doesn't fit fails the test.
void copyOut(const std::string& text, char* buffer, int size) {
  if (static_cast<int>(text.size()) >= size) {
    ADD_FAILURE() << "scripted text of " << text.size() << " bytes does not fit " << size;
    buffer[0] = '\0';
    return;
  }
  std::memcpy(buffer, text.c_str(), text.size() + 1);
}

bool equalsIgnoringCase(const std::string& a, const std::string& b) {
  if (a.size() != b.size()) return false;
  auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; };
  for (size_t i = 0; i < a.size(); ++i) {
    if (lower(a[i]) != lower(b[i])) return false;
  }
  return true;
}

// The filter up to and including its closing double NUL (or its first 1024 bytes).
std::string filterBytes(const char* filter) {
  std::string bytes;
  if (!filter) return bytes;
  for (int i = 0; i < 1024; ++i) {
    bytes.push_back(filter[i]);
    if (i > 0 && filter[i] == '\0' && filter[i - 1] == '\0') break;
  }
  return bytes;
}

}  // namespace

void FakeWindow::AddRowText(const std::string& c0, const std::string& c1, const std::string& c2,
                            const std::string& c3) {
  rows.push_back({c0, c1, c2, c3});
}

std::string FakeWindow::RowText(int row) const {
  if (row < 0 || row >= static_cast<int>(rows.size())) return "<no row>";
  const auto& r = rows[row];
  return r[0] + "|" + r[1] + "|" + r[2] + "|" + r[3];
}

std::vector<std::string> FakeWindow::Names() const {
  std::vector<std::string> names;
  for (const auto& r : rows) names.push_back(r[0]);
  return names;
}

std::vector<std::string> FakeWindow::Calls(const std::vector<std::string>& prefixes) const {
  std::vector<std::string> out;
  for (const auto& call : calls) {
    for (const auto& prefix : prefixes) {
      if (call.compare(0, prefix.size(), prefix) == 0) {
        out.push_back(call);
        break;
      }
    }
  }
  return out;
}

int FakeWindow::SelectedCount() {
  calls.push_back("SelectedCount");
  return selected >= 0 ? 1 : 0;
}

int FakeWindow::FirstSelectedRow() {
  calls.push_back("FirstSelectedRow");
  return selected;
}

int FakeWindow::RowCount() {
  calls.push_back("RowCount");
  return static_cast<int>(rows.size());
}

int FakeWindow::FindRow(const char* text) {
  calls.push_back(std::string("FindRow ") + text);
  for (size_t i = 0; i < rows.size(); ++i) {
    if (equalsIgnoringCase(rows[i][0], text)) return static_cast<int>(i);
  }
  return -1;
}

int FakeWindow::ReadCell(int row, int cell, char* buffer) {
  calls.push_back("ReadCell " + std::to_string(row) + " " + std::to_string(cell));
  if (row < 0 || row >= static_cast<int>(rows.size()) || cell < 0 || cell > 3) return 0;
  // A control hands back at most its buffer less the terminator.
  std::string text = rows[row][cell].substr(0, kCellSize - 1);
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return 1;
}

void FakeWindow::DeleteRow(int row) {
  calls.push_back("DeleteRow " + std::to_string(row));
  if (row < 0 || row >= static_cast<int>(rows.size())) return;
  rows.erase(rows.begin() + row);
  if (selected == row) {
    selected = -1;
  } else if (selected > row) {
    --selected;
  }
}

void FakeWindow::DeleteAllRows() {
  calls.push_back("DeleteAllRows");
  rows.clear();
  selected = -1;
}

void FakeWindow::InsertRow(int row, const char* text) {
  calls.push_back("InsertRow " + std::to_string(row) + " " + text);
  if (row < 0) {
    ADD_FAILURE() << "InsertRow at " << row;
    return;
  }
  // As the list control does, a number past the end appends.
  if (row > static_cast<int>(rows.size())) row = static_cast<int>(rows.size());
  rows.insert(rows.begin() + row, std::array<std::string, 4>{text, "", "", ""});
  if (selected >= row) ++selected;
}

void FakeWindow::SetCell(int row, int cell, const char* text) {
  calls.push_back("SetCell " + std::to_string(row) + " " + std::to_string(cell) + " " + text);
  if (row < 0 || row >= static_cast<int>(rows.size()) || cell < 1 || cell > 3) return;
  rows[row][cell] = text;
}

void FakeWindow::SelectRow(int row) {
  calls.push_back("SelectRow " + std::to_string(row));
  if (row < 0 || row >= static_cast<int>(rows.size())) return;
  selected = row;
}

int FakeWindow::RunEditForm(EditGunDialog* form) {
  calls.push_back(form->TypeName[0] ? std::string("EditForm ") + form->TypeName : "EditForm");
  if (forms.empty()) {
    ADD_FAILURE() << "the edit form ran with no scripted answer";
    return kCancelled;
  }
  Form script = std::move(forms.front());
  forms.pop_front();
  return script(form);
}

void FakeWindow::ShowMessage(const char* caption, const char* text) {
  calls.push_back(std::string("Message ") + caption + "|" + text);
  messages.push_back(text);
}

int FakeWindow::AskYesNoCancel(const char* caption, const char* text) {
  calls.push_back(std::string("Ask ") + caption + "|" + text);
  questions.push_back(text);
  if (answers.empty()) {
    ADD_FAILURE() << "asked \"" << text << "\" with no scripted answer";
    return kCancel;
  }
  int answer = answers.front();
  answers.pop_front();
  return answer;
}

int FakeWindow::Choose(std::deque<Choice>* queue, const char* what, char* path, char* title,
                       const char* filter) {
  proposed.push_back(path);
  lastFilter = filterBytes(filter);
  if (queue->empty()) {
    ADD_FAILURE() << what << " chooser ran with no scripted choice";
    return 0;
  }
  Choice choice = queue->front();
  queue->pop_front();
  if (!choice.chosen) return 0;
  copyOut(choice.path, path, kPathSize);
  copyOut(choice.title, title, kPathSize);
  return 1;
}

int FakeWindow::ChooseOpenFile(char* path, char* title, const char* filter) {
  calls.push_back("Open");
  return Choose(&openChoices, "open", path, title, filter);
}

int FakeWindow::ChooseSaveFile(char* path, char* title, const char* filter,
                               const char* defaultExtension) {
  calls.push_back(std::string("Save ") + (defaultExtension ? defaultExtension : "(null)"));
  return Choose(&saveChoices, "save", path, title, filter);
}

void FakeWindow::SetCaption(const char* text) {
  calls.push_back(std::string("Caption ") + text);
  caption = text;
}

void FakeWindow::Repaint() { calls.push_back("Repaint"); }

void FakeWindow::GetPlacement(WindowPlacement* out) {
  calls.push_back("GetPlacement");
  EXPECT_EQ(out->length, 44) << "the placement's length must be set before it is read";
  *out = placement;
}

void FakeWindow::SetPlacement(const WindowPlacement* in) {
  calls.push_back("SetPlacement " + std::to_string(in->left) + " " + std::to_string(in->top) +
                  " " + std::to_string(in->right) + " " + std::to_string(in->bottom) + " " +
                  std::to_string(in->showCmd) + " " + std::to_string(in->flags));
  placement = *in;
}
