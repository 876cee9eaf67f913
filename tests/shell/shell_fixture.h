// Shell tests: a kernel, a fake main window and a temporary directory to work in, with the
// working directory put back and the document emptied after each test.
#pragma once
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "fake_window.h"
#include "kernel_fixture.h"

// Puts the process's working directory back when it goes.
class CwdGuard {
 public:
  CwdGuard() : saved_(std::filesystem::current_path()) {}
  ~CwdGuard() {
    std::error_code ignored;
    std::filesystem::current_path(saved_, ignored);
  }
  CwdGuard(const CwdGuard&) = delete;
  CwdGuard& operator=(const CwdGuard&) = delete;

 private:
  std::filesystem::path saved_;
};

// The process's working directory, host form.
std::string hostCwd();
// A gun text file with one section a name, each with a type name and a caliber.
void writeGunFile(const std::string& hostPath, const std::vector<std::string>& names);

class ShellTest : public KernelTest {
 protected:
  // Starts in `root` with a clean "Untitled" document on `window`, its calls cleared.
  void SetUp() override;
  // Gives the guns back before the kernel goes.
  void TearDown() override;

  // `root` + "/" + relative, host form; directories are made as needed.
  std::string HostFile(const std::string& relative);
  // A chooser's answer for the file at root/relative, its title the last part.
  FakeWindow::Choice Chosen(const std::string& relative);
  static FakeWindow::Choice Cancelled() { return {}; }
  static FakeWindow::Form Accept(const std::string& name, float caliber = 20.0f);
  static FakeWindow::Form CancelForm();
  // New Gun through the window, accepted with `name`.
  void AddGun(const std::string& name);

  TempDir temp_;
  CwdGuard cwd_;
  std::string root_;
  FakeWindow window_;
};
