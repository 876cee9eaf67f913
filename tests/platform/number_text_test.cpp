// Tests for the locale-independent number text, held against the C library in the "C" locale.
#include "platform/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/comma_locale.h"

namespace {

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }

double widenFloatBits(std::uint32_t bits) { return static_cast<double>(std::bit_cast<float>(bits)); }

// What the C library makes of the text; the tests run it in the "C" locale only.
double classicStrtod(const std::string& text) { return std::strtod(text.c_str(), nullptr); }

std::string classicFixed(double value, int decimals) {
  int length = std::snprintf(nullptr, 0, "%.*f", decimals, value);
  std::vector<char> text(static_cast<std::size_t>(length) + 1);
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return text.data();
}

std::string ourFixed(double value, int decimals) {
  char text[1024];
  std::size_t length = numFormatFixed(text, sizeof(text), value, decimals);
  EXPECT_EQ(length, std::strlen(text));
  return text;
}

std::string ourInt(std::int32_t value) {
  char text[16];
  std::size_t length = numFormatInt(text, sizeof(text), value);
  EXPECT_EQ(length, std::strlen(text));
  return text;
}

// Long texts built at run time; no fixed buffer may cut them.
std::vector<std::string> longTexts() {
  // The exact midpoint between 1 and the next double: only the final 1 decides to round up.
  const std::string half = "1.00000000000000011102230246251565404236316680908203125";
  const std::string zeros(5000, '0');
  return {half + zeros + "1", half + zeros, "1" + zeros + "e-5000", "0." + zeros + "1",
          "0." + zeros + "1e5000", std::string(5000, '9'), "-" + std::string(5000, '9'),
          "0." + std::string(5000, '3'), "4.9406564584124654e-324" + zeros};
}

class NumberText : public ::testing::Test {
 protected:
  void SetUp() override { useClassicLocale(); }
  void TearDown() override { useClassicLocale(); }
};

TEST_F(NumberText, ParsesDoubleAsClassicStrtod) {
  std::vector<std::string> texts = {
      "", " ", ".", "+", "-", "+.", "e5", ".e5", "1e", "1e+", "1e-", "1E5", "1e+5", ".5", "5.",
      "-.5e1", "+.5", "\v\f 12.5x", "\t\n\r-3", " +-1", "1,5", "1.5.5", "007", "\xa0" "1",
      "0.1", "9007199254740993", "123456789012345678901234567890", "1e400", "-1e400", "1e-400",
      "-1e-400", "4.9e-324", "2.4703282292062327e-324", "2.4703282292062328e-324", "1e-320",
      "2.2250738585072011e-308", "1.7976931348623157e308", "1.7976931348623158e308",
      "1.7976931348623159e308", "3.4028234663852886e+38", "-0", "-0.0e10", "0e99999999999999999999",
      "1e-99999999999999999999", "-1e99999999999999999999", "0.000001e308000000000000"};
  for (const std::string& text : longTexts()) texts.push_back(text);
  for (const std::string& text : texts) {
    EXPECT_EQ(bitsOf(numParseDouble(text.c_str())), bitsOf(classicStrtod(text)))
        << text.substr(0, 60) << " (" << text.size() << " bytes)";
  }
}

TEST_F(NumberText, KeepsToTheDecimalFormAndIeeeLimits) {
  const struct {
    const char* text;
    double expected;
  } cases[] = {
      {"inf", 0.0},     {"-INFINITY", 0.0}, {"nan", 0.0},      {" NAN(1)", 0.0},
      {"0x10", 0.0},    {"-0x1p3", -0.0},   {"1e400", HUGE_VAL}, {"-1e400", -HUGE_VAL},
      {"1e-400", 0.0},  {"-1e-400", -0.0},  {"-0", -0.0},
      {"4.9e-324", std::numeric_limits<double>::denorm_min()},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(bitsOf(numParseDouble(c.text)), bitsOf(c.expected)) << c.text;
  }
  EXPECT_EQ(bitsOf(numParseDouble(nullptr)), bitsOf(0.0));
}

