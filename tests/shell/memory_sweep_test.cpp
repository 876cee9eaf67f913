// The exhausted-memory sweep: the whole road of a session (start-up, a load through an include
// and a catalog, every gun command, every document command, the saves, shutdown) run again and
// again with the Nth allocation failing, N from 1 until a run meets no failure.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "base/memory_manager.h"
#include "catalog_bytes.h"
#include "core/core.h"
#include "fake_window.h"
#include "files/file_manager.h"
#include "gun/gun_commands.h"
#include "gun/gun_list.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "shell/document.h"
#include "shell/settings.h"

namespace {

namespace fs = std::filesystem;

std::string gunSection(int number, const std::string& name) {
  return "[GunData00" + std::to_string(number) + "]\nTypeName=" + name +
         "\nCaliber=7.62\nROF=600\nMuzzleVel=800\nAmmoWt=0.02\nAddLight=TRUE\nFireColor=1,0.5,0.25\n\n";
}

class MemorySweep : public ::testing::Test {
 protected:
  // One session with the nth allocation failing; false when no allocation was the nth.
  bool RunSession(std::int64_t nth) {
    fs::remove_all(root_);
    fs::create_directories(root_);
    writeWholeFile(root_ + "/guns.ini",
                   gunSection(1, "Alpha") + "#include PART.INI\n" + gunSection(2, "Beta"));
    RawCatalog().Add("PART.INI", gunSection(3, "Gamma")).WriteTo(root_ + "/PART.CAT");
    fs::current_path(root_);
    hostHeapFailNth(nth);

    CoreStartup();
    std::int64_t blocks = hostHeapLiveBlocks(gMEM->heap);
    if (gFMG) gFMG->OpenCatalog((systemPath(root_) + "\\PART.CAT").c_str());
    // Enough answers for any flow a failure leaves: the forms, No to every question, a file
    // for each chooser.
    FakeWindow window;
    window.AcceptForm("Gun 1"), window.AcceptForm("Gun 2");
    window.answers.assign(3, ShellWindow::kNo);
    const std::string copy = systemPath(root_) + "\\copy.ini";
    window.choices = {systemPath(root_) + "\\guns.ini", copy, copy};
    ShellWindowOpened(&window);
    Step(window, "open", [&] { OnOpen(&window); });
    openedRows_ = window.RowCount();
    for (auto command : {OnNewGun, OnEditGun, OnCopyGun, OnMoveUp, OnMoveDown, OnDeleteGun}) {
      Step(window, "gun command", [&] { RunGunCommand(&window, command); });
    }
    Step(window, "save", [&] { OnSave(&window); });
    Step(window, "save as", [&] { OnSaveAs(&window); });
    Step(window, "new", [&] { OnNew(&window); });
    Step(window, "close", [&] { OnCloseCommand(&window); });
    ShellWindowClosing(&window);
    if (gFMG) gFMG->CloseCatalog((systemPath(root_) + "\\PART.CAT").c_str());
    EXPECT_EQ(hostHeapLiveBlocks(gMEM->heap), blocks) << "a block stayed behind at N = " << nth;
    bool failed = hostHeapFailPending() == 0;
    CoreShutdown();
    hostHeapFailNth(0);
    fs::current_path(cwd_);
    return failed;
  }

  // Runs one step and checks that the list and the rows are still in step.
  template <typename Action>
  void Step(FakeWindow& window, const char* what, Action action) {
    action();
    ASSERT_EQ(RowNames(&window), ListedNames()) << what;
  }

  int openedRows_ = 0;
  TempDir temp_;
  std::string root_ = fs::canonical(temp_.path()).string() + "/session";
  fs::path cwd_ = fs::current_path();
};

}  // namespace

TEST_F(MemorySweep, EveryAllocationOfASessionMayFail) {
  std::int64_t nth = 1;
  while (RunSession(nth) && !HasFailure()) nth++;
  EXPECT_EQ(openedRows_, 3) << "the last run, which met no failure, loaded every gun";
  EXPECT_GT(nth, 100) << "the road allocates far more than this";
  std::printf("[ sweep    ] %lld allocations, each failed once\n", static_cast<long long>(nth - 1));
}
