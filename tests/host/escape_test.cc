// Escaping log texts: any text stays on its line, cannot control a terminal, and can be restored exactly.
#include "platform/host/escape.h"

#include <gtest/gtest.h>

namespace {

using host::EscapeText;
using host::UnescapeText;

TEST(Escape, printable_text_of_any_language_stays_as_it_is) {
  const std::string text = "Grüße, 日本 🎉 \xC2\xA0 ~";
  EXPECT_EQ(text, EscapeText(text));
}

TEST(Escape, control_characters_get_the_letters_of_c) {
  EXPECT_EQ(R"(\a\b\t\n\v\f\r\e\\)", EscapeText("\a\b\t\n\v\f\r\x1b\\"));
  EXPECT_EQ(R"(\x00\x01\x1f\x7f)", EscapeText(std::string("\0\x01\x1f\x7f", 4)));
}

TEST(Escape, the_upper_control_characters_of_a_terminal_are_escaped) {
  EXPECT_EQ(R"(\xc2\x9b31m)", EscapeText("\xC2\x9B"
                                         "31m"));
  EXPECT_EQ(R"(\x9b)", EscapeText("\x9B"));
}

TEST(Escape, bytes_that_are_no_utf8_are_escaped) {
  EXPECT_EQ(R"(\xff\xc3)", EscapeText("\xff\xc3"));                  // no lead byte, cut short
  EXPECT_EQ(R"(\xc0\x8a)", EscapeText("\xc0\x8a"));                  // overlong line feed
  EXPECT_EQ(R"(\xe0\x82\x9b)", EscapeText("\xe0\x82\x9b"));          // overlong control character
  EXPECT_EQ(R"(\xed\xa0\x80)", EscapeText("\xed\xa0\x80"));          // surrogate
  EXPECT_EQ(R"(\xf4\x90\x80\x80)", EscapeText("\xf4\x90\x80\x80"));  // beyond the last code point
}

TEST(Escape, a_word_holds_no_space) { EXPECT_EQ(R"(a\x20b)", host::EscapeWord("a b")); }

TEST(Escape, every_pair_of_bytes_comes_back) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string text = {static_cast<char>(first), static_cast<char>(second)};
      ASSERT_EQ(text, UnescapeText(EscapeText(text))) << first << " " << second;
      ASSERT_EQ(text, UnescapeText(host::EscapeWord(text))) << first << " " << second;
    }
  }
}

TEST(Escape, what_no_escaping_wrote_is_refused) {
  for (const char* text : {"\\", "a\\", "\\q", "\\x", "\\x1", "\\xg0", "\\x0g", "\\X00"}) {
    EXPECT_FALSE(UnescapeText(text)) << text;
  }
}

}  // namespace
