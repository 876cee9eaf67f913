// GUI test support: answering modal windows as they open, and the main window on a kernel.
#pragma once
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <string>

#include "kernel_fixture.h"
#include "shell/qt/gun_list_dialog.h"

inline int pendingModalActs = 0;  // whenModal calls still waiting for their window

// Gives `act` the first visible modal window of type T other than `before`, polling every
// 10 ms from the event loop (so while a modal run blocks the test); fails the test when none is
// there by the deadline.
template <typename T>
void actOnNextModal(QPointer<QWidget> before, std::function<void(T*)> act,
                    QDeadlineTimer deadline) {
  QWidget* modal = QApplication::activeModalWidget();
  bool waiting = !modal || modal == before || !modal->isVisible();
  if (waiting && !deadline.hasExpired()) {
    QTimer::singleShot(10, [=] { actOnNextModal(before, act, deadline); });
    return;
  }
  --pendingModalActs;
  T* typed = waiting ? nullptr : qobject_cast<T*>(modal);
  if (!typed) ADD_FAILURE() << "no modal " << T::staticMetaObject.className() << " opened";
  if (typed) act(typed);
}

// Runs `act` on the next modal window that opens above the one active now, within 5 s.
template <typename T = QWidget>
void whenModal(std::function<void(T*)> act) {
  ++pendingModalActs;
  QTimer::singleShot(0, [before = QPointer<QWidget>(QApplication::activeModalWidget()), act] {
    actOnNextModal(before, act, QDeadlineTimer(5000));
  });
}

inline void click(QWidget* widget) {  // in its middle
  QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
}

// Waits until every whenModal has had its window and no modal window is left (at most 6 s).
inline void waitForNoModal() {
  QApplication::processEvents();
  QDeadlineTimer deadline(6000);
  while ((pendingModalActs > 0 || QApplication::activeModalWidget()) && !deadline.hasExpired()) {
    QTest::qWait(10);
  }
}

// The main window, opened on a fresh kernel in a temporary start-up directory, shown but not
// modal so that the test drives it; closed and checked for leaks afterwards.
class MainWindowTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    std::filesystem::current_path(root_.path());
    OpenWindow();
  }
  void TearDown() override {
    waitForNoModal();
    window_->DestroyWindow();
    delete window_;
    std::filesystem::current_path(cwd_);
    KernelTest::TearDown();
  }
  // Opens a new main window, as at start-up, and makes it the active one.
  void OpenWindow() {
    window_ = new GunListDialog;
    window_->OnInitDialog();
    window_->show();
    Activate();
  }
  // Makes the main window the active one again, as it is after a modal window closes.
  void Activate() {
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
  }
  // The button of that name (the template's text without spaces), and a click on it.
  QWidget* Button(const char* name) {
    return window_->findChild<QAbstractButton*>(QString::fromLatin1(name));
  }
  void Press(const char* name) { click(Button(name)); }

  TempDir root_;
  std::filesystem::path cwd_ = std::filesystem::current_path();
  GunListDialog* window_ = nullptr;
};
