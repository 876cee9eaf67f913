// Test helper: a decimal-comma locale for the test process, compiled on demand with localedef.
#include "support/comma_locale.h"

#include <sys/wait.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "support/kernel_fixture.h"

namespace {

constexpr const char* kLocale = "de_DE.UTF-8";

// The system's locale, or the one compiled in `dir`; "C" when it fails. glibc reads LOCPATH on
// every setlocale call but remembers where it found nothing, so only a full `dir` is named.
bool trySet(const std::string& dir) {
  if (!dir.empty()) {
    if (!std::filesystem::exists(dir + "/" + kLocale + "/LC_NUMERIC")) return false;
    setenv("LOCPATH", dir.c_str(), 1);
  }
  bool comma = std::setlocale(LC_ALL, kLocale) && *std::localeconv()->decimal_point == ',';
  if (!comma) std::setlocale(LC_ALL, "C");
  return comma;
}

}  // namespace

bool useCommaLocale(std::string* why) {
  const char* tmp = std::getenv("TMPDIR");
  std::string dir = std::string(tmp && tmp[0] == '/' ? tmp : "/tmp") + "/tess-locale-" +
                    std::to_string(getuid());
  if (trySet("") || trySet(dir)) return true;
  // Compiled aside and renamed into place, so test programs side by side never see half a
  // locale; the rename fails harmlessly when another was first. Exit status 1 means warnings.
  std::string fresh = dir + ".XXXXXX", reason = "mkdtemp failed for " + fresh;
  if (mkdtemp(fresh.data())) {
    std::string command = "localedef -i de_DE -f UTF-8 " + fresh + "/" + kLocale;
    int status = std::system((command + " >" + fresh + "/log 2>&1").c_str());
    reason = command + " gave wait status " + std::to_string(status) + ": " +
             readWholeFile(fresh + "/log");
    if (WIFEXITED(status) && WEXITSTATUS(status) <= 1) std::rename(fresh.c_str(), dir.c_str());
    bool viaDir = trySet(dir), ok = viaDir || trySet(fresh);
    std::error_code ignored;
    if (viaDir || !ok) std::filesystem::remove_all(fresh, ignored);
    if (ok) return true;
  }
  if (why) *why = reason;
  return false;
}

void useClassicLocale() { std::setlocale(LC_ALL, "C"); }
