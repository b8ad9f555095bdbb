// Displaying log records.

#include "orvelbox/history/log_view.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

host::LogRecord Record(char priority, const std::string& text) {
  return {"2026-11-21T08:00:00.123Z", priority, "TAG", 4711, text};
}

TEST(LogView, a_record_is_one_line) {
  EXPECT_EQ(ShowRecord(Record('E', "one\ntwo\n"), false), "2026-11-21T08:00:00.123Z E TAG 4711 one\\ntwo");
}

TEST(LogView, colours_are_kept_on_a_terminal_and_always_ended) {
  EXPECT_EQ(ShowRecord(Record('D', "\x1b[31mred"), true), "2026-11-21T08:00:00.123Z D TAG 4711 \x1b[31mred\x1b[0m");
  EXPECT_EQ(ShowRecord(Record('D', "\x1b[31mred"), false), "2026-11-21T08:00:00.123Z D TAG 4711 red");
}

TEST(LogView, other_sequences_reach_no_terminal) {
  EXPECT_EQ(ShowRecord(Record('D', "\x1b[2J\x1b]0;t\a"), true),
            "2026-11-21T08:00:00.123Z D TAG 4711 \\x1b[2J\\x1b]0;t\\x07");
}

TEST(LogView, a_priority_lets_those_above_it_pass) {
  EXPECT_TRUE(Passes({"", 'I'}, Record('E', "")));
  EXPECT_TRUE(Passes({"", 'I'}, Record('I', "")));
  EXPECT_FALSE(Passes({"", 'I'}, Record('D', "")));
}

TEST(LogView, a_tag_must_be_the_same) {
  EXPECT_TRUE(Passes({"TAG", 'D'}, Record('D', "")));
  EXPECT_FALSE(Passes({"TA", 'D'}, Record('D', "")));
}

}  // namespace
}  // namespace orvelbox
