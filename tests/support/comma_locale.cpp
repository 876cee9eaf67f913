// Test helper: a decimal-comma locale for the test process, compiled on demand with localedef.
#include "support/comma_locale.h"

#include <cerrno>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

constexpr const char* kLocaleName = "de_DE.UTF-8";

// True when kLocaleName could be set for LC_ALL and really writes numbers with a comma.
bool trySetCommaLocale() {
  if (std::setlocale(LC_ALL, kLocaleName) == nullptr) return false;
  const std::lconv* conventions = std::localeconv();
  if (conventions != nullptr && std::strcmp(conventions->decimal_point, ",") == 0) return true;
  std::setlocale(LC_ALL, "C");
  return false;
}

bool tryLocaleDirectory(const std::string& dir) {
  if (!std::filesystem::exists(dir + "/" + kLocaleName + "/LC_NUMERIC")) return false;
  setenv("LOCPATH", dir.c_str(), 1);
  return trySetCommaLocale();
}

// Runs localedef into dir; the tool's output goes to dir/localedef.log so a failure can show it.
bool runLocaledef(const std::string& dir, std::string* why) {
  std::string target = dir + "/" + kLocaleName;
  std::string log = dir + "/localedef.log";
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_adddup2(&actions, 1, 2);
  char arg0[] = "localedef", argI[] = "-i", argDe[] = "de_DE", argF[] = "-f", argUtf[] = "UTF-8";
  char* argv[] = {arg0, argI, argDe, argF, argUtf, target.data(), nullptr};
  pid_t child = 0;
  int spawnError = posix_spawnp(&child, "localedef", &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawnError != 0) {
    *why = std::string("can't run localedef (install the locales package): ") +
           std::strerror(spawnError);
    return false;
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) {
      *why = std::string("waitpid for localedef: ") + std::strerror(errno);
      return false;
    }
  }
  // Exit status 1 only means warnings were issued; whether the files are usable is decided by
  // setlocale afterwards. Keep the status and the output for the message.
  std::ifstream logFile(log);
  std::stringstream text;
  text << logFile.rdbuf();
  *why = "localedef -i de_DE -f UTF-8 " + target + " exited with status " +
         std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + ": " + text.str();
  return WIFEXITED(status) && WEXITSTATUS(status) <= 1;
}

void removeDirectory(const std::string& dir) {
  std::error_code ignored;
  std::filesystem::remove_all(dir, ignored);
}

}  // namespace

bool useCommaLocale(std::string* why) {
  std::string reason;
  if (trySetCommaLocale()) return true;

  const char* tmp = std::getenv("TMPDIR");
  std::string base = (tmp != nullptr && tmp[0] == '/') ? tmp : "/tmp";
  std::string dir = base + "/tess-locale-" + std::to_string(getuid());
  if (tryLocaleDirectory(dir)) return true;

  // Compile into a fresh directory and rename it into place, so test programs that run side by
  // side never see a half-written locale.
  std::string fresh = dir + ".XXXXXX";
  if (mkdtemp(fresh.data()) == nullptr) {
    reason = "mkdtemp " + fresh + ": " + std::strerror(errno);
  } else if (runLocaledef(fresh, &reason)) {
    if (std::rename(fresh.c_str(), dir.c_str()) == 0) {
      if (tryLocaleDirectory(dir)) return true;
    } else if (tryLocaleDirectory(dir)) {
      // Another test program made it first.
      removeDirectory(fresh);
      return true;
    } else if (tryLocaleDirectory(fresh)) {
      return true;  // something unusable is in the way; our own copy stays and serves
    }
    reason += " (and setlocale(LC_ALL, \"" + std::string(kLocaleName) + "\") still fails)";
  } else {
    removeDirectory(fresh);
  }
  std::setlocale(LC_ALL, "C");
  if (why != nullptr) *why = reason;
  return false;
}

void useClassicLocale() { std::setlocale(LC_ALL, "C"); }
