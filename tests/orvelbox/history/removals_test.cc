// Reading information files, and rejecting other files.

#include "orvelbox/history/why.h"
#include "tests/orvelbox/frame.h"
#include "tests/support/removal_texts.h"

namespace orvelbox {
namespace {

TEST(InformationFile, names_the_copy_that_decided) {
  EXPECT_EQ(OriginIn(support::InformationText("/p/X.dll", "/a/X.dll"), "/a/X.dll"), "/p/X.dll");
}

TEST(InformationFile, other_texts_are_none) {
  const std::string good = support::InformationText("/p/X.dll", "/a/X.dll");
  for (const std::string& text :
       {std::string(), good.substr(1), good.substr(0, good.size() - 1), good + "more\n",
        support::InformationText("/p/X.dll", "/a/Y.dll"), support::InformationText("", "/a/X.dll")}) {
    EXPECT_FALSE(OriginIn(text, "/a/X.dll")) << text;
  }
}

}  // namespace
}  // namespace orvelbox
