// The file commands and the settings file, scripted on the fake window in a temporary directory.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <tuple>

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

// A run of the main window in a fresh start-up directory, on a clean "Untitled" document.
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
  void AddGun(const std::string& name) {  // through New Gun, the form accepted with this name
    window_.forms.push_back([name](EditGunDialog* form) {
      std::snprintf(form->TypeName, sizeof form->TypeName, "%s", name.c_str());
      return 1;
    });
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

// New, Open and Close after each answer, on Alpha and Beta as a.ini or unnamed. The save chooser
// takes `save` ("" cancels); Open's is cancelled. `after` is State() unless New reset the document.
TEST_F(ShellTest, CommandsAfterThePrompt) {
  struct Case {
    const char* name;
    int answer;
    bool filed, saved, goesOn;  // Beta reaches a file; the command gets past the question
    const char *save, *after, *proposal;
  } cases[] = {
      {"yes, filed", kYes, true, true, true, nullptr, "1 0 a.ini", "a.ini"},
      {"yes, unnamed, chosen", kYes, false, true, true, "c.ini", "1 0 c.ini", "c.ini"},
      {"yes, unnamed, not chosen", kYes, false, false, true, "", "0 1 Untitled", ""},
      {"no, filed", kNo, true, false, true, nullptr, "1 1 a.ini", "a.ini"},
      {"no, unnamed", kNo, false, false, true, nullptr, "0 1 Untitled", ""},
      {"cancel, filed", kCancel, true, false, false, nullptr, "1 1 a.ini", ""},
      {"cancel, unnamed", kCancel, false, false, false, nullptr, "0 1 Untitled", ""},
      {"another answer", 1, false, false, false, nullptr, "0 1 Untitled", ""},
  };
  for (const std::string command : {"new", "open", "close"}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(command + ", " + c.name);
      fs::remove(root_ + "/c.ini");
      ResetDocument(&window_);
      AddGun("Alpha");
      if (c.filed) window_.choices = {Chosen("a.ini")};
      if (c.filed) OnSave(&window_);
      AddGun("Beta");
      Strings expected = {"Ask Tessarine|Save changes to " + std::string(DocumentTitle) + "?"};
      window_.calls.clear();
      window_.answers = {c.answer};
      if (c.save) window_.choices.push_back(*c.save ? Chosen(c.save) : "");
      if (c.save) expected.push_back("Save ini ");
      if (c.goesOn && command == "open") window_.choices.push_back("");
      if (c.goesOn && command == "open") expected.push_back(std::string("Open ") + c.proposal);
      if (command == "close") {
        EXPECT_EQ(OnCloseCommand(&window_), c.goesOn);
      }
      if (command == "new") OnNew(&window_);
      if (command == "open") OnOpen(&window_);

      EXPECT_EQ(window_.Calls({"Ask", "Save", "Open"}), expected);
      std::string saved = readWholeFile(root_ + (c.filed ? "/a.ini" : "/c.ini"));
      EXPECT_EQ(saved.find("Beta") != std::string::npos, c.saved);
      const bool reset = c.goesOn && command == "new";
      EXPECT_EQ(State(), reset ? "0 0 Untitled @ . ." : c.after + std::string(" Alpha Beta @ . ."));
    }
  }
}

// The directory follows each file chosen, in a save or an open, and a save under the known path
// moves nothing. Save As proposes the present name. Open sets the caption before the load and
// repaints after it; a file that can't be read leaves the document empty.
TEST_F(ShellTest, DirectoryFollowsEveryChosenFile) {
  AddGun("Alpha");
  window_.choices = {Chosen("one/a.ini"), "", Chosen("two/b.ini"), Chosen("one/a.ini"),
                     Chosen("missing/d.ini")};
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
  EXPECT_EQ(window_.Calls({"Save", "Caption", "InsertRow", "Repaint"}),
            (Strings{"Save ini a.ini", "Save ini a.ini", "Caption b.ini", "Caption a.ini",
                     "InsertRow 0 Alpha", "Repaint", "Caption d.ini", "Repaint"}));
}

