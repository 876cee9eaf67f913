// A whole session run with the Nth allocation failing, N from 1 until a run meets no failure.
#include <gtest/gtest.h>

#include <filesystem>

#include "base/memory_manager.h"
#include "catalog_bytes.h"
#include "core/core.h"
#include "fake_window.h"
#include "files/file_manager.h"
#include "gun/gun_commands.h"
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

// False when no allocation was the nth; `rows` gets the rows the Open left.
bool runSession(const std::string& root, std::int64_t nth, int* rows) {
  fs::remove_all(root);
  fs::create_directories(root);
  writeWholeFile(root + "/guns.ini",
                 gunSection(1, "Alpha") + "#include PART.INI\n" + gunSection(2, "Beta"));
  RawCatalog().Add("PART.INI", gunSection(3, "Gamma")).WriteTo(root + "/PART.CAT");
  const std::string catalog = systemPath(root) + "\\PART.CAT", copy = systemPath(root) + "\\copy.ini";
  fs::path cwd = fs::current_path();
  fs::current_path(root);
  hostHeapFailNth(nth);
  CoreStartup();
  std::int64_t blocks = hostHeapLiveBlocks(gMEM->heap);
  if (gFMG) gFMG->OpenCatalog(catalog.c_str());
  // Enough answers for any flow a failure leaves.
  FakeWindow window;
  window.AcceptForm("Gun 1"), window.AcceptForm("Gun 2");
  window.answers.assign(3, ShellWindow::kNo);
  window.choices = {systemPath(root) + "\\guns.ini", copy, copy};
  ShellWindowOpened(&window);
  auto step = [&](const char* what, auto action) {
    action(&window);
    EXPECT_EQ(RowNames(&window), ListedNames()) << what << " at N = " << nth;
  };
  step("open", OnOpen);
  *rows = window.RowCount();
  for (auto command : {OnNewGun, OnEditGun, OnCopyGun, OnMoveUp, OnMoveDown, OnDeleteGun}) {
    step("gun command", [&](ShellWindow* w) { RunGunCommand(w, command); });
  }
  for (auto command : {OnSave, OnSaveAs, OnNew}) step("file command", command);
  step("close", OnCloseCommand);
  ShellWindowClosing(&window);
  if (gFMG) gFMG->CloseCatalog(catalog.c_str());
  EXPECT_EQ(hostHeapLiveBlocks(gMEM->heap), blocks) << "a block stayed behind at N = " << nth;
  bool failed = hostHeapFailPending() == 0;
  CoreShutdown();
  hostHeapFailNth(0);
  fs::current_path(cwd);
  return failed;
}

TEST(MemorySweep, EveryAllocationOfASessionMayFail) {
  TempDir temp;
  std::int64_t nth = 1;
  int rows = 0;
  while (runSession(fs::canonical(temp.path()).string() + "/session", nth, &rows) &&
         !::testing::Test::HasFailure()) {
    nth++;
  }
  EXPECT_EQ(rows, 3) << "the last run, which met no failure, loaded every gun";
  EXPECT_GT(nth, 100) << "the road allocates far more than this";
  std::printf("[ sweep    ] %lld allocations, each failed once\n", static_cast<long long>(nth - 1));
}

}  // namespace
