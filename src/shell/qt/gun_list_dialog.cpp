// The main window: the gun list and its buttons on template 102, the document's window seam.
#include "shell/qt/gun_list_dialog.h"

#include <QHeaderView>
#include <QLabel>
#include <QPushButton>

#include "gun/gun_commands.h"
#include "services/application.h"
#include "shell/document.h"
#include "shell/qt/edit_gun_form.h"
#include "shell/qt/gun_list_control.h"
#include "shell/qt/shell_dialogs.h"
#include "shell/settings.h"

namespace {

// A button of the template and the command behind it.
struct CommandButton {
  const char* name;
  const char* text;
  int x, y;
  int (*gunCommand)(GunListView* view);
  void (*fileCommand)(ShellWindow* window);
};

constexpr int kButtonWidth = 50;
constexpr int kButtonHeight = 14;

// In template order, which is the tab order; Close (2) is the Close command.
const CommandButton kButtons[] = {
    {"NewGun", "New Gun", 310, 30, OnNewGun, nullptr},
    {"EditGun", "Edit Gun", 310, 45, OnEditGun, nullptr},
    {"CopyGun", "Copy Gun", 310, 60, OnCopyGun, nullptr},
    {"DeleteGun", "Delete Gun", 310, 75, OnDeleteGun, nullptr},
    {"MoveUp", "Move Up", 310, 105, OnMoveUp, nullptr},
    {"MoveDown", "Move Down", 310, 121, OnMoveDown, nullptr},
    {"New", "New", 310, 150, nullptr, OnNew},
    {"Open", "Open", 310, 165, nullptr, OnOpen},
    {"Save", "Save", 310, 186, nullptr, OnSave},
    {"SaveAs", "Save As", 310, 201, nullptr, OnSaveAs},
    {"Close", "Close", 310, 220, nullptr, nullptr},
};

struct Column {
  const char* title;
  Qt::Alignment alignment;
  int width;  // pixels
};
const Column kColumns[] = {{"Type", Qt::AlignLeft, 125},
                           {"size (mm)", Qt::AlignHCenter, 90},
                           {"ROF (rpm)", Qt::AlignHCenter, 90},
                           {"muzzle vel (m/s)", Qt::AlignHCenter, 90}};

}  // namespace

GunListDialog::GunListDialog() : TemplateDialog(nullptr, 387, 250) {
  SetCaptionText(QStringLiteral("Tessarine"));
  list_ = Place(new GunListControl(this), "GunList", 10, 21, 275, 219);
  for (const CommandButton& button : kButtons) {
    QAbstractButton* widget = Place(newTemplateButton(button.text, this), button.name, button.x,
                                    button.y, kButtonWidth, kButtonHeight);
    connect(widget, &QAbstractButton::clicked, this, [this, &button] {
      if (button.gunCommand) {
        RunGunCommand(this, button.gunCommand);
      } else if (button.fileCommand) {
        button.fileCommand(this);
      } else {
        reject();
      }
    });
  }
  Place(newTemplateGroup(this), "", 295, 20, 80, 75);
  Place(newTemplateGroup(this), "", 295, 95, 80, 45);
  Place(newTemplateGroup(this), "", 295, 140, 80, 100);
  Place(new QLabel(QStringLiteral("Tessarine"), this), "", 10, 5, 52, 8);
  m_hIcon.addFile(QStringLiteral(":/icons/tessarine-32.png"), QSize(32, 32));
  m_hIcon.addFile(QStringLiteral(":/icons/tessarine-16.png"), QSize(16, 16));

  connect(list_, &GunListControl::rowClicked, this, &GunListDialog::OnRowClick);
  // Queued, so that the edit form opens after the list has finished with the mouse.
  connect(list_, &GunListControl::rowDoubleClicked, this, &GunListDialog::OnRowDoubleClick,
          Qt::QueuedConnection);
  connect(list_, &GunListControl::focusLost, list_, &GunListControl::RestoreSelection);
}

GunListDialog::~GunListDialog() = default;

int GunListDialog::DoModal() {
  OnInitDialog();
  int result = exec();
  if (!destroyed_) DestroyWindow();
  return result;
}

void GunListDialog::OnInitDialog() {
  setWindowIcon(m_hIcon);
  gMainWindowHandle = static_cast<QWidget*>(this);
  ApplicationTakeHandles();
  InsertColumns();
  ShellWindowOpened(this);
  list_->setFocus();
}

void GunListDialog::DestroyWindow() {
  destroyed_ = true;
  ShellWindowClosing(this);
}

void GunListDialog::InsertColumns() {
  QTreeWidgetItem* header = list_->headerItem();
  for (int column = 0; column < GunListControl::kCells; ++column) {
    header->setText(column, QString::fromUtf8(kColumns[column].title));
    header->setTextAlignment(column, kColumns[column].alignment | Qt::AlignVCenter);
    list_->header()->resizeSection(column, kColumns[column].width);
  }
}

void GunListDialog::OnRowClick() {
  list_->setFocus();
  list_->RestoreSelection();
}

void GunListDialog::OnRowDoubleClick() {
  RunGunCommand(this, OnEditGun);
  OnRowClick();
}

void GunListDialog::reject() {
  if (!OnCloseCommand(this)) return;
  DestroyWindow();
  done(kCancel);
}

int GunListDialog::SelectedCount() { return list_->SelectedCount(); }
int GunListDialog::FirstSelectedRow() { return list_->FirstSelectedRow(); }
int GunListDialog::RowCount() { return list_->RowCount(); }
int GunListDialog::FindRow(const char* text) { return list_->FindRow(text); }
int GunListDialog::ReadCell(int row, int cell, char* buffer) {
  return list_->ReadCell(row, cell, buffer, kCellSize);
}
void GunListDialog::DeleteRow(int row) { list_->DeleteRow(row); }
void GunListDialog::DeleteAllRows() { list_->DeleteAllRows(); }
void GunListDialog::InsertRow(int row, const char* text) { list_->InsertRow(row, text); }
void GunListDialog::SetCell(int row, int cell, const char* text) {
  list_->SetCell(row, cell, text);
}
void GunListDialog::SelectRow(int row) { list_->SelectRow(row); }

int GunListDialog::RunEditForm(EditGunDialog* form) {
  EditGunForm dialog(this, form);
  return dialog.DoModal();
}

void GunListDialog::ShowMessage(const char* caption, const char* text) {
  showMessageBox(this, caption, text);
}

int GunListDialog::AskYesNoCancel(const char* caption, const char* text) {
  return askYesNoCancel(this, caption, text);
}

int GunListDialog::ChooseOpenFile(char* path, char* title, const char* filter) {
  return chooseFile(this, ChooserKind::kOpen, path, title, filter, nullptr);
}

int GunListDialog::ChooseSaveFile(char* path, char* title, const char* filter,
                                  const char* defaultExtension) {
  return chooseFile(this, ChooserKind::kSave, path, title, filter, defaultExtension);
}

void GunListDialog::SetCaption(const char* text) { SetCaptionText(QString::fromUtf8(text)); }

void GunListDialog::Repaint() { repaint(); }

void GunListDialog::GetPlacement(WindowPlacement* placement) { readPlacement(this, placement); }

void GunListDialog::SetPlacement(const WindowPlacement* placement) {
  applyPlacement(this, placement);
}
