// The gun list control: a single-selection report list of four cells a row, on which a click
// anywhere in a row acts on that row, and whose selected row carries a frame.
#include "shell/qt/gun_list_control.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

#include "base/string_util.h"

namespace {

constexpr int kBytesRole = Qt::UserRole;
// The frame stands 2 pixels inside the row's left and right ends.
constexpr int kFrameInset = 2;

// Only the first cell of the selected row shows the highlight; the frame marks the whole row.
class FirstCellHighlight : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() != 0) option->state &= ~QStyle::State_Selected;
    option->state &= ~QStyle::State_HasFocus;
  }
};

}  // namespace

GunListControl::GunListControl(QWidget* parent) : QTreeWidget(parent) {
  setColumnCount(kCells);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setUniformRowHeights(true);
  // Whole rows at the top, so that the scroll bar's value is the first visible row.
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  setSelectionMode(QAbstractItemView::SingleSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setSortingEnabled(false);
  setItemDelegate(new FirstCellHighlight(this));
  header()->setSectionsClickable(false);
  header()->setSectionsMovable(false);
  header()->setStretchLastSection(false);
}

int GunListControl::SelectedCount() const { return static_cast<int>(selectedItems().size()); }

int GunListControl::FirstSelectedRow() const {
  for (int row = 0; row < RowCount(); ++row) {
    if (topLevelItem(row)->isSelected()) return row;
  }
  return -1;
}

int GunListControl::RowCount() const { return topLevelItemCount(); }

int GunListControl::FindRow(const char* text) const {
  for (int row = 0; row < RowCount(); ++row) {
    QByteArray cell = topLevelItem(row)->data(0, kBytesRole).toByteArray();
    bool bothEmpty = cell.isEmpty() && strIsEmpty(text);
    if (bothEmpty || strEquals(cell.constData(), text, 0)) return row;
  }
  return -1;
}

int GunListControl::ReadCell(int row, int cell, char* buffer, int size) const {
  if (row < 0 || row >= RowCount() || cell < 0 || cell >= kCells) return 0;
  strCopyN(buffer, topLevelItem(row)->data(cell, kBytesRole).toByteArray().constData(), size);
  return 1;
}

void GunListControl::DeleteRow(int row) {
  if (row >= 0 && row < RowCount()) delete takeTopLevelItem(row);
}

void GunListControl::DeleteAllRows() { clear(); }

void GunListControl::InsertRow(int row, const char* text) {
  if (row < 0 || row > RowCount()) row = RowCount();
  auto* item = new QTreeWidgetItem;
  for (int cell = 0; cell < kCells; ++cell) {
    item->setTextAlignment(cell, Qt::Alignment(headerItem()->textAlignment(cell)));
  }
  insertTopLevelItem(row, item);
  item->setData(0, kBytesRole, QByteArray(text));
  item->setText(0, QString::fromUtf8(text));
}

void GunListControl::SetCell(int row, int cell, const char* text) {
  if (row < 0 || row >= RowCount() || cell < 1 || cell >= kCells) return;
  QTreeWidgetItem* item = topLevelItem(row);
  item->setData(cell, kBytesRole, QByteArray(text));
  item->setText(cell, QString::fromUtf8(text));
}

void GunListControl::SelectRow(int row) {
  if (row < 0 || row >= RowCount()) return;
  QModelIndex index = model()->index(row, 0);
  selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
  selectionModel()->select(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void GunListControl::RestoreSelection() {
  SelectRow(SelectedCount() > 0 ? FirstSelectedRow() : RowCount() - 1);
}

QRect GunListControl::FrameRect(int row) const {
  QRect cell = visualItemRect(topLevelItem(row));
  int left = header()->sectionViewportPosition(0);
  return QRect(left + kFrameInset, cell.top(), header()->length() - 2 * kFrameInset,
               cell.height());
}

QMouseEvent GunListControl::OnFirstColumn(const QMouseEvent* event) const {
  QPointF local(header()->sectionViewportPosition(0) + kFrameInset, event->position().y());
  QPointF global = event->globalPosition() + (local - event->position());
  return QMouseEvent(event->type(), local, global, event->button(), event->buttons(),
                     event->modifiers(), event->pointingDevice());
}

void GunListControl::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QTreeWidget::mousePressEvent(event);
  QMouseEvent moved = OnFirstColumn(event);
  // A press on no row drops the selection, as a report list does; the click restores one.
  if (!itemAt(moved.position().toPoint())) clearSelection();
  QTreeWidget::mousePressEvent(&moved);
}

void GunListControl::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QTreeWidget::mouseReleaseEvent(event);
  QMouseEvent moved = OnFirstColumn(event);
  QTreeWidget::mouseReleaseEvent(&moved);
  emit rowClicked();
}

void GunListControl::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QTreeWidget::mouseDoubleClickEvent(event);
  QMouseEvent moved = OnFirstColumn(event);
  QTreeWidget::mouseDoubleClickEvent(&moved);
  emit rowDoubleClicked();
}

void GunListControl::focusOutEvent(QFocusEvent* event) {
  QTreeWidget::focusOutEvent(event);
  emit focusLost();
}

void GunListControl::paintEvent(QPaintEvent* event) {
  QTreeWidget::paintEvent(event);
  int rowHeight = RowCount() > 0 ? visualItemRect(topLevelItem(0)).height() : 0;
  if (rowHeight <= 0) return;
  // Whole rows only: one cut off at the bottom gets no frame.
  int fitting = viewport()->height() / rowHeight;
  int first = verticalScrollBar()->value();
  QPainter painter(viewport());
  painter.setPen(Qt::black);
  painter.setBrush(Qt::NoBrush);
  for (int row = first; row < first + fitting && row < RowCount(); ++row) {
    if (!topLevelItem(row)->isSelected()) continue;
    // drawRect covers one pixel more than the rectangle to the right and below.
    painter.drawRect(FrameRect(row).adjusted(0, 0, -1, -1));
  }
}
