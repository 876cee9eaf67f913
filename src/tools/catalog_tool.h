// tessarine-catalog: lists, extracts and creates catalog archives with the kernel's own code.
#pragma once
#include <cstdio>

// Runs the catalog tool on its command line (argv[0] is the program):
//   list [--long] CATALOG            the file table (size, offset, name) and the extensions;
//                                    --long adds whether the kernel can find each file
//   extract CATALOG [NAME...] [-C DIR]  writes the stored files (all, or the named ones) into
//                                    DIR (default: the working directory), read through gFMG
//   create CATALOG FILE...           packs the files, in the order given
//   --help, --version
// Brings the kernel up and down around the work. Returns the exit status: 0 done, 1 failed,
// 2 wrong usage. Listings go to `out`, messages to `err`.
int CatalogMain(int argc, char** argv, std::FILE* out, std::FILE* err);
