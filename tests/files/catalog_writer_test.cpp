// Tests of CatalogWriter: the exact layout, the refusals, failed writes and exhausted memory.
#include "files/catalog_writer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <set>
#include <string>

#include "catalog_bytes.h"
#include "files/file_manager.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

const std::string kNul(1, '\0');

class CatalogWriterTest : public KernelTest {
 protected:
  // A source file in the test's directory, by host path.
  std::string Source(const std::string& name, const std::string& bytes) {
    writeWholeFile(dir_.file(name), bytes);
    return systemPath(dir_.file(name));
  }
  std::string Catalog() const { return systemPath(dir_.file("out.cat")); }
  // What the directory holds, names sorted and joined by spaces.
  std::string Listing() const {
    std::set<std::string> names;
    for (const auto& item : std::filesystem::directory_iterator(dir_.path()))
      names.insert(item.path().filename().string());
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : " ") + name;
    return joined;
  }

  TempDir dir_;
};

}  // namespace

TEST_F(CatalogWriterTest, WritesTheDocumentedLayoutTheSameEveryTime) {
  const std::string a(100, 'a'), b(50, 'b');
  const std::string expected = catalogHeader("CAT", 2, 2, 150) + le32(72) +
                               catalogField(6, "A.DAT" + kNul) + le32(172) +
                               catalogField(6, "B.INI" + kNul) + catalogField(4, "DAT" + kNul) +
                               catalogField(4, "INI" + kNul) + a + b;
  for (int round = 0; round < 2; round++) {
    CatalogWriter writer;
    ASSERT_EQ(writer.Add(Source("a.dat", a).c_str()), CatalogWriteStatus::kOk);
    ASSERT_EQ(writer.Add(Source("B.ini", b).c_str()), CatalogWriteStatus::kOk);
    ASSERT_EQ(writer.Write(Catalog().c_str()), CatalogWriteStatus::kOk);
    EXPECT_EQ(readWholeFile(dir_.file("out.cat")), expected) << "round " << round;
  }
  // Extensions once each, in order of first use; empty files take no data bytes.
  CatalogWriter writer;
  for (const char* name : {"z.ini", "e.dat", "m.ini"})
    ASSERT_EQ(writer.Add(Source(name, "").c_str()), CatalogWriteStatus::kOk);
  ASSERT_EQ(writer.Write(Catalog().c_str()), CatalogWriteStatus::kOk);
  EXPECT_EQ(readWholeFile(dir_.file("out.cat")),
            catalogHeader("CAT", 3, 2, 0) + le32(86) + catalogField(6, "Z.INI" + kNul) + le32(86) +
                catalogField(6, "E.DAT" + kNul) + le32(86) + catalogField(6, "M.INI" + kNul) +
                catalogField(4, "INI" + kNul) + catalogField(4, "DAT" + kNul));
  EXPECT_EQ(Listing(), "B.ini a.dat e.dat m.ini out.cat z.ini") << "no temporary file is left";
}

TEST_F(CatalogWriterTest, RefusesNamesTheReaderCouldNotTakeAndAddsNothingThen) {
  const std::string kept = Source("kept.dat", "kept"), missing = systemPath(dir_.file("gone.dat"));
  std::filesystem::create_directory(dir_.file("folder.dat"));
  using S = CatalogWriteStatus;
  const struct {
    std::string path;
    std::string name;  // stored name; empty: the path's base name
    S status;
  } rows[] = {
      {kept, std::string(254, 'n') + ".DAT", S::kOk},  // 258 bytes, 259 with the NUL
      {kept, std::string(255, 'n') + ".DAT", S::kNameTooLong},
      {kept, "X." + std::string(255, 'e'), S::kOk},
      {kept, "Y." + std::string(256, 'e'), S::kExtensionTooLong},
      {kept, "SUB\\X.DAT", S::kNotPlainName},
      {kept, "SUB/X.DAT", S::kNotPlainName},
      {kept, "NOEXT", S::kNoExtension},
      {kept, "TRAILING.", S::kNoExtension},
      {kept, "", S::kOk},
      {kept, "Kept.Dat", S::kNameTaken},
      {missing, "", S::kUnreadable},
      {systemPath(dir_.file("folder.dat")), "", S::kUnreadable},
  };
  CatalogWriter writer;
  for (const auto& row : rows) {
    const char* name = row.name.empty() ? nullptr : row.name.c_str();
    EXPECT_EQ(writer.Add(row.path.c_str(), name), row.status) << row.name << " " << row.path;
    EXPECT_EQ(std::string(writer.failedName), row.status == S::kOk ? "" : row.path) << row.name;
    writer.failedName[0] = '\0';
  }
  ASSERT_EQ(writer.Write(Catalog().c_str()), S::kOk);
  ASSERT_EQ(gFMG->OpenCatalog(Catalog().c_str()), 1);
  gFMG->catalogs.MoveFirst();
  auto* catalog = static_cast<CatalogFile*>(gFMG->catalogs.current->payload);
  EXPECT_EQ(catalog->headerList.count, 3) << "only the accepted files are stored";
  EXPECT_EQ(catalog->extensionList.count, 2);
  EXPECT_EQ(gFMG->GetFileSize("KEPT.DAT"), 4u);
  gFMG->CloseCatalog(Catalog().c_str());
}

