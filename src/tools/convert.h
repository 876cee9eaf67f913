// tessarine-convert: loads a gun data file and saves it again, .dat sibling included.
#pragma once
#include <cstdio>

// Runs the converter on its command line (argv[0] is the program):
//   SOURCE.ini TARGET.ini   load SOURCE, save TARGET and its .dat sibling
//   --dump FILE.dat         print the records of a binary gun file
//   --help, --version
// Brings the kernel up and down around the work. Returns the exit status: 0 done, 1 failed,
// 2 wrong usage. Output goes to `out`, messages to `err`.
int ConvertMain(int argc, char** argv, std::FILE* out, std::FILE* err);
