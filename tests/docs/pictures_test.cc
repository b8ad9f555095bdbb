// The pictures of README.md and the manual page show what orvelbox prints today.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "platform/host/fixed_paths.h"
#include "tests/support/command.h"
#include "tests/support/files.h"

namespace docs {
namespace {

using support::Quoted;

// The names of the spans in a drawn trace, without the lines of the sources, which move. Times differ in every run.
std::vector<std::string> Spans(const std::string& svg) {
  std::vector<std::string> names;
  const std::regex title("<title>([^\n(]*)\\([0-9]+\\)([^\n]*)\n");
  for (std::sregex_iterator match(svg.begin(), svg.end(), title), end; match != end; ++match) {
    names.push_back((*match)[1].str() + (*match)[2].str());
  }
  return names;
}

TEST(Pictures, show_what_orvelbox_prints) {
  std::string reason;
  if (host::AvailableFixedPathsMethod(&reason) == host::FixedPathsMethod::kNone) GTEST_SKIP() << reason;
  const support::TempDir dir;
  const std::string output = support::OutputOf(Quoted(SOURCE_DIRECTORY "/scripts/pictures.sh") + " " +
                                               Quoted(BUILD_DIRECTORY "/orvelbox/orvelbox") + " " + Quoted(dir.path()));
  EXPECT_THAT(output, testing::Not(testing::HasSubstr("ended with"))) << output;
  const auto shown = [](const std::string& name) { return support::ReadFile(SOURCE_DIRECTORY "/docs/" + name); };
  const char* const way_out = "make the pictures anew: make pictures";
  EXPECT_EQ(support::ReadFile(dir / "check.svg"), shown("check.svg")) << way_out;
  EXPECT_EQ(Spans(support::ReadFile(dir / "trace.svg")), Spans(shown("trace.svg"))) << way_out;
  EXPECT_GT(Spans(shown("trace.svg")).size(), 5U);
}

// In the tree, because a change of what users read belongs in the review of the change.
TEST(ManualPage, is_the_one_of_this_program) {
  EXPECT_EQ(support::OutputOf(Quoted(BUILD_DIRECTORY "/orvelbox/orvelbox_manual")),
            support::ReadFile(SOURCE_DIRECTORY "/docs/orvelbox.1"))
      << "make the page anew: make pictures";
}

}  // namespace
}  // namespace docs
