// Tests of the FileManager through gFMG: lookup order, handles, reads, seeks, messages, threads.
#include "files/file_manager.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "catalog_bytes.h"
#include "kernel_fixture.h"
#include "packed_catalog.h"
#include "platform/host_heap.h"

namespace {

// Reads a handle of gFMG to its end in chunks of `chunk` bytes.
std::string readToEnd(std::int32_t handle, std::uint32_t chunk = 7) {
  std::string bytes;
  char buffer[64];
  for (std::int32_t got; (got = gFMG->ReadFile(handle, buffer, chunk)) > 0;)
    bytes.append(buffer, got);
  return bytes;
}

int openDescriptors() {
  using std::filesystem::directory_iterator;
  return static_cast<int>(std::distance(directory_iterator("/proc/self/fd"), directory_iterator()));
}

class FileManagerTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    gFMG->SetSearchDirectory(dirText_.c_str());
  }
  void TearDown() override {
    gFMG->CloseAllCatalogs();
    if (gFMG->directoryStack.data) blocksAtStart_++;  // the stack keeps its slots until shutdown
    KernelTest::TearDown();
  }
  // The system path of a file in the test's directory.
  std::string At(const std::string& name) const { return dirText_ + "\\" + name; }
  template <typename Catalog>
  void OpenCatalog(const std::string& name, const Catalog& writer) {
    writer.WriteTo(dir_.file(name));
    ASSERT_EQ(gFMG->OpenCatalog(At(name).c_str()), 1) << name;
  }
  static std::string ReadName(const char* name) {
    std::int32_t handle = gFMG->OpenFile(name);
    if (handle == -1) return "<not found>";
    std::string bytes = readToEnd(handle);
    gFMG->CloseFile(handle);
    return bytes;
  }

  TempDir dir_;
  std::string dirText_ = systemPath(dir_.path());
};

class FileManagerThreads : public FileManagerTest {};

}  // namespace

TEST_F(FileManagerTest, LooseFilesFirstThenCatalogsInOrderOfOpening) {
  OpenCatalog("1.cat", PackedCatalog().Add("X.DAT", "one").Add("gun.ini", "packed"));
  OpenCatalog("2.cat", PackedCatalog().Add("x.dat", "two").Add("Y.DAT", "why"));
  writeWholeFile(dir_.file("gun.ini"), "loose");
  EXPECT_EQ(ReadName("gun.ini"), "loose");
  std::filesystem::remove(dir_.file("gun.ini"));
  EXPECT_EQ(ReadName("GUN.INI"), "packed");
  EXPECT_EQ(ReadName("c:\\x\\gun.ini"), "packed") << "directories play no part in a catalog";
  EXPECT_EQ(ReadName("x.dat"), "one");
  EXPECT_EQ(ReadName("y.dat"), "why");
  gFMG->CloseCatalog(At("1.cat").c_str());
  EXPECT_EQ(ReadName("x.dat"), "two");
}

TEST_F(FileManagerTest, HandlesCountFromOnePerCatalogAndReadsAlternate) {
  const std::string big = "ABCDEFGHIJKLMNOPQRSTUVWXYZ", small = "0123456789";
  OpenCatalog("1.cat", PackedCatalog().Add("BIG.TXT", big).Add("SMALL.TXT", small));
  OpenCatalog("2.cat", PackedCatalog().Add("OTHER.TXT", "other"));
  std::int32_t a = gFMG->OpenFile("big.txt"), b = gFMG->OpenFile("small.txt");
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 2);
  EXPECT_EQ(gFMG->OpenFile("other.txt"), 1) << "each catalog counts from 1";
  gFMG->CloseFile(1);  // the file last opened answers first
  // Far more is asked than BIG.TXT holds: a read past its end would get SMALL.TXT's bytes.
  std::string readA, readB;
  char buffer[8];
  for (int round = 0; round < 20; round++) {
    readA.append(buffer, std::max(gFMG->ReadFile(a, buffer, 3), 0));
    readB.append(buffer, std::max(gFMG->ReadFile(b, buffer, 2), 0));
  }
  EXPECT_EQ(readA, big);
  EXPECT_EQ(readB, small);
  gFMG->CloseFile(a);
  EXPECT_EQ(gFMG->OpenFile("big.txt"), 3) << "numbers are not reused";
}

