// The plug-in kit: the service tables a library calls through, the registry it gets them from,
// and the two entry points it may export. A plug-in includes this one header and links nothing
// of the program: every service reaches it through InitDLL's registry.
#pragma once
#include <cstdarg>
#include <cstdint>

// An opaque handle of the window system (a window, a cursor, the program instance), and of a
// loaded library.
using HostHandle = void*;
using HostModule = void*;

struct HostRect {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

class IniFile;

// Service tables keep their operations in a fixed order, since a library compiled against an
// older header calls through the same slots. None has a virtual destructor: it would take a
// slot, and nobody but the program destroys a service.

// The registry's table, as a library receives it from InitDLL; the order is fixed.
class InterfaceTable {
 public:
  // 1: entry created. 0: the name is present already, or no memory. Names are case-sensitive;
  // an empty name makes an entry that nothing can reach.
  virtual int Register(const char* name, void* iface, std::uintptr_t owner) = 0;
  // 1: entry removed, whatever its count. 0: no such name.
  virtual int Unregister(const char* name) = 0;
  // 1: count raised and *var set to the interface. 0: not found, *var untouched.
  virtual int Get(const char* name, void** var) = 0;
  // 1: count lowered (it may fall below 0) and *var set to null. 0: *var already null, or not
  // found; *var untouched.
  virtual int Release(const char* name, void** var) = 0;
  // 0 if an entry of this non-zero owner has a count above 0, else 1.
  virtual int CanFreeOwner(std::uintptr_t owner) = 0;

 protected:
  ~InterfaceTable() = default;
};

// The MEM service table. Libraries call through it, so the order is fixed and the two reserved
// operations keep their places.
class MemoryInterface {
 public:
  // Returns a block of at least `size` bytes, not cleared; null for a size of 0 or no memory.
  // The three further words are accepted and ignored.
  virtual void* Alloc(std::uint32_t size, std::uint32_t a, std::uint32_t b, std::uint32_t tag) = 0;
  // Gives a block back; null is ignored.
  virtual void Free(void* block) = 0;
  virtual void ReservedA(std::uint32_t word) = 0;
  virtual void Compact() = 0;
  virtual void ReservedB(std::uint32_t word) = 0;

 protected:
  ~MemoryInterface() = default;
};

// The DBG service table; libraries call through it, so the order is fixed.
class DebugInterface {
 public:
  // Level 0 "TRC", 1 "MSG", 2 "WRN", 3 "ERR", 4 "OFF". Writes nothing unless active, the
  // threshold is below 4 and the level is at least the threshold.
  virtual void Trace(int level, const char* format, ...) = 0;
  // Formats one line "%s|(%s) %s\n" (or "%s|%s\n" for a null tag) and writes it to the stream.
  virtual void TraceTagged(const char* tag, int level, const char* format, va_list args) = 0;
  virtual void TraceList(int level, const char* format, va_list args) = 0;
  virtual void SetThreshold(int level) = 0;
  // Mode 1 opens and closes the file for each line; any other mode leaves the stream alone.
  virtual void SetMode(int mode) = 0;

 protected:
  ~DebugInterface() = default;
};

// The DLL service table; libraries call through it, so the order is fixed.
class DllInterface {
 public:
  // The directory searched for names without one; an empty or null path restores ".\".
  virtual void SetLibraryPath(const char* path) = 0;
  virtual const char* GetLibraryPath() = 0;
  // 1: loaded now (InitDLL has run), or already loaded (count raised). 0: it could not be
  // loaded. Names compare case-sensitively; a name without an extension gets ".DLL".
  virtual int LoadDll(const char* name) = 0;
  // 1: count lowered, or the library unloaded. 0: not loaded, or it stays because an interface
  // it registered still has references (the count stays lowered).
  virtual int FreeDll(const char* name) = 0;
  // Unloads every library none of whose interfaces has references, whatever its count. 0.
  virtual int FreeAll() = 0;

 protected:
  ~DllInterface() = default;
};

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

// The RND service table; libraries call through it, so the order is fixed. Every draw takes
// the next table value (shared by all three kinds) and the sequence repeats after 4096 draws.
class RandomInterface {
 public:
  // Refills the table from the seed and starts the sequence anew.
  virtual void SetSeed(std::uint32_t seed) = 0;
  virtual std::uint32_t GetSeed() = 0;
  // From 0 up to 32767/32768 of the scale.
  virtual float NextFloat(float scale) = 0;
  // For a range n from 1 to 32768, 0 to n - 1; truncated towards zero for any range.
  virtual std::int32_t NextInt(std::int32_t range) = 0;
  // From 0 to 32766.
  virtual std::int32_t NextShort() = 0;

