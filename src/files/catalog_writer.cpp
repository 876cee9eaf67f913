// CatalogWriter: makes a catalog archive of files on disk, in exactly the form CatalogFile reads.
#include "files/catalog_writer.h"

#include <cstring>

#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "platform/host_file.h"

namespace {

constexpr std::uint64_t kMaxCatalogSize = 0xFFFFFFFF;
// Large enough that the per-call cost of reading and writing vanishes against the copying.
constexpr std::uint32_t kBufferSize = 1 << 20;

struct WriterEntry {
  char path[CatalogWriter::kPathSize];
  char name[CatalogWriter::kPathSize];
  std::uint32_t size;
};

WriterEntry* entryAt(const GrowArray& list, std::int32_t index) {
  return static_cast<WriterEntry*>(list.data[index]);
}

// Bytes collected in one block and written in large pieces. After a failed write every later
// call does nothing, and Finish reports it.
class OutputBuffer {
 public:
  explicit OutputBuffer(std::int32_t descriptor)
      : descriptor_(descriptor), data_(static_cast<std::uint8_t*>(memAlloc(kBufferSize))) {}
  ~OutputBuffer() { memFree(data_); }
  OutputBuffer(const OutputBuffer&) = delete;
  OutputBuffer& operator=(const OutputBuffer&) = delete;

  bool valid() const { return data_ != nullptr; }
  void PutU32(std::uint32_t value) {
    std::uint8_t bytes[4] = {
        static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8),
        static_cast<std::uint8_t>(value >> 16), static_cast<std::uint8_t>(value >> 24)};
    Put(bytes, sizeof bytes);
  }
  void Put(const void* bytes, std::uint32_t count) {
    const auto* from = static_cast<const std::uint8_t*>(bytes);
    while (count > 0) {
      std::uint32_t piece = Room() < count ? Room() : count;
      std::memcpy(data_ + used_, from, piece);
      used_ += piece;
      from += piece;
      count -= piece;
      if (Room() == 0) Flush();
    }
  }
  // A text field: its length with the NUL, then the text and the NUL.
  void PutText(const char* text) {
    auto length = static_cast<std::uint32_t>(std::strlen(text)) + 1;
    PutU32(length);
    Put(text, length);
  }
  // Copies exactly `size` bytes from `source` straight into the block. 1, or 0 when the file
  // ended early or could not be read (*changed tells which).
  int PutFile(std::int32_t source, std::uint32_t size, bool* changed) {
    while (size > 0) {
      std::uint32_t piece = Room() < size ? Room() : size;
      std::int32_t got = hostFileRead(source, data_ + used_, piece);
      if (got <= 0) {
        *changed = got == 0;
        return 0;
      }
      used_ += static_cast<std::uint32_t>(got);
      size -= static_cast<std::uint32_t>(got);
      if (Room() == 0) Flush();
    }
    return 1;
  }
  bool failed() const { return failed_; }
  // Writes what is left; true if every byte reached the file.
  bool Finish() {
    Flush();
    return !failed_;
  }

 private:
  std::uint32_t Room() const { return kBufferSize - used_; }
  // After a failure the bytes are dropped: the catalog is lost anyway.
  void Flush() {
    if (!failed_ && used_ > 0 &&
        hostFileWrite(descriptor_, data_, used_) != static_cast<std::int32_t>(used_)) {
      failed_ = true;
    }
    used_ = 0;
  }

  std::int32_t descriptor_;
  std::uint8_t* data_;
  std::uint32_t used_ = 0;
  bool failed_ = false;
};

}  // namespace

