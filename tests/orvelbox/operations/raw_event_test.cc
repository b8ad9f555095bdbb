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

std::string ProblemOf(const std::string& text) {
  try {
    return ParseRawEvent(text).hook;
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
}

TEST(RawEvent, needs_a_hook_and_a_package) {
  for (const std::string text : {"clean", "clean:", ""}) {
    EXPECT_EQ(ProblemOf(text), text + ": no event; write EVENT:PKG, e.g. clean:org.example.app");
  }
  for (const std::string text : {"frob:a", ":a", "CLEANU:a"}) {
    EXPECT_EQ(ProblemOf(text), text +
                                   ": no such event; there are INSTALL, UPGRADE, REMOVED, UNINSTALL, "
                                   "RECOVERUNINSTALL, CLEAN, CLEANUP, UNDO (in any case)");
  }
}

}  // namespace
}  // namespace orvelbox
