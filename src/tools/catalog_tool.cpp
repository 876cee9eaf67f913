// tessarine-catalog: lists, extracts and creates catalog archives with the kernel's own code.
#include "tools/catalog_tool.h"

#include <cstring>
#include <vector>

#include "base/debug_system.h"
#include "base/memory_manager.h"
#include "base/path_util.h"
#include "base/string_util.h"
#include "files/catalog_writer.h"
#include "platform/host_file.h"
#include "tools/tool_kernel.h"

namespace {

constexpr char kProgram[] = "tessarine-catalog";
constexpr int kPathSize = kHostPathSize;
constexpr std::uint32_t kCopyBufferSize = 1 << 20;

const char kUsageText[] =
    "Usage: tessarine-catalog list [--long] CATALOG\n"
    "       tessarine-catalog extract CATALOG [NAME...] [-C DIR]\n"
    "       tessarine-catalog create CATALOG FILE...\n"
    "\n"
    "list     prints every stored file with its size and offset, in table order, and the\n"
    "         extension table; --long adds whether the kernel can find each file.\n"
    "extract  writes the stored files (all, or the NAMEs given, in any case) into DIR,\n"
    "         the working directory by default, under their stored upper-case names.\n"
    "create   packs the FILEs, in the order given, under their upper-case base names.\n"
    "\n"
    "Exit status: 0 done, 1 failed, 2 wrong usage.\n";

struct Command {
  const char* name = nullptr;
  bool longList = false;
  const char* directory = nullptr;
  std::vector<const char*> operands;
};

CatalogFileHeader* entryAt(CatalogFile* catalog, std::int32_t index) {
  return static_cast<CatalogFileHeader*>(catalog->headerList.data[index]);
}

// The reader takes the tables only; a stored file cut off by the file's end, or sizes gone
// wrong through offsets out of order, show here.
bool entriesWithinFile(CatalogFile* catalog, const char* shownPath, std::FILE* err) {
  std::int64_t fileSize = 0;
  hostFileStat(catalog->handle, &fileSize);
  for (std::int32_t i = 0; i < catalog->headerList.count; i++) {
    CatalogFileHeader* entry = entryAt(catalog, i);
    std::uint64_t end = std::uint64_t{entry->offset} + entry->size;
    if (end > static_cast<std::uint64_t>(fileSize)) {
      std::fprintf(err,
                   "%s: %s is not a whole catalog: %s (entry %d) ends at byte %llu, past the "
                   "file's end at %lld\n",
                   kProgram, shownPath, entry->name, i, static_cast<unsigned long long>(end),
                   static_cast<long long>(fileSize));
      return false;
    }
  }
  return true;
}

// Opens the catalog at the host path `argument` through gFMG, its system path in `path`. The
// catalog, or null with the reader's reason on `err`.
CatalogFile* openCatalog(const char* argument, char* path, std::FILE* err) {
  if (!toolSystemPath(kProgram, argument, path, err)) return nullptr;
  // Stored files are read as the program reads them, but no loose file may stand in for one.
  gFMG->SetSearchDirectory(kHostNoFileDirectory);
  char reason[DebugSystem::kLineSize];
  int opened;
  {
    ToolTraceCapture traces;
    opened = gFMG->OpenCatalog(path);
    traces.FirstMessage(reason, sizeof reason);
  }
  if (!opened) {
    std::fprintf(err, "%s: %s\n", kProgram, reason[0] ? reason : "can't open the catalog");
    return nullptr;
  }
  gFMG->catalogs.MoveFirst();
  auto* catalog = static_cast<CatalogFile*>(gFMG->catalogs.current->payload);
  if (entriesWithinFile(catalog, argument, err)) return catalog;
  gFMG->CloseCatalog(path);
  return nullptr;
}

// Why the kernel, asked for the entry's own name, would not reach this entry; null if it would.
const char* hiddenReason(CatalogFile* catalog, std::int32_t index) {
  const char* name = entryAt(catalog, index)->name;
  if (strIsEmpty(name)) return "its name is empty";
  char bareName[kPathSize];
  char extension[kPathSize];
  fmgRemoveFilePath(name, bareName, kPathSize);
  fmgGetFileExtension(bareName, extension, kPathSize);
  if (std::strcmp(bareName, name) != 0) return "its name holds a directory";
  if (strIsEmpty(extension)) return "its name has no extension";
  SpinLockGuard guard(gFMG->lock);
  if (!catalog->FindFile(bareName, extension)) return "its extension is not in the extension table";
  if (catalog->headerList.current != index) return "an earlier entry has the same name";
  return nullptr;
}

// The entry the kernel finds for `name` (any case, with its extension), or -1.
std::int32_t findEntry(CatalogFile* catalog, const char* name) {
  if (strnlen(name, kPathSize) >= static_cast<std::size_t>(kPathSize)) return -1;
  char upper[kPathSize];
  char extension[kPathSize];
  strCopyN(upper, name, kPathSize);
  strUpper(upper);
  fmgGetFileExtension(upper, extension, kPathSize);
  SpinLockGuard guard(gFMG->lock);
  return catalog->FindFile(upper, extension) ? catalog->headerList.current : -1;
}

int list(const char* argument, bool longList, std::FILE* out, std::FILE* err) {
  char path[kPathSize];
  CatalogFile* catalog = openCatalog(argument, path, err);
  if (!catalog) return kToolFailed;
  if (longList) {
    std::fprintf(out, "%10s %10s  %-5s %s\n", "SIZE", "OFFSET", "FOUND", "NAME");
  } else {
    std::fprintf(out, "%10s %10s  %s\n", "SIZE", "OFFSET", "NAME");
  }
  for (std::int32_t i = 0; i < catalog->headerList.count; i++) {
    CatalogFileHeader* entry = entryAt(catalog, i);
    std::fprintf(out, "%10u %10u  ", entry->size, entry->offset);
    const char* hidden = longList ? hiddenReason(catalog, i) : nullptr;
    if (longList) std::fprintf(out, "%-5s ", hidden ? "no" : "yes");
    if (hidden) {
      std::fprintf(out, "%s  (%s)\n", entry->name, hidden);
    } else {
      std::fprintf(out, "%s\n", entry->name);
    }
  }
  std::fprintf(out, "%d files, %u bytes of data\nextensions:", catalog->headerList.count,
               catalog->header.dataSize);
  for (std::int32_t i = 0; i < catalog->extensionList.count; i++)
    std::fprintf(out, " %s", static_cast<const char*>(catalog->extensionList.data[i]));
  std::fputs("\n", out);
  gFMG->CloseCatalog(path);
  return kToolOk;
}

// DIR\NAME in `target`; false if it doesn't fit a system path.
bool targetPath(const char* directory, const char* name, char* target) {
  std::size_t directoryLength = std::strlen(directory);
  bool separator = directoryLength > 0 && directory[directoryLength - 1] != '\\';
  if (directoryLength + separator + std::strlen(name) >= static_cast<std::size_t>(kPathSize))
    return false;
  std::snprintf(target, kPathSize, "%s%s%s", directory, separator ? "\\" : "", name);
  return true;
}

// Why the entry can't be written into the directory, or null. A name that the kernel reaches and
// that holds no `/` is one plain file name in DIR: nothing outside DIR can be reached by it.
const char* unextractableReason(CatalogFile* catalog, std::int32_t index, const char* directory) {
  if (const char* hidden = hiddenReason(catalog, index)) return hidden;
  const char* name = entryAt(catalog, index)->name;
  if (std::strchr(name, '/')) return "its name holds a directory";
  char target[kPathSize];
  if (!targetPath(directory, name, target)) return "the path in the target directory is too long";
  return nullptr;
}

// Reads the entry through gFMG into a new file of its name in the directory. Where that name is
// taken, the bytes go to a new temporary file renamed into place when complete, so that a link
// of that name is replaced rather than followed.
bool extractOne(CatalogFileHeader* entry, const char* directory, char* buffer, std::FILE* err) {
  char target[kPathSize];
  char temporary[kPathSize];
  char shown[kPathSize];
  targetPath(directory, entry->name, target);
  hostPathFromSystem(target, shown, kPathSize);
  std::int32_t handle = gFMG->OpenFile(entry->name);
  if (handle == -1) {
    std::fprintf(err, "%s: %s: can't read the stored file\n", kProgram, entry->name);
    return false;
  }
  std::int32_t descriptor = hostFileCreateNew(target);
  bool replacing = descriptor < 0;
  if (replacing) {
    descriptor = hostFileCreateTemporary(target, temporary);
  } else {
    std::memcpy(temporary, target, sizeof temporary);
  }
  const char* failure = descriptor < 0 ? "can't create a file in the target directory" : nullptr;
  std::uint64_t copied = 0;
  for (std::int32_t got;
       !failure && (got = gFMG->ReadFile(handle, buffer, kCopyBufferSize)) != 0;) {
    if (got < 0) {
      failure = "can't read the stored file";
    } else if (hostFileWrite(descriptor, buffer, static_cast<std::uint32_t>(got)) != got) {
      failure = "can't write the file";
    }
    copied += got > 0 ? static_cast<std::uint64_t>(got) : 0;
  }
  gFMG->CloseFile(handle);
  if (!failure && copied != entry->size) failure = "the stored file ended early";
  if (descriptor >= 0 && hostFileClose(descriptor) != 0 && !failure)
    failure = "can't write the file";
  if (!failure && replacing && hostFileRename(temporary, target) != 0)
    failure = "can't write the file";
  if (!failure) return true;
  if (descriptor >= 0) hostFileRemove(temporary);
  std::fprintf(err, "%s: %s: %s\n", kProgram, shown, failure);
  return false;
}

int extract(const char* argument, const std::vector<const char*>& names,
            const char* directoryArgument, std::FILE* err) {
  char directory[kPathSize];
  if (!toolSystemPath(kProgram, directoryArgument ? directoryArgument : ".", directory, err))
    return kToolFailed;
  char path[kPathSize];
  CatalogFile* catalog = openCatalog(argument, path, err);
  if (!catalog) return kToolFailed;
  // Every name and entry is checked before the first byte is written.
  std::vector<char> chosen(catalog->headerList.count, names.empty());
  bool ready = true;
  for (const char* name : names) {
    std::int32_t index = findEntry(catalog, name);
    if (index >= 0) {
      chosen[index] = 1;
      continue;
    }
    std::fprintf(err, "%s: %s: not in %s\n", kProgram, name, argument);
    ready = false;
  }
  for (std::int32_t i = 0; i < catalog->headerList.count; i++) {
    const char* reason = chosen[i] ? unextractableReason(catalog, i, directory) : nullptr;
    if (!reason) continue;
    std::fprintf(err, "%s: %s: not extracted: %s\n", kProgram, entryAt(catalog, i)->name, reason);
    ready = false;
  }
  auto* buffer = ready ? static_cast<char*>(memAlloc(kCopyBufferSize)) : nullptr;
  if (ready && !buffer) std::fprintf(err, "%s: out of memory\n", kProgram);
  bool done = buffer != nullptr;
  for (std::int32_t i = 0; done && i < catalog->headerList.count; i++) {
    if (chosen[i]) done = extractOne(entryAt(catalog, i), directory, buffer, err);
  }
  memFree(buffer);
  gFMG->CloseCatalog(path);
  return done ? kToolOk : kToolFailed;
}

int create(const char* argument, const std::vector<const char*>& files, std::FILE* err) {
  char catalogPath[kPathSize];
  if (!toolSystemPath(kProgram, argument, catalogPath, err)) return kToolFailed;
  CatalogWriter writer;
  // Every file is checked, and every refusal named, before anything is written.
  bool ready = true;
  for (const char* file : files) {
    char path[kPathSize];
    if (!toolSystemPath(kProgram, file, path, err)) {
      ready = false;
      continue;
    }
    CatalogWriteStatus status = writer.Add(path);
    if (status != CatalogWriteStatus::kOk) {
      std::fprintf(err, "%s: %s: %s\n", kProgram, file, catalogWriteMessage(status));
      ready = false;
    }
  }
  if (!ready) return kToolFailed;
  CatalogWriteStatus status = writer.Write(catalogPath);
  if (status == CatalogWriteStatus::kOk) return kToolOk;
  char shown[kPathSize];
  hostPathFromSystem(writer.failedName, shown, kPathSize);
  std::fprintf(err, "%s: %s: %s\n", kProgram, shown, catalogWriteMessage(status));
  return kToolFailed;
}

// The command line after the program's name; false for one that can't be run.
bool parse(int argc, char** argv, Command* command) {
  if (argc < 2) return false;
  command->name = argv[1];
  bool list = std::strcmp(argv[1], "list") == 0;
  bool extract = std::strcmp(argv[1], "extract") == 0;
  bool options = true;
  for (int i = 2; i < argc; i++) {
    const char* argument = argv[i];
    if (options && std::strcmp(argument, "--") == 0) {
      options = false;
    } else if (options && list && std::strcmp(argument, "--long") == 0) {
      command->longList = true;
    } else if (options && extract && std::strcmp(argument, "-C") == 0) {
      if (i + 1 >= argc || command->directory) return false;
      command->directory = argv[++i];
    } else if (options && argument[0] == '-' && argument[1] != '\0') {
      return false;
    } else {
      command->operands.push_back(argument);
    }
  }
  std::size_t count = command->operands.size();
  return (list && count == 1) || (extract && count >= 1) ||
         (std::strcmp(argv[1], "create") == 0 && count >= 2);
}

int run(const Command& command, std::FILE* out, std::FILE* err) {
  const char* catalog = command.operands[0];
  std::vector<const char*> rest(command.operands.begin() + 1, command.operands.end());
  if (std::strcmp(command.name, "list") == 0) return list(catalog, command.longList, out, err);
  if (std::strcmp(command.name, "extract") == 0)
    return extract(catalog, rest, command.directory, err);
  return create(catalog, rest, err);
}

}  // namespace

int CatalogMain(int argc, char** argv, std::FILE* out, std::FILE* err) {
  if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
    std::fputs(kUsageText, out);
    return kToolOk;
  }
  if (argc == 2 && std::strcmp(argv[1], "--version") == 0) {
    std::fputs("tessarine-catalog " TESS_VERSION "\n", out);
    return kToolOk;
  }
  Command command;
  if (!parse(argc, argv, &command)) {
    std::fputs(kUsageText, err);
    return kToolUsage;
  }
  return toolWithKernel(kProgram, [&] { return run(command, out, err); }, err);
}
