// The settings file .\Tessarine.ini: the last gun file directory and the main window's place,
// read as the window opens and written as it closes.
#include "shell/settings.h"

#include "base/path_util.h"
#include "config/ini_file.h"
#include "gun/gun_commands.h"
#include "shell/document.h"

char StartupDirectory[kSettingsTextSize];
WindowPlacement MainPlacement = {44, 0, 0, 0, 0, 0, 0};

namespace {

// Relative on purpose: it is always opened with the process in the start-up directory.
constexpr const char* kSettingsFile = ".\\Tessarine.ini";
constexpr const char* kSection = "Tessarine";
constexpr const char* kTargetDirectoryKey = "TargetDirectory";
constexpr const char* kPositionXKey = "PositionX";
constexpr const char* kPositionYKey = "PositionY";
constexpr std::int32_t kPlacementLength = 44;
constexpr std::int32_t kShowNormal = 1;

}  // namespace

void winGetPlacement(ShellWindow* window, WindowPlacement* placement) {
  placement->length = kPlacementLength;
  if (window) window->GetPlacement(placement);
}

void winMoveTo(ShellWindow* window, WindowPlacement* placement, std::int32_t x, std::int32_t y) {
  // Positions come from the settings file unchecked: the sums wrap rather than overflow.
  auto wrapped = [](std::int32_t a, std::int32_t b, int sign) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) +
                                     static_cast<std::uint32_t>(sign) * static_cast<std::uint32_t>(b));
  };
  std::int32_t width = wrapped(placement->right, placement->left, -1);
  std::int32_t height = wrapped(placement->bottom, placement->top, -1);
  placement->flags = 0;
  placement->showCmd = kShowNormal;
  placement->left = x;
  placement->top = y;
  placement->right = wrapped(x, width, 1);
  placement->bottom = wrapped(y, height, 1);
  if (window) window->SetPlacement(placement);
}

void winGetPosition(ShellWindow* window, WindowPlacement* placement, std::int32_t* x,
                    std::int32_t* y) {
  winGetPlacement(window, placement);
  *x = placement->left;
  *y = placement->top;
}

void ReadSettings(ShellWindow* window) {
  fmgGetCurrentDirectory(StartupDirectory, kSettingsTextSize);
  IniFile ini(kSettingsFile, 1, 0);
  ini.IniGetString(kSection, kTargetDirectoryKey, StartupDirectory, TargetDirectory,
                   kDocumentTextSize, 0);
  std::int32_t x = ini.IniGetInt(kSection, kPositionXKey, 0);
  std::int32_t y = ini.IniGetInt(kSection, kPositionYKey, 0);
  // Written while the process still stands in the start-up directory, before anything else.
  ini.IniWrite(nullptr);
  // A directory that is gone leaves the process where it is; the value is kept all the same.
  fmgSetCurrentDirectory(TargetDirectory);
  winMoveTo(window, &MainPlacement, x, y);
}

void WriteSettings(ShellWindow* window) {
  std::int32_t x = 0;
  std::int32_t y = 0;
  winGetPosition(window, &MainPlacement, &x, &y);
  // The file's name is relative to the start-up directory, wherever the run has gone since.
  fmgSetCurrentDirectory(StartupDirectory);
  IniFile ini(kSettingsFile, 0, 0);
  ini.IniSetString(kSection, kTargetDirectoryKey, TargetDirectory);
  ini.IniSetInt(kSection, kPositionXKey, x);
  ini.IniSetInt(kSection, kPositionYKey, y);
  ini.IniWrite(nullptr);
}

void ShellWindowOpened(ShellWindow* window) {
  winFileDialogInit(window);
  winGetPlacement(window, &MainPlacement);
  SaveChangesPromptInit(window, "Tessarine");
  ReadSettings(window);
  ResetDocument(window);
}

void ShellWindowClosing(ShellWindow* window) {
  WriteSettings(window);
  GunListEmpty(window);
}
