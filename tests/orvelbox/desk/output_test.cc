// Texts made fit for a terminal.
#include "orvelbox/desk/output.h"

#include <gtest/gtest.h>

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
}

}  // namespace
}  // namespace orvelbox
