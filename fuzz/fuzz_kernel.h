// Fuzzing support: the kernel brought up once per process, a scratch directory on a RAM file
// system, and the leak check that follows every input.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

// Brings the kernel up on the first call and makes the scratch directory the working one.
void fuzzKernelUp();
// The scratch directory's system path, and a file in it.
const std::string& fuzzDirectory();
std::string fuzzFile(const std::string& name);
// Writes bytes to a file of the scratch directory (host path built inside).
void fuzzWrite(const std::string& name, const std::uint8_t* data, std::size_t size);
// Aborts when the input left blocks on the kernel heap.
void fuzzCheckNoLeak();
