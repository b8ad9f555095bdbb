// The widths of columns.
#include "orvelbox/desk/text_table.h"

#include <algorithm>

#include "orvelbox/desk/output.h"

namespace orvelbox {
namespace {

// Characters, not bytes: those that continue one of UTF-8 do not count.
std::size_t WidthOf(const std::string& cell) {
  const std::string shown = Printable(cell);
  return static_cast<std::size_t>(
      std::count_if(shown.begin(), shown.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }));
}

}  // namespace

std::vector<std::string> TextTable::Render() const {
  std::vector<std::size_t> widths(rows_.front().size(), 0);
  for (std::size_t column = 0; column < widths.size(); ++column) {
    for (std::size_t row = 1; row < rows_.size(); ++row) {
      widths[column] = std::max(widths[column], WidthOf(rows_[row][column]));
    }
    if (widths[column] > 0) widths[column] = std::max(widths[column], WidthOf(rows_.front()[column]));
  }
  std::vector<std::string> lines;
  for (const auto& row : rows_) {
    std::string line;
    for (std::size_t column = 0; column < widths.size(); ++column) {
      if (widths[column] == 0) continue;
      line += row[column] + std::string(widths[column] - WidthOf(row[column]) + 2, ' ');
    }
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace orvelbox
