// Tests of the FileManager through gFMG: lookup order, handles, reads, seeks, messages, locking.
#include "files/file_manager.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "catalog_bytes.h"
#include "kernel_fixture.h"
#include "packed_catalog.h"
#include "platform/host_heap.h"

namespace {

namespace fs = std::filesystem;

int openDescriptors() {
  return static_cast<int>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

class FileManagerTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    gFMG->SetSearchDirectory(dirText_.c_str());
  }
  void TearDown() override {
    gFMG->CloseAllCatalogs();
    EXPECT_EQ(openDescriptors(), descriptors_) << "a file was left open";
    if (gFMG->directoryStack.data) blocksAtStart_++;  // the stack keeps its slots until shutdown
    KernelTest::TearDown();
  }
  std::string At(const std::string& name) const { return dirText_ + "\\" + name; }
  template <typename Catalog>
  void OpenCatalog(const std::string& name, const Catalog& writer) {
    writer.WriteTo(dir_.file(name));
    ASSERT_EQ(gFMG->OpenCatalog(At(name).c_str()), 1) << name;
  }
  static std::string ReadName(const char* name, std::uint32_t chunk = 7) {
    std::int32_t handle = gFMG->OpenFile(name);
    if (handle == -1) return "<not found>";
    std::string bytes;
    char buffer[64];
    for (std::int32_t got; (got = gFMG->ReadFile(handle, buffer, chunk)) > 0;)
      bytes.append(buffer, got);
    gFMG->CloseFile(handle);
    return bytes;
  }

  TempDir dir_;
  std::string dirText_ = systemPath(dir_.path());
  const int descriptors_ = openDescriptors();
};

class FileManagerThreads : public FileManagerTest {};

}  // namespace

TEST_F(FileManagerTest, LooksOnDiskFirstThenInCatalogsInOrderOfOpening) {
  OpenCatalog("1.cat", PackedCatalog().Add("X.DAT", "1").Add("gun.ini", "g").Add("DISK.BIN", "p"));
  OpenCatalog("2.cat", RawCatalog().Add("x.dat", "two").Add("Y.DAT", "why").Add("noext", "x"));
  writeWholeFile(dir_.file("disk.bin"), "0123456789");
  writeWholeFile(dir_.file("empty.bin"), "");
  fs::create_directory(dir_.file("folder.ini"));
  const struct { const char* name; std::string bytes; int exists, onDisk, size; } rows[] = {
      {"disk.bin", "0123456789", 1, 1, 10}, {"empty.bin", "", 1, 1, 0},
      {"c:\\x\\GUN.INI", "g", 1, 0, 1},      {"x.dat", "1", 1, 0, 1},
      {"y.dat", "why", 1, 0, 3},            {"noext", "<not found>", 0, 0, 0},
      {"missing.bin", "<not found>", 0, 0, 0}, {"folder.ini", "<not found>", 0, 0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ReadName(row.name), row.bytes) << row.name;
    EXPECT_EQ(gFMG->FileExists(row.name, 0), row.exists) << row.name;
    EXPECT_EQ(gFMG->FileExists(row.name, 1), row.onDisk) << row.name;
    EXPECT_EQ(gFMG->GetFileSize(row.name), std::uint32_t(row.size)) << row.name;
  }
  fs::remove(dir_.file("disk.bin"));
  EXPECT_EQ(ReadName("disk.bin"), "p");
  gFMG->CloseCatalog(At("1.cat").c_str());
  EXPECT_EQ(ReadName("x.dat"), "two");
}

