// The small modal dialogs of the editor: the message box, the three-way question and the two
// file choosers, on Qt's own widgets so that they behave alike on every desktop.
#include "shell/qt/shell_dialogs.h"

#include <algorithm>
#include <cstring>

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QStringList>

#include "base/string_util.h"
#include "platform/host_file.h"
#include "shell/window_seam.h"

namespace {

// The filter chosen last, kept from one chooser to the next.
int chosenFilter = 0;

QString caption(const char* text) {
  // Exactly the given text: the toolkit would otherwise take "[*]" for its modified mark.
  return QString::fromUtf8(text).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
}

// "Caption (pattern)" for each pair; "*.*" becomes "*", which on this host also matches names
// without a dot.
QStringList nameFilters(const char* filter) {
  QStringList filters;
  for (const char* p = filter; p && *p;) {
    QString name = QString::fromUtf8(p);
    p += std::strlen(p) + 1;
    QString pattern = QString::fromUtf8(p);
    p += std::strlen(p) + 1;
    if (pattern == QStringLiteral("*.*")) pattern = QStringLiteral("*");
    pattern.replace(QLatin1Char(';'), QLatin1Char(' '));
    int open = name.lastIndexOf(QLatin1Char('('));
    if (open > 0) name = name.left(open).trimmed();
    filters << name + QStringLiteral(" (") + pattern + QLatin1Char(')');
  }
  return filters;
}

// Converts a chosen host path into the system's form; a refusal is told to the user.
bool toSystemPath(QWidget* owner, const QString& hostPath, char* out) {
  HostPathResult result =
      hostPathToSystem(hostPath.toUtf8().constData(), out, ShellWindow::kPathSize);
  if (result == HostPathResult::kOk) return true;
  showMessageBox(owner, "ERROR!", hostPathMessage(result));
  return false;
}

}  // namespace

void showMessageBox(QWidget* owner, const char* captionText, const char* text) {
  QMessageBox box(QMessageBox::Warning, caption(captionText), QString::fromUtf8(text),
                  QMessageBox::Ok, owner);
  box.exec();
}

int askYesNoCancel(QWidget* owner, const char* captionText, const char* text) {
  QMessageBox box(QMessageBox::Warning, caption(captionText), QString::fromUtf8(text),
                  QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, owner);
  box.setDefaultButton(QMessageBox::Yes);
  box.setEscapeButton(QMessageBox::Cancel);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return ShellWindow::kYes;
    case QMessageBox::No:
      return ShellWindow::kNo;
    default:
      return ShellWindow::kCancel;
  }
}

int chooseFile(QWidget* owner, ChooserKind kind, char* path, char* title, const char* filter,
               const char* defaultExtension) {
  QFileDialog chooser(owner);
  chooser.setOption(QFileDialog::DontUseNativeDialog);
  chooser.setAcceptMode(kind == ChooserKind::kOpen ? QFileDialog::AcceptOpen
                                                   : QFileDialog::AcceptSave);
  chooser.setFileMode(kind == ChooserKind::kOpen ? QFileDialog::ExistingFile
                                                 : QFileDialog::AnyFile);
  if (defaultExtension) chooser.setDefaultSuffix(QString::fromUtf8(defaultExtension));
  QStringList filters = nameFilters(filter);
  chooser.setNameFilters(filters);
  if (chosenFilter < filters.size()) chooser.selectNameFilter(filters.at(chosenFilter));
  chooser.setDirectory(QDir::currentPath());
  char proposed[ShellWindow::kPathSize];
  hostPathFromSystem(path, proposed, sizeof proposed);
  chooser.selectFile(QString::fromUtf8(proposed));
  if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty()) return 0;
  chosenFilter = std::max(0, static_cast<int>(filters.indexOf(chooser.selectedNameFilter())));

  const QString chosen = chooser.selectedFiles().constFirst();
  char chosenPath[ShellWindow::kPathSize];
  char chosenTitle[ShellWindow::kPathSize];
  if (!toSystemPath(owner, chosen, chosenPath) ||
      !toSystemPath(owner, QFileInfo(chosen).fileName(), chosenTitle)) {
    return 0;
  }
  strCopyN(path, chosenPath, ShellWindow::kPathSize);
  strCopyN(title, chosenTitle, ShellWindow::kPathSize);
  return 1;
}
