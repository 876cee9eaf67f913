// Fuzz target: a catalog opened through the file manager, every stored file opened, read in
// pieces, sought every way and closed, then the catalog closed.
#include <string>
#include <vector>

#include "files/catalog_file.h"
#include "files/file_manager.h"
#include "fuzz_kernel.h"

namespace {

std::vector<std::string> storedNames() {
  std::vector<std::string> names;
  auto* catalog = static_cast<CatalogFile*>(gFMG->catalogs.head->payload);
  for (std::int32_t i = 0; i < catalog->headerList.count; i++) {
    auto* header = static_cast<CatalogFileHeader*>(catalog->headerList.data[i]);
    if (header) names.emplace_back(header->name);
  }
  return names;
}

void readAndSeek(std::int32_t handle) {
  char buffer[97];
  for (int round = 0; round < 4 && gFMG->ReadFile(handle, buffer, sizeof buffer) > 0; round++) {
  }
  for (std::int32_t origin = 0; origin < 4; origin++) {
    for (std::int32_t offset : {-5, 0, 3, 1 << 20}) {
      gFMG->SeekFile(handle, offset, origin);
      gFMG->ReadFile(handle, buffer, 5);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzzKernelUp();
  fuzzWrite("F.CAT", data, size);
  std::string path = fuzzFile("F.CAT");
  if (gFMG->OpenCatalog(path.c_str())) {
    for (const std::string& name : storedNames()) {
      gFMG->GetFileSize(name.c_str());
      std::int32_t handle = gFMG->OpenFile(name.c_str());
      if (handle == -1) continue;
      readAndSeek(handle);
      gFMG->CloseFile(handle);
    }
    gFMG->CloseCatalog(path.c_str());
  }
  fuzzCheckNoLeak();
  return 0;
}