// All files of a catalog share its descriptor: each read and seek must keep to its own entry.
TEST_F(FileManagerTest, HandlesCountFromOnePerCatalogAndReadsAndSeeksKeepToTheirFile) {
  PackedCatalog packed = PackedCatalog().Add("S.BIN", "0123456789").Add("PAD.BIN", "pppp");
  OpenCatalog("s.cat", packed);
  writeWholeFile(dir_.file("d.bin"), "0123456789");
  const auto start = static_cast<std::int32_t>(packed.Bytes().find("0123456789"));
  const std::int32_t files[] = {gFMG->OpenFile("s.bin"), gFMG->OpenFile("pad.bin"),
                                gFMG->OpenFile("d.bin")};
  EXPECT_EQ(std::make_pair(files[0], files[1]), std::make_pair(1, 2));
  // Origin -1 stands for a read of `offset` bytes.
  const struct { int file, origin; std::int32_t offset, result; const char* bytes; } steps[] = {
      {0, 0, 4, start + 4, ""},  {0, -1, 2, 2, "45"},  {1, -1, 1, 1, "p"},
      {0, 1, -3, start + 3, ""}, {1, -1, 3, 3, "ppp"},  // seeks back after another's seek
      {0, 2, 5, start + 3, ""},  {0, 1, -4, -1, ""},  // origin 2 stays; before the entry: none
      {0, -1, 16, 7, "3456789"}, {0, -1, 16, 0, ""},    {0, 0, 0, start, ""},
      {0, 0, 20, start + 20, ""}, {0, -1, 16, 0, ""},   // nothing past the entry's end
      {2, 0, 4, 4, ""},          {2, 1, 0x7FFFFFFF, -1, ""},  // past what the result carries
      {2, -1, 1, 1, "4"},
  };
  for (const auto& step : steps) {
    char buffer[17] = {};
    EXPECT_EQ(step.origin < 0 ? gFMG->ReadFile(files[step.file], buffer, step.offset)
                              : gFMG->SeekFile(files[step.file], step.offset, step.origin),
              step.result) << "step " << &step - steps;
    EXPECT_STREQ(buffer, step.bytes) << "step " << &step - steps;
  }
  gFMG->CloseFile(files[2]);
  gFMG->CloseFile(files[0]);
  EXPECT_EQ(gFMG->OpenFile("s.bin"), 3) << "numbers are not reused";
}

TEST_F(FileManagerTest, TracesTheDocumentedMessages) {
  writeWholeFile(dir_.file("disk.dat"), "disk");
  fs::create_directory(dir_.file("folder.dat"));
  PackedCatalog().Add("Q.DAT", "q").WriteTo(dir_.file("q.cat"));
  OpenCatalog("p.cat", PackedCatalog().Add("P.DAT", "packed"));
  const std::string cwd = systemPath(fs::current_path()), p = At("p.cat"), upper = At("P.CAT"),
                    q = At("q.cat");
  auto open = [](std::string path) { return [=] { return gFMG->OpenCatalog(path.c_str()); }; };
  auto close = [](std::string path) { return [=] { return gFMG->CloseCatalog(path.c_str()), 0; }; };
  const std::string openedQ = "Catalog file " + q + " opened successfully.";
  // In order, each row starting where the one before left off; failNth 0: no allocation fails.
  struct Row { int failNth; std::function<int()> act; int result; std::string trace; } rows[] = {
      {0, [] { return gFMG->CreateFile("folder.dat"); }, -1, "Unable to create file folder.dat!"},
      {0, open(upper), 1, "Catalog file " + upper + " already opened..."},
      {0, close(p), 0, "Catalog file " + p + " still in use..."},
      // The open file goes with its catalog; closed first, it leaves the catalog free.
      {0, [&] { return open(q)() && gFMG->OpenFile("q.dat") == 1 && !close(q)(); }, 1,
       openedQ + "\nCatalog file " + q + " is still in use! (OpenFileCount = 1)"},
      {0, [&] { return open(q)() && (gFMG->CloseFile(gFMG->OpenFile("q.dat")), !close(q)()); },
       1, openedQ},
      // No memory, from here on: what was made before the failure is given back.
      {2, [] { return gFMG->OpenFile("p.dat"); }, -1,
       "Unable to add file handle list!\nFile p.dat not found!"},
      {2, [] { return gFMG->CreateFile("disk.dat"); }, -1, "Unable to add file handle list!"},
      {6, open(q), 0, "Unable to append catalog " + q + " to the catalog list!"},
      {1, [] { return gFMG->PushDirectory(); }, 0,
       "Error PushDirectory - unable to allocate memory for " + cwd},
  };
  for (const Row& row : rows) {
    TraceCapture traces;
    const std::int64_t before = LiveBlocks();
    hostHeapFailNth(row.failNth);
    EXPECT_EQ(row.act(), row.result) << row.trace;
    hostHeapFailNth(0);
    EXPECT_EQ(LiveBlocks(), before) << row.trace;
    std::string lines;
    for (const std::string& line : traces.Lines())
      lines += (lines.empty() ? "" : "\n") + line.substr(4);  // without "MSG|"
    EXPECT_EQ(lines, row.trace);
  }
  EXPECT_EQ(readWholeFile(dir_.file("disk.dat")), "disk") << "a failed create changes nothing";
  EXPECT_EQ(static_cast<CatalogFile*>(gFMG->catalogs.head->payload)->OpenFileCount, 0);
}

