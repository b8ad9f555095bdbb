// startWith and endWith, and comparisons that ignore case.
#include "base/affix.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "morvath/platform_utils.h"

namespace {

struct Row {
  std::string text;
  std::string affix;
  bool starts;
  bool ends;
};

TEST(Affix, affixes_are_compared_byte_by_byte) {
  const Row rows[] = {
      {"", "", true, true},
      {"abc", "", true, true},
      {"", "a", false, false},
      {"ab", "abc", false, false},
      {"ab", "xab", false, false},
      {"abc", "abc", true, true},
      {"abc", "ab", true, false},
      {"abc", "bc", false, true},
      {"abcab", "ab", true, true},
      {"abc", "b", false, false},
      {"Foo.DLL", ".dll", false, false},
      {"Foo.dll", ".dll", false, true},
      {"Foo.dll", "foo", false, false},
      {".dll", ".dll", true, true},
      {std::string("a\0b", 3), std::string("a\0", 2), true, false},
      {std::string("a\0b", 3), std::string("\0b", 2), false, true},
      {std::string("a\0b", 3), std::string("a\0c", 3), false, false},
      {"\xC3\xA4", "\xC3", true, false},
      {"\xC3\xA4", "\xA4", false, true},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(row.starts, startWith(row.text, row.affix)) << row.text << " / " << row.affix;
    EXPECT_EQ(row.ends, endWith(row.text, row.affix)) << row.text << " / " << row.affix;
  }
}

TEST(Affix, ignoring_case_is_ignoring_that_of_ascii_letters) {
  EXPECT_TRUE(EqualsIgnoringCase("", ""));
  EXPECT_TRUE(EqualsIgnoringCase("Az09._MiZ", "aZ09._mIz"));
  EXPECT_FALSE(EqualsIgnoringCase("abc", "ab"));
  EXPECT_FALSE(EqualsIgnoringCase("ab", "abc"));
  EXPECT_FALSE(EqualsIgnoringCase("abc", "abd"));
  for (const auto& [one, other] : {std::pair("@", "`"), std::pair("[", "{"), std::pair(".", "\x0e"),
                                   std::pair("\xC4\xB0", "i"), std::pair("I", "\xC4\xB1"), std::pair("\xC4", "\xE4")}) {
    EXPECT_FALSE(EqualsIgnoringCase(one, other)) << one << " / " << other;
  }
}

}  // namespace
