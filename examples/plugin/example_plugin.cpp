// An example plug-in: gets the heap and the file manager from the registry, reads a file through
// them, and registers an interface of its own, owned by its module so that the program keeps the
// library loaded while anyone holds that interface.
#include <tessarine/plugin.h>

#include "example_plugin.h"

namespace {

constexpr std::uint32_t kGreetingSize = 64;
constexpr char kEmpty[] = "";

class Example final : public ExampleInterface {
 public:
  const char* Greeting() override {
    calls++;
    return text ? text : kEmpty;
  }
  std::int32_t Calls() override { return calls; }

  char* text = nullptr;
  std::int32_t calls = 0;
};

InterfaceTable* registry = nullptr;
MemoryInterface* memory = nullptr;
FileInterface* files = nullptr;
Example example;

// Reads the start of the file into a block of the program's heap.
char* readGreeting() {
  char* block = static_cast<char*>(memory->Alloc(kGreetingSize, 0, 0, 0));
  if (!block) return nullptr;
  std::int32_t got = 0;
  std::int32_t handle = files->OpenFile("EXAMPLE.TXT");
  if (handle != -1) {
    got = files->ReadFile(handle, block, kGreetingSize - 1);
    files->CloseFile(handle);
  }
  block[got > 0 ? got : 0] = '\0';
  return block;
}

}  // namespace

int InitDLL(HostModule module, InterfaceTable* manager) {
  registry = manager;
  if (!imGet(registry, "MEM", &memory) || !imGet(registry, "FMG", &files)) return 0;
  example.text = readGreeting();
  return registry->Register("EXA", static_cast<ExampleInterface*>(&example),
                            reinterpret_cast<std::uintptr_t>(module));
}

int ExitDLL() {
  registry->Unregister("EXA");
  if (memory) memory->Free(example.text);
  example.text = nullptr;
  imRelease(registry, "FMG", &files);
  imRelease(registry, "MEM", &memory);
  return 1;
}
