// Test support: catalogs made by the real CatalogWriter from names and bytes given in the test.
#pragma once
#include <string>
#include <utility>
#include <vector>

// Packs (name, bytes) pairs with CatalogWriter, which stores the names upper case. The kernel
// must be up; a refusal fails the test.
class PackedCatalog {
 public:
  PackedCatalog& Add(const std::string& name, const std::string& bytes) {
    files_.emplace_back(name, bytes);
    return *this;
  }
  void WriteTo(const std::string& path) const;  // at a host path
  std::string Bytes() const;

 private:
  std::vector<std::pair<std::string, std::string>> files_;
};
