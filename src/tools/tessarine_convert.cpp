// tessarine-convert: the command-line gun data converter.
#include <cstdio>

#include "tools/convert.h"

int main(int argc, char** argv) { return ConvertMain(argc, argv, stdout, stderr); }
