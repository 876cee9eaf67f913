// Tests of the FileManager through gFMG: disk before catalogs, handles, messages, memory, stack.
#include "files/file_manager.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/path_util.h"
#include "catalog_writer.h"
#include "core/core.h"
#include "files_test_util.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"
#include "services/interface_manager.h"

namespace {

class FileManagerTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    ASSERT_NE(gFMG, nullptr);
    dirText_ = systemPath(dir_.path());
    gFMG->SetSearchDirectory(dirText_.c_str());
  }
  void TearDown() override {
    gFMG->CloseAllCatalogs();
    // The directory stack keeps its slots until shutdown.
    if (gFMG->directoryStack.data) blocksAtStart_++;
    KernelTest::TearDown();
  }
  // The system path of a file in the test's directory.
  std::string At(const std::string& name) const { return dirText_ + "\\" + name; }
  std::string OpenCatalog(const std::string& name, const CatalogWriter& writer) {
    writer.WriteTo(dir_.file(name));
    EXPECT_EQ(gFMG->OpenCatalog(At(name).c_str()), 1) << name;
    return At(name);
  }
  std::string ReadName(const char* name) {
    std::int32_t handle = gFMG->OpenFile(name);
    if (handle == -1) return "<not found>";
    std::string bytes = readToEnd(handle);
    gFMG->CloseFile(handle);
    return bytes;
  }

  TempDir dir_;
  std::string dirText_;
};

CatalogFile* firstCatalog() { return static_cast<CatalogFile*>(gFMG->catalogs.head->payload); }

}  // namespace

TEST_F(FileManagerTest, LooseFileOverridesPackedOneUntilItIsGone) {
  std::string catalog =
      OpenCatalog("a.cat", CatalogWriter().Add("gun.ini", "packed").Add("noext", "x"));
  writeWholeFile(dir_.file("gun.ini"), "loose");
  EXPECT_EQ(ReadName("gun.ini"), "loose");
  std::filesystem::remove(dir_.file("gun.ini"));
  EXPECT_EQ(ReadName("gun.ini"), "packed");
  EXPECT_EQ(ReadName("GUN.INI"), "packed");
  // Directories in the name play no part in a catalog.
  EXPECT_EQ(ReadName("c:\\x\\gun.ini"), "packed");
  // Without an extension nothing is found in a catalog.
  TraceCapture traces;
  EXPECT_EQ(gFMG->OpenFile("noext"), -1);
  EXPECT_EQ(traces.Lines(), std::vector<std::string>{"MSG|File noext not found!"});
  gFMG->CloseCatalog(catalog.c_str());
}

TEST_F(FileManagerTest, CatalogsAnswerInOrderOfOpening) {
  std::string first = OpenCatalog("1.cat", CatalogWriter().Add("X.DAT", "one"));
  std::string second =
      OpenCatalog("2.cat", CatalogWriter().Add("x.dat", "two").Add("Y.DAT", "why"));
  EXPECT_EQ(ReadName("x.dat"), "one");
  EXPECT_EQ(ReadName("y.dat"), "why");
  EXPECT_EQ(gFMG->GetFileSize("x.dat"), 3u);
  gFMG->CloseCatalog(first.c_str());
  EXPECT_EQ(ReadName("x.dat"), "two");
  gFMG->CloseAllCatalogs();
  EXPECT_EQ(gFMG->catalogs.count, 0);
  EXPECT_EQ(ReadName("x.dat"), "<not found>");
}

