// Test helper: puts the test process in a decimal-comma locale (de_DE.UTF-8) and back to "C".
//
// Code that must not depend on the locale is tested by running it under this one: there
// printf("%f") writes "1,500000" and strtod stops at a '.'. The locale is the system's when it
// has one; otherwise it is compiled once with localedef into a private directory under $TMPDIR
// (or /tmp), which LOCPATH then names; glibc reads LOCPATH on every setlocale call, so setting it
// at run time works. Both calls change process-wide state (setlocale, setenv): make them from the
// test's own thread, and put the "C" locale back before the test ends, e.g. in TearDown.
#pragma once
#include <string>

// Makes de_DE.UTF-8 the locale of every category (LC_ALL) and checks that its decimal point is
// ",". Returns true when that locale is now active. Returns false, with the process back in the
// "C" locale, when it can't be had; *why (if why isn't null) then says what went wrong. A test
// that needs the locale must fail, not skip, on false: ASSERT_TRUE(useCommaLocale(&why)) << why.
bool useCommaLocale(std::string* why = nullptr);

// Puts every category (LC_ALL) back in the "C" locale.
void useClassicLocale();
