// Tests of CatalogFile's load: malformed catalogs, every cut of a valid one, and noise.
#include "files/catalog_file.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "base/memory_manager.h"
#include "catalog_bytes.h"
#include "kernel_fixture.h"
#include "packed_catalog.h"

namespace {

const std::string kNul(1, '\0');

class CatalogFileTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    twoFiles_ = PackedCatalog().Add("A.DAT", "aaaaa").Add("b.ini", "bbb").Bytes();
  }
  // Writes `bytes` as the catalog file and loads it; the load's traces go to lines_.
  CatalogFile* Load(const std::string& bytes) {
    writeWholeFile(dir_.file("t.cat"), bytes);
    TraceCapture traces;
    auto* catalog = new CatalogFile(path_.c_str());
    lines_ = traces.Lines();
    return catalog;
  }
  // The trace of `text` with %P for the catalog's path; none for an empty text.
  std::vector<std::string> Traced(std::string text) const {
    if (text.empty()) return {};
    if (auto at = text.find("%P"); at != std::string::npos) text.replace(at, 2, path_);
    return {"MSG|" + text};
  }
  // B.INI's bytes as the catalog reads them, or "<none>".
  static std::string ReadBIni(CatalogFile* catalog) {
    if (catalog->handle == -1 || !catalog->FindFile("B.INI", "INI")) return "<none>";
    FileHandleRecord* record = catalog->OpenFoundFile();
    std::string bytes;
    char buffer[64];
    for (std::int32_t got; (got = catalog->ReadFoundFile(record, buffer, sizeof buffer)) > 0;)
      bytes.append(buffer, got);
    catalog->CloseFoundFile(record);
    memFree(record);
    return bytes;
  }

  TempDir dir_;
  std::string path_ = systemPath(dir_.file("t.cat"));
  std::vector<std::string> lines_;
  // Tables end at 72; A.DAT's bytes lie at 72, B.INI's at 77.
  std::string twoFiles_;
};

}  // namespace

TEST_F(CatalogFileTest, MalformedCatalogsLoadOrFailAsDocumented) {
  const std::string dat = catalogField(4, "DAT" + kNul), oneFile = catalogHeader("CAT", 1, 1, 0);
  auto entry = [](std::int32_t n, const std::string& s) { return le32(0) + catalogField(n, s); };
  const std::string name259 = std::string(254, 'N') + ".DAT";
  RawCatalog nine;
  for (char digit = '1'; digit <= '9'; digit++) nine.Add(std::string(1, digit) + ".A", "");
  const std::string nineFiles = nine.Bytes();
  struct Row {
    const char* name;
    std::string bytes;
    std::string message;    // the failure's one trace; empty: loads without a trace
    std::string find = "";  // once loaded, found with `extension`
    std::string extension = "DAT";
  } rows[] = {
      {"27 bytes", oneFile.substr(0, 27), "Error reading CatalogHeader for %P!"},
      {"bad magic", catalogHeader("CATX", 0, 0, 0), "%P is not a catalog file!"},
      {"lower case", catalogHeader("cat", 1, 1, 0) + entry(6, "z.dat" + kNul) + dat, "", "Z.DAT"},
      {"name of 259", oneFile + entry(259, name259 + kNul) + dat, "", name259},
      {"name of 260", oneFile + entry(260, std::string(260, 'N')),
       "Error while reading catalog %P: invalid filename length 260!"},
      {"negative name length", oneFile + entry(-1, "X"),
       "Error while reading catalog %P: invalid filename length -1!"},
      {"zero name length",
       catalogHeader("CAT", 2, 1, 0) + entry(0, "") + entry(6, "Z.DAT" + kNul) + dat, "", "Z.DAT"},
      {"name without NUL", oneFile + entry(5, "Z.DAT") + dat, "", "Z.DAT"},
      {"file count far beyond the file",
       catalogHeader("CAT", 1000000, 1, 0) + entry(6, "Z.DAT" + kNul),
       "Error while reading catalog %P: unable to read filename 1!"},
      {"nine files, the table's block made for all", nineFiles, "", "9.A", "A"},
      {"extension of 259, kept to 255", oneFile + entry(6, "Z.DAT" + kNul) + catalogField(259, std::string(259, 'E')), "", "Z.DAT",
          std::string(255, 'E')},
      {"extension of 300", catalogHeader("CAT", 0, 1, 0) + catalogField(300, std::string(300, 'e')),
       "Error while reading catalog %P: invalid extension length 300!"},
  };
  for (const Row& row : rows) {
    std::int64_t before = LiveBlocks();
    CatalogFile* catalog = Load(row.bytes);
    EXPECT_EQ(lines_, Traced(row.message)) << row.name;
    EXPECT_EQ(catalog->handle == -1, !row.message.empty()) << row.name;
    EXPECT_EQ(catalog->FindFile(row.find.c_str(), row.extension.c_str()), !row.find.empty()) << row.name;
    delete catalog;
    EXPECT_EQ(LiveBlocks(), before) << row.name;
  }
}

TEST_F(CatalogFileTest, EveryPrefixFailsAtTheFirstCutFieldOrReadsWhatIsThere) {
  // Cuts in the header, the 14-byte name entries and the 8-byte extension entries are reported.
  const std::string cut = "Error while reading catalog %P: unable to read ";
  for (std::size_t size = 0; size < twoFiles_.size(); size++) {
    std::string message = size < 28   ? "Error reading CatalogHeader for %P!"
                          : size < 56 ? cut + "filename " + std::to_string((size - 28) / 14) + "!"
                          : size < 72 ? cut + "extension " + std::to_string((size - 56) / 8) + "!"
                                      : "";
    std::int64_t before = LiveBlocks();
    CatalogFile* catalog = Load(twoFiles_.substr(0, size));
    EXPECT_EQ(lines_, Traced(message)) << size;
    // Only stored bytes missing: the tables load and B.INI gives what is left of it.
    std::string left = size > 77 ? twoFiles_.substr(77, size - 77) : "";
    EXPECT_EQ(ReadBIni(catalog), message.empty() ? left : "<none>") << size;
    delete catalog;
    EXPECT_EQ(LiveBlocks(), before) << size;
  }
}

TEST_F(CatalogFileTest, RandomBytesLoadOrFailCleanly) {
  std::mt19937 random(20240611);
  for (int round = 0; round < 400; round++) {
    std::string bytes = twoFiles_;  // a valid catalog with a few bytes changed
    for (int n = 1 + random() % 4; n > 0; n--)
      bytes[random() % bytes.size()] = static_cast<char>(random());
    if (round % 2) {  // noise, behind a valid magic every other time
      bytes.assign(random() % 300, '\0');
      for (char& c : bytes) c = static_cast<char>(random());
      if (round % 4 == 1) bytes = std::string("CAT", 4) + bytes;
    }
    std::int64_t before = LiveBlocks();
    CatalogFile* catalog = Load(bytes);
    ReadBIni(catalog);
    delete catalog;
    EXPECT_EQ(LiveBlocks(), before) << "round " << round;
  }
}
