// Files as the converter names them to its user.
#include "tools/tool_files.h"

#include <cstring>

#include "files/file_manager.h"
#include "platform/host_file.h"

std::string ShownPath(const char* path) {
  char shown[2 * kHostPathSize];
  hostPathFromSystem(path, shown, sizeof shown);
  return std::strncmp(shown, "./", 2) == 0 ? shown + 2 : shown;
}

std::int32_t OpenToRead(const char* path, const char* shownName, std::FILE* err) {
  hostClearLastError();
  std::int32_t handle = gFMG->OpenFile(path);
  if (handle != -1) return handle;
  // The file manager turns a directory away without asking the host.
  const char* reason = hostPathKindOf(path) == HostPathKind::kDirectory ? "Is a directory"
                                                                        : hostLastErrorText();
  std::fprintf(err, "tessarine-convert: can't read %s: %s\n", shownName,
               *reason ? reason : "No such file or directory");
  return -1;
}

void PrintLossRefused(std::FILE* err) {
  std::fputs("tessarine-convert: guns would be lost, so nothing was written; --allow-loss "
             "converts anyway, as the editor would\n", err);
}
