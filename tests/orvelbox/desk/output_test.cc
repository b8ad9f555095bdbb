// Making texts printable.
#include "orvelbox/desk/output.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(Printable, plain_text_stays) { EXPECT_EQ(Printable("Größe 大 \\ [x] 😀"), "Größe 大 \\ [x] 😀"); }

TEST(Printable, control_characters_are_escaped) {
  EXPECT_EQ(Printable(std::string("a\nb\tc\rd\x1b\x7f\0e", 11)), "a\\nb\\tc\\rd\\x1b\\x7f\\x00e");
}

TEST(Printable, the_upper_control_characters_are_escaped) { EXPECT_EQ(Printable("\xc2\x9b"), "\\xc2\\x9b"); }

TEST(Printable, marks_that_turn_a_line_around_are_escaped) {
  EXPECT_EQ(Printable("a\u202eb\u2066"), "a\\xe2\\x80\\xaeb\\xe2\\x81\\xa6");
  EXPECT_EQ(Printable("\u2029\u2065"), "\u2029\u2065");
}

TEST(Printable, bytes_that_are_no_utf_8_are_escaped) {
  EXPECT_EQ(Printable("\xff\xc3"), "\\xff\\xc3");
  EXPECT_EQ(Printable("\xe5\xa4x"), "\\xe5\\xa4x");
  EXPECT_EQ(Printable("\xe0\x80\x8a"), "\\xe0\\x80\\x8a");                   // overlong line feed
  EXPECT_EQ(Printable("\xf0\x80\x80\xaf"), "\\xf0\\x80\\x80\\xaf");          // overlong "/"
  EXPECT_EQ(Printable("\xed\xa0\x80"), "\\xed\\xa0\\x80");                   // surrogate
  EXPECT_EQ(Printable("\xf4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");          // beyond the last code point
  EXPECT_EQ(Printable("\ud7ff\ue000\U0010ffff"), "\ud7ff\ue000\U0010ffff");  // just beside those
}

}  // namespace
}  // namespace orvelbox