// A save that fails still files the document under the new name, clean: Close asks nothing.
TEST_F(ShellTest, FailedSaveStillRenamesAndCleans) {
  AddGun("Alpha");
  const std::string nowhere = systemPath(root_ + "/gone/x.ini");
  window_.choices = {nowhere};
  OnSaveAs(&window_);
  EXPECT_EQ(State(), "1 0 x.ini Alpha @ gone .");  // the directory can't be entered
  EXPECT_EQ(std::string(DocumentPath), nowhere);
  EXPECT_EQ(OnCloseCommand(&window_), 1);
  AddGun("Beta");
  OnSave(&window_);
  EXPECT_EQ(State(), "1 0 x.ini Alpha Beta @ gone .");
  EXPECT_EQ(window_.messages, Strings(2, "Unable to create " + nowhere + " for writing!"));
}

// The question fits its 260 bytes: the title is cut, never inside a character.
TEST_F(ShellTest, QuestionIsBoundedForLongTitles) {
  const std::string a(240, 'a'), e = "\xC3\xA9";
  const std::pair<std::string, std::string> cases[] = {
      {a + "bb", a + "bb"}, {a + std::string(19, 'b'), a + "bb"},
      {a + "b" + e, a + "b"}, {a + e + "b", a + e},
  };
  SaveChangesPrompt.dirty = 1;
  for (const auto& [title, shown] : cases) {
    window_.answers = {kNo};
    EXPECT_EQ(SaveChangesPromptAsk(title.c_str()), kNo);
    EXPECT_EQ(window_.calls.back(), "Ask Tessarine|Save changes to " + shown + "?") << title;
  }
}

// A gun command marks the document when it changed something (gave 1), and never cleans it.
TEST_F(ShellTest, OnlyAGunCommandThatChangedSomethingSetsTheFlag) {
  int (*const commands[])(GunListView*) = {[](GunListView*) { return 0; },
                                           [](GunListView*) { return 1; }};
  for (int dirty : {0, 1}) {
    for (int result : {0, 1}) {
      SaveChangesPrompt.dirty = dirty;
      RunGunCommand(&window_, commands[result]);
      EXPECT_EQ(SaveChangesPrompt.dirty, dirty | result) << dirty << result;
    }
  }
}

// The first run (the fixture's) has written the settings as the window opened, and writes them
// again as it closes at once, back in the start-up directory though browsing moved the process.
// A stale directory is kept; a run that opens a file elsewhere stores that directory.
TEST_F(ShellTest, SettingsAcrossRuns) {
  const std::string file = root_ + "/Tessarine.ini";
  EXPECT_EQ(readWholeFile(file), Settings(root_, 0, 0));
  ASSERT_TRUE(fs::remove(file));
  fs::current_path(fs::temp_directory_path());
  ShellWindowClosing(&window_);
  EXPECT_EQ(readWholeFile(file), Settings(root_, 0, 0));

  for (const std::string& stale : {root_ + "/gone", std::string()}) {
    const std::string kept = Settings(stale, 5, 6) + "[Other]\nKey=1\n\n";  // other keys stay
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
  window_.placement = {44, 0, 2, 30, 40, 430, 340};  // minimised: the restored place is kept
  ShellWindowClosing(&window_);
  EXPECT_EQ(readWholeFile(file), Settings(root_ + "/guns", 30, 40) + "[Other]\nKey=1\n\n");
  window_.placement = {44, 0, 1, 0, 0, 640, 480};  // where and how big the template puts it
  ShellWindowOpened(&window_);  // left for the fixture to close
  EXPECT_EQ(State(), "0 0 Untitled @ guns guns");
  EXPECT_FALSE(fs::exists(root_ + "/guns/Tessarine.ini")) << "written before the move";
  const WindowPlacement& at = window_.placement;  // restored at the stored place, template size
  EXPECT_EQ(std::make_tuple(at.left, at.top, at.right, at.bottom, at.showCmd, at.flags),
            std::make_tuple(30, 40, 670, 520, 1, 0));
}

}  // namespace

TEST(Placement, PositionsFromTheFileWrapInsteadOfOverflowing) {
  FakeWindow window;
  WindowPlacement placement = {44, 0, 1, 10, 20, 410, 320};
  winMoveTo(&window, &placement, INT32_MAX, INT32_MIN);
  EXPECT_EQ(window.placement.left, INT32_MAX);
  EXPECT_EQ(window.placement.right, INT32_MIN + 399);
  EXPECT_EQ(window.placement.bottom, INT32_MIN + 300);
}
