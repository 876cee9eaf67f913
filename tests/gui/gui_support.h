// GUI test support: answering modal windows as they open, and the main window on a kernel.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <filesystem>
#include <functional>

#include "kernel_fixture.h"
#include "shell/qt/gun_list_dialog.h"

inline int pendingModalActs = 0;  // whenModal calls still waiting for their window

// Runs `act` on the next modal window above the active one; polls, as a modal run blocks the test.
template <typename T>
void whenModal(std::function<void(T*)> act) {
  ++pendingModalActs;
  QPointer<QWidget> before = QApplication::activeModalWidget();
  auto* poll = new QTimer;
  QObject::connect(poll, &QTimer::timeout, [=, deadline = QDeadlineTimer(5000)] {
    QWidget* modal = QApplication::activeModalWidget();
    bool waiting = !modal || modal == before || !modal->isVisible();
    if (waiting && !deadline.hasExpired()) return;
    poll->stop();  // before `act`, whose own modal runs would tick it again
    poll->deleteLater();
    --pendingModalActs;
    if (T* typed = waiting ? nullptr : qobject_cast<T*>(modal)) return act(typed);
    ADD_FAILURE() << "no modal " << T::staticMetaObject.className() << " opened";
  });
  poll->start(10);
}

inline void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }

// Waits until every whenModal has had its window and no modal window is left (at most 6 s).
inline void waitForNoModal() {
  QApplication::processEvents();
  QDeadlineTimer deadline(6000);
  while ((pendingModalActs > 0 || QApplication::activeModalWidget()) && !deadline.hasExpired()) {
    QTest::qWait(10);
  }
}

// The main window shown but not modal, so that the test drives it, on a fresh kernel.
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
  void OpenWindow() {  // as at start-up
    window_ = new GunListDialog;
    window_->OnInitDialog();
    window_->show();
    window_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
  }
  void Press(const char* name) { click(window_->findChild<QWidget*>(name)); }

  TempDir root_;
  std::filesystem::path cwd_ = std::filesystem::current_path();
  GunListDialog* window_ = nullptr;
};
