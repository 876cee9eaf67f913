// The checker's verdict on numbers whose six-decimal text may read back different, against the
// plain round trip (write six decimals, read back).
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "gun/gun_file.h"
#include "kernel_fixture.h"
#include "platform/number_text.h"
#include "tools/gun_check.h"
#include "tools/gun_text_scan.h"

namespace {

// True when the six-decimal text of the float read from `text` reads back as another float.
bool changesOnItsWay(const std::string& text) {
  auto value = static_cast<float>(numParseDouble(text.c_str()));
  char written[400];
  numFormatFixed(written, sizeof written, static_cast<double>(value), 6);
  auto back = static_cast<float>(numParseDouble(written));
  return std::bit_cast<std::uint32_t>(back) != std::bit_cast<std::uint32_t>(value);
}

// Decimals around the places where a float and its six-decimal text part: below and above 16,
// 64ths up to and past 2^18, one to seven decimals, signs, and a few forms that aren't plain.
std::vector<std::string> numberTexts(int count) {
  std::mt19937 random(20);
  std::vector<std::string> texts = {"15.999999", "16.000001", "262143.984375", "262144.015625",
                                    "-0.000000", "0.0000004", "1e-7", ".5", "00012.500000",
                                    "8388608.5", "16777217.000000", "123456789.123456"};
  const long wholes[] = {0, 1, 7, 15, 16, 17, 1000, 262143, 262144, 999999, 16777216};
  while (static_cast<int>(texts.size()) < count) {
    long whole = random() % 2 ? wholes[random() % std::size(wholes)] : random() % 300000;
    int decimals = static_cast<int>(random() % 8);
    long millionths = random() % 4 == 0 ? (random() % 64) * 15625 : random() % 1000000;
    auto kept = static_cast<std::size_t>(std::min(decimals, 6));
    std::string fraction = std::to_string(1000000 + millionths).substr(1, kept);
    if (decimals == 7) fraction += std::to_string(random() % 10);
    texts.push_back((random() % 5 == 0 ? "-" : "") + std::to_string(whole) + "." + fraction);
  }
  return texts;
}

}  // namespace

class GunCheckNumbersTest : public KernelTest {
 protected:
  TempDir dir;
};

TEST_F(GunCheckNumbersTest, ReportsExactlyTheNumbersWhoseTextChanges) {
  const std::vector<std::string> texts = numberTexts(12000);
  const std::size_t perFile = 3000;  // guns of about 60 bytes each, well within the text limit
  for (std::size_t first = 0; first < texts.size(); first += perFile) {
    std::string file;
    std::set<int> wanted;  // lines of the values that change
    int line = 1;
    for (std::size_t i = first; i < texts.size() && i < first + perFile; i++) {
      char section[kGunSectionNameSize];
      GunSectionName(section, static_cast<int>(i - first + 1));
      // The colour's components are held within 0 to 1, so it takes the fractions only.
      std::string component = "0." + texts[i].substr(texts[i].find('.') + 1);
      file += std::string("[") + section + "]\nCaliber=" + texts[i] + "\nFireColor=" + component +
              ",0.5," + component + "\n";
      if (changesOnItsWay(texts[i])) wanted.insert(line + 1);
      if (changesOnItsWay(component)) wanted.insert(line + 2);
      line += 3;
    }
    ASSERT_FALSE(wanted.empty()) << "the texts should hold values that change";
    writeWholeFile(dir.file("n.ini"), file);
    std::string path = systemPath(dir.file("n.ini"));
    GunTextScan scan;
    ASSERT_TRUE(ScanGunText(path.c_str(), "n.ini", &scan));
    CheckGunText(&scan);
    std::set<int> reported;
    for (const Finding& finding : scan.findings) {
      if (finding.text.find("reads back as") != std::string::npos) reported.insert(finding.line);
    }
    EXPECT_EQ(reported, wanted);
  }
}
