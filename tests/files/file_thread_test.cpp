// Two threads reading different files of one catalog through gFMG at the same time.
#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "catalog_writer.h"
#include "files/file_manager.h"
#include "files_test_util.h"
#include "kernel_fixture.h"

namespace {

class FileManagerThreads : public KernelTest {};

std::string pattern(char first, std::size_t size) {
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; i++)
    bytes[i] = static_cast<char>(first + (i * 7 + i / 251) % 26);
  return bytes;
}

}  // namespace

TEST_F(FileManagerThreads, TwoReadersOfOneCatalogEachGetTheirOwnBytes) {
  TempDir dir;
  std::string left = pattern('a', 6000);
  std::string right = pattern('A', 5000);
  CatalogWriter().Add("LEFT.BIN", left).Add("RIGHT.BIN", right).WriteTo(dir.file("t.cat"));
  ASSERT_EQ(gFMG->OpenCatalog(systemPath(dir.file("t.cat")).c_str()), 1);

  // Odd chunk sizes, so that the two readers interleave at every position of their entries.
  auto reader = [](const char* name, std::uint32_t chunk, std::string* out) {
    for (int pass = 0; pass < 3; pass++) {
      std::int32_t handle = gFMG->OpenFile(name);
      if (handle == -1) return;
      *out += readToEnd(handle, chunk);
      gFMG->CloseFile(handle);
    }
  };
  std::string gotLeft, gotRight;
  std::thread first(reader, "left.bin", 37, &gotLeft);
  std::thread second(reader, "right.bin", 29, &gotRight);
  first.join();
  second.join();
  EXPECT_EQ(gotLeft, left + left + left);
  EXPECT_EQ(gotRight, right + right + right);
  gFMG->CloseAllCatalogs();
}
