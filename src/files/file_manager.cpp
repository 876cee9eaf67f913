// FileManager: the FMG service, one way to files by number, on disk first and then in catalogs.
#include "files/file_manager.h"

#include <cstring>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "platform/host_file.h"

FileManager* gFMG = nullptr;

namespace {

constexpr std::int64_t kMaxPosition = 0x7FFFFFFF;

FileHandleRecord* recordAt(const CursorList& list) {
  return static_cast<FileHandleRecord*>(list.current->payload);
}

CatalogFile* catalogAt(const CursorList& list) {
  return static_cast<CatalogFile*>(list.current->payload);
}

}  // namespace

DirectoryStack::~DirectoryStack() {
  if (gMEM) memFree(data);
  data = nullptr;
}

int FileManager::Init() {
  lock.Reset();
  lock.Acquire();
  catalogs.Clear();
  openFiles.Clear();
  lock.Release();
  ResetBaseDirectory();
  SetSearchDirectory(baseDirectory);
  return 1;
}

int FileManager::ChangeDirectory(const char* directory) {
  SpinLockGuard guard(lock);
  if (!fmgSetCurrentDirectory(directory)) return 0;
  // The base directory is taken relative to the new one; at ".\" the process stays there.
  fmgSetCurrentDirectory(baseDirectory);
  return 1;
}

void FileManager::ResetBaseDirectory() {
  SpinLockGuard guard(lock);
  strCopyN(baseDirectory, ".\\", kPathSize);
}

void FileManager::SetSearchDirectory(const char* directory) {
  SpinLockGuard guard(lock);
  if (!strIsEmpty(directory)) strCopyN(searchDirectory, directory, kPathSize);
}

int FileManager::FindHandle(std::int32_t handle) {
  return openFiles.Find([handle](void* payload) {
    return static_cast<FileHandleRecord*>(payload)->handle == handle;
  });
}

int FileManager::FindCatalog(const char* path) {
  if (strIsEmpty(path)) return 0;
  return catalogs.Find([path](void* payload) {
    return strEquals(static_cast<CatalogFile*>(payload)->path, path, 0) == 1;
  });
}

CatalogFile* FileManager::FindInCatalogs(const char* name) {
  // A catalog knows bare names only: directories in the name play no part.
  char bareName[kPathSize];
  char extension[kPathSize];
  fmgRemoveFilePath(name, bareName, kPathSize);
  fmgGetFileExtension(bareName, extension, kPathSize);
  strUpper(bareName);
  strUpper(extension);
  for (catalogs.MoveFirst(); catalogs.current; catalogs.MoveNext()) {
    CatalogFile* catalog = catalogAt(catalogs);
    if (catalog && catalog->FindFile(bareName, extension)) return catalog;
  }
  return nullptr;
}

void FileManager::ReleaseRecord(FileHandleRecord* record) {
  if (record->catalog) {
    record->catalog->CloseFoundFile(record);
  } else if (record->handle != -1) {
    hostFileClose(record->handle);
  }
  memFree(record);
}

std::int32_t FileManager::AddFileHandle(std::int32_t descriptor) {
  // On failure the descriptor is closed: nobody else could ever close it.
  auto* record = static_cast<FileHandleRecord*>(memAlloc(sizeof(FileHandleRecord)));
  if (!record) {
    dbgTrace("Unable to allocate memory for file handle!");
    hostFileClose(descriptor);
    return -1;
  }
  std::memset(record, 0, sizeof *record);
  record->catalog = nullptr;
  record->handle = descriptor;
  if (!openFiles.Append(record)) {
    dbgTrace("Unable to add file handle list!");
    memFree(record);
    hostFileClose(descriptor);
    return -1;
  }
  return descriptor;
}

std::int32_t FileManager::OpenFile(const char* name) {
  SpinLockGuard guard(lock);
  if (strIsEmpty(name)) return -1;
  std::int32_t descriptor = OpenOnDisk(name);
  if (descriptor >= 0) return AddFileHandle(descriptor);

  CatalogFile* catalog = FindInCatalogs(name);
  FileHandleRecord* record = catalog ? catalog->OpenFoundFile() : nullptr;
  if (!record) {
    dbgTrace("File %s not found!", name);
    return -1;
  }
  if (!openFiles.Append(record)) {
    dbgTrace("Unable to add file handle list!");
    ReleaseRecord(record);
    dbgTrace("File %s not found!", name);
    return -1;
  }
  return record->handle;
}

void FileManager::CloseFile(std::int32_t handle) {
  SpinLockGuard guard(lock);
  if (!FindHandle(handle)) return;
  ReleaseRecord(recordAt(openFiles));
  openFiles.RemoveCurrent();
}

