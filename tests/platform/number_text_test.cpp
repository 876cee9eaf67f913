// Tests for the locale-independent number text, held against the C library in the "C" locale.
#include "platform/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/comma_locale.h"

namespace {

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }
double widenFloat(std::uint32_t bits) { return static_cast<double>(std::bit_cast<float>(bits)); }

// Where the parser parts from strtod (no hex, inf, nan), and ints as a 32-bit atol: mod 2^32.
const struct { const char* text; double asDouble; std::int32_t asInt; } kKnown[] = {
    {"inf", 0.0, 0}, {"-INFINITY", 0.0, 0}, {" NAN(1)", 0.0, 0}, {"-0x1p3", -0.0, 0},
    {" - 5", 0.0, 0}, {"+7", 7.0, 7}, {" \t\n\v\f\r-12.9", -12.9, -12}, {"1e5", 1e5, 1},
    {"2147483648", 2147483648.0, INT32_MIN}, {"-2147483649", -2147483649.0, INT32_MAX},
    {"4294967297", 4294967297.0, 1}, {"99999999999999999999", 1e20, 1661992959}};

// What the tests convert: edge cases, then a few thousand random ones.
struct Inputs {
  std::vector<std::string> texts = {
      "", " ", ".", "+-1", "e5", ".e5", "1e", "1e+", "1E-", "1e+5", ".5", "5.", "-.5e1",
      "\v\f 12.5x", "\t\n\r-3", "1,5", "1.5.5", "\xa0" "1", "0.1", "9007199254740993", "1e400",
      "-1e400", "1e-400", "-1e-400", "4.9e-324", "2.4703282292062327e-324",
      "2.4703282292062328e-324", "2.2250738585072011e-308", "1.7976931348623157e308",
      "1.7976931348623159e308", "3.4028234663852886e+38", "-0", "-0.0e10",
      "0e99999999999999999999", "1e-99999999999999999999", "0.000001e308000000000000"};
  std::vector<double> doubles = {
      0.0, -0.0, 0.5, 2.5, -2.5, 0.15, 0.35, 0.0000005, 0.0000015, 0.0000025, 1e-7, 0.0078125,
      -0.0078125, 999999.9999995, 8999999995904.0, 9000000520192.0, -8.9999999e12, 1e-6,
      widenFloat(1), widenFloat(0x80000001u), -1e-7, 3.4028235e38, 1e21, 9007199254740993.0, DBL_MAX, -DBL_MAX, FLT_MAX, DBL_MIN,
      4.9e-324, 1e-320, HUGE_VAL, -HUGE_VAL, NAN, widenFloat(0xFFC00000u)};
  std::vector<std::int32_t> ints = {0, 1, -1, 10, INT32_MAX, INT32_MIN};
  Inputs() {
    // The midpoint between 1 and the next double: only a 1 after 5,000 zeros rounds it up.
    const std::string half = "1.00000000000000011102230246251565404236316680908203125";
    const std::string zeros(5000, '0');
    texts.insert(texts.end(), {half + zeros + "1", half + zeros, "1" + zeros + "e-5000",
                               "0." + zeros + "1e5000", "-" + std::string(5000, '9')});
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 3000; ++i) {
      doubles.push_back(std::bit_cast<double>(random()));
      doubles.push_back(widenFloat(static_cast<std::uint32_t>(random())));
      // Floats of everyday size, the ones gun files hold.
      doubles.push_back(static_cast<float>(std::ldexp(static_cast<double>(random() % (1u << 24)),
                                                      static_cast<int>(random() % 40) - 40)));
      // Everyday sizes, many of them exact ties at some digit.
      doubles.push_back((static_cast<double>(random() % 2000000) - 1e6) / (i % 2 ? 128 : 1000));
      ints.push_back(static_cast<std::int32_t>(random()));
      // Up to 50 random digits, maybe a point and an exponent, around both ends of the range.
      std::string run = random() % 2 ? "-" : "";
      for (int d = static_cast<int>(random() % 50), point = d / 2; d > 0; --d)
        run += d == point && random() % 2 ? '.' : static_cast<char>('0' + random() % 10);
      if (random() % 4) run += "e" + std::to_string(static_cast<int>(random() % 701) - 350);
      texts.push_back(run);
    }
  }
};