TEST_F(FileManagerThreads, TwoReadersOfOneCatalogGetTheirOwnBytesAndOpenWaitsForTheLock) {
  std::string left(6000, 'a'), right;
  for (std::size_t i = 0; i < left.size(); i++) left[i] += (i * 7 + i / 251) % 26;
  for (char c : left.substr(1000)) right += c - 32;  // upper case: no byte in both entries
  OpenCatalog("t.cat", PackedCatalog().Add("LEFT.BIN", left).Add("RIGHT.BIN", right));
  // Odd chunk sizes, so that the two readers interleave at every position of their entries.
  std::string gotLeft, gotRight;
  std::thread first([&] { for (int i = 0; i < 3; i++) gotLeft += ReadName("left.bin", 37); });
  std::thread second([&] { for (int i = 0; i < 3; i++) gotRight += ReadName("right.bin", 29); });
  first.join(), second.join();
  EXPECT_EQ(gotLeft, left + left + left);
  EXPECT_EQ(gotRight, right + right + right);
  gFMG->lock.Acquire();
  std::thread opening([] { ReadName("left.bin"); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(gFMG->openFiles.count, 0) << "opened under another thread's lock";
  gFMG->lock.Release();
  opening.join();
}

// Numbers are shared by the disk and the catalogs: the file last used answers while it has it.
TEST_F(FileManagerTest, AClosedCatalogOrAFailedCreateLeavesTheFileLastUsedFirst) {
  writeWholeFile(dir_.file("disk.txt"), "from disk");
  // The catalog file last used is at the tail, or ahead of the disk file reopened behind it.
  for (bool diskLast : {false, true}) {
    OpenCatalog("packed.cat", PackedCatalog().Add("A.TXT", "packed"));
    OpenCatalog("other.cat", PackedCatalog().Add("B.TXT", "other"));
    std::int32_t shared = gFMG->OpenFile("disk.txt"), handle = 0;
    gFMG->OpenFile("b.txt");  // open on the catalog closed below, which then walks past the rest
    if (diskLast) gFMG->CloseFile(shared);
    while (handle < shared) handle = gFMG->OpenFile("a.txt");
    if (diskLast) {
      ASSERT_EQ(gFMG->OpenFile("disk.txt"), shared);
      gFMG->ReadFile(1, nullptr, 0);
      gFMG->ReadFile(shared, nullptr, 0);  // the first with the number, from the head
    }
    gFMG->CloseCatalog(At("other.cat").c_str());
    EXPECT_EQ(gFMG->CreateFile(At("missing\\new.txt").c_str()), -1);
    char buffer[16];
    EXPECT_EQ(gFMG->ReadFile(shared, buffer, 16), 6) << "not the disk file, diskLast " << diskLast;
    EXPECT_EQ(gFMG->WriteFile(shared, "x", 1), 0) << "a catalog file takes no write";
    gFMG->Shutdown();  // the fixture counts the descriptors and blocks left behind
    gFMG->Init();
    gFMG->SetSearchDirectory(dirText_.c_str());
  }
}

TEST_F(FileManagerTest, AFailedChangeOfDirectoryStaysAndPopsReturnInReverseOrder) {
  const fs::path home = fs::current_path(), dir = dir_.path();
  fs::create_directories(dir / "a" / "b");
  while (gFMG->directoryStack.count < 16384) ASSERT_EQ(gFMG->PushDirectory(), 1);
  EXPECT_EQ(gFMG->PushDirectory(), 0) << "the stack holds 16384 at most";
  while (gFMG->directoryStack.count > 0) gFMG->PopDirectory();
  EXPECT_EQ(gFMG->ChangeDirectory(At("missing").c_str()), 0);
  EXPECT_EQ(fs::current_path(), home) << "a failed change stays";
  EXPECT_EQ(gFMG->ChangeDirectory(At("a").c_str()), 1);
  ASSERT_EQ(gFMG->PushDirectory(), 1);
  ASSERT_EQ(gFMG->ChangeDirectory(At("a\\b").c_str()), 1);
  ASSERT_EQ(gFMG->PushDirectory(), 1);
  fs::current_path(dir);
  for (const fs::path& back : {dir / "a" / "b", dir / "a"}) {
    gFMG->PopDirectory();
    EXPECT_EQ(fs::current_path(), back) << "in reverse order";
  }
  fs::current_path(home);
}
