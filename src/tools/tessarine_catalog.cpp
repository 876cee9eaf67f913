// tessarine-catalog: the command-line catalog archive tool.
#include <cstdio>

#include "tools/catalog_tool.h"

int main(int argc, char** argv) { return CatalogMain(argc, argv, stdout, stderr); }