TEST_F(NumberText, ParsesRandomTextAsClassicStrtod) {
  std::mt19937_64 random(20240611);
  char text[400];
  for (int i = 0; i < 3000; ++i) {
    double value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    std::snprintf(text, sizeof(text), "%.17g", value);
    EXPECT_EQ(bitsOf(numParseDouble(text)), bitsOf(classicStrtod(text))) << text;
    std::snprintf(text, sizeof(text), "%.*e", static_cast<int>(random() % 26), value);
    EXPECT_EQ(bitsOf(numParseDouble(text)), bitsOf(classicStrtod(text))) << text;
    std::snprintf(text, sizeof(text), "%f", value);
    EXPECT_EQ(bitsOf(numParseDouble(text)), bitsOf(classicStrtod(text))) << text;
  }
  // Digit runs of random length with random exponents, around both ends of the range.
  for (int i = 0; i < 3000; ++i) {
    std::string digits;
    int whole = static_cast<int>(random() % 25), fraction = static_cast<int>(random() % 25);
    for (int d = 0; d < whole; ++d) digits += static_cast<char>('0' + random() % 10);
    if (random() % 2) digits += '.';
    for (int d = 0; d < fraction; ++d) digits += static_cast<char>('0' + random() % 10);
    if (random() % 4) digits += "e" + std::to_string(static_cast<int>(random() % 701) - 350);
    if (random() % 2) digits = "-" + digits;
    EXPECT_EQ(bitsOf(numParseDouble(digits.c_str())), bitsOf(classicStrtod(digits))) << digits;
  }
}

TEST_F(NumberText, ParsesIntAsA32BitAtol) {
  const struct {
    const char* text;
    std::int32_t expected;
  } cases[] = {
      {"", 0},           {"x", 0},           {"-", 0},          {"+-3", 0},
      {" - 5", 0},       {"\xa0" "5", 0},    {"0", 0},          {"42", 42},
      {"-1", -1},        {"+7", 7},          {" \t\n\v\f\r12", 12}, {"12abc", 12},
      {"1.9", 1},        {"1e5", 1},         {"2147483647", INT32_MAX},
      {"2147483648", INT32_MIN}, {"-2147483648", INT32_MIN}, {"-2147483649", INT32_MAX},
      {"4294967296", 0}, {"4294967297", 1},  {"99999999999999999999", 1661992959},
  };
  for (const auto& c : cases) EXPECT_EQ(numParseInt(c.text), c.expected) << c.text;
  EXPECT_EQ(numParseInt(nullptr), 0);
}

TEST_F(NumberText, FormatsFixedAsClassicPrintf) {
  const double values[] = {
      0.0, -0.0, 0.5, 1.5, 2.5, -2.5, 3.5, 0.05, 0.15, 0.25, 0.35, 0.0000005, 0.0000015,
      0.0000025, 1e-7, 0.0078125, 0.0234375, -0.0078125, 123.456, 999999.9999995, 1e15, 1e21,
      4294967296.5, 9007199254740993.0, 1e300, -1e300,
      DBL_MAX, -DBL_MAX, static_cast<double>(FLT_MAX), DBL_MIN, 4.9e-324, 1e-320,
      HUGE_VAL, -HUGE_VAL, NAN, widenFloatBits(0xFFC00000u), widenFloatBits(0x7FC00000u)};
  for (double value : values) {
    for (int decimals : {6, 1, 0}) {
      EXPECT_EQ(ourFixed(value, decimals), classicFixed(value, decimals))
          << std::hexfloat << value << " with " << decimals << " decimals";
    }
  }
  // The same facts spelled out, in case the C library itself ever changes.
  EXPECT_EQ(ourFixed(widenFloatBits(0xFFC00000u), 6), "-nan");
  EXPECT_EQ(ourFixed(-HUGE_VAL, 6), "-inf");
  EXPECT_EQ(ourFixed(-0.0, 6), "-0.000000");
  EXPECT_EQ(ourFixed(2.5, 0), "2");
  EXPECT_EQ(ourFixed(0.0078125, 6), "0.007812");
  EXPECT_EQ(ourFixed(0.25, 1), "0.2");
  EXPECT_EQ(ourFixed(1.5, -1), classicFixed(1.5, -1));
}

