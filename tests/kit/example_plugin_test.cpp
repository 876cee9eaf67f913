// Run by build_example_plugin.sh on the example plug-in it built against the installed kit.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "example_plugin.h"
#include "kernel_fixture.h"
#include "services/dll_library_manager.h"
#include "services/interface_manager.h"

TEST_F(KernelTest, ExamplePluginReadsThroughTheKernelAndRegistersItsInterface) {
  const char* built = std::getenv("TESS_EXAMPLE_PLUGIN");
  ASSERT_NE(built, nullptr) << "run through build_example_plugin.sh";
  TempDir dir;
  std::filesystem::copy_file(built, dir.file("EXAMPLE.DLL"));
  writeWholeFile(dir.file("EXAMPLE.TXT"), "Hello from the kernel's files");
  const std::filesystem::path startDirectory = std::filesystem::current_path();
  std::filesystem::current_path(dir.path());

  ASSERT_EQ(gDLL->LoadDll("EXAMPLE"), 1);
  ExampleInterface* example = nullptr;
  ASSERT_EQ(imGet(gIM, "EXA", &example), 1);
  EXPECT_STREQ(example->Greeting(), "Hello from the kernel's files");
  EXPECT_EQ(example->Calls(), 1);
  EXPECT_EQ(gDLL->FreeDll("EXAMPLE"), 0);  // its interface is held
  EXPECT_EQ(example->Calls(), 1);  // and its code still there to call
  imRelease(gIM, "EXA", &example);
  gDLL->FreeAll();
  EXPECT_EQ(gDLL->libraries.count, 0);
  EXPECT_EQ(imGet(gIM, "EXA", &example), 0);  // gone with ExitDLL, and so is its block
  std::filesystem::current_path(startDirectory);
}