TEST_F(CatalogWriterTest, RefusesATotalPastTheThirtyTwoBitOffsets) {
  // Header 28, entry 8 + 6, extension 4 + 4: 50 bytes besides the data. Sparse files cost nothing.
  auto sparse = [&](const char* name, std::uintmax_t size) {
    std::string path = Source(name, "");
    std::filesystem::resize_file(dir_.file(name), size);
    return path;
  };
  CatalogWriter fits, tooLarge, sum;
  EXPECT_EQ(fits.Add(sparse("a.big", 0xFFFFFFFFu - 50).c_str()), CatalogWriteStatus::kOk);
  EXPECT_EQ(tooLarge.Add(sparse("b.big", 0xFFFFFFFFu - 49).c_str()), CatalogWriteStatus::kTooLarge);
  EXPECT_EQ(sum.Add(sparse("c.big", 0x80000000u).c_str()), CatalogWriteStatus::kOk);
  EXPECT_EQ(sum.Add(sparse("d.big", 0x80000000u).c_str()), CatalogWriteStatus::kTooLarge);
}

TEST_F(CatalogWriterTest, AFailedWriteLeavesTheOldCatalogAndNoTemporaryFile) {
  writeWholeFile(dir_.file("out.cat"), "an old catalog");
  std::filesystem::create_directory(dir_.file("taken.cat"));
  using S = CatalogWriteStatus;
  const struct {
    const char* change;  // s.dat's bytes between Add and Write; null: removed
    const char* catalog;
    S status;
    bool namesSource;  // failedName is s.dat rather than the catalog
  } rows[] = {
      {"source, grown", "out.cat", S::kChanged, true},
      {"short", "out.cat", S::kChanged, true},
      {nullptr, "out.cat", S::kUnreadable, true},
      {"source", "taken.cat", S::kWriteFailed, false},  // the rename onto a folder fails
  };
  for (const auto& row : rows) {
    CatalogWriter writer;
    ASSERT_EQ(writer.Add(Source("x.dat", "x").c_str()), S::kOk);
    const std::string source = Source("s.dat", "source"),
                      catalog = systemPath(dir_.file(row.catalog));
    ASSERT_EQ(writer.Add(source.c_str()), S::kOk);
    if (row.change)
      writeWholeFile(dir_.file("s.dat"), row.change);
    else
      std::filesystem::remove(dir_.file("s.dat"));
    EXPECT_EQ(writer.Write(catalog.c_str()), row.status) << (row.change ? row.change : "removed");
    EXPECT_EQ(std::string(writer.failedName), row.namesSource ? source : catalog);
    EXPECT_EQ(readWholeFile(dir_.file("out.cat")), "an old catalog");
    std::filesystem::remove(dir_.file("s.dat"));
    EXPECT_EQ(Listing(), "out.cat taken.cat x.dat") << "no temporary file is left";
  }
}

TEST_F(CatalogWriterTest, AWriteTheFileSystemCutsShortFailsAndLeavesNothing) {
  // Far more data than the buffer holds follows the failed write: none of it may be kept.
  CatalogWriter writer;
  for (const char* name : {"a.dat", "b.dat", "c.dat"})
    ASSERT_EQ(writer.Add(Source(name, std::string(1500000, *name)).c_str()),
              CatalogWriteStatus::kOk);
  rlimit saved;
  getrlimit(RLIMIT_FSIZE, &saved);
  rlimit small = saved;
  small.rlim_cur = 100000;
  std::signal(SIGXFSZ, SIG_IGN);  // a write past the limit fails instead of ending the process
  setrlimit(RLIMIT_FSIZE, &small);
  CatalogWriteStatus status = writer.Write(Catalog().c_str());
  setrlimit(RLIMIT_FSIZE, &saved);
  EXPECT_EQ(status, CatalogWriteStatus::kWriteFailed);
  EXPECT_EQ(std::string(writer.failedName), Catalog());
  EXPECT_EQ(Listing(), "a.dat b.dat c.dat");
}

TEST_F(CatalogWriterTest, ExhaustedMemoryAtEachAllocationWritesNothingAndLeaksNothing) {
  const std::string a = Source("a.dat", "aaa"), b = Source("b.ini", "bb");
  for (int n = 1;; n++) {
    std::int64_t before = LiveBlocks();
    CatalogWriteStatus status;
    {
      CatalogWriter writer;
      hostHeapFailNth(n);
      status = writer.Add(a.c_str());
      if (status == CatalogWriteStatus::kOk) status = writer.Add(b.c_str());
      if (status == CatalogWriteStatus::kOk) status = writer.Write(Catalog().c_str());
      hostHeapFailNth(0);
    }
    EXPECT_EQ(LiveBlocks(), before) << n;
    if (status == CatalogWriteStatus::kOk) {
      EXPECT_GT(n, 4) << "entries, extensions, the list blocks and the buffer all allocate";
      break;
    }
    EXPECT_EQ(status, CatalogWriteStatus::kNoMemory) << n;
    EXPECT_EQ(Listing(), "a.dat b.ini") << n;
  }
}
