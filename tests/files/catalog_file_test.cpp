// Tests of CatalogFile: the format read byte by byte, every failure of Load, reads and seeks.
#include "files/catalog_file.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/memory_manager.h"
#include "catalog_writer.h"
#include "files_test_util.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

namespace {

const std::string kNul("\0", 1);

class CatalogFileTest : public KernelTest {
 protected:
  // Writes `bytes` as the catalog and loads it; the traces of the load go to *lines.
  CatalogFile* Load(const std::string& bytes, std::vector<std::string>* lines = nullptr) {
    writeWholeFile(dir_.file("t.cat"), bytes);
    TraceCapture traces;
    auto* catalog = new CatalogFile(path().c_str());
    if (lines) *lines = traces.Lines();
    return catalog;
  }
  std::string path() const { return systemPath(dir_.file("t.cat")); }
  std::string Read(CatalogFile* catalog, FileHandleRecord* record, std::uint32_t count) {
    char buffer[256];
    std::int32_t got = catalog->ReadFoundFile(record, buffer, count);
    return got > 0 ? std::string(buffer, got) : std::string();
  }

  TempDir dir_;
};

// A catalog of two files, laid out as in the format's own example but with small data.
CatalogWriter twoFiles() {
  CatalogWriter writer;
  writer.Add("A.DAT", "aaaaa").Add("b.ini", "bbb");
  return writer;
}

}  // namespace

TEST_F(CatalogFileTest, LoadsOrFailsWithTheDocumentedMessage) {
  struct Row {
    const char* what;
    std::string bytes;
    std::string message;  // with %P for the path; empty: loads without a trace
  };
  std::string oneExt = catalogExtensionEntry(4, "DAT" + kNul);
  std::string name258(258, 'N');
  std::vector<Row> rows = {
      {"empty file", "", "Error reading CatalogHeader for %P!"},
      {"27 bytes", catalogHeader("CAT", 0, 0, 0).substr(0, 27),
       "Error reading CatalogHeader for %P!"},
      {"bad magic", catalogHeader("PAK", 0, 0, 0), "%P is not a catalog file!"},
      {"longer magic", catalogHeader("CATA", 0, 0, 0), "%P is not a catalog file!"},
      {"magic without NUL", catalogHeader("CATX", 0, 0, 0), "%P is not a catalog file!"},
      {"lower-case magic", catalogHeader("cat", 0, 0, 0), ""},
      {"no files", catalogHeader("Cat", 0, 1, 0) + oneExt, ""},
      {"negative file count", catalogHeader("CAT", -5, 1, 0) + oneExt, ""},
      {"name of 259",
       catalogHeader("CAT", 1, 1, 0) + catalogFileEntry(0, 259, name258 + kNul) + oneExt, ""},
      {"name of 260", catalogHeader("CAT", 1, 1, 0) + catalogFileEntry(0, 260, name258 + "NN"),
       "Error while reading catalog %P: invalid filename length 260!"},
      {"negative name length", catalogHeader("CAT", 1, 1, 0) + catalogFileEntry(0, -1, "X"),
       "Error while reading catalog %P: invalid filename length -1!"},
      {"very negative name length",
       catalogHeader("CAT", 1, 1, 0) + catalogFileEntry(0, INT32_MIN, "X"),
       "Error while reading catalog %P: invalid filename length -2147483648!"},
      {"zero name length",
       catalogHeader("CAT", 2, 1, 0) + catalogFileEntry(0, 0, "") +
           catalogFileEntry(0, 6, "Z.DAT" + kNul) + oneExt,
       ""},
      {"name without NUL", catalogHeader("CAT", 1, 1, 0) + catalogFileEntry(0, 5, "Z.DAT") + oneExt,
       ""},
      {"name cut by the end", catalogHeader("CAT", 1, 1, 0) + catalogFileEntry(0, 6, "Z.D"),
       "Error while reading catalog %P: unable to read filename 0!"},
      {"file count beyond the file",
       catalogHeader("CAT", 1000000, 1, 0) + catalogFileEntry(0, 6, "Z.DAT" + kNul),
       "Error while reading catalog %P: unable to read filename 1!"},
      {"extension of 300",
       catalogHeader("CAT", 0, 1, 0) + catalogExtensionEntry(300, std::string(300, 'E')),
       "Error while reading catalog %P: invalid extension length 300!"},
      {"negative extension length", catalogHeader("CAT", 0, 1, 0) + catalogExtensionEntry(-7, "E"),
       "Error while reading catalog %P: invalid extension length -7!"},
      {"extension cut by the end",
       catalogHeader("CAT", 0, 2, 0) + oneExt + catalogExtensionEntry(4, "IN"),
       "Error while reading catalog %P: unable to read extension 1!"},
      {"extension of 259",
       catalogHeader("CAT", 0, 1, 0) + catalogExtensionEntry(259, std::string(259, 'e')), ""},
  };
  for (const Row& row : rows) {
    std::int64_t before = LiveBlocks();
    std::vector<std::string> lines;
    CatalogFile* catalog = Load(row.bytes, &lines);
    ASSERT_NE(catalog, nullptr);
    std::string expected = row.message;
    if (auto at = expected.find("%P"); at != std::string::npos) expected.replace(at, 2, path());
    if (expected.empty()) {
      EXPECT_NE(catalog->handle, -1) << row.what;
      EXPECT_STREQ(catalog->path, path().c_str()) << row.what;
      EXPECT_TRUE(lines.empty()) << row.what;
    } else {
      EXPECT_EQ(catalog->handle, -1) << row.what;
      EXPECT_STREQ(catalog->path, "") << row.what;
      EXPECT_EQ(lines, std::vector<std::string>{"MSG|" + expected}) << row.what;
    }
    delete catalog;
    EXPECT_EQ(LiveBlocks(), before) << row.what;
  }
}

