// Test support: builds catalog archives byte by byte, well-formed or deliberately broken.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

// Little-endian 32-bit field.
void appendU32(std::string& bytes, std::uint32_t value);
// The 28-byte header: the first four bytes of `magic` (NUL-padded), 12 reserved bytes, counts.
std::string catalogHeader(const std::string& magic, std::int32_t fileCount,
                          std::int32_t extensionCount, std::uint32_t dataSize);
// One file table entry: offset, length, then the field bytes exactly as given.
std::string catalogFileEntry(std::uint32_t offset, std::int32_t length, const std::string& field);
// One extension table entry: length, then the field bytes exactly as given.
std::string catalogExtensionEntry(std::int32_t length, const std::string& field);

// A well-formed catalog: the files end to end behind the two tables, in the order added. The
// extension table lists each distinct extension of the files' names unless some were given.
class CatalogWriter {
 public:
  struct File {
    std::string name;
    std::string bytes;
  };

  CatalogWriter& Add(const std::string& name, const std::string& bytes);
  CatalogWriter& AddExtension(const std::string& extension);
  // The whole catalog.
  std::string Bytes() const;
  // Offset of each file's first byte within Bytes().
  std::vector<std::uint32_t> Offsets() const;
  // Bytes from the start of the catalog to the end of the tables.
  std::uint32_t TablesEnd() const;
  void WriteTo(const std::string& path) const;

  const std::vector<File>& files() const { return files_; }
  std::vector<std::string> Extensions() const;

 private:
  std::vector<File> files_;
  std::vector<std::string> extensions_;
};