TEST_F(FileManagerTest, HandlesCountPerCatalogAndReadsAlternate) {
  std::string big = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
  std::string small = "0123456789";
  OpenCatalog("1.cat", CatalogWriter().Add("BIG.TXT", big).Add("SMALL.TXT", small));
  OpenCatalog("2.cat", CatalogWriter().Add("OTHER.TXT", "other"));
  std::int32_t a = gFMG->OpenFile("big.txt");
  std::int32_t b = gFMG->OpenFile("small.txt");
  EXPECT_EQ(a, 1);
  EXPECT_EQ(b, 2);
  EXPECT_EQ(gFMG->OpenFile("other.txt"), 1) << "each catalog counts from 1";
  // Two files now bear number 1: the current node, the file just opened, answers first.
  char shadow[2];
  EXPECT_EQ(gFMG->ReadFile(1, shadow, 2), 2);
  EXPECT_EQ(std::string(shadow, 2), "ot");
  gFMG->CloseFile(1);
  std::string readA, readB;
  char buffer[8];
  for (int round = 0; round < 20; round++) {
    std::int32_t got = gFMG->ReadFile(a, buffer, 3);
    if (got > 0) readA.append(buffer, got);
    got = gFMG->ReadFile(b, buffer, 2);
    if (got > 0) readB.append(buffer, got);
  }
  EXPECT_EQ(readA, big);
  EXPECT_EQ(readB, small);
  EXPECT_EQ(gFMG->ReadFile(b, buffer, 8), 0) << "never past the entry's end";

  gFMG->CloseFile(a);
  std::int32_t again = gFMG->OpenFile("big.txt");
  EXPECT_EQ(again, 3) << "numbers are not reused";
  EXPECT_EQ(readToEnd(again), big);
  gFMG->CloseFile(again);
  gFMG->CloseFile(b);
  EXPECT_EQ(gFMG->openFiles.count, 0);
}

TEST_F(FileManagerTest, SeeksOfCatalogAndDiskFiles) {
  CatalogWriter writer;
  writer.Add("PAD.BIN", "pppp").Add("S.BIN", "0123456789");
  OpenCatalog("s.cat", writer);
  auto start = static_cast<std::int32_t>(writer.Offsets()[1]);
  std::int32_t handle = gFMG->OpenFile("s.bin");
  char buffer[16];
  EXPECT_EQ(gFMG->SeekFile(handle, 4, 0), start + 4);
  EXPECT_EQ(gFMG->ReadFile(handle, buffer, 2), 2);
  EXPECT_EQ(std::string(buffer, 2), "45");
  EXPECT_EQ(gFMG->SeekFile(handle, -3, 1), start + 3);
  EXPECT_EQ(gFMG->SeekFile(handle, 0, 2), start + 3) << "origin 2 stays where it is";
  EXPECT_EQ(gFMG->SeekFile(handle, 5, 2), start + 3);
  EXPECT_EQ(readToEnd(handle), "3456789");
  EXPECT_EQ(gFMG->SeekFile(handle, 0, 0), start);
  EXPECT_EQ(gFMG->SeekFile(handle, 20, 0), start + 20);
  EXPECT_EQ(gFMG->ReadFile(handle, buffer, 16), 0);
  gFMG->CloseFile(handle);

  writeWholeFile(dir_.file("disk.bin"), "abcdef");
  handle = gFMG->OpenFile("disk.bin");
  ASSERT_GE(handle, 0);
  EXPECT_EQ(gFMG->SeekFile(handle, -2, 2), 4);
  EXPECT_EQ(readToEnd(handle), "ef");
  EXPECT_EQ(gFMG->SeekFile(handle, 1, 0), 1);
  EXPECT_EQ(gFMG->SeekFile(handle, -5, 0), -1);
  gFMG->CloseFile(handle);
}

