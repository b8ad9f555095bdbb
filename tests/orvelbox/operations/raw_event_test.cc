// Parsing the arguments of `events`.

#include <stdexcept>

#include "orvelbox/operations/operations.h"
#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(RawEvent, is_read_in_any_case_up_to_the_first_colon) {
  EXPECT_EQ(ParseRawEvent("Install:a").hook, "INSTALL");
  EXPECT_EQ(ParseRawEvent("Install:a").package_id, "a");
  EXPECT_EQ(ParseRawEvent("CLEANUP:b:c").hook, "CLEANUP");
  EXPECT_EQ(ParseRawEvent("CLEANUP:b:c").package_id, "b:c");
}

TEST(RawEvent, needs_a_hook_and_a_package) {
  for (const char* text : {"clean", "clean:", "frob:a", ":a"}) {
    EXPECT_THROW(ParseRawEvent(text), std::invalid_argument) << text;
  }
}

}  // namespace
}  // namespace orvelbox
