#include "platform/number_text.h"

#include <gtest/gtest.h>

#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "support/comma_locale.h"

namespace {

std::uint64_t bitsOf(double value) { return std::bit_cast<std::uint64_t>(value); }

// Edge cases (ties, both ends of the range, digit runs past what matters), then random ones.
struct Inputs {
  const std::string half = "1.00000000000000011102230246251565404236316680908203125",
                    zeros = std::string(5000, '0');
  std::vector<std::string> texts = {
      "", "+-1", "1e", ".e5", "-.5e1", "\v\f 12.5x", "1,5", "9007199254740993", "1e400",
      "-1e-400", "2.4703282292062328e-324", "1.7976931348623159e308", "-0",
      "0e99999999999999999999", half + zeros + "1", half + zeros, "-" + std::string(5000, '9')};
  std::vector<double> doubles = {-0.0, 2.5, 0.15, 0.0000025, 999999.9999995, 8999999995904.0,
                                 1e21, DBL_MAX, DBL_MIN, 4.9e-324, -HUGE_VAL, NAN};
  std::vector<std::int32_t> ints = {0, INT32_MAX, INT32_MIN};
  Inputs() {
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 3000; ++i) {
      doubles.push_back(std::bit_cast<double>(random()));
      doubles.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
      // Everyday sizes, many of them exact ties at some digit.
      doubles.push_back((static_cast<double>(random() % 2000000) - 1e6) / (i % 2 ? 128 : 1000));
      ints.push_back(static_cast<std::int32_t>(random()));
      std::string run = random() % 2 ? "-" : "";  // up to 50 digits, maybe a point and exponent
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
  char text[1024];
  auto add = [&](const std::string& input, long length) {
    rows.push_back(input + ": " + text + " #" + std::to_string(length));
  };
  for (const std::string& t : in.texts) {
    double value = ours ? numParseDouble(t.c_str()) : std::strtod(t.c_str(), nullptr);
    std::snprintf(text, sizeof text, "%llu", static_cast<unsigned long long>(bitsOf(value)));
    add(t.substr(0, 60) + " (" + std::to_string(t.size()) + ")", 0);
  }
  using Format = std::pair<const char*, int>;  // the C library's format, and its precision
  for (double value : in.doubles) {
    for (auto [format, digits] : {Format{"%.*f", 6}, {"%.*f", 1}, {"%.*f", 0}, {"%.*f", -1},
                                  {"%.*g", 6}, {"%.*g", 1}}) {
      auto* ourFormat = format[3] == 'f' ? numFormatFixed : numFormatGeneral;
      add(std::to_string(bitsOf(value)) + " " + format + std::to_string(digits),
          ours ? static_cast<long>(ourFormat(text, sizeof text, value, digits))
               : std::snprintf(text, sizeof text, format, digits, value));
    }
  }
  for (std::int32_t value : in.ints)
    add(std::to_string(value), ours ? static_cast<long>(numFormatInt(text, sizeof text, value))
                                    : std::snprintf(text, sizeof text, "%d", value));
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
  // Where the parser parts from strtod (no hex, inf, nan), and ints as a 32-bit atol: mod 2^32.
  const struct { const char* text; double asDouble; std::int32_t asInt; } departures[] = {
      {"-INFINITY", 0.0, 0}, {" NAN(1)", 0.0, 0}, {"-0x1p3", -0.0, 0}, {"1e5", 1e5, 1},
      {"2147483648", 2147483648.0, INT32_MIN}, {"4294967297", 4294967297.0, 1}};
  for (const auto& row : departures) {
    EXPECT_EQ(bitsOf(numParseDouble(row.text)), bitsOf(row.asDouble)) << row.text;
    EXPECT_EQ(numParseInt(row.text), row.asInt) << row.text;
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
