// Test helper: a decimal-comma locale for the whole process; put "C" back before the test ends.
#pragma once
#include <string>

// Makes de_DE.UTF-8 (compiled once with localedef if the system lacks it) the locale of LC_ALL,
// with "," as its decimal point. Returns true when it is active; false, with "C" back and *why
// saying what went wrong, when it can't be had. A test needing it must fail on false, not skip.
bool useCommaLocale(std::string* why = nullptr);
// Puts every category (LC_ALL) back in the "C" locale.
void useClassicLocale();
