// The base of the editor's two dialogs: a fixed dialog-unit template in the dialog font, the
// keys of a dialog without a default button, and the window's placement.
#include "shell/qt/template_dialog.h"

#include <algorithm>

#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

namespace {

constexpr std::int32_t kShowNormal = 1;
constexpr std::int32_t kShowMinimized = 2;
constexpr std::int32_t kShowMaximized = 3;

}  // namespace

TemplateDialog::TemplateDialog(QWidget* parent, int width, int height)
    : QDialog(parent,
              Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                  Qt::WindowCloseButtonHint),
      units_(dialogFont()) {
  setFont(dialogFont());
  setFixedSize(units_.Size(width, height));
  setSizeGripEnabled(false);
}

void TemplateDialog::SetCaptionText(const QString& text) {
  QString escaped = text;
  escaped.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
  setWindowTitle(escaped);
}

void TemplateDialog::keyPressEvent(QKeyEvent* event) {
  bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  Qt::KeyboardModifiers others = event->modifiers() & ~Qt::KeyboardModifiers(Qt::KeypadModifier);
  if (!enter || others) return QDialog::keyPressEvent(event);
  if (auto* button = qobject_cast<QPushButton*>(focusWidget())) button->click();
  event->accept();
}

void TemplateDialog::PlaceWidget(QWidget* widget, const char* name, int x, int y, int width,
                                 int height) {
  widget->setObjectName(QString::fromLatin1(name));
  QRect rect = units_.Rect(x, y, width, height);
  // A label's template width was measured for a narrower font: let its text show whole.
  if (auto* label = qobject_cast<QLabel*>(widget)) {
    rect.setWidth(std::max(rect.width(), label->sizeHint().width()));
  }
  widget->setGeometry(rect);
}

QAbstractButton* newTemplateButton(const char* text, QWidget* parent) {
  auto* button = new QPushButton(QString::fromUtf8(text), parent);
  button->setAutoDefault(false);
  button->setDefault(false);
  return button;
}

QWidget* newTemplateGroup(QWidget* parent) {
  auto* group = new QGroupBox(parent);
  group->setAttribute(Qt::WA_TransparentForMouseEvents);
  group->setFocusPolicy(Qt::NoFocus);
  group->lower();
  return group;
}

void readPlacement(const QWidget* window, WindowPlacement* placement) {
  Qt::WindowStates state = window->windowState();
  QRect frame = window->frameGeometry();
  if (state & (Qt::WindowMinimized | Qt::WindowMaximized)) {
    // The restored rectangle, with the frame the window has now around it.
    QRect normal = window->normalGeometry();
    QRect client = window->geometry();
    frame = normal.adjusted(frame.left() - client.left(), frame.top() - client.top(),
                            frame.right() - client.right(), frame.bottom() - client.bottom());
  }
  placement->flags = 0;
  placement->showCmd = state & Qt::WindowMinimized   ? kShowMinimized
                       : state & Qt::WindowMaximized ? kShowMaximized
                                                     : kShowNormal;
  placement->left = frame.left();
  placement->top = frame.top();
  placement->right = frame.left() + frame.width();
  placement->bottom = frame.top() + frame.height();
}

void applyPlacement(QWidget* window, const WindowPlacement* placement) {
  if (window->windowState() & (Qt::WindowMinimized | Qt::WindowMaximized)) {
    window->setWindowState(Qt::WindowNoState);
  }
  window->move(placement->left, placement->top);
}
