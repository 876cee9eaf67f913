// FileManager: the FMG service, one way to files by number, on disk first and then in catalogs.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

#include "base/cursor_list.h"
#include "base/spin_lock.h"
#include "files/catalog_file.h"

// The directory stack: a GrowArray's storage fields without a cursor. Owns its strings.
struct DirectoryStack {
  DirectoryStack() = default;
  // Frees the slots; while gMEM is null (the heap is gone with them) only drops the pointer.
  ~DirectoryStack();
  DirectoryStack(const DirectoryStack&) = delete;
  DirectoryStack& operator=(const DirectoryStack&) = delete;

  std::int32_t count = 0;
  std::int32_t capacity = 0;
  std::int32_t fixed = 0;
  char** data = nullptr;
};

class FileManager : public FileInterface {
 public:
  static constexpr int kPathSize = 260;
  // The stack refuses to grow to this many slots or more.
  static constexpr std::int32_t kStackLimit = 32767;

  FileManager() = default;
  FileManager(const FileManager&) = delete;
  FileManager& operator=(const FileManager&) = delete;

  int ChangeDirectory(const char* directory) override;
  void CloseAllCatalogs() override;
  int OpenCatalog(const char* path) override;
  void CloseCatalog(const char* path) override;
  std::int32_t OpenFile(const char* name) override;
  void CloseFile(std::int32_t handle) override;
  std::int32_t ReadFile(std::int32_t handle, void* buffer, std::uint32_t count) override;
  std::int32_t SeekFile(std::int32_t handle, std::int32_t offset, std::int32_t origin) override;
  std::int32_t CreateFile(const char* name) override;
  std::int32_t WriteFile(std::int32_t handle, const void* buffer, std::uint32_t count) override;
  int FileExists(const char* name, std::int32_t diskOnly) override;
  std::uint32_t GetFileSize(const char* name) override;
  void ResetBaseDirectory() override;
  void SetSearchDirectory(const char* directory) override;
  int PushDirectory() override;
  void PopDirectory() override;

  // Bring-up: empty lists, both directories ".\". Returns 1.
  int Init();
  // Closes every file and catalog still open, returns to the base directory and drops the
  // directory stack without changing to its directories.
  void Shutdown();

  char baseDirectory[kPathSize] = {};
  char searchDirectory[kPathSize] = {};
  // CatalogFile pointers in order of opening, which is the order of search.
  CursorList catalogs;
  // FileHandleRecord pointers of every open file.
  CursorList openFiles;
  DirectoryStack directoryStack;
  SpinLock lock{0, 5};

 private:
  // The name in the search directory opened for reading: a descriptor, or -1.
  std::int32_t OpenOnDisk(const char* name);
  std::int32_t AddFileHandle(std::int32_t descriptor);
  int FindHandle(std::int32_t handle);
  int FindCatalog(const char* path);
  CatalogFile* FindInCatalogs(const char* name);
  void ReleaseRecord(FileHandleRecord* record);
  void DestroyCurrentCatalog();
  void DropRecordsOf(const CatalogFile* catalog);
};

// Set by the kernel's bring-up to the one FileManager; null before and after.
extern FileManager* gFMG;