// Every input converted by this unit (ours) or the C library, one row each naming its input.
std::vector<std::string> convert(const Inputs& in, bool ours) {
  std::vector<std::string> rows;
  for (const std::string& t : in.texts)
    rows.push_back(t.substr(0, 60) + " (" + std::to_string(t.size()) + "): " +
                   std::to_string(bitsOf(ours ? numParseDouble(t.c_str()) : strtod(t.c_str(), 0))));
  for (const auto& c : kKnown)
    rows.push_back(std::string(c.text) + ": " +
                   std::to_string(bitsOf(ours ? numParseDouble(c.text) : c.asDouble)) + " " +
                   std::to_string(ours ? numParseInt(c.text) : c.asInt));
  char text[1024];
  for (double value : in.doubles) {
    for (int decimals : {6, 1, 0, -1}) {
      long length = ours ? static_cast<long>(numFormatFixed(text, sizeof text, value, decimals))
                         : std::snprintf(text, sizeof text, "%.*f", decimals, value);
      rows.push_back(std::to_string(bitsOf(value)) + " %." + std::to_string(decimals) + "f: " +
                     text + " #" + std::to_string(length));
    }
    for (int digits : {6, 1}) {
      long length = ours ? static_cast<long>(numFormatGeneral(text, sizeof text, value, digits))
                         : std::snprintf(text, sizeof text, "%.*g", digits, value);
      rows.push_back(std::to_string(bitsOf(value)) + " %." + std::to_string(digits) + "g: " +
                     text + " #" + std::to_string(length));
    }
  }
  for (std::int32_t value : in.ints) {
    long length = ours ? static_cast<long>(numFormatInt(text, sizeof text, value))
                       : std::snprintf(text, sizeof text, "%d", value);
    rows.push_back(std::to_string(value) + " %d: " + text + " #" + std::to_string(length));
  }
  return rows;
}

// The C library in the "C" locale is the reference; a decimal-comma locale changes nothing.
TEST(NumberText, ConvertsAsTheCLibraryInAnyLocale) {
  struct ClassicAtEnd { ~ClassicAtEnd() { useClassicLocale(); } } restore;
  const Inputs in;
  const std::vector<std::string> classic = convert(in, false);
  std::string why;
  for (bool comma : {false, true}) {
    ASSERT_TRUE(!comma || useCommaLocale(&why)) << why;
    const std::vector<std::string> ours = convert(in, true);
    for (std::size_t i = 0; i < classic.size(); ++i)
      EXPECT_EQ(ours.at(i), classic[i]) << (comma ? "under a decimal comma" : "");
  }
}

// Every size around the one needed: the text fits, or 0 and an empty text; no byte past size.
TEST(NumberText, NeverWritesPastASmallBuffer) {
  for (bool fixed : {true, false}) {
    const std::string expected = fixed ? "-1180591620717411303424.000000" : "-2147483648";
    for (std::size_t size = 0; size <= expected.size() + 1; ++size) {
      std::string buffer(expected.size() + 8, 'x');
      std::size_t length = fixed ? numFormatFixed(buffer.data(), size, -0x1p70, 6)
                                 : numFormatInt(buffer.data(), size, INT32_MIN);
      bool fits = size > expected.size();
      EXPECT_EQ(length, fits ? expected.size() : 0u) << expected << " in " << size;
      EXPECT_STREQ(size > 0 ? buffer.c_str() : "", fits ? expected.c_str() : "") << size;
      EXPECT_EQ(buffer.substr(size), std::string(buffer.size() - size, 'x')) << size;
    }
  }
  EXPECT_EQ(numFormatFixed(nullptr, 10, 1.0, 6) + numFormatInt(nullptr, 10, 1), 0u);
  EXPECT_EQ(bitsOf(numParseDouble(nullptr)) + numParseInt(nullptr), 0u);
}

}  // namespace

// A form field is a number only as a whole: white space around it is fine, anything else isn't.
TEST(NumberText, ReadsAWholeTextAsOneNumberOrNot) {
  const struct {
    const char* text;
    int whole;
    double value;
  } cases[] = {{"12.5", 1, 12.5}, {"  -3e2\t", 1, -300}, {"0", 1, 0}, {"", 0, 0},
               {"  ", 0, 0},      {"12x", 0, 0},        {"1 2", 0, 0}, {"abc", 0, 0},
               {"inf", 0, 0},     {"1e", 0, 0},         {".5", 1, 0.5}};
  for (const auto& c : cases) {
    double value = 99;
    EXPECT_EQ(numParseDoubleWhole(c.text, &value), c.whole) << c.text;
    EXPECT_EQ(value, c.whole ? c.value : 99) << c.text;
  }
  double untouched = 99;
  EXPECT_EQ(numParseDoubleWhole(nullptr, &untouched), 0);
}
