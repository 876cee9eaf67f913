// Tests of CatalogWriter: the exact layout, the refusals, failed writes and exhausted memory.
#include "files/catalog_writer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <string>

#include "catalog_bytes.h"
#include "kernel_fixture.h"
#include "packed_catalog.h"
#include "platform/host_heap.h"

using S = CatalogWriteStatus;
const std::string kNul(1, '\0');

class CatalogWriterTest : public KernelTest {
 protected:
  std::string Source(const std::string& name, const std::string& bytes, std::uintmax_t sparse = 0) {
    writeWholeFile(dir_.file(name), bytes);
    if (sparse) std::filesystem::resize_file(dir_.file(name), sparse);
    return systemPath(dir_.file(name));
  }
  std::ptrdiff_t Entries() const {
    return std::distance(std::filesystem::directory_iterator(dir_.path()), {});
  }

  TempDir dir_;
  const std::string catalog_ = systemPath(dir_.file("out.cat"));
};

// Extensions once each, in order of first use; an empty file takes no data bytes.
TEST_F(CatalogWriterTest, WritesTheDocumentedLayout) {
  EXPECT_EQ(PackedCatalog().Add("a.dat", "aaa").Add("B.ini", "bb").Add("e.dat", "").Bytes(),
            catalogHeader("CAT", 3, 2, 5) + le32(86) + catalogField(6, "A.DAT" + kNul) +
                le32(89) + catalogField(6, "B.INI" + kNul) + le32(91) +
                catalogField(6, "E.DAT" + kNul) + catalogField(4, "DAT" + kNul) +
                catalogField(4, "INI" + kNul) + "aaabb");
}

TEST_F(CatalogWriterTest, RefusesWhatTheReaderCouldNotTakeAndAddsNothingThen) {
  const std::string kept = Source("kept.dat", "kept"), folder = systemPath(dir_.file("f.dat"));
  std::filesystem::create_directory(dir_.file("f.dat"));
  // The name to store, or empty for the path's base name.
  const struct { std::string path, name; S status; } rows[] = {
      {kept, std::string(254, 'n') + ".DAT", S::kOk},  // 258 bytes, 259 with the NUL
      {kept, std::string(255, 'n') + ".DAT", S::kNameTooLong},
      {kept, "X." + std::string(255, 'e'), S::kOk},
      {kept, "Y." + std::string(256, 'e'), S::kExtensionTooLong},
      {kept, "SUB/X.DAT", S::kNotPlainName}, {kept, "TRAILING.", S::kNoExtension},
      {kept, "", S::kOk}, {kept, "Kept.Dat", S::kNameTaken}, {folder, "", S::kUnreadable},
  };
  CatalogWriter writer;
  for (const auto& row : rows) {
    writer.failedName[0] = '\0';
    EXPECT_EQ(writer.Add(row.path.c_str(), row.name.empty() ? nullptr : row.name.c_str()),
              row.status) << row.name << " " << row.path;
    EXPECT_EQ(std::string(writer.failedName), row.status == S::kOk ? "" : row.path) << row.name;
  }
  ASSERT_EQ(writer.Write(catalog_.c_str()), S::kOk);
  EXPECT_EQ(readWholeFile(dir_.file("out.cat")).substr(16, 8), le32(3) + le32(2));  // the accepted
  // Offsets are 32 bits, and one such file takes 50 bytes besides its data.
  CatalogWriter full, tooLarge;
  EXPECT_EQ(full.Add(Source("a.big", "", 0xFFFFFFFFu - 50).c_str()), S::kOk);
  EXPECT_EQ(full.Add(Source("c.big", "", 0x80000000u).c_str()), S::kTooLarge);
  EXPECT_EQ(tooLarge.Add(Source("b.big", "", 0xFFFFFFFFu - 49).c_str()), S::kTooLarge);
}

// s.dat holds more than the write buffer, so that writes fail in the middle of the data too.
TEST_F(CatalogWriterTest, AFailedWriteLeavesTheOldCatalogAndNoTemporaryFile) {
  writeWholeFile(dir_.file("out.cat"), "an old catalog");
  std::filesystem::create_directory(dir_.file("taken.cat"));
  const std::string big(1500000, 's');
  // s.dat's bytes between Add and Write, and a size limit for the files written (0: none).
  const struct { std::string change; const char* catalog; rlim_t sizeLimit; S status; } rows[] = {
      {big + "grown", "out.cat", 0, S::kChanged},
      {"short", "out.cat", 0, S::kChanged},
      {big, "taken.cat", 0, S::kWriteFailed},  // the rename onto a folder fails
      {big, "out.cat", 100000, S::kWriteFailed},
  };
  std::signal(SIGXFSZ, SIG_IGN);  // a write past the limit fails instead of ending the process
  for (const auto& row : rows) {
    CatalogWriter writer;
    ASSERT_EQ(writer.Add(Source("s.dat", big).c_str()), S::kOk);
    writeWholeFile(dir_.file("s.dat"), row.change);
    const std::string catalog = systemPath(dir_.file(row.catalog));
    rlimit saved;
    getrlimit(RLIMIT_FSIZE, &saved);
    rlimit limited = {row.sizeLimit ? row.sizeLimit : saved.rlim_cur, saved.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limited);
    EXPECT_EQ(writer.Write(catalog.c_str()), row.status) << row.change.size();
    setrlimit(RLIMIT_FSIZE, &saved);
    EXPECT_EQ(std::string(writer.failedName),
              row.status == S::kWriteFailed ? catalog : systemPath(dir_.file("s.dat")));
    EXPECT_EQ(readWholeFile(dir_.file("out.cat")), "an old catalog");
    EXPECT_EQ(Entries(), 3) << "no temporary file is left";
  }
}

TEST_F(CatalogWriterTest, ExhaustedMemoryAtEachAllocationWritesNothingAndLeaksNothing) {
  const std::string sources[] = {Source("a.dat", "aaa"), Source("b.ini", "bb")};
  for (int n = 1;; n++) {
    S status = S::kOk;
    {
      CatalogWriter writer;
      hostHeapFailNth(n);
      for (const std::string& source : sources)
        if (status == S::kOk) status = writer.Add(source.c_str());
      if (status == S::kOk) status = writer.Write(catalog_.c_str());
      hostHeapFailNth(0);
    }
    EXPECT_EQ(LiveBlocks(), blocksAtStart_) << n;
    if (status == S::kOk) break;
    EXPECT_EQ(status, S::kNoMemory) << n;
    EXPECT_EQ(Entries(), 2) << n;
  }
}
