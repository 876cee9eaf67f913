// The file commands and the settings file, scripted on the fake window in a temporary directory.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "fake_window.h"
#include "gun/gun_commands.h"
#include "kernel_fixture.h"
#include "shell/document.h"
#include "shell/settings.h"

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;
constexpr int kYes = ShellWindow::kYes, kNo = ShellWindow::kNo, kCancel = ShellWindow::kCancel;

std::string Settings(const std::string& directory, int x, int y) {
  return "[Tessarine]\nTargetDirectory=" + systemPath(directory) + "\nPositionX=" +
         std::to_string(x) + "\nPositionY=" + std::to_string(y) + "\n\n";
}

class ShellTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    fs::current_path(root_);
    ShellWindowOpened(&window_);
  }
  void TearDown() override {
    ShellWindowClosing(&window_);
    fs::current_path(cwd_);
    KernelTest::TearDown();
  }
  std::string Chosen(const std::string& relative) {  // root/relative, its directory made
    fs::create_directories(fs::path(root_ + "/" + relative).parent_path());
    return systemPath(root_ + "/" + relative);
  }
  void AddGun(const std::string& name) {
    window_.AcceptForm(name);
    RunGunCommand(&window_, OnNewGun);
  }
  // "hasPath dirty caption rows... @ TargetDirectory cwd", the directories relative to root.
  std::string State() {
    std::string state = std::to_string(DocumentHasPath) + " " +
                        std::to_string(SaveChangesPrompt.dirty) + " " + window_.caption;
    for (const std::string& name : window_.Names()) state += " " + name;
    std::string target = TargetDirectory;
    std::replace(target.begin(), target.end(), '\\', '/');
    return state + " @ " + fs::relative(target, root_).string() + " " +
           fs::relative(".", root_).string();
  }

  TempDir temp_;
  fs::path cwd_ = fs::current_path();
  std::string root_ = fs::canonical(temp_.path()).string();  // as getcwd gives it
  FakeWindow window_;
};

// Each answer on a dirty document, filed or not; `save` answers the save chooser ("" cancels).
TEST_F(ShellTest, CommandsAfterTheQuestion) {
  const struct { int answer; bool filed; const char *save, *after; } cases[] = {
      {kYes, true, nullptr, "1 0 a.ini"}, {kYes, false, "c.ini", "1 0 c.ini"},
      {kYes, false, "", "0 1 Untitled"},  {kNo, true, nullptr, "1 1 a.ini"},
      {kCancel, false, nullptr, "0 1 Untitled"}, {1, true, nullptr, "1 1 a.ini"},  // or any other
  };
  for (const std::string command : {"new", "open", "close"}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(command + ", case " + std::to_string(&c - cases));
      fs::remove(root_ + "/c.ini");
      ResetDocument(&window_);
      AddGun("Alpha");
      if (c.filed) window_.choices = {Chosen("a.ini")}, OnSave(&window_);
      AddGun("Beta");
      const std::string after = c.after;
      const bool goesOn = c.answer == kYes || c.answer == kNo;
      Strings expected = {"Ask Tessarine|Save changes to " + std::string(DocumentTitle) + "?"};
      window_.calls.clear();
      window_.answers = {c.answer};
      if (c.save) window_.choices.push_back(*c.save ? Chosen(c.save) : "");
      if (c.save) expected.push_back("Save ini ");
      if (goesOn && command == "open") {
        window_.choices.push_back("");
        expected.push_back("Open " + (after[0] == '1' ? after.substr(4) : ""));
      }
      if (command == "close") {
        EXPECT_EQ(OnCloseCommand(&window_), goesOn);
      }
      if (command == "new") OnNew(&window_);
      if (command == "open") OnOpen(&window_);
      EXPECT_EQ(window_.Calls({"Ask", "Save", "Open"}), expected);
      std::string saved = readWholeFile(root_ + (c.filed ? "/a.ini" : "/c.ini"));
      EXPECT_EQ(saved.find("Beta") != std::string::npos, after[2] == '0');
      const bool reset = goesOn && command == "new";
      EXPECT_EQ(State(), reset ? "0 0 Untitled @ . ." : after + " Alpha Beta @ . .");
    }
  }
}

