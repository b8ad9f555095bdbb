// Reading line by line and comparing; how programs are asked is the test's.
#include "tests/docs/behaviours.h"

#include <sstream>
#include <stdexcept>
#include <utility>

namespace docs {
namespace {

constexpr const char* kHeader = "| behaviour | test |";
constexpr const char* kDelimiter = "|---|---|";

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

std::vector<std::string> SplitAt(const std::string& text, char separator) {
  std::vector<std::string> parts = {""};
  for (const char c : text) {
    if (c == separator) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  for (std::string& part : parts) part = Trimmed(part);
  return parts;
}

// `text` is "Suite.case" or "program: Suite.case".
TestName ReadName(const std::string& text) {
  const std::size_t colon = text.find(": ");
  if (colon == std::string::npos) return {"unit_tests", text};
  return {text.substr(0, colon), text.substr(colon + 2)};
}

std::vector<TestName> ReadNames(const std::string& cell) {
  std::vector<TestName> names;
  if (cell.empty()) return names;
  for (const std::string& text : SplitAt(cell, ',')) {
    if (text.size() < 3 || text.front() != '`' || text.back() != '`') {
      throw std::runtime_error("\"" + text + "\" is no name in backticks");
    }
    names.push_back(ReadName(text.substr(1, text.size() - 2)));
  }
  return names;
}

Row ReadRow(std::size_t number, const std::string& line) {
  const std::vector<std::string> cells = SplitAt(line, '|');
  if (cells.size() != 4 || !cells.front().empty() || !cells.back().empty()) {
    throw std::runtime_error("a row has two cells, each between \"|\"");
  }
  if (cells[1].empty()) throw std::runtime_error("the behaviour is not told");
  return {number, cells[1], ReadNames(cells[2])};
}

// Reads line by line: subjects, each with a header, a delimiter and rows.
class Reader {
 public:
  void Read(std::size_t number, const std::string& line) {
    if (line.rfind("## ", 0) == 0) {
      EndSubject();
      subject_ = line.substr(3);
      rows_of_subject_ = 0;
    } else if (line.find('|') != std::string::npos) {
      ReadTableLine(number, line);
      return;
    }
    lines_of_table_ = 0;
  }

  void EndSubject() const {
    if (rows_of_subject_ == 0) throw std::runtime_error("\"" + subject_ + "\" has no rows");
  }

  std::vector<Row> rows() && { return std::move(rows_); }

 private:
  void ReadTableLine(std::size_t number, const std::string& line) {
    const std::size_t place = lines_of_table_++;
    if (place < 2) {
      const std::string expected = place == 0 ? kHeader : kDelimiter;
      if (line != expected) throw std::runtime_error("\"" + expected + "\" is expected here");
      return;
    }
    rows_.push_back(ReadRow(number, line));
    ++rows_of_subject_;
  }

  std::vector<Row> rows_;
  std::string subject_;
  std::size_t rows_of_subject_ = 1;  // what comes before the first subject needs none
  std::size_t lines_of_table_ = 0;
};

std::string Told(const Row& row) { return "line " + std::to_string(row.line) + ", \"" + row.behaviour + "\": "; }

bool IsThere(const TestName& test, const TestsOfPrograms& there) {
  const auto program = there.find(test.program);
  return program != there.end() && program->second.count(test.name) != 0;
}

}  // namespace

std::vector<Row> ReadRows(const std::string& markdown) {
  Reader reader;
  std::istringstream lines(markdown);
  std::size_t number = 0;
  try {
    for (std::string line; std::getline(lines, line);) reader.Read(++number, line);
    reader.EndSubject();
  } catch (const std::runtime_error& error) {
    throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
  }
  std::vector<Row> rows = std::move(reader).rows();
  if (rows.empty()) throw std::runtime_error("there is no table");
  return rows;
}

std::set<std::string> ReadTestList(const std::string& listing) {
  std::set<std::string> tests;
  std::string suite;
  std::istringstream lines(listing);
  for (std::string line; std::getline(lines, line);) {
    std::string word;
    std::istringstream(line) >> word;
    if (word.empty()) continue;
    if (line.front() != ' ') {
      suite = word.back() == '.' ? word : "";
    } else if (!suite.empty() && (suite + word).find("DISABLED_") == std::string::npos) {
      tests.insert(suite + word);
    }
  }
  return tests;
}

std::vector<std::string> Problems(const std::vector<Row>& rows, const TestsOfPrograms& there) {
  std::vector<std::string> problems;
  std::set<std::string> behaviours;
  for (const Row& row : rows) {
    if (row.tests.empty()) problems.push_back(Told(row) + "no test is named");
    if (!behaviours.insert(row.behaviour).second) problems.push_back(Told(row) + "a row before tells the same");
    for (const TestName& test : row.tests) {
      if (!IsThere(test, there)) problems.push_back(Told(row) + test.program + " has no test " + test.name);
    }
  }
  return problems;
}

}  // namespace docs
