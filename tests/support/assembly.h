// Minimal assemblies: a PE file that contains only metadata.
#ifndef TESTS_SUPPORT_ASSEMBLY_H_
#define TESTS_SUPPORT_ASSEMBLY_H_

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace support {

// A metadata table full of zeros, with the given size of a row.
struct MetadataTable {
  unsigned number;
  std::uint32_t rows;
  std::uint32_t row_width;
};

struct AssemblyShape {
  std::uint8_t heap_sizes = 0;
  std::vector<MetadataTable> tables = {{0x00, 1, 10}};  // by number
  bool pe32_plus = false;
  std::string other_stream = "#Strings";  // comes first
  bool sections_around = false;  // one that ends where that of the metadata begins, and one above it; both come first
};

// The content of an assembly with the version.
std::string AssemblyOf(const std::array<std::uint16_t, 4>& version, const AssemblyShape& shape = {});

}  // namespace support

#endif