std::int32_t FileManager::ReadFile(std::int32_t handle, void* buffer, std::uint32_t count) {
  SpinLockGuard guard(lock);
  if (!FindHandle(handle)) return 0;
  FileHandleRecord* record = recordAt(openFiles);
  if (record->catalog) return record->catalog->ReadFoundFile(record, buffer, count);
  if (record->handle == -1) return 0;
  return hostFileRead(record->handle, buffer, count);
}

std::int32_t FileManager::SeekFile(std::int32_t handle, std::int32_t offset, std::int32_t origin) {
  SpinLockGuard guard(lock);
  if (!FindHandle(handle)) return 0;
  FileHandleRecord* record = recordAt(openFiles);
  if (record->catalog) return record->catalog->SeekFoundFile(record, offset, origin);
  if (record->handle == -1) return 0;
  std::int64_t before = hostFileSeek(record->handle, 0, 1);
  std::int64_t position = hostFileSeek(record->handle, offset, origin);
  if (position <= kMaxPosition) return static_cast<std::int32_t>(position);
  // The signed 32-bit result can't carry this position: a failure, so the file stays put.
  hostFileSeek(record->handle, before, 0);
  return -1;
}

std::int32_t FileManager::CreateFile(const char* name) {
  SpinLockGuard guard(lock);
  if (strIsEmpty(name)) return -1;
  char fullPath[kPathSize];
  fmgCheckFilePath(searchDirectory, name, fullPath, kPathSize);
  // The record and its node come first: creating empties an existing file, which must not
  // happen when the handle then can't be kept.
  auto* record = static_cast<FileHandleRecord*>(memAlloc(sizeof(FileHandleRecord)));
  if (!record) {
    dbgTrace("Unable to allocate memory for file handle!");
    return -1;
  }
  std::memset(record, 0, sizeof *record);
  record->catalog = nullptr;
  record->handle = -1;
  CursorNode* lastUsed = openFiles.current;
  std::int32_t lastUsedIndex = openFiles.index;
  if (!openFiles.Append(record)) {
    dbgTrace("Unable to add file handle list!");
    memFree(record);
    return -1;
  }
  std::int32_t descriptor = hostFileCreate(fullPath);
  if (descriptor < 0) {
    // Back to where the cursor stood before the placeholder came: a failed create uses nothing.
    openFiles.RemoveCurrent();
    openFiles.current = lastUsed;
    openFiles.index = lastUsedIndex;
    memFree(record);
    dbgTrace("Unable to create file %s!", name);
    return -1;
  }
  record->handle = descriptor;
  return descriptor;
}

std::int32_t FileManager::WriteFile(std::int32_t handle, const void* buffer, std::uint32_t count) {
  SpinLockGuard guard(lock);
  if (!FindHandle(handle)) return 0;
  FileHandleRecord* record = recordAt(openFiles);
  // Catalogs are read-only.
  if (record->catalog || record->handle == -1) return 0;
  return hostFileWrite(record->handle, buffer, count);
}

std::int32_t FileManager::OpenOnDisk(const char* name) {
  char fullPath[kPathSize];
  fmgCheckFilePath(searchDirectory, name, fullPath, kPathSize);
  return hostFileOpenRead(fullPath, HostAccess::kSequential);
}

int FileManager::FileExists(const char* name, std::int32_t diskOnly) {
  SpinLockGuard guard(lock);
  if (strIsEmpty(name)) return 0;
  std::int32_t descriptor = OpenOnDisk(name);
  if (descriptor >= 0) {
    hostFileClose(descriptor);
    return 1;
  }
  if (diskOnly) return 0;
  return FindInCatalogs(name) ? 1 : 0;
}

std::uint32_t FileManager::GetFileSize(const char* name) {
  SpinLockGuard guard(lock);
  if (strIsEmpty(name)) return 0;
  std::int32_t descriptor = OpenOnDisk(name);
  if (descriptor >= 0) {
    std::int64_t size = 0;
    hostFileStat(descriptor, &size);
    hostFileClose(descriptor);
    if (size < 0) return 0;
    return size > 0xFFFFFFFF ? 0xFFFFFFFFu : static_cast<std::uint32_t>(size);
  }
  CatalogFile* catalog = FindInCatalogs(name);
  return catalog ? catalog->GetFoundFileSize() : 0;
}

void FileManager::DestroyCurrentCatalog() {
  CatalogFile* catalog = catalogAt(catalogs);
  if (catalog->OpenFileCount > 0) DropRecordsOf(catalog);
  delete catalog;  // traces the files that were still open on it
  catalogs.RemoveCurrent();
}

