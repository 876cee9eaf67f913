// Test support: catalogs made by the real CatalogWriter from names and bytes given in the test.
#pragma once
#include <string>
#include <utility>
#include <vector>

// Collects (name, bytes) pairs and packs them with CatalogWriter, each name as given (the writer
// stores it upper case). The kernel must be up; a refusal fails the test.
class PackedCatalog {
 public:
  PackedCatalog& Add(const std::string& name, const std::string& bytes) {
    files_.emplace_back(name, bytes);
    return *this;
  }
  // Writes the catalog at the host path `path`.
  void WriteTo(const std::string& path) const;
  // The catalog's bytes.
  std::string Bytes() const;

 private:
  std::vector<std::pair<std::string, std::string>> files_;
};