 protected:
  ~RandomInterface() = default;
};

// The CLK service table; libraries call through it, so the order is fixed. Every operation
// holds the lock throughout, the waits included. The getters give what the last tick stored.
class ClockInterface {
 public:
  // Starts the time base anew and ticks, so it returns after one frame period.
  virtual void Reset() = 0;
  // The shortest time between two ticks, from the next tick on.
  virtual void SetPeriod(std::uint32_t milliseconds) = 0;
  virtual std::uint32_t GetElapsed() = 0;
  virtual float GetElapsedSeconds() = 0;
  // Spins until a frame period has passed since the last tick, then stores the times.
  virtual void Tick() = 0;
  virtual std::uint32_t GetInterval() = 0;
  virtual float GetIntervalSeconds() = 0;
  // Frames per second of the last interval; -1 after an interval of 0.
  virtual float GetFrameRate() = 0;
  // Spins until `milliseconds` have passed since the last tick (not since the call).
  virtual void Delay(std::uint32_t milliseconds) = 0;

 protected:
  ~ClockInterface() = default;
};

// The OPT service table; libraries call through it, so the order is fixed.
class OptionsInterface {
 public:
  // Closes the open file unwritten, then reads `name` into a new IniFile that adds a missing
  // key with its default when it is read. A file that can't be read gives an empty one; no
  // memory leaves no file open.
  virtual void OpenOptions(const char* name) = 0;
  // 1 and *file set to the open file; 0 with *file untouched when none is open. The pointer
  // goes stale at the next OpenOptions: no count protects a holder.
  virtual int GetOptions(IniFile** file) = 0;

 protected:
  ~OptionsInterface() = default;
};

// The APP service table; libraries call through it, so the order is fixed and the two reserved
// operations keep their places. The window operations act on the program's main window.
class ApplicationInterface {
 public:
  // Dispatches queued messages: while active until the queue is empty, while inactive waiting
  // for each. 0 when the quit message was dispatched, 1 otherwise.
  virtual int PumpMessages() = 0;
  virtual int IsActive() = 0;
  // Active: the window up and the cursor hidden; inactive: minimised and the cursor shown.
  // Nothing happens when the flag equals the current state.
  virtual void SetActive(int active) = 0;
  // The working directory at bring-up; the same buffer on every call.
  virtual const char* GetWorkingDirectory() = 0;
  virtual void SetUserValue(std::int32_t value) = 0;
  virtual std::int32_t GetUserValue() = 0;
  // Focuses, raises and maximises the main window.
  virtual void ActivateWindow() = 0;
  // Places the main window above all others and shows it.
  virtual void PlaceWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                           std::int32_t height) = 0;
  virtual void GetWindowBounds(HostRect* rect) = 0;
  virtual void MinimizeWindow() = 0;
  // Shows or hides the cursor with one call, whatever the display count was.
  virtual void ShowMouseCursor(int show) = 0;
  // Stores a copy of the text; longer texts are cut to the buffer's 1023 bytes.
  virtual void SetText(const char* text) = 0;
  // 1 once SetText ran, also with an empty text.
  virtual int HasText() = 0;
  virtual void SetWindowHandle(HostHandle window) = 0;
  virtual HostHandle GetWindowHandle() = 0;
  virtual void SetInstanceHandle(HostHandle instance) = 0;
  virtual HostHandle GetInstanceHandle() = 0;
  virtual void ReservedA() = 0;
  virtual void ReservedB() = 0;

 protected:
  ~ApplicationInterface() = default;
};

// Get and Release through a typed pointer variable.
template <typename T>
int imGet(InterfaceTable* registry, const char* name, T** var) {
  void* untyped = *var;
  int result = registry->Get(name, &untyped);
  *var = static_cast<T*>(untyped);
  return result;
}

template <typename T>
int imRelease(InterfaceTable* registry, const char* name, T** var) {
  void* untyped = *var;
  int result = registry->Release(name, &untyped);
  *var = static_cast<T*>(untyped);
  return result;
}

// The optional exports of a plug-in library. The program calls InitDLL once after the load,
// with the library's module handle (the owner to give for interfaces it registers) and the
// registry, and ExitDLL once before the unload. Both results are ignored. Neither may call the
// DLL service: its lock is held around them.
#define TESSARINE_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
TESSARINE_PLUGIN_EXPORT int InitDLL(HostModule module, InterfaceTable* registry);
TESSARINE_PLUGIN_EXPORT int ExitDLL();

extern "C" {
using InitDllFunction = int (*)(HostModule module, InterfaceTable* registry);
using ExitDllFunction = int (*)();
}