TEST_F(CatalogFileTest, TextFieldsAreEndedAtTheirEndAndUpperCased) {
  std::string bytes = catalogHeader("CAT", 4, 2, 10) + catalogFileEntry(100, 0, "") +
                      catalogFileEntry(103, 5, "z.dat") +
                      catalogFileEntry(104, 259, std::string(255, 'n') + ".DAT") +
                      catalogFileEntry(106, 9, "x.dat" + kNul + "jun") +
                      catalogExtensionEntry(4, "dat" + kNul) +
                      catalogExtensionEntry(259, std::string(259, 'e'));
  CatalogFile* catalog = Load(bytes);
  ASSERT_NE(catalog->handle, -1);
  ASSERT_EQ(catalog->headerList.count, 4);
  auto entry = [&](int i) { return static_cast<CatalogFileHeader*>(catalog->headerList.data[i]); };
  EXPECT_STREQ(entry(0)->name, "");
  EXPECT_STREQ(entry(1)->name, "Z.DAT");
  EXPECT_EQ(std::string(entry(2)->name), std::string(255, 'N') + ".DAT");
  EXPECT_STREQ(entry(3)->name, "X.DAT");
  // Sizes follow the offsets; the last one runs to dataSize from the first offset.
  EXPECT_EQ(entry(0)->size, 3u);
  EXPECT_EQ(entry(1)->size, 1u);
  EXPECT_EQ(entry(2)->size, 2u);
  EXPECT_EQ(entry(3)->size, 4u);
  ASSERT_EQ(catalog->extensionList.count, 2);
  EXPECT_EQ(std::string(static_cast<char*>(catalog->extensionList.data[1])), std::string(255, 'E'));
  EXPECT_EQ(catalog->FindFile("Z.DAT", "DAT"), 1);
  EXPECT_EQ(catalog->FindFile("X.DAT", "DAT"), 1);
  EXPECT_EQ(catalog->FindFile("", "DAT"), 0) << "an empty name is never found";
  EXPECT_EQ(catalog->FindFile("Z.DAT", ""), 0);
  EXPECT_EQ(catalog->FindFile("Z.DAT", "INI"), 0);
  delete catalog;
}

TEST_F(CatalogFileTest, EmptyTablesFindNothing) {
  CatalogFile* noExtensions =
      Load(catalogHeader("CAT", 1, 0, 3) + catalogFileEntry(36, 6, "A.DAT" + kNul) + "abc");
  ASSERT_NE(noExtensions->handle, -1);
  EXPECT_EQ(noExtensions->FindFile("A.DAT", "DAT"), 0);
  delete noExtensions;
  CatalogWriter writer;
  CatalogFile* single = Load(writer.Add("ONE.DAT", "12345").Bytes());
  ASSERT_EQ(single->FindFile("ONE.DAT", "DAT"), 1);
  EXPECT_EQ(single->GetFoundFileSize(), single->header.dataSize);
  delete single;
}

