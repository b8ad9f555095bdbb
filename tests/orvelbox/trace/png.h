// The pixels of a PNG picture, of the kind that browsers make of a window.
#ifndef ORVEL_TESTS_ORVELBOX_TRACE_PNG_H_
#define ORVEL_TESTS_ORVELBOX_TRACE_PNG_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace e2e {

struct Picture {
  using Pixel = std::array<std::uint8_t, 3>;  // red, green, blue

  std::size_t width = 0;
  std::vector<Pixel> pixels;  // row by row

  // How many pixels have this colour, "#rrggbb".
  std::size_t Count(const std::string& colour) const;
};

// Reads a picture of eight bits a colour, not interlaced, with or without transparency (which is left out). Throws
// std::runtime_error for any other.
Picture ReadPng(const std::string& bytes);

}  // namespace e2e

#endif