void FileManager::DropRecordsOf(const CatalogFile* catalog) {
  // Files a client left open on a closing catalog go with it, so that no record points to a
  // catalog that is gone; their numbers then answer like numbers that aren't open. The cursor
  // stays on the file last used unless it was one of them.
  CursorNode* lastUsed = openFiles.current;
  openFiles.MoveFirst();
  while (openFiles.current) {
    FileHandleRecord* record = recordAt(openFiles);
    if (!record || record->catalog != catalog) {
      openFiles.MoveNext();
      continue;
    }
    if (openFiles.current == lastUsed) lastUsed = nullptr;
    bool wasTail = openFiles.current == openFiles.tail;
    memFree(record);
    openFiles.RemoveCurrent();
    if (wasTail) break;
  }
  if (!lastUsed) return;
  for (openFiles.MoveFirst(); openFiles.current != lastUsed; openFiles.MoveNext()) {
  }
}

int FileManager::OpenCatalog(const char* path) {
  SpinLockGuard guard(lock);
  if (FindCatalog(path)) {
    dbgTrace("Catalog file %s already opened...", path);
    catalogAt(catalogs)->refCount++;
    return 1;
  }
  const char* shownPath = path ? path : "";
  auto* catalog = new CatalogFile(path);
  if (!catalog) {
    dbgTrace("Unable to allocate memory for catalog file %s!", shownPath);
    return 0;
  }
  if (catalog->handle == -1) {
    dbgTrace("Error opening catalog file %s!", shownPath);
    delete catalog;
    return 0;
  }
  if (!catalogs.Append(catalog)) {
    dbgTrace("Unable to append catalog %s to the catalog list!", shownPath);
    delete catalog;
    return 0;
  }
  catalog->refCount++;
  dbgTrace("Catalog file %s opened successfully.", shownPath);
  return 1;
}

void FileManager::CloseCatalog(const char* path) {
  SpinLockGuard guard(lock);
  if (!FindCatalog(path)) return;
  CatalogFile* catalog = catalogAt(catalogs);
  catalog->refCount--;
  if (catalog->refCount >= 1) {
    dbgTrace("Catalog file %s still in use...", path);
    return;
  }
  DestroyCurrentCatalog();
}

void FileManager::CloseAllCatalogs() {
  SpinLockGuard guard(lock);
  while (catalogs.count > 0) {
    catalogs.MoveFirst();
    DestroyCurrentCatalog();
  }
}

int FileManager::PushDirectory() {
  char directory[kPathSize];
  fmgGetCurrentDirectory(directory, kPathSize);
  char* copy = strDuplicate(directory);
  if (!copy) {
    dbgTrace("Error PushDirectory - unable to allocate memory for %s", directory);
    return 0;
  }
  DirectoryStack& stack = directoryStack;
  if (!stack.data) {
    stack.count = 0;
    stack.capacity = 0;
    stack.data = static_cast<char**>(memAlloc(8 * sizeof(char*)));
    if (stack.data) {
      stack.capacity = 8;
      std::memset(stack.data, 0, 8 * sizeof(char*));
    }
  }
  if (stack.count >= stack.capacity) {
    std::int32_t doubled = stack.capacity * 2;
    char** grown = nullptr;
    if (!stack.fixed && doubled > 0 && doubled < kStackLimit) {
      grown = static_cast<char**>(memAlloc(static_cast<std::uint32_t>(doubled) * sizeof(char*)));
    }
    if (!grown) {
      dbgTrace("Error PushDirectory - unable to push directory %s", directory);
      strFree(&copy);
      return 0;
    }
    std::memset(grown, 0, static_cast<std::size_t>(doubled) * sizeof(char*));
    std::memcpy(grown, stack.data, static_cast<std::size_t>(stack.capacity) * sizeof(char*));
    memFree(stack.data);
    stack.data = grown;
    stack.capacity = doubled;
  }
  stack.data[stack.count++] = copy;
  return 1;
}

void FileManager::PopDirectory() {
  DirectoryStack& stack = directoryStack;
  if (stack.count < 1 || !stack.data) return;
  stack.count--;
  if (stack.data[stack.count]) {
    // A directory that has gone away is simply not changed to.
    fmgSetCurrentDirectory(stack.data[stack.count]);
    strFree(&stack.data[stack.count]);
  }
}

void FileManager::Shutdown() {
  SpinLockGuard guard(lock);
  while (openFiles.count > 0) {
    openFiles.MoveFirst();
    ReleaseRecord(recordAt(openFiles));
    openFiles.RemoveCurrent();
  }
  while (catalogs.count > 0) {
    catalogs.MoveFirst();
    DestroyCurrentCatalog();
  }
  fmgSetCurrentDirectory(baseDirectory);
  DirectoryStack& stack = directoryStack;
  // Dropped without changing to them: the process stays in the base directory.
  while (stack.count > 0) {
    stack.count--;
    strFree(&stack.data[stack.count]);
  }
  memFree(stack.data);
  stack.data = nullptr;
  stack.capacity = 0;
}