TEST_F(FileManagerTest, WritesCreatesExistenceAndSizes) {
  writeWholeFile(dir_.file("old.dat"), "old contents");
  std::int32_t handle = gFMG->CreateFile("old.dat");
  ASSERT_GE(handle, 0);
  EXPECT_EQ(readWholeFile(dir_.file("old.dat")), "") << "creating empties the file";
  EXPECT_EQ(gFMG->WriteFile(handle, "new", 3), 3);
  gFMG->CloseFile(handle);
  EXPECT_EQ(readWholeFile(dir_.file("old.dat")), "new");
  EXPECT_EQ(gFMG->GetFileSize("old.dat"), 3u);
  EXPECT_EQ(gFMG->FileExists("old.dat", 1), 1);

  OpenCatalog("c.cat", CatalogWriter().Add("PACKED.DAT", "12345"));
  EXPECT_EQ(gFMG->FileExists("packed.dat", 0), 1);
  EXPECT_EQ(gFMG->FileExists("packed.dat", 1), 0);
  EXPECT_EQ(gFMG->GetFileSize("packed.dat"), 5u);
  EXPECT_EQ(gFMG->GetFileSize("missing.dat"), 0u);
  EXPECT_EQ(gFMG->FileExists("missing.dat", 0), 0);
  EXPECT_EQ(gFMG->FileExists("", 0), 0);
  EXPECT_EQ(gFMG->GetFileSize(nullptr), 0u);
  handle = gFMG->OpenFile("packed.dat");
  EXPECT_EQ(gFMG->WriteFile(handle, "x", 1), 0) << "catalogs are read-only";
  gFMG->CloseFile(handle);

  // Numbers that aren't open.
  char buffer[4];
  EXPECT_EQ(gFMG->ReadFile(9999, buffer, 4), 0);
  EXPECT_EQ(gFMG->SeekFile(9999, 0, 0), 0);
  EXPECT_EQ(gFMG->WriteFile(9999, buffer, 4), 0);
  gFMG->CloseFile(9999);
  EXPECT_EQ(gFMG->OpenFile(""), -1);
  EXPECT_EQ(gFMG->OpenFile(nullptr), -1);
  EXPECT_EQ(gFMG->CreateFile(nullptr), -1);

  TraceCapture traces;
  EXPECT_EQ(gFMG->CreateFile("no\\such\\dir.dat"), -1);
  EXPECT_EQ(traces.Lines(),
            std::vector<std::string>{"MSG|Unable to create file no\\such\\dir.dat!"});
  EXPECT_EQ(gFMG->openFiles.count, 0);
}

TEST_F(FileManagerTest, CatalogPathsAreCountedByTheirText) {
  std::string path = OpenCatalog("a.cat", CatalogWriter().Add("A.DAT", "a"));
  std::string upper = dirText_ + "\\A.CAT";
  TraceCapture traces;
  // Same text apart from case: one more holder, nothing opened.
  EXPECT_EQ(gFMG->OpenCatalog(upper.c_str()), 1);
  EXPECT_EQ(firstCatalog()->refCount, 2);
  gFMG->CloseCatalog(path.c_str());
  EXPECT_EQ(gFMG->catalogs.count, 1);
  gFMG->CloseCatalog("");
  gFMG->CloseCatalog((dirText_ + "\\.\\a.cat").c_str());  // another text: not found
  EXPECT_EQ(gFMG->catalogs.count, 1);
  gFMG->CloseCatalog(upper.c_str());
  EXPECT_EQ(gFMG->catalogs.count, 0);

  std::string missing = dirText_ + "\\missing.cat";
  EXPECT_EQ(gFMG->OpenCatalog(missing.c_str()), 0);
  writeWholeFile(dir_.file("bad.cat"), "NOT A CATALOG AT ALL, NOT EVEN CLOSE");
  EXPECT_EQ(gFMG->OpenCatalog(At("bad.cat").c_str()), 0);
  std::vector<std::string> expected = {
      "MSG|Catalog file " + upper + " already opened...",
      "MSG|Catalog file " + path + " still in use...",
      "MSG|Unable to open catalog file " + missing + "!",
      "MSG|Error opening catalog file " + missing + "!",
      "MSG|" + At("bad.cat") + " is not a catalog file!",
      "MSG|Error opening catalog file " + At("bad.cat") + "!",
  };
  EXPECT_EQ(traces.Lines(), expected);
}

TEST_F(FileManagerTest, ClosingACatalogWithFilesOpenDropsThem) {
  std::string path = OpenCatalog("a.cat", CatalogWriter().Add("A.DAT", "abc"));
  std::int32_t handle = gFMG->OpenFile("a.dat");
  ASSERT_EQ(handle, 1);
  TraceCapture traces;
  gFMG->CloseCatalog(path.c_str());
  EXPECT_EQ(traces.Lines(), std::vector<std::string>{"MSG|Catalog file " + path +
                                                     " is still in use! (OpenFileCount = 1)"});
  char buffer[4];
  EXPECT_EQ(gFMG->ReadFile(handle, buffer, 3), 0) << "the number no longer reaches anything";
  gFMG->CloseFile(handle);
  EXPECT_EQ(gFMG->openFiles.count, 0);
}

