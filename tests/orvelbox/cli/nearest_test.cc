// What was meant by a mistyped name.
#include "orvelbox/cli/nearest.h"

#include "tests/orvelbox/frame.h"

namespace orvelbox {
namespace {

TEST(NearestName, is_few_slips_away) {
  const std::vector<std::string> names = {"install", "uninstall", "list", "show"};
  EXPECT_EQ(Nearest("instal", names), "install") << "a letter too few";
  EXPECT_EQ(Nearest("liist", names), "list") << "one too many";
  EXPECT_EQ(Nearest("shaw", names), "show") << "another one";
  EXPECT_EQ(Nearest("shwo", names), "show") << "two swapped";
  EXPECT_EQ(Nearest("unisntal", names), "uninstall");
}

TEST(NearestName, is_the_first_of_equals_and_none_where_all_are_far) {
  EXPECT_EQ(Nearest("a", {"b", "c"}), "b");
  EXPECT_EQ(Nearest("frob", {"install", "show"}), "");
  EXPECT_EQ(Nearest("ab", {"xa", "bx"}), "") << "half a swap is none";
  EXPECT_EQ(Nearest("", {"b"}), "");
  EXPECT_EQ(Nearest("x", {}), "");
}

}  // namespace
}  // namespace orvelbox
