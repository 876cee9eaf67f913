// Fuzz target: a gun data text file loaded as the editor opens it and saved as it saves.
#include <cstdio>

#include "base/cursor_list.h"
#include "fuzz_kernel.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "tools/console_list_view.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzKernelUp();
  static std::FILE* quiet = std::fopen("/dev/null", "w");
  ConsoleListView view(quiet);
  fuzzWrite("G.INI", data, size);
  GunFileLoad(&view, fuzzFile("G.INI").c_str());
  if (view.RowCount() != GunList.count) std::abort();
  GunFileSave(&view, fuzzFile("OUT.INI").c_str());
  GunListEmpty(&view);
  fuzzCheckNoLeak();
  return 0;
}
