// Assemblies as small as they can be: a PE file that holds nothing but metadata.
#ifndef TESTS_SUPPORT_ASSEMBLY_H_
#define TESTS_SUPPORT_ASSEMBLY_H_

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace support {

// A metadata table full of zeros, as wide as its rows are to be.
struct MetadataTable {
  unsigned number;
  std::uint32_t rows;
  std::uint32_t row_width;
};

struct AssemblyShape {
  std::uint8_t heap_sizes = 0;
  std::vector<MetadataTable> tables = {{0x00, 1, 10}};  // before the Assembly table, by number
  bool pe32_plus = false;
};

// The content of an assembly with the version.
std::string AssemblyOf(const std::array<std::uint16_t, 4>& version, const AssemblyShape& shape = {});

}  // namespace support

#endif
