// Number text that never depends on the process locale, on std::from_chars and std::to_chars.
#include "platform/number_text.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>

namespace {

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Skips the leading white space and one sign; the sign is reported in *negative.
const char* skipSpaceAndSign(const char* p, bool* negative) {
  while (isSpace(*p)) ++p;
  *negative = *p == '-';
  if (*p == '+' || *p == '-') ++p;
  return p;
}

// Exponent digits beyond this no longer change the outcome (the value is 0 or infinite anyway);
// the cap keeps the arithmetic far from overflow however long the digit run is.
constexpr std::int64_t kExponentCap = 1000000000000;

std::size_t finish(char* out, std::to_chars_result result) {
  if (result.ec != std::errc()) {
    out[0] = 0;
    return 0;
  }
  *result.ptr = 0;
  return static_cast<std::size_t>(result.ptr - out);
}

// Powers of ten that a double holds exactly.
constexpr double kExactPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                   1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                   1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int kLargestExactPower = 22;
// Digits beyond this many no longer fit the 64-bit accumulator.
constexpr int kMostDigits = 19;

// Values below this, times 10^6, fit the 64 bits of the fast fixed form.
constexpr double kFastFixedLimit = 9e12;
constexpr int kFastFixedDecimals = 6;

// printf("%.*f") of a value that a float holds exactly, with 0 to 6 decimals. Its product with
// 10^decimals is then exact in a double (24 bits of mantissa times at most 5^6, times a power of
// two), so rounding that product to an integer, to even on a tie, rounds the decimal expansion
// exactly as printf does.
std::size_t formatFloatFixed(char* out, std::size_t size, double value, int decimals) {
  double scale = kExactPowers[decimals];
  auto units = static_cast<std::uint64_t>(std::nearbyint(std::fabs(value) * scale));
  auto unit = static_cast<std::uint64_t>(scale);
  char text[32];
  char* p = text;
  if (std::signbit(value)) *p++ = '-';
  p = std::to_chars(p, text + sizeof text, units / unit).ptr;
  if (decimals > 0) {
    *p++ = '.';
    std::uint64_t fraction = units % unit;
    for (int digit = decimals - 1; digit >= 0; --digit, fraction /= 10) {
      p[digit] = static_cast<char>('0' + fraction % 10);
    }
    p += decimals;
  }
  auto length = static_cast<std::size_t>(p - text);
  if (length >= size) {
    out[0] = 0;
    return 0;
  }
  std::memcpy(out, text, length);
  out[length] = 0;
  return length;
}

}  // namespace

namespace {

// The longest number at the start of the text; *end is where it stopped (the text itself when
// there was no number).
double parseDoublePrefix(const char* text, const char** end) {
  *end = text;
  bool negative = false;
  const char* begin = skipSpaceAndSign(text, &negative);

  // Find the end of the classic decimal form ourselves: from_chars would also take "inf",
  // "nan" and a leading '-' after our sign. Along the way note the power of ten of the first
  // non-zero digit, which tells overflow from underflow when from_chars reports neither value.
  const char* p = begin;
  std::int64_t leadPower = 0;
  bool seenNonZero = false;
  bool seenDigit = false;
  // The digits as one integer and the places behind the point, while they fit 64 bits.
  std::uint64_t digits = 0;
  int significant = 0;
  int places = 0;
  auto take = [&](char c, bool behindPoint) {
    if (significant >= kMostDigits) {
      significant = kMostDigits + 1;
      return;
    }
    digits = digits * 10 + static_cast<std::uint64_t>(c - '0');
    if (digits != 0) significant++;
    if (behindPoint) places++;
  };
  while (isDigit(*p)) {
    if (seenNonZero) {
      ++leadPower;
    } else if (*p != '0') {
      seenNonZero = true;
    }
    seenDigit = true;
    take(*p, false);
    ++p;
  }
  if (*p == '.') {
    ++p;
    while (isDigit(*p)) {
      if (!seenNonZero) {
        --leadPower;
        seenNonZero = *p != '0';
      }
      seenDigit = true;
      take(*p, true);
      ++p;
    }
  }
  if (!seenDigit) return 0.0;

  *end = p;
  std::int64_t exponent = 0;
  if (*p == 'e' || *p == 'E') {
    const char* q = p + 1;
    bool exponentNegative = *q == '-';
    if (*q == '+' || *q == '-') ++q;
    if (isDigit(*q)) {
      for (; isDigit(*q); ++q) {
        if (exponent < kExponentCap) exponent = exponent * 10 + (*q - '0');
      }
      if (exponentNegative) exponent = -exponent;
      leadPower += exponent;
      *end = q;
    }
  }

  // Both the digits and the power of ten exact in a double: one correctly rounded operation
  // gives the correctly rounded value.
  std::int64_t power = exponent - places;
  if (significant <= kMostDigits && digits <= (std::uint64_t{1} << 53) &&
      power >= -kLargestExactPower && power <= kLargestExactPower) {
    double value = static_cast<double>(digits);
    value = power < 0 ? value / kExactPowers[-power] : value * kExactPowers[power];
    return negative ? -value : value;
  }

  double value = 0.0;
  std::from_chars_result result =
      std::from_chars(begin, *end, value, std::chars_format::general);
  // Out of range leaves value untouched. Denormals come back rounded with no error, so the
  // error means the value rounded to infinity or to zero.
  if (result.ec == std::errc::result_out_of_range) value = leadPower > 0 ? HUGE_VAL : 0.0;
  return negative ? -value : value;
}

}  // namespace

double numParseDouble(const char* text) {
  if (text == nullptr) return 0.0;
  const char* end = nullptr;
  return parseDoublePrefix(text, &end);
}

int numParseDoubleWhole(const char* text, double* value) {
  if (text == nullptr) return 0;
  const char* end = nullptr;
  double parsed = parseDoublePrefix(text, &end);
  if (end == text) return 0;
  while (isSpace(*end)) ++end;
  if (*end != 0) return 0;
  *value = parsed;
  return 1;
}

std::int32_t numParseInt(const char* text) {
  if (text == nullptr) return 0;
  bool negative = false;
  const char* p = skipSpaceAndSign(text, &negative);
  std::uint32_t value = 0;
  for (; isDigit(*p); ++p) value = value * 10u + static_cast<std::uint32_t>(*p - '0');
  if (negative) value = 0u - value;
  return static_cast<std::int32_t>(value);
}

std::size_t numFormatFixed(char* out, std::size_t size, double value, int decimals) {
  if (out == nullptr || size == 0) return 0;
  if (decimals < 0) decimals = 6;
  if (decimals <= kFastFixedDecimals && std::fabs(value) < kFastFixedLimit &&
      static_cast<double>(static_cast<float>(value)) == value) {
    return formatFloatFixed(out, size, value, decimals);
  }
  return finish(out, std::to_chars(out, out + size - 1, value, std::chars_format::fixed, decimals));
}

std::size_t numFormatGeneral(char* out, std::size_t size, double value, int significant) {
  if (out == nullptr || size == 0) return 0;
  if (significant < 1) significant = 1;
  if (std::isinf(value)) return finish(out, std::to_chars(out, out + size - 1, value));
  return finish(out, std::to_chars(out, out + size - 1, value, std::chars_format::general,
                                   significant));
}

std::size_t numFormatInt(char* out, std::size_t size, std::int32_t value) {
  if (out == nullptr || size == 0) return 0;
  return finish(out, std::to_chars(out, out + size - 1, value));
}