TEST_F(FileManagerTest, CatalogFilesSeekFromTheirEntryAndIgnoreOriginTwo) {
  PackedCatalog writer = PackedCatalog().Add("PAD.BIN", "pppp").Add("S.BIN", "0123456789");
  OpenCatalog("s.cat", writer);
  // Positions are those of the catalog file.
  const auto start = static_cast<std::int32_t>(writer.Bytes().find("0123456789"));
  std::int32_t handle = gFMG->OpenFile("s.bin"), pad = gFMG->OpenFile("pad.bin");
  char buffer[16];
  EXPECT_EQ(gFMG->SeekFile(handle, 4, 0), start + 4);
  EXPECT_EQ(gFMG->ReadFile(handle, buffer, 2), 2);
  EXPECT_EQ(gFMG->ReadFile(pad, buffer, 1), 1);
  EXPECT_EQ(gFMG->SeekFile(handle, -3, 1), start + 3);
  EXPECT_EQ(gFMG->ReadFile(pad, buffer, 3), 3);
  EXPECT_EQ(std::string(buffer, 3), "ppp") << "after a seek of another file, PAD.BIN seeks back";
  EXPECT_EQ(gFMG->SeekFile(handle, 5, 2), start + 3) << "origin 2 stays where it is";
  EXPECT_EQ(gFMG->SeekFile(handle, -4, 1), -1) << "before the entry: refused, nothing moves";
  EXPECT_EQ(readToEnd(handle), "3456789");
  EXPECT_EQ(gFMG->SeekFile(handle, 0, 0), start);
  EXPECT_EQ(gFMG->SeekFile(handle, 20, 0), start + 20);
  EXPECT_EQ(gFMG->ReadFile(handle, buffer, 16), 0) << "nothing past the entry's end";
}

