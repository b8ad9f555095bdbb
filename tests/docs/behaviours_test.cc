// docs/behaviours.md against the tests that there are, and how the table is read.
#include "tests/docs/behaviours.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace docs {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// All that every test program lists.
TestsOfPrograms AskPrograms() {
  TestsOfPrograms tests;
  std::istringstream paths(support::ReadFile(PROGRAM_LIST));
  for (std::string path; std::getline(paths, path);) {
    const std::string command = "'" + path + "' --gtest_list_tests --gtest_filter='*'";
    tests[std::filesystem::path(path).filename().string()] = ReadTestList(support::OutputOf(command));
  }
  return tests;
}

TEST(Behaviours, every_row_has_a_text_of_its_own_and_tests_that_are_there) {
  EXPECT_THAT(Problems(ReadRows(support::ReadFile(BEHAVIOURS)), AskPrograms()), IsEmpty()) << "in docs/behaviours.md";
}

TEST(Behaviours, every_test_program_lists_its_tests) {
  const TestsOfPrograms tests = AskPrograms();
  EXPECT_GE(tests.size(), 3u);
  for (const auto& [program, names] : tests) EXPECT_THAT(names, testing::Not(IsEmpty())) << program;
}

constexpr const char* kStart = "# Title\n\nA lead.\n\n## First\n\n| behaviour | test |\n|---|---|\n";

TEST(BehaviourRows, all_tables_are_read_with_their_lines) {
  const std::vector<Row> rows =
      ReadRows(std::string(kStart) +
               "| It is `so`. | `A.b` |\n| It is not. | `A.c`, `abi_tests: X/B.d/0` |\n\n## Second\n\nA word.\n\n"
               "| behaviour | test |\n|---|---|\n| Nothing. |  |\n");
  ASSERT_EQ(3u, rows.size());
  EXPECT_EQ(9u, rows[0].line);
  EXPECT_EQ("It is `so`.", rows[0].behaviour);
  ASSERT_EQ(1u, rows[0].tests.size());
  EXPECT_EQ("unit_tests", rows[0].tests[0].program);
  EXPECT_EQ("A.b", rows[0].tests[0].name);
  ASSERT_EQ(2u, rows[1].tests.size());
  EXPECT_EQ("abi_tests", rows[1].tests[1].program);
  EXPECT_EQ("X/B.d/0", rows[1].tests[1].name);
  EXPECT_EQ(18u, rows[2].line);
  EXPECT_TRUE(rows[2].tests.empty());
}

std::string RefusalOf(const std::string& markdown) {
  try {
    ReadRows(markdown);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "read";
}

TEST(BehaviourRows, what_is_no_table_is_refused_with_its_line) {
  const std::string start = kStart;
  const std::pair<std::string, const char*> texts[] = {
      {"", "there is no table"},
      {"# Title\n\nA lead.\n", "there is no table"},
      {start, "line 8: \"First\" has no rows"},
      {"## First\n\n## Second\n", "line 3: \"First\" has no rows"},
      {"## First\n| It is. | `A.b` |\n", "line 2: \"| behaviour | test |\" is expected here"},
      {"## First\n| behaviour | test |\n| It is. | `A.b` |\n", "line 3: \"|---|---|\" is expected here"},
      {start + "\n| It is. | `A.b` |\n", "line 10: \"| behaviour | test |\" is expected here"},
      {start + " It is. | `A.b`\n", "line 9: a row has two cells, each between \"|\""},
      {start + "| It is. | `A.b` | c |\n", "line 9: a row has two cells, each between \"|\""},
      {start + "| It is. |\n", "line 9: a row has two cells, each between \"|\""},
      {start + "|  | `A.b` |\n", "line 9: the behaviour is not told"},
      {start + "| It is. | A.b |\n", "line 9: \"A.b\" is no name in backticks"},
      {start + "| It is. | `A.b` `A.c`, |\n", "line 9: \"\" is no name in backticks"},
  };
  for (const auto& [text, refusal] : texts) EXPECT_EQ(refusal, RefusalOf(text)) << text;
}

TEST(TestList, suites_and_cases_are_joined) {
  EXPECT_THAT(
      ReadTestList("Running main() from x.cc\nA.\n  b\n  c\nX/B.  # TypeParam = int\n  d/0  # GetParam() = 1\n"),
      ElementsAre("A.b", "A.c", "X/B.d/0"));
}

TEST(TestList, disabled_tests_and_other_output_are_left_out) {
  EXPECT_THAT(ReadTestList("A.\n  DISABLED_b\n  c\nDISABLED_B.\n  d\nan error:\n  e\n\n"), ElementsAre("A.c"));
}

TEST(BehaviourProblems, sound_rows_have_none) {
  EXPECT_THAT(Problems({{1, "One", {{"p", "A.b"}, {"q", "A.c"}}}, {2, "Two", {{"p", "A.b"}}}},
                       {{"p", {"A.b"}}, {"q", {"A.c"}}}),
              IsEmpty());
}

TEST(BehaviourProblems, each_is_told_with_its_row) {
  EXPECT_THAT(Problems({{1, "One", {{"p", "A.b"}}}, {2, "Two", {}}, {3, "One", {{"q", "A.b"}, {"p", "A.c"}}}},
                       {{"p", {"A.b"}}}),
              ElementsAre("line 2, \"Two\": no test is named", "line 3, \"One\": a row before tells the same",
                          "line 3, \"One\": q has no test A.b", "line 3, \"One\": p has no test A.c"));
}

}  // namespace
}  // namespace docs
