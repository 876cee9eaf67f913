// Number text that never depends on the process locale: the parsers and printers the kernel uses.
#pragma once
#include <cstddef>
#include <cstdint>

// Reads a decimal float the way the C library's strtod does in the "C" locale, minus hex, "inf"
// and "nan": optional leading white space (space, \t, \n, \v, \f, \r), an optional + or -, then
// digits with an optional point and more digits (at least one digit in all), then an optional
// exponent (e or E, optional sign, at least one digit). The longest such prefix counts; the rest
// of the text is ignored. Returns the correctly rounded value; text too large gives +-infinity,
// text too small gives +-0 or the rounded denormal. "-0" gives negative zero. Returns 0 for null
// text and for text with no such prefix ("", ".", "e5", "inf", "+-1").
double numParseDouble(const char* text);

// 1 and *value when the whole text, but for white space before and after, is one number of the
// form numParseDouble reads; 0 with *value untouched otherwise (empty text, "12x", "1 2").
int numParseDoubleWhole(const char* text, double* value);

// Reads a decimal integer as a 32-bit atol does: the same white space and sign as
// numParseDouble, then decimal digits, accumulated modulo 2^32 without any overflow check
// ("4294967297" gives 1, "2147483648" gives INT32_MIN). Stops at the first byte that isn't a
// digit. Returns 0 for null text and for text with no digits.
std::int32_t numParseInt(const char* text);

// Writes value with `decimals` digits behind the point, byte for byte as the "C" locale's
// printf("%.*f", decimals, value) does: "%f" is 6 decimals, "%.1f" 1, "%.0f" 0 (no point then).
// Infinities are "inf"/"-inf", a NaN "nan" or "-nan" by its sign bit, negative zero keeps its
// "-". A negative `decimals` means 6, as printf takes a negative precision. Halves are rounded
// from the exact binary value, to even only on exact ties.
// Returns the length written, NUL not counted, always at least 1. Returns 0 when out is null,
// when size is 0, or when the text and its NUL don't fit in size bytes; out[0] is then 0 if
// size is at least 1. A value near 1e308 needs about 310 + decimals bytes.
std::size_t numFormatFixed(char* out, std::size_t size, double value, int decimals);

// Writes value as the "C" locale's printf("%.*g", significant, value) does: at most `significant`
// significant digits (at least 1), no trailing zeros, the exponent form only for very large or
// small values ("100", "0.1", "1e+07"). Returns as numFormatFixed does.
std::size_t numFormatGeneral(char* out, std::size_t size, double value, int significant);

// Writes value as the "C" locale's printf("%d") does. Returns the length written, NUL not
// counted; returns 0 as numFormatFixed does when the text doesn't fit. 12 bytes always suffice.
std::size_t numFormatInt(char* out, std::size_t size, std::int32_t value);