const char* catalogWriteMessage(CatalogWriteStatus status) {
  switch (status) {
    case CatalogWriteStatus::kOk:
      return "";
    case CatalogWriteStatus::kNameTooLong:
      return "the name is too long for a catalog (at most 258 bytes)";
    case CatalogWriteStatus::kNotPlainName:
      return "the name holds a directory, and catalogs store plain file names";
    case CatalogWriteStatus::kNoExtension:
      return "the name has no extension, and catalog files are found by their extension";
    case CatalogWriteStatus::kExtensionTooLong:
      return "the extension is too long for a catalog (at most 255 bytes)";
    case CatalogWriteStatus::kNameTaken:
      return "another file is already stored under this name (names are stored upper case)";
    case CatalogWriteStatus::kTooLarge:
      return "the catalog would grow past 4 GiB, beyond its 32-bit offsets";
    case CatalogWriteStatus::kTooManyFiles:
      return "the catalog can't take any more files";
    case CatalogWriteStatus::kUnreadable:
      return "can't read the file";
    case CatalogWriteStatus::kChanged:
      return "the file changed while the catalog was being written";
    case CatalogWriteStatus::kNoMemory:
      return "out of memory";
    case CatalogWriteStatus::kCannotCreate:
      return "can't create a temporary file beside the catalog";
    case CatalogWriteStatus::kWriteFailed:
      return "can't write the catalog";
  }
  return "";
}

CatalogWriter::~CatalogWriter() {
  for (std::int32_t i = 0; i < entries_.count; i++) memFree(entries_.data[i]);
  for (std::int32_t i = 0; i < extensions_.count; i++) memFree(extensions_.data[i]);
  entries_.Clear();
  extensions_.Clear();
}

CatalogWriteStatus CatalogWriter::Refuse(CatalogWriteStatus status, const char* name) {
  strCopyN(failedName, name, kPathSize);
  return status;
}

int CatalogWriter::FindName(const char* name) const {
  for (std::int32_t i = 0; i < entries_.count; i++) {
    if (strEquals(entryAt(entries_, i)->name, name, 0)) return 1;
  }
  return 0;
}

int CatalogWriter::FindExtension(const char* extension) const {
  for (std::int32_t i = 0; i < extensions_.count; i++) {
    if (strEquals(static_cast<const char*>(extensions_.data[i]), extension, 0)) return 1;
  }
  return 0;
}

CatalogWriteStatus CatalogWriter::Add(const char* path, const char* name) {
  if (strIsEmpty(path)) return Refuse(CatalogWriteStatus::kUnreadable, "");
  const char* slash = std::strrchr(path, '\\');
  const char* given = name ? name : slash ? slash + 1 : path;
  if (strnlen(given, kPathSize) > static_cast<std::size_t>(kMaxNameLength))
    return Refuse(CatalogWriteStatus::kNameTooLong, path);
  if (std::strpbrk(given, "\\/")) return Refuse(CatalogWriteStatus::kNotPlainName, path);
  char upper[kPathSize];
  char extension[kPathSize];
  strCopyN(upper, given, kPathSize);
  strUpper(upper);
  fmgGetFileExtension(upper, extension, kPathSize);
  auto extensionLength = static_cast<std::uint32_t>(std::strlen(extension));
  if (extensionLength == 0) return Refuse(CatalogWriteStatus::kNoExtension, path);
  if (extensionLength > kMaxExtensionLength)
    return Refuse(CatalogWriteStatus::kExtensionTooLong, path);
  if (FindName(upper)) return Refuse(CatalogWriteStatus::kNameTaken, path);

  std::int32_t source = hostFileOpenRead(path, HostAccess::kSequential);
  std::int64_t size = -1;
  if (source >= 0) {
    hostFileStat(source, &size);
    hostFileClose(source);
  }
  if (size < 0) return Refuse(CatalogWriteStatus::kUnreadable, path);
  bool newExtension = !FindExtension(extension);
  std::uint64_t growth = 8 + std::strlen(upper) + 1 + static_cast<std::uint64_t>(size) +
                         (newExtension ? 4 + extensionLength + 1 : 0);
  if (totalSize_ + growth > kMaxCatalogSize) return Refuse(CatalogWriteStatus::kTooLarge, path);

  auto* entry = static_cast<WriterEntry*>(memAlloc(sizeof(WriterEntry)));
  char* extensionCopy = newExtension ? strDuplicate(extension) : nullptr;
  if (!entry || (newExtension && !extensionCopy)) {
    memFree(entry);
    strFree(&extensionCopy);
    return Refuse(CatalogWriteStatus::kNoMemory, path);
  }
  strCopyN(entry->path, path, kPathSize);
  strCopyN(entry->name, upper, kPathSize);
  entry->size = static_cast<std::uint32_t>(size);
  bool full =
      entries_.count == entries_.capacity && entries_.capacity * 2 >= GrowArray::kCapacityLimit;
  if (!entries_.Append(entry)) {
    memFree(entry);
    strFree(&extensionCopy);
    return Refuse(full ? CatalogWriteStatus::kTooManyFiles : CatalogWriteStatus::kNoMemory, path);
  }
  if (newExtension && !extensions_.Append(extensionCopy)) {
    // Taken back out, so that nothing is added.
    entries_.data[--entries_.count] = nullptr;
    memFree(entry);
    strFree(&extensionCopy);
    return Refuse(CatalogWriteStatus::kNoMemory, path);
  }
  totalSize_ += growth;
  dataSize_ += static_cast<std::uint64_t>(size);
  return CatalogWriteStatus::kOk;
}

