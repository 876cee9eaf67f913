// Test support: a command-line program run from a shell, as a user would, with its output caught.
#pragma once
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "kernel_fixture.h"

struct ProgramOutcome {
  int status;  // the exit status; -1 if the program didn't exit normally
  std::string out, err;
};

// Runs `binary` with `arguments` (already quoted for the shell) in `directory`, after `shell`
// in the same shell (a ulimit, say); the output is caught in files of `scratch`.
inline ProgramOutcome runProgram(const char* binary, const std::string& directory,
                                 const std::string& arguments, const TempDir& scratch,
                                 const std::string& shell = "") {
  std::string command = "cd '" + directory + "' && " + shell + binary + " " + arguments + " >'" +
                        scratch.file("out") + "' 2>'" + scratch.file("err") + "'";
  int raw = std::system(command.c_str());
  return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readWholeFile(scratch.file("out")),
          readWholeFile(scratch.file("err"))};
}

// One run and what it must give.
struct ProgramCase {
  std::string arguments;
  int status;
  std::string message;  // at the start of the output, or anywhere in the errors
};

// Runs every case in `directory`, in order, and checks its status and message.
template <std::size_t N>
void expectRuns(const char* binary, const std::string& directory, const ProgramCase (&cases)[N],
                const TempDir& scratch) {
  for (const ProgramCase& c : cases) {
    ProgramOutcome run = runProgram(binary, directory, c.arguments, scratch);
    EXPECT_EQ(run.status, c.status) << c.arguments;
    EXPECT_TRUE(run.out.rfind(c.message, 0) == 0 || run.err.find(c.message) != std::string::npos)
        << c.arguments << ": " << run.out << run.err;
  }
}
