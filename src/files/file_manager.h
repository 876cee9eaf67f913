// FileManager: the FMG service, one way to files by number, on disk first and then in catalogs.
#pragma once
#include <cstdint>

#include "base/cursor_list.h"
#include "base/spin_lock.h"
#include "files/catalog_file.h"

// The FMG service table. Libraries call through it, so the order is fixed; new operations go at
// the end. Paths are backslash paths; names without a backslash are looked for in the search
// directory. Handle numbers are unique only within their source (disk, or one catalog).
class FileInterface {
 public:
  // Changes the process's working directory to `directory`, then to the base directory relative
  // to it. 1 done, 0 if `directory` couldn't be entered.
  virtual int ChangeDirectory(const char* directory) = 0;
  // Closes every catalog whoever holds it.
  virtual void CloseAllCatalogs() = 0;
  // Opens the catalog at `path` as given (no search directory, no default extension), or counts
  // one more holder of it if that text (case aside) is open already. 1 open, 0 failed.
  virtual int OpenCatalog(const char* path) = 0;
  // Lets go of one hold on the catalog opened as `path`; the last hold closes it. Clients close
  // the catalog's files first.
  virtual void CloseCatalog(const char* path) = 0;
  // Opens a file for reading: from disk if it is there, else from the first catalog, in order
  // of opening, that holds its bare name. A handle number, or -1.
  virtual std::int32_t OpenFile(const char* name) = 0;
  // Closes an open handle; a number that isn't open is ignored.
  virtual void CloseFile(std::int32_t handle) = 0;
  // Bytes read (a catalog file never past its entry's end), 0 at the end or for a number that
  // isn't open, -1 on a read error.
  virtual std::int32_t ReadFile(std::int32_t handle, void* buffer, std::uint32_t count) = 0;
  // Origin 0 start, 1 current, 2 end (a catalog file ignores 2 and stays). The new position,
  // which for a catalog file is a position in the catalog file; 0 for a number that isn't open;
  // -1 on an error.
  virtual std::int32_t SeekFile(std::int32_t handle, std::int32_t offset, std::int32_t origin) = 0;
  // Creates (or empties) a file on disk for writing, read and write for all under the umask.
  // A handle number, or -1.
  virtual std::int32_t CreateFile(const char* name) = 0;
  // Bytes written, 0 for a number that isn't open or a catalog file, -1 on a write error.
  virtual std::int32_t WriteFile(std::int32_t handle, const void* buffer, std::uint32_t count) = 0;
  // 1 if the file can be opened for reading; with diskOnly 0 catalogs count too.
  virtual int FileExists(const char* name, std::int32_t diskOnly) = 0;
  // Size in bytes of the file OpenFile would open; 0 if there is none (or it is empty).
  // 0xFFFFFFFF for a disk file of 4 GiB or more.
  virtual std::uint32_t GetFileSize(const char* name) = 0;
  // The base directory becomes ".\".
  virtual void ResetBaseDirectory() = 0;
  // A non-empty directory becomes the search directory (cut to 259 bytes).
  virtual void SetSearchDirectory(const char* directory) = 0;
  // Saves the working directory on a stack. 1 pushed, 0 failed. Not locked: one thread only.
  virtual int PushDirectory() = 0;
  // Returns to the directory of the latest push and drops it; an empty stack does nothing.
  // Not locked: one thread only.
  virtual void PopDirectory() = 0;

 protected:
  ~FileInterface() = default;
};

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
};

// Set by the kernel's bring-up to the one FileManager; null before and after.
extern FileManager* gFMG;