TEST_F(FileManagerTest, OutOfMemoryWhileOpening) {
  writeWholeFile(dir_.file("disk.dat"), "disk");
  OpenCatalog("c.cat", CatalogWriter().Add("PACKED.DAT", "packed"));
  int descriptors = openDescriptors();
  struct Row {
    const char* name;
    int n;
    std::vector<std::string> lines;
  };
  std::vector<Row> rows = {
      {"disk.dat", 1, {"MSG|Unable to allocate memory for file handle!"}},
      {"disk.dat", 2, {"MSG|Unable to add file handle list!"}},
      {"packed.dat", 1, {"MSG|File packed.dat not found!"}},
      {"packed.dat", 2, {"MSG|Unable to add file handle list!", "MSG|File packed.dat not found!"}},
  };
  for (const Row& row : rows) {
    TraceCapture traces;
    hostHeapFailNth(row.n);
    EXPECT_EQ(gFMG->OpenFile(row.name), -1) << row.name << " " << row.n;
    hostHeapFailNth(0);
    EXPECT_EQ(traces.Lines(), row.lines) << row.name << " " << row.n;
    EXPECT_EQ(openDescriptors(), descriptors) << "the descriptor is closed";
    EXPECT_EQ(gFMG->openFiles.count, 0);
    EXPECT_EQ(firstCatalog()->OpenFileCount, 0);
  }
  EXPECT_EQ(ReadName("packed.dat"), "packed");

  // Creating: no memory leaves an existing file as it was.
  for (int n : {1, 2}) {
    TraceCapture traces;
    hostHeapFailNth(n);
    EXPECT_EQ(gFMG->CreateFile("disk.dat"), -1);
    hostHeapFailNth(0);
    EXPECT_EQ(traces.Lines(),
              std::vector<std::string>{n == 1 ? "MSG|Unable to allocate memory for file handle!"
                                              : "MSG|Unable to add file handle list!"});
    EXPECT_EQ(readWholeFile(dir_.file("disk.dat")), "disk");
  }

  // Opening a catalog: the object first, the list node last.
  gFMG->CloseAllCatalogs();
  std::string path = At("c.cat");
  std::vector<std::string> lines;
  for (int n = 1;; n++) {
    TraceCapture traces;
    hostHeapFailNth(n);
    int opened = gFMG->OpenCatalog(path.c_str());
    bool fired = hostHeapFailPending() == 0;
    hostHeapFailNth(0);
    if (!fired) {
      EXPECT_EQ(opened, 1);
      break;
    }
    lines = traces.Lines();
    if (n == 1) {
      EXPECT_EQ(lines, std::vector<std::string>{"MSG|Unable to allocate memory for catalog file " +
                                                path + "!"});
    }
    if (opened == 0) {
      EXPECT_EQ(gFMG->catalogs.count, 0) << n;
    } else {
      gFMG->CloseCatalog(path.c_str());
    }
  }
  EXPECT_EQ(lines, std::vector<std::string>{"MSG|Unable to append catalog " + path +
                                            " to the catalog list!"});
}

