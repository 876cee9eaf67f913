// Tests of the string helpers.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "base/string_util.h"
#include "kernel_fixture.h"
#include "platform/host_heap.h"

class StringUtilTest : public KernelTest {};

TEST_F(StringUtilTest, DuplicateAndFree) {
  EXPECT_EQ(strDuplicate(nullptr), nullptr);
  char* empty = strDuplicate("");
  ASSERT_NE(empty, nullptr);
  EXPECT_STREQ(empty, "");
  char* copy = strDuplicate("Alpha");
  EXPECT_STREQ(copy, "Alpha");
  strFree(&empty);
  strFree(&copy);
  EXPECT_EQ(copy, nullptr);
  strFree(&copy);  // a second free does nothing
  hostHeapFailNth(1);
  EXPECT_EQ(strDuplicate("Alpha"), nullptr);
}

TEST(StringUtil, EqualsAndEmptiness) {
  struct Case {
    const char* a;
    const char* b;
    int caseSensitive;
    int expected;
  } cases[] = {
      {"", "", 1, 0},         {"", "", 0, 0},           {nullptr, "a", 0, 0},
      {"abc", "ABC", 0, 1},   {"abc", "ABC", 1, 0},     {"abc", "abc", 1, 1},
      {"abc", "abcd", 0, 0},  {"\xC3\xA9", "\xC3\x89", 0, 0},  // only a-z fold
      {"a-1.INI", "A-1.ini", 0, 1},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(strEquals(c.a, c.b, c.caseSensitive), c.expected)
        << (c.a ? c.a : "null") << " vs " << c.b << " cs " << c.caseSensitive;
  }
  EXPECT_EQ(strIsEmpty(nullptr), 1);
  EXPECT_EQ(strIsEmpty(""), 1);
  EXPECT_EQ(strIsEmpty(" "), 0);
}

TEST(StringUtil, CopyNBoundsFillsAndNeverCutsASequence) {
  struct Case {
    const char* source;
    int size;
    const char* expected;
  } cases[] = {
      {"abcdef", 4, "abc"},
      {"abcdef", 7, "abcdef"},
      {"abcdef", 1, ""},
      {"ab\xC3\xA9", 4, "ab"},             // the two-byte é would be cut: left out whole
      {"ab\xC3\xA9", 5, "ab\xC3\xA9"},
      {"a\xE2\x82\xAC" "b", 4, "a"},       // three-byte €
      {"a\xE2\x82\xAC" "b", 5, "a\xE2\x82\xAC"},
  };
  for (const Case& c : cases) {
    char buffer[16];
    std::memset(buffer, 'x', sizeof buffer);
    strCopyN(buffer, c.source, c.size);
    EXPECT_STREQ(buffer, c.expected) << c.source << " size " << c.size;
    for (int i = static_cast<int>(std::strlen(c.expected)); i < c.size; i++) {
      EXPECT_EQ(buffer[i], '\0') << "stale byte at " << i;
    }
    EXPECT_EQ(buffer[c.size], 'x') << "wrote past size " << c.size;
  }
  char stale[8] = "zzzzzzz";
  strCopyN(stale, "", 8);  // an empty source writes its terminator alone
  EXPECT_EQ(std::string(stale, 7), std::string("\0zzzzzz", 7));
  EXPECT_EQ(strCopyN(nullptr, "a", 4), nullptr);
}

TEST(StringUtil, AppendNStaysInsideTheBuffer) {
  struct Case {
    const char* start;
    const char* source;
    int size;
    const char* expected;
  } cases[] = {
      {"abc", "def", 5, "abcd"},       {"abc", "def", 7, "abcdef"},
      {"abc", "def", 4, "abc"},        {"abc", "", 8, "abc"},
      {"", "def", 8, "def"},           {"ab", "\xC3\xA9\xC3\xA9", 5, "ab\xC3\xA9"},
      {"ab", "\xC3\xA9\xC3\xA9", 6, "ab\xC3\xA9"},
  };
  for (const Case& c : cases) {
    char buffer[16];
    std::memset(buffer, 'x', sizeof buffer);
    std::strcpy(buffer, c.start);
    strAppendN(buffer, c.source, c.size);
    EXPECT_STREQ(buffer, c.expected) << c.start << "+" << c.source << " size " << c.size;
    EXPECT_EQ(buffer[c.size], 'x');
  }
}

TEST(StringUtil, CaseAndTrimInPlace) {
  struct Case {
    const char* input;
    char* (*change)(char*);
    const char* expected;
  } cases[] = {
      {"abc-1.ini", strUpper, "ABC-1.INI"}, {"a\xE9z", strUpper, "A\xE9Z"},
      {"ABC-1.INI", strLower, "abc-1.ini"}, {"\xC3\x89T\xC3\x89", strLower, "\xC3\x89t\xC3\x89"},
      {"  a b \t", strTrim, "a b"},         {"   ", strTrim, ""},
      {"", strTrim, ""},                    {"\v\f\r\na\xC2\xA0", strTrim, "a\xC2\xA0"},
      {"x", strTrim, "x"},                  {"a  b", strTrim, "a  b"},
  };
  for (const Case& c : cases) {
    char buffer[32];
    std::strcpy(buffer, c.input);
    EXPECT_EQ(c.change(buffer), buffer);
    EXPECT_STREQ(buffer, c.expected) << c.input;
  }
  EXPECT_EQ(strTrim(nullptr), nullptr);
  EXPECT_EQ(strUpper(nullptr), nullptr);
  strClear(nullptr);
}