TEST_F(ShellTest, DirectoryFollowsEveryChosenFile) {
  AddGun("Alpha");
  const std::string nowhere = systemPath(root_ + "/gone/x.ini");
  window_.choices = {Chosen("one/a.ini"), "", Chosen("two/b.ini"), Chosen("one/a.ini"),
                     Chosen("missing/d.ini"), nowhere};
  OnSave(&window_);
  EXPECT_EQ(State(), "1 0 a.ini Alpha @ one one");
  fs::current_path(root_);
  window_.calls.clear();
  OnSave(&window_);
  EXPECT_EQ(State(), "1 0 a.ini Alpha @ one .");
  OnSaveAs(&window_);
  OnSaveAs(&window_);
  EXPECT_EQ(State(), "1 0 b.ini Alpha @ two two");
  SaveChangesPrompt.dirty = 1;  // answered No: the opened file replaces the changes, clean
  window_.answers = {kNo};
  OnOpen(&window_);
  EXPECT_EQ(State(), "1 0 a.ini Alpha @ one one");
  OnOpen(&window_);
  EXPECT_EQ(State(), "1 0 d.ini @ missing missing");
  const char filter[] = "Gun Data Files (*.ini)\0*.ini\0All Files (*.*)\0*.*\0";
  EXPECT_EQ(std::string(FileDialog.filter, sizeof filter), std::string(filter, sizeof filter));
  AddGun("Beta");
  OnSaveAs(&window_);
  EXPECT_EQ(State(), "1 0 x.ini Beta @ gone missing");  // the directory can't be entered
  EXPECT_EQ(window_.Calls({"Save", "Caption", "InsertRow", "Repaint", "Message"}),
            (Strings{"Save ini a.ini", "Save ini a.ini", "Caption b.ini", "Caption a.ini",
                     "InsertRow 0 Alpha", "Repaint", "Caption d.ini", "Repaint",
                     "InsertRow 0 Beta", "Save ini d.ini", "Caption x.ini",
                     "Message ERROR!|Unable to create " + nowhere + " for writing!"}));
}

TEST_F(ShellTest, QuestionIsBoundedAndGunCommandsMarkTheDocument) {
  const std::string a(240, 'a'), e = "\xC3\xA9";
  const std::pair<std::string, std::string> cases[] = {
      {a + "bb", a + "bb"}, {a + std::string(19, 'b'), a + "bb"}, {a + "b" + e, a + "b"},
      {a + e + "b", a + e}};
  SaveChangesPrompt.dirty = 1;
  for (const auto& [title, shown] : cases) {
    window_.answers = {kNo};
    EXPECT_EQ(SaveChangesPromptAsk(title.c_str()), kNo);
    EXPECT_EQ(window_.calls.back(), "Ask Tessarine|Save changes to " + shown + "?") << title;
  }
  for (int both = 0; both < 4; both++) {  // dirty before, the command's result
    SaveChangesPrompt.dirty = both / 2;
    if (both % 2) window_.AcceptForm("Gun " + std::to_string(both));
    RunGunCommand(&window_, both % 2 ? OnNewGun : OnMoveUp);  // MoveUp: nothing to move
    EXPECT_EQ(SaveChangesPrompt.dirty, both / 2 | both % 2) << both;
  }
}

TEST_F(ShellTest, SettingsAcrossRuns) {
  const std::string file = root_ + "/Tessarine.ini";
  for (const std::string& stale : {root_ + "/gone", std::string()}) {
    const std::string kept = Settings(stale, 5, 6) + "[Other]\nKey=1\n\n";
    writeWholeFile(file, kept);
    ShellWindowOpened(&window_);
    EXPECT_EQ(TargetDirectory + (" " + fs::current_path().string()),
              systemPath(stale) + " " + root_);
    ShellWindowClosing(&window_);
    EXPECT_EQ(readWholeFile(file), kept) << stale;
  }
  ShellWindowOpened(&window_);
  window_.choices = {Chosen("guns/a.ini")};
  OnOpen(&window_);
  window_.placement = {44, 0, 2, INT32_MAX, INT32_MIN, 0, 0};  // minimised: the restored place
  ShellWindowClosing(&window_);
  EXPECT_EQ(readWholeFile(file),
            Settings(root_ + "/guns", INT32_MAX, INT32_MIN) + "[Other]\nKey=1\n\n");
  window_.placement = {44, 0, 1, 0, 0, 640, 480};
  ShellWindowOpened(&window_);  // left for the fixture to close
  EXPECT_EQ(State(), "0 0 Untitled @ guns guns");
  EXPECT_FALSE(fs::exists(root_ + "/guns/Tessarine.ini")) << "written after the move";
  const WindowPlacement& at = window_.placement;
  EXPECT_EQ((std::vector<int>{at.left, at.top, at.right, at.bottom, at.showCmd, at.flags}),
            (std::vector<int>{INT32_MAX, INT32_MIN, INT32_MIN + 639, INT32_MIN + 480, 1, 0}));
}

}  // namespace
