// Tests of CatalogFile's load: malformed catalogs load or fail with their trace.
#include "files/catalog_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "catalog_bytes.h"
#include "kernel_fixture.h"

namespace {

const std::string kNul(1, '\0');

class CatalogFileTest : public KernelTest {
 protected:
  // Loads `bytes` as a catalog and checks its one trace: `message`, with %P for the catalog's
  // path, or none for an empty one. Tells whether `name` with `extension` is found then.
  bool Load(const std::string& bytes, std::string message, const std::string& name,
            const std::string& extension) {
    std::int64_t before = LiveBlocks();
    writeWholeFile(dir_.file("t.cat"), bytes);
    std::vector<std::string> lines;
    bool found;
    {
      TraceCapture traces;
      CatalogFile catalog(path_.c_str());
      lines = traces.Lines();
      EXPECT_EQ(catalog.handle == -1, !message.empty());
      found = catalog.FindFile(name.c_str(), extension.c_str());
    }
    if (auto at = message.find("%P"); at != std::string::npos) message.replace(at, 2, path_);
    EXPECT_EQ(lines, message.empty() ? std::vector<std::string>{} : std::vector{"MSG|" + message});
    EXPECT_EQ(LiveBlocks(), before);
    return found;
  }

  TempDir dir_;
  std::string path_ = systemPath(dir_.file("t.cat"));
};

}  // namespace

TEST_F(CatalogFileTest, MalformedCatalogsLoadOrFailAsDocumented) {
  const std::string dat = catalogField(4, "DAT" + kNul), oneFile = catalogHeader("CAT", 1, 1, 0);
  auto entry = [](std::int32_t n, const std::string& s) { return le32(0) + catalogField(n, s); };
  const std::string name259 = std::string(254, 'N') + ".DAT", invalid = "Error while reading "
                                                                         "catalog %P: invalid ";
  RawCatalog nine;
  for (char digit = '1'; digit <= '9'; digit++) nine.Add(std::string(1, digit) + ".A", "");
  const struct {
    std::string bytes;
    std::string message;  // the failure's one trace; empty: loads without a trace
    std::string find = "", extension = "DAT";  // once loaded, found
  } rows[] = {
      {catalogHeader("CATX", 0, 0, 0), "%P is not a catalog file!"},
      {catalogHeader("cat", 1, 1, 0) + entry(6, "z.dat" + kNul) + dat, "", "Z.DAT"},
      {oneFile + entry(259, name259 + kNul) + dat, "", name259},
      {oneFile + entry(260, std::string(260, 'N')), invalid + "filename length 260!"},
      {oneFile + entry(-1, "X"), invalid + "filename length -1!"},
      {catalogHeader("CAT", 2, 1, 0) + entry(0, "") + entry(6, "Z.DAT" + kNul) + dat, "", "Z.DAT"},
      {oneFile + entry(5, "Z.DAT") + dat, "", "Z.DAT"},  // no NUL
      {catalogHeader("CAT", 1000000, 1, 0) + entry(6, "Z.DAT" + kNul),
       "Error while reading catalog %P: unable to read filename 1!"},
      {nine.Bytes(), "", "9.A", "A"},  // the table's block made for all nine
      {oneFile + entry(6, "Z.DAT" + kNul) + catalogField(259, std::string(259, 'E')), "", "Z.DAT",
       std::string(255, 'E')},
      {catalogHeader("CAT", 0, 1, 0) + catalogField(300, std::string(300, 'e')),
       invalid + "extension length 300!"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.message + " " + row.find);
    EXPECT_EQ(Load(row.bytes, row.message, row.find, row.extension), !row.find.empty());
  }
}
