// CatalogFile: read-only access to the files packed in one catalog archive, through one descriptor.
#pragma once
#include <cstddef>
#include <cstdint>

#include "base/grow_array.h"

class CatalogFile;

// One open file, on disk or in a catalog. Allocated through memAlloc by whoever opens the file.
struct FileHandleRecord {
  // The catalog that holds the file; null for a file on disk.
  CatalogFile* catalog;
  // The number clients use: the descriptor for a disk file, the catalog's own counter otherwise.
  std::int32_t handle;
  // For catalog files only: the entry's first byte and the next byte to read, both as positions
  // in the catalog file, and the entry's size.
  std::uint32_t startOffset;
  std::uint32_t currentOffset;
  std::uint32_t length;
};

// The 28 bytes at the start of a catalog file, decoded.
struct CatalogHeader {
  static constexpr int kSize = 28;
  // "CAT" in any case, then NUL; the rest of the field is not looked at.
  char magic[4];
  std::uint8_t reserved[12];
  std::int32_t fileCount;
  std::int32_t extensionCount;
  // Bytes from the first stored file's first byte to the last stored file's last byte.
  std::uint32_t dataSize;
};

// One entry of the file table; the name is upper case.
struct CatalogFileHeader {
  std::uint32_t offset;
  std::uint32_t size;
  char name[260];
};

// A catalog is loaded once and then serves any number of open files. It has no lock of its own:
// every operation runs under the FileManager's lock, and GetFoundFileSize and OpenFoundFile must
// follow a successful FindFile within the same locked operation.
class CatalogFile {
 public:
  static constexpr int kPathSize = 260;
  static constexpr int kNameSize = 260;
  // Extensions are kept in blocks of this size, cut to kExtensionSize - 1 bytes.
  static constexpr int kExtensionSize = 256;

  // Loads the catalog at `path`; a failed load shows as handle == -1.
  explicit CatalogFile(const char* path);
  // Unloads, then drops the lists' storage.
  ~CatalogFile();
  CatalogFile(const CatalogFile&) = delete;
  CatalogFile& operator=(const CatalogFile&) = delete;

  // Catalogs live on the kernel heap: null when it has no memory (the constructor then doesn't
  // run). Nothing throws.
  static void* operator new(std::size_t size) noexcept;
  static void operator delete(void* block) noexcept;

  // Reads the header and both tables and keeps the descriptor open. 1 loaded; 0 with a trace
  // naming the failure, the descriptor closed and handle -1 (entries read so far stay listed
  // until Unload or destruction). A loaded catalog is unloaded first.
  int Load(const char* path);
  // Frees both tables and closes the descriptor. refCount and OpenFileCount stay; open files
  // are traced, not closed.
  void Unload();

  // 1 with both found positions set, if the extension (upper case, no dot) is in the extension
  // table and the name (upper case, extension included, no directory) in the file table; else 0.
  int FindFile(const char* name, const char* extension);
  // REQUIRES: the last FindFile answered 1. The found entry's size.
  std::uint32_t GetFoundFileSize();
  // REQUIRES: the last FindFile answered 1. A new record on the found entry, numbered from this
  // catalog's counter; null when out of memory.
  FileHandleRecord* OpenFoundFile();
  // Counts the record as closed; the caller frees it.
  void CloseFoundFile(FileHandleRecord* record);
  // Reads at most `count` bytes and never past the entry's end. Bytes read, 0 at the end of the
  // entry, -1 on a read error.
  std::int32_t ReadFoundFile(FileHandleRecord* record, void* buffer, std::uint32_t count);
  // Origin 0 from the entry's start, 1 from the current position; any other origin keeps the
  // position. Returns the position in the catalog file (not in the entry); -1, with the
  // position unchanged, for a target before the entry's start or beyond 0x7FFFFFFF.
  std::int32_t SeekFoundFile(FileHandleRecord* record, std::int32_t offset, std::int32_t origin);

  // The path as passed to a successful Load; empty otherwise. The key of the FileManager's list.
  char path[kPathSize];
  CatalogHeader header;
  // The catalog's descriptor; -1 when not loaded.
  std::int32_t handle;
  // Holders of the catalog; changed by the FileManager only.
  std::int32_t refCount;
  std::int32_t OpenFileCount;
  // The handle of the file for which the descriptor is positioned; -1 for none.
  std::int32_t lastReader;
  // The number of the next file opened; from 1, never -1.
  std::int32_t nextHandle;
  // CatalogFileHeader pointers in file table order; extension blocks in extension table order.
  GrowArray headerList;
  GrowArray extensionList;

 private:
  int LoadFileTable(std::int32_t descriptor, const char* catalogPath);
  int LoadExtensionTable(std::int32_t descriptor, const char* catalogPath);
  void DeriveSizes();
  int FindExtension(const char* extension);
  int FindName(const char* name);
};
