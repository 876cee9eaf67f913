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

struct ProgramCase {
  std::string arguments;
  int status;
  std::string message;  // at the start of the output, or anywhere in the errors
};

class ProgramTest : public ::testing::Test {
 protected:
  explicit ProgramTest(const char* binary) : binary_(binary) {}
  // `arguments` quoted for the shell; `shell` runs first in the same shell (a ulimit, say).
  ProgramOutcome Run(const std::string& arguments, const std::string& directory = "",
                     const std::string& shell = "") {
    std::string command = "cd '" + (directory.empty() ? work.path() : directory) + "' && " +
                          shell + binary_ + " " + arguments + " >'" + scratch.file("out") +
                          "' 2>'" + scratch.file("err") + "'";
    int raw = std::system(command.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readWholeFile(scratch.file("out")),
            readWholeFile(scratch.file("err"))};
  }
  template <std::size_t N>
  void ExpectRuns(const ProgramCase (&cases)[N]) {
    for (const ProgramCase& c : cases) {
      ProgramOutcome run = Run(c.arguments);
      EXPECT_EQ(run.status, c.status) << c.arguments;
      EXPECT_TRUE(run.out.rfind(c.message, 0) == 0 || run.err.find(c.message) != std::string::npos)
          << c.arguments << ": " << run.out << run.err;
    }
  }

  TempDir work;     // the user's files, and where the user's shell stands
  TempDir scratch;  // the captured output, and a directory elsewhere

 private:
  const char* binary_;
};
