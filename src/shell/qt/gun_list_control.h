// The gun list control: a single-selection report list of four cells a row, on which a click
// anywhere in a row acts on that row, and whose selected row carries a frame.
#pragma once
#include <QTreeWidget>

class QFocusEvent;
class QMouseEvent;
class QPaintEvent;

// Cells hold the system's UTF-8 bytes as given; what shows is their decoded text. The row
// operations are those of GunListView, on rows numbered from 0.
class GunListControl : public QTreeWidget {
  Q_OBJECT

 public:
  static constexpr int kCells = 4;

  explicit GunListControl(QWidget* parent);

  int SelectedCount() const;
  int FirstSelectedRow() const;  // -1 without one
  int RowCount() const;
  int FindRow(const char* text) const;
  // The cell's bytes cut to size - 1 at a character boundary; 0 when there is no such cell.
  int ReadCell(int row, int cell, char* buffer, int size) const;
  void DeleteRow(int row);
  void DeleteAllRows();
  void InsertRow(int row, const char* text);
  void SetCell(int row, int cell, const char* text);
  void SelectRow(int row);
  // Keeps a row selected whenever there are rows: the first selected one, or the last row.
  void RestoreSelection();
  // The rectangle of the frame drawn around a selected row, in viewport coordinates.
  QRect FrameRect(int row) const;

 signals:
  // The mouse button went up over the list (after the press selected what it hit).
  void rowClicked();
  void rowDoubleClicked();
  void focusLost();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  // The event with its x moved onto the first column, so that it hits the row's first cell.
  QMouseEvent OnFirstColumn(const QMouseEvent* event) const;
};