TEST_F(FileManagerTest, TracesTheDocumentedMessages) {
  writeWholeFile(dir_.file("disk.dat"), "disk");
  writeWholeFile(dir_.file("bad.cat"), "NOT A CATALOG AT ALL, NOT EVEN CLOSE");
  std::filesystem::create_directory(dir_.file("folder.dat"));
  PackedCatalog().Add("Q.DAT", "q").WriteTo(dir_.file("q.cat"));
  OpenCatalog("p.cat", RawCatalog().Add("P.DAT", "packed").Add("noext", "x"));
  const std::string cwd = systemPath(std::filesystem::current_path()), p = At("p.cat"),
                    upper = At("P.CAT"), q = At("q.cat"), bad = At("bad.cat"),
                    missing = At("missing.cat");
  auto open = [](std::string path) { return [=] { return gFMG->OpenCatalog(path.c_str()); }; };
  auto close = [](std::string path) { return [=] { return gFMG->CloseCatalog(path.c_str()), 0; }; };
  auto openFile = [](const char* name) { return [=] { return gFMG->OpenFile(name); }; };
  auto create = [](const char* name) { return [=] { return gFMG->CreateFile(name); }; };
  auto fillStack = [] {
    while (gFMG->directoryStack.count < 16384) gFMG->PushDirectory();
    int pushed = gFMG->PushDirectory();
    while (gFMG->directoryStack.count > 0) gFMG->PopDirectory();
    return pushed;
  };
  // In order: each row starts where the one before left off.
  struct Row {
    const char* name;
    int failNth;  // the allocation that fails; 0 for none
    std::function<int()> act;
    int result;
    std::string trace;  // its lines, each without its "MSG|"
  } rows[] = {
      {"no extension", 0, openFile("noext"), -1, "File noext not found!"},
      {"a directory in the way", 0, create("folder.dat"), -1, "Unable to create file folder.dat!"},
      {"other case", 0, open(upper), 1, "Catalog file " + upper + " already opened..."},
      {"one hold left", 0, close(p), 0, "Catalog file " + p + " still in use..."},
      {"missing catalog", 0, open(missing), 0,
       "Unable to open catalog file " + missing + "!\nError opening catalog file " + missing + "!"},
      {"not a catalog", 0, open(bad), 0,
       bad + " is not a catalog file!\nError opening catalog file " + bad + "!"},
      // The open file goes with its catalog.
      {"closed with a file open", 0,
       [&] { return open(q)() + gFMG->OpenFile("q.dat") + close(q)(); }, 2,
       "Catalog file " + q + " opened successfully.\nCatalog file " + q +
           " is still in use! (OpenFileCount = 1)"},
      {"closed after its file", 0,
       [&] {
         int opened = open(q)();
         gFMG->CloseFile(gFMG->OpenFile("q.dat"));
         return opened + close(q)();
       },
       1, "Catalog file " + q + " opened successfully."},
      // No memory, from here on.
      {"disk record", 1, openFile("disk.dat"), -1, "Unable to allocate memory for file handle!"},
      {"disk node", 2, openFile("disk.dat"), -1, "Unable to add file handle list!"},
      {"packed record", 1, openFile("p.dat"), -1, "File p.dat not found!"},
      {"packed node", 2, openFile("p.dat"), -1,
       "Unable to add file handle list!\nFile p.dat not found!"},
      {"created record", 1, create("disk.dat"), -1, "Unable to allocate memory for file handle!"},
      {"created node", 2, create("disk.dat"), -1, "Unable to add file handle list!"},
      // A load allocates the object, each table's block and its one entry, then the list's node.
      {"catalog", 1, open(q), 0, "Unable to allocate memory for catalog file " + q + "!"},
      {"catalog entry", 3, open(q), 0,
       "Unable to allocate memory for catalog header!\nError opening catalog file " + q + "!"},
      {"catalog extension", 5, open(q), 0,
       "Unable to allocate memory for catalog extension!\nError opening catalog file " + q + "!"},
      {"catalog node", 6, open(q), 0, "Unable to append catalog " + q + " to the catalog list!"},
      {"pushed copy", 1, [] { return gFMG->PushDirectory(); }, 0,
       "Error PushDirectory - unable to allocate memory for " + cwd},
      {"stack full", 0, fillStack, 0, "Error PushDirectory - unable to push directory " + cwd},
  };
  // The stack's slots stay until shutdown.
  auto liveBlocks = [] { return LiveBlocks() - (gFMG->directoryStack.data != nullptr); };
  for (const Row& row : rows) {
    std::int64_t before = liveBlocks();
    int descriptors = openDescriptors();
    {
      TraceCapture traces;
      hostHeapFailNth(row.failNth);
      EXPECT_EQ(row.act(), row.result) << row.name;
      hostHeapFailNth(0);
      std::string lines;
      for (const std::string& line : traces.Lines())
        lines += (lines.empty() ? "" : "\n") + (line.rfind("MSG|", 0) ? line : line.substr(4));
      EXPECT_EQ(lines, row.trace) << row.name;
    }
    EXPECT_EQ(openDescriptors(), descriptors) << row.name;
    EXPECT_EQ(gFMG->openFiles.count, 0) << row.name;
    EXPECT_EQ(liveBlocks(), before) << row.name;
  }
  EXPECT_EQ(readWholeFile(dir_.file("disk.dat")), "disk") << "a failed create changes nothing";
  EXPECT_EQ(ReadName("p.dat"), "packed");
}

