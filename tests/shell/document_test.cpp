// The file commands on the fake window: prompt, choosers, document state and directory.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "gun/gun_commands.h"
#include "gun/gun_list.h"
#include "shell/document.h"
#include "shell_fixture.h"

namespace {

namespace fs = std::filesystem;

bool fileHolds(const std::string& path, const std::string& text) {
  return readWholeFile(path).find(text) != std::string::npos;
}

int countCalls(const FakeWindow& window, const std::string& call) {
  return static_cast<int>(std::count(window.calls.begin(), window.calls.end(), call));
}

class DocumentTest : public ShellTest {
 protected:
  // Opens root/name holding the guns, from a clean document: no question is asked.
  void OpenFile(const std::string& name, const std::vector<std::string>& guns) {
    writeGunFile(HostFile(name), guns);
    window_.openChoices.push_back(Chosen(name));
    OnOpen(&window_);
  }
};

enum class Command { kNew, kOpen, kClose };

// What each of New, Open and Close does after each answer to the question. Open's chooser is
// cancelled, so what the prompt and the save left behind stays to be seen.
TEST_F(DocumentTest, CommandsAfterThePrompt) {
  struct Case {
    const char* name;
    bool filed;        // the document has a file (a.ini) before the command
    int answer;        // to "Save changes to ...?"
    bool saveChosen;   // the save chooser, if it runs, picks c.ini
    bool saved;        // the guns reach a file
    bool saveChooser;  // the save chooser runs
    bool goesOn;       // the command gets past the question
    const char* proposal;  // what Open's chooser proposes
  } cases[] = {
      {"yes, filed", true, ShellWindow::kYes, false, true, false, true, "a.ini"},
      {"yes, unnamed, file chosen", false, ShellWindow::kYes, true, true, true, true, "c.ini"},
      {"yes, unnamed, save cancelled", false, ShellWindow::kYes, false, false, true, true, ""},
      {"no, filed", true, ShellWindow::kNo, false, false, false, true, "a.ini"},
      {"no, unnamed", false, ShellWindow::kNo, false, false, false, true, ""},
      {"cancel, filed", true, ShellWindow::kCancel, false, false, false, false, nullptr},
      {"cancel, unnamed", false, ShellWindow::kCancel, false, false, false, false, nullptr},
      {"any other answer cancels", false, 1, false, false, false, false, nullptr},
  };
  for (Command command : {Command::kNew, Command::kOpen, Command::kClose}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.name) + ", command " + std::to_string(static_cast<int>(command)));
      fs::remove(HostFile("a.ini"));
      fs::remove(HostFile("c.ini"));
      window_ = FakeWindow();
      SaveChangesPromptInit(&window_, "Tessarine");
      ResetDocument(&window_);
      if (c.filed) OpenFile("a.ini", {"Alpha"});
      if (!c.filed) AddGun("Alpha");
      AddGun("Beta");
      ASSERT_EQ(SaveChangesPrompt.dirty, 1);
      const std::string title = DocumentTitle;
      window_.calls.clear();
      window_.answers.push_back(c.answer);
      if (c.saveChooser) window_.saveChoices.push_back(c.saveChosen ? Chosen("c.ini") : Cancelled());
      if (c.goesOn && command == Command::kOpen) window_.openChoices.push_back(Cancelled());

      int mayClose = -1;
      if (command == Command::kNew) OnNew(&window_);
      if (command == Command::kOpen) OnOpen(&window_);
      if (command == Command::kClose) mayClose = OnCloseCommand(&window_);

      EXPECT_EQ(window_.questions, std::vector<std::string>{"Save changes to " + title + "?"});
      EXPECT_EQ(countCalls(window_, "Save ini"), c.saveChooser ? 1 : 0);
      const std::string savedTo = c.filed ? "a.ini" : "c.ini";
      EXPECT_EQ(fileHolds(HostFile(savedTo), "TypeName=Beta"), c.saved);
      EXPECT_TRUE(window_.answers.empty() && window_.saveChoices.empty() &&
                  window_.openChoices.empty());

