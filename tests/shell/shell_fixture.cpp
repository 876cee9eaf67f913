// Shell tests: a kernel, a fake main window and a temporary directory to work in.
#include "shell_fixture.h"

#include <cstdio>

#include "gun/gun_commands.h"
#include "shell/document.h"

std::string hostCwd() { return std::filesystem::current_path().string(); }

void writeGunFile(const std::string& hostPath, const std::vector<std::string>& names) {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    char section[32];
    std::snprintf(section, sizeof section, "[GunData%03zu]\n", i + 1);
    text += section;
    text += "TypeName=" + names[i] + "\nCaliber=12.700000\n\n";
  }
  writeWholeFile(hostPath, text);
}

void ShellTest::SetUp() {
  KernelTest::SetUp();
  // getcwd gives the resolved path, so the tests compare against the resolved one too.
  root_ = std::filesystem::canonical(temp_.path()).string();
  std::filesystem::current_path(root_);
  winFileDialogInit(&window_);
  SaveChangesPromptInit(&window_, "Tessarine");
  TargetDirectory[0] = '\0';
  ScratchPath[0] = '\0';
  ScratchFileTitle[0] = '\0';
  ResetDocument(&window_);
  window_.calls.clear();
}

void ShellTest::TearDown() {
  GunListEmpty(&window_);
  KernelTest::TearDown();
}

std::string ShellTest::HostFile(const std::string& relative) {
  std::filesystem::path path = std::filesystem::path(root_) / relative;
  std::filesystem::create_directories(path.parent_path());
  return path.string();
}

FakeWindow::Choice ShellTest::Chosen(const std::string& relative) {
  return {true, systemPath(HostFile(relative)),
          std::filesystem::path(relative).filename().string()};
}

FakeWindow::Form ShellTest::Accept(const std::string& name, float caliber) {
  return [name, caliber](EditGunDialog* form) {
    std::snprintf(form->TypeName, sizeof form->TypeName, "%s", name.c_str());
    form->Caliber = caliber;
    return 1;
  };
}

FakeWindow::Form ShellTest::CancelForm() {
  return [](EditGunDialog*) { return GunListView::kCancelled; };
}

void ShellTest::AddGun(const std::string& name) {
  window_.forms.push_back(Accept(name));
  RunGunCommand(&window_, OnNewGun);
}