CatalogWriteStatus CatalogWriter::WriteContents(std::int32_t descriptor) {
  OutputBuffer out(descriptor);
  if (!out.valid()) return CatalogWriteStatus::kNoMemory;
  static const std::uint8_t kMagicAndReserved[16] = {'C', 'A', 'T'};
  out.Put(kMagicAndReserved, sizeof kMagicAndReserved);
  out.PutU32(static_cast<std::uint32_t>(entries_.count));
  out.PutU32(static_cast<std::uint32_t>(extensions_.count));
  out.PutU32(static_cast<std::uint32_t>(dataSize_));

  auto offset = static_cast<std::uint32_t>(totalSize_ - dataSize_);
  for (std::int32_t i = 0; i < entries_.count; i++) {
    out.PutU32(offset);
    out.PutText(entryAt(entries_, i)->name);
    offset += entryAt(entries_, i)->size;
  }
  for (std::int32_t i = 0; i < extensions_.count; i++)
    out.PutText(static_cast<const char*>(extensions_.data[i]));

  for (std::int32_t i = 0; i < entries_.count && !out.failed(); i++) {
    WriterEntry* entry = entryAt(entries_, i);
    std::int32_t source = hostFileOpenRead(entry->path, HostAccess::kSequential);
    if (source < 0) return Refuse(CatalogWriteStatus::kUnreadable, entry->path);
    bool changed = false;
    char extra;
    int copied = out.PutFile(source, entry->size, &changed);
    // A file that grew since Add would be stored cut.
    if (copied && hostFileRead(source, &extra, 1) != 0) changed = true;
    hostFileClose(source);
    if (!copied || changed) {
      return Refuse(changed ? CatalogWriteStatus::kChanged : CatalogWriteStatus::kUnreadable,
                    entry->path);
    }
  }
  return out.Finish() ? CatalogWriteStatus::kOk : CatalogWriteStatus::kWriteFailed;
}

CatalogWriteStatus CatalogWriter::Write(const char* catalogPath) {
  if (strIsEmpty(catalogPath)) return Refuse(CatalogWriteStatus::kCannotCreate, "");
  char temporary[kPathSize];
  std::int32_t descriptor = hostFileCreateTemporary(catalogPath, temporary);
  if (descriptor < 0) return Refuse(CatalogWriteStatus::kCannotCreate, catalogPath);
  CatalogWriteStatus status = WriteContents(descriptor);
  if (hostFileClose(descriptor) != 0 && status == CatalogWriteStatus::kOk)
    status = CatalogWriteStatus::kWriteFailed;
  if (status == CatalogWriteStatus::kOk && hostFileRename(temporary, catalogPath) != 0)
    status = CatalogWriteStatus::kWriteFailed;
  if (status == CatalogWriteStatus::kOk) return status;
  hostFileRemove(temporary);
  // A refusal about a source file has named it already.
  if (status == CatalogWriteStatus::kWriteFailed || status == CatalogWriteStatus::kNoMemory)
    Refuse(status, catalogPath);
  return status;
}
