// What information files say, and what is none.
#include "orvelbox/history/removals.h"

#include "tests/orvelbox/frame.h"
#include "tests/support/removal_texts.h"

namespace orvelbox {
namespace {

TEST(InformationFile, names_the_copy_that_decided) {
  const auto read = ParseInformationFile("/a/X.dll", support::InformationText("/p/X.dll", "/a/X.dll"));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->origin, "/p/X.dll");
  EXPECT_EQ(read->dll, "/a/X.dll");
}

TEST(InformationFile, other_texts_are_none) {
  const std::string good = support::InformationText("/p/X.dll", "/a/X.dll");
  for (const std::string& text :
       {std::string(), good.substr(1), good.substr(0, good.size() - 1), good + "more\n",
        support::InformationText("/p/X.dll", "/a/Y.dll"), support::InformationText("", "/a/X.dll")}) {
    EXPECT_FALSE(ParseInformationFile("/a/X.dll", text)) << text;
  }
}

}  // namespace
}  // namespace orvelbox
