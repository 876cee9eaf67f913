// Tests of CatalogFile's load: malformed catalogs load or fail with their trace.
#include "files/catalog_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalog_bytes.h"
#include "kernel_fixture.h"

namespace {

const std::string kNul(1, '\0');

class CatalogFileTest : public KernelTest {};

}  // namespace

TEST_F(CatalogFileTest, MalformedCatalogsLoadOrFailAsDocumented) {
  TempDir dir;
  const std::string path = systemPath(dir.file("t.cat")), reading = "Error while reading catalog ";
  const std::string dat = catalogField(4, "DAT" + kNul), oneFile = catalogHeader("CAT", 1, 1, 0);
  auto entry = [](std::int32_t n, const std::string& s) { return le32(0) + catalogField(n, s); };
  const std::string name259(254, 'N'), invalid = reading + path + ": invalid ";
  RawCatalog nine;
  for (char digit = '1'; digit <= '9'; digit++) nine.Add(std::string(1, digit) + ".A", "");
  // The failure's one trace, or empty for a load without a trace that finds `find`.
  const struct { std::string bytes, message, find = "", extension = "DAT"; } rows[] = {
      {catalogHeader("CATX", 0, 0, 0), path + " is not a catalog file!"},
      {catalogHeader("cat", 1, 1, 0) + entry(6, "z.dat" + kNul) + dat, "", "Z.DAT"},
      {oneFile + entry(259, name259 + ".DAT" + kNul) + dat, "", name259 + ".DAT"},
      {oneFile + entry(260, std::string(260, 'N')), invalid + "filename length 260!"},
      {oneFile + entry(-1, "X"), invalid + "filename length -1!"},
      {catalogHeader("CAT", 2, 1, 0) + entry(0, "") + entry(6, "Z.DAT" + kNul) + dat, "", "Z.DAT"},
      {oneFile + entry(5, "Z.DAT") + dat, "", "Z.DAT"},  // no NUL
      {catalogHeader("CAT", 1000000, 1, 0) + entry(6, "Z.DAT" + kNul),
       reading + path + ": unable to read filename 1!"},
      {nine.Bytes(), "", "9.A", "A"},  // the table's block made for all nine
      {oneFile + entry(6, "Z.DAT" + kNul) + catalogField(259, std::string(259, 'E')), "", "Z.DAT",
       std::string(255, 'E')},
      {catalogHeader("CAT", 0, 1, 0) + catalogField(300, std::string(300, 'e')),
       invalid + "extension length 300!"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.message + " " + row.find);
    const std::int64_t before = LiveBlocks();
    writeWholeFile(dir.file("t.cat"), row.bytes);
    std::vector<std::string> lines;
    {
      TraceCapture traces;
      CatalogFile catalog(path.c_str());
      lines = traces.Lines();
      EXPECT_EQ(catalog.handle == -1, !row.message.empty());
      EXPECT_EQ(catalog.FindFile(row.find.c_str(), row.extension.c_str()) != 0, !row.find.empty());
    }
    EXPECT_EQ(lines, row.message.empty() ? std::vector<std::string>{}
                                         : std::vector{"MSG|" + row.message});
    EXPECT_EQ(LiveBlocks(), before);
  }
}
