// tessarine-convert: loads a gun data file and saves it again, .dat sibling included.
#include "tools/convert.h"

#include <cstring>
#include <vector>

#include "base/path_util.h"
#include "config/ini_file.h"
#include "files/file_manager.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "platform/host_file.h"
#include "tools/console_list_view.h"
#include "tools/gun_check.h"
#include "tools/gun_dump.h"
#include "tools/gun_from_dat.h"
#include "tools/gun_safe_save.h"
#include "tools/gun_saved_text.h"
#include "tools/gun_text_scan.h"
#include "tools/tool_files.h"
#include "tools/tool_kernel.h"

namespace {

constexpr char kProgram[] = "tessarine-convert";
constexpr int kOk = kToolOk;
constexpr int kFailed = kToolFailed;
constexpr int kUsage = kToolUsage;
constexpr int kPathSize = 260;
// Room for a derived name that would be too long, so that it is refused rather than cut.
constexpr int kLongSize = 2 * kPathSize;

const char kUsageText[] =
    "Usage: tessarine-convert [--allow-loss] [--] SOURCE.ini TARGET.ini\n"
    "       tessarine-convert --check [--] SOURCE.ini...\n"
    "       tessarine-convert --from-dat [--allow-loss] [--] FILE.dat TARGET.ini\n"
    "       tessarine-convert --dump [--] FILE.dat\n"
    "\n"
    "Loads the gun data file SOURCE as the editor opens it and saves it as TARGET and\n"
    "TARGET's binary sibling (extension .dat), byte for byte as the editor saves. A\n"
    "conversion that would lose guns writes nothing and fails; values the load changes\n"
    "are warned about. TARGET's files are replaced only when both are written whole.\n"
    "\n"
    "Options:\n"
    "  --allow-loss  go on when guns are lost, as the editor would, or a .dat is cut short\n"
    "  --check       report what loading each SOURCE would lose or change; write nothing\n"
    "  --from-dat    rebuild the text file TARGET (and a fresh .dat) from a binary gun file\n"
    "  --dump        print the records of a binary gun file field by field\n"
    "  -h, --help    show this help and exit\n"
    "  --version     show the version and exit\n"
    "  --            take every later argument as a file name\n"
    "\n"
    "A name without an extension gets .INI, as in the editor. Exit status: 0 done (for\n"
    "--check: nothing to report), 1 failed or something reported, 2 wrong usage.\n";

// What parse gives when the command line asks for work rather than an exit.
constexpr int kGoOn = -1;

const char kTryHelp[] = "Try 'tessarine-convert --help' for more information.\n";

enum class Mode { kConvert, kCheck, kFromDat, kDump };

struct Command {
  Mode mode = Mode::kConvert;
  const char* modeOption = nullptr;
  bool allowLoss = false;
  std::vector<const char*> files;
};

// The host path in the system's form, or a message on `err` and false.
bool toSystemPath(const char* hostPath, char* out, std::FILE* err) {
  return toolSystemPath(kProgram, hostPath, out, err);
}

// A derived name, made in a buffer larger than a path so that a cut shows: false, with a
// message, when it doesn't fit the system's 259 bytes.
bool fitsSystemPath(const char* name, std::FILE* err) {
  if (std::strlen(name) < static_cast<std::size_t>(kPathSize)) return true;
  std::fprintf(err, "tessarine-convert: %s: %s\n", ShownPath(name).c_str(),
               hostPathMessage(HostPathResult::kTooLong));
  return false;
}

// False, with a message, when `name` is a directory or a device: no gun file goes there.
bool isNoPlaceForAFile(const char* name, const char* shown, std::FILE* err) {
  HostPathKind kind = hostPathKindOf(name);
  if (kind != HostPathKind::kDirectory && kind != HostPathKind::kDevice &&
      kind != HostPathKind::kOther) {
    return false;
  }
  std::fprintf(err, "tessarine-convert: %s is %s, not a file; give TARGET a file name\n", shown,
               kind == HostPathKind::kDirectory ? "a directory" : "a device");
  return true;
}

// The two names the target's files get: the text file as the editor resolves it ("INI" added to
// a name without an extension), the binary one beside it. False, with a message, when the
// target as typed or either name can't take a gun file.
bool targetNames(const char* argument, char* textName, std::FILE* err) {
  char target[kPathSize];
  if (!toSystemPath(argument, target, err)) return false;
  if (isNoPlaceForAFile(target, argument, err)) return false;
  char binaryName[kLongSize];
  fmgCheckFilename(nullptr, target, "INI", textName, kLongSize);
  fmgSetFileExtension(textName, "dat", binaryName, kLongSize);
  if (!fitsSystemPath(textName, err) || !fitsSystemPath(binaryName, err)) return false;
  if (std::strcmp(textName, binaryName) == 0) {
    std::fprintf(err, "tessarine-convert: %s would be both the text and the binary file\n",
                 argument);
    return false;
  }
  return !isNoPlaceForAFile(textName, ShownPath(textName).c_str(), err) &&
         !isNoPlaceForAFile(binaryName, ShownPath(binaryName).c_str(), err);
}

// The text file name the load opens for `argument`, checked for reading.
bool sourceName(const char* argument, char* name, std::FILE* err) {
  char source[kPathSize];
  if (!toSystemPath(argument, source, err)) return false;
  fmgCheckFilename(nullptr, source, "INI", name, kLongSize);
  if (!fitsSystemPath(name, err)) return false;
  std::int32_t handle = OpenToRead(name, ShownPath(name).c_str(), err);
  if (handle == -1) return false;
  gFMG->CloseFile(handle);
  return true;
}

// Scans and checks the source; reports what the load loses (errors, or warnings with
// `allowLoss`) and changes (warnings). False when guns would be lost and that isn't allowed. The
// scan is gone when this returns, so that the load and the save have its memory.
bool reportLoad(const char* name, bool allowLoss, int* guns, std::FILE* err) {
  GunTextScan scan;
  ScanGunText(name, ShownPath(name).c_str(), &scan);
  *guns = CheckGunText(&scan);
  bool losing = CountFindings(scan, FindingKind::kLoss) > 0;
  PrintFindings(scan, FindingKind::kLoss,
                allowLoss ? "tessarine-convert: warning: " : "tessarine-convert: ", err);
  PrintFindings(scan, FindingKind::kChange, "tessarine-convert: warning: ", err);
  if (losing && !allowLoss) {
    PrintLossRefused(err);
    return false;
  }
  return true;
}

// Loads the source into the list when what the load parsed needs no report (the common case,
// which then costs no scan), with the number of guns it holds; false, with nothing loaded, when
// the source needs the scan.
bool loadPlain(GunListView* view, const char* source, int* guns) {
  if (GunLoadSavedText(view, source, guns)) return true;
  IniFile ini(source, 0, 0);
  if (!GunTextIsPlain(ini)) return false;
  *guns = ini.sections.count;
  GunFileLoadParsed(view, &ini);
  return true;
}

int convert(const Command& command, std::FILE* err) {
  char source[kLongSize];
  char textName[kLongSize];
  if (!sourceName(command.files[0], source, err) ||
      !targetNames(command.files[1], textName, err)) {
    return kFailed;
  }
  ConsoleListView view(nullptr);
  int guns = 0;
  if (!loadPlain(&view, source, &guns)) {
    if (!reportLoad(source, command.allowLoss, &guns, err)) return kFailed;
    GunFileLoad(&view, source);
  }
  int status = kOk;
  if (GunList.count != guns) {
    std::fprintf(err, "tessarine-convert: %sthe load gave %d gun(s) where the file holds %d\n",
                 command.allowLoss ? "warning: " : "", GunList.count, guns);
    if (!command.allowLoss) {
      PrintLossRefused(err);
      status = kFailed;
    }
  }
  if (status == kOk && !GunSafeSave(&view, textName, command.allowLoss, err)) status = kFailed;
  GunListEmpty(&view);
  return status;
}

int check(const Command& command, std::FILE* out, std::FILE* err) {
  int status = kOk;
  for (const char* argument : command.files) {
    char name[kLongSize];
    if (!sourceName(argument, name, err)) {
      status = kFailed;
      continue;
    }
    GunTextScan scan;
    ScanGunText(name, ShownPath(name).c_str(), &scan);
    CheckGunText(&scan);
    PrintFindings(scan, std::nullopt, "", out);
    if (!scan.findings.empty()) status = kFailed;
  }
  return status;
}

int fromDat(const Command& command, std::FILE* err) {
  char dat[kPathSize];
  char textName[kLongSize];
  if (!toSystemPath(command.files[0], dat, err) ||
      !targetNames(command.files[1], textName, err)) {
    return kFailed;
  }
  ConsoleListView view(nullptr);
  int status = GunListFromDat(&view, dat, command.files[0], command.allowLoss, err) &&
                       GunSafeSave(&view, textName, command.allowLoss, err)
                   ? kOk
                   : kFailed;
  GunListEmpty(&view);
  return status;
}

int dump(const char* argument, std::FILE* out, std::FILE* err) {
  char path[kPathSize];
  if (!toSystemPath(argument, path, err)) return kFailed;
  return GunDumpFile(path, argument, out, err) ? kOk : kFailed;
}

int usageError(std::FILE* err, const char* format, const char* argument) {
  std::fputs("tessarine-convert: ", err);
  std::fprintf(err, format, argument);
  std::fputs("\n", err);
  std::fputs(kTryHelp, err);
  return kUsage;
}

// The mode an option selects, or false for an option that is none.
bool modeOf(const char* option, Mode* mode) {
  const struct {
    const char* option;
    Mode mode;
  } modes[] = {{"--check", Mode::kCheck}, {"--from-dat", Mode::kFromDat}, {"--dump", Mode::kDump}};
  for (const auto& entry : modes) {
    if (std::strcmp(option, entry.option) != 0) continue;
    *mode = entry.mode;
    return true;
  }
  return false;
}

// Reads the command line into *command; kGoOn, or the status to exit with at once (help and
// version are printed here).
int parse(int argc, char** argv, Command* command, std::FILE* out, std::FILE* err) {
  bool optionsEnd = false;
  for (int i = 1; i < argc; i++) {
    const char* argument = argv[i];
    Mode mode;
    if (optionsEnd || argument[0] != '-' || argument[1] == '\0') {
      command->files.push_back(argument);
    } else if (std::strcmp(argument, "--") == 0) {
      optionsEnd = true;
    } else if (std::strcmp(argument, "-h") == 0 || std::strcmp(argument, "--help") == 0) {
      std::fputs(kUsageText, out);
      return kOk;
    } else if (std::strcmp(argument, "--version") == 0) {
      std::fputs("tessarine-convert " TESS_VERSION "\n", out);
      return kOk;
    } else if (std::strcmp(argument, "--allow-loss") == 0) {
      command->allowLoss = true;
    } else if (modeOf(argument, &mode)) {
      if (command->modeOption && std::strcmp(command->modeOption, argument) != 0) {
        return usageError(err, "%s can't be combined with another mode", argument);
      }
      command->mode = mode;
      command->modeOption = argument;
    } else {
      return usageError(err, "unknown option '%s'", argument);
    }
  }
  return kGoOn;
}

// kOk when the command has the files its mode needs; else the usage status, with a message.
int checkShape(const Command& command, std::FILE* err) {
  std::size_t files = command.files.size();
  const char* mode = command.modeOption ? command.modeOption : "a conversion";
  if (command.allowLoss && (command.mode == Mode::kCheck || command.mode == Mode::kDump)) {
    return usageError(err, "--allow-loss can't be used with %s", mode);
  }
  bool fits = command.mode == Mode::kCheck  ? files >= 1
              : command.mode == Mode::kDump ? files == 1
                                            : files == 2;
  if (fits) return kOk;
  std::fprintf(err, "tessarine-convert: %s takes %s, not %zu\n", mode,
               command.mode == Mode::kCheck  ? "one file name or more"
               : command.mode == Mode::kDump ? "one file name"
                                             : "two file names",
               files);
  std::fputs(kTryHelp, err);
  return kUsage;
}

}  // namespace

int ConvertMain(int argc, char** argv, std::FILE* out, std::FILE* err) {
  Command command;
  if (int parsed = parse(argc, argv, &command, out, err); parsed != kGoOn) return parsed;
  if (int shape = checkShape(command, err); shape != kOk) return shape;
  return toolWithKernel(
      kProgram, [&] {
        switch (command.mode) {
          case Mode::kCheck:
            return check(command, out, err);
          case Mode::kFromDat:
            return fromDat(command, err);
          case Mode::kDump:
            return dump(command.files[0], out, err);
          case Mode::kConvert:
            break;
        }
        return convert(command, err);
      },
      err);
}
