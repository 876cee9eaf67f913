// tessarine-convert: loads a gun data file and saves it again, .dat sibling included.
#include "tools/convert.h"

#include <cstring>

#include "base/path_util.h"
#include "files/file_manager.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "platform/host_file.h"
#include "tools/console_list_view.h"
#include "tools/gun_dump.h"
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
    "Usage: tessarine-convert SOURCE.ini TARGET.ini\n"
    "       tessarine-convert --dump FILE.dat\n"
    "\n"
    "Loads the gun data file SOURCE and saves it as TARGET, writing TARGET's binary\n"
    "sibling (same name, extension .dat) too, exactly as the editor saves. --dump prints\n"
    "the records of a binary gun file field by field.\n"
    "\n"
    "A name without an extension gets .INI, as in the editor. Exit status: 0 done,\n"
    "1 failed, 2 wrong usage.\n";

bool toSystemPath(const char* hostPath, char* out, std::FILE* err) {
  return toolSystemPath(kProgram, hostPath, out, err);
}

// A derived name, made in a buffer larger than a path so that a cut shows: false, with a
// message, when it doesn't fit the system's 259 bytes.
bool fitsSystemPath(const char* name, std::FILE* err) {
  if (std::strlen(name) < static_cast<std::size_t>(kPathSize)) return true;
  char shown[kLongSize];
  hostPathFromSystem(name, shown, kLongSize);
  std::fprintf(err, "tessarine-convert: %s: %s\n", shown,
               hostPathMessage(HostPathResult::kTooLong));
  return false;
}

bool isReadable(const char* name) {
  std::int32_t handle = gFMG->OpenFile(name);
  if (handle == -1) return false;
  gFMG->CloseFile(handle);
  return true;
}

// Opening for append truncates nothing; a file the probe itself created is removed again.
bool isWritable(const char* name, std::FILE* err) {
  int existed = hostPathExists(name);
  std::FILE* stream = hostFileOpenStream(name, "a");
  if (stream) std::fclose(stream);
  if (stream && !existed) hostFileRemove(name);
  if (stream) return true;
  char shown[kLongSize];
  hostPathFromSystem(name, shown, kLongSize);
  std::fprintf(err, "tessarine-convert: can't write %s\n", shown);
  return false;
}

// The names the gun files will use: the text file as the INI writer resolves it ("INI" added
// to a name without an extension), the binary one beside it. False, with a message, when
// either can't be used.
bool targetNames(const char* target, char* textName, char* binaryName, std::FILE* err) {
  fmgCheckFilename(nullptr, target, "INI", textName, kLongSize);
  fmgSetFileExtension(textName, "dat", binaryName, kLongSize);
  if (!fitsSystemPath(textName, err) || !fitsSystemPath(binaryName, err)) return false;
  if (std::strcmp(textName, binaryName) == 0) {
    std::fprintf(err, "tessarine-convert: %s would be both the text and the binary file\n",
                 target);
    return false;
  }
  return isWritable(textName, err) && isWritable(binaryName, err);
}

int convert(const char* sourceArgument, const char* targetArgument, std::FILE* err) {
  char source[kPathSize];
  char target[kPathSize];
  char sourceName[kLongSize];
  char textName[kLongSize];
  char binaryName[kLongSize];
  if (!toSystemPath(sourceArgument, source, err) || !toSystemPath(targetArgument, target, err)) {
    return kFailed;
  }
  fmgCheckFilename(nullptr, source, "INI", sourceName, kLongSize);
  if (!fitsSystemPath(sourceName, err)) return kFailed;
  if (!isReadable(sourceName)) {
    std::fprintf(err, "tessarine-convert: can't read %s\n", sourceArgument);
    return kFailed;
  }
  if (!targetNames(target, textName, binaryName, err)) return kFailed;
  ConsoleListView view(err);
  GunFileLoad(&view, sourceName);
  if (GunList.count == 0) {
    std::fprintf(err, "tessarine-convert: warning: %s has no gun section GunData001; writing an "
                 "empty document\n", sourceArgument);
  }
  int saved = GunFileSave(&view, textName);
  GunListEmpty(&view);
  return saved ? kOk : kFailed;
}

int dump(const char* argument, std::FILE* out, std::FILE* err) {
  char path[kPathSize];
  if (!toSystemPath(argument, path, err)) return kFailed;
  return GunDumpFile(path, argument, out, err) ? kOk : kFailed;
}

}  // namespace

int ConvertMain(int argc, char** argv, std::FILE* out, std::FILE* err) {
  if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
    std::fputs(kUsageText, out);
    return kOk;
  }
  if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
    std::fputs("tessarine-convert " TESS_VERSION "\n", out);
    return kOk;
  }
  if (argc == 3 && std::strcmp(argv[1], "--dump") == 0) {
    return toolWithKernel(kProgram, [&] { return dump(argv[2], out, err); }, err);
  }
  if (argc == 3 && argv[1][0] != '-' && argv[2][0] != '-') {
    return toolWithKernel(kProgram, [&] { return convert(argv[1], argv[2], err); }, err);
  }
  std::fputs(kUsageText, err);
  return kUsage;
}
