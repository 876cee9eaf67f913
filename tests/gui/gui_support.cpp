// GUI test support: answering modal windows as they open, and the main window on a kernel.
#include "gui_support.h"

#include <QAbstractButton>
#include <QDeadlineTimer>
#include <QPointer>
#include <QTimer>

namespace {

// whenModal calls that are still waiting for their window.
int pendingActs = 0;

void pollModal(QPointer<QWidget> before, std::function<void(QWidget*)> act,
               QDeadlineTimer deadline) {
  QWidget* modal = QApplication::activeModalWidget();
  if (modal && modal != before && modal->isVisible()) {
    --pendingActs;
    act(modal);
    return;
  }
  if (deadline.hasExpired()) {
    --pendingActs;
    ADD_FAILURE() << "no modal window opened";
    return;
  }
  QTimer::singleShot(10, [=] { pollModal(before, act, deadline); });
}

}  // namespace

void whenModal(std::function<void(QWidget*)> act) {
  QPointer<QWidget> before = QApplication::activeModalWidget();
  ++pendingActs;
  QTimer::singleShot(0, [=] { pollModal(before, act, QDeadlineTimer(5000)); });
}

void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center()); }

void waitForNoModal() {
  QApplication::processEvents();
  QDeadlineTimer deadline(6000);
  while ((pendingActs > 0 || QApplication::activeModalWidget()) && !deadline.hasExpired()) {
    QTest::qWait(10);
  }
}

void MainWindowTest::SetUp() {
  KernelTest::SetUp();
  cwd_ = std::filesystem::current_path();
  std::filesystem::current_path(root_.path());
  OpenWindow();
  ASSERT_TRUE(window_->isActiveWindow());
}

void MainWindowTest::OpenWindow() {
  window_ = new GunListDialog;
  window_->OnInitDialog();
  window_->show();
  Activate();
}

void MainWindowTest::Activate() {
  window_->activateWindow();
  EXPECT_TRUE(QTest::qWaitForWindowActive(window_));
}

void MainWindowTest::TearDown() {
  waitForNoModal();
  window_->DestroyWindow();
  delete window_;
  std::filesystem::current_path(cwd_);
  KernelTest::TearDown();
}

QWidget* MainWindowTest::Button(const char* name) {
  return window_->findChild<QAbstractButton*>(QString::fromLatin1(name));
}

void MainWindowTest::Press(const char* name) { click(Button(name)); }
