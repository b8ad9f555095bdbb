// Colour sequences of a terminal inside texts. Whether to show them is decided elsewhere.
#ifndef ORVEL_ORVELBOX_DESK_COLOUR_H_
#define ORVEL_ORVELBOX_DESK_COLOUR_H_

#include <cstddef>
#include <string_view>

namespace orvelbox {

// The length of the colour sequence ("\e[…m") at the front of `text`; 0 when there is none.
inline std::size_t ColourLength(std::string_view text) {
  if (text.substr(0, 2) != "\x1b[") return 0;
  const std::size_t end = text.find_first_not_of("0123456789;", 2);
  return end != std::string_view::npos && text[end] == 'm' ? end + 1 : 0;
}

}  // namespace orvelbox

#endif