      const bool filedNow = c.filed || c.saveChosen;
      const bool reset = c.goesOn && command == Command::kNew;
      if (reset) {
        EXPECT_EQ(std::string(DocumentTitle), "Untitled");
        EXPECT_EQ(window_.caption, "Untitled");
        EXPECT_EQ(DocumentHasPath, 0);
        EXPECT_EQ(SaveChangesPrompt.dirty, 0);
        EXPECT_TRUE(window_.rows.empty());
        EXPECT_EQ(GunList.count, 0);
      } else {
        EXPECT_EQ(std::string(DocumentTitle), c.saveChosen ? "c.ini" : title);
        EXPECT_EQ(DocumentHasPath, filedNow ? 1 : 0);
        EXPECT_EQ(SaveChangesPrompt.dirty, c.saved ? 0 : 1);
        EXPECT_EQ(window_.Names(), (std::vector<std::string>{"Alpha", "Beta"}));
        EXPECT_EQ(GunList.count, 2);
      }
      EXPECT_EQ(countCalls(window_, "Open"), c.goesOn && command == Command::kOpen ? 1 : 0);
      if (c.goesOn && command == Command::kOpen) {
        EXPECT_EQ(window_.proposed.back(), c.proposal);
      }
      if (command == Command::kClose) {
        EXPECT_EQ(mayClose, c.goesOn ? 1 : 0);
      }
    }
  }
}

TEST_F(DocumentTest, OpenTakesTheFileAndItsDirectory) {
  OpenFile("guns/b.ini", {"Alpha", "Beta"});

  const std::string directory = HostFile("guns");
  EXPECT_EQ(std::string(DocumentPath), systemPath(HostFile("guns/b.ini")));
  EXPECT_EQ(std::string(DocumentTitle), "b.ini");
  EXPECT_EQ(std::string(TargetDirectory), systemPath(directory));
  EXPECT_EQ(hostCwd(), directory);
  EXPECT_EQ(DocumentHasPath, 1);
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
  EXPECT_EQ(window_.Names(), (std::vector<std::string>{"Alpha", "Beta"}));
  EXPECT_EQ(window_.selected, 0);
  // Caption before the load, the repaint after it.
  EXPECT_EQ(window_.Calls({"Open", "Caption", "DeleteAllRows", "InsertRow", "Repaint"}),
            (std::vector<std::string>{"Open", "Caption b.ini", "DeleteAllRows",
                                      "InsertRow 0 Alpha", "InsertRow 1 Beta", "Repaint"}));
  EXPECT_EQ(window_.proposed, std::vector<std::string>{""});
  const char filter[] = "Gun Data Files (*.ini)\0*.ini\0All Files (*.*)\0*.*\0";
  EXPECT_EQ(window_.lastFilter, std::string(filter, sizeof filter));

  // A file that can't be read still becomes the document, empty and clean.
  window_.openChoices.push_back(Chosen("missing/none.ini"));
  OnOpen(&window_);
  EXPECT_EQ(window_.proposed.back(), "b.ini");
  EXPECT_EQ(std::string(DocumentTitle), "none.ini");
  EXPECT_TRUE(window_.rows.empty());
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
  EXPECT_EQ(hostCwd(), HostFile("missing"));
}