TEST_F(FileManagerThreads, TwoReadersOfOneCatalogEachGetTheirOwnBytes) {
  std::string left(6000, 'a'), right(5000, 'A');
  for (std::size_t i = 0; i < left.size(); i++) left[i] += (i * 7 + i / 251) % 26;
  for (std::size_t i = 0; i < right.size(); i++) right[i] += (i * 7 + i / 251) % 26;
  OpenCatalog("t.cat", PackedCatalog().Add("LEFT.BIN", left).Add("RIGHT.BIN", right));
  // Odd chunk sizes, so that the two readers interleave at every position of their entries.
  auto reader = [](const char* name, std::uint32_t chunk, std::string* out) {
    for (int pass = 0; pass < 3; pass++) {
      std::int32_t handle = gFMG->OpenFile(name);
      *out += readToEnd(handle, chunk);
      gFMG->CloseFile(handle);
    }
  };
  std::string gotLeft, gotRight;
  std::thread first(reader, "left.bin", 37, &gotLeft);
  std::thread second(reader, "right.bin", 29, &gotRight);
  first.join();
  second.join();
  EXPECT_EQ(gotLeft, left + left + left);
  EXPECT_EQ(gotRight, right + right + right);
}

TEST_F(FileManagerTest, DiskRefusalsLeaveNothingMoved) {
  std::filesystem::create_directory(dir_.file("folder.ini"));
  EXPECT_EQ(gFMG->OpenFile("folder.ini"), -1) << "a directory is no file to read";
  EXPECT_EQ(gFMG->OpenCatalog(At(std::string(300, 'c')).c_str()), 0) << "a path past 259 bytes";
  writeWholeFile(dir_.file("d.bin"), "0123456789");
  std::int32_t handle = gFMG->OpenFile("d.bin");
  ASSERT_NE(handle, -1);
  EXPECT_EQ(gFMG->SeekFile(handle, 4, 0), 4);
  EXPECT_EQ(gFMG->SeekFile(handle, 0x7FFFFFFF, 1), -1) << "past what the result can carry";
  char byte = 0;
  EXPECT_EQ(gFMG->ReadFile(handle, &byte, 1), 1);
  EXPECT_EQ(byte, '4');
  gFMG->CloseFile(handle);
}

TEST_F(FileManagerTest, AClosedCatalogOrAFailedCreateLeavesTheFileLastUsedFirst) {
  using Disturbance = std::function<void()>;
  const Disturbance disturbances[] = {
      [this] { gFMG->CloseCatalog(At("other.cat").c_str()); },
      [] { gFMG->CloseAllCatalogs(); },  // drops the shared number's catalog file, not the disk's
      [this] { EXPECT_EQ(gFMG->CreateFile(At("missing\\new.txt").c_str()), -1); },
  };
  writeWholeFile(dir_.file("disk.txt"), "from disk");
  for (int i = 0; i < 3; i++) {
    OpenCatalog("packed.cat", PackedCatalog().Add("A.TXT", "packed"));
    OpenCatalog("other.cat", PackedCatalog().Add("B.TXT", "other"));
    std::int32_t shared = gFMG->OpenFile("disk.txt");
    std::int32_t handle = 0;
    while (handle < shared) handle = gFMG->OpenFile("a.txt");  // the same number, last used
    ASSERT_EQ(handle, shared);
    disturbances[i]();
    char buffer[16] = {};
    std::int32_t got = gFMG->ReadFile(shared, buffer, sizeof buffer - 1);
    EXPECT_STREQ(buffer, i == 1 ? "from disk" : "packed") << i;
    EXPECT_EQ(got, i == 1 ? 9 : 6);
    if (i != 1) {
      EXPECT_EQ(gFMG->WriteFile(shared, "x", 1), 0) << "a catalog file takes no write";
    }
    while (gFMG->openFiles.count > 0) {
      gFMG->openFiles.MoveFirst();
      gFMG->CloseFile(static_cast<FileHandleRecord*>(gFMG->openFiles.current->payload)->handle);
    }
    gFMG->CloseAllCatalogs();
  }
}

