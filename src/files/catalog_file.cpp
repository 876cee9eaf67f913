// CatalogFile: read-only access to the files packed in one catalog archive, through one descriptor.
#include "files/catalog_file.h"

#include <cstring>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/string_util.h"
#include "platform/host_file.h"

namespace {

// Empties a table and makes its block once for the count the header gives. A count of 0 or
// below, or too large for one block, gets no block: Append then makes its own.
void prepareTable(GrowArray* list, std::int32_t count) {
  list->Clear();
  list->fixed = 1;
  list->Create(count);
}

// The array owns its items here: each goes back to the heap before the array is emptied.
void freeItemsAndClear(GrowArray* list) {
  for (std::int32_t i = 0; i < list->count; i++) memFree(list->data[i]);
  list->Clear();
}

constexpr std::int32_t kMaxPosition = 0x7FFFFFFF;

std::uint32_t decodeU32(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
         static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

std::int32_t decodeI32(const std::uint8_t* bytes) {
  return static_cast<std::int32_t>(decodeU32(bytes));
}

// 1 and sets *value if all four bytes could be read.
int readU32(std::int32_t descriptor, std::uint32_t* value) {
  std::uint8_t bytes[4];
  if (hostFileRead(descriptor, bytes, sizeof bytes) != static_cast<std::int32_t>(sizeof bytes)) {
    return 0;
  }
  *value = decodeU32(bytes);
  return 1;
}

// Reads a name or extension field of `length` bytes into `text` (of 260 bytes) and ends it at
// the field's end, so a field without its NUL, or of length 0, still gives a text.
// 1 if the whole field was read.
int readTextField(std::int32_t descriptor, std::int32_t length, char* text) {
  std::int32_t got =
      length > 0 ? hostFileRead(descriptor, text, static_cast<std::uint32_t>(length)) : 0;
  if (got != length) return 0;
  text[length] = '\0';
  return 1;
}

// Reads the length word and then the text of entry `index` of a table whose entries are called
// `what` ("filename", "extension"); traces the documented words and gives 0 on a failure.
int readTableText(std::int32_t descriptor, const char* catalogPath, const char* what,
                  std::int32_t index, char* text) {
  std::uint32_t rawLength;
  if (!readU32(descriptor, &rawLength)) {
    dbgTrace("Error while reading catalog %s: unable to read %s %d!", catalogPath, what, index);
    return 0;
  }
  auto length = static_cast<std::int32_t>(rawLength);
  if (length < 0 || length >= CatalogFile::kNameSize) {
    dbgTrace("Error while reading catalog %s: invalid %s length %d!", catalogPath, what, length);
    return 0;
  }
  if (!readTextField(descriptor, length, text)) {
    dbgTrace("Error while reading catalog %s: unable to read %s %d!", catalogPath, what, index);
    return 0;
  }
  return 1;
}

const char* shown(const char* text) { return text ? text : ""; }

}  // namespace

void* CatalogFile::operator new(std::size_t size) noexcept {
  return memAlloc(static_cast<std::uint32_t>(size));
}

void CatalogFile::operator delete(void* block) noexcept { memFree(block); }

CatalogFile::CatalogFile(const char* catalogPath)
    : header{}, handle(-1), refCount(0), OpenFileCount(0), lastReader(-1), nextHandle(1) {
  std::memset(path, 0, sizeof path);
  Load(catalogPath);
}

CatalogFile::~CatalogFile() {
  Unload();
  extensionList.Clear();
  headerList.Clear();
}

int CatalogFile::Load(const char* catalogPath) {
  // A failed load can leave entries behind without a descriptor; they go too.
  if (handle != -1 || headerList.count > 0 || extensionList.count > 0) Unload();
  path[0] = '\0';

  std::int32_t descriptor = hostFileOpenRead(catalogPath, HostAccess::kRandom);
  if (descriptor < 0) {
    dbgTrace("Unable to open catalog file %s!", shown(catalogPath));
    return 0;
  }

  std::uint8_t bytes[CatalogHeader::kSize];
  if (hostFileRead(descriptor, bytes, sizeof bytes) != CatalogHeader::kSize) {
    dbgTrace("Error reading CatalogHeader for %s!", catalogPath);
    hostFileClose(descriptor);
    return 0;
  }
  for (int i = 0; i < 4; i++) header.magic[i] = static_cast<char>(bytes[i]);
  for (int i = 0; i < 12; i++) header.reserved[i] = bytes[4 + i];
  header.fileCount = decodeI32(bytes + 16);
  header.extensionCount = decodeI32(bytes + 20);
  header.dataSize = decodeU32(bytes + 24);

  // The magic is compared as a text: "CAT" in any case with its NUL right behind.
  char magic[5] = {header.magic[0], header.magic[1], header.magic[2], header.magic[3], '\0'};
  if (!strEquals(magic, "CAT", 0)) {
    dbgTrace("%s is not a catalog file!", catalogPath);
    hostFileClose(descriptor);
    return 0;
  }

  if (!LoadFileTable(descriptor, catalogPath) || !LoadExtensionTable(descriptor, catalogPath)) {
    hostFileClose(descriptor);
    return 0;
  }
  strCopyN(path, catalogPath, kPathSize);
  handle = descriptor;
  return 1;
}

int CatalogFile::LoadFileTable(std::int32_t descriptor, const char* catalogPath) {
  prepareTable(&headerList, header.fileCount);

  char name[kNameSize];
  for (std::int32_t i = 0; i < header.fileCount; i++) {
    std::uint32_t offset;
    // A table cut inside the offset is cut before this entry's name.
    if (!readU32(descriptor, &offset)) {
      dbgTrace("Error while reading catalog %s: unable to read filename %d!", catalogPath, i);
      return 0;
    }
    if (!readTableText(descriptor, catalogPath, "filename", i, name)) return 0;
    auto* entry = static_cast<CatalogFileHeader*>(memAlloc(sizeof(CatalogFileHeader)));
    if (!entry) {
      dbgTrace("Unable to allocate memory for catalog header!");
      return 0;
    }
    strCopyN(entry->name, name, kNameSize);
    entry->offset = offset;
    entry->size = 0;
    strUpper(entry->name);
    if (!headerList.Append(entry)) {
      dbgTrace("Unable to append new file header to the header list!");
      memFree(entry);
      return 0;
    }
  }
  DeriveSizes();
  return 1;
}

void CatalogFile::DeriveSizes() {
  if (headerList.count < 1) return;
  auto** entries = reinterpret_cast<CatalogFileHeader**>(headerList.data);
  std::int32_t last = headerList.count - 1;
  // Stored files lie end to end in table order; 32-bit arithmetic, as the offsets are.
  for (std::int32_t i = 0; i < last; i++)
    entries[i]->size = entries[i + 1]->offset - entries[i]->offset;
  entries[last]->size = header.dataSize - entries[last]->offset + entries[0]->offset;
}

int CatalogFile::LoadExtensionTable(std::int32_t descriptor, const char* catalogPath) {
  prepareTable(&extensionList, header.extensionCount);

  char text[kNameSize];
  for (std::int32_t i = 0; i < header.extensionCount; i++) {
    if (!readTableText(descriptor, catalogPath, "extension", i, text)) return 0;
    auto* extension = static_cast<char*>(memAlloc(kExtensionSize));
    if (!extension) {
      dbgTrace("Unable to allocate memory for catalog extension!");
      return 0;
    }
    strCopyN(extension, text, kExtensionSize);
    strUpper(extension);
    if (!extensionList.Append(extension)) {
      dbgTrace("Unable to append new extension to the extension list!");
      memFree(extension);
      return 0;
    }
  }
  return 1;
}

void CatalogFile::Unload() {
  if (OpenFileCount > 0) {
    dbgTrace("Catalog file %s is still in use! (OpenFileCount = %d)", path, OpenFileCount);
  }
  lastReader = -1;
  nextHandle = 1;
  freeItemsAndClear(&extensionList);
  freeItemsAndClear(&headerList);
  if (handle != -1) {
    hostFileClose(handle);
    handle = -1;
  }
}

int CatalogFile::FindExtension(const char* extension) {
  GrowArray& list = extensionList;
  if (list.count < 1 || strIsEmpty(extension)) return 0;
  auto matches = [&](std::int32_t at) {
    return list.data[at] && strEquals(static_cast<const char*>(list.data[at]), extension, 0);
  };
  // The extension of the previous lookup is the likely one again.
  if (list.current >= 0 && list.current < list.count && matches(list.current)) return 1;
  for (list.current = 0; list.current < list.count; list.current++) {
    if (matches(list.current)) return 1;
  }
  return 0;
}

int CatalogFile::FindName(const char* name) {
  GrowArray& list = headerList;
  if (list.count < 1 || strIsEmpty(name)) return 0;
  auto matches = [&](std::int32_t at) {
    return list.data[at] &&
           strEquals(static_cast<CatalogFileHeader*>(list.data[at])->name, name, 0);
  };
  if (list.current >= 0 && list.current < list.count && matches(list.current)) return 1;
  for (list.current = 0; list.current < list.count; list.current++) {
    if (matches(list.current)) return 1;
  }
  return 0;
}

int CatalogFile::FindFile(const char* name, const char* extension) {
  if (handle == -1) return 0;
  // The extension first: a catalog with no file of that kind is passed over quickly.
  if (!FindExtension(extension)) return 0;
  return FindName(name);
}

std::uint32_t CatalogFile::GetFoundFileSize() {
  if (headerList.current < 0 || headerList.current >= headerList.count) return 0;
  return static_cast<CatalogFileHeader*>(headerList.data[headerList.current])->size;
}

FileHandleRecord* CatalogFile::OpenFoundFile() {
  if (handle == -1 || headerList.current < 0 || headerList.current >= headerList.count)
    return nullptr;
  auto* entry = static_cast<CatalogFileHeader*>(headerList.data[headerList.current]);
  auto* record = static_cast<FileHandleRecord*>(memAlloc(sizeof(FileHandleRecord)));
  if (!record) return nullptr;
  record->catalog = this;
  record->handle = nextHandle;
  record->startOffset = entry->offset;
  record->currentOffset = entry->offset;
  record->length = entry->size;
  hostFileSeek(handle, entry->offset, 0);
  lastReader = record->handle;
  // Numbers stay positive: -1 means failure to clients, and the counter must not overflow.
  nextHandle = nextHandle == kMaxPosition ? 1 : nextHandle + 1;
  OpenFileCount++;
  return record;
}

void CatalogFile::CloseFoundFile(FileHandleRecord* record) {
  if (handle != -1 && record) OpenFileCount--;
}

std::int32_t CatalogFile::ReadFoundFile(FileHandleRecord* record, void* buffer,
                                        std::uint32_t count) {
  // All files of the catalog share the descriptor: another reader may have moved it.
  if (lastReader != record->handle) {
    hostFileSeek(handle, record->currentOffset, 0);
    lastReader = record->handle;
  }
  std::uint64_t end = std::uint64_t{record->startOffset} + record->length;
  std::uint64_t left = record->currentOffset >= end ? 0 : end - record->currentOffset;
  if (count > left) count = static_cast<std::uint32_t>(left);
  if (count == 0) return 0;
  std::int32_t got = hostFileRead(handle, buffer, count);
  if (got >= 1) record->currentOffset += static_cast<std::uint32_t>(got);
  return got;
}

std::int32_t CatalogFile::SeekFoundFile(FileHandleRecord* record, std::int32_t offset,
                                        std::int32_t origin) {
  std::int64_t target = record->currentOffset;
  if (origin == 0) target = std::int64_t{record->startOffset} + offset;
  if (origin == 1) target = std::int64_t{record->currentOffset} + offset;
  // Seeking from the end isn't supported: origin 2 stays where it is. A target before the
  // entry would read another file's bytes, and one past 0x7FFFFFFF can't be reported.
  if (target < record->startOffset || target > kMaxPosition) return -1;
  record->currentOffset = static_cast<std::uint32_t>(target);
  lastReader = record->handle;
  return static_cast<std::int32_t>(hostFileSeek(handle, record->currentOffset, 0));
}
