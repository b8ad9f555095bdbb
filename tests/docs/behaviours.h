// The table of behaviours: how it is read and what is wrong with it. No file is read and no program asked here.
#ifndef TESTS_DOCS_BEHAVIOURS_H_
#define TESTS_DOCS_BEHAVIOURS_H_

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace docs {

struct TestName {
  std::string program;
  std::string name;  // "Suite.case"
};

struct Row {
  std::size_t line;
  std::string behaviour;
  std::vector<TestName> tests;
};

using TestsOfPrograms = std::map<std::string, std::set<std::string>>;

// The rows of all tables in the text. Throws std::runtime_error, naming the line, for whatever does not read as a
// subject with a table of behaviours and tests, and for a text without any.
std::vector<Row> ReadRows(const std::string& markdown);

// The tests in what a test program prints for --gtest_list_tests, disabled ones left out.
std::set<std::string> ReadTestList(const std::string& listing);

// What is wrong with the rows, each naming its row: tests that are not there, rows without a test, rows told twice.
std::vector<std::string> Problems(const std::vector<Row>& rows, const TestsOfPrograms& there);

}  // namespace docs

#endif
