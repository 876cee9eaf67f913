// Test helper: a decimal-comma locale for the whole process; put "C" back before the test ends.
#pragma once
#include <string>

// Makes de_DE.UTF-8 (compiled with localedef if missing) LC_ALL; false, with "C" back and *why
// set, when it can't be had: a test needing it must then fail, not skip.
bool useCommaLocale(std::string* why = nullptr);
void useClassicLocale();
