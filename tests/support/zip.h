// Writes zip files byte by byte, with any fault that a test needs.
#ifndef TESTS_SUPPORT_ZIP_H_
#define TESTS_SUPPORT_ZIP_H_

#include <cstdint>
#include <string>
#include <vector>

namespace support {

struct ZipEntry {
  std::string path;
  std::string content;
  std::uint16_t mode = 0;       // as in stat(); 0: 0100644, and 040755 for a path that ends in "/"
  std::uint16_t flags = 0;      // 1: encrypted, 0x800: the path is UTF-8
  std::uint32_t crc_fault = 0;  // added to the checksum
  bool wide = false;            // uses 64-bit records for its numbers and the directory's
  bool deflated = false;        // otherwise stored
};

// A complete zip file with the entries.
std::string ZipOf(const std::vector<ZipEntry>& entries);

// A zip file with one compressed file `path` of `size` zeros.
std::string ZipOfZeros(const std::string& path, std::size_t size);

}  // namespace support

#endif
