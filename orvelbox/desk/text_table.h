// Columns of text.
#ifndef ORVEL_ORVELBOX_DESK_TEXT_TABLE_H_
#define ORVEL_ORVELBOX_DESK_TEXT_TABLE_H_

#include <string>
#include <vector>

namespace orvelbox {

// Rows of cells, all as many as the headings; a column in which every cell is empty is left out.
class TextTable {
 public:
  explicit TextTable(std::vector<std::string> headings) : rows_({std::move(headings)}) {}

  void Add(std::vector<std::string> row) { rows_.push_back(std::move(row)); }
  // One line per row, the headings first, without blanks at the ends.
  std::vector<std::string> Render() const;

 private:
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace orvelbox

#endif
