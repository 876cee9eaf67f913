// Fuzz target: up to four INI files cut from one input at each "@@", named A.INI to D.INI, that
// may include one another (cycles too); A.INI is parsed and written back.
#include <string>

#include "config/ini_file.h"
#include "fuzz_kernel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzKernelUp();
  std::string input(reinterpret_cast<const char*>(data), size);
  const char* names[] = {"A.INI", "B.INI", "C.INI", "D.INI"};
  std::size_t start = 0;
  for (const char* name : names) {
    std::size_t end = std::min(input.find("@@", start), input.size());
    fuzzWrite(name, data + start, end - start);
    start = std::min(end + 2, input.size());
  }
  {
    IniFile ini(fuzzFile("A.INI").c_str(), 0, 0);
    ini.IniGetString("Main", "Key", "", nullptr, 0, 0);
    ini.IniWrite(fuzzFile("OUT.INI").c_str());
  }
  fuzzCheckNoLeak();
  return 0;
}