TEST_F(FileManagerTest, ExistenceAndSizeLookOnDiskThenInCatalogsAndLeaveNothingOpen) {
  OpenCatalog("c.cat", PackedCatalog().Add("PAD.BIN", "pp").Add("PACKED.BIN", "packed"));
  writeWholeFile(dir_.file("disk.bin"), "0123456789");
  writeWholeFile(dir_.file("empty.bin"), "");
  const struct {
    const char* name;
    int exists;        // with diskOnly 0
    int existsOnDisk;  // with diskOnly 1
    std::uint32_t size;
  } rows[] = {
      {"disk.bin", 1, 1, 10},
      {"empty.bin", 1, 1, 0},
      {"packed.bin", 1, 0, 6},
      {"missing.bin", 0, 0, 0},
  };
  int descriptors = openDescriptors();
  for (const auto& row : rows) {
    EXPECT_EQ(gFMG->FileExists(row.name, 0), row.exists) << row.name;
    EXPECT_EQ(gFMG->FileExists(row.name, 1), row.existsOnDisk) << row.name;
    EXPECT_EQ(gFMG->GetFileSize(row.name), row.size) << row.name;
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_EQ(gFMG->openFiles.count, 0);
}

TEST_F(FileManagerTest, DirectoriesChangeRelativeToTheBaseAndPopInReverseOrder) {
  const std::filesystem::path home = std::filesystem::current_path(), dir = dir_.path();
  std::filesystem::create_directories(dir / "a" / "b");
  std::filesystem::create_directories(dir / "gone");
  EXPECT_EQ(gFMG->ChangeDirectory(At("missing").c_str()), 0);
  EXPECT_EQ(std::filesystem::current_path(), home) << "a failed change stays";
  std::snprintf(gFMG->baseDirectory, sizeof gFMG->baseDirectory, "b");
  EXPECT_EQ(gFMG->ChangeDirectory(At("a").c_str()), 1);
  EXPECT_EQ(std::filesystem::current_path(), dir / "a" / "b") << "the base, from the new one";
  gFMG->ResetBaseDirectory();
  EXPECT_EQ(gFMG->ChangeDirectory(At("a").c_str()), 1);
  EXPECT_EQ(std::filesystem::current_path(), dir / "a");
  // Pushed: a, a/b, then gone (removed before its pop).
  for (const char* next : {"a\\b", "gone", ""}) {
    ASSERT_EQ(gFMG->PushDirectory(), 1);
    if (*next) {
      ASSERT_EQ(gFMG->ChangeDirectory(At(next).c_str()), 1);
    }
  }
  std::filesystem::current_path(dir);
  std::filesystem::remove(dir / "gone");
  gFMG->PopDirectory();
  EXPECT_EQ(std::filesystem::current_path(), dir) << "a directory gone is not changed to";
  gFMG->PopDirectory();
  EXPECT_EQ(std::filesystem::current_path(), dir / "a" / "b");
  gFMG->PopDirectory();
  EXPECT_EQ(std::filesystem::current_path(), dir / "a");
  std::filesystem::current_path(home);
}

TEST_F(FileManagerTest, ShutdownClosesWhatClientsLeftOpen) {
  int descriptors = openDescriptors();
  writeWholeFile(dir_.file("disk.bin"), "disk");
  OpenCatalog("c.cat", PackedCatalog().Add("PACKED.BIN", "packed"));
  ASSERT_NE(gFMG->OpenFile("disk.bin"), -1);
  ASSERT_NE(gFMG->OpenFile("packed.bin"), -1);
  ASSERT_NE(gFMG->CreateFile("new.bin"), -1);
  gFMG->Shutdown();
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_EQ(gFMG->openFiles.count + gFMG->catalogs.count, 0);
}

TEST_F(FileManagerThreads, OpenFileWaitsWhileAnotherThreadHoldsTheLock) {
  writeWholeFile(dir_.file("disk.bin"), "disk");
  gFMG->lock.Acquire();
  std::int32_t handle = -1;
  std::thread opening([&handle] { handle = gFMG->OpenFile("disk.bin"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(gFMG->openFiles.count, 0) << "opened under another thread's lock";
  gFMG->lock.Release();
  opening.join();
  gFMG->CloseFile(handle);
}