TEST_F(NumberText, FormatsRandomDoublesAsClassicPrintf) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 6000; ++i) {
    double value;
    switch (i % 3) {
      case 0:  // any bit pattern, NaNs and huge values included
        value = std::bit_cast<double>(random());
        break;
      case 1:  // any 32-bit float, as a float written to a file is widened
        value = widenFloatBits(static_cast<std::uint32_t>(random()));
        break;
      default:  // everyday sizes, half of them exact ties at some digit
        value = static_cast<double>(static_cast<std::int64_t>(random() % 2000000) - 1000000) /
                static_cast<double>(random() % 2 ? 128 : 1000);
        break;
    }
    for (int decimals : {6, 1, 0}) {
      ASSERT_EQ(ourFixed(value, decimals), classicFixed(value, decimals))
          << std::hexfloat << value << " with " << decimals << " decimals";
    }
  }
}

TEST_F(NumberText, FormatsIntAsClassicPrintf) {
  std::mt19937 random(3);
  std::vector<std::int32_t> values = {0, 1, -1, 10, -10, INT32_MAX, INT32_MIN};
  for (int i = 0; i < 1000; ++i) values.push_back(static_cast<std::int32_t>(random()));
  for (std::int32_t value : values) {
    char expected[16];
    std::snprintf(expected, sizeof(expected), "%d", value);
    EXPECT_EQ(ourInt(value), expected);
  }
}

// Each formatter at every size around the one it needs: it fits exactly or reports 0 with an
// empty text, and never writes a byte past size.
TEST_F(NumberText, ReportsTextThatDoesNotFit) {
  const std::string big = classicFixed(1e300, 6);
  const std::string minInt = "-2147483648";
  for (int formatter = 0; formatter < 2; ++formatter) {
    const std::string& expected = formatter == 0 ? big : minInt;
    for (std::size_t size = 0; size <= expected.size() + 2; ++size) {
      std::vector<char> buffer(expected.size() + 8, 'x');
      std::size_t length = formatter == 0 ? numFormatFixed(buffer.data(), size, 1e300, 6)
                                          : numFormatInt(buffer.data(), size, INT32_MIN);
      if (size > expected.size()) {
        EXPECT_EQ(length, expected.size());
        EXPECT_EQ(std::string(buffer.data()), expected);
      } else {
        EXPECT_EQ(length, 0u) << "size " << size;
        if (size > 0) {
          EXPECT_EQ(buffer[0], 0) << "size " << size;
        }
      }
      for (std::size_t i = size; i < buffer.size(); ++i) {
        if (buffer[i] != 'x') ADD_FAILURE() << "byte " << i << " written, size " << size;
      }
    }
  }
  EXPECT_EQ(numFormatFixed(nullptr, 10, 1.0, 6), 0u);
  EXPECT_EQ(numFormatInt(nullptr, 10, 1), 0u);
}

// Runs every conversion on a fixed set of inputs and lists the results in one text.
std::string transcript() {
  std::string out;
  for (const char* text : {"1.5", "1,5", " -2.25e2", "1e400", "4.9e-324", "12,7", "-0"}) {
    out += std::to_string(bitsOf(numParseDouble(text))) + " " + std::to_string(numParseInt(text)) + "\n";
  }
  for (double value : {1.5, -0.0, 1234567.875, 1e300, HUGE_VAL, std::nan("")}) {
    for (int decimals : {6, 1, 0}) out += ourFixed(value, decimals) + "\n";
  }
  out += ourInt(-123456) + "\n";
  return out;
}

TEST_F(NumberText, IgnoresADecimalCommaLocale) {
  const std::string classic = transcript();
  std::string why;
  ASSERT_TRUE(useCommaLocale(&why)) << why;
  // The locale is really in force for the C library...
  EXPECT_EQ(classicFixed(1.5, 6), "1,500000");
  EXPECT_EQ(classicStrtod("1,5"), 1.5);
  // ...and changes nothing here.
  EXPECT_EQ(transcript(), classic);
  EXPECT_EQ(numParseDouble("1,5"), 1.0);
  EXPECT_EQ(ourFixed(1.5, 6), "1.500000");
}

}  // namespace
