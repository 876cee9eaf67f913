// Test support: builds catalog archives byte by byte, well-formed or deliberately broken.
#include "catalog_writer.h"

#include <algorithm>
#include <cctype>
#include <fstream>

void appendU32(std::string& bytes, std::uint32_t value) {
  for (int shift = 0; shift < 32; shift += 8)
    bytes.push_back(static_cast<char>((value >> shift) & 0xFF));
}

std::string catalogHeader(const std::string& magic, std::int32_t fileCount,
                          std::int32_t extensionCount, std::uint32_t dataSize) {
  std::string bytes = magic.substr(0, 4);
  bytes.resize(16, '\0');
  appendU32(bytes, static_cast<std::uint32_t>(fileCount));
  appendU32(bytes, static_cast<std::uint32_t>(extensionCount));
  appendU32(bytes, dataSize);
  return bytes;
}

std::string catalogFileEntry(std::uint32_t offset, std::int32_t length, const std::string& field) {
  std::string bytes;
  appendU32(bytes, offset);
  appendU32(bytes, static_cast<std::uint32_t>(length));
  return bytes + field;
}

std::string catalogExtensionEntry(std::int32_t length, const std::string& field) {
  std::string bytes;
  appendU32(bytes, static_cast<std::uint32_t>(length));
  return bytes + field;
}

CatalogWriter& CatalogWriter::Add(const std::string& name, const std::string& bytes) {
  files_.push_back({name, bytes});
  return *this;
}

CatalogWriter& CatalogWriter::AddExtension(const std::string& extension) {
  extensions_.push_back(extension);
  return *this;
}

std::vector<std::string> CatalogWriter::Extensions() const {
  if (!extensions_.empty()) return extensions_;
  std::vector<std::string> found;
  for (const File& file : files_) {
    auto dot = file.name.rfind('.');
    if (dot == std::string::npos) continue;
    std::string extension = file.name.substr(dot + 1);
    for (char& c : extension) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (std::find(found.begin(), found.end(), extension) == found.end()) found.push_back(extension);
  }
  return found;
}

std::uint32_t CatalogWriter::TablesEnd() const {
  std::uint32_t end = 28;
  for (const File& file : files_) end += 8 + static_cast<std::uint32_t>(file.name.size()) + 1;
  for (const std::string& extension : Extensions())
    end += 4 + static_cast<std::uint32_t>(extension.size()) + 1;
  return end;
}

std::vector<std::uint32_t> CatalogWriter::Offsets() const {
  std::vector<std::uint32_t> offsets;
  std::uint32_t at = TablesEnd();
  for (const File& file : files_) {
    offsets.push_back(at);
    at += static_cast<std::uint32_t>(file.bytes.size());
  }
  return offsets;
}

std::string CatalogWriter::Bytes() const {
  std::vector<std::string> extensions = Extensions();
  std::uint32_t dataSize = 0;
  for (const File& file : files_) dataSize += static_cast<std::uint32_t>(file.bytes.size());
  std::string bytes =
      catalogHeader(std::string("CAT\0", 4), static_cast<std::int32_t>(files_.size()),
                    static_cast<std::int32_t>(extensions.size()), dataSize);
  std::vector<std::uint32_t> offsets = Offsets();
  for (std::size_t i = 0; i < files_.size(); i++) {
    const std::string& name = files_[i].name;
    bytes += catalogFileEntry(offsets[i], static_cast<std::int32_t>(name.size() + 1), name + '\0');
  }
  for (const std::string& extension : extensions) {
    bytes +=
        catalogExtensionEntry(static_cast<std::int32_t>(extension.size() + 1), extension + '\0');
  }
  for (const File& file : files_) bytes += file.bytes;
  return bytes;
}

void CatalogWriter::WriteTo(const std::string& path) const {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  std::string bytes = Bytes();
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
