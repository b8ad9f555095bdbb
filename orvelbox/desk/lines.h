// Helpers for lines of text for people. Printing them is done in output.
#ifndef ORVEL_ORVELBOX_DESK_LINES_H_
#define ORVEL_ORVELBOX_DESK_LINES_H_

#include <cstddef>
#include <string>
#include <vector>

namespace orvelbox {

using Lines = std::vector<std::string>;

// `text` filled with blanks to `width`.
inline std::string Padded(std::string text, std::size_t width) {
  if (text.size() < width) text.resize(width, ' ');
  return text;
}

// "1 entry", "2 entries".
inline std::string Counted(std::size_t number, const std::string& singular, const std::string& plural) {
  return std::to_string(number) + " " + (number == 1 ? singular : plural);
}

// The id of a package with its version, if it has one.
inline std::string WithVersion(const std::string& id, const std::string& version) {
  return version.empty() ? id : id + " " + version;
}

}  // namespace orvelbox

#endif
