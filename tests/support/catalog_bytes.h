// Test support: catalog archives built byte by byte, for the ones CatalogWriter would refuse.
#pragma once
#include <cstdint>
#include <fstream>
#include <set>
#include <string>
#include <utility>
#include <vector>

inline std::string le32(std::uint32_t value) {
  std::string bytes;
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<char>(value >> shift));
  return bytes;
}

// The 28-byte header: `magic` cut or NUL-padded to 4 bytes, 12 reserved bytes, the counts.
inline std::string catalogHeader(const std::string& magic, std::int32_t fileCount,
                                 std::int32_t extensionCount, std::uint32_t dataSize) {
  return (magic + std::string(16, '\0')).substr(0, 4) + std::string(12, '\0') + le32(fileCount) +
         le32(extensionCount) + le32(dataSize);
}

// A table's text field: the declared length, then the bytes as given, whether or not they agree.
inline std::string catalogField(std::int32_t length, const std::string& bytes) {
  return le32(length) + bytes;
}

// Names as given, odd ones included; files in the order added, each extension once.
class RawCatalog {
 public:
  RawCatalog& Add(const std::string& name, const std::string& bytes) {
    files_.emplace_back(name, bytes);
    return *this;
  }
  std::string Bytes() const {
    std::set<std::string> extensions;
    std::size_t tablesEnd = 28;
    for (const auto& [name, bytes] : files_) {
      tablesEnd += 8 + name.size() + 1;
      if (auto dot = name.rfind('.'); dot != std::string::npos)
        extensions.insert(name.substr(dot + 1));
    }
    std::string fileTable, extensionTable, data;
    for (const std::string& e : extensions) extensionTable += catalogField(e.size() + 1, e + '\0');
    tablesEnd += extensionTable.size();
    for (const auto& [name, bytes] : files_) {
      fileTable += le32(tablesEnd + data.size()) + catalogField(name.size() + 1, name + '\0');
      data += bytes;
    }
    return catalogHeader("CAT", files_.size(), extensions.size(), data.size()) + fileTable +
           extensionTable + data;
  }
  void WriteTo(const std::string& path) const {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << Bytes();
  }

 private:
  std::vector<std::pair<std::string, std::string>> files_;
};