// The four states of the document, and where the directory follows a chosen file.
TEST_F(DocumentTest, StatesThroughSaveAndSaveAs) {
  auto state = [] {
    return std::to_string(DocumentHasPath) + " " + std::to_string(SaveChangesPrompt.dirty) + " " +
           DocumentTitle;
  };
  EXPECT_EQ(state(), "0 0 Untitled");
  AddGun("Alpha");
  EXPECT_EQ(state(), "0 1 Untitled");
  EXPECT_TRUE(window_.Calls({"Caption"}).empty());

  window_.saveChoices.push_back(Chosen("one/a.ini"));
  OnSave(&window_);
  EXPECT_EQ(state(), "1 0 a.ini");
  EXPECT_EQ(window_.caption, "a.ini");
  EXPECT_EQ(window_.proposed, std::vector<std::string>{""});
  EXPECT_EQ(window_.lastFilter.substr(0, 23), std::string("Gun Data Files (*.ini)\0", 23));
  EXPECT_TRUE(fileHolds(HostFile("one/a.ini"), "TypeName=Alpha"));
  EXPECT_TRUE(fs::exists(HostFile("one/a.dat")));
  EXPECT_EQ(std::string(TargetDirectory), systemPath(HostFile("one")));
  EXPECT_EQ(hostCwd(), HostFile("one"));

  AddGun("Beta");
  EXPECT_EQ(state(), "1 1 a.ini");
  // A save under the known path asks nothing and moves neither directory nor caption.
  fs::current_path(root_);
  window_.calls.clear();
  OnSave(&window_);
  EXPECT_EQ(state(), "1 0 a.ini");
  EXPECT_TRUE(window_.Calls({"Save", "Open", "Caption"}).empty());
  EXPECT_TRUE(fileHolds(HostFile("one/a.ini"), "TypeName=Beta"));
  EXPECT_EQ(hostCwd(), root_);
  EXPECT_EQ(std::string(TargetDirectory), systemPath(HostFile("one")));

  // Save without a change writes the file again.
  fs::remove(HostFile("one/a.ini"));
  OnSave(&window_);
  EXPECT_TRUE(fileHolds(HostFile("one/a.ini"), "TypeName=Beta"));

  // Save As proposes the present name; a cancel changes nothing.
  window_.saveChoices.push_back(Cancelled());
  AddGun("Gamma");
  OnSaveAs(&window_);
  EXPECT_EQ(window_.proposed.back(), "a.ini");
  EXPECT_EQ(state(), "1 1 a.ini");
  EXPECT_EQ(std::string(DocumentPath), systemPath(HostFile("one/a.ini")));

  window_.saveChoices.push_back(Chosen("two/b.ini"));
  OnSaveAs(&window_);
  EXPECT_EQ(window_.proposed.back(), "a.ini");
  EXPECT_EQ(state(), "1 0 b.ini");
  EXPECT_EQ(std::string(DocumentPath), systemPath(HostFile("two/b.ini")));
  EXPECT_EQ(std::string(TargetDirectory), systemPath(HostFile("two")));
  EXPECT_EQ(hostCwd(), HostFile("two"));
  EXPECT_TRUE(fileHolds(HostFile("two/b.ini"), "TypeName=Gamma"));
  EXPECT_FALSE(fileHolds(HostFile("one/a.ini"), "TypeName=Gamma"));
}

// A save that fails still files the document under the new name, clean: Close asks nothing.
TEST_F(DocumentTest, FailedSaveStillRenamesAndCleans) {
  AddGun("Alpha");
  const std::string nowhere = systemPath(root_ + "/gone") + "\\x.ini";
  window_.saveChoices.push_back({true, nowhere, "x.ini"});
  OnSaveAs(&window_);
  EXPECT_EQ(window_.messages,
            std::vector<std::string>{"Unable to create " + nowhere + " for writing!"});
  EXPECT_EQ(window_.caption, "x.ini");
  EXPECT_EQ(std::string(DocumentPath), nowhere);
  EXPECT_EQ(DocumentHasPath, 1);
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
  EXPECT_EQ(hostCwd(), root_);  // the directory can't be entered
  EXPECT_EQ(OnCloseCommand(&window_), 1);
  EXPECT_TRUE(window_.questions.empty());

  AddGun("Beta");
  OnSave(&window_);
  EXPECT_EQ(window_.messages.size(), 2u);
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
}

