// Chunks, inflating and the filters of rows.
#include "tests/orvelbox/trace/png.h"

#include <zlib.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace e2e {
namespace {

constexpr std::size_t kSignature = 8;

std::uint32_t NumberAt(const std::string& bytes, std::size_t at) {
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < 4; ++i) number = number << 8 | static_cast<std::uint8_t>(bytes.at(at + i));
  return number;
}

// The data of all chunks of a type, one after the other.
std::string Chunks(const std::string& bytes, const std::string& type) {
  std::string data;
  for (std::size_t at = kSignature; at + 12 <= bytes.size(); at += NumberAt(bytes, at) + 12) {
    if (bytes.compare(at + 4, 4, type) == 0) data += bytes.substr(at + 8, NumberAt(bytes, at));
  }
  return data;
}

std::vector<std::uint8_t> Inflated(const std::string& data, std::size_t size) {
  std::vector<std::uint8_t> inflated(size);
  uLongf length = size;
  const int result = uncompress(inflated.data(), &length, reinterpret_cast<const Bytef*>(data.data()), data.size());
  if (result != Z_OK || length != size) throw std::runtime_error("the pixels do not inflate");
  return inflated;
}

int Paeth(int left, int above, int corner) {
  const int guess = left + above - corner;
  const int by_left = std::abs(guess - left);
  const int by_above = std::abs(guess - above);
  const int by_corner = std::abs(guess - corner);
  if (by_left <= by_above && by_left <= by_corner) return left;
  return by_above <= by_corner ? above : corner;
}

int Prediction(int filter, int left, int above, int corner) {
  switch (filter) {
    case 0:
      return 0;
    case 1:
      return left;
    case 2:
      return above;
    case 3:
      return (left + above) / 2;
    case 4:
      return Paeth(left, above, corner);
    default:
      throw std::runtime_error("a row has an unknown filter");
  }
}

// Takes the filter off `row`, whose pixels have `depth` bytes; `above` is the row before, without its filter.
std::vector<std::uint8_t> Unfiltered(int filter, const std::uint8_t* row, const std::vector<std::uint8_t>& above,
                                     std::size_t depth) {
  std::vector<std::uint8_t> plain(above.size());
  for (std::size_t i = 0; i < plain.size(); ++i) {
    const int left = i < depth ? 0 : plain[i - depth];
    const int corner = i < depth ? 0 : above[i - depth];
    plain[i] = static_cast<std::uint8_t>(row[i] + Prediction(filter, left, above[i], corner));
  }
  return plain;
}

}  // namespace

std::size_t Picture::Count(const std::string& colour) const {
  const auto number = std::strtoul(colour.c_str() + 1, nullptr, 16);
  const Pixel wanted = {static_cast<std::uint8_t>(number >> 16), static_cast<std::uint8_t>(number >> 8),
                        static_cast<std::uint8_t>(number)};
  return static_cast<std::size_t>(std::count(pixels.begin(), pixels.end(), wanted));
}

Picture ReadPng(const std::string& bytes) {
  const std::string header = Chunks(bytes, "IHDR");
  if (header.size() != 13 || header[8] != 8 || (header[9] != 2 && header[9] != 6) || header[12] != 0) {
    throw std::runtime_error("no PNG picture of the expected kind");
  }
  const std::size_t depth = header[9] == 2 ? 3 : 4;
  const std::size_t width = NumberAt(header, 0);
  const std::size_t height = NumberAt(header, 4);
  const std::vector<std::uint8_t> rows = Inflated(Chunks(bytes, "IDAT"), (width * depth + 1) * height);
  Picture picture{width, {}};
  std::vector<std::uint8_t> row(width * depth);
  for (std::size_t y = 0; y < height; ++y) {
    const std::uint8_t* filtered = &rows[y * (width * depth + 1)];
    row = Unfiltered(filtered[0], filtered + 1, row, depth);
    for (std::size_t x = 0; x < width; ++x)
      picture.pixels.push_back({row[x * depth], row[x * depth + 1], row[x * depth + 2]});
  }
  return picture;
}

}  // namespace e2e
