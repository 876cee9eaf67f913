#include "base/string_util.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>

TEST(StringUtil, EqualsNeedsTwoNonEmptyTextsAndFoldsOnlyAToZ) {
  const struct { const char *a, *b; int caseSensitive, expected; } cases[] = {
      {"", "", 1, 0},       {nullptr, "a", 0, 0},  {"abc", "ABC", 0, 1},
      {"abc", "ABC", 1, 0}, {"abc", "abcd", 0, 0}, {"\xC3\xA9", "\xC3\x89", 0, 0},  // only a-z fold
  };
  for (const auto& c : cases)
    EXPECT_EQ(strEquals(c.a, c.b, c.caseSensitive), c.expected) << c.b << " " << c.caseSensitive;
}

// Null start: strCopyN, which fills the rest of `size` with NULs; else strAppendN behind it.
TEST(StringUtil, CopyAndAppendFillStayInsideAndNeverCutASequence) {
  const struct { const char *start, *source; int size; const char* expected; } cases[] = {
      {nullptr, "abcdef", 4, "abc"},   {nullptr, "abcdef", 7, "abcdef"},
      {nullptr, "ab\xC3\xA9", 4, "ab"},  // é left out whole
      {nullptr, "a\xE2\x82\xAC" "b", 5, "a\xE2\x82\xAC"},
      {"abc", "def", 5, "abcd"},       {"abc", "def", 4, "abc"},
      {"ab", "\xC3\xA9\xC3\xA9", 6, "ab\xC3\xA9"},
  };
  for (const auto& c : cases) {
    char buffer[16];
    std::memset(buffer, 'x', sizeof buffer);
    if (c.start) {
      strAppendN(std::strcpy(buffer, c.start), c.source, c.size);
    } else {
      EXPECT_EQ(strCopyN(buffer, c.source, c.size), buffer);
      const int filled = c.size - static_cast<int>(std::strlen(c.expected));
      EXPECT_EQ(std::count(buffer, buffer + c.size, '\0'), filled) << "stale bytes " << c.source;
    }
    EXPECT_STREQ(buffer, c.expected) << c.source << " " << c.size;
    EXPECT_EQ(buffer[c.size], 'x') << "wrote past the size " << c.size;
  }
  char stale[4] = "zzz";
  strCopyN(stale, "", 4);  // an empty source writes its terminator alone
  EXPECT_STREQ(stale + 1, "zz");
  EXPECT_EQ(strCopyN(nullptr, "a", 4), nullptr);
}

TEST(StringUtil, CaseAndTrimInPlace) {
  const struct { const char* input; char* (*change)(char*); const char* expected; } cases[] = {
      {"a\xE9z-1", strUpper, "A\xE9Z-1"},  {"\xC3\x89T\xC3\x89", strLower, "\xC3\x89t\xC3\x89"},
      {"  a  b \t", strTrim, "a  b"},      {"   ", strTrim, ""},
      {"\v\f\r\na\xC2\xA0", strTrim, "a\xC2\xA0"},
  };
  for (const auto& c : cases) {
    char buffer[32];
    EXPECT_EQ(c.change(std::strcpy(buffer, c.input)), buffer);
    EXPECT_STREQ(buffer, c.expected) << c.input;
  }
  for (auto* change : {strTrim, strUpper}) EXPECT_EQ(change(nullptr), nullptr);
  strClear(nullptr);
}