TEST_F(DocumentTest, QuestionFitsItsBufferWithLongTitles) {
  const std::string e = "\xC3\xA9";  // two bytes
  struct Case {
    std::string title;
    std::string shown;
  } cases[] = {
      {"Untitled", "Untitled"},
      {"", ""},
      {std::string(242, 'a'), std::string(242, 'a')},
      {std::string(243, 'b'), std::string(242, 'b')},
      {std::string(259, 'c'), std::string(242, 'c')},
      {std::string(241, 'd') + e, std::string(241, 'd')},
      {std::string(240, 'f') + e + "g", std::string(240, 'f') + e},
  };
  SaveChangesPrompt.dirty = 1;
  for (const Case& c : cases) {
    window_.answers.push_back(ShellWindow::kNo);
    EXPECT_EQ(SaveChangesPromptAsk(c.title.c_str()), ShellWindow::kNo);
    ASSERT_FALSE(window_.questions.empty());
    EXPECT_EQ(window_.questions.back(), "Save changes to " + c.shown + "?") << c.title.size();
    EXPECT_LE(window_.questions.back().size(), 259u);
  }
  EXPECT_EQ(window_.calls.back().substr(0, 14), "Ask Tessarine|");

  // A long caption is cut, and the prompt's init clears the flag.
  SaveChangesPromptInit(&window_, std::string(300, 'z').c_str());
  EXPECT_EQ(std::string(SaveChangesPrompt.caption), std::string(259, 'z'));
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
  EXPECT_EQ(SaveChangesPromptAsk("x"), ShellWindow::kNo);
  EXPECT_EQ(window_.questions.size(), std::size(cases));
}

// Which gun commands make the document dirty, starting from a clean file of three guns.
TEST_F(DocumentTest, GunCommandsSetTheFlag) {
  struct Case {
    const char* name;
    int row;  // selected before the command; -1 none
    int (*command)(GunListView*);
    FakeWindow::Form form;
    int dirty;
  } cases[] = {
      {"new gun accepted", 0, OnNewGun, Accept("Delta"), 1},
      {"new gun cancelled", 0, OnNewGun, CancelForm(), 0},
      {"new gun duplicate", 0, OnNewGun, Accept("beta"), 0},
      {"edit accepted unchanged", 1, OnEditGun, [](EditGunDialog*) { return 1; }, 1},
      {"edit cancelled", 1, OnEditGun, CancelForm(), 0},
      {"edit without a row", -1, OnEditGun, nullptr, 0},
      {"copy", 2, OnCopyGun, nullptr, 1},
      {"copy without a row", -1, OnCopyGun, nullptr, 0},
      {"delete", 2, OnDeleteGun, nullptr, 1},
      {"delete without a row", -1, OnDeleteGun, nullptr, 0},
      {"move up", 1, OnMoveUp, nullptr, 1},
      {"move up at the first row", 0, OnMoveUp, nullptr, 0},
      {"move down", 1, OnMoveDown, nullptr, 1},
      {"move down at the last row", 2, OnMoveDown, nullptr, 0},
      {"move down without a row", -1, OnMoveDown, nullptr, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    window_.forms.clear();
    OpenFile("guns.ini", {"Alpha", "Beta", "Gamma"});
    ASSERT_EQ(SaveChangesPrompt.dirty, 0);
    window_.selected = c.row;
    if (c.form) window_.forms.push_back(c.form);
    RunGunCommand(&window_, c.command);
    EXPECT_EQ(SaveChangesPrompt.dirty, c.dirty);
    EXPECT_TRUE(window_.forms.empty());
    // A command without a change doesn't clear a flag that was set.
    SaveChangesPrompt.dirty = 1;
    window_.selected = 0;
    RunGunCommand(&window_, OnMoveUp);
    EXPECT_EQ(SaveChangesPrompt.dirty, 1);
    SaveChangesPrompt.dirty = 0;
  }
  EXPECT_EQ(window_.messages, std::vector<std::string>{"Gun Type beta already exists!"});
}

// Deleting the only gun leaves an empty list that still asks about the save on Close.
TEST_F(DocumentTest, EmptiedFileStillAsks) {
  OpenFile("one.ini", {"Alpha"});
  RunGunCommand(&window_, OnDeleteGun);
  EXPECT_TRUE(window_.rows.empty());
  window_.answers.push_back(ShellWindow::kYes);
  EXPECT_EQ(OnCloseCommand(&window_), 1);
  EXPECT_EQ(window_.questions, std::vector<std::string>{"Save changes to one.ini?"});
  EXPECT_FALSE(fileHolds(HostFile("one.ini"), "Alpha"));
  EXPECT_TRUE(fs::exists(HostFile("one.dat")));
}

}  // namespace
