// The Application service's window, cursor and message calls on Qt.
#include "shell/qt/qt_window_calls.h"

#include <algorithm>

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QWidget>

namespace {

QWidget* widgetOf(HostHandle window) { return static_cast<QWidget*>(window); }

// The handle GetCursor gives: the application's ordinary pointer.
int arrowCursor;

}  // namespace

QtWindowCalls::QtWindowCalls() : cursor_(&arrowCursor) { qApp->installEventFilter(this); }

QtWindowCalls::~QtWindowCalls() {
  if (blank_) QApplication::restoreOverrideCursor();
}

bool QtWindowCalls::eventFilter(QObject* watched, QEvent* event) {
  if (watched == qApp && event->type() == QEvent::Quit) quitSeen_ = true;
  return false;
}

int QtWindowCalls::PeekMessage(HostHandle window, HostMessage* message) {
  QApplication::processEvents();
  if (!quitSeen_) return 0;
  quitSeen_ = false;
  *message = {window, kHostQuitMessage};
  return 1;
}

int QtWindowCalls::GetMessage(HostHandle window, HostMessage* message) {
  if (!quitSeen_) QApplication::processEvents(QEventLoop::WaitForMoreEvents);
  *message = {window, quitSeen_ ? kHostQuitMessage : 0};
  bool quit = quitSeen_;
  quitSeen_ = false;
  return quit ? 0 : 1;
}

void QtWindowCalls::DispatchMessage(const HostMessage*) {}

void QtWindowCalls::SetFocus(HostHandle window) {
  if (window) widgetOf(window)->setFocus();
}

void QtWindowCalls::SetActiveWindow(HostHandle window) {
  if (window) widgetOf(window)->activateWindow();
}

void QtWindowCalls::ShowWindow(HostHandle window, int command) {
  if (!window) return;
  if (command == kHostShowMaximized) widgetOf(window)->showMaximized();
  if (command == kHostMinimize) widgetOf(window)->showMinimized();
}

void QtWindowCalls::UpdateWindow(HostHandle window) {
  if (window) widgetOf(window)->repaint();
}

void QtWindowCalls::SetWindowPosTopmost(HostHandle window, std::int32_t x, std::int32_t y,
                                        std::int32_t width, std::int32_t height) {
  if (!window) return;
  QWidget* widget = widgetOf(window);
  widget->setWindowFlag(Qt::WindowStaysOnTopHint, true);
  widget->move(x, y);
  // The size is the frame's; the client is what is left inside the frame.
  QSize frame = widget->frameGeometry().size() - widget->geometry().size();
  widget->resize(std::max(0, width - frame.width()), std::max(0, height - frame.height()));
  widget->show();
}

void QtWindowCalls::GetWindowRect(HostHandle window, HostRect* rect) {
  if (!window) return;
  QRect frame = widgetOf(window)->frameGeometry();
  *rect = {frame.left(), frame.top(), frame.left() + frame.width(),
           frame.top() + frame.height()};
}

HostHandle QtWindowCalls::GetCursor() { return cursor_; }

void QtWindowCalls::SetCursor(HostHandle cursor) {
  cursor_ = cursor;
  ApplyCursor();
}

int QtWindowCalls::ShowCursor(int show) {
  displayCount_ += show ? 1 : -1;
  ApplyCursor();
  return displayCount_;
}

void QtWindowCalls::ApplyCursor() {
  bool blank = displayCount_ < 0 || cursor_ == nullptr;
  if (blank == blank_) return;
  blank_ = blank;
  if (blank) {
    QApplication::setOverrideCursor(QCursor(Qt::BlankCursor));
  } else {
    QApplication::restoreOverrideCursor();
  }
}
