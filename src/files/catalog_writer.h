// CatalogWriter: makes a catalog archive of files on disk, in exactly the form CatalogFile reads.
#pragma once
#include <cstdint>

#include "base/grow_array.h"

// Why an Add or a Write was refused.
enum class CatalogWriteStatus {
  kOk,
  kNameTooLong,       // 259 bytes or more: the name field, with its NUL, must stay below 260
  kNotPlainName,      // a `\` or `/` in the name: a catalog holds no directories
  kNoExtension,       // the kernel finds catalog files by their extension
  kExtensionTooLong,  // over 255 bytes: the reader would cut it
  kNameTaken,         // another file is stored under the same upper-case name
  kTooLarge,          // the catalog would pass the 32-bit offsets
  kTooManyFiles,      // the file list can't grow any further
  kUnreadable,        // the file can't be opened or read
  kChanged,           // the file's size changed between Add and Write
  kNoMemory,          // the kernel's heap gave no block
  kCannotCreate,      // no temporary file could be made beside the catalog
  kWriteFailed,       // writing or renaming the catalog failed
};

// A sentence for the user on a refusal; empty for kOk.
const char* catalogWriteMessage(CatalogWriteStatus status);

// Collects files, then writes them as one catalog. The layout depends only on the names and
// bytes given, in the order given: the header ("CAT", a NUL, 12 zero bytes, the two counts and
// the data size), the file table in the order added, the extension table with each distinct
// extension once in order of first use, then the data, file after file with no gap. Names and
// extensions are stored upper case. Every allocation goes through memAlloc; the kernel must be up.
class CatalogWriter {
 public:
  static constexpr int kPathSize = 260;
  // The longest stored name, and the longest extension the reader keeps whole.
  static constexpr int kMaxNameLength = 258;
  static constexpr int kMaxExtensionLength = 255;

  CatalogWriter() = default;
  // Frees what was added.
  ~CatalogWriter();
  CatalogWriter(const CatalogWriter&) = delete;
  CatalogWriter& operator=(const CatalogWriter&) = delete;

  // Adds the file at `path` (system form), stored as `name` upper-cased, or as the base name of
  // `path` when `name` is null. The file must be readable now; its size is taken here. kOk, or
  // the reason with nothing added and `failedName` naming the file.
  CatalogWriteStatus Add(const char* path, const char* name = nullptr);
  // Writes everything added to `catalogPath` (system form): first under a new temporary name
  // beside it, renamed into place when complete, so an old catalog stays whole until then and a
  // failed write leaves nothing behind. kOk, or the reason with `failedName` naming the file.
  CatalogWriteStatus Write(const char* catalogPath);

  // The file (source path, or the catalog) that the last refusal concerns.
  char failedName[kPathSize] = {};

 private:
  CatalogWriteStatus Refuse(CatalogWriteStatus status, const char* name);
  int FindName(const char* name) const;
  int FindExtension(const char* extension) const;
  CatalogWriteStatus WriteContents(std::int32_t descriptor);

  // Entry records and extension texts, owned, in the order they will be written.
  GrowArray entries_;
  GrowArray extensions_;
  // Bytes the catalog will take: header, both tables and the data.
  std::uint64_t totalSize_ = 28;
  std::uint64_t dataSize_ = 0;
};