TEST_F(CatalogFileTest, EveryPrefixThatCutsTheHeaderOrATableIsRefused) {
  CatalogWriter writer = twoFiles();
  std::string whole = writer.Bytes();
  // Ends of each entry of the tables, in order: file 0, file 1, extension 0, extension 1.
  std::vector<std::size_t> fileEnds = {28 + 8 + 6, 28 + 2 * (8 + 6)};
  std::vector<std::size_t> extensionEnds = {fileEnds[1] + 4 + 4, fileEnds[1] + 2 * (4 + 4)};
  ASSERT_EQ(extensionEnds[1], writer.TablesEnd());
  for (std::size_t cut = 0; cut < whole.size(); cut++) {
    std::string expected;
    if (cut < 28) {
      expected = "Error reading CatalogHeader for " + path() + "!";
    } else if (cut < fileEnds[1]) {
      expected = "Error while reading catalog " + path() + ": unable to read filename " +
                 (cut < fileEnds[0] ? "0" : "1") + "!";
    } else if (cut < extensionEnds[1]) {
      expected = "Error while reading catalog " + path() + ": unable to read extension " +
                 (cut < extensionEnds[0] ? "0" : "1") + "!";
    }
    std::int64_t before = LiveBlocks();
    std::vector<std::string> lines;
    CatalogFile* catalog = Load(whole.substr(0, cut), &lines);
    if (expected.empty()) {
      // Only stored bytes are missing: the tables load, and reads get what is there.
      EXPECT_NE(catalog->handle, -1) << "cut at " << cut;
      ASSERT_EQ(catalog->FindFile("B.INI", "INI"), 1);
      FileHandleRecord* record = catalog->OpenFoundFile();
      EXPECT_EQ(
          Read(catalog, record, 100),
          whole.substr(writer.Offsets()[1], cut - std::min<std::size_t>(cut, writer.Offsets()[1])));
      catalog->CloseFoundFile(record);
      memFree(record);
    } else {
      EXPECT_EQ(catalog->handle, -1) << "cut at " << cut;
      EXPECT_EQ(lines, std::vector<std::string>{"MSG|" + expected}) << "cut at " << cut;
    }
    delete catalog;
    EXPECT_EQ(LiveBlocks(), before) << "cut at " << cut;
  }
}

TEST_F(CatalogFileTest, RandomBytesLoadOrFailCleanly) {
  std::mt19937 random(20240611);
  std::string valid = twoFiles().Bytes();
  for (int round = 0; round < 400; round++) {
    std::string bytes;
    switch (round % 4) {
      case 0:  // anything at all
        bytes.resize(random() % 120);
        for (char& c : bytes) c = static_cast<char>(random());
        break;
      case 1:  // a catalog header, then noise
        bytes = catalogHeader("CAT", static_cast<std::int32_t>(random() % 40) - 4,
                              static_cast<std::int32_t>(random() % 40) - 4, random());
        for (std::size_t n = random() % 300; n > 0; n--)
          bytes.push_back(static_cast<char>(random()));
        break;
      default:  // a valid catalog with a few bytes changed
        bytes = valid;
        for (int flips = 1 + random() % 4; flips > 0; flips--)
          bytes[random() % bytes.size()] = static_cast<char>(random());
        break;
    }
    std::int64_t before = LiveBlocks();
    CatalogFile* catalog = Load(bytes);
    if (catalog->handle != -1 && catalog->FindFile("B.INI", "INI")) {
      FileHandleRecord* record = catalog->OpenFoundFile();
      char buffer[512];
      while (catalog->ReadFoundFile(record, buffer, sizeof buffer) > 0) {
      }
      catalog->CloseFoundFile(record);
      memFree(record);
    }
    delete catalog;
    EXPECT_EQ(LiveBlocks(), before) << "round " << round;
  }
}

TEST_F(CatalogFileTest, OutOfMemoryFailsTheLoadAndLeaksNothing) {
  writeWholeFile(dir_.file("t.cat"), twoFiles().Bytes());
  // Allocations of a load: the object, the file table's block, two entries, the extension
  // table's block, two extensions. A missing table block is made up by Append.
  const std::vector<std::string> expected = {
      "",  // n = 1: no object
      "",  // n = 2: loads
      "MSG|Unable to allocate memory for catalog header!",
      "MSG|Unable to allocate memory for catalog header!",
      "",
      "MSG|Unable to allocate memory for catalog extension!",
      "MSG|Unable to allocate memory for catalog extension!",
  };
  for (std::size_t n = 1; n <= expected.size() + 1; n++) {
    std::int64_t before = LiveBlocks();
    TraceCapture traces;
    hostHeapFailNth(static_cast<std::int64_t>(n));
    auto* catalog = new CatalogFile(path().c_str());
    bool fired = hostHeapFailPending() == 0;
    hostHeapFailNth(0);
    if (n > expected.size()) {
      EXPECT_FALSE(fired) << "a load makes " << expected.size() << " allocations";
    } else if (n == 1) {
      EXPECT_EQ(catalog, nullptr);
    }
    if (catalog) {
      std::vector<std::string> lines = traces.Lines();
      if (n <= expected.size() && !expected[n - 1].empty()) {
        EXPECT_EQ(catalog->handle, -1) << n;
        EXPECT_EQ(lines, std::vector<std::string>{expected[n - 1]}) << n;
      } else {
        EXPECT_NE(catalog->handle, -1) << n;
        EXPECT_EQ(catalog->FindFile("B.INI", "INI"), 1) << n;
      }
      delete catalog;
    }
    EXPECT_EQ(LiveBlocks(), before) << n;
  }
}

