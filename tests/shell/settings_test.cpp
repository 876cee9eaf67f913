// The settings file across runs of the fake window: first run, directory, position, stale values.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "gun/gun_list.h"
#include "shell/document.h"
#include "shell/settings.h"
#include "shell_fixture.h"

namespace {

namespace fs = std::filesystem;

class SettingsTest : public ShellTest {
 protected:
  std::string SettingsText() { return readWholeFile(root_ + "/Tessarine.ini"); }
  static std::string Expected(const std::string& directory, int x, int y) {
    return "[Tessarine]\nTargetDirectory=" + directory + "\nPositionX=" + std::to_string(x) +
           "\nPositionY=" + std::to_string(y) + "\n\n";
  }
};

TEST_F(SettingsTest, FirstRunWritesTheFileAsTheWindowOpens) {
  ASSERT_FALSE(fs::exists(root_ + "/Tessarine.ini"));
  window_.placement = {44, 0, 1, 100, 50, 500, 350};
  ShellWindowOpened(&window_);

  EXPECT_EQ(SettingsText(), Expected(systemPath(root_), 0, 0));
  EXPECT_EQ(std::string(StartupDirectory), systemPath(root_));
  EXPECT_EQ(std::string(TargetDirectory), systemPath(root_));
  EXPECT_EQ(hostCwd(), root_);
  // The template's size at the top left corner, then an unnamed document; nothing asked.
  EXPECT_EQ(window_.Calls({"GetPlacement", "SetPlacement", "Caption", "DeleteAllRows"}),
            (std::vector<std::string>{"GetPlacement", "SetPlacement 0 0 400 300 1 0",
                                      "Caption Untitled", "DeleteAllRows"}));
  EXPECT_TRUE(window_.questions.empty());
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);

  ShellWindowClosing(&window_);
  EXPECT_EQ(SettingsText(), Expected(systemPath(root_), 0, 0));
}

// A file opened elsewhere becomes the next run's directory; the position stored is that of the
// restored window, and the next run shows it restored, in its template's size.
TEST_F(SettingsTest, NextRunStartsWhereTheLastFileLay) {
  ShellWindowOpened(&window_);
  const std::string written = SettingsText();
  writeGunFile(HostFile("guns/a.ini"), {"Alpha", "Beta"});
  window_.openChoices.push_back(Chosen("guns/a.ini"));
  OnOpen(&window_);
  window_.saveChoices.push_back(Chosen("guns/b.ini"));
  OnSaveAs(&window_);
  EXPECT_EQ(SettingsText(), written);  // Open and Save leave the settings alone

  window_.placement = {44, 0, 2, 30, 40, 430, 340};  // minimised
  ShellWindowClosing(&window_);
  EXPECT_EQ(hostCwd(), root_);
  EXPECT_EQ(SettingsText(), Expected(systemPath(HostFile("guns")), 30, 40));
  EXPECT_EQ(GunList.count, 0);
  EXPECT_TRUE(window_.rows.empty());

  FakeWindow next;
  next.placement = {44, 2, 3, 0, 0, 300, 200};  // maximised at start
  ShellWindowOpened(&next);
  EXPECT_EQ(hostCwd(), HostFile("guns"));
  EXPECT_FALSE(fs::exists(HostFile("guns/Tessarine.ini")));
  EXPECT_EQ(std::string(StartupDirectory), systemPath(root_));
  EXPECT_EQ(next.Calls({"SetPlacement"}),
            std::vector<std::string>{"SetPlacement 30 40 330 240 1 0"});
  ShellWindowClosing(&next);
}

// A directory that can't be entered keeps the process where it started, and goes back into the
// file unchanged; other sections pass through.
TEST_F(SettingsTest, StaleDirectoryIsKept) {
  const std::string gone = systemPath(root_ + "/gone");
  for (const std::string& stale : {gone, std::string()}) {
    SCOPED_TRACE(stale);
    const std::string text = Expected(stale, 5, 6) + "[Other]\nKey=Value\n\n";
    writeWholeFile(root_ + "/Tessarine.ini", "; a comment\n" + text);
    ShellWindowOpened(&window_);
    EXPECT_EQ(std::string(TargetDirectory), stale);
    EXPECT_EQ(hostCwd(), root_);
    EXPECT_EQ(window_.Calls({"SetPlacement"}).back(), "SetPlacement 5 6 405 306 1 0");
    EXPECT_EQ(SettingsText(), text);  // the comment is gone after the first write
    ShellWindowClosing(&window_);
    EXPECT_EQ(SettingsText(), text);
  }
}

// Closing at once writes the file a second time, back in the start-up directory even when
// browsing in a cancelled chooser moved the process.
TEST_F(SettingsTest, RunWithoutAFileWritesTwice) {
  ShellWindowOpened(&window_);
  ASSERT_TRUE(fs::remove(root_ + "/Tessarine.ini"));
  const std::string elsewhere = HostFile("elsewhere");
  fs::create_directories(elsewhere);
  fs::current_path(elsewhere);
  window_.openChoices.push_back(Cancelled());
  OnOpen(&window_);
  window_.placement = {44, 0, 1, -20, 7, 380, 307};

  ShellWindowClosing(&window_);
  EXPECT_EQ(SettingsText(), Expected(systemPath(root_), -20, 7));
  EXPECT_FALSE(fs::exists(elsewhere + "/Tessarine.ini"));
  EXPECT_EQ(hostCwd(), root_);
}

}  // namespace
