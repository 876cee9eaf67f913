// ConsoleListView: the gun list view of a program without a window; messages go to a stream.
#include "tools/console_list_view.h"

void ConsoleListView::DeleteRow(int row) {
  if (row < 0 || row >= rows_) return;
  rows_--;
  if (selected_ == row) selected_ = -1;
  else if (selected_ > row) selected_--;
}

void ConsoleListView::DeleteAllRows() {
  rows_ = 0;
  selected_ = -1;
}

void ConsoleListView::InsertRow(int row, const char*) {
  rows_++;
  if (selected_ >= row) selected_++;
}

void ConsoleListView::SelectRow(int row) {
  if (row >= 0 && row < rows_) selected_ = row;
}

void ConsoleListView::ShowMessage(const char* caption, const char* text) {
  if (messages_) std::fprintf(messages_, "%s: %s\n", caption, text);
  messageCount++;
}
