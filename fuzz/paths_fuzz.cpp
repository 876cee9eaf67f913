// Fuzz target: the path helpers on texts cut from the input at each newline (directory, name,
// extension), into buffers of every size from 1 byte, each allocated to exactly that size.
#include <memory>
#include <string>

#include "base/path_util.h"
#include "fuzz_kernel.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzKernelUp();
  std::string parts[3];
  std::string input(reinterpret_cast<const char*>(data), size);
  for (std::size_t i = 0, start = 0; i < 3 && start <= input.size(); i++) {
    std::size_t end = std::min(input.find('\n', start), input.size());
    parts[i] = input.substr(start, end - start);
    start = end + 1;
  }
  const char* a = parts[0].c_str();
  const char* b = parts[1].c_str();
  const char* c = parts[2].empty() ? nullptr : parts[2].c_str();
  for (int bufferSize = 1; bufferSize <= 300; bufferSize++) {
    auto out = std::make_unique<char[]>(bufferSize);
    fmgCheckFilename(a, b, c, out.get(), bufferSize);
    fmgCheckFilePath(a, b, out.get(), bufferSize);
    fmgGetFilePath(a, out.get(), bufferSize);
    fmgGetFileExtension(a, out.get(), bufferSize);
    fmgRemoveFilePath(a, out.get(), bufferSize);
    fmgSetFileExtension(a, c, out.get(), bufferSize);
  }
  fuzzCheckNoLeak();
  return 0;
}