TEST_F(CatalogFileTest, LargeFileCountsGetNoBlockAndStopAtTheListLimit) {
  // 65534 entries fit one block made up front; the load here fails at the second entry, but
  // the block shows.
  std::vector<std::string> lines;
  CatalogFile* catalog =
      Load(catalogHeader("CAT", 65534, 0, 0) + catalogFileEntry(0, 1, kNul), &lines);
  EXPECT_EQ(catalog->headerList.capacity, 65534);
  delete catalog;

  // From 65535 on the list starts at 8 and doubles; 32768 is as far as it goes.
  std::string bytes = catalogHeader("CAT", 65535, 0, 0);
  for (int i = 0; i < 32769; i++) bytes += catalogFileEntry(0, 0, "");
  catalog = Load(bytes, &lines);
  EXPECT_EQ(catalog->handle, -1);
  EXPECT_EQ(lines,
            std::vector<std::string>{"MSG|Unable to append new file header to the header list!"});
  EXPECT_EQ(catalog->headerList.count, 32768);
  delete catalog;
}

TEST_F(CatalogFileTest, ReadsStayInTheirEntryAndAlternateCleanly) {
  CatalogWriter writer;
  writer.Add("A.DAT", "0123456789").Add("B.DAT", "abcdefghij").Add("C.DAT", "KLMNO");
  std::vector<std::uint32_t> offsets = writer.Offsets();
  CatalogFile* catalog = Load(writer.Bytes());
  ASSERT_NE(catalog->handle, -1);

  ASSERT_EQ(catalog->FindFile("A.DAT", "DAT"), 1);
  FileHandleRecord* a = catalog->OpenFoundFile();
  ASSERT_EQ(catalog->FindFile("B.DAT", "DAT"), 1);
  FileHandleRecord* b = catalog->OpenFoundFile();
  EXPECT_EQ(a->handle, 1);
  EXPECT_EQ(b->handle, 2);
  EXPECT_EQ(catalog->OpenFileCount, 2);

  EXPECT_EQ(Read(catalog, a, 3), "012");
  EXPECT_EQ(Read(catalog, b, 3), "abc");
  EXPECT_EQ(Read(catalog, a, 3), "345");
  EXPECT_EQ(Read(catalog, b, 4), "defg");
  EXPECT_EQ(Read(catalog, a, 100), "6789") << "never past the entry's end";
  EXPECT_EQ(Read(catalog, a, 100), "");
  EXPECT_EQ(a->currentOffset, offsets[0] + 10);
  EXPECT_EQ(Read(catalog, b, 100), "hij");

  // Seeks: origin 0 from the entry's start, 1 from the current position, 2 stays.
  EXPECT_EQ(catalog->SeekFoundFile(a, 0, 0), static_cast<std::int32_t>(offsets[0]));
  EXPECT_EQ(catalog->SeekFoundFile(a, 4, 1), static_cast<std::int32_t>(offsets[0] + 4));
  EXPECT_EQ(catalog->SeekFoundFile(a, -99, 2), static_cast<std::int32_t>(offsets[0] + 4));
  EXPECT_EQ(Read(catalog, b, 1), "") << "b stays at its end while a seeks";
  EXPECT_EQ(Read(catalog, a, 2), "45");
  EXPECT_EQ(catalog->SeekFoundFile(a, -1, 1), static_cast<std::int32_t>(offsets[0] + 5));
  EXPECT_EQ(Read(catalog, a, 1), "5");
  // Before the entry: refused, nothing moves.
  EXPECT_EQ(catalog->SeekFoundFile(a, -1, 0), -1);
  EXPECT_EQ(catalog->SeekFoundFile(a, -7, 1), -1);
  EXPECT_EQ(Read(catalog, a, 1), "6");
  // Past the end: allowed, and reads give nothing.
  EXPECT_EQ(catalog->SeekFoundFile(a, 50, 0), static_cast<std::int32_t>(offsets[0] + 50));
  EXPECT_EQ(Read(catalog, a, 10), "");

  // Numbers are not reused within a load.
  catalog->CloseFoundFile(a);
  memFree(a);
  ASSERT_EQ(catalog->FindFile("C.DAT", "DAT"), 1);
  FileHandleRecord* c = catalog->OpenFoundFile();
  EXPECT_EQ(c->handle, 3);
  EXPECT_EQ(Read(catalog, c, 100), "KLMNO");

  {
    TraceCapture traces;
    catalog->Unload();
    EXPECT_EQ(traces.Lines(), std::vector<std::string>{"MSG|Catalog file " + path() +
                                                       " is still in use! (OpenFileCount = 2)"});
  }
  EXPECT_EQ(catalog->handle, -1);
  EXPECT_EQ(catalog->FindFile("C.DAT", "DAT"), 0);
  memFree(b);
  memFree(c);
  delete catalog;
}
