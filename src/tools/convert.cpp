// tessarine-convert: loads a gun data file and saves it again, .dat sibling included.
#include "tools/convert.h"

#include <cstring>

#include "base/path_util.h"
#include "core/core.h"
#include "files/file_manager.h"
#include "gun/gun_commands.h"
#include "gun/gun_file.h"
#include "gun/gun_list.h"
#include "platform/host_file.h"
#include "tools/console_list_view.h"
#include "tools/gun_dump.h"

namespace {

constexpr int kOk = 0;
constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr int kPathSize = 260;

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

// The host path in the system's form, or a message on `err` and false.
bool toSystemPath(const char* hostPath, char* out, std::FILE* err) {
  HostPathResult result = hostPathToSystem(hostPath, out, kPathSize);
  if (result == HostPathResult::kOk) return true;
  std::fprintf(err, "tessarine-convert: %s: %s\n", hostPath, hostPathMessage(result));
  return false;
}

// The name the INI reader and writer will use for `path`.
void resolveIniName(const char* path, char* out) { fmgCheckFilename(nullptr, path, "INI", out, kPathSize); }

bool isReadable(const char* name) {
  std::int32_t handle = gFMG->OpenFile(name);
  if (handle == -1) return false;
  gFMG->CloseFile(handle);
  return true;
}

// Opening for append creates a missing file and truncates nothing; the save rewrites it.
bool isWritable(const char* name) {
  std::FILE* stream = hostFileOpenStream(name, "a");
  if (!stream) return false;
  std::fclose(stream);
  return true;
}

int convert(const char* sourceArgument, const char* targetArgument, std::FILE* err) {
  char source[kPathSize];
  char target[kPathSize];
  char sourceName[kPathSize];
  char targetName[kPathSize];
  if (!toSystemPath(sourceArgument, source, err) || !toSystemPath(targetArgument, target, err)) {
    return kFailed;
  }
  resolveIniName(source, sourceName);
  resolveIniName(target, targetName);
  if (!isReadable(sourceName)) {
    std::fprintf(err, "tessarine-convert: can't read %s\n", sourceArgument);
    return kFailed;
  }
  if (!isWritable(targetName)) {
    std::fprintf(err, "tessarine-convert: can't write %s\n", targetArgument);
    return kFailed;
  }
  ConsoleListView view(err);
  GunFileLoad(&view, sourceName);
  if (GunList.count == 0) {
    std::fprintf(err, "tessarine-convert: warning: %s holds no gun section; writing an empty "
                 "document\n", sourceArgument);
  }
  int saved = GunFileSave(&view, targetName);
  GunListEmpty(&view);
  return saved ? kOk : kFailed;
}

int dump(const char* argument, std::FILE* out, std::FILE* err) {
  char path[kPathSize];
  if (!toSystemPath(argument, path, err)) return kFailed;
  return GunDumpFile(path, out, err) ? kOk : kFailed;
}

// Runs `work` between bring-up and shutdown of the kernel.
template <typename Work>
int withKernel(Work work) {
  CoreStartup();
  int status = work();
  CoreShutdown();
  return status;
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
    return withKernel([&] { return dump(argv[2], out, err); });
  }
  if (argc == 3 && argv[1][0] != '-' && argv[2][0] != '-') {
    return withKernel([&] { return convert(argv[1], argv[2], err); });
  }
  std::fputs(kUsageText, err);
  return kUsage;
}
