// ConsoleListView: the gun list view of a program without a window; messages go to a stream.
#pragma once
#include <cstdio>

#include "gun/gun_view.h"

// Keeps only the number of rows, which is all the gun files ask of the rows; an edit form is
// always cancelled and a message is printed as "caption: text", or counted only when the
// stream is null.
class ConsoleListView : public GunListView {
 public:
  explicit ConsoleListView(std::FILE* messages) : messages_(messages) {}

  int SelectedCount() override { return selected_ >= 0 ? 1 : 0; }
  int FirstSelectedRow() override { return selected_; }
  int RowCount() override { return rows_; }
  int FindRow(const char*) override { return -1; }
  int ReadCell(int, int, char*) override { return 0; }
  void DeleteRow(int row) override;
  void DeleteAllRows() override;
  void InsertRow(int row, const char* text) override;
  void SetCell(int, int, const char*) override {}
  void SelectRow(int row) override;
  int RunEditForm(EditGunDialog*) override { return kCancelled; }
  void ShowMessage(const char* caption, const char* text) override;

  // How many messages were shown.
  int messageCount = 0;

 private:
  std::FILE* messages_;
  int rows_ = 0;
  int selected_ = -1;
};
