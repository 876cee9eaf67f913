// The interface that the example plug-in registers under "EXA", for the programs that use it.
#pragma once
#include <cstdint>

class ExampleInterface {
 public:
  // The first bytes of EXAMPLE.TXT, read through the file manager when the plug-in was loaded,
  // NUL-terminated; empty when the file could not be read.
  virtual const char* Greeting() = 0;
  // How many times Greeting was called.
  virtual std::int32_t Calls() = 0;

 protected:
  ~ExampleInterface() = default;
};
