// Test support: catalogs made by the real CatalogWriter from names and bytes given in the test.
#pragma once
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "files/catalog_writer.h"
#include "kernel_fixture.h"

// Names are stored upper case; the kernel must be up; a refusal fails the test.
class PackedCatalog {
 public:
  PackedCatalog& Add(const std::string& name, const std::string& bytes) {
    files_.emplace_back(name, bytes);
    return *this;
  }
  void WriteTo(const std::string& path) const {  // at a host path
    TempDir sources;
    CatalogWriter writer;
    for (std::size_t i = 0; i < files_.size(); i++) {
      std::string source = sources.file(std::to_string(i));
      writeWholeFile(source, files_[i].second);
      Expect(writer.Add(systemPath(source).c_str(), files_[i].first.c_str()), files_[i].first);
    }
    Expect(writer.Write(systemPath(path).c_str()), path);
  }
  std::string Bytes() const {
    TempDir dir;
    WriteTo(dir.file("packed.cat"));
    return readWholeFile(dir.file("packed.cat"));
  }

 private:
  static void Expect(CatalogWriteStatus status, const std::string& what) {
    EXPECT_EQ(status, CatalogWriteStatus::kOk) << what << ": " << catalogWriteMessage(status);
  }
  std::vector<std::pair<std::string, std::string>> files_;
};
