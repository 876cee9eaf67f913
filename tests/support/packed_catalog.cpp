// Test support: catalogs made by the real CatalogWriter from names and bytes given in the test.
#include "packed_catalog.h"

#include <gtest/gtest.h>

#include "files/catalog_writer.h"
#include "kernel_fixture.h"

void PackedCatalog::WriteTo(const std::string& path) const {
  TempDir sources;
  CatalogWriter writer;
  for (std::size_t i = 0; i < files_.size(); i++) {
    std::string source = sources.file(std::to_string(i));
    writeWholeFile(source, files_[i].second);
    CatalogWriteStatus status = writer.Add(systemPath(source).c_str(), files_[i].first.c_str());
    EXPECT_EQ(status, CatalogWriteStatus::kOk)
        << files_[i].first << ": " << catalogWriteMessage(status);
  }
  CatalogWriteStatus status = writer.Write(systemPath(path).c_str());
  EXPECT_EQ(status, CatalogWriteStatus::kOk) << path << ": " << catalogWriteMessage(status);
}

std::string PackedCatalog::Bytes() const {
  TempDir dir;
  WriteTo(dir.file("packed.cat"));
  return readWholeFile(dir.file("packed.cat"));
}
