// Compares docs/behaviours.md with the existing tests, and tests the reader of the table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "tests/support/command.h"
#include "tests/support/files.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Tests = std::set<std::string>;  // "program: Suite.case"

constexpr const char* kHeader = "| behaviour | test |";
constexpr const char* kDelimiter = "|---|---|";

// Reads the table line by line and collects its errors. Each subject has a header, a delimiter and rows.
class Reader {
 public:
  explicit Reader(const Tests& there) : there_(there) {}

  std::vector<std::string> ProblemsOf(const std::string& markdown) {
    for (const std::string& line : support::Lines(markdown)) {
      ++number_;
      if (line.rfind("## ", 0) == 0) EndSubject();
      if (line.find('|') != std::string::npos) ReadTableLine(line);
      previous_ = line;
    }
    EndSubject();
    return problems_;
  }

 private:
  void Note(const std::string& problem) { problems_.push_back("line " + std::to_string(number_) + ": " + problem); }

  void EndSubject() {
    if (!rows_) Note("the subject above has no rows");
    rows_ = number_ == 0;
  }

  void ReadTableLine(const std::string& line) {
    if (line == kHeader) return;
    const bool goes_on = line == kDelimiter ? previous_ == kHeader : previous_ != kHeader && previous_[0] == '|';
    static const std::regex row("\\| ([^|]+) \\| (`[^`]+`(?:, `[^`]+`)*) \\|");
    std::smatch cells;
    if (!goes_on) {
      Note("a table begins with its header and delimiter");
    } else if (line != kDelimiter && !std::regex_match(line, cells, row)) {
      Note("a row has a behaviour and tests in backticks, each between \"|\"");
    } else if (line != kDelimiter) {
      ReadRow(cells[1], cells[2]);
    }
  }

  void ReadRow(const std::string& behaviour, const std::string& tests) {
    rows_ = true;
    if (!behaviours_.insert(behaviour).second) Note("a row before tells the same");
    static const std::regex name("`([^`]+)`");
    for (std::sregex_iterator match(tests.begin(), tests.end(), name), end; match != end; ++match) {
      std::string test = (*match)[1];
      if (test.find(": ") == std::string::npos) test = "unit_tests: " + test;
      if (there_.count(test) == 0) Note("there is no test " + test);
    }
  }

  const Tests& there_;
  std::vector<std::string> problems_;
  std::set<std::string> behaviours_;
  std::string previous_ = " ";
  std::size_t number_ = 0;
  bool rows_ = true;  // the text before the first subject needs no rows
};

// The tests that a program lists, without disabled ones.
Tests TestsOf(const std::string& program) {
  const std::string name = std::filesystem::path(program).filename().string();
  Tests tests;
  std::string suite;
  for (const std::string& line : support::Lines(support::OutputOf("'" + program + "' --gtest_list_tests"))) {
    const std::string text = line.substr(0, line.find("  #"));
    if (text.rfind("  ", 0) != 0) {
      suite = text;
    } else if ((suite + text).find("DISABLED_") == std::string::npos) {
      tests.insert(name + ": " + suite + text.substr(2));
    }
  }
  return tests;
}

TEST(Behaviours, every_row_has_a_text_of_its_own_and_tests_that_are_there) {
  Tests there;
  for (const std::string& program : support::Lines(support::ReadFile(PROGRAM_LIST))) {
    Tests tests = TestsOf(program);
    EXPECT_THAT(tests, testing::Not(IsEmpty())) << program;
    there.merge(tests);
  }
  EXPECT_THAT(Reader(there).ProblemsOf(support::ReadFile(BEHAVIOURS)), IsEmpty()) << "in docs/behaviours.md";
}

TEST(BehaviourRows, what_is_wrong_is_told_with_its_line) {
  const Tests there = {"unit_tests: A.b", "abi_tests: X/B.d/0"};
  const std::string start = "# Title\n\n## First\n\n| behaviour | test |\n|---|---|\n";
  const std::string cells = "line 7: a row has a behaviour and tests in backticks, each between \"|\"";
  EXPECT_THAT(Reader(there).ProblemsOf(start + "| It is `so`. | `A.b`, `abi_tests: X/B.d/0` |\n| No. | `A.b` |\n"),
              IsEmpty());
  EXPECT_THAT(Reader(there).ProblemsOf(start), ElementsAre("line 6: the subject above has no rows"));
  EXPECT_THAT(Reader(there).ProblemsOf(start + "| It is. | `A.b` |\n\n| No. | `A.b` |\n"),
              ElementsAre("line 9: a table begins with its header and delimiter"));
  for (const char* row : {"| It is. | `A.b` | c |", "| It is. |", "|  | `A.b` |", "| It is. | A.b |", "| It is. |  |",
                          "| It is. | `A.b` `A.b`, |", " It is. | `A.b`"}) {
    EXPECT_THAT(Reader(there).ProblemsOf(start + row), testing::Contains(cells)) << row;
  }
  EXPECT_THAT(Reader(there).ProblemsOf(start + "| It is. | `A.c` |\n| It is. | `abi_tests: A.b` |\n"),
              ElementsAre("line 7: there is no test unit_tests: A.c", "line 8: a row before tells the same",
                          "line 8: there is no test abi_tests: A.b"));
}

}  // namespace