TEST_F(FileManagerTest, DirectoryStackAndChangeDirectory) {
  std::filesystem::create_directories(dir_.file("one/two"));
  char start[260];
  fmgGetCurrentDirectory(start, sizeof start);

  EXPECT_EQ(gFMG->ChangeDirectory(At("one").c_str()), 1);
  ASSERT_EQ(gFMG->PushDirectory(), 1);
  EXPECT_EQ(gFMG->ChangeDirectory("two"), 1);
  char now[260];
  fmgGetCurrentDirectory(now, sizeof now);
  EXPECT_EQ(std::string(now), At("one\\two"));
  EXPECT_EQ(gFMG->ChangeDirectory("missing"), 0);
  gFMG->PopDirectory();
  fmgGetCurrentDirectory(now, sizeof now);
  EXPECT_EQ(std::string(now), At("one"));
  gFMG->PopDirectory();  // empty: nothing happens
  fmgGetCurrentDirectory(now, sizeof now);
  EXPECT_EQ(std::string(now), At("one"));

  // The stack grows 8, 16, ... 16384 and refuses the next push.
  for (int i = 0; i < 9; i++) ASSERT_EQ(gFMG->PushDirectory(), 1);
  EXPECT_EQ(gFMG->directoryStack.capacity, 16);
  while (gFMG->directoryStack.count < 16384) ASSERT_EQ(gFMG->PushDirectory(), 1);
  {
    TraceCapture traces;
    EXPECT_EQ(gFMG->PushDirectory(), 0);
    EXPECT_EQ(traces.Lines(),
              std::vector<std::string>{"MSG|Error PushDirectory - unable to push directory " +
                                       At("one")});
    hostHeapFailNth(1);
    EXPECT_EQ(gFMG->PushDirectory(), 0);
    hostHeapFailNth(0);
    EXPECT_EQ(traces.Lines().back(),
              "MSG|Error PushDirectory - unable to allocate memory for " + At("one"));
  }
  while (gFMG->directoryStack.count > 0) gFMG->PopDirectory();

  // A directory that has gone away is not changed to.
  ASSERT_EQ(gFMG->ChangeDirectory("two"), 1);
  ASSERT_EQ(gFMG->PushDirectory(), 1);
  ASSERT_EQ(gFMG->ChangeDirectory(dirText_.c_str()), 1);
  std::filesystem::remove(dir_.file("one/two"));
  gFMG->PopDirectory();
  fmgGetCurrentDirectory(now, sizeof now);
  EXPECT_EQ(std::string(now), dirText_);
  EXPECT_EQ(fmgSetCurrentDirectory(start), 1);
}

TEST_F(FileManagerTest, ShutdownClosesWhatClientsLeftOpen) {
  std::int64_t before = LiveBlocks();
  int descriptors = openDescriptors();
  {
    FileManager manager;
    manager.Init();
    manager.SetSearchDirectory(dirText_.c_str());
    writeWholeFile(dir_.file("d.dat"), "d");
    CatalogWriter().Add("P.DAT", "p").WriteTo(dir_.file("p.cat"));
    ASSERT_EQ(manager.OpenCatalog(At("p.cat").c_str()), 1);
    ASSERT_EQ(manager.OpenCatalog(At("p.cat").c_str()), 1);
    ASSERT_GE(manager.OpenFile("d.dat"), 0);
    ASSERT_EQ(manager.OpenFile("p.dat"), 1);
    ASSERT_GE(manager.CreateFile("new.dat"), 0);
    std::filesystem::create_directories(dir_.file("elsewhere"));
    char here[260];
    fmgGetCurrentDirectory(here, sizeof here);
    ASSERT_EQ(manager.ChangeDirectory(At("elsewhere").c_str()), 1);
    ASSERT_EQ(manager.PushDirectory(), 1);
    ASSERT_EQ(fmgSetCurrentDirectory(here), 1);
    TraceCapture traces;
    manager.Shutdown();
    EXPECT_TRUE(traces.Lines().empty())
        << "no message of its own, and no open file left for the catalog";
    char now[260];
    fmgGetCurrentDirectory(now, sizeof now);
    EXPECT_STREQ(now, here) << "the stacked directory is not changed to";
    EXPECT_EQ(manager.openFiles.count, 0);
    EXPECT_EQ(manager.catalogs.count, 0);
    EXPECT_EQ(manager.directoryStack.data, nullptr);
  }
  EXPECT_EQ(openDescriptors(), descriptors);
  EXPECT_EQ(LiveBlocks(), before);
}

TEST(FileManagerService, BoundBetweenStartupAndShutdown) {
  ASSERT_EQ(CoreStartup(), 1);
  ASSERT_NE(gFMG, nullptr);
  ASSERT_EQ(gIM->entries.FindByName("FMG"), 1);
  auto* entry = static_cast<InterfaceEntry*>(gIM->entries.current->payload);
  EXPECT_EQ(entry->iface, gFMG);
  EXPECT_EQ(entry->refCount, 1) << "the kernel's own reference";
  EXPECT_STREQ(gFMG->searchDirectory, ".\\");
  EXPECT_STREQ(gFMG->baseDirectory, ".\\");
  CoreShutdown();
  EXPECT_EQ(gFMG, nullptr);
}
