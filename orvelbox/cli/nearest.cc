// Counting slips of the hand.
#include "orvelbox/cli/nearest.h"

#include <algorithm>

namespace orvelbox {
namespace {

using Row = std::vector<std::size_t>;

// The slips between the first letters of two words, a row for each number of letters of `a`.
std::size_t Slips(const std::string& a, const std::string& b) {
  std::vector<Row> slips(a.size() + 1, Row(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      std::size_t& fewest = slips[i][j] = i + j;
      if (i == 0 || j == 0) continue;
      const std::size_t another = slips[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      fewest = std::min({slips[i - 1][j] + 1, slips[i][j - 1] + 1, another});
      const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (swapped) fewest = std::min(fewest, slips[i - 2][j - 2] + 1);
    }
  }
  return slips.back().back();
}

}  // namespace

std::string Nearest(const std::string& typed, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t fewest = (typed.size() + 2) / 3 + 1;
  for (const std::string& name : names) {
    const std::size_t slips = Slips(typed, name);
    if (slips >= fewest) continue;
    fewest = slips;
    nearest = name;
  }
  return nearest;
}

}  // namespace orvelbox
