// GUI test support: answering modal windows as they open, and the main window on a kernel.
#pragma once
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <filesystem>
#include <functional>
#include <string>

#include "kernel_fixture.h"
#include "shell/qt/gun_list_dialog.h"

// Runs `act` on the next modal window that opens above the one active now, from the event loop
// (so while a modal run blocks the test). Fails the test if none opens within five seconds.
void whenModal(std::function<void(QWidget*)> act);
// whenModal for a window of type T, which `act` gets.
template <typename T>
void whenModal(std::function<void(T*)> act) {
  whenModal([act](QWidget* widget) {
    T* typed = qobject_cast<T*>(widget);
    if (!typed) ADD_FAILURE() << "a modal " << widget->metaObject()->className() << " opened";
    if (typed) act(typed);
  });
}
// Clicks the middle of a widget.
void click(QWidget* widget);
// Waits until every whenModal has had its window and no modal window is left (at most six
// seconds; a whenModal whose window never came has failed the test by then).
void waitForNoModal();

// The main window, opened on a fresh kernel in a temporary start-up directory, shown but not
// modal so that the test drives it; closed and checked for leaks afterwards.
class MainWindowTest : public KernelTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Clicks the button of that name (the template's text without spaces).
  void Press(const char* name);
  QWidget* Button(const char* name);
  // Makes the main window the active one again, as it is after a modal window closes.
  void Activate();
  // Opens a new main window, as at start-up, and makes it the active one.
  void OpenWindow();

  TempDir root_;
  std::filesystem::path cwd_;
  GunListDialog* window_ = nullptr;
};
